// The budget entry grid on every backend: what it shows, the component
// rules, saving (changed rows only, one transaction, rolled back on the first
// failure), switching ledgers, the line-item hand-over, the check against
// another workstation's save, and the account-editing display type.
#include "proposalwindowtest.h"
#include "refusedwrites.h"

#include "sampleinstallationfixture.h"

#include "appglobals.h"
#include "classdialog.h"
#include "classdropdown.h"
#include "classgrid.h"
#include "workereditgrid.h"

#include <QApplication>
#include <QKeyEvent>
#include <QTableView>
#include <QTimer>

#include <memory>

namespace {

class EditGridTest : public WindowTest {
protected:
    void prepare() override
    {
        resetAppGlobals();
        gstrProposalID = "1";
        gstrBudgetYearID = "2025";
        gstrProposedYearID = "2026";
        exec("Insert into Proposal (ID, Name, Status, Active) values ('1','Board draft','O','Y')");
        both = account("A100.1", "A", "E", "AP");
        programOnly = account("A100.2", "A", "E", "P");
        none = account("A100.3", "A", "E", "");
        missing = account("A100.4", "A", "E", "APC");
        account("A100.9", "A", "E", "A", "100", "H");
        revenue = account("A1001", "A", "R");
        lunch = account("C200.1", "C", "E");
        figures(both, "30", "10", "20", "0");
        figures(programOnly, "70", "50", "70", "0");
        figures(none, "0", "0", "0", "0");
        figures(revenue, "500", "0", "0", "0");
        figures(lunch, "40", "0", "0", "0");
    }
    void figures(qint64 id, const char *total, const char *a, const char *p, const char *c)
    {
        exec(QString("Insert into ProposalBudget (AcctId, ProposalID, ProposedBudget, CatAProposal, CatPProposal, "
                     "CatCProposal) values (%1,'1',%2,%3,%4,%5)")
                 .arg(id)
                 .arg(total, a, p, c));
    }
    QString stored(qint64 id)
    {
        return rows(QString("select ProposedBudget, CatAProposal, CatPProposal, CatCProposal from ProposalBudget "
                            "where AcctId = %1 and ProposalID = '1'")
                        .arg(id));
    }

    void open(const QString &fund, const QString &ledger, const QString &type = "PB")
    {
        auto made = std::make_unique<workerEditGrid>(db(), [](std::vector<FundEntry> &funds, QString &) {
            funds = {{"A", "General Fund"}, {"C", "School Lunch Fund"}};
            return true;
        });
        made->setDisplayType(type);
        made->setFundID(fund);
        made->setLedgerID(ledger);
        ASSERT_TRUE(made->Initialise());
        showWindow(std::move(made));
    }
    workerEditGrid &editor() { return static_cast<workerEditGrid &>(*worker); }
    int row(const QString &code)
    {
        for (int r = 1; r <= grid().CountRows(); ++r) {
            if (grid().GetItemValue(r, "AcctCode") == code)
                return r;
        }
        ADD_FAILURE() << "no row " << code.toStdString();
        return 1;
    }
    QString amount(const QString &code, const QString &key) { return grid().GetAmount(row(code), key).toSqlText(); }
    bool type(const QString &code, const QString &key, const QString &value)
    {
        return userEdits(grid(), row(code), key, value);
    }
    void pick(const QString &list, const QString &key)
    {
        classDropDown &drop = dialog->Control(list).DropDown();
        drop.setListIndex(list, drop.KeyToIndex(list, key));
        worker->UserAction(*dialog, list);
    }
    QString caption(const QString &name) { return dialog->Control(name).Caption(); }

    qint64 both = 0, programOnly = 0, none = 0, missing = 0, revenue = 0, lunch = 0;
};

TEST_P(EditGridTest, ShowsTheLedgerWithItsCaptionsYearsAndComponentRules)
{
    open("A", "E");
    EXPECT_EQ(dialog->windowTitle(), "Proposed Budget (Proposal 1)");
    EXPECT_EQ(caption("lblLedger"), "Expenditure Leger ");
    EXPECT_EQ(grid().Column("CurrentBudget").Caption2(), "2024-2025");
    EXPECT_EQ(grid().Column("Amount").Caption2(), "2025-2026");

    // Live accounts only, in code order, the one without a proposal row included at zero.
    ASSERT_EQ(grid().CountRows(), 4);
    EXPECT_EQ(grid().GetItemValue(4, "AcctCode"), "A100.4");
    EXPECT_FALSE(grid().ColumnHidden("CatA"));
    EXPECT_TRUE(grid().CellLocked(1, "Amount"));
    for (const char *key : {"AcctCode", "Description", "CurrentBudget"})
        EXPECT_TRUE(grid().CellLocked(1, key)) << key;

    // Only CatPFlag: only the program cell opens, and the 50 left in the closed admin cell never counts.
    const int p = row("A100.2");
    EXPECT_TRUE(grid().CellLocked(p, "CatA"));
    EXPECT_FALSE(grid().CellLocked(p, "CatP"));
    EXPECT_TRUE(grid().CellLocked(p, "CatC"));
    EXPECT_EQ(amount("A100.2", "Amount"), "70");
    EXPECT_FALSE(type("A100.2", "CatA", "999"));
    EXPECT_TRUE(type("A100.2", "CatP", "80.25"));
    EXPECT_EQ(amount("A100.2", "Amount"), "80.25");
    EXPECT_EQ(amount("A100.2", "CatA"), "50");
    EXPECT_FALSE(type("A100.2", "Amount", "1"));
    EXPECT_TRUE(type("A100.1", "CatA", "5"));
    EXPECT_EQ(amount("A100.1", "Amount"), "25");
    EXPECT_EQ(grid().GetColumnTotal("Amount").toSqlText(), "105.25");

    // The three-part summary counts open cells only and names the account in no component.
    EXPECT_EQ(caption("lblComponents"),
              "Administrative 5.00 (4.8%)     Program 100.25 (95.2%)     Capital 0.00 (0.0%)");
    EXPECT_EQ(caption("lblNoComponent"), "In no component, so no amount can be given here: A100.3");
}

TEST_P(EditGridTest, OtherLedgersHideTheComponentsAndCalendarYearsKeepTheirIds)
{
    gbCalendarYear = true;
    open("A", "R");
    EXPECT_EQ(caption("lblLedger"), "Revenue Ledger ");
    EXPECT_EQ(grid().Column("CurrentBudget").Caption2(), "2025");
    EXPECT_TRUE(grid().ColumnHidden("CatA"));
    EXPECT_FALSE(dialog->Control("lblComponents").Visible());
    ASSERT_EQ(grid().CountRows(), 1);
    EXPECT_FALSE(grid().CellLocked(1, "Amount"));
    EXPECT_TRUE(type("A1001", "Amount", "(200.00)"));
    EXPECT_EQ(amount("A1001", "Amount"), "-200");
}

TEST_P(EditGridTest, SavesChangedRowsOnlyComponentsWithoutTheirTotalAndInsertsMissingRows)
{
    open("A", "E");
    ASSERT_TRUE(type("A100.2", "CatP", "75"));
    ASSERT_TRUE(type("A100.4", "CatC", "12.5"));
    // Another figure changed behind the grid on a row the user left alone: not written back.
    exec(QString("Update ProposalBudget set CatAProposal = 7 where AcctId = %1").arg(both));
    EXPECT_TRUE(grid().RowChanged(row("A100.2")));
    EXPECT_FALSE(grid().RowChanged(row("A100.1")));

    EXPECT_TRUE(dialog->Save());
    EXPECT_TRUE(recorder->shown().empty());
    // The stored total stays as it was for these accounts; only the components are written.
    EXPECT_EQ(stored(programOnly), "70,50,75,0");
    EXPECT_EQ(stored(missing), "0,0,0,12.5");
    EXPECT_EQ(stored(both), "30,7,20,0");
    EXPECT_FALSE(grid().RowChanged(row("A100.2")));
    EXPECT_EQ(
        rows("select Task, AccountCode, ColumnName, OldValue, NewValue from AuditTrail order by ID").toStdString(),
        "Proposed Budget,A100.2,CatPProposal,70,75|Proposed Budget,A100.4,ProposedBudget,,0|"
        "Proposed Budget,A100.4,CatAProposal,,0|Proposed Budget,A100.4,CatPProposal,,0|"
        "Proposed Budget,A100.4,CatCProposal,,12.5");
    EXPECT_EQ(rows("select RowKey from AuditTrail where AccountCode = 'A100.2'").toStdString(),
              QString("AcctId=%1, ProposalID=1").arg(programOnly).toStdString());

    // Nothing changed: nothing written, and the save still succeeds.
    exec(QString("Update ProposalBudget set CatPProposal = 1 where AcctId = %1").arg(programOnly));
    EXPECT_TRUE(dialog->Save());
    EXPECT_EQ(stored(programOnly), "70,50,1,0");
}

TEST_P(EditGridTest, SavesTheAmountOfOtherLedgers)
{
    open("C", "E");
    ASSERT_TRUE(type("C200.1", "Amount", "1,234.50"));
    EXPECT_TRUE(dialog->Save());
    EXPECT_EQ(stored(lunch), "1234.5,0,0,0");
}

TEST_P(EditGridTest, AFailedRowRollsBackTheWholeSaveAndKeepsTheEdits)
{
    refuseWrites(*db(), "ProposalBudget", "UPDATE", QString("NEW.AcctId = %1").arg(programOnly));
    open("A", "E");
    ASSERT_TRUE(type("A100.1", "CatA", "11"));
    ASSERT_TRUE(type("A100.2", "CatP", "75"));
    ASSERT_TRUE(type("A100.4", "CatA", "3"));

    EXPECT_FALSE(dialog->Save());
    ASSERT_EQ(recorder->shown().size(), 1u);
    const MessageRequest &box = recorder->shown()[0].message;
    EXPECT_EQ(box.icon, MsgIcon::Critical);
    EXPECT_TRUE(box.text.startsWith("Cannot Update Account Code: A100.2. (")) << box.text.toStdString();
    EXPECT_TRUE(box.text.contains("refused by the test")) << box.text.toStdString();
    EXPECT_EQ(stored(both), "30,10,20,0");
    EXPECT_EQ(rows(QString("select AcctId from ProposalBudget where AcctId = %1").arg(missing)), "");
    EXPECT_FALSE(db()->inTransaction());
    for (const char *code : {"A100.1", "A100.2", "A100.4"})
        EXPECT_TRUE(grid().RowChanged(row(code))) << code;
    EXPECT_EQ(amount("A100.2", "CatP"), "75");
    EXPECT_EQ(auditTrail(), "") << "the rows saved before the failure were rolled back with their entries";
}

TEST_P(EditGridTest, SwitchingLedgerAsksBeforeDiscardingEdits)
{
    open("A", "E");
    pick("cboLedgers", "R");
    EXPECT_TRUE(recorder->shown().empty()) << "nothing changed, nothing asked";
    EXPECT_EQ(editor().LedgerID(), "R");

    ASSERT_TRUE(type("A1001", "Amount", "9"));
    pick("cboFunds", "C");
    ASSERT_EQ(recorder->shown().size(), 1u);
    const MessageRequest &box = recorder->shown()[0].message;
    EXPECT_EQ(box.title, "Discard Changes");
    EXPECT_EQ(box.text, "Changing your ledger will discard any changes you made to your current ledger?\r"
                        "Do you want to continue?");
    EXPECT_EQ(box.buttons, MsgButtons::YesNo);
    EXPECT_EQ(box.icon, MsgIcon::Question);
    EXPECT_EQ(box.defaultAnswer, MsgAnswer::No);
    // The default No keeps the ledger, its edit and the lists as they were.
    EXPECT_EQ(editor().FundID(), "A");
    EXPECT_EQ(amount("A1001", "Amount"), "9");
    EXPECT_EQ(dialog->Control("cboFunds").DropDown().GetSelectedByKey("cboFunds"), "A");

    recorder->answer(MsgAnswer::Yes);
    pick("cboFunds", "C");
    EXPECT_EQ(editor().FundID(), "C");
    EXPECT_EQ(grid().CountRows(), 0) << "the lunch fund has no revenue account";
}

// Without a hook of the caller's, the line-item window itself opens over the grid.
TEST_P(EditGridTest, TheLineItemButtonOpensTheLineItemWindowForTheCurrentAccount)
{
    open("A", "E");
    grid().SelectRow(row("A100.2"));
    QString opened;
    QTimer::singleShot(0, [&] {
        if (QWidget *window = QApplication::activeModalWidget()) {
            opened = window->windowTitle();
            window->close();
        }
    });
    worker->UserAction(*dialog, "tlbLnItem");
    EXPECT_EQ(opened, "Line Item for Account Code - A100.2");
}

TEST_P(EditGridTest, LeavingWithUnsavedEditsAsksFirst)
{
    open("A", "E");
    QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    QApplication::sendEvent(dialog.get(), &escape);
    EXPECT_TRUE(recorder->shown().empty()) << "nothing changed, nothing asked";
    EXPECT_EQ(dialog->CloseAction(), classDialog::ClosedByWorker);

    open("A", "E");
    ASSERT_TRUE(type("A100.1", "CatA", "15"));
    dialog->show();
    dialog->close();
    ASSERT_EQ(recorder->shown().size(), 1u);
    EXPECT_EQ(recorder->shown()[0].message.title, "Discard Changes");
    EXPECT_TRUE(dialog->isVisible()) << "No keeps the window and its edits";
    EXPECT_EQ(amount("A100.1", "CatA"), "15");
    recorder->answer(MsgAnswer::Yes);
    QApplication::sendEvent(dialog.get(), &escape);
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_EQ(dialog->CloseAction(), classDialog::ClosedByWorker);
    EXPECT_EQ(stored(both), "30,10,20,0") << "closing saves nothing";
}

TEST_P(EditGridTest, LineItemsGetTheCurrentAccountAndTheRowFollowsWhatTheyForwarded)
{
    open("A", "E");
    std::vector<LineItemAccount> asked;
    editor().setLineItemHook([&](const LineItemAccount &account) {
        asked.push_back(account);
        exec(QString("Update ProposalBudget set CatPProposal = 90 where AcctId = %1").arg(account.ID));
    });
    worker->UserAction(*dialog, "tlbLnItem");
    ASSERT_EQ(recorder->shown().size(), 1u);
    EXPECT_EQ(recorder->shown()[0].message.text, "Please select an Line Item to edit!");
    EXPECT_TRUE(asked.empty());

    ASSERT_TRUE(type("A100.1", "CatA", "4"));
    grid().SelectRow(row("A100.2"));
    worker->UserAction(*dialog, "tlbLnItem");
    ASSERT_EQ(asked.size(), 1u);
    EXPECT_EQ(asked[0].ID, programOnly);
    EXPECT_EQ(asked[0].AccountCode, "A100.2");
    EXPECT_EQ(asked[0].FundID, "A");
    EXPECT_EQ(asked[0].LedgerID, "E");
    EXPECT_EQ(asked[0].ProposalID, gstrProposalID);
    EXPECT_FALSE(asked[0].CatA);
    EXPECT_TRUE(asked[0].CatP);
    EXPECT_FALSE(asked[0].CatC);
    EXPECT_EQ(amount("A100.2", "CatP"), "90");
    EXPECT_EQ(amount("A100.2", "Amount"), "90");
    EXPECT_FALSE(grid().RowChanged(row("A100.2"))) << "what the line items saved is not saved again";
    EXPECT_EQ(amount("A100.1", "CatA"), "4") << "other rows keep their edits";
}

// Two workstations: a second connection saves an account after this grid loaded it.
TEST_P(EditGridTest, AnotherWorkstationsSaveIsNeverOverwrittenSilently)
{
    open("A", "E");
    clsAdoConnection other;
    other.configure(database().config());
    ASSERT_TRUE(other.OpenConnection()) << other.Error().ErrorText().toStdString();
    clsProposedBudget theirs;
    theirs.setAdoConnection(other.dbConnection());
    const auto saveElsewhere = [&](qint64 id, const char *program) {
        theirs.ProposedBudgetItem() = {};
        theirs.ProposedBudgetItem().ID = std::int32_t(id);
        theirs.ProposedBudgetItem().ProposalID = "1";
        ASSERT_TRUE(theirs.Retrieve());
        theirs.ProposedBudgetItem().ProposedCatP = *Currency::parse(program);
        ASSERT_TRUE(theirs.Update()) << theirs.Error().ErrorText().toStdString();
    };
    saveElsewhere(both, "21");
    ASSERT_TRUE(type("A100.1", "CatP", "22"));
    ASSERT_TRUE(type("A100.2", "CatP", "72"));

    recorder->answer(MsgAnswer::Cancel);
    EXPECT_FALSE(dialog->Save());
    ASSERT_EQ(recorder->shown().size(), 1u);
    EXPECT_TRUE(recorder->shown()[0].message.text.contains("A100.1"));
    EXPECT_FALSE(recorder->shown()[0].message.text.contains("A100.2"));
    EXPECT_EQ(stored(both), "30,10,21,0");
    EXPECT_EQ(stored(programOnly), "70,50,70,0");

    // Reload: their figure is shown for the conflicting account, the other edit is saved.
    recorder->answer(MsgAnswer::No);
    EXPECT_FALSE(dialog->Save()) << "the window stays open to show what was reloaded";
    EXPECT_EQ(amount("A100.1", "CatP"), "21");
    EXPECT_EQ(amount("A100.1", "Amount"), "31");
    EXPECT_FALSE(grid().RowChanged(row("A100.1")));
    EXPECT_EQ(stored(programOnly), "70,50,72,0");

    // Overwrite: asked again after a new save elsewhere, and this grid's figure wins.
    saveElsewhere(both, "23");
    ASSERT_TRUE(type("A100.1", "CatP", "24"));
    recorder->clear();
    recorder->answer(MsgAnswer::Yes);
    EXPECT_TRUE(dialog->Save());
    ASSERT_EQ(recorder->shown().size(), 1u);
    EXPECT_EQ(stored(both), "30,10,24,0");
}

TEST_P(EditGridTest, AccountEditingSetsFlagsCodesAndProjectedAmount)
{
    open("A", "E", "AC");
    EXPECT_EQ(grid().Column("CatA").Type(), GridColumnType::Check);
    ASSERT_EQ(grid().CountRows(), 5) << "historical codes are listed here too";
    const int r = row("A100.2");
    EXPECT_EQ(grid().GetItemValue(r, "CatP"), "1");
    EXPECT_EQ(grid().GetItemValue(r, "CatA"), "0");

    // A flag alone marks the row changed: this is where an account joins a component.
    grid().SetCell(r, "CatC", true);
    EXPECT_TRUE(grid().RowChanged(r));
    grid().SetCell(row("A100.3"), "StateCode", QString("A2110.12"));
    grid().SetCell(row("A100.1"), "Amount", *Currency::parse("1500.75"));
    EXPECT_TRUE(dialog->Save());
    EXPECT_EQ(rows(QString("select CatAFlag, CatPFlag, CatCFlag from AccountCodes where ID = %1").arg(programOnly)),
              ",P,C");
    EXPECT_EQ(rows(QString("select StateCode from AccountCodes where ID = %1").arg(none)), "A2110.12");
    EXPECT_EQ(rows(QString("select ProjectedAmount, CatAFlag, CatPFlag from AccountCodes where ID = %1").arg(both)),
              "1500.75,A,P");
    // The set-up left the hierarchy blank; the grid writes it back as numbers, and that is a change too.
    EXPECT_EQ(rows("select Task, AccountCode, ColumnName, OldValue, NewValue from AuditTrail where ColumnName not in "
                   "('ParentID', 'ProgramID', 'BuildingID') order by ID")
                  .toStdString(),
              "Account Codes,A100.1,ProjectedAmount,0,1500.75|Account Codes,A100.2,CatCFlag,,C|"
              "Account Codes,A100.3,StateCode,,A2110.12");
    EXPECT_EQ(rows("select ColumnName, OldValue, NewValue from AuditTrail where AccountCode = 'A100.3' order by ID")
                  .toStdString(),
              "ParentID,,0|ProgramID,,0|BuildingID,,0|StateCode,,A2110.12");

    // An account gone behind the grid: the message names it and nothing is kept half-written.
    grid().SetCell(row("A100.1"), "HistCode", QString("H"));
    grid().SetCell(row("A100.4"), "StateCode", QString("X"));
    exec(QString("Delete from AccountCodes where ID = %1").arg(missing));
    EXPECT_FALSE(dialog->Save());
    ASSERT_EQ(recorder->shown().size(), 1u);
    EXPECT_EQ(recorder->shown()[0].message.text, "Cannot Retrieve Account Code: A100.4. error:Record not Found.");
    EXPECT_EQ(rows(QString("select HistoricalCode from AccountCodes where ID = %1").arg(both)), "");
    EXPECT_EQ(rows("select AccountCode from AuditTrail where ColumnName = 'HistoricalCode'").toStdString(), "")
        << "the failed save's entries went with it";
}

KORA_ALL_BACKENDS(EditGridTest);

// The server goes away in the middle of a save: the session ends as the second
// row is written, no row is left written and the edits stay on screen.
class EditGridServerTest : public EditGridTest {};

TEST_P(EditGridServerTest, AServerStoppedMidSaveLosesNoEdit)
{
    if (GetParam() != testdb::Backend::PostgreSQL)
        GTEST_SKIP() << "a server to stop";
    endSessionOnWrite("ProposalBudget", "UPDATE", QString("OLD.AcctId = %1").arg(programOnly));
    open("A", "E");
    ASSERT_TRUE(type("A100.1", "CatA", "11"));
    ASSERT_TRUE(type("A100.2", "CatP", "75"));
    EXPECT_FALSE(dialog->Save());
    ASSERT_FALSE(recorder->shown().empty());
    EXPECT_EQ(recorder->shown()[0].message.icon, MsgIcon::Critical);
    EXPECT_TRUE(recorder->shown()[0].message.text.startsWith("Cannot Update Account Code: A100.2. ("));
    EXPECT_EQ(amount("A100.1", "CatA"), "11");
    EXPECT_EQ(amount("A100.2", "CatP"), "75");
    EXPECT_TRUE(grid().RowChanged(row("A100.1")));

    EXPECT_EQ(rowsOverNewConnection(
                  QString("select CatAProposal from ProposalBudget where AcctId = %1 and ProposalID = '1'").arg(both)),
              "10")
        << "the first row's update went with the session";
}

KORA_ALL_BACKENDS(EditGridServerTest);

// An unreadable fund-accounting installation stops the window before it opens.
class EditGridFundsTest : public SampleInstallationTest {};

TEST_F(EditGridFundsTest, WithoutTheInstallationsFundsTheWindowDoesNotOpen)
{
    resetAppGlobals();
    gstrRootPath = root();
    gstrFundPath = root() + "\\NOWHERE";
    ScopedMessages shown;
    workerEditGrid worker(std::make_shared<DbConnection>(), readInstallationFunds);
    worker.setDisplayType("PB");
    EXPECT_FALSE(worker.Initialise());
    ASSERT_EQ(shown->shown().size(), 1u);
    EXPECT_EQ(shown->shown()[0].error.mode, 1);
    EXPECT_EQ(shown->shown()[0].error.title, "Proposed Budget");
    EXPECT_TRUE(shown->shown()[0].error.text.contains("NOWHERE")) << shown->shown()[0].error.text.toStdString();
    resetAppGlobals();
}

} // namespace
