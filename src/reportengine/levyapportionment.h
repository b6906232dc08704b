#pragma once

#include "currency.h"

#include <QString>

#include <vector>

// One equalization district (a town or the part of a town inside the school
// district) as the apportionment needs it.
struct LevyTown {
    QString name;
    Currency taxableAssessment;
    // As stored in TaxRate: a fraction (0.8734) or a percentage (87.34); see
    // equalizationRatesArePercentages.
    double equalizationRate = 0;
};

struct TownLevyShare {
    QString name;
    // Taxable assessment divided by the equalization rate, rounded to the cent
    // (the shares are computed from the unrounded quotient).
    Currency fullValue;
    // The town's part of the levy, a whole number of cents.
    Currency share;
    // share / taxable assessment x 1,000, rounded half away from zero to four decimals.
    Currency ratePerThousand;
};

struct LevyApportionment {
    // The levy as apportioned: rounded half away from zero to the cent.
    Currency levy;
    std::vector<TownLevyShare> towns; // in the order the towns were given
    Currency totalFullValue;          // the exact total, rounded to the cent
    // levy / total full value x 1,000, four decimals (what a town at 100 % pays).
    Currency fullValueRate;
    bool ratesArePercentages = false;
    // Empty when the levy was apportioned; otherwise why not, naming the town.
    QString error;

    bool ok() const { return error.isEmpty(); }
};

// How one list of stored rates is read: when any of them exceeds 2 they are
// all percentages (87.34 means 87.34 %), otherwise all fractions (0.8734, and
// 1.05 for 105 %). A district whose every town is at 2 % or less stores fractions.
bool equalizationRatesArePercentages(const std::vector<double> &storedRates);

// Apportions the levy over the towns by full value. Every share is the exact
// quota rounded down to the cent, and the cents still missing go one each to
// the towns with the largest remainders (the earlier town on a tie), so the
// shares add up to the levy exactly and none is a cent or more from its quota.
// A town with a rate or taxable assessment that is not above zero is refused by name.
LevyApportionment apportionLevy(Currency levy, const std::vector<LevyTown> &towns);
