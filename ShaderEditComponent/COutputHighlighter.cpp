#include "COutputHighlighter_p.h"

namespace
{
const QLatin1String s_Error("ERROR");
const QLatin1String s_Warning("WARNING");
} // namespace

COutputHighlighter::COutputHighlighter(QTextDocument* pDocument, const Settings::SCompiler& Compiler)
    : QSyntaxHighlighter(pDocument)
    , m_bShouldFormat(Compiler.bShouldFormat)
    , m_ErrorFormat(Compiler.ErrorFormat)
    , m_WarningFormat(Compiler.WarningFormat)
    , m_Message(QStringLiteral("\\b(ERROR|WARNING).*"), Qt::CaseSensitive, QRegExp::RegExp)
{
}

void COutputHighlighter::SetSettings(const Settings::SCompiler& Compiler)
{
    if (Compiler.bShouldFormat == m_bShouldFormat && Compiler.ErrorFormat == m_ErrorFormat
        && Compiler.WarningFormat == m_WarningFormat)
        return;
    m_bShouldFormat = Compiler.bShouldFormat;
    m_ErrorFormat = Compiler.ErrorFormat;
    m_WarningFormat = Compiler.WarningFormat;
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
