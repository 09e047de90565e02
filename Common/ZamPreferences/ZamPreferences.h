#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

class CZamPreferencesImpl;

// Something about the preference file that the user should learn, reported once.
struct SPreferencesNotice
{
    enum EKind
    {
        // The file could not be read when it was loaded; the save that would have replaced it
        // renamed it first (AsidePath) and then wrote a fresh file.
        Kind_SetAside,
        // The file has no write permission for its owner (or for us); saves leave it alone.
        Kind_ReadOnly,
    };

    EKind eKind = Kind_SetAside;
    QString FilePath;  // the file concerned; for a symbolic link, the file it points to
    QString AsidePath; // Kind_SetAside: where the unreadable file is now
    QString Text;      // a complete sentence or two for the user
};

// One named, typed property-list preference file. Keys are slash-separated paths
// ("Editor/TabSpaceSize"); every segment but the last names a nested <dict> group.
// Reads never fail: a missing or mistyped value yields the caller's default.
//
// Where the file lives: per user "$XDG_CONFIG_HOME/Brenmoor Systems/<name>.plist"
// (~/.config when unset), for all users the first entry of $XDG_CONFIG_DIRS (/etc/xdg).
//
// Limits, so that a hostile or damaged file cannot take the program down:
//  - files larger than 16 MiB are not read (the store starts empty and the file is left
//    alone until the next Save);
//  - documents whose elements nest deeper than 64 levels, that hold more than a million
//    tags, comments and other markup (the parser's tree stays well under a gigabyte), or a
//    tag with more than 64 attributes (the parser's duplicate check is quadratic), are not
//    parsed;
//  - bytes that are not UTF-8 (and NUL bytes) are replaced by U+FFFD before parsing;
//  - keys with an empty segment or more than 32 segments are ignored by every call;
//  - strings are written as XML 1.0 text: control characters other than tab, line feed
//    and carriage return are replaced by U+FFFD.
// Damaged structure is repaired on load and reported on the logging category
// "zam.preferences"; a key without
// value, a value without key and a key inside an array are dropped, the rest is kept.
//
// A save never loses or misplaces the user's file:
//  - a file that exists but could not be loaded (unparsable, unreadable, oversized, not a
//    regular file) is renamed to "<file>.unreadable-<yyyyMMdd-HHmmss>" by the first save,
//    before the fresh file is written (notice Kind_SetAside);
//  - a symbolic link is followed: the link stays, its final target is replaced atomically
//    (the temporary is written beside the target) and keeps its permission bits;
//  - a file without write permission is not replaced; Save fails with a text that says why
//    (notice Kind_ReadOnly, given once).
class CZamPreferences
{
public:
    enum EScope
    {
        Scope_User,
        Scope_AllUsers,
    };

    static constexpr qint64 iMaxFileBytes = 16 * 1024 * 1024;
    static constexpr int iMaxElementDepth = 64;
    static constexpr qint64 iMaxMarkupNodes = 1000 * 1000;
    static constexpr int iMaxAttributesPerTag = 64;
    static constexpr int iMaxKeySegments = 32;

    explicit CZamPreferences(const QString& Name, EScope eScope = Scope_User);
    // Uses the given back end (its file operations) instead of the platform's own. The back
    // ends are the library's own; the two factories below are how other code chooses one.
    explicit CZamPreferences(std::unique_ptr<CZamPreferencesImpl> pImpl);

    // Reads the named file like the constructor does but never writes it: a missing file is
    // not created, and Save succeeds without touching the disk. For runs that must leave the
    // user's settings alone, such as the command-line compile.
    static std::unique_ptr<CZamPreferences> MakeReadOnly(const QString& Name, EScope eScope = Scope_User);
    // Never touches the disk: starts empty, and Save keeps the bytes in memory. For scratch
    // copies of settings, such as a preview that must not write the user's file.
    static std::unique_ptr<CZamPreferences> MakeInMemory();
    ~CZamPreferences();

    CZamPreferences(const CZamPreferences&) = delete;
    CZamPreferences& operator=(const CZamPreferences&) = delete;

    // Loads the file (creating it with the empty document when absent). On failure the
    // store stays usable and empty; the path tried and the reason are reported back.
    // Returns true also when the document needed repairs.
    bool Load(QString* pTriedPath = nullptr, QString* pError = nullptr);
    // Writes the whole document through "<file>.tmp" and renames it over the file.
    [[nodiscard]] bool Save(QString* pError = nullptr);

    // Replaces the document by one parsed from Bytes, with the same checks and repairs as
    // Load, without touching the disk. False when Bytes could not be used at all.
    bool LoadFromBytes(const QByteArray& Bytes, QString* pError = nullptr);
    // The bytes Save would write.
    QByteArray ToBytes() const;

    QString GetFilePath() const;
    // Why the last Load could not use an existing file; empty when it could (or there was none).
    QString GetLoadProblem() const;

    // Notices are kept until taken; a handler receives the kept ones at once and later ones
    // as they arise (on the thread that saves).
    using FNoticeHandler = std::function<void(const SPreferencesNotice& Notice)>;
    void SetNoticeHandler(FNoticeHandler Handler);
    QList<SPreferencesNotice> TakeNotices();

    bool HasKey(const QString& Key) const;   // a value other than a group is stored under Key
    bool HasGroup(const QString& Key) const; // Key names a nested <dict>
    void Remove(const QString& Key);

    bool GetBool(const QString& Key, bool bDefault) const;
    qint64 GetInteger(const QString& Key, qint64 iDefault) const;
    double GetReal(const QString& Key, double dDefault) const;
    QString GetString(const QString& Key, const QString& Default = QString()) const;
    QByteArray GetData(const QString& Key, const QByteArray& Default = QByteArray()) const;
    QStringList GetStringArray(const QString& Key, const QStringList& Default = QStringList()) const;

    // 32-bit ARGB colours. Written as the signed 32-bit integer; read back from either the
    // signed or the unsigned spelling of the same 32 bits. Anything else gives the default.
    quint32 GetArgb(const QString& Key, quint32 uiDefault) const;
    void SetArgb(const QString& Key, quint32 uiValue);

    void SetBool(const QString& Key, bool bValue);
    void SetInteger(const QString& Key, qint64 iValue);
    void SetReal(const QString& Key, double dValue);
    void SetString(const QString& Key, const QString& Value);
    void SetData(const QString& Key, const QByteArray& Value);
    void SetStringArray(const QString& Key, const QStringList& Value);

private:
    std::unique_ptr<CZamPreferencesImpl> m_pImpl;
};
