#pragma once

// Drives the real main window offscreen: a window on a private preference file, modal
// dialogs answered from the event loop, and files on disk.

#include "app/controller/CGUIController.h"
#include "app/ZamShaderEditorWindow.h"
#include "Common/ZamPreferences/ZamPreferences.h"
#include "tests/support/TestFiles.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QPointer>
#include <QTimer>
#include <QWidget>

#include <functional>
#include <memory>

namespace WindowTest
{
using namespace TestFiles;

inline std::unique_ptr<CGUIController> NewGUIController()
{
    return std::make_unique<CGUIController>(std::make_unique<CZamPreferences>(QStringLiteral("ZamShaderEditor")));
}

// A window as the program makes it, on the given controller, with the bundled compilers.
inline std::unique_ptr<ZamShaderEditorWindow> NewWindow(CGUIController& GUI, const QStringList& Arguments = {},
                                                        bool bWelcomeExample = false)
{
    static QStringList s_Arguments;
    s_Arguments = QStringList{QStringLiteral("zamshadereditor")} + Arguments;
    SEditorWindowOptions Options;
    Options.pGUI = &GUI;
    Options.pArguments = &s_Arguments;
    Options.CompilerSearchPaths = QStringList{BinDir()};
    Options.bWelcomeExample = bWelcomeExample;
    return std::make_unique<ZamShaderEditorWindow>(Options);
}

// Calls Answer with the next modal widget (a dialog or message box) once it is shown, from
// the event loop that runs it. Returns a flag that tells whether one was answered.
inline std::shared_ptr<bool> AnswerNextModal(std::function<void(QWidget*)> Answer)
{
    auto pAnswered = std::make_shared<bool>(false);
    auto* pTimer = new QTimer(qApp);
    pTimer->setInterval(5);
    auto pTicks = std::make_shared<int>(0);
    QObject::connect(pTimer, &QTimer::timeout, pTimer,
                     [pTimer, Answer, pAnswered, pTicks]
                     {
                         QWidget* pModal = QApplication::activeModalWidget();
                         // Gives up after ten seconds, so a stray watcher cannot answer the
                         // next test's dialog.
                         if (++*pTicks > 2000)
                         {
                             pTimer->stop();
                             pTimer->deleteLater();
                             return;
                         }
                         if (!pModal || !pModal->isVisible())
                             return;
                         pTimer->stop();
                         pTimer->deleteLater();
                         *pAnswered = true;
                         Answer(pModal);
                     });
    pTimer->start();
    return pAnswered;
}
} // namespace WindowTest
