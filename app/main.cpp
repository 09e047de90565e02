#include "CStartWindow.h"
#include "MetaTypes.h"

#include <QApplication>

int main(int argc, char** argv)
{
    QApplication App(argc, argv);
    QApplication::setApplicationName(QStringLiteral("ZamShaderEditor"));
    RegisterCompileMetaTypes();

    CStartWindow Window;
    const QStringList Arguments = QApplication::arguments();
    if (Arguments.size() > 1)
        Window.OpenFile(Arguments.at(1));
    Window.show();
    return App.exec();
}
