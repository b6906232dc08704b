// Decoded field values: a small closed set of kinds. Exact decimals are kept
// as a scaled integer, never as binary floating point.
#pragma once

#include <cstdint>
#include <string>
#include <variant>

namespace recman {

struct Null {
    bool operator==(const Null &) const = default;
};

// unscaled / 10^scale, e.g. {-1234567, 2} = -12345.67
struct Decimal {
    std::int64_t unscaled = 0;
    int scale = 0;
    bool operator==(const Decimal &) const = default;
};

struct Date {
    int year = 0; // four digits
    int month = 0;
    int day = 0;
    bool operator==(const Date &) const = default;
};

struct Time {
    int hour = 0;
    int minute = 0;
    int second = 0;
    int hundredths = 0;
    bool operator==(const Time &) const = default;
};

// Text values are UTF-8.
using Value = std::variant<Null, std::string, std::int64_t, double, Decimal, Date, Time, bool>;

// Plain text form: "-12345.67", "2024-07-01", "13:05:09.50", "true", "" for null.
std::string toText(const Value &value);

} // namespace recman
