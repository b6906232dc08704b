#include "amounts.h"
#include "builders.h"

namespace demo::detail {

namespace {

Currency withCents(SeededRandom &random, Currency amount)
{
    return amount + Currency::fromRaw(random.uniform(0, 99) * Cent);
}

YearFigures yearFigures(SeededRandom &random, const Account &account, const FiscalYear &year, Currency budget)
{
    const bool revenue = account.ledger == u'R';
    YearFigures figures;
    figures.year = year.year;
    figures.originalBudget = budget;
    if (random.chance(300))
        figures.adjustments = scaled(budget, random.uniform(-50, 80), 1000, 10 * Dollar);
    const Currency adjusted = figures.adjustedBudget();
    const Currency fullYear = revenue ? scaled(adjusted, random.uniform(960, 1040), 1000, Dollar)
                                      : scaled(adjusted, random.uniform(880, 995), 1000, Dollar);
    figures.actual = withCents(random, scaled(fullYear, year.monthsPosted * random.uniform(92, 108), 12 * 100, Dollar));
    if (!revenue && year.monthsPosted < 12)
        figures.encumbered = withCents(random, scaled(adjusted, random.uniform(0, 40), 1000, Dollar));
    return figures;
}

} // namespace

void fillAccountFigures(Account &account, std::int64_t typicalDollars, const std::vector<FiscalYear> &years,
                        std::uint64_t seed)
{
    SeededRandom random = streamFor(seed, account.code);
    // Budgets grow a few percent a year; walk back from the current year.
    const Currency current = scaled(dollars(typicalDollars), random.uniform(90, 110), 100, 100 * Dollar);
    std::vector<Currency> budgets;
    Currency budget = current;
    for (auto year = years.rbegin(); year != years.rend(); ++year) {
        if (year->status == u'P')
            continue;
        budgets.insert(budgets.begin(), budget);
        budget = scaled(budget, 1000, random.uniform(1000, 1045), 100 * Dollar);
    }
    std::size_t index = 0;
    for (const FiscalYear &year : years) {
        if (year.status == u'P')
            continue;
        const Currency yearBudget = budgets[index++];
        if (account.historical && year.status == u'C')
            continue; // retired before this year opened
        account.history.push_back(yearFigures(random, account, year, yearBudget));
        if (year.status == u'C') {
            const YearFigures &now = account.history.back();
            account.currentBudget = now.originalBudget;
            // The posted months' actual extended over the whole year.
            account.projectedAmount = scaled(now.actual, 12, year.monthsPosted, Dollar);
        }
    }
    if (const auto *share = shareFor(account.catA, account.catP, account.catC)) {
        const ComponentAmounts parts = splitByShares(account.currentBudget, *share);
        account.catACurBudget = parts.a;
        account.catPCurBudget = parts.p;
        account.catCCurBudget = parts.c;
    }
}

} // namespace demo::detail
