#include "proposalwindowtest.h"

#include "appglobals.h"
#include "classdropdown.h"
#include "workerproposal.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QTableView>

namespace {

class ProposalWindowTest : public WindowTest {
protected:
    void prepare() override
    {
        exec("Insert into Proposal values ('1','Default Proposal','O','Y')");
        exec("Insert into Proposal values ('2','Last year','C','N')");
        exec("Insert into Proposal values ('3','','','N')");
        acct = account("A-100", "A", "E", "A", "100");
        exec(QString("Insert into ProposalBudget values (%1,'1',250,250,0,0)").arg(acct));
        gstrProposalID = "1";
        openWindow<workerProposal>(panelRecorder());
    }
    QString storedSlots() { return rows("select ID, Name, Status, Active from Proposal order by ID"); }
    QString row(int r)
    {
        QStringList cells;
        for (const char *key : {"ID", "Name", "Status", "Active"})
            cells << grid().GetItemValue(r, key);
        return cells.join(',');
    }
    QString locks(int r)
    {
        QString flags;
        for (const char *key : {"ID", "Name", "Status", "Active"})
            flags += grid().CellLocked(r, key) ? 'L' : '-';
        return flags;
    }

    // The user opens the status cell's drop-down and picks an entry; gives
    // the entries it offered.
    QStringList pickStatus(int r, const QString &entry)
    {
        QTableView *view = grid().view();
        const QModelIndex at = view->model()->index(r - 1, 3);
        view->setCurrentIndex(at);
        view->edit(at);
        auto *box = view->viewport()->findChild<QComboBox *>();
        if (!box)
            return {};
        QStringList offered;
        for (int i = 0; i < box->count(); ++i)
            offered << box->itemText(i);
        box->setCurrentIndex(box->findText(entry));
        emit box->activated(box->currentIndex());
        return offered;
    }

    qint64 acct = 0;
};

TEST_P(ProposalWindowTest, ShowsEverySlotAndLocksTheFreeOne)
{
    EXPECT_EQ(dialog->windowTitle(), "Proposal Maintenance ");
    ASSERT_EQ(grid().CountRows(), 3);
    EXPECT_EQ(row(1), "1,Default Proposal,Open,1");
    EXPECT_EQ(row(2), "2,Last year,Close,0");
    EXPECT_EQ(row(3), "3,,,0");
    EXPECT_EQ(locks(1), "----");
    EXPECT_EQ(locks(2), "---L") << "a closed proposal cannot be made active";
    EXPECT_EQ(locks(3), "LLLL");
    EXPECT_FALSE(userEdits(grid(), 3, "Name", "Typed into a free slot"));
}

TEST_P(ProposalWindowTest, SavingWritesOnlyTheChangedRowsInOneGo)
{
    ASSERT_TRUE(userEdits(grid(), 2, "Name", "Two years ago"));
    ASSERT_TRUE(dialog->Save());
    // The free slot was not rewritten: an update would have stored its "N" as "".
    EXPECT_EQ(storedSlots(), "1,Default Proposal,O,Y|2,Two years ago,C,|3,,,N");
    EXPECT_EQ(panel, QStringList{" Proposal :1"});
    EXPECT_TRUE(shownTexts().isEmpty());
    EXPECT_EQ(auditTrail(), "Proposals,Proposal,ID=2,,Name,Last year,Two years ago|Proposals,Proposal,ID=2,,Active,N,");

    panel.clear();
    ASSERT_TRUE(dialog->Save()) << "nothing changed is still a save";
    EXPECT_EQ(panel, QStringList{" Proposal :1"});
}

TEST_P(ProposalWindowTest, TickingASecondActiveClearsTheFirst)
{
    EXPECT_EQ(pickStatus(2, "Open"), (QStringList{"Open", "Close"}));
    EXPECT_EQ(grid().GetItemValue(2, "Status"), "Open");
    EXPECT_EQ(locks(2), "----") << "an opened proposal can be made active";
    ASSERT_TRUE(userEdits(grid(), 2, "Active", true));
    EXPECT_EQ(grid().GetItemValue(1, "Active"), "0");
    EXPECT_EQ(grid().GetItemValue(2, "Active"), "1");
    ASSERT_TRUE(dialog->Save());
    EXPECT_EQ(storedSlots(), "1,Default Proposal,O,|2,Last year,O,Y|3,,,N");
    EXPECT_EQ(gstrProposalID, "1") << "saving the grid does not change the current proposal";
}

TEST_P(ProposalWindowTest, AFailedSaveWritesNothingAndKeepsTheEdits)
{
    ASSERT_TRUE(userEdits(grid(), 1, "Name", "Renamed"));
    ASSERT_TRUE(userEdits(grid(), 2, "Status", "Open"));
    exec("Delete from Proposal where ID = '2'"); // another workstation emptied the table's row meanwhile
    EXPECT_FALSE(dialog->Save());
    EXPECT_EQ(shownTexts(), QStringList{"Proposal Maintenance|Cannot Save Data.0 records to be update"});
    EXPECT_EQ(storedSlots(), "1,Default Proposal,O,Y|3,,,N") << "the first row's update was rolled back";
    EXPECT_EQ(auditTrail(), "");
    EXPECT_EQ(row(1), "1,Renamed,Open,1");
    EXPECT_EQ(row(2), "2,Last year,Open,0");
    EXPECT_TRUE(panel.isEmpty());
}

TEST_P(ProposalWindowTest, WithNoFreeSlotCreateSaysSoAndOpensNothing)
{
    exec("Update Proposal set Status = 'C' where ID = '3'");
    dialog->Reload();
    whenDialogOpens([](classDialog &d) { d.reject(); });
    press(*dialog, "tlbAdd");
    QCoreApplication::processEvents();
    EXPECT_EQ(opened, "");
    EXPECT_EQ(shownTexts(), QStringList{"Proposal Maintenance|You have already reach the maximum three proposals!"});
}

TEST_P(ProposalWindowTest, CreateFillsTheFreeSlotFromTheChosenSourceAndMakesItCurrent)
{
    QString label;
    QStringList entries;
    whenDialogOpens([&](classDialog &d) {
        label = d.Control("lblID").Caption();
        auto *combo = qobject_cast<QComboBox *>(d.Control("cboCopyData").field());
        for (int i = 0; i < combo->count(); ++i)
            entries << combo->itemText(i) + '=' + d.Control("cboCopyData").DropDown().ItemKey("cboCopyData", i);
        entries << QString::number(combo->currentIndex());
        d.Control("txtName").setText("Lean year");
        combo->setCurrentIndex(2);
        d.findChild<QAbstractButton *>("cmdDialogOK")->click();
    });
    press(*dialog, "tlbAdd");
    EXPECT_EQ(opened, "mwclsDialogCreate");
    EXPECT_EQ(label, "Proposal #: 3");
    EXPECT_EQ(entries, (QStringList{"Empty Proposal Budget=E", "Current Budget=C", "Proposal:1=1", "0"}))
        << "only open proposals are offered to copy";
    EXPECT_EQ(storedSlots(), "1,Default Proposal,O,N|2,Last year,C,N|3,Lean year,O,Y");
    EXPECT_EQ(rows("select AcctId, ProposedBudget from ProposalBudget where ProposalID = '3'"),
              QString("%1,250").arg(acct));
    EXPECT_EQ(gstrProposalID, "3");
    EXPECT_EQ(panel, QStringList{"Proposal :3"});
    // The slots column by column; the amounts in one entry, not one per account.
    EXPECT_EQ(auditTrail(), "Proposals,Proposal,ID=1,,Active,Y,N|Proposals,Proposal,ID=3,,Name,,Lean year|"
                            "Proposals,Proposal,ID=3,,Status,,O|Proposals,Proposal,ID=3,,Active,N,Y|"
                            "Proposals,ProposalBudget,,,,,Proposal 3 filled from proposal 1 for every account");
    EXPECT_EQ(row(3), "3,Lean year,Open,1") << "the grid was reloaded";
    EXPECT_EQ(locks(3), "----");
}

TEST_P(ProposalWindowTest, OnlyAClosedOrFreeProposalIsErased)
{
    grid().SelectRow(1);
    press(*dialog, "tlbDelete");
    ASSERT_TRUE(userEdits(grid(), 1, "Active", false));
    ASSERT_TRUE(userEdits(grid(), 1, "Status", "Close"));
    press(*dialog, "tlbDelete");
    EXPECT_EQ(shownTexts(), QStringList(2, "Proposal Maintenance|Cannot delete Proposal. The Proposal 1 is "
                                           "currently Open or Active !"))
        << "what is stored counts as well as what is shown";

    recorder->clear();
    grid().SelectRow(2);
    recorder->answer(MsgAnswer::No);
    press(*dialog, "tlbDelete");
    EXPECT_EQ(storedSlots(), "1,Default Proposal,O,Y|2,Last year,C,N|3,,,N");
    recorder->answer(MsgAnswer::Yes);
    press(*dialog, "tlbDelete");
    EXPECT_EQ(shownTexts(), (QStringList{"Proposal Maintenance|Are you sure you want to erase Proposal # 2?",
                                         "Proposal Maintenance|Are you sure you want to erase Proposal # 2?",
                                         "Proposal Maintenance|Proposal has been erased !"}));
    EXPECT_EQ(storedSlots(), "1,Default Proposal,O,Y|2,Last year,,N|3,,,N") << "the name stays with the slot";
    EXPECT_EQ(row(2), "2,Last year,,0") << "shown by slot, though the update may have moved the row";
    EXPECT_EQ(locks(2), "LLLL");
    EXPECT_EQ(row(1), "1,Default Proposal,Open,1") << "the reload dropped the unsaved edits";
}

KORA_WINDOW_BACKENDS(ProposalWindowTest);

} // namespace
