#include "app/DesktopIntegration.h"
#include "ShaderEditComponent/compile/model/ShaderDocType.h"
#include "tests/support/TestFiles.h"

#include <QImage>
#include <QMimeDatabase>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>
#include <QXmlStreamReader>

namespace
{
QString Packaging(const QString& Name)
{
    return TestFiles::SourceDir() + QStringLiteral("/packaging/") + Name;
}

// Runs Program; returns its exit code, with everything it printed in Output.
int Run(const QString& Program, const QStringList& Arguments, QString* pOutput,
        const QProcessEnvironment& Environment = QProcessEnvironment::systemEnvironment())
{
    QProcess Process;
    Process.setProcessEnvironment(Environment);
    Process.setProcessChannelMode(QProcess::MergedChannels);
    Process.start(Program, Arguments);
    if (!Process.waitForFinished(120000))
        return -1;
    *pOutput = QString::fromLocal8Bit(Process.readAll());
    return Process.exitStatus() == QProcess::NormalExit ? Process.exitCode() : -1;
}

// The texts (or the Attribute's values) of every element called Name in the XML file.
QStringList ElementValues(const QString& Path, const QString& Name, const QString& Attribute = {})
{
    QXmlStreamReader Reader(TestFiles::ReadAll(Path));
    QStringList Values;
    while (!Reader.atEnd())
    {
        if (Reader.readNext() == QXmlStreamReader::StartElement && Reader.name() == Name)
            Values << (Attribute.isEmpty() ? Reader.readElementText()
                                           : Reader.attributes().value(Attribute).toString());
    }
    return Reader.hasError() ? QStringList{QStringLiteral("XML error: ") + Reader.errorString()} : Values;
}

// The value of Key in the desktop entry's main group (QSettings would take ';' for a comment).
QString EntryValue(const QString& Path, const QString& Key)
{
    for (const QByteArray& Line : TestFiles::ReadAll(Path).split('\n'))
    {
        if (Line.startsWith(Key.toUtf8() + '='))
            return QString::fromUtf8(Line.mid(Key.size() + 1));
    }
    return QString();
}

QStringList MimePackageTypes()
{
    return ElementValues(Packaging(DesktopApplicationId() + ".mime.xml"), "mime-type", "type");
}
} // namespace

// The files that make the editor a desktop application, checked by the tools the desktop
// itself uses to read them, and the tree cmake --install makes, run from where it lands.
class CDesktopFilesTest : public QObject
{
    Q_OBJECT

private slots:
    void DesktopEntryAndMetainfoValidate();
    void MimeTypesResolveOurExtensionsOnly();
    void InstalledTreeRuns();
};

void CDesktopFilesTest::DesktopEntryAndMetainfoValidate()
{
    const QString Entry = Packaging(DesktopApplicationId() + ".desktop");
    const QString Metainfo = Packaging(DesktopApplicationId() + ".metainfo.xml");
    QString Output;
    QCOMPARE(Run(ZAM_DESKTOP_FILE_VALIDATE, {Entry}, &Output), 0);
    QVERIFY2(Output.trimmed().isEmpty(), qPrintable(Output)); // not even a hint
    QVERIFY2(Run(ZAM_APPSTREAMCLI, {"validate", "--no-net", Metainfo}, &Output) == 0, qPrintable(Output));

    // One id everywhere: the entry's file name is what the program tells Wayland.
    // One file per start: the program opens its first argument only, and each further start
    // hands its file to the running editor, so every selected file opens.
    QCOMPARE(EntryValue(Entry, "Exec"), QStringLiteral("zamshadereditor %f"));
    QCOMPARE(EntryValue(Entry, "Icon"), DesktopApplicationId());
    QCOMPARE(ElementValues(Metainfo, "id"), QStringList{DesktopApplicationId()});
    QCOMPARE(ElementValues(Metainfo, "launchable"), QStringList{DesktopApplicationId() + ".desktop"});

    // The entry opens, and the metainfo announces, our own types plus the one the desktop has.
    QStringList Expected = MimePackageTypes() << QStringLiteral("text/x-opencl-src");
    QStringList EntryTypes = EntryValue(Entry, "MimeType").split(';', Qt::SkipEmptyParts);
    QStringList Announced = ElementValues(Metainfo, "mediatype");
    Expected.sort();
    EntryTypes.sort();
    Announced.sort();
    QCOMPARE(EntryTypes, Expected);
    QCOMPARE(Announced, Expected);
}

void CDesktopFilesTest::MimeTypesResolveOurExtensionsOnly()
{
    // The package compiled as the desktop compiles it, in a prefix of its own that comes
    // before the system's, read by Qt as every file dialog reads it.
    QTemporaryDir Prefix;
    QVERIFY(Prefix.isValid());
    const QString Mime = Prefix.filePath(QStringLiteral("mime"));
    QVERIFY(QDir().mkpath(Mime + QStringLiteral("/packages")));
    QVERIFY(QFile::copy(Packaging(DesktopApplicationId() + ".mime.xml"),
                        Mime + QStringLiteral("/packages/") + DesktopApplicationId() + ".xml"));
    QString Output;
    QVERIFY2(Run(ZAM_UPDATE_MIME_DATABASE, {Mime}, &Output) == 0, qPrintable(Output));
    QVERIFY(QFileInfo::exists(Mime + QStringLiteral("/mime.cache")));
    qputenv("XDG_DATA_DIRS", (Prefix.path() + QStringLiteral(":/usr/local/share:/usr/share")).toLocal8Bit());

    const QMimeDatabase Database;
    const QList<QPair<const char*, const char*>> Ours = {
        {"lit.frag", "text/x-glsl"}, {"lit.vert", "text/x-glsl"}, {"common.glsl", "text/x-glsl"},
        {"lit.vsh", "text/x-glsl"},  {"lit.fsh", "text/x-glsl"},  {"lit.hlsl", "text/x-hlsl"},
        {"lit.fx", "text/x-hlsl"},   {"bloom.zfx", "text/x-zfx"}, {"kernel.cl", "text/x-opencl-src"}};
    for (const auto& [pFile, pType] : Ours)
    {
        const QMimeType Type = Database.mimeTypeForFile(QLatin1String(pFile), QMimeDatabase::MatchExtension);
        QCOMPARE(Type.name(), QLatin1String(pType));
        QVERIFY(Type.inherits(QStringLiteral("text/plain")));
        // Every name the desktop sends us is one the editor opens as a shader.
        const QString Extension = QFileInfo(QLatin1String(pFile)).suffix();
        QVERIFY2(DetectDocumentType(QString(), Extension) != DocType_PlainText, pFile);
    }
    // Names that belong to others keep their owners.
    QCOMPARE(Database.mimeTypeForFile("page.ps", QMimeDatabase::MatchExtension).name(),
             QStringLiteral("application/postscript"));
    QCOMPARE(Database.mimeTypeForFile("main.gs", QMimeDatabase::MatchExtension).name(), QStringLiteral("text/x-genie"));
    QVERIFY(!MimePackageTypes().contains(Database.mimeTypeForFile("shader.vs", QMimeDatabase::MatchExtension).name()));
}

void CDesktopFilesTest::InstalledTreeRuns()
{
    QTemporaryDir Prefix;
    QVERIFY(Prefix.isValid());
    QString Output;
    QVERIFY2(Run(ZAM_CMAKE_COMMAND, {"--install", ZAM_BUILD_DIR, "--prefix", Prefix.path()}, &Output) == 0,
             qPrintable(Output));
    const QDir Root(Prefix.path());
    const QString Bin = Root.filePath(ZAM_INSTALL_BINDIR);
    QVERIFY(QFileInfo(Bin + "/zamshadereditor").isExecutable());
    // The bundled compilers are the editor's alone: not on everybody's PATH.
    QVERIFY(!QFileInfo::exists(Bin + "/glslcompiler_zc1"));
    for (const char* pCompiler :
         {"glslcompiler_zc1", "glslcompiler_zc2", "glslcompiler_zc3", "glslcompiler_zd1", "clcompiler_zc1"})
        QVERIFY2(QFileInfo(Root.filePath(ZAM_INSTALL_LIBEXECDIR "/zamshadereditor/") + pCompiler).isExecutable(),
                 pCompiler);

    const QString Share = Root.filePath(ZAM_INSTALL_DATADIR);
    const QString Id = DesktopApplicationId();
    for (const QString& File : {"applications/" + Id + ".desktop", "metainfo/" + Id + ".metainfo.xml",
                                "mime/packages/" + Id + ".xml", "icons/hicolor/scalable/apps/" + Id + ".svg"})
        QVERIFY2(QFileInfo::exists(Share + "/" + File), qPrintable(File));
    for (int iSize : {16, 32, 48, 128, 256})
    {
        const QImage Icon(QStringLiteral("%1/icons/hicolor/%2x%2/apps/%3.png").arg(Share).arg(iSize).arg(Id));
        QCOMPARE(Icon.size(), QSize(iSize, iSize));
    }
    // The manual where the Help menu looks from the installed executable's folder.
    QVERIFY(QFileInfo::exists(QDir(Bin).filePath(ZAM_TEST_DOC_FROM_BIN "/ZamShaderEditor.User Manual.pdf")));

    // The installed editor, far from the build tree, compiles with the compiler it finds
    // through its own folder.
    QTemporaryDir Work;
    const QString Shader = TestFiles::WriteTestFile(Work.path(), "installed.frag",
                                                    "precision mediump float;\nvoid main()\n{\n"
                                                    "    gl_FragColor = vec4(0.25, 0.5, 1.0, 1.0);\n}\n");
    QProcessEnvironment Environment = QProcessEnvironment::systemEnvironment();
    Environment.insert("XDG_CONFIG_HOME", Work.filePath("config"));
    Environment.insert("PATH", "/usr/bin:/bin");
    QCOMPARE(Run(Bin + "/zamshadereditor", {"--compile", Shader}, &Output, Environment), 0);
    QVERIFY2(Output.contains(QStringLiteral("Compile succeeded.")), qPrintable(Output));
}

QTEST_MAIN(CDesktopFilesTest)
#include "tst_DesktopFiles.moc"
