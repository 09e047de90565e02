#include "CEditorWindow.h"
#include "HeadlessCompile.h"
#include "MetaTypes.h"

#include <QApplication>

int main(int argc, char** argv)
{
    // Decided before any application object exists: the command-line compile needs no display.
    if (IsHeadlessCompileRequest(argc, argv))
        return RunHeadlessCompileMain(argc, argv);

    QApplication App(argc, argv);
    QApplication::setApplicationName(QStringLiteral("ZamShaderEditor"));
    RegisterCompileMetaTypes();

    CEditorWindow Window;
    const QStringList Arguments = QApplication::arguments();
    if (Arguments.size() > 1)
        Window.OpenFile(Arguments.at(1));
    Window.show();
    return App.exec();
}
