#include "ZamPreferences.h"

#include "ZamPlistValues_p.h"
#include "ZamPreferencesImpl_p.h"
#include "ZamPreferencesMemory_p.h"
#include "ZamPreferencesPosix_p.h"
#include "ZamPreferencesReadOnly_p.h"

#include <tinyxml.h>

#include <limits>

namespace
{
template <typename TValue, typename TReader>
TValue ReadOr(const CZamPreferencesImpl& Impl, const QString& Key, const TValue& Default, TReader Reader)
{
    TValue Value = Default;
    const TiXmlElement* pElement = Impl.FindValue(Key);
    if (!pElement || !Reader(*pElement, &Value))
        return Default;
    return Value;
}

template <typename TValue, typename TWriter>
void WriteTo(CZamPreferencesImpl* pImpl, const QString& Key, const TValue& Value, TWriter Writer)
{
    if (TiXmlElement* pElement = pImpl->ProvideValue(Key))
        Writer(pElement, Value);
}
} // namespace

CZamPreferences::CZamPreferences(const QString& Name, EScope eScope)
    : m_pImpl(std::make_unique<CZamPreferencesPosix>(Name, eScope))
{
}

CZamPreferences::CZamPreferences(std::unique_ptr<CZamPreferencesImpl> pImpl)
    : m_pImpl(std::move(pImpl))
{
}

CZamPreferences::~CZamPreferences() = default;

std::unique_ptr<CZamPreferences> CZamPreferences::MakeReadOnly(const QString& Name, EScope eScope)
{
    return std::make_unique<CZamPreferences>(std::make_unique<CZamPreferencesReadOnly>(Name, eScope));
}

std::unique_ptr<CZamPreferences> CZamPreferences::MakeInMemory()
{
    return std::make_unique<CZamPreferences>(std::make_unique<CZamPreferencesMemory>());
}

bool CZamPreferences::Load(QString* pTriedPath, QString* pError)
{
    return m_pImpl->Load(pTriedPath, pError);
}

bool CZamPreferences::Save(QString* pError)
{
    return m_pImpl->Save(pError);
}

bool CZamPreferences::LoadFromBytes(const QByteArray& Bytes, QString* pError)
{
    return m_pImpl->LoadFromBytes(Bytes, pError);
}

QByteArray CZamPreferences::ToBytes() const
{
    return m_pImpl->ToBytes();
}

QString CZamPreferences::GetFilePath() const
{
    return m_pImpl->GetFilePath();
}

QString CZamPreferences::GetLoadProblem() const
{
    return m_pImpl->GetLoadProblem();
}

void CZamPreferences::SetNoticeHandler(FNoticeHandler Handler)
{
    m_pImpl->SetNoticeHandler(std::move(Handler));
}

QList<SPreferencesNotice> CZamPreferences::TakeNotices()
{
    return m_pImpl->TakeNotices();
}

bool CZamPreferences::HasKey(const QString& Key) const
{
    const TiXmlElement* pValue = m_pImpl->FindValue(Key);
    return pValue && pValue->ValueStr() != "dict";
}

bool CZamPreferences::HasGroup(const QString& Key) const
{
    const TiXmlElement* pValue = m_pImpl->FindValue(Key);
    return pValue && pValue->ValueStr() == "dict";
}

void CZamPreferences::Remove(const QString& Key)
{
    m_pImpl->Remove(Key);
}

bool CZamPreferences::GetBool(const QString& Key, bool bDefault) const
{
    return ReadOr(*m_pImpl, Key, bDefault, ReadPlistBool);
}

qint64 CZamPreferences::GetInteger(const QString& Key, qint64 iDefault) const
{
    return ReadOr(*m_pImpl, Key, iDefault, ReadPlistInteger);
}

double CZamPreferences::GetReal(const QString& Key, double dDefault) const
{
    return ReadOr(*m_pImpl, Key, dDefault, ReadPlistReal);
}

QString CZamPreferences::GetString(const QString& Key, const QString& Default) const
{
    return ReadOr(*m_pImpl, Key, Default, ReadPlistString);
}

QByteArray CZamPreferences::GetData(const QString& Key, const QByteArray& Default) const
{
    return ReadOr(*m_pImpl, Key, Default, ReadPlistData);
}

QStringList CZamPreferences::GetStringArray(const QString& Key, const QStringList& Default) const
{
    return ReadOr(*m_pImpl, Key, Default, ReadPlistStringArray);
}

quint32 CZamPreferences::GetArgb(const QString& Key, quint32 uiDefault) const
{
    qint64 iValue = 0;
    const TiXmlElement* pElement = m_pImpl->FindValue(Key);
    if (!pElement || !ReadPlistInteger(*pElement, &iValue))
        return uiDefault;
    // Either spelling of the 32 bits: signed as written here, unsigned as other tools write it.
    if (iValue < std::numeric_limits<qint32>::min() || iValue > std::numeric_limits<quint32>::max())
        return uiDefault;
    return static_cast<quint32>(iValue);
}

void CZamPreferences::SetArgb(const QString& Key, quint32 uiValue)
{
    WriteTo(m_pImpl.get(), Key, static_cast<qint64>(static_cast<qint32>(uiValue)), WritePlistInteger);
}

void CZamPreferences::SetBool(const QString& Key, bool bValue)
{
    WriteTo(m_pImpl.get(), Key, bValue, WritePlistBool);
}

void CZamPreferences::SetInteger(const QString& Key, qint64 iValue)
{
    WriteTo(m_pImpl.get(), Key, iValue, WritePlistInteger);
}

void CZamPreferences::SetReal(const QString& Key, double dValue)
{
    WriteTo(m_pImpl.get(), Key, dValue, WritePlistReal);
}

void CZamPreferences::SetString(const QString& Key, const QString& Value)
{
    WriteTo(m_pImpl.get(), Key, Value, WritePlistString);
}

void CZamPreferences::SetData(const QString& Key, const QByteArray& Value)
{
    WriteTo(m_pImpl.get(), Key, Value, WritePlistData);
}

void CZamPreferences::SetStringArray(const QString& Key, const QStringList& Value)
{
    WriteTo(m_pImpl.get(), Key, Value, WritePlistStringArray);
}
