#include "dbconnection.h"
#include "sqldialectadapter.h"

#include <gtest/gtest.h>

namespace {

QString toSqlite(const QString &sql)
{
    return SqlDialectAdapter(SqlDialect::SQLite).adapt(sql);
}
QString toPostgres(const QString &sql)
{
    return SqlDialectAdapter(SqlDialect::PostgreSQL).adapt(sql);
}

TEST(SqlDialectAdapter, ConvertBecomesCast)
{
    EXPECT_EQ(toSqlite("Select Max(convert(ID, sql_double)) As NewLngID from BudgetSummaryTree"),
              "Select Max(CAST(ID AS REAL)) As NewLngID from BudgetSummaryTree");
    EXPECT_EQ(toSqlite("x = 'a'Order by convert(SortOrder,sql_integer)"), "x = 'a'Order by CAST(SortOrder AS INTEGER)");
    // PostgreSQL will not cast blank text, so blanks read as null.
    EXPECT_EQ(toPostgres("Order by convert(SortOrder,sql_integer)"),
              "Order by CAST(NULLIF(TRIM(CAST(SortOrder AS TEXT)),'') AS INTEGER)");
    EXPECT_EQ(toPostgres("Max(CONVERT( ID , SQL_DOUBLE ))"),
              "Max(CAST(NULLIF(TRIM(CAST(ID AS TEXT)),'') AS DOUBLE PRECISION))");
    // An unknown target type is left for the database to reject.
    EXPECT_EQ(toSqlite("convert(x, sql_blob)"), "convert(x, sql_blob)");
}

TEST(SqlDialectAdapter, IfBecomesCaseWithNestedArguments)
{
    const QString statement =
        "INSERT INTO ProposalBudget SELECT ID, '7', CurrentBudget , if(CatAFlag='',0,CatACurBudget),"
        "if(CatPFlag='',0,CatPCurBudget),if(CatCFlag='',0,CatCCurBudget) FROM Accountcodes ";
    EXPECT_EQ(toSqlite(statement),
              "INSERT INTO ProposalBudget SELECT ID, '7', CurrentBudget , CASE WHEN CatAFlag='' THEN 0 ELSE "
              "CatACurBudget END,CASE WHEN CatPFlag='' THEN 0 ELSE CatPCurBudget END,CASE WHEN CatCFlag='' THEN 0 "
              "ELSE CatCCurBudget END FROM Accountcodes ");
    EXPECT_EQ(toSqlite("if(a = ',', convert(b, sql_integer), if(c, 1, 2))"),
              "CASE WHEN a = ',' THEN CAST(b AS INTEGER) ELSE CASE WHEN c THEN 1 ELSE 2 END END");
    // Words that merely contain "if" or "convert" stay.
    EXPECT_EQ(toSqlite("select ifx(1), convertible from t"), "select ifx(1), convertible from t");
}

TEST(SqlDialectAdapter, NumberRunIntoKeywordGetsABlank)
{
    EXPECT_EQ(toSqlite("ProjectedAmount = 0Where id = 3"), "ProjectedAmount = 0 Where id = 3");
    EXPECT_EQ(toSqlite("ProjectedAmount = -1234.5678Where id = 3"), "ProjectedAmount = -1234.5678 Where id = 3");
    // Exponents, identifiers with digits and quoted text are not numbers run into words.
    EXPECT_EQ(toSqlite("x = 1.5e-05 and CatA1Flag = '12Where'"), "x = 1.5e-05 and CatA1Flag = '12Where'");
    EXPECT_EQ(toSqlite("x = 2end"), "x = 2 end");
}

TEST(SqlDialectAdapter, YearTreeCopyNamesAreQuotedOneIdentifier)
{
    EXPECT_EQ(toSqlite("Insert into BudgetSummaryTree select * from 2024_Summarytree"),
              "Insert into BudgetSummaryTree select * from \"2024_summarytree\"");
    EXPECT_EQ(toPostgres("select * from FY24_SummaryTree"), "select * from \"fy24_summarytree\"");
    EXPECT_EQ(SqlDialectAdapter::yearTreeTableName(" 2024 "), "2024_summarytree");
    EXPECT_EQ(toSqlite("select * from SummaryTree"), "select * from SummaryTree");
}

TEST(SqlDialectAdapter, QuotedTextAndPlainStatementsPassUnchanged)
{
    const QString statements[] = {
        "Update AccountCodes Set AccountName = 'if(a,b,c) convert(x, sql_double) 0Where'Where id = 1",
        "Select Accountcode from AccountCodes where AccountCode = 'it''s 2024_Summarytree'",
        "select count(*) As RecCount from AccountCodes where Ledger = 'E' AND AccountCode like 'A1*'",
        "Insert into RptHeading Values (3,'CurBudget',1)",
        "Update Report Set Name = 'N',Date = '20240101'Where id = 4",
    };
    for (const QString &sql : statements) {
        EXPECT_EQ(toSqlite(sql), sql);
        EXPECT_EQ(toPostgres(sql), sql);
    }
    // The original engine behind an ODBC source takes everything as written.
    EXPECT_EQ(SqlDialectAdapter(SqlDialect::Odbc).adapt("a = 0Where if(a,b,c)"), "a = 0Where if(a,b,c)");
}

TEST(SqlText, TrimsQuotesAndDoublesApostrophes)
{
    EXPECT_EQ(sqlText("  Superintendent's Office "), "'Superintendent''s Office'");
    EXPECT_EQ(sqlText(""), "''");
    EXPECT_EQ(sqlText("''"), "''''''");
    EXPECT_EQ(sqlText(QString::fromUtf8("Écoles élémentaires")), QString::fromUtf8("'Écoles élémentaires'"));
}

} // namespace
