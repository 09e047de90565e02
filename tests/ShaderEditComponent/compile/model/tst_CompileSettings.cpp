#include "Common/ZamPreferences/ZamPreferences.h"
#include "ShaderEditComponent/compile/model/Settings.h"
#include "ShaderEditComponent/compile/model/ZamStringConversion.h"

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

using namespace Settings;

// Every case gets a preference file of its own inside a private configuration folder.
class CCompileSettingsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init() { m_StoreName = QStringLiteral("SettingsCase%1").arg(++m_iCase); }
    void MissingFileGivesDefaults();
    void MaskStoresOnlyItsFields_data();
    void MaskStoresOnlyItsFields();
    void RedetectionFollowsBitOrder();
    void StoredValuesOfWrongKind_data();
    void StoredValuesOfWrongKind();

private:
    QTemporaryDir m_ConfigDir;
    QString m_StoreName;
    int m_iCase = 0;
};

static quint32 Fg(const QTextCharFormat& Format)
{
    return Format.foreground().color().rgba();
}

// Two records whose fields all differ from each other and from the defaults.
static SEditor MakeEditor(bool bFirst)
{
    SEditor Editor;
    Editor.bTreatTabAsSpace = bFirst;
    Editor.bPerformCursorMatch = !bFirst;
    Editor.bHighlightFindResults = !bFirst;
    Editor.bCloseTabsMiddleMouse = bFirst;
    Editor.iTabSpaceSize = bFirst ? 7 : 2;
    Editor.CursorMatchColour = QColor::fromRgba(bFirst ? 0xFF102030u : 0xFFA0B0C0u);
    Editor.FindResultColour = QColor::fromRgba(bFirst ? 0xFF405060u : 0xFFD0E0F0u);
    return Editor;
}

static SCompiler MakeCompiler(bool bFirst)
{
    SCompiler Compiler;
    Compiler.bAutoCompile = !bFirst;
    Compiler.bShouldFormat = !bFirst;
    Compiler.CustomCompilerPath = bFirst ? "/opt/a/cc" : "/opt/b/c\xc3\xb6mpiler"; // UTF-8 survives the file
    Compiler.TempDirectory = bFirst ? "/var/a/" : "/var/b/";
    Compiler.WarningFormat = MakeForegroundFormat(bFirst ? 0xFF010203u : 0xFF0A0B0Cu);
    Compiler.ErrorFormat = MakeForegroundFormat(bFirst ? 0xFF040506u : 0xFFFFFFFFu);
    Compiler.uiCompilerSelection = bFirst ? 2u : 0xFFFFFFFFu;
    return Compiler;
}

// Field values by mask bit, as comparable texts.
static QMap<uint, QString> Fields(const SEditor& E)
{
    return {{1, QString::number(E.bTreatTabAsSpace)},        {2, QString::number(E.iTabSpaceSize)},
            {4, QString::number(E.bPerformCursorMatch)},     {8, QString::number(E.CursorMatchColour.rgba())},
            {16, QString::number(E.bHighlightFindResults)},  {32, QString::number(E.FindResultColour.rgba())},
            {64, QString::number(E.bCloseTabsMiddleMouse)}};
}

static QMap<uint, QString> Fields(const SCompiler& C)
{
    return {{1, QString::number(C.bAutoCompile)},   {2, ToQString(C.CustomCompilerPath)},
            {8, ToQString(C.TempDirectory)},             {16, QString::number(Fg(C.WarningFormat))},
            {32, QString::number(Fg(C.ErrorFormat))}, {64, QString::number(C.bShouldFormat)},
            {128, QString::number(C.uiCompilerSelection)}};
}

static QMap<uint, QString> Merge(QMap<uint, QString> Before, const QMap<uint, QString>& After, uint uiMask)
{
    for (auto It = After.begin(); It != After.end(); ++It)
        if (uiMask & It.key())
            Before[It.key()] = It.value();
    return Before;
}

void CCompileSettingsTest::initTestCase()
{
    QVERIFY(m_ConfigDir.isValid());
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(m_ConfigDir.path()));
}

void CCompileSettingsTest::MissingFileGivesDefaults()
{
    CZamPreferences Store(m_StoreName);
    Store.Load();

    // Start from values that differ everywhere, so a field that is not read shows up.
    SEditor Editor = MakeEditor(true);
    LoadEditorSettings(Store, Editor);
    QCOMPARE(Fields(Editor), Fields(SEditor()));
    SCompiler Compiler = MakeCompiler(true);
    LoadCompilerSettings(Store, Compiler);
    QCOMPARE(Fields(Compiler), Fields(SCompiler()));
    QCOMPARE(Compiler.ErrorFormat.foreground().style(), Qt::SolidPattern);
    const QString TempDirectory = ToQString(Compiler.TempDirectory);
    QVERIFY(TempDirectory.endsWith(QLatin1Char('/')));
    QCOMPARE(QDir(TempDirectory).canonicalPath(), QDir(QDir::tempPath()).canonicalPath());
}

void CCompileSettingsTest::MaskStoresOnlyItsFields_data()
{
    QTest::addColumn<bool>("Editor");
    QTest::addColumn<uint>("Mask");
    for (uint uiBit = 0; uiBit <= 128; uiBit = uiBit ? uiBit << 1 : 1)
    {
        QTest::addRow("compiler %u", uiBit) << false << uiBit;
        if (uiBit < 128)
            QTest::addRow("editor %u", uiBit) << true << uiBit;
    }
    QTest::newRow("compiler paths") << false << uint(CompilerSetting_CustomCompilerPath | CompilerSetting_TempDirectory);
    QTest::newRow("compiler all") << false << uint(CompilerSetting_All);
    QTest::newRow("editor colours") << true << uint(EditorSetting_CursorMatchColour | EditorSetting_FindResultColour);
    QTest::newRow("editor all") << true << uint(EditorSetting_All);
}

void CCompileSettingsTest::MaskStoresOnlyItsFields()
{
    QFETCH(bool, Editor);
    QFETCH(uint, Mask);

    // Store everything from one record, then the masked fields of the other; both the live
    // record and the file read back by a fresh store must hold exactly the merge.
    QMap<uint, QString> Live, Expected;
    {
        CZamPreferences Store(m_StoreName);
        Store.Load();
        if (Editor)
        {
            SEditor Record;
            QVERIFY(StoreEditorSettings(Store, Record, MakeEditor(true), EditorSetting_All));
            QVERIFY(StoreEditorSettings(Store, Record, MakeEditor(false), Mask));
            Live = Fields(Record);
            Expected = Merge(Fields(MakeEditor(true)), Fields(MakeEditor(false)), Mask);
        }
        else
        {
            SCompiler Record;
            QVERIFY(StoreCompilerSettings(Store, Record, MakeCompiler(true), CompilerSetting_All, nullptr));
            QVERIFY(StoreCompilerSettings(Store, Record, MakeCompiler(false), Mask, nullptr));
            Live = Fields(Record);
            Expected = Merge(Fields(MakeCompiler(true)), Fields(MakeCompiler(false)), Mask);
        }
    }
    CZamPreferences Reopened(m_StoreName);
    QVERIFY(Reopened.Load());
    SEditor EditorRecord;
    SCompiler CompilerRecord;
    LoadEditorSettings(Reopened, EditorRecord);
    LoadCompilerSettings(Reopened, CompilerRecord);
    QCOMPARE(Live, Expected);
    QCOMPARE(Editor ? Fields(EditorRecord) : Fields(CompilerRecord), Expected);
}

void CCompileSettingsTest::RedetectionFollowsBitOrder()
{
    CZamPreferences Store(m_StoreName);
    Store.Load();
    SCompiler Live = MakeCompiler(true);

    // What the live record looked like each time detection was asked for.
    QStringList Calls;
    const FCompilerChanged Record = [&](ECompilerSetting eChanged) {
        Calls << QStringLiteral("%1 %2 %3 %4 %5")
                     .arg(uint(eChanged))
                     .arg(ToQString(Live.CustomCompilerPath), ToQString(Live.TempDirectory))
                     .arg(Live.bAutoCompile)
                     .arg(Live.uiCompilerSelection);
    };

    // Bits 8 and 1 are taken over between 2 and 128.
    QVERIFY(StoreCompilerSettings(Store, Live, MakeCompiler(false), CompilerSetting_All, Record));
    QCOMPARE(Calls, QStringList({QStringLiteral("2 /opt/b/c\u00f6mpiler /var/a/ 0 2"),
                                 QStringLiteral("128 /opt/b/c\u00f6mpiler /var/b/ 1 4294967295")}));

    Calls.clear();
    const uint uiOthers = CompilerSetting_All & ~uint(CompilerSetting_CustomCompilerPath | CompilerSetting_CompilerSelection);
    QVERIFY(StoreCompilerSettings(Store, Live, MakeCompiler(true), uiOthers, Record));
    QVERIFY(Calls.isEmpty());
}

void CCompileSettingsTest::StoredValuesOfWrongKind_data()
{
    QTest::addColumn<QString>("Key");
    QTest::addColumn<uint>("Bit"); // of the field the key belongs to
    QTest::addColumn<QVariant>("Stored");
    QTest::addColumn<QString>("Expected");

    const QString Colour = QStringLiteral("Editor/CursorMatchColour");
    const QString Default = QString::number(0xFFC4FFFFu);
    QTest::newRow("signed colour") << Colour << 8u << QVariant(qint64(qint32(0xFF102030u))) << "4279246896";
    QTest::newRow("unsigned colour") << Colour << 8u << QVariant(qint64(0xFF102030u)) << "4279246896";
    QTest::newRow("lowest signed colour") << Colour << 8u << QVariant(qint64(-2147483648ll)) << "2147483648";
    QTest::newRow("colour beyond 32 bits") << Colour << 8u << QVariant(qint64(0x100000000ll)) << Default;
    QTest::newRow("colour below 32 bits") << Colour << 8u << QVariant(qint64(-2147483649ll)) << Default;
    QTest::newRow("colour as text") << Colour << 8u << QVariant(QStringLiteral("red")) << Default;
    QTest::newRow("colour as real") << Colour << 8u << QVariant(1.5) << Default;
    QTest::newRow("signed format colour") << "Output/Error" << 32u << QVariant(qint64(-1)) << "4294967295";
    QTest::newRow("tab size beyond 32 bits") << "Editor/TabSpaceSize" << 2u << QVariant(qint64(1) << 40) << "4";
    QTest::newRow("negative selection") << "Compiler/CompilerSelection" << 128u << QVariant(qint64(-1)) << "0";
}

void CCompileSettingsTest::StoredValuesOfWrongKind()
{
    QFETCH(QString, Key);
    QFETCH(uint, Bit);
    QFETCH(QVariant, Stored);
    QFETCH(QString, Expected);
    {
        CZamPreferences Store(m_StoreName);
        Store.Load();
        if (Stored.typeId() == QMetaType::LongLong)
            Store.SetInteger(Key, Stored.toLongLong());
        else if (Stored.typeId() == QMetaType::Double)
            Store.SetReal(Key, Stored.toDouble());
        else
            Store.SetString(Key, Stored.toString());
        QVERIFY(Store.Save());
    }
    CZamPreferences Reopened(m_StoreName);
    QVERIFY(Reopened.Load());
    SEditor Editor;
    SCompiler Compiler;
    LoadEditorSettings(Reopened, Editor);
    LoadCompilerSettings(Reopened, Compiler);
    QCOMPARE((Key.startsWith(QLatin1String("Editor/")) ? Fields(Editor) : Fields(Compiler)).value(Bit), Expected);
}

QTEST_GUILESS_MAIN(CCompileSettingsTest)
#include "tst_CompileSettings.moc"
