#pragma once

#include "Tools/ZamTArray.h"

#include <QList>
#include <QMetaType>
#include <QObject>
#include <QString>

#include <memory>

class CRunControl;
class QThread;

// How long a compiler may take to print its banner before it is given up (and killed).
constexpr int DefaultDetectionTimeoutMs = 5000;

// What a compiler executable says about itself.
struct SCompilerDetection
{
    bool bRan = false;        // it started and ended within the time limit
    bool bHasOptions = false; // its banner holds an option list
    QString Compiler = QStringLiteral("Unknown");
    QString Version = QStringLiteral("Unknown");
    CZamTArray<QString> Options;    // option names without their hyphen
    unsigned int uiOptionFlags = 0; // the names that are known option switches, as flags

    // A compiler the editor can work with: it answered and listed its options.
    bool IsUsable() const { return bRan && bHasOptions; }
};

Q_DECLARE_METATYPE(SCompilerDetection)

// Runs the executable without arguments, which makes a compiler print its banner, and parses
// what it printed (at most the banner limit is read). A path that does not start, or a
// program that has not ended within the time limit, gives an unusable result. Blocks for up
// to the time limit: call it from a worker thread (CCompilerDetector does).
[[nodiscard]] SCompilerDetection DetectCompiler(const QString& ExecutablePath,
                                                int iTimeoutMs = DefaultDetectionTimeoutMs);
// The same, cancellable from another thread through Control.
[[nodiscard]] SCompilerDetection DetectCompiler(const QString& ExecutablePath, int iTimeoutMs, CRunControl& Control);

// Detects compilers on threads of its own and reports on the thread it lives on, so a
// compiler that hangs never holds up the window. One detection at a time: starting another
// cancels the one under way (its program is killed) and only the newest is reported.
class CCompilerDetector : public QObject
{
    Q_OBJECT

public:
    explicit CCompilerDetector(int iTimeoutMs = DefaultDetectionTimeoutMs, QObject* pParent = nullptr);
    // Kills a program still being asked and waits for its thread, which then ends at once.
    ~CCompilerDetector() override;

    void SetTimeout(int iTimeoutMs) { m_iTimeoutMs = iTimeoutMs; }
    int GetTimeout() const { return m_iTimeoutMs; }

    void Start(const QString& ExecutablePath);
    // Drops the detection under way without a report.
    void Cancel();
    bool IsBusy() const { return m_bBusy; }
    const QString& GetPath() const { return m_Path; }

    // Blocks until the detection under way has been reported. For callers without a window to
    // keep alive (the command-line compile) and for tests.
    void WaitForResult();

signals:
    void Detected(const QString& ExecutablePath, const SCompilerDetection& Detection);

private:
    void OnRunFinished(unsigned int uiRequest, const QString& ExecutablePath, const SCompilerDetection& Detection);
    void ForgetThread(QThread* pThread);

    int m_iTimeoutMs;
    unsigned int m_uiRequest = 0;
    bool m_bBusy = false;
    QString m_Path;
    std::shared_ptr<CRunControl> m_pControl;
    QList<QThread*> m_Threads; // started and not yet finished, the newest last
};
