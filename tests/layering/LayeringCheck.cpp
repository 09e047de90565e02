#include "LayeringCheck.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QRegularExpression>
#include <QSet>

#include <functional>

namespace
{
bool IsTestCode(const QString& Path)
{
    return Path.startsWith(QLatin1String("tests/"));
}

QString FolderOf(const QString& Path)
{
    const int iSlash = static_cast<int>(Path.lastIndexOf(QLatin1Char('/')));
    return iSlash < 0 ? QString() : Path.left(iSlash);
}

QString FileNameOf(const QString& Path)
{
    return Path.mid(Path.lastIndexOf(QLatin1Char('/')) + 1);
}

// How an include was found.
enum EForm
{
    Form_None,
    Form_Beside,  // next to the including file
    Form_Library, // inside the including library's own folder
    Form_Top,     // from the top of the tree
};

struct SResolved
{
    EForm eForm = Form_None;
    QString Path; // from the top of the tree
};

class CLayeringCheck
{
public:
    CLayeringCheck(const QString& Root, const QVector<SLayeringLibrary>& Libraries, const QStringList& Skipped)
        : m_Root(Root)
        , m_Libraries(Libraries)
        , m_Skipped(Skipped)
    {
    }

    QStringList Run()
    {
        CollectSources();
        CheckLinks();
        for (const QString& Path : std::as_const(m_Sources))
            CheckFile(Path);
        return m_Violations;
    }

private:
    void CollectSources();
    void CheckLinks();
    void CheckFile(const QString& Path);
    void CheckInclude(const QString& From, int iLine, const QString& Include);
    void CheckForeignInclude(const QString& From, int iLine, const SResolved& Found);
    const SLayeringLibrary* LibraryOf(const QString& Path) const;
    const SLayeringLibrary* LibraryNamed(const QString& Name) const;
    SResolved Resolve(const QString& From, const QString& Include) const;
    bool Links(const SLayeringLibrary& From, const QString& To) const;
    void Report(const QString& Path, int iLine, const QString& Text)
    {
        m_Violations << QStringLiteral("%1:%2: %3").arg(Path).arg(iLine).arg(Text);
    }

    const QDir m_Root;
    const QVector<SLayeringLibrary> m_Libraries;
    const QStringList m_Skipped;
    QStringList m_Sources;
    QSet<QString> m_Files;
    QSet<QString> m_HeaderNames;
    QStringList m_Violations;
};

void CLayeringCheck::CollectSources()
{
    QDirIterator It(m_Root.path(), {QStringLiteral("*.h"), QStringLiteral("*.cpp")}, QDir::Files,
                    QDirIterator::Subdirectories);
    while (It.hasNext())
    {
        const QString Path = m_Root.relativeFilePath(It.next());
        const QString Top = Path.section(QLatin1Char('/'), 0, 0);
        // Build folders and hidden folders hold no sources of ours.
        if (Top.startsWith(QLatin1String("build")) || Top.startsWith(QLatin1Char('.')))
            continue;
        m_Files.insert(Path);
        if (Path.endsWith(QLatin1String(".h")))
            m_HeaderNames.insert(FileNameOf(Path));
        const bool bSkipped =
            std::any_of(m_Skipped.begin(), m_Skipped.end(),
                        [&](const QString& Folder) { return Path.startsWith(Folder + QLatin1Char('/')); });
        if (!bSkipped)
            m_Sources << Path;
    }
    m_Sources.sort();
}

// Every link names a library of the table, and following links never comes back.
void CLayeringCheck::CheckLinks()
{
    QHash<QString, int> State; // 1: on the current path, 2: done
    std::function<void(const SLayeringLibrary&, QStringList&)> Visit =
        [&](const SLayeringLibrary& Library, QStringList& Trail)
    {
        State[Library.Name] = 1;
        Trail << Library.Name;
        for (const QString& Link : Library.Links)
        {
            const SLayeringLibrary* pLink = LibraryNamed(Link);
            if (!pLink)
                Report(Library.Folders.value(0), 0,
                       QStringLiteral("%1 links %2, which is no library of the table").arg(Library.Name, Link));
            else if (State.value(Link) == 1)
                Report(Library.Folders.value(0), 0,
                       QStringLiteral("links form a cycle: %1 -> %2").arg(Trail.join(QLatin1String(" -> ")), Link));
            else if (State.value(Link) == 0)
                Visit(*pLink, Trail);
        }
        Trail.removeLast();
        State[Library.Name] = 2;
    };
    for (const SLayeringLibrary& Library : m_Libraries)
    {
        QStringList Trail;
        if (State.value(Library.Name) == 0)
            Visit(Library, Trail);
    }
}

void CLayeringCheck::CheckFile(const QString& Path)
{
    static const QRegularExpression s_Include(QStringLiteral("^\\s*#\\s*include\\s*\"([^\"]+)\""));
    QFile File(m_Root.filePath(Path));
    if (!File.open(QIODevice::ReadOnly))
    {
        Report(Path, 0, QStringLiteral("cannot be read: %1").arg(File.errorString()));
        return;
    }
    const QStringList Lines = QString::fromUtf8(File.readAll()).split(QLatin1Char('\n'));
    for (int i = 0; i < Lines.size(); ++i)
    {
        const QRegularExpressionMatch Match = s_Include.match(Lines.at(i));
        if (Match.hasMatch())
            CheckInclude(Path, i + 1, Match.captured(1));
    }
}

void CLayeringCheck::CheckInclude(const QString& From, int iLine, const QString& Include)
{
    const SResolved Found = Resolve(From, Include);
    if (Found.eForm == Form_None)
    {
        // Generated headers (moc output, build numbers) are no files of the tree.
        if (m_HeaderNames.contains(FileNameOf(Include)))
            Report(From, iLine,
                   QStringLiteral("\"%1\" is found only through an include folder; name the header by "
                                  "its path from the top of the tree")
                       .arg(Include));
        return;
    }
    const SLayeringLibrary* pFrom = LibraryOf(From);
    const SLayeringLibrary* pTo = LibraryOf(Found.Path);
    const bool bOwn = pFrom ? pFrom == pTo : FolderOf(From) == FolderOf(Found.Path);
    if (!bOwn)
        CheckForeignInclude(From, iLine, Found);
    else if (Found.eForm == Form_Top && pFrom)
        Report(From, iLine,
               QStringLiteral("\"%1\" is the library's own header: include it by its path inside %2")
                   .arg(Include, pFrom->Folders.value(0)));
}

void CLayeringCheck::CheckForeignInclude(const QString& From, int iLine, const SResolved& Found)
{
    if (Found.eForm != Form_Top)
        Report(From, iLine, QStringLiteral("include %1 by its path from the top of the tree").arg(Found.Path));
    if (IsTestCode(Found.Path) && !IsTestCode(From))
        Report(From, iLine, QStringLiteral("%1 is test code").arg(Found.Path));
    const SLayeringLibrary* pTo = LibraryOf(Found.Path);
    if (!pTo)
        return;
    const QString Mirror = QLatin1String("tests/") + FolderOf(Found.Path);
    if (Found.Path.endsWith(QLatin1String("_p.h")) && FolderOf(From) != Mirror)
        Report(From, iLine, QStringLiteral("%1 is private to %2").arg(Found.Path, pTo->Name));
    const SLayeringLibrary* pFrom = LibraryOf(From);
    if (pFrom && !Links(*pFrom, pTo->Name))
        Report(From, iLine,
               QStringLiteral("%1 includes %2 of %3, which it does not link: the include points up a "
                              "layer or sideways")
                   .arg(pFrom->Name, Found.Path, pTo->Name));
}

// The library that builds a file: the one with a source in the file's folder. Test code
// answers to the rules of tests, also where a test folder builds a library of fixtures.
const SLayeringLibrary* CLayeringCheck::LibraryOf(const QString& Path) const
{
    if (IsTestCode(Path))
        return nullptr;
    const QString Folder = FolderOf(Path);
    for (const SLayeringLibrary& Library : m_Libraries)
    {
        if (Library.Folders.contains(Folder))
            return &Library;
    }
    return nullptr;
}

const SLayeringLibrary* CLayeringCheck::LibraryNamed(const QString& Name) const
{
    for (const SLayeringLibrary& Library : m_Libraries)
    {
        if (Library.Name == Name)
            return &Library;
    }
    return nullptr;
}

SResolved CLayeringCheck::Resolve(const QString& From, const QString& Include) const
{
    const auto Try = [&](const QString& Folder, EForm eForm)
    {
        const QString Path = QDir::cleanPath(Folder.isEmpty() ? Include : Folder + QLatin1Char('/') + Include);
        return m_Files.contains(Path) ? SResolved{eForm, Path} : SResolved{};
    };
    SResolved Found = Try(FolderOf(From), Form_Beside);
    if (const SLayeringLibrary* pLibrary = LibraryOf(From); Found.eForm == Form_None && pLibrary)
        Found = Try(pLibrary->Folders.value(0), Form_Library);
    if (Found.eForm == Form_None)
        Found = Try(QString(), Form_Top);
    return Found;
}

bool CLayeringCheck::Links(const SLayeringLibrary& From, const QString& To) const
{
    QSet<QString> Seen;
    QStringList Pending = From.Links;
    while (!Pending.isEmpty())
    {
        const QString Name = Pending.takeLast();
        if (Name == To)
            return true;
        if (Seen.contains(Name))
            continue;
        Seen.insert(Name);
        if (const SLayeringLibrary* pLibrary = LibraryNamed(Name))
            Pending += pLibrary->Links;
    }
    return false;
}
} // namespace

SLibraryTable ReadLibraryTable(const QString& Path)
{
    QFile File(Path);
    if (!File.open(QIODevice::ReadOnly))
        return {{}, QStringLiteral("%1: %2").arg(Path, File.errorString())};
    QVector<SLayeringLibrary> Libraries;
    const QStringList Lines = QString::fromUtf8(File.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (const QString& Line : Lines)
    {
        const QStringList Words = Line.split(QLatin1Char(' '), Qt::SkipEmptyParts);
        if (Words.size() < 2)
            return {{}, QStringLiteral("%1: not a row of the library table: \"%2\"").arg(Path, Line)};
        Libraries.append({Words.at(0), Words.at(1).split(QLatin1Char(',')), Words.mid(2)});
    }
    return {Libraries, QString()};
}

QStringList CheckLayering(const QString& Root, const QVector<SLayeringLibrary>& Libraries, const QStringList& Skipped)
{
    return CLayeringCheck(Root, Libraries, Skipped).Run();
}
