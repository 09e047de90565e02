#pragma once

// A lowered value and the helpers that reshape operands. Reshaping never emits an
// instruction: a swizzle, a broadcast or a sign is part of the operand.

#include "TxeIsa.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
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

// A list of operands that keeps up to four in place: almost every value is a scalar, a
// vector or a matrix, and the lowering makes one for every expression.
class CSlotList
{
public:
    CSlotList() = default;
    CSlotList(const CSlotList& other) { assign(other.begin(), other.end()); }
    CSlotList& operator=(const CSlotList& other)
    {
        if (this != &other)
            assign(other.begin(), other.end());
        return *this;
    }
    // Values are returned and passed up the tree all the time: a move copies the operands
    // kept in place and takes over a heap list.
    CSlotList(CSlotList&& other) noexcept { TakeFrom(other); }
    CSlotList& operator=(CSlotList&& other) noexcept
    {
        if (this != &other)
            TakeFrom(other);
        return *this;
    }

    std::size_t size() const { return m_uiSize; }
    bool empty() const { return m_uiSize == 0; }
    void clear() { m_uiSize = 0; }
    STxeOperand* begin() { return Data(); }
    STxeOperand* end() { return Data() + m_uiSize; }
    const STxeOperand* begin() const { return Data(); }
    const STxeOperand* end() const { return Data() + m_uiSize; }
    STxeOperand& operator[](std::size_t i) { return Data()[i]; }
    const STxeOperand& operator[](std::size_t i) const { return Data()[i]; }
    STxeOperand& back() { return Data()[m_uiSize - 1]; }
    const STxeOperand& back() const { return Data()[m_uiSize - 1]; }

    // By value: op may be an element of this list, which Spill can move.
    void push_back(STxeOperand op)
    {
        if (m_uiSize < k_uiInline)
            m_aInline[m_uiSize] = op;
        else
            Spill().push_back(op);
        ++m_uiSize;
    }
    void assign(std::size_t uiCount, const STxeOperand& op)
    {
        clear();
        for (std::size_t i = 0; i < uiCount; ++i)
            push_back(op);
    }
    void assign(const STxeOperand* pFirst, const STxeOperand* pLast)
    {
        if (Owns(pFirst))
        {
            // Part of this list itself: copy it out first.
            const std::vector<STxeOperand> aCopy(pFirst, pLast);
            clear();
            append(aCopy.data(), aCopy.data() + aCopy.size());
            return;
        }
        clear();
        append(pFirst, pLast);
    }
    // From another list only.
    void append(const STxeOperand* pFirst, const STxeOperand* pLast)
    {
        for (const STxeOperand* p = pFirst; p != pLast; ++p)
            push_back(*p);
    }

private:
    static constexpr std::size_t k_uiInline = 4;

    void TakeFrom(CSlotList& other) noexcept
    {
        m_uiSize = other.m_uiSize;
        if (m_uiSize > k_uiInline)
            m_aHeap = std::move(other.m_aHeap);
        else
            std::copy(other.m_aInline, other.m_aInline + m_uiSize, m_aInline);
        other.m_uiSize = 0;
    }

    // Past four operands the list lives on the heap, which then holds exactly size() of them.
    std::vector<STxeOperand>& Spill()
    {
        if (m_uiSize == k_uiInline)
            m_aHeap.assign(m_aInline, m_aInline + k_uiInline);
        return m_aHeap;
    }
    bool Owns(const STxeOperand* p) const
    {
        const auto uiAddress = reinterpret_cast<std::uintptr_t>(p);
        auto within = [uiAddress](const STxeOperand* pBegin, std::size_t uiCount) {
            return uiAddress >= reinterpret_cast<std::uintptr_t>(pBegin) &&
                   uiAddress < reinterpret_cast<std::uintptr_t>(pBegin + uiCount);
        };
        return within(m_aInline, k_uiInline) || (!m_aHeap.empty() && within(m_aHeap.data(), m_aHeap.size()));
    }
    STxeOperand* Data() { return m_uiSize > k_uiInline ? m_aHeap.data() : m_aInline; }
    const STxeOperand* Data() const { return m_uiSize > k_uiInline ? m_aHeap.data() : m_aInline; }

    STxeOperand m_aInline[k_uiInline];
    std::vector<STxeOperand> m_aHeap;
    std::size_t m_uiSize = 0;
};

// One operand per four-lane slot (a matrix has one per column, an array or structure
// one per element slot).
struct SValue
{
    CSlotList aSlots;
};

STxeOperand TempOperand(int iRegister, int iLanes);
STxeOperand Swizzled(const STxeOperand& op, const CLanes& aLanes);
STxeOperand Lane(const STxeOperand& op, int iLane);
// A one-lane operand repeated over iLanes lanes; wider operands are left as they are.
STxeOperand Broadcast(const STxeOperand& op, int iLanes);
// Broadcast, then cut down to at most iWidth lanes.
STxeOperand Fit(const STxeOperand& op, int iWidth);
STxeOperand Negated(const STxeOperand& op);
STxeOperand Absolute(const STxeOperand& op);
CLanes IdentityLanes(int iLanes);
// dp2/dp3/dp4 for 2 to 4 lanes; a one-lane "dot product" is a multiply.
ETxeOp DotFor(int iLanes);
bool SameRegister(const STxeOperand& a, const STxeOperand& b);

} // namespace ZamCompiler
