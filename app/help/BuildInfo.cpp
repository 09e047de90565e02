#include "BuildInfo.h"

#include "ZamBuildNumber.h"

#include <QStringList>
#include <QSysInfo>
#include <QtGlobal>

#include <tinyxml.h>

#if __has_include(<glslang/build_info.h>)
#include <glslang/build_info.h>
#endif

QString BuildVersion()
{
    return QStringLiteral(ZAM_PROJECT_VERSION);
}

int BuildNumber()
{
    return ZAM_BUILD_NUMBER;
}

QString BuildCommit()
{
    return QStringLiteral(ZAM_BUILD_COMMIT);
}

QString BuildIdentifier()
{
    return QStringLiteral("SDK build %1@%2").arg(BuildVersion()).arg(BuildNumber());
}

QString ApplicationTextWithBuild(const QString& AppText)
{
    return AppText + QStringLiteral(" (") + BuildIdentifier() + QLatin1Char(')');
}

QString LibraryVersionLine()
{
    QStringList Entries;
    Entries << QStringLiteral("Qt version ") + QString::fromLatin1(qVersion());
    // The preference file is read and written with TinyXML.
    Entries << QStringLiteral("TinyXML %1.%2.%3")
                   .arg(TIXML_MAJOR_VERSION)
                   .arg(TIXML_MINOR_VERSION)
                   .arg(TIXML_PATCH_VERSION);
#ifdef GLSLANG_VERSION_MAJOR
    // The bundled compilers parse GLSL with glslang; they are built against the same headers.
    Entries << QStringLiteral("glslang %1.%2.%3")
                   .arg(GLSLANG_VERSION_MAJOR)
                   .arg(GLSLANG_VERSION_MINOR)
                   .arg(GLSLANG_VERSION_PATCH);
#endif
    return Entries.join(QStringLiteral(" | "));
}

QString IdentificationText(const QString& AppText)
{
    QStringList Lines;
    Lines << ApplicationTextWithBuild(AppText);
    if (!BuildCommit().isEmpty())
        Lines << QStringLiteral("Commit: ") + BuildCommit();
    Lines << QStringLiteral("Qt: %1 (built with %2)")
                 .arg(QString::fromLatin1(qVersion()), QStringLiteral(QT_VERSION_STR));
    Lines << QStringLiteral("System: %1, %2 %3, %4")
                 .arg(QSysInfo::prettyProductName(), QSysInfo::kernelType(), QSysInfo::kernelVersion(),
                      QSysInfo::currentCpuArchitecture());
    return Lines.join(QLatin1Char('\n'));
}
