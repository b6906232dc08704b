#include "proposal.h"
#include "storetest.h"

namespace {

class ProposalTest : public StoreTest {
protected:
    void prepare() override
    {
        store.setAdoConnection(db());
        exec("Insert into Proposal values ('1','Default Proposal','O','Y')");
        exec("Insert into Proposal values ('2','Old','','N')");
        exec("Insert into Proposal values ('3','','','N')");
        first = account("A-100", "A", "E", "AC", "100");
        second = account("A-200", "A", "E", "", "200");
        retired = account("B-300", "B", "R", "P", "300", "H");
    }
    bool init(const QString &id, QString &source)
    {
        store.ProposalItem().ID = id;
        store.ProposalItem().Name = "New " + id;
        return store.InitNewProposal(source);
    }
    QString amounts(const QString &id)
    {
        return rows("select AcctId, ProposedBudget, CatAProposal, CatPProposal, CatCProposal from ProposalBudget "
                    "where ProposalID = '" +
                    id + "' order by AcctId");
    }
    QString slotStates() { return rows("select ID, Status, Active from Proposal order by ID"); }

    clsProposal store;
    qint64 first = 0, second = 0, retired = 0;
};

TEST_P(ProposalTest, InitFromCurrentBudgetTakesComponentsOnlyWhereFlagged)
{
    QString source = "c";
    ASSERT_TRUE(init("2", source)) << store.Error().ErrorText().toStdString();
    EXPECT_EQ(source, "c");
    EXPECT_EQ(amounts("2"),
              QString("%1,100,1.5,0,3.125|%2,200,0,0,0|%3,300,0,2.25,0").arg(first).arg(second).arg(retired));
    EXPECT_EQ(slotStates(), "1,O,N|2,O,Y|3,,N");
    ASSERT_TRUE(store.GetActiveProposal());
    EXPECT_TRUE(store.ProposalItem().ID == "2" && store.ProposalItem().Active);
}

TEST_P(ProposalTest, UnknownSourceIsEmptyAndCopiesTakeOnlyTheSourceRows)
{
    exec(QString("Insert into ProposalBudget values (%1,'1',10.1234,1,2,3)").arg(first));
    exec(QString("Insert into ProposalBudget values (%1,'3',99,0,0,0)").arg(second));
    QString source = "x";
    ASSERT_TRUE(init("3", source));
    EXPECT_EQ(source, "E");
    EXPECT_EQ(amounts("3"), QString("%1,0,0,0,0|%2,0,0,0,0|%3,0,0,0,0").arg(first).arg(second).arg(retired));
    EXPECT_EQ(amounts("1"), QString("%1,10.1234,1,2,3").arg(first)) << "other proposals keep their rows";
    source = "1";
    ASSERT_TRUE(init("2", source));
    EXPECT_EQ(amounts("2"), QString("%1,10.1234,1,2,3").arg(first));
    source = "2";
    ASSERT_TRUE(init("2", source));
    EXPECT_EQ(amounts("2"), "") << "the slot's own rows were cleared before the copy";
}

TEST_P(ProposalTest, AMissingSlotChangesNothing)
{
    QString source = "C";
    EXPECT_FALSE(init("9", source));
    expectError(store.Error(), "InitNewProposal", "0 records to be update");
    EXPECT_EQ(slotStates(), "1,O,Y|2,,N|3,,N") << "clearing the active flag was rolled back";
    EXPECT_EQ(amounts("9"), "");
}

// A caller's transaction around a failed creation: the caller's commit keeps
// nothing of it, and the caller's own work around it stands.
TEST_P(ProposalTest, AFailedCreationInsideTheCallersTransactionLeavesNoTrace)
{
    exec(QString("Insert into ProposalBudget values (%1,'1',7,0,0,0)").arg(first));
    QString source = "C";
    ASSERT_TRUE(store.BeginTransaction());
    store.setProposalItem({"1", "Default, renamed", "O", true});
    ASSERT_TRUE(store.UpdateBatch());
    EXPECT_FALSE(init("9", source));
    expectError(store.Error(), "InitNewProposal", "0 records to be update");
    ASSERT_TRUE(store.Endtransaction());
    EXPECT_EQ(rows("select ID, Name, Status, Active from Proposal order by ID"),
              "1,Default, renamed,O,Y|2,Old,,N|3,,,N");
    EXPECT_EQ(amounts("1"), QString("%1,7,0,0,0").arg(first));

    // A creation that succeeded is still undone by the caller's rollback.
    ASSERT_TRUE(store.BeginTransaction());
    ASSERT_TRUE(init("2", source));
    ASSERT_TRUE(store.AbortTransaction());
    EXPECT_EQ(slotStates(), "1,O,Y|2,,N|3,,N");
    EXPECT_EQ(amounts("2"), "");
}

TEST_P(ProposalTest, SwitchingFreeingAndFindingSlots)
{
    ASSERT_TRUE(store.GetAvailProposal());
    EXPECT_EQ(store.ProposalItem().ID, "2");
    const QString name = QString::fromUtf8("Superintendent's Plan – ÅÉ ") + QString(200, u'x');
    store.setProposalItem({"2", name, "C", true});
    ASSERT_TRUE(store.UpdateBatch());
    EXPECT_EQ(rows("select ID, Name, Status, Active from Proposal order by ID"),
              "1,Default Proposal,O,Y|2," + name.trimmed() + ",C,Y|3,,,N");
    store.setProposalItem({"1", name, "O", false});
    ASSERT_TRUE(store.UpdateBatch());
    EXPECT_EQ(slotStates(), "1,O,|2,C,Y|3,,N") << "an inactive proposal is written with an empty flag";
    exec("Update Proposal set Status = '', Active = 'N' where ID = '2'");
    ASSERT_TRUE(store.Delete());
    ASSERT_TRUE(store.Retrieve());
    EXPECT_EQ(store.ProposalItem().Name, name.trimmed());
    std::vector<clsProposalItem> open;
    ASSERT_TRUE(store.GetOpenList(open));
    EXPECT_TRUE(open.empty());

    EXPECT_FALSE(store.GetActiveProposal());
    expectError(store.Error(), "Retrieve Budget", "No Active Proposal Found.");
    store.ProposalItem().ID = "7";
    EXPECT_FALSE(store.Retrieve());
    expectError(store.Error(), "Retrieve Budget", "Record not Found.");
    EXPECT_EQ(store.Error().ErrorCls(), "Proposal:Retrieve");
    EXPECT_FALSE(store.Delete());
    expectError(store.Error(), "Delete", "0 records to be update");
    exec("Update Proposal set Status = 'C'");
    EXPECT_FALSE(store.GetAvailProposal());
    expectError(store.Error(), "Get Available Proposal", "No Record Found.");
    EXPECT_EQ(store.Error().ErrorCls(), "Proposal:GetAvailPropsal");
}

TEST_P(ProposalTest, TheFreeSlotOfferedIsTheLowestWhateverTheStoredOrder)
{
    exec("Delete from Proposal");
    exec("Insert into Proposal values ('3','','','N')");
    exec("Insert into Proposal values ('1','Default Proposal','O','Y')");
    exec("Insert into Proposal values ('2','','','N')");
    ASSERT_TRUE(store.GetAvailProposal());
    EXPECT_EQ(store.ProposalItem().ID, "2");
}

KORA_ALL_BACKENDS(ProposalTest);

} // namespace
