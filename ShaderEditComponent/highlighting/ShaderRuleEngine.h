#pragma once

#include <QHash>
#include <QRegExp>
#include <QString>
#include <QStringList>
#include <QStringView>

#include <optional>
#include <vector>

// Applies the highlight rule tables and the fixed expressions (numbers, preprocessor lines,
// single-line comments) to one block of text, with the same result as scanning every
// pattern as a QRegExp over the text, at a fraction of the cost:
// - a pattern "\b" + word characters + "\b" matches exactly the maximal runs of word
//   characters equal to that word, so every run is looked up once in one hash;
// - the few other patterns stay QRegExp, run only when the block holds a literal that
//   every match of the pattern contains;
// - the fixed expressions are simple enough to scan directly.
// A word character is what QRegExp's \w and \b use: letter, number, mark or underscore,
// judged per UTF-16 code unit.
class CShaderRuleEngine
{
public:
    CShaderRuleEngine();

    // The one engine every highlighter uses: building the tables costs more than
    // highlighting a document of a few hundred lines. GUI thread only (QRegExp keeps its
    // last match inside).
    static const CShaderRuleEngine& Shared();

    // Elements receives one entry per character of Text: 0 where the block keeps its code
    // format, element + 1 where a rule or a fixed expression coloured it, the later one
    // winning as in rule order. Returns the element of the first rule match in rule order
    // (rules by ascending element), or -1 when no rule matched.
    int Apply(const QString& Text, unsigned int uiMask, std::vector<quint8>& Elements) const;

    static bool IsWordCharacter(char16_t uiChar)
    {
        if (uiChar < 128)
            return (uiChar >= u'a' && uiChar <= u'z') || (uiChar >= u'A' && uiChar <= u'Z')
                   || (uiChar >= u'0' && uiChar <= u'9') || uiChar == u'_';
        return IsNonAsciiWordCharacter(uiChar);
    }
    // The first "ab" at or after iFrom, or -1.
    static qsizetype FindPair(const QString& Text, qsizetype iFrom, char16_t uiFirst, char16_t uiSecond);

private:
    struct SRule
    {
        unsigned int uiElement;
        unsigned int uiTypeMask;
    };
    // Hashed sets of the ASCII characters and of the pairs of adjacent ASCII characters of a
    // text: a literal can only be in a text whose sets hold all of the literal's.
    struct SCharacterSets
    {
        quint64 uiChars[2] = {0, 0};
        quint64 uiPairs[4] = {0, 0, 0, 0};
        bool bPairsKnown = false;

        void AddChar(char16_t uiChar) { uiChars[uiChar >> 6] |= quint64(1) << (uiChar & 63); }
        bool HasChar(char16_t uiChar) const { return uiChar < 128 && (uiChars[uiChar >> 6] >> (uiChar & 63)) & 1; }
        void AddPairs(const QString& Text);
        bool HasAll(const SCharacterSets& Literal, const QString& Text);
    };
    struct SRegexRule
    {
        unsigned int uiRule; // index into m_Rules
        QString Pattern;
        // Compiled when a line first passes the literal test: most tables belong to other
        // languages than the open documents', and compiling all of them held up the start.
        mutable std::optional<QRegExp> Expression;
        QString Literal; // contained in every match; empty if none is known
        SCharacterSets LiteralSets;
    };
    struct SScan
    {
        SCharacterSets Present;
        int iFirstRule = -1; // lowest rule index with a match
    };

    static bool IsNonAsciiWordCharacter(char16_t uiChar);

    void AddPattern(unsigned int uiRule, const QString& Pattern);
    quint32 ActiveRules(unsigned int uiMask) const;
    void EndWord(const char16_t* pText, int iStart, int iEnd, quint32 uiActive, quint8* pElements, SScan& Scan) const;
    void ApplyWords(const QString& Text, quint32 uiActive, quint8* pElements, SScan& Scan) const;
    void ApplyRegexes(const QString& Text, quint32 uiActive, quint8* pElements, SScan& Scan) const;
    void ApplyRegex(const SRegexRule& Regex, const QString& Text, quint8* pElements, SScan& Scan) const;
    void PaintRule(unsigned int uiRule, int iStart, int iLength, quint8* pElements, SScan& Scan) const;

    static void ApplyNumbers(const QString& Text, quint8 uiValue, quint8* pElements);
    static void ApplyLineComments(const QString& Text, quint8 uiValue, quint8* pElements);

    std::vector<SRule> m_Rules;              // ascending element
    QStringList m_Words;                     // owns the characters the hash keys point into
    QHash<QStringView, quint32> m_WordRules; // word -> bit set of the rules listing it
    quint64 m_uiWordFirstChars[2] = {0, 0};
    int m_iMinWordLength = 0;
    int m_iMaxWordLength = 0;
    std::vector<SRegexRule> m_Regexes;
    quint32 m_uiRulesWithRegexes = 0;
    std::vector<std::vector<size_t>> m_RuleRegexes; // per rule, indices into m_Regexes
    mutable unsigned int m_uiLastMask = 0;
    mutable quint32 m_uiLastActive = 0;
};

// The longest run of characters that every match of a QRegExp pattern must contain, or an
// empty string when none can be told. Conservative: never longer than the truth.
[[nodiscard]] QString RequiredPatternLiteral(const QString& Pattern);
