#include "line.h"
#include "storetest.h"

namespace {

class LineTest : public StoreTest {
protected:
    void prepare() override
    {
        store.setAdoConnection(db());
        acct = static_cast<std::int32_t>(account("A-100"));
    }
    bool add(int number, const QString &text, const char *amount)
    {
        store.setLineItem({acct, number, text, money(amount)});
        return store.AddBatch();
    }
    QString lines() { return rows("select LineItemNumber, LineItemText, LineItemAmount from LnItem"); }

    clsLine store;
    std::int32_t acct = 0;
};

TEST_P(LineTest, LinesAreAddedChangedAndErasedWithoutRenumbering)
{
    ASSERT_TRUE(store.BeginTransaction());
    ASSERT_TRUE(add(1, "Teacher's aide", "25000.5"));
    ASSERT_TRUE(add(2, QString::fromUtf8("Lehrerstelle – ") + QString(300, u'x'), "0.0001"));
    ASSERT_TRUE(add(3, "Books", "-12"));
    ASSERT_TRUE(store.Endtransaction());
    EXPECT_FALSE(add(3, "Again", "2"));
    EXPECT_EQ(store.Error().ErrorSub(), "Add");

    store.LineItem().LineItemNumber = 2;
    ASSERT_TRUE(store.Delete());
    EXPECT_FALSE(store.Delete());
    expectError(store.Error(), "Delete", "0 records to be deleted");
    EXPECT_FALSE(store.Retrieve());
    expectError(store.Error(), "Retrieve Budget", "Record not Found.");
    EXPECT_EQ(store.Error().ErrorCls(), "Line:Retrieve");
    EXPECT_FALSE(store.UpdateBatch());
    expectError(store.Error(), "Update", "0 records to be update");

    store.setLineItem({acct, 3, "  Library books ", money("-12.5")});
    ASSERT_TRUE(store.UpdateBatch());
    EXPECT_EQ(lines(), "1,Teacher's aide,25000.5|3,Library books,-12.5");
}

TEST_P(LineTest, TotalGoesIntoTheOneProposalRowOfTheAccount)
{
    const std::int32_t other = static_cast<std::int32_t>(account("A-200"));
    store.setLineItem({acct, 0, "", money("1234.5678")});
    EXPECT_FALSE(store.UpdateLineTotal("2"));
    expectError(store.Error(), "Update line total", "0 records to be update");
    for (const char *proposal : {"1", "2", "3"})
        exec(QString("Insert into ProposalBudget values (%1,'%2',1,1,0,0)").arg(acct).arg(proposal));
    exec(QString("Insert into ProposalBudget values (%1,'2',5,0,0,0)").arg(other));
    ASSERT_TRUE(store.UpdateLineTotal("2"));
    EXPECT_EQ(rows("select AcctId, ProposalID, ProposedBudget, CatAProposal from ProposalBudget order by AcctId, "
                   "ProposalID"),
              QString("%1,1,1,1|%1,2,1234.5678,1|%1,3,1,1|%2,2,5,0").arg(acct).arg(other));
}

TEST_P(LineTest, OneLineIsChangedOrErasedAndNoOther)
{
    const std::int32_t other = static_cast<std::int32_t>(account("A-200"));
    ASSERT_TRUE(add(1, "One", "1"));
    ASSERT_TRUE(add(2, "Two", "2"));
    store.setLineItem({other, 1, "Other one", money("3")});
    ASSERT_TRUE(store.AddBatch());
    const QString all = "select AcctId, LineItemNumber, LineItemText, LineItemAmount from LnItem order by AcctId, "
                        "LineItemNumber";

    store.setLineItem({acct, 1, "First", money("10.0001")});
    ASSERT_TRUE(store.UpdateBatch());
    EXPECT_EQ(rows(all), QString("%1,1,First,10.0001|%1,2,Two,2|%2,1,Other one,3").arg(acct).arg(other));
    ASSERT_TRUE(store.Delete());
    EXPECT_EQ(rows(all), QString("%1,2,Two,2|%2,1,Other one,3").arg(acct).arg(other));

    store.LineItem().LineItemNumber = 2;
    ASSERT_TRUE(store.Retrieve());
    EXPECT_EQ(store.LineItem().LineItemText + "=" + store.LineItem().LineItemAmount.toSqlText(), "Two=2");
    std::vector<clsLineItem> lines;
    ASSERT_TRUE(store.GetList(lines));
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0].LineItemNumber, 2);
}

KORA_ALL_BACKENDS(LineTest);

} // namespace
