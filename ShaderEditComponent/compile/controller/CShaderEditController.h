#pragma once

#include "CompilerDetection.h"
#include "ShaderEditComponent/compile/model/CompileOptions.h"
#include "ShaderEditComponent/compile/model/CompileResult.h"
#include "ShaderEditComponent/compile/model/FileFormats.h"
#include "ShaderEditComponent/compile/model/Settings.h"
#include "ShaderEditComponent/compile/model/ShaderDocType.h"
#include "Tools/ZamTArray.h"
#include "Tools/ZamTHash.h"
#include "Tools/ZamTString.h"

#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QVector>

#include <map>
#include <memory>

class CCompiler;
class CResultHistory;
class CZamPreferences;
class QThread;

// How a controller is set up; the defaults are the editor's.
struct SShaderEditControllerOptions
{
    // Folders searched for the bundled compilers; empty: DefaultCompilerSearchPaths().
    QStringList CompilerSearchPaths;
    // The process's preference store, loaded by its owner and kept alive longer than the
    // controller. Null: the controller opens the user's file itself.
    CZamPreferences* pPreferences = nullptr;
    // With no store given: read the user's preference file but never write it (the
    // command-line compile).
    bool bReadOnlySettings = false;
    // Replaces the stored compiler selection for this controller only; -1 keeps it.
    qint64 iCompilerSelection = -1;
    int iDetectionTimeoutMs = DefaultDetectionTimeoutMs;
    // The window asks the compilers about themselves only once it has painted, so starting
    // processes and compiling the restored session never delay its first picture. Until
    // StartCompilerDetection(), detection counts as under way and compiles wait.
    bool bDeferDetection = false;
    qint64 iOutputCap = -1; // -1: the runner's default cap
};

// The hub of the shader edit component: owns the editor and compiler settings, the worker
// thread on which every compile runs, the compiles in flight and the last result of every
// panel. Lives on the GUI thread and never waits for the worker.
class CShaderEditController : public QObject
{
    Q_OBJECT

public:
    // Switches written by background compiles when the compiler lists them.
    static constexpr unsigned int BackgroundOptions =
        CompileOption_Profile | CompileOption_PerfSim | CompileOption_Disassembly;
    // Added to the flags of every background compile; no switch stands for it.
    static constexpr unsigned int BackgroundCompileFlag = 64;

    explicit CShaderEditController(QObject* pParent = nullptr);
    explicit CShaderEditController(const SShaderEditControllerOptions& Options, QObject* pParent = nullptr);
    // Cancels the compiles in flight (their compilers and everything those started are
    // killed), stops the worker thread and deletes every compiler object.
    ~CShaderEditController() override;

    const Settings::SEditor& GetEditorSettings() const { return m_Editor; }
    const Settings::SCompiler& GetCompilerSettings() const { return m_Compiler; }
    // The background flags, as last announced by CompilerFlagsChanged.
    unsigned int GetCompilerFlags() const { return m_uiCompilerFlags; }
    // The GLSL ES compiler the selection resolves to, and what it said about itself.
    const QString& GetCompilerPath() const { return m_CompilerPath; }
    const SCompilerDetection& GetCompilerDetection() const { return m_Detection; }
    // Where the bundled compilers of the selection are looked for.
    const QStringList& GetCompilerSearchPaths() const { return m_SearchPaths; }
    // Compilers are asked about themselves on threads of their own, at start and whenever the
    // selection or the custom path changes; until they have answered (or run out of time),
    // the detection above is the previous one and compiles wait, without blocking anything.
    bool IsDetectingCompilers() const;
    // Starts a detection held back by bDeferDetection; does nothing otherwise.
    void StartCompilerDetection();
    // Blocks until the detections under way (a held one included) have been reported. For the
    // command-line compile and for tests; the window never calls it.
    void WaitForCompilerDetection();
    const CZamTArray<SFileFormatSpecifier>& GetFileFormats() const { return m_FileFormats; }
    const QString& GetFileDialogFilter() const { return m_FileDialogFilter; }
    // Compiles not yet finished or cancelled.
    int GetCompilesInFlight() const;

    // The built-in compiler's compile-to-file command template for the compile dialog, with
    // the option switches of uiFlags and the stage switch of eType:
    // "<compiler>" "%i%/%f%" "%b%" "<OutputDirectory>/%b%" -switches. For effect files the
    // unit and the output name carry "<ZFXShaders>", which becomes each shader's name.
    QString GetCompileCommandLine(unsigned int uiFlags, EShaderDocType eType, const QString& OutputDirectory) const;

    // OnCompilePanel for a document whose file is in SourceFolder (empty: never saved): an
    // OpenCL kernel's local headers are searched there.
    void CompilePanelIn(const QString& SourceFolder, const CZamTHash& PanelID, const QString& Contents,
                        EShaderDocType eType, ECompileInvocationType eInvocation, unsigned int uiFlags = 0);

signals:
    void CompileOutputChanged(const QString& Log);
    void CompileProfileChanged(const SCompileResult& Result);
    void CompileCycleCountChanged(const CZamTHash& PanelID, const CZamTArray<int>& CycleCounts);
    void CompilerSettingsChanged(const Settings::SCompiler& settings, unsigned int uiSettingMask);
    void EditorSettingsChanged(const Settings::SEditor& settings);
    void ClearCompileOutput();
    void CompilerFlagsChanged(unsigned int uiFlags);
    void BeginCompiling();
    void EndCompiling();
    // A background compile of the panel's current text ended; Shown is what the views show
    // (see SCompileResult::iEditsBehind), its messages are the new ones. Results of text that
    // has been edited since never arrive here: the newer compile's will.
    void PanelResultChanged(const CZamTHash& PanelID, const SCompileResult& Shown);

public slots:
    void SetCompilerSettings(const Settings::SCompiler& settings, unsigned int uiSettingMask);
    void SetEditorSettings(const Settings::SEditor& settings, unsigned int uiSettingMask);
    void OnCompileFile(const CZamTHash& PanelID, const CZamTString& Filename, const CZamTString& CommandLine,
                       EShaderDocType eType);
    void OnCompilePanel(const CZamTHash& PanelID, const QString& Contents, EShaderDocType eType,
                        ECompileInvocationType eInvocation, unsigned int uiFlags = 0);
    void OnPanelCompiled(const CZamTHash& PanelID, unsigned int CompileKey, const SCompileResult& Results);
    void OnPanelCompileFinished(const CZamTHash& PanelID, unsigned int CompileKey);
    void OnCancelCompile(const CZamTHash& PanelID);
    void OnPanelChanged(const CZamTHash& PanelID);
    // While PanelID's tab is in front the views show SourceID's last result: a header shows the
    // compile of the document that includes it. A null SourceID ends that.
    void ShowResultOf(const CZamTHash& PanelID, const CZamTHash& SourceID);
    void OnEditorStateChanged(int iState);

private:
    // A compile requested while compilers were being detected, started once they are known.
    struct SDeferredCompile
    {
        CZamTHash PanelID;
        bool bToFile = false;
        QString Contents;
        CZamTString Filename;
        CZamTString CommandLine;
        EShaderDocType eType = DocType_PlainText;
        ECompileInvocationType eInvocation = CompileInvocation_Manual;
        unsigned int uiFlags = 0;
        QString SourceFolder;
        int iEdit = 0; // of the panel's text, for the history
    };

    void LoadSettings(qint64 iCompilerSelection);
    void DetectCompilers();
    void RunCompilerDetection();
    void OnCompilerDetected(const SCompilerDetection& Detection);
    void OnOpenCLCompilerDetected(const SCompilerDetection& Detection);
    void StartDeferredCompiles();
    void Enqueue(const SDeferredCompile& Request);
    void StartCompile(const SDeferredCompile& Request);
    // Creates a compiler on the worker thread and enters it in the in-flight table.
    CCompiler* StartCompiler(const CZamTHash& PanelID, unsigned int& uiKey);
    // Cancels a compile in flight and hands the compiler over to its own deletion.
    void Abandon(CCompiler* pCompiler);

    const SShaderEditControllerOptions m_Options;
    QStringList m_SearchPaths;
    std::unique_ptr<CZamPreferences> m_pOwnedPrefs;
    CZamPreferences* m_pPrefs = nullptr;
    Settings::SEditor m_Editor;
    Settings::SCompiler m_Compiler;
    CZamTArray<SFileFormatSpecifier> m_FileFormats;
    QString m_FileDialogFilter;

    QString m_CompilerPath;
    SCompilerDetection m_Detection;
    QString m_OpenCLPath;
    SCompilerDetection m_OpenCLDetection;
    unsigned int m_uiCompilerFlags = 0;
    CCompilerDetector* m_pDetector = nullptr;
    CCompilerDetector* m_pOpenCLDetector = nullptr;
    bool m_bDetectionHeld = false;
    QVector<SDeferredCompile> m_Deferred;

    QThread* m_pThread = nullptr;
    unsigned int m_uiNextKey = 0;
    std::map<CZamTHash, std::map<unsigned int, CCompiler*>> m_InFlight;
    // Cancelled compilers delete themselves on the worker thread; kept to be deleted at
    // tear-down if they never got that far.
    QVector<QPointer<CCompiler>> m_Abandoned;
    std::map<CZamTHash, SCompileResult> m_Results;
    std::map<CZamTHash, CZamTHash> m_ResultSources;
    std::unique_ptr<CResultHistory> m_pHistory;
    CZamTHash m_CurrentPanel;
};
