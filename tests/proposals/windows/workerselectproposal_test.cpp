#include "proposalwindowtest.h"

#include "appglobals.h"
#include "classdropdown.h"
#include "workerselectproposal.h"

#include <QListWidget>

namespace {

class SelectProposalTest : public WindowTest {
protected:
    void prepare() override
    {
        exec("Insert into Proposal values ('1','Default Proposal','O','Y')");
        exec("Insert into Proposal values ('2','Second try','O','N')");
        exec("Insert into Proposal values ('3','Closed one','C','N')");
        gstrProposalID = "2";
        worker = std::make_unique<workerSelectProposal>(db(), [this](const QString &text) { panel << text; });
        dialog = std::make_unique<classDialog>(*worker);
        dialog->Build();
    }
    void TearDown() override
    {
        dialog.reset();
        WindowTest::TearDown();
    }
    QListWidget &list() { return *qobject_cast<QListWidget *>(dialog->Control("lstProposals").field()); }
    bool okEnabled() { return dialog->Control("cmdOK").Enabled(); }

    QStringList panel;
    std::unique_ptr<workerSelectProposal> worker;
    std::unique_ptr<classDialog> dialog;
};

TEST_P(SelectProposalTest, ListsTheOpenProposalsWithTheCurrentOneChosen)
{
    EXPECT_EQ(dialog->windowTitle(), "Select A Proposal");
    const QString heading = dialog->Control("lstProposals").Caption();
    EXPECT_EQ(heading, "Proposal    Description                                Status");
    ASSERT_EQ(list().count(), 2) << "closed proposals are not offered";
    const QString active = list().item(0)->text();
    EXPECT_EQ(active.left(1), "1");
    EXPECT_EQ(active.indexOf("Default Proposal"), heading.indexOf("Description"));
    EXPECT_EQ(active.indexOf("Active"), heading.indexOf("Status"));
    EXPECT_TRUE(active.endsWith("       Active"));
    EXPECT_FALSE(list().item(1)->text().contains("Active"));
    EXPECT_EQ(list().currentRow(), 1);
    EXPECT_FALSE(okEnabled()) << "the current proposal is already chosen";
}

TEST_P(SelectProposalTest, OkIsForAnotherProposalAndChangesOnlyTheCurrentOne)
{
    list().setCurrentRow(0);
    EXPECT_TRUE(okEnabled());
    list().setCurrentRow(1);
    EXPECT_FALSE(okEnabled());
    list().setCurrentRow(0);
    press(*dialog, "cmdOK");
    EXPECT_EQ(gstrProposalID, "1");
    EXPECT_EQ(panel, QStringList{"Proposal :1"});
    EXPECT_EQ(dialog->CloseAction(), classDialog::ClosedByWorker);
    EXPECT_EQ(rows("select ID, Active from Proposal order by ID"), "1,Y|2,N|3,N") << "no stored flag moves";
}

TEST_P(SelectProposalTest, CloseLeavesTheCurrentProposal)
{
    list().setCurrentRow(0);
    press(*dialog, "cmdClose");
    EXPECT_EQ(gstrProposalID, "2");
    EXPECT_TRUE(panel.isEmpty());
    EXPECT_EQ(dialog->CloseAction(), classDialog::ClosedByWorker);
}

TEST_P(SelectProposalTest, AListThatCannotBeReadIsReported)
{
    exec("Drop table Proposal");
    dialog->Reload();
    ASSERT_EQ(recorder->shown().size(), 1u);
    EXPECT_EQ(recorder->shown()[0].error.title, "Select Proposal");
    EXPECT_TRUE(recorder->shown()[0].error.text.startsWith("Error reading Proposal list. "));
    EXPECT_GT(recorder->shown()[0].error.text.size(), QString("Error reading Proposal list. ").size());
    EXPECT_EQ(list().count(), 0);
    EXPECT_FALSE(okEnabled());
}

KORA_WINDOW_BACKENDS(SelectProposalTest);

} // namespace
