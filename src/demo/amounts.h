#pragma once

#include "chart.h"
#include "currency.h"
#include "seededrandom.h"

#include <QString>

#include <array>
#include <cstdint>

// Amount arithmetic for the demo district: whole-number ratios on the exact
// currency type, rounded half away from zero to a chosen unit.
namespace demo {

constexpr std::int64_t Cent = Currency::Scale / 100;
constexpr std::int64_t Dollar = Currency::Scale;

inline Currency dollars(std::int64_t whole)
{
    return Currency::fromUnits(whole);
}

// amount * numerator / denominator, rounded to a multiple of unit (raw ten-thousandths).
Currency scaled(Currency amount, std::int64_t numerator, std::int64_t denominator, std::int64_t unit);

// The amount split over the shares of the components; the parts sum to it exactly.
struct ComponentAmounts {
    Currency a, p, c;
};
ComponentAmounts splitByShares(Currency amount, const chart::ComponentShare &share);
// The share table's entry for a set of flags, or nullptr when no flag is set.
const chart::ComponentShare *shareFor(bool catA, bool catP, bool catC);

// A generator whose stream depends only on the seed and a name, so an
// account's figures do not change when others are added around it.
SeededRandom streamFor(std::uint64_t seed, const QString &name);

} // namespace demo
