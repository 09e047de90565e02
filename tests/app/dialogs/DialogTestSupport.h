#pragma once

// The controllers behind the dialogs, on a preference file in the test's configuration folder,
// with the fake compiler (see tests/ShaderEditComponent/compile/fakes) as the custom compiler.

#include "app/controller/CGUIController.h"
#include "Common/ZamPreferences/ZamPreferences.h"
#include "ShaderEditComponent/compile/controller/CShaderEditController.h"
#include "ShaderEditComponent/compile/model/MetaTypes.h"
#include "ShaderEditComponent/compile/process/CompilerLocator.h"
#include "ShaderEditComponent/highlighting/ShaderHighlightController.h"
#include "tests/support/CompileTestSupport.h"

#include <QTemporaryDir>
#include <QtTest>

#include <memory>

namespace DialogTest
{
inline QString StorePath()
{
    return CZamPreferences(QStringLiteral("ZamShaderEditor")).GetFilePath();
}

// Writes the starting preference file afresh: the custom compiler Compiler (selection 4).
inline void WriteStartingFile(const QString& Compiler, const QString& TempDirectory)
{
    QFile::remove(StorePath());
    CompileTest::StoreCustomCompiler(Compiler, TempDirectory);
}

struct SControllers
{
    std::unique_ptr<CGUIController> pGUI;
    std::unique_ptr<CShaderEditController> pEdit;
    std::unique_ptr<CShaderHighlightController> pHighlight;
};

// The three controllers as the main window makes them: one store, lent to all.
inline SControllers MakeControllers(const QString& SearchPath)
{
    SControllers Made;
    Made.pGUI = std::make_unique<CGUIController>(std::make_unique<CZamPreferences>(QStringLiteral("ZamShaderEditor")));
    SShaderEditControllerOptions Options;
    Options.pPreferences = &Made.pGUI->GetPreferences();
    Options.CompilerSearchPaths = {SearchPath};
    Made.pEdit = std::make_unique<CShaderEditController>(Options);
    Made.pEdit->WaitForCompilerDetection();
    Made.pHighlight = std::make_unique<CShaderHighlightController>(&Made.pGUI->GetPreferences());
    return Made;
}

// What the dialog tests set up alike: before each test a fresh preference file with the fake
// as the custom compiler and controllers on it (no bundled compiler); after it, no compiler
// process left. Test classes derive from it and add their test functions as private slots.
class CDialogTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        RegisterCompileMetaTypes();
        QVERIFY(QFileInfo(CompileTest::Fake("print")).isExecutable());
        // A template names its program as a user would: found on the PATH.
        qputenv("PATH", QFile::encodeName(TestFiles::BinDir()) + ":" + qgetenv("PATH"));
    }
    void init()
    {
        WriteStartingFile(CompileTest::Fake("print"), m_Temp.path() + "/");
        m_Controllers = MakeControllers(m_Temp.filePath(QStringLiteral("no-bundled")));
    }
    void cleanup()
    {
        m_Controllers = SControllers();
        QTRY_COMPARE_WITH_TIMEOUT(CompileTest::Children().iLiving + CompileTest::Children().iZombies, 0, 5000);
    }

protected:
    QTemporaryDir m_Temp;
    SControllers m_Controllers;
};
} // namespace DialogTest
