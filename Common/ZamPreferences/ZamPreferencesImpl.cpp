#include "ZamPreferencesImpl_p.h"

#include "ZamPlistInput_p.h"
#include "ZamPlistRepair_p.h"
#include "ZamPlistValues_p.h"
#include "ZamPlistWriter_p.h"
#include "ZamPreferencesLog_p.h"

#include <tinyxml.h>

#include <string>
#include <vector>

namespace
{
// The parser reads whole UTF-8 sequences; padding keeps even a damaged tail inside the buffer.
constexpr int iParserPadding = 8;

// The UTF-8 segments of Key, or nothing when Key has an empty segment or too many.
std::vector<std::string> SplitKey(const QString& Key)
{
    const QStringList Segments = Key.split(QLatin1Char('/'));
    if (Segments.size() > CZamPreferences::iMaxKeySegments)
        return {};
    std::vector<std::string> Out;
    for (const QString& Segment : Segments)
    {
        if (Segment.isEmpty())
            return {};
        Out.push_back(Segment.toUtf8().toStdString());
    }
    return Out;
}

bool KeyNameIs(const TiXmlElement& Key, const std::string& Name)
{
    std::string Text;
    for (const TiXmlNode* pChild = Key.FirstChild(); pChild; pChild = pChild->NextSibling())
    {
        if (pChild->ToText())
            Text += pChild->ValueStr();
    }
    return Text == Name;
}

// The <key> element named Name in Dict (its value is the next element), or null.
TiXmlElement* FindKey(const TiXmlElement& Dict, const std::string& Name)
{
    for (const TiXmlElement* pKey = Dict.FirstChildElement("key"); pKey; pKey = pKey->NextSiblingElement("key"))
    {
        if (KeyNameIs(*pKey, Name) && pKey->NextSiblingElement())
            return const_cast<TiXmlElement*>(pKey);
    }
    return nullptr;
}

TiXmlElement* AppendEntry(TiXmlElement* pDict, const std::string& Name)
{
    TiXmlElement* pKey = new TiXmlElement("key");
    pKey->LinkEndChild(new TiXmlText(Name));
    pDict->LinkEndChild(pKey);
    TiXmlElement* pValue = new TiXmlElement("dict");
    pDict->LinkEndChild(pValue);
    return pValue;
}
} // namespace

CZamPreferencesImpl::CZamPreferencesImpl(const QString& Name, CZamPreferences::EScope eScope)
    : m_Name(Name)
    , m_eScope(eScope)
{
    ResetToEmpty();
}

CZamPreferencesImpl::~CZamPreferencesImpl() = default;

void CZamPreferencesImpl::ResetToEmpty()
{
    m_pDocument = std::make_unique<TiXmlDocument>();
    TiXmlBase::SetCondenseWhiteSpace(false);
    m_pDocument->Parse(acEmptyPlistDocument, nullptr, TIXML_ENCODING_UTF8);
}

bool CZamPreferencesImpl::Refuse(const QString& Text, QString* pError)
{
    ReportPreferencesProblem(Text);
    ResetToEmpty();
    if (pError)
        *pError = Text;
    return false;
}

bool CZamPreferencesImpl::Load(QString* pTriedPath, QString* pError)
{
    if (pTriedPath)
        *pTriedPath = GetFilePath();
    // Asked before opening: opening for reading creates a missing file.
    const bool bExisted = FileExists(m_Name, m_eScope);
    QString Error;
    const bool bLoaded = ReadDocument(&Error);
    m_LoadProblem = bLoaded || !bExisted ? QString() : Error.trimmed();
    m_bUnreadablePending = !m_LoadProblem.isEmpty();
    if (!bLoaded && pError)
        *pError = Error;
    return bLoaded;
}

bool CZamPreferencesImpl::ReadDocument(QString* pError)
{
    if (!OpenFile(m_Name, Direction_Read, m_eScope, false))
        return Refuse(QStringLiteral("ERROR: Failed to open or create the preference file %1\n").arg(GetFilePath()),
                      pError);
    QByteArray Bytes;
    const bool bRead = ReadFile(CZamPreferences::iMaxFileBytes, &Bytes);
    CloseFile(false);
    if (!bRead)
        return Refuse(QStringLiteral("ERROR: Failed to read the preference file %1\n").arg(GetFilePath()), pError);
    return LoadFromBytes(Bytes, pError);
}

bool CZamPreferencesImpl::LoadFromBytes(const QByteArray& Bytes, QString* pError)
{
    if (Bytes.size() > CZamPreferences::iMaxFileBytes)
        return Refuse(QStringLiteral("ERROR: The preference file is larger than %1 bytes and was not read. "
                                     "It is kept aside when the preferences are next saved.\n")
                          .arg(CZamPreferences::iMaxFileBytes),
                      pError);
    QByteArray Text = Bytes;
    if (ReplaceInvalidUtf8(&Text))
        ReportPreferencesProblem(
            QStringLiteral("WARNING: The file is not valid UTF-8. Invalid bytes were replaced.\n"));
    const SXmlShape Shape = MeasureXmlShape(Text, CZamPreferences::iMaxElementDepth);
    if (Shape.iDepth > CZamPreferences::iMaxElementDepth)
        return Refuse(QStringLiteral("ERROR: Elements are nested deeper than %1 levels. The document was not read.\n")
                          .arg(CZamPreferences::iMaxElementDepth),
                      pError);
    if (Shape.iAttributes > CZamPreferences::iMaxAttributesPerTag)
        return Refuse(QStringLiteral("ERROR: A tag holds more than %1 attributes. The document was not read.\n")
                          .arg(CZamPreferences::iMaxAttributesPerTag),
                      pError);
    if (Shape.iMarkup > CZamPreferences::iMaxMarkupNodes)
        return Refuse(QStringLiteral("ERROR: The document holds more than %1 tags. The document was not read.\n")
                          .arg(CZamPreferences::iMaxMarkupNodes),
                      pError);
    Text.append(iParserPadding, '\0');

    auto pDocument = std::make_unique<TiXmlDocument>();
    TiXmlBase::SetCondenseWhiteSpace(false); // string values keep their spaces
    pDocument->Parse(Text.constData(), nullptr, TIXML_ENCODING_UTF8);
    if (pDocument->Error())
        return Refuse(
            QString::asprintf("[%d:%d]: %s", pDocument->ErrorRow(), pDocument->ErrorCol(), pDocument->ErrorDesc()),
            pError);
    m_pDocument = std::move(pDocument);
    if (!RepairPlistDocument(m_pDocument.get()))
    {
        if (pError)
            *pError = QStringLiteral("The document could not be repaired.");
        ResetToEmpty();
        return false;
    }
    return true;
}

QByteArray CZamPreferencesImpl::ToBytes() const
{
    return WritePlistDocument(*m_pDocument);
}

bool CZamPreferencesImpl::Save(QString* pError)
{
    const QByteArray Bytes = ToBytes();
    m_SaveProblem.clear();
    if (!OpenFile(m_Name, Direction_Write, m_eScope, true) || !WriteFile(Bytes) || !CloseFile(true))
    {
        CloseFile(false);
        const QString Text = m_SaveProblem.isEmpty()
                                 ? QStringLiteral("ERROR: Failed to open filed, or write temporary file!")
                                 : m_SaveProblem;
        ReportPreferencesProblem(Text);
        if (pError)
            *pError = Text;
        return false;
    }
    return true;
}

void CZamPreferencesImpl::OnFileSetAside(const QString& FilePath, const QString& AsidePath)
{
    m_bUnreadablePending = false;
    SPreferencesNotice Notice;
    Notice.eKind = SPreferencesNotice::Kind_SetAside;
    Notice.FilePath = FilePath;
    Notice.AsidePath = AsidePath;
    Notice.Text = QStringLiteral("The preference file %1 could not be read (%2). It was kept as %3 and a new "
                                 "preference file was written.")
                      .arg(FilePath, m_LoadProblem, AsidePath);
    ReportPreferencesProblem(QStringLiteral("WARNING: ") + Notice.Text + QLatin1Char('\n'));
    AddNotice(Notice);
}

void CZamPreferencesImpl::OnFileReadOnly(const QString& FilePath)
{
    const QString Text = QStringLiteral("The preference file %1 is read-only, so the settings were not saved. Make "
                                        "it writable to keep your changes.")
                             .arg(FilePath);
    m_SaveProblem = Text;
    if (m_bReadOnlyNoticed)
        return;
    m_bReadOnlyNoticed = true;
    SPreferencesNotice Notice;
    Notice.eKind = SPreferencesNotice::Kind_ReadOnly;
    Notice.FilePath = FilePath;
    Notice.Text = Text;
    AddNotice(Notice);
}

void CZamPreferencesImpl::AddNotice(const SPreferencesNotice& Notice)
{
    if (m_NoticeHandler)
        m_NoticeHandler(Notice);
    else
        m_Notices.append(Notice);
}

void CZamPreferencesImpl::SetNoticeHandler(CZamPreferences::FNoticeHandler Handler)
{
    m_NoticeHandler = std::move(Handler);
    if (!m_NoticeHandler)
        return;
    for (const SPreferencesNotice& Notice : TakeNotices())
        m_NoticeHandler(Notice);
}

QList<SPreferencesNotice> CZamPreferencesImpl::TakeNotices()
{
    QList<SPreferencesNotice> Taken;
    Taken.swap(m_Notices);
    return Taken;
}

TiXmlElement* CZamPreferencesImpl::RootDict() const
{
    TiXmlElement* pPlist = m_pDocument->FirstChildElement("plist");
    return pPlist ? pPlist->FirstChildElement("dict") : nullptr;
}

const TiXmlElement* CZamPreferencesImpl::FindValue(const QString& Key) const
{
    const std::vector<std::string> Segments = SplitKey(Key);
    const TiXmlElement* pDict = RootDict();
    if (Segments.empty() || !pDict)
        return nullptr;
    for (size_t i = 0; i < Segments.size(); ++i)
    {
        const TiXmlElement* pKey = FindKey(*pDict, Segments[i]);
        if (!pKey)
            return nullptr;
        const TiXmlElement* pValue = pKey->NextSiblingElement();
        if (i + 1 == Segments.size())
            return pValue;
        if (pValue->ValueStr() != "dict")
            return nullptr;
        pDict = pValue;
    }
    return nullptr;
}

TiXmlElement* CZamPreferencesImpl::ProvideValue(const QString& Key)
{
    const std::vector<std::string> Segments = SplitKey(Key);
    TiXmlElement* pDict = RootDict();
    if (Segments.empty() || !pDict)
        return nullptr;
    for (size_t i = 0; i < Segments.size(); ++i)
    {
        TiXmlElement* pKey = FindKey(*pDict, Segments[i]);
        TiXmlElement* pValue = pKey ? pKey->NextSiblingElement() : AppendEntry(pDict, Segments[i]);
        if (i + 1 == Segments.size())
            return pValue;
        if (pValue->ValueStr() != "dict")
            WritePlistGroup(pValue);
        pDict = pValue;
    }
    return nullptr;
}

void CZamPreferencesImpl::Remove(const QString& Key)
{
    const std::vector<std::string> Segments = SplitKey(Key);
    TiXmlElement* pDict = RootDict();
    if (Segments.empty() || !pDict)
        return;
    for (size_t i = 0; i < Segments.size(); ++i)
    {
        TiXmlElement* pKey = FindKey(*pDict, Segments[i]);
        if (!pKey)
            return;
        TiXmlElement* pValue = pKey->NextSiblingElement();
        if (i + 1 == Segments.size())
        {
            pDict->RemoveChild(pValue);
            pDict->RemoveChild(pKey);
            return;
        }
        if (pValue->ValueStr() != "dict")
            return;
        pDict = pValue;
    }
}
