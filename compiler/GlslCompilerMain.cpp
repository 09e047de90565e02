// glslcompiler_zc1, _zc2, _zc3, _zd1: one program, the core named by the executable.

#include "ZcDriver.h"

#include <cstdio>
#include <string>
#include <vector>

int main(int argc, char** argv)
{
    const std::vector<std::string> aArgs(argv + 1, argv + argc);
    std::string output;
    const int iStatus = ZamCompiler::RunGlslCompiler(argc > 0 ? argv[0] : "", aArgs, output);
    std::fwrite(output.data(), 1, output.size(), stdout);
    std::fflush(stdout);
    return iStatus;
}
