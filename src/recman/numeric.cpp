#include "numeric.h"

#include <cmath>
#include <cstdlib>
#include <limits>

namespace recman {

bool DecimalDigits::isZero() const
{
    for (auto digit : digits)
        if (digit != 0)
            return false;
    return true;
}

DecimalDigits unpackDecimal(Bytes raw)
{
    DecimalDigits result;
    if (raw.empty()) {
        result.valid = false;
        return result;
    }
    for (std::size_t i = 0; i < raw.size(); ++i) {
        const std::uint8_t high = raw[i] >> 4;
        const std::uint8_t low = raw[i] & 0x0F;
        result.digits.push_back(high);
        if (i + 1 < raw.size())
            result.digits.push_back(low);
        else
            result.negative = (low == 0x0D || low == 0x0B);
    }
    for (auto digit : result.digits)
        if (digit > 9)
            result.valid = false;
    const std::uint8_t sign = raw.back() & 0x0F;
    if (sign < 0x0A)
        result.valid = false;
    return result;
}

namespace {

// Decimal digits of |value|, least significant first.
std::vector<std::uint8_t> reversedDigits(std::int64_t value)
{
    std::vector<std::uint8_t> digits;
    // Work on the unsigned magnitude so INT64_MIN is representable.
    std::uint64_t magnitude = value < 0 ? 0 - static_cast<std::uint64_t>(value) : static_cast<std::uint64_t>(value);
    while (magnitude != 0) {
        digits.push_back(static_cast<std::uint8_t>(magnitude % 10));
        magnitude /= 10;
    }
    return digits;
}

} // namespace

bool packDecimal(std::int64_t unscaled, MutableBytes out)
{
    if (out.empty())
        return false;
    const auto digits = reversedDigits(unscaled);
    const std::size_t capacity = out.size() * 2 - 1;
    if (digits.size() > capacity)
        return false;
    // Nibble k counted from the right: k = 0 is the sign, k >= 1 digit k-1.
    for (std::size_t k = 0; k < out.size() * 2; ++k) {
        std::uint8_t nibble = 0;
        if (k == 0)
            nibble = unscaled < 0 ? 0x0D : 0x0F;
        else if (k - 1 < digits.size())
            nibble = digits[k - 1];
        std::uint8_t &byte = out[out.size() - 1 - k / 2];
        byte = (k % 2 == 0) ? static_cast<std::uint8_t>((byte & 0xF0) | nibble)
                            : static_cast<std::uint8_t>((byte & 0x0F) | nibble << 4);
    }
    return true;
}

namespace {

// Digit value of an overpunched trailing character, or -1. Sets negative.
int overpunchDigit(std::uint8_t c, bool &negative)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c == '{')
        return 0;
    if (c >= 'A' && c <= 'I')
        return c - 'A' + 1;
    negative = true;
    if (c == '}')
        return 0;
    if (c >= 'J' && c <= 'R')
        return c - 'J' + 1;
    negative = false;
    return -1;
}

} // namespace

DecimalDigits unpackNumericText(Bytes raw, DataType type)
{
    DecimalDigits result;
    std::size_t end = raw.size();
    if (end == 0) {
        result.valid = false;
        return result;
    }
    if (type == DataType::NumericSts) {
        const std::uint8_t sign = raw[end - 1];
        result.negative = sign == '-';
        result.valid = sign == '-' || sign == '+';
        --end;
    }
    for (std::size_t i = 0; i < end; ++i) {
        const std::uint8_t c = raw[i];
        const bool last = i + 1 == end;
        int digit = -1;
        if (c >= '0' && c <= '9')
            digit = c - '0';
        else if (c == ' ' && !last)
            digit = 0;
        else if (c == '-' && i == 0 && !last) {
            result.negative = true;
            digit = 0;
        } else if (last && type == DataType::Numeric)
            digit = overpunchDigit(c, result.negative);
        else if (last && type == DataType::NumericSa && c >= 'p' && c <= 'y') {
            digit = c - 'p';
            result.negative = true;
        }
        if (digit < 0) {
            result.valid = false;
            digit = 0;
        }
        result.digits.push_back(static_cast<std::uint8_t>(digit));
    }
    return result;
}

bool packNumericText(std::int64_t unscaled, DataType type, MutableBytes out)
{
    const std::size_t width = type == DataType::NumericSts ? out.size() - 1 : out.size();
    if (out.empty() || width == 0)
        return false;
    const auto digits = reversedDigits(unscaled);
    if (digits.size() > width)
        return false;
    for (std::size_t k = 0; k < width; ++k)
        out[width - 1 - k] = static_cast<std::uint8_t>('0' + (k < digits.size() ? digits[k] : 0));
    const bool negative = unscaled < 0;
    if (type == DataType::NumericSts) {
        out[width] = negative ? '-' : '+';
    } else if (negative) {
        std::uint8_t &last = out[width - 1];
        const int digit = last - '0';
        last = type == DataType::Numeric ? static_cast<std::uint8_t>(digit == 0 ? '}' : 'J' + digit - 1)
                                         : static_cast<std::uint8_t>('p' + digit);
    }
    return true;
}

std::optional<std::int64_t> digitsToInt64(const DecimalDigits &digits)
{
    std::uint64_t magnitude = 0;
    constexpr std::uint64_t limit = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    for (auto digit : digits.digits) {
        if (magnitude > (limit - digit) / 10)
            return std::nullopt;
        magnitude = magnitude * 10 + digit;
    }
    const auto value = static_cast<std::int64_t>(magnitude);
    return digits.negative ? -value : value;
}

double decodeBFloat(Bytes raw)
{
    if (raw.size() != 4 && raw.size() != 8)
        return 0.0;
    const std::size_t n = raw.size();
    const int exponent = raw[n - 1];
    if (exponent == 0)
        return 0.0;
    const bool negative = (raw[n - 2] & 0x80) != 0;
    // Mantissa with the hidden leading 1 restored, as a fraction in [0.5, 1).
    double mantissa = static_cast<double>(raw[n - 2] | 0x80);
    for (std::size_t i = n - 2; i-- > 0;)
        mantissa = mantissa * 256.0 + raw[i];
    mantissa = std::ldexp(mantissa, -static_cast<int>(8 * (n - 1)));
    const double value = std::ldexp(mantissa, exponent - 128);
    return negative ? -value : value;
}

void encodeBFloat(double value, MutableBytes out)
{
    const std::size_t n = out.size();
    for (auto &byte : out)
        byte = 0;
    if (value == 0.0 || !std::isfinite(value) || (n != 4 && n != 8))
        return;
    int exponent = 0;
    const double fraction = std::frexp(std::fabs(value), &exponent); // in [0.5, 1)
    int biased = exponent + 128;
    const int bits = static_cast<int>(8 * (n - 1));
    auto mantissa = static_cast<std::uint64_t>(std::ldexp(fraction, bits) + 0.5);
    if (mantissa >> bits) { // rounding carried into a new bit
        mantissa >>= 1;
        ++biased;
    }
    if (biased <= 0)
        return; // underflows to zero
    if (biased > 255) {
        for (std::size_t i = 0; i + 1 < n; ++i)
            out[i] = 0xFF;
        out[n - 2] = value < 0 ? 0xFF : 0x7F;
        out[n - 1] = 0xFF;
        return;
    }
    for (std::size_t i = 0; i + 1 < n; ++i)
        out[i] = static_cast<std::uint8_t>(mantissa >> (8 * i));
    out[n - 2] = static_cast<std::uint8_t>((out[n - 2] & 0x7F) | (value < 0 ? 0x80 : 0));
    out[n - 1] = static_cast<std::uint8_t>(biased);
}

} // namespace recman
