#pragma once

// Bounded file input and plain file output for the compiler executables.

#include <cstddef>
#include <string>

namespace ZamCompiler
{

enum EReadResult
{
    Read_Ok,
    Read_Failed,
    Read_TooLarge,
};

// Never reads more than uiMaxBytes + 1 bytes, whatever the file's size.
EReadResult ReadFileBounded(const std::string& path, std::size_t uiMaxBytes, std::string& contents, std::string& error);

bool WriteFile(const std::string& path, const std::string& contents, std::string& error);

} // namespace ZamCompiler
