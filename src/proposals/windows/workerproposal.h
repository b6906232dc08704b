#pragma once

#include "dialogworker.h"
#include "proposal.h"
#include "proposalpanel.h"

#include <QPointer>

#include <memory>

class DbConnection;
class classGrid;

// Proposal maintenance: the three proposal slots in a grid where the user
// renames them, opens or closes them and marks the active one; a new proposal
// in a free slot; and emptying a closed slot. The grid is saved in one
// transaction.
class workerProposal : public DialogWorker, public ModalWorker {
public:
    workerProposal(std::shared_ptr<DbConnection> connection, ProposalPanel panel, QWidget *parent = nullptr);

    static QString FormType() { return QStringLiteral("Worker"); }

    void DoModalForm() override;
    void RefreshData() override;

    void FormBuild(classDialog &dialog) override;
    void LoadData(classDialog &dialog) override;
    void LockControls(classDialog &dialog) override;
    void UserAction(classDialog &dialog, const QString &name) override;
    bool SaveData(classDialog &dialog) override;

private:
    void create(classDialog &dialog);
    void erase(classDialog &dialog);
    // Checking Active on one row clears it on the others it may be cleared on.
    void keepOneActive(classGrid &grid, int checkedRow);
    void applyLocks(classGrid &grid);

    clsProposal store_;
    ProposalPanel panel_;
    QWidget *parent_;
    QPointer<classDialog> dialog_; // while the window is open
};
