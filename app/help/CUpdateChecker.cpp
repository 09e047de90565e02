#include "CUpdateChecker.h"

#include "BuildInfo.h"

#include <QMessageBox>
#include <QWidget>

CUpdateChecker::CUpdateChecker(const QString& AppName, QObject* pParent)
    : QObject(pParent)
    , m_AppName(AppName)
{
}

QString CUpdateChecker::MessageTitle()
{
    return QStringLiteral("Check for Updates");
}

QString CUpdateChecker::MessageText() const
{
    return QStringLiteral("Installed: %1.\n\n"
                          "Updates come through your system's package manager, or as a new build from source. "
                          "%2 does not look for updates on the internet.")
        .arg(ApplicationTextWithBuild(m_AppName), m_AppName);
}

void CUpdateChecker::OnForceCheckForUpdates()
{
    QMessageBox::information(qobject_cast<QWidget*>(parent()), MessageTitle(), MessageText());
}
