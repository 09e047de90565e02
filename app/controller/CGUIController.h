#pragma once

#include "GeneralSettings.h"
#include "Tools/ZamTArray.h"
#include "Tools/ZamTString.h"

#include <QObject>
#include <QString>

#include <memory>

class CZamPreferences;
class QMainWindow;

// The application-level controller: owns the one preference store of the process (every
// other controller borrows it), the general settings, the window layout and the list of
// tabs of the last session.
class CGUIController : public QObject
{
    Q_OBJECT

public:
    // The process-wide controller on the user's preference file, created on first use and
    // destroyed at process exit. GUI thread only.
    static CGUIController& Instance();

    // A controller on a store of the caller's; loads it. Used by Instance() and by tests.
    explicit CGUIController(std::unique_ptr<CZamPreferences> pStore, QObject* pParent = nullptr);
    ~CGUIController() override;

    const Settings::SGeneral& GetGeneralSettings() const { return m_General; }
    CZamPreferences& GetPreferences() { return *m_pStore; }

    // Writes the store to disk. The first failure of the process is announced once through
    // PreferencesSaveFailed (unless a notice already told why); later ones only go to the
    // debug stream.
    bool SavePreferences();
    // From now on, what the store has to tell the user about the file (kept aside, read-only)
    // comes as PreferencesNotice, the notices so far at once. Called once the receivers are
    // connected.
    void DeliverPreferenceNotices();

    void SaveWindowLayout(const QMainWindow& Window);
    void RestoreWindowLayout(QMainWindow& Window) const;
    bool HasWindowLayout() const;

    CZamTArray<CZamTString> LoadLastOpenTabs() const;
    // Stores the paths (an empty list stores an empty array) and saves the file.
    void StoreLastOpenTabs(const CZamTArray<CZamTString>& Paths);

signals:
    void GeneralSettingsChanged(const Settings::SGeneral& Settings);
    void PreferencesSaveFailed(const QString& Reason);
    void PreferencesNotice(const QString& Text);

public slots:
    void SetGeneralSettings(const Settings::SGeneral& Settings, uint uiChangedMask);

private:
    void LoadGeneralSettings();

    std::unique_ptr<CZamPreferences> m_pStore;
    Settings::SGeneral m_General;
    bool m_bSaveFailureReported = false;
};
