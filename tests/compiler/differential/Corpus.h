#pragma once

// The real-world corpus (tests/compiler/realworld) and its list of expected
// failures: shaders that fail today because of a known compiler fault, each with
// the way it fails and why. The list only ever shrinks: a listed shader that
// starts to agree with Mesa fails the test until its line is removed.

#include <QMap>
#include <QString>
#include <QStringList>

namespace ZamDifferential
{

enum EOutcome
{
    Outcome_Agrees,  // compiled, and every pixel or vertex agrees with Mesa
    Outcome_Refused, // the compiler refuses the shader
    Outcome_Differs, // compiled, but computes something else than Mesa
    Outcome_Breaks,  // compiled, but the program cannot run (runs away, bad index, broken blocks)
};

QString OutcomeName(EOutcome eOutcome);

struct SExpectedFailure
{
    EOutcome eOutcome = Outcome_Differs;
    QString reason;
};

QString CorpusDir();
// Every *.vert and *.frag file of the corpus, sorted.
QStringList CorpusShaders();
// "<file> <refused|differs|breaks> <reason>" per line; blank lines and # comments skipped.
bool ReadExpectedFailures(QMap<QString, SExpectedFailure>& mapFailures, QString& error);

} // namespace ZamDifferential
