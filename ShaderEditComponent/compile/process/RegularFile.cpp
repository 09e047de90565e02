#include "RegularFile.h"

#include <QFile>
#include <QLocale>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <new>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
QString SystemText(int iErrno)
{
    return QString::fromLocal8Bit(std::strerror(iErrno));
}

QString KindOf(mode_t uiMode)
{
    if (S_ISDIR(uiMode))
        return QStringLiteral("a folder");
    if (S_ISFIFO(uiMode))
        return QStringLiteral("a FIFO");
    if (S_ISSOCK(uiMode))
        return QStringLiteral("a socket");
    return QStringLiteral("a device");
}

QString Size(qint64 iBytes)
{
    return QLocale::c().formattedDataSize(iBytes, 0);
}

bool ReadAll(int iFd, QByteArray& Bytes)
{
    qint64 iDone = 0;
    while (iDone < Bytes.size())
    {
        const ssize_t iRead = ::read(iFd, Bytes.data() + iDone, static_cast<size_t>(Bytes.size() - iDone));
        if (iRead < 0 && errno == EINTR)
            continue;
        if (iRead == 0)
            errno = EIO; // the file got shorter
        if (iRead <= 0)
            return false;
        iDone += iRead;
    }
    return true;
}

// The kind of file is looked at before opening (so that no device is opened) and again on the
// opened descriptor (so that a file swapped in meanwhile is caught); opening does not wait.
int OpenRegular(const QString& Path, SRegularFile& File, struct stat& Info)
{
    const QByteArray Name = QFile::encodeName(Path);
    if (::stat(Name.constData(), &Info) != 0)
    {
        File.SystemReason = SystemText(errno);
        return -1;
    }
    if (!S_ISREG(Info.st_mode))
    {
        File.eResult = RegularFile_NotRegular;
        File.SystemReason = KindOf(Info.st_mode);
        return -1;
    }
    const int iFd = ::open(Name.constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (iFd < 0)
    {
        File.SystemReason = SystemText(errno);
        return -1;
    }
    if (::fstat(iFd, &Info) != 0 || !S_ISREG(Info.st_mode))
    {
        File.eResult = RegularFile_NotRegular;
        File.SystemReason = KindOf(Info.st_mode);
        ::close(iFd);
        return -1;
    }
    return iFd;
}
} // namespace

SRegularFile ReadRegularFile(const QString& Path, qint64 iMaxBytes)
{
    SRegularFile File;
    File.iLimit = iMaxBytes;
    struct stat Info = {};
    const int iFd = OpenRegular(Path, File, Info);
    if (iFd < 0)
        return File;
    File.iSize = static_cast<qint64>(Info.st_size);
    if (File.iSize > iMaxBytes)
    {
        File.eResult = RegularFile_TooLarge;
        ::close(iFd);
        return File;
    }
    try
    {
        File.Bytes.resize(static_cast<qsizetype>(File.iSize));
    }
    catch (const std::bad_alloc&)
    {
        File.eResult = RegularFile_TooLarge;
        ::close(iFd);
        return File;
    }
    const bool bRead = ReadAll(iFd, File.Bytes);
    File.SystemReason = bRead ? QString() : SystemText(errno);
    ::close(iFd);
    File.eResult = bRead ? RegularFile_Read : RegularFile_ReadFailed;
    if (!bRead)
        File.Bytes.clear();
    return File;
}

QString DescribeReadFailure(const SRegularFile& File)
{
    switch (File.eResult)
    {
    case RegularFile_Read:
        return QString();
    case RegularFile_NotRegular:
        return QStringLiteral("not a regular file (%1)").arg(File.SystemReason);
    case RegularFile_TooLarge:
        return QStringLiteral("too large (%1); the limit is %2").arg(Size(File.iSize), Size(File.iLimit));
    case RegularFile_OpenFailed:
    case RegularFile_ReadFailed:
        break;
    }
    return File.SystemReason;
}
