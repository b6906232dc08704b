#include "definitiontesting.h"
#include "reportoutput.h"

#include <QCoreApplication>
#include <QDir>

namespace {

// A small definition with a parameter of every use, a subreport on a
// Kora-Fund table and an SQL lookup; `extra` is appended.
QString definitionText(const QString &extra = QString())
{
    return QStringLiteral(R"([report]
title = Status
selection = {Accounts.Ledger} = {?LedgerID}
folder = {SummaryTree.ID}

[parameters]
NodeType = text, "Node type"
LedgerID = text, "Ledger"
RptOption = number, "Option"
CalenderYear = boolean, "Calendar year"

[formulas]
Change = {Accounts.CurrentBudget} - {@Base}
Base = {Prior.ActualAmount}

[main Accounts]
sql = select ID, Ledger, CurrentBudget, cast(ParentID as integer) as SummaryTree_ID
      from AccountCodes where Ledger = {?LedgerID}

[lookup Prior]
sql = select AcctId, ActualAmount from Budgets
key = AcctId
link = {Accounts.ID}

[subreport Details]
table = Summary
fund =
link = {Accounts.AccountCode}
formula Col2Amount = 0
formula CalExpFundData =

[column]
name = Budget
heading = 'Budget'
kind = amount
value = {Accounts.CurrentBudget}
total = yes
)") + extra;
}

class DefinitionTest : public ::testing::Test {
protected:
    DefinitionFiles files;
};

TEST_F(DefinitionTest, RefusalsNameTheFileTheLineAndForAFormulaItsNameAndPosition)
{
    struct Case {
        QString text;
        QString expected;
    };
    const QString head = QStringLiteral("[report]\ntitle = T\n[main M]\nsql = select 1 as X\n");
    const std::vector<Case> cases{
        {QStringLiteral("[main M]\nsql = select 1\n"), QStringLiteral("line 1: the file must begin with the [report]")},
        {QStringLiteral("[report]\ntitle = T\n"), QStringLiteral("no [main] section")},
        {head + QStringLiteral("[shelf]\n"), QStringLiteral("line 5: unknown section [shelf]")},
        {head + QStringLiteral("[column]\nvalue {M.X}\n"), QStringLiteral("line 6: expected \"key = value\"")},
        {head + QStringLiteral("[column]\nvalue = 1\ncolour = red\n"),
         QStringLiteral("line 7: unknown key \"colour\"")},
        {head + QStringLiteral("[column]\nvalue = 1\nvalue = 2\n"), QStringLiteral("line 7: \"value\" given twice")},
        {head + QStringLiteral("[parameters]\nFund = money, \"Fund\"\n"),
         QStringLiteral("line 6: parameter Fund: unknown type")},
        {head + QStringLiteral("[lookup L]\nsql = select 1\nkey = X\n"),
         QStringLiteral("line 5: table L: \"key\" and \"link\" go together")},
        {head + QStringLiteral("[lookup L]\nkey = X\nlink = 1\n"),
         QStringLiteral("table L has none of sql, fund and levy")},
        {head + QStringLiteral("[lookup L]\nfund = FY2025_Checking\n"),
         QStringLiteral("line 6: \"FY2025_Checking\" is not a Kora-Fund year table")},
        {head + QStringLiteral("[group]\nby = folders\n"), QStringLiteral("line 5: \"by = folders\" needs \"folder\"")},
        // Formulas: the position counts from 1 within the formula's text.
        {head + QStringLiteral("[column]\nvalue = 1 +\n"),
         QStringLiteral("line 6: formula \"column 1 value\", position 4:")},
        {head + QStringLiteral("[column]\nvalue = 1 +\n  {?Nothing}\n"),
         QStringLiteral("line 7: formula \"column 1 value\", position 5: unknown parameter {?Nothing}")},
        {head + QStringLiteral("[formulas]\nA = {@B}\nB = {@A}\n"), QStringLiteral("formula \"A\" refers to itself")},
        {head + QStringLiteral("[column]\nvalue = {@Missing}\n"), QStringLiteral("unknown formula {@Missing}")},
        {head + QStringLiteral("[column]\nvalue = {Total.X}\n"),
         QStringLiteral("{Total.X} can only be used in a column's totalvalue")},
        {head + QStringLiteral("[column]\nvalue = 1\ntotalvalue = {Total.Nowhere}\n"),
         QStringLiteral("no column is named Nowhere")},
        {head + QStringLiteral(
                    "[lookup L]\nfund = FY2025_SummaryRevenue\nlink = {M.X}\n[column]\nvalue = {L.PaymentExpense}\n"),
         QStringLiteral("line 9: formula \"column 1 value\", position 1: table L has no field PaymentExpense")},
        {head + QStringLiteral(
                    "[subreport Details]\nfund =\nlink = {M.X}\nformula A = 1\n[column]\nvalue = {Details.B}\n"),
         QStringLiteral("subreport Details has no formula B")},
        {head + QStringLiteral("[column]\nvalue = {Tree.Name}\n"), QStringLiteral("{Tree.Name} needs \"folder\"")},
        {QStringLiteral("[report]\ntitle = T\n[main M]\nsql = select 1 where 1 = {?Fund}\n"),
         QStringLiteral("line 3: the SQL of table M names an unknown parameter Fund")},
    };
    for (const Case &c : cases) {
        const QString error = files.refusal(c.text);
        EXPECT_TRUE(error.contains(QStringLiteral("bad.rpt"))) << error.toStdString();
        EXPECT_TRUE(error.contains(c.expected))
            << "got: " << error.toStdString() << "\nwanted: " << c.expected.toStdString();
    }
    QString error;
    EXPECT_FALSE(ReportDefinition::load(files.path() + QStringLiteral("/none.rpt"), error));
    EXPECT_TRUE(error.contains(QStringLiteral("none.rpt"))) << error.toStdString();
}

TEST_F(DefinitionTest, LoadsSectionsWithContinuedLinesAndComments)
{
    const auto definition = files.load(definitionText(QStringLiteral(R"(
# a comment between sections
[group]
by = folders
[chart]
title = 'By folder'
category = {Tree.TopName}
series Proposed Budget = {Accounts.CurrentBudget}
)")));
    ASSERT_TRUE(definition);
    EXPECT_EQ(definition->title(), QStringLiteral("Status"));
    EXPECT_EQ(definition->orientation(), PaperOrientation::Portrait);
    EXPECT_EQ(definition->tableAliases(), (QStringList{QStringLiteral("Accounts"), QStringLiteral("Prior")}));
    EXPECT_EQ(definition->subreportNames(), QStringList{QStringLiteral("Details")});
    const ReportDefinitionData &data = definition->data();
    EXPECT_TRUE(data.main.sql.contains(QStringLiteral("\nfrom AccountCodes")));
    ASSERT_EQ(data.charts.size(), 1u);
    EXPECT_EQ(data.charts[0].series[0].first, QStringLiteral("Proposed Budget"));
    EXPECT_TRUE(data.groups[0].folders);
    EXPECT_EQ(data.columns[0].kind, ReportTable::Kind::Amount);
    EXPECT_TRUE(data.columns[0].total);
}

TEST_F(DefinitionTest, ParametersAreWalkedInOrderAndSetByNameInAnyCase)
{
    auto definition = files.load(definitionText());
    ASSERT_TRUE(definition);
    QStringList names;
    for (const ParameterField &field : definition->ParameterFields())
        names << field.Name;
    EXPECT_EQ(names, (QStringList{QStringLiteral("NodeType"), QStringLiteral("LedgerID"), QStringLiteral("RptOption"),
                                  QStringLiteral("CalenderYear")}));
    EXPECT_EQ(definition->ParameterFields()[2].Type, ReportValue::Type::Number);
    EXPECT_EQ(definition->ParameterFields()[0].Prompt, QStringLiteral("Node type"));
    EXPECT_TRUE(definition->ParameterFields()[0].CurrentValue.isNull());

    EXPECT_TRUE(definition->setParameter(QStringLiteral("ledgerid"), ReportValue::text(QStringLiteral("E"))));
    EXPECT_EQ(definition->ParameterFields()[1].CurrentValue, ReportValue::text(QStringLiteral("E")));
    // The spelling of a parameter is the definition's: another spelling is not set.
    EXPECT_FALSE(definition->setParameter(QStringLiteral("CalendarYear"), ReportValue::boolean(true)));
    // A subreport shares its report's parameters.
    ReportDefinition *details = definition->OpenSubreport(QStringLiteral("details"));
    ASSERT_TRUE(details);
    EXPECT_TRUE(details->setParameter(QStringLiteral("RptOption"), ReportValue::number(Currency::fromUnits(4))));
    EXPECT_EQ(definition->ParameterFields()[2].CurrentValue, ReportValue::number(Currency::fromUnits(4)));
    EXPECT_FALSE(definition->OpenSubreport(QStringLiteral("Details - 01")));
}

TEST_F(DefinitionTest, ReplacingAFormulaIsRefusedWithTheReasonAndKeepsTheOldText)
{
    auto definition = files.load(definitionText());
    ASSERT_TRUE(definition);
    ReportDefinition *details = definition->OpenSubreport(QStringLiteral("Details"));
    QString error;
    EXPECT_EQ(details->formulaNames(), (QStringList{QStringLiteral("Col2Amount"), QStringLiteral("CalExpFundData")}));
    EXPECT_TRUE(definition->hasFormula(QStringLiteral("change")));
    EXPECT_FALSE(definition->hasFormula(QStringLiteral("Col2Amount")));

    EXPECT_FALSE(definition->setFormula(QStringLiteral("Col2Amount"), QStringLiteral("1"), error));
    EXPECT_EQ(error, QStringLiteral("test.rpt has no formula named \"Col2Amount\""));

    EXPECT_FALSE(details->setFormula(QStringLiteral("Col2Amount"), QStringLiteral("{Summary.Paid} + 1"), error));
    EXPECT_EQ(error, QStringLiteral("test.rpt: formula \"Col2Amount\", position 1: table Summary has no field Paid"));

    EXPECT_FALSE(details->setFormula(QStringLiteral("Col2Amount"), QStringLiteral("2 * (3"), error));
    EXPECT_TRUE(error.startsWith(QStringLiteral("test.rpt: formula \"Col2Amount\", position "))) << error.toStdString();

    EXPECT_FALSE(definition->setFormula(QStringLiteral("Base"), QStringLiteral("{@Change}"), error));
    EXPECT_TRUE(error.contains(QStringLiteral("refers to itself"))) << error.toStdString();
    EXPECT_EQ(definition->data().formula(QStringLiteral("Base"))->text, QStringLiteral("{Prior.ActualAmount}"));
    EXPECT_EQ(details->data().formula(QStringLiteral("Col2Amount"))->text, QStringLiteral("0"));

    // What the program writes for the current year's actual figures.
    EXPECT_TRUE(details->setFormula(QStringLiteral("Col2Amount"), QStringLiteral("{Summary.PaymentExpense}"), error))
        << error.toStdString();
    EXPECT_TRUE(details->setFormula(QStringLiteral("CalExpFundData"), QStringLiteral("'Y'"), error));

    const QString narrowed = definition->RecordSelectionFormula() + QStringLiteral(" and {SummaryTree.ID} in [ 1, 2 ]");
    EXPECT_TRUE(definition->setRecordSelectionFormula(narrowed, error)) << error.toStdString();
    EXPECT_EQ(definition->RecordSelectionFormula(), narrowed);
    EXPECT_FALSE(definition->setRecordSelectionFormula(narrowed + QStringLiteral(" and"), error));
    EXPECT_EQ(definition->RecordSelectionFormula(), narrowed);
    // Narrowing a definition that selects every row.
    ASSERT_TRUE(definition->setRecordSelectionFormula(QString(), error));
    EXPECT_TRUE(definition->setRecordSelectionFormula(QStringLiteral(" and {SummaryTree.ID} in [ 1 ]"), error));
    EXPECT_EQ(definition->RecordSelectionFormula(), QStringLiteral("{SummaryTree.ID} in [ 1 ]"));
}

TEST_F(DefinitionTest, OnlyKoraFundTablesAreRePointedAndOnlyToTheSameRecord)
{
    auto definition = files.load(definitionText());
    ASSERT_TRUE(definition);
    ReportDefinition *details = definition->OpenSubreport(QStringLiteral("Details"));
    QString error;
    EXPECT_FALSE(definition->setTableLocation(QStringLiteral("Prior"), QStringLiteral("FY2025_SummaryRevenue"), error));
    EXPECT_TRUE(error.contains(QStringLiteral("is not a Kora-Fund year table"))) << error.toStdString();
    EXPECT_FALSE(details->setTableLocation(QStringLiteral("Nothing"), QStringLiteral("FY2025_SummaryRevenue"), error));
    EXPECT_FALSE(details->setTableLocation(QStringLiteral("Summary"), QStringLiteral("FY2025_Funds"), error));

    // While the table points nowhere, a formula may name either record's fields;
    // re-pointing then checks them against the record chosen.
    ASSERT_TRUE(details->setFormula(QStringLiteral("Col2Amount"), QStringLiteral("{Summary.RevenueReceived}"), error));
    EXPECT_FALSE(
        details->setTableLocation(QStringLiteral("Summary"), QStringLiteral("FY2025_SummaryExpenditure"), error));
    EXPECT_TRUE(error.contains(QStringLiteral("has no field RevenueReceived"))) << error.toStdString();
    EXPECT_EQ(details->tableLocation(QStringLiteral("Summary")), QString());

    EXPECT_TRUE(details->setTableLocation(QStringLiteral("summary"), QStringLiteral("FY2025_SummaryRevenue"), error));
    EXPECT_EQ(details->tableLocation(QStringLiteral("Summary")), QStringLiteral("FY2025_SummaryRevenue"));
    EXPECT_TRUE(details->setTableLocation(QStringLiteral("Summary"), QStringLiteral("FY2024_SummaryRevenue"), error));
    EXPECT_FALSE(
        details->setTableLocation(QStringLiteral("Summary"), QStringLiteral("FY2024_SummaryExpenditure"), error));
    EXPECT_TRUE(error.contains(QStringLiteral("cannot be re-pointed"))) << error.toStdString();
    EXPECT_EQ(details->tableLocation(QStringLiteral("Summary")), QStringLiteral("FY2024_SummaryRevenue"));
}

TEST_F(DefinitionTest, FindsTheInstallationsCopyInAnyCaseThenTheProgramsCopy)
{
    const QString install = files.path() + QStringLiteral("/install");
    ASSERT_TRUE(QDir().mkpath(install + QStringLiteral("/Reports/BUDGET")));
    files.write(QStringLiteral("install/Reports/BUDGET/bgtstat.RPT"), definitionText());
    const QString found = findReportDefinition(install, QStringLiteral("BgtStat.rpt"));
    EXPECT_TRUE(found.endsWith(QStringLiteral("Reports/BUDGET/bgtstat.RPT"))) << found.toStdString();
    EXPECT_EQ(
        findReportDefinition(install.toUpper().replace(u'/', u'\\'), QStringLiteral("\\reports\\budget\\BgtStat.rpt")),
        found);

    // Not in the installation: the program's copy beside the executable.
    reportGuiApplication();
    const QString shared =
        QCoreApplication::applicationDirPath() + QStringLiteral("/../share/kora-budget/reports/budget");
    ASSERT_TRUE(QDir().mkpath(shared));
    const QString programCopy = shared + QStringLiteral("/EngineRunProbe.rpt");
    QFile(programCopy).open(QIODevice::WriteOnly);
    EXPECT_EQ(QFileInfo(findReportDefinition(install, QStringLiteral("enginerunprobe.rpt"))).canonicalFilePath(),
              QFileInfo(programCopy).canonicalFilePath());
    QFile::remove(programCopy);
    EXPECT_EQ(findReportDefinition(install, QStringLiteral("NoSuchReport.rpt")), QString());
}

TEST_F(DefinitionTest, TheDocumentedExampleLoads)
{
    QFile doc(QStringLiteral(KORA_SOURCE_DIR "/docs/report-definitions.md"));
    ASSERT_TRUE(doc.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(doc.readAll());
    const qsizetype example = text.indexOf(QStringLiteral("## A complete small example"));
    const qsizetype start = text.indexOf(QStringLiteral("```\n"), example) + 4;
    const qsizetype end = text.indexOf(QStringLiteral("```"), start);
    ASSERT_GT(example, 0);
    auto definition = files.load(text.mid(start, end - start), QStringLiteral("BgtStat.rpt"));
    ASSERT_TRUE(definition);
    QString error;
    ReportDefinition *details = definition->OpenSubreport(QStringLiteral("Details"));
    EXPECT_TRUE(details->setFormula(QStringLiteral("Col2Amount"), QStringLiteral("{Summary.PaymentExpense}"), error));
    EXPECT_TRUE(
        details->setTableLocation(QStringLiteral("Summary"), QStringLiteral("FY2025_SummaryExpenditure"), error))
        << error.toStdString();
}

} // namespace
