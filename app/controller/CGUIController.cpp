#include "CGUIController.h"

#include "AppLog_p.h"
#include "Common/ZamPreferences/ZamPreferences.h"
#include "ShaderEditComponent/compile/model/ZamStringConversion.h"

#include <QDir>
#include <QMainWindow>

namespace
{
const char* const s_pApplicationName = "ZamShaderEditor";
const QString s_OpenLastTabsKey = QStringLiteral("General/OpenLastTabs");
const QString s_CompileOutputPathKey = QStringLiteral("General/CompileOutputPath");
const QString s_CustomCommandKey = QStringLiteral("General/CustomCommand");
const QString s_LastDirectoryKey = QStringLiteral("General/LastDirectory");
const QString s_LastOpenTabsKey = QStringLiteral("General/LastOpenTabs");
const QString s_StateKey = QStringLiteral("General/State");
const QString s_GeometryKey = QStringLiteral("General/Geometry");
} // namespace

CGUIController& CGUIController::Instance()
{
    static CGUIController s_Controller(std::make_unique<CZamPreferences>(QString::fromLatin1(s_pApplicationName)));
    return s_Controller;
}

CGUIController::CGUIController(std::unique_ptr<CZamPreferences> pStore, QObject* pParent)
    : QObject(pParent)
    , m_pStore(std::move(pStore))
{
    qRegisterMetaType<Settings::SGeneral>();
    QString Tried;
    if (!m_pStore->Load(&Tried))
        qCDebug(lcZamApp, "Failed to load Preference file: %s", qPrintable(Tried));
    LoadGeneralSettings();
}

CGUIController::~CGUIController() = default;

void CGUIController::LoadGeneralSettings()
{
    m_General.bOpenLastTabs = m_pStore->GetBool(s_OpenLastTabsKey, false);
    m_General.CompileOutputPath =
        ToZamString(m_pStore->GetString(s_CompileOutputPathKey, QDir::toNativeSeparators(QDir::homePath())));
    m_General.CustomCommand = ToZamString(m_pStore->GetString(s_CustomCommandKey));
    m_General.LastDirectory = ToZamString(m_pStore->GetString(s_LastDirectoryKey));
}

bool CGUIController::SavePreferences()
{
    QString Error;
    if (m_pStore->Save(&Error))
        return true;
    qCWarning(lcZamApp, "Failed to save the preference file %s: %s", qPrintable(m_pStore->GetFilePath()),
              qPrintable(Error));
    if (!m_bSaveFailureReported)
    {
        m_bSaveFailureReported = true;
        emit PreferencesSaveFailed(Error.trimmed());
    }
    return false;
}

void CGUIController::DeliverPreferenceNotices()
{
    m_pStore->SetNoticeHandler(
        [this](const SPreferencesNotice& Notice)
        {
            // A read-only file also fails every save; the notice already says why.
            if (Notice.eKind == SPreferencesNotice::Kind_ReadOnly)
                m_bSaveFailureReported = true;
            emit PreferencesNotice(Notice.Text);
        });
}

void CGUIController::SetGeneralSettings(const Settings::SGeneral& Settings, uint uiChangedMask)
{
    if (uiChangedMask & Settings::GeneralSetting_OpenLastTabs)
    {
        m_pStore->SetBool(s_OpenLastTabsKey, Settings.bOpenLastTabs);
        m_General.bOpenLastTabs = Settings.bOpenLastTabs;
    }
    if (uiChangedMask & Settings::GeneralSetting_CompileOutputPath)
    {
        m_pStore->SetString(s_CompileOutputPathKey, ToQString(Settings.CompileOutputPath));
        m_General.CompileOutputPath = Settings.CompileOutputPath;
    }
    if (uiChangedMask & Settings::GeneralSetting_CustomCommand)
    {
        m_pStore->SetString(s_CustomCommandKey, ToQString(Settings.CustomCommand));
        m_General.CustomCommand = Settings.CustomCommand;
    }
    if (uiChangedMask & Settings::GeneralSetting_LastDirectory)
    {
        m_pStore->SetString(s_LastDirectoryKey, ToQString(Settings.LastDirectory));
        m_General.LastDirectory = Settings.LastDirectory;
    }
    SavePreferences();
    emit GeneralSettingsChanged(m_General);
}

void CGUIController::SaveWindowLayout(const QMainWindow& Window)
{
    m_pStore->SetData(s_StateKey, Window.saveState(0));
    m_pStore->SetData(s_GeometryKey, Window.saveGeometry());
    SavePreferences();
}

void CGUIController::RestoreWindowLayout(QMainWindow& Window) const
{
    const QByteArray State = m_pStore->GetData(s_StateKey);
    const QByteArray Geometry = m_pStore->GetData(s_GeometryKey);
    Window.restoreState(State, 0);
    Window.restoreGeometry(Geometry);
}

bool CGUIController::HasWindowLayout() const
{
    return m_pStore->HasKey(s_GeometryKey);
}

CZamTArray<CZamTString> CGUIController::LoadLastOpenTabs() const
{
    CZamTArray<CZamTString> Paths;
    for (const QString& Path : m_pStore->GetStringArray(s_LastOpenTabsKey))
        Paths.Append(ToZamString(Path));
    return Paths;
}

void CGUIController::StoreLastOpenTabs(const CZamTArray<CZamTString>& Paths)
{
    QStringList List;
    for (uint32_t i = 0; i < Paths.GetSize(); ++i)
        List << ToQString(Paths[i]);
    m_pStore->SetStringArray(s_LastOpenTabsKey, List);
    SavePreferences();
}
