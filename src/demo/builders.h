#pragma once

#include "district.h"

#include <cstdint>

// The steps makeDistrict runs, in this order, each on the district built so far.
namespace demo::detail {

// Buildings, programs, the three folder views and the account codes, with
// each account's figures (needs funds and years).
void addChart(District &district, const DistrictOptions &options);
// The three proposals, line items, the balanced general fund, fund balances
// and towns (needs accounts).
void addBudgetFigures(District &district, std::uint64_t seed);
// Balances the general fund's budgets, each year's and each proposal's: the
// property tax line takes what the appropriations need beyond the other
// revenues (needs the accounts' figures and the proposals).
void balanceGeneralFund(District &district, std::uint64_t seed);
// Figures of one account from its typical yearly size (whole dollars).
void fillAccountFigures(Account &account, std::int64_t typicalDollars, const std::vector<FiscalYear> &years,
                        std::uint64_t seed);

} // namespace demo::detail
