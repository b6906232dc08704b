#include "explorerfixture.h"
#include "explorerrules.h"

#include <QMenu>
#include <QTableView>

namespace {

const QString maintenance = QStringLiteral("Account Code Maintenance");

std::vector<const demo::Folder *> topFolders(const demo::District &d, QChar type, const QString &fund, QChar ledger)
{
    std::vector<const demo::Folder *> top;
    for (const demo::Folder &f : d.folders) {
        if (f.nodeType == type && f.fundId == fund && f.ledger == ledger && f.parentId == 0)
            top.push_back(&f);
    }
    return top;
}

const demo::Account &firstLiveCode(const demo::District &d, const QString &fund, QChar ledger)
{
    for (const demo::Account &a : d.accounts) {
        if (a.fundId == fund && a.ledger == ledger && !a.historical)
            return a;
    }
    throw std::logic_error("no live code");
}

} // namespace

// ---- Opening, the drop-downs, the tree and the grid of each view ----

TEST_P(ExplorerTest, OpensOnTheFirstFundsExpenditureFoldersWithLiveCodesCaptionedCodeAndName)
{
    const mdiChild &child = *worker().child();
    EXPECT_EQ(child.windowTitle(), maintenance);
    EXPECT_EQ(worker().fund(), district().funds.front().id);
    EXPECT_EQ(worker().ledger(), "E");

    const auto top = topFolders(district(), u'T', worker().fund(), u'E');
    QStringList folderKeys;
    for (const QString &key : explorer().ChildKeys(workerAccountCodes::rootKey())) {
        if (key.startsWith(u'F'))
            folderKeys << key;
    }
    ASSERT_EQ(folderKeys.size(), qsizetype(top.size()));
    for (std::size_t i = 0; i < top.size(); ++i)
        EXPECT_EQ(explorer().Node(folderKeys[qsizetype(i)]).text, top[i]->name);

    const demo::Account &code = firstLiveCode(district(), worker().fund(), u'E');
    const QString key = nodeNamed(code.code);
    ASSERT_FALSE(key.isEmpty());
    EXPECT_EQ(explorer().Node(key).text, code.code + "  -  " + code.name);
    for (const demo::Account &a : district().accounts) {
        if (a.historical && a.fundId == worker().fund())
            EXPECT_TRUE(nodeNamed(a.code).isEmpty()) << a.code.toStdString() << " is retired";
    }
    EXPECT_EQ(explorer().caption()->text(), explorer().Node(workerAccountCodes::rootKey()).text);
    EXPECT_EQ(explorer().Node(workerAccountCodes::rootKey()).text, district().funds.front().name + " - Expenditure");
    EXPECT_FALSE(worker().child()->Statusbar().ProgressVisible());
    EXPECT_TRUE(worker().child()->Statusbar().PanelText("Status").contains("account codes"));
}

TEST_P(ExplorerTest, EachViewShowsItsOwnFoldersAndGridColumns)
{
    classGrid &grid = *worker().child()->Grid(1);
    select(workerAccountCodes::rootKey());
    const auto tTop = topFolders(district(), u'T', "A", u'E');
    ASSERT_FALSE(tTop.empty());
    EXPECT_EQ(grid.GetItemValue(1, "Description"), tTop.front()->name);
    EXPECT_EQ(grid.GetItemValue(1, "ForceNewPage"), tTop.front()->forceNewPage ? "Yes" : "No");

    for (const QChar type : {u'B', u'P'}) {
        choose("View", QString(type));
        EXPECT_EQ(worker().view(), QString(type));
        EXPECT_FALSE(grid.ColumnVerify("ForceNewPage")) << "only the account-code view pages";
        const auto top = topFolders(district(), type, "A", u'E');
        ASSERT_FALSE(top.empty());
        EXPECT_FALSE(nodeNamed(top.front()->name).isEmpty());
        EXPECT_TRUE(nodeNamed(tTop.front()->name).isEmpty() || tTop.front()->name == top.front()->name);
    }

    choose("Ledger", "R");
    choose("View", "T");
    const auto revenue = topFolders(district(), u'T', "A", u'R');
    ASSERT_FALSE(revenue.empty());
    EXPECT_FALSE(nodeNamed(revenue.front()->name).isEmpty());
    const QString code = nodeNamed(firstLiveCode(district(), "A", u'R').code);
    select(code);
    EXPECT_EQ(grid.CountRows(), 1);
    EXPECT_EQ(grid.GetItemValue(1, "AccountCode"), firstLiveCode(district(), "A", u'R').code);
}

TEST_P(ExplorerTest, FundsThatCannotBeReadAreReportedAndTheWindowStillOpens)
{
    AccountCodesContext broken = context();
    broken.listFunds = [](std::vector<FundEntry> &, QString &error) {
        error = "Funds.btr: file not found";
        return false;
    };
    QMdiArea area;
    workerAccountCodes second(broken);
    second.DoMDIChild(area);
    EXPECT_EQ(lastMessage(), maintenance + "|Cannot initialize funds. error:Funds.btr: file not found");
    EXPECT_EQ(second.child()->Explorer().NodeCount(), 0);
}

TEST_P(ExplorerTest, TheAccountGridAndTheListingOpenOnTheShownFundLedgerAndView)
{
    AccountCodesContext withGrid = context();
    QStringList opened;
    withGrid.printListing = [&](const QString &fund, const QString &ledger, const QString &node) {
        opened << fund + "/" + ledger + "/" + node;
    };
    withGrid.editAccountsInGrid = [&](const QString &fund, const QString &ledger) {
        opened << fund + "/" + ledger;
        exec("update AccountCodes set AccountName = 'Renamed In Grid' where AccountCode = 'A1010.400'");
    };
    QMdiArea area;
    workerAccountCodes second(withGrid);
    second.DoMDIChild(area);
    second.mwfrmChild_Command("Account_Grid");
    EXPECT_EQ(opened, QStringList{"A/E"});
    bool renamedShown = false;
    for (QTreeWidgetItemIterator it(second.child()->Explorer().view()); *it; ++it)
        renamedShown = renamedShown || (*it)->text(0) == "A1010.400  -  Renamed In Grid";
    EXPECT_TRUE(renamedShown) << "what the grid saved shows in the tree";
    second.mwfrmChild_Command("_Print");
    EXPECT_EQ(opened, (QStringList{"A/E", "A/E/T"}));

    command("Account_Grid");
    EXPECT_EQ(lastMessage(), maintenance + "|Editing accounts in a grid is not available.");
}

// ---- Folders: create, edit, delete ----

TEST_P(ExplorerTest, CreateFolderStoresItUnderTheSelectedFolderWithinTheViewsDepth)
{
    const qint64 top = addFolder(0, "Level 1");
    command("_Refresh");
    select(workerAccountCodes::folderKey(top));
    fill = typeFolder("  Athletics  ", true);
    command("Folder_Create");
    EXPECT_EQ(dialogCaptions.value(0), "New Folder");
    const QString created = explorer().SelectedNode();
    ASSERT_TRUE(created.startsWith(u'F'));
    EXPECT_EQ(explorer().Node(created).parentKey, workerAccountCodes::folderKey(top));
    EXPECT_EQ(
        rows("select NodeType, FundID, LedgerID, ParentID, Name, ForceNewPage from BudgetSummaryTree where ID = '" +
             created.mid(1) + "'"),
        QString("T,A,E,%1,Athletics,Y ").arg(top));

    // An empty name keeps the dialog open and stores nothing.
    const QString before = count("BudgetSummaryTree");
    fill = typeFolder("   ");
    command("Folder_Create");
    EXPECT_EQ(lastMessage(), maintenance + "|Folder name is a required field.");
    fill = typeFolder(QString(41, u'x'));
    command("Folder_Create");
    EXPECT_EQ(lastMessage(), maintenance + "|Folder name can be at most 40 characters long.");
    EXPECT_EQ(count("BudgetSummaryTree"), before);

    // Five levels in the account-code view, then no more.
    qint64 parent = top;
    for (int level = 2; level <= 5; ++level)
        parent = addFolder(parent, QString("Level %1").arg(level));
    command("_Refresh");
    select(workerAccountCodes::folderKey(parent));
    fill = typeFolder("Level 6");
    command("Folder_Create");
    EXPECT_EQ(lastMessage(), maintenance + "|Cannot add new folder at this level.");
    EXPECT_EQ(count("BudgetSummaryTree"), QString::number(before.toInt() + 4));
}

TEST_P(ExplorerTest, BuildingsAndProgramsTakeFoldersAtTheTopOnly)
{
    for (const QString type : {"B", "P"}) {
        choose("View", type);
        select(workerAccountCodes::rootKey());
        fill = typeFolder("Annex " + type);
        command("Folder_Create");
        const QString created = explorer().SelectedNode();
        ASSERT_TRUE(created.startsWith(u'F')) << type.toStdString();
        EXPECT_EQ(scalar("select NodeType from BudgetSummaryTree where ID = '" + created.mid(1) + "'"), type);
        messages_->clear();
        command("Folder_Create");
        EXPECT_EQ(lastMessage(), maintenance + "|Cannot add new folder at this level.") << type.toStdString();
        EXPECT_TRUE(explorer().ChildKeys(created).isEmpty());
    }
}

TEST_P(ExplorerTest, EditFolderWritesNameAndPagingAndSaysWhenTheFolderIsGone)
{
    const qint64 id = addFolder(0, "Old name");
    command("_Refresh");
    select(workerAccountCodes::folderKey(id));
    fill = typeFolder("New name", true);
    command("Folder_Edit");
    EXPECT_EQ(dialogCaptions.value(0), "Edit Folder");
    EXPECT_EQ(rows("select Name, ForceNewPage from BudgetSummaryTree where ID = '" + QString::number(id) + "'"),
              "New name,Y");
    EXPECT_EQ(explorer().Node(workerAccountCodes::folderKey(id)).text, "New name");
    // The set-up's folders were added by a store of no task.
    EXPECT_EQ(rows("select Task, TableName, RowKey, ColumnName, OldValue, NewValue from AuditTrail where Task <> '' "
                   "order by ID")
                  .toStdString(),
              QString("Account Codes,BudgetSummaryTree,ID=%1,Name,Old name,New name|"
                      "Account Codes,BudgetSummaryTree,ID=%1,ForceNewPage,N,Y")
                  .arg(id)
                  .toStdString());

    // What the user types reaches the database as text, quotes and all.
    fill = typeFolder("O'Neil's'); drop table Parms;--");
    command("Folder_Edit");
    EXPECT_EQ(scalar("select Name from BudgetSummaryTree where ID = '" + QString::number(id) + "'"),
              "O'Neil's'); drop table Parms;--");
    EXPECT_NE(count("BudgetSummaryTree"), "1");

    exec("delete from BudgetSummaryTree where ID = '" + QString::number(id) + "'"); // another workstation
    command("Folder_Edit");
    EXPECT_EQ(lastMessage(), maintenance + "|Error retrieving folder. error:Record not Found.");
    EXPECT_TRUE(nodeNamed("New name").isEmpty()) << "the tree shows what is stored now";
    EXPECT_EQ(dialogCaptions.size(), 2);
}

TEST_P(ExplorerTest, DeleteFolderIsRefusedWhileItHoldsSubfoldersOrCodesRetiredOnesIncluded)
{
    const qint64 parent = addFolder(0, "Parent");
    addFolder(parent, "Child");
    const qint64 holder = addFolder(0, "Holder");
    const demo::Account &code = firstLiveCode(district(), "A", u'E');
    exec(QString("update AccountCodes set ParentID = '%1', HistoricalCode = 'H' where AccountCode = '%2'")
             .arg(holder)
             .arg(code.code));
    const qint64 empty = addFolder(0, "Empty");
    command("_Refresh");

    select(workerAccountCodes::folderKey(parent));
    command("Folder_Delete");
    EXPECT_EQ(lastMessage(), maintenance + "|Folder has subfolders and cannot be deleted.");
    select(workerAccountCodes::folderKey(holder));
    EXPECT_TRUE(explorer().ChildKeys(workerAccountCodes::folderKey(holder)).isEmpty()) << "a retired code is not shown";
    command("Folder_Delete");
    EXPECT_EQ(lastMessage(), maintenance + "|Folder has account codes and cannot be deleted.");
    EXPECT_EQ(count(QString("BudgetSummaryTree where ID in ('%1','%2')").arg(parent).arg(holder)), "2");

    messages_->clear();
    select(workerAccountCodes::folderKey(empty));
    command("Folder_Delete");
    EXPECT_TRUE(messages_->shown().empty());
    EXPECT_EQ(count(QString("BudgetSummaryTree where ID = '%1'").arg(empty)), "0");
    EXPECT_EQ(explorer().SelectedNode(), workerAccountCodes::rootKey());
    EXPECT_TRUE(nodeNamed("Empty").isEmpty());
}

// ---- Moving folders up and down ----

TEST_P(ExplorerTest, MoveUpAndDownSwapSortOrderWithTheNeighbour)
{
    const qint64 parent = addFolder(0, "Parent");
    const qint64 first = addFolder(parent, "First");
    const qint64 second = addFolder(parent, "Second");
    command("_Refresh");
    const auto sortOrders = [&] {
        return rows(
            QString("select Name, SortOrder from BudgetSummaryTree where ParentID = '%1' order by Name").arg(parent));
    };
    const QString before = sortOrders();
    select(workerAccountCodes::folderKey(second));
    command("Folder_Up");
    EXPECT_EQ(explorer().ChildKeys(workerAccountCodes::folderKey(parent)),
              QStringList({workerAccountCodes::folderKey(second), workerAccountCodes::folderKey(first)}));
    EXPECT_EQ(rows(QString("select SortOrder from BudgetSummaryTree where ID = '%1'").arg(second)).trimmed(),
              QString::number(first));
    EXPECT_EQ(explorer().SelectedNode(), workerAccountCodes::folderKey(second));
    command("Folder_Up"); // already first: nothing
    command("Folder_Down");
    EXPECT_EQ(sortOrders(), before);
    EXPECT_TRUE(messages_->shown().empty());
}

TEST_P(ExplorerTest, AMoveWhoseSecondWriteFailsLeavesBothFoldersAsTheyWere)
{
    const qint64 parent = addFolder(0, "Parent");
    addFolder(parent, "First");
    const qint64 second = addFolder(parent, "Refused");
    const qint64 third = addFolder(parent, "Third");
    command("_Refresh");
    const QString before =
        rows(QString("select ID, SortOrder from BudgetSummaryTree where ParentID = '%1' order by ID").arg(parent));
    refuseWrites(*db(), "BudgetSummaryTree", "UPDATE", "trim(OLD.Name) = 'Refused'");
    select(workerAccountCodes::folderKey(third));
    command("Folder_Up"); // third is written first, then the refused neighbour
    EXPECT_EQ(lastMessage(), "Move Folder Up|Error updating tree summary file.");
    EXPECT_EQ(
        rows(QString("select ID, SortOrder from BudgetSummaryTree where ParentID = '%1' order by ID").arg(parent)),
        before);
    EXPECT_FALSE(db()->inTransaction());
    EXPECT_EQ(count("AuditTrail where Task <> ''"), "0") << "the first folder's entry went with its write";
    EXPECT_EQ(explorer().ChildKeys(workerAccountCodes::folderKey(parent)).last(), workerAccountCodes::folderKey(third));
    select(workerAccountCodes::folderKey(second));
    command("Folder_Down");
    EXPECT_EQ(lastMessage(), "Move Folder Down|Error updating tree summary file.");
    EXPECT_FALSE(db()->inTransaction());
}

// ---- Account codes ----

TEST_P(ExplorerTest, CreateAccountCodeValidatesThenStoresItUpperCasedUnderTheFolder)
{
    const qint64 folder = addFolder(0, "New codes");
    command("_Refresh");
    select(workerAccountCodes::folderKey(folder));

    const struct {
        QString code, description, state, message;
    } refused[] = {
        {"A9999.999", "  ", "", "Description field is required."},
        {"C9999.999", "Wrong fund", "", "Account code must start with the current viewing fund."},
        {firstLiveCode(district(), "C", u'E').code, "Exists in another fund", "",
         "Account code must start with the current viewing fund."},
        {firstLiveCode(district(), "A", u'R').code.toLower(), "Exists in the other ledger", "",
         "Account code already exists."},
        {"A9999.998", QString(61, u'd'), "", "Description can be at most 60 characters long."},
        {"A9999.998", "Name", QString(31, u's'), "State code can be at most 30 characters long."},
    };
    for (const auto &r : refused) {
        fill = typeAccount(r.code, r.description, r.state);
        command("Account_Create");
        EXPECT_EQ(lastMessage(), maintenance + "|" + r.message) << r.code.toStdString();
    }
    EXPECT_EQ(dialogCaptions.value(0), "New Account Code");
    EXPECT_EQ(count("AccountCodes where AccountCode like 'A9999%'"), "0");

    messages_->clear();
    fill = typeAccount("  a9999.999 ", "Robotics club", "A2110.99");
    command("Account_Create");
    EXPECT_TRUE(messages_->shown().empty()) << lastMessage().toStdString();
    EXPECT_EQ(rows("select AccountCode, AccountName, StateCode, FundID, Ledger, ParentID from AccountCodes where "
                   "AccountCode = 'A9999.999'"),
              QString("A9999.999,Robotics club,A2110.99,A,E,%1").arg(folder));
    const QString id = scalar("select ID from AccountCodes where AccountCode = 'A9999.999'");
    EXPECT_EQ(explorer().SelectedNode(), workerAccountCodes::codeKey(id.toLongLong()));
    EXPECT_EQ(explorer().Node(explorer().SelectedNode()).text, "A9999.999  -  Robotics club");
    EXPECT_EQ(explorer().Node(explorer().SelectedNode()).parentKey, workerAccountCodes::folderKey(folder));
}

TEST_P(ExplorerTest, ACodeCreatedInTheBuildingViewHangsByItsBuilding)
{
    choose("View", "B");
    const auto buildings = topFolders(district(), u'B', "A", u'E');
    const QString building = nodeNamed(buildings.front()->name);
    select(building);
    fill = typeAccount("A9999.100", "Building code");
    command("Account_Create");
    EXPECT_EQ(rows("select BuildingID, ParentID, ProgramID from AccountCodes where AccountCode = 'A9999.100'"),
              QString("%1,0,0").arg(building.mid(1)));
}

TEST_P(ExplorerTest, ChangingACodeIsConfirmedAndValidatedNameChangesAreNot)
{
    const demo::Account &code = firstLiveCode(district(), "A", u'E');
    const QString key = nodeNamed(code.code);
    select(key);
    fill = typeAccount(code.code, "Renamed", "S1");
    command("Account_Edit");
    EXPECT_EQ(dialogCaptions.value(0), "Edit Account Code");
    EXPECT_EQ(rows("select AccountName, StateCode from AccountCodes where AccountCode = '" + code.code + "'"),
              "Renamed,S1");
    EXPECT_EQ(explorer().Node(key).text, code.code + "  -  Renamed");
    EXPECT_TRUE(messages_->shown().empty());
    EXPECT_EQ(rows("select Task, AccountCode, ColumnName, NewValue from AuditTrail order by ID").toStdString(),
              ("Account Codes," + code.code + ",AccountName,Renamed|Account Codes," + code.code + ",StateCode,S1")
                  .toStdString());

    fill = typeAccount("a9000.1", "Renamed");
    messages_->answer(MsgAnswer::No);
    command("Account_Edit");
    ASSERT_FALSE(messages_->shown().empty());
    EXPECT_EQ(messages_->shown().back().message.title, "Confirm Account Code Change");
    EXPECT_EQ(messages_->shown().back().message.text, "Do you really want to change " + code.code + " to A9000.1?");
    EXPECT_EQ(count("AccountCodes where AccountCode = 'A9000.1'"), "0");

    messages_->clear();
    messages_->answer(MsgAnswer::Yes);
    fill = typeAccount(district().accounts.back().code, "Renamed");
    command("Account_Edit");
    EXPECT_EQ(lastMessage(), maintenance + "|Account code must start with the current viewing fund.");

    messages_->clear();
    messages_->answer(MsgAnswer::Yes);
    fill = typeAccount("a9000.1", "Renamed");
    command("Account_Edit");
    EXPECT_EQ(scalar("select AccountCode from AccountCodes where ID = " + key.mid(1)), "A9000.1");
    EXPECT_EQ(explorer().Node(key).text, "A9000.1  -  Renamed");
}

TEST_P(ExplorerTest, DeleteAccountCodeRetiresItAfterConfirmation)
{
    const demo::Account &code = firstLiveCode(district(), "A", u'E');
    const QString key = nodeNamed(code.code);
    select(key);
    messages_->answer(MsgAnswer::No);
    command("Account_Delete");
    ASSERT_EQ(messages_->shown().size(), 1u);
    EXPECT_EQ(lastMessage(), "Confirm Deletion.|Delete Account Code: " + code.code + "\n");
    EXPECT_EQ(scalar("select HistoricalCode from AccountCodes where ID = " + key.mid(1)), "");

    messages_->answer(MsgAnswer::Yes);
    command("Account_Delete");
    EXPECT_EQ(scalar("select HistoricalCode from AccountCodes where ID = " + key.mid(1)), "H");
    EXPECT_TRUE(nodeNamed(code.code).isEmpty());

    // Gone meanwhile: the other user's delete removed the row outright.
    const QString other = nodeNamed(district().accounts.at(std::size_t(district().accountIndex(code.code)) + 1).code);
    ASSERT_FALSE(other.isEmpty());
    exec("delete from AccountCodes where ID = " + other.mid(1));
    select(other);
    messages_->answer(MsgAnswer::Yes);
    command("Account_Delete");
    EXPECT_EQ(lastMessage(), maintenance + "|Error deleting account code from summary file.");
    EXPECT_FALSE(db()->inTransaction());
}

// ---- Drag and drop ----

TEST_P(ExplorerTest, ACodeDroppedOnAFolderHangsThereInTheViewsColumn)
{
    const qint64 folder = addFolder(0, "Target");
    command("_Refresh");
    const demo::Account &code = firstLiveCode(district(), "A", u'E');
    const QString key = nodeNamed(code.code);
    EXPECT_TRUE(explorer().DropNode(key, workerAccountCodes::folderKey(folder)));
    EXPECT_EQ(scalar("select ParentID from AccountCodes where ID = " + key.mid(1)), QString::number(folder));
    EXPECT_EQ(explorer().Node(key).parentKey, workerAccountCodes::folderKey(folder));

    choose("View", "P");
    const qint64 program = addFolder(0, "Program target", "P");
    command("_Refresh");
    EXPECT_TRUE(explorer().DropNode(nodeNamed(code.code), workerAccountCodes::folderKey(program)));
    EXPECT_EQ(rows("select ParentID, ProgramID from AccountCodes where ID = " + key.mid(1)),
              QString("%1,%2").arg(folder).arg(program));
    EXPECT_TRUE(messages_->shown().empty());
}

TEST_P(ExplorerTest, AFolderMayNotEndDeeperThanTheViewAllows)
{
    // A three-level subtree under a level-three folder would reach level six.
    const qint64 l1 = addFolder(0, "L1");
    const qint64 l2 = addFolder(l1, "L2");
    const qint64 l3 = addFolder(l2, "L3");
    const qint64 s1 = addFolder(0, "S1");
    const qint64 s2 = addFolder(s1, "S2");
    addFolder(s2, "S3");
    command("_Refresh");
    EXPECT_FALSE(explorer().DropNode(workerAccountCodes::folderKey(s1), workerAccountCodes::folderKey(l3)));
    EXPECT_EQ(lastMessage(), "Drag-Drop Operation|Unable to move folder(s).  Maximum of 5 level(s) is allowed.");
    EXPECT_EQ(scalar(QString("select ParentID from BudgetSummaryTree where ID = '%1'").arg(s1)), "0");
    EXPECT_EQ(explorer().Node(workerAccountCodes::folderKey(s1)).parentKey, workerAccountCodes::rootKey());

    // Two levels fit exactly.
    messages_->clear();
    EXPECT_TRUE(explorer().DropNode(workerAccountCodes::folderKey(s2), workerAccountCodes::folderKey(l3)));
    EXPECT_TRUE(messages_->shown().empty());
    EXPECT_EQ(scalar(QString("select ParentID from BudgetSummaryTree where ID = '%1'").arg(s2)), QString::number(l3));
    EXPECT_EQ(explorer().Node(workerAccountCodes::folderKey(s2)).depth, 5);

    // Buildings take no folder under a building.
    choose("View", "B");
    const qint64 b1 = addFolder(0, "Building one", "B");
    const qint64 b2 = addFolder(0, "Building two", "B");
    command("_Refresh");
    EXPECT_FALSE(explorer().DropNode(workerAccountCodes::folderKey(b2), workerAccountCodes::folderKey(b1)));
    EXPECT_EQ(lastMessage(), "Drag-Drop Operation|Unable to move folder(s).  Maximum of 1 level(s) is allowed.");
}

TEST_P(ExplorerTest, DropsOntoOrOfWhatAnotherUserChangedAreRefusedAndTheTreeRefreshed)
{
    const qint64 target = addFolder(0, "Target");
    const qint64 moving = addFolder(0, "Moving");
    const qint64 elsewhere = addFolder(0, "Elsewhere");
    command("_Refresh");

    // The other user moved the folder first.
    exec(QString("update BudgetSummaryTree set ParentID = '%1' where ID = '%2'").arg(elsewhere).arg(moving));
    EXPECT_FALSE(explorer().DropNode(workerAccountCodes::folderKey(moving), workerAccountCodes::folderKey(target)));
    EXPECT_TRUE(lastMessage().startsWith("Drag-Drop Operation|The folder Moving no longer exists or has been moved"));
    EXPECT_EQ(explorer().Node(workerAccountCodes::folderKey(moving)).parentKey,
              workerAccountCodes::folderKey(elsewhere));
    EXPECT_EQ(scalar(QString("select ParentID from BudgetSummaryTree where ID = '%1'").arg(moving)),
              QString::number(elsewhere));

    // ... or deleted the target.
    exec(QString("delete from BudgetSummaryTree where ID = '%1'").arg(target));
    const QString code = nodeNamed(firstLiveCode(district(), "A", u'E').code);
    EXPECT_FALSE(explorer().DropNode(code, workerAccountCodes::folderKey(target)));
    EXPECT_TRUE(lastMessage().startsWith("Drag-Drop Operation|The folder Target no longer exists"));
    EXPECT_TRUE(nodeNamed("Target").isEmpty());
    EXPECT_EQ(scalar("select ParentID from AccountCodes where ID = " + code.mid(1)),
              QString::number(firstLiveCode(district(), "A", u'E').parentId));

    // ... or put the target under the folder being moved.
    const qint64 outer = addFolder(0, "Outer");
    const qint64 inner = addFolder(0, "Inner");
    command("_Refresh");
    exec(QString("update BudgetSummaryTree set ParentID = '%1' where ID = '%2'").arg(outer).arg(inner));
    EXPECT_FALSE(explorer().DropNode(workerAccountCodes::folderKey(outer), workerAccountCodes::folderKey(inner)));
    EXPECT_EQ(scalar(QString("select ParentID from BudgetSummaryTree where ID = '%1'").arg(outer)), "0");
}

TEST_P(ExplorerTest, CommandsOnAFolderAnotherUserDeletedSayWhyAndRefresh)
{
    // Each command meets a folder the other user deleted after our tree was read.
    const auto vanished = [&] {
        const qint64 id = addFolder(0, "Vanishing");
        command("_Refresh");
        exec(QString("delete from BudgetSummaryTree where ID = '%1'").arg(id));
        select(workerAccountCodes::folderKey(id));
        return id;
    };
    const qint64 id = vanished();
    fill = typeFolder("Child");
    command("Folder_Create");
    EXPECT_TRUE(lastMessage().startsWith(maintenance + "|The folder no longer exists"));
    EXPECT_TRUE(nodeNamed("Vanishing").isEmpty());
    EXPECT_EQ(count(QString("BudgetSummaryTree where ParentID = '%1'").arg(id)), "0");

    vanished();
    fill = typeAccount("A9999.500", "Orphan");
    command("Account_Create");
    EXPECT_EQ(count("AccountCodes where AccountCode = 'A9999.500'"), "0");

    vanished();
    command("Folder_Delete");
    EXPECT_TRUE(lastMessage().startsWith(maintenance + "|The folder no longer exists"));
    command("Folder_Up");
    EXPECT_FALSE(db()->inTransaction());

    const QString code = nodeNamed(firstLiveCode(district(), "A", u'E').code);
    exec("delete from AccountCodes where ID = " + code.mid(1));
    select(code);
    fill = typeAccount(firstLiveCode(district(), "A", u'E').code, "Renamed");
    command("Account_Edit");
    EXPECT_TRUE(lastMessage().startsWith(maintenance + "|The account code no longer exists"));
    EXPECT_TRUE(nodeNamed(firstLiveCode(district(), "A", u'E').code).isEmpty());
}

// ---- Folder Adjustment ----

TEST_P(ExplorerTest, FolderAdjustmentOffersCodesSortedFromThePositionAndMovesTheChosenTogether)
{
    const qint64 folder = addFolder(0, "Gathered");
    command("_Refresh");
    std::vector<qint64> ids;
    for (const char *code : {"A9999.003", "A8888.001", "A7777.002"}) {
        exec(QString("insert into AccountCodes (Ledger, FundID, AccountCode, AccountName, ParentID, ProgramID, "
                     "BuildingID, StateCode, HistoricalCode, CatAFlag, CatPFlag, CatCFlag) values ('E','A','%1','x',"
                     "'0','0','0','','','','','')")
                 .arg(code));
        ids.push_back(scalar(QString("select ID from AccountCodes where AccountCode = '%1'").arg(code)).toLongLong());
    }
    command("_Refresh");
    select(workerAccountCodes::folderKey(folder));
    messages_->answerText(QString("7"));
    choice = ids;
    command("Folder_Adjust");
    ASSERT_EQ(messages_->shown().front().kind, RecordingMessages::Shown::Kind::InputBox);
    EXPECT_TRUE(messages_->shown().front().message.text.startsWith(
        "Please enter the sort by account code start position:\n(You can sort the account code from a specific "
        "position. Or leave it the default value will sort from the first char)"));
    EXPECT_EQ(choiceRequest.caption, "Folder Ajustment for: Gathered");
    EXPECT_EQ(choiceRequest.selectedCaption, "Selected (Items selected in the subfolder of Gathered)");
    QStringList order;
    for (const clsAccountCode &code : choiceRequest.available) {
        if (code.AccountCode().startsWith("A9999.00") || code.AccountCode().startsWith("A8888.00") ||
            code.AccountCode().startsWith("A7777.00"))
            order << code.AccountCode();
    }
    EXPECT_EQ(order, QStringList({"A8888.001", "A7777.002", "A9999.003"}));
    EXPECT_EQ(count(QString("AccountCodes where ParentID = '%1'").arg(folder)), "3");
    EXPECT_EQ(explorer().ChildKeys(workerAccountCodes::folderKey(folder)).size(), 3);

    // Offered again, the folder's codes start on the selected side; cancelling changes nothing.
    messages_->answerText(QString());
    choice.reset();
    command("Folder_Adjust");
    EXPECT_EQ(choiceRequest.selected.size(), 3u);
}

TEST_P(ExplorerTest, FolderAdjustmentIsAllOrNothing)
{
    const qint64 folder = addFolder(0, "Gathered");
    command("_Refresh");
    std::vector<qint64> ids;
    QStringList codes;
    for (const demo::Account &a : district().accounts) {
        if (a.fundId == "A" && a.ledger == u'E' && !a.historical && codes.size() < 3) {
            codes << a.code;
            ids.push_back(nodeNamed(a.code).mid(1).toLongLong());
        }
    }
    refuseWrites(*db(), "AccountCodes", "UPDATE", "trim(OLD.AccountCode) = '" + codes.last() + "'");
    select(workerAccountCodes::folderKey(folder));
    messages_->answerText(QString("1"));
    choice = ids;
    command("Folder_Adjust");
    EXPECT_TRUE(lastMessage().startsWith("Update Operation|Unable to update summary record. "));
    EXPECT_EQ(count(QString("AccountCodes where ParentID = '%1'").arg(folder)), "0");
    EXPECT_FALSE(db()->inTransaction());

    // Cancelled at the prompt: the list is not even offered.
    choiceRequest = {};
    command("Folder_Adjust");
    EXPECT_TRUE(choiceRequest.caption.isEmpty());
}

// ---- Renaming in place, the context menu, finding, printing ----

TEST_P(ExplorerTest, DirectEditRenamesTheFolderAndRefusesAnEmptyName)
{
    const qint64 id = addFolder(0, "Before");
    command("_Refresh");
    const QString key = workerAccountCodes::folderKey(id);
    select(key);
    command("DirectEdit");
    QTreeWidgetItem *item = explorer().view()->currentItem();
    EXPECT_TRUE(item->flags() & Qt::ItemIsEditable);
    item->setText(0, "After");
    EXPECT_EQ(scalar(QString("select Name from BudgetSummaryTree where ID = '%1'").arg(id)), "After");
    EXPECT_FALSE(item->flags() & Qt::ItemIsEditable);

    command("DirectEdit");
    item->setText(0, "  ");
    EXPECT_EQ(lastMessage(), maintenance + "|Folder name is a required field.");
    EXPECT_EQ(explorer().Node(key).text, "After");
    EXPECT_EQ(scalar(QString("select Name from BudgetSummaryTree where ID = '%1'").arg(id)), "After");
}

TEST_P(ExplorerTest, TheContextMenuOffersWhatAppliesToTheNode)
{
    const auto keys = [](const QString &node) {
        QStringList list;
        for (const auto &[key, caption] : workerAccountCodes::nodeCommands(node))
            list << key;
        return list;
    };
    EXPECT_EQ(keys("A12"), QStringList({"Account_Edit", "Account_Delete"}));
    EXPECT_TRUE(keys("F3").contains("Folder_Delete"));
    EXPECT_FALSE(keys("R").contains("Folder_Delete"));

    const QString code = nodeNamed(firstLiveCode(district(), "A", u'E').code);
    select(code);
    command("_explorerNodeRightClick");
    auto *menu = worker().child()->findChild<QMenu *>("mnuExplorerNode");
    ASSERT_NE(menu, nullptr);
    QStringList captions;
    for (QAction *action : menu->actions())
        captions << action->text();
    EXPECT_EQ(captions, QStringList({"Edit Account Code", "Delete Account Code"}));
    messages_->answer(MsgAnswer::No);
    menu->actions().at(1)->trigger();
    EXPECT_EQ(lastMessage().section('|', 0, 0), "Confirm Deletion.");
    menu->close();
}

TEST_P(ExplorerTest, FindSelectsTheNextMatchAndSaysWhenThereIsNone)
{
    const demo::Account &code = firstLiveCode(district(), "A", u'E');
    messages_->answerText(code.code.toLower());
    command("Find");
    EXPECT_EQ(explorer().SelectedNode(), nodeNamed(code.code));
    messages_->answerText(QString("no such thing"));
    command("Find");
    EXPECT_EQ(lastMessage(), "Find|No account code or folder matches \"no such thing\".");
    EXPECT_EQ(explorer().SelectedNode(), nodeNamed(code.code));

    command("_Print");
    EXPECT_EQ(lastMessage(), "Print|The account code listing report is not available.");
}

KORA_ALL_BACKENDS(ExplorerTest);

// ---- The rules underneath ----

TEST(ExplorerRules, DepthStartPositionAndOrdering)
{
    EXPECT_EQ(explorerView("t").maximumDepth, 5);
    EXPECT_EQ(explorerView("B").maximumDepth, 1);
    EXPECT_EQ(explorerView("P").maximumDepth, 1);
    EXPECT_TRUE(folderFits(3, 2, 5));
    EXPECT_FALSE(folderFits(3, 3, 5));
    EXPECT_TRUE(folderFits(0, 1, 1));
    EXPECT_FALSE(folderFits(1, 1, 1));

    EXPECT_EQ(startPosition(""), 1);
    EXPECT_EQ(startPosition(" 4 "), 4);
    EXPECT_EQ(startPosition("12abc"), 12);
    EXPECT_EQ(startPosition("-3"), 1);
    EXPECT_EQ(startPosition("abc"), 1);

    std::vector<clsAccountCode> codes(3);
    codes[0].setAccountCode("A2.9");
    codes[1].setAccountCode("A1.9");
    codes[2].setAccountCode("A3.1");
    sortFromPosition(codes, 4);
    EXPECT_EQ(codes[0].AccountCode(), "A3.1");
    EXPECT_EQ(codes[1].AccountCode(), "A1.9"); // equal tails: by the whole code
    EXPECT_EQ(codes[2].AccountCode(), "A2.9");

    clsAccountCode code;
    setHangingFolder(code, "B", 7);
    setHangingFolder(code, "P", 8);
    setHangingFolder(code, "T", 9);
    EXPECT_EQ(code.BuildingID(), 7);
    EXPECT_EQ(hangingFolder(code, "p"), 8);
    EXPECT_EQ(code.ParentID(), 9);
}

TEST_P(ExplorerTest, ADoubleClickedGridRowIsShownReadOnly)
{
    const qint64 id = addFolder(0, "Looked at");
    command("_Refresh");
    select(workerAccountCodes::rootKey());
    classGrid &grid = *worker().child()->Grid(1);
    int row = 1;
    while (row <= grid.CountRows() && grid.GetItemValue(row, "Description") != "Looked at")
        ++row;
    ASSERT_LE(row, grid.CountRows());
    grid.SelectRow(row);
    fill = [](classDialog &dialog) {
        EXPECT_EQ(dialog.Control("txtName").Text(), "Looked at");
        dialog.Control("txtName").setText("Changed");
    };
    command("_gridLeftDblClick");
    EXPECT_EQ(dialogCaptions.value(0), "View Folder");
    EXPECT_EQ(scalar(QString("select Name from BudgetSummaryTree where ID = '%1'").arg(id)), "Looked at");

    const QString code = firstLiveCode(district(), "A", u'E').code;
    select(explorer().Node(nodeNamed(code)).parentKey);
    row = 1;
    while (row <= grid.CountRows() && grid.GetItemValue(row, "AccountCode") != code)
        ++row;
    ASSERT_LE(row, grid.CountRows());
    grid.SelectRow(row);
    fill = typeAccount("A7777.7", "Changed");
    command("_gridLeftDblClick");
    EXPECT_EQ(dialogCaptions.value(1), "View Account Code");
    EXPECT_EQ(count("AccountCodes where AccountCode = 'A7777.7'"), "0");
}
