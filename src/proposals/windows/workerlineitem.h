#pragma once

#include "currency.h"
#include "dialogworker.h"
#include "line.h"
#include "proposedbudgetitem.h"

#include <QPointer>

#include <memory>
#include <optional>
#include <set>

class DbConnection;
class classGrid;

// The account whose line items the window shows, as the budget grid hands it over.
struct LineItemAccount {
    std::int32_t ID = 0;
    QString AccountCode;
    QString AccountName;
    QString FundID;
    QString LedgerID;
    // Whether the account takes part in the administrative, program and capital component.
    bool CatA = false;
    bool CatP = false;
    bool CatC = false;
    // The proposal the lines' total is forwarded into.
    QString ProposalID;
};

// The numbered lines (a text and an amount each) that detail one account's
// amount: add, change and delete them, and forward their total into the
// account's figures in the proposal. DoModalForm returns when the window
// closes; GetTotal and Forwarded then tell the caller what to show.
class workerLineItem : public DialogWorker, public ModalWorker {
public:
    workerLineItem(std::shared_ptr<DbConnection> connection, LineItemAccount account, QWidget *parent = nullptr);

    static QString FormType() { return QStringLiteral("Worker"); }

    std::int32_t AcctId() const { return account_.ID; }
    const QString &AcctCode() const { return account_.AccountCode; }
    bool FwdCatA() const { return account_.CatA; }
    bool FwdCatP() const { return account_.CatP; }
    bool FwdCatC() const { return account_.CatC; }

    void DoModalForm() override;
    void RefreshData() override;
    // Writes one grid row: the line is updated when it exists, added when not.
    // Inside the caller's transaction; a failure is shown and gives false.
    bool UpdateLineItem(int row);
    // The lines' total as the grid last showed it.
    Currency GetTotal() const { return total_; }
    // The account's figures in the proposal after the last successful forward.
    const std::optional<clsProposedBudgetItem> &Forwarded() const { return forwarded_; }

    void FormBuild(classDialog &dialog) override;
    void LoadData(classDialog &dialog) override;
    void UserAction(classDialog &dialog, const QString &name) override;
    bool SaveData(classDialog &dialog) override;

private:
    classGrid &grid() const;
    void addLine();
    void deleteLine();
    void forwardTotal();
    void close(classDialog &dialog);
    QString caption() const;

    std::shared_ptr<DbConnection> connection_;
    LineItemAccount account_;
    QWidget *parent_;
    clsLine lines_;
    QPointer<classDialog> dialog_;  // while the window is open
    std::set<std::int32_t> stored_; // the line numbers the database holds
    Currency total_;
    std::optional<clsProposedBudgetItem> forwarded_;
};
