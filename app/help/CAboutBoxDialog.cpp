#include "CAboutBoxDialog.h"

#include "BuildInfo.h"
#include "Common/ZamPreferences/ZamPreferences.h"
#include "HelpLog_p.h"
#include "HelpResources.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPixmap>
#include <QPushButton>
#include <QVBoxLayout>

namespace
{
const char kWhite[] = "color: rgb(255, 255, 255);";
const char kLinkColour[] = "#9cc8ff";
// Used when the splash image cannot be loaded, so the box keeps a sensible shape.
const QSize kFallbackSize(520, 340);

QLabel* AddWhiteLabel(QWidget* pParent, const char* pObjectName, const QString& Text)
{
    QLabel* pLabel = NewLabel(pParent, QString::fromLatin1(pObjectName), Text);
    pLabel->setStyleSheet(QString::fromLatin1(kWhite));
    return pLabel;
}

QLabel* AddWhiteLinkLabel(QWidget* pParent, const char* pObjectName, const QString& Url, const QString& Text)
{
    QLabel* pLabel =
        NewLinkLabel(pParent, QString::fromLatin1(pObjectName), Url, Text, QString::fromLatin1(kLinkColour));
    pLabel->setStyleSheet(QString::fromLatin1(kWhite));
    return pLabel;
}
} // namespace

CAboutBoxDialog::CAboutBoxDialog(QWidget* pParent, const QString& AppText, const QString& SplashImage,
                                 CZamPreferences& Store, bool bAlwaysShow)
    : QDialog(pParent)
    , m_Store(Store)
    , m_Opener(OpenUrlWithDesktop)
{
    InitHelpResources();
    setObjectName(QStringLiteral("AboutBoxClass"));
    setWindowTitle(QStringLiteral("About ") + AppText);
    BuildWidgets(AppText);
    SetBackground(SplashImage);

    const bool bShowAtStartUp = m_Store.GetBool(ShowSplashKey(), true);
    m_bShow = bAlwaysShow || bShowAtStartUp;
    m_pShowAtStartUp->setChecked(bShowAtStartUp);
    // Connected after the initial state, so opening the box never rewrites the file.
    connect(m_pShowAtStartUp, &QCheckBox::stateChanged, this, &CAboutBoxDialog::onCheckBoxStateChanged);
}

QString CAboutBoxDialog::ShowSplashKey()
{
    // The store ignores keys with an empty segment, so the leading "/" of "/About/ShowSplash"
    // (the root of the preference tree) is left out: the value lives in the "About" group.
    return QStringLiteral("About/ShowSplash");
}

void CAboutBoxDialog::BuildWidgets(const QString& AppText)
{
    QLabel* pAppVersion = AddWhiteLabel(this, "AppVersionLabel", ApplicationTextWithBuild(AppText));
    QFont TitleFont = pAppVersion->font();
    TitleFont.setBold(true);
    pAppVersion->setFont(TitleFont);

    QLabel* pUses = AddWhiteLabel(this, "UsesLabel", QStringLiteral("Uses"));
    pUses->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    QLabel* pVersions = AddWhiteLabel(this, "VersionLabel", LibraryVersionLine());
    pVersions->setWordWrap(true);
    QLabel* pEmail =
        AddWhiteLinkLabel(this, "EmailLabel", QStringLiteral("mailto:") + SupportEmailAddress(), SupportEmailAddress());
    QLabel* pWebsite = AddWhiteLinkLabel(this, "WebsiteLabel", WebsiteUrl(), WebsiteUrl());
    QLabel* pCopyright = AddWhiteLabel(this, "label", CopyrightLine());
    connect(pEmail, &QLabel::linkActivated, this, &CAboutBoxDialog::launchLink);
    connect(pWebsite, &QLabel::linkActivated, this, &CAboutBoxDialog::launchLink);

    m_pShowAtStartUp = new QCheckBox(QStringLiteral("Show at startup"), this);
    m_pShowAtStartUp->setObjectName(QStringLiteral("ShowAtStartUpCB"));
    m_pShowAtStartUp->setStyleSheet(QString::fromLatin1(kWhite));
    QPushButton* pOk = new QPushButton(QStringLiteral("OK"), this);
    pOk->setObjectName(QStringLiteral("OkButton"));
    pOk->setDefault(true);
    connect(pOk, &QPushButton::clicked, this, &QDialog::close);

    QHBoxLayout* pUsesRow = new QHBoxLayout;
    pUsesRow->addWidget(pUses);
    pUsesRow->addWidget(pVersions, 1);
    QHBoxLayout* pButtonRow = new QHBoxLayout;
    pButtonRow->addWidget(m_pShowAtStartUp);
    pButtonRow->addStretch(1);
    pButtonRow->addWidget(pOk);

    // The upper part of the splash image carries the logo and the name; the texts go below.
    QVBoxLayout* pLayout = new QVBoxLayout(this);
    pLayout->setContentsMargins(32, 144, 32, 18);
    pLayout->setSpacing(4);
    pLayout->addWidget(pAppVersion);
    pLayout->addLayout(pUsesRow);
    pLayout->addWidget(pEmail);
    pLayout->addWidget(pWebsite);
    pLayout->addWidget(pCopyright);
    pLayout->addStretch(1);
    pLayout->addLayout(pButtonRow);
}

void CAboutBoxDialog::SetBackground(const QString& SplashImage)
{
    const QPixmap Splash(SplashImage);
    QPalette Palette = palette();
    if (Splash.isNull())
    {
        qCWarning(lcZamHelp) << "The splash image" << SplashImage << "could not be loaded.";
        setFixedSize(kFallbackSize);
        Palette.setColor(QPalette::Window, QColor(0x1f, 0x27, 0x36));
    }
    else
    {
        setFixedSize(Splash.deviceIndependentSize().toSize());
        Palette.setBrush(QPalette::Window, QBrush(Splash));
    }
    setPalette(Palette);
    setAutoFillBackground(true);
}

int CAboutBoxDialog::Run()
{
    return m_bShow ? exec() : static_cast<int>(QDialog::Accepted);
}

void CAboutBoxDialog::onCheckBoxStateChanged(int iState)
{
    m_Store.SetBool(ShowSplashKey(), iState == Qt::Checked);
    QString Error;
    if (!m_Store.Save(&Error))
        qCWarning(lcZamHelp) << "\"Show at startup\" could not be saved:" << Error;
}

void CAboutBoxDialog::launchLink(const QString& Link)
{
    LaunchLink(m_Opener, Link);
}
