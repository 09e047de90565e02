#include "ZamPlistWriter_p.h"

#include <tinyxml.h>

#include <string>

const char acEmptyPlistDocument[] = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                    "<!DOCTYPE plist PUBLIC \"-//Apple Computer//DTD PLIST 1.0//EN\" "
                                    "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
                                    "<plist version=\"1.0\">\n"
                                    "<dict>\n"
                                    "</dict>\n"
                                    "</plist>";

namespace
{
// Control characters XML 1.0 cannot carry at all.
bool IsForbiddenControl(unsigned char c)
{
    return c < 0x20 && c != '\t' && c != '\n' && c != '\r';
}

void AppendEscaped(const std::string& Text, bool bAttribute, std::string* pOut)
{
    for (const char c : Text)
    {
        const unsigned char uc = static_cast<unsigned char>(c);
        if (c == '&')
            *pOut += "&amp;";
        else if (c == '<')
            *pOut += "&lt;";
        else if (c == '>')
            *pOut += "&gt;";
        else if (c == '"' && bAttribute)
            *pOut += "&quot;";
        else if (c == '\r')
            *pOut += "&#13;"; // a literal CR would be folded into the following LF on reading
        else if ((c == '\n' || c == '\t') && bAttribute)
            *pOut += c == '\n' ? "&#10;" : "&#9;";
        else if (IsForbiddenControl(uc))
            *pOut += "\xEF\xBF\xBD";
        else
            *pOut += c;
    }
}

bool IsBlank(const std::string& Text)
{
    return Text.find_first_not_of(" \t\n\r") == std::string::npos;
}

void AppendText(const std::string& Text, std::string* pOut)
{
    // The parser drops text that is only whitespace unless it is CDATA.
    if (!Text.empty() && IsBlank(Text))
        *pOut += "<![CDATA[" + Text + "]]>";
    else
        AppendEscaped(Text, false, pOut);
}

// Only these hold elements; anything else is written as a scalar, text only, which keeps
// a second save identical to the first whatever the element held when it was read.
bool IsContainer(const TiXmlElement& Element)
{
    const std::string& Name = Element.ValueStr();
    if (Name == "plist")
        return Element.Parent() && Element.Parent()->ToDocument();
    return Name == "dict" || Name == "array";
}

// Concatenated text of a scalar element; nested comments and elements carry no value.
std::string CollectText(const TiXmlElement& Element)
{
    std::string Text;
    for (const TiXmlNode* pChild = Element.FirstChild(); pChild; pChild = pChild->NextSibling())
    {
        if (pChild->ToText())
            Text += pChild->ValueStr();
    }
    return Text;
}

void WriteNode(const TiXmlNode& Node, int iIndent, std::string* pOut);

void WriteElement(const TiXmlElement& Element, int iIndent, std::string* pOut)
{
    const std::string& Name = Element.ValueStr();
    pOut->append(static_cast<size_t>(iIndent), '\t');
    *pOut += '<' + Name;
    for (const TiXmlAttribute* pAttribute = Element.FirstAttribute(); pAttribute; pAttribute = pAttribute->Next())
    {
        *pOut += ' ' + pAttribute->NameTStr() + "=\"";
        AppendEscaped(pAttribute->ValueStr(), true, pOut);
        *pOut += '"';
    }
    if (!IsContainer(Element))
    {
        // Scalars stay on one line: any added whitespace would become part of the value.
        const std::string Text = CollectText(Element);
        if (Text.empty() && (Name == "true" || Name == "false"))
        {
            *pOut += "/>";
            return;
        }
        *pOut += '>';
        AppendText(Text, pOut);
        *pOut += "</" + Name + '>';
        return;
    }
    // Apple-style layout: the plist's own children are not indented.
    const int iChildIndent = Name == "plist" ? iIndent : iIndent + 1;
    *pOut += '>';
    for (const TiXmlNode* pChild = Element.FirstChild(); pChild; pChild = pChild->NextSibling())
    {
        *pOut += '\n';
        WriteNode(*pChild, iChildIndent, pOut);
    }
    *pOut += '\n';
    pOut->append(static_cast<size_t>(iIndent), '\t');
    *pOut += "</" + Name + '>';
}

void WriteNode(const TiXmlNode& Node, int iIndent, std::string* pOut)
{
    if (const TiXmlElement* pElement = Node.ToElement())
        return WriteElement(*pElement, iIndent, pOut);
    pOut->append(static_cast<size_t>(iIndent), '\t');
    if (const TiXmlText* pText = Node.ToText())
        AppendText(pText->ValueStr(), pOut);
    else if (const TiXmlComment* pComment = Node.ToComment())
        *pOut += "<!--" + pComment->ValueStr() + "-->";
    else if (const TiXmlUnknown* pUnknown = Node.ToUnknown())
        *pOut += '<' + pUnknown->ValueStr() + '>';
    else if (const TiXmlDeclaration* pDeclaration = Node.ToDeclaration())
    {
        *pOut += "<?xml version=\"";
        AppendEscaped(pDeclaration->Version(), true, pOut);
        *pOut += '"';
        if (*pDeclaration->Encoding())
        {
            *pOut += " encoding=\"";
            AppendEscaped(pDeclaration->Encoding(), true, pOut);
            *pOut += '"';
        }
        if (*pDeclaration->Standalone())
        {
            *pOut += " standalone=\"";
            AppendEscaped(pDeclaration->Standalone(), true, pOut);
            *pOut += '"';
        }
        *pOut += "?>";
    }
}
} // namespace

QByteArray WritePlistDocument(const TiXmlDocument& Document)
{
    std::string Out;
    for (const TiXmlNode* pNode = Document.FirstChild(); pNode; pNode = pNode->NextSibling())
    {
        if (pNode != Document.FirstChild())
            Out += '\n';
        WriteNode(*pNode, 0, &Out);
    }
    return QByteArray(Out.data(), static_cast<qsizetype>(Out.size()));
}
