#include "EditTestSupport.h"
#include "ShaderEditComponent/TextCommands_p.h"

#include <QPlainTextEdit>
#include <QtTest>

using namespace EditTestSupport;

// The line commands on plain text edits, so every range rule is seen without the panel.
class CTextCommandsTest : public QObject
{
    Q_OBJECT

private slots:
    void Comment_data();
    void Comment();
    void Uncomment_data();
    void Uncomment();
    void Indent_data();
    void Indent();
    void CommandsAreOneUndoStep();
    void IndentStringOnlyGrows();

private:
    QPlainTextEdit m_Edit;
};

void CTextCommandsTest::Comment_data()
{
    QTest::addColumn<QString>("Before");
    QTest::addColumn<QString>("After");
    QTest::newRow("span inside a line") << "a<bc|d" << "a/*bc*/d";
    QTest::newRow("span selected backwards") << "a|bc<d" << "a/*bc*/d";
    QTest::newRow("whole lines") << "<l1\nl2\nl3|" << "//l1\n//l2\n//l3";
    QTest::newRow("from the middle of lines") << "l<1\nl2\nl|3\nl4" << "//l1\n//l2\n//l3\nl4";
    QTest::newRow("ending in column 0 spares that line") << "<l1\nl2\nl3\nl4\n|l5" << "//l1\n//l2\n//l3\n//l4\nl5";
    QTest::newRow("empty lines are commented too") << "<a\n\nb|" << "//a\n//\n//b";
    QTest::newRow("no selection does nothing") << "ab|c" << "abc";
}

void CTextCommandsTest::Comment()
{
    QFETCH(QString, Before);
    QFETCH(QString, After);
    SetMarkedText(&m_Edit, Before);
    TextCommands::CommentSelection(m_Edit.textCursor());
    QCOMPARE(m_Edit.toPlainText(), After);
}

void CTextCommandsTest::Uncomment_data()
{
    QTest::addColumn<QString>("Before");
    QTest::addColumn<QString>("After");
    QTest::newRow("selection is the comment") << "a</*bc*/|d" << "abcd";
    QTest::newRow("selection inside the comment") << "a/*<bc|*/d" << "abcd";
    QTest::newRow("not a comment") << "a<bc|d" << "abcd";
    QTest::newRow("only an opening marker") << "a/*<bc|d" << "a/*bcd";
    QTest::newRow("too short to hold both markers") << "</*/|" << "/*/";
    QTest::newRow("lines") << "<//a\n//b\nc\n//d|" << "a\nb\nc\nd";
    QTest::newRow("indented comment stays") << "<   //a\n//b|" << "   //a\nb";
    QTest::newRow("ending in column 0 spares that line") << "<//a\n|//b" << "a\n//b";
    QTest::newRow("only the first marker goes") << "<////a\n//b|" << "//a\nb";
}

void CTextCommandsTest::Uncomment()
{
    QFETCH(QString, Before);
    QFETCH(QString, After);
    SetMarkedText(&m_Edit, Before);
    TextCommands::UncommentSelection(m_Edit.textCursor());
    QCOMPARE(m_Edit.toPlainText(), After);
}

void CTextCommandsTest::Indent_data()
{
    QTest::addColumn<bool>("Add");
    QTest::addColumn<bool>("Spaces");
    QTest::addColumn<QString>("Before");
    QTest::addColumn<QString>("After");
    QTest::newRow("add tabs") << true << false << "a<b\ncd\ne|f" << "\tab\n\tcd\n\tef";
    QTest::newRow("add spaces") << true << true << "<ab\ncd|" << "  ab\n  cd";
    QTest::newRow("add spares a line ending in column 0") << true << false << "<ab\n|cd" << "\tab\ncd";
    QTest::newRow("add to one line") << true << false << "a<b|" << "\tab";
    QTest::newRow("remove tabs") << false << false << "<\tab\n\t\tcd\nef|" << "ab\n\tcd\nef";
    QTest::newRow("remove spaces") << false << true << "<  ab\n   cd\n cd|" << "ab\n cd\n cd";
    QTest::newRow("remove tabs even in space mode") << false << true << "<\t  ab|" << "  ab";
    QTest::newRow("spaces stay in tab mode") << false << false << "<  ab|" << "  ab";
    QTest::newRow("empty lines stay") << false << true << "<ab\n\n  cd|" << "ab\n\ncd";
}

void CTextCommandsTest::Indent()
{
    QFETCH(bool, Add);
    QFETCH(bool, Spaces);
    QFETCH(QString, Before);
    QFETCH(QString, After);
    const QString Indent = Spaces ? QStringLiteral("  ") : QStringLiteral("\t");
    SetMarkedText(&m_Edit, Before);
    if (Add)
        TextCommands::AddIndent(m_Edit.textCursor(), Indent);
    else
        TextCommands::RemoveIndent(m_Edit.textCursor(), Spaces, QStringLiteral("  "), 2);
    QCOMPARE(m_Edit.toPlainText(), After);
}

void CTextCommandsTest::CommandsAreOneUndoStep()
{
    const QString Text = QStringLiteral("a\nb\nc");
    SetMarkedText(&m_Edit, QStringLiteral("<a\nb\nc|"));
    TextCommands::CommentSelection(m_Edit.textCursor());
    TextCommands::AddIndent(m_Edit.textCursor(), QStringLiteral("\t"));
    m_Edit.undo();
    QCOMPARE(m_Edit.toPlainText(), QStringLiteral("//a\n//b\n//c"));
    m_Edit.undo();
    QCOMPARE(m_Edit.toPlainText(), Text);
}

void CTextCommandsTest::IndentStringOnlyGrows()
{
    CIndentString Indent;
    QCOMPARE(Indent.Get(0), QString());
    QCOMPARE(Indent.Get(4), QStringLiteral("    "));
    QCOMPARE(Indent.Get(4), QStringLiteral("    "));
    // A smaller tab size appends rather than shortens; users' files depend on it.
    QCOMPARE(Indent.Get(2), QString(6, QLatin1Char(' ')));
    QCOMPARE(Indent.Get(2), QString(8, QLatin1Char(' ')));
    QCOMPARE(Indent.Get(-1), QString(8, QLatin1Char(' ')));
}

QTEST_MAIN(CTextCommandsTest)
#include "tst_TextCommands.moc"
