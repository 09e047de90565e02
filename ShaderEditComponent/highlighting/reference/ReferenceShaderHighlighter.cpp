#include "ReferenceShaderHighlighter.h"

#include "ShaderEditComponent/highlighting/ShaderHighlightController.h"
#include "ShaderEditComponent/highlighting/ShaderHighlighter.h"
#include "ShaderEditComponent/highlighting/ShaderHighlightRules.h"

namespace
{
QRegExp MakeExpression(const char* pPattern)
{
    return QRegExp(QString::fromLatin1(pPattern), Qt::CaseSensitive, QRegExp::RegExp);
}

// Every non-overlapping match from position 0, each search starting after the previous match.
void ForEachMatch(const QRegExp& Expression, const QString& Text, const std::function<void(int, int)>& Found)
{
    int iPos = Expression.indexIn(Text, 0);
    while (iPos >= 0)
    {
        const int iLength = Expression.matchedLength();
        Found(iPos, iLength);
        iPos = Expression.indexIn(Text, iPos + qMax(iLength, 1));
    }
}
} // namespace

CReferenceShaderHighlighter::CReferenceShaderHighlighter(QTextDocument* pDocument, unsigned int uiType,
                                                         const CShaderHighlightController* pController)
    : QSyntaxHighlighter(pDocument),
      m_pController(pController),
      m_uiType(uiType),
      m_CommentStart(MakeExpression(HighlightPattern::CommentStart)),
      m_CommentEnd(MakeExpression(HighlightPattern::CommentEnd)),
      m_SectionStart(MakeExpression(HighlightPattern::CodeSectionStart)),
      m_SectionEnd(MakeExpression(HighlightPattern::CodeSectionEnd)),
      m_LineComment(MakeExpression(HighlightPattern::LineComment)),
      m_Number(MakeExpression(HighlightPattern::Number)),
      m_Preprocessor(MakeExpression(HighlightPattern::Preprocessor))
{
    const SHighlightRuleSet Rules = GetShaderHighlightRules();
    for (unsigned int i = 0; i < Rules.uiCount; ++i)
    {
        SRule& Rule = m_Rules[Rules.pTables[i].uiElement];
        Rule.uiMask = Rules.pTables[i].uiTypeMask;
        for (unsigned int j = 0; j < Rules.pTables[i].uiPatternCount; ++j)
            Rule.Expressions.append(MakeExpression(Rules.pTables[i].ppPatterns[j]));
    }
}

int CReferenceShaderHighlighter::ApplyRules(const QString& Text, unsigned int uiMask, const FPaint& Paint)
{
    int iFirst = -1;
    Paint(0, int(Text.size()), GetCodeElement(uiMask), false);
    for (auto It = m_Rules.cbegin(); It != m_Rules.cend(); ++It)
    {
        if (!(It->uiMask & uiMask))
            continue;
        for (const QRegExp& Expression : It->Expressions)
        {
            ForEachMatch(Expression, Text, [&](int iPos, int iLength) {
                Paint(iPos, iLength, It.key(), true);
                if (iFirst < 0)
                    iFirst = int(It.key());
            });
        }
    }
    if (uiMask & HighlightMask_Code)
    {
        ForEachMatch(m_Number, Text, [&](int iPos, int iLength) { Paint(iPos, iLength, GetNumberElement(uiMask), false); });
        ForEachMatch(m_Preprocessor, Text,
                     [&](int iPos, int iLength) { Paint(iPos, iLength, GetPreprocessorElement(uiMask), false); });
    }
    ForEachMatch(m_LineComment, Text, [&](int iPos, int iLength) { Paint(iPos, iLength, GetCommentElement(uiMask), false); });
    return iFirst;
}

void CReferenceShaderHighlighter::PaintFormat(int iStart, int iLength, unsigned int uiElement)
{
    setFormat(iStart, iLength, m_pController->GetFormat(uiElement));
}

void CReferenceShaderHighlighter::Code(const QString& Text, unsigned int uiMask)
{
    ApplyRules(Text, uiMask, [this](int iStart, int iLength, unsigned int uiElement, bool) {
        PaintFormat(iStart, iLength, uiElement);
    });

    int iState = currentBlockState() == -1 ? 0 : currentBlockState();
    setCurrentBlockState(iState & ~HighlightState_OpenComment);
    int iStart = 0;
    if (previousBlockState() == -1 || !(previousBlockState() & HighlightState_OpenComment))
        iStart = m_CommentStart.indexIn(Text);
    while (iStart >= 0)
    {
        const int iEnd = m_CommentEnd.indexIn(Text, iStart);
        int iLength = 0;
        if (iEnd == -1)
        {
            setCurrentBlockState(currentBlockState() | HighlightState_OpenComment);
            iLength = int(Text.size()) - iStart;
        }
        else
        {
            iLength = iEnd - iStart + m_CommentEnd.matchedLength();
        }
        PaintFormat(iStart, iLength, GetCommentElement(uiMask));
        iStart = m_CommentStart.indexIn(Text, iStart + iLength);
    }
}

void CReferenceShaderHighlighter::Effect(const QString& Text)
{
    setCurrentBlockUserData(nullptr);
    ApplyRules(Text, HighlightMask_Effect, [this](int iStart, int iLength, unsigned int uiElement, bool bRuleMatch) {
        PaintFormat(iStart, iLength, uiElement);
        if (bRuleMatch && !currentBlockUserData())
            setCurrentBlockUserData(new CTextBlockZFXData(m_pController->GetFormat(uiElement)));
    });
}

void CReferenceShaderHighlighter::highlightBlock(const QString& Text)
{
    setCurrentBlockUserData(nullptr);
    if (m_uiType == 0)
        return;
    if (m_uiType & HighlightMask_Code)
    {
        Code(Text, m_uiType);
        return;
    }
    if (!(m_uiType & HighlightMask_Effect))
        return;
    setCurrentBlockState(0);
    const int iPrevious = previousBlockState();
    int iStart = 0;
    if (iPrevious != -1 && (iPrevious & HighlightState_CodeSection))
    {
        iStart = 0;
    }
    else
    {
        iStart = m_SectionStart.indexIn(Text);
        if (iStart == -1)
        {
            if (currentBlockState() == 0)
                Effect(Text);
            return;
        }
    }
    if (m_SectionEnd.indexIn(Text, iStart) == -1)
    {
        if (iPrevious != -1 && (iPrevious & HighlightState_CodeSection))
            Code(Text, HighlightMask_GLSLES);
        else
            Effect(Text);
        setCurrentBlockState(currentBlockState() | HighlightState_CodeSection);
    }
    else
    {
        Effect(Text);
    }
    if (currentBlockState() == 0)
        Effect(Text);
}
