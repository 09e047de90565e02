#pragma once

// Drives the real main window offscreen: a window on a private preference file, modal
// dialogs answered from the event loop, and files on disk.

#include "app/controller/CGUIController.h"
#include "app/ZamShaderEditorWindow.h"
#include "Common/ZamPreferences/ZamPreferences.h"
#include "ShaderEditComponent/compile/model/MetaTypes.h"
#include "ShaderEditComponent/CShaderEditor.h"
#include "ShaderEditComponent/CShaderEditPanel.h"
#include "tests/support/TestFiles.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPlainTextEdit>
#include <QPointer>
#include <QTemporaryDir>
#include <QtTest>
#include <QTimer>
#include <QWidget>

#include <functional>
#include <memory>

namespace WindowTest
{
using namespace TestFiles;

// A fragment shader whose lines 8 to 10 each give instructions of their own.
constexpr const char* s_pFragment = "#version 300 es\n"
                                    "precision mediump float;\n"
                                    "in vec2 vUv;\n"
                                    "uniform sampler2D uImage;\n"
                                    "out vec4 fragColor;\n"
                                    "void main()\n"
                                    "{\n"
                                    "    vec4 colour = texture(uImage, vUv);\n"
                                    "    float light = dot(colour.rgb, vec3(0.3, 0.6, 0.1));\n"
                                    "    fragColor = colour * light;\n"
                                    "}\n";

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

template <typename T> T* Child(const QWidget& Window, const char* pName)
{
    return Window.findChild<T*>(QLatin1String(pName));
}

inline QPlainTextEdit* LogOf(const QWidget& Window)
{
    return Child<QPlainTextEdit>(Window, "ShaderEditLogOutput");
}

inline QString PanelText(const ZamShaderEditorWindow& Window, int iTab)
{
    return Window.GetEditor()->GetPanel(iTab)->toPlainText();
}

// What the window tests set up alike: a preference folder made anew for every test, a folder
// for the test's files, and the process's controller on them. Test classes derive from it and
// add their test functions as private slots.
class CWindowTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        RegisterCompileMetaTypes();
        QVERIFY(m_Config.isValid() && m_Files.isValid());
    }
    // An empty preference file and a new controller on it.
    void init()
    {
        qputenv("XDG_CONFIG_HOME", m_Config.path().toUtf8());
        qputenv("XDG_STATE_HOME", m_Config.filePath(QStringLiteral("state")).toUtf8());
        m_pGUI.reset();
        QDir(m_Config.path()).removeRecursively();
        QDir().mkpath(m_Config.path());
        m_pGUI = NewGUIController();
    }

protected:
    QString NewFile(const QString& Name, const QByteArray& Text) { return WriteTestFile(m_Files.path(), Name, Text); }
    // A window on Path, shown, once its first compile has reached the log; null if it never did.
    std::unique_ptr<ZamShaderEditorWindow> OpenCompiled(const QString& Path, int iWaitMs)
    {
        auto pWindow = NewWindow(*m_pGUI, {Path});
        pWindow->resize(1280, 800);
        pWindow->show();
        if (!QTest::qWaitForWindowExposed(pWindow.get()))
            return nullptr;
        QPlainTextEdit* pLog = LogOf(*pWindow);
        if (!pLog || !QTest::qWaitFor([pLog] { return pLog->toPlainText().contains(QStringLiteral("Compile")); }, iWaitMs))
            return nullptr;
        return pWindow;
    }

    QTemporaryDir m_Config;
    QTemporaryDir m_Files;
    std::unique_ptr<CGUIController> m_pGUI;
};

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
