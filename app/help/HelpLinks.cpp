#include "HelpLinks.h"

#include "HelpLog_p.h"

#include <QDesktopServices>
#include <QLabel>
#include <QUrl>

bool OpenUrlWithDesktop(const QUrl& Url)
{
    return QDesktopServices::openUrl(Url);
}

void LaunchLink(const UrlOpener& Opener, const QString& Link)
{
    if (!Opener(QUrl(Link)))
        qCWarning(lcZamHelp) << "No program opened" << Link;
}

QString SupportEmailAddress()
{
    return QStringLiteral("support@brenmoor.example");
}

QString SupportTeamName()
{
    return QStringLiteral("Brenmoor Developer Support");
}

QString WebsiteUrl()
{
    return QStringLiteral("https://www.brenmoor.example/zamshadereditor");
}

QString ForumUrl()
{
    return QStringLiteral("https://circle.brenmoor.example/forum/zamshadereditor");
}

QString CopyrightLine()
{
    return QStringLiteral("Copyright \u00A9 2024-2026 Brenmoor Systems. All rights reserved.");
}

QString RichTextLink(const QString& Url, const QString& Text, const QString& Colour)
{
    const QString Style =
        Colour.isEmpty() ? QString() : QStringLiteral(" style=\"color: %1;\"").arg(Colour.toHtmlEscaped());
    return QStringLiteral("<a href=\"%1\"%2>%3</a>").arg(Url.toHtmlEscaped(), Style, Text.toHtmlEscaped());
}

QLabel* NewLabel(QWidget* pParent, const QString& ObjectName, const QString& Text)
{
    QLabel* pLabel = new QLabel(Text, pParent);
    pLabel->setObjectName(ObjectName);
    return pLabel;
}

QLabel* NewLinkLabel(QWidget* pParent, const QString& ObjectName, const QString& Url, const QString& Text,
                     const QString& Colour)
{
    QLabel* pLabel = NewLabel(pParent, ObjectName, RichTextLink(Url, Text, Colour));
    pLabel->setTextFormat(Qt::RichText);
    pLabel->setOpenExternalLinks(false);
    pLabel->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
    return pLabel;
}
