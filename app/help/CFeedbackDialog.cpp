#include "CFeedbackDialog.h"

#include "BuildInfo.h"

#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QLabel>
#include <QPlainTextEdit>
#include <QUrl>
#include <QVBoxLayout>

namespace
{
QByteArray MailtoPart(const QString& Text)
{
    QString Normalised = Text;
    Normalised.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    Normalised.replace(QLatin1Char('\n'), QStringLiteral("\r\n"));
    return QUrl::toPercentEncoding(Normalised);
}
} // namespace

CFeedbackDialog::CFeedbackDialog(QWidget* pParent, const QString& AppText)
    : QDialog(pParent)
    , m_Opener(OpenUrlWithDesktop)
{
    setObjectName(QStringLiteral("FeedbackClass"));
    setWindowTitle(QStringLiteral("Feedback"));
    const QString Identification = IdentificationText(AppText);

    QLabel* pForum = NewLabel(this, QStringLiteral("ForumLabel"), QStringLiteral("Post your feedback in the Zamrix Circle Forum:"));
    QLabel* pForumUrl = NewLinkLabel(this, QStringLiteral("ForumURL"), ForumUrl(), ForumUrl());
    QLabel* pEmailCaption =
        NewLabel(this, QStringLiteral("SupportEmailLabel"), QStringLiteral("Send your feedback to ") + SupportTeamName() + QLatin1Char(':'));
    QLabel* pEmail = NewLinkLabel(this, QStringLiteral("SupportEmail"), BuildMailtoLink(SupportEmailAddress(), AppText, Identification),
                                  SupportEmailAddress());
    QLabel* pRequired =
        NewLabel(this, QStringLiteral("RequiredTextLabel"), QStringLiteral("Please include the following text in your feedback"));
    QPlainTextEdit* pText = new QPlainTextEdit(Identification, this);
    pText->setObjectName(QStringLiteral("RequiredText"));
    pText->setReadOnly(true);
    pText->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    pText->setMinimumWidth(pText->fontMetrics().horizontalAdvance(QLatin1Char('M')) * 64);
    pText->setFixedHeight(pText->fontMetrics().lineSpacing() * 6);
    QLabel* pCopy = NewLabel(this, QStringLiteral("SelectAndCopyLabel"), QStringLiteral("Select text [Ctrl+A] and copy [Ctrl + C]."));
    QDialogButtonBox* pButtons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    pButtons->setObjectName(QStringLiteral("buttonBox"));

    connect(pForumUrl, &QLabel::linkActivated, this, &CFeedbackDialog::launchLink);
    connect(pEmail, &QLabel::linkActivated, this, &CFeedbackDialog::launchLink);
    connect(pButtons, &QDialogButtonBox::rejected, this, &QDialog::close);

    QVBoxLayout* pLayout = new QVBoxLayout(this);
    pLayout->addWidget(pForum);
    pLayout->addWidget(pForumUrl);
    pLayout->addSpacing(8);
    pLayout->addWidget(pEmailCaption);
    pLayout->addWidget(pEmail);
    pLayout->addSpacing(8);
    pLayout->addWidget(pRequired);
    pLayout->addWidget(pText);
    pLayout->addWidget(pCopy);
    pLayout->addWidget(pButtons);
}

QString CFeedbackDialog::BuildMailtoLink(const QString& Address, const QString& AppText, const QString& Body)
{
    const QByteArray Link = "mailto:" + QUrl::toPercentEncoding(Address, "@") + "?subject="
                            + MailtoPart(QStringLiteral("Feedback ") + AppText) + "&body=" + MailtoPart(Body);
    return QString::fromLatin1(Link);
}

void CFeedbackDialog::launchLink(const QString& Link)
{
    LaunchLink(m_Opener, Link);
}
