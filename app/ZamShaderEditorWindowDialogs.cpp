// The main window's entry points to the dialogs of the Help, Edit and Compile menus.

#include "ZamShaderEditorWindow.h"

#include "app/controller/ApplicationText.h"
#include "app/controller/CGUIController.h"
#include "app/dialogs/CCompileDialog.h"
#include "app/dialogs/CPreferencesDialog.h"
#include "app/help/CAboutBoxDialog.h"
#include "app/help/CFeedbackDialog.h"
#include "app/help/DocumentationOpener.h"
#include "ShaderEditComponent/compile/model/ZamStringConversion.h"
#include "ShaderEditComponent/CShaderEditor.h"
#include "ShaderEditComponent/CShaderEditPanel.h"

#include <QMessageBox>
#include <QPushButton>

namespace
{
const char* const s_pApplicationText = "ZamShaderEditor 2.0";
const char* const s_pSplashImage = ":/ZamShaderEditor/Graphics/SplashZamShaderEditor.png";
} // namespace

void ZamShaderEditorWindow::OnUsageDialog()
{
    OpenDocumentation(this, QStringLiteral("../Documentation/"), QStringLiteral("ZamShaderEditor.User Manual.pdf"),
                      m_GUI.GetPreferences());
}

void ZamShaderEditorWindow::OnAboutDialog()
{
    CAboutBoxDialog About(this, QLatin1String(s_pApplicationText), QLatin1String(s_pSplashImage),
                          m_GUI.GetPreferences(), true);
    About.Run();
}

void ZamShaderEditorWindow::OnFeedbackDialog()
{
    CFeedbackDialog Feedback(this, QLatin1String(s_pApplicationText));
    Feedback.exec();
}

bool ZamShaderEditorWindow::AskReloadChangedFile(const QString& FileName)
{
    QMessageBox Box(QMessageBox::Question, QLatin1String(s_pApplicationText),
                    QStringLiteral("A document with unsaved changes was changed on disk by another program."),
                    QMessageBox::Yes | QMessageBox::No, this);
    Box.setInformativeText(QStringLiteral("Read the file again and give up the changes made here?"));
    Box.setDetailedText(FileName);
    Box.button(QMessageBox::Yes)->setText(QStringLiteral("Read Again"));
    Box.button(QMessageBox::No)->setText(QStringLiteral("Keep My Changes"));
    // Keeping the typed text is the answer that loses nothing.
    Box.setDefaultButton(QMessageBox::No);
    return Box.exec() == QMessageBox::Yes;
}

void ZamShaderEditorWindow::OnPreferencesDialog()
{
    CPreferencesDialog Dialog(this, m_GUI, *m_pEditController, *m_pHighlight);
    QMetaObject::invokeMethod(&Dialog, "OnRetranslate");
    Dialog.exec();
}

void ZamShaderEditorWindow::OnCompileDialog()
{
    CShaderEditPanel* pPanel = m_pEditor->GetCurrentPanel();
    if (!pPanel)
        return;
    if (pPanel->IsModified())
    {
        QMessageBox Box(QMessageBox::Warning, QLatin1String(s_pApplicationText),
                        GetApplicationText(AppText_UnsavedChangesCompile), QMessageBox::Save | QMessageBox::Ignore);
        Box.setInformativeText(GetApplicationText(AppText_SaveChangesQuestion));
        if (Box.exec() == QMessageBox::Save)
            m_pEditor->OnSaveCurrentTab();
    }
    CCompileDialog Dialog(this, m_GUI, *m_pEditController, pPanel->GetPanelID(), ToQString(pPanel->GetFilename()),
                          pPanel->GetDocumentType());
    Dialog.exec();
}
