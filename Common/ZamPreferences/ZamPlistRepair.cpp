#include "ZamPlistRepair_p.h"

#include "ZamPreferencesLog_p.h"

#include <tinyxml.h>

#include <new>

namespace
{
// A badly broken file could hold a million unpaired keys; report the first few only.
class CRepairLog
{
public:
    ~CRepairLog()
    {
        if (m_iSuppressed > 0)
            ReportPreferencesProblem(
                QStringLiteral("WARNING: %1 more problems were repaired without a report.\n").arg(m_iSuppressed));
    }

    void Report(const QString& Text)
    {
        if (Take())
            ReportPreferencesProblem(Text);
    }

    void ReportAtLine(const char* pFormat, const TiXmlNode& Node)
    {
        if (Take())
            ReportPreferencesProblem(QString::asprintf(pFormat, Node.Row()));
    }

private:
    // False once the quota of reports is used up.
    bool Take()
    {
        if (m_iReported >= iMaxReports)
        {
            ++m_iSuppressed;
            return false;
        }
        ++m_iReported;
        return true;
    }

    static constexpr int iMaxReports = 20;
    int m_iReported = 0;
    int m_iSuppressed = 0;
};

bool IsKey(const TiXmlNode& Node)
{
    return Node.ToElement() && Node.ValueStr() == "key";
}

// Whitespace, stray text and foreign markup between entries mean nothing; comments stay.
bool IsNoise(const TiXmlNode& Node)
{
    return Node.ToText() || Node.ToUnknown() || Node.ToDeclaration();
}

void RepairArray(TiXmlElement* pArray, CRepairLog* pLog);

void RepairValue(TiXmlElement* pValue, CRepairLog* pLog);

void RepairDict(TiXmlElement* pDict, CRepairLog* pLog)
{
    TiXmlNode* pPendingKey = nullptr;
    TiXmlNode* pNext = nullptr;
    for (TiXmlNode* pChild = pDict->FirstChild(); pChild; pChild = pNext)
    {
        pNext = pChild->NextSibling();
        if (IsNoise(*pChild))
        {
            pDict->RemoveChild(pChild);
            continue;
        }
        if (!pChild->ToElement())
            continue;
        if (IsKey(*pChild))
        {
            if (pPendingKey)
            {
                pLog->ReportAtLine("ERROR: Key missing value on line: %d\n", *pPendingKey);
                pDict->RemoveChild(pPendingKey);
            }
            pPendingKey = pChild;
            continue;
        }
        if (!pPendingKey)
        {
            pLog->ReportAtLine("ERROR: Missing <key> tag on line: %d\n", *pChild);
            pDict->RemoveChild(pChild);
            continue;
        }
        pPendingKey = nullptr;
        RepairValue(pChild->ToElement(), pLog);
    }
    if (pPendingKey)
    {
        if (pPendingKey->Row() > 0)
            pLog->ReportAtLine("ERROR: Key missing value on line: %d\n", *pPendingKey);
        else
            pLog->Report(QStringLiteral("ERROR: Key missing value!"));
        pDict->RemoveChild(pPendingKey);
    }
}

void RepairArray(TiXmlElement* pArray, CRepairLog* pLog)
{
    TiXmlNode* pNext = nullptr;
    for (TiXmlNode* pChild = pArray->FirstChild(); pChild; pChild = pNext)
    {
        pNext = pChild->NextSibling();
        if (IsNoise(*pChild))
            pArray->RemoveChild(pChild);
        else if (IsKey(*pChild))
        {
            pLog->ReportAtLine("ERROR: Array elements cannot contain a <key> tag! Line: %d\n", *pChild);
            pArray->RemoveChild(pChild);
        }
        else if (pChild->ToElement())
            RepairValue(pChild->ToElement(), pLog);
    }
}

void RepairValue(TiXmlElement* pValue, CRepairLog* pLog)
{
    if (pValue->ValueStr() == "dict")
        RepairDict(pValue, pLog);
    else if (pValue->ValueStr() == "array")
        RepairArray(pValue, pLog);
}

bool RepairDeclaration(TiXmlDocument* pDocument, CRepairLog* pLog)
{
    TiXmlNode* pFirst = pDocument->FirstChild();
    if (pFirst && pFirst->ToDeclaration())
        return true;
    pLog->Report(QStringLiteral("WARNING: No declaration found at the start. The declaration will be recreated.\n"));
    const TiXmlDeclaration Declaration("1.0", "utf-8", "");
    TiXmlNode* pInserted =
        pFirst ? pDocument->InsertBeforeChild(pFirst, Declaration) : pDocument->InsertEndChild(Declaration);
    if (!pInserted)
    {
        pLog->Report(QStringLiteral("Error: Failed to recreate the declaration.\n"));
        return false;
    }
    return true;
}

// Keeps the leading declaration, the DOCTYPE, processing instructions, comments and the
// first <plist>; anything else at the top would make the file malformed or ambiguous.
void RemoveTopLevelNoise(TiXmlDocument* pDocument, const TiXmlElement* pKeep)
{
    TiXmlNode* pNext = nullptr;
    for (TiXmlNode* pChild = pDocument->FirstChild(); pChild; pChild = pNext)
    {
        pNext = pChild->NextSibling();
        bool bKeep = pChild->ToComment() || pChild == pKeep;
        if (pChild->ToDeclaration())
            bKeep = pChild == pDocument->FirstChild();
        else if (const TiXmlUnknown* pUnknown = pChild->ToUnknown())
            bKeep = pUnknown->ValueStr().rfind("!DOCTYPE", 0) == 0 || pUnknown->ValueStr().rfind("?", 0) == 0;
        if (!bKeep)
            pDocument->RemoveChild(pChild);
    }
}

TiXmlElement* RepairRoot(TiXmlDocument* pDocument, CRepairLog* pLog)
{
    TiXmlElement* pPlist = pDocument->FirstChildElement("plist");
    if (!pPlist)
    {
        pLog->Report(QStringLiteral("WARNING: No root <plist> tag found. Tag will be recreated.\n"));
        TiXmlElement* pNew = new (std::nothrow) TiXmlElement("plist");
        if (!pNew)
        {
            pLog->Report(QStringLiteral("ERROR: Failed to recreate <plist> tag. Out of memory!\n"));
            RemoveTopLevelNoise(pDocument, nullptr);
            return nullptr;
        }
        pNew->SetAttribute("version", "1.0");
        // A bare dict at the top is what a plist would have held: keep it.
        if (const TiXmlElement* pBareDict = pDocument->FirstChildElement("dict"))
            pNew->InsertEndChild(*pBareDict);
        RemoveTopLevelNoise(pDocument, nullptr);
        pPlist = pDocument->LinkEndChild(pNew) ? pNew : nullptr;
        if (!pPlist)
        {
            pLog->Report(QStringLiteral("ERROR: Failed to link <plist> tag!\n"));
            return nullptr;
        }
        return pPlist;
    }
    RemoveTopLevelNoise(pDocument, pPlist);
    return pPlist;
}

TiXmlElement* RepairRootDict(TiXmlElement* pPlist, CRepairLog* pLog)
{
    TiXmlElement* pDict = pPlist->FirstChildElement("dict");
    TiXmlNode* pNext = nullptr;
    for (TiXmlNode* pChild = pPlist->FirstChild(); pChild; pChild = pNext)
    {
        pNext = pChild->NextSibling();
        if (pChild != pDict && !pChild->ToComment())
            pPlist->RemoveChild(pChild);
    }
    if (pDict)
        return pDict;
    pLog->Report(QStringLiteral("WARNING: No <dict> tag found. Tag will be recreated.\n"));
    TiXmlElement* pNew = new (std::nothrow) TiXmlElement("dict");
    if (!pNew)
    {
        pLog->Report(QStringLiteral("ERROR: Failed to recreate <dict> tag. Out of memory!\n"));
        return nullptr;
    }
    if (!pPlist->LinkEndChild(pNew))
    {
        pLog->Report(QStringLiteral("ERROR: Failed to link <dict> tag!\n"));
        return nullptr;
    }
    return pNew;
}
} // namespace

bool RepairPlistDocument(TiXmlDocument* pDocument)
{
    CRepairLog Log;
    RepairDeclaration(pDocument, &Log);
    TiXmlElement* pPlist = RepairRoot(pDocument, &Log);
    if (!pPlist)
        return false;
    TiXmlElement* pDict = RepairRootDict(pPlist, &Log);
    if (!pDict)
        return false;
    RepairDict(pDict, &Log);
    return true;
}
