#include "ZamPreferencesReadOnly_p.h"

bool CZamPreferencesReadOnly::OpenFile(const QString& Name, EDirection eDirection, CZamPreferences::EScope eScope,
                                       bool bThroughTemporary)
{
    m_bDiscarding = eDirection == Direction_Write;
    if (m_bDiscarding)
        return true;
    // Reading would create a missing file.
    return FileExists(Name, eScope) && CZamPreferencesPosix::OpenFile(Name, eDirection, eScope, bThroughTemporary);
}

bool CZamPreferencesReadOnly::WriteFile(const QByteArray& Bytes)
{
    return m_bDiscarding || CZamPreferencesPosix::WriteFile(Bytes);
}

bool CZamPreferencesReadOnly::CloseFile(bool bCommit)
{
    if (!m_bDiscarding)
        return CZamPreferencesPosix::CloseFile(bCommit);
    m_bDiscarding = false;
    return true;
}
