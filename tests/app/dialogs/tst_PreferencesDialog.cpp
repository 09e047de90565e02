// The preferences window with its four pages, driven through its widgets against the real
// controllers and the real preference file, including files a save must not lose.

#include "app/dialogs/CPreferencesDialog.h"
#include "DialogTestSupport.h"
#include "ShaderEditComponent/preferences/CCompilerPreferencesWidget.h"
#include "ShaderEditComponent/preferences/CEditorPreferencesWidget.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QtTest>

using namespace CompileTest;
using namespace DialogTest;

class CPreferencesDialogTest : public CDialogTest
{
    Q_OBJECT

private slots:
    void OkStoresEachPageWithItsMask();
    void CancelStoresNothing();
    void OkFollowsEveryPage();

private:
    std::unique_ptr<CPreferencesDialog> Open();
    QPushButton* Button(CPreferencesDialog& Dialog, QDialogButtonBox::StandardButton eButton);
    template <typename TWidget> TWidget* Child(CPreferencesDialog& Dialog, const char* pName)
    {
        return Dialog.findChild<TWidget*>(QLatin1String(pName));
    }
    // Waits until the compiler page has its answer; then OK says what the pages think.
    bool Settle(CPreferencesDialog& Dialog);
};

std::unique_ptr<CPreferencesDialog> CPreferencesDialogTest::Open()
{
    auto pDialog = std::make_unique<CPreferencesDialog>(nullptr, *m_Controllers.pGUI, *m_Controllers.pEdit,
                                                        *m_Controllers.pHighlight);
    // As the main window does.
    QMetaObject::invokeMethod(pDialog.get(), "OnRetranslate");
    return pDialog;
}

QPushButton* CPreferencesDialogTest::Button(CPreferencesDialog& Dialog, QDialogButtonBox::StandardButton eButton)
{
    return Child<QDialogButtonBox>(Dialog, "buttonBox")->button(eButton);
}

bool CPreferencesDialogTest::Settle(CPreferencesDialog& Dialog)
{
    return QTest::qWaitFor([&] { return !Dialog.GetCompilerPage()->IsCheckingCompiler(); }, 10000);
}

void CPreferencesDialogTest::OkStoresEachPageWithItsMask()
{
    // With nothing changed, OK still writes the three General settings under their keys.
    {
        auto pDialog = Open();
        QVERIFY(Settle(*pDialog));
        QSignalSpy Compiler(m_Controllers.pEdit.get(), &CShaderEditController::CompilerSettingsChanged);
        QSignalSpy General(m_Controllers.pGUI.get(), &CGUIController::GeneralSettingsChanged);
        Button(*pDialog, QDialogButtonBox::Ok)->click();
        QCOMPARE(pDialog->result(), int(QDialog::Accepted));
        QCOMPARE(Compiler.size(), 2);
        QCOMPARE(Compiler.at(0).at(1).toUInt(), 1u);   // the General page's flag
        QCOMPARE(Compiler.at(1).at(1).toUInt(), 506u); // the compiler page's fields
        QCOMPARE(General.size(), 1);
    }
    CZamPreferences File(QStringLiteral("ZamShaderEditor"));
    QVERIFY(File.Load());
    QCOMPARE(File.GetBool(QStringLiteral("Compiler/AutoCompile"), false), true);
    QCOMPARE(File.GetBool(QStringLiteral("Editor/CloseTabsMiddleMouse"), true), false);
    QCOMPARE(File.GetBool(QStringLiteral("General/OpenLastTabs"), true), false);
    QVERIFY(!File.HasKey(QStringLiteral("General/CustomCommand"))); // not this dialog's

    // Each check box goes to its own record; the next dialog starts from what was stored.
    auto pDialog = Open();
    QVERIFY(Settle(*pDialog));
    Child<QCheckBox>(*pDialog, "closeTabsMiddleMouseCheckbox")->setChecked(true);
    Child<QCheckBox>(*pDialog, "compileInBackgroundCheckbox")->setChecked(false);
    Child<QCheckBox>(*pDialog, "saveSessionCheckbox")->setChecked(true);
    Button(*pDialog, QDialogButtonBox::Ok)->click();
    QCOMPARE(m_Controllers.pEdit->GetCompilerSettings().bAutoCompile, false);
    QCOMPARE(m_Controllers.pEdit->GetEditorSettings().bCloseTabsMiddleMouse, true);
    QCOMPARE(m_Controllers.pGUI->GetGeneralSettings().bOpenLastTabs, true);
    auto pNext = Open();
    QVERIFY(Child<QCheckBox>(*pNext, "closeTabsMiddleMouseCheckbox")->isChecked());
    QVERIFY(!Child<QCheckBox>(*pNext, "compileInBackgroundCheckbox")->isChecked());
    QVERIFY(Child<QCheckBox>(*pNext, "saveSessionCheckbox")->isChecked());
}

void CPreferencesDialogTest::CancelStoresNothing()
{
    const QByteArray Before = ReadAll(StorePath());
    QSignalSpy Compiler(m_Controllers.pEdit.get(), &CShaderEditController::CompilerSettingsChanged);
    QSignalSpy Editor(m_Controllers.pEdit.get(), &CShaderEditController::EditorSettingsChanged);
    QSignalSpy General(m_Controllers.pGUI.get(), &CGUIController::GeneralSettingsChanged);
    QSignalSpy Colours(m_Controllers.pHighlight.get(), &CShaderHighlightController::SyntaxColoursChanged);
    auto pDialog = Open();
    QVERIFY(Settle(*pDialog));
    Child<QCheckBox>(*pDialog, "saveSessionCheckbox")->setChecked(true);
    Child<QLineEdit>(*pDialog, "TabSize")->setText(QStringLiteral("8"));
    Child<QComboBox>(*pDialog, "CompilerCombobox")->setCurrentIndex(2);
    Child<QCheckBox>(*pDialog, "BoldCheckbox")->setChecked(true);
    Button(*pDialog, QDialogButtonBox::Cancel)->click();
    QCOMPARE(pDialog->result(), int(QDialog::Rejected));
    pDialog.reset();
    QCOMPARE(Compiler.size() + Editor.size() + General.size() + Colours.size(), 0);
    QCOMPARE(ReadAll(StorePath()), Before);
}

void CPreferencesDialogTest::OkFollowsEveryPage()
{
    auto pDialog = Open();
    QPushButton* pOK = Button(*pDialog, QDialogButtonBox::Ok);
    QVERIFY(!pOK->isEnabled()); // the compiler is still being asked
    QVERIFY(Settle(*pDialog));
    QVERIFY(pOK->isEnabled());

    auto* pTabSize = Child<QLineEdit>(*pDialog, "TabSize");
    pTabSize->setText(QStringLiteral("four"));
    QVERIFY(!pOK->isEnabled());
    // Another page saying "fine" does not overrule it.
    emit pDialog->GetCompilerPage()->CompilerTempPathChanged(m_Temp.path());
    QVERIFY(!pOK->isEnabled());
    emit pDialog->GetCompilerPage()->GLSLESPathChanged(m_Temp.path()); // a folder, not a program
    QVERIFY(Settle(*pDialog));
    pTabSize->setText(QStringLiteral("4"));
    QVERIFY(!pOK->isEnabled());
    emit pDialog->GetCompilerPage()->GLSLESPathChanged(Fake("print"));
    QVERIFY(Settle(*pDialog));
    QVERIFY(pOK->isEnabled());

    // A disabled OK stores nothing.
    pTabSize->setText(QString());
    QSignalSpy Editor(m_Controllers.pEdit.get(), &CShaderEditController::EditorSettingsChanged);
    pOK->click();
    QCOMPARE(Editor.size(), 0);
    QVERIFY(pDialog->result() != QDialog::Accepted);
}

QTEST_MAIN(CPreferencesDialogTest)
#include "tst_PreferencesDialog.moc"
