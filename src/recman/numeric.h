// Byte-level codecs of the record manager's numeric types that are not plain
// binary integers: packed decimal, numeric text with a sign, and the old
// Microsoft binary float. Shared by key ordering and field values.
#pragma once

#include "bytes.h"
#include "keydef.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace recman {

// A signed run of decimal digits, most significant first (values 0..9; an
// undecodable nibble or character makes valid false but keeps a digit value
// so ordering stays total).
struct DecimalDigits {
    bool negative = false;
    bool valid = true;
    std::vector<std::uint8_t> digits;

    bool isZero() const;
};

// Packed BCD (DECIMAL, MONEY): two digits per byte, sign in the last low nibble.
DecimalDigits unpackDecimal(Bytes raw);
// Writes |value| (already scaled to an integer) into packed BCD; false if it does not fit.
bool packDecimal(std::int64_t unscaled, MutableBytes out);

// NUMERIC (overpunched last digit), NUMERICSA (last digit 'p'..'y' when negative),
// NUMERICSTS (digits then a '+' or '-').
DecimalDigits unpackNumericText(Bytes raw, DataType type);
bool packNumericText(std::int64_t unscaled, DataType type, MutableBytes out);

// Integer value of a digit run (the caller applies any implied decimals); nullopt on overflow.
std::optional<std::int64_t> digitsToInt64(const DecimalDigits &digits);

// Microsoft binary format float, 4 or 8 bytes.
double decodeBFloat(Bytes raw);
void encodeBFloat(double value, MutableBytes out);

} // namespace recman
