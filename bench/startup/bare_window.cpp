// The baseline of the start-up benchmark: a bare Qt main window with a text editor in it,
// measured with the same probe as the editor.

#include "app/StartupProbe.h"

#include <QApplication>
#include <QMainWindow>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QStatusBar>

int main(int argc, char** argv)
{
    QApplication App(argc, argv);
    QMainWindow Window;
    Window.menuBar()->addMenu(QStringLiteral("File"));
    Window.setCentralWidget(new QPlainTextEdit(&Window));
    Window.statusBar()->showMessage(QStringLiteral("Ready"));
    Window.resize(1280, 800);
    CStartupProbe::Install(&Window);
    Window.show();
    return App.exec();
}
