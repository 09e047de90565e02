#include "DocumentBackup.h"

#include "ShaderEditComponent/compile/process/RegularFile.h"

#include <QCryptographicHash>
#include <QList>
#include <QUrl>

namespace
{
const char s_Magic[] = "ZamShaderEditor document backup 1";
const char* const s_Keys[] = {"path", "title", "type", "format", "disk", "text"};
constexpr int s_iKeyCount = 6;
constexpr EShaderDocType s_KnownTypes[] = {
    DocType_PlainText,    DocType_GLSLESVertex, DocType_GLSLESFragment, DocType_GLSLVertex,
    DocType_GLSLFragment, DocType_ZFXGLSLES,    DocType_ZFXGLSL,        DocType_HLSLVertex,
    DocType_HLSLFragment, DocType_HLSLGeometry, DocType_HLSLFX,         DocType_OpenCLKernel,
};

QByteArray Sha256(QByteArrayView Bytes)
{
    return QCryptographicHash::hash(Bytes, QCryptographicHash::Sha256).toHex();
}

bool IsKnownType(uint uiType)
{
    for (const EShaderDocType eType : s_KnownTypes)
    {
        if (static_cast<uint>(eType) == uiType)
            return true;
    }
    return false;
}

bool IsChecksum(const QByteArray& Value)
{
    if (Value.size() != 64)
        return false;
    for (const char Char : Value)
    {
        if (!((Char >= '0' && Char <= '9') || (Char >= 'a' && Char <= 'f')))
            return false;
    }
    return true;
}

SBackupDecodeResult Damaged(const QString& Reason)
{
    SBackupDecodeResult Result;
    Result.Error = Reason;
    return Result;
}

bool ParseFormat(const QByteArray& Value, SDocumentFormat& Format)
{
    const QList<QByteArray> Flags = Value.split(' ');
    if (Flags.size() != 3)
        return false;
    bool* pFlags[] = {&Format.bUtf8, &Format.bBom, &Format.bCrlf};
    for (int i = 0; i < 3; ++i)
    {
        if (Flags.at(i) != "0" && Flags.at(i) != "1")
            return false;
        *pFlags[i] = Flags.at(i) == "1";
    }
    return true;
}

// Fills the record from the six header values, in their fixed order.
QString ParseFields(const QList<QByteArray>& Values, SDocumentBackup& Backup, qsizetype& iLength,
                    QByteArray& TextChecksum)
{
    Backup.Path = QUrl::fromPercentEncoding(Values.at(0));
    Backup.Title = QUrl::fromPercentEncoding(Values.at(1));
    bool bNumber = false;
    const uint uiType = Values.at(2).toUInt(&bNumber);
    if (!bNumber || !IsKnownType(uiType))
        return QStringLiteral("unknown document type");
    Backup.eType = static_cast<EShaderDocType>(uiType);
    if (!ParseFormat(Values.at(3), Backup.Format))
        return QStringLiteral("unreadable format line");
    if (Values.at(4) != "-" && !IsChecksum(Values.at(4)))
        return QStringLiteral("unreadable checksum of the file on disk");
    Backup.DiskChecksum = Values.at(4) == "-" ? QByteArray() : Values.at(4);
    const QList<QByteArray> Text = Values.at(5).split(' ');
    iLength = Text.size() == 2 ? Text.at(0).toLongLong(&bNumber) : -1;
    if (Text.size() != 2 || !bNumber || iLength < 0 || iLength > MaxDocumentBytes || !IsChecksum(Text.at(1)))
        return QStringLiteral("unreadable text line");
    TextChecksum = Text.at(1);
    return QString();
}
} // namespace

QByteArray EncodeBackup(const SDocumentBackup& Backup)
{
    const QByteArray Text = Backup.Text.toUtf8();
    const SDocumentFormat& Format = Backup.Format;
    QByteArray Bytes = s_Magic;
    Bytes += "\npath " + QUrl::toPercentEncoding(Backup.Path, "/");
    Bytes += "\ntitle " + QUrl::toPercentEncoding(Backup.Title);
    Bytes += "\ntype " + QByteArray::number(static_cast<uint>(Backup.eType));
    Bytes +=
        "\nformat " + QByteArray(Format.bUtf8 ? "1" : "0") + (Format.bBom ? " 1" : " 0") + (Format.bCrlf ? " 1" : " 0");
    Bytes += "\ndisk " + (Backup.DiskChecksum.isEmpty() ? QByteArray("-") : Backup.DiskChecksum);
    Bytes += "\ntext " + QByteArray::number(Text.size()) + ' ' + Sha256(Text) + "\n\n";
    Bytes += Text;
    return Bytes;
}

SBackupDecodeResult DecodeBackup(const QByteArray& Bytes)
{
    const qsizetype iHeaderEnd = Bytes.indexOf("\n\n");
    if (!Bytes.startsWith(QByteArrayView(s_Magic, sizeof(s_Magic) - 1)) || iHeaderEnd < 0)
        return Damaged(QStringLiteral("not a document backup of this program"));
    const QList<QByteArray> Lines = Bytes.left(iHeaderEnd).split('\n');
    if (Lines.size() != s_iKeyCount + 1 || Lines.at(0) != s_Magic)
        return Damaged(QStringLiteral("not a document backup of this program"));
    QList<QByteArray> Values;
    for (int i = 0; i < s_iKeyCount; ++i)
    {
        const QByteArray Key = QByteArray(s_Keys[i]) + ' ';
        if (!Lines.at(i + 1).startsWith(Key))
            return Damaged(QStringLiteral("the header lacks \"%1\"").arg(QLatin1String(s_Keys[i])));
        Values << Lines.at(i + 1).mid(Key.size());
    }
    SBackupDecodeResult Result;
    qsizetype iLength = 0;
    QByteArray TextChecksum;
    Result.Error = ParseFields(Values, Result.Backup, iLength, TextChecksum);
    if (!Result.Error.isEmpty())
        return Result;
    const QByteArrayView Text = QByteArrayView(Bytes).sliced(iHeaderEnd + 2);
    if (Text.size() != iLength)
        return Damaged(QStringLiteral("the text is %1 bytes long, %2 expected").arg(Text.size()).arg(iLength));
    if (Sha256(Text) != TextChecksum)
        return Damaged(QStringLiteral("the text does not match its checksum"));
    Result.Backup.Text = QString::fromUtf8(Text);
    Result.bOk = true;
    return Result;
}

QByteArray DiskChecksumOf(const QString& Path)
{
    if (Path.isEmpty())
        return QByteArray();
    const SRegularFile File = ReadRegularFile(Path, MaxDocumentBytes);
    return File.eResult == RegularFile_Read ? Sha256(File.Bytes) : QByteArray();
}
