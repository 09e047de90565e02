#include "ZamTZFXParserBlocks_p.h"

#include "ZamTSkipGraph_p.h"

#include <memory>
#include <new>

namespace
{
constexpr uint32_t kUnvisited = UINT32_MAX;

int OutOfMemory(CZamTString& Error)
{
    Error = "Out of memory\n";
    return 1;
}

int Fill(CZamTArray<uint32_t>& Array, uint32_t uiSize, uint32_t uiValue)
{
    if (Array.SetCapacity(uiSize))
        return 1;
    Array.Clear();
    for (uint32_t ui = 0; ui < uiSize; ++ui)
        Array.Append(uiValue);
    return 0;
}

uint32_t KindOfWord(const CZamTString& Word)
{
    if (Word == "COLOR")
        return eZamTZFXSurfaceColor;
    return Word == "DEPTH" ? static_cast<uint32_t>(eZamTZFXSurfaceDepth) : 0u;
}

const char* WordOfKind(uint32_t uiKind)
{
    return uiKind == eZamTZFXSurfaceDepth ? "DEPTH" : "COLOR";
}

// The kind bits of the texture or [TARGET] called Name; 0 when there is none or it has no
// SURFACETYPE.
uint32_t SurfaceKind(const SZamTZFXDocument& Document, const CZamTZFXNameIndex& Textures,
                     const CZamTZFXNameIndex& Targets, const CZamTHash& Name)
{
    uint32_t uiPosition = Textures.First(Name);
    if (uiPosition < Textures.GetSize() && Textures.GetHash(uiPosition) == Name.GetValue())
        return Document.Textures[Textures.GetItem(uiPosition)]->uiSurfaceFlags & eZamTZFXSurfaceKindMask;
    uiPosition = Targets.First(Name);
    if (uiPosition < Targets.GetSize() && Targets.GetHash(uiPosition) == Name.GetValue())
        return Document.RenderTargets[Targets.GetItem(uiPosition)].uiSurfaceFlags & eZamTZFXSurfaceKindMask;
    return 0;
}

int CheckTargetSurfaces(const SZamTZFXDocument& Document, CZamTString& Error)
{
    CZamTZFXNameIndex Textures;
    CZamTZFXNameIndex Targets;
    for (uint32_t ui = 0; ui < Document.Textures.GetSize(); ++ui)
    {
        if (Textures.Add(Document.Textures[ui]->Name.Hash, ui))
            return OutOfMemory(Error);
    }
    for (uint32_t ui = 0; ui < Document.RenderTargets.GetSize(); ++ui)
    {
        if (Targets.Add(Document.RenderTargets[ui].Name.Hash, ui))
            return OutOfMemory(Error);
    }
    Textures.Sort();
    Targets.Sort();
    for (uint32_t uiEffect = 0; uiEffect < Document.Effects.GetSize(); ++uiEffect)
    {
        const CZamTArray<SZamTTargetPair>& Pairs = Document.Effects[uiEffect].Targets;
        for (uint32_t ui = 0; ui < Pairs.GetSize(); ++ui)
        {
            const uint32_t uiDeclared = KindOfWord(Pairs[ui].Kind);
            const uint32_t uiActual =
                uiDeclared ? SurfaceKind(Document, Textures, Targets, CZamTHash(Pairs[ui].Target)) : 0;
            if (uiActual != 0 && uiActual != uiDeclared)
            {
                Error.format("Surface type mismatch in [EFFECT]. \"%s\" has different type than \"%s\"\n",
                             WordOfKind(uiDeclared), WordOfKind(uiActual));
                return 1;
            }
        }
    }
    return 0;
}

// "Pass a must run after pass b" for every pair, as a bit matrix, then as lists.
class CPassDependencies
{
public:
    int Build(const SZamTZFXDocument& Document);
    uint32_t GetPassCount() const { return m_uiPasses; }
    uint32_t First(uint32_t uiPass) const { return m_First[uiPass]; }
    uint32_t End(uint32_t uiPass) const { return m_First[uiPass + 1]; }
    uint32_t Target(uint32_t uiEdge) const { return m_Edges[uiEdge]; }

private:
    int CollectEffect(const SZamTZFXParserEffect& Effect, uint32_t uiEffect);
    // Adds the passes rendering Name to List, each once per stamp.
    int AddPasses(const CZamTHash& Name, uint32_t uiStamp, CZamTArray<uint32_t>& List);
    void Set(uint32_t uiDependent, uint32_t uiDependsOn)
    {
        const uint64_t uiBit = static_cast<uint64_t>(uiDependent) * m_uiPasses + uiDependsOn;
        m_pMatrix[uiBit / 32] |= 1u << (uiBit % 32);
    }
    bool IsSet(uint32_t uiDependent, uint32_t uiDependsOn) const
    {
        const uint64_t uiBit = static_cast<uint64_t>(uiDependent) * m_uiPasses + uiDependsOn;
        return (m_pMatrix[uiBit / 32] >> (uiBit % 32)) & 1u;
    }

    uint32_t m_uiPasses = 0;
    CZamTZFXNameIndex m_PassesByTexture;
    CZamTArray<uint32_t> m_Stamps;
    std::unique_ptr<uint32_t[]> m_pMatrix;
    CZamTArray<uint32_t> m_First;
    CZamTArray<uint32_t> m_Edges;
};

int CPassDependencies::AddPasses(const CZamTHash& Name, uint32_t uiStamp, CZamTArray<uint32_t>& List)
{
    for (uint32_t uiPosition = m_PassesByTexture.First(Name);
         uiPosition < m_PassesByTexture.GetSize() && m_PassesByTexture.GetHash(uiPosition) == Name.GetValue();
         ++uiPosition)
    {
        const uint32_t uiPass = m_PassesByTexture.GetItem(uiPosition);
        if (m_Stamps[uiPass] == uiStamp)
            continue;
        m_Stamps[uiPass] = uiStamp;
        if (List.Append(uiPass))
            return 1;
    }
    return 0;
}

// The effect draws into the passes of its targets while sampling the passes of its textures.
int CPassDependencies::CollectEffect(const SZamTZFXParserEffect& Effect, uint32_t uiEffect)
{
    CZamTArray<uint32_t> Drawn;
    CZamTArray<uint32_t> Sampled;
    for (uint32_t ui = 0; ui < Effect.Targets.GetSize(); ++ui)
    {
        if (AddPasses(CZamTHash(Effect.Targets[ui].Target), 2 * uiEffect, Drawn))
            return 1;
    }
    for (uint32_t ui = 0; ui < Effect.Textures.GetSize(); ++ui)
    {
        if (AddPasses(Effect.Textures[ui].Name.Hash, 2 * uiEffect + 1, Sampled))
            return 1;
    }
    for (uint32_t uiDrawn = 0; uiDrawn < Drawn.GetSize(); ++uiDrawn)
    {
        for (uint32_t uiSampled = 0; uiSampled < Sampled.GetSize(); ++uiSampled)
        {
            if (Drawn[uiDrawn] != Sampled[uiSampled])
                Set(Drawn[uiDrawn], Sampled[uiSampled]);
        }
    }
    return 0;
}

int CPassDependencies::Build(const SZamTZFXDocument& Document)
{
    m_uiPasses = Document.RenderPasses.GetSize();
    for (uint32_t ui = 0; ui < m_uiPasses; ++ui)
    {
        if (m_PassesByTexture.Add(Document.RenderPasses[ui].TextureName.Hash, ui))
            return 1;
    }
    m_PassesByTexture.Sort();
    // Every pass costs several lines, so the matrix stays small.
    const uint64_t uiWords = (static_cast<uint64_t>(m_uiPasses) * m_uiPasses + 31) / 32;
    m_pMatrix.reset(new (std::nothrow) uint32_t[uiWords ? uiWords : 1]());
    if (!m_pMatrix || Fill(m_Stamps, m_uiPasses, kUnvisited))
        return 1;
    for (uint32_t uiEffect = 0; uiEffect < Document.Effects.GetSize(); ++uiEffect)
    {
        if (CollectEffect(Document.Effects[uiEffect], uiEffect))
            return 1;
    }
    if (m_First.SetCapacity(m_uiPasses + 1) || m_First.Append(0))
        return 1;
    for (uint32_t uiPass = 0; uiPass < m_uiPasses; ++uiPass)
    {
        for (uint32_t uiOther = 0; uiOther < m_uiPasses; ++uiOther)
        {
            if (IsSet(uiPass, uiOther) && m_Edges.Append(uiOther))
                return 1;
        }
        m_First.Append(m_Edges.GetSize());
    }
    return 0;
}

// Labels each pass with the strongly connected component it belongs to (iterative Tarjan).
int FindCycles(const CPassDependencies& Dependencies, CZamTArray<uint32_t>& Component)
{
    const uint32_t uiPasses = Dependencies.GetPassCount();
    CZamTArray<uint32_t> Index;
    CZamTArray<uint32_t> Low;
    CZamTArray<uint32_t> OnStack;
    CZamTArray<uint32_t> Stack(uiPasses);
    CZamTArray<uint32_t> CallNodes(uiPasses);
    CZamTArray<uint32_t> CallEdges(uiPasses);
    if (Fill(Index, uiPasses, kUnvisited) || Fill(Low, uiPasses, 0) || Fill(OnStack, uiPasses, 0)
        || Fill(Component, uiPasses, 0) || Stack.GetCapacity() < uiPasses || CallNodes.GetCapacity() < uiPasses
        || CallEdges.GetCapacity() < uiPasses)
        return 1;

    // Each pass enters both stacks at most once, so their reserved capacity is enough.
    uint32_t uiCounter = 0;
    auto Visit = [&](uint32_t uiPass)
    {
        Index[uiPass] = Low[uiPass] = uiCounter++;
        Stack.Append(uiPass);
        OnStack[uiPass] = 1;
        CallNodes.Append(uiPass);
        CallEdges.Append(Dependencies.First(uiPass));
    };
    for (uint32_t uiRoot = 0; uiRoot < uiPasses; ++uiRoot)
    {
        if (Index[uiRoot] != kUnvisited)
            continue;
        Visit(uiRoot);
        while (CallNodes.GetSize() > 0)
        {
            const uint32_t uiTop = CallNodes.GetSize() - 1;
            const uint32_t uiPass = CallNodes[uiTop];
            if (CallEdges[uiTop] < Dependencies.End(uiPass))
            {
                const uint32_t uiNext = Dependencies.Target(CallEdges[uiTop]++);
                if (Index[uiNext] == kUnvisited)
                    Visit(uiNext);
                else if (OnStack[uiNext] && Index[uiNext] < Low[uiPass])
                    Low[uiPass] = Index[uiNext];
                continue;
            }
            CallNodes.RemoveLast();
            CallEdges.RemoveLast();
            if (Low[uiPass] == Index[uiPass])
            {
                uint32_t uiMember;
                do
                {
                    uiMember = Stack[Stack.GetSize() - 1];
                    Stack.RemoveLast();
                    OnStack[uiMember] = 0;
                    Component[uiMember] = uiPass;
                } while (uiMember != uiPass);
            }
            if (CallNodes.GetSize() > 0 && Low[uiPass] < Low[CallNodes[CallNodes.GetSize() - 1]])
                Low[CallNodes[CallNodes.GetSize() - 1]] = Low[uiPass];
        }
    }
    return 0;
}

int SortPasses(SZamTZFXDocument& Document, const CPassDependencies& Dependencies, const CZamTArray<uint32_t>& Component)
{
    CZamTArray<SZamTZFXRenderPass>& Passes = Document.RenderPasses;
    CZamTSkipGraphRoot<SZamTZFXRenderPass*> Graph;
    for (uint32_t ui = 0; ui < Passes.GetSize(); ++ui)
    {
        if (!Graph.AddNode(&Passes[ui]))
            return 1;
    }
    for (uint32_t uiPass = 0; uiPass < Passes.GetSize(); ++uiPass)
    {
        for (uint32_t uiEdge = Dependencies.First(uiPass); uiEdge < Dependencies.End(uiPass); ++uiEdge)
        {
            const uint32_t uiDependsOn = Dependencies.Target(uiEdge);
            if (Component[uiPass] != Component[uiDependsOn]
                && Graph.AddDependency(&Passes[uiPass], &Passes[uiDependsOn]))
                return 1;
        }
    }
    CZamTArray<SZamTZFXRenderPass*> Order(Passes.GetSize());
    CZamTArray<SZamTZFXRenderPass> Sorted(Passes.GetSize());
    if (Graph.Order(Order) || Order.GetSize() != Passes.GetSize() || Sorted.GetCapacity() < Passes.GetSize())
        return 1;
    for (uint32_t ui = 0; ui < Order.GetSize(); ++ui)
        Sorted.Append(*Order[ui]);
    Passes = std::move(Sorted);
    return 0;
}
} // namespace

int ZamTZFXOrderRenderPasses(SZamTZFXDocument& Document, CZamTString& Error)
{
    if (CheckTargetSurfaces(Document, Error))
        return 1;
    if (Document.RenderPasses.GetSize() < 2)
        return 0;
    CPassDependencies Dependencies;
    CZamTArray<uint32_t> Component;
    if (Dependencies.Build(Document) || FindCycles(Dependencies, Component)
        || SortPasses(Document, Dependencies, Component))
        return OutOfMemory(Error);
    return 0;
}
