// The GLSL compilers' operator new and delete. A compile makes tens of thousands of small
// blocks (glslang's strings and maps, the lowering's lists) and the process ends right
// after it: blocks of one size are handed out again from a list per size and thread, carved
// from large chunks that are never given back. Large blocks come from malloc. Linked into
// the compiler executables only, never into sanitizer builds, whose own allocator checks
// every block.

#include <cstddef>
#include <cstdlib>
#include <new>

namespace
{

// Each block carries its size class in front of it, which also keeps it 16-byte aligned.
constexpr std::size_t k_uiHeader = 16;
constexpr std::size_t k_uiGranule = 16;
constexpr std::size_t k_uiClasses = 64; // blocks up to 1 KiB
constexpr std::size_t k_uiChunk = 1024 * 1024;
constexpr std::size_t k_uiFromMalloc = 0;

struct SFreeBlock
{
    SFreeBlock* pNext;
};

// Plain data, so a thread's heap needs no constructor call: it starts empty.
struct SThreadHeap
{
    SFreeBlock* apFree[k_uiClasses + 1];
    char* pNext;
    char* pEnd;
};

thread_local SThreadHeap t_heap;

void* FromMalloc(std::size_t uiSize)
{
    if (uiSize > static_cast<std::size_t>(-1) - k_uiHeader)
        return nullptr;
    char* pBlock = static_cast<char*>(std::malloc(uiSize + k_uiHeader));
    if (!pBlock)
        return nullptr;
    *reinterpret_cast<std::size_t*>(pBlock) = k_uiFromMalloc;
    return pBlock + k_uiHeader;
}

void* Allocate(std::size_t uiSize) noexcept
{
    if (uiSize > k_uiClasses * k_uiGranule)
        return FromMalloc(uiSize);
    const std::size_t uiClass = uiSize == 0 ? 1 : (uiSize + k_uiGranule - 1) / k_uiGranule;
    SThreadHeap& heap = t_heap;
    if (SFreeBlock* pFree = heap.apFree[uiClass])
    {
        heap.apFree[uiClass] = pFree->pNext;
        return pFree;
    }
    const std::size_t uiBytes = k_uiHeader + uiClass * k_uiGranule;
    if (static_cast<std::size_t>(heap.pEnd - heap.pNext) < uiBytes)
    {
        // The rest of the old chunk is left unused: it is less than a block of 1 KiB.
        char* pChunk = static_cast<char*>(std::malloc(k_uiChunk));
        if (!pChunk)
            return nullptr;
        heap.pNext = pChunk;
        heap.pEnd = pChunk + k_uiChunk;
    }
    char* pBlock = heap.pNext;
    heap.pNext += uiBytes;
    *reinterpret_cast<std::size_t*>(pBlock) = uiClass;
    return pBlock + k_uiHeader;
}

// A block may be released on another thread than the one that made it: it joins that
// thread's list.
void Release(void* p) noexcept
{
    if (!p)
        return;
    char* pBlock = static_cast<char*>(p) - k_uiHeader;
    const std::size_t uiClass = *reinterpret_cast<const std::size_t*>(pBlock);
    if (uiClass == k_uiFromMalloc)
    {
        std::free(pBlock);
        return;
    }
    SFreeBlock* pFree = static_cast<SFreeBlock*>(p);
    pFree->pNext = t_heap.apFree[uiClass];
    t_heap.apFree[uiClass] = pFree;
}

void* AllocateOrThrow(std::size_t uiSize)
{
    for (;;)
    {
        if (void* p = Allocate(uiSize))
            return p;
        std::new_handler pHandler = std::get_new_handler();
        if (!pHandler)
            throw std::bad_alloc();
        pHandler();
    }
}

} // namespace

void* operator new(std::size_t uiSize)
{
    return AllocateOrThrow(uiSize);
}

void* operator new[](std::size_t uiSize)
{
    return AllocateOrThrow(uiSize);
}

void* operator new(std::size_t uiSize, const std::nothrow_t&) noexcept
{
    return Allocate(uiSize);
}

void* operator new[](std::size_t uiSize, const std::nothrow_t&) noexcept
{
    return Allocate(uiSize);
}

void operator delete(void* p) noexcept
{
    Release(p);
}

void operator delete[](void* p) noexcept
{
    Release(p);
}

void operator delete(void* p, std::size_t) noexcept
{
    Release(p);
}

void operator delete[](void* p, std::size_t) noexcept
{
    Release(p);
}

void operator delete(void* p, const std::nothrow_t&) noexcept
{
    Release(p);
}

void operator delete[](void* p, const std::nothrow_t&) noexcept
{
    Release(p);
}
