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

bool DecodeInstanceMessage(const QByteArray& Bytes, QString& Message, QString& Error)
{
    if (Bytes.isEmpty())
    {
        Error = QStringLiteral("the connection closed without a message");
        return false;
    }
    if (Bytes.size() > MaxInstanceMessageBytes)
    {
        Error = QStringLiteral("a message longer than %1 bytes was refused").arg(MaxInstanceMessageBytes);
        return false;
    }
    if (Bytes.contains('\0'))
    {
        Error = QStringLiteral("a message holding a NUL byte was refused");
        return false;
    }
    // A leading byte-order mark is kept: the text is passed on unchanged or not at all.
    QStringDecoder Decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom);
    QString Text = Decoder.decode(Bytes);
    if (Decoder.hasError())
    {
        Error = QStringLiteral("a message that is not valid UTF-8 was refused");
        return false;
    }
    Message = Text;
    return true;
}
