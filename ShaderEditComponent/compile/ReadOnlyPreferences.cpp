#include "ReadOnlyPreferences.h"

#include "ZamPreferences.h"
#include "ZamPreferencesPosix.h"

namespace
{
// Reads through the platform's file operations; every write is accepted and dropped.
class CReadOnlyPreferencesPosix : public CZamPreferencesPosix
{
public:
    using CZamPreferencesPosix::CZamPreferencesPosix;

protected:
    bool OpenFile(const QString& Name, EDirection eDirection, CZamPreferences::EScope eScope,
                  bool bThroughTemporary) override
    {
        m_bDiscarding = eDirection == Direction_Write;
        if (m_bDiscarding)
            return true;
        // Reading would create a missing file.
        return FileExists(Name, eScope) && CZamPreferencesPosix::OpenFile(Name, eDirection, eScope, bThroughTemporary);
    }

    bool WriteFile(const QByteArray& Bytes) override { return m_bDiscarding || CZamPreferencesPosix::WriteFile(Bytes); }

    bool CloseFile(bool bCommit) override
    {
        if (!m_bDiscarding)
            return CZamPreferencesPosix::CloseFile(bCommit);
        m_bDiscarding = false;
        return true;
    }

private:
    bool m_bDiscarding = false;
};
} // namespace

std::unique_ptr<CZamPreferences> MakeReadOnlyPreferences(const QString& Name)
{
    return std::make_unique<CZamPreferences>(
        std::make_unique<CReadOnlyPreferencesPosix>(Name, CZamPreferences::Scope_User));
}
