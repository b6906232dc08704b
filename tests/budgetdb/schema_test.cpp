#include "schema.h"
#include "testdatabases.h"

#include <gtest/gtest.h>

namespace {

using testdb::DatabaseTest;

class SchemaTest : public DatabaseTest {
protected:
    QString firstText(const QString &sql, const QString &column)
    {
        Recordset rows;
        DbError error;
        EXPECT_TRUE(db()->open(sql, rows, &error)) << sql.toStdString() << ": " << error.text.toStdString();
        return rows.atEnd() ? QStringLiteral("<none>") : rows.text(column);
    }
};

TEST_P(SchemaTest, FreshDatabaseHoldsEveryTableAtTheProgramsVersion)
{
    BudgetSchema::State state;
    ASSERT_TRUE(BudgetSchema::inspect(*db(), state));
    EXPECT_EQ(state.kind, BudgetSchema::Kind::Budget);
    EXPECT_EQ(state.version, BudgetSchema::programVersion());
    for (const char *table : {"AccountCodes", "BudgetSummaryTree", "Proposal", "ProposalBudget", "Proposal_GenFund",
                              "BudgetYears", "Yearlist", "Parms", "LnItem", "Bals", "TaxRate", "Report", "RptHeading",
                              "Budgets", "SummaryTree", "ProposalAmount"}) {
        Recordset rows;
        DbError error;
        EXPECT_TRUE(db()->open(QStringLiteral("select * from %1").arg(table), rows, &error))
            << table << ": " << error.text.toStdString();
        EXPECT_TRUE(rows.atEnd()) << table;
    }
    // Opening again leaves a current schema as it is.
    DbError error;
    EXPECT_TRUE(BudgetSchema::migrate(*db(), &error)) << error.text.toStdString();
}

TEST_P(SchemaTest, InsertsByPositionAndGeneratedKeysWork)
{
    exec("Insert into AccountCodes (Ledger, FundID, AccountCode, AccountName, ParentID, ProgramID, BuildingID , "
         "StateCode, HistoricalCode, CatAFlag, CatPFlag, CatCFlag )Values ('E','A','A100','Salaries','1','0','0','',"
         "'','A','','')");
    exec("Insert into AccountCodes (Ledger, FundID, AccountCode, AccountName, ParentID, ProgramID, BuildingID , "
         "StateCode, HistoricalCode, CatAFlag, CatPFlag, CatCFlag )Values ('E','A','A200','Books','1','0','0','',"
         "'','','P','')");
    EXPECT_EQ(firstText("select ID from AccountCodes where AccountCode = 'A200'", "id"), "2");
    exec("Update AccountCodes set CurrentBudget = 1500.25, CatACurBudget = 100 where id = 1");
    exec("INSERT INTO ProposalBudget SELECT ID, '1', CurrentBudget , if(CatAFlag='',0,CatACurBudget),"
         "if(CatPFlag='',0,CatPCurBudget),if(CatCFlag='',0,CatCCurBudget) FROM Accountcodes ");
    Recordset split;
    ASSERT_TRUE(db()->open("Select AcctId, CatAProposal,CatPProposal,CatCProposal from Proposal_GenFund where  "
                           "Proposalid = '1' and AcctId = 1",
                           split));
    EXPECT_EQ(split.amount("CatAProposal"), Currency::fromUnits(100));
    split.Close();
    exec("INSERT INTO Budgets values(1,'2024',1500.25,1499.99)");
    exec("Insert into BudgetYears values('2025', 'Proposed Year 2025','P')");
    exec("Insert into RptHeading Values (1,'CurBudget',1)");
    exec("Insert into Report (Name, Description,Ledger,FundID, Date) Values ('R','D','E','A','20240101')");
    exec("Insert into TaxRate (TownShip, CurrentEqualRate, CurrentAssessment,CurrentTaxAssess,PrevEqualRate,"
         "PrevAssessment,PrevTaxAssess) values ('Town',0.8725,1000,900,0.9,1100,1000)");
    EXPECT_EQ(firstText("select * from TaxRate", "ID"), "1");
    exec("Insert into BudgetSummaryTree (ID, NodeType, FundID,  LedgerID, ParentID, SortOrder, Name, ForceNewPage) "
         "Values ('1','T','A','E','0','         1','Top','N ')");
    EXPECT_EQ(firstText("select Name from SummaryTree where ID = '1'", "name"), "Top");
}

TEST_P(SchemaTest, OlderDatabaseIsMigratedInPlaceKeepingItsRows)
{
    // Wind the database back to the first release: no folder indexes, no amount view, no audit trail, version 1.
    for (const char *index : {"AccountCodes_Folder", "BudgetSummaryTree_Children", "BudgetSummaryTree_TrimmedID"})
        exec(QStringLiteral("DROP INDEX %1").arg(index));
    exec("DROP VIEW ProposalAmount");
    exec("DROP TABLE AuditTrail");
    exec("DELETE FROM KoraSchema");
    exec("INSERT INTO KoraSchema (Version) VALUES (1)");
    exec("Insert into Bals values ('A', 100.5, 90)");

    DbError error;
    ASSERT_TRUE(BudgetSchema::migrate(*db(), &error)) << error.text.toStdString();
    BudgetSchema::State state;
    ASSERT_TRUE(BudgetSchema::inspect(*db(), state));
    EXPECT_EQ(state.version, BudgetSchema::programVersion());
    Recordset kept;
    ASSERT_TRUE(db()->open("select CurrentBalance from Bals where Fund = 'A'", kept));
    EXPECT_EQ(kept.amount("CurrentBalance"), *Currency::parse("100.5"));
    kept.Close();
    // The index is back: creating it again must fail.
    EXPECT_FALSE(db()->execute("CREATE INDEX AccountCodes_Folder ON AccountCodes (FundID)", nullptr, &error));
    EXPECT_EQ(rows("select ID from AuditTrail"), "") << "the audit trail is back, empty";
}

TEST_P(SchemaTest, VersionTwoGainsTheProposalAmountView)
{
    exec("DROP VIEW ProposalAmount");
    exec("DROP TABLE AuditTrail"); // a version-two database has neither
    exec("UPDATE KoraSchema SET Version = 2");
    exec("Insert into AccountCodes (Ledger, FundID, AccountCode, CatAFlag, CatPFlag, CatCFlag) "
         "values ('E','A','A2110','A','P','')");
    exec("Insert into ProposalBudget values (1,'1',999,10.25,20.5,40)");
    EXPECT_TRUE(rows("select Version from KoraSchema").startsWith("2"));

    DbError error;
    ASSERT_TRUE(BudgetSchema::migrate(*db(), &error)) << error.text.toStdString();
    EXPECT_EQ(rows("select Version from KoraSchema"), QString::number(BudgetSchema::programVersion()));
    // The stored total (999) gives way to the components the account takes part in.
    EXPECT_EQ(rows("select AcctId, ProposalID, FundID, Ledger, Amount, CatAAmount, CatPAmount, CatCAmount "
                   "from ProposalAmount"),
              "1,1,A,E,30.75,10.25,20.5,0");
}

TEST_P(SchemaTest, YearTreeCopyFeedsTheLiveTree)
{
    DbError error;
    ASSERT_TRUE(BudgetSchema::createYearTreeCopy(*db(), "2024", &error)) << error.text.toStdString();
    ASSERT_TRUE(BudgetSchema::createYearTreeCopy(*db(), "2024", &error)) << "second call must be harmless";
    EXPECT_FALSE(BudgetSchema::createYearTreeCopy(*db(), "20; drop", &error));
    exec("Insert into 2024_Summarytree values ('5','T','A','E','0','         5','Copied','Y ')");
    exec("Delete from BudgetSummaryTree ");
    exec("Insert into BudgetSummaryTree select * from 2024_Summarytree");
    EXPECT_EQ(firstText("Select * from BudgetSummaryTree where Rtrim(ltrim(ID)) = '5'", "Name"), "Copied");
}

TEST_P(SchemaTest, AmountsKeepFourPlacesAndOutOfRangeIsRefused)
{
    exec("Insert into Bals (Fund, CurrentBalance, PreviousBalance) values ('A',99999999999.9999,-0.0001)");
    Recordset rows;
    ASSERT_TRUE(db()->open("select * from Bals", rows));
    EXPECT_EQ(rows.amount("CurrentBalance"), Currency::fromRaw(999999999999999));
    EXPECT_EQ(rows.amount("PreviousBalance"), Currency::fromRaw(-1));
    rows.Close();
    DbError error;
    EXPECT_FALSE(db()->execute("Insert into Bals (Fund, CurrentBalance, PreviousBalance) values ('B',100000000000,0)",
                               nullptr, &error));
    EXPECT_FALSE(error.text.isEmpty());
}

TEST_P(SchemaTest, RefusesNewerAndForeignDatabases)
{
    exec("UPDATE KoraSchema SET Version = 99");
    DbError error;
    EXPECT_FALSE(BudgetSchema::migrate(*db(), &error));
    EXPECT_TRUE(error.text.contains("newer than this program")) << error.text.toStdString();

    exec("DROP TABLE KoraSchema");
    BudgetSchema::State state;
    ASSERT_TRUE(BudgetSchema::inspect(*db(), state));
    EXPECT_EQ(state.kind, BudgetSchema::Kind::Foreign);
    EXPECT_FALSE(BudgetSchema::migrate(*db(), &error));
    EXPECT_TRUE(error.text.contains("not a Kora-Budget database")) << error.text.toStdString();
}

// Several tables are written by position: their columns must stand in the
// order the statements give the values.
TEST_P(SchemaTest, PositionalInsertsFillTheColumnsInTheirOrder)
{
    exec("INSERT INTO Budgets values(7,'2024',1500.25,1499.9999)");
    EXPECT_EQ(rows("select AcctId, YearID, CurrentBudget, ActualAmount from Budgets"), "7,2024,1500.25,1499.9999");
    exec("Insert into BudgetYears values('2025', 'Proposed Year 2025','P')");
    EXPECT_EQ(rows("select YearID, YearName, Status from BudgetYears"), "2025,Proposed Year 2025,P");
    exec("Insert into Yearlist values ('2024','F7')");
    EXPECT_EQ(rows("select YearNumber, TableId from Yearlist"), "2024,F7");
    exec("Insert into RptHeading Values (3,'CurBudget',2)");
    EXPECT_EQ(rows("select ReportID, ReportHeading, SortOrder from RptHeading"), "3,CurBudget,2");
    exec("Insert into Proposal values ('2','Board','O','Y')");
    EXPECT_EQ(rows("select ID, Name, Status, Active from Proposal"), "2,Board,O,Y");
    exec("Insert into ProposalBudget values (4,'2',10.5,1,2,3)");
    EXPECT_EQ(rows("select AcctId, ProposalID, ProposedBudget, CatAProposal, CatPProposal, CatCProposal "
                   "from ProposalBudget"),
              "4,2,10.5,1,2,3");
    exec("Insert into Bals values ('A', 1.5, 2.5)");
    EXPECT_EQ(rows("select Fund, CurrentBalance, PreviousBalance from Bals"), "A,1.5,2.5");
    exec("Insert into BudgetSummaryTree values ('1','T','A','E','0','         1','Top','N ')");
    EXPECT_EQ(rows("select ID, NodeType, FundID, LedgerID, ParentID, SortOrder, Name, ForceNewPage "
                   "from BudgetSummaryTree"),
              "1,T,A,E,0,1,Top,N ");
}

KORA_ALL_BACKENDS(SchemaTest);

} // namespace
