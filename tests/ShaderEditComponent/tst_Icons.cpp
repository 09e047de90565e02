#include "ShaderEditComponent/IconResources.h"
#include "tests/support/TestFiles.h"

#include <QDir>
#include <QDirIterator>
#include <QImage>
#include <QtTest>

// Every compiled-in icon: a drawing of its own, rendered at the size its name gives, under
// the names the program asks for.
class CIconsTest : public QObject
{
    Q_OBJECT

private slots:
    void EveryDrawingIsCompiledIn();
};

void CIconsTest::EveryDrawingIsCompiledIn()
{
    InitIconResources();
    QHash<QString, QString> Compiled; // name -> resource path
    for (const char* pFolder : {":/Icons", ":/ShaderEditComponent/Icons", ":/ZamShaderEditor/Icons"})
    {
        for (QDirIterator It(QLatin1String(pFolder), {QStringLiteral("*.png")}, QDir::Files); It.hasNext();)
        {
            const QString Path = It.next();
            Compiled.insert(QFileInfo(Path).completeBaseName(), Path);
        }
    }

    const QDir Drawings(TestFiles::SourceDir() + QStringLiteral("/resources/icons"));
    const QStringList Names = Drawings.entryList({QStringLiteral("*.svg")}, QDir::Files);
    QCOMPARE(Names.size(), Compiled.size());
    for (const QString& File : Names)
    {
        const QString Name = QFileInfo(File).completeBaseName();
        const QImage Icon(Compiled.value(Name));
        QVERIFY2(!Icon.isNull(), qPrintable(Name));
        const int iSize = Name.section(QLatin1Char('_'), -1).toInt();
        QCOMPARE(Icon.size(), QSize(iSize, iSize));
        QCOMPARE(qAlpha(Icon.pixel(0, 0)), 0); // drawn shapes on transparency, not a filled square
    }

    // The places the program looks them up.
    QCOMPARE(QFileInfo(Compiled.value(QStringLiteral("binoculars_24"))).path(), QStringLiteral(":/Icons"));
    QCOMPARE(QFileInfo(Compiled.value(QStringLiteral("dx_gs_16"))).path(),
             QStringLiteral(":/ShaderEditComponent/Icons"));
    QCOMPARE(QFileInfo(Compiled.value(QStringLiteral("ZamShaderEditor_48"))).path(),
             QStringLiteral(":/ZamShaderEditor/Icons"));
}

QTEST_MAIN(CIconsTest)
#include "tst_Icons.moc"
