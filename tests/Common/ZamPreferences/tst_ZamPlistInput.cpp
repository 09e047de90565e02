#include "Common/ZamPreferences/ZamByteWrapper_p.h"
#include "Common/ZamPreferences/ZamPlistInput_p.h"

#include <QTest>

namespace
{
QByteArray Decode(const QByteArray& Text, bool* pbOk)
{
    CVectorByteWrapper Bytes;
    *pbOk = DecodeBase64(CImmutableByteWrapper(Text), &Bytes);
    return Bytes.ToByteArray();
}
} // namespace

class CZamPlistInputTest : public QObject
{
    Q_OBJECT

private slots:
    void Base64Text_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<bool>("valid");
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("empty") << QByteArray("") << true << QByteArray("");
        QTest::newRow("one byte") << QByteArray("Zg==") << true << QByteArray("f");
        QTest::newRow("two bytes") << QByteArray("Zm8=") << true << QByteArray("fo");
        QTest::newRow("three bytes") << QByteArray("Zm9v") << true << QByteArray("foo");
        QTest::newRow("six bytes wrapped") << QByteArray("\tZm9v\n  YmFy\r\n") << true << QByteArray("foobar");
        QTest::newRow("high bits") << QByteArray("+/8=") << true << QByteArray("\xFB\xFF");
        QTest::newRow("missing padding") << QByteArray("Zg") << false << QByteArray();
        QTest::newRow("short padding") << QByteArray("Zg=") << false << QByteArray();
        QTest::newRow("data after padding") << QByteArray("Zg==Zg==") << false << QByteArray();
        QTest::newRow("padding inside") << QByteArray("Zg=a") << false << QByteArray();
        QTest::newRow("foreign character") << QByteArray("Zm9v!") << false << QByteArray();
    }

    void Base64Text()
    {
        QFETCH(QByteArray, text);
        QFETCH(bool, valid);
        QFETCH(QByteArray, bytes);
        bool bOk = !valid;
        const QByteArray Decoded = Decode(text, &bOk);
        QCOMPARE(bOk, valid);
        if (valid)
        {
            QCOMPARE(Decoded, bytes);
            QCOMPARE(QByteArray::fromStdString(EncodeBase64(CImmutableByteWrapper(bytes))),
                     text.simplified().replace(" ", ""));
        }
    }

    void InvalidUtf8IsReplaced_data()
    {
        QTest::addColumn<QByteArray>("input");
        QTest::addColumn<QByteArray>("output");
        const QByteArray R = "\xEF\xBF\xBD";
        QTest::newRow("valid") << QByteArray("a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x8E\xA8") << QByteArray();
        QTest::newRow("lead byte at end") << QByteArray("ab\xC3") << "ab" + R;
        QTest::newRow("cut three-byte") << QByteArray("\xE2\x82<") << R + R + "<";
        QTest::newRow("lone continuation") << QByteArray("\x80x") << R + "x";
        QTest::newRow("overlong") << QByteArray("\xC0\xAF") << R + R;
        QTest::newRow("surrogate") << QByteArray("\xED\xA0\x80") << R + R + R;
        QTest::newRow("above U+10FFFF") << QByteArray("\xF4\x90\x80\x80") << R + R + R + R;
        QTest::newRow("nul") << QByteArray("a\0b", 3) << "a" + R + "b";
    }

    void InvalidUtf8IsReplaced()
    {
        QFETCH(QByteArray, input);
        QFETCH(QByteArray, output);
        QByteArray Bytes = input;
        QCOMPARE(ReplaceInvalidUtf8(&Bytes), !output.isEmpty());
        QCOMPARE(Bytes, output.isEmpty() ? input : output);
    }

    void DepthIsNeverUnderestimated_data()
    {
        QTest::addColumn<QByteArray>("xml");
        QTest::addColumn<int>("depth");
        QTest::addColumn<int>("markup");
        QTest::newRow("flat") << QByteArray("<a></a><b/><c>text</c>") << 1 << 5;
        QTest::newRow("nested") << QByteArray("<a><b><c/></b></a>") << 2 << 5;
        QTest::newRow("declaration and doctype") << QByteArray("<?xml version=\"1.0\"?><!DOCTYPE x><a/>") << 0 << 3;
        QTest::newRow("comment") << QByteArray("<a><!-- <b><c> --></a>") << 1 << 3;
        QTest::newRow("cdata") << QByteArray("<a><![CDATA[<b><c>]]></a>") << 1 << 3;
        QTest::newRow("quoted slash-close") << QByteArray("<a x=\"/>\"><b x = '/>'>") << 2 << 2;
        QTest::newRow("quoted open") << QByteArray("<a x=\"<b><c>\">") << 1 << 1;
        QTest::newRow("unquoted value") << QByteArray("<a x=y/><b x=\"1\"/>") << 0 << 2;
        QTest::newRow("quote not after =") << QByteArray("<a \"><b>\"><c>") << 3 << 3;
        QTest::newRow("closes floor at zero") << QByteArray("</a></a><b><c>") << 2 << 4;
        QTest::newRow("name from high byte") << QByteArray("<\xC3\xA9><_x>") << 2 << 2;
        QTest::newRow("not a name") << QByteArray("<1><-a><b>") << 1 << 3;
    }

    void DepthIsNeverUnderestimated()
    {
        QFETCH(QByteArray, xml);
        QFETCH(int, depth);
        QFETCH(int, markup);
        const SXmlShape Shape = MeasureXmlShape(xml, 100);
        QCOMPARE(Shape.iDepth, depth);
        QCOMPARE(Shape.iMarkup, qint64(markup));
    }

    void AttributesAreCountedPerTag_data()
    {
        QTest::addColumn<QByteArray>("xml");
        QTest::addColumn<int>("attributes");
        QTest::newRow("none") << QByteArray("<a>x = y</a><!-- a=b c=d --><?xml a=\"1\" b=\"2\"?>") << 0;
        QTest::newRow("quoted") << QByteArray("<a x=\"1\" y='=' z = \"a=b\"/><b c=\"d\">") << 3;
        QTest::newRow("unquoted") << QByteArray("<a x=b=c>") << 2;
    }

    void AttributesAreCountedPerTag()
    {
        QFETCH(QByteArray, xml);
        QFETCH(int, attributes);
        QCOMPARE(MeasureXmlShape(xml, 100).iAttributes, attributes);
    }

    void DeepNestingStopsTheScanEarly()
    {
        const QByteArray Deep = QByteArray("<a x=\"/>\">").repeated(100000);
        QCOMPARE(MeasureXmlShape(Deep, 64).iDepth, 65);
        QCOMPARE(MeasureXmlShape(Deep, 64).iMarkup, qint64(65));
        QCOMPARE(MeasureXmlShape(QByteArray("<a>").repeated(64) + QByteArray("</a>").repeated(64), 64).iDepth, 64);
    }
};

QTEST_GUILESS_MAIN(CZamPlistInputTest)
#include "tst_ZamPlistInput.moc"
