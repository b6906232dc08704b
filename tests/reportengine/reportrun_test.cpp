#include "dataaccesscontrol.h"
#include "definitiontesting.h"
#include "reportoutput.h"
#include "sampleinstallation.h"
#include "testdatabases.h"

#include <QHash>

namespace {

Currency money(const char *text)
{
    return *Currency::parse(QString::fromLatin1(text));
}

// A status report over the folders of fund A's expenditure tree, with last
// year's actuals from Budgets and this year's payments from the Kora-Fund
// summaries through the subreport.
const char *const statusReport = R"([report]
title = Budget Status Report
orientation = landscape
district = {?CustomerName}
subtitle = 'Fund ' & {?FundID} & ', budget year ' & {?CurBudgetYear}
selection = {Accounts.Ledger} = {?LedgerID}
folder = {SummaryTree.ID}
grandtotal = 'Total Fund ' & {?FundID}
note = 'Expended to date comes from the Kora-Fund summaries.'

[parameters]
FundID = text, "Fund"
LedgerID = text, "Ledger"
CompareYear = text, "Compare year"
CurBudgetYear = text, "Budget year"
CustomerName = text, "District"

[main Accounts]
sql = select a.ID, a.AccountCode, a.AccountName, a.Ledger, a.CurrentBudget,
        cast(t.ID as integer) as SummaryTree_ID
      from AccountCodes a inner join SummaryTree t on t.ID = a.ParentID
      where a.FundID = {?FundID} and t.NodeType = 'T' and a.HistoricalCode <> 'H'
      order by a.AccountCode

[lookup Prior]
sql = select AcctId, ActualAmount from Budgets where YearID = {?CompareYear}
key = AcctId
link = {Accounts.ID}

[subreport Details]
table = Summary
fund =
link = {Accounts.AccountCode}
formula Col2Amount = 0

[group]
by = folders

[column]
heading = 'Account' & chr(13) & 'Code'
value = {Accounts.AccountCode}
width = 14

[column]
name = Budget
heading = 'Budget'
kind = amount
value = {Accounts.CurrentBudget}
total = yes

[column]
name = Expended
heading = 'Expended'
kind = amount
value = {Details.Col2Amount}
total = yes

[column]
heading = 'Prior ' & {?CompareYear}
kind = amount
value = {Prior.ActualAmount}
total = yes

[column]
heading = 'Percent'
kind = percent
value = if {Accounts.CurrentBudget} = 0 then 'n/a' else round({Details.Col2Amount} % {Accounts.CurrentBudget}, 2)
totalvalue = if {Total.Budget} = 0 then 'n/a' else round({Total.Expended} % {Total.Budget}, 2)

[chart]
title = 'Budget by folder'
category = {Tree.TopName}
series Budget = {Accounts.CurrentBudget}
)";

struct Account {
    const char *code;
    const char *ledger;
    const char *folder;
    const char *budget;
    const char *priorActual;
    const char *historical = "";
};

// Fund A's accounts of the small sample district, in three folders:
// General Support (2, sorted first), Instruction (1, new page) and its Teaching (3).
const std::vector<Account> accounts{
    {"A1010.150", "E", "2", "40000.25", "38000.10"},  {"A1240.150", "E", "2", "0", "0"},
    {"A2110.120", "E", "3", "3500000.50", "3400000"}, {"A2110.450", "E", "3", "120000", "118000.99"},
    {"A5510.200", "E", "1", "250000", "249000"},      {"A1001", "R", "2", "9000000", "8900000"},
    {"A9999.999", "E", "2", "5", "5", "H"},
};

class ReportRunTest : public testdb::DatabaseTest {
protected:
    static void SetUpTestSuite()
    {
        fundFolder_ = new QTemporaryDir();
        QString message;
        ASSERT_EQ(createSampleInstallation(fundFolder_->path(), smallSampleDistrict(), {}, message), 0)
            << message.toStdString();
        // The sample pays every order in full: leave one open and adjust a budget, so each amount differs.
        DataAccessControl control;
        control.setDdfPath(fundFolder_->path());
        control.setFileName(QStringLiteral("SummaryExpenditure"));
        control.setLocation(QStringLiteral("FUND\\SumExp.btr"));
        ASSERT_EQ(control.Open(), 0) << control.Message().toStdString();
        control.setIndexNumber(0);
        control.setFieldValue(QStringLiteral("Account Code"), QStringLiteral("A2110.450"));
        ASSERT_EQ(control.GetEqual(), 0);
        const auto add = [&](const char *field, const char *amount) {
            const Currency now = control.FieldValue(QString::fromLatin1(field)).value<Currency>();
            ASSERT_TRUE(control.setFieldValue(QString::fromLatin1(field), QVariant::fromValue(now + money(amount))));
        };
        add("03 Encum Placed", "1234.56");
        add("04 Budget Adjustment", "-500.25");
        ASSERT_EQ(control.Update(), 0) << control.Message().toStdString();
    }
    static void TearDownTestSuite()
    {
        delete fundFolder_;
        fundFolder_ = nullptr;
    }

    void SetUp() override
    {
        DatabaseTest::SetUp();
        if (IsSkipped() || HasFailure())
            return;
        reportGuiApplication();
        exec("Insert into BudgetSummaryTree (ID, NodeType, FundID, LedgerID, ParentID, SortOrder, Name, ForceNewPage) "
             "Values ('1','T','A','E','0','         2','Instruction','Y ')");
        exec("Insert into BudgetSummaryTree (ID, NodeType, FundID, LedgerID, ParentID, SortOrder, Name, ForceNewPage) "
             "Values ('2','T','A','E','0','         1','General Support','N ')");
        exec("Insert into BudgetSummaryTree (ID, NodeType, FundID, LedgerID, ParentID, SortOrder, Name, ForceNewPage) "
             "Values ('3','T','A','E','1','         1','Teaching','N ')");
        for (const Account &a : accounts) {
            exec(QStringLiteral("Insert into AccountCodes (Ledger, FundID, AccountCode, AccountName, ParentID, "
                                "HistoricalCode, CurrentBudget) Values ('%1','A','%2','Account %2','%3','%4',%5)")
                     .arg(a.ledger, a.code, a.folder, a.historical, a.budget));
            exec(QStringLiteral("Insert into Budgets (AcctId, YearID, CurrentBudget, ActualAmount) "
                                "select ID, '2024', 1, %1 from AccountCodes where AccountCode = '%2'")
                     .arg(a.priorActual, a.code));
        }
    }

    std::unique_ptr<ReportDefinition> statusDefinition()
    {
        auto definition = files.load(QString::fromLatin1(statusReport), QStringLiteral("BgtStat.rpt"));
        if (!definition)
            return nullptr;
        definition->setParameter(QStringLiteral("FundID"), ReportValue::text(QStringLiteral("A")));
        definition->setParameter(QStringLiteral("LedgerID"), ReportValue::text(QStringLiteral("E")));
        definition->setParameter(QStringLiteral("CompareYear"), ReportValue::text(QStringLiteral("2024")));
        definition->setParameter(QStringLiteral("CurBudgetYear"), ReportValue::text(QStringLiteral("2025")));
        definition->setParameter(QStringLiteral("CustomerName"), ReportValue::text(QStringLiteral("Lakeview UFSD")));
        return definition;
    }

    std::unique_ptr<ReportDocument> run(const ReportDefinition &definition, const ReportProgress &progress = {})
    {
        QString error;
        auto document = ReportDocument::run(definition, {db().get(), fundFolder_->path()}, error, progress);
        EXPECT_TRUE(document) << error.toStdString();
        return document;
    }

    QString runError(const ReportDefinition &definition, const QString &fundRoot)
    {
        QString error;
        EXPECT_FALSE(ReportDocument::run(definition, {db().get(), fundRoot}, error));
        return error;
    }

    // Each account's twelve months of the named amounts, summed here from the summary file's fields.
    static QHash<QString, std::vector<Currency>> yearSums(const QString &record, const QString &file,
                                                          const QStringList &amounts)
    {
        DataAccessControl control;
        control.setDdfPath(fundFolder_->path());
        control.setFileName(record);
        control.setLocation(QStringLiteral("FUND\\") + file);
        QHash<QString, std::vector<Currency>> sums;
        EXPECT_EQ(control.Open(), 0) << control.Message().toStdString();
        for (int status = control.StepFirst(); status == 0; status = control.StepNext()) {
            std::vector<Currency> year(amounts.size());
            for (int k = 0; k < amounts.size(); ++k) {
                for (int month = 1; month <= 12; ++month)
                    year[k] +=
                        control.FieldValue(QStringLiteral("%1 %2").arg(month, 2, 10, QLatin1Char('0')).arg(amounts[k]))
                            .value<Currency>();
            }
            sums.insert(control.FieldValue(QStringLiteral("Account Code")).toString(), year);
        }
        return sums;
    }
    static QHash<QString, Currency> paymentsInFundFiles()
    {
        QHash<QString, Currency> payments;
        const auto sums = yearSums(QStringLiteral("SummaryExpenditure"), QStringLiteral("SumExp.btr"),
                                   {QStringLiteral("Payment Expense")});
        for (auto it = sums.cbegin(); it != sums.cend(); ++it)
            payments.insert(it.key(), it.value()[0]);
        return payments;
    }

    DefinitionFiles files;
    static inline QTemporaryDir *fundFolder_ = nullptr;
};

using Kind = ReportTable::RowKind;

// "kind level first-cell" of every row, for the shape of a report.
QStringList shape(const ReportTable &table)
{
    static const char *const kinds[] = {"D", "H", "T", "G"};
    QStringList lines;
    for (const auto &row : table.rows)
        lines << QStringLiteral("%1%2 %3%4")
                     .arg(kinds[int(row.kind)])
                     .arg(row.level)
                     .arg(row.cells.at(0), row.newPage ? "^" : "");
    return lines;
}

const ReportTable::Row &rowStarting(const ReportTable &table, const QString &first)
{
    for (const auto &row : table.rows) {
        if (row.cells.at(0) == first)
            return row;
    }
    static const ReportTable::Row none;
    ADD_FAILURE() << "no row " << first.toStdString();
    return none;
}

TEST_P(ReportRunTest, FoldersGroupTheSelectedAccountsWithTotalsThatAddUp)
{
    const auto definition = statusDefinition();
    ASSERT_TRUE(definition);
    const auto document = run(*definition);
    ASSERT_TRUE(document);
    const ReportTable &table = document->table();
    EXPECT_EQ(table.headings, (QStringList{"Account\nCode", "Budget", "Expended", "Prior 2024", "Percent"}));
    EXPECT_EQ(table.kinds[1], ReportTable::Kind::Amount);
    EXPECT_EQ(table.widths[0], 14);
    // The revenue account fails the selection, the historical one the SQL.
    EXPECT_EQ(shape(table),
              (QStringList{"H0 General Support", "D1 A1010.150", "D1 A1240.150", "T0 Total General Support",
                           "H0 Instruction^", "D1 A5510.200", "H1 Teaching", "D2 A2110.120", "D2 A2110.450",
                           "T1 Total Teaching", "T0 Total Instruction", "G0 Total Fund A"}));

    Currency all;
    Currency prior;
    Currency teaching;
    for (const Account &a : accounts) {
        if (QLatin1String(a.ledger) != QLatin1String("E") || *a.historical)
            continue;
        all += money(a.budget);
        prior += money(a.priorActual);
        if (QLatin1String(a.folder) == QLatin1String("3"))
            teaching += money(a.budget);
    }
    const auto &grand = rowStarting(table, "Total Fund A");
    EXPECT_EQ(grand.cells[1], all.toSqlText());
    EXPECT_EQ(grand.cells[3], prior.toSqlText());
    EXPECT_EQ(rowStarting(table, "Total Teaching").cells[1], teaching.toSqlText());
    EXPECT_EQ(rowStarting(table, "Total Instruction").cells[1], (teaching + money("250000")).toSqlText());
    // Left as the definition has it, the subreport gives 0 and the percentages follow.
    EXPECT_EQ(grand.cells[2], "0");
    EXPECT_EQ(rowStarting(table, "A1240.150").cells[4], "n/a");
    EXPECT_EQ(rowStarting(table, "A1010.150").cells[4], "0");
    EXPECT_EQ(rowStarting(table, "A2110.450").cells[3], "118000.99");

    ASSERT_EQ(document->charts().size(), 1u);
    const ReportChart &chart = document->charts()[0];
    EXPECT_EQ(chart.categories, (QStringList{"General Support", "Instruction"}));
    EXPECT_DOUBLE_EQ(chart.series[0][1], (teaching + money("250000")).toDouble());
    EXPECT_GT(document->pageCount(), 0);
}

TEST_P(ReportRunTest, TheSubreportReadsTheRePointedKoraFundTableAndTheSelectionNarrowsToFolders)
{
    auto definition = statusDefinition();
    ASSERT_TRUE(definition);
    ReportDefinition *details = definition->OpenSubreport(QStringLiteral("Details"));
    QString error;
    ASSERT_TRUE(details->setFormula(QStringLiteral("Col2Amount"), QStringLiteral("{Summary.PaymentExpense}"), error));
    ASSERT_TRUE(
        details->setTableLocation(QStringLiteral("Summary"), QStringLiteral("FY2025_SummaryExpenditure"), error));
    ASSERT_TRUE(definition->setRecordSelectionFormula(
        definition->RecordSelectionFormula() + QStringLiteral(" and {SummaryTree.ID} in [ 2, 3 ]"), error));
    const auto document = run(*definition);
    ASSERT_TRUE(document);
    const ReportTable &table = document->table();
    // Folder 1's own account is left out; Instruction still heads its Teaching.
    EXPECT_EQ(shape(table),
              (QStringList{"H0 General Support", "D1 A1010.150", "D1 A1240.150", "T0 Total General Support",
                           "H0 Instruction^", "H1 Teaching", "D2 A2110.120", "D2 A2110.450", "T1 Total Teaching",
                           "T0 Total Instruction", "G0 Total Fund A"}));

    const QHash<QString, Currency> payments = paymentsInFundFiles();
    Currency expended;
    for (const char *code : {"A1010.150", "A1240.150", "A2110.120", "A2110.450"}) {
        ASSERT_TRUE(payments.contains(code)) << code;
        EXPECT_EQ(rowStarting(table, code).cells[2], payments.value(code).toSqlText()) << code;
        expended += payments.value(code);
    }
    EXPECT_FALSE(expended.isZero());
    EXPECT_EQ(rowStarting(table, "Total Fund A").cells[2], expended.toSqlText());
}

TEST_P(ReportRunTest, SubreportsOnOneKoraFundTableShareItsRowsAndAnotherTableKeepsItsOwn)
{
    QString text = QString::fromLatin1(statusReport);
    text.replace(QStringLiteral("[group]"), QStringLiteral("[subreport Details - 01]\ntable = Summary\nfund =\n"
                                                         "link = {Accounts.AccountCode}\n"
                                                         "formula Col2Amount = {Summary.BudgetAdjustment}\n\n[group]"));
    text.replace(QStringLiteral("[chart]"), QStringLiteral("[column]\nname = Adjusted\nkind = amount\n"
                                                         "value = {Details - 01.Col2Amount}\n\n[chart]"));
    auto definition = files.load(text, QStringLiteral("BgtStat.rpt"));
    ASSERT_TRUE(definition);
    for (const char *name : {"FundID", "LedgerID"})
        definition->setParameter(QString::fromLatin1(name), ReportValue::text(name[0] == 'F' ? "A" : "E"));
    QString error;
    ReportDefinition *details = definition->OpenSubreport(QStringLiteral("Details"));
    ReportDefinition *adjustments = definition->OpenSubreport(QStringLiteral("Details - 01"));
    ASSERT_TRUE(details->setFormula(QStringLiteral("Col2Amount"), QStringLiteral("{Summary.PaymentExpense}"), error));
    ASSERT_TRUE(
        details->setTableLocation(QStringLiteral("Summary"), QStringLiteral("FY2025_SummaryExpenditure"), error));
    const QStringList codes{"A1010.150", "A2110.120", "A2110.450", "A5510.200"};
    const QHash<QString, Currency> payments = paymentsInFundFiles();

    // Left without a table, Details - 01 has no rows even though Details has read its year.
    auto document = run(*definition);
    ASSERT_TRUE(document);
    for (const QString &code : codes) {
        EXPECT_EQ(rowStarting(document->table(), code).cells[2], payments.value(code).toSqlText());
        EXPECT_EQ(rowStarting(document->table(), code).cells[5], QString()) << code.toStdString();
    }

    // Pointed at the same year, each subreport takes its own field from the one table.
    ASSERT_TRUE(
        adjustments->setTableLocation(QStringLiteral("Summary"), QStringLiteral("FY2025_SummaryExpenditure"), error));
    document = run(*definition);
    ASSERT_TRUE(document);
    const auto adjusted = yearSums(QStringLiteral("SummaryExpenditure"), QStringLiteral("SumExp.btr"),
                                   {QStringLiteral("Budget Adjustment")});
    for (const QString &code : codes) {
        EXPECT_EQ(rowStarting(document->table(), code).cells[2], payments.value(code).toSqlText());
        EXPECT_EQ(rowStarting(document->table(), code).cells[5], adjusted.value(code).at(0).toSqlText())
            << code.toStdString();
    }
    EXPECT_NE(adjusted.value(QStringLiteral("A2110.450")).at(0), payments.value(QStringLiteral("A2110.450")));
}

TEST_P(ReportRunTest, KoraFundYearTablesGiveEveryAccountsTotalsForTheWholeYear)
{
    const QString expenditure = QStringLiteral(R"([report]
title = Expenditure
[main Summary]
fund = FY2025_SummaryExpenditure
[column]
value = {Summary.AccountCode}
[column]
value = {Summary.OpeningEntry} & '|' & {Summary.BudgetAdjustment} & '|' & {Summary.RevisedBudget} & '|' &
        {Summary.EncumPlaced} & '|' & {Summary.EncumLiquidated} & '|' & {Summary.Encumbrance} & '|' &
        {Summary.PaymentExpense} & '|' & {Summary.UnencumberedBalance}
)");
    const auto sums =
        yearSums(QStringLiteral("SummaryExpenditure"), QStringLiteral("SumExp.btr"),
                 {"Opening Entry", "Budget Adjustment", "Encum Placed", "Encum Liquidated", "Payment Expense"});
    const auto document = run(*files.load(expenditure));
    ASSERT_TRUE(document);
    ASSERT_EQ(document->table().rows.size(), std::size_t(sums.size()));
    bool anyEncumbrance = false;
    for (const auto &row : document->table().rows) {
        const std::vector<Currency> &y = sums.value(row.cells[0]);
        ASSERT_EQ(y.size(), 5u) << row.cells[0].toStdString();
        const Currency revised = y[0] + y[1];
        const Currency open = y[2] - y[3];
        anyEncumbrance |= !open.isZero();
        const QStringList expected{
            y[0].toSqlText(), y[1].toSqlText(), revised.toSqlText(), y[2].toSqlText(),
            y[3].toSqlText(), open.toSqlText(), y[4].toSqlText(),    (revised - open - y[4]).toSqlText()};
        EXPECT_EQ(row.cells[1], expected.join(u'|')) << row.cells[0].toStdString();
    }
    EXPECT_TRUE(anyEncumbrance);

    const QString revenue = QStringLiteral(R"([report]
title = Revenue
[main Summary]
fund = FY2025_SummaryRevenue
[column]
value = {Summary.AccountCode} & '|' & {Summary.FundID} & '|' & {Summary.RevisedBudget} & '|' &
        {Summary.RevenueReceived} & '|' & {Summary.UnearnedBalance}
)");
    const auto received = yearSums(QStringLiteral("SummaryRevenue"), QStringLiteral("SumRev.btr"),
                                   {"Opening Entry", "Budget Adjustment", "Revenue Received"});
    const auto revenues = run(*files.load(revenue));
    ASSERT_TRUE(revenues);
    ASSERT_EQ(revenues->table().rows.size(), std::size_t(received.size()));
    for (const auto &row : revenues->table().rows) {
        const QString code = row.cells[0].section(u'|', 0, 0);
        const std::vector<Currency> &y = received.value(code);
        ASSERT_EQ(y.size(), 3u) << code.toStdString();
        EXPECT_EQ(row.cells[0], QStringList({code, code.left(1), (y[0] + y[1]).toSqlText(), y[2].toSqlText(),
                                             (y[0] + y[1] - y[2]).toSqlText()})
                                    .join(u'|'));
    }
}

TEST_P(ReportRunTest, GroupsByAFormulaCanPrintTotalsOnlyWithSharesOfTheGrandTotal)
{
    const auto definition = files.load(QStringLiteral(R"([report]
title = Summary
details = no
grandtotal = 'Total'
[main Accounts]
sql = select AccountCode, Ledger, CurrentBudget from AccountCodes where HistoricalCode <> 'H' order by AccountCode
[group]
by = {Accounts.Ledger}
header = 'Ledger ' & {Accounts.Ledger}
total = 'Total ' & {Accounts.Ledger}
newpage = {Accounts.Ledger} = 'R'
[column]
value = {Accounts.AccountCode}
[column]
name = Budget
kind = amount
value = {Accounts.CurrentBudget}
total = yes
[column]
kind = percent
value = 0
totalvalue = round({Total.Budget} % {Grand.Budget}, 2)
)"));
    ASSERT_TRUE(definition);
    const auto document = run(*definition);
    ASSERT_TRUE(document);
    const ReportTable &table = document->table();
    EXPECT_EQ(shape(table), (QStringList{"H0 Ledger E", "T0 Total E", "H0 Ledger R^", "T0 Total R", "G0 Total"}));
    Currency expenditure;
    for (const Account &a : accounts) {
        if (QLatin1String(a.ledger) == QLatin1String("E") && !*a.historical)
            expenditure += money(a.budget);
    }
    const Currency revenue = money("9000000");
    EXPECT_EQ(table.rows[1].cells[1], expenditure.toSqlText());
    EXPECT_EQ(table.rows[3].cells[1], revenue.toSqlText());
    EXPECT_EQ(table.rows[4].cells[1], (expenditure + revenue).toSqlText());
    EXPECT_EQ(table.rows[4].cells[2], "100");
    const double share = expenditure.toDouble() * 100 / (expenditure + revenue).toDouble();
    EXPECT_NEAR(table.rows[1].cells[2].toDouble(), share, 0.005);
    EXPECT_LE(table.rows[1].cells[2].section(u'.', 1).size(), 2);
}

TEST_P(ReportRunTest, ParameterValuesReachTheSqlAsQuotedLiterals)
{
    const auto definition = statusDefinition();
    ASSERT_TRUE(definition);
    definition->setParameter(QStringLiteral("FundID"), ReportValue::text(QStringLiteral("A' or 'x' = 'x")));
    const auto document = run(*definition);
    ASSERT_TRUE(document);
    EXPECT_EQ(shape(document->table()), QStringList{"G0 Total Fund A' or 'x' = 'x"});
}

TEST_P(ReportRunTest, FailuresNameTheDefinitionAndWhatIsWrong)
{
    auto definition = statusDefinition();
    ASSERT_TRUE(definition);
    ReportDefinition *details = definition->OpenSubreport(QStringLiteral("Details"));
    QString error;
    ASSERT_TRUE(
        details->setTableLocation(QStringLiteral("Summary"), QStringLiteral("FY1999_SummaryExpenditure"), error));
    error = runError(*definition, fundFolder_->path());
    EXPECT_TRUE(error.contains("BgtStat.rpt")) << error.toStdString();
    EXPECT_TRUE(error.contains("no year with the table id \"FY1999\"")) << error.toStdString();

    ASSERT_TRUE(
        details->setTableLocation(QStringLiteral("Summary"), QStringLiteral("FY2025_SummaryExpenditure"), error));
    EXPECT_TRUE(runError(*definition, QString()).contains("no Kora-Fund installation was given"));

    // A column the SQL does not give is found missing when the report runs.
    ASSERT_TRUE(definition->setRecordSelectionFormula(QStringLiteral("{Accounts.Fund} = 'A'"), error));
    error = runError(*definition, fundFolder_->path());
    EXPECT_TRUE(error.startsWith("BgtStat.rpt: formula \"selection\", position 1: Unknown field {Accounts.Fund}"))
        << error.toStdString();

    ASSERT_TRUE(definition->setRecordSelectionFormula(QStringLiteral("{Accounts.AccountCode}"), error));
    EXPECT_TRUE(runError(*definition, fundFolder_->path()).contains("not true or false"));
}

TEST_P(ReportRunTest, ProgressIsReportedAndCancelStopsTheRun)
{
    const auto definition = statusDefinition();
    ASSERT_TRUE(definition);
    int calls = 0;
    EXPECT_TRUE(run(*definition, [&](int done, int total) {
        ++calls;
        EXPECT_LE(done, total);
        return true;
    }));
    EXPECT_GE(calls, 2);
    QString error;
    EXPECT_FALSE(
        ReportDocument::run(*definition, {db().get(), fundFolder_->path()}, error, [&](int, int) { return false; }));
    EXPECT_EQ(error, "Cancelled.");
}

TEST_P(ReportRunTest, TheLevySourceApportionsTheLevyThatOneRowLookupsGive)
{
    exec("Insert into TaxRate (TownShip, CurrentEqualRate, CurrentAssessment, CurrentTaxAssess, PrevEqualRate, "
         "PrevAssessment, PrevTaxAssess) Values ('Lakeview', 87.5, 300000000, 280000000.55, 90, 290000000, 270000000)");
    exec("Insert into TaxRate (TownShip, CurrentEqualRate, CurrentAssessment, CurrentTaxAssess, PrevEqualRate, "
         "PrevAssessment, PrevTaxAssess) Values ('Hillside', 100, 120000000, 110000000, 100, 115000000, 105000000)");
    exec("Insert into TaxRate (TownShip, CurrentEqualRate, CurrentAssessment, CurrentTaxAssess, PrevEqualRate, "
         "PrevAssessment, PrevTaxAssess) Values ('Brookfield', 6.25, 9000000, 8500000, 6.5, 8800000, 8300000)");
    const auto definition = files.load(QStringLiteral(R"([report]
title = Analysis of Tax Revenue
grandtotal = 'Total'
[parameters]
LedgerID = text, "Ledger"
[main Towns]
levy = {Totals.Appropriations} - {Totals.OtherRevenue}
priorlevy = 1000000.01
[lookup Totals]
sql = select sum(CurrentBudget) as Appropriations, 1000.99 as OtherRevenue from AccountCodes
      where Ledger = {?LedgerID} and HistoricalCode <> 'H'
[column]
value = {Towns.Town}
[column]
name = Share
kind = amount
value = {Towns.Share}
total = yes
[column]
name = Prior
kind = amount
value = {Towns.PriorShare}
total = yes
[column]
kind = number
value = {Towns.TaxRate}
[column]
kind = percent
value = round({Towns.Share} % {Towns.Levy}, 2)
)"),
                                       QStringLiteral("TaxRev.rpt"));
    ASSERT_TRUE(definition);
    definition->setParameter(QStringLiteral("LedgerID"), ReportValue::text(QStringLiteral("E")));
    const auto document = run(*definition);
    ASSERT_TRUE(document);
    const ReportTable &table = document->table();
    Currency appropriations;
    for (const Account &a : accounts) {
        if (QLatin1String(a.ledger) == QLatin1String("E") && !*a.historical)
            appropriations += money(a.budget);
    }
    const Currency levy = appropriations - money("1000.99");
    EXPECT_EQ(shape(table), (QStringList{"D0 Brookfield", "D0 Hillside", "D0 Lakeview", "G0 Total"}));
    EXPECT_EQ(table.rows[3].cells[1], levy.toSqlText());
    EXPECT_EQ(table.rows[3].cells[2], "1000000.01");
    // Each share within a cent of its exact part of the levy by full value.
    const double fullValues[] = {8500000 / 0.0625, 110000000 / 1.0, 280000000.55 / 0.875};
    const double totalFull = fullValues[0] + fullValues[1] + fullValues[2];
    for (int i = 0; i < 3; ++i) {
        const double share = money(table.rows[i].cells[1].toLatin1().constData()).toDouble();
        EXPECT_LT(std::abs(share - levy.toDouble() * fullValues[i] / totalFull), 0.01) << i;
        const double taxable = i == 0 ? 8500000 : i == 1 ? 110000000 : 280000000.55;
        EXPECT_NEAR(table.rows[i].cells[3].toDouble(), share / taxable * 1000, 0.00005) << i;
    }
}

KORA_ALL_BACKENDS(ReportRunTest);

} // namespace
