#include "CShaderEditor.h"

#include "AtomicFile_p.h"
#include "CShaderEditPanel.h"
#include "DocumentFile.h"
#include "DocumentWatcher.h"
#include "HighlightSelections_p.h"
#include "IShaderEditorDelegate.h"
#include "NewFileName_p.h"
#include "ShaderEditComponent/compile/controller/CShaderEditController.h"
#include "ShaderEditComponent/compile/model/ZamStringConversion.h"
#include "ShaderEditComponent/compile/process/CompileCommandLine.h"
#include "ShaderEditComponent/highlighting/PaletteColours.h"
#include "WordMatches_p.h"

#include <algorithm>
#include <QDialog>
#include <QDir>
#include <QFileInfo>
#include <QMouseEvent>
#include <QPointer>
#include <QPrinter>
#include <QRegExp>
#include <QTabBar>
#include <QTabWidget>
#include <QTextBlock>
#include <QTextDocument>
#include <QVBoxLayout>

namespace
{
const char s_PanelObjectName[] = "EditPanel";
const int s_iCursorMatchDelayMs = 100;

// Absolute and clean, so one file reached through two spellings is one tab.
QString CleanFullPath(const QString& Path)
{
    return QDir::toNativeSeparators(QDir::cleanPath(QFileInfo(Path).absoluteFilePath()));
}
} // namespace

CShaderEditor::CShaderEditor(const CShaderHighlightController* pHighlight, QWidget* pParent)
    : QWidget(pParent)
    , m_pTabWidget(new QTabWidget(this))
    , m_pHighlight(pHighlight)
    , m_pWatcher(new CDocumentWatcher(this))
{
    auto* pLayout = new QVBoxLayout(this);
    pLayout->setContentsMargins(0, 0, 0, 0);
    pLayout->addWidget(m_pTabWidget);
    m_pTabWidget->setTabsClosable(true);
    m_pTabWidget->tabBar()->installEventFilter(this);

    m_CursorMatchTimer.setSingleShot(true);
    connect(m_pTabWidget, &QTabWidget::tabCloseRequested, this, &CShaderEditor::OnCloseTabRequest);
    connect(m_pTabWidget, &QTabWidget::currentChanged, this, &CShaderEditor::OnPanelChanged);
    connect(&m_CursorMatchTimer, &QTimer::timeout, this, &CShaderEditor::OnHighlightCursorMatches);
    connect(m_pWatcher, &CDocumentWatcher::FileChanged, this, &CShaderEditor::OnFileChangedOnDisk);
    connect(m_pWatcher, &CDocumentWatcher::FileDeleted, this, &CShaderEditor::OnFileDeletedOnDisk);
}

CShaderEditor::~CShaderEditor()
{
    m_pTabWidget->tabBar()->removeEventFilter(this);
}

void CShaderEditor::SetController(CShaderEditController* pController)
{
    connect(this, qOverload<const CZamTHash&>(&CShaderEditor::PanelChanged), pController,
            &CShaderEditController::OnPanelChanged);
    connect(this, &CShaderEditor::StateChanged, pController, &CShaderEditController::OnEditorStateChanged);
    connect(this, &CShaderEditor::RecompileContents, pController,
            [this, pController](const CZamTHash& PanelID, const QString& Contents, EShaderDocType eType,
                                ECompileInvocationType eInvocation)
            { pController->CompilePanelIn(SourceFolderOf(PanelID), PanelID, Contents, eType, eInvocation); });
    connect(this, &CShaderEditor::CancelCompile, pController, &CShaderEditController::OnCancelCompile);
    connect(pController, &CShaderEditController::EditorSettingsChanged, this, &CShaderEditor::OnEditorSettingsChanged);
    connect(pController, &CShaderEditController::CompilerSettingsChanged, this,
            &CShaderEditor::OnCompilerSettingsChanged);
    connect(pController, &CShaderEditController::CompileCycleCountChanged, this,
            &CShaderEditor::OnCompileCycleCountChanged);
    connect(pController, &CShaderEditController::PanelResultChanged, this,
            [this](const CZamTHash& PanelID, const SCompileResult& Shown)
            {
                for (int i = 0; i < GetTabCount(); ++i)
                    GetPanel(i)->OnPanelResultChanged(PanelID, Shown);
            });
    OnEditorSettingsChanged(pController->GetEditorSettings());
    OnCompilerSettingsChanged(pController->GetCompilerSettings(), 0);
}

int CShaderEditor::GetTabCount() const
{
    return m_pTabWidget->count();
}

CShaderEditPanel* CShaderEditor::GetPanel(int iIndex) const
{
    QWidget* pPage = m_pTabWidget->widget(iIndex);
    return pPage ? pPage->findChild<CShaderEditPanel*>(QLatin1String(s_PanelObjectName)) : nullptr;
}

CShaderEditPanel* CShaderEditor::GetCurrentPanel() const
{
    return GetPanel(m_pTabWidget->currentIndex());
}

const CZamTArray<CZamTString>& CShaderEditor::GetOpenFilenames()
{
    m_OpenFilenames.Clear();
    for (int i = 0; i < GetTabCount(); ++i)
        m_OpenFilenames.Append(GetPanel(i)->GetFilename());
    return m_OpenFilenames;
}

int CShaderEditor::IndexOfPanel(const CShaderEditPanel* pPanel) const
{
    for (int i = 0; i < GetTabCount(); ++i)
    {
        if (GetPanel(i) == pPanel)
            return i;
    }
    return -1;
}

int CShaderEditor::IndexOfFile(const QString& Path) const
{
    const CZamTString FileName = ToZamString(Path);
    for (int i = 0; i < GetTabCount(); ++i)
    {
        if (GetPanel(i)->GetFilename() == FileName)
            return i;
    }
    return -1;
}

QString CShaderEditor::SourceFolderOf(const CZamTHash& PanelID) const
{
    // Never-saved documents share one PanelID; the one typed in is the current one.
    const CShaderEditPanel* pCurrent = GetCurrentPanel();
    const CShaderEditPanel* pPanel = pCurrent && pCurrent->GetPanelID() == PanelID ? pCurrent : nullptr;
    for (int i = 0; !pPanel && i < GetTabCount(); ++i)
    {
        if (GetPanel(i)->GetPanelID() == PanelID)
            pPanel = GetPanel(i);
    }
    if (!pPanel)
        return QString();
    // A document that was never saved has no folder of its own: the user's last one stands in.
    const QString Path = ToQString(pPanel->GetFilename());
    return Path.isEmpty() ? m_LastFolder : IncludeFolderFor(Path);
}

QString CShaderEditor::DocumentName(int iIndex) const
{
    const CShaderEditPanel* pPanel = GetPanel(iIndex);
    if (!pPanel->GetFilename().IsEmpty())
        return QDir::toNativeSeparators(ToQString(pPanel->GetFilename()));
    return DocumentTitle(iIndex);
}

QString CShaderEditor::DocumentTitle(int iIndex) const
{
    return m_pTabWidget->tabBar()->tabData(iIndex).toString();
}

// The document's title and, while it is modified, the marker. The title is kept apart, so a
// name that holds a "*" itself is never mistaken for the marker.
void CShaderEditor::SetTabTitle(int iIndex, const QString& Title)
{
    m_pTabWidget->tabBar()->setTabData(iIndex, Title);
    const CShaderEditPanel* pPanel = GetPanel(iIndex);
    const bool bModified = pPanel && pPanel->IsModified();
    m_pTabWidget->setTabText(iIndex, bModified ? Title + QLatin1Char('*') : Title);
}

CShaderEditPanel* CShaderEditor::AddPanel(const QString& Title, const QString* pText, const QString& Path,
                                          EShaderDocType eType, bool bInFront)
{
    const bool bWasEmpty = GetTabCount() == 0;
    auto* pPage = new QWidget;
    auto* pLayout = new QVBoxLayout(pPage);
    pLayout->setContentsMargins(0, 0, 0, 0);
    pLayout->setSpacing(0);
    auto* pPanel = new CShaderEditPanel(pPage, ToZamString(Path), pText, eType, m_pHighlight);
    pPanel->setObjectName(QLatin1String(s_PanelObjectName));
    pLayout->addWidget(pPanel);
    pPanel->OnEditorSettingsChanged(m_EditorSettings);
    pPanel->OnCompilerSettingsChanged(m_CompilerSettings, 0);
    ConnectPanel(pPanel);
    if (!bInFront)
        pPanel->SetTextLoader([this, pPanel] { LoadTabBehind(pPanel); });

    const int iIndex = m_pTabWidget->addTab(pPage, Title);
    SetTabTitle(iIndex, Title);
    m_pTabWidget->setTabToolTip(iIndex, QDir::toNativeSeparators(Path));
    if (bInFront)
        m_pTabWidget->setCurrentIndex(iIndex);
    if (pText)
    {
        pPanel->SetContents(*pText, false);
        pPanel->MoveCursorToStart();
    }
    if (bInFront)
        pPanel->setFocus();
    if (bWasEmpty)
        emit StateChanged(2);
    emit PanelAdded(pPanel);
    return pPanel;
}

CShaderEditPanel* CShaderEditor::AddRestoredDocument(const QString& Title, const QString& Text, const QString& Path,
                                                     EShaderDocType eType, const SDocumentFormat& Format)
{
    CShaderEditPanel* pPanel = AddPanel(Title, &Text, Path, eType);
    pPanel->SetFileFormat(Format);
    pPanel->document()->setModified(true);
    // Watched from what is on disk now, as an opened file is: a file gone meanwhile is
    // reported when it comes back.
    if (!Path.isEmpty())
        m_pWatcher->Watch(Path, ReadDocumentFile(Path).Bytes);
    return pPanel;
}

void CShaderEditor::ConnectPanel(CShaderEditPanel* pPanel)
{
    connect(pPanel, &QPlainTextEdit::modificationChanged, this, &CShaderEditor::OnPanelContentChanged);
    connect(pPanel, &CShaderEditPanel::FilenameChanged, this, &CShaderEditor::OnPanelFilenameChanged);
    connect(pPanel, &QPlainTextEdit::cursorPositionChanged, this,
            qOverload<>(&CShaderEditor::OnPanelCursorPositionChanged));
    connect(pPanel->document(), &QTextDocument::cursorPositionChanged, this,
            qOverload<const QTextCursor&>(&CShaderEditor::OnPanelCursorPositionChanged));
    connect(pPanel, &CShaderEditPanel::OutdentSelection, this, &CShaderEditor::OnOutdentSelection);
    connect(pPanel, &CShaderEditPanel::RequestClose, this, &CShaderEditor::OnCloseCurrentTab);
    connect(pPanel, &CShaderEditPanel::CancelCompile, this, &CShaderEditor::CancelCompile);
    connect(pPanel, &CShaderEditPanel::RecompileContents, this, &CShaderEditor::RecompileContents);
}

void CShaderEditor::OnNewFile(EShaderDocType eType)
{
    QStringList Titles;
    for (int i = 0; i < GetTabCount(); ++i)
        Titles << DocumentTitle(i);
    const QString Text = NewFileText(eType);
    AddPanel(NextNewFileName(Titles), Text.isEmpty() ? nullptr : &Text, QString(), eType);
}

bool CShaderEditor::OnOpenFile()
{
    CZamTString Path;
    if (!m_pDelegate || !m_pDelegate->GetOpenFileName(Path))
        return true;
    return OnOpenFile(ToQString(Path));
}

bool CShaderEditor::OnOpenFile(const QString& Path)
{
    const QString FullPath = CleanFullPath(Path);
    const int iOpen = IndexOfFile(FullPath);
    if (iOpen >= 0)
    {
        m_pTabWidget->setCurrentIndex(iOpen);
        return true;
    }

    const SFileReadResult Read = ReadDocumentFile(FullPath);
    if (!Read.bOk)
    {
        if (m_pDelegate)
            m_pDelegate->ReportIOError(ToZamString(FullPath), ToZamString(Read.Error));
        return false;
    }
    const SDocumentText Document = DecodeDocument(Read.Bytes);
    m_LastFolder = QFileInfo(FullPath).absolutePath();
    CShaderEditPanel* pPanel = AddPanel(QFileInfo(FullPath).fileName(), &Document.Text, FullPath, DocType_Detect);
    TakeFile(pPanel, FullPath, Read.Bytes, Document.Format);
    emit FileOpened(FullPath);
    return true;
}

void CShaderEditor::TakeFile(CShaderEditPanel* pPanel, const QString& FullPath, const QByteArray& Bytes,
                             const SDocumentFormat& Format)
{
    // A save of ours that was cut short may have left its temporary file beside the document.
    RemoveStrayTemporaries(FullPath);
    pPanel->SetFileFormat(Format);
    m_pWatcher->Watch(FullPath, Bytes);
}

void CShaderEditor::OnOpenFilesBehind(const QStringList& Paths)
{
    qsizetype iFront = Paths.size() - 1;
    while (iFront > 0 && !QFileInfo(Paths.at(iFront)).isFile())
        --iFront;
    // A tab added with its close button leaves the bar to be laid out again for each look at
    // it while the next tabs come; the buttons come for all the session's tabs at once instead.
    QTabBar* pBar = m_pTabWidget->tabBar();
    const bool bClosable = pBar->tabsClosable();
    pBar->setTabsClosable(false);
    for (qsizetype i = 0; i < Paths.size(); ++i)
    {
        // A file that is not there is reported now, as it always was.
        if (i < iFront && QFileInfo(Paths.at(i)).isFile())
            AddTabBehind(CleanFullPath(Paths.at(i)));
        else
            OnOpenFile(Paths.at(i));
    }
    pBar->setTabsClosable(bClosable);
    // The first tab became current on its own while the others were added; it is shown now.
    if (CShaderEditPanel* pCurrent = GetCurrentPanel(); pCurrent && pCurrent->IsTextPending())
        OnPanelChanged(m_pTabWidget->currentIndex());
}

void CShaderEditor::AddTabBehind(const QString& FullPath)
{
    if (IndexOfFile(FullPath) >= 0)
        return;
    m_bAddingBehind = true;
    AddPanel(QFileInfo(FullPath).fileName(), nullptr, FullPath, DocType_Detect, false);
    m_bAddingBehind = false;
    m_LastFolder = QFileInfo(FullPath).absolutePath();
    emit FileOpened(FullPath);
}

void CShaderEditor::LoadTabBehind(CShaderEditPanel* pPanel)
{
    const QString FullPath = ToQString(pPanel->GetFilename());
    const SFileReadResult Read = ReadDocumentFile(FullPath);
    if (!Read.bOk)
    {
        // Gone or unreadable since the start: told, and the tab goes as if it had never
        // opened; both wait for the event loop, as the text may be needed in a save or a paint.
        m_Unread.insert(pPanel);
        QTimer::singleShot(0, this,
                           [this, Panel = QPointer<CShaderEditPanel>(pPanel), FullPath, Error = Read.Error]
                           {
                               if (m_pDelegate)
                                   m_pDelegate->ReportIOError(ToZamString(FullPath), ToZamString(Error));
                               const int iIndex = IndexOfPanel(Panel);
                               if (iIndex >= 0)
                                   CloseTab(iIndex);
                           });
        return;
    }
    const SDocumentText Document = DecodeDocument(Read.Bytes);
    pPanel->SetContents(Document.Text, false);
    pPanel->MoveCursorToStart();
    TakeFile(pPanel, FullPath, Read.Bytes, Document.Format);
}

void CShaderEditor::OnLoadTabsBehind()
{
    for (int i = 0; i < GetTabCount(); ++i)
    {
        CShaderEditPanel* pPanel = GetPanel(i);
        if (pPanel->IsTextPending())
        {
            pPanel->EnsureText();
            QTimer::singleShot(0, this, &CShaderEditor::OnLoadTabsBehind);
            return;
        }
    }
}

bool CShaderEditor::WritePanel(CShaderEditPanel* pPanel, const QString& Path)
{
    const QString Text = pPanel->toPlainText();
    // Its error is on its way; an empty text must not replace a file that could not be read.
    if (m_Unread.contains(pPanel))
        return false;
    const QByteArray Bytes = EncodeDocument(Text, pPanel->GetFileFormat());
    const SFileWriteResult Written = WriteDocumentFile(Path, Bytes);
    if (!Written.bOk)
    {
        if (m_pDelegate)
            m_pDelegate->ReportIOError(ToZamString(Path), ToZamString(Written.Error));
        return false;
    }
    pPanel->MarkSaved();
    m_LastFolder = QFileInfo(Path).absolutePath();
    if (ToQString(pPanel->GetFilename()) != Path)
        m_pWatcher->Unwatch(ToQString(pPanel->GetFilename()));
    m_pWatcher->Watch(Path, Bytes);
    return true;
}

bool CShaderEditor::SaveTab(int iIndex)
{
    CShaderEditPanel* pPanel = GetPanel(iIndex);
    if (!pPanel)
        return false;
    if (pPanel->GetFilename().IsEmpty())
        return SaveTabAs(iIndex);
    return WritePanel(pPanel, ToQString(pPanel->GetFilename()));
}

bool CShaderEditor::SaveTabAs(int iIndex)
{
    CShaderEditPanel* pPanel = GetPanel(iIndex);
    CZamTString Path;
    if (!pPanel || !m_pDelegate || !m_pDelegate->GetSaveFileName(Path, pPanel->GetDocumentType()))
        return false;
    const QString FullPath = QDir::toNativeSeparators(QDir::cleanPath(QFileInfo(ToQString(Path)).absoluteFilePath()));
    if (!WritePanel(pPanel, FullPath))
        return false;
    pPanel->SetFilename(ToZamString(FullPath));
    return true;
}

void CShaderEditor::OnSaveCurrentTab()
{
    SaveTab(m_pTabWidget->currentIndex());
}

void CShaderEditor::OnSaveCurrentTabAs()
{
    SaveTabAs(m_pTabWidget->currentIndex());
}

bool CShaderEditor::OnSaveAllTabs()
{
    bool bAllSaved = true;
    for (int i = 0; i < GetTabCount(); ++i)
        bAllSaved = SaveTab(i) && bAllSaved;
    return bAllSaved;
}

bool CShaderEditor::CloseTab(int iIndex)
{
    CShaderEditPanel* pPanel = GetPanel(iIndex);
    if (!pPanel)
        return false;
    if (pPanel->IsModified())
    {
        // The user decides about what is in view: Quit and Close All reach tabs in the background.
        m_pTabWidget->setCurrentIndex(iIndex);
        // Without anyone to ask, keeping the document is the only answer that loses nothing.
        const QMessageBox::StandardButton eAnswer =
            m_pDelegate ? m_pDelegate->AskSaveChanges(DocumentName(iIndex)) : QMessageBox::Cancel;
        if (eAnswer == QMessageBox::Cancel)
            return false;
        // The tab being closed is the one saved; if that fails it stays open.
        if (eAnswer == QMessageBox::Save && !SaveTab(iIndex))
            return false;
    }
    emit PanelClosed(pPanel);
    m_Unread.remove(pPanel);
    m_pWatcher->Unwatch(ToQString(pPanel->GetFilename()));
    QWidget* pPage = m_pTabWidget->widget(iIndex);
    m_pTabWidget->removeTab(iIndex);
    pPage->deleteLater();
    if (GetTabCount() == 0)
        emit StateChanged(1);
    return true;
}

void CShaderEditor::OnCloseTabRequest(int iIndex)
{
    CloseTab(iIndex);
}

void CShaderEditor::OnCloseCurrentTab()
{
    CloseTab(m_pTabWidget->currentIndex());
}

bool CShaderEditor::OnCloseAllTabs()
{
    while (GetTabCount() > 0)
    {
        if (!CloseTab(0))
            return false;
    }
    return true;
}

bool CShaderEditor::eventFilter(QObject* pWatched, QEvent* pEvent)
{
    if (pWatched == m_pTabWidget->tabBar() && pEvent->type() == QEvent::MouseButtonRelease)
    {
        const auto* pMouse = static_cast<QMouseEvent*>(pEvent);
        const int iIndex = m_pTabWidget->tabBar()->tabAt(pMouse->position().toPoint());
        if (pMouse->button() == Qt::MiddleButton && iIndex >= 0 && m_EditorSettings.bCloseTabsMiddleMouse)
        {
            // The same question as every other close: a middle click must not lose work.
            CloseTab(iIndex);
            return true;
        }
    }
    return QWidget::eventFilter(pWatched, pEvent);
}

void CShaderEditor::OnPanelContentChanged(bool)
{
    const int iIndex = IndexOfPanel(qobject_cast<CShaderEditPanel*>(sender()));
    if (iIndex >= 0)
        SetTabTitle(iIndex, DocumentTitle(iIndex));
}

void CShaderEditor::OnPanelFilenameChanged(const QString& FileName)
{
    const int iIndex = IndexOfPanel(qobject_cast<CShaderEditPanel*>(sender()));
    if (iIndex < 0)
        return;
    SetTabTitle(iIndex, QFileInfo(FileName).fileName());
    m_pTabWidget->setTabToolTip(iIndex, QDir::toNativeSeparators(FileName));
}

// Unmodified documents follow their file quietly; changes typed here are only given up when
// the user says so. A document equal to the file again is simply saved.
void CShaderEditor::OnFileChangedOnDisk(const QString& Path, const QByteArray& Bytes)
{
    const int iIndex = IndexOfFile(Path);
    if (iIndex < 0)
        return;
    CShaderEditPanel* pPanel = GetPanel(iIndex);
    const SDocumentText Disk = DecodeDocument(Bytes);
    if (Disk.Text != pPanel->toPlainText())
    {
        if (pPanel->IsModified()
            && !(m_pDelegate && m_pDelegate->AskReloadChangedFile(QDir::toNativeSeparators(Path))))
            return;
        ReloadTextKeepingView(pPanel, Disk.Text);
    }
    pPanel->SetFileFormat(Disk.Format);
    pPanel->MarkSaved();
}

// The text stays; marking it modified is what makes the user save it again.
void CShaderEditor::OnFileDeletedOnDisk(const QString& Path)
{
    const int iIndex = IndexOfFile(Path);
    if (iIndex >= 0)
        GetPanel(iIndex)->document()->setModified(true);
}

void CShaderEditor::OnPanelChanged(int iIndex)
{
    CShaderEditPanel* pPanel = GetPanel(iIndex);
    // The first tab added behind becomes current by itself for a moment.
    if (!pPanel || m_bAddingBehind)
        return;
    pPanel->EnsureText();
    emit PanelChanged(pPanel->GetPanelID());
    emit PanelChanged(static_cast<const CShaderEditPanel*>(pPanel));
    OnPanelCursorPositionChanged();
}

void CShaderEditor::OnPanelCursorPositionChanged()
{
    CShaderEditPanel* pPanel = GetCurrentPanel();
    if (!pPanel)
        return;
    const QTextCursor Cursor = pPanel->textCursor();
    emit LineChanged(Cursor.blockNumber() + 1);
    emit ColChanged(Cursor.positionInBlock() + 1);
    m_CursorMatchTimer.stop();
    if (m_EditorSettings.bPerformCursorMatch)
        m_CursorMatchTimer.start(s_iCursorMatchDelayMs);
}

void CShaderEditor::OnPanelCursorPositionChanged(const QTextCursor& Cursor)
{
    // The document reports every cursor an edit moved, each highlight's among them:
    // thousands per keystroke. Only the panel's own text cursor moving is a cursor move,
    // which its owner tells at once; finding the current tab costs more.
    const CShaderEditPanel* pOwner = CShaderEditPanel::OwnerOf(Cursor.document());
    if (pOwner && Cursor.isCopyOf(pOwner->textCursor()) && pOwner == GetCurrentPanel())
        OnPanelCursorPositionChanged();
}

void CShaderEditor::OnHighlightCursorMatches()
{
    CShaderEditPanel* pPanel = GetCurrentPanel();
    if (!pPanel || pPanel->textCursor().hasSelection())
        return;

    QTextCursor Word = pPanel->textCursor();
    const int iStartedAt = Word.position();
    Word.movePosition(QTextCursor::StartOfWord);
    Word.movePosition(QTextCursor::EndOfWord, QTextCursor::KeepAnchor);
    const QString Text = Word.selectedText();
    if (Word.position() < iStartedAt || QRegExp(QStringLiteral("[a-zA-Z_]+")).indexIn(Text) < 0)
    {
        pPanel->SetHighlightSelections(CShaderEditPanel::Highlight_CursorMatches, {});
        return;
    }

    // One pass over the panel's plain text finds what repeated QTextDocument::find calls
    // would, without taking each line out of the document.
    QTextCharFormat Format;
    Format.setBackground(ColourForPalette(m_EditorSettings.CursorMatchColour, pPanel->palette()));
    const QVector<STextRange> Matches = FindWholeWordMatches(pPanel->GetPlainText(), Text);
    pPanel->SetHighlightSelections(CShaderEditPanel::Highlight_CursorMatches,
                                   MakeHighlights(pPanel->document(), Matches, Format));
}

void CShaderEditor::OnEditorSettingsChanged(const Settings::SEditor& Settings)
{
    m_EditorSettings = Settings;
    for (int i = 0; i < GetTabCount(); ++i)
        GetPanel(i)->OnEditorSettingsChanged(Settings);
    CShaderEditPanel* pPanel = GetCurrentPanel();
    if (!pPanel)
        return;
    if (!Settings.bPerformCursorMatch)
        pPanel->SetHighlightSelections(CShaderEditPanel::Highlight_CursorMatches, {});
    if (!Settings.bHighlightFindResults)
        pPanel->SetHighlightSelections(CShaderEditPanel::Highlight_FindResults, {});
}

void CShaderEditor::OnCompilerSettingsChanged(const Settings::SCompiler& Settings, unsigned int uiChangedMask)
{
    m_CompilerSettings = Settings;
    for (int i = 0; i < GetTabCount(); ++i)
        GetPanel(i)->OnCompilerSettingsChanged(Settings, uiChangedMask);
}

void CShaderEditor::OnCompileCycleCountChanged(const CZamTHash& PanelID, const CZamTArray<int>& CycleCounts)
{
    for (int i = 0; i < GetTabCount(); ++i)
        GetPanel(i)->OnCompileCycleCountChanged(PanelID, CycleCounts);
}

void CShaderEditor::OnUndo()
{
    if (CShaderEditPanel* pPanel = GetCurrentPanel())
        pPanel->Undo();
}

void CShaderEditor::OnRedo()
{
    if (CShaderEditPanel* pPanel = GetCurrentPanel())
        pPanel->Redo();
}

void CShaderEditor::OnCut()
{
    if (CShaderEditPanel* pPanel = GetCurrentPanel())
        pPanel->cut();
}

void CShaderEditor::OnCopy()
{
    if (CShaderEditPanel* pPanel = GetCurrentPanel())
        pPanel->copy();
}

void CShaderEditor::OnPaste()
{
    if (CShaderEditPanel* pPanel = GetCurrentPanel())
        pPanel->paste();
}

void CShaderEditor::OnDelete()
{
    CShaderEditPanel* pPanel = GetCurrentPanel();
    if (!pPanel)
        return;
    QTextCursor Cursor = pPanel->textCursor();
    if (Cursor.hasSelection())
        Cursor.removeSelectedText();
    else
        Cursor.deleteChar();
    pPanel->setTextCursor(Cursor);
}

void CShaderEditor::OnSelectAll()
{
    if (CShaderEditPanel* pPanel = GetCurrentPanel())
        pPanel->selectAll();
}

void CShaderEditor::OnGotoLine(int iLine)
{
    CShaderEditPanel* pPanel = GetCurrentPanel();
    if (!pPanel || iLine < 1)
        return;
    // A message may name a line the document no longer has; the last line is the nearest.
    const QTextBlock Block = pPanel->document()->findBlockByNumber(std::min(iLine, pPanel->blockCount()) - 1);
    QTextCursor Cursor(Block);
    pPanel->setTextCursor(Cursor);
    pPanel->centerCursor();
    pPanel->setFocus(Qt::OtherFocusReason);
}

void CShaderEditor::OnPrint()
{
    CShaderEditPanel* pPanel = GetCurrentPanel();
    if (!pPanel || !m_pDelegate)
        return;
    QPrinter Printer;
    if (m_pDelegate->ShowPrintDialog(&Printer, pPanel->textCursor().hasSelection()) == QDialog::Accepted)
        pPanel->print(&Printer);
}

void CShaderEditor::OnCommentSelection()
{
    if (CShaderEditPanel* pPanel = GetCurrentPanel())
        pPanel->CommentSelection();
}

void CShaderEditor::OnUncommentSelection()
{
    if (CShaderEditPanel* pPanel = GetCurrentPanel())
        pPanel->UncommentSelection();
}

void CShaderEditor::OnIndentSelection()
{
    if (CShaderEditPanel* pPanel = GetCurrentPanel())
        pPanel->RemoveIndentFromSelection();
}

void CShaderEditor::OnOutdentSelection()
{
    if (CShaderEditPanel* pPanel = GetCurrentPanel())
        pPanel->AddIndentToSelection();
}

void CShaderEditor::OnFileTypeChanged(EShaderDocType eType)
{
    if (CShaderEditPanel* pPanel = GetCurrentPanel())
        pPanel->SetDocumentType(eType);
}

void CShaderEditor::ShowFindResults(const QList<QTextEdit::ExtraSelection>& lSelections)
{
    CShaderEditPanel* pPanel = GetCurrentPanel();
    if (pPanel && m_EditorSettings.bHighlightFindResults)
        pPanel->SetHighlightSelections(CShaderEditPanel::Highlight_FindResults, lSelections);
}

void CShaderEditor::ClearFindResults()
{
    if (CShaderEditPanel* pPanel = GetCurrentPanel())
        pPanel->SetHighlightSelections(CShaderEditPanel::Highlight_FindResults, {});
}

QPlainTextEdit* CShaderEditor::GetTextEdit()
{
    // The find bar works through the base class, past the panel's loading accessors.
    CShaderEditPanel* pPanel = GetCurrentPanel();
    if (pPanel)
        pPanel->EnsureText();
    return pPanel;
}

QTextCharFormat CShaderEditor::GetFindResultFormat() const
{
    QTextCharFormat Format;
    Format.setBackground(ColourForPalette(m_EditorSettings.FindResultColour, palette()));
    return Format;
}

QString CShaderEditor::GetSelectedText() const
{
    const CShaderEditPanel* pPanel = GetCurrentPanel();
    return pPanel ? pPanel->textCursor().selectedText() : QString();
}
