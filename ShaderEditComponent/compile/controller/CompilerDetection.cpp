#include "CompilerDetection.h"

#include "ShaderEditComponent/compile/model/CompileOptions.h"
#include "ShaderEditComponent/compile/parsers/CompilerBannerParser.h"
#include "ShaderEditComponent/compile/process/CommandRunner.h"

#include <QCoreApplication>
#include <QThread>

SCompilerDetection DetectCompiler(const QString& ExecutablePath, int iTimeoutMs)
{
    CRunControl Control;
    return DetectCompiler(ExecutablePath, iTimeoutMs, Control);
}

SCompilerDetection DetectCompiler(const QString& ExecutablePath, int iTimeoutMs, CRunControl& Control)
{
    SCompilerDetection Detection;
    SRunOptions Options;
    Options.iTimeoutMs = iTimeoutMs;
    Options.iOutputCap = MaxBannerBytes;
    const SCommandRun Run = RunCommand({ExecutablePath, {}}, Control, Options);
    Detection.bRan = Run.eStatus == CompileStatus_Completed;
    if (!Detection.bRan)
        return Detection;
    Detection.bHasOptions =
        ParseCompilerBanner(QString::fromUtf8(Run.Output), Detection.Compiler, Detection.Version, Detection.Options);
    Detection.uiOptionFlags = OptionFlagsFromNames(Detection.Options);
    return Detection;
}

CCompilerDetector::CCompilerDetector(int iTimeoutMs, QObject* pParent)
    : QObject(pParent)
    , m_iTimeoutMs(iTimeoutMs)
{
    qRegisterMetaType<SCompilerDetection>();
}

CCompilerDetector::~CCompilerDetector()
{
    Cancel();
    // Every program has been killed, so each thread is at most one runner poll from its end.
    for (QThread* pThread : std::as_const(m_Threads))
    {
        pThread->wait();
        delete pThread;
    }
}

void CCompilerDetector::Start(const QString& ExecutablePath)
{
    Cancel();
    const unsigned int uiRequest = ++m_uiRequest;
    const int iTimeoutMs = m_iTimeoutMs;
    auto pControl = std::make_shared<CRunControl>();
    // The detector outlives the thread (its destructor waits), so posting to it is safe.
    QThread* pThread = QThread::create(
        [this, ExecutablePath, iTimeoutMs, pControl, uiRequest]
        {
            const SCompilerDetection Detection = DetectCompiler(ExecutablePath, iTimeoutMs, *pControl);
            QMetaObject::invokeMethod(
                this,
                [this, uiRequest, ExecutablePath, Detection] { OnRunFinished(uiRequest, ExecutablePath, Detection); },
                Qt::QueuedConnection);
        });
    connect(pThread, &QThread::finished, this, [this, pThread] { ForgetThread(pThread); });
    m_Threads.append(pThread);
    m_pControl = pControl;
    m_Path = ExecutablePath;
    m_bBusy = true;
    pThread->start();
}

void CCompilerDetector::Cancel()
{
    if (!m_bBusy)
        return;
    m_bBusy = false;
    ++m_uiRequest;
    m_pControl->Cancel();
    m_pControl.reset();
}

void CCompilerDetector::WaitForResult()
{
    while (m_bBusy)
    {
        if (!m_Threads.isEmpty())
            m_Threads.last()->wait();
        QCoreApplication::sendPostedEvents(this, QEvent::MetaCall);
        if (m_Threads.isEmpty())
            break;
    }
}

void CCompilerDetector::OnRunFinished(unsigned int uiRequest, const QString& ExecutablePath,
                                      const SCompilerDetection& Detection)
{
    if (!m_bBusy || uiRequest != m_uiRequest)
        return;
    m_bBusy = false;
    m_pControl.reset();
    emit Detected(ExecutablePath, Detection);
}

void CCompilerDetector::ForgetThread(QThread* pThread)
{
    if (m_Threads.removeOne(pThread))
        pThread->deleteLater();
}
