// Feeds arbitrary bytes to every parser of compiler-produced text: the output parser (with a
// line offset taken from the input) and its raw-output text, the profile parser, the
// performance-estimate parser and the banner parser. Each must return without crashing, hanging or growing without bound.

#include "ShaderEditComponent/compile/parsers/CompilerBannerParser.h"
#include "ShaderEditComponent/compile/parsers/CompilerOutputParser.h"
#include "ShaderEditComponent/compile/parsers/DisassemblyParser.h"
#include "ShaderEditComponent/compile/parsers/PerformanceEstimateParser.h"
#include "ShaderEditComponent/compile/parsers/ProfileParser.h"

#include <QByteArray>
#include <QString>

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t uiSize)
{
    const QByteArray Bytes(reinterpret_cast<const char*>(pData), static_cast<qsizetype>(uiSize));
    const int iOffset = uiSize > 0 ? pData[0] * 37 : 0;
    const QString Text = QString::fromUtf8(Bytes);

    const SCompilerOutput Output = ParseCompilerOutput(Bytes, iOffset);
    if (Output.LogText.size() > Bytes.size() + Output.Messages.size() * 12 + 1)
        __builtin_trap(); // moving line numbers adds at most a few digits per message
    if (RawOutputForLog(Bytes).size() > MaxRawOutputInLog + 64)
        __builtin_trap(); // the log shows a bounded part of a failed run's output

    CZamTArray<int> CycleCounts;
    (void)ParseProfile(Text, iOffset, CycleCounts);
    if (CycleCounts.GetSize() > static_cast<uint32_t>(MaxProfileLine) + uiSize)
        __builtin_trap();

    (void)ParsePerformanceEstimate(Text);
    if (ParseDisassemblyLines(Text, iOffset).size() != Text.count(QLatin1Char('\n')) + 1)
        __builtin_trap(); // one entry per text line, so views can index it by line


    QString Compiler;
    QString Version;
    CZamTArray<QString> Options;
    (void)ParseCompilerBanner(Text, Compiler, Version, Options);
    return 0;
}
