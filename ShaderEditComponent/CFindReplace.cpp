#include "CFindReplace.h"

#include "HighlightSelections_p.h"
#include "IconResources.h"
#include "IFindReplaceDelagte.h"
#include "ShaderEditComponent/compile/model/UIString.h"
#include "TextSearch_p.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDockWidget>
#include <QHBoxLayout>
#include <QHideEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QShowEvent>
#include <QToolButton>
#include <QVBoxLayout>

namespace
{
enum EFindMode
{
    FindMode_Find = 0,
    FindMode_Replace = 1,
};

enum EMatchMode
{
    MatchMode_Textual = 0,
    MatchMode_RegExp = 1,
};

QHBoxLayout* RowLayout(QWidget* pRow)
{
    auto* pLayout = new QHBoxLayout(pRow);
    pLayout->setContentsMargins(0, 0, 0, 0);
    return pLayout;
}

QToolButton* IconButton(const char* pObjectName, const char* pIcon, QWidget* pParent)
{
    auto* pButton = new QToolButton(pParent);
    pButton->setObjectName(QLatin1String(pObjectName));
    pButton->setIcon(QIcon(QLatin1String(pIcon)));
    pButton->setAutoRaise(true);
    return pButton;
}
} // namespace

CFindReplace::CFindReplace(QWidget* pParent)
    : QWidget(pParent)
{
    InitIconResources();
    BuildForm();
    Retranslate();
    ConnectForm();

    m_pAdvancedWidget->setVisible(false);
    m_pReplaceWidget->setVisible(false);
    FitHeightToRows();
    setVisible(false);
}

CFindReplace::~CFindReplace() = default;

void CFindReplace::BuildForm()
{
    setObjectName(QStringLiteral("FindReplaceDialog"));
    auto* pLayout = new QVBoxLayout(this);
    pLayout->setContentsMargins(4, 2, 4, 2);
    pLayout->setSpacing(2);

    m_pFindWidget = new QWidget(this);
    m_pFindWidget->setObjectName(QStringLiteral("FindWidget"));
    QHBoxLayout* pFindRow = RowLayout(m_pFindWidget);
    m_pComboMode = new QComboBox(m_pFindWidget);
    m_pComboMode->setObjectName(QStringLiteral("ComboMode"));
    m_pComboMode->addItems({QString(), QString()});
    m_pFindTextbox = new QLineEdit(m_pFindWidget);
    m_pFindTextbox->setObjectName(QStringLiteral("FindTextbox"));
    m_pFindTextbox->setClearButtonEnabled(true);
    m_pFindPrevious = IconButton("FindPrevious", ":/ShaderEditComponent/Icons/find_previous_16.png", m_pFindWidget);
    m_pFindNext = IconButton("FindNext", ":/ShaderEditComponent/Icons/find_next_16.png", m_pFindWidget);
    m_pNumMatchesLabel = new QLabel(m_pFindWidget);
    m_pNumMatchesLabel->setObjectName(QStringLiteral("NumMatchesLabel"));
    m_pCheckAdvanced = new QCheckBox(m_pFindWidget);
    m_pCheckAdvanced->setObjectName(QStringLiteral("CheckAdvanced"));
    m_pCloseButton = IconButton("CloseButton", ":/ShaderEditComponent/Icons/find_close_16.png", m_pFindWidget);
    pFindRow->addWidget(m_pComboMode);
    pFindRow->addWidget(m_pFindTextbox, 1);
    pFindRow->addWidget(m_pFindPrevious);
    pFindRow->addWidget(m_pFindNext);
    pFindRow->addWidget(m_pNumMatchesLabel);
    pFindRow->addWidget(m_pCheckAdvanced);
    pFindRow->addWidget(m_pCloseButton);

    m_pAdvancedWidget = new QWidget(this);
    m_pAdvancedWidget->setObjectName(QStringLiteral("AdvancedWidget"));
    QHBoxLayout* pAdvancedRow = RowLayout(m_pAdvancedWidget);
    m_pMethodLabel = new QLabel(m_pAdvancedWidget);
    m_pMethodLabel->setObjectName(QStringLiteral("label"));
    m_pMatchMode = new QComboBox(m_pAdvancedWidget);
    m_pMatchMode->setObjectName(QStringLiteral("MatchMode"));
    m_pMatchMode->addItems({QString(), QString()});
    m_pMatchCase = new QCheckBox(m_pAdvancedWidget);
    m_pMatchCase->setObjectName(QStringLiteral("MatchCase"));
    m_pMatchWord = new QCheckBox(m_pAdvancedWidget);
    m_pMatchWord->setObjectName(QStringLiteral("MatchWord"));
    pAdvancedRow->addWidget(m_pMethodLabel);
    pAdvancedRow->addWidget(m_pMatchMode);
    pAdvancedRow->addWidget(m_pMatchCase);
    pAdvancedRow->addWidget(m_pMatchWord);
    pAdvancedRow->addStretch(1);

    m_pReplaceWidget = new QWidget(this);
    m_pReplaceWidget->setObjectName(QStringLiteral("ReplaceWidget"));
    QHBoxLayout* pReplaceRow = RowLayout(m_pReplaceWidget);
    m_pReplaceTextbox = new QLineEdit(m_pReplaceWidget);
    m_pReplaceTextbox->setObjectName(QStringLiteral("ReplaceTextbox"));
    m_pReplaceTextbox->setClearButtonEnabled(true);
    m_pReplaceAll = new QPushButton(m_pReplaceWidget);
    m_pReplaceAll->setObjectName(QStringLiteral("ReplaceAll"));
    m_pReplace = new QPushButton(m_pReplaceWidget);
    m_pReplace->setObjectName(QStringLiteral("Replace"));
    pReplaceRow->addWidget(m_pReplaceTextbox, 1);
    pReplaceRow->addWidget(m_pReplaceAll);
    pReplaceRow->addWidget(m_pReplace);

    pLayout->addWidget(m_pFindWidget);
    pLayout->addWidget(m_pAdvancedWidget);
    pLayout->addWidget(m_pReplaceWidget);
}

void CFindReplace::Retranslate()
{
    m_pComboMode->setItemText(FindMode_Find, UIString(UIS_FindModeFind));
    m_pComboMode->setItemText(FindMode_Replace, UIString(UIS_FindModeReplace));
    m_pFindTextbox->setPlaceholderText(UIString(UIS_FindPlaceholder));
    m_pFindPrevious->setText(tr("Previous"));
    m_pFindPrevious->setToolTip(tr("Find Previous"));
    m_pFindNext->setText(tr("Next"));
    m_pFindNext->setToolTip(tr("Find Next"));
    m_pCheckAdvanced->setText(UIString(UIS_FindAdvanced));
    m_pCloseButton->setText(UIString(UIS_FindClose));
    m_pCloseButton->setToolTip(UIString(UIS_FindClose));

    m_pMethodLabel->setText(UIString(UIS_FindMethod));
    m_pMatchMode->setItemText(MatchMode_Textual, UIString(UIS_FindMethodTextual));
    m_pMatchMode->setItemText(MatchMode_RegExp, UIString(UIS_FindMethodRegExp));
    m_pMatchCase->setText(UIString(UIS_FindMatchCase));
    m_pMatchWord->setText(UIString(UIS_FindMatchWholeWord));

    m_pReplaceTextbox->setPlaceholderText(UIString(UIS_FindReplacePlaceholder));
    m_pReplaceAll->setText(UIString(UIS_FindReplaceAll));
    m_pReplace->setText(UIString(UIS_FindModeReplace));

    // Room for a five-digit count, so the row does not shift while the user types.
    m_pNumMatchesLabel->setMinimumWidth(
        m_pNumMatchesLabel->fontMetrics().horizontalAdvance(UIString(UIS_FindMatches).arg(99999)));
}

void CFindReplace::ConnectForm()
{
    connect(m_pComboMode, &QComboBox::currentIndexChanged, this, &CFindReplace::OnModeChanged);
    connect(m_pCloseButton, &QToolButton::clicked, this, &QWidget::hide);
    connect(m_pCheckAdvanced, &QCheckBox::toggled, this, &CFindReplace::OnToggleAdvanced);
    connect(m_pFindTextbox, &QLineEdit::textChanged, this, qOverload<const QString&>(&CFindReplace::OnQuickFind));
    connect(m_pFindNext, &QToolButton::pressed, this, &CFindReplace::OnFindNext);
    connect(m_pFindPrevious, &QToolButton::pressed, this, &CFindReplace::OnFindPrev);
    connect(m_pReplace, &QPushButton::pressed, this, &CFindReplace::OnReplace);
    connect(m_pReplaceAll, &QPushButton::pressed, this, &CFindReplace::OnReplaceAll);
    connect(m_pMatchCase, &QCheckBox::clicked, this, qOverload<>(&CFindReplace::OnQuickFind));
    connect(m_pMatchWord, &QCheckBox::clicked, this, qOverload<>(&CFindReplace::OnQuickFind));
    connect(m_pMatchMode, &QComboBox::currentIndexChanged, this, qOverload<>(&CFindReplace::OnQuickFind));
    connect(m_pFindTextbox, &QLineEdit::returnPressed, this, &CFindReplace::OnReturnPressed);
}

void CFindReplace::SetDelegate(IFindReplaceDelagte* pDelegate)
{
    m_pDelegate = pDelegate;
}

void CFindReplace::ShowFind()
{
    const QString Selected = m_pDelegate ? m_pDelegate->GetSelectedText() : QString();
    // Matches never span lines, so a selection over several lines would never be found.
    if (!Selected.isEmpty() && !Selected.contains(QChar::ParagraphSeparator))
        m_pFindTextbox->setText(Selected);

    // The bar is usually the only content of a dock: showing it means showing the dock.
    QDockWidget* pDock = HostDock();
    if (pDock && pDock->isHidden())
        pDock->show();
    if (isHidden())
        show();
    m_pFindTextbox->setFocus(Qt::ShortcutFocusReason);
    m_pFindTextbox->selectAll();
}

void CFindReplace::ShowReplace()
{
    m_pComboMode->setCurrentIndex(FindMode_Replace);
    ShowFind();
}

void CFindReplace::showEvent(QShowEvent* pEvent)
{
    QWidget::showEvent(pEvent);
    if (!pEvent->spontaneous())
        emit visibilityChanged(true);
}

void CFindReplace::hideEvent(QHideEvent* pEvent)
{
    QWidget::hideEvent(pEvent);
    // A minimised window hides its children spontaneously; that is no reason to reset.
    if (pEvent->spontaneous())
        return;

    m_pNumMatchesLabel->clear();
    m_pFindTextbox->clear();
    m_pReplaceTextbox->clear();
    m_pCheckAdvanced->setChecked(false);
    m_pMatchMode->setCurrentIndex(MatchMode_Textual);
    m_pComboMode->setCurrentIndex(FindMode_Find);
    if (m_pDelegate)
        m_pDelegate->ClearFindResults();

    // The close button hides the bar itself; an empty dock would be left behind.
    QDockWidget* pDock = HostDock();
    if (isHidden() && pDock && pDock->isVisible())
        pDock->hide();

    emit visibilityChanged(false);
    emit hasBeenHidden();
}

void CFindReplace::keyPressEvent(QKeyEvent* pEvent)
{
    if (pEvent->key() != Qt::Key_Escape || pEvent->modifiers() != Qt::NoModifier)
    {
        QWidget::keyPressEvent(pEvent);
        return;
    }
    QPlainTextEdit* pEdit = SearchedEdit();
    hide();
    if (pEdit)
        pEdit->setFocus(Qt::OtherFocusReason);
    pEvent->accept();
}

void CFindReplace::OnToggleAdvanced(bool bShow)
{
    ShowRow(m_pAdvancedWidget, bShow);
    // The row's options come into force or go out of it: the count must say so.
    if (isVisible())
        OnQuickFind();
}

void CFindReplace::OnModeChanged(int iIndex)
{
    ShowRow(m_pReplaceWidget, iIndex == FindMode_Replace);
}

void CFindReplace::ShowRow(QWidget* pRow, bool bShow)
{
    pRow->setVisible(bShow);
    FitHeightToRows();
}

// The bar's maximum height follows its visible rows, so a dock holding it grows and
// shrinks with them and never keeps empty space.
void CFindReplace::FitHeightToRows()
{
    layout()->invalidate();
    setMaximumHeight(layout()->totalSizeHint().height());
}

void CFindReplace::OnFindMatches(int iCount)
{
    m_pNumMatchesLabel->setText(UIString(UIS_FindMatches).arg(iCount));
}

void CFindReplace::OnQuickFind(const QString& Text)
{
    Search(Text, ControlFlags() | FindFlag_FindAll);
}

void CFindReplace::OnQuickFind()
{
    OnQuickFind(m_pFindTextbox->text());
}

void CFindReplace::OnFindNext()
{
    Search(m_pFindTextbox->text(), ControlFlags() | FindFlag_Forward);
}

void CFindReplace::OnFindPrev()
{
    Search(m_pFindTextbox->text(), ControlFlags() | FindFlag_Backward);
}

void CFindReplace::OnReturnPressed()
{
    OnFindNext();
}

void CFindReplace::OnReplace()
{
    QPlainTextEdit* pEdit = SearchedEdit();
    if (!pEdit)
        return;
    // Whatever is selected is replaced, match or not: the user chose it.
    QTextCursor Cursor = pEdit->textCursor();
    if (Cursor.hasSelection())
    {
        Cursor.insertText(m_pReplaceTextbox->text());
        pEdit->setTextCursor(Cursor);
    }
    OnFindNext();
    // The count and highlights describe the text as it is now.
    OnQuickFind();
}

void CFindReplace::OnReplaceAll()
{
    QPlainTextEdit* pEdit = SearchedEdit();
    if (!pEdit)
        return;
    const CTextSearch Query(m_pFindTextbox->text(), ControlFlags() | FindFlag_Forward);
    ShowSearchError(Query);
    if (!Query.IsValid())
        return;
    // Every highlighted match is about to go; dropping the highlights first also spares
    // the document from moving thousands of highlight cursors on every replacement.
    m_pDelegate->ClearFindResults();
    ReplaceAllMatches(Query, m_pReplaceTextbox->text(), pEdit->textCursor());
    OnQuickFind();
}

unsigned int CFindReplace::ControlFlags() const
{
    if (!m_pCheckAdvanced->isChecked())
        return FindFlag_Textual;
    unsigned int uiFlags = m_pMatchMode->currentIndex() == MatchMode_RegExp ? FindFlag_RegExp : FindFlag_Textual;
    if (m_pMatchCase->isChecked())
        uiFlags |= FindFlag_MatchCase;
    if (m_pMatchWord->isChecked())
        uiFlags |= FindFlag_WholeWords;
    return uiFlags;
}

QPlainTextEdit* CFindReplace::SearchedEdit() const
{
    return m_pDelegate ? m_pDelegate->GetTextEdit() : nullptr;
}

bool CFindReplace::Search(const QString& Text, unsigned int uiFlags)
{
    QPlainTextEdit* pEdit = SearchedEdit();
    if (!pEdit)
        return false;
    const CTextSearch Query(Text, uiFlags);
    ShowSearchError(Query);

    if (uiFlags & FindFlag_FindAll)
    {
        if (Text.isEmpty())
        {
            // Nothing to look for: no count, and no highlights of an earlier text.
            m_pNumMatchesLabel->clear();
            m_pDelegate->ClearFindResults();
            return false;
        }
        return HighlightAll(pEdit, Query);
    }
    const QTextCursor Found = Query.FindWithWrap(pEdit->document(), pEdit->textCursor());
    if (Found.isNull())
        return false;
    pEdit->setTextCursor(Found);
    return true;
}

bool CFindReplace::HighlightAll(QPlainTextEdit* pEdit, const CTextSearch& Search)
{
    const QVector<STextRange> Matches = Search.FindAll(pEdit->document());
    OnFindMatches(static_cast<int>(Matches.size()));
    // Without a match the highlights of the previous search stay, so the user still sees
    // where the last text that matched was.
    if (Matches.isEmpty())
        return false;

    m_pDelegate->ShowFindResults(MakeHighlights(pEdit->document(), Matches, m_pDelegate->GetFindResultFormat()));
    return true;
}

void CFindReplace::ShowSearchError(const CTextSearch& Search)
{
    m_pFindTextbox->setToolTip(Search.GetErrorString());
}

QDockWidget* CFindReplace::HostDock() const
{
    return qobject_cast<QDockWidget*>(parentWidget());
}
