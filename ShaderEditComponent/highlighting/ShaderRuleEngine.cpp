#include "ShaderRuleEngine.h"

#include "ShaderHighlightRules.h"

#include <QChar>

#include <algorithm>
#include <array>

namespace
{
enum ECharClass : quint8
{
    CharClass_Word = 1,
    CharClass_Number = 2, // digit or dot
};

constexpr std::array<quint8, 128> MakeAsciiClasses()
{
    std::array<quint8, 128> Classes{};
    for (unsigned int c = 0; c < 128; ++c)
    {
        const bool bDigit = c >= '0' && c <= '9';
        if (bDigit || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_')
            Classes[c] |= CharClass_Word;
        if (bDigit || c == '.')
            Classes[c] |= CharClass_Number;
    }
    return Classes;
}

constexpr std::array<quint8, 128> s_AsciiClasses = MakeAsciiClasses();

bool IsNumberChar(char16_t c)
{
    return c < 128 && (s_AsciiClasses[c] & CharClass_Number);
}

unsigned int PairBit(char16_t uiFirst, char16_t uiSecond)
{
    return (unsigned(uiFirst) * 37u + uiSecond) & 255u;
}

// "\b" + ASCII word characters + "\b": the word, else an empty string.
QString PatternWord(const QString& Pattern)
{
    const QLatin1String Boundary("\\b");
    if (Pattern.size() <= 4 || !Pattern.startsWith(Boundary) || !Pattern.endsWith(Boundary))
        return QString();
    const QString Word = Pattern.mid(2, Pattern.size() - 4);
    for (QChar c : Word)
    {
        if (c.unicode() >= 128 || !CShaderRuleEngine::IsWordCharacter(c.unicode()))
            return QString();
    }
    return Word;
}

void Fill(quint8* pElements, qsizetype iStart, qsizetype iEnd, quint8 uiValue)
{
    std::fill(pElements + iStart, pElements + iEnd, uiValue);
}
} // namespace

QString RequiredPatternLiteral(const QString& Pattern)
{
    // Alternation or groups could make any run optional; none of the tables need them.
    if (Pattern.contains(QLatin1Char('|')) || Pattern.contains(QLatin1Char('(')))
        return QString();
    const QLatin1String PunctuationEscapes(".[]{}()*+?^$\\/|-#,:");
    QString Best;
    QString Run;
    bool bRunEndsInChar = false; // the last token was a literal character of Run
    auto EndRun = [&]()
    {
        if (Run.size() > Best.size())
            Best = Run;
        Run.clear();
        bRunEndsInChar = false;
    };
    for (int i = 0; i < Pattern.size(); ++i)
    {
        const QChar c = Pattern.at(i);
        if (c == QLatin1Char('\\') && i + 1 < Pattern.size())
        {
            const QChar Next = Pattern.at(++i);
            if (PunctuationEscapes.contains(Next))
            {
                Run += Next;
                bRunEndsInChar = true;
            }
            else
            {
                EndRun(); // classes, anchors, control characters, back references
                // The digits of a code or a back reference are not literal characters.
                const QLatin1String Digits = Next == QLatin1Char('x')   ? QLatin1String("0123456789abcdefABCDEF")
                                             : Next == QLatin1Char('0') ? QLatin1String("01234567")
                                             : Next.isDigit()           ? QLatin1String("0123456789")
                                                                        : QLatin1String("");
                for (int iDigits = 0; iDigits < 4 && i + 1 < Pattern.size() && Digits.contains(Pattern.at(i + 1));
                     ++iDigits)
                    ++i;
            }
        }
        else if (c == QLatin1Char('*') || c == QLatin1Char('?') || c == QLatin1Char('{'))
        {
            if (bRunEndsInChar)
                Run.chop(1); // the character before may be absent
            EndRun();
            if (c == QLatin1Char('{'))
            {
                while (i < Pattern.size() && Pattern.at(i) != QLatin1Char('}'))
                    ++i;
            }
        }
        else if (c == QLatin1Char('['))
        {
            EndRun();
            ++i;
            if (i < Pattern.size() && Pattern.at(i) == QLatin1Char('^'))
                ++i;
            if (i < Pattern.size() && Pattern.at(i) == QLatin1Char(']'))
                ++i; // a leading ']' is a member
            while (i < Pattern.size() && Pattern.at(i) != QLatin1Char(']'))
                i += Pattern.at(i) == QLatin1Char('\\') ? 2 : 1;
        }
        else if (c == QLatin1Char('+'))
        {
            EndRun(); // the character before is there at least once
        }
        else if (c == QLatin1Char('.') || c == QLatin1Char('^') || c == QLatin1Char('$') || c == QLatin1Char('\\'))
        {
            EndRun();
        }
        else
        {
            Run += c;
            bRunEndsInChar = true;
        }
    }
    EndRun();
    return Best;
}

void CShaderRuleEngine::SCharacterSets::AddPairs(const QString& Text)
{
    for (qsizetype i = 1; i < Text.size(); ++i)
    {
        const char16_t uiFirst = Text.at(i - 1).unicode();
        const char16_t uiSecond = Text.at(i).unicode();
        if (uiFirst < 128 && uiSecond < 128)
        {
            const unsigned int uiPair = PairBit(uiFirst, uiSecond);
            uiPairs[uiPair >> 6] |= quint64(1) << (uiPair & 63);
        }
    }
    bPairsKnown = true;
}

bool CShaderRuleEngine::SCharacterSets::HasAll(const SCharacterSets& Literal, const QString& Text)
{
    if ((Literal.uiChars[0] & ~uiChars[0]) || (Literal.uiChars[1] & ~uiChars[1]))
        return false;
    if (!bPairsKnown) // only worked out for the blocks that get this far
        AddPairs(Text);
    for (int i = 0; i < 4; ++i)
    {
        if (Literal.uiPairs[i] & ~uiPairs[i])
            return false;
    }
    return true;
}

bool CShaderRuleEngine::IsNonAsciiWordCharacter(char16_t uiChar)
{
    // A surrogate on its own is neither, as for QRegExp, which looks at code units.
    return QChar::isLetterOrNumber(char32_t(uiChar)) || QChar::isMark(char32_t(uiChar));
}

qsizetype CShaderRuleEngine::FindPair(const QString& Text, qsizetype iFrom, char16_t uiFirst, char16_t uiSecond)
{
    const qsizetype iLast = Text.size() - 1;
    for (qsizetype i = Text.indexOf(QChar(uiFirst), iFrom); i >= 0 && i < iLast;
         i = Text.indexOf(QChar(uiFirst), i + 1))
    {
        if (Text.at(i + 1).unicode() == uiSecond)
            return i;
    }
    return -1;
}

const CShaderRuleEngine& CShaderRuleEngine::Shared()
{
    static const CShaderRuleEngine s_Engine;
    return s_Engine;
}

CShaderRuleEngine::CShaderRuleEngine()
{
    const SHighlightRuleSet Rules = GetShaderHighlightRules();
    std::vector<const SHighlightRuleTable*> Ordered;
    for (unsigned int i = 0; i < Rules.uiCount; ++i)
        Ordered.push_back(&Rules.pTables[i]);
    std::stable_sort(Ordered.begin(), Ordered.end(),
                     [](const SHighlightRuleTable* pA, const SHighlightRuleTable* pB)
                     { return pA->uiElement < pB->uiElement; });
    Q_ASSERT(Ordered.size() <= 32);
    m_RuleRegexes.resize(Ordered.size());
    for (unsigned int uiRule = 0; uiRule < Ordered.size(); ++uiRule)
    {
        m_Rules.push_back({Ordered[uiRule]->uiElement, Ordered[uiRule]->uiTypeMask});
        for (unsigned int i = 0; i < Ordered[uiRule]->uiPatternCount; ++i)
            AddPattern(uiRule, QString::fromLatin1(Ordered[uiRule]->ppPatterns[i]));
    }
}

void CShaderRuleEngine::AddPattern(unsigned int uiRule, const QString& Pattern)
{
    const QString Word = PatternWord(Pattern);
    if (!Word.isEmpty())
    {
        auto It = m_WordRules.find(QStringView(Word));
        if (It == m_WordRules.end())
        {
            m_Words.append(Word);
            It = m_WordRules.insert(QStringView(m_Words.constLast()), 0);
        }
        *It |= quint32(1) << uiRule;
        const char16_t uiFirst = Word.at(0).unicode();
        m_uiWordFirstChars[uiFirst >> 6] |= quint64(1) << (uiFirst & 63);
        m_iMinWordLength = m_iMinWordLength == 0 ? int(Word.size()) : std::min(m_iMinWordLength, int(Word.size()));
        m_iMaxWordLength = std::max(m_iMaxWordLength, int(Word.size()));
        return;
    }
    SRegexRule Regex{uiRule, Pattern, std::nullopt, RequiredPatternLiteral(Pattern), {}};
    for (QChar c : Regex.Literal)
    {
        if (c.unicode() < 128)
            Regex.LiteralSets.AddChar(c.unicode());
    }
    Regex.LiteralSets.AddPairs(Regex.Literal);
    m_RuleRegexes[uiRule].push_back(m_Regexes.size());
    m_uiRulesWithRegexes |= quint32(1) << uiRule;
    m_Regexes.push_back(std::move(Regex));
}

quint32 CShaderRuleEngine::ActiveRules(unsigned int uiMask) const
{
    if (uiMask == m_uiLastMask)
        return m_uiLastActive;
    quint32 uiActive = 0;
    for (unsigned int i = 0; i < m_Rules.size(); ++i)
    {
        if (m_Rules[i].uiTypeMask & uiMask)
            uiActive |= quint32(1) << i;
    }
    m_uiLastMask = uiMask;
    m_uiLastActive = uiActive;
    return uiActive;
}

void CShaderRuleEngine::PaintRule(unsigned int uiRule, int iStart, int iLength, quint8* pElements, SScan& Scan) const
{
    // Rules run by ascending element and later ones overwrite, so the highest element wins.
    const quint8 uiValue = quint8(m_Rules[uiRule].uiElement + 1);
    for (int i = iStart; i < iStart + iLength; ++i)
        pElements[i] = std::max(pElements[i], uiValue);
    if (Scan.iFirstRule < 0 || int(uiRule) < Scan.iFirstRule)
        Scan.iFirstRule = int(uiRule);
}

void CShaderRuleEngine::EndWord(const char16_t* pText, int iStart, int iEnd, quint32 uiActive, quint8* pElements,
                                SScan& Scan) const
{
    const int iLength = iEnd - iStart;
    const char16_t uiFirst = pText[iStart];
    if (iLength < m_iMinWordLength || iLength > m_iMaxWordLength || uiFirst >= 128
        || !((m_uiWordFirstChars[uiFirst >> 6] >> (uiFirst & 63)) & 1))
        return;
    const quint32 uiHits = m_WordRules.value(QStringView(pText + iStart, iLength), 0) & uiActive;
    if (!uiHits)
        return;
    PaintRule(31u - unsigned(qCountLeadingZeroBits(uiHits)), iStart, iLength, pElements, Scan);
    const int iLowest = int(qCountTrailingZeroBits(uiHits));
    if (iLowest < Scan.iFirstRule)
        Scan.iFirstRule = iLowest;
}

void CShaderRuleEngine::ApplyWords(const QString& Text, quint32 uiActive, quint8* pElements, SScan& Scan) const
{
    // One pass: the characters for the literal filter, and every maximal word run.
    const char16_t* pText = reinterpret_cast<const char16_t*>(Text.constData());
    const int iSize = int(Text.size());
    int iRunStart = -1;
    bool bRunAscii = true; // only ASCII runs can be table words
    for (int i = 0; i < iSize; ++i)
    {
        const char16_t c = pText[i];
        bool bWord;
        if (c < 128)
        {
            Scan.Present.AddChar(c);
            bWord = s_AsciiClasses[c] & CharClass_Word;
        }
        else
        {
            bWord = IsNonAsciiWordCharacter(c);
            bRunAscii = bRunAscii && !bWord;
        }
        if (bWord)
        {
            if (iRunStart < 0)
                iRunStart = i;
            continue;
        }
        if (iRunStart >= 0 && bRunAscii && uiActive)
            EndWord(pText, iRunStart, i, uiActive, pElements, Scan);
        iRunStart = -1;
        bRunAscii = true;
    }
    if (iRunStart >= 0 && bRunAscii && uiActive)
        EndWord(pText, iRunStart, iSize, uiActive, pElements, Scan);
}

void CShaderRuleEngine::ApplyRegexes(const QString& Text, quint32 uiActive, quint8* pElements, SScan& Scan) const
{
    for (quint32 uiRules = uiActive & m_uiRulesWithRegexes; uiRules; uiRules &= uiRules - 1)
    {
        for (size_t iRegex : m_RuleRegexes[qCountTrailingZeroBits(uiRules)])
            ApplyRegex(m_Regexes[iRegex], Text, pElements, Scan);
    }
}

void CShaderRuleEngine::ApplyRegex(const SRegexRule& Regex, const QString& Text, quint8* pElements, SScan& Scan) const
{
    if (!Scan.Present.HasAll(Regex.LiteralSets, Text))
        return;
    if (!Regex.Literal.isEmpty() && !Text.contains(Regex.Literal))
        return;
    if (!Regex.Expression)
        Regex.Expression.emplace(Regex.Pattern, Qt::CaseSensitive, QRegExp::RegExp);
    const QRegExp& Expression = *Regex.Expression;
    int iPos = Expression.indexIn(Text, 0);
    while (iPos >= 0)
    {
        const int iLength = Expression.matchedLength();
        PaintRule(Regex.uiRule, iPos, iLength, pElements, Scan);
        // An empty match would find itself again; none of the tables has one.
        iPos = Expression.indexIn(Text, iPos + std::max(iLength, 1));
    }
}

void CShaderRuleEngine::ApplyNumbers(const QString& Text, quint8 uiValue, quint8* pElements)
{
    // "\b[0-9\.]+\b" by hand: a match lies inside one run of digits and dots, starts at the
    // run's first word boundary and ends at its last one. Once it ends, the rest of the run
    // has no boundary left to end another.
    const char16_t* pText = reinterpret_cast<const char16_t*>(Text.constData());
    const int iSize = int(Text.size());
    auto IsWordAt = [&](int k) { return k >= 0 && k < iSize && IsWordCharacter(pText[k]); };
    auto IsBoundary = [&](int k) { return IsWordAt(k - 1) != IsWordAt(k); };
    int i = 0;
    while (i < iSize)
    {
        if (!IsNumberChar(pText[i]))
        {
            ++i;
            continue;
        }
        int iRunEnd = i;
        while (iRunEnd < iSize && IsNumberChar(pText[iRunEnd]))
            ++iRunEnd;
        int iStart = i;
        while (iStart < iRunEnd && !IsBoundary(iStart))
            ++iStart;
        if (iStart < iRunEnd)
        {
            int iEnd = iRunEnd;
            while (iEnd > iStart && !IsBoundary(iEnd))
                --iEnd;
            Fill(pElements, iStart, iEnd, uiValue);
        }
        i = iRunEnd;
    }
}

void CShaderRuleEngine::ApplyLineComments(const QString& Text, quint8 uiValue, quint8* pElements)
{
    qsizetype iPos = 0;
    while ((iPos = FindPair(Text, iPos, u'/', u'/')) >= 0)
    {
        qsizetype iEnd = Text.indexOf(QLatin1Char('\n'), iPos + 2);
        if (iEnd < 0)
            iEnd = Text.size();
        Fill(pElements, int(iPos), int(iEnd), uiValue);
        iPos = iEnd;
    }
}

int CShaderRuleEngine::Apply(const QString& Text, unsigned int uiMask, std::vector<quint8>& Elements) const
{
    Elements.assign(size_t(Text.size()), 0);
    quint8* pElements = Elements.data();
    const quint32 uiActive = ActiveRules(uiMask);
    SScan Scan;
    ApplyWords(Text, uiActive, pElements, Scan);
    ApplyRegexes(Text, uiActive, pElements, Scan);

    if (uiMask & HighlightMask_Code)
    {
        if (Scan.Present.uiChars[0] & ((quint64(0x3FF) << '0') | (quint64(1) << '.')))
            ApplyNumbers(Text, quint8(GetNumberElement(uiMask) + 1), pElements);
        if (Scan.Present.HasChar(u'#'))
            Fill(pElements, Text.indexOf(QLatin1Char('#')), Text.size(), quint8(GetPreprocessorElement(uiMask) + 1));
    }
    if (Scan.Present.HasChar(u'/'))
        ApplyLineComments(Text, quint8(GetCommentElement(uiMask) + 1), pElements);
    return Scan.iFirstRule < 0 ? -1 : int(m_Rules[size_t(Scan.iFirstRule)].uiElement);
}
