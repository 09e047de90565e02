#pragma once

#include "Tools/ZamTArray.h"
#include "Tools/ZamTString.h"

#include <QMetaType>
#include <QString>
#include <QStringList>
#include <QVector>

#include <map>

// Outcome of one run of a compiler.
enum ECompileStatus : int
{
    CompileStatus_Completed = 0, // the compiler ran to its end
    CompileStatus_Failed = 1,    // it ran, but did not report success
    CompileStatus_Cancelled = 2,
    CompileStatus_NotRun = 3, // no temporary file, or the compiler could not be started
};

// One diagnostic of the compiler output, so views never re-parse the log text.
struct SCompileMessage
{
    enum ESeverity : int
    {
        Severity_Error,
        Severity_Warning,
    };

    int iLine = 0; // 1-based document line (effect shaders already offset); 0 if none given
    ESeverity eSeverity = Severity_Error;
    QString Text; // the whole line as the compiler wrote it
    // A message about a line of an included header: the header as the compiler found it and
    // its own line (iLine is then 0, as no line of the document is meant).
    QString File;
    int iFileLine = 0;
};

// What one compile of one panel produces. Plain data; copies are deep, which the queued
// hand-over between the worker thread and the GUI thread relies on.
struct SCompileResult
{
    // Figures of one compiled unit (a shader, or one shader of an effect file). A negative
    // figure means the compiler did not report it.
    struct SProfile
    {
        CZamTString Name;
        CZamTString Disassembly;
        bool bRequestFlag = false;
        float fFirstCycleCount = -1.0f;
        float fCycleCount = -1.0f;
        float fWorstCycleCount = -1.0f;
        int iTemporaryRegisters = -1;
        int iPrimaryAttributes = -1;
        int iNonDependentTextureReads = -1;
        int iTotalConsumedCycles = -1;
        int iGeneratedInstructions = -1;
        bool bEstimateFound = false; // the output held a "Performance estimate" block
        // The document line the unit starts at; the disassembly's line column counts from it.
        int iLineOffset = 0;
    };

    // Null when no unit of that name was profiled.
    const SProfile* FindProfile(const CZamTString& Name) const;
    // Stores the record under its name and appends it to the ordered list; a unit compiled
    // twice keeps the newer figures in the lookup. Returns 0, or 1 when the list cannot grow.
    int AddProfile(const SProfile& Profile);

    CZamTString Log;
    CZamTArray<int> CycleCounts; // index = document line - 1; -1 where a line has no count
    std::map<CZamTString, SProfile> ProfileLookup;
    CZamTArray<SProfile> Profiles; // in compile order, for the views' unit selectors
    CZamTString Disassembly;
    int iStatus = CompileStatus_NotRun;
    QString CompilerString;
    QString VersionString;
    QVector<SCompileMessage> Messages;
    QStringList IncludedFiles; // every header the compile read, as the compiler found it
    // Set by the controller for the views of a background compile. Above 0: the text at hand
    // does not compile and this is the last result that did, from that many edits ago (its
    // log and messages are the current ones).
    int iEditsBehind = 0;
    // The figures of the result that compiled before this one, without disassembly; empty
    // for the first.
    CZamTArray<SProfile> PreviousProfiles;
};

Q_DECLARE_METATYPE(SCompileResult)
