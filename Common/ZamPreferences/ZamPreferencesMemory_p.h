#pragma once

#include "ZamPreferencesImpl_p.h"

#include <QByteArray>

// A store that never touches the disk: it starts empty and Save keeps the bytes in memory.
// For scratch copies of settings, such as a preview that must not write the user's file.
class CZamPreferencesMemory : public CZamPreferencesImpl
{
public:
    CZamPreferencesMemory();

    const QByteArray& GetSavedBytes() const { return m_Saved; }

protected:
    QString FilePath(const QString& Name, CZamPreferences::EScope eScope) const override;
    bool OpenFile(const QString& Name, EDirection eDirection, CZamPreferences::EScope eScope,
                  bool bThroughTemporary) override;
    bool ReadFile(qint64 iMaxBytes, QByteArray* pBytes) override;
    bool WriteFile(const QByteArray& Bytes) override;
    bool CloseFile(bool bCommit) override;
    bool FileExists(const QString& Name, CZamPreferences::EScope eScope) const override;

private:
    QByteArray m_Saved;
    QByteArray m_Pending;
    bool m_bOpen = false;
    bool m_bWriting = false;
};
