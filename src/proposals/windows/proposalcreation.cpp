#include "proposalcreation.h"

#include "appglobals.h"
#include "classdialog.h"
#include "classdropdown.h"
#include "dialogstatus.h"
#include "messageservice.h"
#include "proposal.h"
#include "proposallist.h"

namespace {

const QString copyList = QStringLiteral("cboCopyData");
const QString failureTitle = QStringLiteral("Initializing New Proposal");

} // namespace

ProposalCreation::ProposalCreation(clsProposal &store, QString slotID, ProposalPanel panel, classDialog &owner)
    : store_(store), slotID_(std::move(slotID)), panel_(std::move(panel)), owner_(owner)
{
}

void ProposalCreation::FormBuild(classDialog &dialog)
{
    dialog.SetSize(4600, 2500);
    dialog.SetCaption(QStringLiteral("Initialize New Proposal"));
    dialog.AddControl(DialogControlKind::Label, QStringLiteral("lblID"), QStringLiteral("Proposal #: ") + slotID_)
        .Move(120, 120, 1500);
    DialogControl &name =
        dialog.AddControl(DialogControlKind::TextBox, QStringLiteral("txtName"), QStringLiteral("Description"));
    name.Move(120, 620, 4300);
    name.setMaxLength(35);

    DialogControl &source =
        dialog.AddControl(DialogControlKind::ComboBox, copyList, QStringLiteral("Initialize Data From      "));
    source.Move(120, 1600, 3000);
    source.AddItem(QStringLiteral("Empty Proposal Budget"), QStringLiteral("E"));
    source.AddItem(QStringLiteral("Current Budget"), QStringLiteral("C"));
    std::vector<clsProposalItem> open;
    if (store_.GetOpenList(open)) {
        sortBySlot(open);
        for (const clsProposalItem &proposal : open)
            source.AddItem(QStringLiteral("Proposal:") + proposal.ID, proposal.ID);
    } else {
        messages().errorDialog(
            {1, failureTitle, QStringLiteral("Error reading Proposal list. ") + store_.Error().ErrorText(), false});
    }
    source.setListIndex(0);
}

bool ProposalCreation::SaveData(classDialog &dialog)
{
    QString sourceKey = dialog.Control(copyList).DropDown().GetSelectedByKey(copyList);
    setStatusText(owner_, QStringLiteral("Initialize New Proposal - Updating..."));
    store_.ProposalItem().ID = slotID_;
    store_.ProposalItem().Name = dialog.Control(QStringLiteral("txtName")).Text();
    const bool created = store_.InitNewProposal(sourceKey);
    if (created) {
        gstrProposalID = slotID_;
        if (panel_)
            panel_(chosenProposalText(gstrProposalID));
    } else {
        messages().errorDialog({1, failureTitle, QStringLiteral("Error:") + store_.Error().ErrorText(), false});
    }
    setStatusText(owner_, QStringLiteral("Initialize New Proposal - Finished"));
    return created;
}
