#pragma once

#include <QString>

#include <functional>

// Rewrites the text of the main window's proposal panel. The frame hands one
// to the windows that create, choose or save proposals; a null one is skipped.
using ProposalPanel = std::function<void(const QString &text)>;

// After a proposal was created or chosen.
inline QString chosenProposalText(const QString &proposalID)
{
    return QStringLiteral("Proposal :") + proposalID;
}

// After the maintenance grid was saved; the leading blank is how that window
// has always written it.
inline QString savedProposalText(const QString &proposalID)
{
    return QStringLiteral(" Proposal :") + proposalID;
}
