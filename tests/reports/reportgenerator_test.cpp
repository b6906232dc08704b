#include "reportgenerator.h"
#include "testdatabases.h"

#include <gtest/gtest.h>

namespace {

class ReportGeneratorTest : public testdb::DatabaseTest {
protected:
    void SetUp() override
    {
        DatabaseTest::SetUp();
        generator.setAdoConnection(db());
    }
    // Adds a format under `name` and reads its database-assigned ID back.
    std::int32_t addFormat(const QString &name)
    {
        generator.setReportName({0, name, "Spending by fund", "A", "E", QDate(2024, 3, 9)});
        EXPECT_TRUE(generator.AddReportName()) << generator.Error().ErrorText().toStdString();
        generator.ReportName().ID = 0;
        EXPECT_TRUE(generator.RetrieveReportName(true));
        return generator.ReportName().ID;
    }
    QStringList headingKeys()
    {
        std::vector<clsReportHeadings> headings;
        EXPECT_TRUE(generator.GetReportHeadings(headings));
        QStringList keys;
        for (const auto &heading : headings)
            keys << heading.ReportHeading + "=" + heading.ReportHeadingDesc;
        return keys;
    }

    clsReportGenerator generator;
};

TEST_P(ReportGeneratorTest, FormatsAreSavedWithTheirColumnsInOrder)
{
    const QString name = QString::fromUtf8("Director's Überblick");
    const std::int32_t id = addFormat(name);
    ASSERT_NE(id, 0);
    EXPECT_EQ(generator.ReportName().ModifiedDate, QDate(2024, 3, 9));
    EXPECT_EQ(generator.ReportName().Ledger, "E");

    generator.Ledger = "e";
    ASSERT_TRUE(generator.AddReportHeadings({"ProposedBudget", "CurExpense", "CurBudget"}));
    ASSERT_TRUE(generator.AddReportHeadings({"PriorExpense", "IncPercent"}));
    EXPECT_EQ(headingKeys(), (QStringList{"PriorExpense=Expense", "IncPercent=Percent Increase /Decrease"}))
        << "editing replaces every column";
    generator.Ledger = "R";
    EXPECT_EQ(headingKeys().first(), "PriorExpense=Revenue");

    generator.ReportName().Description = "Changed";
    generator.ReportName().ModifiedDate = QDate(2025, 1, 31);
    ASSERT_TRUE(generator.UpdateReportName());
    std::vector<clsReportName> names;
    ASSERT_TRUE(generator.GetReportNameList(names));
    ASSERT_EQ(names.size(), 1u);
    EXPECT_EQ(names[0].Name, name);
    EXPECT_EQ(names[0].Description, "Changed");
    EXPECT_EQ(names[0].ModifiedDate, QDate(2025, 1, 31));
}

TEST_P(ReportGeneratorTest, DeleteTakesTheColumnsAlongUnlessTheCallerAborts)
{
    const std::int32_t keep = addFormat("Keep");
    ASSERT_TRUE(generator.AddReportHeadings({"CurBudget"}));
    const std::int32_t drop = addFormat("Drop");
    ASSERT_TRUE(generator.AddReportHeadings({"CurBudget", "Increment"}));

    ASSERT_TRUE(generator.BeginTransaction());
    ASSERT_TRUE(generator.Delete());
    ASSERT_TRUE(generator.AbortTransaction());
    EXPECT_EQ(headingKeys().size(), 2) << "the caller's rollback covers both statements";

    ASSERT_TRUE(generator.Delete());
    EXPECT_TRUE(headingKeys().isEmpty());
    EXPECT_FALSE(generator.RetrieveReportName(false));
    EXPECT_EQ(generator.Error().ErrorNumber(), 999);
    EXPECT_EQ(generator.Error().ErrorSub(), "Retrieve Report");
    EXPECT_EQ(generator.Error().ErrorText(), "Record not Found.");
    EXPECT_FALSE(generator.UpdateReportName());
    EXPECT_EQ(generator.Error().ErrorSub(), "Report");
    EXPECT_EQ(generator.Error().ErrorText(), "Invalid number of records added!");

    generator.ReportName().ID = keep;
    EXPECT_EQ(headingKeys().size(), 1);
    EXPECT_NE(keep, drop);
}

TEST(ReportHeadings, AvailableColumnsFollowTheLedgerAndYear)
{
    clsReportGenerator generator;
    generator.Ledger = "E";
    generator.BugdetYear = "2024";
    generator.ProposedYear = "2025";
    generator.PriorYear = "2023";
    generator.Prior1Year = "2022";
    std::vector<clsReportHeadings> expenditure;
    generator.getAvailHeadingList(expenditure);
    ASSERT_EQ(expenditure.size(), 11u);
    EXPECT_EQ(expenditure[3].ReportHeadingDesc, "Projected Expend");
    EXPECT_EQ(expenditure[5].ReportHeadingDesc, "Increase /Decrease");
    generator.Ledger = "x";
    std::vector<clsReportHeadings> revenue;
    generator.getAvailHeadingList(revenue);
    EXPECT_EQ(revenue[3].ReportHeadingDesc, "Projected Revenue");
    EXPECT_EQ(revenue[10].ReportHeading, "Prior2Expense");
    EXPECT_EQ(revenue[10].ReportHeadingDesc, "Revenue");

    EXPECT_EQ(generator.HeadingYear("CurExpense"), "2024");
    EXPECT_EQ(generator.HeadingYear("IncPercent"), "2025");
    EXPECT_EQ(generator.HeadingYear("PriorBudget"), "2023");
    EXPECT_EQ(generator.HeadingYear("Prior2Budget"), "2022");
    EXPECT_EQ(generator.HeadingYear("Nothing"), "");
}

KORA_ALL_BACKENDS(ReportGeneratorTest);

} // namespace
