#include "ResultHistory_p.h"

#include <algorithm>

namespace
{
// The figures only: the disassembly of the previous result is never shown again.
CZamTArray<SCompileResult::SProfile> FiguresOf(const CZamTArray<SCompileResult::SProfile>& Profiles)
{
    CZamTArray<SCompileResult::SProfile> Figures(Profiles.GetSize());
    for (uint32_t ui = 0; ui < Profiles.GetSize(); ++ui)
    {
        SCompileResult::SProfile Profile = Profiles[ui];
        Profile.Disassembly = CZamTString();
        if (Figures.Append(Profile) != 0)
            return CZamTArray<SCompileResult::SProfile>();
    }
    return Figures;
}
} // namespace

int CResultHistory::Requested(const CZamTHash& PanelID)
{
    return ++m_Panels[PanelID].iEdits;
}

void CResultHistory::Started(const CZamTHash& PanelID, unsigned int uiKey, int iEdit)
{
    SPanel& Panel = m_Panels[PanelID];
    Panel.uiLatestKey = uiKey;
    Panel.iLatestEdit = iEdit;
    Panel.bStarted = true;
}

void CResultHistory::StartedToFile(unsigned int uiKey)
{
    m_FileKeys.insert(uiKey);
}

CResultHistory::EKind CResultHistory::Classify(const CZamTHash& PanelID, unsigned int uiKey)
{
    if (m_FileKeys.erase(uiKey) > 0)
        return Kind_Other;
    const auto Found = m_Panels.find(PanelID);
    if (Found == m_Panels.end() || !Found->second.bStarted)
        return Kind_Other;
    return uiKey == Found->second.uiLatestKey ? Kind_Latest : Kind_Superseded;
}

SCompileResult CResultHistory::Take(const CZamTHash& PanelID, const SCompileResult& Result)
{
    SPanel& Panel = m_Panels[PanelID];
    if (Result.iStatus == CompileStatus_Completed)
    {
        SCompileResult Shown = Result;
        if (Panel.bHasGood)
            Shown.PreviousProfiles = FiguresOf(Panel.Good.Profiles);
        Panel.Good = Shown;
        Panel.bHasGood = true;
        Panel.iGoodEdit = Panel.iLatestEdit;
        return Shown;
    }
    if (!Panel.bHasGood)
        return Result;
    SCompileResult Shown = Panel.Good;
    Shown.Log = Result.Log;
    Shown.Messages = Result.Messages;
    Shown.iStatus = Result.iStatus;
    Shown.iEditsBehind = std::max(1, Panel.iLatestEdit - Panel.iGoodEdit);
    return Shown;
}
