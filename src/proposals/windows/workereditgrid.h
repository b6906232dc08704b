#pragma once

#include "installationfunds.h"
#include "workerlineitem.h"

#include "accountsummary.h"
#include "dialogworker.h"
#include "messageservice.h"
#include "proposedbudget.h"

#include <QPointer>
#include <QString>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

class classDialog;
class classGrid;

// Runs the line-item window for an account and returns when it closes; the
// grid runs workerLineItem unless a caller (a test) sets another.
using LineItemHook = std::function<void(const LineItemAccount &)>;

// The grid in which a ledger's figures are typed, one row per account of a
// fund and ledger. Display type "PB": the proposed budget of the current
// proposal (for fund "A", ledger "E" split into the administrative, program
// and capital components, whose open cells make up the amount). Any other
// display type: the accounts' state code, historical code, projected amount
// and component flags. Saving writes the rows that differ from their "Orig"
// twins in one transaction, all or nothing.
class workerEditGrid : public ModalWorker, public DialogWorker {
public:
    workerEditGrid(std::shared_ptr<DbConnection> connection, FundListReader funds);
    ~workerEditGrid() override;

    static QString FormType() { return QStringLiteral("Worker"); }
    const QString &DisplayType() const { return displayType_; }
    void setDisplayType(const QString &type) { displayType_ = type; }
    // The fund and ledger shown first (the first of each list when empty);
    // afterwards those on screen.
    QString FundID() const;
    void setFundID(const QString &fund) { fundId_ = fund; }
    QString LedgerID() const;
    void setLedgerID(const QString &ledger) { ledgerId_ = ledger; }
    void setLineItemHook(LineItemHook hook) { lineItem_ = std::move(hook); }

    // Reads the funds; on failure tells the user and the dialog is not run.
    bool Initialise();
    void DoModalForm() override;
    void RefreshData() override;

    void AddGridRow(const clsProposedBudgetItem &item);
    void AddGridRow(const clsAccountCode &code);
    bool UpdateBudget(int row);
    bool UpdateAccount(int row);

    void FormBuild(classDialog &dialog) override;
    void LoadData(classDialog &dialog) override;
    void UserAction(classDialog &dialog, const QString &name) override;
    bool SaveData(classDialog &dialog) override;

    // What the dialog shows, for tests and benchmarks.
    classGrid &Grid() const;
    // Makes `row` carry the figures a component cell change gives it.
    void CellEdited(int row, const QString &key);

private:
    struct Figures {
        Currency total;
        Currency catA;
        Currency catP;
        Currency catC;
    };

    bool proposedBudget() const;
    bool componentLedger() const;
    QString title() const;
    QString selectedKey(const QString &list) const;
    void buildColumns();
    void applyLedgerLayout();
    void loadLedger();
    void switchLedger();
    void openLineItems();
    std::vector<int> changedRows() const;
    Currency openComponents(int row) const;
    // The store's item for an account of the loaded fund and ledger in the current proposal, amounts zero.
    clsProposedBudgetItem proposalItem(std::int32_t accountId) const;
    // The accounts of the rows a save writes.
    std::vector<std::int32_t> changedAccounts() const;
    // The row's figures as the proposal holds them now; false when it has no row (or cannot be read).
    bool storedFigures(int row, Figures &figures);
    void showStored(int row, const Figures &figures);
    // The loaded fund and ledger's items in the current proposal as stored now;
    // false after telling the user `failure` (" fund F, ledger L. (why)" follows).
    bool readLedger(std::vector<clsProposedBudgetItem> &items, const QString &failure);
    // Shows the stored figures again on the changed rows whose stored figures
    // moved since loading, when the user chooses so (they are then no longer
    // changed); false when the user cancelled the save or the check could not
    // be made.
    bool resolveConflicts(bool &reloaded);
    void showComponentSummary();
    void message(const QString &text, MsgIcon icon) const;

    std::shared_ptr<DbConnection> connection_;
    FundListReader readFunds_;
    LineItemHook lineItem_;
    std::vector<FundEntry> funds_;
    QString displayType_;
    QString fundId_;
    QString ledgerId_;
    QString loadedFund_;
    QString loadedLedger_;
    clsProposedBudget budget_;
    ClsAccountSummary accounts_;
    QPointer<classDialog> dialog_;
};
