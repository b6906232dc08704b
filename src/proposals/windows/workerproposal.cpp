#include "workerproposal.h"

#include "appglobals.h"
#include "classdialog.h"
#include "classgrid.h"
#include "classtoolbar.h"
#include "dialogstatus.h"
#include "gridlistcolumn.h"
#include "gridtwins.h"
#include "messageservice.h"
#include "proposalcreation.h"
#include "proposallist.h"

namespace {

const QString caption = QStringLiteral("Proposal Maintenance ");
const QString gridName = QStringLiteral("AcctGrid");
const QString openText = QStringLiteral("Open");
const QString closeText = QStringLiteral("Close");
// The columns the user edits, each with its hidden twin.
const QStringList editedKeys{QStringLiteral("Name"), QStringLiteral("Status"), QStringLiteral("Active")};

classGrid &gridOf(classDialog &dialog)
{
    return dialog.Control(gridName).Grid();
}

QString shownStatus(const QString &code)
{
    if (code == u"O")
        return openText;
    if (code == u"C")
        return closeText;
    return {};
}

void tell(const QString &text, MsgIcon icon)
{
    messages().messageBox({caption.trimmed(), text, MsgButtons::OK, icon, MsgAnswer::OK});
}

// A free slot, as loaded: nothing in it can be edited.
bool isFreeSlot(const classGrid &grid, int row)
{
    return grid.GetItemValue(row, QStringLiteral("OrigStatus")).isEmpty();
}

} // namespace

workerProposal::workerProposal(std::shared_ptr<DbConnection> connection, ProposalPanel panel, QWidget *parent)
    : panel_(std::move(panel)), parent_(parent)
{
    store_.setAdoConnection(std::move(connection));
    store_.setAuditTask(AuditTask::Proposals);
}

void workerProposal::DoModalForm()
{
    classDialog dialog(*this, parent_);
    dialog.setObjectName(QStringLiteral("mclsDialog"));
    dialog.Run(1);
}

void workerProposal::RefreshData()
{
    if (dialog_)
        dialog_->Reload();
}

void workerProposal::FormBuild(classDialog &dialog)
{
    dialog_ = &dialog;
    dialog.SetSize(8100, 2600);
    dialog.SetCaption(caption);

    classToolbar &toolbar = dialog.AddControl(DialogControlKind::Toolbar, QStringLiteral("tbrProposal")).Toolbar();
    toolbar.AddButton(QStringLiteral("tlbAdd"), QString(), QString(), QStringLiteral("Initialize New Proposal"),
                      ToolbarButtonStyle::Default, QStringLiteral("Create"));
    toolbar.AddButton(QStringLiteral("tlbDelete"), QString(), QString(), QStringLiteral("Clear Proposal"),
                      ToolbarButtonStyle::Default, QStringLiteral("Delete"));

    DialogControl &control = dialog.AddControl(DialogControlKind::Grid, gridName);
    control.Move(50, 50, 8000, 2500);
    classGrid &grid = control.Grid();
    GridColumnOptions id;
    id.widthTwips = 1100;
    grid.AddColumn(QStringLiteral("ID"), QStringLiteral("Proposal"), id);
    GridColumnOptions name;
    name.widthTwips = 3200;
    name.maxLength = 35;
    addColumnWithTwin(grid, QStringLiteral("Name"), QStringLiteral("Description"), name);
    GridColumnOptions status;
    status.widthTwips = 1500;
    addColumnWithTwin(grid, QStringLiteral("Status"), QStringLiteral("Status"), status);
    setListColumn(grid, QStringLiteral("Status"), {openText, closeText});
    GridColumnOptions active;
    active.widthTwips = 1800;
    active.type = GridColumnType::Check;
    addColumnWithTwin(grid, QStringLiteral("Active"), QStringLiteral("Active Proposal"), active);

    addStatusBar(dialog);
}

void workerProposal::LoadData(classDialog &dialog)
{
    classGrid &grid = gridOf(dialog);
    setStatusText(dialog, QStringLiteral("Loading Records"));
    grid.ResetRows();
    setStatusText(dialog, QStringLiteral("Loading Data ..."));
    std::vector<clsProposalItem> proposals;
    if (!store_.GetList(proposals)) {
        setStatusText(dialog, QString());
        messages().errorDialog({1, caption.trimmed(),
                                QStringLiteral("Error reading Proposal list. ") + store_.Error().ErrorText(), false});
        return;
    }
    sortBySlot(proposals);
    setStatusText(dialog, QStringLiteral("Loading Grid Data"));
    for (const clsProposalItem &proposal : proposals) {
        const int row = grid.AddRow();
        grid.SetCell(row, QStringLiteral("ID"), proposal.ID);
        grid.SetCell(row, QStringLiteral("Name"), proposal.Name);
        grid.SetCell(row, QStringLiteral("Status"), shownStatus(proposal.Status));
        grid.SetCell(row, QStringLiteral("Active"), proposal.Active);
        keepAsLoaded(grid, row);
    }
    setStatusText(dialog, QStringLiteral("Finished Loading Data"));
}

void workerProposal::LockControls(classDialog &dialog)
{
    applyLocks(gridOf(dialog));
}

// A free slot is locked whole. Otherwise the Active box can be ticked only on
// an open proposal (only open ones can be worked on), and unticked always.
void workerProposal::applyLocks(classGrid &grid)
{
    for (int row = 1; row <= grid.CountRows(); ++row) {
        const bool free = isFreeSlot(grid, row);
        for (const char *key : {"ID", "Name", "Status", "Active"})
            grid.setCellLocked(row, QLatin1String(key), free);
        if (!free) {
            const bool open = grid.GetItemValue(row, QStringLiteral("Status")) == openText;
            grid.setCellLocked(row, QStringLiteral("Active"), !open && !isChecked(grid, row, QStringLiteral("Active")));
        }
    }
}

void workerProposal::keepOneActive(classGrid &grid, int checkedRow)
{
    for (int row = 1; row <= grid.CountRows(); ++row) {
        if (row != checkedRow && !grid.CellLocked(row, QStringLiteral("Active")))
            grid.SetCell(row, QStringLiteral("Active"), false);
    }
}

void workerProposal::UserAction(classDialog &dialog, const QString &name)
{
    if (name == u"tlbAdd") {
        create(dialog);
    } else if (name == u"tlbDelete") {
        erase(dialog);
    } else if (name == gridName + QStringLiteral("_CellChange")) {
        classGrid &grid = gridOf(dialog);
        const QString column = grid.CurrentColumnName();
        const int row = grid.CurrentRow();
        if (row == 0 || !editedKeys.contains(column))
            return;
        if (column == u"Active" && isChecked(grid, row, column))
            keepOneActive(grid, row);
        applyLocks(grid);
    }
}

bool workerProposal::SaveData(classDialog &dialog)
{
    classGrid &grid = gridOf(dialog);
    const SaveResult result = saveChangedRows(dialog, store_, grid, [&](int row) {
        clsProposalItem &item = store_.ProposalItem();
        item.ID = grid.GetItemValue(row, QStringLiteral("ID"));
        item.Name = grid.GetItemValue(row, QStringLiteral("Name"));
        item.Status = grid.GetItemValue(row, QStringLiteral("Status")).left(1);
        item.Active = isChecked(grid, row, QStringLiteral("Active"));
        return store_.UpdateBatch();
    });
    if (result == SaveResult::Saved) {
        if (panel_)
            panel_(savedProposalText(gstrProposalID));
    } else {
        messages().errorDialog(
            {1, caption.trimmed(), QStringLiteral("Cannot Save Data.") + store_.Error().ErrorText(), false});
    }
    return result == SaveResult::Saved;
}

void workerProposal::create(classDialog &dialog)
{
    if (!store_.GetAvailProposal()) {
        if (store_.Error().ErrorNumber() == 999)
            tell(QStringLiteral("You have already reach the maximum three proposals!"), MsgIcon::Exclamation);
        else
            messages().errorDialog({1, QStringLiteral("Initializing New Proposal"),
                                    QStringLiteral("Error:") + store_.Error().ErrorText(), false});
        return;
    }
    ProposalCreation creation(store_, store_.ProposalItem().ID, panel_, dialog);
    {
        classDialog creationDialog(creation, &dialog);
        creationDialog.setObjectName(QStringLiteral("mwclsDialogCreate"));
        creationDialog.Run(1);
    }
    dialog.Reload();
}

// Judged by what is shown and by what is stored, so a proposal cannot be
// erased by first unticking or closing it in the grid without saving.
void workerProposal::erase(classDialog &dialog)
{
    classGrid &grid = gridOf(dialog);
    const int row = grid.CurrentRow();
    if (row == 0)
        return;
    const QString id = grid.GetItemValue(row, QStringLiteral("ID"));
    const bool inUse = isChecked(grid, row, QStringLiteral("Active")) ||
                       isChecked(grid, row, QStringLiteral("OrigActive")) ||
                       grid.GetItemValue(row, QStringLiteral("Status")) == openText ||
                       grid.GetItemValue(row, QStringLiteral("OrigStatus")) == openText;
    if (inUse) {
        tell(QStringLiteral("Cannot delete Proposal. The Proposal ") + id +
                 QStringLiteral(" is currently Open or Active !"),
             MsgIcon::Critical);
        return;
    }
    const MessageRequest question{caption.trimmed(),
                                  QStringLiteral("Are you sure you want to erase Proposal # ") + id + u'?',
                                  MsgButtons::YesNo, MsgIcon::Question, MsgAnswer::No};
    if (messages().messageBox(question) != MsgAnswer::Yes)
        return;
    store_.ProposalItem().ID = id;
    store_.ProposalItem().Name = grid.GetItemValue(row, QStringLiteral("OrigName"));
    if (!store_.Delete()) {
        messages().errorDialog({1, caption.trimmed(), QStringLiteral("Error:") + store_.Error().ErrorText(), false});
        return;
    }
    tell(QStringLiteral("Proposal has been erased !"), MsgIcon::Information);
    dialog.Reload();
}
