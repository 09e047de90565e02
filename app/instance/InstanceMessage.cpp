#include "InstanceMessage.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringDecoder>

QString HandOverMessage(const QStringList& Arguments)
{
    if (Arguments.size() <= 1)
        return QString::fromLatin1(RaiseInstanceMessage);
    const QString& File = Arguments.at(1);
    if (File.isEmpty() || !QFile::exists(File))
        return QString();
    return QDir::cleanPath(QFileInfo(File).absoluteFilePath());
}

SInstanceMessage DecodeInstanceMessage(const QByteArray& Bytes)
{
    SInstanceMessage Decoded;
    if (Bytes.isEmpty())
    {
        Decoded.Error = QStringLiteral("the connection closed without a message");
        return Decoded;
    }
    if (Bytes.size() > MaxInstanceMessageBytes)
    {
        Decoded.Error = QStringLiteral("a message longer than %1 bytes was refused").arg(MaxInstanceMessageBytes);
        return Decoded;
    }
    if (Bytes.contains('\0'))
    {
        Decoded.Error = QStringLiteral("a message holding a NUL byte was refused");
        return Decoded;
    }
    // A leading byte-order mark is kept: the text is passed on unchanged or not at all.
    QStringDecoder Decoder(QStringDecoder::Utf8,
                           QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom);
    const QString Text = Decoder.decode(Bytes);
    if (Decoder.hasError())
    {
        Decoded.Error = QStringLiteral("a message that is not valid UTF-8 was refused");
        return Decoded;
    }
    Decoded.Text = Text;
    return Decoded;
}
