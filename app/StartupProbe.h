#pragma once

// Start-up measurement: with ZAM_STARTUP_PROBE set, the first paint of a window writes
// "zam-first-paint <CLOCK_MONOTONIC ns>" to standard error; with the value "quit" the
// program then ends. Header-only so the benchmark's bare baseline window uses the very same
// probe as the editor.

#include <QCoreApplication>
#include <QEvent>
#include <QTimer>
#include <QWidget>

#include <cstdio>
#include <ctime>

class CStartupProbe : public QObject
{
public:
    // Watches pWindow when the environment asks for it; otherwise does nothing.
    static void Install(QWidget* pWindow)
    {
        if (qEnvironmentVariableIsSet("ZAM_STARTUP_PROBE"))
            pWindow->installEventFilter(new CStartupProbe(pWindow));
    }

protected:
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override
    {
        if (pEvent->type() == QEvent::Paint && !m_bSeen)
        {
            m_bSeen = true;
            // After the paint has been flushed, at the end of this pass of the event loop.
            QTimer::singleShot(0, this, &CStartupProbe::Report);
        }
        return QObject::eventFilter(pWatched, pEvent);
    }

private:
    explicit CStartupProbe(QObject* pParent)
        : QObject(pParent)
    {
    }

    void Report()
    {
        timespec Now{};
        clock_gettime(CLOCK_MONOTONIC, &Now);
        std::fprintf(stderr, "zam-first-paint %lld\n",
                     static_cast<long long>(Now.tv_sec) * 1000000000LL + static_cast<long long>(Now.tv_nsec));
        std::fflush(stderr);
        if (qEnvironmentVariable("ZAM_STARTUP_PROBE") == QLatin1String("quit"))
            QCoreApplication::exit(0);
    }

    bool m_bSeen = false;
};
