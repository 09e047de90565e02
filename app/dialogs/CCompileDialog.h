#pragma once

#include "DialogCommandLine.h"
#include "ShaderEditComponent/compile/model/ShaderDocType.h"
#include "Tools/ZamTHash.h"
#include "Tools/ZamTString.h"

#include <QDialog>

class CGUIController;
class CShaderEditController;
class QCheckBox;
class QComboBox;
class QDialogButtonBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QStackedWidget;

// Compiles the current document to files: with the built-in compiler and its options, or
// with a command template of the user's in which %i%, %f%, %b% and %o% stand for the
// source's folder, file name, base name and the output directory. The line that will run is
// shown as it is edited; OK refuses a line that cannot run ("Invalid commandline") and
// otherwise hands it to the shader edit controller. No shell ever sees it.
class CCompileDialog : public QDialog
{
    Q_OBJECT

public:
    enum EOptionsPage
    {
        OptionsPage_BuiltIn = 0,
        OptionsPage_Custom = 1,
    };

    CCompileDialog(QWidget* pParent, CGUIController& GUI, CShaderEditController& Edit, const CZamTHash& PanelID,
                   const QString& FileName, EShaderDocType eType);

    // The line as last generated.
    const SDialogCommandLine& GetCommandLine() const { return m_Line; }

signals:
    void CompileFile(const CZamTHash& PanelID, const CZamTString& Filename, const CZamTString& CommandLine,
                     EShaderDocType eType);

public slots:
    void OnCompile();
    void OnBrowseOutputDirectory();
    void OnChangeCompileType(int iIndex);
    void OnGenerateCommandline();
    void OnRetranslate();

private:
    QGroupBox* BuildCompileGroup();
    QWidget* BuildBuiltInPage();
    QWidget* BuildCustomPage();
    QGroupBox* BuildOutputGroup();
    QGroupBox* BuildCommandLineGroup();
    void Connect(CShaderEditController& Edit);
    unsigned int BuiltInFlags() const;
    void ShowProblem();

    CGUIController& m_GUI;
    CShaderEditController& m_Edit;
    const CZamTHash m_PanelID;
    const QString m_FileName;
    const EShaderDocType m_eType;
    SDialogCommandLine m_Line;

    QGroupBox* m_pCompileGroup = nullptr;
    QLabel* m_pTypeLabel = nullptr;
    QComboBox* m_pTypeCombo = nullptr;
    QStackedWidget* m_pOptionsStack = nullptr;
    QCheckBox* m_pNoWarn = nullptr;
    QCheckBox* m_pProfile = nullptr;
    QCheckBox* m_pPerfSim = nullptr;
    QCheckBox* m_pAsm = nullptr;
    QPlainTextEdit* m_pCustomCommand = nullptr;
    QLabel* m_apPlaceholderLabels[4] = {};
    QLabel* m_apPlaceholderValues[4] = {};
    QGroupBox* m_pOutputGroup = nullptr;
    QLabel* m_pOutputLabel = nullptr;
    QLineEdit* m_pOutputDirectory = nullptr;
    QPushButton* m_pBrowseOutput = nullptr;
    QGroupBox* m_pCommandLineGroup = nullptr;
    QLabel* m_pCommandLine = nullptr;
    QDialogButtonBox* m_pButtons = nullptr;
};
