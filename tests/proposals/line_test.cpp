#include "line.h"
#include "storetest.h"

namespace {

class LineTest : public StoreTest {
protected:
    void prepare() override
    {
        store.setAdoConnection(db());
        acct = account("A-100");
    }
    bool add(int number, const QString &text, const char *amount)
    {
        store.setLineItem({static_cast<std::int32_t>(acct), number, text, *Currency::parse(amount)});
        return store.AddBatch();
    }
    QString lines() { return rows(QString("select LineItemNumber, LineItemText, LineItemAmount from LnItem")); }

    clsLine store;
    qint64 acct = 0;
};

TEST_P(LineTest, LinesAreAddedChangedAndErasedWithoutRenumbering)
{
    const QString longText = QString::fromUtf8("Lehrerstelle für Mathematik – ") + QString(300, u'x');
    ASSERT_TRUE(store.BeginTransaction());
    ASSERT_TRUE(add(1, "Teacher's aide", "25000.5"));
    ASSERT_TRUE(add(2, longText, "0.0001"));
    ASSERT_TRUE(add(3, "Books", "-12"));
    ASSERT_TRUE(store.Endtransaction());

    store.LineItem().LineItemNumber = 2;
    ASSERT_TRUE(store.Delete());
    EXPECT_EQ(lines(), "1,Teacher's aide,25000.5|3,Books,-12");
    EXPECT_FALSE(store.Delete());
    expectError(store.Error(), "Delete", "0 records to be deleted");

    store.LineItem().LineItemNumber = 3;
    store.LineItem().LineItemText = "  Library books  ";
    ASSERT_TRUE(store.UpdateBatch());
    ASSERT_TRUE(store.Retrieve());
    EXPECT_EQ(store.LineItem().LineItemText, "Library books") << "text is stored trimmed";
    EXPECT_EQ(store.LineItem().LineItemAmount, *Currency::parse("-12"));
    store.LineItem().LineItemNumber = 2;
    EXPECT_FALSE(store.Retrieve());
    expectError(store.Error(), "Retrieve Budget", "Record not Found.");
    EXPECT_EQ(store.Error().ErrorCls(), "Line:Retrieve");
    EXPECT_FALSE(store.UpdateBatch());
    expectError(store.Error(), "Update", "0 records to be update");

    std::vector<clsLineItem> listed;
    ASSERT_TRUE(store.GetList(listed));
    ASSERT_EQ(listed.size(), 2u);
    EXPECT_EQ(listed[0].LineItemAmount, *Currency::parse("25000.5"));
}

TEST_P(LineTest, ADuplicateLineFailsAndTheBatchLeavesNothing)
{
    ASSERT_TRUE(store.BeginTransaction());
    ASSERT_TRUE(add(1, "First", "1"));
    EXPECT_FALSE(add(1, "Again", "2"));
    EXPECT_EQ(store.Error().ErrorSub(), "Add");
    ASSERT_TRUE(store.AbortTransaction());
    EXPECT_EQ(lines(), "");
}

TEST_P(LineTest, TotalIsForwardedOnlyIntoAnExistingProposalRow)
{
    store.LineItem().AcctId = static_cast<std::int32_t>(acct);
    store.LineItem().LineItemAmount = *Currency::parse("1234.5678");
    EXPECT_FALSE(store.UpdateLineTotal("2"));
    expectError(store.Error(), "Update line total", "0 records to be update");
    exec(QString("Insert into ProposalBudget values (%1,'2',1,1,0,0)").arg(acct));
    ASSERT_TRUE(store.UpdateLineTotal("2"));
    EXPECT_EQ(rows("select ProposedBudget, CatAProposal from ProposalBudget"), "1234.5678,1");
}

KORA_ALL_BACKENDS(LineTest);

} // namespace
