#include "InstallLayout.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

QString InstalledExamplesFolder()
{
    return QDir::cleanPath(QCoreApplication::applicationDirPath()
                           + QStringLiteral("/../share/zamshadereditor/examples"));
}

QString FindInstalledFile(const QString& Folder, const QString& Name)
{
    const QFileInfo Info(QDir(Folder).filePath(Name));
    return Info.isFile() ? Info.absoluteFilePath() : QString();
}
