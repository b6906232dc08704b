#pragma once

#include <cstdint>

namespace demo {

// A small seeded generator (SplitMix64) whose output is the same on every
// platform and standard library, which the library's distributions are not.
class SeededRandom {
public:
    explicit SeededRandom(std::uint64_t seed) : state_(seed) {}

    std::uint64_t next();
    // A whole number in [low, high]; low <= high.
    std::int64_t uniform(std::int64_t low, std::int64_t high);
    // True with the given chance in thousandths.
    bool chance(int perMille) { return uniform(0, 999) < perMille; }

private:
    std::uint64_t state_;
};

} // namespace demo
