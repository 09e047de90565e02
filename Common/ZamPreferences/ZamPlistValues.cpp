#include "ZamPlistValues_p.h"

#include "ZamByteWrapper_p.h"

#include <QLocale>

#include <tinyxml.h>

#include <string>

namespace
{
std::string TextOf(const TiXmlElement& Element)
{
    std::string Text;
    for (const TiXmlNode* pChild = Element.FirstChild(); pChild; pChild = pChild->NextSibling())
    {
        if (pChild->ToText())
            Text += pChild->ValueStr();
    }
    return Text;
}

QByteArray TrimmedTextOf(const TiXmlElement& Element)
{
    const std::string Text = TextOf(Element);
    return QByteArray(Text.data(), static_cast<qsizetype>(Text.size())).trimmed();
}

// Turns the element into an empty one named Name, dropping what it held.
void Reset(TiXmlElement* pValue, const char* pName)
{
    pValue->SetValue(pName);
    pValue->Clear();
    while (const TiXmlAttribute* pAttribute = pValue->FirstAttribute())
        pValue->RemoveAttribute(pAttribute->Name());
}

void SetText(TiXmlElement* pValue, const char* pName, const std::string& Text)
{
    Reset(pValue, pName);
    if (!Text.empty())
        pValue->LinkEndChild(new TiXmlText(Text));
}

std::string ToStdString(const QString& Text)
{
    return Text.toUtf8().toStdString();
}
} // namespace

bool ReadPlistBool(const TiXmlElement& Value, bool* pbValue)
{
    if (Value.ValueStr() != "true" && Value.ValueStr() != "false")
        return false;
    *pbValue = Value.ValueStr() == "true";
    return true;
}

bool ReadPlistInteger(const TiXmlElement& Value, qint64* piValue)
{
    if (Value.ValueStr() != "integer")
        return false;
    bool bOk = false;
    const qint64 iValue = TrimmedTextOf(Value).toLongLong(&bOk, 10);
    if (bOk)
        *piValue = iValue;
    return bOk;
}

bool ReadPlistReal(const TiXmlElement& Value, double* pdValue)
{
    if (Value.ValueStr() != "real")
        return false;
    bool bOk = false;
    const double dValue = QLocale::c().toDouble(QString::fromLatin1(TrimmedTextOf(Value)), &bOk);
    if (bOk)
        *pdValue = dValue;
    return bOk;
}

bool ReadPlistString(const TiXmlElement& Value, QString* pValue)
{
    if (Value.ValueStr() != "string")
        return false;
    const std::string Text = TextOf(Value);
    *pValue = QString::fromUtf8(Text.data(), static_cast<qsizetype>(Text.size()));
    return true;
}

bool ReadPlistData(const TiXmlElement& Value, QByteArray* pValue)
{
    if (Value.ValueStr() != "data")
        return false;
    CVectorByteWrapper Bytes;
    if (!DecodeBase64(CImmutableByteWrapper(TextOf(Value)), &Bytes))
        return false;
    *pValue = Bytes.ToByteArray();
    return true;
}

bool ReadPlistStringArray(const TiXmlElement& Value, QStringList* pValue)
{
    if (Value.ValueStr() != "array")
        return false;
    QStringList Strings;
    for (const TiXmlElement* pItem = Value.FirstChildElement(); pItem; pItem = pItem->NextSiblingElement())
    {
        QString Item;
        if (!ReadPlistString(*pItem, &Item))
            return false;
        Strings.append(Item);
    }
    *pValue = Strings;
    return true;
}

void WritePlistBool(TiXmlElement* pValue, bool bValue)
{
    Reset(pValue, bValue ? "true" : "false");
}

void WritePlistInteger(TiXmlElement* pValue, qint64 iValue)
{
    SetText(pValue, "integer", std::to_string(iValue));
}

void WritePlistReal(TiXmlElement* pValue, double dValue)
{
    // Shortest text that reads back as the same double.
    SetText(pValue, "real", ToStdString(QLocale::c().toString(dValue, 'g', QLocale::FloatingPointShortest)));
}

void WritePlistString(TiXmlElement* pValue, const QString& Value)
{
    SetText(pValue, "string", ToStdString(Value));
}

void WritePlistData(TiXmlElement* pValue, const QByteArray& Value)
{
    SetText(pValue, "data", EncodeBase64(CImmutableByteWrapper(Value)));
}

void WritePlistStringArray(TiXmlElement* pValue, const QStringList& Value)
{
    Reset(pValue, "array");
    for (const QString& Item : Value)
    {
        TiXmlElement* pItem = new TiXmlElement("string");
        WritePlistString(pItem, Item);
        pValue->LinkEndChild(pItem);
    }
}

void WritePlistGroup(TiXmlElement* pValue)
{
    Reset(pValue, "dict");
}
