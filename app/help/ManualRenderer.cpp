#include "ManualRenderer.h"

#include <QAbstractTextDocumentLayout>
#include <QFileInfo>
#include <QPageLayout>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QRegularExpression>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextFrame>
#include <QTextTable>
#include <QUrl>
#include <QVector>

#include <memory>

namespace
{
constexpr int kDpi = 300;
// Page margins in millimetres; the footer sits inside the bottom one.
constexpr double kMarginSide = 20.0;
constexpr double kMarginTop = 18.0;
constexpr double kMarginBottom = 12.0;
constexpr double kFooterHeight = 10.0;

const QColor kHeadingColour(0x1d, 0x3b, 0x63);
const QColor kCodeBackground(0xf2, 0xf4, 0xf7);
const QColor kRuleColour(0xb8, 0xc0, 0xcc);
const QColor kTableHeader(0xe3, 0xe9, 0xf1);

// Lengths in text formats are in screen pixels (96 per inch); the layout scales them to the
// PDF's resolution.
double Points(double dPoints)
{
    return dPoints * 96.0 / 72.0;
}

// Lengths for the painter, in the PDF's own pixels.
double DevicePoints(double dPoints)
{
    return dPoints * kDpi / 72.0;
}

double Millimetres(double dMillimetres)
{
    return dMillimetres * kDpi / 25.4;
}

QFont BodyFont(double dPointSize)
{
    QFont Font(QStringLiteral("DejaVu Sans"));
    Font.setStyleHint(QFont::SansSerif);
    Font.setPointSizeF(dPointSize);
    return Font;
}

QFont MonoFont(double dPointSize)
{
    QFont Font(QStringLiteral("DejaVu Sans Mono"));
    Font.setStyleHint(QFont::Monospace);
    Font.setFixedPitch(true);
    Font.setPointSizeF(dPointSize);
    return Font;
}

struct SHeading
{
    int iLevel = 0;
    QString Text;
};

// The heading level of a Markdown line ("# " 1, "## " 2), 0 for anything else.
int HeadingLevel(const QString& Line)
{
    if (Line.startsWith(QStringLiteral("# ")))
        return 1;
    return Line.startsWith(QStringLiteral("## ")) ? 2 : 0;
}

// Numbers the chapter ("# ") and section ("## ") headings after the title, outside code
// fences, and collects them for the contents. Returns the numbered Markdown; the line of the
// first chapter is where the contents go.
QString NumberHeadings(const QString& Markdown, QVector<SHeading>& Headings, int& iFirstChapterLine)
{
    QStringList Lines = Markdown.split(QLatin1Char('\n'));
    bool bInFence = false;
    bool bTitleSeen = false;
    int iChapter = 0;
    int iSection = 0;
    iFirstChapterLine = -1;
    for (int i = 0; i < Lines.size(); ++i)
    {
        if (Lines[i].startsWith(QStringLiteral("```")))
            bInFence = !bInFence;
        const int iLevel = bInFence ? 0 : HeadingLevel(Lines[i]);
        if (iLevel == 1 && !bTitleSeen)
        {
            bTitleSeen = true;
            continue;
        }
        if (iLevel == 0 || (iLevel == 2 && iChapter == 0))
            continue;
        if (iLevel == 1)
        {
            if (iFirstChapterLine < 0)
                iFirstChapterLine = i;
            ++iChapter;
            iSection = 0;
        }
        const QString Number =
            iLevel == 1 ? QString::number(iChapter) : QStringLiteral("%1.%2").arg(iChapter).arg(++iSection);
        Headings.append({iLevel, Number + QLatin1Char(' ') + Lines[i].mid(iLevel + 1).trimmed()});
        Lines[i] = QString(iLevel, QLatin1Char('#')) + QLatin1Char(' ') + Headings.last().Text;
    }
    return Lines.join(QLatin1Char('\n'));
}

// The contents as a Markdown chapter: a two-column table of headings and pages.
QString ContentsMarkdown(const QVector<SHeading>& Headings, const QVector<int>& Pages)
{
    QString Text = QStringLiteral("# Contents\n\n| Section | Page |\n|:---|---:|\n");
    for (int i = 0; i < Headings.size(); ++i)
    {
        QString Title = Headings[i].Text;
        Title.replace(QLatin1Char('|'), QStringLiteral("\\|"));
        Text += QStringLiteral("| %1 | %2 |\n").arg(Title).arg(i < Pages.size() ? Pages[i] : 0);
    }
    return Text + QLatin1Char('\n');
}

QString WithContents(const QString& Numbered, int iFirstChapterLine, const QString& Contents)
{
    if (iFirstChapterLine < 0)
        return Numbered + QLatin1Char('\n') + Contents;
    QStringList Lines = Numbered.split(QLatin1Char('\n'));
    Lines.insert(iFirstChapterLine, Contents);
    return Lines.join(QLatin1Char('\n'));
}

bool IsCodeBlock(const QTextBlock& Block)
{
    // A table cell right after a code block inherits its block format; it is not code.
    if (!Block.isValid() || QTextCursor(Block).currentTable())
        return false;
    const QTextBlockFormat Format = Block.blockFormat();
    return Format.hasProperty(QTextFormat::BlockCodeFence) || Format.hasProperty(QTextFormat::BlockCodeLanguage)
           || Format.nonBreakableLines();
}

// Gives the whole block one block format and one character format.
void ApplyToBlock(QTextCursor& Cursor, const QTextBlock& Block, const QTextBlockFormat& Format,
                  const QTextCharFormat& Char)
{
    Cursor.setPosition(Block.position());
    Cursor.setPosition(Block.position() + Block.length() - 1, QTextCursor::KeepAnchor);
    Cursor.setBlockFormat(Format);
    Cursor.setBlockCharFormat(Char);
    Cursor.setCharFormat(Char);
}

void StyleHeading(QTextCursor& Cursor, const QTextBlock& Block, bool bTitle, bool bFirstHeading)
{
    const int iLevel = Block.blockFormat().headingLevel();
    static const double s_adSizes[] = {0, 19, 14, 11.5, 10.5, 10, 10};
    QTextCharFormat Char;
    Char.setFont(BodyFont(bTitle ? 28 : s_adSizes[qBound(1, iLevel, 6)]));
    Char.setFontWeight(QFont::Bold);
    Char.setForeground(kHeadingColour);
    QTextBlockFormat Format = Block.blockFormat();
    Format.setTopMargin(Points(bTitle ? 150 : iLevel == 1 ? 0 : iLevel == 2 ? 16 : 10));
    Format.setBottomMargin(Points(iLevel == 1 ? 14 : 5));
    if (bTitle)
        Format.setAlignment(Qt::AlignHCenter);
    if (iLevel == 1 && !bFirstHeading)
        Format.setPageBreakPolicy(QTextFormat::PageBreak_AlwaysBefore);
    ApplyToBlock(Cursor, Block, Format, Char);
}

void StyleCode(QTextCursor& Cursor, const QTextBlock& Block)
{
    QTextBlockFormat Format = Block.blockFormat();
    Format.setBackground(kCodeBackground);
    Format.setLeftMargin(Points(6));
    Format.setTopMargin(IsCodeBlock(Block.previous()) ? 0 : Points(4));
    Format.setBottomMargin(IsCodeBlock(Block.next()) ? 0 : Points(8));
    QTextCharFormat Char;
    Char.setFont(MonoFont(8.2));
    ApplyToBlock(Cursor, Block, Format, Char);
}

// Inline code keeps its place in the sentence; it only gets the monospaced face.
void StyleInlineCode(QTextCursor& Cursor, const QTextBlock& Block)
{
    for (QTextBlock::iterator It = Block.begin(); !It.atEnd(); ++It)
    {
        const QTextFragment Fragment = It.fragment();
        if (!Fragment.isValid() || !Fragment.charFormat().fontFixedPitch())
            continue;
        QTextCharFormat Char;
        Char.setFontFamilies({QStringLiteral("DejaVu Sans Mono")});
        Char.setFontPointSize(Fragment.charFormat().fontPointSize() > 0 ? Fragment.charFormat().fontPointSize() * 0.92
                                                                        : 9.2);
        Char.setBackground(kCodeBackground);
        Cursor.setPosition(Fragment.position());
        Cursor.setPosition(Fragment.position() + Fragment.length(), QTextCursor::KeepAnchor);
        Cursor.mergeCharFormat(Char);
    }
}

void StyleParagraph(QTextCursor& Cursor, const QTextBlock& Block, bool bCentre)
{
    QTextBlockFormat Format = Block.blockFormat();
    Format.setBottomMargin(Points(Block.textList() ? 2.5 : 5));
    Format.setLineHeight(112, QTextBlockFormat::ProportionalHeight);
    if (bCentre && !Block.textList())
        Format.setAlignment(Qt::AlignHCenter);
    Cursor.setPosition(Block.position());
    Cursor.setBlockFormat(Format);
    StyleInlineCode(Cursor, Block);
}

// The first heading is the title; what follows it up to the next chapter is centred under
// it on the title page.
void StyleBlocks(QTextDocument& Doc)
{
    QTextCursor Cursor(&Doc);
    bool bTitleDone = false;
    bool bOnTitlePage = false;
    for (QTextBlock Block = Doc.begin(); Block.isValid(); Block = Block.next())
    {
        const int iLevel = Block.blockFormat().headingLevel();
        if (iLevel == 1)
        {
            bOnTitlePage = !bTitleDone;
            StyleHeading(Cursor, Block, !bTitleDone, !bTitleDone);
            bTitleDone = true;
        }
        else if (iLevel > 1)
            StyleHeading(Cursor, Block, false, false);
        else if (IsCodeBlock(Block))
            StyleCode(Cursor, Block);
        else
            StyleParagraph(Cursor, Block, bOnTitlePage);
    }
}

void SelectCell(QTextCursor& Cursor, const QTextTableCell& Cell)
{
    Cursor.setPosition(Cell.firstCursorPosition().position());
    Cursor.setPosition(Cell.lastCursorPosition().position(), QTextCursor::KeepAnchor);
}

// A table that follows a code block starts with an empty paragraph in its first cell, which
// would push that cell's text down.
void RemoveEmptyLeadingBlocks(QTextTable* pTable)
{
    for (int iColumn = 0; iColumn < pTable->columns(); ++iColumn)
    {
        const QTextTableCell Cell = pTable->cellAt(0, iColumn);
        QTextCursor Cursor = Cell.firstCursorPosition();
        while (Cursor.block().text().isEmpty() && Cursor.position() < Cell.lastCursorPosition().position())
            Cursor.deleteChar();
    }
}

void StyleTable(QTextTable* pTable, bool bContents)
{
    RemoveEmptyLeadingBlocks(pTable);
    QTextTableFormat Format = pTable->format();
    Format.setWidth(QTextLength(QTextLength::PercentageLength, 100));
    Format.setCellSpacing(0);
    Format.setCellPadding(Points(bContents ? 1.5 : 3));
    Format.setBorder(bContents ? 0 : 1.0);
    Format.setBorderBrush(kRuleColour);
    Format.setBorderStyle(QTextFrameFormat::BorderStyle_Solid);
    Format.setBorderCollapse(true);
    Format.setHeaderRowCount(bContents ? 0 : 1);
    Format.setTopMargin(Points(3));
    Format.setBottomMargin(Points(8));
    if (bContents)
        Format.setColumnWidthConstraints(
            {QTextLength(QTextLength::PercentageLength, 90), QTextLength(QTextLength::PercentageLength, 10)});
    pTable->setFormat(Format);

    QTextCursor Cursor(pTable->document());
    for (int iRow = 0; iRow < pTable->rows(); ++iRow)
    {
        for (int iColumn = 0; iColumn < pTable->columns(); ++iColumn)
        {
            QTextTableCell Cell = pTable->cellAt(iRow, iColumn);
            QTextCharFormat Char;
            Char.setFontPointSize(bContents ? 9.5 : 8.8);
            if (iRow == 0 && !bContents)
            {
                QTextCharFormat CellFormat = Cell.format();
                CellFormat.setBackground(kTableHeader);
                Cell.setFormat(CellFormat);
                Char.setFontWeight(QFont::Bold);
            }
            SelectCell(Cursor, Cell);
            Cursor.mergeCharFormat(Char);
        }
    }
}

// Contents rows of chapters are bold, section rows indented; the header row is dropped.
void StyleContentsRows(QTextTable* pTable)
{
    if (pTable->rows() > 0)
        pTable->removeRows(0, 1);
    QTextCursor Cursor(pTable->document());
    for (int iRow = 0; iRow < pTable->rows(); ++iRow)
    {
        const QTextTableCell Cell = pTable->cellAt(iRow, 0);
        const bool bChapter =
            !Cell.firstCursorPosition().block().text().section(QLatin1Char(' '), 0, 0).contains(QLatin1Char('.'));
        for (int iColumn = 0; iColumn < pTable->columns(); ++iColumn)
        {
            SelectCell(Cursor, pTable->cellAt(iRow, iColumn));
            QTextCharFormat Char;
            Char.setFontWeight(bChapter ? QFont::Bold : QFont::Normal);
            Cursor.mergeCharFormat(Char);
            QTextBlockFormat Block = Cursor.blockFormat();
            Block.setTopMargin(bChapter ? Points(3) : 0);
            if (iColumn == 0)
                Block.setLeftMargin(bChapter ? 0 : Points(14));
            Cursor.setBlockFormat(Block);
        }
    }
}

void StyleTables(QTextDocument& Doc)
{
    // Collected first: styling the contents removes blocks the walk would stand on.
    QVector<QPair<QTextTable*, bool>> Tables;
    bool bContentsNext = false;
    for (QTextBlock Block = Doc.begin(); Block.isValid(); Block = Block.next())
    {
        if (Block.blockFormat().headingLevel() == 1)
            bContentsNext = Block.text() == QStringLiteral("Contents");
        QTextTable* pTable = QTextCursor(Block).currentTable();
        if (!pTable || pTable->cellAt(0, 0).firstCursorPosition().block() != Block)
            continue;
        Tables.append({pTable, bContentsNext});
        bContentsNext = false;
    }
    for (const QPair<QTextTable*, bool>& Table : Tables)
    {
        StyleTable(Table.first, Table.second);
        if (Table.second)
            StyleContentsRows(Table.first);
    }
}

// Styled before the document has a layout and a page size: with them, every format change
// would lay the paged document out again.
std::unique_ptr<QTextDocument> TypesetDocument(const QString& Markdown, const QString& BaseFolder, QPaintDevice& Device,
                                               const QSizeF& Page)
{
    auto pDoc = std::make_unique<QTextDocument>();
    pDoc->setUndoRedoEnabled(false);
    pDoc->setDefaultFont(BodyFont(10));
    pDoc->setDocumentMargin(0);
    pDoc->setBaseUrl(QUrl::fromLocalFile(QFileInfo(BaseFolder).absoluteFilePath() + QLatin1Char('/')));
    pDoc->setMarkdown(Markdown, QTextDocument::MarkdownDialectGitHub);
    StyleBlocks(*pDoc);
    StyleTables(*pDoc);
    pDoc->documentLayout()->setPaintDevice(&Device);
    pDoc->setPageSize(Page);
    return pDoc;
}

// The page of each numbered heading, in document order.
QVector<int> HeadingPages(const QTextDocument& Doc, double dPageHeight)
{
    static const QRegularExpression s_Numbered(QStringLiteral("^\\d+(\\.\\d+)? "));
    QVector<int> Pages;
    for (QTextBlock Block = Doc.begin(); Block.isValid(); Block = Block.next())
    {
        const int iLevel = Block.blockFormat().headingLevel();
        if ((iLevel == 1 || iLevel == 2) && s_Numbered.match(Block.text()).hasMatch())
        {
            const QRectF Rect = Doc.documentLayout()->blockBoundingRect(Block);
            Pages.append(static_cast<int>((Rect.top() + Block.blockFormat().topMargin() + 1) / dPageHeight) + 1);
        }
    }
    return Pages;
}

void PaintFooter(QPainter& Painter, const QString& Title, int iPage, int iPages, double dWidth, double dBodyHeight)
{
    const double dTop = dBodyHeight + Millimetres(kFooterHeight - 6.0);
    Painter.setPen(QPen(kRuleColour, DevicePoints(0.5)));
    Painter.drawLine(QPointF(0, dTop), QPointF(dWidth, dTop));
    Painter.setPen(QColor(0x55, 0x5f, 0x6d));
    Painter.setFont(BodyFont(8));
    const QRectF Line(0, dTop + DevicePoints(3), dWidth, DevicePoints(12));
    Painter.drawText(Line, Qt::AlignLeft | Qt::AlignTop, Title);
    Painter.drawText(Line, Qt::AlignRight | Qt::AlignTop, QStringLiteral("Page %1 of %2").arg(iPage).arg(iPages));
}

bool PaintPages(QPdfWriter& Writer, QTextDocument& Doc, const QString& Title, double dBodyHeight, QString* pError)
{
    QPainter Painter;
    if (!Painter.begin(&Writer))
    {
        if (pError)
            *pError = QStringLiteral("The PDF file could not be written.");
        return false;
    }
    const double dWidth = Doc.pageSize().width();
    const int iPages = Doc.pageCount();
    for (int iPage = 0; iPage < iPages; ++iPage)
    {
        if (iPage > 0)
            Writer.newPage();
        Painter.save();
        Painter.translate(0, -iPage * dBodyHeight);
        Doc.drawContents(&Painter, QRectF(0, iPage * dBodyHeight, dWidth, dBodyHeight));
        Painter.restore();
        if (iPage > 0)
            PaintFooter(Painter, Title, iPage + 1, iPages, dWidth, dBodyHeight);
    }
    return Painter.end();
}

QString FirstHeadingText(const QString& Markdown)
{
    static const QRegularExpression s_Title(QStringLiteral("^# (.+)$"), QRegularExpression::MultilineOption);
    const QRegularExpressionMatch Match = s_Title.match(Markdown);
    return Match.hasMatch() ? Match.captured(1).trimmed() : QString();
}
} // namespace

SManualPdf RenderMarkdownToPdf(const QString& Markdown, const QString& BaseFolder, const QString& PdfPath)
{
    SManualPdf Written;
    if (Markdown.trimmed().isEmpty())
    {
        Written.Error = QStringLiteral("The manual text is empty.");
        return Written;
    }
    const QString Title = FirstHeadingText(Markdown);
    QPdfWriter Writer(PdfPath);
    Writer.setResolution(kDpi);
    Writer.setPageLayout(QPageLayout(QPageSize(QPageSize::A4), QPageLayout::Portrait,
                                     QMarginsF(kMarginSide, kMarginTop, kMarginSide, kMarginBottom),
                                     QPageLayout::Millimeter));
    Writer.setTitle(Title);
    Writer.setCreator(QStringLiteral("ZamShaderEditor manual typesetter"));

    const QRect Paint = Writer.pageLayout().paintRectPixels(kDpi);
    const double dBodyHeight = Paint.height() - Millimetres(kFooterHeight);
    const QSizeF Page(Paint.width(), dBodyHeight);

    QVector<SHeading> Headings;
    int iFirstChapterLine = -1;
    const QString Numbered = NumberHeadings(Markdown, Headings, iFirstChapterLine);

    // Typeset once with provisional page numbers to learn where the headings fall, then again
    // with the real ones; the numbers do not change the length of the contents.
    const QVector<int> Pages =
        HeadingPages(*TypesetDocument(WithContents(Numbered, iFirstChapterLine, ContentsMarkdown(Headings, {})),
                                      BaseFolder, Writer, Page),
                     dBodyHeight);
    const std::unique_ptr<QTextDocument> pDoc = TypesetDocument(
        WithContents(Numbered, iFirstChapterLine, ContentsMarkdown(Headings, Pages)), BaseFolder, Writer, Page);
    if (PaintPages(Writer, *pDoc, Title, dBodyHeight, &Written.Error))
        Written.iPages = pDoc->pageCount();
    return Written;
}
