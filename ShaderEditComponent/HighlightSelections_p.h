#pragma once

#include "TextSearch_p.h"

#include <QList>
#include <QTextEdit>
#include <QVector>

class QTextCharFormat;
class QTextDocument;

// One highlight per range of pDocument, all in Format, in the order of Ranges.
QList<QTextEdit::ExtraSelection> MakeHighlights(QTextDocument* pDocument, const QVector<STextRange>& Ranges,
                                                const QTextCharFormat& Format);
