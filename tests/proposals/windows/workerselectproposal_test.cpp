#include "proposalwindowtest.h"

#include "appglobals.h"
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
        openWindow<workerSelectProposal>(panelRecorder());
    }
    QListWidget &list() { return *qobject_cast<QListWidget *>(dialog->Control("lstProposals").field()); }
    bool okEnabled() { return dialog->Control("cmdOK").Enabled(); }
};

TEST_P(SelectProposalTest, ListsTheOpenProposalsWithTheCurrentOneChosen)
{
    EXPECT_EQ(dialog->windowTitle(), "Select A Proposal");
    const QString heading = dialog->Control("lstProposals").Caption();
    EXPECT_EQ(heading, "Proposal    Description                                Status");
    ASSERT_EQ(list().count(), 2) << "closed proposals are not offered";
    const QString active = list().item(0)->text();
    EXPECT_TRUE(active.startsWith("1 "));
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

TEST_P(SelectProposalTest, AListThatCannotBeReadIsReported)
{
    exec("Drop table Proposal");
    dialog->Reload();
    ASSERT_EQ(shownTexts().size(), 1);
    const QString prefix = "Select Proposal|Error reading Proposal list. ";
    EXPECT_TRUE(shownTexts()[0].startsWith(prefix));
    EXPECT_GT(shownTexts()[0].size(), prefix.size()) << "the database's own words follow";
    EXPECT_EQ(list().count(), 0);
    EXPECT_FALSE(okEnabled());
}

KORA_WINDOW_BACKENDS(SelectProposalTest);

} // namespace
