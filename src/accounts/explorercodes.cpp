// The account code commands of the account code window, and drag and drop.
#include "classdialog.h"
#include "explorerrules.h"
#include "folderqueries.h"
#include "mdichild.h"
#include "messageservice.h"
#include "workeraccountcodes.h"

#include <algorithm>

namespace {

const QString dragTitle = QStringLiteral("Drag-Drop Operation");

} // namespace

bool workerAccountCodes::codeIsFree(QString &code)
{
    accounts_.ClearAccountCode();
    accounts_.AccountCode().setFundID(fund_);
    accounts_.AccountCode().setLedgerID(ledger_);
    if (accounts_.ValidateAccount(code))
        return true;
    showMessage(accounts_.Error().ErrorText());
    return false;
}

void workerAccountCodes::createAccount()
{
    const QString selected = child_->Explorer().SelectedNode();
    const NodeKind kind = kindOf(selected);
    if (kind != NodeKind::Folder && kind != NodeKind::Root)
        return;
    const qint64 folderId = kind == NodeKind::Folder ? idOf(selected) : 0;
    bool gone = false;
    AccountCodeDialog dialog(
        DialogPurpose::New, {},
        [this](AccountCodeDialog::Values &values) {
            return codeIsFree(values.code);
        },
        [&](const AccountCodeDialog::Values &values) {
            if (folderId != 0 && !targetExists(folderId, {})) {
                gone = true; // said once the dialog has closed
                return true;
            }
            accounts_.ClearAccountCode();
            clsAccountCode &code = accounts_.AccountCode();
            code.setLedgerID(ledger_);
            code.setAccountCode(values.code);
            code.setAccountName(values.description);
            code.setFundID(fund_);
            code.setStateCode(values.stateCode);
            setHangingFolder(code, view_, folderId);
            if (!accounts_.Add() || !accounts_.Retrieve(true)) {
                showMessage(accounts_.Error().ErrorText() + QStringLiteral(" error: "));
                return false;
            }
            const clsAccountCode added = accounts_.AccountCode();
            codes_.insert(added.ID(), added);
            child_->Explorer().AddObject(selected, codeKey(added.ID()), codeCaption(added));
            child_->Explorer().setSelectedNode(codeKey(added.ID()));
            return true;
        });
    runDialog(dialog);
    if (gone)
        staleNode(QStringLiteral("The folder"), explorerTitle());
}

void workerAccountCodes::editAccount()
{
    const QString selected = child_->Explorer().SelectedNode();
    if (kindOf(selected) != NodeKind::Code)
        return;
    const qint64 id = idOf(selected);
    accounts_.ClearAccountCode();
    accounts_.AccountCode().setID(id);
    if (!accounts_.Retrieve(false)) {
        staleNode(QStringLiteral("The account code"), explorerTitle());
        return;
    }
    const clsAccountCode loaded = accounts_.AccountCode();
    bool gone = false;
    AccountCodeDialog dialog(
        DialogPurpose::Edit, {loaded.AccountCode(), loaded.AccountName(), loaded.StateCode()},
        [&](AccountCodeDialog::Values &values) {
            const QString typed = values.code.trimmed().toUpper();
            if (typed == loaded.AccountCode()) {
                values.code = typed;
                return true;
            }
            MessageRequest confirm;
            confirm.title = QStringLiteral("Confirm Account Code Change");
            confirm.text = QStringLiteral("Do you really want to change ") + loaded.AccountCode() +
                           QStringLiteral(" to ") + typed + QStringLiteral("?");
            confirm.buttons = MsgButtons::YesNo;
            confirm.icon = MsgIcon::Question;
            confirm.defaultAnswer = MsgAnswer::No;
            if (messages().messageBox(confirm) != MsgAnswer::Yes)
                return false;
            return codeIsFree(values.code);
        },
        [&](const AccountCodeDialog::Values &values) {
            // Read afresh so that a folder another user gave the code meanwhile is kept.
            accounts_.ClearAccountCode();
            accounts_.AccountCode().setID(id);
            if (!accounts_.Retrieve(false)) {
                gone = true;
                return true;
            }
            clsAccountCode &code = accounts_.AccountCode();
            code.setAccountCode(values.code);
            code.setAccountName(values.description);
            code.setStateCode(values.stateCode);
            if (!accounts_.Update()) {
                showMessage(accounts_.Error().ErrorText() + QStringLiteral(" error: "));
                return false;
            }
            codes_[id] = code;
            child_->Explorer().setNodeText(selected, codeCaption(code));
            return true;
        });
    runDialog(dialog);
    if (gone)
        staleNode(QStringLiteral("The account code"), explorerTitle());
    else
        showContent();
}

void workerAccountCodes::deleteAccount()
{
    const QString selected = child_->Explorer().SelectedNode();
    if (kindOf(selected) != NodeKind::Code)
        return;
    const clsAccountCode code = codes_.value(idOf(selected));
    MessageRequest confirm;
    confirm.title = QStringLiteral("Confirm Deletion.");
    confirm.text = QStringLiteral("Delete Account Code: ") + code.AccountCode() + u'\n';
    confirm.buttons = MsgButtons::YesNo;
    confirm.icon = MsgIcon::Question;
    confirm.defaultAnswer = MsgAnswer::No;
    if (messages().messageBox(confirm) != MsgAnswer::Yes)
        return;
    accounts_.ClearAccountCode();
    accounts_.AccountCode().setID(code.ID());
    if (!accounts_.Delete()) {
        showMessage(QStringLiteral("Error deleting account code from summary file."));
        loadTree(child_->Explorer().Node(selected).parentKey);
        return;
    }
    const QString parent = child_->Explorer().Node(selected).parentKey;
    codes_.remove(code.ID());
    child_->Explorer().RemoveNode(selected);
    child_->Explorer().setSelectedNode(parent);
}

bool workerAccountCodes::targetExists(qint64 folderId, const QString &title)
{
    FolderQueries queries(tree_, view_, fund_, ledger_);
    clsTreeItem folder;
    if (folderId == 0 || queries.read(folderId, folder))
        return true;
    if (!title.isEmpty())
        staleNode(QStringLiteral("The folder ") + folders_.value(folderId).Name, title);
    return false;
}

void workerAccountCodes::nodeDropped()
{
    classExplorer &explorer = child_->Explorer();
    const QString dragged = explorer.SelectedNode();
    const QString target = explorer.NewParent();
    const NodeKind targetKind = kindOf(target);
    if (targetKind != NodeKind::Folder && targetKind != NodeKind::Root)
        return;
    const qint64 targetId = targetKind == NodeKind::Folder ? idOf(target) : 0;
    bool moved = false;
    if (kindOf(dragged) == NodeKind::Code)
        moved = dropCode(idOf(dragged), targetId);
    else if (kindOf(dragged) == NodeKind::Folder)
        moved = dropFolder(idOf(dragged), targetId);
    // A refreshed tree has dropped the nodes the explorer was moving.
    if (moved && knownNode(dragged) && knownNode(target))
        explorer.setDragSuccessful(true);
}

bool workerAccountCodes::dropCode(qint64 codeId, qint64 targetId)
{
    accounts_.ClearAccountCode();
    accounts_.AccountCode().setID(codeId);
    if (!accounts_.Retrieve(false)) {
        showMessage(QStringLiteral("Unable to retrieve summary record. ") + accounts_.Error().ErrorText(), dragTitle);
        loadTree();
        return false;
    }
    clsAccountCode code = accounts_.AccountCode();
    if (!targetExists(targetId, dragTitle))
        return false;
    setHangingFolder(code, view_, targetId);
    accounts_.AccountCode() = code;
    if (!accounts_.Update()) {
        showMessage(QStringLiteral("Unable to update summary record. ") + accounts_.Error().ErrorText(), dragTitle);
        loadTree();
        return false;
    }
    codes_[codeId] = code;
    return true;
}

bool workerAccountCodes::dropFolder(qint64 folderId, qint64 targetId)
{
    FolderQueries queries(tree_, view_, fund_, ledger_);
    const int maximum = explorerView(view_).maximumDepth;
    std::vector<qint64> chain;
    int levels = 0;
    if (!targetExists(targetId, dragTitle))
        return false;
    if (!queries.ancestors(targetId, chain) || !queries.subtreeLevels(folderId, levels)) {
        showMessage(QStringLiteral("Unable to retrieve record."), dragTitle);
        loadTree();
        return false;
    }
    // A folder may not go under itself, however the other user rearranged things.
    if (targetId == folderId || std::find(chain.begin(), chain.end(), folderId) != chain.end()) {
        staleNode(QStringLiteral("The folder ") + folders_.value(folderId).Name, dragTitle);
        return false;
    }
    const int targetDepth = targetId == 0 ? 0 : int(chain.size()) + 1;
    if (!folderFits(targetDepth, levels, maximum)) {
        showMessage(maximumLevelsMessage(maximum), dragTitle);
        return false;
    }
    clsTreeItem folder;
    if (!queries.read(folderId, folder)) {
        showMessage(QStringLiteral("Unable to retrieve record."), dragTitle);
        loadTree();
        return false;
    }
    if (folder.ParentID != folders_.value(folderId).ParentID) {
        staleNode(QStringLiteral("The folder ") + folder.Name, dragTitle);
        return false;
    }
    folder.ParentID = targetId;
    tree_.TreeItem() = folder;
    if (!tree_.Update()) {
        showMessage(QStringLiteral("Unable to update record."), dragTitle);
        loadTree();
        return false;
    }
    folders_[folderId] = folder;
    return true;
}
