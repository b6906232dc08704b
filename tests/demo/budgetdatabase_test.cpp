#include "accountsummary.h"
#include "budgetdatabase.h"
#include "taxlevy.h"
#include "testdatabases.h"
#include "treesummary.h"
#include "years.h"

using namespace demo;

namespace {

const District &district()
{
    static const District d = makeDistrict();
    return d;
}

class DemoDatabaseTest : public testdb::DatabaseTest {
protected:
    qint64 count(const QString &table)
    {
        Recordset rows;
        EXPECT_TRUE(db()->open("select count(*) As RecCount from " + table, rows));
        return rows.number("RecCount");
    }

    Currency amount(const QString &sql)
    {
        Recordset rows;
        EXPECT_TRUE(db()->open(sql, rows)) << sql.toStdString();
        return rows.amount("Total");
    }

    QString text(const QString &sql, const QString &column)
    {
        Recordset rows;
        EXPECT_TRUE(db()->open(sql, rows)) << sql.toStdString();
        return rows.text(column);
    }

    void populate(const District &d = district())
    {
        DbError error;
        ASSERT_TRUE(populateBudgetDatabase(*db(), d, &error)) << error.text.toStdString();
    }
};

Currency activeTotal(const District &d, bool generalExpenditureOnly)
{
    Currency total;
    for (std::size_t i = 0; i < d.accounts.size(); ++i) {
        const Account &a = d.accounts[i];
        if (!generalExpenditureOnly || (a.fundId == u"A" && a.ledger == u'E'))
            total += d.activeProposal().figures[i].proposedBudget;
    }
    return total;
}

} // namespace

TEST_P(DemoDatabaseTest, FillsTheTablesTheStoresRead)
{
    populate();
    const District &d = district();

    clsYears years;
    years.setAdoConnection(db());
    ASSERT_TRUE(years.GetCurrentBudgetYear());
    EXPECT_EQ(years.YearItem().ID, "2025");
    QString tableId;
    ASSERT_TRUE(years.GetFundYearTableId(tableId));
    EXPECT_EQ(tableId, "FY2025");
    ASSERT_TRUE(years.GetProposedYear());
    EXPECT_EQ(years.YearItem().YearName, "Proposed Year 2026");
    EXPECT_FALSE(years.CheckCalendarYear());
    std::vector<QString> history;
    ASSERT_TRUE(years.GetHistYears(history));
    EXPECT_EQ(history.size(), 2u);

    ClsAccountSummary accounts;
    accounts.setAdoConnection(db());
    accounts.AccountCode().setAccountCode("A2701");
    ASSERT_TRUE(accounts.Retrieve(true));
    EXPECT_EQ(accounts.AccountCode().AccountName(), "Refund of Prior Year's Expenditures");
    accounts.AccountCode().setAccountCode("A9060.800");
    ASSERT_TRUE(accounts.Retrieve(true));
    const Account &health = d.accounts[d.accountIndex("A9060.800")];
    EXPECT_EQ(accounts.AccountCode().CatAFlag() + accounts.AccountCode().CatPFlag() + accounts.AccountCode().CatCFlag(),
              "APC");
    EXPECT_EQ(accounts.AccountCode().ParentID(), health.parentId);
    EXPECT_EQ(accounts.AccountCode().ProjectedAmount(), health.projectedAmount);
    std::vector<clsAccountCode> children;
    ASSERT_TRUE(accounts.GetChildren("B", children));
    EXPECT_EQ(qsizetype(children.size()), std::count_if(d.accounts.begin(), d.accounts.end(), [&](const Account &a) {
                  return a.buildingId == health.buildingId;
              }));

    clsTreeSummary tree;
    tree.setAdoConnection(db());
    tree.TreeItem() = {.NodeType = "T", .FundID = "A", .LedgerID = "E", .ParentID = 0};
    std::vector<clsTreeItem> roots;
    ASSERT_TRUE(tree.GetChildren(roots));
    ASSERT_FALSE(roots.empty());
    EXPECT_EQ(roots.front().Name, "General Support");
    EXPECT_TRUE(roots.front().ForceNewPage);

    // Stored as the stores write them: padded sort order, leading blank of a year name.
    EXPECT_EQ(text("select SortOrder from BudgetSummaryTree where ID = '7'", "SortOrder"), "         7");
    EXPECT_EQ(text("select YearName from BudgetYears where YearID = '2024'", "YearName"), " Fiscal Year 2024");
    EXPECT_EQ(text("select Name from Proposal where Active = 'Y'", "Name"), "Superintendent's Recommended");

    EXPECT_EQ(count("AccountCodes"), qint64(d.accounts.size()));
    EXPECT_EQ(count("BudgetSummaryTree"), qint64(d.folders.size()));
    EXPECT_EQ(count("FY2026_Summarytree"), qint64(d.folders.size()));
    EXPECT_EQ(count("ProposalBudget"), qint64(3 * d.accounts.size()));
    EXPECT_EQ(count("Yearlist"), qint64(d.years.size()));
    EXPECT_EQ(count("LnItem"), qint64(d.lineItems.size()));
    EXPECT_EQ(count("Bals"), qint64(d.fundBalances.size()));
    EXPECT_EQ(count("TaxRate"), qint64(d.towns.size()));
    EXPECT_EQ(count("RptHeading where ReportId = (select ID from Report where Name = 'Revenue Projection')"), 5);
    qint64 closedYears = 0;
    for (const Account &a : d.accounts)
        closedYears += std::count_if(a.history.begin(), a.history.end(), [](const auto &y) { return y.year < 2025; });
    EXPECT_EQ(count("Budgets"), closedYears);

    // Amounts survive exactly; the general fund's components add up through the read-only view.
    EXPECT_EQ(amount("select sum(ProposedBudget) As Total from ProposalBudget where ProposalID = '1'"),
              activeTotal(d, false));
    EXPECT_EQ(amount("select sum(CatAProposal + CatPProposal + CatCProposal) As Total from Proposal_GenFund, "
                     "AccountCodes where AccountCodes.ID = Proposal_GenFund.AcctId and FundID = 'A' and Ledger = 'E' "
                     "and ProposalId = '1'"),
              activeTotal(d, true));
}

// What the tax report will find: in every proposal and in the current budget
// the levy the budget needs is the tax line it budgets.
TEST_P(DemoDatabaseTest, EveryGeneralFundBudgetLeviesWhatItsTaxLineSays)
{
    populate();
    for (const char *proposal : {"1", "2", "3"}) {
        const QString sides = "select sum(Amount) As Total from ProposalAmount where FundID = 'A' and Ledger = '%1' "
                              "and ProposalID = '%2'";
        EXPECT_EQ(amount(sides.arg("E", proposal)), amount(sides.arg("R", proposal))) << proposal;
        TaxLevy levy;
        DbError error;
        ASSERT_TRUE(readProposedTaxLevy(*db(), proposal, {"A1001"}, levy, &error)) << error.text.toStdString();
        EXPECT_EQ(levy.levy(), levy.propertyTaxBudgeted) << proposal;
        EXPECT_GT(levy.otherRevenues, Currency()) << proposal;
    }
    TaxLevy current;
    ASSERT_TRUE(readCurrentTaxLevy(*db(), {"A1001"}, current));
    EXPECT_EQ(current.levy(), current.propertyTaxBudgeted);
    // The closed years' adopted budgets balance too.
    for (const char *year : {"2023", "2024"})
        EXPECT_EQ(
            amount(
                QString("select sum(Budgets.CurrentBudget) As Total from Budgets, AccountCodes where AccountCodes.ID "
                        "= Budgets.AcctId and FundID = 'A' and Ledger = 'E' and YearID = '%1'")
                    .arg(year)),
            amount(
                QString("select sum(Budgets.CurrentBudget) As Total from Budgets, AccountCodes where AccountCodes.ID "
                        "= Budgets.AcctId and FundID = 'A' and Ledger = 'R' and YearID = '%1'")
                    .arg(year)))
            << year;
}

TEST_P(DemoDatabaseTest, RefusesADatabaseThatAlreadyHoldsData)
{
    populate();
    DbError error;
    EXPECT_FALSE(populateBudgetDatabase(*db(), district(), &error));
    EXPECT_TRUE(error.text.contains("already holds data")) << error.text.toStdString();
    EXPECT_EQ(count("AccountCodes"), qint64(district().accounts.size()));
}

TEST_P(DemoDatabaseTest, AFailureLeavesNothingWritten)
{
    // A second account with an existing code breaks the unique index after
    // the folders, years and most accounts are written.
    District broken = district();
    broken.accounts.push_back(broken.accounts.front());
    for (Proposal &p : broken.proposals)
        p.figures.push_back(p.figures.front());
    DbError error;
    EXPECT_FALSE(populateBudgetDatabase(*db(), broken, &error));
    EXPECT_FALSE(error.text.isEmpty());
    for (const char *table : {"AccountCodes", "BudgetSummaryTree", "BudgetYears", "Yearlist", "Parms", "Proposal"})
        EXPECT_EQ(count(table), 0) << table;
    EXPECT_FALSE(db()->inTransaction());
    populate(); // and the database is still usable
}

KORA_ALL_BACKENDS(DemoDatabaseTest);
