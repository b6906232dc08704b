#include "reportgenerator.h"
#include "testdatabases.h"

#include <gtest/gtest.h>

#include <utility>

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
    ASSERT_TRUE(generator.AddReportHeadings({"PriorExpense", "IncPercent"}));
    EXPECT_EQ(headings(), (QStringList{"PriorExpense=Expense", "IncPercent=Percent Increase /Decrease"}));
    generator.ReportName().Ledger = "r";
    EXPECT_EQ(headings().first(), "PriorExpense=Revenue") << "the texts follow the format's ledger";
    EXPECT_EQ(rows("select ReportID, ReportHeading, SortOrder from RptHeading order by SortOrder"),
              QString("%1,PriorExpense,1|%1,IncPercent,2").arg(generator.ReportName().ID));
}

TEST_P(ReportGeneratorTest, ColumnsAreReadInTheirPositionsWhateverOrderTheyWereStoredIn)
{
    const std::int32_t id = addFormat("Format", {});
    for (const auto &[key, position] : {std::pair{"CurBudget", 3}, std::pair{"Increment", 1},
                                        std::pair{"PriorBudget", 4}, std::pair{"CurExpense", 2}})
        exec(QString("Insert into RptHeading Values (%1,'%2',%3)").arg(id).arg(key).arg(position));
    exec(QString("Insert into RptHeading Values (%1,'Prior2Budget',0)").arg(id + 1));
    EXPECT_EQ(headings(), (QStringList{"Increment=Increase /Decrease", "CurExpense=Expense", "CurBudget=Budget",
                                       "PriorBudget=Budget"}));
}

TEST_P(ReportGeneratorTest, UpdateWritesEveryColumnOfItsFormatAndNoOther)
{
    const std::int32_t other = addFormat("Other", {"CurBudget"});
    const std::int32_t id = addFormat("Mine", {"CurBudget"});
    const QString all = "select ID, Name, Description, Ledger, FundID, Date from Report order by ID";
    const QString before = rows(all);
    generator.setReportName({id, "Renamed", "New description", "B", "R", QDate(2025, 1, 31)});
    ASSERT_TRUE(generator.UpdateReportName()) << generator.Error().ErrorText().toStdString();
    EXPECT_EQ(rows(all),
              QString("%1,Other,By fund,E,A,20240309|%2,Renamed,New description,R,B,20250131").arg(other).arg(id));
    ASSERT_NE(rows(all), before);

    // The formats come keyed by their IDs, replacing whatever the collection held.
    classGrouping<clsReportName> names;
    names.Add({}, "stale");
    ASSERT_TRUE(generator.GetReportNameList(names));
    ASSERT_EQ(names.Count(), 2);
    EXPECT_EQ(names.Item(QString::number(id)).Name, "Renamed");
    EXPECT_EQ(names.Item(QString::number(id)).ModifiedDate, QDate(2025, 1, 31));
    EXPECT_EQ(names.Item(QString::number(other)).Description, "By fund");
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

TEST_P(ReportGeneratorTest, EveryChangeToAFormatIsAuditedAndAnAbortedOneIsNot)
{
    generator.setAuditTask(AuditTask::ReportFormats);
    const std::int32_t id = addFormat("Mine", {"CurBudget", "Increment"});
    const QString since =
        "select Task, TableName, RowKey, ColumnName, OldValue, NewValue from AuditTrail where ID > %1 "
        "order by ID";
    EXPECT_EQ(rows(since.arg(0)).toStdString(),
              QString("Report Formats,Report,ID=%1,Name,,Mine|Report Formats,Report,ID=%1,Description,,By fund|"
                      "Report Formats,Report,ID=%1,Ledger,,E|Report Formats,Report,ID=%1,FundID,,A|"
                      "Report Formats,Report,ID=%1,Date,,20240309|"
                      "Report Formats,RptHeading,ReportID=%1, SortOrder=1,ReportHeading,,CurBudget|"
                      "Report Formats,RptHeading,ReportID=%1, SortOrder=2,ReportHeading,,Increment")
                  .arg(id)
                  .toStdString());
    const auto last = [this] { return rows("select ID from AuditTrail order by ID").section('|', -1); };
    QString seen = last();
    ASSERT_TRUE(generator.AddReportHeadings({"Increment"}));
    EXPECT_EQ(rows(since.arg(seen)).toStdString(),
              QString("Report Formats,RptHeading,ReportID=%1, SortOrder=1,ReportHeading,CurBudget,Increment|"
                      "Report Formats,RptHeading,ReportID=%1, SortOrder=2,ReportHeading,Increment,")
                  .arg(id)
                  .toStdString());

    seen = last();
    ASSERT_TRUE(generator.BeginTransaction());
    ASSERT_TRUE(generator.Delete());
    ASSERT_TRUE(generator.AbortTransaction());
    EXPECT_EQ(rows(since.arg(seen)).toStdString(), "");
    ASSERT_TRUE(generator.Delete());
    EXPECT_EQ(
        rows("select ColumnName, OldValue, NewValue from AuditTrail where ID > " + seen + " order by ID").toStdString(),
        "ReportHeading,Increment,|Name,Mine,|Description,By fund,|Ledger,E,|FundID,A,|Date,20240309,");
}

TEST(ReportHeadings, AvailableColumnsFollowTheFormatsLedgerAndYear)
{
    clsReportGenerator generator;
    generator.Ledger = "R";
    generator.ReportName().Ledger = "e";
    std::vector<clsReportHeadings> expenditure, revenue;
    generator.getAvailHeadingList(expenditure);
    ASSERT_EQ(expenditure.size(), 11u);
    QStringList texts;
    for (const auto &heading : expenditure)
        texts << heading.ReportHeading + "=" + heading.ReportHeadingDesc;
    EXPECT_EQ(texts, (QStringList{"CurBudget=Budget", "AdjustedBudget=Adjusted Budget", "CurExpense=Expense",
                                  "ProjectedAmount=Projected Expend", "ProposedBudget=Proposed Budget",
                                  "Increment=Increase /Decrease", "IncPercent=Percent Increase /Decrease",
                                  "PriorBudget=Budget", "PriorExpense=Expense", "Prior2Budget=Budget",
                                  "Prior2Expense=Expense"}));
    generator.Ledger = "E";
    generator.ReportName().Ledger = "x";
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
