#pragma once

// Reads the include graph of the source tree and checks it against the libraries' links:
//  - a library includes its own headers by their path inside its folder, and the headers of
//    every other library by their path from the top of the tree ("Tools/ZamTString.h");
//  - a library includes only headers of libraries it links, directly or through others, so
//    no include points up a layer or sideways;
//  - a header whose name ends in _p.h is its library's own: only the library and its tests
//    (tests/<the library's folder>) include it;
//  - libraries and benchmarks include no test code; tests (tests/...) answer to the first and
//    third rule only, also where a test folder builds a library of fixtures;
//  - the links between libraries form no cycle.

#include <QString>
#include <QStringList>
#include <QVector>

struct SLayeringLibrary
{
    QString Name;
    QStringList Folders; // where its sources are, from the top of the tree; the first is its own
    QStringList Links;   // project libraries it links
};

struct SLibraryTable
{
    QVector<SLayeringLibrary> Libraries; // empty when the table could not be read
    QString Error;
};

// The table the build writes: one line a library, with its name, its folders joined by ','
// and the project libraries it links. A file that cannot be read or a line that is no row
// gives no libraries and the reason.
[[nodiscard]] SLibraryTable ReadLibraryTable(const QString& Path);

// Every violation under Root as "file:line: what is wrong", in file order. Folders named in
// Skipped (from the top of the tree) are not read.
[[nodiscard]] QStringList CheckLayering(const QString& Root, const QVector<SLayeringLibrary>& Libraries,
                                        const QStringList& Skipped = QStringList());
