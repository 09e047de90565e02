#include "ZcIncludes.h"

#include "ZcFiles.h"

#include <glslang/MachineIndependent/localintermediate.h>

#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <utility>

namespace ZamCompiler
{

namespace
{

std::string FolderOf(const std::string& path)
{
    return std::filesystem::path(path).parent_path().string();
}

std::string Join(const std::string& folder, const std::string& name)
{
    const std::filesystem::path joined =
        folder.empty() ? std::filesystem::path(name) : std::filesystem::path(folder) / name;
    return joined.lexically_normal().string();
}

// Only regular files are read: a FIFO or a device at a header's name must not stall the compile.
bool IsRegularFile(const std::string& path)
{
    struct stat info;
    return stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode);
}

bool IsBlank(const std::string& text)
{
    return text.find_first_not_of(" \t\r\n\v\f") == std::string::npos;
}

std::string Trim(const std::string& text)
{
    const std::size_t uiBegin = text.find_first_not_of(" \t");
    return uiBegin == std::string::npos ? std::string() : text.substr(uiBegin);
}

// The name of "#include "name"" or "#include <name>" on a line; false for any other line.
bool IncludedName(const std::string& line, std::string& name)
{
    std::string rest = Trim(line);
    if (rest.empty() || rest[0] != '#')
        return false;
    rest = Trim(rest.substr(1));
    if (rest.compare(0, 7, "include") != 0)
        return false;
    rest = Trim(rest.substr(7));
    if (rest.size() < 2 || (rest[0] != '"' && rest[0] != '<'))
        return false;
    const std::size_t uiEnd = rest.find(rest[0] == '"' ? '"' : '>', 1);
    if (uiEnd == std::string::npos)
        return false;
    name = rest.substr(1, uiEnd - 1);
    return true;
}

class CLineMover : public glslang::TIntermTraverser
{
public:
    explicit CLineMover(const std::map<std::string, int>& mapLines)
        : m_mapLines(mapLines)
    {
    }

    bool visitBinary(glslang::TVisit, glslang::TIntermBinary* pNode) override { return Move(pNode); }
    bool visitUnary(glslang::TVisit, glslang::TIntermUnary* pNode) override { return Move(pNode); }
    bool visitAggregate(glslang::TVisit, glslang::TIntermAggregate* pNode) override { return Move(pNode); }
    bool visitSelection(glslang::TVisit, glslang::TIntermSelection* pNode) override { return Move(pNode); }
    bool visitLoop(glslang::TVisit, glslang::TIntermLoop* pNode) override { return Move(pNode); }
    bool visitBranch(glslang::TVisit, glslang::TIntermBranch* pNode) override { return Move(pNode); }
    bool visitSwitch(glslang::TVisit, glslang::TIntermSwitch* pNode) override { return Move(pNode); }
    void visitSymbol(glslang::TIntermSymbol* pNode) override { Move(pNode); }
    void visitConstantUnion(glslang::TIntermConstantUnion* pNode) override { Move(pNode); }

private:
    bool Move(TIntermNode* pNode)
    {
        const glslang::TSourceLoc& loc = pNode->getLoc();
        if (loc.name == nullptr)
            return true;
        const auto found = m_mapLines.find(std::string(loc.name->c_str()));
        if (found == m_mapLines.end())
            return true;
        glslang::TSourceLoc moved = loc;
        moved.line = found->second;
        moved.name = nullptr;
        pNode->setLoc(moved);
        return true;
    }

    const std::map<std::string, int>& m_mapLines;
};

} // namespace

std::string Preamble(const SPreprocessorOptions& options)
{
    std::string text = "#extension GL_GOOGLE_include_directive : enable\n";
    for (const std::string& define : options.aDefines)
    {
        const std::size_t uiEquals = define.find('=');
        text += "#define " + define.substr(0, uiEquals) + " "
                + (uiEquals == std::string::npos ? std::string("1") : define.substr(uiEquals + 1)) + "\n";
    }
    return text;
}

void DropMessagesAfterHeaderError(CDiagnosticList& aDiagnostics)
{
    const auto first = std::find_if(aDiagnostics.begin(), aDiagnostics.end(),
                                    [](const SDiagnostic& diagnostic)
                                    { return diagnostic.eSeverity == Severity_Error && !diagnostic.file.empty(); });
    if (first == aDiagnostics.end())
        return;
    const std::string header = first->file;
    aDiagnostics.erase(std::remove_if(first, aDiagnostics.end(),
                                      [&header](const SDiagnostic& diagnostic) { return diagnostic.file != header; }),
                       aDiagnostics.end());
}

CIncluder::CIncluder(const SPreprocessorOptions& options, const SSourceLimits& limits)
    : m_options(options)
    , m_limits(limits)
{
}

CIncluder::IncludeResult* CIncluder::includeLocal(const char* pHeaderName, const char* pIncluderName,
                                                  std::size_t uiDepth)
{
    const std::string includer = pIncluderName ? pIncluderName : "";
    std::vector<std::string> aFolders{includer.empty() ? m_options.ownFolder : FolderOf(includer)};
    aFolders.insert(aFolders.end(), m_options.aIncludeFolders.begin(), m_options.aIncludeFolders.end());
    return Resolve(pHeaderName ? pHeaderName : "", includer, uiDepth, aFolders, false);
}

CIncluder::IncludeResult* CIncluder::includeSystem(const char* pHeaderName, const char* pIncluderName,
                                                   std::size_t uiDepth)
{
    // A "" header that was found but refused already has its reason.
    if (!m_pendingRefusal.empty())
        return Refuse(std::exchange(m_pendingRefusal, std::string()));
    return Resolve(pHeaderName ? pHeaderName : "", pIncluderName ? pIncluderName : "", uiDepth,
                   m_options.aIncludeFolders, true);
}

CIncluder::IncludeResult* CIncluder::Resolve(const std::string& name, const std::string& includer, std::size_t uiDepth,
                                             const std::vector<std::string>& aFolders, bool bLast)
{
    // glslang asks again in the folders after a failed "" search; the reason waits for that call.
    auto refuse = [&](const std::string& message) -> IncludeResult*
    {
        if (bLast)
            return Refuse(message);
        m_pendingRefusal = message;
        return nullptr;
    };
    if (uiDepth > MaxDepth)
        return refuse("headers nest more than " + std::to_string(MaxDepth) + " deep (does a header include itself?)");
    for (const std::string& folder : aFolders)
    {
        const std::string path = Join(folder, name);
        if (!IsRegularFile(path))
            continue;
        auto pText = std::make_unique<std::string>();
        std::string error;
        switch (ReadFileBounded(path, m_limits.uiMaxBytes, *pText, error))
        {
        case Read_Failed:
            return refuse("cannot read '" + path + "': " + error);
        case Read_TooLarge:
            return refuse("'" + path + "' is larger than " + std::to_string(m_limits.uiMaxBytes) + " bytes");
        case Read_Ok:
            break;
        }
        CDiagnosticList aProblems;
        if (!IsBlank(*pText) && !CheckSourceText(*pText, m_limits, aProblems))
            return refuse("'" + path + "' line " + std::to_string(aProblems.front().iLine) + ": "
                          + aProblems.front().text);
        m_uiTotalBytes += pText->size();
        if (m_uiTotalBytes > MaxTotalBytes)
            return refuse("the included headers add up to more than " + std::to_string(MaxTotalBytes) + " bytes");
        bool bKnown = false;
        for (const SHeader& header : m_aHeaders)
            bKnown = bKnown || header.path == path;
        if (!bKnown)
            m_aHeaders.push_back({path, name, includer});
        std::string* pData = pText.release();
        return new IncludeResult(path, pData->data(), pData->size(), pData);
    }
    std::string searched;
    for (const std::string& folder : aFolders)
        searched += (searched.empty() ? "" : ", ") + (folder.empty() ? std::string(".") : folder);
    return refuse("not found in " + (searched.empty() ? std::string("any include folder") : searched));
}

CIncluder::IncludeResult* CIncluder::Refuse(const std::string& message)
{
    std::string* pData = new std::string(message);
    return new IncludeResult(std::string(), pData->data(), pData->size(), pData);
}

void CIncluder::releaseInclude(IncludeResult* pResult)
{
    if (!pResult)
        return;
    delete static_cast<std::string*>(pResult->userData);
    delete pResult;
}

std::vector<std::string> CIncluder::Files() const
{
    std::vector<std::string> aFiles;
    for (const SHeader& header : m_aHeaders)
        aFiles.push_back(header.path);
    return aFiles;
}

std::vector<SIncludeDirective> IncludeDirectives(const std::string& text)
{
    std::vector<SIncludeDirective> aDirectives;
    int iLine = 1;
    for (std::size_t uiStart = 0; uiStart < text.size(); ++iLine)
    {
        std::size_t uiEnd = text.find('\n', uiStart);
        if (uiEnd == std::string::npos)
            uiEnd = text.size();
        std::string name;
        if (IncludedName(text.substr(uiStart, uiEnd - uiStart), name))
            aDirectives.push_back({iLine, name});
        uiStart = uiEnd + 1;
    }
    return aDirectives;
}

int TakeDirective(const std::vector<SIncludeDirective>& aDirectives, std::size_t& uiNext,
                  const std::function<bool(const std::string&)>& matches)
{
    for (std::size_t uiPass = 0; uiPass < 2; ++uiPass)
    {
        for (std::size_t i = uiPass == 0 ? uiNext : 0; i < aDirectives.size(); ++i)
        {
            if (matches(aDirectives[i].name))
            {
                uiNext = i + 1;
                return aDirectives[i].iLine;
            }
        }
    }
    return 0;
}

std::map<std::string, int> CIncluder::DocumentLines(const std::string& document) const
{
    const std::vector<SIncludeDirective> aDirectives = IncludeDirectives(document);
    std::map<std::string, int> mapLines;
    std::size_t uiNext = 0;
    for (const SHeader& header : m_aHeaders)
    {
        if (!header.parent.empty())
        {
            const auto parent = mapLines.find(header.parent);
            mapLines[header.path] = parent == mapLines.end() ? 1 : parent->second;
            continue;
        }
        const int iFound =
            TakeDirective(aDirectives, uiNext, [&header](const std::string& name) { return name == header.written; });
        // A directive made by a macro has no line of its own to find.
        mapLines[header.path] = iFound == 0 ? 1 : iFound;
    }
    return mapLines;
}

void CIncluder::MoveToDocumentLines(const std::string& document, TIntermNode* pRoot) const
{
    if (m_aHeaders.empty() || !pRoot)
        return;
    const std::map<std::string, int> mapLines = DocumentLines(document);
    CLineMover mover(mapLines);
    pRoot->traverse(&mover);
}

} // namespace ZamCompiler
