#include "CEditorWindow.h"

#include "ApplicationText.h"
#include "CFindReplace.h"
#include "CShaderEditController.h"
#include "CShaderEditPanel.h"
#include "CShaderEditor.h"
#include "FileFormats.h"
#include "ShaderHighlightController.h"
#include "ZamTArray.h"

#include <QCloseEvent>
#include <QComboBox>
#include <QDockWidget>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QMenuBar>
#include <QPrintDialog>
#include <QStatusBar>

namespace
{
QString ToQString(const CZamTString& String)
{
    return QString::fromUtf8(String.GetString(), static_cast<qsizetype>(String.GetLength()));
}

CZamTString ToZamString(const QString& String)
{
    const QByteArray Bytes = String.toUtf8();
    return CZamTString(Bytes.constData(), static_cast<uint32_t>(Bytes.size()));
}

const EShaderDocType s_DocTypes[] = {
    DocType_PlainText,     DocType_GLSLESVertex, DocType_GLSLESFragment, DocType_GLSLVertex,
    DocType_GLSLFragment,  DocType_ZFXGLSLES,    DocType_ZFXGLSL,        DocType_HLSLVertex,
    DocType_HLSLFragment,  DocType_HLSLGeometry, DocType_HLSLFX,         DocType_OpenCLKernel,
};
} // namespace

CEditorWindow::CEditorWindow(QWidget* pParent)
    : QMainWindow(pParent)
    , m_pHighlight(std::make_unique<CShaderHighlightController>())
    , m_pController(std::make_unique<CShaderEditController>())
    , m_pEditor(new CShaderEditor(m_pHighlight.get(), this))
    , m_pFindReplace(new CFindReplace(this))
{
    setObjectName(QStringLiteral("MainWindow"));
    setWindowTitle(QStringLiteral("ZamShaderEditor"));
    m_pEditor->SetDelegate(this);
    m_pEditor->SetController(m_pController.get());
    setCentralWidget(m_pEditor);
    auto* pFindDock = new QDockWidget(this);
    pFindDock->setObjectName(QStringLiteral("FindDock"));
    pFindDock->setFeatures(QDockWidget::NoDockWidgetFeatures);
    pFindDock->setTitleBarWidget(new QWidget(pFindDock));
    pFindDock->setWidget(m_pFindReplace);
    addDockWidget(Qt::BottomDockWidgetArea, pFindDock);
    // The bar appears on Find or Replace; it is not in the way before.
    pFindDock->hide();
    m_pFindReplace->SetDelegate(m_pEditor);
    BuildMenus();
    BuildStatusBar();
    connect(m_pEditor, &CShaderEditor::StateChanged, this, &CEditorWindow::OnEditorStateChanged);
    connect(m_pEditor, qOverload<const CShaderEditPanel*>(&CShaderEditor::PanelChanged), this,
            &CEditorWindow::OnPanelChanged);
    OnEditorStateChanged(1);
    resize(1000, 720);
}

CEditorWindow::~CEditorWindow()
{
    // The editor's panels use both controllers; they go first.
    delete m_pFindReplace;
    delete m_pEditor;
}

bool CEditorWindow::OpenFile(const QString& Path)
{
    return m_pEditor->OnOpenFile(Path);
}

void CEditorWindow::BuildMenus()
{
    QMenu* pFile = menuBar()->addMenu(tr("File"));
    QMenu* pNew = pFile->addMenu(tr("New"));
    for (const EShaderDocType eType : s_DocTypes)
        pNew->addAction(GetDocTypeName(eType), this, [this, eType]() { m_pEditor->OnNewFile(eType); });
    pFile->addAction(tr("Open..."), QKeySequence(QKeySequence::Open), m_pEditor, qOverload<>(&CShaderEditor::OnOpenFile));
    pFile->addSeparator();
    m_DocumentActions << pFile->addAction(tr("Save"), QKeySequence(QStringLiteral("Ctrl+S")), m_pEditor,
                                          &CShaderEditor::OnSaveCurrentTab);
    m_DocumentActions << pFile->addAction(tr("Save All"), QKeySequence(QStringLiteral("Ctrl+Shift+S")), m_pEditor,
                                          &CShaderEditor::OnSaveAllTabs);
    m_DocumentActions << pFile->addAction(tr("Save As..."), m_pEditor, &CShaderEditor::OnSaveCurrentTabAs);
    pFile->addSeparator();
    m_DocumentActions << pFile->addAction(tr("Close"), m_pEditor, &CShaderEditor::OnCloseCurrentTab);
    m_DocumentActions << pFile->addAction(tr("Close All"), m_pEditor, &CShaderEditor::OnCloseAllTabs);
    pFile->addSeparator();
    m_DocumentActions << pFile->addAction(tr("Print..."), QKeySequence(QStringLiteral("Ctrl+P")), m_pEditor,
                                          &CShaderEditor::OnPrint);
    pFile->addSeparator();
    pFile->addAction(tr("Quit"), this, &QWidget::close);

    QMenu* pEdit = menuBar()->addMenu(tr("Edit"));
    m_DocumentActions << pEdit->addAction(tr("Undo"), QKeySequence(QKeySequence::Undo), m_pEditor, &CShaderEditor::OnUndo);
    m_DocumentActions << pEdit->addAction(tr("Redo"), QKeySequence(QKeySequence::Redo), m_pEditor, &CShaderEditor::OnRedo);
    pEdit->addSeparator();
    m_DocumentActions << pEdit->addAction(tr("Cut"), m_pEditor, &CShaderEditor::OnCut);
    m_DocumentActions << pEdit->addAction(tr("Copy"), m_pEditor, &CShaderEditor::OnCopy);
    m_DocumentActions << pEdit->addAction(tr("Paste"), m_pEditor, &CShaderEditor::OnPaste);
    m_DocumentActions << pEdit->addAction(tr("Delete"), m_pEditor, &CShaderEditor::OnDelete);
    m_DocumentActions << pEdit->addAction(tr("Select All"), m_pEditor, &CShaderEditor::OnSelectAll);
    pEdit->addSeparator();
    m_DocumentActions << pEdit->addAction(tr("Find"), QKeySequence(QStringLiteral("Ctrl+F")), m_pFindReplace,
                                          &CFindReplace::ShowFind);
    m_DocumentActions << pEdit->addAction(tr("Replace"), QKeySequence(QStringLiteral("Ctrl+H")), m_pFindReplace,
                                          &CFindReplace::ShowReplace);
    pEdit->addSeparator();
    m_DocumentActions << pEdit->addAction(tr("Comment Selection"), QKeySequence(QStringLiteral("Ctrl+K")), m_pEditor,
                                          &CShaderEditor::OnCommentSelection);
    m_DocumentActions << pEdit->addAction(tr("Uncomment Selection"), QKeySequence(QStringLiteral("Ctrl+U")), m_pEditor,
                                          &CShaderEditor::OnUncommentSelection);
    m_DocumentActions << pEdit->addAction(tr("Increase Indent"), m_pEditor, &CShaderEditor::OnOutdentSelection);
    m_DocumentActions << pEdit->addAction(tr("Decrease Indent"), QKeySequence(QStringLiteral("Shift+Tab")), m_pEditor,
                                          &CShaderEditor::OnIndentSelection);
}

void CEditorWindow::BuildStatusBar()
{
    auto* pLine = new QLabel(this);
    auto* pColumn = new QLabel(this);
    pLine->setMinimumWidth(40);
    pColumn->setMinimumWidth(40);
    statusBar()->addPermanentWidget(new QLabel(GetApplicationText(AppText_Line), this));
    statusBar()->addPermanentWidget(pLine);
    statusBar()->addPermanentWidget(new QLabel(GetApplicationText(AppText_Col), this));
    statusBar()->addPermanentWidget(pColumn);
    connect(m_pEditor, &CShaderEditor::LineChanged, pLine, qOverload<int>(&QLabel::setNum));
    connect(m_pEditor, &CShaderEditor::ColChanged, pColumn, qOverload<int>(&QLabel::setNum));

    m_pFileTypeSelector = new QComboBox(this);
    m_pFileTypeSelector->setObjectName(QStringLiteral("FileTypeComboSelector"));
    for (const EShaderDocType eType : s_DocTypes)
        m_pFileTypeSelector->addItem(GetDocTypeName(eType), static_cast<uint>(eType));
    statusBar()->addPermanentWidget(m_pFileTypeSelector);
    connect(m_pFileTypeSelector, &QComboBox::currentIndexChanged, this, &CEditorWindow::OnFileTypeSelectorChanged);
}

void CEditorWindow::OnEditorStateChanged(int iState)
{
    const bool bHasDocument = iState != 1;
    for (QAction* pAction : std::as_const(m_DocumentActions))
        pAction->setEnabled(bHasDocument);
    m_pFileTypeSelector->setVisible(bHasDocument);
}

void CEditorWindow::OnPanelChanged(const CShaderEditPanel* pPanel)
{
    const QSignalBlocker Blocker(m_pFileTypeSelector);
    m_pFileTypeSelector->setCurrentIndex(m_pFileTypeSelector->findData(static_cast<uint>(pPanel->GetDocumentType())));
}

void CEditorWindow::OnFileTypeSelectorChanged(int iRow)
{
    if (iRow >= 0)
        m_pEditor->OnFileTypeChanged(static_cast<EShaderDocType>(m_pFileTypeSelector->itemData(iRow).toUInt()));
}

QString CEditorWindow::FileFilter(EShaderDocType eType, QString* pSelected) const
{
    CZamTArray<SFileFormatSpecifier> Rows;
    FillFileFormats(Rows);
    const int iRow = FindFileFormatByType(Rows, eType);
    if (pSelected && iRow >= 0)
        *pSelected = Rows[static_cast<uint32_t>(iRow)].Filter;
    return BuildFileDialogFilter(Rows);
}

QMessageBox::StandardButton CEditorWindow::AskSaveChanges(const QString& FileName)
{
    QMessageBox Box(QMessageBox::Warning, windowTitle(), GetApplicationText(AppText_DocumentModified),
                    QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, this);
    Box.setInformativeText(GetApplicationText(AppText_SaveChangesQuestion));
    Box.setDetailedText(FileName);
    Box.setDefaultButton(QMessageBox::Save);
    return static_cast<QMessageBox::StandardButton>(Box.exec());
}

bool CEditorWindow::GetSaveFileName(CZamTString& FileName, EShaderDocType eType)
{
    QString Selected;
    const QString Filter = FileFilter(eType, &Selected);
    const QString Name = QFileDialog::getSaveFileName(this, GetApplicationText(AppText_SaveAs), m_LastDirectory, Filter,
                                                      &Selected);
    if (Name.isEmpty())
        return false;
    m_LastDirectory = QFileInfo(Name).path();
    FileName = ToZamString(Name);
    return true;
}

int CEditorWindow::ShowPrintDialog(QPrinter* pPrinter, bool bHasSelection)
{
    QPrintDialog Dialog(pPrinter, this);
    Dialog.setWindowTitle(GetApplicationText(AppText_PrintShader));
    Dialog.setOption(QAbstractPrintDialog::PrintSelection, bHasSelection);
    return Dialog.exec();
}

bool CEditorWindow::GetOpenFileName(CZamTString& FileName)
{
    const QString Name = QFileDialog::getOpenFileName(this, GetApplicationText(AppText_OpenFile), m_LastDirectory,
                                                      FileFilter(DocType_PlainText, nullptr));
    if (Name.isEmpty())
        return false;
    m_LastDirectory = QFileInfo(Name).path();
    FileName = ToZamString(Name);
    return true;
}

void CEditorWindow::ReportIOError(const CZamTString& Path, const CZamTString& Error)
{
    Q_UNUSED(Path);
    QMessageBox Box(QMessageBox::Critical, windowTitle(), GetApplicationText(AppText_IOError), QMessageBox::Ok);
    Box.setInformativeText(ToQString(Error));
    Box.exec();
}

void CEditorWindow::closeEvent(QCloseEvent* pEvent)
{
    if (m_pEditor->OnCloseAllTabs())
        pEvent->accept();
    else
        pEvent->ignore();
}
