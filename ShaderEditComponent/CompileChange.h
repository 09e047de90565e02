#pragma once

#include "ShaderEditComponent/compile/model/CompileResult.h"

#include <QString>

// How the figures of a compiled unit moved against the result before it, in one line:
// "cycles 142 → 131 (−11), registers 9 → 8". Figures that stayed are left out; when none
// moved: "no change: cycles 142, registers 9". Empty without a result before.
[[nodiscard]] QString DescribeFigureChange(const SCompileResult::SProfile* pBefore,
                                           const SCompileResult::SProfile& After);
// The same for a whole result: each unit that moved, named when there are several; empty
// for a first result.
[[nodiscard]] QString DescribeResultChange(const SCompileResult& Result);
// The unit of that name among Profiles, or null.
[[nodiscard]] const SCompileResult::SProfile* FindProfileNamed(const CZamTArray<SCompileResult::SProfile>& Profiles,
                                                               const CZamTString& Name);
// "Last good result, 3 edits ago".
[[nodiscard]] QString DescribeStaleResult(int iEditsBehind);
