#pragma once

#include "ShaderEditComponent/compile/model/ZamStringConversion.h"
#include "ShaderEditComponent/IShaderEditorDelegate.h"

#include <QStringList>

#include <functional>

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
        if (SavePath.isEmpty())
            return false;
        FileName = ToZamString(SavePath);
        return true;
    }

    int ShowPrintDialog(QPrinter*, bool) override { return 0; }

    bool GetOpenFileName(CZamTString& FileName) override
    {
        if (OpenPath.isEmpty())
            return false;
        FileName = ToZamString(OpenPath);
        return true;
    }

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
    QStringList ReloadAsked;
    std::function<void()> OnAsk; // called while the question is asked
    QString SavePath;
    QString OpenPath;
    int iSaveNameRequests = 0;
    QStringList Asked;
    QStringList ErrorPaths;
    QStringList Errors;
};
