#include "proposalwindowtest.h"
#include "refusedwrites.h"

#include "appglobals.h"
#include "fundbalanceswindow.h"
#include "sampleinstallation.h"

#include <QTemporaryDir>

namespace {

// The window on a budget database of each backend, beside a sample
// installation whose funds are A, C and F. The budget keeps A and Z, a fund
// that no longer exists.
class FundBalancesWindowTest : public WindowTest {
protected:
    static void SetUpTestSuite()
    {
        installation_ = new QTemporaryDir();
        QString message;
        ASSERT_EQ(createSampleInstallation(installation_->path(), smallSampleDistrict(), {}, message), 0)
            << message.toStdString();
    }
    static void TearDownTestSuite() { delete installation_; }
    void prepare() override
    {
        gstrBudgetYearID = "2025";
        exec("Insert into Bals (Fund, CurrentBalance, PreviousBalance) values ('A', 1, 2)");
        exec("Insert into Bals (Fund, CurrentBalance, PreviousBalance) values ('Z', 7, 8)");
    }
    void TearDown() override
    {
        resetAppGlobals();
        WindowTest::TearDown();
    }
    void open()
    {
        auto made = std::make_unique<workerFundBalances>(db(), installation_->path(), installation_->path() + "\\FUND");
        ASSERT_TRUE(made->Initialise());
        showWindow(std::move(made));
    }
    // Fund, current and previous balance of every row, in the grid's order.
    std::string shown() const
    {
        QStringList out;
        for (int row = 1; row <= grid().CountRows(); ++row)
            out << grid().GetItemValue(row, "Fund") + "," + grid().GetItemValue(row, "CurrentBalance") + "," +
                       grid().GetItemValue(row, "PreviousBalance");
        return out.join('|').toStdString();
    }
    // What a user types into a fund's cell (rows: A, Z, C, F).
    void type(const QString &fund, const QString &key, const QString &text)
    {
        grid().SetCell(QStringList{"A", "Z", "C", "F"}.indexOf(fund) + 1, key, text);
    }
    std::string stored()
    {
        return rows("select Fund, CurrentBalance, PreviousBalance from Bals order by Fund").toStdString();
    }
    std::string lastMessage() const { return recorder->shown().back().message.text.toStdString(); }

private:
    static inline QTemporaryDir *installation_ = nullptr;
};

TEST_P(FundBalancesWindowTest, ListsKeptRowsThenEveryFundTheBudgetLacks)
{
    open();
    EXPECT_EQ(shown(), "A,1,2|Z,7,8|C,0,0|F,0,0");
    EXPECT_EQ(grid().Column("PreviousBalance").Heading(), "Previous Balance\n2023-2024");
}

TEST_P(FundBalancesWindowTest, SavingUpdatesKeptRowsAndInsertsMissingOnesOnlyWhereChanged)
{
    open();
    ASSERT_TRUE(dialog->Save()) << "nothing changed";
    EXPECT_EQ(stored(), "A,1,2|Z,7,8");

    type("A", "CurrentBalance", "(1,234.50)");
    type("C", "PreviousBalance", "99999999999.9999");
    ASSERT_TRUE(dialog->Save());
    EXPECT_EQ(stored(), "A,-1234.5,2|C,0,99999999999.9999|Z,7,8");
    EXPECT_TRUE(recorder->shown().empty());
    EXPECT_EQ(auditTrail(), "Fund Balances,Bals,Fund=A,,CurrentBalance,1,-1234.5|"
                            "Fund Balances,Bals,Fund=C,,CurrentBalance,,0|"
                            "Fund Balances,Bals,Fund=C,,PreviousBalance,,99999999999.9999");
}

TEST_P(FundBalancesWindowTest, AFailedRowRollsBackTheWholeSaveAndKeepsTheEdits)
{
    refuseWrites(*db(), "Bals", "INSERT", "NEW.Fund = 'F'");
    refuseWrites(*db(), "Bals", "UPDATE", "NEW.Fund = 'Z'");
    open();
    type("A", "CurrentBalance", "10");
    type("C", "CurrentBalance", "20");
    type("F", "PreviousBalance", "30");
    EXPECT_FALSE(dialog->Save());
    EXPECT_EQ(stored(), "A,1,2|Z,7,8") << "A was updated and C inserted before F failed";
    EXPECT_EQ(auditTrail(), "");
    EXPECT_EQ(shown(), "A,10,2|Z,7,8|C,20,0|F,0,30");
    EXPECT_EQ(recorder->shown().back().message.title, "Fund Balances");
    EXPECT_TRUE(lastMessage().starts_with("Error adding Fund Balance: ") && lastMessage().ends_with(")"))
        << lastMessage();

    type("F", "PreviousBalance", "0");
    type("Z", "PreviousBalance", "9");
    EXPECT_FALSE(dialog->Save());
    EXPECT_EQ(stored(), "A,1,2|Z,7,8");
    EXPECT_TRUE(lastMessage().starts_with("Error updating Fund Balance: ") && lastMessage().ends_with(")"))
        << lastMessage();
}

TEST_P(FundBalancesWindowTest, TheServerGoingAwayMidSaveLeavesNothingWritten)
{
    if (GetParam() != testdb::Backend::PostgreSQL)
        GTEST_SKIP() << "a server session to end";
    // The server ends the session as the third row arrives.
    endSessionOnWrite("Bals", "INSERT", "NEW.Fund = 'F'");
    open();
    type("A", "CurrentBalance", "10");
    type("C", "CurrentBalance", "20");
    type("F", "PreviousBalance", "30");
    EXPECT_FALSE(dialog->Save());
    EXPECT_TRUE(lastMessage().starts_with("Error adding Fund Balance: ")) << lastMessage();
    EXPECT_EQ(shown(), "A,10,2|Z,7,8|C,20,0|F,0,30");

    EXPECT_EQ(rowsOverNewConnection("select Fund, CurrentBalance from Bals order by Fund"), "A,1|Z,7");
}

KORA_ALL_BACKENDS(FundBalancesWindowTest);

} // namespace
