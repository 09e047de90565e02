#ifndef ZAMTARRAY_H
#define ZAMTARRAY_H

#include <algorithm>
#include <cstdint>
#include <functional>
#include <new>
#include <type_traits>
#include <utility>

// A growable array. The whole block is element-constructed (value-initialised, so plain
// values are zero) when allocated; elements are moved and appended by assignment, so T must be
// default-constructible and assignable. Functions that can fail return 1 and leave the array
// as it was, 0 on success; nothing throws. Copy construction and assignment cannot report a
// failed allocation: a copy that could not allocate is left empty with no block.
template <typename T> class CZamTArray
{
public:
    static constexpr uint32_t DefaultCapacity = 16;

    CZamTArray() { Allocate(DefaultCapacity); }
    explicit CZamTArray(uint32_t uiCapacity) { Allocate(uiCapacity); }

    CZamTArray(const CZamTArray& Other)
    {
        if (Allocate(Other.m_uiCapacity))
            return;
        CopyElementsFrom(Other);
    }

    CZamTArray(CZamTArray&& Other) noexcept
        : m_uiCount(Other.m_uiCount)
        , m_uiCapacity(Other.m_uiCapacity)
        , m_pData(Other.m_pData)
    {
        Other.Forget();
    }

    CZamTArray& operator=(const CZamTArray& Other)
    {
        if (this == &Other)
            return *this;
        T* pBlock = NewBlock(Other.m_uiCapacity);
        if (!pBlock)
            return *this;
        delete[] m_pData;
        m_pData = pBlock;
        m_uiCapacity = Other.m_uiCapacity;
        CopyElementsFrom(Other);
        return *this;
    }

    CZamTArray& operator=(CZamTArray&& Other) noexcept
    {
        if (this != &Other)
        {
            delete[] m_pData;
            m_uiCount = Other.m_uiCount;
            m_uiCapacity = Other.m_uiCapacity;
            m_pData = Other.m_pData;
            Other.Forget();
        }
        return *this;
    }

    virtual ~CZamTArray() { delete[] m_pData; }

    // On an empty array returns 1. An index past the end only drops the last slot; callers
    // are expected to pass valid indices.
    virtual int Remove(uint32_t uiIndex)
    {
        if (m_uiCount == 0)
            return 1;
        if (uiIndex == m_uiCount - 1)
            return RemoveLast();
        --m_uiCount;
        if (uiIndex < m_uiCount)
            std::move(m_pData + uiIndex + 1, m_pData + m_uiCount + 1, m_pData + uiIndex);
        return 0;
    }

    virtual int RemoveLast()
    {
        if (m_uiCount == 0 || !m_pData)
            return 1;
        --m_uiCount;
        return 0;
    }

    // Sets the count to 0; the block and its capacity stay.
    virtual void Clear() { m_uiCount = 0; }

    int Append(const T& Item)
    {
        if (m_uiCount >= m_uiCapacity)
        {
            // Item may live in the block that growing frees; remember where.
            const int64_t iInside = IndexInBlock(Item);
            if (m_uiCount == UINT32_MAX || SetCapacity(m_uiCount + 1))
                return 1;
            m_pData[m_uiCount] = iInside >= 0 ? m_pData[iInside] : Item;
        }
        else
        {
            m_pData[m_uiCount] = Item;
        }
        ++m_uiCount;
        return 0;
    }

    // Appends uiCopies copies of Item, growing at most once; on failure nothing is appended.
    int AppendCopies(const T& Item, uint32_t uiCopies)
    {
        if (uiCopies > UINT32_MAX - m_uiCount)
            return 1;
        const int64_t iInside = IndexInBlock(Item);
        if (SetCapacity(m_uiCount + uiCopies))
            return 1;
        const T& Source = iInside >= 0 ? m_pData[iInside] : Item;
        std::fill_n(m_pData + m_uiCount, uiCopies, Source);
        m_uiCount += uiCopies;
        return 0;
    }

    // Grows to the larger of uiCapacity and twice the current capacity; never shrinks.
    int SetCapacity(uint32_t uiCapacity)
    {
        if (uiCapacity <= m_uiCapacity)
            return 0;
        uint32_t uiNewCapacity = m_uiCapacity > UINT32_MAX / 2 ? UINT32_MAX : m_uiCapacity * 2;
        if (uiNewCapacity < uiCapacity)
            uiNewCapacity = uiCapacity;
        T* pBlock = NewBlock(uiNewCapacity);
        if (!pBlock)
            return 1;
        std::move(m_pData, m_pData + m_uiCount, pBlock);
        delete[] m_pData;
        m_pData = pBlock;
        m_uiCapacity = uiNewCapacity;
        return 0;
    }

    // Unchecked, like a plain array.
    T& operator[](uint32_t uiIndex) { return m_pData[uiIndex]; }
    const T& operator[](uint32_t uiIndex) const { return m_pData[uiIndex]; }

    uint32_t GetSize() const { return m_uiCount; }
    uint32_t GetCapacity() const { return m_uiCapacity; }
    T* GetData() { return m_pData; }
    const T* GetData() const { return m_pData; }

protected:
    // Where Item stands among the elements, or -1 when it is not one of them.
    int64_t IndexInBlock(const T& Item) const
    {
        const bool bInside =
            m_pData && !std::less<const T*>()(&Item, m_pData) && std::less<const T*>()(&Item, m_pData + m_uiCount);
        return bInside ? static_cast<int64_t>(&Item - m_pData) : -1;
    }

    static T* NewBlock(uint32_t uiCapacity)
    {
        // A zero capacity still gets a (distinct, empty) block so "no block" only means a
        // moved-from array or a failed copy.
        return new (std::nothrow) T[uiCapacity ? uiCapacity : 1]();
    }

    uint32_t m_uiCount = 0;
    uint32_t m_uiCapacity = 0;
    T* m_pData = nullptr;

private:
    int Allocate(uint32_t uiCapacity)
    {
        m_pData = NewBlock(uiCapacity);
        m_uiCapacity = m_pData ? uiCapacity : 0;
        return m_pData ? 0 : 1;
    }

    void CopyElementsFrom(const CZamTArray& Other)
    {
        std::copy(Other.m_pData, Other.m_pData + Other.m_uiCount, m_pData);
        m_uiCount = Other.m_uiCount;
    }

    void Forget()
    {
        m_uiCount = 0;
        m_uiCapacity = 0;
        m_pData = nullptr;
    }
};

template <typename T, typename = decltype(std::declval<const T&>() == std::declval<const T&>())>
bool operator==(const CZamTArray<T>& Left, const CZamTArray<T>& Right)
{
    if (Left.GetSize() != Right.GetSize())
        return false;
    for (uint32_t ui = 0; ui < Left.GetSize(); ++ui)
    {
        if (!(Left[ui] == Right[ui]))
            return false;
    }
    return true;
}

template <typename T, typename = decltype(std::declval<const T&>() == std::declval<const T&>())>
bool operator!=(const CZamTArray<T>& Left, const CZamTArray<T>& Right)
{
    return !(Left == Right);
}

// Owns the objects its elements point to: every slot that is dropped (RemoveLast, Remove,
// Clear, destruction) deletes its object. Appending hands the object over only on success.
// Slots past the count are kept null so nothing is deleted twice or leaked.
template <typename T> class CZamTArrayManagedPointers : public CZamTArray<T*>
{
    using Base = CZamTArray<T*>;

public:
    CZamTArrayManagedPointers() = default;
    explicit CZamTArrayManagedPointers(uint32_t uiCapacity)
        : Base(uiCapacity)
    {
    }
    CZamTArrayManagedPointers(const CZamTArrayManagedPointers&) = delete;
    CZamTArrayManagedPointers& operator=(const CZamTArrayManagedPointers&) = delete;
    CZamTArrayManagedPointers(CZamTArrayManagedPointers&& Other) noexcept
        : Base(std::move(Other))
    {
    }
    CZamTArrayManagedPointers& operator=(CZamTArrayManagedPointers&& Other) noexcept
    {
        if (this != &Other)
        {
            DeleteAll();
            Base::operator=(std::move(Other));
        }
        return *this;
    }

    ~CZamTArrayManagedPointers() override { DeleteAll(); }

    // Unlike the plain array, an index past the end deletes the dropped last object.
    int Remove(uint32_t uiIndex) override
    {
        if (this->m_uiCount == 0)
            return 1;
        if (uiIndex >= this->m_uiCount - 1)
            return RemoveLast();
        delete this->m_pData[uiIndex];
        --this->m_uiCount;
        for (uint32_t ui = uiIndex; ui < this->m_uiCount; ++ui)
            this->m_pData[ui] = this->m_pData[ui + 1];
        this->m_pData[this->m_uiCount] = nullptr;
        return 0;
    }

    int RemoveLast() override
    {
        if (this->m_uiCount == 0 || !this->m_pData)
            return 1;
        --this->m_uiCount;
        delete this->m_pData[this->m_uiCount];
        this->m_pData[this->m_uiCount] = nullptr;
        return 0;
    }

    void Clear() override { DeleteAll(); }

private:
    void DeleteAll()
    {
        for (uint32_t ui = 0; ui < this->m_uiCount; ++ui)
        {
            delete this->m_pData[ui];
            this->m_pData[ui] = nullptr;
        }
        this->m_uiCount = 0;
    }
};

#endif // ZAMTARRAY_H
