#include "exactarithmetic.h"

#include <cstdint>
#include <limits>

namespace {
using Wide = __int128;

// numerator / denominator, rounded half away from zero; denominator is not zero.
Wide divideRounded(Wide numerator, Wide denominator)
{
    Wide quotient = numerator / denominator;
    const Wide remainder = numerator % denominator;
    const Wide twiceRemainder = remainder < 0 ? -2 * remainder : 2 * remainder;
    const Wide magnitude = denominator < 0 ? -denominator : denominator;
    if (twiceRemainder >= magnitude)
        quotient += (numerator < 0) == (denominator < 0) ? 1 : -1;
    return quotient;
}

std::optional<Currency> narrowed(Wide raw)
{
    if (raw > std::numeric_limits<std::int64_t>::max() || raw < std::numeric_limits<std::int64_t>::min())
        return std::nullopt;
    return Currency::fromRaw(static_cast<std::int64_t>(raw));
}
} // namespace

std::optional<Currency> addExact(Currency a, Currency b)
{
    return narrowed(Wide(a.raw()) + b.raw());
}

std::optional<Currency> subtractExact(Currency a, Currency b)
{
    return narrowed(Wide(a.raw()) - b.raw());
}

std::optional<Currency> multiplyExact(Currency a, Currency b)
{
    return narrowed(divideRounded(Wide(a.raw()) * b.raw(), Currency::Scale));
}

std::optional<Currency> divideExact(Currency a, Currency b)
{
    if (b.isZero())
        return std::nullopt;
    return narrowed(divideRounded(Wide(a.raw()) * Currency::Scale, b.raw()));
}

std::optional<Currency> percentExact(Currency a, Currency b)
{
    if (b.isZero())
        return std::nullopt;
    return narrowed(divideRounded(Wide(a.raw()) * Currency::Scale * 100, b.raw()));
}

std::optional<Currency> roundExact(Currency value, int decimals)
{
    Wide unit = 1;
    for (int place = decimals; place < 4; ++place)
        unit *= 10;
    return narrowed(divideRounded(value.raw(), unit) * unit);
}
