#include "CommandLine_p.h"

#include "app/help/BuildInfo.h"

#include <cstring>

QString UsageText()
{
    return QStringLiteral(
        "Usage: zamshadereditor [--help] [--version] [FILE]\n"
        "       zamshadereditor --compile [--core zc1|zc2|zc3|zd1] [--timeout SECONDS] FILE...\n"
        "\n"
        "A shader editor that compiles GLSL ES, desktop GLSL, OpenCL and effect files while you\n"
        "type and shows the log, the TXE disassembly, a performance profile and per-line cycle\n"
        "counts.\n"
        "\n"
        "  FILE          open FILE; when the editor is already running, it opens FILE there\n"
        "  --compile     compile each FILE without a window, print its log and exit 0 when\n"
        "                every file compiled\n"
        "  --core NAME   with --compile: the target core (default: the one chosen in the\n"
        "                preferences)\n"
        "  --timeout S   with --compile: give up on a file after S seconds (default 60)\n"
        "  --version     print the version and exit\n"
        "  --help        print this text and exit\n");
}

QString InformationRequested(int iArgc, char** ppArgv)
{
    if (iArgc < 2)
        return QString();
    const char* pFirst = ppArgv[1];
    if (std::strcmp(pFirst, "--help") == 0 || std::strcmp(pFirst, "-h") == 0)
        return UsageText();
    if (std::strcmp(pFirst, "--version") == 0 || std::strcmp(pFirst, "-v") == 0)
        return QStringLiteral("ZamShaderEditor 2.0 (%1)\n%2\n").arg(BuildIdentifier(), LibraryVersionLine());
    return QString();
}
