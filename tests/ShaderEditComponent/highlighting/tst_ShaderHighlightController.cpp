// The colour scheme and the editor font as they are read from and written to the
// preference file.
#include "Common/ZamPreferences/ZamPreferences.h"
#include "ShaderEditComponent/highlighting/ShaderHighlightController.h"

#include <QFile>
#include <QSignalSpy>
#include <QTest>

#include <memory>

namespace
{
// A fresh, loaded store of its own for every test case.
std::unique_ptr<CZamPreferences> NewStore()
{
    static int s_iCount = 0;
    auto pStore = std::make_unique<CZamPreferences>(QStringLiteral("HighlightControllerTest%1").arg(++s_iCount));
    QFile::remove(pStore->GetFilePath());
    pStore->Load();
    return pStore;
}

std::unique_ptr<CZamPreferences> Reopen(const CZamPreferences& Store)
{
    auto pStore = std::make_unique<CZamPreferences>(QFileInfo(Store.GetFilePath()).completeBaseName());
    pStore->Load();
    return pStore;
}

quint32 Foreground(const QTextCharFormat& Format)
{
    return Format.foreground().color().rgba();
}

quint32 Background(const QTextCharFormat& Format)
{
    return Format.background().color().rgba();
}
} // namespace

class CShaderHighlightControllerTest : public QObject
{
    Q_OBJECT

private slots:
    void MissingFileGivesBuiltInScheme();
    void OnlyStoredGroupsAreCustomised();
    void ColourKeysFallBackPerField_data();
    void ColourKeysFallBackPerField();
    void BoldIsSavedAboveNormalWeight_data();
    void BoldIsSavedAboveNormalWeight();
    void SavesCustomisedEntriesAndFont();
    void FontFaceComesBeforeSize_data();
    void FontFaceComesBeforeSize();
    void SlotsAnnounceChanges();
};

// The file's keys are built from the element names, so order and names are a file format.
void CShaderHighlightControllerTest::MissingFileGivesBuiltInScheme()
{
    QFile::remove(CZamPreferences(QStringLiteral("ZamShaderEditor")).GetFilePath());
    CShaderHighlightController Controller;
    QCOMPARE(CShaderHighlightController::ElementCount, 36u);
    const QVector<QPair<unsigned int, const char*>> Anchors = {{0, "None"},
                                                               {1, "Error"},
                                                               {7, "ZFX/Comment"},
                                                               {8, "GLSL/Code"},
                                                               {15, "GLSL:ES/Code"},
                                                               {17, "GLSL:ES/Built-in Function"},
                                                               {26, "HLSL/Preprocessor"},
                                                               {29, "OpenCL/Code"},
                                                               {35, "OpenCL/Number"}};
    for (const auto& Anchor : Anchors)
        QCOMPARE(Controller.GetElementName(Anchor.first).GetString(), Anchor.second);
    QVERIFY(Controller.GetElementName(36).IsEmpty());
    for (unsigned int i = 0; i < CShaderHighlightController::ElementCount; ++i)
    {
        QVERIFY(!Controller.IsCustomised(i));
        QCOMPARE(Controller.GetFormat(i), Controller.GetDefaultFormat(i));
        QCOMPARE(Controller.GetFormat(i).fontUnderline(), i == 1);
        QCOMPARE(Controller.GetFormat(i).fontWeight(), int(QFont::Normal));
    }
    QCOMPARE(Foreground(Controller.GetFormat(16)), 0xFF0000FFu);
    QCOMPARE(Background(Controller.GetFormat(6)), 0xFFF4F4F4u);
    QCOMPARE(Controller.GetFont().family(), QStringLiteral("Courier"));
    QCOMPARE(Controller.GetFont().pointSize(), 12);
}

void CShaderHighlightControllerTest::OnlyStoredGroupsAreCustomised()
{
    auto pStore = NewStore();
    pStore->SetArgb(QStringLiteral("Colours/GLSL/Keyword/Foreground"), 0xFF112233u);
    pStore->SetBool(QStringLiteral("Colours/None/Bold"), true);
    pStore->SetBool(QStringLiteral("Colours/None/Underline"), true);
    CShaderHighlightController Controller(pStore.get());

    for (unsigned int i = 0; i < CShaderHighlightController::ElementCount; ++i)
        QCOMPARE(Controller.IsCustomised(i), i == 9 || i == 0);
    const QTextCharFormat& Keyword = Controller.GetFormat(9);
    QCOMPARE(Foreground(Keyword), 0xFF112233u);
    QCOMPARE(Background(Keyword), 0xFFFFFFFFu);
    QCOMPARE(Keyword.fontWeight(), int(QFont::Normal));
    QVERIFY(!Keyword.fontUnderline());
    QCOMPARE(Controller.GetFormat(0).fontWeight(), int(QFont::Bold));
    QVERIFY(Controller.GetFormat(0).fontUnderline());
    QCOMPARE(Foreground(Controller.GetFormat(0)), 0xFF000000u);
    QCOMPARE(Controller.GetFormat(10), Controller.GetDefaultFormat(10));
}

void CShaderHighlightControllerTest::ColourKeysFallBackPerField_data()
{
    QTest::addColumn<QString>("Kind");
    QTest::addColumn<QString>("Value");
    QTest::addColumn<quint32>("uiExpected");
    const quint32 uiBuiltIn = 0xFFF4F4F4u; // "ZFX/Tag" background
    QTest::newRow("signed spelling") << "integer" << QString::number(qint32(0xFF123456u)) << 0xFF123456u;
    QTest::newRow("unsigned spelling") << "integer" << QString::number(0xFF123456u) << 0xFF123456u;
    QTest::newRow("above 32 bits") << "integer"
                                   << "4294967296" << uiBuiltIn;
    QTest::newRow("below 32 bits") << "integer"
                                   << "-2147483649" << uiBuiltIn;
    QTest::newRow("string") << "string"
                            << "red" << uiBuiltIn;
    QTest::newRow("bool") << "bool"
                          << "true" << uiBuiltIn;
    QTest::newRow("missing") << "missing"
                             << "" << uiBuiltIn;
}

void CShaderHighlightControllerTest::ColourKeysFallBackPerField()
{
    QFETCH(QString, Kind);
    QFETCH(QString, Value);
    QFETCH(quint32, uiExpected);
    auto pStore = NewStore();
    const QString Key = QStringLiteral("Colours/ZFX/Tag/Background");
    if (Kind == QLatin1String("integer"))
        pStore->SetInteger(Key, Value.toLongLong());
    else if (Kind == QLatin1String("string"))
        pStore->SetString(Key, Value);
    else if (Kind == QLatin1String("bool"))
        pStore->SetBool(Key, true);
    pStore->SetBool(QStringLiteral("Colours/ZFX/Tag/Underline"), true);
    QVERIFY(pStore->Save());
    auto pReopened = Reopen(*pStore);
    CShaderHighlightController Controller(pReopened.get());

    QVERIFY(Controller.IsCustomised(6));
    QCOMPARE(Background(Controller.GetFormat(6)), uiExpected);
    QCOMPARE(Foreground(Controller.GetFormat(6)), 0xFF0064B4u);
    QVERIFY(Controller.GetFormat(6).fontUnderline());
}

void CShaderHighlightControllerTest::BoldIsSavedAboveNormalWeight_data()
{
    QTest::addColumn<int>("iWeight");
    QTest::addColumn<bool>("bBold");
    QTest::newRow("light") << int(QFont::Light) << false;
    QTest::newRow("normal") << int(QFont::Normal) << false;
    QTest::newRow("just above normal") << int(QFont::Normal) + 1 << true;
    QTest::newRow("medium") << int(QFont::Medium) << true;
    QTest::newRow("bold") << int(QFont::Bold) << true;
}

void CShaderHighlightControllerTest::BoldIsSavedAboveNormalWeight()
{
    QFETCH(int, iWeight);
    QFETCH(bool, bBold);
    auto pStore = NewStore();
    CShaderHighlightController Controller(pStore.get());
    QTextCharFormat Format = Controller.GetDefaultFormat(12);
    Format.setFontWeight(iWeight);
    Controller.OnSyntaxColourChanged(12, Format);
    QCOMPARE(Reopen(*pStore)->GetBool(QStringLiteral("Colours/GLSL/Preprocessor/Bold"), !bBold), bBold);
}

void CShaderHighlightControllerTest::SavesCustomisedEntriesAndFont()
{
    auto pStore = NewStore();
    {
        CShaderHighlightController Controller(pStore.get());
        QTextCharFormat Format;
        Format.setForeground(QColor::fromRgba(0xFF010203u));
        Format.setBackground(QColor::fromRgba(0xFF040506u));
        Format.setFontUnderline(true);
        Controller.OnSyntaxColourChanged(31, Format);
        Controller.OnSetFont(QFont(QStringLiteral("Mono"), 15));
    }
    auto pSaved = Reopen(*pStore);
    QCOMPARE(pSaved->GetArgb(QStringLiteral("Colours/OpenCL/Built-in Function/Foreground"), 0), 0xFF010203u);
    QCOMPARE(pSaved->GetArgb(QStringLiteral("Colours/OpenCL/Built-in Function/Background"), 0), 0xFF040506u);
    QCOMPARE(pSaved->GetBool(QStringLiteral("Colours/OpenCL/Built-in Function/Underline"), false), true);
    QCOMPARE(pSaved->GetBool(QStringLiteral("Colours/OpenCL/Built-in Function/Bold"), true), false);
    QVERIFY(!pSaved->HasGroup(QStringLiteral("Colours/Error")));
    QCOMPARE(pSaved->GetString(QStringLiteral("Editor/FontFace")), QStringLiteral("Mono"));
    QCOMPARE(pSaved->GetInteger(QStringLiteral("Editor/FontSize"), 0), 15);

    CShaderHighlightController Loaded(pSaved.get());
    QVERIFY(Loaded.IsCustomised(31));
    QCOMPARE(Foreground(Loaded.GetFormat(31)), 0xFF010203u);
    QCOMPARE(Background(Loaded.GetFormat(31)), 0xFF040506u);
    QVERIFY(Loaded.GetFormat(31).fontUnderline());
    QCOMPARE(Loaded.GetFont().family(), QStringLiteral("Mono"));
    QCOMPARE(Loaded.GetFont().pointSize(), 15);
}

void CShaderHighlightControllerTest::FontFaceComesBeforeSize_data()
{
    QTest::addColumn<QVariant>("Face"); // invalid: key absent
    QTest::addColumn<QVariant>("Size");
    QTest::addColumn<QString>("ExpectedFace");
    QTest::addColumn<int>("iExpectedSize");
    QTest::newRow("nothing stored") << QVariant() << QVariant() << "Courier" << 12;
    QTest::newRow("size without face") << QVariant() << QVariant(20) << "Courier" << 12;
    QTest::newRow("face without size") << QVariant("Mono") << QVariant() << "Mono" << 12;
    QTest::newRow("face and size") << QVariant("Mono") << QVariant(20) << "Mono" << 20;
    QTest::newRow("mistyped face") << QVariant(7) << QVariant(20) << "Courier" << 12;
    QTest::newRow("mistyped size") << QVariant("Mono") << QVariant("big") << "Mono" << 12;
    QTest::newRow("zero size") << QVariant("Mono") << QVariant(0) << "Mono" << 12;
    QTest::newRow("negative size") << QVariant("Mono") << QVariant(-4) << "Mono" << 12;
    QTest::newRow("absurd size") << QVariant("Mono") << QVariant(1000000) << "Mono" << 12;
}

void CShaderHighlightControllerTest::FontFaceComesBeforeSize()
{
    QFETCH(QVariant, Face);
    QFETCH(QVariant, Size);
    QFETCH(QString, ExpectedFace);
    QFETCH(int, iExpectedSize);
    auto pStore = NewStore();
    for (const auto& Entry :
         {qMakePair(QStringLiteral("Editor/FontFace"), Face), qMakePair(QStringLiteral("Editor/FontSize"), Size)})
    {
        if (Entry.second.typeId() == QMetaType::QString)
            pStore->SetString(Entry.first, Entry.second.toString());
        else if (Entry.second.isValid())
            pStore->SetInteger(Entry.first, Entry.second.toLongLong());
    }
    CShaderHighlightController Controller(pStore.get());
    QCOMPARE(Controller.GetFont().family(), ExpectedFace);
    QCOMPARE(Controller.GetFont().pointSize(), iExpectedSize);
}

void CShaderHighlightControllerTest::SlotsAnnounceChanges()
{
    auto pStore = NewStore();
    CShaderHighlightController Controller(pStore.get());
    QSignalSpy Colours(&Controller, &CShaderHighlightController::SyntaxColoursChanged);
    QSignalSpy Font(&Controller, &CShaderHighlightController::FontChanged);

    QTextCharFormat Format;
    Format.setForeground(Qt::red);
    Controller.OnSyntaxColourChanged(36, Format);
    QCOMPARE(Colours.count(), 0);
    Controller.OnSyntaxColourChanged(20, Format);
    QCOMPARE(Colours.count(), 1);
    QVERIFY(Controller.IsCustomised(20));
    QCOMPARE(Controller.GetFormat(20), Format);
    QCOMPARE(Controller.GetDefaultFormat(20).foreground().color(), QColor::fromRgba(0xFF006C00u));

    const QFont Chosen(QStringLiteral("Serif"), 9);
    Controller.OnSetFont(Chosen);
    QCOMPARE(Font.count(), 1);
    QCOMPARE(Font.at(0).at(0).value<QFont>(), Chosen);
    QCOMPARE(Controller.GetFont(), Chosen);
}

QTEST_MAIN(CShaderHighlightControllerTest)
#include "tst_ShaderHighlightController.moc"
