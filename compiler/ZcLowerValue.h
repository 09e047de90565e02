#pragma once

// A lowered value and the helpers that reshape operands. Reshaping never emits an
// instruction: a swizzle, a broadcast or a sign is part of the operand.

#include "TxeIsa.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <new>
#include <type_traits>
#include <vector>

namespace ZamCompiler
{

// Up to four lane numbers in order: a swizzle or a write mask. Kept in place, as lowering
// makes one for nearly every operand it touches.
class CLanes
{
public:
    CLanes() = default;
    CLanes(std::initializer_list<std::uint8_t> aLanes)
    {
        for (std::uint8_t uiLane : aLanes)
            push_back(uiLane);
    }
    std::size_t size() const { return m_uiCount; }
    bool empty() const { return m_uiCount == 0; }
    void clear() { m_uiCount = 0; }
    // A fifth lane cannot exist; it is dropped.
    void push_back(std::uint8_t uiLane)
    {
        if (m_uiCount < 4)
            m_auiLanes[m_uiCount++] = uiLane;
    }
    std::uint8_t operator[](std::size_t i) const { return m_auiLanes[i]; }
    const std::uint8_t* begin() const { return m_auiLanes; }
    const std::uint8_t* end() const { return m_auiLanes + m_uiCount; }

private:
    std::uint8_t m_auiLanes[4] = {};
    std::uint8_t m_uiCount = 0;
};

// A list that keeps up to N elements in place: almost every value is a scalar, a vector or a
// matrix, and the lowering makes one for every expression and every variable.
template <typename T, std::size_t N>
class CInlineList
{
public:
    CInlineList() = default;
    CInlineList(const CInlineList& other) { assign(other.begin(), other.end()); }
    CInlineList& operator=(const CInlineList& other)
    {
        if (this != &other)
            assign(other.begin(), other.end());
        return *this;
    }
    // Values are returned and passed up the tree all the time: a move copies the elements
    // kept in place and takes over a heap list.
    CInlineList(CInlineList&& other) noexcept { TakeFrom(other); }
    CInlineList& operator=(CInlineList&& other) noexcept
    {
        if (this != &other)
            TakeFrom(other);
        return *this;
    }

    std::size_t size() const { return m_uiSize; }
    bool empty() const { return m_uiSize == 0; }
    void clear() { m_uiSize = 0; }
    T* begin() { return Data(); }
    T* end() { return Data() + m_uiSize; }
    const T* begin() const { return Data(); }
    const T* end() const { return Data() + m_uiSize; }
    T& operator[](std::size_t i) { return Data()[i]; }
    const T& operator[](std::size_t i) const { return Data()[i]; }
    T& back() { return Data()[m_uiSize - 1]; }
    const T& back() const { return Data()[m_uiSize - 1]; }

    // By value: element may be one of this list, which Spill can move.
    void push_back(T element)
    {
        if (m_uiSize < k_uiInline)
            new (Inline() + m_uiSize) T(element);
        else
            Spill().push_back(element);
        ++m_uiSize;
    }
    template <typename TOther>
    bool Equals(const TOther& other) const
    {
        return size() == other.size() && std::equal(begin(), end(), other.begin());
    }
    void assign(std::size_t uiCount, const T& element)
    {
        clear();
        for (std::size_t i = 0; i < uiCount; ++i)
            push_back(element);
    }
    void assign(const T* pFirst, const T* pLast)
    {
        if (Owns(pFirst))
        {
            // Part of this list itself: copy it out first.
            const std::vector<T> aCopy(pFirst, pLast);
            clear();
            append(aCopy.data(), aCopy.data() + aCopy.size());
            return;
        }
        clear();
        append(pFirst, pLast);
    }
    // From another list only.
    template <typename TIterator>
    void append(TIterator pFirst, TIterator pLast)
    {
        for (; pFirst != pLast; ++pFirst)
            push_back(*pFirst);
    }

private:
    static constexpr std::size_t k_uiInline = N;

    void TakeFrom(CInlineList& other) noexcept
    {
        m_uiSize = other.m_uiSize;
        if (m_uiSize > k_uiInline)
            m_aHeap = std::move(other.m_aHeap);
        else
            std::memcpy(m_aucInline, other.m_aucInline, m_uiSize * sizeof(T));
        other.m_uiSize = 0;
    }

    // Past N elements the list lives on the heap, which then holds exactly size() of them.
    std::vector<T>& Spill()
    {
        if (m_uiSize == k_uiInline)
            m_aHeap.assign(Inline(), Inline() + k_uiInline);
        return m_aHeap;
    }
    bool Owns(const T* p) const
    {
        const auto uiAddress = reinterpret_cast<std::uintptr_t>(p);
        auto within = [uiAddress](const void* pBegin, std::size_t uiBytes) {
            return uiAddress >= reinterpret_cast<std::uintptr_t>(pBegin) &&
                   uiAddress < reinterpret_cast<std::uintptr_t>(pBegin) + uiBytes;
        };
        return within(m_aucInline, sizeof(m_aucInline)) ||
               (!m_aHeap.empty() && within(m_aHeap.data(), m_aHeap.size() * sizeof(T)));
    }
    T* Inline() { return reinterpret_cast<T*>(m_aucInline); }
    const T* Inline() const { return reinterpret_cast<const T*>(m_aucInline); }
    T* Data() { return m_uiSize > k_uiInline ? m_aHeap.data() : Inline(); }
    const T* Data() const { return m_uiSize > k_uiInline ? m_aHeap.data() : Inline(); }

    // Elements are made as they are added: a fresh list writes nothing but its size (an
    // operand's defaults, four times over, were most of what making a value cost).
    static_assert(std::is_trivially_copyable_v<T> && std::is_trivially_destructible_v<T>,
                  "kept in raw storage and copied bytewise");
    alignas(T) unsigned char m_aucInline[k_uiInline * sizeof(T)];
    std::vector<T> m_aHeap;
    std::size_t m_uiSize = 0;
};

using CSlotList = CInlineList<STxeOperand, 4>;

// One operand per four-lane slot (a matrix has one per column, an array or structure
// one per element slot).
struct SValue
{
    CSlotList aSlots;
};

// The helpers lowering calls for nearly every operand are defined here, so they cost no call.
inline STxeOperand TempOperand(int iRegister, int iLanes)
{
    STxeOperand op;
    op.eFile = File_Temp;
    op.iIndex = iRegister;
    op.uiCount = static_cast<std::uint8_t>(std::clamp(iLanes, 1, 4));
    return op;
}

inline STxeOperand Swizzled(const STxeOperand& op, const CLanes& aLanes)
{
    STxeOperand result = op;
    const int iCount = std::min<int>(4, static_cast<int>(aLanes.size()));
    for (int i = 0; i < iCount; ++i)
        result.auiSwizzle[i] = op.auiSwizzle[std::min<int>(aLanes[i], 3)];
    result.uiCount = static_cast<std::uint8_t>(iCount);
    return result;
}

STxeOperand Lane(const STxeOperand& op, int iLane);

// A one-lane operand repeated over iLanes lanes; wider operands are left as they are.
inline STxeOperand Broadcast(const STxeOperand& op, int iLanes)
{
    if (op.uiCount != 1 || iLanes <= 1)
        return op;
    STxeOperand result = op;
    for (int i = 0; i < 4; ++i)
        result.auiSwizzle[i] = op.auiSwizzle[0];
    result.uiCount = static_cast<std::uint8_t>(std::min(iLanes, 4));
    return result;
}

// Broadcast, then cut down to at most iWidth lanes.
STxeOperand Fit(const STxeOperand& op, int iWidth);
STxeOperand Negated(const STxeOperand& op);
STxeOperand Absolute(const STxeOperand& op);
inline CLanes IdentityLanes(int iLanes)
{
    CLanes aLanes;
    for (int i = 0; i < iLanes; ++i)
        aLanes.push_back(static_cast<std::uint8_t>(i));
    return aLanes;
}

// dp2/dp3/dp4 for 2 to 4 lanes; a one-lane "dot product" is a multiply.
ETxeOp DotFor(int iLanes);
bool SameRegister(const STxeOperand& a, const STxeOperand& b);

} // namespace ZamCompiler
