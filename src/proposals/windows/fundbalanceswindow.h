#pragma once

#include "dialogworker.h"
#include "fundbalance.h"
#include "objectfunds.h"

#include <QPointer>
#include <QWidget>

#include <memory>

class classGrid;

// Fund Balances: the current and previous year's balance of every fund of
// the fund-accounting product, whether or not the budget has a row for it
// yet, and of every fund the budget still keeps a row for. OK writes the
// changed rows in one transaction.
class workerFundBalances : public DialogWorker, public ModalWorker {
public:
    // The funds are read from the fund-accounting files under `fundDataFolder`
    // with the dictionary at `ddfPath`.
    workerFundBalances(std::shared_ptr<DbConnection> connection, QString ddfPath, QString fundDataFolder,
                       QWidget *parent = nullptr);

    static QString FormType() { return QStringLiteral("Worker"); }

    // Opens the funds file; false, after telling the user, when it cannot be.
    bool Initialise();
    void DoModalForm() override;

    void FormBuild(classDialog &dialog) override;
    void LoadData(classDialog &dialog) override;
    bool SaveData(classDialog &dialog) override;

private:
    // The balance items to show: the budget's rows, then a zero row for each
    // fund the budget has none for. False after telling the user what failed.
    bool readBalances(std::vector<clsFundBalanceItem> &items);
    bool UpdateFundBalance(const classGrid &grid, int row);

    clsFundBalance store_;
    classObjectFunds funds_;
    QString ddfPath_;
    QString fundDataFolder_;
    QPointer<QWidget> parent_;
};
