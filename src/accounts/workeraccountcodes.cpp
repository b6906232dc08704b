#include "workeraccountcodes.h"

#include "appglobals.h"
#include "classdialog.h"
#include "explorerrules.h"
#include "folderqueries.h"
#include "messageservice.h"
#include "objectfunds.h"

#include <QMenu>
#include <QShortcut>
#include <QSplitter>
#include <QToolBar>
#include <QToolButton>
#include <QTreeWidget>

#include <algorithm>

namespace {

const QString fundList = QStringLiteral("Fund");
const QString ledgerList = QStringLiteral("Ledger");
const QString viewList = QStringLiteral("View");
const QString statusPanel = QStringLiteral("Status");

struct CommandInfo {
    const char *key;
    const char *caption; // also the tool tip
    const char *image;   // the toolbar shows the caption where there is none
    bool onToolbar;
};

// Every command, the toolbar's in the order it shows them; an empty key
// separates groups. The rest are reached through the context menu and keys.
const CommandInfo commands[] = {
    {"Folder_Create", "Create Folder", "New", true},
    {"Folder_Edit", "Edit Folder", "Edit", true},
    {"Folder_Delete", "Delete Folder", "Delete", true},
    {"Folder_Up", "Move Folder Up", "Up", true},
    {"Folder_Down", "Move Folder Down", "Down", true},
    {"Folder_Adjust", "Folder Adjustment", "", true},
    {"", "", "", true},
    {"Account_Create", "Create Account Code", "", true},
    {"Account_Edit", "Edit Account Code", "", true},
    {"Account_Delete", "Delete Account Code", "", true},
    {"Account_Grid", "Edit Accounts in a Grid", "", true},
    {"", "", "", true},
    {"Find", "Find (Ctrl+F)", "", true},
    {"_Refresh", "Refresh Window", "Refresh", true},
    {"_Print", "Print", "Print", true},
    {"DirectEdit", "Direct Edit (F2)", "", false},
    {"Expand", "Expand All", "", false},
    {"Contract", "Contract All", "", false},
};

QString captionOf(const QString &key)
{
    for (const CommandInfo &info : commands) {
        if (key == QLatin1String(info.key))
            return QLatin1String(info.caption);
    }
    return key;
}

GridColumnOptions widthOf(int twips)
{
    GridColumnOptions options;
    options.widthTwips = twips;
    return options;
}

QString ledgerCaption(const QString &ledger)
{
    return ledger == u"R" ? QStringLiteral("Revenue") : QStringLiteral("Expenditure");
}

} // namespace

workerAccountCodes::workerAccountCodes(AccountCodesContext context, QObject *parent)
    : MdiChildWorker(parent), context_(std::move(context))
{
    accounts_.setAdoConnection(context_.connection);
    accounts_.setAuditTask(AuditTask::AccountCodes);
    tree_.setAdoConnection(context_.connection);
    tree_.setAuditTask(AuditTask::AccountCodes);
}

workerAccountCodes::~workerAccountCodes()
{
    delete child_.data();
}

void workerAccountCodes::DoMDIChild(QMdiArea &area)
{
    openChild(explorerTitle());
    buildWindow();
    child_->ShowForm(area);
    loadFunds();
    loadTree();
}

void workerAccountCodes::buildWindow()
{
    child_->setLoading(true);
    classToolbar &toolbar = child_->Toolbar();
    auto *bar = child_->findChild<QToolBar *>();
    for (const CommandInfo &info : commands) {
        if (!info.onToolbar)
            continue;
        const QString image = QLatin1String(info.image);
        if (*info.key == '\0')
            toolbar.AddSeparator();
        else
            toolbar.AddButton(QLatin1String(info.key), {}, image, QLatin1String(info.caption),
                              ToolbarButtonStyle::Default, QLatin1String(info.caption));
        // A picture says it alone (its caption is the tool tip): the captions would not fit in one row.
        if (!image.isEmpty() && bar) {
            if (auto *button =
                    qobject_cast<QToolButton *>(bar->widgetForAction(toolbar.Item(QLatin1String(info.key)).action())))
                button->setToolButtonStyle(Qt::ToolButtonIconOnly);
        }
    }

    classDropDown &lists = child_->DropDown();
    lists.AddDropDown(fundList, QStringLiteral("Fund:"), QStringLiteral("Select a fund to view"), 3600);
    lists.AddDropDown(ledgerList, QStringLiteral("Ledger:"), QStringLiteral("Select a ledger to view"), 2000);
    lists.AddDropDown(viewList, QStringLiteral("View:"), QStringLiteral("Select how to view account codes"), 2000);
    lists.AddItem(ledgerList, QStringLiteral("R"), QStringLiteral("Revenue"));
    lists.AddItem(ledgerList, QStringLiteral("E"), QStringLiteral("Expenditure"));
    lists.setListIndex(ledgerList, lists.KeyToIndex(ledgerList, ledger_));
    for (const ExplorerView &view : explorerViews())
        lists.AddItem(viewList, view.nodeType, view.caption);
    lists.setListIndex(viewList, lists.KeyToIndex(viewList, view_));

    child_->Statusbar().AddPanel(0, statusPanel, {}, {}, PanelAlignment::Left, PanelAutoSize::Spring);
    child_->Explorer().setEnableDragDrop(true);

    QTreeWidget *tree = child_->Explorer().view();
    connect(tree, &QTreeWidget::itemChanged, this, [this](QTreeWidgetItem *item) {
        if (!renaming_.isEmpty() && item == child_->Explorer().view()->currentItem()) {
            const QString key = std::exchange(renaming_, {});
            item->setFlags(item->flags() & ~Qt::ItemIsEditable);
            finishRename(key, item->text(0));
        }
    });
    // An edit the user abandoned ends with the selection moving on.
    connect(tree, &QTreeWidget::currentItemChanged, this, [this] { renaming_.clear(); });
    for (const auto &[keys, command] : {std::pair{QKeySequence(QKeySequence::Find), QStringLiteral("Find")},
                                        std::pair{QKeySequence(Qt::Key_F2), QStringLiteral("DirectEdit")}}) {
        auto *shortcut = new QShortcut(keys, child_);
        shortcut->setContext(Qt::WidgetWithChildrenShortcut);
        connect(shortcut, &QShortcut::activated, this, [this, command] { mwfrmChild_Command(command); });
    }
    child_->Explorer().setVisible(true);
    if (auto *body = child_->findChild<QSplitter *>(QString(), Qt::FindDirectChildrenOnly))
        body->setSizes({330, 670});
    child_->resize(1000, 620);
    child_->setLoading(false);
}

void workerAccountCodes::loadFunds()
{
    funds_.clear();
    QString error;
    if (!context_.listFunds || !context_.listFunds(funds_, error)) {
        showMessage(QStringLiteral("Cannot initialize funds. error:") + error);
        funds_.clear();
    }
    classDropDown &lists = child_->DropDown();
    lists.Clear(fundList);
    for (const FundEntry &fund : funds_)
        lists.AddItem(fundList, fund.id, fund.id + QStringLiteral(" - ") + fund.name);
    if (!funds_.empty()) {
        lists.setListIndex(fundList, 0);
        fund_ = funds_.front().id;
    }
}

void workerAccountCodes::readChoices()
{
    const classDropDown &lists = child_->DropDown();
    fund_ = lists.GetSelectedByKey(fundList);
    ledger_ = lists.GetSelectedByKey(ledgerList);
    view_ = explorerView(lists.GetSelectedByKey(viewList)).nodeType;
}

void workerAccountCodes::doCommand(const QString &command)
{
    using Handler = void (workerAccountCodes::*)();
    static const QHash<QString, Handler> handlers{
        {QStringLiteral("Folder_Create"), &workerAccountCodes::createFolder},
        {QStringLiteral("Folder_Edit"), &workerAccountCodes::editFolder},
        {QStringLiteral("Folder_Delete"), &workerAccountCodes::deleteFolder},
        {QStringLiteral("Folder_Adjust"), &workerAccountCodes::adjustFolder},
        {QStringLiteral("Account_Create"), &workerAccountCodes::createAccount},
        {QStringLiteral("Account_Edit"), &workerAccountCodes::editAccount},
        {QStringLiteral("Account_Delete"), &workerAccountCodes::deleteAccount},
        {QStringLiteral("Account_Grid"), &workerAccountCodes::editAccountsInGrid},
        {QStringLiteral("DirectEdit"), &workerAccountCodes::startRename},
        {QStringLiteral("Rename"), &workerAccountCodes::startRename},
        {QStringLiteral("_explorerNodeDrag"), &workerAccountCodes::nodeDropped},
        {QStringLiteral("_explorerNodeRightClick"), &workerAccountCodes::contextMenu},
        {QStringLiteral("_explorerNodeClick"), &workerAccountCodes::showContent},
        {QStringLiteral("Find"), &workerAccountCodes::find},
        {QStringLiteral("_gridLeftDblClick"), &workerAccountCodes::viewRow},
    };
    if (const auto handler = handlers.constFind(command); handler != handlers.cend()) {
        (this->**handler)();
    } else if (command == u"Folder_Up" || command == u"Folder_Down") {
        moveFolder(command == u"Folder_Up");
    } else if (command == u"Expand" || command == u"Contract") {
        child_->Explorer().ExpandNodes(command == u"Expand");
    } else if (command == fundList || command == ledgerList || command == viewList) {
        readChoices();
        loadTree();
    } else if (command == u"_Refresh") {
        loadTree(child_->Explorer().SelectedNode());
    } else if (command == u"_Print") {
        printListing();
    }
    if (child_)
        enableCommands();
}

void workerAccountCodes::loadTree(const QString &reselect)
{
    classExplorer &explorer = child_->Explorer();
    classStatusbar &status = child_->Statusbar();
    child_->setLoading(true);
    // The tree's own signals stay quiet until it is whole.
    explorer.view()->blockSignals(true);
    explorer.RemoveNodes();
    folders_.clear();
    codes_.clear();
    codesByFolder_.clear();
    renaming_.clear();
    explorer.view()->setUpdatesEnabled(false);

    status.setPanelText(statusPanel, QStringLiteral("Loading account codes..."));
    if (!fund_.isEmpty()) {
        std::vector<clsAccountCode> all;
        accounts_.ClearAccountCode();
        accounts_.AccountCode().setFundID(fund_);
        accounts_.AccountCode().setLedgerID(ledger_);
        // Every code of the fund and ledger at once; each folder takes its own below.
        if (!accounts_.GetChildren(QStringLiteral("*"), all))
            showMessage(QStringLiteral("Error reading summary file: ") + accounts_.Error().ErrorText());
        std::sort(all.begin(), all.end(),
                  [](const clsAccountCode &a, const clsAccountCode &b) { return a.AccountCode() < b.AccountCode(); });
        for (clsAccountCode &code : all) {
            if (code.HistoricalCode().trimmed() == u"H")
                continue;
            codes_.insert(code.ID(), code);
            codesByFolder_[hangingFolder(code, view_)].push_back(std::move(code));
        }

        const QString fundName = [this] {
            for (const FundEntry &fund : funds_) {
                if (fund.id == fund_)
                    return fund.name;
            }
            return fund_;
        }();
        explorer.AddRootFolder(rootKey(), fundName + QStringLiteral(" - ") + ledgerCaption(ledger_));
        addFolders(rootKey(), 0, true);
        // Codes whose folder is not in this tree stay reachable under the root.
        QList<qint64> unplaced;
        for (auto folder = codesByFolder_.cbegin(); folder != codesByFolder_.cend(); ++folder) {
            if (!folders_.contains(folder.key()))
                unplaced << folder.key();
        }
        std::sort(unplaced.begin(), unplaced.end());
        for (const qint64 folderId : unplaced)
            addCodes(rootKey(), folderId);
        explorer.view()->topLevelItem(0)->setExpanded(true);
    }
    explorer.view()->setUpdatesEnabled(true);
    explorer.view()->blockSignals(false);
    status.HideProgress();
    status.setPanelText(statusPanel,
                        QStringLiteral("%1 folders, %2 account codes").arg(folders_.size()).arg(codes_.size()));
    child_->setLoading(false);
    if (explorer.NodeCount() > 0)
        explorer.setSelectedNode(knownNode(reselect) ? reselect : rootKey());
    showContent();
    enableCommands();
}

bool workerAccountCodes::knownNode(const QString &key) const
{
    switch (kindOf(key)) {
    case NodeKind::Root:
        return true;
    case NodeKind::Folder:
        return folders_.contains(idOf(key));
    case NodeKind::Code:
        return codes_.contains(idOf(key));
    case NodeKind::None:
        break;
    }
    return false;
}

workerAccountCodes::NodeKind workerAccountCodes::kindOf(const QString &key)
{
    if (key == rootKey())
        return NodeKind::Root;
    if (key.startsWith(u'F'))
        return NodeKind::Folder;
    if (key.startsWith(u'A'))
        return NodeKind::Code;
    return NodeKind::None;
}

qint64 workerAccountCodes::idOf(const QString &key)
{
    return key.mid(1).toLongLong();
}

void workerAccountCodes::addFolders(const QString &parentKey, qint64 parentId, bool top)
{
    std::vector<clsTreeItem> below;
    FolderQueries queries(tree_, view_, fund_, ledger_);
    if (!queries.children(parentId, below)) {
        showMessage(QStringLiteral("Error reading tree file."));
        return;
    }
    classStatusbar &status = child_->Statusbar();
    if (top)
        status.ShowProgress(int(below.size()));
    int done = 0;
    for (const clsTreeItem &folder : below) {
        if (folders_.contains(folder.ID))
            continue; // a loop in the stored tree: show each folder once
        if (top) {
            status.ShowStep(statusPanel, QStringLiteral("Loading ") + folder.Name, ++done);
        }
        folders_.insert(folder.ID, folder);
        const QString key = folderKey(folder.ID);
        child_->Explorer().AddFolder(parentKey, key, folder.Name);
        addFolders(key, folder.ID, false);
        addCodes(key, folder.ID);
    }
}

void workerAccountCodes::addCodes(const QString &parentKey, qint64 folderId)
{
    const auto found = codesByFolder_.constFind(folderId);
    if (found == codesByFolder_.cend())
        return;
    for (const clsAccountCode &code : *found)
        child_->Explorer().AddObject(parentKey, codeKey(code.ID()), codeCaption(code));
}

int workerAccountCodes::folderDepth(const QString &key) const
{
    // The explorer counts its root as the first level; folders count from below it.
    return child_->Explorer().Node(key).depth - 1;
}

void workerAccountCodes::showContent()
{
    if (!child_ || child_->Loading())
        return;
    classGrid &grid = *child_->Grid(1);
    grid.Reset();
    grid.AddColumn(QStringLiteral("AccountCode"), QStringLiteral("Account Code"), widthOf(1700));
    grid.AddColumn(QStringLiteral("Description"), QStringLiteral("Description"), widthOf(3300));
    grid.AddColumn(QStringLiteral("StateCode"), QStringLiteral("State Code"), widthOf(1600));
    if (view_ == u"T")
        grid.AddColumn(QStringLiteral("ForceNewPage"), QStringLiteral("Force New Page"), widthOf(1500));
    const QString selected = child_->Explorer().SelectedNode();
    QStringList keys;
    if (kindOf(selected) == NodeKind::Code)
        keys << selected;
    else if (!selected.isEmpty())
        keys = child_->Explorer().ChildKeys(selected);
    gridKeys_ = keys;
    for (const QString &key : keys) {
        const int row = grid.AddRow();
        if (kindOf(key) == NodeKind::Folder) {
            const clsTreeItem &folder = folders_[idOf(key)];
            grid.SetCell(row, QStringLiteral("Description"), folder.Name);
            if (view_ == u"T")
                grid.SetCell(row, QStringLiteral("ForceNewPage"),
                             folder.ForceNewPage ? QStringLiteral("Yes") : QStringLiteral("No"));
        } else {
            const clsAccountCode &code = codes_[idOf(key)];
            grid.SetCell(row, QStringLiteral("AccountCode"), code.AccountCode());
            grid.SetCell(row, QStringLiteral("Description"), code.AccountName());
            grid.SetCell(row, QStringLiteral("StateCode"), code.StateCode());
        }
    }
    grid.Refresh();
}

bool workerAccountCodes::commandEnabled(const QString &key) const
{
    const QString selected = child_->Explorer().SelectedNode();
    const NodeKind kind = kindOf(selected);
    const bool container = kind == NodeKind::Folder || kind == NodeKind::Root;
    if (key == u"Folder_Create")
        return container && folderDepth(selected) < explorerView(view_).maximumDepth;
    if (key.startsWith(u"Folder_") || key == u"DirectEdit")
        return kind == NodeKind::Folder;
    if (key == u"Account_Create")
        return container;
    if (key == u"Account_Grid")
        return !fund_.isEmpty();
    if (key.startsWith(u"Account_"))
        return kind == NodeKind::Code;
    return true;
}

void workerAccountCodes::enableCommands()
{
    if (!child_)
        return;
    classToolbar &toolbar = child_->Toolbar();
    for (const CommandInfo &info : commands) {
        if (info.onToolbar && *info.key != '\0')
            toolbar.setButtonEnabled(QLatin1String(info.key), commandEnabled(QLatin1String(info.key)));
    }
}

std::vector<std::pair<QString, QString>> workerAccountCodes::nodeCommands(const QString &nodeKey)
{
    QStringList keys;
    switch (kindOf(nodeKey)) {
    case NodeKind::Root:
        keys = {"Folder_Create", "Account_Create", "", "Expand", "Contract", "_Refresh"};
        break;
    case NodeKind::Folder:
        keys = {"Folder_Create", "Folder_Edit",   "DirectEdit", "Folder_Delete",  "", "Folder_Up",
                "Folder_Down",   "Folder_Adjust", "",           "Account_Create", "", "Expand",
                "Contract"};
        break;
    case NodeKind::Code:
        keys = {"Account_Edit", "Account_Delete"};
        break;
    case NodeKind::None:
        break;
    }
    std::vector<std::pair<QString, QString>> commands;
    for (const QString &key : keys)
        commands.emplace_back(key, key.isEmpty() ? QString() : captionOf(key));
    return commands;
}

void workerAccountCodes::contextMenu()
{
    const QString selected = child_->Explorer().SelectedNode();
    auto *menu = new QMenu(child_);
    menu->setObjectName(QStringLiteral("mnuExplorerNode"));
    menu->setAttribute(Qt::WA_DeleteOnClose);
    for (const auto &[key, caption] : nodeCommands(selected)) {
        if (key.isEmpty()) {
            menu->addSeparator();
            continue;
        }
        QAction *action = menu->addAction(caption);
        action->setEnabled(commandEnabled(key));
        connect(action, &QAction::triggered, this, [this, key] { mwfrmChild_Command(key); });
    }
    // Not modal: the command runs when the user picks it.
    menu->popup(QCursor::pos());
}

void workerAccountCodes::find()
{
    const std::optional<QString> answer = messages().inputBox(
        QStringLiteral("Find the account code or folder whose caption contains:"), QStringLiteral("Find"), lastFind_);
    if (!answer || answer->trimmed().isEmpty())
        return;
    lastFind_ = answer->trimmed();
    // Search onwards from the selected node, wrapping round once.
    QTreeWidget *tree = child_->Explorer().view();
    std::vector<QTreeWidgetItem *> order;
    for (QTreeWidgetItemIterator it(tree); *it; ++it)
        order.push_back(*it);
    const auto current = std::find(order.begin(), order.end(), tree->currentItem());
    const std::size_t start = current == order.end() ? 0 : std::size_t(current - order.begin()) + 1;
    for (std::size_t i = 0; i < order.size(); ++i) {
        QTreeWidgetItem *item = order[(start + i) % order.size()];
        if (item->text(0).contains(lastFind_, Qt::CaseInsensitive)) {
            tree->setCurrentItem(item);
            tree->scrollToItem(item);
            return;
        }
    }
    showMessage(QStringLiteral("No account code or folder matches \"") + lastFind_ + QStringLiteral("\"."),
                QStringLiteral("Find"));
}

void workerAccountCodes::printListing()
{
    if (!context_.printListing) {
        showMessage(QStringLiteral("The account code listing report is not available."), QStringLiteral("Print"));
        return;
    }
    context_.printListing(fund_, ledger_, view_);
}

void workerAccountCodes::editAccountsInGrid()
{
    if (!context_.editAccountsInGrid) {
        showMessage(QStringLiteral("Editing accounts in a grid is not available."));
        return;
    }
    context_.editAccountsInGrid(fund_, ledger_);
    // The grid may have renamed codes or changed their state codes.
    if (child_)
        loadTree(child_->Explorer().SelectedNode());
}

void workerAccountCodes::showMessage(const QString &text, const QString &title)
{
    messages().errorDialog({1, title.isEmpty() ? explorerTitle() : title, text});
}

int workerAccountCodes::runDialog(DialogWorker &worker)
{
    classDialog dialog(worker, child_);
    return context_.runDialog ? context_.runDialog(dialog) : dialog.Run(1);
}

void workerAccountCodes::staleNode(const QString &what, const QString &title)
{
    showMessage(what + QStringLiteral(" no longer exists or has been moved by another user. The tree now shows the "
                                      "account codes as they are."),
                title);
    loadTree(child_->Explorer().SelectedNode());
}

void workerAccountCodes::viewRow()
{
    const int row = child_->Grid(1)->CurrentRow();
    const QString key = gridKeys_.value(row - 1);
    if (kindOf(key) == NodeKind::Folder) {
        const clsTreeItem &folder = folders_[idOf(key)];
        FolderDialog dialog(DialogPurpose::View, view_ == u"T", {folder.Name, folder.ForceNewPage}, {});
        runDialog(dialog);
    } else if (kindOf(key) == NodeKind::Code) {
        const clsAccountCode &code = codes_[idOf(key)];
        AccountCodeDialog dialog(DialogPurpose::View, {code.AccountCode(), code.AccountName(), code.StateCode()}, {},
                                 {});
        runDialog(dialog);
    }
}
