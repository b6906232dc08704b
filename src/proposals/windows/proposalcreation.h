#pragma once

#include "dialogworker.h"
#include "proposalpanel.h"

#include <QString>

class clsProposal;

// The events of the small dialog in which the maintenance window creates a
// proposal in a free slot: its description and where its amounts come from
// (an empty budget, the current budget, or a copy of an open proposal).
class ProposalCreation : public DialogWorker {
public:
    // `owner` is the maintenance window, whose status bar tells how it goes.
    ProposalCreation(clsProposal &store, QString slotID, ProposalPanel panel, classDialog &owner);

    void FormBuild(classDialog &dialog) override;
    bool SaveData(classDialog &dialog) override;

private:
    clsProposal &store_;
    QString slotID_;
    ProposalPanel panel_;
    classDialog &owner_;
};
