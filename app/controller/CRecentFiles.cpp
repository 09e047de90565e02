#include "CRecentFiles.h"

#include "AppLog_p.h"
#include "Common/ZamPreferences/ZamPreferences.h"

#include <QAction>
#include <QFileInfo>
#include <QMenu>

namespace
{
const char* const s_pEntryName = "ARecentFile";
const char* const s_pSeparatorName = "TheRecentFileSeparator";
} // namespace

CRecentFiles::CRecentFiles(CZamPreferences* pStore, unsigned int uiFlags, const QString& Prefix, unsigned int uiMaximum,
                           QObject* pParent)
    : QObject(pParent)
    , m_uiMaximum(uiMaximum)
    , m_pStore(pStore)
    , m_Key(Prefix.isEmpty() ? QStringLiteral("Recent files") : Prefix + QStringLiteral("/Recent files"))
    , m_uiFlags(uiFlags)
{
}

void CRecentFiles::Attach(QMenu* pMenu)
{
    m_pMenu = pMenu;
    m_pSeparator = pMenu->addSeparator();
    m_pSeparator->setObjectName(QLatin1String(s_pSeparatorName));
    QAction* pClear = pMenu->addAction(tr("Clear recent files"));
    pClear->setObjectName(QStringLiteral("ClearRecentFiles"));
    connect(pClear, &QAction::triggered, this, &CRecentFiles::clear);
    connect(pClear, &QAction::triggered, this, &CRecentFiles::refresh);
    connect(pMenu, &QMenu::aboutToShow, this, &CRecentFiles::refresh);
    refresh();
}

QStringList CRecentFiles::GetEntries() const
{
    return m_pStore->GetStringArray(m_Key);
}

void CRecentFiles::Add(const QString& Path)
{
    if ((m_uiFlags & Flag_OnlyExistingFiles) && !QFileInfo::exists(Path))
        return;
    QString Entry = Path;
    Entry.replace(QLatin1Char('/'), QLatin1Char('\\'));
    QStringList List = GetEntries();
    List.removeOne(Entry);
    List.prepend(Entry);
    if (static_cast<unsigned int>(List.size()) > m_uiMaximum)
        List.removeLast();
    m_pStore->SetStringArray(m_Key, List);
    Save();
    refresh();
}

void CRecentFiles::clear()
{
    m_pStore->SetStringArray(m_Key, QStringList());
    Save();
}

void CRecentFiles::Save()
{
    QString Error;
    if (!m_pStore->Save(&Error))
        qCWarning(lcZamApp, "Failed to save the recent files: %s", qPrintable(Error));
}

void CRecentFiles::refresh()
{
    if (!m_pMenu)
        return;
    for (QAction* pAction : m_pMenu->actions())
    {
        if (pAction->objectName() == QLatin1String(s_pEntryName))
        {
            m_pMenu->removeAction(pAction);
            pAction->deleteLater();
        }
    }
    const QStringList List = GetEntries();
    for (int i = 0; i < List.size(); ++i)
    {
        // A file name with "&" must not turn into a mnemonic.
        QString Shown = List.at(i);
        Shown.replace(QLatin1Char('&'), QLatin1String("&&"));
        QAction* pAction = new QAction(QStringLiteral("%1 %2").arg(i + 1).arg(Shown), m_pMenu);
        pAction->setObjectName(QLatin1String(s_pEntryName));
        pAction->setData(List.at(i));
        connect(pAction, &QAction::triggered, this, &CRecentFiles::fileSelected);
        m_pMenu->insertAction(m_pSeparator, pAction);
    }
}

void CRecentFiles::fileSelected()
{
    const QAction* pAction = qobject_cast<const QAction*>(sender());
    if (!pAction)
        return;
    QString Path = pAction->data().toString();
    // Stored with back slashes; a back slash is never a separator here.
    Path.replace(QLatin1Char('\\'), QLatin1Char('/'));
    emit triggered(Path);
}
