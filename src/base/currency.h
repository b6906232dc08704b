#pragma once

#include <QString>

#include <compare>
#include <cstdint>
#include <optional>

// An exact amount of money: a 64-bit count of ten-thousandths, the same range
// and precision as the fund-accounting product's currency fields. Amounts
// never pass through binary floating point except when a database driver
// hands one back, and then they are rounded to four places at once.
class Currency {
public:
    static constexpr std::int64_t Scale = 10000;

    constexpr Currency() = default;
    static constexpr Currency fromRaw(std::int64_t tenThousandths) { return Currency(tenThousandths); }
    static constexpr Currency fromUnits(std::int64_t whole) { return Currency(whole * Scale); }
    // Rounds half away from zero to four places; nullopt when out of range or not finite.
    static std::optional<Currency> fromDouble(double value);
    // Accepts what users type and what databases print: "1234.5", "-1,234.50",
    // "$1,234", "(12.00)" for a negative, surrounding blanks. More than four
    // decimals are rounded half away from zero. nullopt for anything else.
    static std::optional<Currency> parse(const QString &text);

    constexpr std::int64_t raw() const { return value_; }
    double toDouble() const { return double(value_) / Scale; }
    bool isZero() const { return value_ == 0; }

    // Plain decimal text for SQL and files: "-1234.5", "0", "12.0001" (no
    // grouping, no trailing zeros).
    QString toSqlText() const;
    // The grids' amount format "#,##0.00": "1,234.50", "-0.05".
    QString toDisplayText() const;

    constexpr Currency operator-() const { return Currency(-value_); }
    Currency &operator+=(Currency other) { value_ += other.value_; return *this; }
    Currency &operator-=(Currency other) { value_ -= other.value_; return *this; }
    friend Currency operator+(Currency a, Currency b) { return a += b; }
    friend Currency operator-(Currency a, Currency b) { return a -= b; }
    friend constexpr auto operator<=>(Currency, Currency) = default;

private:
    constexpr explicit Currency(std::int64_t raw) : value_(raw) {}
    std::int64_t value_ = 0;
};
