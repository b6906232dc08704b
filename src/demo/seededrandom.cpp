#include "seededrandom.h"

namespace demo {

std::uint64_t SeededRandom::next()
{
    std::uint64_t z = (state_ += 0x9e3779b97f4a7c15ULL);
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9ULL;
    z = (z ^ (z >> 27)) * 0x94d049bb133111ebULL;
    return z ^ (z >> 31);
}

std::int64_t SeededRandom::uniform(std::int64_t low, std::int64_t high)
{
    const std::uint64_t span = std::uint64_t(high - low) + 1;
    if (span == 0) // the whole 64-bit range
        return std::int64_t(next());
    // Reject the top sliver that would bias the remainder.
    const std::uint64_t limit = UINT64_MAX - UINT64_MAX % span;
    std::uint64_t value = next();
    while (value >= limit)
        value = next();
    return low + std::int64_t(value % span);
}

} // namespace demo
