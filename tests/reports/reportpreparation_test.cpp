#include "customername.h"
#include "recordingmessages.h"
#include "reportcatalog.h"
#include "reportdefinition.h"
#include "reportdefinitiondata.h"
#include "reportdemotest.h"
#include "treesummary.h"

#include <QSet>

#include <gtest/gtest.h>

namespace {

constexpr ReportKind allKinds[] = {ReportKind::Status,     ReportKind::TaxRevenue,   ReportKind::PublicBudget,
                                   ReportKind::VersusProposed, ReportKind::Historical, ReportKind::AccountCodes,
                                   ReportKind::Chart,      ReportKind::Generated};

QStringList parameterNames(const ReportDefinition &definition)
{
    QStringList names;
    for (const ParameterField &field : definition.ParameterFields())
        names << field.Name;
    return names;
}

} // namespace

TEST(ReportDefinitions, EachLoadsAndTakesExactlyTheParametersItsProcedureSets)
{
    guiApplication(); // the program's installed copies are found beside the executable
    for (ReportKind kind : allKinds) {
        const ReportInfo &info = reportInfo(kind);
        SCOPED_TRACE(info.file.toStdString());
        const QString path = findReportDefinition(QString(), info.file);
        ASSERT_FALSE(path.isEmpty());
        QString error;
        const auto definition = ReportDefinition::load(path, error);
        ASSERT_TRUE(definition) << error.toStdString();
        // Exact names, spellings included: CalenderYear here, CalendarYear there.
        EXPECT_EQ(parameterNames(*definition), info.parameters);
        const bool withDetails = kind == ReportKind::Status || kind == ReportKind::VersusProposed ||
                                 kind == ReportKind::Generated;
        EXPECT_EQ(definition->subreportNames().size(), withDetails ? 2 : 0);
    }
    EXPECT_TRUE(reportInfo(ReportKind::Status).parameters.contains("CalenderYear"));
    EXPECT_TRUE(reportInfo(ReportKind::Historical).parameters.contains("CalendarYear"));
    EXPECT_EQ(reportRow(ReportKind::VersusProposed, "R").name, "Revenue Vs Proposed Budget ");
    EXPECT_EQ(reportCaption(ReportKind::VersusProposed, "E"), "Historical Comparison");
}

TEST(ReportOptions, EachOptionGivesItsNumberAndCompareYears)
{
    const std::vector<QString> years{"2022", "2023", "2024"};
    const std::vector<std::tuple<int, QString, QString>> expected{
        {1, "2023", "2024"}, {2, "2024", ""}, {3, "2024", ""}, {4, "2024", ""}, {5, "2024", ""}, {6, "2024", ""}};
    ASSERT_EQ(statusOptions().size(), 6);
    for (int i = 0; i < 6; ++i) {
        CompareYears compare;
        QString why;
        ASSERT_TRUE(compareYearsFor(statusOptions()[i], years, compare, why)) << why.toStdString();
        EXPECT_EQ(std::tuple(compare.rptOption, compare.year, compare.year2), expected[size_t(i)]) << i;
    }
    CompareYears compare;
    QString why;
    EXPECT_FALSE(compareYearsFor("2 years Actual", {"2024"}, compare, why));
    EXPECT_TRUE(why.contains("two historical years")) << why.toStdString();
    EXPECT_TRUE(compareYearsFor("Current Year Actual", {"2024"}, compare, why));
    EXPECT_FALSE(compareYearsFor("Next Year", years, compare, why));
    EXPECT_TRUE(why.contains("Next Year"));

    ReportChoices choices;
    choices.records = 2;
    choices.compareCode = "   ";
    EXPECT_EQ(effectiveCompareCode(choices), "");
    choices.compareCode = "A21";
    EXPECT_EQ(effectiveCompareCode(choices), "A21");
    choices.records = 1;
    EXPECT_EQ(effectiveCompareCode(choices), "");
}

class PreparationTest : public ReportDemoTest {
protected:
    static ReportChoices status(const QString &ledger, int option)
    {
        ReportChoices choices;
        choices.report = ledger == "R" ? "Revenue" : "Expenditure";
        choices.ledger = ledger;
        choices.fund = "A";
        choices.option = statusOptions()[option - 1];
        choices.orientation = 2;
        return choices;
    }

    static QString parameter(const ReportDefinition &definition, const QString &name)
    {
        for (const ParameterField &field : definition.ParameterFields())
            if (field.Name == name)
                return field.CurrentValue.toText();
        return "<none>";
    }

    // The "T" folders of fund A's expenditure holding live codes that begin
    // with the prefix, and every folder above them, from the district itself.
    QSet<qint64> foldersHolding(const QString &prefix, QChar ledger = u'E') const
    {
        QSet<qint64> ids;
        for (const demo::Account &account : demo.district().accounts) {
            if (account.historical || account.fundId != "A" || account.ledger != ledger ||
                !account.code.startsWith(prefix))
                continue;
            for (const demo::Folder *folder = demo.district().folder(account.parentId); folder;
                 folder = demo.district().folder(folder->parentId))
                ids.insert(folder->id);
        }
        return ids;
    }

    static QSet<qint64> narrowedTo(const ReportDefinition &definition)
    {
        const QString selection = definition.RecordSelectionFormula();
        const QString marker = " and {SummaryTree.ID} in [ ";
        const qsizetype at = selection.lastIndexOf(marker);
        EXPECT_GE(at, 0) << selection.toStdString();
        EXPECT_TRUE(selection.endsWith(']'));
        QSet<qint64> ids;
        for (const QString &id : selection.mid(at + marker.size()).chopped(1).split(',', Qt::SkipEmptyParts))
            ids.insert(id.trimmed().toLongLong());
        return ids;
    }

    ScopedMessages messages;
};

TEST_F(PreparationTest, OnlyOptionsFourAndFiveRepointTheDetailsAtTheCurrentYearsSummary)
{
    for (int option = 1; option <= 6; ++option) {
        SCOPED_TRACE(option);
        for (const QString ledger : {"E", "R"}) {
            const auto definition = prepare(ReportKind::Status, status(ledger, option));
            ASSERT_TRUE(definition) << error.toStdString();
            EXPECT_EQ(parameter(*definition, "RptOption"), QString::number(option));
            EXPECT_EQ(parameter(*definition, "LedgerID"), ledger);
            for (const QString name : {"Details", "Details - 01"}) {
                ReportDefinition *details = definition->OpenSubreport(name);
                ASSERT_TRUE(details);
                const bool current = option == 4 || option == 5;
                const QString summary = ledger == "R" ? "FY2025_SummaryRevenue" : "FY2025_SummaryExpenditure";
                EXPECT_EQ(details->tableLocation("Summary").toStdString(), (current ? summary : QString()).toStdString());
            }
        }
    }
    const auto definition = prepare(ReportKind::Status, status("E", 1));
    ASSERT_TRUE(definition);
    EXPECT_EQ(parameter(*definition, "CompareYear"), "2023");
    EXPECT_EQ(parameter(*definition, "CompareYear2"), "2024");
    EXPECT_EQ(parameter(*definition, "CurBudgetYear"), "2025");
    EXPECT_EQ(parameter(*definition, "ProposedYear"), "2026");
    EXPECT_EQ(parameter(*definition, "NodeType"), "T");
    EXPECT_EQ(parameter(*definition, "CalenderYear"), "N");
    EXPECT_EQ(parameter(*definition, "Percent"), "N");
    EXPECT_EQ(parameter(*definition, "CustomerName"), demo.district().organisation.reportName);
    EXPECT_EQ(definition->orientation(), PaperOrientation::Landscape);
}

TEST_F(PreparationTest, TheSelectionIsNarrowedToTheFoldersCarryingTheCompareCode)
{
    ReportChoices choices = status("E", 3);
    choices.records = 2;
    choices.compareCode = "A2110";
    auto definition = prepare(ReportKind::Status, choices);
    ASSERT_TRUE(definition) << error.toStdString();
    EXPECT_EQ(parameter(*definition, "CompareCode"), "A2110");
    const QSet<qint64> expected = foldersHolding("A2110");
    ASSERT_FALSE(expected.isEmpty());
    EXPECT_EQ(narrowedTo(*definition), expected);

    // A blank compare code is no compare code: every folder with live codes.
    choices.compareCode = "  ";
    definition = prepare(ReportKind::Status, choices);
    ASSERT_TRUE(definition);
    EXPECT_EQ(parameter(*definition, "CompareCode"), "");
    EXPECT_EQ(narrowedTo(*definition), foldersHolding(""));

    choices.compareCode = "ZZ9";
    EXPECT_FALSE(prepare(ReportKind::Status, choices));
    EXPECT_TRUE(error.contains("ZZ9")) << error.toStdString();
}

TEST_F(PreparationTest, TwoYearsActualWithOneHistoricalYearFailsThroughTheErrorObject)
{
    demo.exec("update BudgetYears set Status = 'X' where YearID = '2023'");
    const auto definition = prepare(ReportKind::Status, status("E", 1));
    demo.exec("update BudgetYears set Status = 'H' where YearID = '2023'");
    EXPECT_FALSE(definition);
    EXPECT_TRUE(error.contains("two historical years")) << error.toStdString();
}

TEST_F(PreparationTest, APublicBudgetCategoryLimitsTheFoldersAndJoinsItsFormula)
{
    ReportChoices choices;
    choices.ledger = "E";
    choices.fund = "A";
    choices.category = "Program";
    auto definition = prepare(ReportKind::PublicBudget, choices);
    ASSERT_TRUE(definition) << error.toStdString();
    EXPECT_TRUE(definition->RecordSelectionFormula().contains(" and {@CatPRecordSelection}"));
    QSet<qint64> program;
    for (const demo::Account &account : demo.district().accounts)
        if (!account.historical && account.fundId == "A" && account.ledger == u'E' && account.catP)
            for (const demo::Folder *f = demo.district().folder(account.parentId); f;
                 f = demo.district().folder(f->parentId))
                program.insert(f->id);
    EXPECT_EQ(narrowedTo(*definition), program);

    choices.category = "All Components";
    definition = prepare(ReportKind::PublicBudget, choices);
    ASSERT_TRUE(definition);
    EXPECT_FALSE(definition->RecordSelectionFormula().contains("{@Cat"));
    EXPECT_EQ(narrowedTo(*definition), foldersHolding(""));
}

TEST_F(PreparationTest, TheComparisonsAndTheGeneratorGetTheirYearsAndColumns)
{
    ReportChoices choices;
    choices.ledger = "E";
    choices.fund = "A";
    auto definition = prepare(ReportKind::Historical, choices);
    ASSERT_TRUE(definition) << error.toStdString();
    // Two closed years: the older two of the four stay empty.
    EXPECT_EQ(QStringList({parameter(*definition, "Year1"), parameter(*definition, "Year2"),
                           parameter(*definition, "Year3"), parameter(*definition, "Year4")}),
              QStringList({"", "", "2023", "2024"}));
    EXPECT_EQ(parameter(*definition, "CalendarYear"), "N");

    choices = {};
    choices.fund = "A";
    Recordset rows;
    ASSERT_TRUE(demo.db()->open("select min(ID) as ID from Report", rows));
    choices.formatId = std::int32_t(rows.number("ID"));
    definition = prepare(ReportKind::Generated, choices);
    ASSERT_TRUE(definition) << error.toStdString();
    EXPECT_EQ(parameter(*definition, "PriorYear"), "2024");
    EXPECT_EQ(parameter(*definition, "Prior2Year"), "2023");
    EXPECT_FALSE(parameter(*definition, "FolderList").isEmpty());
    const demo::ReportFormat &format = demo.district().reportFormats.front();
    EXPECT_EQ(parameter(*definition, "ReportName"), format.name);
    EXPECT_EQ(definition->OpenSubreport("Details")->tableLocation("Summary"),
              format.ledger == u'R' ? "FY2025_SummaryRevenue" : "FY2025_SummaryExpenditure");
}

TEST_F(PreparationTest, TheChartsPageHeaderNamesTheDistrictWithoutADistrictParameter)
{
    ReportChoices choices;
    choices.ledger = "R";
    const auto definition = prepare(ReportKind::Chart, choices);
    ASSERT_TRUE(definition) << error.toStdString();
    EXPECT_EQ(parameter(*definition, "CustomerName"), "<none>");
    const DefinitionFormula *district = definition->data().formula("District");
    ASSERT_TRUE(district);
    EXPECT_EQ(district->text, "'" + demo.district().organisation.reportName + "'");
    EXPECT_EQ(parameter(*definition, "Ledger"), "R");
}

TEST(CustomerName, AnOrganisationRecordThatCannotBeOpenedIsSaidUnderKoraFund)
{
    ScopedMessages messages;
    QTemporaryDir empty;
    EXPECT_EQ(GetCustomerName(empty.path(), empty.path() + "\\FUND"), "");
    ASSERT_EQ(messages->shown().size(), 1u);
    EXPECT_EQ(messages->shown().front().error.title, "Kora-Fund");
    EXPECT_TRUE(messages->shown().front().error.text.startsWith("Cannot initialize system parameters. error:"))
        << messages->shown().front().error.text.toStdString();
}
