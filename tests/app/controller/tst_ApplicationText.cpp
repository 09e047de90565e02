#include "app/controller/ApplicationText.h"

#include <QSet>
#include <QtTest>

class CApplicationTextTest : public QObject
{
    Q_OBJECT

private slots:
    void NumberedTexts();
    void Languages();
};

void CApplicationTextTest::NumberedTexts()
{
    const QList<QPair<int, QString>> Texts = {
        {0, "TXE ASM"},
        {6, "Compile"},
        {7, "Compiler Settings"},
        {8, "Compile"},
        {21, "Invalid commandline"},
        {22, "Input/Output Error"},
        {26, "Output"},
        {27, "Output directory"},
        {28, "Output"},
        {34, "Select Directory"},
        {42, "The document has unsaved changes.\nCompilation output will not reflect the current document."},
        {43, "Do you want to save your changes?"},
        {44, ""},
        {-1, ""},
    };
    for (const auto& Text : Texts)
        QCOMPARE(GetApplicationText(Text.first), Text.second);

    // 44 entries; the only equal texts are the pairs 6/8 and 26/28.
    QSet<QString> Distinct;
    for (int i = 0; i < AppText_Count; ++i)
        Distinct.insert(GetApplicationText(i));
    QCOMPARE(int(AppText_Count), 44);
    QCOMPARE(Distinct.size(), 42);
    QVERIFY(!Distinct.contains(QString()));
}

void CApplicationTextTest::Languages()
{
    QCOMPARE(GetApplicationLanguageCount(), 1);
    QCOMPARE(GetApplicationLanguageName(0), QStringLiteral("English"));
    QVERIFY(!SetApplicationLanguage(1));
    QCOMPARE(GetApplicationLanguage(), 0);
    QCOMPARE(GetApplicationText(AppText_Cancel), QStringLiteral("Cancel"));
}

QTEST_APPLESS_MAIN(CApplicationTextTest)
#include "tst_ApplicationText.moc"
