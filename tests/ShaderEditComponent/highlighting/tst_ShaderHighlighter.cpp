// What a user sees: which element colours which text, across blocks and document types.
#include "HighlightTestSupport.h"
#include "ShaderEditComponent/highlighting/ShaderHighlightController.h"
#include "ShaderEditComponent/highlighting/ShaderHighlighter.h"

#include <QCoreApplication>
#include <QTest>
#include <QTextCursor>
#include <QTextDocument>

namespace
{
const int Mixed = -2; // the span holds more than one element
}

class CShaderHighlighterTest : public QObject
{
    Q_OBJECT

private slots:
    void SpansTakeTheRightElement_data();
    void SpansTakeTheRightElement();
    void UnterminatedCommentColoursFollowingBlocks();
    void CodeSectionsAreGLSLES_data();
    void CodeSectionsAreGLSLES();
    void TypeIsRequestedAtEveryBlock();
    void BadInputFinishes_data();
    void BadInputFinishes();

private:
    QVector<SBlockCapture> Highlight(const QString& Text, unsigned int uiType);
    // The element of the span of Block, or Mixed.
    static int SpanElement(const SBlockCapture& Block, int iStart, int iEnd);

    CDistinctScheme m_Scheme;
};

QVector<SBlockCapture> CShaderHighlighterTest::Highlight(const QString& Text, unsigned int uiType)
{
    QTextDocument Document(Text);
    CShaderHighlighter Highlighter(&Document, EShaderDocType(uiType), m_Scheme.GetController());
    Highlighter.rehighlight();
    return CaptureBlocks(Document, m_Scheme);
}

int CShaderHighlighterTest::SpanElement(const SBlockCapture& Block, int iStart, int iEnd)
{
    for (int i = iStart + 1; i < iEnd; ++i)
    {
        if (Block.Elements[i] != Block.Elements[iStart])
            return Mixed;
    }
    return Block.Elements[iStart];
}

void CShaderHighlighterTest::SpansTakeTheRightElement_data()
{
    QTest::addColumn<unsigned int>("uiType");
    QTest::addColumn<QString>("Text");
    QTest::addColumn<int>("iStart"); // the span [iStart, iEnd) must be all iElement
    QTest::addColumn<int>("iEnd");
    QTest::addColumn<int>("iElement");
    auto Row = [](const char* pName, unsigned int uiType, const QString& Text, int iStart, int iEnd, int iElement)
    { QTest::newRow(pName) << uiType << Text << iStart << iEnd << iElement; };
    // A word listed under two elements takes the higher one.
    Row("GLSL:ES keyword and type", 1, "x sampler1D;", 2, 11, HighlightElement_GLSLESBuiltInType);
    Row("GLSL:ES keyword and type, long", 2, "long", 0, 4, HighlightElement_GLSLESBuiltInType);
    Row("OpenCL keyword and type", 1024, "float x", 0, 5, HighlightElement_OpenCLBuiltInType);
    Row("OpenCL keyword only", 1024, "signed", 0, 6, HighlightElement_OpenCLKeyword);
    Row("HLSL upper-case sampler2D is a function", 128, "sampler2D", 0, 9, HighlightElement_HLSLBuiltInFunction);
    Row("other language's word", 4, "saturate", 0, 8, HighlightElement_GLSLCode);
    // Malformed entries colour exactly what they say.
    Row("lost \\b colours a word's tail", 1024, "myquad;", 2, 6, HighlightElement_OpenCLBuiltInType);
    Row("lost \\b leaves the head", 1024, "myquad;", 0, 2, HighlightElement_OpenCLCode);
    Row("\\f is a form feed", 1024,
        QStringLiteral("\x0c"
                       "loat2x2"),
        0, 8, HighlightElement_OpenCLBuiltInType);
    Row("\\d is a digit", 1024, "5ouble2x2", 0, 9, HighlightElement_OpenCLBuiltInType);
    Row("so double2x2 stays plain", 1024, "double2x2", 0, 9, HighlightElement_OpenCLCode);
    Row("comma fused entry", 4, "packed,resource", 0, 15, HighlightElement_GLSLKeyword);
    Row("fused entry never matches", 64, "nointerpolation out", 0, 19, HighlightElement_HLSLCode);
    Row("misspelt devc4 is the type", 1, "devc4 ", 0, 5, HighlightElement_GLSLESBuiltInType);
    Row("dvec4 is only a keyword", 1, "dvec4", 0, 5, HighlightElement_GLSLESKeyword);
    Row("TEXTURE takes one more character", 16, "TEXTURE0 x", 0, 8, HighlightElement_ZFXKeyword);
    Row("but not a bracket", 16, "TEXTURE[0]", 0, 7, HighlightElement_ZFXCode);
    Row("COLOR with digits", 32, "COLOR12", 0, 7, HighlightElement_ZFXValue);
    // Comments win over everything on their span.
    Row("comment over keywords and numbers", 1, "vec4 a; // vec4 1.0 #define", 8, 27, HighlightElement_GLSLESComment);
    Row("comment over a preprocessor line", 2, "#define X 1 // c", 12, 16, HighlightElement_GLSLESComment);
    Row("block comment mid-line", 8, "float x = 1.0; /* sin 2.0 */ float", 15, 28, HighlightElement_GLSLComment);
    Row("code after a block comment", 8, "float x = 1.0; /* sin 2.0 */ float", 29, 34,
        HighlightElement_GLSLBuiltInType);
    Row("block comment over a hash", 256, "/* #if */ x", 0, 9, HighlightElement_HLSLComment);
    Row("hash line after a block comment", 256, "/* #if */ x", 9, 11, HighlightElement_HLSLPreprocessor);
    Row("effect comment", 16, "NAME Foo // LINEAR", 9, 18, HighlightElement_ZFXComment);
    // Numbers and hash lines are code in effect syntax.
    Row("effect number", 16, "RESOLUTION 256 256", 11, 18, HighlightElement_ZFXCode);
    Row("effect hash line", 32, "#define X 1", 0, 11, HighlightElement_ZFXCode);
    Row("effect value", 16, "FILTER LINEAR", 7, 13, HighlightElement_ZFXValue);
    Row("the same number in code", 1, "RESOLUTION 256 256", 11, 14, HighlightElement_GLSLESNumber);
    Row("the same hash line in code", 1, "#define X 1", 0, 11, HighlightElement_GLSLESPreprocessor);
}

void CShaderHighlighterTest::SpansTakeTheRightElement()
{
    QFETCH(unsigned int, uiType);
    QFETCH(QString, Text);
    QFETCH(int, iStart);
    QFETCH(int, iEnd);
    QFETCH(int, iElement);
    QCOMPARE(SpanElement(Highlight(Text, uiType)[0], iStart, iEnd), iElement);
}

void CShaderHighlighterTest::UnterminatedCommentColoursFollowingBlocks()
{
    const int Comment = HighlightElement_GLSLComment;
    QTextDocument Document(QStringLiteral("a /* b\nvec4 c;\n\nd */ e\nvec4"));
    Document.documentLayout(); // without a layout, edits don't announce themselves to the highlighter
    CShaderHighlighter Highlighter(&Document, DocType_GLSLFragment, m_Scheme.GetController());
    QCoreApplication::processEvents(); // the first highlight is queued; edits before it are ignored
    QVector<SBlockCapture> Blocks = CaptureBlocks(Document, m_Scheme);
    QCOMPARE(SpanElement(Blocks[0], 0, 2), int(HighlightElement_GLSLCode));
    QCOMPARE(SpanElement(Blocks[0], 2, 6), Comment);
    QCOMPARE(SpanElement(Blocks[1], 0, 7), Comment);
    QCOMPARE(SpanElement(Blocks[3], 0, 4), Comment);
    QCOMPARE(SpanElement(Blocks[3], 4, 6), int(HighlightElement_GLSLCode));
    QCOMPARE(SpanElement(Blocks[4], 0, 4), int(HighlightElement_GLSLBuiltInType));
    QCOMPARE((QVector<int>{Blocks[0].iState, Blocks[1].iState, Blocks[2].iState, Blocks[3].iState, Blocks[4].iState}),
             (QVector<int>{4, 4, 4, 0, 0}));

    // Closing the comment on its first line re-colours the blocks after it while typing.
    QTextCursor Cursor(Document.firstBlock());
    Cursor.movePosition(QTextCursor::EndOfBlock);
    Cursor.insertText(QStringLiteral(" */"));
    Blocks = CaptureBlocks(Document, m_Scheme);
    QCOMPARE(SpanElement(Blocks[1], 0, 4), int(HighlightElement_GLSLBuiltInType));
    QCOMPARE(Blocks[2].iState, 0);
    QCOMPARE(SpanElement(Blocks[3], 0, 6), int(HighlightElement_GLSLCode)); // a lone "*/" is plain code
}

void CShaderHighlighterTest::CodeSectionsAreGLSLES_data()
{
    QTest::addColumn<unsigned int>("uiType");
    QTest::newRow("GLSL:ES effect") << 16u;
    QTest::newRow("GLSL effect") << 32u;
}

void CShaderHighlighterTest::CodeSectionsAreGLSLES()
{
    QFETCH(unsigned int, uiType);
    const QStringList Lines = {
        QStringLiteral("[VERTEXSHADER]"),     QStringLiteral("LINEAR FILTER"), QStringLiteral("[GLSL_CODE]"),
        QStringLiteral("vec4 x = 1.0; // c"), QStringLiteral("/* open"),       QStringLiteral("still */ NAME"),
        QStringLiteral("[/GLSL_CODE]"),       QStringLiteral("NAME 1.0"),      QStringLiteral("plain"),
    };
    const QVector<SBlockCapture> Blocks = Highlight(Lines.join(QLatin1Char('\n')), uiType);
    QCOMPARE(SpanElement(Blocks[0], 0, 14), int(HighlightElement_ZFXTag));
    // The first rule in element order decides the effect data, not the first match in the line.
    QCOMPARE(Blocks[1].iEffectDataElement, int(HighlightElement_ZFXKeyword));
    QCOMPARE(SpanElement(Blocks[1], 0, 6), int(HighlightElement_ZFXValue));
    QCOMPARE(SpanElement(Blocks[2], 0, 11), int(HighlightElement_ZFXTag));
    QCOMPARE(SpanElement(Blocks[3], 0, 4), int(HighlightElement_GLSLESBuiltInType));
    QCOMPARE(SpanElement(Blocks[3], 9, 12), int(HighlightElement_GLSLESNumber));
    QCOMPARE(SpanElement(Blocks[3], 14, 18), int(HighlightElement_GLSLESComment));
    QCOMPARE(Blocks[3].iEffectDataElement, -1);
    QCOMPARE(SpanElement(Blocks[4], 0, 7), int(HighlightElement_GLSLESComment));
    QCOMPARE(SpanElement(Blocks[5], 0, 8), int(HighlightElement_GLSLESComment));
    QCOMPARE(SpanElement(Blocks[5], 9, 13), int(HighlightElement_GLSLESCode));
    QCOMPARE(SpanElement(Blocks[6], 0, 12), int(HighlightElement_ZFXTag));
    QCOMPARE(SpanElement(Blocks[7], 0, 4), int(HighlightElement_ZFXKeyword));
    QCOMPARE(SpanElement(Blocks[7], 5, 8), int(HighlightElement_ZFXCode));
    QCOMPARE(SpanElement(Blocks[8], 0, 5), int(HighlightElement_ZFXCode));
    QCOMPARE(Blocks[8].iEffectDataElement, -1);
    QVector<int> States;
    for (const SBlockCapture& Block : Blocks)
        States.append(Block.iState);
    QCOMPARE(States, (QVector<int>{0, 0, 2, 2, 6, 2, 0, 0, 0}));
}

void CShaderHighlighterTest::TypeIsRequestedAtEveryBlock()
{
    QTextDocument Document(QStringLiteral("kernel\nvec4\n\nkernel"));
    CShaderHighlighter Highlighter(&Document, DocType_GLSLESVertex, m_Scheme.GetController());
    int iRequests = 0;
    connect(&Highlighter, &CShaderHighlighter::RequestDocumentType, this,
            [&](CShaderHighlighter* pAsking)
            {
                ++iRequests;
                QCOMPARE(pAsking, &Highlighter);
                pAsking->SetDocumentType(DocType_OpenCLKernel); // what the panel answers
            });
    Highlighter.rehighlight();
    QCOMPARE(iRequests, Document.blockCount());
    const QVector<SBlockCapture> Blocks = CaptureBlocks(Document, m_Scheme);
    QCOMPARE(SpanElement(Blocks[0], 0, 6), int(HighlightElement_OpenCLKeyword));
    QCOMPARE(SpanElement(Blocks[1], 0, 4), int(HighlightElement_OpenCLCode));

    // An effect document retyped as code keeps no effect backgrounds; as plain text, or before
    // its type is known, it keeps no formats at all.
    const QString Effect = ReadCorpusFile(QStringLiteral("textured_effect.zfx"));
    for (unsigned int uiType :
         {unsigned(DocType_GLSLESFragment), unsigned(DocType_PlainText), unsigned(DocType_Detect)})
    {
        QTextDocument EffectDocument(Effect);
        CShaderHighlighter EffectHighlighter(&EffectDocument, DocType_ZFXGLSLES, m_Scheme.GetController());
        EffectHighlighter.rehighlight();
        const QVector<SBlockCapture> Before = CaptureBlocks(EffectDocument, m_Scheme);
        QVERIFY(std::any_of(Before.begin(), Before.end(),
                            [](const SBlockCapture& Block) { return Block.iEffectDataElement >= 0; }));
        EffectHighlighter.SetDocumentType(EShaderDocType(uiType));
        EffectHighlighter.rehighlight();
        for (const SBlockCapture& Block : CaptureBlocks(EffectDocument, m_Scheme))
        {
            QCOMPARE(Block.iEffectDataElement, -1);
            if (uiType != DocType_GLSLESFragment)
                QCOMPARE(Block.Elements, QVector<int>(Block.Elements.size(), -1));
        }
    }
}

void CShaderHighlighterTest::BadInputFinishes_data()
{
    QTest::addColumn<QString>("Text");
    QTest::addColumn<unsigned int>("uiType");
    QTest::addColumn<int>("iStateMask"); // the last block's state, masked, must be iState
    QTest::addColumn<int>("iState");

    CRandomShaderText Random(1234u);
    QString Megabyte;
    while (Megabyte.size() < 1024 * 1024)
        Megabyte += Random.Line(false) + QLatin1Char(' ');
    QString Odd;
    while (Odd.size() < 200000)
        Odd += Random.Line(true).remove(QLatin1Char('\n')) + QChar(0) + QChar(0xDBFF) + QStringLiteral("vec4")
               + QChar(0xDC00);
    const QString Openers = QStringLiteral("/* ").repeated(100000); // "/*/" would close itself
    const QString OpenerLines = QStringLiteral("/*\n").repeated(100000);
    const QString OpenSection = QStringLiteral("[GLSL_CODE]\n") + Random.Document(20000);
    for (unsigned int uiType : {1u, 16u, 1024u})
    {
        const QByteArray Type = QByteArray::number(uiType);
        QTest::addRow("1 MB line, %s", Type.constData()) << Megabyte << uiType << 0 << 0;
        QTest::addRow("NUL and lone surrogates, %s", Type.constData()) << Odd << uiType << 0 << 0;
        // Effect syntax has no block comments.
        QTest::addRow("100,000 openers on a line, %s", Type.constData())
            << Openers << uiType << -1 << (uiType == 16u ? 0 : 4);
    }
    QTest::newRow("100,000 opener lines") << OpenerLines << 2u << -1 << 4;
    QTest::newRow("section never closed") << OpenSection << 16u << 2 << 2;
}

void CShaderHighlighterTest::BadInputFinishes()
{
    QFETCH(QString, Text);
    QFETCH(unsigned int, uiType);
    QFETCH(int, iStateMask);
    QFETCH(int, iState);
    QTextDocument Document(Text);
    CShaderHighlighter Highlighter(&Document, EShaderDocType(uiType), m_Scheme.GetController());
    Highlighter.rehighlight();
    QCOMPARE(Document.lastBlock().userState() & iStateMask, iState);
}

QTEST_MAIN(CShaderHighlighterTest)
#include "tst_ShaderHighlighter.moc"
