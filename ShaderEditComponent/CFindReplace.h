#pragma once

#include <QWidget>

class CTextSearch;
class IFindReplaceDelagte;
class QCheckBox;
class QComboBox;
class QDockWidget;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QToolButton;

// The find and replace bar below the editor. It searches the editor's current panel: quick
// find while the user types (every match highlighted and counted), find next and previous
// with one wrap-around, replace and replace all, as plain text or a regular expression,
// optionally case-sensitive and whole-word. It knows the editor only through the delegate.
class CFindReplace : public QWidget
{
    Q_OBJECT

public:
    explicit CFindReplace(QWidget* pParent = nullptr);
    ~CFindReplace() override;

signals:
    void visibilityChanged(bool bVisible);
    void hasBeenHidden();

public slots:
    // Not owned; may be null, and then every search does nothing.
    void SetDelegate(IFindReplaceDelagte* pDelegate);
    void ShowFind();
    void ShowReplace();

protected:
    void showEvent(QShowEvent* pEvent) override;
    void hideEvent(QHideEvent* pEvent) override;
    // Escape anywhere in the bar hides it and gives the focus back to the editor.
    void keyPressEvent(QKeyEvent* pEvent) override;

private slots:
    void OnToggleAdvanced(bool bShow);
    void OnModeChanged(int iIndex);
    void OnFindMatches(int iCount);
    void OnQuickFind(const QString& Text);
    void OnQuickFind();
    void OnFindNext();
    void OnFindPrev();
    void OnReplace();
    void OnReplaceAll();
    void OnReturnPressed();

private:
    void BuildForm();
    void Retranslate();
    void ConnectForm();
    void ShowRow(QWidget* pRow, bool bShow);
    void FitHeightToRows();
    // The search options shown: those of the advanced row only while it is unfolded, so a
    // search that looks plain is plain.
    unsigned int ControlFlags() const;
    QPlainTextEdit* SearchedEdit() const;
    // With FindFlag_FindAll: count and highlight every match. Otherwise: move the panel's
    // cursor to the next match in the flags' direction, wrapping once. True when found.
    bool Search(const QString& Text, unsigned int uiFlags);
    bool HighlightAll(QPlainTextEdit* pEdit, const CTextSearch& Search);
    void ShowSearchError(const CTextSearch& Search);
    QDockWidget* HostDock() const;

    IFindReplaceDelagte* m_pDelegate = nullptr;

    QWidget* m_pFindWidget = nullptr;
    QLabel* m_pNumMatchesLabel = nullptr;
    QToolButton* m_pFindPrevious = nullptr;
    QToolButton* m_pFindNext = nullptr;
    QLineEdit* m_pFindTextbox = nullptr;
    QCheckBox* m_pCheckAdvanced = nullptr;
    QComboBox* m_pComboMode = nullptr;
    QToolButton* m_pCloseButton = nullptr;

    QWidget* m_pAdvancedWidget = nullptr;
    QLabel* m_pMethodLabel = nullptr;
    QComboBox* m_pMatchMode = nullptr;
    QCheckBox* m_pMatchCase = nullptr;
    QCheckBox* m_pMatchWord = nullptr;

    QWidget* m_pReplaceWidget = nullptr;
    QLineEdit* m_pReplaceTextbox = nullptr;
    QPushButton* m_pReplaceAll = nullptr;
    QPushButton* m_pReplace = nullptr;
};
