#include "ZcLowerControl.h"

namespace ZamCompiler
{

int CControlStack::EnterFunction(bool bWrapped, int iReturnFlag)
{
    SFrame frame;
    frame.bWrapped = bWrapped;
    frame.iReturnFlag = iReturnFlag;
    m_aFrames.push_back(frame);
    return CurrentFunction();
}

SValue CControlStack::LeaveFunction()
{
    if (m_aFrames.empty())
        return SValue();
    SValue result = std::move(m_aFrames.back().result);
    m_aFrames.pop_back();
    return result;
}

bool CControlStack::IsWrapped(int iFunction) const
{
    return m_aFrames.at(static_cast<std::size_t>(iFunction)).bWrapped;
}

int CControlStack::ReturnFlag(int iFunction) const
{
    return m_aFrames.at(static_cast<std::size_t>(iFunction)).iReturnFlag;
}

bool CControlStack::HasResult(int iFunction) const
{
    return !m_aFrames.at(static_cast<std::size_t>(iFunction)).result.aSlots.empty();
}

SValue CControlStack::Result(int iFunction) const
{
    return m_aFrames.at(static_cast<std::size_t>(iFunction)).result;
}

void CControlStack::SetResult(int iFunction, const SValue& result)
{
    m_aFrames.at(static_cast<std::size_t>(iFunction)).result = result;
}

int CControlStack::OpenLevels(int iFunction) const
{
    return m_aFrames.at(static_cast<std::size_t>(iFunction)).iOpenLevels;
}

void CControlStack::Open(const SLevel& level)
{
    m_aLevels.push_back(level);
    if (!m_aFrames.empty())
        ++m_aFrames.back().iOpenLevels;
}

void CControlStack::EnterLoop(glslang::TIntermTyped* pIncrement)
{
    SLevel level;
    level.pIncrement = pIncrement;
    Open(level);
}

void CControlStack::EnterSwitch()
{
    SLevel level;
    level.bSwitch = true;
    Open(level);
}

void CControlStack::Leave()
{
    if (m_aLevels.empty())
        return;
    m_aLevels.pop_back();
    if (!m_aFrames.empty() && m_aFrames.back().iOpenLevels > 0)
        --m_aFrames.back().iOpenLevels;
}

bool CControlStack::InnermostIsSwitch() const
{
    return !m_aLevels.empty() && m_aLevels.back().bSwitch;
}

glslang::TIntermTyped* CControlStack::InnermostIncrement() const
{
    return m_aLevels.empty() ? nullptr : m_aLevels.back().pIncrement;
}

} // namespace ZamCompiler
