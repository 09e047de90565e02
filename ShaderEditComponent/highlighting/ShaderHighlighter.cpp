#include "ShaderHighlighter.h"

#include "ShaderHighlightController.h"
#include "ShaderHighlightRules.h"

#include <QEvent>
#include <QTextBlock>
#include <QTimer>
#include <QVariant>

#include <algorithm>
#include <utility>

namespace
{
// Lines coloured in one pass of the event loop once the shown ones are.
constexpr int s_iLinesPerPass = 1000;
} // namespace

CShaderHighlighter::CShaderHighlighter(QTextDocument* pDocument, EShaderDocType eType,
                                       const CShaderHighlightController* pController)
    : QSyntaxHighlighter(pDocument)
    , m_pController(pController)
    , m_eType(eType)
{
    Q_ASSERT(m_pController);
    // The widget is only known as an object here: this library does not use widgets.
    QObject* pOwner = pDocument ? pDocument->parent() : nullptr;
    if (!m_pController->IsColouringHiddenLater() || !pOwner || !pOwner->isWidgetType()
        || pOwner->property("visible").toBool())
        return;
    // Detached, the document's changes cost nothing until it is coloured in one pass.
    setDocument(nullptr);
    m_pWaitingDocument = pDocument;
    pOwner->installEventFilter(this);
    connect(m_pController, &CShaderHighlightController::HiddenColouringDue, this,
            &CShaderHighlighter::ColourWaitingDocument);
}

bool CShaderHighlighter::eventFilter(QObject* pWatched, QEvent* pEvent)
{
    // Sent before the widget's first paint.
    if (pEvent->type() == QEvent::Show)
        ColourFromShow();
    return QSyntaxHighlighter::eventFilter(pWatched, pEvent);
}

// Top down, so a comment opened above the screen colours the shown lines right; the lines
// below wait for later passes.
void CShaderHighlighter::ColourFromShow()
{
    QTextDocument* pDocument = m_pWaitingDocument;
    const int iLast = pDocument && m_LastShownLine ? m_LastShownLine() : -1;
    if (!pDocument || iLast < 0 || iLast + 1 >= pDocument->blockCount())
    {
        ColourWaitingDocument();
        return;
    }
    m_pWaitingDocument = nullptr;
    pDocument->parent()->removeEventFilter(this);
    disconnect(m_pController, &CShaderHighlightController::HiddenColouringDue, this,
               &CShaderHighlighter::ColourWaitingDocument);
    m_Uncoloured = QTextCursor(pDocument->findBlockByNumber(iLast + 1));
    setDocument(pDocument);
    // A whole pass, or setDocument's own would follow at the next pass of the event loop;
    // the lines past the shown ones only cost a look.
    rehighlight();
    if (m_pController->IsColouringHiddenLater())
        connect(m_pController, &CShaderHighlightController::HiddenColouringDue, this,
                &CShaderHighlighter::ColourNextLines, Qt::SingleShotConnection);
    else
        QTimer::singleShot(0, this, &CShaderHighlighter::ColourNextLines);
}

bool CShaderHighlighter::ColourDownTo(int iLine)
{
    if (m_Uncoloured.isNull())
        return false;
    const QTextBlock First = document()->findBlock(m_Uncoloured.position());
    if (First.blockNumber() > iLine)
        return false;
    const QTextBlock Stop = document()->findBlockByNumber(iLine + 1);
    if (Stop.isValid())
        m_Uncoloured.setPosition(Stop.position());
    else
        m_Uncoloured = QTextCursor();
    // One call usually colours them all: each line whose state changes carries on to the next.
    for (QTextBlock Block = First; Block.isValid() && Block != Stop; Block = Block.next())
    {
        if (Block == First || Block.userState() == -1)
            rehighlightBlock(Block);
    }
    return true;
}

void CShaderHighlighter::ColourNextLines()
{
    if (m_Uncoloured.isNull())
        return;
    ColourDownTo(document()->findBlock(m_Uncoloured.position()).blockNumber() + s_iLinesPerPass - 1);
    if (!m_Uncoloured.isNull())
        QTimer::singleShot(0, this, &CShaderHighlighter::ColourNextLines);
}

// A line below the coloured ones keeps no state, so an edit above stops there and the pass
// that reaches it starts from the state the edit left.
bool CShaderHighlighter::IsWaitingForItsPass() const
{
    return !m_Uncoloured.isNull() && currentBlockState() == -1 && currentBlock().position() >= m_Uncoloured.position();
}

void CShaderHighlighter::ColourWaitingDocument()
{
    QTextDocument* pDocument = std::exchange(m_pWaitingDocument, nullptr);
    if (!pDocument)
        return;
    pDocument->parent()->removeEventFilter(this);
    disconnect(m_pController, &CShaderHighlightController::HiddenColouringDue, this,
               &CShaderHighlighter::ColourWaitingDocument);
    setDocument(pDocument);
    // Now, not at the next pass of the event loop as setDocument would.
    rehighlight();
}

int CShaderHighlighter::PreviousState() const
{
    const int iState = previousBlockState();
    return iState == -1 ? 0 : iState;
}

void CShaderHighlighter::highlightBlock(const QString& Text)
{
    if (IsWaitingForItsPass())
        return;
    emit RequestDocumentType(this);
    // Only effect lines carry a background; a line that stopped being one loses it.
    setCurrentBlockUserData(nullptr);
    const unsigned int uiType = m_eType;
    if (uiType == DocType_PlainText)
        return;
    if (uiType & HighlightMask_Code)
    {
        HighlightCode(Text, uiType);
        return;
    }
    if (!(uiType & HighlightMask_Effect))
        return;

    setCurrentBlockState(0);
    const bool bInSection = (PreviousState() & HighlightState_CodeSection) != 0;
    qsizetype iStart = 0;
    if (!bInSection)
    {
        iStart = Text.indexOf(QLatin1String("[GLSL_CODE]"));
        if (iStart < 0)
        {
            HighlightEffect(Text);
            return;
        }
    }
    if (Text.indexOf(QLatin1String("[/GLSL_CODE]"), iStart) >= 0)
    {
        // The closing line is effect syntax; the block state stays 0.
        HighlightEffect(Text);
        return;
    }
    // Inline shader code is GLSL:ES whatever the effect file's own type.
    if (bInSection)
        HighlightCode(Text, HighlightMask_GLSLES);
    else
        HighlightEffect(Text);
    setCurrentBlockState(currentBlockState() | HighlightState_CodeSection);
}

void CShaderHighlighter::HighlightCode(const QString& Text, unsigned int uiMask)
{
    m_Engine.Apply(Text, uiMask, m_Elements);
    PaintMultiLineComments(Text, uiMask);
    ApplyElements(GetCodeElement(uiMask));
}

void CShaderHighlighter::HighlightEffect(const QString& Text)
{
    const int iFirstElement = m_Engine.Apply(Text, HighlightMask_Effect, m_Elements);
    if (iFirstElement >= 0)
        setCurrentBlockUserData(new CTextBlockZFXData(m_pController->GetFormat(unsigned(iFirstElement))));
    ApplyElements(GetCodeElement(HighlightMask_Effect));
}

void CShaderHighlighter::PaintMultiLineComments(const QString& Text, unsigned int uiMask)
{
    int iState = currentBlockState();
    if (iState == -1)
        iState = 0;
    iState &= ~HighlightState_OpenComment;
    setCurrentBlockState(iState);

    const int iPrevious = previousBlockState();
    qsizetype iStart = 0;
    if (iPrevious == -1 || !(iPrevious & HighlightState_OpenComment))
        iStart = CShaderRuleEngine::FindPair(Text, 0, u'/', u'*');
    const quint8 uiValue = quint8(GetCommentElement(uiMask) + 1);
    while (iStart >= 0)
    {
        // The end is searched from the comment's start, so "/*/" closes itself.
        const qsizetype iEnd = CShaderRuleEngine::FindPair(Text, iStart, u'*', u'/');
        qsizetype iStop = Text.size();
        if (iEnd < 0)
            setCurrentBlockState(currentBlockState() | HighlightState_OpenComment);
        else
            iStop = iEnd + 2;
        std::fill(m_Elements.begin() + iStart, m_Elements.begin() + iStop, uiValue);
        if (iEnd < 0)
            break;
        iStart = CShaderRuleEngine::FindPair(Text, iStop, u'/', u'*');
    }
}

void CShaderHighlighter::ApplyElements(unsigned int uiCodeElement)
{
    // One setFormat per run of equal elements keeps the per-block cost near the floor.
    const int iSize = int(m_Elements.size());
    int iStart = 0;
    while (iStart < iSize)
    {
        const quint8 uiValue = m_Elements[size_t(iStart)];
        int iEnd = iStart + 1;
        while (iEnd < iSize && m_Elements[size_t(iEnd)] == uiValue)
            ++iEnd;
        setFormat(iStart, iEnd - iStart, m_pController->GetFormat(uiValue ? uiValue - 1u : uiCodeElement));
        iStart = iEnd;
    }
}
