#include "dataaccesscontrol.h"
#include "recordingmessages.h"
#include "recordobject.h"
#include "reportdefinition.h"
#include "reportdemotest.h"
#include "reportdocument.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace {

// The fiscal year's total of monthly fields of fund A's records in a summary
// file, read straight from the installation: field "01 <amount>" .. "12 <amount>".
Currency fundFileTotal(const QString &root, const FundFileDef &file, const QString &amount)
{
    DataAccessControl control;
    EXPECT_EQ(bindFundFile(control, root, root + "\\FUND", file), 0) << control.Message().toStdString();
    Currency total;
    control.setIndexNumber(0);
    for (int status = control.GetFirst(); status == 0; status = control.GetNext()) {
        if (control.FieldValue("Fund ID").toString().trimmed() != "A")
            continue;
        for (int month = 1; month <= 12; ++month) {
            const QVariant value = control.FieldValue(QString("%1 %2").arg(month, 2, 10, QChar('0')).arg(amount));
            total += value.value<Currency>();
        }
    }
    return total;
}

// The proposal's amount of an account by the one rule: in fund A's
// expenditure an account in any component is proposed at its components' sum.
Currency proposed(const demo::Account &account, const demo::ProposalFigures &figures)
{
    if (account.fundId == "A" && account.ledger == u'E' && (account.catA || account.catP || account.catC))
        return (account.catA ? figures.catA : Currency()) + (account.catP ? figures.catP : Currency()) +
               (account.catC ? figures.catC : Currency());
    return figures.proposedBudget;
}

class ReportFiguresTest : public ReportDemoTest {
protected:
    std::unique_ptr<ReportDocument> run(ReportKind kind, const ReportChoices &choices)
    {
        const auto definition = prepare(kind, choices);
        EXPECT_TRUE(definition) << error.toStdString();
        if (!definition)
            return nullptr;
        auto document = ReportDocument::run(*definition, {demo.db().get(), demo.root()}, error);
        EXPECT_TRUE(document) << error.toStdString();
        return document;
    }

    // The grand total row's amount under the heading.
    static Currency grandTotal(const ReportTable &table, const QString &heading)
    {
        const qsizetype column = table.headings.indexOf(heading);
        EXPECT_GE(column, 0) << heading.toStdString() << " in " << table.headings.join(" | ").toStdString();
        for (const ReportTable::Row &row : table.rows)
            if (row.kind == ReportTable::RowKind::GrandTotal && column >= 0)
                return Currency::parse(row.cells[size_t(column)]).value_or(Currency::fromRaw(-1));
        ADD_FAILURE() << "no grand total";
        return {};
    }

    ScopedMessages messages;
};

} // namespace

TEST_F(ReportFiguresTest, BudgetStatusTotalsAgreeWithTheDatabaseAndTheFundFiles)
{
    ReportChoices choices;
    choices.report = "Expenditure";
    choices.ledger = "E";
    choices.fund = "A";
    choices.option = "Current Year Actual";
    const auto document = run(ReportKind::Status, choices);
    ASSERT_TRUE(document);

    Currency original, proposal;
    const demo::District &district = demo.district();
    for (size_t i = 0; i < district.accounts.size(); ++i) {
        const demo::Account &account = district.accounts[i];
        if (account.historical || account.fundId != "A" || account.ledger != u'E')
            continue;
        original += account.currentBudget;
        proposal += proposed(account, district.activeProposal().figures[i]);
    }
    const FundFileDef expenditure{"SummaryExpenditure", "\\SumExp.btr"};
    const Currency adjustments = fundFileTotal(demo.root(), expenditure, "Budget Adjustment");
    const Currency expended = fundFileTotal(demo.root(), expenditure, "Payment Expense");
    const Currency encumbered = fundFileTotal(demo.root(), expenditure, "Encum Placed") -
                                fundFileTotal(demo.root(), expenditure, "Encum Liquidated");
    ASSERT_FALSE(expended.isZero());

    const ReportTable &table = document->table();
    EXPECT_EQ(grandTotal(table, "Original\nAppropriation"), original);
    EXPECT_EQ(grandTotal(table, "Transfers and\nAdjustments"), adjustments);
    EXPECT_EQ(grandTotal(table, "Revised\nAppropriation"), original + adjustments);
    EXPECT_EQ(grandTotal(table, "Expended\nto Date"), expended);
    EXPECT_EQ(grandTotal(table, "Outstanding\nEncumbrances"), encumbered);
    EXPECT_EQ(grandTotal(table, "Unencumbered\nBalance"), original + adjustments - expended - encumbered);
    EXPECT_EQ(grandTotal(table, "Proposed\n2026"), proposal);
    EXPECT_GE(document->pageCount(), 1);
}

TEST_F(ReportFiguresTest, TheTaxLevyIsAppropriationsLessOtherRevenuesSharedExactlyOverTheTowns)
{
    ReportChoices choices;
    choices.report = "TaxRevenue";
    choices.fund = "A";
    const auto document = run(ReportKind::TaxRevenue, choices);
    ASSERT_TRUE(document);

    const demo::District &district = demo.district();
    Currency levy, priorLevy;
    for (size_t i = 0; i < district.accounts.size(); ++i) {
        const demo::Account &account = district.accounts[i];
        if (account.fundId != "A")
            continue;
        const Currency amount = proposed(account, district.activeProposal().figures[i]);
        const bool tax = account.code.startsWith("A1001");
        if (account.ledger == u'E') {
            levy += amount;
            priorLevy += account.currentBudget;
        } else if (account.ledger == u'R' && !tax) {
            levy -= amount;
            priorLevy -= account.currentBudget;
        }
    }
    const ReportTable &table = document->table();
    EXPECT_EQ(grandTotal(table, "Tax Levy\n2026"), levy);
    EXPECT_EQ(grandTotal(table, "Tax Levy\n2025"), priorLevy);

    // Each town's share within a cent of its exact share by full value.
    const qsizetype shareColumn = table.headings.indexOf("Tax Levy\n2026");
    std::vector<demo::Town> towns = district.towns;
    std::sort(towns.begin(), towns.end(), [](const demo::Town &a, const demo::Town &b) { return a.name < b.name; });
    double fullValue = 0;
    for (const demo::Town &town : towns)
        fullValue += town.currentTaxableAssessment.toDouble() / town.currentRate;
    size_t town = 0;
    for (const ReportTable::Row &row : table.rows) {
        if (row.kind != ReportTable::RowKind::Detail)
            continue;
        ASSERT_LT(town, towns.size());
        const demo::Town &t = towns[town++];
        const double exact = levy.toDouble() * (t.currentTaxableAssessment.toDouble() / t.currentRate) / fullValue;
        EXPECT_LE(std::abs(row.cells[size_t(shareColumn)].toDouble() - exact), 0.01 + 1e-6) << t.name.toStdString();
    }
    EXPECT_EQ(town, towns.size());
}
