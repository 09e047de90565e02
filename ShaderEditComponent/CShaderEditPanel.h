#pragma once

#include "CLineNumberArea.h"
#include "DocumentFile.h"
#include "DocumentTextMirror.h"
#include "ShaderEditComponent/compile/model/CompileOptions.h"
#include "ShaderEditComponent/compile/model/CompileResult.h"
#include "ShaderEditComponent/compile/model/Settings.h"
#include "ShaderEditComponent/compile/model/ShaderDocType.h"
#include "Tools/ZamTArray.h"
#include "Tools/ZamTHash.h"
#include "Tools/ZamTString.h"

#include <QList>
#include <QPlainTextEdit>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextEdit>

#include <functional>
#include <memory>
#include <utility>

class CCompileMarks;
class CCycleCountLines;
class CShaderHighlightController;
class CShaderHighlighter;

// One open document: a plain-text editor with a line-number gutter and a cycle-count gutter,
// automatic indentation, a smart Home key, a configurable Tab key, the comment and indent
// commands, and a background-compile request after every change. The settings it follows
// are pushed in through the two settings slots.
class CShaderEditPanel : public QPlainTextEdit, public IGutterHost
{
    Q_OBJECT

public:
    enum EHighlightKind : int
    {
        Highlight_CursorMatches = 0,
        Highlight_FindResults = 1,
        Highlight_SourceLine = 2, // the line of an instruction picked in the disassembly
    };

    // pText is used only to detect the type when eType is DocType_Detect; the caller puts
    // the text in with SetContents. Without pText a DocType_Detect panel detects its type
    // from the first text it gets. pHighlight must outlive the panel.
    CShaderEditPanel(QWidget* pParent, const CZamTString& FileName, const QString* pText, EShaderDocType eType,
                     const CShaderHighlightController* pHighlight);
    ~CShaderEditPanel() override;

    // A tab restored behind others reads its file only when something first needs its text:
    // Load runs once, at the first access to the text through this class (below), and puts
    // the text in with SetContents. Until then the document is empty and unmodified.
    void SetTextLoader(std::function<void()> Load);
    bool IsTextPending() const { return static_cast<bool>(m_LoadText); }
    // Runs the pending load, if any. Every access to the text below goes through here.
    void EnsureText() const;
    QTextDocument* document() const;
    QString toPlainText() const;
    QTextCursor textCursor() const;
    int blockCount() const;
    void setPlainText(const QString& Text);
    void insertPlainText(const QString& Text);

    // Takes the text in place of the file's; a pending load runs first, so it never comes after.
    void SetContents(const QString& Text, bool bDetect);
    void SetDocumentType(EShaderDocType eType);
    EShaderDocType GetDocumentType() const;
    const CZamTString& GetFilename() const { return m_FileName; }
    const CZamTHash& GetPanelID() const { return m_PanelID; }
    // Compiles the text again when auto-compile is on, as an edit would (an included file changed).
    void RequestRecompile();
    // A header that another open document includes is compiled only as part of that document:
    // off, edits start no compile and the counts of its own compiles go. On again, it compiles.
    void SetCompiledAlone(bool bCompiledAlone);
    bool IsCompiledAlone() const { return m_bCompiledAlone; }
    // A header's marks: the messages of the documents that include it, about its own lines.
    void SetIncludersMessages(const QVector<SCompileMessage>& Messages);
    void SetFilename(const CZamTString& FileName);
    // How the file's bytes were laid out, kept for saving.
    const SDocumentFormat& GetFileFormat() const { return m_FileFormat; }
    void SetFileFormat(const SDocumentFormat& Format) { m_FileFormat = Format; }

    bool IsModified() const;
    void MarkSaved();
    void MoveCursorToStart();
    // The text edit's extra selections are the find results followed by the cursor matches,
    // but only those near the viewport: thousands of them would make every keystroke, scroll
    // and repaint walk them all. Scrolling brings the others in.
    void SetHighlightSelections(int iKind, const QList<QTextEdit::ExtraSelection>& Selections);
    // All highlights of one kind, wherever they are.
    const QList<QTextEdit::ExtraSelection>& GetHighlightSelections(int iKind) const;
    // The panel whose document pDocument is, or null.
    static CShaderEditPanel* OwnerOf(const QTextDocument* pDocument);
    // The document's plain text, as toPlainText() would build it.
    const QString& GetPlainText() const;

    void CommentSelection();
    void UncommentSelection();
    void AddIndentToSelection();
    void RemoveIndentFromSelection();
    // Undo and redo that never trigger automatic indentation while history is replayed.
    void Undo();
    void Redo();

    // The gutters never get narrower while the document is open, so the text never moves
    // sideways: the line gutter grows with the digits of the line count, the cycle gutter with
    // the widest count it has shown.
    int LineNumberAreaWidth() const;
    int CycleCountAreaWidth() const;
    int GutterAreaWidth(int iKind) const override;
    void PaintGutter(QPaintEvent* pEvent, int iKind) override;
    QString GutterToolTip(int iKind, const QPoint& Position) const override;
    const CZamTArray<int>& GetCycleCounts() const;
    // Whether the last counts moved the cost of the 0-based line, against the counts before.
    bool HasCycleCountChanged(int iBlock) const;
    // Above 0: the text does not compile and the cycle counts are the last good ones, greyed.
    int GetEditsBehind() const { return m_iEditsBehind; }
    // The last compile's messages on the 0-based line, one per line of text; empty for none.
    QString GetCompileMessages(int iBlock) const;
    // Highlights the 1-based line (0: none) and scrolls it into view; the cursor stays.
    void ShowSourceLine(int iLine);

signals:
    void RequestClose();
    void OutdentSelection();
    void RecompileContents(const CZamTHash& PanelID, const QString& Contents, EShaderDocType eType,
                           ECompileInvocationType eInvocation);
    void CancelCompile(const CZamTHash& PanelID);
    void FilenameChanged(const QString& FileName);

public slots:
    void OnCompileCycleCountChanged(const CZamTHash& PanelID, const CZamTArray<int>& CycleCounts);
    // Marks the messages of the panel's last compile in the text and greys stale counts.
    void OnPanelResultChanged(const CZamTHash& PanelID, const SCompileResult& Shown);
    void OnFontChanged(const QFont& Font);
    void OnCompilerSettingsChanged(const Settings::SCompiler& Settings, unsigned int uiChangedMask);
    void OnEditorSettingsChanged(const Settings::SEditor& Settings);

protected:
    bool event(QEvent* pEvent) override;
    bool viewportEvent(QEvent* pEvent) override;
    void keyPressEvent(QKeyEvent* pEvent) override;
    void showEvent(QShowEvent* pEvent) override;
    void resizeEvent(QResizeEvent* pEvent) override;
    void paintEvent(QPaintEvent* pEvent) override;

private slots:
    void UpdateLineNumberArea(const QRect& Rect, int iDy);
    void OnTextChanged(int iPosition, int iCharsRemoved, int iCharsAdded);
    void OnRequestDocumentType(CShaderHighlighter* pHighlighter);

private:
    QString FileExtension() const;
    void AutoIndent(int iPosition, int iCharsAdded);
    bool HandleTab();
    void HandleHome(QKeyEvent* pEvent);
    int LineNumberDigits() const;
    int VisibleCycleCountDigits() const;
    void UpdateGutterGeometry();
    void FlushGutterUpdates();
    void ShowHighlightsNearViewport();
    void KeepHighlightsNearViewport();
    bool HighlightWindowCoversViewport() const;
    std::pair<QTextBlock, QTextBlock> VisibleBlocks() const;
    void PaintEffectBackgrounds();
    void PaintLineMarkers(QPainter& Painter, const QRect& Dirty);
    void PaintChangedCounts(QPainter& Painter, const QRect& Dirty);
    void FollowLineCount(int iPosition);
    int BlockAt(const QPoint& Position) const;
    void ReplayHistory(bool bRedo);

    CLineNumberArea* m_pLineNumberArea;
    CLineNumberArea* m_pCycleCountArea;
    CShaderHighlighter* m_pHighlighter = nullptr;
    CZamTString m_FileName;
    CZamTHash m_PanelID;
    EShaderDocType m_eDocType = DocType_PlainText;
    QList<QTextEdit::ExtraSelection> m_FindHighlights;
    QList<QTextEdit::ExtraSelection> m_CursorMatchHighlights;
    QList<QTextEdit::ExtraSelection> m_SourceLineHighlights;
    std::unique_ptr<CCompileMarks> m_pMarks;
    std::unique_ptr<CCycleCountLines> m_pCounts;
    int m_iEditsBehind = 0;
    int m_iBlockCount = 1;       // as of the last edit, to keep the counts on their lines
    int m_iWidestLineDigits = 0; // the widest the gutters have been
    int m_iWidestCycleDigits = 0;
    Settings::SEditor m_EditorSettings;
    bool m_bAutoCompile = true;
    bool m_bCompiledAlone = true;
    SDocumentFormat m_FileFormat;
    // Set while the text is still to be read.
    mutable std::function<void()> m_LoadText;
    // The type is detected from the first text put in.
    bool m_bTypeFromText = false;
    bool m_bReplayingHistory = false;
    bool m_bGutterUpdatePending = false;
    int m_iDirtyGutterTop = 0; // gutter strip to repaint; empty while bottom < top
    int m_iDirtyGutterBottom = -1;
    CDocumentTextMirror m_TextMirror;
    // The part of the document whose highlights the text edit holds; a null end cursor
    // stands for the document end.
    QTextCursor m_HighlightWindowStart;
    QTextCursor m_HighlightWindowEnd;
};
