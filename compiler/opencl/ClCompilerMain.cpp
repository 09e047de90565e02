// clcompiler_zc1: OpenCL kernels, checked and profiled through clang.

#include "ClCompiler.h"

#include <cstdio>
#include <string>
#include <vector>

int main(int argc, char** argv)
{
    const std::vector<std::string> aArgs(argv + 1, argv + argc);
    std::string output;
    const int iStatus = ZamCompiler::RunClCompiler(argc > 0 ? argv[0] : "", aArgs, output);
    std::fwrite(output.data(), 1, output.size(), stdout);
    std::fflush(stdout);
    return iStatus;
}
