#include "fundbalanceswindow.h"

#include "dialogstatus.h"
#include "gridtwins.h"
#include "yearlabel.h"

#include "appglobals.h"
#include "classdialog.h"
#include "classgrid.h"
#include "messageservice.h"

#include <algorithm>

namespace {
const QString title = QStringLiteral("Fund Balances");
const QString gridName = QStringLiteral("AcctGrid");
const QString fundKey = QStringLiteral("Fund");
const QString currentKey = QStringLiteral("CurrentBalance");
const QString previousKey = QStringLiteral("PreviousBalance");

void showFailure(const QString &text)
{
    messages().messageBox({title, text, MsgButtons::OK, MsgIcon::Critical, MsgAnswer::OK});
}
} // namespace

workerFundBalances::workerFundBalances(std::shared_ptr<DbConnection> connection, QString ddfPath,
                                       QString fundDataFolder, QWidget *parent)
    : ddfPath_(std::move(ddfPath)), fundDataFolder_(std::move(fundDataFolder)), parent_(parent)
{
    store_.setAdoConnection(std::move(connection));
    store_.setAuditTask(AuditTask::FundBalances);
}

bool workerFundBalances::Initialise()
{
    if (funds_.Init(ddfPath_, fundDataFolder_) == 0)
        return true;
    messages().errorDialog({1, title, QStringLiteral("Cannot initialize Funds table. ") + funds_.Message(), false});
    return false;
}

void workerFundBalances::DoModalForm()
{
    if (!Initialise())
        return;
    classDialog dialog(*this, parent_);
    dialog.Run(1);
}

void workerFundBalances::FormBuild(classDialog &dialog)
{
    dialog.SetSize(6200, 5400);
    dialog.SetCaption(title);
    dialog
        .AddControl(DialogControlKind::Label, QStringLiteral("lblHeading"),
                    QStringLiteral("The balance of each fund at the end of the year"))
        .Move(50, 350, 6000);
    classGrid &grid = dialog.AddControl(DialogControlKind::Grid, gridName).Grid();
    dialog.Control(gridName).Move(50, 800, 6000, 4400);
    GridColumnOptions fund;
    fund.widthTwips = 1000;
    grid.AddColumn(fundKey, QStringLiteral("Fund"), fund);
    GridColumnOptions amount;
    amount.type = GridColumnType::Amount;
    amount.widthTwips = 2400;
    amount.caption2 = budgetYearLabel(gstrBudgetYearID, gbCalendarYear);
    addColumnWithTwin(grid, currentKey, QStringLiteral("Current Balance"), amount);
    amount.caption2 = budgetYearLabel(previousBudgetYearId(gstrBudgetYearID), gbCalendarYear);
    addColumnWithTwin(grid, previousKey, QStringLiteral("Previous Balance"), amount);
    addStatusBar(dialog);
}

bool workerFundBalances::readBalances(std::vector<clsFundBalanceItem> &items)
{
    std::vector<FundFields> funds;
    if (const int status = funds_.GetList(funds); status != 0) {
        messages().errorDialog({4, title, QStringLiteral("Cannot read the funds. ") + funds_.Message(), false});
        return false;
    }
    if (!store_.GetList(items)) {
        messages().errorDialog({1, title, store_.Error().ErrorText(), false});
        return false;
    }
    for (const FundFields &fund : funds) {
        const QString id = fund.ID.trimmed();
        const bool kept = std::any_of(items.begin(), items.end(),
                                      [&](const clsFundBalanceItem &item) { return item.Fund.trimmed() == id; });
        if (!kept)
            items.push_back({id, {}, {}, fund.Name});
    }
    return true;
}

void workerFundBalances::LoadData(classDialog &dialog)
{
    setStatusText(dialog, QStringLiteral("Loading Records"));
    classGrid &grid = dialog.Control(gridName).Grid();
    grid.ResetRows(0);
    setStatusText(dialog, QStringLiteral("Loading Data ..."));
    std::vector<clsFundBalanceItem> items;
    if (!readBalances(items))
        return;
    setStatusText(dialog, QStringLiteral("Loading Grid Data"));
    for (const clsFundBalanceItem &item : items) {
        const int row = grid.AddRow();
        grid.SetCell(row, fundKey, item.Fund.trimmed());
        grid.SetCell(row, currentKey, item.CurrentYearBalance.toSqlText());
        grid.SetCell(row, previousKey, item.PreviousYearBalance.toSqlText());
        keepAsLoaded(grid, row);
    }
    setStatusText(dialog, QStringLiteral("Finished Loading Data"));
}

bool workerFundBalances::SaveData(classDialog &dialog)
{
    classGrid &grid = dialog.Control(gridName).Grid();
    const SaveResult result =
        saveChangedRows(dialog, store_, grid, [&](int row) { return UpdateFundBalance(grid, row); });
    if (result == SaveResult::TransactionFailed)
        messages().errorDialog({1, title, store_.Error().ErrorText(), false});
    return result == SaveResult::Saved;
}

bool workerFundBalances::UpdateFundBalance(const classGrid &grid, int row)
{
    clsFundBalanceItem &item = store_.FundBalanceItem();
    item.Fund = grid.GetItemValue(row, fundKey);
    const bool stored = store_.Retrieve();
    item.CurrentYearBalance = grid.GetAmount(row, currentKey);
    item.PreviousYearBalance = grid.GetAmount(row, previousKey);
    if (stored) {
        if (store_.UpdateBatch())
            return true;
        showFailure(QStringLiteral("Error updating Fund Balance: ") + store_.Error().ErrorText() + u')');
    } else {
        if (store_.AddBatch())
            return true;
        showFailure(QStringLiteral("Error adding Fund Balance: ") + store_.Error().ErrorText() + u')');
    }
    return false;
}
