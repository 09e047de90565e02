#pragma once

// Text and binary forms of a compilation: the banner, the profile, the
// performance estimate, the disassembly and the program file.

#include "ZcCompilation.h"

#include <map>
#include <string>
#include <vector>

namespace ZamCompiler
{

constexpr const char* k_pCompilerVersion = "1.0.0";
constexpr int k_iCompilerBuild = 100;

std::string GlslBanner(const SCoreModel& core);

// "line: L, count: K" per line (ascending, each once), then the two totals. The OpenCL
// compiler writes its instruction counts with the same function.
std::string FormatProfile(const std::map<int, long long>& mapLineCounts, long long llInstructions);
std::string FormatProfile(const SCompilation& compilation);

// "Performance estimate" and its six figures.
std::string FormatEstimate(const SCompilation& compilation);

std::string FormatDisassembly(const SCompilation& compilation, const SCoreModel& core);
// The listing in parts, for threads that each format one: the header, then instructions
// [uiFirst, uiEnd) appended to text. aPoolTexts is ImmediateTexts of the program.
std::string DisassemblyHeader(const SCompilation& compilation, const SCoreModel& core);
void AppendDisassembly(const SCompilation& compilation, std::size_t uiFirst, std::size_t uiEnd,
                       const std::vector<std::string>& aPoolTexts, std::string& text);

// The "ZTXE" program file (layout in docs/compiler.md).
std::string EncodeProgram(const SCompilation& compilation, const SCoreModel& core);

} // namespace ZamCompiler
