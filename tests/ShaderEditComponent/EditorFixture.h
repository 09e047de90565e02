#pragma once

#include "ShaderEditComponent/compile/model/MetaTypes.h"
#include "ShaderEditComponent/compile/model/ZamStringConversion.h"
#include "ShaderEditComponent/CShaderEditor.h"
#include "ShaderEditComponent/CShaderEditPanel.h"
#include "ShaderEditComponent/highlighting/ShaderHighlightController.h"
#include "ShaderEditComponent/IShaderEditorDelegate.h"
#include "tests/support/TestFiles.h"

#include <QStringList>
#include <QTemporaryDir>

#include <functional>
#include <memory>

// Answers the editor's questions from scripted values and records what it was asked.
class CFakeEditorDelegate : public IShaderEditorDelegate
{
public:
    QMessageBox::StandardButton AskSaveChanges(const QString& FileName) override
    {
        Asked << FileName;
        if (OnAsk)
            OnAsk();
        return eAnswer;
    }
    bool GetSaveFileName(CZamTString& FileName, EShaderDocType) override
    {
        ++iSaveNameRequests;
        return Answer(SavePath, FileName);
    }
    int ShowPrintDialog(QPrinter*, bool) override { return 0; }
    bool GetOpenFileName(CZamTString& FileName) override { return Answer(OpenPath, FileName); }
    void ReportIOError(const CZamTString& Path, const CZamTString& Error) override
    {
        ErrorPaths << ToQString(Path);
        Errors << ToQString(Error);
    }
    bool AskReloadChangedFile(const QString& FileName) override
    {
        ReloadAsked << FileName;
        return bReload;
    }

    QMessageBox::StandardButton eAnswer = QMessageBox::Cancel;
    bool bReload = false;
    std::function<void()> OnAsk; // called while the question is asked
    QString SavePath;            // empty: the file dialog is cancelled
    QString OpenPath;
    int iSaveNameRequests = 0;
    QStringList Asked, ReloadAsked, ErrorPaths, Errors;

private:
    static bool Answer(const QString& Path, CZamTString& FileName)
    {
        if (!Path.isEmpty())
            FileName = ToZamString(Path);
        return !Path.isEmpty();
    }
};

// An editor with that delegate over a fresh temporary folder per case (Reset), and panels
// of their own; the highlight controller lives as long as the suite.
struct SEditorFixture
{
    SEditorFixture()
    {
        RegisterCompileMetaTypes();
        pHighlight = std::make_unique<CShaderHighlightController>();
    }
    void Reset()
    {
        pEditor.reset();
        Delegate = CFakeEditorDelegate();
        pDir = std::make_unique<QTemporaryDir>();
        pEditor = NewEditor();
    }
    std::unique_ptr<CShaderEditor> NewEditor()
    {
        auto pNew = std::make_unique<CShaderEditor>(pHighlight.get());
        pNew->SetDelegate(&Delegate);
        return pNew;
    }
    // A shown panel of its own, outside the editor's tabs.
    std::unique_ptr<CShaderEditPanel> NewPanel(EShaderDocType eType, const QString& FileName = QString(),
                                               const QString* pText = nullptr) const
    {
        const QByteArray Name = FileName.toUtf8();
        auto pPanel =
            std::make_unique<CShaderEditPanel>(nullptr, CZamTString(Name.constData()), pText, eType, pHighlight.get());
        pPanel->resize(600, 400);
        pPanel->show();
        return pPanel;
    }
    QString Write(const QString& Name, const QByteArray& Bytes) const
    {
        return TestFiles::WriteTestFile(pDir->path(), Name, Bytes);
    }

    std::unique_ptr<CShaderHighlightController> pHighlight;
    std::unique_ptr<QTemporaryDir> pDir;
    CFakeEditorDelegate Delegate;
    std::unique_ptr<CShaderEditor> pEditor;
};
