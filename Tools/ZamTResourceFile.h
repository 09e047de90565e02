#ifndef ZAMTRESOURCEFILE_H
#define ZAMTRESOURCEFILE_H

#include "ZamTString.h"

#include <cstddef>

// Reads the file at pPath whole. On success stores a buffer allocated with std::malloc (the
// caller releases it with std::free) and its size, and returns 0; otherwise returns 1.
using ZamTLoadFunction = int (*)(const char* pPath, void** ppData, size_t* puiSize);

// The whole contents of one named file. The name is looked up on disk first, as the
// library-wide read path followed by the name; when the disk yields nothing, in the in-memory
// file table, whose data is used in place. A file that yields no bytes counts as not read.
class CZamTResourceFile
{
public:
    explicit CZamTResourceFile(const char* pName);
    ~CZamTResourceFile();
    CZamTResourceFile(const CZamTResourceFile&) = delete;
    CZamTResourceFile& operator=(const CZamTResourceFile&) = delete;

    bool IsOpen() const { return m_uiSize > 0; }
    const void* GetData() const { return m_pData; }
    size_t GetSize() const { return m_uiSize; }

    // Library-wide settings, safe to change from any thread.

    // nullptr restores DefaultLoad.
    static void SetLoadFunction(ZamTLoadFunction pFunction);
    static ZamTLoadFunction GetLoadFunction();
    // Refuses anything but a regular file (directories, devices, pipes), empty files and files
    // larger than GetMaxFileSize(). The buffer has one extra NUL byte after the contents.
    static int DefaultLoad(const char* pPath, void** ppData, size_t* puiSize);
    // Bounds what DefaultLoad will allocate; 256 MiB unless changed.
    static void SetMaxFileSize(size_t uiBytes);
    static size_t GetMaxFileSize();

    // Prepended verbatim to every name (include the trailing '/'); empty by default.
    static void SetReadPath(const char* pPath);
    static CZamTString GetReadPath();

    // Adds a named file to the in-memory table; names are case-sensitive and unique. With
    // bOwned the table takes pData (which must come from std::malloc) and frees it when the
    // entry is unregistered or at program end; if registration fails the caller keeps it.
    // Fails on a duplicate name, a null name or data, or a size of 0.
    static int RegisterMemoryFile(const char* pName, const void* pData, size_t uiSize, bool bOwned);
    // Resource files already made from the entry point into its data: destroy them first.
    static int UnregisterMemoryFile(const char* pName);

private:
    const void* m_pData = nullptr;
    size_t m_uiSize = 0;
    bool m_bOwnsData = false;
};

#endif // ZAMTRESOURCEFILE_H
