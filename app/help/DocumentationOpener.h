#pragma once

#include "HelpLinks.h"

#include <QStringList>

class CZamPreferences;
class QWidget;

// Opens a documentation file (the user manual) with the desktop's viewer. It tries, in
// order: the location the user chose earlier (stored under "OpenDocs/<file name>"), the
// given directory (relative to the executable's folder when relative) and the installed
// documentation folder. A candidate that does not exist, or that no viewer opens, is a failed
// try. When every try fails the user is told and asked to locate the file; a file that then
// opens is remembered, so the next request opens it directly.
class CDocumentationOpener
{
public:
    using FileChooser =
        std::function<QString(QWidget* pParent, const QString& Title, const QString& Directory, const QString& Filter)>;
    using Warner = std::function<void(QWidget* pParent, const QString& Title, const QString& Text)>;

    explicit CDocumentationOpener(CZamPreferences& Store);

    // Stand-ins for the desktop viewer, the file chooser and the warning box.
    void SetUrlOpener(UrlOpener Opener) { m_Opener = std::move(Opener); }
    void SetFileChooser(FileChooser Chooser) { m_Chooser = std::move(Chooser); }
    void SetWarner(Warner Warn) { m_Warn = std::move(Warn); }

    static QString StoredLocationKey(const QString& FileName);
    // The installed documentation folder, seen from the executable's folder.
    static QString InstalledDocumentationFolder();

    // The places tried for FileName, in order (absolute paths; the stored one only when set).
    QStringList Candidates(const QString& Directory, const QString& FileName) const;

    // True when a viewer was started for the file.
    bool Open(QWidget* pParent, const QString& Directory, const QString& FileName);

private:
    bool TryOpen(const QString& Path) const;
    bool LocateAndOpen(QWidget* pParent, const QString& Directory, const QString& FileName);

    CZamPreferences& m_Store;
    UrlOpener m_Opener;
    FileChooser m_Chooser;
    Warner m_Warn;
};

// The Help menu's entry: CDocumentationOpener with the desktop viewer and standard dialogs.
bool OpenDocumentation(QWidget* pParent, const QString& Directory, const QString& FileName, CZamPreferences& Store);
