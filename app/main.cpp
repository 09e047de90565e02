#include "app/controller/CGUIController.h"
#include "app/dialogs/DocumentRestore.h"
#include "app/help/CAboutBoxDialog.h"
#include "app/help/HelpResources.h"
#include "app/instance/CSingleApplication.h"
#include "app/instance/InstanceHandOver.h"
#include "app/instance/InstanceMessage.h"
#include "CommandLine_p.h"
#include "Common/ZamPreferences/ZamPreferences.h"
#include "DesktopIntegration.h"
#include "ShaderEditComponent/compile/controller/HeadlessCompile.h"
#include "ShaderEditComponent/compile/model/MetaTypes.h"
#include "ShaderEditComponent/IconResources.h"
#include "StartupProbe.h"
#include "ZamShaderEditorWindow.h"

#include <QFileInfo>

#include <cstdio>

namespace
{
const char* const s_pApplicationText = "ZamShaderEditor 2.0";

// The desktop hands several files to one start (Exec=zamshadereditor %F), but a message to the
// running editor carries one file: every file after the first is handed on as a start of its own.
QList<QStringList> OneStartPerFile(const QStringList& Arguments)
{
    QList<QStringList> Starts{Arguments.mid(0, 2)};
    for (int i = 2; i < Arguments.size(); ++i)
        Starts.append({Arguments.at(0), Arguments.at(i)});
    return Starts;
}

// A later start only hands its files (or the wish to see the window) to the running one.
int HandOver(CSingleApplication& App)
{
    for (const QStringList& Start : OneStartPerFile(QCoreApplication::arguments()))
    {
        const QString Message = HandOverMessage(Start);
        if (!Message.isEmpty())
            App.SendMessage(Message);
    }
    return 0;
}
} // namespace

int main(int argc, char** argv)
{
    // Decided before any application object exists: none of these needs a display, and a
    // second start that only hands over its file should not wait for one.
    if (IsHeadlessCompileRequest(argc, argv))
        return RunHeadlessCompileMain(argc, argv);
    const QString Information = InformationRequested(argc, argv);
    if (!Information.isEmpty())
    {
        std::fputs(Information.toLocal8Bit().constData(), stdout);
        return 0;
    }

    QStringList Arguments;
    for (int i = 0; i < argc; ++i)
        Arguments << QString::fromLocal8Bit(argv[i]);
    const QList<QStringList> Starts = OneStartPerFile(Arguments);
    if (HandOverToRunningInstance(QStringLiteral("ZamShaderEditor"), Starts.first()))
    {
        for (int i = 1; i < Starts.size(); ++i)
            static_cast<void>(HandOverToRunningInstance(QStringLiteral("ZamShaderEditor"), Starts.at(i)));
        return 0;
    }

    CSingleApplication App(argc, argv, QStringLiteral("ZamShaderEditor"));
    InitIconResources();
    InitHelpResources();
    if (App.IsRunning())
        return HandOver(App);

    QApplication::setApplicationName(QStringLiteral("ZamShaderEditor"));
    QApplication::setOrganizationName(QStringLiteral("Brenmoor Systems"));
    SetUpDesktopIntegration();
    RegisterCompileMetaTypes();
    ZamShaderEditorWindow Window;
    QObject::connect(&App, &CSingleApplication::FileOpenEvent, &Window, &ZamShaderEditorWindow::OnOpenFile);
    QObject::connect(&App, &CSingleApplication::MessageAvailable, &Window, &ZamShaderEditorWindow::ReceiveAppMessage);
    CStartupProbe::Install(&Window);
    Window.show();
    // The window opened the first file itself.
    for (int i = 1; i < Starts.size(); ++i)
    {
        if (QFileInfo(Starts.at(i).at(1)).isFile())
            Window.OnOpenFile(Starts.at(i).at(1));
    }
    // Typed work outlives a crash: this session's backups, and the offer of the last one's.
    CDocumentBackups Backups(Window.GetEditor());
    OfferDocumentRestore(&Window, Backups);
    // The splash image is only loaded when it is to be shown.
    CZamPreferences& Store = CGUIController::Instance().GetPreferences();
    if (Store.GetBool(CAboutBoxDialog::ShowSplashKey(), true))
    {
        CAboutBoxDialog Splash(&Window, QLatin1String(s_pApplicationText),
                               QStringLiteral(":/ZamShaderEditor/Graphics/SplashZamShaderEditor.png"), Store, false);
        Splash.Run();
    }
    return App.exec();
}
