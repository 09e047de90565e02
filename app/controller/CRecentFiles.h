#pragma once

#include "Tools/ZamTString.h"

#include <QObject>
#include <QPointer>

class CZamPreferences;
class QAction;
class QMenu;

// The most-recently-opened files, kept in the preference store newest first and mirrored
// into a menu. Paths are stored with back slashes (the file format's convention on every
// platform) and turned back into native paths when an entry is chosen.
class CRecentFiles : public QObject
{
    Q_OBJECT

public:
    enum EFlags : unsigned int
    {
        Flag_OnlyExistingFiles = 2,
    };

    // The list lives under "<Prefix>/Recent files" (or "Recent files" for an empty prefix).
    // pStore must outlive this object.
    CRecentFiles(CZamPreferences* pStore, unsigned int uiFlags, const QString& Prefix, unsigned int uiMaximum,
                 QObject* pParent = nullptr);

    void Attach(QMenu* pMenu);
    void Add(const QString& Path);
    QStringList GetEntries() const;

signals:
    void triggered(const QString& Path);

public slots:
    void fileSelected();
    void clear();
    void refresh();

private:
    void Save();

    unsigned int m_uiMaximum;
    CZamPreferences* m_pStore;
    QString m_Key;
    unsigned int m_uiFlags;
    QPointer<QMenu> m_pMenu;
    QAction* m_pSeparator = nullptr;
};
