// Which result the views show for a panel: the newest compile's, or the last one that
// compiled while the text does not, with the edits since and the figures before.

#include "ShaderEditComponent/compile/controller/ResultHistory_p.h"
#include "tests/support/CompileTestSupport.h"

#include <QtTest>

namespace
{
using CompileTest::MessageAt;

SCompileResult MakeResult(ECompileStatus eStatus, const char* pLog, float fCycles = -1.0f)
{
    SCompileResult Result;
    Result.iStatus = eStatus;
    Result.Log = pLog;
    Result.Messages.append(MessageAt(3, SCompileMessage::Severity_Error, QString::fromLatin1(pLog)));
    if (fCycles >= 0.0f)
    {
        SCompileResult::SProfile Profile;
        Profile.Name = "unit";
        Profile.Disassembly = "mov r0, r1\n";
        Profile.fCycleCount = fCycles;
        Result.AddProfile(Profile);
    }
    return Result;
}
} // namespace

class CResultHistoryTest : public QObject
{
    Q_OBJECT

private slots:
    void NewestCompileDecides();
    void LastGoodResultOutlivesFailures();
};

void CResultHistoryTest::NewestCompileDecides()
{
    CResultHistory History;
    const CZamTHash Panel("a.frag");
    const CZamTHash Other("b.frag");
    History.Started(Panel, 1, History.Requested(Panel));
    History.StartedToFile(2);
    History.Started(Panel, 3, History.Requested(Panel));
    History.Started(Other, 4, History.Requested(Other));

    // Keys run over all panels and kinds; only the panel's newest compile describes its text.
    QCOMPARE(History.Classify(Panel, 1), CResultHistory::Kind_Superseded);
    QCOMPARE(History.Classify(Panel, 2), CResultHistory::Kind_Other);
    QCOMPARE(History.Classify(Panel, 3), CResultHistory::Kind_Latest);
    QCOMPARE(History.Classify(Other, 4), CResultHistory::Kind_Latest);
    QCOMPARE(History.Classify(CZamTHash("never.frag"), 5), CResultHistory::Kind_Other);
}

void CResultHistoryTest::LastGoodResultOutlivesFailures()
{
    CResultHistory History;
    const CZamTHash Panel("a.frag");
    auto Compile = [&](unsigned int uiKey, const SCompileResult& Result)
    {
        History.Started(Panel, uiKey, History.Requested(Panel));
        return History.Take(Panel, Result);
    };

    // Nothing compiled yet: a failure is shown as it is.
    const SCompileResult First = Compile(1, MakeResult(CompileStatus_Failed, "ERROR: first"));
    QCOMPARE(First.iEditsBehind, 0);
    QCOMPARE(First.Profiles.GetSize(), 0u);

    const SCompileResult Good = Compile(2, MakeResult(CompileStatus_Completed, "good", 12.0f));
    QCOMPARE(Good.iEditsBehind, 0);
    QCOMPARE(Good.PreviousProfiles.GetSize(), 0u);

    // Two typos: the good figures stay with the new log and messages, and the edits are counted.
    History.Requested(Panel); // an edit whose compile was cancelled before it started
    const SCompileResult Typo = Compile(3, MakeResult(CompileStatus_Failed, "ERROR: typo"));
    QCOMPARE(Typo.iEditsBehind, 2);
    QCOMPARE(Typo.Profiles.GetSize(), 1u);
    QCOMPARE(Typo.Profiles[0].fCycleCount, 12.0f);
    QCOMPARE(Typo.Log, CZamTString("ERROR: typo"));
    QCOMPARE(Typo.Messages.first().Text, QStringLiteral("ERROR: typo"));
    QCOMPARE(Typo.iStatus, static_cast<int>(CompileStatus_Failed));
    const SCompileResult NotRun = Compile(4, MakeResult(CompileStatus_NotRun, "ERROR: gone"));
    QCOMPARE(NotRun.iEditsBehind, 3);
    QCOMPARE(NotRun.Profiles[0].fCycleCount, 12.0f);

    // Compiling again: compared with the last good figures, without their disassembly.
    const SCompileResult Fixed = Compile(5, MakeResult(CompileStatus_Completed, "fixed", 9.0f));
    QCOMPARE(Fixed.iEditsBehind, 0);
    QCOMPARE(Fixed.PreviousProfiles.GetSize(), 1u);
    QCOMPARE(Fixed.PreviousProfiles[0].fCycleCount, 12.0f);
    QVERIFY(Fixed.PreviousProfiles[0].Disassembly.IsEmpty());
    QCOMPARE(Fixed.Profiles[0].Disassembly, CZamTString("mov r0, r1\n"));
    const SCompileResult Again = Compile(6, MakeResult(CompileStatus_Completed, "again", 9.0f));
    QCOMPARE(Again.PreviousProfiles[0].fCycleCount, 9.0f);
}

QTEST_MAIN(CResultHistoryTest)
#include "tst_ResultHistory.moc"
