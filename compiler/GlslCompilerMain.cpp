// glslcompiler_zc1, _zc2, _zc3, _zd1: one program, the core named by the executable.

#include "ZcDriver.h"

#include <malloc.h>

#include <cstdio>
#include <string>
#include <vector>

int main(int argc, char** argv)
{
    // The compile runs on a thread of its own (for its stack). With one arena it allocates
    // from the main heap instead of growing a thread arena a page range at a time, which
    // costs a system call per step and was a seventh of a large shader's compile.
    mallopt(M_ARENA_MAX, 1);
    // The heap of a large shader grows to several megabytes: in large steps, a few system
    // calls instead of one per 128 KiB.
    mallopt(M_TOP_PAD, 16 * 1024 * 1024);
    const std::vector<std::string> aArgs(argv + 1, argv + argc);
    std::string output;
    const int iStatus = ZamCompiler::RunGlslCompiler(argc > 0 ? argv[0] : "", aArgs, output);
    std::fwrite(output.data(), 1, output.size(), stdout);
    std::fflush(stdout);
    return iStatus;
}
