#pragma once

#include "ShaderEditComponent/compile/controller/CompilerDetection.h"
#include "ShaderEditComponent/compile/model/Settings.h"

#include <QColor>
#include <QWidget>

class CColourSelectButton;
class CCompilerDetector;
class CShaderEditController;
class QCheckBox;
class QComboBox;
class QGridLayout;
class QGroupBox;
class QListWidget;
class QLabel;
class QLineEdit;
class QPushButton;
class QStackedWidget;
class QTimer;

// The compiler page of the preferences: which compiler (a bundled target or a custom
// executable), the folder for temporary files and the colours of compiler output. The chosen
// executable is asked about itself at once, off the GUI thread; the page reports EnableOK
// only while that answer is good and the temporary folder exists.
class CCompilerPreferencesWidget : public QWidget
{
    Q_OBJECT

public:
    // Pages of CompilerResultStack.
    enum EResultPage
    {
        ResultPage_Success = 0,
        ResultPage_Error = 1,
        ResultPage_NoPath = 2,
        ResultPage_Checking = 3,
    };

    explicit CCompilerPreferencesWidget(CShaderEditController& Edit, QWidget* pParent = nullptr);
    ~CCompilerPreferencesWidget() override;

    // How long the check waits for the compiler's answer.
    void SetDetectionTimeout(int iTimeoutMs);
    bool IsCheckingCompiler() const;
    // What the last EnableOK said: the compiler answered well and the temporary folder exists.
    bool IsInputValid() const { return m_bCompilerOK && m_bTempPathOK; }

signals:
    void GLSLESPathChanged(const QString& Path);
    void CompilerTempPathChanged(const QString& Path);
    void ErrorColourChanged(const QColor& Colour);
    void WarningColourChanged(const QColor& Colour);
    void ShouldFormatOutputChanged(bool bFormat);
    void CompilerSelectionChanged(int iSelection);
    void EnableOK(bool bEnable);

public slots:
    void OnSave();
    void OnRetranslate();
    void OnBrowseGLSLESPath();
    void OnBrowseTempPath();
    void OnCompilerComboChanged(int iIdx);
    void OnCheckGLSLESCompiler(const QString& Path);

private:
    QGridLayout* BuildCompilerRows();
    QGroupBox* BuildDetailsGroup();
    QGroupBox* BuildOutputGroup();
    QGroupBox* BuildIncludeGroup();
    void OnAddIncludeFolder();
    void Connect();
    void LoadSettings();
    void OnCompilerDetected(const QString& Path, const SCompilerDetection& Detection);
    void OnTempPathEdited(const QString& Path);
    void UpdateEnableOK();
    bool IsCustomSelected() const;

    CShaderEditController& m_Edit;
    CCompilerDetector* m_pDetector;
    QTimer* m_pTypingPause;
    QString m_CustomPath; // kept while a bundled target is shown in the path field
    bool m_bCompilerOK = false;
    bool m_bTempPathOK = true;

    QLabel* m_pCompilerLabel = nullptr;
    QComboBox* m_pCompilerCombo = nullptr;
    QLabel* m_pPathLabel = nullptr;
    QLineEdit* m_pPath = nullptr;
    QPushButton* m_pBrowsePath = nullptr;
    QLabel* m_pTempLabel = nullptr;
    QLineEdit* m_pTempPath = nullptr;
    QPushButton* m_pBrowseTemp = nullptr;
    QLabel* m_pTempProblem = nullptr;
    QGroupBox* m_pDetailsGroup = nullptr;
    QStackedWidget* m_pResultStack = nullptr;
    QLabel* m_pCoreRevLabel = nullptr;
    QLabel* m_pCoreRevValue = nullptr;
    QLabel* m_pVersionLabel = nullptr;
    QLabel* m_pVersionValue = nullptr;
    QLabel* m_pOptionsLabel = nullptr;
    QLabel* m_pOptionsValue = nullptr;
    QLabel* m_pErrorText = nullptr;
    QLabel* m_pNoPathText = nullptr;
    QLabel* m_pCheckingText = nullptr;
    QGroupBox* m_pOutputGroup = nullptr;
    QGroupBox* m_pIncludeGroup = nullptr;
    QLabel* m_pIncludeHint = nullptr;
    QListWidget* m_pIncludeList = nullptr;
    QPushButton* m_pAddInclude = nullptr;
    QPushButton* m_pRemoveInclude = nullptr;
    QCheckBox* m_pColourOutput = nullptr;
    QLabel* m_pErrorColourLabel = nullptr;
    CColourSelectButton* m_pErrorColour = nullptr;
    QLabel* m_pWarningColourLabel = nullptr;
    CColourSelectButton* m_pWarningColour = nullptr;
};
