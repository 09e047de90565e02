#pragma once

#include "Tools/ZamTHash.h"

#include <QObject>
#include <QStringList>

#include <map>

class CShaderEditController;
class CShaderEditor;
class QFileSystemWatcher;
struct SCompileResult;

// Watches the files the open documents' last compiles included and recompiles the documents
// that include one when it changes on disk: saved in another tab or by another program.
class CIncludeWatch : public QObject
{
    Q_OBJECT

public:
    CIncludeWatch(CShaderEditor& Editor, const CShaderEditController& Controller, QObject* pParent);

    QStringList GetWatchedFiles() const;

private:
    void OnPanelResult(const CZamTHash& PanelID, const SCompileResult& Shown);
    void OnFileChanged(const QString& Path);
    void UpdateWatcher();

    CShaderEditor& m_Editor;
    QFileSystemWatcher* m_pWatcher = nullptr;
    std::map<CZamTHash, QStringList> m_Included;
};
