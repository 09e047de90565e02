#pragma once

#include "ZamPreferences.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <memory>

class TiXmlDocument;
class TiXmlElement;

// Holds the parsed document and everything that does not depend on where files live:
// loading with checks and repairs, saving, and finding values by key path. A platform
// back end derives from it and supplies the file operations.
class CZamPreferencesImpl
{
public:
    enum EDirection
    {
        Direction_Read,
        Direction_Write,
    };

    CZamPreferencesImpl(const QString& Name, CZamPreferences::EScope eScope);
    virtual ~CZamPreferencesImpl();

    CZamPreferencesImpl(const CZamPreferencesImpl&) = delete;
    CZamPreferencesImpl& operator=(const CZamPreferencesImpl&) = delete;

    bool Load(QString* pTriedPath, QString* pError);
    bool Save(QString* pError);
    bool LoadFromBytes(const QByteArray& Bytes, QString* pError);
    QByteArray ToBytes() const;
    QString GetFilePath() const { return FilePath(m_Name, m_eScope); }
    const QString& GetLoadProblem() const { return m_LoadProblem; }

    void SetNoticeHandler(CZamPreferences::FNoticeHandler Handler);
    QList<SPreferencesNotice> TakeNotices();

    // The value element stored under Key, or null.
    const TiXmlElement* FindValue(const QString& Key) const;
    // The value element to overwrite for Key, creating groups on the way and replacing
    // values that stand where a group is needed. Null for an unusable key.
    TiXmlElement* ProvideValue(const QString& Key);
    void Remove(const QString& Key);

protected:
    virtual QString FilePath(const QString& Name, CZamPreferences::EScope eScope) const = 0;
    // Opens the file of Name for reading or writing. Reading creates a missing file with
    // the empty document first. bThroughTemporary writes "<file>.tmp" instead.
    virtual bool OpenFile(const QString& Name, EDirection eDirection, CZamPreferences::EScope eScope,
                          bool bThroughTemporary) = 0;
    // Reads at most iMaxBytes + 1 bytes, so a caller can tell an oversized file.
    virtual bool ReadFile(qint64 iMaxBytes, QByteArray* pBytes) = 0;
    virtual bool WriteFile(const QByteArray& Bytes) = 0;
    // Closes the open file. After writing through the temporary, bCommit puts it in place
    // of the file (false discards it). Returns false when the commit failed.
    virtual bool CloseFile(bool bCommit) = 0;
    virtual bool FileExists(const QString& Name, CZamPreferences::EScope eScope) const = 0;

    // For the back end's write path. True while the last Load failed on an existing file
    // and no save has set that file aside yet.
    bool IsUnreadableFilePending() const { return m_bUnreadablePending; }
    // The unreadable file was renamed to AsidePath: tells the user and ends the pending state.
    void OnFileSetAside(const QString& FilePath, const QString& AsidePath);
    // FilePath may not be written: the save fails with a text saying so (the user is told once).
    void OnFileReadOnly(const QString& FilePath);
    // The text a failing save reports instead of the generic one.
    void SetSaveProblem(const QString& Text) { m_SaveProblem = Text; }

private:
    void ResetToEmpty();
    bool ReadDocument(QString* pError);
    bool Refuse(const QString& Text, QString* pError);
    void AddNotice(const SPreferencesNotice& Notice);
    TiXmlElement* RootDict() const;

    QString m_Name;
    CZamPreferences::EScope m_eScope;
    std::unique_ptr<TiXmlDocument> m_pDocument;
    QString m_LoadProblem;
    bool m_bUnreadablePending = false;
    QString m_SaveProblem;
    bool m_bReadOnlyNoticed = false;
    QList<SPreferencesNotice> m_Notices;
    CZamPreferences::FNoticeHandler m_NoticeHandler;
};
