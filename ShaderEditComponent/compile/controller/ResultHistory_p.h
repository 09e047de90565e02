#pragma once

#include "ShaderEditComponent/compile/model/CompileResult.h"
#include "Tools/ZamTHash.h"

#include <map>
#include <set>

// Per panel: how many edits asked for a compile, which compile is the newest, and the last
// result that compiled. While the text at hand does not compile, the views keep showing that
// result, with the current log and messages, rather than going blank on every typo.
class CResultHistory
{
public:
    enum EKind
    {
        Kind_Latest,     // the panel's newest background compile
        Kind_Superseded, // an older one: its text has been edited since
        Kind_Other,      // not a background compile of the panel (a compile to file)
    };

    // One more edit of the panel's text asked for a compile; returns its number.
    int Requested(const CZamTHash& PanelID);
    // The compile of edit iEdit was started under uiKey.
    void Started(const CZamTHash& PanelID, unsigned int uiKey, int iEdit);
    // A compile to file was started under uiKey; its result is answered once.
    void StartedToFile(unsigned int uiKey);
    // Called once per result that arrives.
    [[nodiscard]] EKind Classify(const CZamTHash& PanelID, unsigned int uiKey);
    // Takes the result of the panel's newest compile and returns what the views show: the
    // result itself with the previous figures when it compiled, otherwise the last result
    // that did, with the new log and messages and the edits since.
    [[nodiscard]] SCompileResult Take(const CZamTHash& PanelID, const SCompileResult& Result);

private:
    struct SPanel
    {
        int iEdits = 0;
        unsigned int uiLatestKey = 0;
        int iLatestEdit = 0;
        bool bStarted = false;
        bool bHasGood = false;
        int iGoodEdit = 0;
        SCompileResult Good;
    };

    std::map<CZamTHash, SPanel> m_Panels;
    std::set<unsigned int> m_FileKeys;
};
