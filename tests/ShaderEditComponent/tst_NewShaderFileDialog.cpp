#include "ShaderEditComponent/CNewShaderFileDialog.h"
#include "ShaderEditComponent/compile/model/MetaTypes.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTreeWidget>
#include <QtTest>

class CNewShaderFileDialogTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void SelectionShowsTheTypeOkEmitsIt();
    void DoubleClickChoosesAndCloses();

private:
    QTreeWidgetItem* Item(const QString& Title) const
    {
        return m_pTree->findItems(Title, Qt::MatchExactly | Qt::MatchRecursive).value(0);
    }
    QString Label(const char* pName) const { return m_pDialog->findChild<QLabel*>(QLatin1String(pName))->text(); }
    QPushButton* Button(QDialogButtonBox::StandardButton eButton) const
    {
        return m_pDialog->findChild<QDialogButtonBox*>(QStringLiteral("buttonBox"))->button(eButton);
    }

    CNewShaderFileDialog* m_pDialog = nullptr;
    QTreeWidget* m_pTree = nullptr;
    QSignalSpy* m_pNewFile = nullptr;
};

void CNewShaderFileDialogTest::init()
{
    RegisterCompileMetaTypes();
    m_pDialog = new CNewShaderFileDialog;
    m_pTree = m_pDialog->findChild<QTreeWidget*>(QStringLiteral("FileTypeTree"));
    m_pNewFile = new QSignalSpy(m_pDialog, &CNewShaderFileDialog::NewFile);
    m_pDialog->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_pDialog));
}

void CNewShaderFileDialogTest::cleanup()
{
    delete m_pNewFile;
    delete m_pDialog;
}

void CNewShaderFileDialogTest::SelectionShowsTheTypeOkEmitsIt()
{
    // Opens on the first type that compiles in the background.
    QCOMPARE(m_pTree->currentItem()->text(0), QStringLiteral("GLSL:ES Vertex Shader"));
    Button(QDialogButtonBox::Cancel)->click();
    QCOMPARE(m_pNewFile->count(), 0);

    m_pDialog->show();
    m_pTree->setCurrentItem(Item(QStringLiteral("Zamrix Effect File (GLSL:ES)")));
    QCOMPARE(Label("FileTypeTitle"), QStringLiteral("Zamrix Effect File (GLSL:ES)"));
    QVERIFY(Label("FileTypeDesc").endsWith(QStringLiteral("\n\nBackground compiling is enabled for this type.")));
    const QImage Shown = m_pDialog->findChild<QLabel*>(QStringLiteral("FileTypeIcon"))->pixmap().toImage();
    QCOMPARE(Shown.convertToFormat(QImage::Format_ARGB32),
             QImage(QStringLiteral(":/ShaderEditComponent/Icons/newfile_gles_fx_48.png"))
                 .convertToFormat(QImage::Format_ARGB32));

    // A language heading is no type: nothing to describe, nothing to accept.
    m_pTree->setCurrentItem(Item(QStringLiteral("HLSL")));
    QCOMPARE(Label("FileTypeTitle"), QString());
    QVERIFY(!Button(QDialogButtonBox::Ok)->isEnabled());
    m_pDialog->accept();
    QCOMPARE(m_pNewFile->count(), 0);

    m_pDialog->show();
    m_pTree->setCurrentItem(Item(QStringLiteral("HLSL FX File")));
    Button(QDialogButtonBox::Ok)->click();
    QCOMPARE(m_pNewFile->count(), 1);
    QCOMPARE(m_pNewFile->first().first().value<EShaderDocType>(), DocType_HLSLFX);
    QCOMPARE(m_pDialog->result(), int(QDialog::Accepted));
}

void CNewShaderFileDialogTest::DoubleClickChoosesAndCloses()
{
    // As a person's double click arrives: an item view acts on the second press only when
    // the first one landed on the same item.
    const auto DoubleClick = [this](QTreeWidgetItem* pItem)
    {
        const QPoint Centre = m_pTree->visualItemRect(pItem).center();
        QTest::mouseClick(m_pTree->viewport(), Qt::LeftButton, {}, Centre);
        QTest::mouseDClick(m_pTree->viewport(), Qt::LeftButton, {}, Centre);
        QTest::mouseRelease(m_pTree->viewport(), Qt::LeftButton, {}, Centre);
    };
    // On a heading a double click only folds; a type without a heading is chosen like any.
    QVERIFY(Item(QStringLiteral("HLSL"))->isExpanded());
    DoubleClick(Item(QStringLiteral("HLSL")));
    QVERIFY(!Item(QStringLiteral("HLSL"))->isExpanded());
    QVERIFY(m_pDialog->isVisible());
    DoubleClick(Item(QStringLiteral("Plain Text")));
    QCOMPARE(m_pNewFile->count(), 1);
    QCOMPARE(m_pNewFile->first().first().value<EShaderDocType>(), DocType_PlainText);
    QVERIFY(!m_pDialog->isVisible());
}

QTEST_MAIN(CNewShaderFileDialogTest)
#include "tst_NewShaderFileDialog.moc"
