#pragma once

#include "ShaderEditComponent/compile/model/Settings.h"

#include <QRegExp>
#include <QSyntaxHighlighter>
#include <QTextCharFormat>

// Colours the compiler log: a line holding an ERROR or WARNING takes the error or warning
// format as a whole, so a message stands out even when it wraps.
class COutputHighlighter : public QSyntaxHighlighter
{
    Q_OBJECT

public:
    COutputHighlighter(QTextDocument* pDocument, const Settings::SCompiler& Compiler);

    // Takes over the formatting switch and the two formats; the log is coloured again only
    // when one of them really changed, since a long log takes a moment.
    void SetSettings(const Settings::SCompiler& Compiler);

    bool IsFormatting() const { return m_bShouldFormat; }

protected:
    void highlightBlock(const QString& Text) override;

private:
    bool m_bShouldFormat;
    QTextCharFormat m_ErrorFormat;
    QTextCharFormat m_WarningFormat;
    QRegExp m_Message;
};
