#include "workereditgrid.h"

#include "componentsummary.h"
#include "dialogstatus.h"
#include "discardchanges.h"
#include "gridentry.h"
#include "gridtwins.h"
#include "yearlabel.h"

#include "appglobals.h"
#include "classdialog.h"
#include "classdropdown.h"
#include "classgrid.h"
#include "classtoolbar.h"

#include <QApplication>
#include <QHash>

#include <algorithm>

namespace {

const QString fundsList = QStringLiteral("cboFunds");
const QString ledgersList = QStringLiteral("cboLedgers");
const QString gridName = QStringLiteral("AcctGrid");
const QString components[] = {QStringLiteral("CatA"), QStringLiteral("CatP"), QStringLiteral("CatC")};

bool sameText(const QString &a, const QString &b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

// A flag column keeps the text it holds while ticked; a newly ticked one gets its letter.
QString flagText(const QString &stored, bool ticked, const QString &letter)
{
    if (!ticked)
        return {};
    return stored.trimmed().isEmpty() ? letter : stored;
}

} // namespace

workerEditGrid::workerEditGrid(std::shared_ptr<DbConnection> connection, FundListReader funds)
    : connection_(std::move(connection)), readFunds_(std::move(funds))
{
    budget_.setAdoConnection(connection_);
    budget_.setAuditTask(AuditTask::ProposedBudget);
    // The grid's account-editing display type writes account codes.
    accounts_.setAdoConnection(connection_);
    accounts_.setAuditTask(AuditTask::AccountCodes);
}

workerEditGrid::~workerEditGrid() = default;

QString workerEditGrid::FundID() const
{
    return loadedFund_.isEmpty() ? fundId_ : loadedFund_;
}

QString workerEditGrid::LedgerID() const
{
    return loadedLedger_.isEmpty() ? ledgerId_ : loadedLedger_;
}

bool workerEditGrid::proposedBudget() const
{
    return displayType_ == QLatin1String("PB");
}

bool workerEditGrid::componentLedger() const
{
    return proposedBudget() && sameText(loadedFund_, QStringLiteral("A")) &&
           sameText(loadedLedger_, QStringLiteral("E"));
}

QString workerEditGrid::title() const
{
    return proposedBudget() ? QStringLiteral("Proposed Budget") : QStringLiteral("Account Codes");
}

void workerEditGrid::message(const QString &text, MsgIcon icon) const
{
    messages().messageBox({title(), text, MsgButtons::OK, icon, MsgAnswer::OK});
}

bool workerEditGrid::Initialise()
{
    funds_.clear();
    QString why;
    if (readFunds_(funds_, why))
        return true;
    messages().errorDialog({1, title(), why, false});
    return false;
}

void workerEditGrid::DoModalForm()
{
    if (!Initialise())
        return;
    classDialog dialog(*this, QApplication::activeWindow());
    dialog.Run(1);
}

void workerEditGrid::RefreshData()
{
    if (dialog_)
        dialog_->Reload();
}

classGrid &workerEditGrid::Grid() const
{
    return dialog_->Control(gridName).Grid();
}

QString workerEditGrid::selectedKey(const QString &list) const
{
    return dialog_->Control(list).DropDown().GetSelectedByKey(list);
}

void workerEditGrid::FormBuild(classDialog &dialog)
{
    dialog_ = &dialog;
    dialog.SetSize(14400, 7400);
    dialog.SetCaption(proposedBudget() ? QStringLiteral("Proposed Budget (Proposal ") + gstrProposalID + u')'
                                       : QStringLiteral("Account Codes"));
    if (proposedBudget()) {
        dialog.AddControl(DialogControlKind::Toolbar, QStringLiteral("tbrGrid"))
            .Toolbar()
            // No privilege key: whoever may open the grid may open an account's line items.
            .AddButton(QStringLiteral("tlbLnItem"), {}, {}, QStringLiteral("Line Item"), ToolbarButtonStyle::Default,
                       QStringLiteral("List"));
    }
    dialog.AddControl(DialogControlKind::ComboBox, fundsList, QStringLiteral("           Fund                   "))
        .Move(200, 0, 4000);
    DialogControl &ledgers = dialog.AddControl(DialogControlKind::ComboBox, ledgersList,
                                               QStringLiteral("           Ledger                 "));
    ledgers.Move(5200, 0, 4000);
    ledgers.AddItem(QStringLiteral("Revenue         "), QStringLiteral("R"));
    ledgers.AddItem(QStringLiteral("Expenditure     "), QStringLiteral("E"));
    dialog.AddControl(DialogControlKind::Label, QStringLiteral("lblLedger")).Move(200, 700, 6000);
    dialog.AddControl(DialogControlKind::Grid, gridName).Move(100, 1000, 14200, proposedBudget() ? 5550 : 6300);
    if (proposedBudget()) {
        dialog.AddControl(DialogControlKind::Label, QStringLiteral("lblComponents")).Move(200, 6650, 13500);
        dialog.AddControl(DialogControlKind::Label, QStringLiteral("lblNoComponent")).Move(200, 6980, 13500);
    }
    addStatusBar(dialog);
    // Escape, the close box and Cancel ask before edits are dropped.
    dialog.SetCloseAction(QStringLiteral("cmdClose"));
    buildColumns();

    classGrid &grid = Grid();
    auto *entry = new GridEntry(grid, QStringLiteral("AcctCode"), title());
    QObject::connect(&grid, &classGrid::cellChanged, entry,
                     [this](int row, const QString &key) { CellEdited(row, key); });
    QObject::connect(entry, &GridEntry::edited, entry, [this](int row, const QString &key) { CellEdited(row, key); });
}

void workerEditGrid::buildColumns()
{
    classGrid &grid = Grid();
    const auto amount = [](QString caption2, bool editable, bool total, int width = 1700) {
        GridColumnOptions options;
        options.caption2 = std::move(caption2);
        options.type = GridColumnType::Amount;
        options.editable = editable;
        options.total = total;
        options.widthTwips = width;
        return options;
    };
    GridColumnOptions hidden;
    hidden.hidden = true;
    const auto text = [](QString caption2, int width, bool editable = false, int maxLength = 0) {
        GridColumnOptions options;
        options.caption2 = std::move(caption2);
        options.widthTwips = width;
        options.editable = editable;
        options.maxLength = maxLength;
        return options;
    };
    grid.AddColumn(QStringLiteral("ID"), {}, hidden);
    if (proposedBudget()) {
        grid.AddColumn(QStringLiteral("AcctCode"), QStringLiteral("Account "), text(QStringLiteral("Code"), 1900));
        grid.AddColumn(QStringLiteral("Description"), {}, text({}, 3000));
        grid.AddColumn(QStringLiteral("CurrentBudget"), QStringLiteral("Current Budget"),
                       amount(budgetYearLabel(gstrBudgetYearID, gbCalendarYear), false, true));
        grid.AddColumn(QStringLiteral("Amount"), QStringLiteral("Proposed Budget "),
                       amount(budgetYearLabel(gstrProposedYearID, gbCalendarYear), true, true, 1900));
        grid.AddColumn(QStringLiteral("CatA"), QStringLiteral("Category"), amount(QStringLiteral("Admin"), true, true));
        grid.AddColumn(QStringLiteral("CatP"), QStringLiteral("Category"),
                       amount(QStringLiteral("Program"), true, true));
        grid.AddColumn(QStringLiteral("CatC"), QStringLiteral("Category"),
                       amount(QStringLiteral("Capital"), true, true));
        for (const QString &key : components)
            grid.AddTwinColumn(key);
        grid.AddTwinColumn(QStringLiteral("Amount"));
    } else {
        grid.AddColumn(QStringLiteral("Description"), {}, text({}, 3000));
        grid.AddColumn(QStringLiteral("AcctCode"), QStringLiteral("Account Code"), text({}, 1900));
        for (const QString &key : components) {
            GridColumnOptions check;
            check.type = GridColumnType::Check;
            check.caption2 = key.right(1);
            check.editable = true;
            check.widthTwips = 1100;
            grid.AddColumn(key, QStringLiteral("Category"), check);
        }
        for (const QString &key : components)
            grid.AddTwinColumn(key);
        grid.AddColumn(QStringLiteral("StateCode"), QStringLiteral("State Code"), text({}, 1700, true, 20));
        grid.AddTwinColumn(QStringLiteral("StateCode"));
        grid.AddColumn(QStringLiteral("HistCode"), QStringLiteral("Historical"),
                       text(QStringLiteral("Code"), 1100, true, 1));
        grid.AddTwinColumn(QStringLiteral("HistCode"));
        grid.AddColumn(QStringLiteral("Amount"), QStringLiteral("Projected Amount"), amount({}, true, true, 2000));
        grid.AddTwinColumn(QStringLiteral("Amount"));
    }
    grid.setGreenbar(true);
    grid.ShowTotals(true);
}

void workerEditGrid::LoadData(classDialog &dialog)
{
    classDropDown &funds = dialog.Control(fundsList).DropDown();
    if (funds.ListCount(fundsList) == 0) {
        for (const FundEntry &fund : funds_)
            funds.AddItem(fundsList, fund.id, fund.name);
    }
    const auto select = [&dialog](const QString &list, const QString &wanted) {
        classDropDown &drop = dialog.Control(list).DropDown();
        const int at = wanted.isEmpty() ? -1 : drop.KeyToIndex(list, wanted.trimmed().toUpper());
        if (drop.ListCount(list) > 0)
            drop.setListIndex(list, std::max(at, 0));
    };
    select(fundsList, FundID());
    select(ledgersList, LedgerID());
    loadLedger();
}

void workerEditGrid::applyLedgerLayout()
{
    classGrid &grid = Grid();
    dialog_->Control(QStringLiteral("lblLedger"))
        .setCaption(loadedLedger_ == u"R" ? QStringLiteral("Revenue Ledger ") : QStringLiteral("Expenditure Leger "));
    if (!proposedBudget())
        return;
    const bool split = componentLedger();
    for (const QString &key : components)
        grid.setColumnHidden(key, !split);
    grid.setColumnDataEdit(QStringLiteral("Amount"), !split);
    // Without the three components the names get their room.
    grid.ColumnWidth(QStringLiteral("Description"), split ? 3000 : 6400);
    dialog_->Control(QStringLiteral("lblComponents")).setVisible(split);
    dialog_->Control(QStringLiteral("lblNoComponent")).setVisible(split);
}

void workerEditGrid::loadLedger()
{
    classGrid &grid = Grid();
    setStatusText(*dialog_, QStringLiteral("Loading Records"));
    loadedFund_ = selectedKey(fundsList);
    loadedLedger_ = selectedKey(ledgersList);
    grid.ResetRows(0);
    applyLedgerLayout();
    setStatusText(*dialog_, QStringLiteral("Loading Data ..."));
    const auto rowStatus = [this](qint64 id) {
        setStatusText(*dialog_, QStringLiteral("Loading Record  Key:") + QString::number(id));
    };
    if (proposedBudget()) {
        std::vector<clsProposedBudgetItem> items;
        if (!readLedger(items, QStringLiteral("Cannot read the proposed budget of")))
            return;
        setStatusText(*dialog_, QStringLiteral("Loading Grid Data"));
        for (const clsProposedBudgetItem &item : items) {
            rowStatus(item.ID);
            AddGridRow(item);
        }
    } else {
        accounts_.AccountCode().setFundID(loadedFund_);
        accounts_.AccountCode().setLedgerID(loadedLedger_);
        std::vector<clsAccountCode> codes;
        if (!accounts_.GetChildren(QString(), codes)) {
            message(QStringLiteral("Cannot read the account codes of fund %1, ledger %2. (%3)")
                        .arg(loadedFund_, loadedLedger_, accounts_.Error().ErrorText()),
                    MsgIcon::Critical);
            return;
        }
        std::sort(codes.begin(), codes.end(),
                  [](const clsAccountCode &a, const clsAccountCode &b) { return a.AccountCode() < b.AccountCode(); });
        setStatusText(*dialog_, QStringLiteral("Loading Grid Data"));
        for (const clsAccountCode &code : codes) {
            rowStatus(code.ID());
            AddGridRow(code);
        }
    }
    grid.Refresh();
    showComponentSummary();
    setStatusText(*dialog_, QStringLiteral("Finished Loading Data"));
}

clsProposedBudgetItem workerEditGrid::proposalItem(std::int32_t accountId) const
{
    clsProposedBudgetItem item;
    item.ID = accountId;
    item.ProposalID = gstrProposalID;
    item.FundID = loadedFund_;
    item.LedgerID = loadedLedger_;
    return item;
}

Currency workerEditGrid::openComponents(int row) const
{
    const classGrid &grid = Grid();
    Currency sum;
    for (const QString &key : components) {
        if (!grid.CellLocked(row, key))
            sum += grid.GetAmount(row, key);
    }
    return sum;
}

void workerEditGrid::AddGridRow(const clsProposedBudgetItem &item)
{
    if (item.AccountCode.isEmpty())
        return;
    classGrid &grid = Grid();
    const int row = grid.AddRow();
    grid.SetCell(row, QStringLiteral("ID"), QString::number(item.ID));
    grid.SetCell(row, QStringLiteral("AcctCode"), item.AccountCode);
    grid.SetCell(row, QStringLiteral("Description"), item.AccountName);
    grid.SetCell(row, QStringLiteral("CurrentBudget"), item.CurrentBudget);
    for (const QString &key :
         {QStringLiteral("AcctCode"), QStringLiteral("Description"), QStringLiteral("CurrentBudget")})
        grid.setCellLocked(row, key, true);
    const Currency parts[] = {item.ProposedCatA, item.ProposedCatP, item.ProposedCatC};
    const bool takesPart[] = {item.CatA, item.CatP, item.CatC};
    for (int i = 0; i < 3; ++i)
        grid.SetCell(row, components[i], parts[i]);
    Currency amount = item.ProposedBudget;
    if (componentLedger()) {
        grid.setCellLocked(row, QStringLiteral("Amount"), true);
        for (int i = 0; i < 3; ++i)
            grid.setCellLocked(row, components[i], !takesPart[i]);
        amount = openComponents(row);
    }
    grid.SetCell(row, QStringLiteral("Amount"), amount);
    keepAsLoaded(grid, row);
}

void workerEditGrid::AddGridRow(const clsAccountCode &code)
{
    if (code.AccountCode().isEmpty())
        return;
    classGrid &grid = Grid();
    const int row = grid.AddRow();
    grid.SetCell(row, QStringLiteral("ID"), QString::number(code.ID()));
    grid.SetCell(row, QStringLiteral("Description"), code.AccountName());
    grid.SetCell(row, QStringLiteral("AcctCode"), code.AccountCode());
    grid.setCellLocked(row, QStringLiteral("Description"), true);
    grid.setCellLocked(row, QStringLiteral("AcctCode"), true);
    const QString flags[] = {code.CatAFlag(), code.CatPFlag(), code.CatCFlag()};
    for (int i = 0; i < 3; ++i)
        grid.SetCell(row, components[i], !flags[i].trimmed().isEmpty());
    grid.SetCell(row, QStringLiteral("StateCode"), code.StateCode());
    grid.SetCell(row, QStringLiteral("HistCode"), code.HistoricalCode());
    grid.SetCell(row, QStringLiteral("Amount"), code.ProjectedAmount());
    keepAsLoaded(grid, row);
}

void workerEditGrid::CellEdited(int row, const QString &key)
{
    if (!componentLedger() || std::find(std::begin(components), std::end(components), key) == std::end(components))
        return;
    Grid().SetCell(row, QStringLiteral("Amount"), openComponents(row));
    showComponentSummary();
}

void workerEditGrid::showComponentSummary()
{
    if (!componentLedger())
        return;
    const ComponentSummary summary = summariseComponents(Grid(), QStringLiteral("AcctCode"));
    dialog_->Control(QStringLiteral("lblComponents")).setCaption(summary.text());
    dialog_->Control(QStringLiteral("lblNoComponent")).setCaption(summary.warning());
}

std::vector<int> workerEditGrid::changedRows() const
{
    std::vector<int> rows;
    for (int row = 1; row <= Grid().CountRows(); ++row) {
        if (Grid().RowChanged(row))
            rows.push_back(row);
    }
    return rows;
}

void workerEditGrid::UserAction(classDialog &dialog, const QString &name)
{
    if (name == fundsList || name == ledgersList)
        switchLedger();
    else if (name == QLatin1String("tlbLnItem"))
        openLineItems();
    else if (name == QLatin1String("cmdClose") && mayDiscardChanges(dialog, Grid()))
        dialog.CloseDialog();
}

void workerEditGrid::switchLedger()
{
    if (selectedKey(fundsList) == loadedFund_ && selectedKey(ledgersList) == loadedLedger_)
        return;
    if (!mayDiscardChanges(*dialog_, Grid())) {
        for (const auto &[list, key] : {std::pair{fundsList, loadedFund_}, std::pair{ledgersList, loadedLedger_}}) {
            classDropDown &drop = dialog_->Control(list).DropDown();
            drop.setListIndex(list, drop.KeyToIndex(list, key));
        }
        return;
    }
    loadLedger();
}

void workerEditGrid::openLineItems()
{
    classGrid &grid = Grid();
    const int row = grid.CurrentRow();
    if (row == 0) {
        message(QStringLiteral("Please select an Line Item to edit!"), MsgIcon::Exclamation);
        return;
    }
    LineItemAccount account;
    account.ID = grid.GetItemValue(row, QStringLiteral("ID")).toInt();
    account.AccountCode = grid.GetItemValue(row, QStringLiteral("AcctCode"));
    account.AccountName = grid.GetItemValue(row, QStringLiteral("Description"));
    account.FundID = FundID();
    account.LedgerID = LedgerID();
    account.ProposalID = gstrProposalID;
    if (componentLedger()) {
        account.CatA = !grid.CellLocked(row, QStringLiteral("CatA"));
        account.CatP = !grid.CellLocked(row, QStringLiteral("CatP"));
        account.CatC = !grid.CellLocked(row, QStringLiteral("CatC"));
    }
    if (lineItem_) {
        lineItem_(account);
    } else {
        workerLineItem lines(connection_, account, dialog_);
        lines.DoModalForm();
    }
    // The line-item window may have forwarded its total into the proposal.
    Figures stored;
    if (storedFigures(row, stored)) {
        showStored(row, stored);
        showComponentSummary();
    }
}

bool workerEditGrid::storedFigures(int row, Figures &figures)
{
    budget_.ProposedBudgetItem() = proposalItem(Grid().GetItemValue(row, QStringLiteral("ID")).toInt());
    if (!budget_.Retrieve())
        return false;
    const clsProposedBudgetItem &item = budget_.ProposedBudgetItem();
    figures = {item.ProposedBudget, item.ProposedCatA, item.ProposedCatP, item.ProposedCatC};
    return true;
}

void workerEditGrid::showStored(int row, const Figures &figures)
{
    classGrid &grid = Grid();
    if (componentLedger()) {
        const Currency parts[] = {figures.catA, figures.catP, figures.catC};
        for (int i = 0; i < 3; ++i)
            grid.SetCell(row, components[i], parts[i]);
        grid.SetCell(row, QStringLiteral("Amount"), openComponents(row));
    } else {
        grid.SetCell(row, QStringLiteral("Amount"), figures.total);
    }
    keepAsLoaded(grid, row);
}

bool workerEditGrid::readLedger(std::vector<clsProposedBudgetItem> &items, const QString &failure)
{
    budget_.ProposedBudgetItem() = proposalItem(0);
    if (budget_.GetListNew(items))
        return true;
    message(
        failure +
            QStringLiteral(" fund %1, ledger %2. (%3)").arg(loadedFund_, loadedLedger_, budget_.Error().ErrorText()),
        MsgIcon::Critical);
    return false;
}

bool workerEditGrid::resolveConflicts(bool &reloaded)
{
    const classGrid &grid = Grid();
    // One read of the whole ledger as stored now; an account without a row stands at zero, as when loaded.
    std::vector<clsProposedBudgetItem> items;
    if (!readLedger(items, QStringLiteral("Cannot check what is stored for")))
        return false;
    QHash<std::int32_t, const clsProposedBudgetItem *> byAccount;
    for (const clsProposedBudgetItem &item : items)
        byAccount.insert(item.ID, &item);
    std::vector<std::pair<int, Figures>> conflicts;
    for (const int row : changedRows()) {
        Figures stored;
        if (const clsProposedBudgetItem *item = byAccount.value(grid.GetItemValue(row, QStringLiteral("ID")).toInt()))
            stored = {item->ProposedBudget, item->ProposedCatA, item->ProposedCatP, item->ProposedCatC};
        const bool moved = componentLedger() ? stored.catA != grid.GetAmount(row, QStringLiteral("OrigCatA")) ||
                                                   stored.catP != grid.GetAmount(row, QStringLiteral("OrigCatP")) ||
                                                   stored.catC != grid.GetAmount(row, QStringLiteral("OrigCatC"))
                                             : stored.total != grid.GetAmount(row, QStringLiteral("OrigAmount"));
        if (moved)
            conflicts.emplace_back(row, stored);
    }
    if (conflicts.empty())
        return true;
    QStringList codes;
    for (const auto &[row, stored] : conflicts)
        codes << grid.GetItemValue(row, QStringLiteral("AcctCode"));
    const MsgAnswer answer = messages().messageBox(
        {title(),
         QStringLiteral("Someone else has saved these accounts since you loaded them:\n") +
             codes.join(QStringLiteral(", ")) +
             QStringLiteral("\n\nYes: save your figures over theirs.\nNo: show their figures for these accounts "
                            "(your changes to them are dropped) and save your other changes.\nCancel: save nothing."),
         MsgButtons::YesNoCancel, MsgIcon::Exclamation, MsgAnswer::Cancel});
    if (answer == MsgAnswer::Cancel)
        return false;
    if (answer == MsgAnswer::No) {
        for (const auto &[row, stored] : conflicts)
            showStored(row, stored);
        showComponentSummary();
        reloaded = true;
    }
    return true;
}

bool workerEditGrid::SaveData(classDialog &)
{
    setStatusText(*dialog_, QStringLiteral("Updating Records. Please wait..."));
    bool reloaded = false;
    if (proposedBudget() && !resolveConflicts(reloaded)) {
        setStatusText(*dialog_, {});
        return false;
    }
    if (proposedBudget())
        budget_.expectWrites(gstrProposalID, changedAccounts());
    // Rows whose stored figures the user took back are no longer changed and are not written.
    const SaveResult result = saveChangedRows(*dialog_, budget_, Grid(), [this](int row) {
        return proposedBudget() ? UpdateBudget(row) : UpdateAccount(row);
    });
    if (result == SaveResult::TransactionFailed)
        message(QStringLiteral("Cannot save: ") + budget_.Error().ErrorText(), MsgIcon::Critical);
    return result == SaveResult::Saved && !reloaded;
}

std::vector<std::int32_t> workerEditGrid::changedAccounts() const
{
    std::vector<std::int32_t> ids;
    for (const int row : changedRows()) {
        const QString id = Grid().GetItemValue(row, QStringLiteral("ID")).trimmed();
        if (!id.isEmpty())
            ids.push_back(id.toInt());
    }
    return ids;
}

bool workerEditGrid::UpdateBudget(int row)
{
    const classGrid &grid = Grid();
    if (grid.GetItemValue(row, QStringLiteral("ID")).trimmed().isEmpty())
        return true;
    // A fresh item: a missing row must not be inserted with the previous row's figures.
    budget_.ProposedBudgetItem() = proposalItem(grid.GetItemValue(row, QStringLiteral("ID")).toInt());
    const bool exists = budget_.Retrieve();
    clsProposedBudgetItem &item = budget_.ProposedBudgetItem();
    if (componentLedger()) {
        // The total is left as stored: for these accounts the grid writes only the components.
        item.ProposedCatA = grid.GetAmount(row, QStringLiteral("CatA"));
        item.ProposedCatP = grid.GetAmount(row, QStringLiteral("CatP"));
        item.ProposedCatC = grid.GetAmount(row, QStringLiteral("CatC"));
    } else {
        item.ProposedBudget = grid.GetAmount(row, QStringLiteral("Amount"));
    }
    if (exists ? budget_.UpdateBatch() : budget_.AddBatch())
        return true;
    message(QStringLiteral("Cannot Update Account Code: ") + grid.GetItemValue(row, QStringLiteral("AcctCode")) +
                QStringLiteral(". (") + budget_.Error().ErrorText() + u')',
            MsgIcon::Critical);
    return false;
}

bool workerEditGrid::UpdateAccount(int row)
{
    const classGrid &grid = Grid();
    const QString code = grid.GetItemValue(row, QStringLiteral("AcctCode"));
    accounts_.AccountCode().setID(grid.GetItemValue(row, QStringLiteral("ID")).toLongLong());
    if (!accounts_.Retrieve()) {
        message(QStringLiteral("Cannot Retrieve Account Code: ") + code + QStringLiteral(". error:") +
                    accounts_.Error().ErrorText(),
                MsgIcon::Critical);
        return false;
    }
    clsAccountCode &account = accounts_.AccountCode();
    account.setStateCode(grid.GetItemValue(row, QStringLiteral("StateCode")));
    account.setHistoricalCode(grid.GetItemValue(row, QStringLiteral("HistCode")));
    account.setProjectedAmount(grid.GetAmount(row, QStringLiteral("Amount")));
    const auto ticked = [&](const QString &key) { return isChecked(grid, row, key); };
    account.setCatAFlag(flagText(account.CatAFlag(), ticked(QStringLiteral("CatA")), QStringLiteral("A")));
    account.setCatPFlag(flagText(account.CatPFlag(), ticked(QStringLiteral("CatP")), QStringLiteral("P")));
    account.setCatCFlag(flagText(account.CatCFlag(), ticked(QStringLiteral("CatC")), QStringLiteral("C")));
    if (accounts_.UpdateBatch())
        return true;
    message(QStringLiteral("Cannot Update Account Code: ") + code + QStringLiteral(". (") +
                accounts_.Error().ErrorText() + u')',
            MsgIcon::Critical);
    return false;
}
