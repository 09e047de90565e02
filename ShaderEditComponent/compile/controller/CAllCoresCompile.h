#pragma once

#include "ShaderEditComponent/compile/model/CompileResult.h"
#include "ShaderEditComponent/compile/model/ShaderDocType.h"
#include "Tools/ZamTHash.h"

#include <QObject>
#include <QPointer>
#include <QString>
#include <QVector>

#include <map>

class CCompiler;
class CShaderEditController;
class QThread;
class QTimer;

// One compile of a document for every bundled core, in the order of the compiler targets.
struct SAllCoresResult
{
    struct SCore
    {
        QString Name;          // the target's display name
        SCompileResult Result; // iStatus CompileStatus_NotRun when its compiler is missing
    };
    QVector<SCore> Cores;
};

// Compiles the text of a GLSL ES document or effect file for all four bundled cores, on a
// worker thread of its own so the editor's own compile is never queued behind them. A new
// request or a cancel for the panel drops the compiles under way, as for every compile; the
// four start once the requests pause for StartDelayMs, so a burst of typing starts none.
// Compiler paths, the temporary folder and the include folders come from the controller.
class CAllCoresCompile : public QObject
{
    Q_OBJECT

public:
    static constexpr int StartDelayMs = 250;

    explicit CAllCoresCompile(const CShaderEditController& Controller, QObject* pParent = nullptr);
    // Cancels the compiles under way, stops the thread and deletes every compiler object.
    ~CAllCoresCompile() override;

    // Null until the panel's first request has delivered.
    const SAllCoresResult* GetResult(const CZamTHash& PanelID) const;
    // Started and not finished; a request still waiting for the pause counts four.
    int GetCompilesInFlight() const;
    // Whether a document of this type is compiled for the cores at all.
    static bool Compiles(EShaderDocType eType);

signals:
    void Compiled(const CZamTHash& PanelID, const SAllCoresResult& Result);

public slots:
    void OnCompile(const CZamTHash& PanelID, const QString& Contents, EShaderDocType eType,
                   const QString& SourceFolder);
    void OnCancel(const CZamTHash& PanelID);
    void OnPanelClosed(const CZamTHash& PanelID);

private:
    struct SPending
    {
        SAllCoresResult Result;
        QVector<CCompiler*> Compilers; // null once finished
        int iOutstanding = 0;
        unsigned int uiKey = 0;
    };

    struct SRequest
    {
        CZamTHash PanelID;
        QString Contents;
        EShaderDocType eType = DocType_PlainText;
        QString SourceFolder;
    };

    void Start(const SRequest& Request);
    void OnCoreCompiled(const CZamTHash& PanelID, unsigned int uiKey, int iCore, const SCompileResult& Result);
    void OnCoreFinished(const CZamTHash& PanelID, unsigned int uiKey, int iCore);
    void Abandon(CCompiler* pCompiler);

    const CShaderEditController& m_Controller;
    QThread* m_pThread = nullptr;
    std::map<CZamTHash, SPending> m_Pending;
    std::map<CZamTHash, SAllCoresResult> m_Results;
    QVector<QPointer<CCompiler>> m_Abandoned;
    unsigned int m_uiNextKey = 0;
    QTimer* m_pDelay = nullptr;
    SRequest m_Waiting;
    bool m_bWaiting = false;
};
