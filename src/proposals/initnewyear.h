#pragma once

#include "storebase.h"

#include <QString>

#include <functional>

// Where the ledger summaries of Kora-Fund's latest year are read: the
// dictionary folder (the installation root) and that year's data folder.
struct LedgerSummaryPlace {
    QString ddfPath;
    QString dataFolder;
};

// How far the account pass has come; the handler returns false to stop it.
struct NewYearProgress {
    int done = 0;        // accounts finished before this one
    int total = 0;       // accounts in the pass
    QString accountCode; // the account about to be processed
};
using NewYearProgressHandler = std::function<bool(const NewYearProgress &)>;

// Rolls the budget database into a new year: each account's budget history
// and new budget from Kora-Fund's ledger summaries, the summary tree from
// the latest fund year's copy, the year table shifted, the proposals reset.
// Each operation is all or nothing (a savepoint inside the caller's
// transaction); runNewBudgetYear below makes the four one. Each leaves one
// summary entry in the audit trail, not one per account.
class clsInitNewYear : public StoreBase {
public:
    clsInitNewYear();

    const QString &CurrentBudgetYear() const { return currentBudgetYear_; }
    void setCurrentBudgetYear(const QString &year) { currentBudgetYear_ = year; }
    void setProposedYear(const QString &year) { proposedYear_ = year; }
    void setClearLineItem(bool clear) { clearLineItem_ = clear; }
    // "O" the original budget, "A" the adjusted budget.
    void setBudgetFrom(const QString &from) { budgetFrom_ = from; }

    void setLedgerSummaries(LedgerSummaryPlace place) { ledgers_ = std::move(place); }
    // Called before each account; also where the user interface gets its turn.
    void setProgress(NewYearProgressHandler handler) { progress_ = std::move(handler); }
    // Whether the last InitSummaryBudgetFiles stopped because the handler asked.
    bool Cancelled() const { return cancelled_; }

    // History row and new budget of every account; accounts Kora-Fund no
    // longer has become historical. Clears the line items when asked.
    bool InitSummaryBudgetFiles();
    // The summary tree replaced by the latest fund year's copy.
    bool UpdateFolders();
    bool UpdateProposal();
    bool UpdateYearTable();

private:
    struct AccountRow;
    struct LedgerFigures;
    class LedgerReader;
    // Fills what the audit trail says of the pass.
    bool rollAccounts(QString &summary);
    // `retired` counts the accounts Kora-Fund no longer has.
    bool rollAccount(LedgerReader &ledgers, const AccountRow &account, int &retired);

    QString currentBudgetYear_;
    QString proposedYear_;
    bool clearLineItem_ = false;
    QString budgetFrom_ = QStringLiteral("O");
    LedgerSummaryPlace ledgers_;
    NewYearProgressHandler progress_;
    bool cancelled_ = false;
};

// The four steps in one transaction, committed only when all succeeded:
// otherwise rolled back with the failing step's report left in the store's
// error object. `status` hears each step's text before it runs.
bool runNewBudgetYear(clsInitNewYear &store, const std::function<void(const QString &)> &status);
