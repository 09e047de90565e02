#pragma once

// What the lowering knows about scalar variables at the current point (the constant a
// loop counter starts from), and the trip counts of loops derived from it.

#include "TxeIsa.h"

#include <map>
#include <vector>

namespace glslang
{
class TIntermLoop;
}

namespace ZamCompiler
{

class CTreeFacts;

class CKnownValues
{
public:
    // A branch, loop or inlined body: what it writes is not known after it.
    void BeginRegion();
    void EndRegion();
    void NoteWrite(long long llId);
    void NoteConstant(long long llId, double dValue);
    bool Known(long long llId, double& dValue) const;

private:
    std::map<long long, double> m_mapConstants;
    // Per open region, the variables that became known inside it. A write forgets a value at
    // once, so only these need forgetting when the region ends.
    std::vector<std::vector<long long>> m_aRegionConstants;
};

// Exact when the counter starts from a known constant, is compared with a constant, steps
// by a constant in the increment and is not written in the body; the unknown-trip figures
// otherwise.
STxeTrips TripCount(glslang::TIntermLoop* pNode, const CKnownValues& known, CTreeFacts& facts);

} // namespace ZamCompiler
