#pragma once

#include "ShaderEditComponent/compile/model/ShaderDocType.h"
#include "Tools/ZamTString.h"

#include <QMessageBox>

class QPrinter;

// What the editor tabs cannot decide by themselves: questions to the user, file names and
// error reports. Implemented by the window that hosts the editor.
class IShaderEditorDelegate
{
public:
    virtual ~IShaderEditorDelegate() = default;

    // Asks whether the modified document FileName (a path or a new-file title) should be
    // saved. Save saves, Cancel keeps the document open, anything else discards it.
    virtual QMessageBox::StandardButton AskSaveChanges(const QString& FileName) = 0;
    // Fills FileName with a path to save a document of type eType to; false on cancel.
    virtual bool GetSaveFileName(CZamTString& FileName, EShaderDocType eType) = 0;
    // Shows the print dialog for pPrinter; returns the dialog's result (QDialog::Accepted
    // to print).
    virtual int ShowPrintDialog(QPrinter* pPrinter, bool bHasSelection) = 0;
    // Fills FileName with a path to open; false on cancel.
    virtual bool GetOpenFileName(CZamTString& FileName) = 0;
    // Reports a failed read or write of Path; Error is the complete message.
    virtual void ReportIOError(const CZamTString& Path, const CZamTString& Error) = 0;
    // Asks whether the modified document FileName, changed on disk by another program, should
    // be read again, giving up the changes made in the editor. Keeping them is the answer
    // that loses nothing, so that is what a host that does not ask gets.
    virtual bool AskReloadChangedFile(const QString& FileName)
    {
        Q_UNUSED(FileName);
        return false;
    }
};
