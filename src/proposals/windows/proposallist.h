#pragma once

#include "proposalitem.h"

#include <algorithm>
#include <vector>

// The proposal lists come back in whatever order the database keeps the rows
// (an update can move a row to the end); the windows show them by slot.
inline void sortBySlot(std::vector<clsProposalItem> &proposals)
{
    std::sort(proposals.begin(), proposals.end(),
              [](const clsProposalItem &a, const clsProposalItem &b) { return a.ID < b.ID; });
}
