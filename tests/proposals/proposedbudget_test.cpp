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
        for (const qint64 id : {split, plain, revenue})
            exec(QString("Insert into ProposalBudget values (%1,'2',%1,0,0,0)").arg(id));
        item() = {};
        item().FundID = "A";
        item().LedgerID = "E";
        item().ProposalID = "2";
    }
    clsProposedBudgetItem &item() { return store.ProposedBudgetItem(); }

    clsProposedBudget store;
    qint64 split = 0, plain = 0, unused = 0, revenue = 0;
};

TEST_P(ProposedBudgetTest, ComponentsAndTheirSumReadBackThroughEveryList)
{
    item().ID = split;
    item().ProposedCatA = money("1000.1234");
    item().ProposedCatP = money("0.0001");
    item().ProposedBudget = item().ProposedCatA + item().ProposedCatP;
    ASSERT_TRUE(store.UpdateBatch()) << store.Error().ErrorText().toStdString();

    std::vector<clsProposedBudgetItem> sep, all, listed, allowed;
    ASSERT_TRUE(store.GetListSep(sep));
    ASSERT_EQ(sep.size(), 2u) << "fund A, ledger E only";
    const auto &s = sep[0].ID == split ? sep[0] : sep[1];
    EXPECT_EQ(s.ProposedCatA + s.ProposedCatP, money("1000.1235"));
    EXPECT_TRUE(s.CatA && s.CatP && !s.CatC);

    ASSERT_TRUE(store.GetListNew(all));
    ASSERT_EQ(all.size(), 3u) << "every live account, with or without a row";
    EXPECT_EQ(all[1].ProposedCatA, money("1000.1234"));
    EXPECT_TRUE(all[2].ID == unused && all[2].ProposedCatC.isZero() && all[2].CatC);

    ASSERT_TRUE(store.GetList(listed));
    ASSERT_EQ(listed.size(), 2u) << "accounts without a row are left out";
    EXPECT_EQ(listed[1].ProposedBudget, money("1000.1235"));
    ASSERT_TRUE(store.GetListWithSecurity(allowed, {"Z*", "a-#1", "a-[!2]"}, true));
    ASSERT_EQ(allowed.size(), 1u);
    EXPECT_EQ(allowed[0].AccountCode, "A-1");

    item().LedgerID = "R";
    all.clear();
    ASSERT_TRUE(store.GetListNew(all));
    ASSERT_EQ(all.size(), 1u);
    EXPECT_EQ(all[0].ProposedBudget, Currency::fromUnits(revenue));
}

TEST_P(ProposedBudgetTest, UpdateWritesEveryAmountOfItsRowAndNoOther)
{
    // The same account in two other proposals, and another account in this one.
    exec(QString("Insert into ProposalBudget values (%1,'1',11,12,13,14)").arg(split));
    exec(QString("Insert into ProposalBudget values (%1,'3',31,32,33,34)").arg(split));
    const QString all = "select AcctId, ProposalID, ProposedBudget, CatAProposal, CatPProposal, CatCProposal "
                        "from ProposalBudget order by AcctId, ProposalID";
    const QString before = rows(all);
    item().ID = split;
    item().ProposedCatA = money("1.0001");
    item().ProposedCatP = money("2.0002");
    item().ProposedCatC = money("3.0003");
    item().ProposedBudget = money("6.0006");
    ASSERT_TRUE(store.UpdateBatch()) << store.Error().ErrorText().toStdString();
    QString expected = before;
    expected.replace(QString("%1,2,%1,0,0,0").arg(split), QString("%1,2,6.0006,1.0001,2.0002,3.0003").arg(split));
    ASSERT_NE(expected, before);
    EXPECT_EQ(rows(all), expected);

    item().ProposedBudget = money("7");
    ASSERT_TRUE(store.Update());
    expected.replace(QString("%1,2,6.0006").arg(split), QString("%1,2,7").arg(split));
    EXPECT_EQ(rows(all), expected);
    item().ProposedBudget = {};
    ASSERT_TRUE(store.Retrieve());
    EXPECT_EQ(QStringList({item().ProposedBudget.toSqlText(), item().ProposedCatA.toSqlText(),
                           item().ProposedCatP.toSqlText(), item().ProposedCatC.toSqlText()})
                  .join(','),
              "7,1.0001,2.0002,3.0003");
}

TEST_P(ProposedBudgetTest, UpdateInsertsAMissingRowAndFailuresAreReported)
{
    item().ID = unused;
    EXPECT_FALSE(store.Retrieve());
    expectError(store.Error(), "Retrieve Budget", "Record not found on propsal :2");
    EXPECT_EQ(store.Error().ErrorCls(), "ProposalBudget:Retrieve");
    item().ProposedBudget = item().ProposedCatC = money("42.5");
    ASSERT_TRUE(store.BeginTransaction());
    ASSERT_TRUE(store.Update()) << store.Error().ErrorText().toStdString();
    ASSERT_TRUE(store.Endtransaction());
    item().ProposedBudget = money("43");
    ASSERT_TRUE(store.Update());
    item().ProposedBudget = {};
    ASSERT_TRUE(store.Retrieve());
    EXPECT_EQ(item().ProposedBudget + item().ProposedCatC, money("85.5"));
    EXPECT_FALSE(db()->inTransaction()) << "Update left no transaction open";

    EXPECT_FALSE(store.Add()) << "the row exists";
    EXPECT_EQ(store.Error().ErrorSub(), "Add Budget ");
    item().ID = 4242;
    EXPECT_FALSE(store.UpdateBatch());
    expectError(store.Error(), "Update", "0 records to be update");
}

TEST_P(ProposedBudgetTest, ASaveReadingOnlyItsAccountsAuditsAsOneReadingTheWholeProposal)
{
    store.setAuditTask("Proposed Budget");
    const QString original = rows("select * from ProposalBudget order by AcctId, ProposalID");
    // An update and an insert of expected accounts, and an update of one the save did not expect.
    const auto save = [&](bool commit) {
        EXPECT_TRUE(store.BeginTransaction());
        for (const qint64 id : {split, unused, plain}) {
            item().ID = std::int32_t(id);
            item().ProposedBudget = item().ProposedCatA = money("1.5");
            EXPECT_TRUE(id == unused ? store.AddBatch() : store.UpdateBatch()) << store.Error().ErrorText().toStdString();
        }
        EXPECT_TRUE(commit ? store.Endtransaction() : store.AbortTransaction());
    };
    const QString entries = "select TableName, RowKey, AccountCode, ColumnName, OldValue, NewValue from AuditTrail "
                            "order by RowKey, ColumnName";
    const auto restore = [&] {
        exec(QString("Delete from ProposalBudget where AcctId = %1").arg(unused));
        exec(QString("Update ProposalBudget set ProposedBudget = AcctId, CatAProposal = 0 where ProposalID = '2'"));
        exec("Delete from AuditTrail");
        ASSERT_EQ(rows("select * from ProposalBudget order by AcctId, ProposalID"), original);
    };
    save(true);
    const QString wholeProposal = rows(entries);
    EXPECT_EQ(rows("select distinct RowKey from AuditTrail").split('|').size(), 3);
    EXPECT_EQ(rows("select ColumnName from AuditTrail").split('|').size(), 8);
    restore();

    store.expectWrites("2", {std::int32_t(split), std::int32_t(unused), 4242});
    save(false);
    EXPECT_EQ(rows(entries), "") << "an aborted save leaves no entry";
    EXPECT_EQ(rows("select * from ProposalBudget order by AcctId, ProposalID"), original);
    save(true);
    EXPECT_EQ(rows(entries), wholeProposal);
}

TEST_P(ProposedBudgetTest, AHugeAmountFailsAndTheBatchIsAbandonedWhole)
{
    ASSERT_TRUE(store.BeginTransaction());
    item().ID = unused;
    ASSERT_TRUE(store.AddBatch());
    item().ID = plain;
    item().ProposedBudget = money("900000000000000");
    EXPECT_FALSE(store.UpdateBatch());
    EXPECT_FALSE(store.Error().ErrorText().isEmpty());
    ASSERT_TRUE(store.AbortTransaction());
    EXPECT_EQ(rows("select AcctId, ProposedBudget from ProposalBudget order by AcctId"),
              QString("%1,%1|%2,%2|%3,%3").arg(split).arg(plain).arg(revenue));
}

KORA_ALL_BACKENDS(ProposedBudgetTest);

} // namespace
