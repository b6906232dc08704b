#include "workereditaccountcodes.h"

#include "adoconnection.h"
#include "appglobals.h"
#include "classdialog.h"
#include "classdropdown.h"
#include "classgrid.h"
#include "classstatusbar.h"
#include "classtoolbar.h"
#include "messageservice.h"
#include "transactiondetail.h"

#include <QApplication>
#include <QHash>

namespace {

const QString windowCaption = QStringLiteral("Account Code Detail");
const QString productCaption = QStringLiteral("Kora-Budget");
const QString statusPanel = QStringLiteral("Status");

void tell(const QString &text, MsgIcon icon = MsgIcon::Exclamation)
{
    messages().messageBox({productCaption, text, MsgButtons::OK, icon, MsgAnswer::OK});
}

classGrid &grid(classDialog &dialog)
{
    return dialog.Control(QStringLiteral("AcctGrid")).Grid();
}

} // namespace

workerEditAccountCodes::workerEditAccountCodes(std::shared_ptr<DbConnection> connection, QString proposalId,
                                               FundDataPlace place, QWidget *parent)
    : parent_(parent), place_(std::move(place)), proposalId_(std::move(proposalId))
{
    budgets_.setAdoConnection(std::move(connection));
}

workerEditAccountCodes::~workerEditAccountCodes() = default;

std::unique_ptr<workerEditAccountCodes> workerEditAccountCodes::fromAppContext()
{
    return std::make_unique<workerEditAccountCodes>(gadoConnection ? gadoConnection->dbConnection() : nullptr,
                                                    gstrProposalID, currentFundDataPlace(),
                                                    QApplication::activeWindow());
}

bool workerEditAccountCodes::InitStores()
{
    if (transactions_.Init(place_.ddfPath, place_.dataFolder) != 0) {
        tell(QStringLiteral("Cannot initialize Detail Transactions. error:") + transactions_.ErrorMsg(),
             MsgIcon::Critical);
        return false;
    }
    fundList_.clear();
    if (funds_.Init(place_.ddfPath, place_.dataFolder) != 0 || funds_.GetList(fundList_) != 0) {
        tell(QStringLiteral("Cannot initialize funds. error:") + funds_.Message(), MsgIcon::Critical);
        return false;
    }
    return true;
}

void workerEditAccountCodes::DoModalForm()
{
    if (!InitStores())
        return;
    classDialog dialog(*this, parent_);
    dialog_ = &dialog;
    dialog.Run(1);
    dialog_ = nullptr;
}

void workerEditAccountCodes::RefreshData()
{
    if (dialog_)
        dialog_->Reload();
}

void workerEditAccountCodes::FormBuild(classDialog &dialog)
{
    dialog.SetSize(15700, 8000);
    dialog.SetCaption(windowCaption);
    dialog.ShowStandardButtons(false);
    dialog.SetCloseAction(QStringLiteral("cmdClose"));

    classToolbar &toolbar = dialog.AddControl(DialogControlKind::Toolbar, QStringLiteral("tlbDetail")).Toolbar();
    toolbar.AddButton(QStringLiteral("tlbPrevious"), {}, {}, QStringLiteral("Previous Record"),
                      ToolbarButtonStyle::Default, QStringLiteral("Previous"));
    toolbar.AddButton(QStringLiteral("tlbNext"), {}, {}, QStringLiteral("Next"), ToolbarButtonStyle::Default,
                      QStringLiteral("Next"));
    toolbar.AddSeparator();
    toolbar.AddButton(QStringLiteral("tlbFind"), {}, {}, QStringLiteral("Find Account Code"),
                      ToolbarButtonStyle::Default, QStringLiteral("Find"));

    dialog.AddControl(DialogControlKind::ComboBox, QStringLiteral("cboFunds"), QStringLiteral("Fund"))
        .Move(120, 120, 4200);
    dialog.AddControl(DialogControlKind::ComboBox, QStringLiteral("cboLedgers"), QStringLiteral("Ledger"))
        .Move(4560, 120, 2600);
    dialog.AddControl(DialogControlKind::TextBox, QStringLiteral("txtAcctCode"), QStringLiteral("Account Code"))
        .Move(120, 840, 2400);
    dialog.AddControl(DialogControlKind::TextBox, QStringLiteral("txtDescription"), QStringLiteral("Description"))
        .Move(2640, 840, 6700);
    dialog.AddControl(DialogControlKind::TextBox, QStringLiteral("txtCurrentBudget"), QStringLiteral("Current Budget"))
        .Move(9480, 840, 3000);
    dialog
        .AddControl(DialogControlKind::TextBox, QStringLiteral("txtProposedBudget"), QStringLiteral("Proposed Budget"))
        .Move(12600, 840, 3000);

    DialogControl &acctGrid = dialog.AddControl(DialogControlKind::Grid, QStringLiteral("AcctGrid"));
    acctGrid.Move(120, 1620, 15480, 5760);
    classGrid &transactions = acctGrid.Grid();
    transactions.setSingleSelection(true);
    transactions.setHeaderHeight(480);

    dialog.AddControl(DialogControlKind::CommandButton, QStringLiteral("cmdClose"), QStringLiteral("Close"))
        .Move(14400, 7500, 1200, 400);
    dialog.AddControl(DialogControlKind::StatusBar, QStringLiteral("sbrStatus"))
        .Statusbar()
        .AddPanel(0, statusPanel, {}, {}, PanelAlignment::Left, PanelAutoSize::Spring);
}

void workerEditAccountCodes::loadFunds(classDialog &dialog)
{
    DialogControl &fundBox = dialog.Control(QStringLiteral("cboFunds"));
    classDropDown &funds = fundBox.DropDown();
    funds.Clear(fundBox.Name());
    for (const FundFields &fund : fundList_)
        funds.AddItem(fundBox.Name(), fund.ID, fund.Name);
    const int wanted = funds.KeyToIndex(fundBox.Name(), FundID.trimmed().toUpper());
    funds.setListIndex(fundBox.Name(), wanted >= 0 ? wanted : (fundList_.empty() ? -1 : 0));

    DialogControl &ledgerBox = dialog.Control(QStringLiteral("cboLedgers"));
    classDropDown &ledgers = ledgerBox.DropDown();
    ledgers.Clear(ledgerBox.Name());
    ledgers.AddItem(ledgerBox.Name(), QStringLiteral("R"), QStringLiteral("Revenue"));
    ledgers.AddItem(ledgerBox.Name(), QStringLiteral("E"), QStringLiteral("Expenditure"));
    const int ledger = ledgers.KeyToIndex(ledgerBox.Name(), LedgerID.trimmed().toUpper());
    ledgers.setListIndex(ledgerBox.Name(), ledger >= 0 ? ledger : 1);
}

void workerEditAccountCodes::readChoices(classDialog &dialog)
{
    const QString funds = QStringLiteral("cboFunds");
    const QString ledgers = QStringLiteral("cboLedgers");
    FundID = dialog.Control(funds).DropDown().GetSelectedByKey(funds);
    LedgerID = dialog.Control(ledgers).DropDown().GetSelectedByKey(ledgers);
}

void workerEditAccountCodes::LoadData(classDialog &dialog)
{
    status(dialog, QStringLiteral("Loading Records"));
    loadFunds(dialog);
    reload(dialog);
}

void workerEditAccountCodes::reload(classDialog &dialog)
{
    readChoices(dialog);
    status(dialog, QStringLiteral("Loading Data ..."));
    loadAccounts();
    showAccount(dialog, accounts_.empty() ? -1 : 0);
}

void workerEditAccountCodes::LockControls(classDialog &dialog)
{
    for (const char *name : {"txtAcctCode", "txtDescription", "txtCurrentBudget", "txtProposedBudget"})
        dialog.Control(QLatin1String(name)).setLocked(true);
}

// Every live account of the fund and ledger, with the proposed budget the
// active proposal gives it (0 where it gives none).
bool workerEditAccountCodes::loadAccounts()
{
    accounts_.clear();
    current_ = -1;
    if (FundID.isEmpty() || LedgerID.isEmpty())
        return true;
    clsProposedBudgetItem &selection = budgets_.ProposedBudgetItem();
    selection = {};
    selection.FundID = FundID;
    selection.LedgerID = LedgerID;
    selection.ProposalID = proposalId_;
    std::vector<clsProposedBudgetItem> proposed;
    if (!budgets_.GetListNew(accounts_) || !budgets_.GetList(proposed)) {
        accounts_.clear();
        messages().errorDialog({1, windowCaption, budgets_.Error().ErrorText()});
        return false;
    }
    // The general fund's expenditure list carries components, not the total.
    QHash<std::int32_t, Currency> totals;
    for (const clsProposedBudgetItem &item : proposed)
        totals.insert(item.ID, item.ProposedBudget);
    for (clsProposedBudgetItem &account : accounts_)
        account.ProposedBudget = totals.value(account.ID);
    return true;
}

void workerEditAccountCodes::showAccount(classDialog &dialog, int index)
{
    current_ = index;
    const auto set = [&](const char *name, const QString &text) { dialog.Control(QLatin1String(name)).setText(text); };
    if (index < 0) {
        set("txtAcctCode", {});
        set("txtDescription", QStringLiteral("No Record found!"));
        set("txtCurrentBudget", {});
        set("txtProposedBudget", {});
    } else {
        const clsProposedBudgetItem &account = accounts_[std::size_t(index)];
        set("txtAcctCode", account.AccountCode);
        set("txtDescription", account.AccountName);
        set("txtCurrentBudget", account.CurrentBudget.toDisplayText());
        set("txtProposedBudget", account.ProposedBudget.toDisplayText());
    }
    fillGrid(dialog);
}

void workerEditAccountCodes::buildColumns(classDialog &dialog)
{
    if (columnsLedger_ == LedgerID)
        return;
    classGrid &transactions = grid(dialog);
    transactions.Reset();
    for (const DetailColumn &column : detailColumns(LedgerID.isEmpty() ? QChar() : LedgerID.front())) {
        GridColumnOptions options;
        options.caption2 = QLatin1String(column.caption2);
        options.widthTwips = column.widthTwips;
        const bool amount = column.source == nullptr;
        options.type = amount ? GridColumnType::Amount : GridColumnType::Text;
        options.total = column.balanceSign != 0;
        transactions.AddColumn(QLatin1String(column.key), QLatin1String(column.caption), options);
    }
    transactions.ShowTotals(true);
    columnsLedger_ = LedgerID;
}

void workerEditAccountCodes::fillGrid(classDialog &dialog)
{
    status(dialog, QStringLiteral("Loading Grid Data"));
    buildColumns(dialog);
    classGrid &transactions = grid(dialog);
    transactions.ResetRows();
    std::vector<TransactionFields> records;
    if (current_ >= 0) {
        const clsProposedBudgetItem &account = accounts_[std::size_t(current_)];
        const int read = transactions_.GetListSpecificAccountCode(LedgerID, FundID, account.AccountCode, records);
        if (read != 0) {
            tell(QStringLiteral("Error reading transaction file. error: ") + transactions_.ErrorMsg());
            records.clear();
        }
    }
    QString failure;
    const QChar ledger = LedgerID.isEmpty() ? QChar() : LedgerID.front();
    const auto rows = detailRows(ledger, records, failure);
    if (!rows)
        tell(QStringLiteral("Error reading transaction file. error: ") + failure);
    const QString balanceKey = detailBalanceKey(ledger);
    if (rows) {
        transactions.ResetRows(int(rows->size()));
        int row = 0;
        for (const DetailRow &detail : *rows) {
            ++row;
            for (const auto &[key, text] : detail.texts)
                transactions.SetCell(row, key, text);
            for (const auto &[key, amount] : detail.amounts)
                transactions.SetCell(row, key, amount);
            transactions.SetCell(row, balanceKey, detail.balance);
        }
    }
    transactions.RefreshTotals();
    status(dialog, QStringLiteral("Finished Loading Data"));
}

void workerEditAccountCodes::step(classDialog &dialog, int by)
{
    const int target = current_ + by;
    if (current_ < 0 || target < 0 || target >= int(accounts_.size())) {
        status(dialog, accounts_.empty() ? QStringLiteral("No account codes in this fund and ledger.")
                       : by < 0          ? QStringLiteral("Already at the first account code of the fund and ledger.")
                                         : QStringLiteral("Already at the last account code of the fund and ledger."));
        return;
    }
    showAccount(dialog, target);
}

void workerEditAccountCodes::find(classDialog &dialog)
{
    const auto answer =
        messages().inputBox(QStringLiteral("Please enter the Account Code you want to search."), productCaption, {});
    if (!answer)
        return;
    const QString code = answer->trimmed();
    for (std::size_t i = 0; i < accounts_.size(); ++i) {
        if (accounts_[i].AccountCode.trimmed().compare(code, Qt::CaseInsensitive) == 0) {
            showAccount(dialog, int(i));
            return;
        }
    }
    tell(QStringLiteral("No Account code match!"), MsgIcon::Information);
}

void workerEditAccountCodes::UserAction(classDialog &dialog, const QString &name)
{
    if (name == QLatin1String("tlbPrevious")) {
        step(dialog, -1);
    } else if (name == QLatin1String("tlbNext")) {
        step(dialog, +1);
    } else if (name == QLatin1String("tlbFind")) {
        find(dialog);
    } else if (name == QLatin1String("cboFunds") || name == QLatin1String("cboLedgers")) {
        reload(dialog);
    } else if (name == QLatin1String("cmdClose")) {
        dialog.CloseDialog();
    }
}

void workerEditAccountCodes::status(classDialog &dialog, const QString &text)
{
    DialogControl &bar = dialog.Control(QStringLiteral("sbrStatus"));
    bar.Statusbar().setPanelText(statusPanel, text);
    // Loading runs without returning to the event loop: show the text now.
    if (bar.field()->isVisible())
        bar.field()->repaint();
}
