#include "COutputHighlighter_p.h"

#include "ShaderEditComponent/highlighting/PaletteColours.h"

#include <QGuiApplication>

namespace
{
const QLatin1String s_Error("ERROR");
const QLatin1String s_Warning("WARNING");

// The built-in colours are made for a light log; under a dark palette they turn lighter.
QTextCharFormat ForPalette(QTextCharFormat Format)
{
    Format.setForeground(ColourForPalette(Format.foreground().color(), QGuiApplication::palette()));
    return Format;
}
} // namespace

COutputHighlighter::COutputHighlighter(QTextDocument* pDocument, const Settings::SCompiler& Compiler)
    : QSyntaxHighlighter(pDocument)
    , m_bShouldFormat(Compiler.bShouldFormat)
    , m_ErrorFormat(ForPalette(Compiler.ErrorFormat))
    , m_WarningFormat(ForPalette(Compiler.WarningFormat))
    , m_Message(QStringLiteral("\\b(ERROR|WARNING).*"), Qt::CaseSensitive, QRegExp::RegExp)
{
}

void COutputHighlighter::SetSettings(const Settings::SCompiler& Compiler)
{
    const QTextCharFormat Error = ForPalette(Compiler.ErrorFormat);
    const QTextCharFormat Warning = ForPalette(Compiler.WarningFormat);
    if (Compiler.bShouldFormat == m_bShouldFormat && Error == m_ErrorFormat && Warning == m_WarningFormat)
        return;
    m_bShouldFormat = Compiler.bShouldFormat;
    m_ErrorFormat = Error;
    m_WarningFormat = Warning;
    rehighlight();
}

void COutputHighlighter::highlightBlock(const QString& Text)
{
    // Most log lines name neither; skipping them keeps a long log quick to show.
    if (!m_bShouldFormat || (!Text.contains(s_Error) && !Text.contains(s_Warning)))
        return;
    if (m_Message.indexIn(Text) < 0)
        return;
    const bool bError = m_Message.cap(1) == s_Error;
    setFormat(0, static_cast<int>(Text.length()), bError ? m_ErrorFormat : m_WarningFormat);
}
