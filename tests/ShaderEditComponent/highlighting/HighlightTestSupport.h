#pragma once

#include <QString>
#include <QStringList>
#include <QTextCharFormat>
#include <QVector>

#include <memory>

class CShaderHighlightController;
class CZamPreferences;
class QTextDocument;

// A colour scheme in which every element has its own foreground, so a format on screen
// tells which element painted it.
class CDistinctScheme
{
public:
    CDistinctScheme();
    ~CDistinctScheme();

    const CShaderHighlightController* GetController() const { return m_pController.get(); }
    // -1 for a format no element has.
    int ElementOf(const QTextCharFormat& Format) const;
    // The element's name in the colour scheme ("GLSL:ES/Keyword").
    QString NameOf(int iElement) const;

private:
    std::unique_ptr<CZamPreferences> m_pStore;
    std::unique_ptr<CShaderHighlightController> m_pController;
};

// What the highlighter left on one block.
struct SBlockCapture
{
    QVector<int> Elements; // per character; -1 where no format was set
    int iState = -1;
    int iEffectDataElement = -1; // element of the CTextBlockZFXData format, -1 without
    bool bUnknownFormat = false; // a format no element has

    bool operator==(const SBlockCapture& Other) const
    {
        return Elements == Other.Elements && iState == Other.iState && iEffectDataElement == Other.iEffectDataElement
               && bUnknownFormat == Other.bUnknownFormat;
    }
};

QVector<SBlockCapture> CaptureBlocks(const QTextDocument& Document, const CDistinctScheme& Scheme);
// One line per block: its number, state, the element of its effect data, and the runs of
// characters each element painted ("4 state=0 GLSL:ES/Keyword 0..9, GLSL:ES/Code 9..10").
QString DumpBlocks(const QVector<SBlockCapture>& Blocks, const CDistinctScheme& Scheme);
// The first difference as readable text, or an empty string when equal.
QString DescribeDifference(const QVector<SBlockCapture>& Expected, const QVector<SBlockCapture>& Actual,
                           const CDistinctScheme& Scheme);

// Every document type value, plain text included.
QVector<unsigned int> AllDocumentTypes();
// The type the corpus file stands for, by its extension.
unsigned int DocumentTypeOfFile(const QString& FileName);
QString CorpusDirectory();
QStringList CorpusFiles();
QString ReadCorpusFile(const QString& FileName);

// Deterministic text built from the words of the rule tables, effect tags, comment
// markers, brackets, digits, and non-ASCII letters and combining marks.
class CRandomShaderText
{
public:
    explicit CRandomShaderText(quint32 uiSeed);

    // bOddCharacters adds NUL, line feeds, form feeds and lone surrogates.
    QString Line(bool bOddCharacters);
    QString Document(int iLines);
    quint32 Next(quint32 uiBound);

private:
    quint32 m_uiState;
    QStringList m_Tokens;
};
