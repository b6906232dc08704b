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
    // Adds a format and reads its database-assigned ID back by name.
    std::int32_t addFormat(const QString &name, const QStringList &columns)
    {
        generator.setReportName({0, name, "By fund", "A", "E", QDate(2024, 3, 9)});
        EXPECT_TRUE(generator.AddReportName()) << generator.Error().ErrorText().toStdString();
        EXPECT_TRUE(generator.RetrieveReportName(true));
        EXPECT_TRUE(generator.AddReportHeadings(columns));
        return generator.ReportName().ID;
    }
    QStringList headings()
    {
        std::vector<clsReportHeadings> read;
        EXPECT_TRUE(generator.GetReportHeadings(read));
        QStringList out;
        for (const auto &heading : read)
            out << heading.ReportHeading + "=" + heading.ReportHeadingDesc;
        return out;
    }

    clsReportGenerator generator;
};

TEST_P(ReportGeneratorTest, EditingAFormatReplacesItsColumnsInOrder)
{
    const QString name = QString::fromUtf8("Director's Überblick");
    ASSERT_NE(addFormat(name, {"ProposedBudget", "CurExpense", "CurBudget"}), 0);
    EXPECT_EQ(generator.ReportName().ModifiedDate, QDate(2024, 3, 9));
    generator.Ledger = "e";
    ASSERT_TRUE(generator.AddReportHeadings({"PriorExpense", "IncPercent"}));
    EXPECT_EQ(headings(), (QStringList{"PriorExpense=Expense", "IncPercent=Percent Increase /Decrease"}));
    generator.Ledger = "R";
    EXPECT_EQ(headings().first(), "PriorExpense=Revenue");

    generator.ReportName().ModifiedDate = QDate(2025, 1, 31);
    ASSERT_TRUE(generator.UpdateReportName());
    std::vector<clsReportName> names;
    ASSERT_TRUE(generator.GetReportNameList(names));
    ASSERT_EQ(names.size(), 1u);
    EXPECT_EQ(names[0].Name, name);
    EXPECT_EQ(names[0].ModifiedDate, QDate(2025, 1, 31));
}

TEST_P(ReportGeneratorTest, DeleteTakesTheColumnsAlongUnlessTheCallerAborts)
{
    const std::int32_t keep = addFormat("Keep", {"CurBudget"});
    addFormat("Drop", {"CurBudget", "Increment"});
    ASSERT_TRUE(generator.BeginTransaction());
    ASSERT_TRUE(generator.Delete());
    ASSERT_TRUE(generator.AbortTransaction());
    EXPECT_EQ(headings().size(), 2) << "the caller's rollback covers both statements";

    ASSERT_TRUE(generator.Delete());
    EXPECT_TRUE(headings().isEmpty());
    EXPECT_FALSE(generator.RetrieveReportName(false));
    EXPECT_EQ(generator.Error().ErrorSub(), "Retrieve Report");
    EXPECT_EQ(generator.Error().ErrorText(), "Record not Found.");
    EXPECT_FALSE(generator.UpdateReportName());
    EXPECT_EQ(generator.Error().ErrorSub(), "Report");
    EXPECT_EQ(generator.Error().ErrorText(), "Invalid number of records added!");
    generator.ReportName().ID = keep;
    EXPECT_EQ(headings().size(), 1);
}

TEST(ReportHeadings, AvailableColumnsFollowTheLedgerAndYear)
{
    clsReportGenerator generator;
    generator.Ledger = "E";
    std::vector<clsReportHeadings> expenditure, revenue;
    generator.getAvailHeadingList(expenditure);
    ASSERT_EQ(expenditure.size(), 11u);
    EXPECT_EQ(expenditure[3].ReportHeadingDesc, "Projected Expend");
    generator.Ledger = "x";
    generator.getAvailHeadingList(revenue);
    EXPECT_EQ(revenue[3].ReportHeadingDesc, "Projected Revenue");
    EXPECT_EQ(revenue[10].ReportHeading + "=" + revenue[10].ReportHeadingDesc, "Prior2Expense=Revenue");

    generator.BugdetYear = "2024";
    generator.ProposedYear = "2025";
    generator.PriorYear = "2023";
    generator.Prior1Year = "2022";
    const QStringList keys{"CurExpense", "IncPercent", "PriorBudget", "Prior2Budget", "Nothing"};
    QStringList years;
    for (const QString &key : keys)
        years << generator.HeadingYear(key);
    EXPECT_EQ(years, (QStringList{"2024", "2025", "2023", "2022", ""}));
}

KORA_ALL_BACKENDS(ReportGeneratorTest);

} // namespace
