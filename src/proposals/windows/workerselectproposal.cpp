#include "workerselectproposal.h"

#include "appglobals.h"
#include "classdialog.h"
#include "classdropdown.h"
#include "messageservice.h"
#include "proposallist.h"

#include "twips.h"

#include <QFontDatabase>
#include <QFontMetrics>
#include <QListWidget>
#include <QStyle>

namespace {

const QString listName = QStringLiteral("lstProposals");
const QString okName = QStringLiteral("cmdOK");
// The heading sets the columns: the description starts under "Description"
// and the marker's word under "Status".
const QString heading = QStringLiteral("Proposal    Description                                Status");
constexpr int idWidth = 12;
constexpr int nameWidth = 36;

QString selectedKey(classDialog &dialog)
{
    return dialog.Control(listName).DropDown().GetSelectedByKey(listName);
}

} // namespace

QString proposalListEntry(const clsProposalItem &proposal)
{
    QString entry = proposal.ID.leftJustified(idWidth) + proposal.Name.leftJustified(nameWidth);
    if (proposal.Active)
        entry += QStringLiteral("       Active");
    return entry;
}

workerSelectProposal::workerSelectProposal(std::shared_ptr<DbConnection> connection, ProposalPanel panel,
                                           QWidget *parent)
    : panel_(std::move(panel)), parent_(parent)
{
    store_.setAdoConnection(std::move(connection));
}

void workerSelectProposal::DoModalForm()
{
    classDialog dialog(*this, parent_);
    dialog.setObjectName(QStringLiteral("mclsDialog"));
    dialog.Run(1);
}

void workerSelectProposal::FormBuild(classDialog &dialog)
{
    // The columns line up only in a fixed-pitch font, and the list is as wide
    // as its heading (with room for the scroll bar) whatever the font's size.
    const QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    const int listWidth = pixelsToTwips(QFontMetrics(fixed).horizontalAdvance(heading + QStringLiteral("    "))) + 400;
    dialog.SetSize(listWidth + 400, 2900);
    dialog.SetCaption(QStringLiteral("Select A Proposal"));
    dialog.ShowStandardButtons(false);
    DialogControl &list = dialog.AddControl(DialogControlKind::ListBox, listName, heading);
    list.widget()->setFont(fixed);
    list.Move(200, 150, listWidth, 2000);
    // The heading starts where the entries' text does.
    auto *entries = qobject_cast<QListWidget *>(list.field());
    list.DropDown().captionLabel(listName)->setIndent(
        entries->frameWidth() + entries->style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, entries) + 1);
    const int right = 200 + listWidth;
    dialog.AddControl(DialogControlKind::CommandButton, okName, QStringLiteral("OK")).Move(right - 2600, 2350, 1200);
    dialog.AddControl(DialogControlKind::CommandButton, QStringLiteral("cmdClose"), QStringLiteral("Close"))
        .Move(right - 1200, 2350, 1200);
}

void workerSelectProposal::LoadData(classDialog &dialog)
{
    DialogControl &list = dialog.Control(listName);
    list.DropDown().Clear(listName);
    std::vector<clsProposalItem> proposals;
    if (!store_.GetOpenList(proposals)) {
        messages().errorDialog({1, QStringLiteral("Select Proposal"),
                                QStringLiteral("Error reading Proposal list. ") + store_.Error().ErrorText(), false});
        return;
    }
    sortBySlot(proposals);
    for (const clsProposalItem &proposal : proposals)
        list.AddItem(proposalListEntry(proposal), proposal.ID);
    list.setListIndex(list.DropDown().KeyToIndex(listName, gstrProposalID));
}

void workerSelectProposal::LockControls(classDialog &dialog)
{
    enableChoice(dialog);
}

void workerSelectProposal::enableChoice(classDialog &dialog)
{
    const QString key = selectedKey(dialog);
    dialog.Control(okName).setEnabled(!key.isEmpty() && key != gstrProposalID);
}

void workerSelectProposal::UserAction(classDialog &dialog, const QString &name)
{
    if (name == listName) {
        enableChoice(dialog);
    } else if (name == okName) {
        const QString key = selectedKey(dialog);
        if (key.isEmpty())
            return;
        gstrProposalID = key;
        if (panel_)
            panel_(chosenProposalText(gstrProposalID));
        dialog.CloseDialog();
    } else if (name == u"cmdClose") {
        dialog.CloseDialog();
    }
}
