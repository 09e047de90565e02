// The colour scheme and the editor font as they are read from and written to the
// preference file.
#include "Common/ZamPreferences/ZamPreferences.h"
#include "ShaderEditComponent/highlighting/ShaderHighlightController.h"

#include <QFile>
#include <QSignalSpy>
#include <QTest>

#include <functional>
#include <memory>

namespace
{
// A fresh, loaded store of its own for every case.
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
    void StoredFieldsCustomiseTheirElementOnly();
    void BadEntriesFallBackPerField();
    void ChangesAreAnnouncedSavedAndReadBack();
};

void CShaderHighlightControllerTest::StoredFieldsCustomiseTheirElementOnly()
{
    auto pStore = NewStore();
    pStore->SetArgb(QStringLiteral("Colours/GLSL/Keyword/Foreground"), 0xFF112233u);
    pStore->SetBool(QStringLiteral("Colours/None/Bold"), true);
    pStore->SetBool(QStringLiteral("Colours/None/Underline"), true);
    CShaderHighlightController Controller(pStore.get());

    for (unsigned int i = 0; i < CShaderHighlightController::ElementCount; ++i)
    {
        const bool bStored = i == HighlightElement_GLSLKeyword || i == HighlightElement_None;
        QCOMPARE(Controller.IsCustomised(i), bStored);
        if (!bStored)
            QCOMPARE(Controller.GetFormat(i), Controller.GetDefaultFormat(i));
    }
    QVERIFY(Controller.GetFormat(HighlightElement_Error).fontUnderline());
    // The fields not stored keep their built-in values.
    const QTextCharFormat& Keyword = Controller.GetFormat(HighlightElement_GLSLKeyword);
    QCOMPARE(Foreground(Keyword), 0xFF112233u);
    QCOMPARE(Background(Keyword), 0xFFFFFFFFu);
    QCOMPARE(Keyword.fontWeight(), int(QFont::Normal));
    QVERIFY(!Keyword.fontUnderline());
    const QTextCharFormat& None = Controller.GetFormat(HighlightElement_None);
    QCOMPARE(None.fontWeight(), int(QFont::Bold));
    QVERIFY(None.fontUnderline());
    QCOMPARE(Foreground(None), 0xFF000000u);
}

void CShaderHighlightControllerTest::BadEntriesFallBackPerField()
{
    // A colour of the wrong kind or out of 32 bits: the built-in "ZFX/Tag" background, while
    // the element's other stored field still counts.
    const quint32 uiBuiltIn = 0xFFF4F4F4u;
    const QString Key = QStringLiteral("Colours/ZFX/Tag/Background");
    const QList<QPair<std::function<void(CZamPreferences&)>, quint32>> Colours = {
        {[&](CZamPreferences& Store) { Store.SetInteger(Key, qint32(0xFF123456u)); }, 0xFF123456u},
        {[&](CZamPreferences& Store) { Store.SetInteger(Key, 0xFF123456u); }, 0xFF123456u},
        {[&](CZamPreferences& Store) { Store.SetInteger(Key, 4294967296ll); }, uiBuiltIn},
        {[&](CZamPreferences& Store) { Store.SetInteger(Key, -2147483649ll); }, uiBuiltIn},
        {[&](CZamPreferences& Store) { Store.SetString(Key, QStringLiteral("red")); }, uiBuiltIn},
        {[&](CZamPreferences& Store) { Store.SetBool(Key, true); }, uiBuiltIn},
        {[](CZamPreferences&) {}, uiBuiltIn},
    };
    for (int iRow = 0; iRow < Colours.size(); ++iRow)
    {
        auto pStore = NewStore();
        Colours[iRow].first(*pStore);
        pStore->SetBool(QStringLiteral("Colours/ZFX/Tag/Underline"), true);
        QVERIFY(pStore->Save());
        auto pReopened = Reopen(*pStore);
        CShaderHighlightController Controller(pReopened.get());
        const QTextCharFormat& Tag = Controller.GetFormat(HighlightElement_ZFXTag);
        QVERIFY2(Background(Tag) == Colours[iRow].second, qPrintable(QStringLiteral("colour row %1").arg(iRow)));
        QCOMPARE(Foreground(Tag), 0xFF0064B4u);
        QVERIFY(Tag.fontUnderline());
    }

    // The size counts only with a face, and only within reason.
    struct SFontRow
    {
        QVariant Face; // invalid: key absent
        QVariant Size;
        const char* pFace;
        int iSize;
    };
    const SFontRow Fonts[] = {
        {QVariant(), QVariant(), "Courier", 12},           {QVariant(), QVariant(20), "Courier", 12},
        {QVariant("Mono"), QVariant(), "Mono", 12},        {QVariant("Mono"), QVariant(20), "Mono", 20},
        {QVariant(7), QVariant(20), "Courier", 12},        {QVariant("Mono"), QVariant("big"), "Mono", 12},
        {QVariant("Mono"), QVariant(0), "Mono", 12},       {QVariant("Mono"), QVariant(-4), "Mono", 12},
        {QVariant("Mono"), QVariant(1000000), "Mono", 12},
    };
    for (const SFontRow& Row : Fonts)
    {
        auto pStore = NewStore();
        for (const auto& [Name, Value] : {qMakePair(QStringLiteral("Editor/FontFace"), Row.Face),
                                          qMakePair(QStringLiteral("Editor/FontSize"), Row.Size)})
        {
            if (Value.typeId() == QMetaType::QString)
                pStore->SetString(Name, Value.toString());
            else if (Value.isValid())
                pStore->SetInteger(Name, Value.toLongLong());
        }
        CShaderHighlightController Controller(pStore.get());
        const QString Name = Row.Face.toString() + QLatin1Char('/') + Row.Size.toString();
        QVERIFY2(Controller.GetFont().family() == QLatin1String(Row.pFace), qPrintable(Name));
        QVERIFY2(Controller.GetFont().pointSize() == Row.iSize, qPrintable(Name));
    }
}

void CShaderHighlightControllerTest::ChangesAreAnnouncedSavedAndReadBack()
{
    auto pStore = NewStore();
    {
        CShaderHighlightController Controller(pStore.get());
        QSignalSpy Colours(&Controller, &CShaderHighlightController::SyntaxColoursChanged);
        QSignalSpy Font(&Controller, &CShaderHighlightController::FontChanged);
        QTextCharFormat Format;
        Format.setForeground(QColor::fromRgba(0xFF010203u));
        Format.setBackground(QColor::fromRgba(0xFF040506u));
        Format.setFontUnderline(true);
        Controller.OnSyntaxColourChanged(HighlightElement_Count, Format);
        QCOMPARE(Colours.count(), 0);
        Controller.OnSyntaxColourChanged(HighlightElement_OpenCLBuiltInFunction, Format);
        QCOMPARE(Colours.count(), 1);
        QCOMPARE(Controller.GetFormat(HighlightElement_OpenCLBuiltInFunction), Format);
        const QFont Chosen(QStringLiteral("Mono"), 15);
        Controller.OnSetFont(Chosen);
        QCOMPARE(Font.count(), 1);
        QCOMPARE(Font.at(0).at(0).value<QFont>(), Chosen);
        // Bold is saved for any weight above normal.
        for (const auto& [iWeight, bBold] : {qMakePair(int(QFont::Light), false), qMakePair(int(QFont::Normal), false),
                                             qMakePair(int(QFont::Normal) + 1, true)})
        {
            QTextCharFormat Weighted = Controller.GetDefaultFormat(HighlightElement_GLSLPreprocessor);
            Weighted.setFontWeight(iWeight);
            Controller.OnSyntaxColourChanged(HighlightElement_GLSLPreprocessor, Weighted);
            QCOMPARE(Reopen(*pStore)->GetBool(QStringLiteral("Colours/GLSL/Preprocessor/Bold"), !bBold), bBold);
        }
    }
    auto pSaved = Reopen(*pStore);
    const QString Group = QStringLiteral("Colours/OpenCL/Built-in Function/");
    QCOMPARE(pSaved->GetArgb(Group + QStringLiteral("Foreground"), 0), 0xFF010203u);
    QCOMPARE(pSaved->GetArgb(Group + QStringLiteral("Background"), 0), 0xFF040506u);
    QCOMPARE(pSaved->GetBool(Group + QStringLiteral("Underline"), false), true);
    QCOMPARE(pSaved->GetBool(Group + QStringLiteral("Bold"), true), false);
    QVERIFY(!pSaved->HasGroup(QStringLiteral("Colours/Error")));
    QCOMPARE(pSaved->GetString(QStringLiteral("Editor/FontFace")), QStringLiteral("Mono"));
    QCOMPARE(pSaved->GetInteger(QStringLiteral("Editor/FontSize"), 0), 15);

    CShaderHighlightController Loaded(pSaved.get());
    QVERIFY(Loaded.IsCustomised(HighlightElement_OpenCLBuiltInFunction));
    QCOMPARE(Foreground(Loaded.GetFormat(HighlightElement_OpenCLBuiltInFunction)), 0xFF010203u);
    QCOMPARE(Background(Loaded.GetFormat(HighlightElement_OpenCLBuiltInFunction)), 0xFF040506u);
    QVERIFY(Loaded.GetFormat(HighlightElement_OpenCLBuiltInFunction).fontUnderline());
    QCOMPARE(Loaded.GetFont().family(), QStringLiteral("Mono"));
    QCOMPARE(Loaded.GetFont().pointSize(), 15);
}

QTEST_MAIN(CShaderHighlightControllerTest)
#include "tst_ShaderHighlightController.moc"
