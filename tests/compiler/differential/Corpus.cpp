#include "Corpus.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTextStream>

namespace ZamDifferential
{

QString OutcomeName(EOutcome eOutcome)
{
    switch (eOutcome)
    {
    case Outcome_Agrees: return "agrees";
    case Outcome_Refused: return "refused";
    case Outcome_Differs: return "differs";
    case Outcome_Breaks: return "breaks";
    }
    return QString();
}

QString CorpusDir()
{
    return QStringLiteral(ZAM_REALWORLD_DIR);
}

QStringList CorpusShaders()
{
    return QDir(CorpusDir()).entryList({"*.vert", "*.frag"}, QDir::Files, QDir::Name);
}

bool ReadExpectedFailures(QMap<QString, SExpectedFailure>& mapFailures, QString& error)
{
    QFile file(CorpusDir() + "/expected_failures.txt");
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
    {
        error = file.fileName() + ": " + file.errorString();
        return false;
    }
    QTextStream stream(&file);
    static const QRegularExpression s_line("^(\\S+)\\s+(refused|differs|breaks)\\s+(\\S.*)$");
    for (int iLine = 1; !stream.atEnd(); ++iLine)
    {
        const QString line = stream.readLine().trimmed();
        if (line.isEmpty() || line.startsWith('#'))
            continue;
        const QRegularExpressionMatch match = s_line.match(line);
        if (!match.hasMatch())
        {
            error = QString("expected_failures.txt:%1: expected '<file> <refused|differs|breaks> <reason>'").arg(iLine);
            return false;
        }
        SExpectedFailure failure;
        const QString kind = match.captured(2);
        failure.eOutcome = kind == "refused" ? Outcome_Refused : kind == "breaks" ? Outcome_Breaks : Outcome_Differs;
        failure.reason = match.captured(3);
        mapFailures.insert(match.captured(1), failure);
    }
    return true;
}

} // namespace ZamDifferential
