#include "ReadOnlyPreferences.h"

#include "ZamPreferences.h"
#include "ZamPreferencesPosix.h"

namespace
{
class CReadOnlyPreferencesPosix : public CZamPreferencesPosix
{
public:
    using CZamPreferencesPosix::CZamPreferencesPosix;

protected:
    bool OpenFile(const QString& Name, EDirection eDirection, CZamPreferences::EScope eScope,
                  bool bThroughTemporary) override
    {
        if (eDirection == Direction_Write || !FileExists(Name, eScope))
            return false;
        return CZamPreferencesPosix::OpenFile(Name, eDirection, eScope, bThroughTemporary);
    }
};
} // namespace

std::unique_ptr<CZamPreferences> MakeReadOnlyPreferences(const QString& Name)
{
    return std::make_unique<CZamPreferences>(std::make_unique<CReadOnlyPreferencesPosix>(Name, CZamPreferences::Scope_User));
}
