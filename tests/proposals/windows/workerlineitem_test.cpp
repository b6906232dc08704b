#include "proposalwindowtest.h"
#include "refusedwrites.h"

#include "adoconnection.h"
#include "workerlineitem.h"

#include <QKeyEvent>

namespace {

class LineItemTest : public WindowTest {
protected:
    void prepare() override
    {
        acct = account("A-100", "A", "E", "", "100");
        exec(QString("Insert into ProposalBudget values (%1,'1',500,10,20,30)").arg(acct));
        exec(QString("Insert into LnItem values (%1,1,'Teacher',1000.5)").arg(acct));
        exec(QString("Insert into LnItem values (%1,2,'Aide  ',200)").arg(acct));
        exec(QString("Insert into LnItem values (%1,3,'Books',99.25)").arg(acct));
    }
    // The window for the account with the given component flags ("P", "AC").
    workerLineItem &open(const QString &flags = "", qint64 id = 0)
    {
        return openWindow<workerLineItem>(LineItemAccount{static_cast<std::int32_t>(id ? id : acct), "A-100",
                                                          "Name of A-100", "A", "E", flags.contains('A'),
                                                          flags.contains('P'), flags.contains('C'), "1"});
    }
    workerLineItem &lines() const { return static_cast<workerLineItem &>(*worker); }
    QString shownLines()
    {
        QStringList lines;
        for (int r = 1; r <= grid().CountRows(); ++r)
            lines << grid().GetItemValue(r, "LineItemNumber") + ',' + grid().GetItemValue(r, "LineItemText") + ',' +
                         grid().GetItemValue(r, "Amount");
        return lines.join('|');
    }
    QString storedLines()
    {
        return rows(QString("select LineItemNumber, LineItemText, LineItemAmount from LnItem where AcctId = %1 "
                            "order by LineItemNumber")
                        .arg(acct));
    }
    QString proposal()
    {
        return rows("select ProposedBudget, CatAProposal, CatPProposal, CatCProposal from "
                    "ProposalBudget where ProposalID = '1' and AcctId = " +
                    QString::number(acct));
    }
    qint64 acct = 0;
};

TEST_P(LineItemTest, ShowsTheAccountsLinesAndTheirTotal)
{
    open();
    EXPECT_EQ(dialog->windowTitle(), "Line Item for Account Code - A-100");
    EXPECT_EQ(shownLines(), "1,Teacher,1000.5|2,Aide  ,200|3,Books,99.25");
    EXPECT_EQ(lines().GetTotal(), money("1299.75"));
    EXPECT_FALSE(userEdits(grid(), 1, "LineItemNumber", "7")) << "line numbers are not typed";

    const qint64 empty = account("A-200");
    open("", empty);
    EXPECT_EQ(grid().CountRows(), 0);
    EXPECT_EQ(lines().GetTotal(), Currency());
}

TEST_P(LineItemTest, SaveUpdatesChangedLinesAddsNewOnesAndLeavesTheRest)
{
    open();
    ASSERT_TRUE(userEdits(grid(), 3, "Amount", "120"));
    ASSERT_TRUE(userEdits(grid(), 1, "LineItemText", "Teachers"));
    press(*dialog, "tlbAdd");
    ASSERT_EQ(grid().CountRows(), 4);
    EXPECT_EQ(grid().GetItemValue(4, "LineItemNumber"), "4");
    EXPECT_EQ(grid().CurrentColumnName(), "LineItemText") << "ready for typing the new line";
    ASSERT_TRUE(userEdits(grid(), 4, "LineItemText", "Supplies"));
    ASSERT_TRUE(userEdits(grid(), 4, "Amount", "(5.00)"));
    EXPECT_EQ(lines().GetTotal(), money("1315.5"));
    press(*dialog, "cmdSave");
    EXPECT_TRUE(shownTexts().isEmpty()) << shownTexts().join('\n').toStdString();
    // Line 2 was not rewritten: its trailing blanks would have been trimmed.
    EXPECT_EQ(storedLines(), "1,Teachers,1000.5|2,Aide  ,200|3,Books,120|4,Supplies,-5");
    EXPECT_EQ(shownLines(), "1,Teachers,1000.5|2,Aide  ,200|3,Books,120|4,Supplies,-5") << "reloaded by number";
    EXPECT_FALSE(grid().RowChanged(4)) << "the saved values are the loaded ones now";
    EXPECT_EQ(rows("select Task, RowKey, AccountCode, ColumnName, OldValue, NewValue from AuditTrail order by ID")
                  .toStdString(),
              QString("Line Items,AcctId=%1, LineItemNumber=1,A-100,LineItemText,Teacher,Teachers|"
                      "Line Items,AcctId=%1, LineItemNumber=3,A-100,LineItemAmount,99.25,120|"
                      "Line Items,AcctId=%1, LineItemNumber=4,A-100,LineItemText,,Supplies|"
                      "Line Items,AcctId=%1, LineItemNumber=4,A-100,LineItemAmount,,-5")
                  .arg(acct)
                  .toStdString());
}

TEST_P(LineItemTest, DeletingKeepsTheOtherNumbersAndNewLinesNeverReuseThem)
{
    open();
    grid().SelectRow(2);
    recorder->answer(MsgAnswer::Yes);
    press(*dialog, "tlbDelete");
    EXPECT_EQ(shownTexts(), (QStringList{"Line Item for Account Code - A-100|Are you sure you want to erase Line # 2?",
                                         "Line Item for Account Code - A-100|Line Item has been erased !"}));
    EXPECT_EQ(storedLines(), "1,Teacher,1000.5|3,Books,99.25");
    EXPECT_EQ(shownLines(), "1,Teacher,1000.5|3,Books,99.25");
    EXPECT_EQ(lines().GetTotal(), money("1099.75"));
    EXPECT_EQ(grid().GetColumnTotal("Amount"), money("1099.75"));

    press(*dialog, "tlbAdd");
    EXPECT_EQ(grid().GetItemValue(3, "LineItemNumber"), "4") << "line 3 is kept, so the new one is 4";
    recorder->clear();
    grid().SelectRow(3);
    recorder->answer(MsgAnswer::Yes);
    press(*dialog, "tlbDelete");
    EXPECT_EQ(shownTexts(), QStringList{"Line Item for Account Code - A-100|Are you sure you want to erase Line # 4?"})
        << "a line never saved just leaves the grid";
    EXPECT_EQ(grid().CountRows(), 2);

    grid().SelectRow(1);
    recorder->answer(MsgAnswer::No);
    press(*dialog, "tlbDelete");
    EXPECT_EQ(storedLines(), "1,Teacher,1000.5|3,Books,99.25");
}

TEST_P(LineItemTest, ForwardingPutsTheTotalWhereTheAccountTakesPart)
{
    open("AC");
    press(*dialog, "tlbForward");
    EXPECT_EQ(shownTexts(), QStringList{"Line Item for Account Code - A-100|Cannot forward total: This account code "
                                        "has more than one Category!"});
    EXPECT_EQ(proposal(), "500,10,20,30");
    EXPECT_FALSE(lines().Forwarded());

    recorder->clear();
    open("P");
    press(*dialog, "tlbForward");
    EXPECT_EQ(shownTexts(), QStringList{"Line Item for Account Code - A-100|The Line Item Total has been saved to the "
                                        "Proposed Budget. "});
    EXPECT_EQ(proposal(), "500,10,1299.75,30") << "only the program component takes the total";
    ASSERT_TRUE(lines().Forwarded());
    EXPECT_EQ(lines().Forwarded()->ProposedCatP, money("1299.75"));
    EXPECT_EQ(lines().Forwarded()->ProposedBudget, money("500"));

    open("");
    ASSERT_TRUE(userEdits(grid(), 1, "Amount", "0.5")) << "the grid's total, saved or not";
    press(*dialog, "tlbForward");
    EXPECT_EQ(proposal(), "299.75,10,1299.75,30");
}

TEST_P(LineItemTest, ForwardingForAnAccountOutsideTheProposalSaysNothing)
{
    exec(QString("Delete from ProposalBudget where AcctId = %1").arg(acct));
    open("");
    press(*dialog, "tlbForward");
    EXPECT_TRUE(recorder->shown().empty());
    EXPECT_EQ(proposal(), "");
    EXPECT_FALSE(lines().Forwarded());
}

TEST_P(LineItemTest, AFailedSaveWritesNoLineAndKeepsTheEdits)
{
    for (const char *write : {"INSERT", "UPDATE"})
        refuseWrites(*db(), "LnItem", write, "NEW.LineItemAmount < 0");
    open();
    ASSERT_TRUE(userEdits(grid(), 1, "LineItemText", "Head teacher"));
    press(*dialog, "tlbAdd");
    ASSERT_TRUE(userEdits(grid(), 4, "Amount", "-1"));
    press(*dialog, "cmdSave");
    ASSERT_EQ(shownTexts().size(), 1);
    EXPECT_TRUE(shownTexts()[0].startsWith("Line Item for Account Code - A-100|Cannot add Line Item for Account "
                                           "Code: A-100. ("));
    EXPECT_TRUE(shownTexts()[0].contains("refused by the test"));
    EXPECT_EQ(storedLines(), "1,Teacher,1000.5|2,Aide  ,200|3,Books,99.25") << "line 1's update was rolled back";
    EXPECT_EQ(shownLines(), "1,Head teacher,1000.5|2,Aide  ,200|3,Books,99.25|4,,-1");
    EXPECT_EQ(auditTrail(), "");
}

TEST_P(LineItemTest, TheServerGoingAwayMidSaveLeavesNoLine)
{
    if (GetParam() != testdb::Backend::PostgreSQL)
        GTEST_SKIP() << "only a server connection can be cut";
    // The second write of the save ends the session, as a stopped server would.
    endSessionOnWrite("LnItem", "INSERT", "NEW.LineItemNumber = 4");
    open();
    ASSERT_TRUE(userEdits(grid(), 1, "Amount", "1"));
    press(*dialog, "tlbAdd");
    ASSERT_TRUE(userEdits(grid(), 4, "Amount", "2"));
    press(*dialog, "cmdSave");
    ASSERT_EQ(shownTexts().size(), 1);
    EXPECT_TRUE(shownTexts()[0].contains("Cannot add Line Item for Account Code: A-100. ("));
    EXPECT_EQ(shownLines(), "1,Teacher,1|2,Aide  ,200|3,Books,99.25|4,,2");

    EXPECT_EQ(rowsOverNewConnection(
                  QString("select LineItemAmount from LnItem where AcctId = %1 order by LineItemNumber").arg(acct)),
              "1000.5|200|99.25");
}

TEST_P(LineItemTest, LeavingWithUnsavedEditsAsksFirst)
{
    open();
    press(*dialog, "cmdClose");
    EXPECT_EQ(dialog->CloseAction(), classDialog::ClosedByWorker) << "nothing changed: no question";
    EXPECT_TRUE(recorder->shown().empty());

    open();
    ASSERT_TRUE(userEdits(grid(), 2, "LineItemText", "Aide"));
    press(*dialog, "cmdClose");
    ASSERT_EQ(recorder->shown().size(), 1u);
    const MessageRequest &question = recorder->shown()[0].message;
    EXPECT_EQ(question.title, "Discard Changes") << "the edit grid's question, whose words its tests check";
    EXPECT_EQ(question.defaultAnswer, MsgAnswer::No);
    EXPECT_NE(dialog->CloseAction(), classDialog::ClosedByWorker) << "No keeps the window and its edits";
    // Escape and the close box ask as Close does.
    QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    QApplication::sendEvent(dialog.get(), &escape);
    dialog->show();
    dialog->close();
    ASSERT_EQ(recorder->shown().size(), 3u);
    EXPECT_EQ(recorder->shown()[1].message.title, "Discard Changes");
    EXPECT_EQ(recorder->shown()[2].message.title, "Discard Changes");
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_NE(dialog->CloseAction(), classDialog::ClosedByWorker);
    recorder->answer(MsgAnswer::Yes);
    dialog->close();
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_EQ(dialog->CloseAction(), classDialog::ClosedByWorker);
    EXPECT_EQ(storedLines(), "1,Teacher,1000.5|2,Aide  ,200|3,Books,99.25");
}

KORA_WINDOW_BACKENDS(LineItemTest);

} // namespace
