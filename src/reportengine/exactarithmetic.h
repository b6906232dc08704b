#pragma once

#include "currency.h"

#include <optional>

// Exact arithmetic on four-place amounts. Products and quotients are formed in
// 128 bits and rounded half away from zero to four places, so no figure ever
// passes through binary floating point. Each returns nullopt when the result
// does not fit a Currency; the divisions also when the divisor is zero.
std::optional<Currency> addExact(Currency a, Currency b);
std::optional<Currency> subtractExact(Currency a, Currency b);
std::optional<Currency> multiplyExact(Currency a, Currency b);
std::optional<Currency> divideExact(Currency a, Currency b);
// a as a percentage of b: a / b * 100, rounded once at the end.
std::optional<Currency> percentExact(Currency a, Currency b);
// Rounds half away from zero to `decimals` places (0 to 4).
std::optional<Currency> roundExact(Currency value, int decimals);
