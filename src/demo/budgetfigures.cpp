#include "amounts.h"
#include "builders.h"

namespace demo::detail {

namespace {

ProposalFigures figuresOf(const Account &account, Currency total)
{
    ProposalFigures figures;
    figures.proposedBudget = total;
    if (const auto *share = shareFor(account.catA, account.catP, account.catC)) {
        const ComponentAmounts parts = splitByShares(total, *share);
        figures.catA = parts.a;
        figures.catP = parts.p;
        figures.catC = parts.c;
    }
    return figures;
}

void addProposals(District &district, std::uint64_t seed)
{
    Proposal recommended{"1", "Superintendent's Recommended", "O", true, {}};
    Proposal board{"2", "Board Adjusted Budget", "O", false, {}};
    Proposal contingency{"3", "Contingency Budget", "C", false, {}};
    for (const Account &account : district.accounts) {
        SeededRandom random = streamFor(seed, QLatin1String("proposal ") + account.code);
        const Currency first = scaled(account.currentBudget, random.uniform(990, 1045), 1000, 100 * Dollar);
        const Currency second = scaled(first, random.uniform(975, 1000), 1000, 100 * Dollar);
        recommended.figures.push_back(figuresOf(account, first));
        board.figures.push_back(figuresOf(account, second));
        contingency.figures.push_back(figuresOf(account, account.currentBudget));
    }
    district.proposals = {std::move(recommended), std::move(board), std::move(contingency)};
}

struct LineSpec {
    const char *code;
    const char *text; // %1 is the line number
    int lowDollars;
    int highDollars;
};

constexpr LineSpec lineSpecs[] = {
    {"A2110.120.01", "Classroom Teacher - Position %1", 56000, 98000},
    {"A2110.120.02", "Classroom Teacher - Position %1", 56000, 98000},
    {"A2110.120.03", "Subject Teacher - Position %1", 58000, 104000},
    {"A2110.120.04", "Subject Teacher - Position %1", 58000, 108000},
    {"A1240.150", "Central Office Administrator %1", 120000, 215000},
    {"A5540.400", "Contract Route %1 - Out-of-District", 18000, 62000},
    {"A2250.490", "BOCES Special Class Placement %1", 45000, 90000},
};

// Line items of the active proposal's larger accounts: as many positions as
// the planned amount pays for, their drawn salaries scaled to the plan (whole
// dollars, the last line taking the rounding), so the proposal's figure is the
// sum of its lines, as forwarding the total would leave it, and stays the plan.
void addLineItems(District &district, std::uint64_t seed)
{
    Proposal &active = district.proposals.front();
    for (const LineSpec &spec : lineSpecs) {
        const int index = district.accountIndex(spec.code);
        if (index < 0)
            continue;
        SeededRandom random = streamFor(seed, QLatin1String("lines ") + spec.code);
        const Currency planned = active.figures[index].proposedBudget;
        const std::int64_t average = (spec.lowDollars + spec.highDollars) / 2;
        const int count =
            int(std::clamp<std::int64_t>((planned.raw() + average * Dollar / 2) / (average * Dollar), 1, 250));
        std::vector<Currency> drawn;
        Currency drawnTotal;
        for (int number = 1; number <= count; ++number) {
            drawn.push_back(dollars(random.uniform(spec.lowDollars, spec.highDollars)));
            drawnTotal += drawn.back();
        }
        Currency total;
        for (int number = 1; number <= count; ++number) {
            const Currency amount = number == count ? planned - total
                                                    : scaled(drawn[number - 1], planned.raw(), drawnTotal.raw(), Dollar);
            district.lineItems.push_back(
                {spec.code, number, QString(spec.text).arg(number, 2, 10, QChar(u'0')), amount});
            total += amount;
        }
        active.figures[index] = figuresOf(district.accounts[index], total);
    }
}

void addFundBalances(District &district, std::uint64_t seed)
{
    for (const auto &fund : chart::funds()) {
        SeededRandom random = streamFor(seed, QLatin1String("balance ") + fund.id);
        const Currency previous =
            scaled(dollars(fund.balanceThousands * 1000LL), random.uniform(900, 1100), 1000, Cent);
        const Currency current = scaled(previous, random.uniform(950, 1080), 1000, Cent);
        district.fundBalances.push_back({fund.id, current, previous});
    }
}

void addTowns(District &district, std::uint64_t seed)
{
    static constexpr const char *names[] = {"Town of Northfield", "Town of Ashgrove",    "Town of Brenton",
                                            "Town of Millbury",   "Town of East Harlan", "Town of Larkspur"};
    for (const char *name : names) {
        SeededRandom random = streamFor(seed, QLatin1String("town ") + name);
        Town town;
        town.name = name;
        town.priorRate = double(random.uniform(6200, 10000)) / 10000;
        town.currentRate = double(random.uniform(6200, 10000)) / 10000;
        town.priorAssessment = dollars(random.uniform(80, 600) * 1000000LL + random.uniform(0, 999999));
        town.priorTaxableAssessment = scaled(town.priorAssessment, random.uniform(800, 950), 1000, Dollar);
        town.currentAssessment = scaled(town.priorAssessment, random.uniform(990, 1060), 1000, Dollar);
        town.currentTaxableAssessment = scaled(town.currentAssessment, random.uniform(800, 950), 1000, Dollar);
        district.towns.push_back(town);
    }
}

} // namespace

void addBudgetFigures(District &district, std::uint64_t seed)
{
    addProposals(district, seed);
    addLineItems(district, seed);
    balanceGeneralFund(district, seed);
    addFundBalances(district, seed);
    addTowns(district, seed);
}

} // namespace demo::detail
