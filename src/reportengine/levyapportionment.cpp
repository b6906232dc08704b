#include "levyapportionment.h"

#include <gmpxx.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <optional>

namespace {

// Rates are held exactly as whole hundred-millionths of a fraction: eight
// places cover what the state publishes (percentages to two places) and any
// fraction typed with more.
constexpr long rateUnits = 100'000'000;
constexpr long rawPerCent = Currency::Scale / 100;
// Raw units of a rate per 1,000 from cents over a raw amount: cents / 100 / (raw / 10^4) x 1,000 x 10^4.
constexpr long perThousand = 1'000'000'000;

// numerator / denominator (denominator > 0) rounded half away from zero.
mpz_class roundedQuotient(const mpz_class &numerator, const mpz_class &denominator)
{
    mpz_class quotient = (abs(numerator) * 2 + denominator) / (denominator * 2);
    return numerator < 0 ? mpz_class(-quotient) : quotient;
}

// The figure as an amount; nothing when it is beyond what an amount holds
// (a full value or rate of a town at a minute rate, for instance).
std::optional<Currency> toCurrency(const mpz_class &raw)
{
    return raw.fits_slong_p() ? std::optional(Currency::fromRaw(raw.get_si())) : std::nullopt;
}

// Shares never exceed the levy, which is an amount already.
Currency fromCents(const mpz_class &cents)
{
    return Currency::fromRaw(mpz_class(cents * rawPerCent).get_si());
}

// A full value in raw units as numerator / denominator, to the cent.
std::optional<Currency> fullValueToCent(const mpz_class &numerator, const mpz_class &denominator)
{
    return toCurrency(roundedQuotient(numerator, denominator * rawPerCent) * rawPerCent);
}

struct ExactTown {
    mpz_class assessment; // raw ten-thousandths
    mpz_class rate;       // hundred-millionths of a fraction
};

QString refusal(const LevyTown &town, const QString &what)
{
    return QStringLiteral("The levy cannot be apportioned: the equalization district \"%1\" has %2.")
        .arg(town.name.trimmed(), what);
}

} // namespace

bool equalizationRatesArePercentages(const std::vector<double> &storedRates)
{
    return std::any_of(storedRates.begin(), storedRates.end(), [](double rate) { return rate > 2; });
}

LevyApportionment apportionLevy(Currency levy, const std::vector<LevyTown> &towns)
{
    LevyApportionment result;
    const mpz_class levyCents = roundedQuotient(mpz_class(levy.raw()), rawPerCent);
    result.levy = fromCents(levyCents);
    if (towns.empty()) {
        result.error = QStringLiteral("The levy cannot be apportioned: there are no equalization districts.");
        return result;
    }
    std::vector<double> stored;
    for (const LevyTown &town : towns)
        stored.push_back(town.equalizationRate);
    result.ratesArePercentages = equalizationRatesArePercentages(stored);
    const double scale = result.ratesArePercentages ? rateUnits / 100 : rateUnits;

    std::vector<ExactTown> exact;
    for (const LevyTown &town : towns) {
        const double units = std::round(town.equalizationRate * scale);
        if (!std::isfinite(units) || units <= 0 || units > 1e17) {
            result.error = refusal(
                town,
                QStringLiteral("the equalization rate %1, which is not a rate above zero").arg(town.equalizationRate));
            return result;
        }
        if (town.taxableAssessment.raw() <= 0) {
            result.error = refusal(town, QStringLiteral("a taxable assessment of %1; it must be above zero")
                                             .arg(town.taxableAssessment.toDisplayText()));
            return result;
        }
        exact.push_back({mpz_class(town.taxableAssessment.raw()), mpz_class(static_cast<long>(units))});
    }

    // Full value_i = assessment_i / rate_i. Over the common denominator P (the
    // product of the rates) it is weight_i / P with weight_i = assessment_i * P / rate_i,
    // so the quotas levy * weight_i / total weight share one denominator and
    // their remainders compare as integers.
    const mpz_class product = std::accumulate(exact.begin(), exact.end(), mpz_class(1),
                                              [](const mpz_class &p, const ExactTown &t) { return p * t.rate; });
    std::vector<mpz_class> weights;
    mpz_class totalWeight;
    for (const ExactTown &town : exact) {
        weights.push_back(town.assessment * (product / town.rate));
        totalWeight += weights.back();
    }

    std::vector<mpz_class> shares(exact.size());
    std::vector<mpz_class> remainders(exact.size());
    mpz_class allotted;
    for (std::size_t i = 0; i < exact.size(); ++i) {
        const mpz_class quota = levyCents * weights[i];
        mpz_fdiv_qr(shares[i].get_mpz_t(), remainders[i].get_mpz_t(), quota.get_mpz_t(), totalWeight.get_mpz_t());
        allotted += shares[i];
    }
    std::vector<std::size_t> order(exact.size());
    std::iota(order.begin(), order.end(), std::size_t(0));
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t a, std::size_t b) { return remainders[a] > remainders[b]; });
    // Rounding every quota down leaves fewer cents missing than there are towns.
    const long missing = mpz_class(levyCents - allotted).get_si();
    for (long k = 0; k < missing; ++k)
        shares[order[std::size_t(k)]] += 1;

    for (std::size_t i = 0; i < exact.size(); ++i) {
        const auto fullValue = fullValueToCent(exact[i].assessment * rateUnits, exact[i].rate);
        const auto rate = toCurrency(roundedQuotient(shares[i] * perThousand, exact[i].assessment));
        if (!fullValue || !rate) {
            result.error = refusal(towns[i], QStringLiteral("a full value or tax rate beyond what an amount holds "
                                                            "(equalization rate %1, taxable assessment %2)")
                                                 .arg(towns[i].equalizationRate)
                                                 .arg(towns[i].taxableAssessment.toDisplayText()));
            result.towns.clear();
            return result;
        }
        result.towns.push_back({towns[i].name, *fullValue, fromCents(shares[i]), *rate});
    }
    // The total full value is total weight / P in raw units.
    const mpz_class totalFullValue = totalWeight * rateUnits;
    const auto total = fullValueToCent(totalFullValue, product);
    if (!total) {
        result.error = QStringLiteral("The levy cannot be apportioned: the total full value of the equalization "
                                      "districts is beyond what an amount holds.");
        result.towns.clear();
        return result;
    }
    result.totalFullValue = *total;
    result.fullValueRate = *toCurrency(roundedQuotient(levyCents * perThousand * product, totalFullValue));
    return result;
}
