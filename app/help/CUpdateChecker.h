#pragma once

#include <QObject>
#include <QString>

// "Check for Updates". There is no update server: the program is installed and updated by
// the system's package manager, so the check tells which build is installed and where
// updates come from. The network is never used.
class CUpdateChecker : public QObject
{
    Q_OBJECT

public:
    // AppName names the program in the message; a widget parent also parents the message.
    CUpdateChecker(const QString& AppName, QObject* pParent);

    static QString MessageTitle();
    QString MessageText() const;

public slots:
    // The Help menu's check: shows the message.
    void OnForceCheckForUpdates();
    // The check at start-up: with nothing to ask, it does nothing and shows nothing.
    void OnStartupCheck() {}

private:
    QString m_AppName;
};
