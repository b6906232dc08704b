#include "accountsummary.h"
#include "testdatabases.h"
#include "treesummary.h"

#include <gtest/gtest.h>

namespace {

class TreeStoreTest : public testdb::DatabaseTest {
protected:
    void SetUp() override
    {
        DatabaseTest::SetUp();
        tree.setAdoConnection(db());
    }

    qint64 addFolder(const QString &name, qint64 parent, bool newPage = false)
    {
        tree.ClearTreeItem();
        clsTreeItem &t = tree.TreeItem();
        t.NodeType = "T";
        t.FundID = "A";
        t.LedgerID = "E";
        t.ParentID = parent;
        t.Name = name;
        t.ForceNewPage = newPage;
        EXPECT_TRUE(tree.Add()) << tree.Error().ErrorText().toStdString();
        return t.ID;
    }

    void addCode(const QString &code, qint64 folder, const QString &historical = "", const QString &catA = "")
    {
        exec(QString("Insert into AccountCodes (Ledger, FundID, AccountCode, AccountName, ParentID, ProgramID, "
                     "BuildingID , StateCode, HistoricalCode, CatAFlag, CatPFlag, CatCFlag )Values ('E','A','%1',"
                     "'n','%2','0','0','','%3','%4','','')")
                 .arg(code)
                 .arg(folder)
                 .arg(historical, catA));
    }

    QString stored(const QString &column, const QString &id)
    {
        Recordset rows;
        EXPECT_TRUE(db()->open(
            QString("select %1 from BudgetSummaryTree where Rtrim(Ltrim(ID)) = '%2'").arg(column, id), rows));
        return rows.text(column);
    }

    qint64 recCount(const QString &name)
    {
        for (const clsTreeItem &item : tree)
            if (item.Name == name)
                return item.RecCount;
        ADD_FAILURE() << "no folder " << name.toStdString();
        return -1;
    }

    clsTreeSummary tree;
};

TEST_P(TreeStoreTest, NewKeysFollowTheMaximumAndSkipTakenSortPositions)
{
    EXPECT_EQ(addFolder("First", 0, true), 1);
    EXPECT_EQ(tree.TreeItem().SortOrder, 1);
    EXPECT_EQ(stored("SortOrder", "1"), "         1");
    EXPECT_EQ(stored("ForceNewPage", "1"), "Y ");

    exec("Insert into BudgetSummaryTree values ('7','T','A','E','0','         8','Seven','N ')");
    EXPECT_EQ(addFolder("Next", 0), 9);
    EXPECT_EQ(tree.TreeItem().SortOrder, 9);
}

TEST_P(TreeStoreTest, StrayBlanksInKeysAndNumericSiblingOrder)
{
    exec("Insert into BudgetSummaryTree values (' 12 ','T','A','E','0','        10','Ten','N ')");
    exec("Insert into BudgetSummaryTree values ('13','T','A','E','0','         9','Nine','N ')");
    exec("Insert into BudgetSummaryTree values ('14','B','A','E','0','         1','Building','N ')");
    tree.TreeItem().ID = 12;
    ASSERT_TRUE(tree.Retrieve());
    EXPECT_EQ(tree.TreeItem().Name, "Ten");
    EXPECT_EQ(tree.TreeItem().SortOrder, 10);
    EXPECT_FALSE(tree.TreeItem().ForceNewPage);

    tree.TreeItem().Name = "Ten's renamed";
    tree.TreeItem().ForceNewPage = true;
    ASSERT_TRUE(tree.Update()) << tree.Error().ErrorText().toStdString();
    tree.TreeItem().ParentID = 0;
    std::vector<clsTreeItem> children;
    ASSERT_TRUE(tree.GetChildren(children));
    ASSERT_EQ(children.size(), 2u);
    EXPECT_EQ(children[0].Name, "Nine");
    EXPECT_EQ(children[1].Name, "Ten's renamed");
    EXPECT_TRUE(children[1].ForceNewPage);
    std::vector<qint64> ids;
    ASSERT_TRUE(tree.GetChildrenArray(ids));
    std::sort(ids.begin(), ids.end());
    EXPECT_EQ(ids, (std::vector<qint64>{12, 13}));

    tree.TreeItem().ID = 12;
    ASSERT_TRUE(tree.Delete());
    EXPECT_FALSE(tree.Retrieve());
    EXPECT_EQ(tree.Error().ErrorText(), "Record not Found.");
    EXPECT_EQ(tree.TreeItem().Name, "Ten's renamed") << "a miss leaves the item as it was";
}

TEST_P(TreeStoreTest, MissingNodesAreReported)
{
    tree.TreeItem().ID = 42;
    EXPECT_FALSE(tree.Update());
    EXPECT_EQ(tree.Error().ErrorNumber(), 999);
    EXPECT_EQ(tree.Error().ErrorSub(), "Update");
    EXPECT_EQ(tree.Error().ErrorText(), "No record found to be Update.");
    EXPECT_FALSE(tree.Delete());
    EXPECT_EQ(tree.Error().ErrorSub(), "TreeSummary:Delete");
    EXPECT_EQ(tree.Error().ErrorText(), "No record found to be delete.");
    EXPECT_FALSE(tree.UpdateBatch());
    EXPECT_FALSE(db()->inTransaction());
}

TEST_P(TreeStoreTest, UpdateWritesEveryColumnOfItsNodeAndNoOther)
{
    exec("Insert into BudgetSummaryTree values ('3','T','A','E','0','         3','Three','N ')");
    exec("Insert into BudgetSummaryTree values ('4','T','A','E','0','         4','Four','N ')");
    exec("Insert into BudgetSummaryTree values ('5','T','A','E','0','         5','Five','N ')");
    const QString all = "select ID, NodeType, FundID, LedgerID, ParentID, SortOrder, Name, ForceNewPage "
                        "from BudgetSummaryTree order by ID";
    tree.TreeItem() = {4, "B", "Z", "R", 3, "Renamed", 12, true};
    ASSERT_TRUE(tree.Update()) << tree.Error().ErrorText().toStdString();
    // Fund and ledger are not the update's to change.
    EXPECT_EQ(rows(all), "3,T,A,E,0,3,Three,N |4,B,A,E,3,12,Renamed,Y|5,T,A,E,0,5,Five,N ");
    EXPECT_EQ(stored("SortOrder", "4"), "        12");
    tree.ClearTreeItem();
    tree.TreeItem().ID = 4;
    ASSERT_TRUE(tree.Retrieve());
    const clsTreeItem &t = tree.TreeItem();
    EXPECT_EQ(QStringList({QString::number(t.ID), t.NodeType, t.FundID, t.LedgerID, QString::number(t.ParentID),
                           QString::number(t.SortOrder), t.Name, t.ForceNewPage ? "Y" : "N"})
                  .join(','),
              "4,B,A,E,3,12,Renamed,Y");
    ASSERT_TRUE(tree.Delete());
    EXPECT_EQ(rows("select ID from BudgetSummaryTree order by ID"), "3|5");
}

// Two nodes whose IDs differ only by blanks are the same key: a one-node write
// that would touch both is refused and undone, alone or inside the caller's work.
TEST_P(TreeStoreTest, AWriteThatWouldTouchTwoNodesIsUndone)
{
    exec("Insert into BudgetSummaryTree values ('5','T','A','E','0','         5','Five','N ')");
    exec("Insert into BudgetSummaryTree values (' 5 ','T','A','E','0','         6','Twin','N ')");
    const QString names = "select Name, SortOrder from BudgetSummaryTree order by SortOrder";
    tree.TreeItem() = {5, "T", "A", "E", 0, "Both", 1, false};
    EXPECT_FALSE(tree.Update());
    EXPECT_EQ(tree.Error().ErrorText(), "No record found to be Update.");
    EXPECT_EQ(rows(names), "Five,5|Twin,6");

    ASSERT_TRUE(tree.BeginTransaction());
    EXPECT_FALSE(tree.UpdateBatch());
    const qint64 added = addFolder("Added", 0);
    ASSERT_TRUE(tree.Endtransaction());
    EXPECT_EQ(rows(names), QString("Five,5|Twin,6|Added,%1").arg(added));
}

TEST_P(TreeStoreTest, FolderCountsCoverTheSubtreeAndFollowTheFilters)
{
    const qint64 top = addFolder("Top", 0);
    const qint64 salaries = addFolder("Salaries", top);
    const qint64 teachers = addFolder("Teachers", salaries);
    const qint64 retired = addFolder("Retired", top);
    const qint64 books = addFolder("Books", top);
    addCode("A100", salaries, "", "A");
    addCode("A110", teachers);
    addCode("A900", retired, "H");
    addCode("B500", books);

    tree.TreeItem().ID = top;
    ASSERT_TRUE(tree.Retrieve());
    const clsTreeItem root = tree.TreeItem();
    ASSERT_TRUE(tree.GetFoldersAcctCodeCount(root, 0));
    EXPECT_EQ(tree.Count(), 5u);
    EXPECT_EQ(recCount("Top"), 3);
    EXPECT_EQ(recCount("Salaries"), 2);
    EXPECT_EQ(recCount("Teachers"), 1);
    EXPECT_EQ(recCount("Retired"), 0) << "historical codes do not count";
    EXPECT_EQ(recCount("Books"), 1);

    const auto topCount = [&](const QString &compareCode, const QString &category) {
        clsTreeSummary filtered;
        filtered.setAdoConnection(db());
        filtered.setCompareCode(compareCode);
        filtered.setCat(true);
        filtered.setCategory(category);
        EXPECT_TRUE(filtered.GetFoldersAcctCodeCount(root, 0));
        return filtered.Item(0).RecCount;
    };
    EXPECT_EQ(topCount("A1", "a"), 1);
    EXPECT_EQ(topCount("", "x"), 2) << "Teachers and Books hold codes of no category";
}

KORA_ALL_BACKENDS(TreeStoreTest);

} // namespace
