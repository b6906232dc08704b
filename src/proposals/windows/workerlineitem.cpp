#include "workerlineitem.h"

#include "classdialog.h"
#include "classgrid.h"
#include "classtoolbar.h"
#include "dialogstatus.h"
#include "discardchanges.h"
#include "gridtwins.h"
#include "messageservice.h"
#include "proposedbudget.h"

#include <algorithm>

namespace {

const QString gridName = QStringLiteral("AcctGrid");
const QString numberKey = QStringLiteral("LineItemNumber");
const QString textKey = QStringLiteral("LineItemText");
const QString amountKey = QStringLiteral("Amount");
constexpr int lineTextLength = 60;

} // namespace

workerLineItem::workerLineItem(std::shared_ptr<DbConnection> connection, LineItemAccount account, QWidget *parent)
    : connection_(std::move(connection)), account_(std::move(account)), parent_(parent)
{
    lines_.setAdoConnection(connection_);
    lines_.setAuditTask(AuditTask::LineItems);
}

QString workerLineItem::caption() const
{
    return QStringLiteral("Line Item for Account Code - ") + account_.AccountCode;
}

classGrid &workerLineItem::grid() const
{
    return dialog_->Control(gridName).Grid();
}

void workerLineItem::DoModalForm()
{
    classDialog dialog(*this, parent_);
    dialog.setObjectName(QStringLiteral("mclsDialog"));
    dialog.Run(1);
}

void workerLineItem::RefreshData()
{
    if (dialog_)
        dialog_->Reload();
}

void workerLineItem::FormBuild(classDialog &dialog)
{
    dialog_ = &dialog;
    dialog.SetSize(7800, 4300);
    dialog.SetCaption(caption());
    dialog.ShowStandardButtons(false);
    // Escape and the close box ask before edits are dropped, as Close does.
    dialog.SetCloseAction(QStringLiteral("cmdClose"));

    classToolbar &toolbar = dialog.AddControl(DialogControlKind::Toolbar, QStringLiteral("tbrLineItem")).Toolbar();
    toolbar.AddButton(QStringLiteral("tlbAdd"), QString(), QString(), QStringLiteral("Add New Line"),
                      ToolbarButtonStyle::Default, QStringLiteral("Create"));
    toolbar.AddButton(QStringLiteral("tlbDelete"), QString(), QString(), QStringLiteral("Delete Current Line Item"),
                      ToolbarButtonStyle::Default, QStringLiteral("Delete"));
    toolbar.AddButton(QStringLiteral("tlbForward"), QString(), QString(),
                      QStringLiteral("Forward total to Proposed Budget"), ToolbarButtonStyle::Default,
                      QStringLiteral("Forward"));

    dialog.AddControl(DialogControlKind::Label, QStringLiteral("lblAccount"), account_.AccountName).Move(120, 80, 7560);

    DialogControl &control = dialog.AddControl(DialogControlKind::Grid, gridName);
    control.Move(120, 400, 7560, 3200);
    classGrid &grid = control.Grid();
    GridColumnOptions hidden;
    hidden.hidden = true;
    grid.AddColumn(QStringLiteral("ID"), QString(), hidden);
    GridColumnOptions number;
    number.widthTwips = 1400;
    grid.AddColumn(numberKey, QStringLiteral("Line Number"), number);
    GridColumnOptions text;
    text.widthTwips = 4000;
    text.maxLength = lineTextLength;
    addColumnWithTwin(grid, textKey, QStringLiteral("Line Item Text"), text);
    GridColumnOptions amount;
    amount.widthTwips = 1800;
    amount.type = GridColumnType::Amount;
    amount.total = true;
    addColumnWithTwin(grid, amountKey, QStringLiteral("Amount"), amount);
    grid.ShowTotals(true);

    dialog.AddControl(DialogControlKind::CommandButton, QStringLiteral("cmdSave"), QStringLiteral("Save"))
        .Move(5160, 3700, 1200);
    dialog.AddControl(DialogControlKind::CommandButton, QStringLiteral("cmdClose"), QStringLiteral("Close"))
        .Move(6480, 3700, 1200);
    addStatusBar(dialog);
}

void workerLineItem::LoadData(classDialog &dialog)
{
    classGrid &grid = this->grid();
    setStatusText(dialog, QStringLiteral("Loading Records"));
    grid.ResetRows();
    stored_.clear();
    setStatusText(dialog, QStringLiteral("Loading Data ..."));
    std::vector<clsLineItem> items;
    lines_.LineItem().AcctId = account_.ID;
    if (!lines_.GetList(items)) {
        setStatusText(dialog, QString());
        messages().errorDialog({1, caption(), QStringLiteral("Line Item error: ") + lines_.Error().ErrorText(), false});
        return;
    }
    // By number, though the database may return a line it just rewrote last.
    std::sort(items.begin(), items.end(),
              [](const clsLineItem &a, const clsLineItem &b) { return a.LineItemNumber < b.LineItemNumber; });
    setStatusText(dialog, QStringLiteral("Loading Grid Data"));
    for (const clsLineItem &line : items) {
        const int row = grid.AddRow();
        grid.SetCell(row, QStringLiteral("ID"), QString::number(line.AcctId));
        grid.SetCell(row, numberKey, QString::number(line.LineItemNumber));
        grid.SetCell(row, textKey, line.LineItemText);
        grid.SetCell(row, amountKey, line.LineItemAmount);
        keepAsLoaded(grid, row);
        stored_.insert(line.LineItemNumber);
    }
    grid.RefreshTotals();
    total_ = grid.GetColumnTotal(amountKey);
    setStatusText(dialog, QStringLiteral("Finished Loading Data"));
}

void workerLineItem::UserAction(classDialog &dialog, const QString &name)
{
    if (name == u"tlbAdd") {
        addLine();
    } else if (name == u"tlbDelete") {
        deleteLine();
    } else if (name == u"tlbForward") {
        forwardTotal();
    } else if (name == gridName + QStringLiteral("_CellChange")) {
        total_ = grid().GetColumnTotal(amountKey);
    } else if (name == u"cmdSave") {
        dialog.Save();
    } else if (name == u"cmdClose") {
        close(dialog);
    }
}

bool workerLineItem::SaveData(classDialog &dialog)
{
    const SaveResult result = saveChangedRows(dialog, lines_, grid(), [this](int row) { return UpdateLineItem(row); });
    if (result == SaveResult::TransactionFailed)
        messages().errorDialog({1, caption(), QStringLiteral("Cannot Save Data.") + lines_.Error().ErrorText(), false});
    if (result != SaveResult::Saved)
        return false;
    dialog.Reload(); // new lines count as stored now
    return true;
}

bool workerLineItem::UpdateLineItem(int row)
{
    const classGrid &grid = this->grid();
    clsLineItem &line = lines_.LineItem();
    line.AcctId = grid.GetItemValue(row, QStringLiteral("ID")).toInt();
    line.LineItemNumber = grid.GetItemValue(row, numberKey).toInt();
    const bool exists = lines_.Retrieve();
    line.LineItemText = grid.GetItemValue(row, textKey);
    line.LineItemAmount = grid.GetAmount(row, amountKey);
    const bool written = exists ? lines_.UpdateBatch() : lines_.AddBatch();
    if (!written) {
        const QString what = exists ? QStringLiteral("Cannot Update Line Item for Account Code: ")
                                    : QStringLiteral("Cannot add Line Item for Account Code: ");
        messages().messageBox({caption(),
                               what + account_.AccountCode + QStringLiteral(". (") + lines_.Error().ErrorText() + u')',
                               MsgButtons::OK, MsgIcon::Critical, MsgAnswer::OK});
    }
    return written;
}

// One past the highest number in the grid, so a line added after a deletion
// never takes the number of a line that is kept.
void workerLineItem::addLine()
{
    classGrid &grid = this->grid();
    int next = 1;
    for (int row = 1; row <= grid.CountRows(); ++row)
        next = std::max(next, grid.GetItemValue(row, numberKey).toInt() + 1);
    const int row = grid.AddRow();
    grid.SetCell(row, QStringLiteral("ID"), QString::number(account_.ID));
    grid.SetCell(row, numberKey, QString::number(next));
    grid.SelectRow(row);
    grid.SetColumn(textKey);
}

// The row leaves the grid rather than the grid being reloaded, so edits on
// the other rows are kept.
void workerLineItem::deleteLine()
{
    classGrid &grid = this->grid();
    const int row = grid.CurrentRow();
    if (row == 0)
        return;
    const QString number = grid.GetItemValue(row, numberKey);
    const MessageRequest question{caption(), QStringLiteral("Are you sure you want to erase Line # ") + number + u'?',
                                  MsgButtons::YesNo, MsgIcon::Question, MsgAnswer::No};
    if (messages().messageBox(question) != MsgAnswer::Yes)
        return;
    if (stored_.count(number.toInt()) != 0) {
        lines_.LineItem().AcctId = account_.ID;
        lines_.LineItem().LineItemNumber = number.toInt();
        if (!lines_.Delete()) {
            messages().messageBox({caption(), QStringLiteral("Line Item error: ") + lines_.Error().ErrorText(),
                                   MsgButtons::OK, MsgIcon::Critical, MsgAnswer::OK});
            return;
        }
        stored_.erase(number.toInt());
        messages().messageBox({caption(), QStringLiteral("Line Item has been erased !"), MsgButtons::OK,
                               MsgIcon::Information, MsgAnswer::OK});
    }
    grid.DeleteRow(row);
    grid.RefreshTotals();
    total_ = grid.GetColumnTotal(amountKey);
}

void workerLineItem::forwardTotal()
{
    if (int(account_.CatA) + int(account_.CatP) + int(account_.CatC) > 1) {
        messages().messageBox({caption(),
                               QStringLiteral("Cannot forward total: This account code has more than one Category!"),
                               MsgButtons::OK, MsgIcon::Critical, MsgAnswer::OK});
        return;
    }
    const Currency total = grid().GetColumnTotal(amountKey);
    clsProposedBudget budget;
    budget.setAdoConnection(connection_);
    budget.setAuditTask(AuditTask::LineItems);
    clsProposedBudgetItem &item = budget.ProposedBudgetItem();
    item.ID = account_.ID;
    item.ProposalID = account_.ProposalID;
    if (!budget.Retrieve()) {
        // An account the proposal has no row for takes nothing, without a word;
        // a database that cannot be read is another matter.
        if (budget.Error().ErrorNumber() != 999)
            messages().errorDialog(
                {1, caption(), QStringLiteral("Cannot Save Data.") + budget.Error().ErrorText(), false});
        return;
    }
    if (account_.CatA)
        item.ProposedCatA = total;
    else if (account_.CatP)
        item.ProposedCatP = total;
    else if (account_.CatC)
        item.ProposedCatC = total;
    else
        item.ProposedBudget = total;
    if (!budget.Update()) {
        messages().errorDialog({1, caption(), QStringLiteral("Cannot Save Data.") + budget.Error().ErrorText(), false});
        return;
    }
    item.AccountCode = account_.AccountCode;
    item.AccountName = account_.AccountName;
    item.FundID = account_.FundID;
    item.LedgerID = account_.LedgerID;
    item.CatA = account_.CatA;
    item.CatP = account_.CatP;
    item.CatC = account_.CatC;
    forwarded_ = item;
    messages().messageBox({caption(), QStringLiteral("The Line Item Total has been saved to the Proposed Budget. "),
                           MsgButtons::OK, MsgIcon::Information, MsgAnswer::OK});
}

void workerLineItem::close(classDialog &dialog)
{
    if (mayDiscardChanges(dialog, grid()))
        dialog.CloseDialog();
}
