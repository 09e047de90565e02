#pragma once

#include "ShaderEditComponent/compile/model/ShaderDocType.h"
#include "ShaderRuleEngine.h"

#include <QSyntaxHighlighter>
#include <QTextBlockUserData>
#include <QTextCharFormat>
#include <QTextCursor>

#include <functional>
#include <vector>

class CShaderHighlightController;

// Attached to a block of an effect file that carries effect syntax; the panel paints the
// block's background with the format's background.
class CTextBlockZFXData : public QTextBlockUserData
{
public:
    explicit CTextBlockZFXData(const QTextCharFormat& Format)
        : m_Format(Format)
    {
    }

    const QTextCharFormat& GetFormat() const { return m_Format; }

private:
    QTextCharFormat m_Format;
};

// Colours one panel's document with the rule tables and the controller's colour scheme.
// The panel answers RequestDocumentType (emitted at the start of every block) with
// SetDocumentType, so a change of type shows on the next re-highlight.
class CShaderHighlighter : public QSyntaxHighlighter
{
    Q_OBJECT

public:
    // pController must outlive the highlighter. While the controller colours hidden documents
    // later, a document whose parent is a hidden widget is coloured once that is shown.
    CShaderHighlighter(QTextDocument* pDocument, EShaderDocType eType, const CShaderHighlightController* pController);

    void SetDocumentType(EShaderDocType eType) { m_eType = eType; }
    EShaderDocType GetDocumentType() const { return m_eType; }

    // A waiting document colours its lines down to the one LastShownLine() names when it is
    // first shown, and the rest in passes of the event loop after that (after the first
    // paint while the controller colours hidden documents later).
    void SetLastShownLine(std::function<int()> LastShownLine) { m_LastShownLine = std::move(LastShownLine); }
    // Colours every line down to iLine that still waits for its pass; false if none did.
    bool ColourDownTo(int iLine);
    bool HasUncolouredLines() const { return !m_Uncoloured.isNull(); }

signals:
    void RequestDocumentType(CShaderHighlighter* pHighlighter);

protected:
    void highlightBlock(const QString& Text) override;
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;

private:
    void HighlightCode(const QString& Text, unsigned int uiMask);
    void HighlightEffect(const QString& Text);
    void PaintMultiLineComments(const QString& Text, unsigned int uiMask);
    void ApplyElements(unsigned int uiCodeElement);
    int PreviousState() const;
    void ColourWaitingDocument();
    void ColourFromShow();
    void ColourNextLines();
    bool IsWaitingForItsPass() const;

    const CShaderHighlightController* m_pController;
    EShaderDocType m_eType;
    const CShaderRuleEngine& m_Engine = CShaderRuleEngine::Shared();
    std::vector<quint8> m_Elements;              // per character: 0 code format, else element + 1
    QTextDocument* m_pWaitingDocument = nullptr; // the parent, not yet highlighted
    std::function<int()> m_LastShownLine;
    // The start of the first line left for a later pass; null once every line is coloured.
    // The cursor follows edits, so lines typed above it are coloured as usual.
    QTextCursor m_Uncoloured;
};
