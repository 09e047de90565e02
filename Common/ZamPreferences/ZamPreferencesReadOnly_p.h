#pragma once

#include "ZamPreferencesPosix_p.h"

// Reads through the platform's file operations; every write is accepted and dropped, and a
// missing file is not created.
class CZamPreferencesReadOnly : public CZamPreferencesPosix
{
public:
    using CZamPreferencesPosix::CZamPreferencesPosix;

protected:
    bool OpenFile(const QString& Name, EDirection eDirection, CZamPreferences::EScope eScope,
                  bool bThroughTemporary) override;
    bool WriteFile(const QByteArray& Bytes) override;
    bool CloseFile(bool bCommit) override;

private:
    bool m_bDiscarding = false;
};
