// The folder commands of the account code window.
#include "classdialog.h"
#include "explorerrules.h"
#include "folderqueries.h"
#include "mdichild.h"
#include "messageservice.h"
#include "workeraccountcodes.h"

#include <QTreeWidget>

#include <algorithm>

void workerAccountCodes::createFolder()
{
    const QString selected = child_->Explorer().SelectedNode();
    const NodeKind kind = kindOf(selected);
    if ((kind != NodeKind::Folder && kind != NodeKind::Root) ||
        folderDepth(selected) >= explorerView(view_).maximumDepth) {
        showMessage(QStringLiteral("Cannot add new folder at this level."));
        return;
    }
    const qint64 parentId = kind == NodeKind::Folder ? idOf(selected) : 0;
    bool gone = false;
    FolderDialog dialog(DialogPurpose::New, view_ == u"T", {}, [&](const FolderDialog::Values &values) {
        FolderQueries queries(tree_, view_, fund_, ledger_);
        clsTreeItem parent;
        if (parentId != 0 && !queries.read(parentId, parent)) {
            gone = true; // said once the dialog has closed
            return true;
        }
        tree_.ClearTreeItem();
        clsTreeItem &item = tree_.TreeItem();
        item.NodeType = view_;
        item.FundID = fund_;
        item.LedgerID = ledger_;
        item.ParentID = parentId;
        item.Name = values.name;
        item.ForceNewPage = values.forceNewPage;
        if (!tree_.Add()) {
            showMessage(QStringLiteral("Error adding folder."));
            return false;
        }
        folders_.insert(item.ID, item);
        // New folders go after their siblings' folders and before the folder's codes.
        const QString key = folderKey(item.ID);
        child_->Explorer().AddFolder(selected, key, item.Name);
        QTreeWidgetItem *node = child_->Explorer().view()->currentItem();
        const auto isFolder = [this](QTreeWidgetItem *n) {
            return kindOf(n->data(0, Qt::UserRole).toString()) == NodeKind::Folder;
        };
        int firstCode = 0;
        while (firstCode < node->childCount() - 1 && isFolder(node->child(firstCode)))
            ++firstCode;
        node->insertChild(firstCode, node->takeChild(node->childCount() - 1));
        child_->Explorer().setSelectedNode(key);
        return true;
    });
    runDialog(dialog);
    if (gone)
        staleNode(QStringLiteral("The folder"), explorerTitle());
}

void workerAccountCodes::editFolder()
{
    const QString selected = child_->Explorer().SelectedNode();
    if (kindOf(selected) != NodeKind::Folder)
        return;
    FolderQueries queries(tree_, view_, fund_, ledger_);
    clsTreeItem folder;
    if (!queries.read(idOf(selected), folder)) {
        showMessage(QStringLiteral("Error retrieving folder. error:") + tree_.Error().ErrorText());
        loadTree(selected);
        return;
    }
    FolderDialog dialog(DialogPurpose::Edit, view_ == u"T", {folder.Name, folder.ForceNewPage},
                        [&](const FolderDialog::Values &values) {
                            clsTreeItem changed = folder;
                            changed.Name = values.name;
                            changed.ForceNewPage = values.forceNewPage;
                            tree_.TreeItem() = changed;
                            if (!tree_.Update()) {
                                showMessage(QStringLiteral("Error updating folder."));
                                return false;
                            }
                            folders_[changed.ID] = changed;
                            child_->Explorer().setNodeText(selected, changed.Name);
                            return true;
                        });
    runDialog(dialog);
    showContent();
}

void workerAccountCodes::deleteFolder()
{
    const QString selected = child_->Explorer().SelectedNode();
    if (kindOf(selected) != NodeKind::Folder)
        return;
    const qint64 id = idOf(selected);
    FolderQueries queries(tree_, view_, fund_, ledger_);
    std::vector<clsTreeItem> below;
    if (!queries.children(id, below)) {
        showMessage(QStringLiteral("Error reading tree file."));
        return;
    }
    if (!below.empty()) {
        showMessage(QStringLiteral("Folder has subfolders and cannot be deleted."));
        return;
    }
    std::vector<clsAccountCode> codes;
    accounts_.ClearAccountCode();
    accounts_.AccountCode().setFundID(fund_);
    accounts_.AccountCode().setLedgerID(ledger_);
    setHangingFolder(accounts_.AccountCode(), view_, id);
    if (!accounts_.GetChildren(view_, codes)) {
        showMessage(QStringLiteral("Error reading summary file: ") + accounts_.Error().ErrorText());
        return;
    }
    if (!codes.empty()) {
        showMessage(QStringLiteral("Folder has account codes and cannot be deleted."));
        return;
    }
    tree_.ClearTreeItem();
    tree_.TreeItem().ID = id;
    if (!tree_.Delete()) {
        staleNode(QStringLiteral("The folder"), explorerTitle());
        return;
    }
    const QString parent = child_->Explorer().Node(selected).parentKey;
    folders_.remove(id);
    child_->Explorer().RemoveNode(selected);
    child_->Explorer().setSelectedNode(parent);
}

void workerAccountCodes::moveFolder(bool up)
{
    const QString title = up ? QStringLiteral("Move Folder Up") : QStringLiteral("Move Folder Down");
    const QString selected = child_->Explorer().SelectedNode();
    if (kindOf(selected) != NodeKind::Folder)
        return;
    FolderQueries queries(tree_, view_, fund_, ledger_);
    clsTreeItem folder;
    std::vector<clsTreeItem> siblings;
    if (!queries.read(idOf(selected), folder) || !queries.children(folder.ParentID, siblings)) {
        showMessage(QStringLiteral("Error reading tree summary file."), title);
        loadTree(selected);
        return;
    }
    const auto at =
        std::find_if(siblings.begin(), siblings.end(), [&](const clsTreeItem &s) { return s.ID == folder.ID; });
    if (at == siblings.end() || (up && at == siblings.begin()) || (!up && at + 1 == siblings.end()))
        return; // already first or last
    clsTreeItem neighbour;
    if (!queries.read((up ? at - 1 : at + 1)->ID, neighbour)) {
        showMessage(QStringLiteral("Error reading tree summary file."), title);
        loadTree(selected);
        return;
    }
    std::swap(folder.SortOrder, neighbour.SortOrder);
    if (!accounts_.BeginTransaction()) {
        showMessage(QStringLiteral("Unable to Begin transaction properly."), title);
        return;
    }
    for (const clsTreeItem &changed : {folder, neighbour}) {
        tree_.TreeItem() = changed;
        if (!tree_.UpdateBatch()) {
            accounts_.AbortTransaction();
            showMessage(QStringLiteral("Error updating tree summary file."), title);
            loadTree(selected);
            return;
        }
    }
    if (!accounts_.Endtransaction()) {
        accounts_.AbortTransaction();
        showMessage(QStringLiteral("Unable to end transaction properly."), title);
        loadTree(selected);
        return;
    }
    folders_[folder.ID] = folder;
    folders_[neighbour.ID] = neighbour;
    // Swap the two nodes in place, keeping what is expanded.
    QTreeWidget *tree = child_->Explorer().view();
    QTreeWidgetItem *node = tree->currentItem();
    QTreeWidgetItem *parent = node->parent();
    const bool open = node->isExpanded();
    const int from = parent->indexOfChild(node);
    const int to = from + (up ? -1 : 1);
    if (to >= 0 && to < parent->childCount() && parent->child(to)->data(0, Qt::UserRole) == folderKey(neighbour.ID)) {
        parent->insertChild(to, parent->takeChild(from));
        node->setExpanded(open);
        tree->setCurrentItem(node);
    } else {
        loadTree(selected);
    }
}

void workerAccountCodes::startRename()
{
    const QString selected = child_->Explorer().SelectedNode();
    if (kindOf(selected) != NodeKind::Folder)
        return;
    QTreeWidget *tree = child_->Explorer().view();
    QTreeWidgetItem *node = tree->currentItem();
    node->setFlags(node->flags() | Qt::ItemIsEditable); // itemChanged, before the rename is under way
    renaming_ = selected;
    tree->editItem(node);
}

void workerAccountCodes::finishRename(const QString &key, const QString &text)
{
    const qint64 id = idOf(key);
    const QString before = folders_.value(id).Name;
    const auto restore = [&] {
        const QSignalBlocker quiet(child_->Explorer().view());
        child_->Explorer().setNodeText(key, before);
    };
    if (text == before)
        return;
    const QString problem = folderNameProblem(text);
    if (!problem.isEmpty()) {
        showMessage(problem);
        restore();
        return;
    }
    FolderQueries queries(tree_, view_, fund_, ledger_);
    clsTreeItem folder;
    if (!queries.read(id, folder)) {
        restore();
        staleNode(QStringLiteral("The folder"), explorerTitle());
        return;
    }
    folder.Name = text.trimmed();
    tree_.TreeItem() = folder;
    if (!tree_.Update()) {
        showMessage(QStringLiteral("Error updating folder."));
        restore();
        return;
    }
    folders_[id] = folder;
    const QSignalBlocker quiet(child_->Explorer().view());
    child_->Explorer().setNodeText(key, folder.Name);
    showContent();
}

void workerAccountCodes::adjustFolder()
{
    const QString selected = child_->Explorer().SelectedNode();
    if (kindOf(selected) != NodeKind::Folder)
        return;
    const qint64 id = idOf(selected);
    const QString name = folders_.value(id).Name;
    const std::optional<QString> answer = messages().inputBox(
        QStringLiteral("Please enter the sort by account code start position:\n(You can sort the account code from a "
                       "specific position. Or leave it the default value will sort from the first char)"),
        QStringLiteral("Folder Adjustment"), QStringLiteral("1"));
    if (!answer)
        return;
    CodeChoiceRequest request;
    request.caption = QStringLiteral("Folder Ajustment for: ") + name;
    request.selectedCaption = QStringLiteral("Selected (Items selected in the subfolder of ") + name + u')';
    request.ledger = ledger_;
    for (const clsAccountCode &code : codes_)
        (hangingFolder(code, view_) == id ? request.selected : request.available).push_back(code);
    sortFromPosition(request.available, startPosition(*answer));
    sortFromPosition(request.selected, startPosition(*answer));
    if (!context_.chooseCodes) {
        showMessage(QStringLiteral("The account code selection list is not available."));
        return;
    }
    const std::optional<std::vector<qint64>> chosen = context_.chooseCodes(request);
    if (!chosen)
        return;

    if (!accounts_.BeginTransaction()) {
        showMessage(QStringLiteral("Unable to start transaction."), QStringLiteral("Update Operation"));
        return;
    }
    for (const qint64 codeId : *chosen) {
        accounts_.ClearAccountCode();
        accounts_.AccountCode().setID(codeId);
        // Read afresh: only the folder changes, whatever another user changed meanwhile.
        bool written = accounts_.Retrieve(false);
        if (written) {
            setHangingFolder(accounts_.AccountCode(), view_, id);
            written = accounts_.UpdateBatch();
        }
        if (!written) {
            const QString why = accounts_.Error().ErrorText();
            accounts_.AbortTransaction();
            showMessage(QStringLiteral("Unable to update summary record. ") + why, QStringLiteral("Update Operation"));
            loadTree(selected);
            return;
        }
    }
    if (!accounts_.Endtransaction()) {
        accounts_.AbortTransaction();
        showMessage(QStringLiteral("Unable to end transaction."), QStringLiteral("update Operation"));
    }
    loadTree(selected);
}
