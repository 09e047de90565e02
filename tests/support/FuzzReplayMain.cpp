// Runs a fuzz target's entry point over every file of its seed folder, without libFuzzer:
// the corpus becomes a test of the normal (and the sanitizer) build.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t uiSize);
extern "C" __attribute__((weak)) int LLVMFuzzerInitialize(int* pArgc, char*** pArgv);

int main(int argc, char** argv)
{
    if (argc != 2)
    {
        std::fprintf(stderr, "usage: %s SEED_FOLDER\n", argv[0]);
        return 2;
    }
    if (LLVMFuzzerInitialize)
        LLVMFuzzerInitialize(&argc, &argv);
    std::vector<std::filesystem::path> Files;
    std::error_code Error;
    for (const auto& Entry : std::filesystem::recursive_directory_iterator(argv[1], Error))
    {
        if (Entry.is_regular_file())
            Files.push_back(Entry.path());
    }
    if (Error || Files.empty())
    {
        std::fprintf(stderr, "no seeds in %s\n", argv[1]);
        return 1;
    }
    std::sort(Files.begin(), Files.end());
    for (const std::filesystem::path& File : Files)
    {
        std::ifstream Stream(File, std::ios::binary);
        const std::vector<char> Bytes((std::istreambuf_iterator<char>(Stream)), std::istreambuf_iterator<char>());
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(Bytes.data()), Bytes.size());
    }
    std::printf("%zu seeds replayed\n", Files.size());
    return 0;
}
