#include "amounts.h"
#include "district.h"

#include <gtest/gtest.h>

#include <QRegularExpression>
#include <QSet>

#include <map>

using namespace demo;

namespace {

const District &base()
{
    static const District district = makeDistrict();
    return district;
}

const District &large()
{
    static const District district = makeDistrict({.accounts = 10000, .folders = 1000});
    return district;
}

// The fund masks' notation: `#` one digit, `*` any run, anything else itself.
bool matchesMask(const QString &code, const QString &mask)
{
    QString pattern;
    for (const QChar c : mask)
        pattern += c == u'#' ? QStringLiteral("\\d") : c == u'*' ? QStringLiteral(".*") : QRegularExpression::escape(c);
    return QRegularExpression(QRegularExpression::anchoredPattern(pattern)).match(code).hasMatch();
}

int treeDepth(const District &d, const Folder &folder)
{
    int depth = 1;
    for (const Folder *f = &folder; f->parentId != 0; f = d.folder(f->parentId))
        ++depth;
    return depth;
}

bool isGeneralExpenditure(const Account &a)
{
    return a.fundId == u"A" && a.ledger == u'E';
}

} // namespace

TEST(DemoDistrict, IsTheSameOnEveryBuildAndDependsOnTheSeed)
{
    EXPECT_EQ(makeDistrict(), base());
    EXPECT_EQ(makeDistrict({.accounts = 10000, .folders = 1000}), large());
    EXPECT_FALSE(makeDistrict({.seed = 7}) == base());
    // Growing the district leaves the accounts it already had as they were,
    // but for the tax line, which balances the whole budget.
    for (const Account &account : base().accounts) {
        const int index = large().accountIndex(account.code);
        ASSERT_GE(index, 0) << account.code.toStdString();
        if (account.code != "A1001")
            EXPECT_EQ(large().accounts[index], account) << account.code.toStdString();
    }
}

TEST(DemoDistrict, AccountCodesFollowTheirFundAndFitTheLedgerFields)
{
    for (const District *d : {&base(), &large()}) {
        QSet<QString> codes;
        for (const Account &a : d->accounts) {
            SCOPED_TRACE(a.code.toStdString());
            EXPECT_TRUE(a.code.startsWith(a.fundId));
            const Fund *fund = d->fund(a.fundId);
            ASSERT_NE(fund, nullptr);
            EXPECT_TRUE(matchesMask(a.code, a.ledger == u'R' ? fund->rlMask : fund->elMask));
            EXPECT_TRUE(a.ledger == u'R' || a.ledger == u'E');
            EXPECT_LE(a.code.size(), 20);
            EXPECT_LE(a.name.size(), 40);
            EXPECT_FALSE(a.name.isEmpty());
            EXPECT_TRUE(a.stateCode.startsWith(a.fundId));
            EXPECT_FALSE(codes.contains(a.code));
            codes.insert(a.code);
        }
        EXPECT_TRUE(std::is_sorted(d->accounts.begin(), d->accounts.end(),
                                   [](const Account &x, const Account &y) { return x.code < y.code; }));
        for (const Fund &f : d->funds)
            EXPECT_TRUE(matchesMask(f.checking.glAccountCode, f.glMask)) << f.id.toStdString();
    }
    EXPECT_GE(base().accounts.size(), 200u);
    EXPECT_LE(base().accounts.size(), 600u);
}

TEST(DemoDistrict, EveryAccountHangsUnderNodesOfItsOwnFundAndLedger)
{
    for (const District *d : {&base(), &large()}) {
        for (const Folder &f : d->folders) {
            SCOPED_TRACE(f.id);
            EXPECT_EQ(d->folder(f.id), &f);
            EXPECT_EQ(f.sortOrder, f.id);
            if (f.parentId == 0)
                continue;
            const Folder *parent = d->folder(f.parentId);
            ASSERT_NE(parent, nullptr);
            EXPECT_LT(parent->id, f.id);
            EXPECT_EQ(parent->nodeType, f.nodeType);
            EXPECT_EQ(parent->fundId, f.fundId);
            EXPECT_EQ(parent->ledger, f.ledger);
            EXPECT_LE(treeDepth(*d, f), 3);
        }
        for (const Account &a : d->accounts) {
            SCOPED_TRACE(a.code.toStdString());
            if (a.historical) {
                EXPECT_EQ(a.parentId + a.buildingId + a.programId, 0);
                continue;
            }
            for (const auto &[id, type] : {std::pair{a.parentId, u'T'}, {a.buildingId, u'B'}, {a.programId, u'P'}}) {
                const Folder *node = d->folder(id);
                ASSERT_NE(node, nullptr);
                EXPECT_EQ(node->nodeType, type);
                EXPECT_EQ(node->fundId, a.fundId);
                EXPECT_EQ(node->ledger, a.ledger);
            }
        }
    }
    const auto deepest =
        std::max_element(base().folders.begin(), base().folders.end(),
                         [](const auto &x, const auto &y) { return treeDepth(base(), x) < treeDepth(base(), y); });
    EXPECT_EQ(treeDepth(base(), *deepest), 3);
}

TEST(DemoDistrict, ComponentsMakeUpTheGeneralFundExpenditureFigures)
{
    const District &d = base();
    int historical = 0;
    for (std::size_t i = 0; i < d.accounts.size(); ++i) {
        const Account &a = d.accounts[i];
        SCOPED_TRACE(a.code.toStdString());
        const bool flagged = a.catA || a.catP || a.catC;
        historical += a.historical;
        if (!isGeneralExpenditure(a)) {
            EXPECT_FALSE(flagged);
            EXPECT_TRUE((a.catACurBudget + a.catPCurBudget + a.catCCurBudget).isZero());
        } else {
            EXPECT_TRUE(flagged);
            EXPECT_EQ(a.catACurBudget + a.catPCurBudget + a.catCCurBudget, a.currentBudget);
        }
        if (!a.catA)
            EXPECT_TRUE(a.catACurBudget.isZero());
        for (const Proposal &p : d.proposals) {
            const ProposalFigures &f = p.figures[i];
            if (isGeneralExpenditure(a))
                EXPECT_EQ(f.catA + f.catP + f.catC, f.proposedBudget) << p.id.toStdString();
            if (a.historical)
                EXPECT_TRUE(f.proposedBudget.isZero());
        }
        if (a.historical)
            EXPECT_TRUE(a.currentBudget.isZero());
        else
            EXPECT_GT(a.currentBudget, Currency());
    }
    EXPECT_GE(historical, 1);
    // Benefits split over two components and health insurance over all three.
    const Account &health = d.accounts[d.accountIndex("A9060.800")];
    EXPECT_TRUE(health.catA && health.catP && health.catC);
    EXPECT_FALSE(health.catCCurBudget.isZero());
}

TEST(DemoDistrict, YearsAndProposalsHaveOneOfEachKind)
{
    const District &d = base();
    EXPECT_EQ(std::count_if(d.years.begin(), d.years.end(), [](const auto &y) { return y.status == u'C'; }), 1);
    EXPECT_EQ(std::count_if(d.years.begin(), d.years.end(), [](const auto &y) { return y.status == u'P'; }), 1);
    EXPECT_EQ(d.currentYear().year, 2025);
    EXPECT_EQ(d.currentYear().yearName, " Fiscal Year 2025");
    EXPECT_EQ(d.proposedYear().yearName, "Proposed Year 2026");
    EXPECT_EQ(d.proposedYear().year, d.currentYear().year + 1);
    QSet<QString> tableIds;
    for (const FiscalYear &y : d.years) {
        EXPECT_EQ(y.tableId, "FY" + QString::number(y.year));
        tableIds.insert(y.tableId);
    }
    EXPECT_EQ(tableIds.size(), qsizetype(d.years.size()));

    ASSERT_EQ(d.proposals.size(), 3u);
    EXPECT_EQ(std::count_if(d.proposals.begin(), d.proposals.end(), [](const auto &p) { return p.active; }), 1);
    EXPECT_EQ(d.activeProposal().status, "O");
    for (const Proposal &p : d.proposals)
        EXPECT_EQ(p.figures.size(), d.accounts.size());

    // A live account has figures for the closed years and the current one.
    const Account &taxes = d.accounts[d.accountIndex("A1001")];
    ASSERT_EQ(taxes.history.size(), 3u);
    EXPECT_EQ(taxes.history.back().year, 2025);
    EXPECT_EQ(taxes.history.back().originalBudget, taxes.currentBudget);
    EXPECT_GT(taxes.history[1].originalBudget, Currency());
}

TEST(DemoDistrict, LineItemsAddUpToTheActiveProposal)
{
    const District &d = base();
    std::map<QString, std::pair<Currency, int>> totals; // code -> sum, count
    for (const LineItem &line : d.lineItems) {
        auto &[sum, count] = totals[line.accountCode];
        sum += line.amount;
        EXPECT_EQ(line.number, ++count) << line.accountCode.toStdString();
    }
    ASSERT_GE(totals.size(), 5u);
    for (const auto &[code, total] : totals) {
        const int index = d.accountIndex(code);
        ASSERT_GE(index, 0);
        EXPECT_EQ(d.activeProposal().figures[index].proposedBudget, total.first) << code.toStdString();
    }
}

TEST(DemoDistrict, ScaleOptionsGiveTheAskedSizes)
{
    const District &d = large();
    EXPECT_EQ(d.accounts.size(), 10000u);
    EXPECT_EQ(std::count_if(d.folders.begin(), d.folders.end(), [](const auto &f) { return f.nodeType == u'T'; }),
              1000);
    const auto general = std::count_if(d.accounts.begin(), d.accounts.end(), isGeneralExpenditure);
    EXPECT_EQ(general, 5000);
    // A smaller size than the base chart keeps the base chart.
    EXPECT_EQ(makeDistrict({.accounts = 10, .folders = 10}), base());
}

TEST(DemoDistrict, TownsBalancesAndReportFormatsAreUsable)
{
    const District &d = base();
    EXPECT_GE(d.towns.size(), 5u);
    for (const Town &t : d.towns) {
        EXPECT_GT(t.currentRate, 0.5);
        EXPECT_LE(t.currentRate, 1.0);
        EXPECT_LT(t.currentTaxableAssessment, t.currentAssessment);
    }
    EXPECT_EQ(d.fundBalances.size(), d.funds.size());
    static const QSet<QString> headingKeys{"CurBudget",      "AdjustedBudget", "CurExpense",   "ProjectedAmount",
                                           "ProposedBudget", "Increment",      "IncPercent",   "PriorBudget",
                                           "PriorExpense",   "Prior2Budget",   "Prior2Expense"};
    for (const ReportFormat &r : d.reportFormats) {
        EXPECT_LE(r.headings.size(), 5u); // seven columns with the two default ones
        EXPECT_NE(d.fund(r.fundId), nullptr);
        for (const QString &key : r.headings)
            EXPECT_TRUE(headingKeys.contains(key)) << key.toStdString();
    }
}

// Adopted budgets balance: the general fund's revenues, the property tax
// included, equal its appropriations in each year's budget and each proposal.
TEST(DemoDistrict, GeneralFundRevenuesEqualAppropriationsInEveryBudget)
{
    for (const District *d : {&base(), &large()}) {
        const auto inFund = [](const Account &a) { return a.fundId == u"A"; };
        std::map<int, std::array<Currency, 2>> years; // year -> appropriations, revenues
        std::vector<std::array<Currency, 2>> proposals(d->proposals.size());
        for (std::size_t i = 0; i < d->accounts.size(); ++i) {
            const Account &a = d->accounts[i];
            if (!inFund(a))
                continue;
            const int side = a.ledger == u'E' ? 0 : 1;
            for (const YearFigures &y : a.history)
                years[y.year][side] += y.originalBudget;
            for (std::size_t p = 0; p < d->proposals.size(); ++p) {
                const ProposalFigures &f = d->proposals[p].figures[i];
                // The amount rule: components where the account takes part in one.
                proposals[p][side] += a.catA || a.catP || a.catC
                                          ? (a.catA ? f.catA : Currency()) + (a.catP ? f.catP : Currency()) +
                                                (a.catC ? f.catC : Currency())
                                          : f.proposedBudget;
            }
        }
        ASSERT_EQ(years.size(), 3u);
        for (const auto &[year, sides] : years)
            EXPECT_EQ(sides[0], sides[1]) << year;
        for (std::size_t p = 0; p < proposals.size(); ++p)
            EXPECT_EQ(proposals[p][0], proposals[p][1]) << d->proposals[p].id.toStdString();
    }

    // The tax line carries about half of the budget, grows modestly, and has nearly all come in.
    const District &d = base();
    const Account &tax = d.accounts[d.accountIndex("A1001")];
    for (std::size_t y = 0; y < tax.history.size(); ++y) {
        const YearFigures &year = tax.history[y];
        EXPECT_GE(year.actual, scaled(year.originalBudget, 99, 100, Cent));
        EXPECT_LE(year.actual, year.originalBudget);
        if (y > 0) {
            EXPECT_GT(year.originalBudget, tax.history[y - 1].originalBudget);
            EXPECT_LT(year.originalBudget, scaled(tax.history[y - 1].originalBudget, 110, 100, Cent));
        }
    }
    for (const Proposal &p : d.proposals) {
        const Currency levy = p.figures[std::size_t(d.accountIndex("A1001"))].proposedBudget;
        EXPECT_GT(levy, scaled(tax.currentBudget, 95, 100, Cent)) << p.id.toStdString();
        EXPECT_LT(levy, scaled(tax.currentBudget, 110, 100, Cent)) << p.id.toStdString();
    }

    // The appropriated fund balance stays within the balance on hand and is never "received".
    const Account &fundBalance = d.accounts[d.accountIndex("A0599")];
    const auto generalBalance = std::find_if(d.fundBalances.begin(), d.fundBalances.end(),
                                             [](const FundBalance &b) { return b.fundId == u"A"; });
    for (const Proposal &p : d.proposals)
        EXPECT_LT(p.figures[std::size_t(d.accountIndex("A0599"))].proposedBudget, generalBalance->current);
    for (const YearFigures &year : fundBalance.history)
        EXPECT_TRUE(year.actual.isZero());
}
