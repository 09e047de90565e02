#include "CShaderEditPanel.h"

#include "CLineNumberArea.h"
#include "CompileChange.h"
#include "CompileMarks_p.h"
#include "EditDocumentLayout_p.h"
#include "OutputViewSupport.h"
#include "ShaderEditComponent/compile/model/ZamStringConversion.h"
#include "ShaderEditComponent/highlighting/PaletteColours.h"
#include "ShaderEditComponent/highlighting/ShaderHighlightController.h"
#include "ShaderEditComponent/highlighting/ShaderHighlighter.h"
#include "TextCommands_p.h"

#include <QHelpEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>
#include <QTextBlock>
#include <QToolTip>

#include <algorithm>
#include <cmath>

namespace
{
// One indentation string per command for the whole program; see CIndentString.
CIndentString& AddIndentString()
{
    static CIndentString s_Indent;
    return s_Indent;
}

CIndentString& RemoveIndentString()
{
    static CIndentString s_Indent;
    return s_Indent;
}

// Pixel width of iChars characters as wide as a "9", rounded up the way the gutters always
// have been: the product in single precision, then the ceiling.
int GutterWidth(const QFontMetrics& Metrics, float fChars)
{
    const float fWidth = static_cast<float>(Metrics.horizontalAdvance(QLatin1Char('9'))) * fChars;
    return static_cast<int>(std::ceil(static_cast<double>(fWidth)));
}

int LineGutterWidth(const QFontMetrics& Metrics, int iDigits)
{
    return GutterWidth(Metrics, static_cast<float>(iDigits) + 0.3f);
}

int CycleGutterWidth(const QFontMetrics& Metrics, int iDigits)
{
    return GutterWidth(Metrics, static_cast<float>(iDigits) + 1.0f + 0.5f);
}

bool IsEffectType(EShaderDocType eType)
{
    return (eType & (DocType_ZFXGLSLES | DocType_ZFXGLSL)) != 0;
}

// Behind the cycle count of a line whose cost the last change moved.
QColor ChangedCountBackground(const QPalette& Palette)
{
    return IsDarkPalette(Palette) ? QColor(112, 92, 24) : QColor(255, 226, 130);
}
// The width of a message marker at the left of the line-number gutter.
constexpr int s_iMarkerWidth = 3;
} // namespace

CShaderEditPanel::CShaderEditPanel(QWidget* pParent, const CZamTString& FileName, const QString* pText,
                                   EShaderDocType eType, const CShaderHighlightController* pHighlight)
    : QPlainTextEdit(pParent)
    , m_pLineNumberArea(new CLineNumberArea(this, this, CLineNumberArea::Kind_LineNumbers))
    , m_pCycleCountArea(new CLineNumberArea(this, this, CLineNumberArea::Kind_CycleCounts))
    , m_FileName(FileName)
    , m_PanelID(ToQString(FileName).toUtf8().constData())
    , m_pMarks(std::make_unique<CCompileMarks>())
    , m_pCounts(std::make_unique<CCycleCountLines>())
{
    // A document of its own whose layout repaints only the lines a change touches.
    auto* pDocument = new QTextDocument(this);
    pDocument->setDocumentLayout(new CEditDocumentLayout(pDocument));
    setDocument(pDocument);
    m_TextMirror.Reset(pDocument);

    connect(this, &QPlainTextEdit::updateRequest, this, &CShaderEditPanel::UpdateLineNumberArea);
    connect(document(), &QTextDocument::contentsChange, this, &CShaderEditPanel::OnTextChanged);
    // A picked source line stays lit until the cursor goes to another line.
    connect(this, &QPlainTextEdit::cursorPositionChanged, this,
            [this]
            {
                if (!m_SourceLineHighlights.isEmpty()
                    && m_SourceLineHighlights.first().cursor.block() != textCursor().block())
                    SetHighlightSelections(Highlight_SourceLine, {});
            });
    OnFontChanged(pHighlight->GetFont());

    setLineWrapMode(QPlainTextEdit::NoWrap);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    setViewportMargins(LineNumberAreaWidth() + CycleCountAreaWidth(), 0, 0, 0);

    m_bTypeFromText = !pText && eType == DocType_Detect;
    if (m_bTypeFromText)
        m_eDocType = DocType_PlainText;
    else
        m_eDocType = eType == DocType_Detect ? DetectDocumentType(*pText, FileExtension()) : eType;

    m_pHighlighter = new CShaderHighlighter(document(), m_eDocType, pHighlight);
    connect(m_pHighlighter, &CShaderHighlighter::RequestDocumentType, this, &CShaderEditPanel::OnRequestDocumentType);
    // The viewport may still grow to the window's height before the first paint.
    m_pHighlighter->SetLastShownLine(
        [this]
        { return firstVisibleBlock().blockNumber() + window()->height() / std::max(1, fontMetrics().lineSpacing()) + 1; });
    connect(pHighlight, &CShaderHighlightController::SyntaxColoursChanged, m_pHighlighter,
            &QSyntaxHighlighter::rehighlight);
    connect(pHighlight, &CShaderHighlightController::FontChanged, this, &CShaderEditPanel::OnFontChanged);
}

CShaderEditPanel* CShaderEditPanel::OwnerOf(const QTextDocument* pDocument)
{
    // The panel creates its document as its child.
    return pDocument ? qobject_cast<CShaderEditPanel*>(pDocument->parent()) : nullptr;
}

CShaderEditPanel::~CShaderEditPanel()
{
    // The base class destroys the document after this part of the object is gone; none of
    // its signals may reach these slots then.
    disconnect(QPlainTextEdit::document(), nullptr, this, nullptr);
}

QString CShaderEditPanel::FileExtension() const
{
    const QString Name = ToQString(m_FileName);
    const qsizetype iDot = Name.lastIndexOf(QLatin1Char('.'));
    return iDot < 0 ? QString() : Name.mid(iDot + 1);
}

void CShaderEditPanel::SetTextLoader(std::function<void()> Load)
{
    m_LoadText = std::move(Load);
}

void CShaderEditPanel::EnsureText() const
{
    if (!m_LoadText)
        return;
    // Taken first: the load puts the text in through the accessors that come here.
    const std::function<void()> Load = std::exchange(m_LoadText, nullptr);
    Load();
}

QTextDocument* CShaderEditPanel::document() const
{
    EnsureText();
    return QPlainTextEdit::document();
}

QString CShaderEditPanel::toPlainText() const
{
    EnsureText();
    return QPlainTextEdit::toPlainText();
}

QTextCursor CShaderEditPanel::textCursor() const
{
    EnsureText();
    return QPlainTextEdit::textCursor();
}

int CShaderEditPanel::blockCount() const
{
    EnsureText();
    return QPlainTextEdit::blockCount();
}

void CShaderEditPanel::setPlainText(const QString& Text)
{
    EnsureText();
    QPlainTextEdit::setPlainText(Text);
}

void CShaderEditPanel::insertPlainText(const QString& Text)
{
    EnsureText();
    QPlainTextEdit::insertPlainText(Text);
}

const QString& CShaderEditPanel::GetPlainText() const
{
    EnsureText();
    return m_TextMirror.GetText();
}

EShaderDocType CShaderEditPanel::GetDocumentType() const
{
    // Detected from the text, for a tab that has not read its file yet.
    EnsureText();
    return m_eDocType;
}

void CShaderEditPanel::SetContents(const QString& Text, bool bDetect)
{
    EnsureText();
    const bool bTypeFromText = std::exchange(m_bTypeFromText, false);
    if (bDetect || bTypeFromText)
        m_eDocType = DetectDocumentType(Text, bDetect ? QString() : FileExtension());
    QPlainTextEdit::setPlainText(Text);
    QPlainTextEdit::document()->setModified(false);
}

void CShaderEditPanel::SetDocumentType(EShaderDocType eType)
{
    // A type chosen now is not overridden by the one the text would give.
    EnsureText();
    if (eType == m_eDocType)
        return;
    m_eDocType = eType;
    // A type that is not compiled gets no new counts or messages to replace the old ones.
    if (!IsAutoCompiledType(eType))
    {
        m_pCounts->Clear();
        m_pMarks->Clear();
        m_iEditsBehind = 0;
        ShowHighlightsNearViewport();
        m_pLineNumberArea->update();
        m_pCycleCountArea->update();
    }
    m_pHighlighter->rehighlight();
    viewport()->update();
    RequestRecompile();
}

void CShaderEditPanel::SetFilename(const CZamTString& FileName)
{
    m_FileName = FileName;
    emit FilenameChanged(ToQString(FileName));
}

bool CShaderEditPanel::IsModified() const
{
    // Known without the text: a tab that has not read its file is unmodified.
    return QPlainTextEdit::document()->isModified();
}

void CShaderEditPanel::MarkSaved()
{
    QPlainTextEdit::document()->setModified(false);
}

void CShaderEditPanel::MoveCursorToStart()
{
    moveCursor(QTextCursor::Start);
}

void CShaderEditPanel::SetHighlightSelections(int iKind, const QList<QTextEdit::ExtraSelection>& Selections)
{
    if (iKind == Highlight_CursorMatches)
        m_CursorMatchHighlights = Selections;
    else if (iKind == Highlight_FindResults)
        m_FindHighlights = Selections;
    else if (iKind == Highlight_SourceLine)
        m_SourceLineHighlights = Selections;
    ShowHighlightsNearViewport();
}

const QList<QTextEdit::ExtraSelection>& CShaderEditPanel::GetHighlightSelections(int iKind) const
{
    if (iKind == Highlight_SourceLine)
        return m_SourceLineHighlights;
    return iKind == Highlight_CursorMatches ? m_CursorMatchHighlights : m_FindHighlights;
}

std::pair<QTextBlock, QTextBlock> CShaderEditPanel::VisibleBlocks() const
{
    const QTextBlock First = firstVisibleBlock();
    QTextBlock Last = First;
    const qreal dViewportBottom = viewport()->height();
    qreal dTop = blockBoundingGeometry(First).translated(contentOffset()).top();
    for (QTextBlock Block = First; Block.isValid() && dTop <= dViewportBottom; Block = Block.next())
    {
        Last = Block;
        dTop += blockBoundingRect(Block).height();
    }
    return {First, Last};
}

void CShaderEditPanel::ShowHighlightsNearViewport()
{
    // A page above and a page below the visible lines, so that scrolling by less than a
    // page needs no new extra selections.
    const auto [First, Last] = VisibleBlocks();
    const int iPage = Last.blockNumber() - First.blockNumber() + 1;
    const QTextBlock Start = document()->findBlockByNumber(std::max(0, First.blockNumber() - iPage));
    const QTextBlock End = document()->findBlockByNumber(Last.blockNumber() + iPage + 1);
    m_HighlightWindowStart = QTextCursor(Start);
    m_HighlightWindowStart.setKeepPositionOnInsert(true);
    m_HighlightWindowEnd = End.isValid() ? QTextCursor(End) : QTextCursor();

    const int iFrom = Start.position();
    const int iTo = End.isValid() ? End.position() : document()->characterCount();
    QList<QTextEdit::ExtraSelection> Shown = m_SourceLineHighlights;
    m_pMarks->AppendSelections(iFrom, iTo, Shown);
    for (const QList<QTextEdit::ExtraSelection>* pList : {&m_FindHighlights, &m_CursorMatchHighlights})
    {
        for (const QTextEdit::ExtraSelection& Highlight : *pList)
        {
            if (Highlight.cursor.selectionEnd() >= iFrom && Highlight.cursor.selectionStart() <= iTo)
                Shown.append(Highlight);
        }
    }
    setExtraSelections(Shown);
}

// Scrolling, resizing and edits move lines into view whose highlights the text edit may
// not hold yet; each of them requests an update of the view, after which this runs.
void CShaderEditPanel::KeepHighlightsNearViewport()
{
    const bool bHasHighlights =
        !m_FindHighlights.isEmpty() || !m_CursorMatchHighlights.isEmpty() || !m_pMarks->IsEmpty();
    if (bHasHighlights && !HighlightWindowCoversViewport())
        ShowHighlightsNearViewport();
}

// Whether every visible line lies inside the part of the document whose highlights the
// text edit holds. The window's cursors follow edits, so typing keeps it valid; scrolling
// past its margin or a large edit does not.
bool CShaderEditPanel::HighlightWindowCoversViewport() const
{
    const auto [First, Last] = VisibleBlocks();
    const int iWindowStart = m_HighlightWindowStart.position();
    const bool bStartCovered = iWindowStart == 0 || iWindowStart < First.position();
    const bool bEndCovered =
        m_HighlightWindowEnd.isNull() || Last.position() + Last.length() - 1 < m_HighlightWindowEnd.position();
    return !m_HighlightWindowStart.isNull() && bStartCovered && bEndCovered;
}

void CShaderEditPanel::CommentSelection()
{
    TextCommands::CommentSelection(textCursor());
}

void CShaderEditPanel::UncommentSelection()
{
    TextCommands::UncommentSelection(textCursor());
}

void CShaderEditPanel::AddIndentToSelection()
{
    if (!textCursor().hasSelection())
        return;
    const QString Indent = m_EditorSettings.bTreatTabAsSpace ? AddIndentString().Get(m_EditorSettings.iTabSpaceSize)
                                                             : QStringLiteral("\t");
    TextCommands::AddIndent(textCursor(), Indent);
}

void CShaderEditPanel::RemoveIndentFromSelection()
{
    if (!textCursor().hasSelection())
        return;
    const bool bSpaces = m_EditorSettings.bTreatTabAsSpace;
    const QString Indent = bSpaces ? RemoveIndentString().Get(m_EditorSettings.iTabSpaceSize) : QString();
    TextCommands::RemoveIndent(textCursor(), bSpaces, Indent, m_EditorSettings.iTabSpaceSize);
}

void CShaderEditPanel::Undo()
{
    ReplayHistory(false);
}

void CShaderEditPanel::Redo()
{
    ReplayHistory(true);
}

void CShaderEditPanel::ReplayHistory(bool bRedo)
{
    m_bReplayingHistory = true;
    if (bRedo)
        redo();
    else
        undo();
    m_bReplayingHistory = false;
}

int CShaderEditPanel::LineNumberDigits() const
{
    int iDigits = 2; // one more than the largest line number needs
    for (int iLines = std::max(1, QPlainTextEdit::blockCount()); iLines >= 10; iLines /= 10)
        ++iDigits;
    return iDigits;
}

int CShaderEditPanel::LineNumberAreaWidth() const
{
    return LineGutterWidth(fontMetrics(), std::max(m_iWidestLineDigits, LineNumberDigits()));
}

int CShaderEditPanel::VisibleCycleCountDigits() const
{
    int iDigits = 1;
    const QRect Area = rect();
    // Entry 0 is never shown, so without a second entry there is nothing to measure; this
    // runs after every keystroke.
    const CZamTArray<int>& Counts = m_pCounts->GetCounts();
    QTextBlock Block = Counts.GetSize() > 1 ? firstVisibleBlock() : QTextBlock();
    qreal dTop = Block.isValid() ? blockBoundingGeometry(Block).translated(contentOffset()).top() : 0.0;
    for (; Block.isValid() && dTop <= Area.bottom(); Block = Block.next())
    {
        const qreal dBottom = dTop + blockBoundingRect(Block).height();
        const int iBlock = Block.blockNumber();
        if (Block.isVisible() && dBottom >= Area.top() && iBlock > 0 && static_cast<uint32_t>(iBlock) < Counts.GetSize()
            && Counts[iBlock] >= 0)
        {
            iDigits = std::max(iDigits, static_cast<int>(QString::number(Counts[iBlock]).size()));
        }
        dTop = dBottom;
    }
    return iDigits;
}

int CShaderEditPanel::CycleCountAreaWidth() const
{
    return CycleGutterWidth(fontMetrics(), std::max(m_iWidestCycleDigits, VisibleCycleCountDigits()));
}

int CShaderEditPanel::GutterAreaWidth(int iKind) const
{
    return iKind == CLineNumberArea::Kind_LineNumbers ? LineNumberAreaWidth() : CycleCountAreaWidth();
}

void CShaderEditPanel::PaintGutter(QPaintEvent* pEvent, int iKind)
{
    UpdateGutterGeometry();
    CLineNumberArea* pArea = iKind == CLineNumberArea::Kind_LineNumbers ? m_pLineNumberArea : m_pCycleCountArea;
    QPainter Painter(pArea);
    const QRect Dirty = pEvent->rect();
    const SGutterColours Colours = GutterColours(palette());
    Painter.fillRect(Dirty, iKind == CLineNumberArea::Kind_LineNumbers ? Colours.LineNumbers : Colours.CycleCounts);
    if (iKind == CLineNumberArea::Kind_LineNumbers)
        PaintLineMarkers(Painter, Dirty);
    else
        PaintChangedCounts(Painter, Dirty);
    // Stale counts are those of the last text that compiled.
    Painter.setPen(iKind == CLineNumberArea::Kind_CycleCounts && m_iEditsBehind > 0 ? QColor(Qt::gray) : Colours.Text);
    Painter.setFont(font());
    const int iWidth = pArea->width();
    const int iTextHeight = fontMetrics().height();

    QTextBlock Block = firstVisibleBlock();
    int iTop = static_cast<int>(blockBoundingGeometry(Block).translated(contentOffset()).top());
    while (Block.isValid() && iTop <= Dirty.bottom())
    {
        const int iBottom = iTop + static_cast<int>(blockBoundingRect(Block).height());
        const int iBlock = Block.blockNumber();
        if (Block.isVisible() && iBottom >= Dirty.top())
        {
            QString Text;
            if (iKind == CLineNumberArea::Kind_LineNumbers)
                Text = QString::number(iBlock + 1);
            else if (iBlock > 0 && m_pCounts->CountOf(iBlock) >= 0)
                Text = QString::number(m_pCounts->CountOf(iBlock));
            if (!Text.isEmpty())
                Painter.drawText(QRect(-4, iTop, iWidth, iTextHeight), Qt::AlignRight, Text);
        }
        Block = Block.next();
        iTop = iBottom;
    }
}

void CShaderEditPanel::OnCompileCycleCountChanged(const CZamTHash& PanelID, const CZamTArray<int>& CycleCounts)
{
    // A compile of its own that ended before it became a header may still report.
    if (PanelID != m_PanelID || !m_bCompiledAlone)
        return;
    m_pCounts->Set(CycleCounts);
    UpdateGutterGeometry();
    m_pCycleCountArea->repaint();
}

void CShaderEditPanel::OnPanelResultChanged(const CZamTHash& PanelID, const SCompileResult& Shown)
{
    if (PanelID != m_PanelID || !m_bCompiledAlone)
        return;
    m_pMarks->Set(document(), Shown.Messages);
    m_iEditsBehind = Shown.iEditsBehind;
    ShowHighlightsNearViewport();
    m_pLineNumberArea->update();
    m_pCycleCountArea->update();
}

const CZamTArray<int>& CShaderEditPanel::GetCycleCounts() const
{
    return m_pCounts->GetCounts();
}

bool CShaderEditPanel::HasCycleCountChanged(int iBlock) const
{
    return m_pCounts->HasChanged(iBlock);
}

QString CShaderEditPanel::GetCompileMessages(int iBlock) const
{
    return m_pMarks->ToolTipFor(iBlock);
}

void CShaderEditPanel::ShowSourceLine(int iLine)
{
    const QTextBlock Block = iLine > 0 ? document()->findBlockByNumber(iLine - 1) : QTextBlock();
    if (!Block.isValid())
    {
        SetHighlightSelections(Highlight_SourceLine, {});
        return;
    }
    const auto [First, Last] = VisibleBlocks();
    if (Block.blockNumber() < First.blockNumber() || Block.blockNumber() >= Last.blockNumber())
    {
        // A third of a page above it, like a jump in the log.
        const int iPage = std::max(1, Last.blockNumber() - First.blockNumber());
        verticalScrollBar()->setValue(std::max(0, Block.blockNumber() - iPage / 3));
    }
    QTextEdit::ExtraSelection Selection;
    Selection.cursor = QTextCursor(Block);
    Selection.format.setBackground(SourceLineBackground(palette()));
    Selection.format.setProperty(QTextFormat::FullWidthSelection, true);
    SetHighlightSelections(Highlight_SourceLine, {Selection});
}

int CShaderEditPanel::BlockAt(const QPoint& Position) const
{
    QTextBlock Block = firstVisibleBlock();
    qreal dTop = blockBoundingGeometry(Block).translated(contentOffset()).top();
    for (; Block.isValid() && dTop <= Position.y(); Block = Block.next())
    {
        const qreal dBottom = dTop + blockBoundingRect(Block).height();
        if (Position.y() < dBottom)
            return Block.blockNumber();
        dTop = dBottom;
    }
    return -1;
}

QString CShaderEditPanel::GutterToolTip(int iKind, const QPoint& Position) const
{
    const int iBlock = BlockAt(Position);
    if (iBlock < 0)
        return QString();
    if (iKind == CLineNumberArea::Kind_LineNumbers)
        return m_pMarks->ToolTipFor(iBlock);
    QStringList Lines;
    const int iCount = m_pCounts->CountOf(iBlock);
    if (m_pCounts->HasChanged(iBlock))
    {
        const int iBefore = m_pCounts->PreviousOf(iBlock);
        Lines << tr("%1 cycles, was %2")
                     .arg(iCount < 0 ? tr("no") : QString::number(iCount),
                          iBefore < 0 ? tr("none") : QString::number(iBefore));
    }
    if (m_iEditsBehind > 0 && iCount >= 0)
        Lines << DescribeStaleResult(m_iEditsBehind);
    return Lines.join(QLatin1Char('\n'));
}

void CShaderEditPanel::PaintLineMarkers(QPainter& Painter, const QRect& Dirty)
{
    if (m_pMarks->IsEmpty())
        return;
    const auto [First, Last] = VisibleBlocks();
    const QMap<int, SCompileMessage::ESeverity> Marked =
        m_pMarks->MarkedBlocks(First.position(), Last.position() + Last.length());
    for (auto Mark = Marked.cbegin(); Mark != Marked.cend(); ++Mark)
    {
        const QTextBlock Block = document()->findBlockByNumber(Mark.key());
        const QRectF Geometry = blockBoundingGeometry(Block).translated(contentOffset());
        if (!Block.isVisible() || Geometry.bottom() < Dirty.top() || Geometry.top() > Dirty.bottom())
            continue;
        QColor Colour = m_pMarks->ColourOf(Mark.value());
        Painter.fillRect(QRectF(0, Geometry.top(), s_iMarkerWidth, Geometry.height()), Colour);
        Colour.setAlpha(56);
        Painter.fillRect(QRectF(s_iMarkerWidth, Geometry.top(), m_pLineNumberArea->width(), Geometry.height()), Colour);
    }
}

void CShaderEditPanel::PaintChangedCounts(QPainter& Painter, const QRect& Dirty)
{
    const QColor Background = ChangedCountBackground(palette());
    QTextBlock Block = firstVisibleBlock();
    qreal dTop = blockBoundingGeometry(Block).translated(contentOffset()).top();
    for (; Block.isValid() && dTop <= Dirty.bottom(); Block = Block.next())
    {
        const qreal dHeight = blockBoundingRect(Block).height();
        if (Block.isVisible() && dTop + dHeight >= Dirty.top() && m_pCounts->HasChanged(Block.blockNumber()))
            Painter.fillRect(QRectF(0, dTop, m_pCycleCountArea->width(), dHeight), Background);
        dTop += dHeight;
    }
}

void CShaderEditPanel::OnFontChanged(const QFont& Font)
{
    setFont(Font);
    // Four spaces whatever the tab size setting: the setting only governs inserted spaces.
    setTabStopDistance(QFontMetricsF(Font).horizontalAdvance(QStringLiteral("    ")));
    UpdateGutterGeometry();
}

void CShaderEditPanel::OnCompilerSettingsChanged(const Settings::SCompiler& Settings, unsigned int uiChangedMask)
{
    m_bAutoCompile = Settings.bAutoCompile;
    // The marks speak in the log's colours.
    m_pMarks->SetColours(ColourForPalette(Settings.ErrorFormat.foreground().color(), palette()),
                         ColourForPalette(Settings.WarningFormat.foreground().color(), palette()));
    if (!m_pMarks->IsEmpty())
        ShowHighlightsNearViewport();
    if (uiChangedMask & Settings::CompilerSetting_CustomCompilerPath)
        RequestRecompile();
}

void CShaderEditPanel::OnEditorSettingsChanged(const Settings::SEditor& Settings)
{
    m_EditorSettings = Settings;
}

bool CShaderEditPanel::event(QEvent* pEvent)
{
    // Tab belongs to the text even when a window action uses it as its shortcut: the key
    // handler itself indents a selection of several lines.
    if (pEvent->type() == QEvent::ShortcutOverride)
    {
        const auto* pKey = static_cast<QKeyEvent*>(pEvent);
        if (pKey->key() == Qt::Key_Tab && pKey->modifiers() == Qt::NoModifier)
        {
            pEvent->accept();
            return true;
        }
    }
    return QPlainTextEdit::event(pEvent);
}

bool CShaderEditPanel::viewportEvent(QEvent* pEvent)
{
    if (pEvent->type() != QEvent::ToolTip)
        return QPlainTextEdit::viewportEvent(pEvent);
    const auto* pHelp = static_cast<QHelpEvent*>(pEvent);
    const QString Text = m_pMarks->ToolTipFor(cursorForPosition(pHelp->pos()).blockNumber());
    if (Text.isEmpty())
        QToolTip::hideText();
    else
        QToolTip::showText(pHelp->globalPos(), Text, viewport());
    return true;
}

void CShaderEditPanel::keyPressEvent(QKeyEvent* pEvent)
{
    if (pEvent->key() == Qt::Key_Tab && pEvent->modifiers() == Qt::NoModifier && HandleTab())
    {
        pEvent->accept();
        return;
    }
    if (pEvent->key() == Qt::Key_Home)
    {
        HandleHome(pEvent);
        return;
    }
    if (pEvent->matches(QKeySequence::Undo) || pEvent->matches(QKeySequence::Redo))
    {
        ReplayHistory(pEvent->matches(QKeySequence::Redo));
        pEvent->accept();
        return;
    }
    QPlainTextEdit::keyPressEvent(pEvent);
}

bool CShaderEditPanel::HandleTab()
{
    QTextCursor Cursor = textCursor();
    if (Cursor.hasSelection() && document()->findBlock(Cursor.anchor()) != document()->findBlock(Cursor.position()))
    {
        emit OutdentSelection();
        return true;
    }
    if (!m_EditorSettings.bTreatTabAsSpace)
        return false;
    Cursor.beginEditBlock();
    for (int i = 0; i < m_EditorSettings.iTabSpaceSize; ++i)
        Cursor.insertText(QStringLiteral(" "));
    Cursor.endEditBlock();
    setTextCursor(Cursor);
    return true;
}

void CShaderEditPanel::HandleHome(QKeyEvent* pEvent)
{
    QTextCursor Cursor = textCursor();
    const int iTarget = TextCommands::SmartHomePosition(Cursor);
    if (iTarget < 0)
    {
        QPlainTextEdit::keyPressEvent(pEvent);
        return;
    }
    const bool bShift = (pEvent->modifiers() & Qt::ShiftModifier) != 0;
    Cursor.setPosition(iTarget, bShift ? QTextCursor::KeepAnchor : QTextCursor::MoveAnchor);
    setTextCursor(Cursor);
    pEvent->accept();
}

void CShaderEditPanel::showEvent(QShowEvent* pEvent)
{
    EnsureText();
    QPlainTextEdit::showEvent(pEvent);
}

void CShaderEditPanel::resizeEvent(QResizeEvent* pEvent)
{
    QPlainTextEdit::resizeEvent(pEvent);
    UpdateGutterGeometry();
}

void CShaderEditPanel::paintEvent(QPaintEvent* pEvent)
{
    // Lines shown before their colouring pass came, as after the window grew, are coloured
    // before they are painted.
    if (m_pHighlighter->HasUncolouredLines())
        m_pHighlighter->ColourDownTo(VisibleBlocks().second.blockNumber());
    if (IsEffectType(m_eDocType))
        PaintEffectBackgrounds();
    QPlainTextEdit::paintEvent(pEvent);
}

void CShaderEditPanel::PaintEffectBackgrounds()
{
    QPainter Painter(viewport());
    const QPointF Offset = contentOffset();
    const qreal dViewportBottom = viewport()->height();
    for (QTextBlock Block = firstVisibleBlock(); Block.isValid(); Block = Block.next())
    {
        const QRectF Geometry = blockBoundingGeometry(Block).translated(Offset);
        // Blocks below the viewport would be clipped anyway; laying them out only costs time.
        if (Geometry.top() > dViewportBottom)
            break;
        const auto* pData = dynamic_cast<const CTextBlockZFXData*>(Block.userData());
        if (Block.isVisible() && pData)
            Painter.fillRect(Geometry, pData->GetFormat().background());
    }
}

void CShaderEditPanel::UpdateLineNumberArea(const QRect& Rect, int iDy)
{
    if (iDy != 0)
    {
        m_pLineNumberArea->scroll(0, iDy);
        m_pCycleCountArea->scroll(0, iDy);
    }
    else if (m_iDirtyGutterBottom < m_iDirtyGutterTop)
    {
        m_iDirtyGutterTop = Rect.top();
        m_iDirtyGutterBottom = Rect.bottom();
    }
    else
    {
        m_iDirtyGutterTop = std::min(m_iDirtyGutterTop, Rect.top());
        m_iDirtyGutterBottom = std::max(m_iDirtyGutterBottom, Rect.bottom());
    }
    // Thousands of highlights arrive as thousands of requests in one go; the gutters and
    // margins are brought up to date once, before the next paint.
    if (!m_bGutterUpdatePending)
    {
        m_bGutterUpdatePending = true;
        QMetaObject::invokeMethod(this, &CShaderEditPanel::FlushGutterUpdates, Qt::QueuedConnection);
    }
}

void CShaderEditPanel::FlushGutterUpdates()
{
    m_bGutterUpdatePending = false;
    if (m_iDirtyGutterTop <= m_iDirtyGutterBottom)
    {
        const int iHeight = m_iDirtyGutterBottom - m_iDirtyGutterTop + 1;
        m_pLineNumberArea->update(0, m_iDirtyGutterTop, m_pLineNumberArea->width(), iHeight);
        m_pCycleCountArea->update(0, m_iDirtyGutterTop, m_pCycleCountArea->width(), iHeight);
    }
    m_iDirtyGutterTop = 0;
    m_iDirtyGutterBottom = -1;
    UpdateGutterGeometry();
    KeepHighlightsNearViewport();
}

void CShaderEditPanel::UpdateGutterGeometry()
{
    m_iWidestLineDigits = std::max(m_iWidestLineDigits, LineNumberDigits());
    m_iWidestCycleDigits = std::max(m_iWidestCycleDigits, VisibleCycleCountDigits());
    const int iLineWidth = LineGutterWidth(fontMetrics(), m_iWidestLineDigits);
    const int iCycleWidth = CycleGutterWidth(fontMetrics(), m_iWidestCycleDigits);
    // Setting equal margins would still re-layout the viewport on every keystroke.
    if (viewportMargins().left() != iLineWidth + iCycleWidth)
        setViewportMargins(iLineWidth + iCycleWidth, 0, 0, 0);
    const QRect Contents = contentsRect();
    m_pLineNumberArea->setGeometry(Contents.left(), Contents.top(), iLineWidth, Contents.height());
    m_pCycleCountArea->setGeometry(Contents.left() + iLineWidth, Contents.top(), iCycleWidth, Contents.height());
}

void CShaderEditPanel::OnTextChanged(int iPosition, int iCharsRemoved, int iCharsAdded)
{
    m_TextMirror.Apply(iPosition, iCharsRemoved, iCharsAdded);
    FollowLineCount(iPosition);
    RequestRecompile();
    // Replaying history must not add text: that would cut off the redo steps.
    if (!m_bReplayingHistory)
        AutoIndent(iPosition, iCharsAdded);
}

// Lines added or removed take their counts along, so counts stay on their lines until the
// next result (for a long time while the text does not compile).
void CShaderEditPanel::FollowLineCount(int iPosition)
{
    const int iBlocks = QPlainTextEdit::blockCount();
    if (iBlocks == m_iBlockCount)
        return;
    // An edit at a line's start moves that line; anywhere else the lines after it.
    const QTextBlock Block = document()->findBlock(iPosition);
    const int iAt = Block.blockNumber() + (iPosition == Block.position() ? 0 : 1);
    m_pCounts->Shift(iAt, iBlocks - m_iBlockCount);
    m_iBlockCount = iBlocks;
}

void CShaderEditPanel::AutoIndent(int iPosition, int iCharsAdded)
{
    QTextCursor Probe(document());
    Probe.setPosition(std::min(iPosition, document()->characterCount() - 1));
    if (!Probe.atBlockEnd() || iCharsAdded < 1)
        return;
    const QString Blanks = TextCommands::LeadingBlanks(Probe.block());
    if (Blanks.isEmpty())
        return;
    QTextCursor Cursor = textCursor();
    const int iInsertedAt = Cursor.position();
    Cursor.beginEditBlock();
    for (const QChar Blank : Blanks)
        Cursor.insertText(QString(Blank));
    Cursor.endEditBlock();
    setTextCursor(Cursor);
    // The document does not report an edit made while it reports another one.
    m_TextMirror.Apply(iInsertedAt, 0, Cursor.position() - iInsertedAt);
}

void CShaderEditPanel::OnRequestDocumentType(CShaderHighlighter* pHighlighter)
{
    pHighlighter->SetDocumentType(m_eDocType);
}

void CShaderEditPanel::SetCompiledAlone(bool bCompiledAlone)
{
    if (bCompiledAlone == m_bCompiledAlone)
        return;
    m_bCompiledAlone = bCompiledAlone;
    if (bCompiledAlone)
    {
        RequestRecompile();
        return;
    }
    emit CancelCompile(m_PanelID);
    m_pCounts->Clear();
    m_iEditsBehind = 0;
    m_pCycleCountArea->update();
}

void CShaderEditPanel::SetIncludersMessages(const QVector<SCompileMessage>& Messages)
{
    m_pMarks->Set(document(), Messages);
    ShowHighlightsNearViewport();
    m_pLineNumberArea->update();
}

void CShaderEditPanel::RequestRecompile()
{
    // The type of a tab that has not read its file yet comes from its text.
    EnsureText();
    if (!m_bAutoCompile || !m_bCompiledAlone || !IsAutoCompiledType(m_eDocType))
        return;
    emit CancelCompile(m_PanelID);
    emit RecompileContents(m_PanelID, GetPlainText(), m_eDocType, CompileInvocation_Background);
}
