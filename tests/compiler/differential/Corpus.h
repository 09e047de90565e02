#pragma once

// The real-world corpus (tests/compiler/realworld): every shader must agree with Mesa.

#include <QDir>
#include <QStringList>

namespace ZamDifferential
{

inline QString CorpusDir()
{
    return QStringLiteral(ZAM_REALWORLD_DIR);
}

// Every *.vert and *.frag file of the corpus, sorted.
inline QStringList CorpusShaders()
{
    return QDir(CorpusDir()).entryList({"*.vert", "*.frag"}, QDir::Files, QDir::Name);
}

} // namespace ZamDifferential
