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
    // Not copied: the parsers only read it.
    const QByteArray Bytes =
        QByteArray::fromRawData(reinterpret_cast<const char*>(pData), static_cast<qsizetype>(uiSize));
    const int iOffset = uiSize > 0 ? pData[0] * 37 : 0;
    const QString Text = QString::fromUtf8(Bytes);

    const SCompilerOutput Output = ParseCompilerOutput(Bytes, iOffset);
    if (Output.LogText.size() > Bytes.size() + Output.Messages.size() * 12 + 1)
        __builtin_trap(); // moving line numbers adds at most a few digits per message
    if (RawOutputForLog(Bytes).size() > MaxRawOutputInLog + 64)
        __builtin_trap(); // the log shows a bounded part of a failed run's output

    // As a compile bounds it: the unit's lines, here the input's.
    const qint64 iLastLine = iOffset + Text.count(QLatin1Char('\n')) + 1;
    CZamTArray<int> CycleCounts;
    (void)ParseProfile(Text, iOffset, iLastLine, CycleCounts);
    if (CycleCounts.GetSize() > iLastLine + uiSize)
        __builtin_trap(); // lines past the unit are skipped, a line 0 appends one entry

    (void)ParsePerformanceEstimate(Text);
    if (ParseDisassemblyLines(Text, iOffset).size() != Text.count(QLatin1Char('\n')) + 1)
        __builtin_trap(); // one entry per text line, so views can index it by line

    QString Compiler;
    QString Version;
    CZamTArray<QString> Options;
    (void)ParseCompilerBanner(Text, Compiler, Version, Options);
    return 0;
}
