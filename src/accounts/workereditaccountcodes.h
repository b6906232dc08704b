#pragma once

#include "classdialog.h"
#include "dialogworker.h"
#include "funddataplace.h"
#include "objectfunds.h"
#include "objecttransactions.h"
#include "proposedbudget.h"

#include <QPointer>
#include <QString>

#include <memory>
#include <vector>

class DbConnection;
class QWidget;

// The "Account Code Detail" window: one account code of a fund and ledger at
// a time, with its current and proposed budget and, below, the account's
// detail transactions from Kora-Fund with a running balance. Previous and
// Next step through the fund and ledger's codes in code order; Find jumps to
// a code.
class workerEditAccountCodes : public ModalWorker, public DialogWorker {
public:
    workerEditAccountCodes(std::shared_ptr<DbConnection> connection, QString proposalId, FundDataPlace place,
                           QWidget *parent = nullptr);
    ~workerEditAccountCodes() override;

    // From the application context: the shared connection, the active
    // proposal and the current fund-accounting year.
    static std::unique_ptr<workerEditAccountCodes> fromAppContext();

    static QString FormType() { return QStringLiteral("Worker"); }
    // The fund and ledger shown; set before DoModalForm to open on them
    // (otherwise the first fund and the expenditure ledger).
    QString FundID;
    QString LedgerID;

    // Opens the stores and the Kora-Fund files; says why and runs nothing when
    // one fails. Then runs the dialog.
    void DoModalForm() override;
    void RefreshData() override;
    // The first half of DoModalForm: false (the user told why) when a store
    // or file cannot be opened.
    bool InitStores();

    // The accounts of the fund and ledger shown, in code order, and the one shown (-1: none).
    const std::vector<clsProposedBudgetItem> &Accounts() const { return accounts_; }
    int CurrentIndex() const { return current_; }

    void FormBuild(classDialog &dialog) override;
    void LoadData(classDialog &dialog) override;
    void LockControls(classDialog &dialog) override;
    void UserAction(classDialog &dialog, const QString &name) override;

private:
    void loadFunds(classDialog &dialog);
    void readChoices(classDialog &dialog);
    // The accounts of the fund and ledger chosen, the first one shown.
    void reload(classDialog &dialog);
    bool loadAccounts();
    void showAccount(classDialog &dialog, int index);
    void fillGrid(classDialog &dialog);
    void buildColumns(classDialog &dialog);
    void step(classDialog &dialog, int by);
    void find(classDialog &dialog);
    void status(classDialog &dialog, const QString &text);

    QPointer<QWidget> parent_;
    FundDataPlace place_;
    QString proposalId_;
    clsProposedBudget budgets_;
    classObjectFunds funds_;
    classObjectTransactions transactions_;
    std::vector<FundFields> fundList_;
    std::vector<clsProposedBudgetItem> accounts_;
    int current_ = -1;
    QString columnsLedger_;        // the ledger whose columns the grid has
    QPointer<classDialog> dialog_; // while DoModalForm runs, for RefreshData
};
