#include "testdatabases.h"
#include "years.h"

#include <gtest/gtest.h>

namespace {

class YearsTest : public testdb::DatabaseTest {
protected:
    void SetUp() override
    {
        DatabaseTest::SetUp();
        years.setAdoConnection(db());
    }
    void expectError(const char *sub, const char *text)
    {
        EXPECT_EQ(years.Error().ErrorNumber(), 999);
        EXPECT_EQ(years.Error().ErrorSub(), sub);
        EXPECT_EQ(years.Error().ErrorText(), text);
    }
    clsYears years;
};

TEST_P(YearsTest, EmptyTablesGiveTheirOwnMessages)
{
    EXPECT_FALSE(years.GetCurrentBudgetYear());
    expectError("Retrieve BudgetYears", "No Current Budget Year Found.");
    EXPECT_FALSE(years.GetProposedYear());
    expectError("Retrieve Year", "No Proposed Year Found.");
    EXPECT_FALSE(years.CheckCalendarYear());
    expectError("Retrive Calendar Year", "No Parameter Found.");
    EXPECT_EQ(years.Error().ErrorCls(), "Parms:Retrive");
    years.YearItem().ID = "2025";
    QString tableId = "untouched";
    EXPECT_FALSE(years.GetFundYearTableId(tableId));
    expectError("Retrieve Fund BudgetYears Table Id", "Cannot find the current budget year in Fund!");
    EXPECT_EQ(tableId, "untouched");
    std::vector<QString> history;
    EXPECT_TRUE(years.GetHistYears(history));
    EXPECT_TRUE(history.empty());
}

TEST_P(YearsTest, ReadsTheYearsTheirTablesAndTheCalendarFlag)
{
    exec("Insert into BudgetYears values('2022', ' Fiscal Year 2022','H')");
    exec("Insert into BudgetYears values('2023', ' Fiscal Year 2023','H')");
    exec("Insert into BudgetYears values('2024', ' Fiscal Year 2024','C')");
    exec("Insert into BudgetYears values('2099', ' Fiscal Year 2099','C')");
    exec("Insert into BudgetYears values('2025', 'Proposed Year 2025','P')");
    exec("Insert into Yearlist values('2024', 'F7')");
    exec("Insert into Parms values('Y')");

    ASSERT_TRUE(years.GetCurrentBudgetYear());
    EXPECT_EQ(years.YearItem().ID, "2024"); // with two current rows the first is used
    EXPECT_EQ(years.YearItem().YearName, " Fiscal Year 2024");
    EXPECT_EQ(years.YearItem().Status, "C");
    QString tableId;
    ASSERT_TRUE(years.GetFundYearTableId(tableId));
    EXPECT_EQ(tableId, "F7");
    ASSERT_TRUE(years.GetProposedYear());
    EXPECT_EQ(years.YearItem().ID, "2025");
    std::vector<QString> history;
    ASSERT_TRUE(years.GetHistYears(history));
    std::sort(history.begin(), history.end());
    EXPECT_EQ(history, (std::vector<QString>{"2022", "2023"}));
    EXPECT_TRUE(years.CheckCalendarYear());
    exec("Update Parms set CalenderYear = 'N'");
    EXPECT_FALSE(years.CheckCalendarYear());
    EXPECT_EQ(years.Error().ErrorNumber(), 0);
}

TEST_P(YearsTest, WithoutAnOpenConnectionEveryQueryFailsCleanly)
{
    clsYears orphan;
    EXPECT_FALSE(orphan.GetCurrentBudgetYear());
    EXPECT_EQ(orphan.Error().ErrorSub(), "Retrieve BudgetYears");
    EXPECT_FALSE(orphan.Error().ErrorText().isEmpty());
    EXPECT_FALSE(orphan.BeginTransaction());
}

KORA_ALL_BACKENDS(YearsTest);

} // namespace
