#include "amounts.h"
#include "builders.h"

#include <QHash>

namespace demo::detail {

namespace {

bool inGeneralFund(const Account &account)
{
    return account.fundId == QLatin1String("A");
}

// What a general-fund account adds to the property tax the budget needs:
// appropriations raise it, the other revenues lower it.
Currency towardsTax(const Account &account, Currency amount)
{
    return account.ledger == u'E' ? amount : -amount;
}

// Each year's adopted budget: the tax is what the appropriations need beyond
// the other revenues. Taxes are collected in the fall and the county makes up
// what is unpaid, so by the spring nearly the whole levy has come in.
void balanceYears(District &district, Account &tax, std::uint64_t seed)
{
    QHash<int, Currency> needed;
    for (const Account &account : district.accounts) {
        if (!inGeneralFund(account) || &account == &tax)
            continue;
        for (const YearFigures &year : account.history)
            needed[year.year] += towardsTax(account, year.originalBudget);
    }
    for (YearFigures &year : tax.history) {
        SeededRandom random = streamFor(seed, QStringLiteral("levy collected %1").arg(year.year));
        year.originalBudget = needed.value(year.year);
        year.adjustments = {};
        year.actual = scaled(year.originalBudget, random.uniform(9950, 10000), 10000, Cent);
        if (year.year == district.currentYear().year) {
            tax.currentBudget = year.originalBudget;
            tax.projectedAmount = year.actual;
        }
    }
}

// Each proposal's tax line is what its appropriations need beyond its other revenues.
void balanceProposals(District &district, int taxIndex)
{
    for (Proposal &proposal : district.proposals) {
        Currency needed;
        for (std::size_t i = 0; i < district.accounts.size(); ++i)
            if (inGeneralFund(district.accounts[i]) && int(i) != taxIndex)
                needed += towardsTax(district.accounts[i], proposal.figures[i].proposedBudget);
        proposal.figures[std::size_t(taxIndex)] = {needed, {}, {}, {}};
    }
}

} // namespace

void balanceGeneralFund(District &district, std::uint64_t seed)
{
    // The appropriated fund balance is drawn from the balance on hand, never
    // received; the year is expected to use all of it.
    Account &fundBalance = district.accounts[std::size_t(district.accountIndex(QLatin1String(chart::fundBalanceCode)))];
    for (YearFigures &year : fundBalance.history)
        year.actual = {};
    fundBalance.projectedAmount = fundBalance.currentBudget;

    const int tax = district.accountIndex(QLatin1String(chart::propertyTaxCode));
    balanceYears(district, district.accounts[std::size_t(tax)], seed);
    balanceProposals(district, tax);
}

} // namespace demo::detail
