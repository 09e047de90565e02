#include "CompilerDetection.h"

#include "CommandRunner.h"
#include "CompileOptions.h"
#include "CompilerBannerParser.h"

SCompilerDetection DetectCompiler(const QString& ExecutablePath, int iTimeoutMs)
{
    SCompilerDetection Detection;
    CRunControl Control;
    SRunOptions Options;
    Options.iTimeoutMs = iTimeoutMs;
    Options.iOutputCap = MaxBannerBytes;
    const SCommandRun Run = RunCommand({ExecutablePath, {}}, Control, Options);
    Detection.bRan = Run.eStatus == CompileStatus_Completed;
    if (!Detection.bRan)
        return Detection;
    Detection.bHasOptions =
        ParseCompilerBanner(QString::fromUtf8(Run.Output), Detection.Compiler, Detection.Version, Detection.Options);
    Detection.uiOptionFlags = OptionFlagsFromNames(Detection.Options);
    return Detection;
}
