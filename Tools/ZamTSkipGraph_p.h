#ifndef ZAMTSKIPGRAPH_H
#define ZAMTSKIPGRAPH_H

#include "ZamTArray.h"
#include "ZamTHash.h"

#include <cstring>
#include <new>
#include <type_traits>
#include <utility>

template <typename T> class CZamTSkipGraphRoot;

// One item of a dependency graph and the nodes it depends on. Nodes are made and owned by
// their CZamTSkipGraphRoot; dependencies are added through the root so they never cross graphs.
template <typename T> class CZamTSkipGraphNode
{
public:
    CZamTSkipGraphNode(const CZamTSkipGraphNode&) = delete;
    CZamTSkipGraphNode& operator=(const CZamTSkipGraphNode&) = delete;

    const T& GetItem() const { return m_Item; }
    uint32_t GetDependencyCount() const { return m_Dependencies.GetSize(); }
    const CZamTSkipGraphNode* GetDependency(uint32_t uiIndex) const { return m_Dependencies[uiIndex]; }

private:
    friend class CZamTSkipGraphRoot<T>;

    CZamTSkipGraphNode(const T& Item, uint32_t uiIndex)
        : m_Item(Item)
        , m_uiIndex(uiIndex)
        , m_Dependencies(4)
    {
    }

    int AddDependency(CZamTSkipGraphNode* pNode)
    {
        for (uint32_t ui = 0; ui < m_Dependencies.GetSize(); ++ui)
        {
            if (m_Dependencies[ui] == pNode)
                return 0;
        }
        return m_Dependencies.Append(pNode);
    }

    T m_Item;
    uint32_t m_uiIndex; // insertion position, used to break ties when ordering
    CZamTArray<CZamTSkipGraphNode*> m_Dependencies;
};

// A dependency graph over items identified by their bytes (in this program, pointer values):
// adding an item twice yields the same node. The hash is only a quick filter; items whose
// hashes collide are still told apart by their bytes.
template <typename T> class CZamTSkipGraphRoot
{
    static_assert(std::has_unique_object_representations_v<T>,
                  "items are identified by their bytes, so equal items must have equal bytes");

public:
    using CNode = CZamTSkipGraphNode<T>;

    struct SZamTHashElement
    {
        CZamTHash Hash;
        CNode* pNode = nullptr;
    };

    CZamTSkipGraphRoot() = default;
    CZamTSkipGraphRoot(const CZamTSkipGraphRoot&) = delete;
    CZamTSkipGraphRoot& operator=(const CZamTSkipGraphRoot&) = delete;
    ~CZamTSkipGraphRoot() { Clear(); }

    // The existing node for Item, or a new one; null only when memory runs out.
    CNode* AddNode(const T& Item)
    {
        const CZamTHash Hash = HashOf(Item);
        if (CNode* pNode = Find(Item, Hash))
            return pNode;
        SZamTHashElement Element;
        Element.Hash = Hash;
        Element.pNode = new (std::nothrow) CNode(Item, m_Elements.GetSize());
        if (!Element.pNode)
            return nullptr;
        if (m_Elements.Append(Element))
        {
            delete Element.pNode;
            return nullptr;
        }
        return Element.pNode;
    }

    CNode* FindNode(const T& Item) const { return Find(Item, HashOf(Item)); }

    // Records that Dependent must come after DependsOn, adding either node when missing.
    // A node that depends on itself makes the graph cyclic.
    int AddDependency(const T& Dependent, const T& DependsOn)
    {
        CNode* pDependent = AddNode(Dependent);
        CNode* pDependsOn = pDependent ? AddNode(DependsOn) : nullptr;
        if (!pDependsOn)
            return 1;
        return pDependent->AddDependency(pDependsOn);
    }

    uint32_t GetNodeCount() const { return m_Elements.GetSize(); }
    // In insertion order.
    const CNode* GetNode(uint32_t uiIndex) const { return m_Elements[uiIndex].pNode; }

    void Clear()
    {
        for (uint32_t ui = 0; ui < m_Elements.GetSize(); ++ui)
            delete m_Elements[ui].pNode;
        m_Elements.Clear();
    }

    // Fills Out with every item, each after all the items it depends on; among the items
    // that are free to go next, the earliest added goes first, so the result is
    // deterministic. Returns 1 on a cycle (or when memory runs out) and leaves Out untouched.
    int Order(CZamTArray<T>& Out) const
    {
        const uint32_t uiNodes = m_Elements.GetSize();
        CZamTArray<uint32_t> Sorted(uiNodes);
        if (SortIndices(Sorted) || Sorted.GetSize() != uiNodes || Out.SetCapacity(uiNodes))
            return 1;
        Out.Clear();
        for (uint32_t ui = 0; ui < uiNodes; ++ui)
            Out.Append(m_Elements[Sorted[ui]].pNode->m_Item);
        return 0;
    }

private:
    static CZamTHash HashOf(const T& Item) { return CZamTHash(&Item, sizeof(T), 1); }

    CNode* Find(const T& Item, const CZamTHash& Hash) const
    {
        for (uint32_t ui = 0; ui < m_Elements.GetSize(); ++ui)
        {
            const SZamTHashElement& Element = m_Elements[ui];
            if (Element.Hash == Hash && std::memcmp(&Element.pNode->m_Item, &Item, sizeof(T)) == 0)
                return Element.pNode;
        }
        return nullptr;
    }

    static int Fill(CZamTArray<uint32_t>& Array, uint32_t uiSize)
    {
        if (Array.SetCapacity(uiSize))
            return 1;
        Array.Clear();
        for (uint32_t ui = 0; ui < uiSize; ++ui)
            Array.Append(0);
        return 0;
    }

    // Kahn's algorithm with a min-heap of ready insertion indices. Stops short of every node
    // when there is a cycle.
    int SortIndices(CZamTArray<uint32_t>& Sorted) const
    {
        const uint32_t uiNodes = m_Elements.GetSize();
        // Pending[i]: dependencies of node i not yet placed. Dependents of node i, flattened:
        // Edges[First[i] .. First[i + 1]).
        CZamTArray<uint32_t> Pending, First, Edges, Ready;
        uint64_t uiEdgeCount = 0;
        for (uint32_t ui = 0; ui < uiNodes; ++ui)
            uiEdgeCount += m_Elements[ui].pNode->GetDependencyCount();
        if (uiEdgeCount > UINT32_MAX || uiNodes == UINT32_MAX || Fill(Pending, uiNodes) || Fill(First, uiNodes + 1)
            || Fill(Edges, static_cast<uint32_t>(uiEdgeCount)) || Ready.SetCapacity(uiNodes))
            return 1;

        for (uint32_t ui = 0; ui < uiNodes; ++ui)
        {
            const CNode* pNode = m_Elements[ui].pNode;
            Pending[ui] = pNode->GetDependencyCount();
            for (uint32_t uiDep = 0; uiDep < pNode->GetDependencyCount(); ++uiDep)
                ++First[pNode->m_Dependencies[uiDep]->m_uiIndex + 1];
        }
        for (uint32_t ui = 0; ui < uiNodes; ++ui)
            First[ui + 1] += First[ui];
        CZamTArray<uint32_t> Cursor(First);
        if (Cursor.GetSize() != First.GetSize())
            return 1;
        for (uint32_t ui = 0; ui < uiNodes; ++ui)
        {
            const CNode* pNode = m_Elements[ui].pNode;
            for (uint32_t uiDep = 0; uiDep < pNode->GetDependencyCount(); ++uiDep)
                Edges[Cursor[pNode->m_Dependencies[uiDep]->m_uiIndex]++] = ui;
        }

        for (uint32_t ui = 0; ui < uiNodes; ++ui)
        {
            if (Pending[ui] == 0)
                HeapPush(Ready, ui);
        }
        while (Ready.GetSize() > 0)
        {
            const uint32_t uiNext = HeapPop(Ready);
            if (Sorted.Append(uiNext))
                return 1;
            for (uint32_t uiEdge = First[uiNext]; uiEdge < First[uiNext + 1]; ++uiEdge)
            {
                if (--Pending[Edges[uiEdge]] == 0)
                    HeapPush(Ready, Edges[uiEdge]);
            }
        }
        return 0;
    }

    // Ready never holds more than uiNodes entries and its capacity was reserved, so these
    // cannot fail.
    static void HeapPush(CZamTArray<uint32_t>& Heap, uint32_t uiValue)
    {
        Heap.Append(uiValue);
        for (uint32_t ui = Heap.GetSize() - 1; ui > 0 && Heap[(ui - 1) / 2] > Heap[ui]; ui = (ui - 1) / 2)
            std::swap(Heap[(ui - 1) / 2], Heap[ui]);
    }

    static uint32_t HeapPop(CZamTArray<uint32_t>& Heap)
    {
        const uint32_t uiTop = Heap[0];
        Heap[0] = Heap[Heap.GetSize() - 1];
        Heap.RemoveLast();
        const uint32_t uiSize = Heap.GetSize();
        for (uint32_t ui = 0;;)
        {
            const uint32_t uiLeft = 2 * ui + 1;
            if (uiLeft >= uiSize)
                break;
            const uint32_t uiChild = (uiLeft + 1 < uiSize && Heap[uiLeft + 1] < Heap[uiLeft]) ? uiLeft + 1 : uiLeft;
            if (Heap[ui] <= Heap[uiChild])
                break;
            std::swap(Heap[ui], Heap[uiChild]);
            ui = uiChild;
        }
        return uiTop;
    }

    CZamTArray<SZamTHashElement> m_Elements;
};

#endif // ZAMTSKIPGRAPH_H
