#pragma once

#include "HelpLinks.h"

#include <QDialog>

// Where to send feedback (the maker's forum and a prepared e-mail), and the text that
// identifies this build and system, ready to be copied into a report.
class CFeedbackDialog : public QDialog
{
    Q_OBJECT

public:
    CFeedbackDialog(QWidget* pParent, const QString& AppText);

    // "mailto:" Address with the subject "Feedback " + AppText and the body Body, every
    // part percent-encoded (line breaks as CRLF, as mail links want them).
    static QString BuildMailtoLink(const QString& Address, const QString& AppText, const QString& Body);

    // Replaces the desktop handler that opens the forum and mail links.
    void SetUrlOpener(UrlOpener Opener) { m_Opener = std::move(Opener); }

public slots:
    void launchLink(const QString& Link);

private:
    UrlOpener m_Opener;
};
