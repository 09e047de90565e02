#include "ZamPreferencesLog_p.h"

Q_LOGGING_CATEGORY(lcZamPreferences, "zam.preferences")

void ReportPreferencesProblem(const QString& Text)
{
    static const QString Location = QStringLiteral("..\\..\\..\\..\\Common\\ZamPreferences\\ZamPreferences\n");
    qCWarning(lcZamPreferences).noquote() << Location + Text;
}
