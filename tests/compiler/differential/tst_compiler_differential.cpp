// Every shader of the real-world corpus runs twice with the same inputs: in Mesa's
// llvmpipe, a real GLSL implementation, and compiled by the bundled compiler into a
// TXE program that the interpreter runs. Every pixel (or vertex) must agree.

#include "Corpus.h"
#include "MesaContext.h"
#include "MesaRunner.h"
#include "TxeRunner.h"
#include "ZcFrontEnd.h"

#include <QFile>
#include <QtTest>

#include <memory>

using namespace ZamDifferential;

class CCompilerDifferentialTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void shaderAgreesWithMesa_data();
    void shaderAgreesWithMesa();

private:
    bool RunCompiled(const std::string& source, const SShaderInterface& shaderInterface,
                         CReferenceTextures& textures, const SResults& mesa, QString& details);

    std::unique_ptr<ZamCompiler::CFrontEndProcess> m_pFrontEnd;
    CMesaContext m_mesa;
    int m_iShaders = 0;
    int m_iAgreeingShaders = 0;
    long m_lRows = 0;
    long m_lAgreeingRows = 0;
    long m_lUndecidedRows = 0;
};

void CCompilerDifferentialTest::initTestCase()
{
    m_pFrontEnd = std::make_unique<ZamCompiler::CFrontEndProcess>();
    const int iShaders = CorpusShaders().size();
    QVERIFY2(iShaders >= 60, qPrintable(QString("only %1 shaders in %2").arg(iShaders).arg(CorpusDir())));
    std::string error;
    if (!m_mesa.Initialise(error))
        QFAIL(qPrintable("Mesa is the reference this test compares with, and it cannot start: " + QString::fromStdString(error)));
    qInfo("reference: %s", m_mesa.Renderer().c_str());
}

void CCompilerDifferentialTest::cleanupTestCase()
{
    qInfo("%d of %d shaders agree with Mesa; %ld of %ld pixels and vertices agree, %ld left out (cube face edges)",
          m_iAgreeingShaders, m_iShaders, m_lAgreeingRows, m_lRows, m_lUndecidedRows);
    m_pFrontEnd.reset();
}

void CCompilerDifferentialTest::shaderAgreesWithMesa_data()
{
    QTest::addColumn<QString>("shader");
    for (const QString& shader : CorpusShaders())
        QTest::newRow(qPrintable(shader)) << shader;
}

bool CCompilerDifferentialTest::RunCompiled(const std::string& source, const SShaderInterface& shaderInterface,
                                                CReferenceTextures& textures, const SResults& mesa, QString& details)
{
    m_lRows += static_cast<long>(mesa.aaRows.size());
    ZamCompiler::SCompilation compilation;
    std::string text;
    if (!CompileForTxe(source, shaderInterface.eStage, compilation, text))
    {
        details = "the compiler refuses it:" + QString::fromStdString(text);
        return false;
    }
    SResults txe;
    if (!RunOnTxe(compilation.program, shaderInterface, textures, txe, text))
    {
        details = "its program breaks in the interpreter: " + QString::fromStdString(text);
        return false;
    }
    const SComparison comparison = Compare(mesa, txe, shaderInterface.eStage);
    m_lAgreeingRows += comparison.iAgreeingRows;
    m_lUndecidedRows += comparison.iUndecidedRows;
    if (comparison.iAgreeingRows + comparison.iUndecidedRows == comparison.iRows)
        return true;
    const bool bVertex = shaderInterface.eStage == ZamCompiler::Stage_Vertex;
    details = QString("%1 of %2 %3 disagree with Mesa:%4")
                  .arg(comparison.iRows - comparison.iAgreeingRows - comparison.iUndecidedRows)
                  .arg(comparison.iRows)
                  .arg(bVertex ? "vertices" : "pixels")
                  .arg(QString::fromStdString(comparison.report));
    return false;
}

void CCompilerDifferentialTest::shaderAgreesWithMesa()
{
    QFETCH(QString, shader);
    QFile file(CorpusDir() + "/" + shader);
    QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(file.errorString()));
    const std::string source = file.readAll().toStdString();
    const auto eStage = shader.endsWith(".vert") ? ZamCompiler::Stage_Vertex : ZamCompiler::Stage_Fragment;

    SShaderInterface shaderInterface;
    std::string error;
    QVERIFY2(ReadShaderInterface(source, eStage, shaderInterface, error), error.c_str());
    CReferenceTextures textures(shaderInterface.aSamplers);
    SResults mesa;
    QVERIFY2(RunOnMesa(source, shaderInterface, textures, mesa, error), ("Mesa refuses the shader: " + error).c_str());

    QString details;
    const bool bAgrees = RunCompiled(source, shaderInterface, textures, mesa, details);
    ++m_iShaders;
    m_iAgreeingShaders += bAgrees ? 1 : 0;
    QVERIFY2(bAgrees, qPrintable(details));
}

QTEST_GUILESS_MAIN(CCompilerDifferentialTest)
#include "tst_compiler_differential.moc"
