#pragma once

#include "dialogworker.h"
#include "proposal.h"
#include "proposalpanel.h"

#include <memory>

class DbConnection;

// Chooses which open proposal the program works on. Only the current
// proposal (gstrProposalID) changes; the stored active flag stays as it is.
class workerSelectProposal : public DialogWorker, public ModalWorker {
public:
    workerSelectProposal(std::shared_ptr<DbConnection> connection, ProposalPanel panel, QWidget *parent = nullptr);

    static QString FormType() { return QStringLiteral("Worker"); }

    void DoModalForm() override;

    void FormBuild(classDialog &dialog) override;
    void LoadData(classDialog &dialog) override;
    void LockControls(classDialog &dialog) override;
    void UserAction(classDialog &dialog, const QString &name) override;

private:
    // cmdOK is for choosing another proposal than the current one.
    void enableChoice(classDialog &dialog);

    clsProposal store_;
    ProposalPanel panel_;
    QWidget *parent_;
};

// One entry of the list: the ID, the name and, for the active proposal, its
// marker, in the columns of the list's heading.
QString proposalListEntry(const clsProposalItem &proposal);
