#include "AllCoresDock.h"

#include "ShaderEditComponent/compile/controller/CAllCoresCompile.h"
#include "ShaderEditComponent/compile/model/ZamStringConversion.h"
#include "ShaderEditComponent/compile/process/CompileCommandLine.h"
#include "ShaderEditComponent/CShaderEditAllCoresOutput.h"
#include "ShaderEditComponent/CShaderEditor.h"
#include "ShaderEditComponent/CShaderEditPanel.h"

#include <QAction>
#include <QDockWidget>
#include <QMainWindow>
#include <QMenu>

CAllCoresDock::CAllCoresDock(QMainWindow& Window, CShaderEditor& Editor, const CShaderEditController& Controller,
                             QMenu& ViewMenu)
    : QObject(&Window)
    , m_pEditor(&Editor)
    , m_pCompile(new CAllCoresCompile(Controller, this))
{
    setObjectName(QStringLiteral("AllCoresDock"));
    // The table is made when the dock is first shown (View), not at every start.
    m_pDock = new QDockWidget(tr("All Cores"), &Window);
    m_pDock->setObjectName(QStringLiteral("DockWidget_AllCores"));
    m_pDock->toggleViewAction()->setText(tr("Show All Cores"));
    Window.addDockWidget(Qt::BottomDockWidgetArea, m_pDock);
    // A tab beside the log: the full width of the window for the table, no room taken from the text.
    if (QDockWidget* pLog = Window.findChild<QDockWidget*>(QStringLiteral("DockWidget")))
        Window.tabifyDockWidget(pLog, m_pDock);
    ViewMenu.addAction(m_pDock->toggleViewAction());
    // Off until asked for: four more compiles per keystroke are not for everyone.
    m_pDock->hide();

    connect(m_pDock, &QDockWidget::visibilityChanged, this, &CAllCoresDock::OnVisibilityChanged);
    connect(m_pDock->toggleViewAction(), &QAction::triggered, m_pDock,
            [this](bool bChecked)
            {
                if (bChecked)
                    m_pDock->raise();
            });
    connect(&Editor, &CShaderEditor::CancelCompile, m_pCompile, &CAllCoresCompile::OnCancel);
    connect(&Editor, &CShaderEditor::RecompileContents, this,
            [this](const CZamTHash& PanelID, const QString&, EShaderDocType, ECompileInvocationType)
            {
                const CShaderEditPanel* pPanel = CurrentPanel();
                if (m_pDock->isVisible() && pPanel && pPanel->GetPanelID() == PanelID)
                    CompileCurrent();
            });
    connect(&Editor, qOverload<const CZamTHash&>(&CShaderEditor::PanelChanged), this, &CAllCoresDock::ShowPanel);
    // Closing the last tab changes to no panel, which PanelChanged does not tell.
    connect(&Editor, &CShaderEditor::PanelClosed, this,
            [this](CShaderEditPanel* pPanel)
            {
                m_pCompile->OnPanelClosed(pPanel->GetPanelID());
                if (m_pView && pPanel == CurrentPanel())
                    m_pView->OnClear();
            });
    connect(m_pCompile, &CAllCoresCompile::Compiled, this,
            [this](const CZamTHash& PanelID, const SAllCoresResult& Result)
            {
                const CShaderEditPanel* pPanel = CurrentPanel();
                if (m_pView && pPanel && pPanel->GetPanelID() == PanelID)
                    m_pView->OnResult(Result);
            });
}

CAllCoresDock::~CAllCoresDock() = default;

CShaderEditAllCoresOutput* CAllCoresDock::View()
{
    if (!m_pView)
    {
        m_pView = new CShaderEditAllCoresOutput(m_pDock);
        m_pDock->setWidget(m_pView);
    }
    return m_pView;
}

const CShaderEditPanel* CAllCoresDock::CurrentPanel() const
{
    return m_pEditor ? m_pEditor->GetCurrentPanel() : nullptr;
}

void CAllCoresDock::OnVisibilityChanged(bool bVisible)
{
    const CShaderEditPanel* pPanel = CurrentPanel();
    if (!pPanel)
    {
        if (bVisible || m_pView)
            View()->OnClear();
        return;
    }
    if (!bVisible)
        m_pCompile->OnCancel(pPanel->GetPanelID());
    else
        ShowPanel(pPanel->GetPanelID());
}

void CAllCoresDock::ShowPanel(const CZamTHash& PanelID)
{
    if (!m_pDock->isVisible())
        return;
    const CShaderEditPanel* pPanel = CurrentPanel();
    if (!pPanel || pPanel->GetPanelID() != PanelID || !CAllCoresCompile::Compiles(pPanel->GetDocumentType()))
    {
        View()->OnNotCompiled();
        return;
    }
    if (const SAllCoresResult* pResult = m_pCompile->GetResult(PanelID))
        View()->OnResult(*pResult);
    else
        View()->OnClear();
    // Figures of text edited while the dock was hidden would be out of date.
    CompileCurrent();
}

void CAllCoresDock::CompileCurrent()
{
    const CShaderEditPanel* pPanel = CurrentPanel();
    if (!pPanel)
        return;
    if (!CAllCoresCompile::Compiles(pPanel->GetDocumentType()))
    {
        View()->OnNotCompiled();
        return;
    }
    // A header is compiled only as part of the documents that include it.
    if (!pPanel->IsCompiledAlone())
    {
        View()->OnClear();
        return;
    }
    View()->OnCompiling();
    m_pCompile->OnCompile(pPanel->GetPanelID(), pPanel->toPlainText(), pPanel->GetDocumentType(),
                          IncludeFolderFor(ToQString(pPanel->GetFilename())));
}
