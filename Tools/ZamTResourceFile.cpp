#include "ZamTResourceFile.h"

#include "ZamTArray.h"

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <mutex>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
struct SZamTMemoryFile
{
    CZamTString Name;
    const void* pData = nullptr;
    size_t uiSize = 0;
    bool bOwned = false;
};

struct SZamTResourceState
{
    std::mutex Mutex;
    CZamTString ReadPath;
    CZamTArray<SZamTMemoryFile> MemoryFiles;

    ~SZamTResourceState()
    {
        for (uint32_t ui = 0; ui < MemoryFiles.GetSize(); ++ui)
        {
            if (MemoryFiles[ui].bOwned)
                std::free(const_cast<void*>(MemoryFiles[ui].pData));
        }
    }
};

SZamTResourceState& State()
{
    static SZamTResourceState s_State;
    return s_State;
}

std::atomic<ZamTLoadFunction> g_pLoadFunction{&CZamTResourceFile::DefaultLoad};
std::atomic<size_t> g_uiMaxFileSize{size_t(256) * 1024 * 1024};

// Index in the table, or -1. The caller holds the mutex.
int64_t FindMemoryFile(const CZamTArray<SZamTMemoryFile>& Files, const char* pName)
{
    for (uint32_t ui = 0; ui < Files.GetSize(); ++ui)
    {
        if (Files[ui].Name == pName)
            return ui;
    }
    return -1;
}

int ReadAll(int iFile, char* pBuffer, size_t uiSize)
{
    size_t uiDone = 0;
    while (uiDone < uiSize)
    {
        const ssize_t iRead = ::read(iFile, pBuffer + uiDone, uiSize - uiDone);
        if (iRead < 0 && errno == EINTR)
            continue;
        if (iRead <= 0)
            return 1;
        uiDone += static_cast<size_t>(iRead);
    }
    return 0;
}
} // namespace

CZamTResourceFile::CZamTResourceFile(const char* pName)
{
    if (!pName)
        return;
    CZamTString Path = GetReadPath();
    if (Path.Append(pName) == 0)
    {
        void* pData = nullptr;
        size_t uiSize = 0;
        const int iResult = GetLoadFunction()(Path.GetString(), &pData, &uiSize);
        if (iResult == 0 && pData && uiSize > 0)
        {
            m_pData = pData;
            m_uiSize = uiSize;
            m_bOwnsData = true;
            return;
        }
        std::free(pData);
    }

    SZamTResourceState& Shared = State();
    std::lock_guard<std::mutex> Lock(Shared.Mutex);
    const int64_t iIndex = FindMemoryFile(Shared.MemoryFiles, pName);
    if (iIndex >= 0)
    {
        m_pData = Shared.MemoryFiles[static_cast<uint32_t>(iIndex)].pData;
        m_uiSize = Shared.MemoryFiles[static_cast<uint32_t>(iIndex)].uiSize;
    }
}

CZamTResourceFile::~CZamTResourceFile()
{
    if (m_bOwnsData)
        std::free(const_cast<void*>(m_pData));
}

void CZamTResourceFile::SetLoadFunction(ZamTLoadFunction pFunction)
{
    g_pLoadFunction = pFunction ? pFunction : &CZamTResourceFile::DefaultLoad;
}

ZamTLoadFunction CZamTResourceFile::GetLoadFunction()
{
    return g_pLoadFunction;
}

int CZamTResourceFile::DefaultLoad(const char* pPath, void** ppData, size_t* puiSize)
{
    if (!pPath || !ppData || !puiSize)
        return 1;
    *ppData = nullptr;
    *puiSize = 0;
    // Non-blocking, so opening a FIFO cannot hang; fstat on the open descriptor means the
    // type check and the read see the same file.
    const int iFile = ::open(pPath, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (iFile < 0)
        return 1;
    struct stat Info;
    char* pBuffer = nullptr;
    const bool bUsable = ::fstat(iFile, &Info) == 0 && S_ISREG(Info.st_mode) && Info.st_size > 0
                         && static_cast<uint64_t>(Info.st_size) <= GetMaxFileSize()
                         && static_cast<uint64_t>(Info.st_size) < SIZE_MAX;
    if (bUsable)
        pBuffer = static_cast<char*>(std::malloc(static_cast<size_t>(Info.st_size) + 1));
    const size_t uiSize = bUsable ? static_cast<size_t>(Info.st_size) : 0;
    const bool bRead = pBuffer && ReadAll(iFile, pBuffer, uiSize) == 0;
    ::close(iFile);
    if (!bRead)
    {
        std::free(pBuffer);
        return 1;
    }
    pBuffer[uiSize] = 0;
    *ppData = pBuffer;
    *puiSize = uiSize;
    return 0;
}

void CZamTResourceFile::SetMaxFileSize(size_t uiBytes)
{
    g_uiMaxFileSize = uiBytes;
}

size_t CZamTResourceFile::GetMaxFileSize()
{
    return g_uiMaxFileSize;
}

void CZamTResourceFile::SetReadPath(const char* pPath)
{
    SZamTResourceState& Shared = State();
    std::lock_guard<std::mutex> Lock(Shared.Mutex);
    Shared.ReadPath = pPath;
}

CZamTString CZamTResourceFile::GetReadPath()
{
    SZamTResourceState& Shared = State();
    std::lock_guard<std::mutex> Lock(Shared.Mutex);
    return Shared.ReadPath;
}

int CZamTResourceFile::RegisterMemoryFile(const char* pName, const void* pData, size_t uiSize, bool bOwned)
{
    if (!pName || !pData || uiSize == 0)
        return 1;
    SZamTMemoryFile Entry;
    Entry.Name = pName;
    if (Entry.Name != pName)
        return 1;
    Entry.pData = pData;
    Entry.uiSize = uiSize;
    Entry.bOwned = bOwned;

    SZamTResourceState& Shared = State();
    std::lock_guard<std::mutex> Lock(Shared.Mutex);
    if (FindMemoryFile(Shared.MemoryFiles, pName) >= 0)
        return 1;
    return Shared.MemoryFiles.Append(Entry);
}

int CZamTResourceFile::UnregisterMemoryFile(const char* pName)
{
    if (!pName)
        return 1;
    SZamTResourceState& Shared = State();
    std::lock_guard<std::mutex> Lock(Shared.Mutex);
    const int64_t iIndex = FindMemoryFile(Shared.MemoryFiles, pName);
    if (iIndex < 0)
        return 1;
    SZamTMemoryFile& Entry = Shared.MemoryFiles[static_cast<uint32_t>(iIndex)];
    if (Entry.bOwned)
        std::free(const_cast<void*>(Entry.pData));
    return Shared.MemoryFiles.Remove(static_cast<uint32_t>(iIndex));
}
