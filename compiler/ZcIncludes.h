#pragma once

// #include "file" for GLSL ES: where headers are searched, how they are read, and how the
// code they bring in is counted against the line of the document that included them.

#include "ZcDiagnostics.h"
#include "ZcSourceLimits.h"

#include <glslang/Public/ShaderLang.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

class TIntermNode;

namespace ZamCompiler
{

// What the command line adds to the shader's own text.
struct SPreprocessorOptions
{
    std::string ownFolder;                    // the compiled file's folder: "..." from the document looks here first
    std::vector<std::string> aIncludeFolders; // -I, in order, for "..." and <...>
    std::vector<std::string> aDefines;        // -D NAME[=VALUE]
};

// The text glslang reads before the shader: the include directive switched on and the
// defines, as "#define NAME VALUE" lines.
std::string Preamble(const SPreprocessorOptions& options);

// One #include "name" or #include <name> of a text.
struct SIncludeDirective
{
    int iLine = 0;
    std::string name;
};
std::vector<SIncludeDirective> IncludeDirectives(const std::string& text);

// A text's headers are entered in the order of its directives: the line of the first matching
// directive from uiNext on, else from the start, so the same header under two #if branches
// still lands on the directive that was read; 0 when none matches.
int TakeDirective(const std::vector<SIncludeDirective>& aDirectives, std::size_t& uiNext,
                  const std::function<bool(const std::string&)>& matches);

// glslang stops reading at the first error, but in a header it ends only the header: the
// including text goes on mid-statement and reports errors that are not there. Drops every
// message after the first error in a header that is not about that header.
void DropMessagesAfterHeaderError(CDiagnosticList& aDiagnostics);

// Resolves and reads headers for glslang. A header named with "" is looked for beside the
// file that includes it, then in the include folders; one named with <> only in the folders.
// Every header passes the source limits; nesting and the total size are bounded, so an
// include cycle without a guard ends with one error.
class CIncluder : public glslang::TShader::Includer
{
public:
    static constexpr std::size_t MaxDepth = 16;
    static constexpr std::size_t MaxTotalBytes = 16u * 1024u * 1024u;

    CIncluder(const SPreprocessorOptions& options, const SSourceLimits& limits);

    IncludeResult* includeLocal(const char* pHeaderName, const char* pIncluderName, std::size_t uiDepth) override;
    IncludeResult* includeSystem(const char* pHeaderName, const char* pIncluderName, std::size_t uiDepth) override;
    void releaseInclude(IncludeResult* pResult) override;

    // The headers read, each once, in the order they were first included.
    std::vector<std::string> Files() const;

    // Moves every node that came from a header to the document line of the #include that
    // (directly or through other headers) brought it in, so the program's lines, and with
    // them the profile and the listing, are lines of the document.
    void MoveToDocumentLines(const std::string& document, TIntermNode* pRoot) const;

private:
    struct SHeader
    {
        std::string path;    // as resolved; also the name glslang reports it under
        std::string written; // the name in the directive
        std::string parent;  // the path of the including header; empty for the document
    };

    IncludeResult* Resolve(const std::string& name, const std::string& includer, std::size_t uiDepth,
                           const std::vector<std::string>& aFolders, bool bLast);
    IncludeResult* Refuse(const std::string& message);
    std::map<std::string, int> DocumentLines(const std::string& document) const;

    SPreprocessorOptions m_options;
    SSourceLimits m_limits;
    std::vector<SHeader> m_aHeaders;
    std::size_t m_uiTotalBytes = 0;
    std::string m_pendingRefusal;
};

} // namespace ZamCompiler
