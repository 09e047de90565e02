#include "CCompiler_p.h"

#include "ShaderEditComponent/compile/model/CompileOptions.h"
#include "ShaderEditComponent/compile/model/UIString.h"
#include "ShaderEditComponent/compile/model/ZamStringConversion.h"
#include "ShaderEditComponent/compile/process/CompileCommandLine.h"
#include "ShaderEditComponent/compile/process/CompileUnit.h"
#include "Tools/ZamTZFXParser.h"

#include <QFileInfo>
#include <QTemporaryDir>

namespace
{

// The worst unit decides: not run (3) over cancelled (2) over failed (1) over completed (0).
void Combine(SCompileResult& Result, ECompileStatus eStatus)
{
    Result.iStatus = qMax(Result.iStatus, static_cast<int>(eStatus));
}

// Calls Action for each vertex shader, then each fragment shader, with its stage switch.
template <typename FAction> void ForEachShader(const CZamTZFXParser& Parser, FAction Action)
{
    const CZamTArray<SZamTZFXParserShader>& Vertex = Parser.GetVertexShaders();
    for (uint32_t i = 0; i < Vertex.GetSize(); ++i)
        Action(Vertex[i], static_cast<unsigned int>(CompileOption_Verbose));
    const CZamTArray<SZamTZFXParserShader>& Fragment = Parser.GetFragmentShaders();
    for (uint32_t i = 0; i < Fragment.GetSize(); ++i)
        Action(Fragment[i], static_cast<unsigned int>(CompileOption_F));
}

QByteArray SourceOf(const SZamTZFXParserShader& Shader)
{
    return QByteArray(Shader.Source.GetString(), static_cast<qsizetype>(Shader.Source.GetLength()));
}

// A shader with nothing to compile (empty inline code, or a binary only) is named, so that it
// is not taken for one that compiled. Returns true when it was skipped.
bool SkippedWithoutSource(const SZamTZFXParserShader& Shader, SCompileResult& Result)
{
    if (!Shader.Source.IsEmpty())
        return false;
    Result.Log += Shader.Name.Text;
    Result.Log += ": no source to compile.\n";
    return true;
}

// A parse failure goes to the log as the parser worded it.
void AddParseError(const CZamTString& Error, SCompileResult& Result)
{
    Result.Log += Error;
    if (Error.IsEmpty() || Error.GetString()[Error.GetLength() - 1] != '\n')
        Result.Log += "\n";
    Combine(Result, CompileStatus_Failed);
}
} // namespace

std::atomic<int> CCompiler::s_iLiveCount{0};

CCompiler::CCompiler(const SCompilerSetup& Setup, QObject* pParent)
    : QObject(pParent)
    , m_Setup(Setup)
{
    ++s_iLiveCount;
}

CCompiler::~CCompiler()
{
    --s_iLiveCount;
}

int CCompiler::GetLiveCount()
{
    return s_iLiveCount;
}

bool CCompiler::Cancel()
{
    return m_Control.Cancel();
}

SCompileResult CCompiler::NewResult(EShaderDocType eType) const
{
    SCompileResult Result;
    Result.iStatus = CompileStatus_Completed;
    const bool bOpenCL = eType == DocType_OpenCLKernel;
    Result.CompilerString = bOpenCL ? m_Setup.OpenCLCompilerString : m_Setup.CompilerString;
    Result.VersionString = bOpenCL ? m_Setup.OpenCLVersionString : m_Setup.VersionString;
    return Result;
}

SCompileTarget CCompiler::TargetFor(EShaderDocType eType, unsigned int uiFlags, const QString& SourceFolder) const
{
    SCompileTarget Target;
    Target.TempDirectory = m_Setup.TempDirectory;
    Target.iOutputCap = m_Setup.iOutputCap;
    if (eType == DocType_OpenCLKernel)
    {
        Target.Executable = m_Setup.OpenCLExecutable;
        Target.uiSwitches = (uiFlags | m_Setup.uiOwnFlags) & m_Setup.uiOpenCLSwitches;
        // The kernel is compiled from a temporary copy, so its own folder must be named.
        Target.ExtraArguments = IncludeFolderArguments(SourceFolder, m_Setup.IncludeFolders);
        return Target;
    }
    Target.Executable = m_Setup.Executable;
    Target.uiSwitches = uiFlags | m_Setup.uiOwnFlags | StageSwitchFor(eType);
    if (m_Setup.bGLSLIncludeFolders)
        Target.ExtraArguments = IncludeFolderArguments(SourceFolder, m_Setup.IncludeFolders);
    return Target;
}

void CCompiler::OnCompile(const CZamTHash& PanelID, unsigned int uiCompileKey, const QString& Contents,
                          EShaderDocType eType, unsigned int uiFlags, const QString& SourceFolder)
{
    SCompileResult Result = NewResult(eType);
    if (!m_Control.IsCancelled())
    {
        const QByteArray Text = Contents.toUtf8();
        if (IsEffectType(eType))
        {
            // FILE and BINARYFILE name files beside the document, not in the editor's folder.
            CZamTZFXParser Parser;
            Parser.SetFileFolder(SourceFolder.toUtf8().constData());
            CZamTString Error;
            if (Parser.ParseFromMemory(Text.constData(), Error) != 0)
                AddParseError(Error, Result);
            else
                CompileEffect(Parser, uiFlags, SourceFolder, Result);
        }
        else
        {
            const SCompileUnit Unit{ToZamString(GetDocTypeName(eType)), 0, uiFlags};
            Combine(Result, CompileSource(Unit, Text, TargetFor(eType, uiFlags, SourceFolder), m_Control, Result));
        }
    }
    Deliver(PanelID, uiCompileKey, Result);
}

void CCompiler::CompileEffect(const CZamTZFXParser& Parser, unsigned int uiFlags, const QString& SourceFolder,
                              SCompileResult& Result)
{
    ForEachShader(Parser,
                  [&](const SZamTZFXParserShader& Shader, unsigned int uiStage)
                  {
                      if (m_Control.IsCancelled() || SkippedWithoutSource(Shader, Result))
                          return;
                      const SCompileUnit Unit{Shader.Name.Text, static_cast<int>(Shader.uiFirstLine), uiFlags};
                      SCompileTarget Target = TargetFor(DocType_ZFXGLSLES, uiFlags, SourceFolder);
                      Target.uiSwitches |= uiStage;
                      Combine(Result, CompileSource(Unit, SourceOf(Shader), Target, m_Control, Result));
                  });
}

void CCompiler::OnCompileFile(const CZamTHash& PanelID, unsigned int uiCompileKey, const CZamTString& Filename,
                              const CZamTString& CommandLine, EShaderDocType eType)
{
    SCompileResult Result = NewResult(eType);
    const QString Path = ToQString(Filename);
    const QString Template = ToQString(CommandLine);
    if (!m_Control.IsCancelled())
    {
        if (IsEffectType(eType))
        {
            CZamTZFXParser Parser;
            CZamTString Error;
            if (Parser.ParseFromFile(Filename.GetString(), Error) != 0)
                AddParseError(Error, Result);
            else
                CompileEffectFile(Parser, Path, Template, Result);
        }
        else
        {
            const SSourcePlaceholders Values = PlaceholdersForFile(Path);
            const SCompileUnit Unit{ToZamString(Values.FileName), 0, 0};
            Combine(Result, RunFileCommand(Unit, CommandFromTemplate(Template, Values), QFileInfo(Path).absolutePath(),
                                           m_Setup.iOutputCap, m_Control, Result));
        }
    }
    Deliver(PanelID, uiCompileKey, Result);
}

void CCompiler::CompileEffectFile(const CZamTZFXParser& Parser, const QString& Path, const QString& Template,
                                  SCompileResult& Result)
{
    const QString WorkingDirectory = QFileInfo(Path).absolutePath();
    ForEachShader(
        Parser,
        [&](const SZamTZFXParserShader& Shader, unsigned int uiStage)
        {
            if (m_Control.IsCancelled() || SkippedWithoutSource(Shader, Result))
                return;
            const SCompileUnit Unit{Shader.Name.Text, static_cast<int>(Shader.uiFirstLine), 0};
            QTemporaryDir Private(PrivateFolderTemplate(m_Setup.TempDirectory));
            const QString SourcePath = WriteUnitSource(
                Private, uiStage == CompileOption_Verbose ? QStringLiteral("shader.vsh") : QStringLiteral("shader.fsh"),
                SourceOf(Shader));
            if (SourcePath.isEmpty())
            {
                Result.Log += UIString(UIS_CouldNotCreateTempFile).toUtf8().constData();
                Result.Log += "\n";
                Combine(Result, CompileStatus_NotRun);
                return;
            }
            SCompileCommand Command =
                ShaderCommandFromTemplate(Template, Path, ToQString(Shader.Name.Text), SourcePath);
            // The bundled compiler learns the stage from a switch; other tools get their template as typed.
            if (!Command.Program.isEmpty() && Command.Program == m_Setup.Executable)
                AddOption(Command, uiStage == CompileOption_Verbose ? QStringLiteral("-v") : QStringLiteral("-f"));
            Combine(Result, RunFileCommand(Unit, Command, WorkingDirectory, m_Setup.iOutputCap, m_Control, Result,
                                           Private.path()));
        });
}

void CCompiler::Deliver(const CZamTHash& PanelID, unsigned int uiCompileKey, const SCompileResult& Result)
{
    const bool bCancelled = m_Control.MarkFinished();
    if (!bCancelled)
        emit PanelCompiled(PanelID, uiCompileKey, Result);
    emit FinishedCompile(PanelID, uiCompileKey);
    emit FinishedCompile();
    // Nobody owns a cancelled compiler any more; the decision was taken under the lock that
    // Cancel takes, so exactly one side deletes it.
    if (bCancelled)
        deleteLater();
}
