#include "proposedbudget.h"
#include "storetest.h"

namespace {

class ProposedBudgetTest : public StoreTest {
protected:
    void prepare() override
    {
        store.setAdoConnection(db());
        split = account("A-2", "A", "E", "AP");
        plain = account("A-1", "A", "E", "");
        unused = account("A-3", "A", "E", "C");
        account("A-0", "A", "E", "", "0", "H");
        revenue = account("A-9", "A", "R");
        exec(QString("Insert into ProposalBudget values (%1,'2',0,0,0,0)").arg(split));
        exec(QString("Insert into ProposalBudget values (%1,'2',7,0,0,0)").arg(plain));
        exec(QString("Insert into ProposalBudget values (%1,'2',5,0,0,0)").arg(revenue));
        select("A", "E");
    }
    void select(const QString &fund, const QString &ledger)
    {
        store.ProposedBudgetItem() = {};
        store.ProposedBudgetItem().FundID = fund;
        store.ProposedBudgetItem().LedgerID = ledger;
        store.ProposedBudgetItem().ProposalID = "2";
    }
    clsProposedBudgetItem &item() { return store.ProposedBudgetItem(); }
    static Currency money(const char *text) { return *Currency::parse(text); }

    clsProposedBudget store;
    qint64 split = 0, plain = 0, unused = 0, revenue = 0;
};

TEST_P(ProposedBudgetTest, ComponentsSavedBesideTheirSumReadBackThroughEveryList)
{
    item().ID = split;
    item().ProposedCatA = money("1000.1234");
    item().ProposedCatP = money("0.0001");
    item().ProposedBudget = item().ProposedCatA + item().ProposedCatP;
    ASSERT_TRUE(store.BeginTransaction());
    ASSERT_TRUE(store.UpdateBatch()) << store.Error().ErrorText().toStdString();
    ASSERT_TRUE(store.Endtransaction());

    std::vector<clsProposedBudgetItem> sep;
    ASSERT_TRUE(store.GetListSep(sep));
    ASSERT_EQ(sep.size(), 2u);
    const auto &s = sep[0].ID == split ? sep[0] : sep[1];
    EXPECT_EQ(s.ProposedCatA + s.ProposedCatP + s.ProposedCatC, money("1000.1235"));
    EXPECT_TRUE(s.CatA && s.CatP && !s.CatC);

    std::vector<clsProposedBudgetItem> all;
    ASSERT_TRUE(store.GetListNew(all));
    ASSERT_EQ(all.size(), 3u) << "every live account, with or without a row";
    EXPECT_EQ(all[0].AccountCode, "A-1");
    EXPECT_EQ(all[1].ProposedCatA, money("1000.1234"));
    EXPECT_EQ(all[1].ProposalID, "2");
    EXPECT_EQ(all[2].ID, unused);
    EXPECT_TRUE(all[2].ProposedCatC.isZero() && all[2].CatC);

    std::vector<clsProposedBudgetItem> listed;
    ASSERT_TRUE(store.GetList(listed));
    ASSERT_EQ(listed.size(), 2u) << "accounts without a row are left out";
    EXPECT_EQ(listed[1].ProposedBudget, money("1000.1235"));
    EXPECT_EQ(listed[0].CurrentBudget, money("100"));

    select("a", "R");
    std::vector<clsProposedBudgetItem> other;
    ASSERT_TRUE(store.GetListSep(other));
    ASSERT_EQ(other.size(), 0u) << "fund and ledger compare exactly in SQL";
    select("A", "R");
    ASSERT_TRUE(store.GetListNew(other));
    ASSERT_EQ(other.size(), 1u);
    EXPECT_EQ(other[0].ProposedBudget, money("5"));
    EXPECT_FALSE(other[0].CatA || other[0].CatP || other[0].CatC);
}

TEST_P(ProposedBudgetTest, SecurityKeepsOnlyAccountsMatchingAnAccessEntry)
{
    std::vector<clsProposedBudgetItem> seen;
    ASSERT_TRUE(store.GetListWithSecurity(seen, {"a-#1", "Z*"}, true));
    ASSERT_EQ(seen.size(), 0u);
    ASSERT_TRUE(store.GetListWithSecurity(seen, {"B*", "a-[!2]"}, true));
    ASSERT_EQ(seen.size(), 1u);
    EXPECT_EQ(seen[0].AccountCode, "A-1");
    seen.clear();
    ASSERT_TRUE(store.GetListWithSecurity(seen, {}, false));
    EXPECT_EQ(seen.size(), 2u);
}

TEST_P(ProposedBudgetTest, UpdateInsertsAMissingRowAndRetrieveNamesTheProposal)
{
    item().ID = unused;
    EXPECT_FALSE(store.Retrieve());
    expectError(store.Error(), "Retrieve Budget", "Record not found on propsal :2");
    EXPECT_EQ(store.Error().ErrorCls(), "ProposalBudget:Retrieve");
    item().ProposedCatC = money("42.5");
    item().ProposedBudget = money("42.5");
    ASSERT_TRUE(store.Update()) << store.Error().ErrorText().toStdString();
    item().ProposedBudget = money("43");
    ASSERT_TRUE(store.Update());
    item().ProposedBudget = {};
    ASSERT_TRUE(store.Retrieve());
    EXPECT_EQ(item().ProposedBudget, money("43"));
    EXPECT_EQ(item().ProposedCatC, money("42.5"));
    ASSERT_TRUE(store.BeginTransaction()) << "Update left no transaction open";
    ASSERT_TRUE(store.AbortTransaction());

    EXPECT_FALSE(store.Add()) << "the row exists";
    EXPECT_NE(store.Error().ErrorNumber(), 0);
    EXPECT_EQ(store.Error().ErrorSub(), "Add Budget ");
    item().ID = 4242;
    EXPECT_FALSE(store.UpdateBatch());
    expectError(store.Error(), "Update", "0 records to be update");
}

TEST_P(ProposedBudgetTest, AHugeAmountFailsAndTheBatchIsAbandonedWhole)
{
    ASSERT_TRUE(store.BeginTransaction());
    item().ID = unused;
    item().ProposedBudget = money("1");
    ASSERT_TRUE(store.AddBatch());
    item().ID = plain;
    item().ProposedBudget = money("900000000000000");
    EXPECT_FALSE(store.UpdateBatch());
    EXPECT_FALSE(store.Error().ErrorText().isEmpty());
    ASSERT_TRUE(store.AbortTransaction());
    EXPECT_EQ(rows("select AcctId, ProposedBudget from ProposalBudget where ProposalID = '2' order by AcctId"),
              QString("%1,0|%2,7|%3,5").arg(split).arg(plain).arg(revenue));
}

KORA_ALL_BACKENDS(ProposedBudgetTest);

} // namespace
