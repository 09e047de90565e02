#include "ShaderEditComponent/compile/model/MetaTypes.h"

#include <QtTest>

class CCompileRecordsTest : public QObject
{
    Q_OBJECT

private slots:
    void RegisteredNames();
    void ProfileLookup();
};

void CCompileRecordsTest::RegisteredNames()
{
    // Looked up by name only: using a type (qMetaTypeId, Q_ARG) would register it on its own
    // and hide a missing registration, which string-based queued connections need.
    RegisterCompileMetaTypes();
    RegisterCompileMetaTypes(); // harmless twice
    const QList<QPair<QByteArray, size_t>> Types = {
        {"CZamTHash", sizeof(CZamTHash)},
        {"EShaderDocType", sizeof(EShaderDocType)},
        {"SCompileResult", sizeof(SCompileResult)},
        {"CZamTArray<int>", sizeof(CZamTArray<int>)},
        {"Settings::SEditor", sizeof(Settings::SEditor)},
        {"Settings::SCompiler", sizeof(Settings::SCompiler)},
        {"ECompileInvocationType", sizeof(ECompileInvocationType)},
    };
    for (const auto& Type : Types)
    {
        QVERIFY2(QMetaType::fromName(Type.first).isValid(), Type.first.constData());
        QCOMPARE(size_t(QMetaType::fromName(Type.first).sizeOf()), Type.second);
    }
}

void CCompileRecordsTest::ProfileLookup()
{
    SCompileResult Result;
    SCompileResult::SProfile Profile;
    for (const auto& Unit : QList<QPair<const char*, int>>{{"vs", 3}, {"fs", 5}, {"vs", 7}})
    {
        Profile.Name = Unit.first;
        Profile.iTemporaryRegisters = Unit.second;
        QCOMPARE(Result.AddProfile(Profile), 0);
    }
    // The list keeps every unit in order; the lookup holds the newest figures per name.
    QCOMPARE(Result.Profiles.GetSize(), 3u);
    QCOMPARE(Result.Profiles[0].iTemporaryRegisters, 3);
    QCOMPARE(Result.FindProfile("vs")->iTemporaryRegisters, 7);
    QCOMPARE(Result.FindProfile("fs")->iTemporaryRegisters, 5);
    QVERIFY(Result.FindProfile("v") == nullptr);
}

QTEST_GUILESS_MAIN(CCompileRecordsTest)
#include "tst_CompileRecords.moc"
