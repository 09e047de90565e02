#pragma once

#include "ShaderEditComponent/compile/model/CompileResult.h"
#include "Tools/ZamTHash.h"

#include <QObject>
#include <QStringList>
#include <QVector>

#include <map>
#include <set>

class CShaderEditController;
class CShaderEditor;
class CShaderEditPanel;
class QFileSystemWatcher;

// Watches the files the open documents' last compiles included and recompiles the documents
// that include one when it changes on disk: saved in another tab or by another program.
// A tab whose file another open document includes is a header: it is not compiled on its own
// (it has no entry point), its text is marked with the including document's messages about
// its lines, and the views show that document's result while the header is in front.
class CIncludeWatch : public QObject
{
    Q_OBJECT

public:
    CIncludeWatch(CShaderEditor& Editor, CShaderEditController& Controller, QObject* pParent);

    QStringList GetWatchedFiles() const;

private:
    void OnPanelResult(const CZamTHash& PanelID, const SCompileResult& Shown);
    void OnFileChanged(const QString& Path);
    void UpdateWatcher();
    // pClosing is a tab on its way out, which no longer includes anything.
    void UpdateHeaders(const CShaderEditPanel* pClosing = nullptr);
    std::set<CZamTHash> OpenPanels(const CShaderEditPanel* pClosing = nullptr) const;
    void ForgetClosed(const CShaderEditPanel* pClosing);
    void MarkHeader(CShaderEditPanel* pHeader, const CZamTHash& IncluderID);

    CShaderEditor& m_Editor;
    CShaderEditController& m_Controller;
    QFileSystemWatcher* m_pWatcher = nullptr;
    std::map<CZamTHash, QStringList> m_Included;
    // Per including panel: its last messages about included files, File made canonical.
    std::map<CZamTHash, QVector<SCompileMessage>> m_HeaderMessages;
    // Header panel to the panel whose compile it is part of.
    std::map<CZamTHash, CZamTHash> m_Includers;
};
