#pragma once

#include <QString>

#include <functional>

class QLabel;
class QUrl;
class QWidget;

// Opens a URL (a web page, a mail link, a local file) with the desktop's handler; true when
// the handler was started. The dialogs take one of these so that tests can stand in for it.
using UrlOpener = std::function<bool(const QUrl&)>;

// QDesktopServices::openUrl.
[[nodiscard]] bool OpenUrlWithDesktop(const QUrl& Url);
// Opens Link with Opener; a link that nothing opened is logged.
void LaunchLink(const UrlOpener& Opener, const QString& Link);

// The maker's addresses shown in the about box and the feedback dialog.
[[nodiscard]] QString SupportEmailAddress();
[[nodiscard]] QString SupportTeamName();
[[nodiscard]] QString WebsiteUrl();
[[nodiscard]] QString ForumUrl();
[[nodiscard]] QString CopyrightLine();

// Rich text for a label: a link to Url that reads Text, in Colour (any CSS colour; empty
// keeps the style's link colour). Both are escaped for rich text.
[[nodiscard]] QString RichTextLink(const QString& Url, const QString& Text, const QString& Colour = QString());

// A plain label named ObjectName, and one that shows a link (linkActivated is emitted on a
// click; nothing is opened by the label itself).
[[nodiscard]] QLabel* NewLabel(QWidget* pParent, const QString& ObjectName, const QString& Text);
QLabel* NewLinkLabel(QWidget* pParent, const QString& ObjectName, const QString& Url, const QString& Text,
                     const QString& Colour = QString());
