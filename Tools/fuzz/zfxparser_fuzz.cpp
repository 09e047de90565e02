// libFuzzer entry for the effect-file parser. FILE and BINARYFILE never reach the disk: the
// loader is replaced, and a few names are served from the in-memory file table instead.

#include "Tools/ZamTResourceFile.h"
#include "Tools/ZamTZFXParser.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace
{
int NoDisk(const char*, void**, size_t*)
{
    return 1;
}

const char kShaderSource[] = "void main()\n{\n}\n";
const char kBinary[] = "\x00\x01\x02\x03";

// A failed check must stop the run, so it is reported as a crash.
void Check(bool bCondition)
{
    if (!bCondition)
        __builtin_trap();
}
} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    CZamTResourceFile::SetLoadFunction(&NoDisk);
    CZamTResourceFile::RegisterMemoryFile("a.vert", kShaderSource, sizeof(kShaderSource) - 1, false);
    CZamTResourceFile::RegisterMemoryFile("b.frag", kShaderSource, sizeof(kShaderSource) - 1, false);
    CZamTResourceFile::RegisterMemoryFile("c.bin", kBinary, sizeof(kBinary) - 1, false);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t uiSize)
{
    const std::string Text(reinterpret_cast<const char*>(pData), uiSize);
    CZamTZFXParser Parser;
    CZamTString Error;
    const int iResult = Parser.ParseFromMemory(Text.c_str(), Error);
    if (iResult != 0)
    {
        Check(Error.GetLength() > 0 && Error.GetString()[Error.GetLength() - 1] == '\n');
        return 0;
    }
    Check(Error.IsEmpty());
    Check(Parser.GetEffects().GetSize() > 0 && Parser.GetVertexShaders().GetSize() > 0
          && Parser.GetFragmentShaders().GetSize() > 0);
    uint32_t uiViews = 0;
    for (uint32_t ui = 0; ui < Parser.GetTextures().GetSize(); ++ui)
        uiViews += Parser.GetTextures()[ui]->bRenderToTexture ? 1 : 0;
    Check(uiViews == Parser.GetRenderPasses().GetSize());
    for (uint32_t ui = 0; ui < Parser.GetRenderPasses().GetSize(); ++ui)
        Check(Parser.GetRenderPasses()[ui].pTexture != nullptr);
    for (uint32_t ui = 0; ui < Parser.GetVertexShaders().GetSize(); ++ui)
        Check(Parser.GetVertexShaders()[ui].uiIndex == ui);
    return 0;
}
