#include "IncludeWatch.h"

#include "ShaderEditComponent/compile/controller/CShaderEditController.h"
#include "ShaderEditComponent/CShaderEditor.h"
#include "ShaderEditComponent/CShaderEditPanel.h"

#include <QFileInfo>
#include <QFileSystemWatcher>
#include <QSet>

#include <set>

CIncludeWatch::CIncludeWatch(CShaderEditor& Editor, const CShaderEditController& Controller, QObject* pParent)
    : QObject(pParent)
    , m_Editor(Editor)
    , m_pWatcher(new QFileSystemWatcher(this))
{
    setObjectName(QStringLiteral("IncludeWatch"));
    connect(&Controller, &CShaderEditController::PanelResultChanged, this, &CIncludeWatch::OnPanelResult);
    connect(m_pWatcher, &QFileSystemWatcher::fileChanged, this, &CIncludeWatch::OnFileChanged);
}

QStringList CIncludeWatch::GetWatchedFiles() const
{
    return m_pWatcher->files();
}

void CIncludeWatch::OnPanelResult(const CZamTHash& PanelID, const SCompileResult& Shown)
{
    if (Shown.IncludedFiles.isEmpty())
        m_Included.erase(PanelID);
    else
        m_Included[PanelID] = Shown.IncludedFiles;
    UpdateWatcher();
}

void CIncludeWatch::UpdateWatcher()
{
    // Closed tabs drop out here: only panels that still exist keep their files watched.
    std::set<CZamTHash> Open;
    for (int i = 0; i < m_Editor.GetTabCount(); ++i)
        Open.insert(m_Editor.GetPanel(i)->GetPanelID());
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
