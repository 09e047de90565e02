#include "ZcFiles.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <sys/stat.h>

namespace ZamCompiler
{

EReadResult ReadFileBounded(const std::string& path, std::size_t uiMaxBytes, std::string& contents, std::string& error)
{
    contents.clear();
    struct stat info;
    if (stat(path.c_str(), &info) != 0)
    {
        error = std::strerror(errno);
        return Read_Failed;
    }
    if (S_ISDIR(info.st_mode))
    {
        error = "it is a directory";
        return Read_Failed;
    }
    std::FILE* pFile = std::fopen(path.c_str(), "rb");
    if (!pFile)
    {
        error = std::strerror(errno);
        return Read_Failed;
    }
    char acBuffer[65536];
    std::size_t uiRead = 0;
    while ((uiRead = std::fread(acBuffer, 1, sizeof(acBuffer), pFile)) > 0)
    {
        contents.append(acBuffer, uiRead);
        if (contents.size() > uiMaxBytes)
        {
            std::fclose(pFile);
            return Read_TooLarge;
        }
    }
    const bool bError = std::ferror(pFile) != 0;
    std::fclose(pFile);
    if (bError)
    {
        error = "read error";
        return Read_Failed;
    }
    return Read_Ok;
}

bool WriteFile(const std::string& path, const std::string& contents, std::string& error)
{
    std::FILE* pFile = std::fopen(path.c_str(), "wb");
    if (!pFile)
    {
        error = std::strerror(errno);
        return false;
    }
    const bool bWritten = std::fwrite(contents.data(), 1, contents.size(), pFile) == contents.size();
    const bool bClosed = std::fclose(pFile) == 0;
    if (!bWritten || !bClosed)
    {
        error = "write error";
        return false;
    }
    return true;
}

} // namespace ZamCompiler
