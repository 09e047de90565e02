#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

class TiXmlElement;

// Reading and writing one property-list value element. A reader returns false, leaving
// its output alone, when the element is not of its type or its text does not parse.
// A writer turns the element into a value of its type, whatever it was before.

[[nodiscard]] bool ReadPlistBool(const TiXmlElement& Value, bool* pbValue);
[[nodiscard]] bool ReadPlistInteger(const TiXmlElement& Value, qint64* piValue);
[[nodiscard]] bool ReadPlistReal(const TiXmlElement& Value, double* pdValue);
[[nodiscard]] bool ReadPlistString(const TiXmlElement& Value, QString* pValue);
[[nodiscard]] bool ReadPlistData(const TiXmlElement& Value, QByteArray* pValue);
[[nodiscard]] bool ReadPlistStringArray(const TiXmlElement& Value, QStringList* pValue);

void WritePlistBool(TiXmlElement* pValue, bool bValue);
void WritePlistInteger(TiXmlElement* pValue, qint64 iValue);
void WritePlistReal(TiXmlElement* pValue, double dValue);
void WritePlistString(TiXmlElement* pValue, const QString& Value);
void WritePlistData(TiXmlElement* pValue, const QByteArray& Value);
void WritePlistStringArray(TiXmlElement* pValue, const QStringList& Value);
// An empty <dict>, for a group that replaces a value.
void WritePlistGroup(TiXmlElement* pValue);
