#include "ShaderEditComponent/IconResources.h"
#include "tests/support/TestFiles.h"

#include <QDir>
#include <QDirIterator>
#include <QGuiApplication>
#include <QIcon>
#include <QImage>
#include <QPixmap>
#include <QtTest>

// Every compiled-in icon: a drawing of its own, rendered at the size its name gives and at
// twice that size for screens scaled to 200 %, under the names the program asks for.
class CIconsTest : public QObject
{
    Q_OBJECT

private slots:
    void EveryDrawingIsCompiledIn();
    void ScaledScreensGetTheLargeRendering();
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
    QCOMPARE(2 * Names.size(), Compiled.size());
    for (const QString& File : Names)
    {
        const QString Name = QFileInfo(File).completeBaseName();
        const int iSize = Name.section(QLatin1Char('_'), -1).toInt();
        for (int iScale : {1, 2})
        {
            const QString Key = iScale == 1 ? Name : Name + QStringLiteral("@2x");
            const QImage Icon(Compiled.value(Key));
            QVERIFY2(!Icon.isNull(), qPrintable(Key));
            QCOMPARE(Icon.size(), QSize(iScale * iSize, iScale * iSize));
            QCOMPARE(qAlpha(Icon.pixel(0, 0)), 0); // drawn shapes on transparency, not a filled square
        }
    }

    // The places the program looks them up.
    QCOMPARE(QFileInfo(Compiled.value(QStringLiteral("binoculars_24"))).path(), QStringLiteral(":/Icons"));
    QCOMPARE(QFileInfo(Compiled.value(QStringLiteral("dx_gs_16"))).path(),
             QStringLiteral(":/ShaderEditComponent/Icons"));
    QCOMPARE(QFileInfo(Compiled.value(QStringLiteral("ZamShaderEditor_48"))).path(),
             QStringLiteral(":/ZamShaderEditor/Icons"));
}

void CIconsTest::ScaledScreensGetTheLargeRendering()
{
    InitIconResources();
    QCOMPARE(qApp->devicePixelRatio(), 2.0);
    // What a tool button asks for at 200 %: 24 logical pixels at a device pixel ratio of 2.
    // The icon must hand out the 48-pixel drawing, not the 24-pixel one blown up.
    const QIcon Icon(QStringLiteral(":/Icons/compile_24.png"));
    const QPixmap Scaled = Icon.pixmap(QSize(24, 24), 2.0);
    QCOMPARE(Scaled.size(), QSize(48, 48));
    // Compared as a pixmap holds them (premultiplied), so rounding cannot tell them apart.
    QImage Large(QStringLiteral(":/Icons/compile_24@2x.png"));
    Large.setDevicePixelRatio(2.0);
    QCOMPARE(Scaled.toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied),
             Large.convertToFormat(QImage::Format_ARGB32_Premultiplied));
}

int main(int iArgc, char** ppArgv)
{
    // The program as it runs on a screen scaled to 200 %.
    qputenv("QT_SCALE_FACTOR", "2");
    QGuiApplication App(iArgc, ppArgv);
    CIconsTest Test;
    return QTest::qExec(&Test, iArgc, ppArgv);
}
#include "tst_Icons.moc"
