#include "CompilerOutputParser.h"

#include <limits>

namespace
{
bool IsWordChar(char c)
{
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

// Position of the first keyword that stands as a whole word, or -1. Only an 'E' or a 'W'
// can start one; the library's byte search finds the candidates.
qsizetype FindKeyword(QByteArrayView Line, SCompileMessage::ESeverity& eSeverity, qsizetype& iLength)
{
    static const QByteArrayView s_Error("ERROR");
    static const QByteArrayView s_Warning("WARNING");
    qsizetype iError = Line.indexOf('E');
    qsizetype iWarning = Line.indexOf('W');
    while (iError >= 0 || iWarning >= 0)
    {
        const bool bError = iWarning < 0 || (iError >= 0 && iError < iWarning);
        const qsizetype i = bError ? iError : iWarning;
        const QByteArrayView Word = bError ? s_Error : s_Warning;
        const qsizetype iEnd = i + Word.size();
        if ((i == 0 || !IsWordChar(Line.at(i - 1))) && Line.sliced(i).startsWith(Word)
            && (iEnd == Line.size() || !IsWordChar(Line.at(iEnd))))
        {
            eSeverity = bError ? SCompileMessage::Severity_Error : SCompileMessage::Severity_Warning;
            iLength = Word.size();
            return i;
        }
        if (bError)
            iError = Line.indexOf('E', i + 1);
        else
            iWarning = Line.indexOf('W', i + 1);
    }
    return -1;
}

// Reads the digits at iPos; false when there are none or they overflow an int.
bool ReadNumber(QByteArrayView Line, qsizetype& iPos, qint64& iValue)
{
    const qsizetype iStart = iPos;
    iValue = 0;
    while (iPos < Line.size() && IsDigit(Line.at(iPos)))
    {
        iValue = iValue * 10 + (Line.at(iPos) - '0');
        if (iValue > std::numeric_limits<int>::max())
            return false;
        ++iPos;
    }
    return iPos > iStart;
}

// "KEYWORD: <header path>:<line>:", a message about a line of an included header: the path is
// what stands before the first ":<digits>:". A number there is the document's own string.
void ReadHeaderLocation(QByteArrayView Line, qsizetype iAfterWord, SCompileMessage& Message)
{
    const qsizetype iStart = iAfterWord + 2;
    if (Line.size() <= iStart || Line.at(iAfterWord) != ':' || Line.at(iAfterWord + 1) != ' ')
        return;
    bool bNumber = true;
    for (qsizetype iColon = iStart; iColon < Line.size(); ++iColon)
    {
        if (Line.at(iColon) != ':')
        {
            bNumber = bNumber && IsDigit(Line.at(iColon));
            continue;
        }
        qsizetype iPos = iColon + 1;
        qint64 iLine = 0;
        while (iPos < Line.size() && IsDigit(Line.at(iPos)) && iLine <= std::numeric_limits<int>::max())
            iLine = iLine * 10 + (Line.at(iPos++) - '0');
        if (iPos == iColon + 1 || iPos >= Line.size() || Line.at(iPos) != ':'
            || iLine > std::numeric_limits<int>::max())
        {
            bNumber = false;
            continue;
        }
        if (bNumber || iColon == iStart)
            return;
        Message.File = QString::fromUtf8(Line.sliced(iStart, iColon - iStart));
        Message.iFileLine = static_cast<int>(iLine);
        return;
    }
}

// Moves the line number of "KEYWORD: <string>:<line>" starting at iAfterWord by the offset,
// and appends the line, so moved, with its line break to LogText.
SCompileMessage MakeMessage(QByteArrayView Line, qsizetype iAfterWord, SCompileMessage::ESeverity eSeverity,
                            int iLineOffset, QByteArray& LogText)
{
    SCompileMessage Message;
    Message.eSeverity = eSeverity;
    const qsizetype iTextStart = LogText.size();
    qsizetype iPos = iAfterWord;
    qint64 iString = 0;
    qint64 iLine = 0;
    if (Line.sliced(iPos).startsWith(": "))
    {
        iPos += 2;
        if (ReadNumber(Line, iPos, iString) && iPos < Line.size() && Line.at(iPos) == ':')
        {
            const qsizetype iLineStart = ++iPos;
            const qint64 iMoved = ReadNumber(Line, iPos, iLine) ? iLine + iLineOffset : -1;
            if (iMoved >= 0 && iMoved <= std::numeric_limits<int>::max())
            {
                Message.iLine = static_cast<int>(iMoved);
                LogText.append(Line.first(iLineStart)).append(QByteArray::number(iMoved)).append(Line.sliced(iPos));
            }
        }
    }
    if (Message.iLine == 0)
    {
        LogText.append(Line);
        ReadHeaderLocation(Line, iAfterWord, Message);
    }
    Message.Text = QString::fromUtf8(QByteArrayView(LogText).sliced(iTextStart));
    LogText.append('\n');
    return Message;
}
} // namespace

SCompilerOutput ParseCompilerOutput(const QByteArray& Output, int iLineOffset)
{
    SCompilerOutput Parsed;
    Parsed.bSucceeded = Output.contains("Success.\n");
    Parsed.bFailed = Output.contains("Compile failed.");
    Parsed.bHasEstimate = Output.contains("Performance estimate");

    qsizetype iStart = 0;
    while (iStart < Output.size())
    {
        qsizetype iEnd = Output.indexOf('\n', iStart);
        if (iEnd < 0)
            iEnd = Output.size();
        const qsizetype iLineStart = iStart;
        const QByteArrayView Line = QByteArrayView(Output).sliced(iStart, iEnd - iStart);
        iStart = iEnd + 1;

        SCompileMessage::ESeverity eSeverity = SCompileMessage::Severity_Error;
        qsizetype iWordLength = 0;
        const qsizetype iWord = FindKeyword(Line, eSeverity, iWordLength);
        if (iWord < 0)
            continue;
        // Room for the rest of the output; moved line numbers may add a few digits.
        if (Parsed.LogText.isEmpty())
            Parsed.LogText.reserve(Output.size() - iLineStart + 16);
        Parsed.Messages.append(MakeMessage(Line, iWord + iWordLength, eSeverity, iLineOffset, Parsed.LogText));
    }
    return Parsed;
}

QByteArray RawOutputForLog(const QByteArray& Output)
{
    QByteArrayView Text(Output);
    while (Text.endsWith('\n'))
        Text.chop(1);
    if (Text.isEmpty())
        return QByteArray();
    if (Text.size() <= MaxRawOutputInLog)
    {
        QByteArray Lines;
        Lines.reserve(Text.size() + 1);
        return Lines.append(Text).append('\n');
    }
    qsizetype iCut = Text.first(MaxRawOutputInLog + 1).lastIndexOf('\n');
    if (iCut <= 0)
        iCut = MaxRawOutputInLog;
    const qsizetype iLeftOut = Text.size() - iCut;
    return Text.first(iCut).toByteArray() + "\n(" + QByteArray::number(iLeftOut) + " more bytes of output not shown)\n";
}
