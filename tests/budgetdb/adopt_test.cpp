#include "adminrun.h"
#include "schema.h"
#include "testdatabases.h"

#include <gtest/gtest.h>

namespace {

using testdb::Backend;

// Each case starts from a current budget database and winds it back to what a
// database prepared by hand before the version table looks like: the later
// migrations' view goes first.
class AdoptTest : public testdb::DatabaseTest {
protected:
    AdminRun adopt() { return admin(targetOptions(database().config()) << QStringLiteral("adopt")); }

    BudgetSchema::Kind kind()
    {
        BudgetSchema::State state;
        EXPECT_TRUE(BudgetSchema::inspect(*db(), state));
        return state.kind;
    }

    Currency amount(const QString &sql, const QString &column)
    {
        Recordset rows;
        EXPECT_TRUE(db()->open(sql, rows)) << sql.toStdString();
        return rows.amount(column);
    }
};

TEST_P(AdoptTest, BringsInADatabaseMadeWithoutTheVersionTable)
{
    exec("DROP VIEW ProposalAmount");
    exec("DROP TABLE AuditTrail");
    exec("DROP VIEW SummaryTree");
    exec("DROP VIEW Proposal_GenFund");
    exec("DROP INDEX AccountCodes_Folder");
    exec("DROP TABLE KoraSchema");
    // Other spellings of the same kinds of type, a table of its own and a year's copy of the tree.
    exec("DROP TABLE Bals");
    exec("CREATE TABLE Bals (Fund VARCHAR(8) PRIMARY KEY, CurrentBalance DECIMAL(15,4), PreviousBalance NUMERIC)");
    exec("INSERT INTO Bals VALUES ('GF', 1234.5678, -0.0001)");
    exec("CREATE TABLE PayrollNotes (Note TEXT)");
    exec("Insert into BudgetSummaryTree (ID, NodeType, FundID,  LedgerID, ParentID, SortOrder, Name, ForceNewPage) "
         "Values ('1','T','GF','E','0','         1','Top','N ')");
    ASSERT_TRUE(BudgetSchema::createYearTreeCopy(*db(), "fy2024"));

    clsAdoConnection program;
    program.configure(database().config());
    EXPECT_FALSE(program.OpenConnection());
    EXPECT_TRUE(program.Error().ErrorText().contains("not a Kora-Budget database") && program.Error().ErrorText().contains("kora-budget-admin adopt"));

    AdminRun run = adopt();
    ASSERT_EQ(run.exitCode, AdminExit::Ok) << run.err.toStdString();
    EXPECT_TRUE(run.out.contains("Created the views it lacked: SummaryTree, Proposal_GenFund"))
        << run.out.toStdString();
    BudgetSchema::State state;
    ASSERT_TRUE(BudgetSchema::inspect(*db(), state));
    EXPECT_EQ(state.kind, BudgetSchema::Kind::Budget);
    EXPECT_EQ(state.version, BudgetSchema::programVersion());
    EXPECT_TRUE(program.OpenConnection()) << program.driverMessage().toStdString();

    EXPECT_EQ(amount("select CurrentBalance from Bals", "CurrentBalance"), *Currency::parse("1234.5678"));
    EXPECT_EQ(amount("select PreviousBalance from Bals", "PreviousBalance"), *Currency::parse("-0.0001"));
    Recordset tree;
    ASSERT_TRUE(db()->open("select Name from SummaryTree where ID = '1'", tree));
    EXPECT_EQ(tree.text("Name"), "Top");
    tree.Close();
    // The later migration's index is back.
    exec("DROP INDEX AccountCodes_Folder");

    run = adopt();
    EXPECT_EQ(run.exitCode, AdminExit::Refused);
    EXPECT_TRUE(run.err.contains("already is a Kora-Budget database (schema version")) << run.err.toStdString();
    exec("UPDATE KoraSchema SET Version = 99");
    run = adopt();
    EXPECT_EQ(run.exitCode, AdminExit::Refused);
    EXPECT_TRUE(run.err.contains("newer than this program")) << run.err.toStdString();
}

TEST_P(AdoptTest, RefusesNamingEachMissingColumnAndWrongType)
{
    exec("DROP VIEW ProposalAmount");
    exec("DROP TABLE AuditTrail");
    exec("DROP TABLE KoraSchema");
    exec("ALTER TABLE AccountCodes DROP COLUMN CatCFlag");
    exec("DROP TABLE LnItem");
    exec("CREATE TABLE LnItem (AcctId INTEGER NOT NULL, LineItemNumber INTEGER NOT NULL, LineItemText TEXT, "
         "LineItemAmount DOUBLE PRECISION)");
    exec("DROP TABLE Bals");
    exec("CREATE TABLE Bals (Fund TEXT, CurrentBalance NUMERIC(19,2), PreviousBalance NUMERIC(19,4))");
    exec("DROP TABLE Report");
    exec("CREATE TABLE Report (ID INTEGER, Name TEXT, Description TEXT, Ledger TEXT, FundID TEXT, Date TEXT)");
    exec("DROP TABLE Budgets");
    exec("CREATE TABLE Budgets (AcctId TEXT, YearID TEXT, CurrentBudget NUMERIC(19,4), ActualAmount NUMERIC(19,4))");
    exec("DROP TABLE Parms");
    exec("DROP TABLE BudgetYears");
    exec("CREATE TABLE BudgetYears (YearName TEXT, YearID TEXT, Status TEXT)");
    exec("CREATE TABLE fy2023_summarytree (ID TEXT, NodeType TEXT, FundID TEXT, LedgerID TEXT, ParentID TEXT, "
         "SortOrder TEXT, Name TEXT)");

    const AdminRun run = adopt();
    EXPECT_EQ(run.exitCode, AdminExit::Refused);
    const QStringList expected{
        "AccountCodes.CatCFlag: missing (expected TEXT).",
        "LnItem.LineItemAmount: expected NUMERIC(19,4) (an exact decimal with at least 4 places), found double "
        "precision.",
        "Bals.CurrentBalance: expected NUMERIC(19,4) (an exact decimal with at least 4 places), found numeric(19,2).",
        "Report.ID: expected INTEGER assigned by the database, found integer not assigned by the database.",
        "Budgets.AcctId: expected INTEGER, found TEXT.",
        "Table Parms: missing.",
        "BudgetYears: rows are written by position, so its columns must be exactly YearID, YearName, Status, in "
        "this order; found YearName, YearID, Status.",
        "fy2023_summarytree.ForceNewPage: missing (expected TEXT).",
    };
    for (const QString &line : expected)
        EXPECT_TRUE(run.err.contains("  " + line, Qt::CaseInsensitive)) << line.toStdString();
    EXPECT_EQ(run.err.count(QStringLiteral("\n  ")), expected.size()) << run.err.toStdString();
    EXPECT_TRUE(run.err.contains("Nothing was changed."));
    EXPECT_EQ(kind(), BudgetSchema::Kind::Foreign);
}

INSTANTIATE_TEST_SUITE_P(Backends, AdoptTest, ::testing::Values(Backend::SQLite, Backend::PostgreSQL),
                         ::testdb::paramName);

} // namespace
