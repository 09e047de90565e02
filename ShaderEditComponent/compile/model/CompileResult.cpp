#include "CompileResult.h"

const SCompileResult::SProfile* SCompileResult::FindProfile(const CZamTString& Name) const
{
    const auto Found = ProfileLookup.find(Name);
    return Found == ProfileLookup.end() ? nullptr : &Found->second;
}

int SCompileResult::AddProfile(const SProfile& Profile)
{
    if (Profiles.Append(Profile) != 0)
        return 1;
    ProfileLookup[Profile.Name] = Profile;
    return 0;
}
