#include "HighlightTestSupport.h"

#include "Common/ZamPreferences/ZamPreferences.h"
#include "ShaderEditComponent/compile/model/ZamStringConversion.h"
#include "ShaderEditComponent/highlighting/ShaderHighlightController.h"
#include "ShaderEditComponent/highlighting/ShaderHighlighter.h"
#include "ShaderEditComponent/highlighting/ShaderHighlightRules.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>

namespace
{
const quint32 s_uiSchemeBase = 0xFF203040u;
}

CDistinctScheme::CDistinctScheme()
    : m_pStore(std::make_unique<CZamPreferences>(QStringLiteral("HighlightTestScheme")))
{
    m_pController = std::make_unique<CShaderHighlightController>(m_pStore.get());
    for (unsigned int i = 0; i < CShaderHighlightController::ElementCount; ++i)
    {
        QTextCharFormat Format;
        Format.setForeground(QColor::fromRgba(s_uiSchemeBase + i));
        m_pController->OnSyntaxColourChanged(i, Format);
    }
}

CDistinctScheme::~CDistinctScheme() = default;

int CDistinctScheme::ElementOf(const QTextCharFormat& Format) const
{
    const quint32 uiColour = Format.foreground().color().rgba();
    if (uiColour < s_uiSchemeBase || uiColour >= s_uiSchemeBase + CShaderHighlightController::ElementCount)
        return -1;
    return int(uiColour - s_uiSchemeBase);
}

QVector<SBlockCapture> CaptureBlocks(const QTextDocument& Document, const CDistinctScheme& Scheme)
{
    QVector<SBlockCapture> Blocks;
    for (QTextBlock Block = Document.begin(); Block.isValid(); Block = Block.next())
    {
        SBlockCapture Capture;
        Capture.Elements.fill(-1, Block.length() - 1);
        for (const QTextLayout::FormatRange& Range : Block.layout()->formats())
        {
            const int iElement = Scheme.ElementOf(Range.format);
            Capture.bUnknownFormat |= iElement < 0;
            for (int i = Range.start; i < Range.start + Range.length && i < Capture.Elements.size(); ++i)
                Capture.Elements[i] = iElement;
        }
        Capture.iState = Block.userState();
        if (const auto* pData = dynamic_cast<const CTextBlockZFXData*>(Block.userData()))
            Capture.iEffectDataElement = Scheme.ElementOf(pData->GetFormat());
        Blocks.append(Capture);
    }
    return Blocks;
}

namespace
{
QString DumpBlock(int iIndex, const SBlockCapture& Block, const CDistinctScheme& Scheme)
{
    QString Line = QStringLiteral("%1 state=%2").arg(iIndex).arg(Block.iState);
    if (Block.iEffectDataElement >= 0)
        Line += QStringLiteral(" zfx=%1").arg(Scheme.NameOf(Block.iEffectDataElement));
    if (Block.bUnknownFormat)
        Line += QStringLiteral(" unknown-format");
    QStringList Runs;
    int iStart = 0;
    while (iStart < Block.Elements.size())
    {
        int iEnd = iStart + 1;
        while (iEnd < Block.Elements.size() && Block.Elements[iEnd] == Block.Elements[iStart])
            ++iEnd;
        if (Block.Elements[iStart] >= 0)
            Runs << QStringLiteral("%1 %2..%3").arg(Scheme.NameOf(Block.Elements[iStart])).arg(iStart).arg(iEnd);
        iStart = iEnd;
    }
    if (!Runs.isEmpty())
        Line += QLatin1Char(' ') + Runs.join(QLatin1String(", "));
    return Line;
}
} // namespace

QString CDistinctScheme::NameOf(int iElement) const
{
    return ToQString(m_pController->GetElementName(static_cast<unsigned int>(iElement)));
}

QString DumpBlocks(const QVector<SBlockCapture>& Blocks, const CDistinctScheme& Scheme)
{
    QString Dump;
    for (int i = 0; i < Blocks.size(); ++i)
        Dump += DumpBlock(i, Blocks[i], Scheme) + QLatin1Char('\n');
    return Dump;
}

QString DescribeDifference(const QVector<SBlockCapture>& Expected, const QVector<SBlockCapture>& Actual,
                           const CDistinctScheme& Scheme)
{
    if (Expected.size() != Actual.size())
        return QStringLiteral("block count %1, expected %2").arg(Actual.size()).arg(Expected.size());
    for (int i = 0; i < Expected.size(); ++i)
    {
        if (!(Expected[i] == Actual[i]))
            return QStringLiteral("expected: %1\nactual:   %2")
                .arg(DumpBlock(i, Expected[i], Scheme), DumpBlock(i, Actual[i], Scheme));
    }
    return QString();
}

QVector<unsigned int> AllDocumentTypes()
{
    return {0, 1, 2, 4, 8, 16, 32, 64, 128, 256, 512, 1024};
}

unsigned int DocumentTypeOfFile(const QString& FileName)
{
    static const QVector<QPair<QString, unsigned int>> s_Extensions = {
        {QStringLiteral("vsh"), 1},  {QStringLiteral("fsh"), 2},  {QStringLiteral("vert"), 4},
        {QStringLiteral("frag"), 8}, {QStringLiteral("zfx"), 16}, {QStringLiteral("vs"), 64},
        {QStringLiteral("ps"), 128}, {QStringLiteral("gs"), 256}, {QStringLiteral("fx"), 512},
        {QStringLiteral("cl"), 1024}};
    const QString Extension = QFileInfo(FileName).suffix();
    for (const auto& Entry : s_Extensions)
    {
        if (Entry.first == Extension)
            return Entry.second;
    }
    return 0;
}

QString CorpusDirectory()
{
    return QStringLiteral(ZAM_HIGHLIGHT_TEST_DIR "/corpus");
}

QStringList CorpusFiles()
{
    return QDir(CorpusDirectory()).entryList(QDir::Files, QDir::Name);
}

QString ReadCorpusFile(const QString& FileName)
{
    QFile File(CorpusDirectory() + QLatin1Char('/') + FileName);
    if (!File.open(QIODevice::ReadOnly))
        return QString();
    return QString::fromUtf8(File.readAll());
}

CRandomShaderText::CRandomShaderText(quint32 uiSeed)
    : m_uiState(uiSeed ? uiSeed : 1u)
{
    const SHighlightRuleSet Rules = GetShaderHighlightRules();
    for (unsigned int i = 0; i < Rules.uiCount; ++i)
    {
        for (unsigned int j = 0; j < Rules.pTables[i].uiPatternCount; ++j)
        {
            QString Word = QString::fromLatin1(Rules.pTables[i].ppPatterns[j]);
            Word.remove(QStringLiteral("\\b"));
            if (!Word.contains(QLatin1Char('\\')) && !Word.contains(QLatin1Char('[')))
                m_Tokens.append(Word);
        }
    }
    m_Tokens << QStringLiteral("[GLSL_CODE]") << QStringLiteral("[/GLSL_CODE]") << QStringLiteral("[HEADER]")
             << QStringLiteral("[/TEXTURE]") << QStringLiteral("  [/EFFECT] ") << QStringLiteral("TEXTURE0")
             << QStringLiteral("TEXTURE[") << QStringLiteral("COLOR12") << QStringLiteral("packed,resource")
             << QStringLiteral("unsignedhvec2") << QStringLiteral("myquad") << QStringLiteral("xhalf2")
             << QStringLiteral("5ouble2x2")
             << QStringLiteral("\x0c"
                               "loat4x4")
             << QStringLiteral("x#version") << QStringLiteral("/*") << QStringLiteral("*/") << QStringLiteral("//")
             << QStringLiteral("/*/") << QStringLiteral("#") << QStringLiteral("1.5") << QStringLiteral(".5")
             << QStringLiteral("12..3") << QStringLiteral("x.y") << QStringLiteral("0x1F") << QString::fromUtf8("é")
             << QString::fromUtf8("Ж") << QString::fromUtf8("中") << QString(QChar(0x0301)) << QString(QChar(0x0308))
             << QString(QChar(0x2160)) << QString::fromUtf8("٣") << QStringLiteral("_");
    for (const char* pPunctuation : {"[", "]", "(", ")", "{", "}", ";", ",", "=", "*", "/", "-", "+", "<"})
        m_Tokens << QString::fromLatin1(pPunctuation);
}

quint32 CRandomShaderText::Next(quint32 uiBound)
{
    // xorshift32: the same sequence on every platform and library.
    m_uiState ^= m_uiState << 13;
    m_uiState ^= m_uiState >> 17;
    m_uiState ^= m_uiState << 5;
    return uiBound ? m_uiState % uiBound : 0;
}

QString CRandomShaderText::Line(bool bOddCharacters)
{
    QString Line;
    const quint32 uiTokens = Next(14);
    for (quint32 i = 0; i < uiTokens; ++i)
    {
        switch (Next(8))
        {
        case 0:
            Line += QChar(u'a' + Next(26));
            break;
        case 1:
            Line += QChar(u'0' + Next(10));
            break;
        case 2:
            if (bOddCharacters)
            {
                const char16_t Odd[] = {0, u'\n', 0x0C, 0xD800, 0xDC00, 0xFFFF, u'\t'};
                Line += QChar(Odd[Next(7)]);
                break;
            }
            Q_FALLTHROUGH();
        default:
            Line += m_Tokens.at(int(Next(quint32(m_Tokens.size()))));
            break;
        }
        if (Next(3) == 0)
            Line += QLatin1Char(' ');
    }
    return Line;
}

QString CRandomShaderText::Document(int iLines)
{
    QStringList Lines;
    for (int i = 0; i < iLines; ++i)
        Lines.append(Line(true));
    return Lines.join(QLatin1Char('\n'));
}
