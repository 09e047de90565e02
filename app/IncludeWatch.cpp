#include "IncludeWatch.h"

#include "ShaderEditComponent/compile/controller/CShaderEditController.h"
#include "ShaderEditComponent/compile/model/ZamStringConversion.h"
#include "ShaderEditComponent/CShaderEditor.h"
#include "ShaderEditComponent/CShaderEditPanel.h"

#include <QFileInfo>
#include <QFileSystemWatcher>
#include <QSet>

#include <set>

namespace
{
QString Canonical(const QString& Path)
{
    return Path.isEmpty() ? QString() : QFileInfo(Path).canonicalFilePath();
}
} // namespace

CIncludeWatch::CIncludeWatch(CShaderEditor& Editor, CShaderEditController& Controller, QObject* pParent)
    : QObject(pParent)
    , m_Editor(Editor)
    , m_Controller(Controller)
    , m_pWatcher(new QFileSystemWatcher(this))
{
    setObjectName(QStringLiteral("IncludeWatch"));
    connect(&Controller, &CShaderEditController::PanelResultChanged, this, &CIncludeWatch::OnPanelResult);
    connect(m_pWatcher, &QFileSystemWatcher::fileChanged, this, &CIncludeWatch::OnFileChanged);
    // A header opened while its includer is open is known at once; closing the includer
    // makes it a document of its own again.
    connect(&Editor, &CShaderEditor::PanelAdded, this, [this] { UpdateHeaders(); });
    connect(&Editor, &CShaderEditor::PanelClosed, this, [this](CShaderEditPanel* pPanel) { UpdateHeaders(pPanel); });
}

QStringList CIncludeWatch::GetWatchedFiles() const
{
    return m_pWatcher->files();
}

void CIncludeWatch::OnPanelResult(const CZamTHash& PanelID, const SCompileResult& Shown)
{
    // A header's own compile that ended before it became one says nothing about its includers.
    if (m_Includers.count(PanelID) != 0)
        return;
    if (Shown.IncludedFiles.isEmpty())
        m_Included.erase(PanelID);
    else
        m_Included[PanelID] = Shown.IncludedFiles;
    QVector<SCompileMessage>& Messages = m_HeaderMessages[PanelID];
    Messages.clear();
    for (const SCompileMessage& Message : Shown.Messages)
    {
        if (Message.File.isEmpty())
            continue;
        Messages.append(Message);
        Messages.last().File = Canonical(Message.File);
    }
    UpdateWatcher();
    UpdateHeaders();
    for (const auto& [HeaderID, IncluderID] : m_Includers)
    {
        if (IncluderID != PanelID)
            continue;
        for (int i = 0; i < m_Editor.GetTabCount(); ++i)
        {
            if (m_Editor.GetPanel(i)->GetPanelID() == HeaderID)
                MarkHeader(m_Editor.GetPanel(i), PanelID);
        }
    }
}

std::set<CZamTHash> CIncludeWatch::OpenPanels(const CShaderEditPanel* pClosing) const
{
    std::set<CZamTHash> Open;
    for (int i = 0; i < m_Editor.GetTabCount(); ++i)
    {
        if (m_Editor.GetPanel(i) != pClosing)
            Open.insert(m_Editor.GetPanel(i)->GetPanelID());
    }
    return Open;
}

void CIncludeWatch::ForgetClosed(const CShaderEditPanel* pClosing)
{
    const std::set<CZamTHash> Open = OpenPanels(pClosing);
    for (auto Entry = m_Includers.begin(); Entry != m_Includers.end();)
    {
        if (Open.count(Entry->first) != 0)
        {
            ++Entry;
            continue;
        }
        // A panel of the same file opened later starts afresh.
        m_Controller.ShowResultOf(Entry->first, CZamTHash());
        Entry = m_Includers.erase(Entry);
    }
    for (auto Entry = m_HeaderMessages.begin(); Entry != m_HeaderMessages.end();)
        Entry = Open.count(Entry->first) != 0 ? std::next(Entry) : m_HeaderMessages.erase(Entry);
}

void CIncludeWatch::UpdateHeaders(const CShaderEditPanel* pClosing)
{
    ForgetClosed(pClosing);
    std::map<QString, CZamTHash> IncluderOf;
    for (const auto& [PanelID, Files] : m_Included)
    {
        if (pClosing && pClosing->GetPanelID() == PanelID)
            continue;
        for (const QString& File : Files)
            IncluderOf[Canonical(File)] = PanelID;
    }
    for (int i = 0; i < m_Editor.GetTabCount(); ++i)
    {
        CShaderEditPanel* pPanel = m_Editor.GetPanel(i);
        const CZamTHash PanelID = pPanel->GetPanelID();
        if (pPanel == pClosing)
            continue;
        const auto Found = IncluderOf.find(Canonical(ToQString(pPanel->GetFilename())));
        const bool bHeader = Found != IncluderOf.end() && Found->second != PanelID;
        const CZamTHash IncluderID = bHeader ? Found->second : CZamTHash();
        const auto Known = m_Includers.find(PanelID);
        if (Known == m_Includers.end() ? !bHeader : Known->second == IncluderID)
            continue;
        m_Controller.ShowResultOf(PanelID, IncluderID);
        if (!bHeader)
        {
            m_Includers.erase(PanelID);
            pPanel->SetCompiledAlone(true);
            continue;
        }
        m_Includers[PanelID] = IncluderID;
        // What its own compiles included and said is no longer of any document.
        m_Included.erase(PanelID);
        m_HeaderMessages.erase(PanelID);
        pPanel->SetCompiledAlone(false);
        MarkHeader(pPanel, IncluderID);
    }
}

void CIncludeWatch::MarkHeader(CShaderEditPanel* pHeader, const CZamTHash& IncluderID)
{
    const QString Path = Canonical(ToQString(pHeader->GetFilename()));
    QVector<SCompileMessage> Marks;
    for (const SCompileMessage& Message : std::as_const(m_HeaderMessages[IncluderID]))
    {
        if (Message.File != Path)
            continue;
        Marks.append(Message);
        Marks.last().iLine = Message.iFileLine;
        Marks.last().File.clear();
    }
    pHeader->SetIncludersMessages(Marks);
}

void CIncludeWatch::UpdateWatcher()
{
    // Closed tabs drop out here: only panels that still exist keep their files watched.
    const std::set<CZamTHash> Open = OpenPanels();
    QSet<QString> Wanted;
    for (auto Entry = m_Included.begin(); Entry != m_Included.end();)
    {
        if (Open.count(Entry->first) == 0)
        {
            Entry = m_Included.erase(Entry);
            continue;
        }
        for (const QString& File : std::as_const(Entry->second))
            Wanted.insert(File);
        ++Entry;
    }
    const QStringList Watched = m_pWatcher->files();
    for (const QString& File : Watched)
    {
        if (!Wanted.contains(File))
            m_pWatcher->removePath(File);
    }
    for (const QString& File : std::as_const(Wanted))
    {
        if (!Watched.contains(File) && QFileInfo::exists(File))
            m_pWatcher->addPath(File);
    }
}

void CIncludeWatch::OnFileChanged(const QString& Path)
{
    // A save that replaces the file ends the watch on the old one; the new one is watched again.
    if (QFileInfo::exists(Path) && !m_pWatcher->files().contains(Path))
        m_pWatcher->addPath(Path);
    for (int i = 0; i < m_Editor.GetTabCount(); ++i)
    {
        CShaderEditPanel* pPanel = m_Editor.GetPanel(i);
        const auto Found = m_Included.find(pPanel->GetPanelID());
        if (Found != m_Included.end() && Found->second.contains(Path))
            pPanel->RequestRecompile();
    }
}
