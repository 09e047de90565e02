#include "ZamPreferencesMemory_p.h"

#include "ZamPlistWriter_p.h"

CZamPreferencesMemory::CZamPreferencesMemory()
    : CZamPreferencesImpl(QString(), CZamPreferences::Scope_User)
    , m_Saved(acEmptyPlistDocument)
{
}

QString CZamPreferencesMemory::FilePath(const QString&, CZamPreferences::EScope) const
{
    return QString();
}

bool CZamPreferencesMemory::OpenFile(const QString&, EDirection eDirection, CZamPreferences::EScope, bool)
{
    m_bOpen = true;
    m_bWriting = eDirection == Direction_Write;
    m_Pending.clear();
    return true;
}

bool CZamPreferencesMemory::ReadFile(qint64 iMaxBytes, QByteArray* pBytes)
{
    if (!m_bOpen || m_bWriting)
        return false;
    *pBytes = m_Saved.left(iMaxBytes + 1);
    return true;
}

bool CZamPreferencesMemory::WriteFile(const QByteArray& Bytes)
{
    if (!m_bOpen || !m_bWriting)
        return false;
    m_Pending += Bytes;
    return true;
}

bool CZamPreferencesMemory::CloseFile(bool bCommit)
{
    if (!m_bOpen)
        return false;
    if (m_bWriting && bCommit)
        m_Saved = m_Pending;
    m_bOpen = false;
    m_Pending.clear();
    return true;
}

bool CZamPreferencesMemory::FileExists(const QString&, CZamPreferences::EScope) const
{
    return true;
}
