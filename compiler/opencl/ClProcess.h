#pragma once

#include <string>
#include <vector>

namespace ZamCompiler
{

// The first executable of the candidates found on PATH (or an absolute path that exists); empty if none.
std::string FindExecutable(const std::vector<std::string>& aCandidates);

// Runs a program directly (no shell) and collects its standard error, at most uiMaxBytes of it.
// A run longer than iTimeoutSeconds is killed. Returns false if it could not be started or was killed.
bool RunProcess(const std::string& program, const std::vector<std::string>& aArgs, std::size_t uiMaxBytes,
                int iTimeoutSeconds, std::string& errorText, int& iExitCode);

} // namespace ZamCompiler
