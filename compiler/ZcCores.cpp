#include "ZcCores.h"

#include <cctype>

namespace ZamCompiler
{

namespace
{

const SCoreModel s_aCores[Core_Count] = {
    // core      name   executable          rev width alu mov trans tex pre  br  mem issue
    {Core_ZC1, "ZC1", "glslcompiler_zc1", 1, 1, 1, 1, 4, 9, 3, 4, 4, Issue_Single},
    {Core_ZC2, "ZC2", "glslcompiler_zc2", 2, 2, 1, 1, 4, 6, 2, 3, 3, Issue_NarrowAluPair},
    {Core_ZC3, "ZC3", "glslcompiler_zc3", 1, 4, 1, 1, 2, 4, 1, 2, 2, Issue_AluMove},
    {Core_ZD1, "ZD1", "glslcompiler_zd1", 3, 4, 1, 1, 1, 3, 1, 1, 2, Issue_AluPair},
};

std::string Lower(std::string text)
{
    for (char& c : text)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

} // namespace

const SCoreModel& CoreModel(ECore eCore)
{
    return s_aCores[eCore >= Core_ZC1 && eCore < Core_Count ? eCore : Core_ZC1];
}

bool CoreFromProgramName(const std::string& programPath, ECore& eCore)
{
    std::string name = programPath;
    const std::size_t uiSlash = name.find_last_of("/\\");
    if (uiSlash != std::string::npos)
        name = name.substr(uiSlash + 1);
    name = Lower(name);
    const std::size_t uiDot = name.find('.');
    if (uiDot != std::string::npos)
        name = name.substr(0, uiDot);
    const std::size_t uiUnderscore = name.rfind('_');
    const std::string suffix = uiUnderscore == std::string::npos ? name : name.substr(uiUnderscore + 1);
    for (const SCoreModel& core : s_aCores)
    {
        if (suffix == Lower(core.pName))
        {
            eCore = core.eCore;
            return true;
        }
    }
    return false;
}

} // namespace ZamCompiler
