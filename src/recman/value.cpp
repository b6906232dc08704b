#include "value.h"

#include <cstdio>

namespace recman {

namespace {

std::string decimalText(const Decimal &value)
{
    const bool negative = value.unscaled < 0;
    std::uint64_t magnitude =
        negative ? 0 - static_cast<std::uint64_t>(value.unscaled) : static_cast<std::uint64_t>(value.unscaled);
    std::string digits = std::to_string(magnitude);
    if (value.scale > 0) {
        const auto scale = static_cast<std::size_t>(value.scale);
        if (digits.size() <= scale)
            digits.insert(0, scale + 1 - digits.size(), '0');
        digits.insert(digits.size() - scale, 1, '.');
    }
    return negative ? "-" + digits : digits;
}

struct TextOf {
    std::string operator()(const Null &) const { return {}; }
    std::string operator()(const std::string &text) const { return text; }
    std::string operator()(std::int64_t number) const { return std::to_string(number); }
    std::string operator()(double number) const
    {
        char text[40];
        std::snprintf(text, sizeof text, "%.17g", number);
        return text;
    }
    std::string operator()(const Decimal &number) const { return decimalText(number); }
    std::string operator()(const Date &date) const
    {
        char text[32];
        std::snprintf(text, sizeof text, "%04d-%02d-%02d", date.year, date.month, date.day);
        return text;
    }
    std::string operator()(const Time &time) const
    {
        char text[32];
        std::snprintf(text, sizeof text, "%02d:%02d:%02d.%02d", time.hour, time.minute, time.second, time.hundredths);
        return text;
    }
    std::string operator()(bool flag) const { return flag ? "true" : "false"; }
};

} // namespace

std::string toText(const Value &value)
{
    return std::visit(TextOf{}, value);
}

} // namespace recman
