#include "DocumentationOpener.h"

#include "Common/ZamPreferences/ZamPreferences.h"
#include "HelpLog_p.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QUrl>

namespace
{
QString ChooseFileWithDialog(QWidget* pParent, const QString& Title, const QString& Directory, const QString& Filter)
{
    return QFileDialog::getOpenFileName(pParent, Title, Directory, Filter);
}

void WarnWithMessageBox(QWidget* pParent, const QString& Title, const QString& Text)
{
    QMessageBox::warning(pParent, Title, Text);
}

// A relative directory is taken from the executable's folder, not from wherever the program
// was started.
QString ResolveDirectory(const QString& Directory)
{
    if (QDir::isAbsolutePath(Directory))
        return QDir::cleanPath(Directory);
    return QDir::cleanPath(QDir(QCoreApplication::applicationDirPath()).filePath(Directory));
}
} // namespace

CDocumentationOpener::CDocumentationOpener(CZamPreferences& Store)
    : m_Store(Store)
    , m_Opener(OpenUrlWithDesktop)
    , m_Chooser(ChooseFileWithDialog)
    , m_Warn(WarnWithMessageBox)
{
}

QString CDocumentationOpener::StoredLocationKey(const QString& FileName)
{
    return QStringLiteral("OpenDocs/") + FileName;
}

QString CDocumentationOpener::InstalledDocumentationFolder()
{
    return ResolveDirectory(QStringLiteral(ZAM_DOC_FROM_BIN));
}

QStringList CDocumentationOpener::Candidates(const QString& Directory, const QString& FileName) const
{
    QStringList Paths;
    const QString Stored = m_Store.GetString(StoredLocationKey(FileName));
    if (!Stored.isEmpty())
        Paths << Stored;
    Paths << QDir(ResolveDirectory(Directory)).filePath(FileName);
    Paths << QDir(InstalledDocumentationFolder()).filePath(FileName);
    Paths.removeDuplicates();
    return Paths;
}

bool CDocumentationOpener::TryOpen(const QString& Path) const
{
    // The desktop's opener reports success for a file that is not there; only existing
    // files are handed to it.
    if (!QFileInfo(Path).isFile())
        return false;
    return m_Opener(QUrl::fromLocalFile(QFileInfo(Path).absoluteFilePath()));
}

bool CDocumentationOpener::Open(QWidget* pParent, const QString& Directory, const QString& FileName)
{
    for (const QString& Path : Candidates(Directory, FileName))
    {
        if (TryOpen(Path))
            return true;
    }
    return LocateAndOpen(pParent, Directory, FileName);
}

bool CDocumentationOpener::LocateAndOpen(QWidget* pParent, const QString& Directory, const QString& FileName)
{
    m_Warn(pParent, QStringLiteral("Documentation File Not Found"),
           QStringLiteral("Please locate the file: ") + FileName);
    const QString StartFolder =
        QFileInfo(ResolveDirectory(Directory)).isDir() ? ResolveDirectory(Directory) : QDir::homePath();
    const QString Chosen = m_Chooser(pParent, QStringLiteral("Open Source File"), StartFolder,
                                     QStringLiteral("Portable Document Format (*.pdf)"));
    if (Chosen.isEmpty())
        return false;

    const QString Path = QFileInfo(Chosen).absoluteFilePath();
    if (!TryOpen(Path))
    {
        m_Warn(pParent, QStringLiteral("File Open Failed"),
               QStringLiteral("No program could open the file:\n") + QDir::toNativeSeparators(Path));
        return false;
    }
    m_Store.SetString(StoredLocationKey(FileName), Path);
    QString Error;
    if (!m_Store.Save(&Error))
        qCWarning(lcZamHelp) << "The location of" << FileName << "could not be saved:" << Error;
    return true;
}

bool OpenDocumentation(QWidget* pParent, const QString& Directory, const QString& FileName, CZamPreferences& Store)
{
    return CDocumentationOpener(Store).Open(pParent, Directory, FileName);
}
