#include "CShaderEditController.h"

#include "CCompiler_p.h"
#include "Common/ZamPreferences/ZamPreferences.h"
#include "CompileLog_p.h"
#include "ResultHistory_p.h"
#include "ShaderEditComponent/compile/model/MetaTypes.h"
#include "ShaderEditComponent/compile/model/ZamStringConversion.h"
#include "ShaderEditComponent/compile/process/CompileCommandLine.h"
#include "ShaderEditComponent/compile/process/CompilerLocator.h"

#include <QDir>
#include <QFile>
#include <QThread>

#include <utility>

namespace
{
const char* const s_pApplicationScope = "ZamShaderEditor";
constexpr int s_iNoDocumentState = 1;
} // namespace

CShaderEditController::CShaderEditController(QObject* pParent)
    : CShaderEditController(SShaderEditControllerOptions(), pParent)
{
}

CShaderEditController::CShaderEditController(const SShaderEditControllerOptions& Options, QObject* pParent)
    : QObject(pParent)
    , m_Options(Options)
    , m_SearchPaths(Options.CompilerSearchPaths.isEmpty() ? DefaultCompilerSearchPaths() : Options.CompilerSearchPaths)
    , m_pHistory(std::make_unique<CResultHistory>())
{
    RegisterCompileMetaTypes();
    m_pThread = new QThread();
    connect(m_pThread, &QThread::finished, m_pThread, &QObject::deleteLater);
    m_pThread->start(QThread::InheritPriority);

    if (FillFileFormats(m_FileFormats) != 0)
        qCWarning(lcZamCompile, "Not enough memory for the list of file formats");
    m_FileDialogFilter = BuildFileDialogFilter(m_FileFormats);
    LoadSettings(Options.iCompilerSelection);
    m_pDetector = new CCompilerDetector(Options.iDetectionTimeoutMs, this);
    m_pOpenCLDetector = new CCompilerDetector(Options.iDetectionTimeoutMs, this);
    connect(m_pDetector, &CCompilerDetector::Detected, this,
            [this](const QString&, const SCompilerDetection& Detection) { OnCompilerDetected(Detection); });
    connect(m_pOpenCLDetector, &CCompilerDetector::Detected, this,
            [this](const QString&, const SCompilerDetection& Detection) { OnOpenCLCompilerDetected(Detection); });
    m_bDetectionHeld = Options.bDeferDetection;
    if (!m_bDetectionHeld)
        DetectCompilers();
}

CShaderEditController::~CShaderEditController()
{
    for (const auto& Entry : m_InFlight)
    {
        for (const auto& Compile : Entry.second)
            Abandon(Compile.second);
    }
    m_InFlight.clear();
    // Every running compiler has been killed, so the worker's current compile ends at its
    // next poll; compiles still queued never start. Compilers that deleted themselves are
    // gone by the time the thread has finished.
    m_pThread->quit();
    m_pThread->wait();
    for (const QPointer<CCompiler>& pCompiler : std::as_const(m_Abandoned))
        delete pCompiler.data();
    delete m_pThread;
}

void CShaderEditController::Abandon(CCompiler* pCompiler)
{
    disconnect(pCompiler, qOverload<const CZamTHash&, unsigned int>(&CCompiler::FinishedCompile), this,
               &CShaderEditController::OnPanelCompileFinished);
    m_Abandoned.append(pCompiler);
    // Decided under the compiler's lock: a compile still under way deletes itself on the
    // worker thread when it ends (so it must not be touched after this call); one that had
    // already ended is deleted here.
    if (pCompiler->Cancel())
        pCompiler->deleteLater();
}

int CShaderEditController::GetCompilesInFlight() const
{
    int iCount = 0;
    for (const auto& Entry : m_InFlight)
        iCount += static_cast<int>(Entry.second.size());
    return iCount;
}

void CShaderEditController::LoadSettings(qint64 iCompilerSelection)
{
    m_pPrefs = m_Options.pPreferences;
    if (!m_pPrefs)
    {
        const QString Scope = QString::fromLatin1(s_pApplicationScope);
        m_pOwnedPrefs = m_Options.bReadOnlySettings ? CZamPreferences::MakeReadOnly(Scope)
                                                    : std::make_unique<CZamPreferences>(Scope);
        m_pPrefs = m_pOwnedPrefs.get();
        // A read-only run with no preference file simply uses the defaults.
        const bool bTry = !m_Options.bReadOnlySettings || QFile::exists(m_pPrefs->GetFilePath());
        QString Error;
        if (bTry && !m_pPrefs->Load(nullptr, &Error))
            qCDebug(lcZamCompile, "Failed to load Preference file: %s", qPrintable(Error));
    }
    Settings::LoadCompilerSettings(*m_pPrefs, m_Compiler);
    Settings::LoadEditorSettings(*m_pPrefs, m_Editor);
    if (iCompilerSelection >= 0)
        m_Compiler.uiCompilerSelection = static_cast<quint32>(iCompilerSelection);
}

void CShaderEditController::DetectCompilers()
{
    m_OpenCLPath = FindBundledCompiler(OpenCLCompilerBaseName(), m_SearchPaths);
    if (!m_OpenCLPath.isEmpty())
        m_pOpenCLDetector->Start(m_OpenCLPath);
    RunCompilerDetection();
}

void CShaderEditController::StartCompilerDetection()
{
    if (std::exchange(m_bDetectionHeld, false))
        DetectCompilers();
}

void CShaderEditController::RunCompilerDetection()
{
    if (m_bDetectionHeld)
        return; // the held detection reads the settings when it starts
    m_CompilerPath = ResolveCompilerPath(m_Compiler, m_SearchPaths);
    if (m_CompilerPath.isEmpty())
    {
        m_pDetector->Cancel();
        OnCompilerDetected(SCompilerDetection());
        return;
    }
    m_pDetector->Start(m_CompilerPath);
}

void CShaderEditController::OnCompilerDetected(const SCompilerDetection& Detection)
{
    m_Detection = Detection;
    const unsigned int uiFlags = m_Detection.uiOptionFlags & BackgroundOptions;
    if (uiFlags != m_uiCompilerFlags)
    {
        m_uiCompilerFlags = uiFlags;
        emit CompilerFlagsChanged(m_uiCompilerFlags);
    }
    StartDeferredCompiles();
}

void CShaderEditController::OnOpenCLCompilerDetected(const SCompilerDetection& Detection)
{
    m_OpenCLDetection = Detection;
    StartDeferredCompiles();
}

bool CShaderEditController::IsDetectingCompilers() const
{
    return m_bDetectionHeld || m_pDetector->IsBusy() || m_pOpenCLDetector->IsBusy();
}

void CShaderEditController::WaitForCompilerDetection()
{
    StartCompilerDetection();
    m_pOpenCLDetector->WaitForResult();
    m_pDetector->WaitForResult();
}

void CShaderEditController::StartDeferredCompiles()
{
    if (IsDetectingCompilers())
        return;
    const QVector<SDeferredCompile> Deferred = std::exchange(m_Deferred, {});
    for (const SDeferredCompile& Request : Deferred)
        StartCompile(Request);
}

QString CShaderEditController::GetCompileCommandLine(unsigned int uiFlags, EShaderDocType eType,
                                                     const QString& OutputDirectory) const
{
    const QString Marker = QStringLiteral("<ZFXShaders>");
    const bool bEffect = IsEffectType(eType);
    const unsigned int uiSwitches = uiFlags | StageSwitchFor(eType);
    const QString Output =
        QDir(OutputDirectory).filePath(bEffect ? QStringLiteral("%b%_") + Marker : QStringLiteral("%b%"));
    return FormatCommandLine(BuildCompilerCommand(m_CompilerPath, QStringLiteral("%i%/%f%"),
                                                  bEffect ? Marker : QStringLiteral("%b%"), Output, uiSwitches));
}

void CShaderEditController::SetCompilerSettings(const Settings::SCompiler& settings, unsigned int uiSettingMask)
{
    QString Error;
    const bool bSaved = Settings::StoreCompilerSettings(
        *m_pPrefs, m_Compiler, settings, uiSettingMask, [this](Settings::ECompilerSetting) { RunCompilerDetection(); },
        &Error);
    if (!bSaved)
        qCWarning(lcZamCompile, "Failed to save the compiler settings: %s", qPrintable(Error));
    emit CompilerSettingsChanged(m_Compiler, uiSettingMask);
}

void CShaderEditController::SetEditorSettings(const Settings::SEditor& settings, unsigned int uiSettingMask)
{
    QString Error;
    const bool bSaved = Settings::StoreEditorSettings(*m_pPrefs, m_Editor, settings, uiSettingMask, &Error);
    if (!bSaved)
        qCWarning(lcZamCompile, "Failed to save the editor settings: %s", qPrintable(Error));
    emit EditorSettingsChanged(m_Editor);
}

CCompiler* CShaderEditController::StartCompiler(const CZamTHash& PanelID, unsigned int& uiKey)
{
    SCompilerSetup Setup;
    Setup.Executable = m_CompilerPath;
    Setup.OpenCLExecutable = m_OpenCLPath;
    Setup.uiOpenCLSwitches = m_OpenCLDetection.uiOptionFlags;
    Setup.IncludeFolders = m_Compiler.IncludeFolders;
    // Only a compiler that lists -I is given the folders; a custom one may not know it.
    for (uint32_t i = 0; i < m_Detection.Options.GetSize(); ++i)
        Setup.bGLSLIncludeFolders = Setup.bGLSLIncludeFolders || m_Detection.Options[i] == QLatin1String("I");
    Setup.TempDirectory = ToQString(m_Compiler.TempDirectory);
    Setup.CompilerString = m_Detection.Compiler;
    Setup.VersionString = m_Detection.Version;
    Setup.OpenCLCompilerString = m_OpenCLDetection.Compiler;
    Setup.OpenCLVersionString = m_OpenCLDetection.Version;
    if (m_Options.iOutputCap > 0)
        Setup.iOutputCap = m_Options.iOutputCap;

    CCompiler* pCompiler = new CCompiler(Setup);
    pCompiler->moveToThread(m_pThread);
    uiKey = m_uiNextKey++;
    m_InFlight[PanelID][uiKey] = pCompiler;
    connect(pCompiler, &CCompiler::PanelCompiled, this, &CShaderEditController::OnPanelCompiled);
    connect(pCompiler, qOverload<const CZamTHash&, unsigned int>(&CCompiler::FinishedCompile), this,
            &CShaderEditController::OnPanelCompileFinished);
    return pCompiler;
}

void CShaderEditController::OnCompileFile(const CZamTHash& PanelID, const CZamTString& Filename,
                                          const CZamTString& CommandLine, EShaderDocType eType)
{
    SDeferredCompile Request;
    Request.PanelID = PanelID;
    Request.bToFile = true;
    Request.Filename = Filename;
    Request.CommandLine = CommandLine;
    Request.eType = eType;
    Enqueue(Request);
}

void CShaderEditController::OnCompilePanel(const CZamTHash& PanelID, const QString& Contents, EShaderDocType eType,
                                           ECompileInvocationType eInvocation, unsigned int uiFlags)
{
    CompilePanelIn(QString(), PanelID, Contents, eType, eInvocation, uiFlags);
}

void CShaderEditController::CompilePanelIn(const QString& SourceFolder, const CZamTHash& PanelID,
                                           const QString& Contents, EShaderDocType eType,
                                           ECompileInvocationType eInvocation, unsigned int uiFlags)
{
    if (Contents.isEmpty())
        return;
    SDeferredCompile Request;
    Request.PanelID = PanelID;
    Request.Contents = Contents;
    Request.eType = eType;
    Request.eInvocation = eInvocation;
    Request.uiFlags = uiFlags;
    Request.SourceFolder = SourceFolder;
    Request.iEdit = m_pHistory->Requested(PanelID);
    Enqueue(Request);
}

void CShaderEditController::Enqueue(const SDeferredCompile& Request)
{
    emit BeginCompiling();
    if (IsDetectingCompilers())
        m_Deferred.append(Request);
    else
        StartCompile(Request);
}

void CShaderEditController::StartCompile(const SDeferredCompile& Request)
{
    unsigned int uiKey = 0;
    CCompiler* pCompiler = StartCompiler(Request.PanelID, uiKey);
    const CZamTHash PanelID = Request.PanelID;
    const EShaderDocType eType = Request.eType;
    if (Request.bToFile)
    {
        m_pHistory->StartedToFile(uiKey);
        const CZamTString Filename = Request.Filename;
        const CZamTString CommandLine = Request.CommandLine;
        QMetaObject::invokeMethod(
            pCompiler, [=] { pCompiler->OnCompileFile(PanelID, uiKey, Filename, CommandLine, eType); },
            Qt::QueuedConnection);
        return;
    }
    m_pHistory->Started(PanelID, uiKey, Request.iEdit);
    // The background switches are the ones the compiler listed, known only now.
    unsigned int uiFlags = Request.uiFlags;
    if (Request.eInvocation == CompileInvocation_Background)
        uiFlags |= m_uiCompilerFlags | BackgroundCompileFlag;
    const QString Contents = Request.Contents;
    const QString SourceFolder = Request.SourceFolder;
    QMetaObject::invokeMethod(
        pCompiler, [=] { pCompiler->OnCompile(PanelID, uiKey, Contents, eType, uiFlags, SourceFolder); },
        Qt::QueuedConnection);
}

void CShaderEditController::OnPanelCompiled(const CZamTHash& PanelID, unsigned int CompileKey,
                                            const SCompileResult& Results)
{
    const CResultHistory::EKind eKind = m_pHistory->Classify(PanelID, CompileKey);
    if (eKind == CResultHistory::Kind_Superseded)
        return;
    const bool bLatest = eKind == CResultHistory::Kind_Latest;
    const SCompileResult& Stored = m_Results[PanelID] = bLatest ? m_pHistory->Take(PanelID, Results) : Results;
    emit CompileOutputChanged(ToQString(Stored.Log));
    emit CompileProfileChanged(Stored);
    // A text that does not compile leaves the gutter its last counts, greyed by the panel.
    if (!bLatest || Results.iStatus == CompileStatus_Completed)
        emit CompileCycleCountChanged(PanelID, Stored.CycleCounts);
    if (bLatest)
        emit PanelResultChanged(PanelID, Stored);
    emit EndCompiling();
}

void CShaderEditController::OnPanelCompileFinished(const CZamTHash& PanelID, unsigned int CompileKey)
{
    const auto Panel = m_InFlight.find(PanelID);
    if (Panel == m_InFlight.end())
        return;
    const auto Compile = Panel->second.find(CompileKey);
    if (Compile == Panel->second.end())
        return;
    // Deleted on the worker thread, once the compiler has returned from its slot.
    Compile->second->deleteLater();
    Panel->second.erase(Compile);
    if (Panel->second.empty())
        m_InFlight.erase(Panel);
}

void CShaderEditController::OnCancelCompile(const CZamTHash& PanelID)
{
    m_Deferred.removeIf([&PanelID](const SDeferredCompile& Request) { return Request.PanelID == PanelID; });
    const auto Panel = m_InFlight.find(PanelID);
    if (Panel != m_InFlight.end())
    {
        for (const auto& Compile : Panel->second)
            Abandon(Compile.second);
        m_InFlight.erase(Panel);
    }
    m_Abandoned.removeIf([](const QPointer<CCompiler>& pCompiler) { return pCompiler.isNull(); });
    emit EndCompiling();
}

void CShaderEditController::ShowResultOf(const CZamTHash& PanelID, const CZamTHash& SourceID)
{
    if (SourceID == CZamTHash())
        m_ResultSources.erase(PanelID);
    else
        m_ResultSources[PanelID] = SourceID;
    if (PanelID == m_CurrentPanel)
        OnPanelChanged(PanelID);
}

void CShaderEditController::OnPanelChanged(const CZamTHash& PanelID)
{
    m_CurrentPanel = PanelID;
    const auto Source = m_ResultSources.find(PanelID);
    const auto Found = m_Results.find(Source == m_ResultSources.end() ? PanelID : Source->second);
    if (Found == m_Results.end())
    {
        emit ClearCompileOutput();
        return;
    }
    emit CompileOutputChanged(ToQString(Found->second.Log));
    emit CompileProfileChanged(Found->second);
}

void CShaderEditController::OnEditorStateChanged(int iState)
{
    if (iState == s_iNoDocumentState)
        emit ClearCompileOutput();
}
