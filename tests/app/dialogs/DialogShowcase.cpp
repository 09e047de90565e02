// Shows the dialogs over an editor with a shader open and saves a picture of the screen at each
// step, for looking at them as a user would (run under Xvfb). Not a test: a viewing aid until
// the dialogs are opened from the main window.
//
//   dialog_showcase <output folder> <shader file>

#include "../../ShaderEditComponent/FakeEditorDelegate.h"
#include "CColourSelectButton.h"
#include "CCompileDialog.h"
#include "CEditorColoursPreferencesWidget.h"
#include "CGUIController.h"
#include "CPreferencesDialog.h"
#include "CShaderEditController.h"
#include "CShaderEditor.h"
#include "ShaderHighlightController.h"
#include "ZamPreferences.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QMainWindow>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QTabWidget>
#include <QTimer>

#include <functional>

namespace
{
void Shoot(const QString& Folder, const QString& Name)
{
    QApplication::processEvents();
    QGuiApplication::primaryScreen()->grabWindow(0).save(Folder + "/" + Name + ".png");
}

// Runs the steps one after the other, 800 ms apart, so each has been painted when it is shot.
void RunSteps(QList<std::function<void()>> Steps)
{
    if (Steps.isEmpty())
    {
        QApplication::quit();
        return;
    }
    const std::function<void()> Step = Steps.takeFirst();
    Step();
    QTimer::singleShot(800, [Steps] { RunSteps(Steps); });
}
} // namespace

int main(int argc, char** argv)
{
    QApplication App(argc, argv);
    if (argc < 3)
        return 2;
    const QString Folder = QString::fromLocal8Bit(argv[1]);
    const QString Shader = QString::fromLocal8Bit(argv[2]);

    CGUIController GUI(std::make_unique<CZamPreferences>(QStringLiteral("ZamShaderEditor")));
    SShaderEditControllerOptions Options;
    Options.pPreferences = &GUI.GetPreferences();
    CShaderEditController Edit(Options);
    CShaderHighlightController Highlight(&GUI.GetPreferences());
    QMainWindow Window;
    CFakeEditorDelegate Delegate;
    CShaderEditor* pEditor = new CShaderEditor(&Highlight, &Window);
    pEditor->SetDelegate(&Delegate);
    pEditor->SetController(&Edit);
    Window.setCentralWidget(pEditor);
    Window.resize(1000, 720);
    Window.show();
    pEditor->OnOpenFile(Shader);

    CCompileDialog* pCompile = nullptr;
    CPreferencesDialog* pPreferences = nullptr;
    RunSteps({
        [&] { Shoot(Folder, "01-editor"); },
        [&]
        {
            pCompile = new CCompileDialog(&Window, GUI, Edit, CZamTHash("shown"), Shader, DocType_GLSLESFragment);
            pCompile->findChild<QCheckBox*>("CompOptGLSLES_profile")->setChecked(true);
            pCompile->OnGenerateCommandline();
            pCompile->show();
        },
        [&] { Shoot(Folder, "02-compile-builtin"); },
        [&]
        {
            pCompile->findChild<QComboBox*>("compilerTypeComboBox")->setCurrentIndex(1);
            pCompile->findChild<QPlainTextEdit*>("CompOptCust_cmd")
                ->setPlainText("glslcompiler_zc1 %i%/%f% %b% -o %o%/%b%.out -profile");
        },
        [&] { Shoot(Folder, "03-compile-custom"); },
        [&]
        {
            pCompile->reject();
            pPreferences = new CPreferencesDialog(&Window, GUI, Edit, Highlight);
            QMetaObject::invokeMethod(pPreferences, "OnRetranslate");
            pPreferences->show();
        },
        [&] { Shoot(Folder, "04-preferences-general"); },
        [&] { pPreferences->findChild<QTabWidget*>("preferencesTabWidget")->setCurrentIndex(1); },
        [&] { Shoot(Folder, "05-preferences-compiler"); },
        [&]
        {
            auto* pPath = pPreferences->findChild<QLineEdit*>("GLSLESPath");
            pPreferences->findChild<QComboBox*>("CompilerCombobox")->setCurrentIndex(4);
            pPath->setText("/bin");
            emit pPath->textEdited("/bin");
        },
        [&] { Shoot(Folder, "06-preferences-compiler-error"); },
        [&]
        {
            pPreferences->findChild<QComboBox*>("CompilerCombobox")->setCurrentIndex(0);
            pPreferences->findChild<QTabWidget*>("preferencesTabWidget")->setCurrentIndex(2);
            pPreferences->findChild<QLineEdit*>("TabSize")->setText("0x4");
        },
        [&] { Shoot(Folder, "07-preferences-editor-invalid"); },
        [&]
        {
            pPreferences->findChild<QLineEdit*>("TabSize")->setText("4");
            pPreferences->findChild<QTabWidget*>("preferencesTabWidget")->setCurrentIndex(3);
            CEditorColoursPreferencesWidget* pColours = pPreferences->GetColoursPage();
            pColours->SelectElement(HighlightElement_GLSLESKeyword);
            pColours->findChild<CColourSelectButton*>("ForegroundButton")->OnSetColour(QColor(230, 110, 0));
            pColours->findChild<QCheckBox*>("BoldCheckbox")->setChecked(true);
        },
        [&] { Shoot(Folder, "08-preferences-colours"); },
        [&] { pPreferences->findChild<QDialogButtonBox*>("buttonBox")->button(QDialogButtonBox::Ok)->click(); },
        [&] { Shoot(Folder, "09-editor-after-ok"); },
    });
    return App.exec();
}
