#include "amounts.h"

#include <cstring>

namespace demo {

Currency scaled(Currency amount, std::int64_t numerator, std::int64_t denominator, std::int64_t unit)
{
    // Work in units of `unit` so the rounding happens once, at the end.
    const __int128 product = __int128(amount.raw()) * numerator;
    const __int128 divisor = __int128(denominator) * unit;
    __int128 quotient = product / divisor;
    const __int128 remainder = product % divisor;
    const __int128 twice = remainder < 0 ? -2 * remainder : 2 * remainder;
    const __int128 absDivisor = divisor < 0 ? -divisor : divisor;
    if (twice >= absDivisor)
        quotient += ((product < 0) != (divisor < 0)) ? -1 : 1;
    return Currency::fromRaw(std::int64_t(quotient * unit));
}

const chart::ComponentShare *shareFor(bool catA, bool catP, bool catC)
{
    QByteArray letters;
    if (catA)
        letters += 'A';
    if (catP)
        letters += 'P';
    if (catC)
        letters += 'C';
    for (const auto &share : chart::componentShares()) {
        if (letters == share.components)
            return &share;
    }
    return nullptr;
}

ComponentAmounts splitByShares(Currency amount, const chart::ComponentShare &share)
{
    ComponentAmounts parts;
    parts.a = scaled(amount, share.a, 100, Cent);
    parts.c = scaled(amount, share.c, 100, Cent);
    // The program part, or the last flagged one, takes what rounding left over.
    if (share.p > 0)
        parts.p = amount - parts.a - parts.c;
    else if (share.c > 0)
        parts.c = amount - parts.a;
    else
        parts.a = amount;
    return parts;
}

SeededRandom streamFor(std::uint64_t seed, const QString &name)
{
    std::uint64_t hash = 0xcbf29ce484222325ULL; // FNV-1a over the UTF-16 units
    for (const QChar c : name) {
        hash ^= c.unicode();
        hash *= 0x100000001b3ULL;
    }
    return SeededRandom(seed ^ hash);
}

} // namespace demo
