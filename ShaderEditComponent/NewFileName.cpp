#include "NewFileName.h"

#include "UIString.h"

#include <QRegExp>

QString NextNewFileName(const QStringList& TabTitles)
{
    const QString Base = UIString(UIS_NewFile);
    QRegExp AnyNewFile(QRegExp::escape(Base) + QStringLiteral(".*"), Qt::CaseSensitive);
    QRegExp NumberedNewFile(QRegExp::escape(Base) + QStringLiteral(" \\((\\d+)\\)"), Qt::CaseSensitive);

    int iNext = 0;
    for (const QString& Title : TabTitles)
    {
        if (AnyNewFile.indexIn(Title) < 0)
            continue;
        iNext = 1;
        if (NumberedNewFile.indexIn(Title) >= 0)
            iNext = NumberedNewFile.cap(1).toInt() + 1;
    }
    if (iNext > 0)
        return Base + QStringLiteral(" (%1)").arg(iNext);
    return Base;
}
