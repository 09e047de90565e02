#include "DocumentFile.h"

#include "AtomicFile_p.h"
#include "ShaderEditComponent/compile/model/UIString.h"
#include "ShaderEditComponent/compile/process/RegularFile.h"

#include <QStringDecoder>

namespace
{
const char s_Bom[] = "\xEF\xBB\xBF";

QString ReasonText(const QString& Reason)
{
    return UIString(UIS_Reason).replace(QStringLiteral("%s"), Reason);
}

QString OpenFailedText(const QString& Path, const QString& Reason)
{
    return UIString(UIS_FailedToOpenFile) + QLatin1Char(' ') + Path + QLatin1Char('\n') + ReasonText(Reason);
}

bool LooksLikeCrlf(const QByteArray& Bytes)
{
    qsizetype iCrlf = 0;
    qsizetype iLf = 0;
    for (qsizetype i = 0; i < Bytes.size(); ++i)
    {
        if (Bytes.at(i) != '\n')
            continue;
        if (i > 0 && Bytes.at(i - 1) == '\r')
            ++iCrlf;
        else
            ++iLf;
    }
    return iCrlf > iLf;
}

bool FitsLatin1(const QString& Text)
{
    for (const QChar Char : Text)
    {
        if (Char.unicode() > 0xFF)
            return false;
    }
    return true;
}
} // namespace

SDocumentText DecodeDocument(const QByteArray& Bytes)
{
    SDocumentText Result;
    QByteArrayView Body(Bytes);
    Result.Format.bBom = Bytes.startsWith(s_Bom);
    if (Result.Format.bBom)
        Body = Body.sliced(3);
    Result.Format.bCrlf = LooksLikeCrlf(Bytes);

    // Stateless: a sequence cut off at the end of the file is an error, not pending input.
    QStringDecoder Decoder(QStringConverter::Utf8,
                           QStringConverter::Flag::Stateless | QStringConverter::Flag::ConvertInitialBom);
    QString Text = Decoder.decode(Body);
    if (Decoder.hasError())
    {
        Result.Format.bUtf8 = false;
        Result.Format.bBom = false;
        Text = QString::fromLatin1(Bytes);
    }
    // The editor keeps "\n" only; the style is restored on save.
    Text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    Result.Text = Text;
    return Result;
}

QByteArray EncodeDocument(const QString& Text, const SDocumentFormat& Format)
{
    QString Lines = Text;
    if (Format.bCrlf)
        Lines.replace(QLatin1Char('\n'), QLatin1String("\r\n"));
    if (!Format.bUtf8 && FitsLatin1(Lines))
        return Lines.toLatin1();
    QByteArray Bytes;
    if (Format.bBom)
        Bytes = s_Bom;
    Bytes += Lines.toUtf8();
    return Bytes;
}

SFileReadResult ReadDocumentFile(const QString& Path)
{
    SFileReadResult Result;
    SRegularFile File = ReadRegularFile(Path, MaxDocumentBytes);
    switch (File.eResult)
    {
    case RegularFile_Read:
        Result.bOk = true;
        Result.Bytes = std::move(File.Bytes);
        break;
    case RegularFile_ReadFailed:
        Result.Error = UIString(UIS_ErrorWhileReadingFile) + Path;
        break;
    case RegularFile_OpenFailed:
    case RegularFile_NotRegular:
    case RegularFile_TooLarge:
        Result.Error = OpenFailedText(Path, DescribeReadFailure(File));
        break;
    }
    return Result;
}

SFileWriteResult WriteDocumentFile(const QString& Path, const QByteArray& Bytes)
{
    SFileWriteResult Result;
    const SAtomicWriteResult Written = WriteFileAtomically(Path, Bytes);
    if (Written.bOpenFailed)
        Result.Error =
            UIString(UIS_FailedToSaveFile) + QLatin1Char(' ') + Path + QLatin1Char('\n') + ReasonText(Written.Reason);
    else if (!Written.bOk)
        Result.Error = UIString(UIS_ErrorWhileWritingFile) + Path;
    Result.bOk = Written.bOk;
    return Result;
}
