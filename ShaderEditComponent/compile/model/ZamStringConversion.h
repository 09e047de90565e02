#pragma once

#include "Tools/ZamTString.h"

#include <QString>

// The tools library's strings hold UTF-8; these are the one way across to Qt's strings.
[[nodiscard]] inline QString ToQString(const CZamTString& Text)
{
    return QString::fromUtf8(Text.GetString(), static_cast<qsizetype>(Text.GetLength()));
}

[[nodiscard]] inline CZamTString ToZamString(const QString& Text)
{
    const QByteArray Bytes = Text.toUtf8();
    return CZamTString(Bytes.constData(), static_cast<uint32_t>(Bytes.size()));
}
