#pragma once

// Where a test finds the build and the sources (set by zam_add_test), and whole-file reads and
// writes for the files tests make and check.

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QString>

namespace TestFiles
{
// The build's bin folder: the editor, the bundled compilers and the test programs.
inline QString BinDir()
{
    return qEnvironmentVariable("ZAM_BIN_DIR");
}

inline QString Program(const QString& Name)
{
    return QDir(BinDir()).filePath(Name);
}

// The top of the source tree.
inline QString SourceDir()
{
    return qEnvironmentVariable("ZAM_SOURCE_DIR");
}

// The file's bytes; empty when it cannot be read.
inline QByteArray ReadAll(const QString& Path)
{
    QFile File(Path);
    return File.open(QIODevice::ReadOnly) ? File.readAll() : QByteArray();
}

// Replaces the file with Bytes, making its folder first. False when any of it failed.
inline bool WriteAll(const QString& Path, const QByteArray& Bytes)
{
    QDir().mkpath(QFileInfo(Path).absolutePath());
    QFile File(Path);
    return File.open(QIODevice::WriteOnly | QIODevice::Truncate) && File.write(Bytes) == Bytes.size();
}

// Writes Bytes to Name inside Folder, making the folders on the way, and returns the file's
// path. A failure ends the test program: nothing after it would mean anything.
inline QString WriteTestFile(const QString& Folder, const QString& Name, const QByteArray& Bytes)
{
    const QString Path = QDir(Folder).filePath(Name);
    if (!WriteAll(Path, Bytes))
        qFatal("cannot write the test file %s", qPrintable(Path));
    return Path;
}
} // namespace TestFiles
