#include "workereditaccountcodes.h"

#include "budgetdatabase.h"
#include "classdialog.h"
#include "classdropdown.h"
#include "classgrid.h"
#include "classstatusbar.h"
#include "classtoolbar.h"
#include "district.h"
#include "fundinstallation.h"
#include "objectsummaryledgers.h"
#include "transactiondetail.h"

#include "guiapplication.h"
#include "recordingmessages.h"
#include "testdatabases.h"

#include <QApplication>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QTimer>

#include <gtest/gtest.h>

namespace {

// The demo district twice over: its budget database (SQLite) and its Kora-Fund
// installation, made once for the suite. One expenditure account of the
// general fund also carries transactions written with numbered and
// lower-case column codes.
class AccountDetailTest : public ::testing::Test {
protected:
    static constexpr auto markedAccount = "A2110.120.02";

    static void SetUpTestSuite()
    {
        district_ = new demo::District(demo::makeDistrict());
        database_ = new testdb::TestDatabase(testdb::Backend::SQLite);
        ASSERT_TRUE(database_->unavailable().isEmpty()) << database_->unavailable().toStdString();
        DbError error;
        ASSERT_TRUE(demo::populateBudgetDatabase(*database_->db(), *district_, &error));
        installation_ = new QTemporaryDir;
        QString message;
        ASSERT_EQ(createSampleInstallation(installation_->path(), demo::sampleDistrictOf(*district_), {}, message), 0)
            << message.toStdString();
        addMarkedTransactions();
    }
    static void TearDownTestSuite()
    {
        delete installation_;
        delete database_;
        delete district_;
    }

    static FundDataPlace place() { return {installation_->path(), installation_->path() + QStringLiteral("\\FUND")}; }

    // Rows whose "Ref" is "T" and a number; each line: column code, amount 1, amount 2.
    static void addMarkedTransactions()
    {
        classObjectTransactions writer;
        ASSERT_EQ(writer.Init(place().ddfPath, place().dataFolder), 0) << writer.ErrorMsg().toStdString();
        const char *rows[][3] = {{"1", "500.25", "0"},  {"ep", "120.1", "120.1"}, {"3", "20.05", "0"},
                                 {"4", "33.3333", "0"}, {"5", "40", "39.99"},     {"pe", "0.0001", "0"},
                                 {"ba", "-0.25", "0"},  {"el", "1", "0"}};
        int n = 0;
        for (const auto &row : rows) {
            writer.Clear();
            writer.LedgerID = QStringLiteral("E");
            writer.FundID = QStringLiteral("A");
            writer.AccountCode = QLatin1String(markedAccount);
            writer.TransDate = QStringLiteral("202506%1").arg(10 + n, 2, 10, QLatin1Char('0'));
            writer.ReferenceNumber = QStringLiteral("T%1").arg(++n);
            writer.ColumnID = QLatin1String(row[0]);
            writer.Amount1 = QLatin1String(row[1]);
            writer.Amount2 = QLatin1String(row[2]);
            ASSERT_EQ(writer.Add(), 0) << writer.ErrorMsg().toStdString();
        }
    }

    void open(const QString &fund = {}, const QString &ledger = {}, std::shared_ptr<DbConnection> db = nullptr)
    {
        worker_ = std::make_unique<workerEditAccountCodes>(db ? db : database_->db(), district_->activeProposal().id,
                                                           place());
        worker_->FundID = fund;
        worker_->LedgerID = ledger;
        ASSERT_TRUE(worker_->InitStores());
        dialog_ = std::make_unique<classDialog>(*worker_);
        dialog_->Build();
    }

    QString text(const char *control) const { return dialog_->Control(QLatin1String(control)).Text(); }
    QString status() const
    {
        return dialog_->Control(QStringLiteral("sbrStatus")).Statusbar().PanelText(QStringLiteral("Status"));
    }
    classGrid &grid() const { return dialog_->Control(QStringLiteral("AcctGrid")).Grid(); }
    void click(const char *button)
    {
        dialog_->Control(QStringLiteral("tlbDetail")).Toolbar().Item(QLatin1String(button)).action()->trigger();
    }
    void choose(const char *combo, const char *key)
    {
        DialogControl &box = dialog_->Control(QLatin1String(combo));
        box.setListIndex(box.DropDown().KeyToIndex(box.Name(), QLatin1String(key)));
        worker_->UserAction(*dialog_, box.Name());
    }
    void find(const QString &answer)
    {
        messages->answerText(answer);
        click("tlbFind");
    }
    // The ledger summary's balance over the whole fiscal year, the detail view's last balance by another road.
    template <class Summary> static Currency summaryBalance(const QString &code)
    {
        Summary summary;
        EXPECT_EQ(summary.Init(place().ddfPath, place().dataFolder), 0);
        summary.AccountCode = code;
        EXPECT_EQ(summary.Retrieve(), 0) << code.toStdString();
        summary.TransDate =
            QStringLiteral("%1-30-25").arg((summary.FirstFiscalMonth + 10) % 12 + 1, 2, 10, QLatin1Char('0'));
        EXPECT_EQ(summary.CalcBalance(), 0) << summary.ErrorMsg().toStdString();
        return summary.Balance;
    }

    static inline demo::District *district_ = nullptr;
    static inline testdb::TestDatabase *database_ = nullptr;
    static inline QTemporaryDir *installation_ = nullptr;

    GuiApplicationGuard app;
    ScopedMessages messages;
    std::unique_ptr<workerEditAccountCodes> worker_;
    std::unique_ptr<classDialog> dialog_;
};

// The live codes of a fund and ledger in code order, as the demo district has them.
QStringList liveCodes(const demo::District &district, const QString &fund, QChar ledger)
{
    QStringList codes;
    for (const demo::Account &account : district.accounts) {
        if (!account.historical && account.fundId == fund && account.ledger == ledger)
            codes << account.code;
    }
    return codes;
}

TEST_F(AccountDetailTest, OpensOnTheFirstCodeOfTheFirstFundsExpenditureWithItsFigures)
{
    open();
    EXPECT_EQ(dialog_->windowTitle(), "Account Code Detail");
    EXPECT_EQ(text("cboFunds"), "General Fund");
    EXPECT_EQ(text("cboLedgers"), "Expenditure");
    const QStringList codes = liveCodes(*district_, "A", u'E');
    ASSERT_FALSE(codes.isEmpty());
    ASSERT_EQ(worker_->Accounts().size(), std::size_t(codes.size()));
    EXPECT_EQ(text("txtAcctCode"), codes.front());
    const int index = district_->accountIndex(codes.front());
    const demo::Account &account = district_->accounts[std::size_t(index)];
    EXPECT_EQ(text("txtDescription"), account.name);
    EXPECT_EQ(text("txtCurrentBudget"), account.currentBudget.toDisplayText());
    const Currency proposed = district_->activeProposal().figures[std::size_t(index)].proposedBudget;
    EXPECT_EQ(text("txtProposedBudget"), proposed.toDisplayText());
    EXPECT_EQ(status(), "Finished Loading Data");
    for (const char *field : {"txtAcctCode", "txtDescription", "txtCurrentBudget", "txtProposedBudget"}) {
        auto *edit = qobject_cast<QLineEdit *>(dialog_->Control(QLatin1String(field)).field());
        ASSERT_TRUE(edit);
        EXPECT_TRUE(edit->isReadOnly()) << field;
    }
}

TEST_F(AccountDetailTest, PreviousNextAndFindStayWithinTheFundAndLedgerAndSayWhenAtAnEnd)
{
    open("a", "e");
    const QStringList codes = liveCodes(*district_, "A", u'E');
    click("tlbPrevious");
    EXPECT_EQ(text("txtAcctCode"), codes.front());
    EXPECT_EQ(status(), "Already at the first account code of the fund and ledger.");
    click("tlbNext");
    EXPECT_EQ(text("txtAcctCode"), codes.at(1));
    click("tlbPrevious");
    EXPECT_EQ(text("txtAcctCode"), codes.front());

    find(QStringLiteral("  ") + codes.back().toLower() + QStringLiteral(" "));
    EXPECT_EQ(text("txtAcctCode"), codes.back());
    EXPECT_EQ(messages->shown().front().message.text, "Please enter the Account Code you want to search.");
    EXPECT_EQ(messages->shown().front().message.title, "Kora-Budget");
    click("tlbNext");
    EXPECT_EQ(text("txtAcctCode"), codes.back());
    EXPECT_EQ(status(), "Already at the last account code of the fund and ledger.");
    click("tlbPrevious");
    EXPECT_EQ(text("txtAcctCode"), codes.at(codes.size() - 2));
    find(codes.front());
    EXPECT_EQ(text("txtAcctCode"), codes.front()) << "the search starts at the first code";
    find(codes.at(codes.size() - 2));

    messages->clear();
    find(liveCodes(*district_, "A", u'R').front()); // another ledger's code is not found here
    ASSERT_EQ(messages->shown().size(), 2u);
    EXPECT_EQ(messages->shown().back().message.text, "No Account code match!");
    EXPECT_EQ(messages->shown().back().message.title, "Kora-Budget");
    EXPECT_EQ(text("txtAcctCode"), codes.at(codes.size() - 2)) << "a failed find stays where it was";

    messages->clear();
    click("tlbFind"); // cancelled
    EXPECT_EQ(messages->shown().size(), 1u);
    EXPECT_EQ(text("txtAcctCode"), codes.at(codes.size() - 2));
}

TEST_F(AccountDetailTest, TransactionRowsFillTheColumnsTheirCodeNamesWithARunningBalanceAndTotals)
{
    open();
    find(QLatin1String(markedAccount));
    ASSERT_EQ(text("txtAcctCode"), markedAccount);
    classGrid &g = grid();
    QStringList keys;
    for (int c = 1; c <= g.CountColumns(); ++c)
        keys << g.ColumnKey(c);
    EXPECT_EQ(keys.join(u' '), "Date EncumbNumber InvoiceNumber CheckNumber Reference VendorNumber Ref AppropAmount "
                               "EncumbPlaced EncumbLiquid PaymentExpense UnencumberedBalance");
    EXPECT_EQ(g.ColumnName("VendorNumber"), "Vender");
    EXPECT_EQ(g.Column("VendorNumber").Caption2(), "Number");
    EXPECT_EQ(g.ColumnName("UnencumberedBalance"), "Unencumb.");
    EXPECT_TRUE(g.ColumnTotal("AppropAmount") && g.ColumnTotal("PaymentExpense"));
    EXPECT_FALSE(g.ColumnTotal("UnencumberedBalance"));

    // Each marked row as "Approp Placed Liquid Payment", "-" for an empty cell.
    const QStringList expected{"500.25 0 - 0", "0 120.1 - 0",  "0 0 20.05 0", "0 0 - 33.3333",
                               "0 0 40 39.99", "0 0 - 0.0001", "-0.25 0 - 0", "0 0 1 0"};
    QStringList marked;
    for (int row = 1; row <= g.CountRows(); ++row) {
        if (!g.GetItemValue(row, "Ref").startsWith(u'T'))
            continue;
        QStringList cells;
        for (const char *key : {"AppropAmount", "EncumbPlaced", "EncumbLiquid", "PaymentExpense"}) {
            const QString value = g.GetItemValue(row, key);
            cells << (value.isEmpty() ? QStringLiteral("-") : value);
        }
        marked << cells.join(u' ');
    }
    EXPECT_EQ(marked, expected);

    Currency running;
    for (int row = 1; row <= g.CountRows(); ++row) {
        running += g.GetAmount(row, "AppropAmount") - g.GetAmount(row, "EncumbPlaced") +
                   g.GetAmount(row, "EncumbLiquid") - g.GetAmount(row, "PaymentExpense");
        ASSERT_EQ(g.GetAmount(row, "UnencumberedBalance"), running) << "row " << row;
    }
    const Currency last = g.GetAmount(g.CountRows(), "UnencumberedBalance");
    EXPECT_EQ(last, g.GetColumnTotal("AppropAmount") - g.GetColumnTotal("EncumbPlaced") +
                        g.GetColumnTotal("EncumbLiquid") - g.GetColumnTotal("PaymentExpense"));
    // The marked rows were never posted to the summary; they add
    // (500.25 - 0.25) - 120.1 + (20.05 + 40 + 1) - (33.3333 + 39.99 + 0.0001).
    EXPECT_EQ(last, summaryBalance<classObjectELSummary>(markedAccount) + *Currency::parse("367.6266"));
}

TEST_F(AccountDetailTest, EveryAccountsLastBalanceIsTheLedgerSummarysBalance)
{
    for (const char *ledger : {"E", "R"}) {
        open("A", ledger);
        const QString balanceKey = detailBalanceKey(QLatin1Char(ledger[0]));
        int withRows = 0;
        for (std::size_t i = 0; i < worker_->Accounts().size(); ++i, click("tlbNext")) {
            const QString code = text("txtAcctCode");
            if (code == QLatin1String(markedAccount) || grid().CountRows() == 0)
                continue;
            ++withRows;
            const Currency last = grid().GetAmount(grid().CountRows(), balanceKey);
            if (ledger[0] == 'E')
                EXPECT_EQ(last, summaryBalance<classObjectELSummary>(code)) << code.toStdString();
            else
                EXPECT_EQ(last, summaryBalance<classObjectRLSummary>(code)) << code.toStdString();
        }
        EXPECT_GT(withRows, 3) << ledger;
    }
}

TEST_F(AccountDetailTest, ChangingTheLedgerShowsTheRevenueColumnsAndItsCodes)
{
    open();
    choose("cboLedgers", "R");
    EXPECT_EQ(worker_->LedgerID, "R");
    EXPECT_EQ(text("txtAcctCode"), liveCodes(*district_, "A", u'R').front());
    classGrid &g = grid();
    QStringList keys;
    for (int c = 1; c <= g.CountColumns(); ++c)
        keys << g.ColumnKey(c);
    EXPECT_EQ(keys.join(u' '), "Date ReceiptNumber Reference Ref EstimatedRevenue RevenueReceived UnearnedBalance");
    EXPECT_EQ(g.Column("EstimatedRevenue").Caption2(), "Revenue");

    const QString otherFund = district_->funds.at(1).id;
    choose("cboFunds", otherFund.toLatin1().constData());
    EXPECT_EQ(worker_->FundID, otherFund);
    const QStringList codes = liveCodes(*district_, otherFund, u'R');
    EXPECT_EQ(text("txtAcctCode"), codes.isEmpty() ? QString() : codes.front());
}

// A budget database whose only account has no transaction in Kora-Fund, and one without accounts.
class AccountDetailEmptyTest : public AccountDetailTest {
protected:
    void SetUp() override
    {
        database = std::make_unique<testdb::TestDatabase>(testdb::Backend::SQLite);
        ASSERT_TRUE(database->unavailable().isEmpty());
    }
    std::unique_ptr<testdb::TestDatabase> database;
};

TEST_F(AccountDetailEmptyTest, NoAccountsSaysNoRecordFoundAndNoTransactionsShowsZeroTotals)
{
    open("A", "E", database->db());
    EXPECT_EQ(text("txtDescription"), "No Record found!");
    EXPECT_EQ(text("txtAcctCode"), "");
    EXPECT_EQ(text("txtCurrentBudget"), "");
    EXPECT_EQ(grid().CountRows(), 0);
    click("tlbNext");
    EXPECT_EQ(status(), "No account codes in this fund and ledger.");

    ASSERT_TRUE(database->db()->execute("Insert into AccountCodes (Ledger, FundID, AccountCode, AccountName, "
                                        "HistoricalCode, CatAFlag, CatPFlag, CatCFlag, CurrentBudget, CatACurBudget, "
                                        "CatPCurBudget, CatCCurBudget) values ('E','A','A9999.999','Unused','','','',"
                                        "'',1234567.5,0,0,0)"));
    worker_->RefreshData(); // no dialog running: nothing happens
    dialog_->Reload();
    EXPECT_EQ(text("txtAcctCode"), "A9999.999");
    EXPECT_EQ(text("txtCurrentBudget"), "1,234,567.50");
    EXPECT_EQ(text("txtProposedBudget"), "0.00");
    EXPECT_EQ(grid().CountRows(), 0);
    for (const char *key : {"AppropAmount", "EncumbPlaced", "EncumbLiquid", "PaymentExpense"})
        EXPECT_TRUE(grid().GetColumnTotal(key).isZero()) << key;
}

TEST_F(AccountDetailEmptyTest, ABudgetDatabaseThatCannotBeReadIsReportedUnderTheWindowsCaption)
{
    open("A", "E", std::make_shared<DbConnection>()); // never opened
    ASSERT_EQ(messages->shown().size(), 1u);
    EXPECT_EQ(messages->shown().front().kind, RecordingMessages::Shown::Kind::ErrorDialog);
    EXPECT_EQ(messages->shown().front().error.title, "Account Code Detail");
    EXPECT_FALSE(messages->shown().front().error.text.isEmpty());
    EXPECT_EQ(text("txtDescription"), "No Record found!");
}

TEST_F(AccountDetailEmptyTest, FilesThatCannotBeOpenedAreNamedAndNoWindowOpens)
{
    workerEditAccountCodes worker(database->db(), "1", {place().ddfPath, place().dataFolder + "\\NOWHERE"});
    QTimer::singleShot(0, [] {
        if (QWidget *modal = QApplication::activeModalWidget())
            modal->close();
    });
    worker.DoModalForm();
    ASSERT_EQ(messages->shown().size(), 1u);
    EXPECT_TRUE(messages->shown().front().message.text.startsWith("Cannot initialize Detail Transactions. error:"))
        << messages->shown().front().message.text.toStdString();
    EXPECT_EQ(messages->shown().front().message.title, "Kora-Budget");
}

} // namespace
