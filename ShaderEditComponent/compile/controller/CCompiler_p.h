#pragma once

#include "ShaderEditComponent/compile/model/CompileResult.h"
#include "ShaderEditComponent/compile/model/ShaderDocType.h"
#include "ShaderEditComponent/compile/process/CommandRunner.h"
#include "Tools/ZamTHash.h"
#include "Tools/ZamTString.h"

#include <QObject>
#include <QString>
#include <QStringList>

#include <atomic>

class CZamTZFXParser;
struct SCompileTarget;

// What the controller hands a compiler worker when it creates it.
struct SCompilerSetup
{
    QString Executable;                // the GLSL ES compiler of the current selection
    QString OpenCLExecutable;          // the compiler of OpenCL kernels
    unsigned int uiOpenCLSwitches = 0; // the option flags the OpenCL compiler takes
    QStringList IncludeFolders;        // searched for headers after the document's folder
    bool bGLSLIncludeFolders = false;  // the GLSL ES compiler lists -I: it is given the folders
    QString TempDirectory;
    unsigned int uiOwnFlags = 0; // ORed into every command line
    QString CompilerString;      // what detection reported, copied into the result
    QString VersionString;
    QString OpenCLCompilerString;
    QString OpenCLVersionString;
    qint64 iOutputCap = DefaultOutputCap;
};

// Compiles one request on the worker thread and reports it through queued signals. Driven
// only by its slots; Cancel is the one call made from another thread.
class CCompiler : public QObject
{
    Q_OBJECT

public:
    explicit CCompiler(const SCompilerSetup& Setup, QObject* pParent = nullptr);
    ~CCompiler() override;

    // Compiler objects alive in the process, on any thread; tear-down must bring it to 0.
    static int GetLiveCount();

    // Thread-safe: under the compiler's lock, marks the compile cancelled and kills the
    // running compiler with everything it started. A cancelled compile delivers no result and
    // deletes itself on the worker thread when its slot ends. Returns true when the compile
    // had already finished: then the caller deletes it.
    bool Cancel();

signals:
    void PanelCompiled(const CZamTHash& PanelID, unsigned int uiCompileKey, const SCompileResult& Result);
    void FinishedCompile(const CZamTHash& PanelID, unsigned int uiCompileKey);
    void FinishedCompile();

public slots:
    // A document's text. Effect files are parsed and each shader compiled by itself, its line
    // numbers moved to the effect file's lines; any other type is compiled whole, with the
    // stage switch of its type (vertex types "-v", fragment types "-f"). Headers are found in
    // SourceFolder, the document's folder (empty: none), then in the include folders.
    void OnCompile(const CZamTHash& PanelID, unsigned int uiCompileKey, const QString& Contents, EShaderDocType eType,
                   unsigned int uiFlags, const QString& SourceFolder = QString());
    // A saved file and a compile-to-file command template: the template is split into
    // words first and its placeholders (%i%, %f%, %b%) filled in afterwards, then run without
    // a shell in the file's folder. For an effect file each shader is run by itself with
    // "<ZFXShaders>" set to its name and its source in a file of its own.
    void OnCompileFile(const CZamTHash& PanelID, unsigned int uiCompileKey, const CZamTString& Filename,
                       const CZamTString& CommandLine, EShaderDocType eType);

private:
    SCompileResult NewResult(EShaderDocType eType) const;
    SCompileTarget TargetFor(EShaderDocType eType, unsigned int uiFlags, const QString& SourceFolder = QString()) const;
    void CompileEffect(const CZamTZFXParser& Parser, unsigned int uiFlags, const QString& SourceFolder,
                       SCompileResult& Result);
    void CompileEffectFile(const CZamTZFXParser& Parser, const QString& Path, const QString& Template,
                           SCompileResult& Result);
    void Deliver(const CZamTHash& PanelID, unsigned int uiCompileKey, const SCompileResult& Result);

    static std::atomic<int> s_iLiveCount;

    const SCompilerSetup m_Setup;
    CRunControl m_Control;
};
