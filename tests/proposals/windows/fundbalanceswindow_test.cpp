#include "fundbalanceswindow.h"
#include "refusedwrites.h"

#include "appglobals.h"
#include "classdialog.h"
#include "classgrid.h"
#include "classstatusbar.h"
#include "sampleinstallation.h"

#include "guiapplication.h"
#include "recordingmessages.h"
#include "testdatabases.h"

#include <QTemporaryDir>

namespace {

// The window on a budget database of each backend, beside a sample
// installation whose funds are A, C and F.
class FundBalancesWindowTest : public testdb::DatabaseTest {
protected:
    static void SetUpTestSuite()
    {
        installation_ = new QTemporaryDir();
        QString message;
        ASSERT_EQ(createSampleInstallation(installation_->path(), smallSampleDistrict(), {}, message), 0)
            << message.toStdString();
    }
    static void TearDownTestSuite()
    {
        delete installation_;
        installation_ = nullptr;
    }
    void SetUp() override
    {
        DatabaseTest::SetUp();
        gstrBudgetYearID = "2025";
        gbCalendarYear = false;
    }
    void TearDown() override
    {
        resetAppGlobals();
        DatabaseTest::TearDown();
    }

    // Opens the window's dialog without showing it.
    classGrid &open()
    {
        worker = std::make_unique<workerFundBalances>(db(), installation_->path(),
                                                      installation_->path() + "\\FUND");
        EXPECT_TRUE(worker->Initialise());
        dialog = std::make_unique<classDialog>(*worker);
        dialog->Build(1);
        return grid();
    }
    classGrid &grid() const { return dialog->Control("AcctGrid").Grid(); }
    // Fund, current and previous balance of every row.
    std::string shown() const
    {
        QStringList out;
        for (int row = 1; row <= grid().CountRows(); ++row)
            out << grid().GetItemValue(row, "Fund") + "," + grid().GetItemValue(row, "CurrentBalance") + "," +
                       grid().GetItemValue(row, "PreviousBalance");
        return out.join('|').toStdString();
    }
    // What a user types into a cell.
    void type(int row, const QString &key, const QString &text) { grid().SetCell(row, key, text); }
    int rowOf(const QString &fund) const
    {
        for (int row = 1; row <= grid().CountRows(); ++row)
            if (grid().GetItemValue(row, "Fund") == fund)
                return row;
        ADD_FAILURE() << "no row for fund " << fund.toStdString();
        return 1;
    }
    std::string stored() { return rows("select Fund, CurrentBalance, PreviousBalance from Bals order by Fund").toStdString(); }

    GuiApplicationGuard app;
    ScopedMessages shownMessages;
    std::unique_ptr<workerFundBalances> worker;
    std::unique_ptr<classDialog> dialog;

private:
    static inline QTemporaryDir *installation_ = nullptr;
};

TEST_P(FundBalancesWindowTest, ListsEveryFundAndEveryKeptRowUnderTheYearLabels)
{
    exec("Insert into Bals (Fund, CurrentBalance, PreviousBalance) values ('A', 1500.25, 1200)");
    exec("Insert into Bals (Fund, CurrentBalance, PreviousBalance) values ('Z', 7, 8)");
    open();
    // The kept rows first (a fund that no longer exists among them), then a
    // zero row for each fund the budget has none for.
    EXPECT_EQ(shown(), "A,1500.25,1200|Z,7,8|C,0,0|F,0,0");
    EXPECT_EQ(grid().GetItemValue(1, "OrigCurrentBalance"), "1500.25");
    EXPECT_EQ(grid().Column("CurrentBalance").Heading(), "Current Balance\n2024-2025");
    EXPECT_EQ(grid().Column("PreviousBalance").Heading(), "Previous Balance\n2023-2024");
    EXPECT_TRUE(grid().ColumnHidden("OrigPreviousBalance"));
    EXPECT_FALSE(grid().ColumnDataEdit("Fund"));
    EXPECT_EQ(dialog->Control("sbrStatus").Statusbar().PanelText("Status"), "Finished Loading Data");
    EXPECT_TRUE(shownMessages->shown().empty());

    gbCalendarYear = true;
    dialog = nullptr;
    open();
    EXPECT_EQ(grid().Column("PreviousBalance").Heading(), "Previous Balance\n2024");
}

TEST_P(FundBalancesWindowTest, SavingUpdatesKeptRowsAndInsertsMissingOnesOnlyWhereChanged)
{
    exec("Insert into Bals (Fund, CurrentBalance, PreviousBalance) values ('A', 1, 2)");
    exec("Insert into Bals (Fund, CurrentBalance, PreviousBalance) values ('Z', 7, 8)");
    open();
    ASSERT_TRUE(dialog->Save()) << "nothing changed";
    EXPECT_EQ(stored(), "A,1,2|Z,7,8");

    type(rowOf("A"), "CurrentBalance", "(1,234.50)");
    type(rowOf("C"), "PreviousBalance", "99999999999.9999");
    ASSERT_TRUE(dialog->Save());
    EXPECT_EQ(stored(), "A,-1234.5,2|C,0,99999999999.9999|Z,7,8");
    EXPECT_TRUE(shownMessages->shown().empty());
}

TEST_P(FundBalancesWindowTest, AFailedRowRollsBackTheWholeSaveAndKeepsTheEdits)
{
    exec("Insert into Bals (Fund, CurrentBalance, PreviousBalance) values ('A', 1, 2)");
    exec("Insert into Bals (Fund, CurrentBalance, PreviousBalance) values ('Z', 7, 8)");
    refuseWrites(*db(), "Bals", "INSERT", "NEW.Fund = 'F'");
    refuseWrites(*db(), "Bals", "UPDATE", "NEW.Fund = 'Z'");
    open();
    type(rowOf("A"), "CurrentBalance", "10");
    type(rowOf("C"), "CurrentBalance", "20");
    type(rowOf("F"), "PreviousBalance", "30");
    EXPECT_FALSE(dialog->Save());
    EXPECT_EQ(stored(), "A,1,2|Z,7,8") << "A was updated and C inserted before F failed";
    EXPECT_EQ(shown(), "A,10,2|Z,7,8|C,20,0|F,0,30");
    ASSERT_EQ(shownMessages->shown().size(), 1u);
    const MessageRequest adding = shownMessages->shown()[0].message;
    EXPECT_EQ(adding.title, "Fund Balances");
    EXPECT_EQ(adding.icon, MsgIcon::Critical);
    EXPECT_TRUE(adding.text.startsWith("Error adding Fund Balance: ")) << adding.text.toStdString();
    EXPECT_TRUE(adding.text.endsWith(")"));

    shownMessages->clear();
    type(rowOf("F"), "PreviousBalance", "0");
    type(rowOf("Z"), "PreviousBalance", "9");
    EXPECT_FALSE(dialog->Save());
    EXPECT_EQ(stored(), "A,1,2|Z,7,8");
    ASSERT_EQ(shownMessages->shown().size(), 1u);
    const QString updating = shownMessages->shown()[0].message.text;
    EXPECT_TRUE(updating.startsWith("Error updating Fund Balance: ")) << updating.toStdString();
    EXPECT_TRUE(updating.endsWith(")"));
}

TEST_P(FundBalancesWindowTest, NoFundsFileNoDialog)
{
    QTemporaryDir empty;
    workerFundBalances nowhere(db(), empty.path(), empty.path() + "\\FUND");
    EXPECT_FALSE(nowhere.Initialise());
    ASSERT_EQ(shownMessages->shown().size(), 1u);
    EXPECT_EQ(shownMessages->shown()[0].error.title, "Fund Balances");
    EXPECT_TRUE(shownMessages->shown()[0].error.text.startsWith("Cannot initialize Funds table."));
}

KORA_ALL_BACKENDS(FundBalancesWindowTest);

} // namespace
