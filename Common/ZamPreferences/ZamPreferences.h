#pragma once

#include <QByteArray>
#include <QLoggingCategory>
#include <QString>
#include <QStringList>

#include <memory>

Q_DECLARE_LOGGING_CATEGORY(lcZamPreferences)

class CZamPreferencesImpl;

// One named, typed property-list preference file. Keys are slash-separated paths
// ("Editor/TabSpaceSize"); every segment but the last names a nested <dict> group.
// Reads never fail: a missing or mistyped value yields the caller's default.
class CZamPreferences
{
public:
    enum EScope
    {
        Scope_User,
        Scope_AllUsers,
    };

    explicit CZamPreferences(const QString& Name, EScope eScope = Scope_User);
    ~CZamPreferences();

    CZamPreferences(const CZamPreferences&) = delete;
    CZamPreferences& operator=(const CZamPreferences&) = delete;

    // Loads the file (creating it with the empty document when absent). On failure the
    // store stays usable and empty; the path tried and the reason are reported back.
    bool Load(QString* pTriedPath = nullptr, QString* pError = nullptr);
    // Writes the whole document through "<file>.tmp" and renames it over the file.
    bool Save(QString* pError = nullptr);

    QString GetFilePath() const;

    bool HasKey(const QString& Key) const;   // a value (of any type) is stored under Key
    bool HasGroup(const QString& Key) const; // Key names a nested <dict>
    void Remove(const QString& Key);

    bool GetBool(const QString& Key, bool bDefault) const;
    qint64 GetInteger(const QString& Key, qint64 iDefault) const;
    double GetReal(const QString& Key, double dDefault) const;
    QString GetString(const QString& Key, const QString& Default = QString()) const;
    QByteArray GetData(const QString& Key, const QByteArray& Default = QByteArray()) const;
    QStringList GetStringArray(const QString& Key, const QStringList& Default = QStringList()) const;

    void SetBool(const QString& Key, bool bValue);
    void SetInteger(const QString& Key, qint64 iValue);
    void SetReal(const QString& Key, double dValue);
    void SetString(const QString& Key, const QString& Value);
    void SetData(const QString& Key, const QByteArray& Value);
    void SetStringArray(const QString& Key, const QStringList& Value);

private:
    std::unique_ptr<CZamPreferencesImpl> m_pImpl;
};
