#pragma once

#include <QMap>
#include <QRegExp>
#include <QSyntaxHighlighter>
#include <QVector>

#include <functional>

class CShaderHighlightController;

// The straightforward reading of the highlighting rules: every pattern a QRegExp scanned
// over every block, every match a setFormat. Slow, and kept only as the yardstick that the
// real highlighter must match format for format.
class CReferenceShaderHighlighter : public QSyntaxHighlighter
{
public:
    // bRuleMatch: the span is a match of a rule table (not the code format or a fixed expression).
    using FPaint = std::function<void(int iStart, int iLength, unsigned int uiElement, bool bRuleMatch)>;

    CReferenceShaderHighlighter(QTextDocument* pDocument, unsigned int uiType,
                                const CShaderHighlightController* pController);

    void SetDocumentType(unsigned int uiType) { m_uiType = uiType; }

    // The rule step alone (rules, numbers, preprocessor lines, line comments) for one text.
    // Returns the element of the first rule match, or -1.
    int ApplyRules(const QString& Text, unsigned int uiMask, const FPaint& Paint);

protected:
    void highlightBlock(const QString& Text) override;

private:
    struct SRule
    {
        unsigned int uiMask = 0;
        QVector<QRegExp> Expressions;
    };

    void Code(const QString& Text, unsigned int uiMask);
    void Effect(const QString& Text);
    void PaintFormat(int iStart, int iLength, unsigned int uiElement);

    const CShaderHighlightController* m_pController;
    unsigned int m_uiType;
    QMap<unsigned int, SRule> m_Rules;
    QRegExp m_CommentStart;
    QRegExp m_CommentEnd;
    QRegExp m_SectionStart;
    QRegExp m_SectionEnd;
    QRegExp m_LineComment;
    QRegExp m_Number;
    QRegExp m_Preprocessor;
};
