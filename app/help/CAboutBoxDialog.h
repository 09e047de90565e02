#pragma once

#include "HelpLinks.h"

#include <QDialog>

class CZamPreferences;
class QCheckBox;

// The about box, which is also the start-up splash: the splash image as background at its
// own size, the build and library versions, the maker's links and a "Show at startup" box.
// Opened from the Help menu (always-show) it is always shown; at start-up only while the
// user has not unticked "Show at startup".
class CAboutBoxDialog : public QDialog
{
    Q_OBJECT

public:
    CAboutBoxDialog(QWidget* pParent, const QString& AppText, const QString& SplashImage, CZamPreferences& Store,
                    bool bAlwaysShow);

    // The preference behind "Show at startup" (bool, default true).
    static QString ShowSplashKey();

    // Runs the box modally when it is to be shown; otherwise returns Accepted at once.
    int Run();
    bool IsShowFlagSet() const { return m_bShow; }

    // Replaces the desktop handler that opens the e-mail and web links.
    void SetUrlOpener(UrlOpener Opener) { m_Opener = std::move(Opener); }

public slots:
    void onCheckBoxStateChanged(int iState);
    void launchLink(const QString& Link);

private:
    void BuildWidgets(const QString& AppText);
    void SetBackground(const QString& SplashImage);

    CZamPreferences& m_Store;
    QCheckBox* m_pShowAtStartUp = nullptr;
    UrlOpener m_Opener;
    bool m_bShow = true;
};
