// Saves one document over and over through the editor's save path, so that a script can kill
// it at random moments. Each version is self-describing: a first line "version <n> <bytes>"
// and a body that follows from n, so a checker can tell a whole version from a torn file.
//   reliability_save_host PATH BYTES          saves versions 1, 2, ... until killed; prints
//                                             "saved <n>" after each
//   reliability_save_host PATH BYTES --once   one save, then exit (the "next save")

#include "ShaderEditComponent/DocumentFile.h"

#include <QByteArray>
#include <QString>

#include <cstdio>
#include <cstring>

namespace
{
QByteArray Version(qint64 iVersion, qint64 iBytes)
{
    QByteArray Text = "version " + QByteArray::number(iVersion) + ' ' + QByteArray::number(iBytes) + '\n';
    const char cFill = static_cast<char>('a' + iVersion % 26);
    Text.append(QByteArray(qMax<qint64>(0, iBytes - Text.size()), cFill));
    return Text;
}
} // namespace

int main(int argc, char** argv)
{
    if (argc < 3)
    {
        std::fprintf(stderr, "usage: %s PATH BYTES [--once]\n", argv[0]);
        return 2;
    }
    const QString Path = QString::fromLocal8Bit(argv[1]);
    const qint64 iBytes = QByteArray(argv[2]).toLongLong();
    const bool bOnce = argc > 3 && std::strcmp(argv[3], "--once") == 0;
    for (qint64 iVersion = 1;; ++iVersion)
    {
        const SFileWriteResult Written = WriteDocumentFile(Path, Version(iVersion, iBytes));
        if (!Written.bOk)
        {
            std::fprintf(stderr, "%s\n", Written.Error.toLocal8Bit().constData());
            return 1;
        }
        std::printf("saved %lld\n", static_cast<long long>(iVersion));
        std::fflush(stdout);
        if (bOnce)
            return 0;
    }
}
