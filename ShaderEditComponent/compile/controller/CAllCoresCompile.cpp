#include "CAllCoresCompile.h"

#include "CCompiler_p.h"
#include "CShaderEditController.h"
#include "ShaderEditComponent/compile/model/CompileOptions.h"
#include "ShaderEditComponent/compile/model/ZamStringConversion.h"
#include "ShaderEditComponent/compile/process/CompilerLocator.h"

#include <QThread>
#include <QTimer>

#include <utility>

namespace
{
// The figures the table shows: the estimate and the per-line totals; no listing is needed.
constexpr unsigned int s_uiFlags =
    CompileOption_Profile | CompileOption_PerfSim | CShaderEditController::BackgroundCompileFlag;
} // namespace

CAllCoresCompile::CAllCoresCompile(const CShaderEditController& Controller, QObject* pParent)
    : QObject(pParent)
    , m_Controller(Controller)
{
    m_pThread = new QThread();
    m_pThread->setObjectName(QStringLiteral("AllCoresCompile"));
    m_pThread->start(QThread::LowPriority);
    m_pDelay = new QTimer(this);
    m_pDelay->setSingleShot(true);
    m_pDelay->setInterval(StartDelayMs);
    connect(m_pDelay, &QTimer::timeout, this,
            [this]
            {
                m_bWaiting = false;
                Start(std::exchange(m_Waiting, SRequest()));
            });
}

CAllCoresCompile::~CAllCoresCompile()
{
    for (auto& Entry : m_Pending)
    {
        for (CCompiler* pCompiler : std::as_const(Entry.second.Compilers))
        {
            if (pCompiler)
                Abandon(pCompiler);
        }
    }
    m_Pending.clear();
    m_pThread->quit();
    m_pThread->wait();
    for (const QPointer<CCompiler>& pCompiler : std::as_const(m_Abandoned))
        delete pCompiler.data();
    delete m_pThread;
}

bool CAllCoresCompile::Compiles(EShaderDocType eType)
{
    return (eType & (LanguageGroup_GLSLES | DocType_ZFXGLSLES | DocType_ZFXGLSL)) != 0;
}

const SAllCoresResult* CAllCoresCompile::GetResult(const CZamTHash& PanelID) const
{
    const auto Found = m_Results.find(PanelID);
    return Found == m_Results.end() ? nullptr : &Found->second;
}

int CAllCoresCompile::GetCompilesInFlight() const
{
    int iCount = m_bWaiting ? GetCompilerTargetCount() : 0;
    for (const auto& Entry : m_Pending)
        iCount += Entry.second.iOutstanding;
    return iCount;
}

void CAllCoresCompile::OnCompile(const CZamTHash& PanelID, const QString& Contents, EShaderDocType eType,
                                 const QString& SourceFolder)
{
    OnCancel(PanelID);
    if (!Compiles(eType) || Contents.isEmpty())
        return;
    // Only the newest request waits: one of another panel is of a tab no longer in front.
    m_Waiting = {PanelID, Contents, eType, SourceFolder};
    m_bWaiting = true;
    m_pDelay->start();
}

void CAllCoresCompile::Start(const SRequest& Request)
{
    const CZamTHash& PanelID = Request.PanelID;
    const QString& Contents = Request.Contents;
    const EShaderDocType eType = Request.eType;
    const QString& SourceFolder = Request.SourceFolder;
    OnCancel(PanelID);
    const Settings::SCompiler& Settings = m_Controller.GetCompilerSettings();
    SPending& Pending = m_Pending[PanelID];
    // Results of dropped compiles may still be queued; the key tells them apart.
    Pending.uiKey = ++m_uiNextKey;
    const unsigned int uiKey = Pending.uiKey;
    for (int iCore = 0; iCore < GetCompilerTargetCount(); ++iCore)
    {
        const SCompilerTarget& Target = GetCompilerTarget(iCore);
        SCompilerSetup Setup;
        Setup.Executable =
            FindBundledCompiler(ToQString(Target.ExecutableBaseName), m_Controller.GetCompilerSearchPaths());
        Setup.TempDirectory = ToQString(Settings.TempDirectory);
        Setup.IncludeFolders = Settings.IncludeFolders;
        Setup.bGLSLIncludeFolders = true; // every bundled compiler takes -I
        Setup.CompilerString = Target.DisplayName;
        Pending.Result.Cores.append({Target.DisplayName, SCompileResult()});

        CCompiler* pCompiler = new CCompiler(Setup);
        pCompiler->moveToThread(m_pThread);
        Pending.Compilers.append(pCompiler);
        ++Pending.iOutstanding;
        connect(pCompiler, &CCompiler::PanelCompiled, this,
                [this, iCore](const CZamTHash& ID, unsigned int uiCompileKey, const SCompileResult& Result)
                { OnCoreCompiled(ID, uiCompileKey, iCore, Result); });
        connect(pCompiler, qOverload<const CZamTHash&, unsigned int>(&CCompiler::FinishedCompile), this,
                [this, iCore](const CZamTHash& ID, unsigned int uiCompileKey)
                { OnCoreFinished(ID, uiCompileKey, iCore); });
        QMetaObject::invokeMethod(
            pCompiler, [=] { pCompiler->OnCompile(PanelID, uiKey, Contents, eType, s_uiFlags, SourceFolder); },
            Qt::QueuedConnection);
    }
}

void CAllCoresCompile::OnCoreCompiled(const CZamTHash& PanelID, unsigned int uiKey, int iCore,
                                      const SCompileResult& Result)
{
    const auto Found = m_Pending.find(PanelID);
    if (Found != m_Pending.end() && Found->second.uiKey == uiKey && iCore < Found->second.Result.Cores.size())
        Found->second.Result.Cores[iCore].Result = Result;
}

void CAllCoresCompile::OnCoreFinished(const CZamTHash& PanelID, unsigned int uiKey, int iCore)
{
    const auto Found = m_Pending.find(PanelID);
    if (Found == m_Pending.end() || Found->second.uiKey != uiKey || iCore >= Found->second.Compilers.size()
        || !Found->second.Compilers[iCore])
        return;
    SPending& Pending = Found->second;
    // Deleted on the worker thread once it has returned from its slot.
    Pending.Compilers[iCore]->deleteLater();
    Pending.Compilers[iCore] = nullptr;
    if (--Pending.iOutstanding > 0)
        return;
    const SAllCoresResult& Stored = m_Results[PanelID] = std::move(Pending.Result);
    m_Pending.erase(Found);
    emit Compiled(PanelID, Stored);
}

void CAllCoresCompile::OnCancel(const CZamTHash& PanelID)
{
    if (m_bWaiting && m_Waiting.PanelID == PanelID)
    {
        m_bWaiting = false;
        m_pDelay->stop();
    }
    const auto Found = m_Pending.find(PanelID);
    if (Found != m_Pending.end())
    {
        for (CCompiler* pCompiler : std::as_const(Found->second.Compilers))
        {
            if (pCompiler)
                Abandon(pCompiler);
        }
        m_Pending.erase(Found);
    }
    m_Abandoned.removeIf([](const QPointer<CCompiler>& pCompiler) { return pCompiler.isNull(); });
}

void CAllCoresCompile::OnPanelClosed(const CZamTHash& PanelID)
{
    OnCancel(PanelID);
    m_Results.erase(PanelID);
}

void CAllCoresCompile::Abandon(CCompiler* pCompiler)
{
    disconnect(pCompiler, nullptr, this, nullptr);
    m_Abandoned.append(pCompiler);
    // As in the controller: a compile still under way deletes itself when it ends.
    if (pCompiler->Cancel())
        pCompiler->deleteLater();
}
