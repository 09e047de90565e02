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

#include <cstdio>

namespace
{
const char* const s_pApplicationText = "ZamShaderEditor 2.0";

// A later start only hands its file (or the wish to see the window) to the running one.
int HandOver(CSingleApplication& App)
{
    const QString Message = HandOverMessage(QCoreApplication::arguments());
    if (!Message.isEmpty())
        App.SendMessage(Message);
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
    if (HandOverToRunningInstance(QStringLiteral("ZamShaderEditor"), Arguments))
        return 0;

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
