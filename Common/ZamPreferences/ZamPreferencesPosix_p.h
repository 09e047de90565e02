#pragma once

#include "ZamPreferencesImpl_p.h"

#include <QFile>

// File operations on POSIX systems with XDG folders. Saving writes "<file>.tmp" next to
// the file, syncs it to disk and renames it over the file, so a crash or a full disk
// leaves either the old file or the new one, never a mix. When the file is a symbolic link
// the same happens beside the link's final target, so the link stays a link.
class CZamPreferencesPosix : public CZamPreferencesImpl
{
public:
    CZamPreferencesPosix(const QString& Name, CZamPreferences::EScope eScope);
    ~CZamPreferencesPosix() override;

    // The folder of the store: "<XDG folder>/Brenmoor Systems".
    static QString StoreFolder(CZamPreferences::EScope eScope);

protected:
    QString FilePath(const QString& Name, CZamPreferences::EScope eScope) const override;
    bool OpenFile(const QString& Name, EDirection eDirection, CZamPreferences::EScope eScope,
                  bool bThroughTemporary) override;
    bool ReadFile(qint64 iMaxBytes, QByteArray* pBytes) override;
    bool WriteFile(const QByteArray& Bytes) override;
    bool CloseFile(bool bCommit) override;
    bool FileExists(const QString& Name, CZamPreferences::EScope eScope) const override;

private:
    bool CreateEmptyFile(const QString& Name, CZamPreferences::EScope eScope);
    bool OpenTemporaryFor(const QString& Target);

    QFile m_File;
    QString m_TargetPath; // the file a temporary is renamed to; empty when not writing through one
};
