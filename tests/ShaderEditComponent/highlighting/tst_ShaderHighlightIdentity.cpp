// The highlighter must colour exactly as the straightforward reading (every pattern a
// QRegExp over every block) does: same element on every character, same block states,
// same effect data.
#include "HighlightTestSupport.h"
#include "ShaderEditComponent/highlighting/reference/ReferenceShaderHighlighter.h"
#include "ShaderEditComponent/highlighting/ShaderHighlightController.h"
#include "ShaderEditComponent/highlighting/ShaderHighlighter.h"
#include "ShaderEditComponent/highlighting/ShaderHighlightRules.h"

#include <QCoreApplication>
#include <QRegExp>
#include <QTest>
#include <QTextCursor>
#include <QTextDocument>

class CShaderHighlightIdentityTest : public QObject
{
    Q_OBJECT

private slots:
    void WordCharactersAreQRegExpWordCharacters();
    void RequiredLiteralIsInEveryMatch_data();
    void RequiredLiteralIsInEveryMatch();
    void DocumentsMatchReference_data();
    void DocumentsMatchReference();
    void EditsAndTypeChangesMatchReference();

private:
    CDistinctScheme m_Scheme;
};

void CShaderHighlightIdentityTest::WordCharactersAreQRegExpWordCharacters()
{
    const QRegExp Word(QStringLiteral("\\w"));
    const QRegExp BoundaryAfterA(QStringLiteral("a\\b"));
    int iMismatches = 0;
    for (uint c = 0; c <= 0xFFFF; ++c)
    {
        const QString Text = QString(QChar(char16_t(c)));
        const bool bWord = CShaderRuleEngine::IsWordCharacter(char16_t(c));
        const bool bBoundary = BoundaryAfterA.indexIn(QStringLiteral("a") + Text) == 0;
        if (bWord != Word.exactMatch(Text) || bWord == bBoundary)
        {
            if (++iMismatches < 5)
                qWarning("U+%04X disagrees with QRegExp", c);
        }
    }
    QCOMPARE(iMismatches, 0);
}

void CShaderHighlightIdentityTest::RequiredLiteralIsInEveryMatch_data()
{
    QTest::addColumn<QString>("Pattern");
    QTest::addColumn<QString>("Text");
    QTest::newRow("optional character") << "ab?c" << "ac";
    QTest::newRow("repeated character") << "ab*cd" << "acd";
    QTest::newRow("counted repeat") << "x{0,2}yz" << "yz";
    QTest::newRow("one or more") << "a+bc" << "aaabc";
    QTest::newRow("class") << "[ab]cd" << "bcd";
    QTest::newRow("class with bracket") << "[]a]bc" << "]bc";
    QTest::newRow("escaped dot") << "\\.5x" << ".5x";
    QTest::newRow("effect keyword") << "\\bTEXTURE[^\\[\\]]\\b" << "TEXTURE0";
    QTest::newRow("effect tag") << "^\\s*\\[/*HEADER\\]\\s*$" << "  [HEADER] ";
    QTest::newRow("effect closing tag") << "^\\s*\\[/*HEADER\\]\\s*$" << "[//HEADER]";
    QTest::newRow("suffix pattern") << "\\quad\\b" << "myquad";
    QTest::newRow("form feed") << "\\float2x2\\b" << QStringLiteral("\x0c" "loat2x2");
    QTest::newRow("digit class") << "\\double2x2\\b" << "5ouble2x2";
    QTest::newRow("fused words") << "\\bpacked,\\b\\bresource\\b" << "packed,resource";
    QTest::newRow("hash") << "\\b#line\\b" << "x#line";
    QTest::newRow("hexadecimal code") << "\\x0041yz" << "Ayz";
    QTest::newRow("octal code") << "\\0101bc" << "Abc";
    QTest::newRow("back reference") << "(a)\\1bc" << "aabc";
}

void CShaderHighlightIdentityTest::RequiredLiteralIsInEveryMatch()
{
    QFETCH(QString, Pattern);
    QFETCH(QString, Text);
    QRegExp Expression(Pattern);
    QVERIFY(Expression.isValid());
    const int iPos = Expression.indexIn(Text);
    QVERIFY2(iPos >= 0, "the sample must match");
    const QString Literal = RequiredPatternLiteral(Pattern);
    QVERIFY2(Text.mid(iPos, Expression.matchedLength()).contains(Literal), qPrintable(Literal));
}

void CShaderHighlightIdentityTest::DocumentsMatchReference_data()
{
    QTest::addColumn<QString>("Text");
    QTest::addColumn<unsigned int>("uiType");
    for (const QString& File : CorpusFiles())
    {
        for (unsigned int uiType : AllDocumentTypes())
            QTest::addRow("%s as %u", qPrintable(File), uiType) << ReadCorpusFile(File) << uiType;
    }
    // Random lines hold NUL, form feeds and lone surrogates besides every rule's words.
    CRandomShaderText Random(20240601u);
    for (unsigned int uiType : AllDocumentTypes())
        QTest::addRow("random as %u", uiType) << Random.Document(700) << uiType;
}

void CShaderHighlightIdentityTest::DocumentsMatchReference()
{
    QFETCH(QString, Text);
    QFETCH(unsigned int, uiType);
    QTextDocument Expected(Text);
    QTextDocument Actual(Text);
    CReferenceShaderHighlighter Reference(&Expected, uiType, m_Scheme.GetController());
    CShaderHighlighter Highlighter(&Actual, EShaderDocType(uiType), m_Scheme.GetController());
    Reference.rehighlight();
    Highlighter.rehighlight();
    const QString Difference = DescribeDifference(CaptureBlocks(Expected, m_Scheme), CaptureBlocks(Actual, m_Scheme), m_Scheme);
    QVERIFY2(Difference.isEmpty(), qPrintable(Difference));
}

// Incremental re-highlighting keeps stale states and effect data around; both must agree
// on those too.
void CShaderHighlightIdentityTest::EditsAndTypeChangesMatchReference()
{
    CRandomShaderText Random(77u);
    const QString Text = ReadCorpusFile(QStringLiteral("textured_effect.zfx")) + Random.Document(60);
    QTextDocument Expected(Text);
    QTextDocument Actual(Text);
    Expected.documentLayout(); // without a layout, edits don't announce themselves to the highlighter
    Actual.documentLayout();
    CReferenceShaderHighlighter Reference(&Expected, DocType_ZFXGLSLES, m_Scheme.GetController());
    CShaderHighlighter Highlighter(&Actual, DocType_ZFXGLSLES, m_Scheme.GetController());
    QCoreApplication::processEvents(); // the first highlight is queued; edits before it are ignored
    const QVector<unsigned int> Types = AllDocumentTypes();
    for (int iEdit = 0; iEdit < 300; ++iEdit)
    {
        if (Random.Next(25) == 0)
        {
            const unsigned int uiType = Types[int(Random.Next(quint32(Types.size())))];
            Reference.SetDocumentType(uiType);
            Highlighter.SetDocumentType(EShaderDocType(uiType));
            Reference.rehighlight();
            Highlighter.rehighlight();
        }
        else
        {
            const int iPosition = int(Random.Next(quint32(Expected.characterCount() - 1)));
            const int iRemove = Random.Next(3) == 0 ? int(Random.Next(12)) : 0;
            const QString Insert = Random.Next(4) == 0 ? QStringLiteral("\n") : Random.Line(false).left(8);
            for (QTextDocument* pDocument : {&Expected, &Actual})
            {
                QTextCursor Cursor(pDocument);
                Cursor.setPosition(iPosition);
                Cursor.setPosition(qMin(iPosition + iRemove, pDocument->characterCount() - 1), QTextCursor::KeepAnchor);
                Cursor.insertText(Insert);
            }
        }
        const QString Difference = DescribeDifference(CaptureBlocks(Expected, m_Scheme), CaptureBlocks(Actual, m_Scheme), m_Scheme);
        QVERIFY2(Difference.isEmpty(), qPrintable(QStringLiteral("edit %1: %2").arg(iEdit).arg(Difference)));
    }
}

QTEST_MAIN(CShaderHighlightIdentityTest)
#include "tst_ShaderHighlightIdentity.moc"
