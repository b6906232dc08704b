#include "fieldcodec.h"

#include "numeric.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>

namespace recman {

namespace {

bool fail(std::string &error, const FieldDef &field, const std::string &reason)
{
    error = "field \"" + field.name + "\": " + reason;
    return false;
}

bool isIntegerSize(std::uint32_t size)
{
    return size == 1 || size == 2 || size == 4 || size == 8;
}

std::uint64_t readUnsigned(Bytes raw)
{
    std::uint64_t value = 0;
    for (std::size_t i = raw.size(); i-- > 0;)
        value = value << 8 | raw[i];
    return value;
}

std::int64_t readSigned(Bytes raw)
{
    const auto value = readUnsigned(raw);
    const unsigned bits = static_cast<unsigned>(raw.size() * 8);
    if (bits == 64 || (value >> (bits - 1)) == 0)
        return static_cast<std::int64_t>(value);
    return static_cast<std::int64_t>(value | (~std::uint64_t{0} << bits));
}

void writeInteger(std::uint64_t value, MutableBytes raw)
{
    for (auto &byte : raw) {
        byte = static_cast<std::uint8_t>(value);
        value >>= 8;
    }
}

std::int64_t power10(int exponent)
{
    std::int64_t result = 1;
    for (int i = 0; i < exponent; ++i)
        result *= 10;
    return result;
}

int scaleOf(const FieldDef &field)
{
    if (field.type == DataType::Currency)
        return 4;
    if (field.type == DataType::Money && field.decimals == 0)
        return 2;
    return field.decimals;
}

std::string trimRight(Bytes raw, bool stopAtNul)
{
    std::size_t end = raw.size();
    if (stopAtNul)
        end = static_cast<std::size_t>(std::find(raw.begin(), raw.end(), std::uint8_t{0}) - raw.begin());
    while (end > 0 && (raw[end - 1] == ' ' || raw[end - 1] == 0))
        --end;
    return std::string(raw.begin(), raw.begin() + static_cast<std::ptrdiff_t>(end));
}

bool decodeDigits(const FieldDef &field, const DecimalDigits &digits, Value &value, std::string &error)
{
    if (!digits.valid)
        return fail(error, field, "bytes are not a valid decimal number");
    const auto number = digitsToInt64(digits);
    if (!number)
        return fail(error, field, "number too large");
    value = Decimal{*number, scaleOf(field)};
    return true;
}

bool decodeNumber(const FieldDef &field, Bytes raw, Value &value, std::string &error)
{
    switch (field.type) {
    case DataType::Integer:
    case DataType::AutoIncrement:
        if (!isIntegerSize(field.size))
            return fail(error, field, "integer of impossible size " + std::to_string(field.size));
        if (field.size == 1 && field.type == DataType::Integer && !(field.flags & fieldflag::SignedTinyInt))
            value = static_cast<std::int64_t>(raw[0]); // older tools made 1-byte integers unsigned
        else
            value = readSigned(raw);
        return true;
    case DataType::Unsigned: {
        if (!isIntegerSize(field.size))
            return fail(error, field, "unsigned of impossible size " + std::to_string(field.size));
        const auto number = readUnsigned(raw);
        if (number > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()))
            value = std::to_string(number); // beyond int64: keep the digits
        else
            value = static_cast<std::int64_t>(number);
        return true;
    }
    case DataType::Float:
        if (field.size == 4)
            value = static_cast<double>(std::bit_cast<float>(static_cast<std::uint32_t>(readUnsigned(raw))));
        else if (field.size == 8)
            value = std::bit_cast<double>(readUnsigned(raw));
        else
            return fail(error, field, "float of impossible size " + std::to_string(field.size));
        return true;
    case DataType::BFloat:
        if (field.size != 4 && field.size != 8)
            return fail(error, field, "bfloat of impossible size " + std::to_string(field.size));
        value = decodeBFloat(raw);
        return true;
    case DataType::Decimal:
    case DataType::Money:
        return decodeDigits(field, unpackDecimal(raw), value, error);
    case DataType::Numeric:
    case DataType::NumericSa:
    case DataType::NumericSts:
        if (std::all_of(raw.begin(), raw.end(), [](std::uint8_t b) { return b == ' ' || b == 0; })) {
            value = Null{};
            return true;
        }
        return decodeDigits(field, unpackNumericText(raw, field.type), value, error);
    case DataType::Currency:
        if (field.size != 8)
            return fail(error, field, "currency must be 8 bytes");
        value = Decimal{readSigned(raw), 4};
        return true;
    case DataType::Timestamp: {
        if (field.size != 8)
            return fail(error, field, "timestamp must be 8 bytes");
        const auto ticks = readUnsigned(raw);
        if (ticks > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()))
            return fail(error, field, "timestamp out of range");
        value = static_cast<std::int64_t>(ticks);
        return true;
    }
    default:
        return fail(error, field, "data type " + std::to_string(static_cast<int>(field.type)) + " is not supported");
    }
}

bool decodeOther(const FieldDef &field, Bytes raw, const CodePage &codePage, Value &value, std::string &error)
{
    switch (field.type) {
    case DataType::String:
    case DataType::ZString: {
        // Padding differs between tools (spaces, NULs, old bytes after a NUL in zstrings).
        const auto text = trimRight(raw, field.type == DataType::ZString);
        value = codePage.toUtf8(Bytes(reinterpret_cast<const std::uint8_t *>(text.data()), text.size()));
        return true;
    }
    case DataType::LString: {
        const std::size_t length = raw[0];
        if (length > raw.size() - 1)
            return fail(error, field, "length byte " + std::to_string(length) + " exceeds the field");
        value = codePage.toUtf8(raw.subspan(1, length));
        return true;
    }
    case DataType::Date: {
        if (field.size != 4)
            return fail(error, field, "date must be 4 bytes");
        if (bytes::u32(raw, 0) == 0) {
            value = Null{};
            return true;
        }
        const Date date{bytes::u16(raw, 2), raw[1], raw[0]};
        if (date.month < 1 || date.month > 12 || date.day < 1 || date.day > 31)
            return fail(error, field, "bytes are not a valid date");
        value = date;
        return true;
    }
    case DataType::Time: {
        if (field.size != 4)
            return fail(error, field, "time must be 4 bytes");
        const Time time{raw[3], raw[2], raw[1], raw[0]};
        if (time.hour > 23 || time.minute > 59 || time.second > 59 || time.hundredths > 99)
            return fail(error, field, "bytes are not a valid time");
        value = time;
        return true;
    }
    case DataType::Logical:
        if (field.size != 1 && field.size != 2)
            return fail(error, field, "logical must be 1 or 2 bytes");
        value = readUnsigned(raw) != 0;
        return true;
    case DataType::Bit:
        if (field.decimals > 7)
            return fail(error, field, "bit number " + std::to_string(field.decimals) + " is not 0..7");
        value = ((raw[0] >> field.decimals) & 1) != 0;
        return true;
    default:
        return decodeNumber(field, raw, value, error);
    }
}

// --- encoding ---

bool parseDecimalText(std::string_view text, Decimal &out)
{
    while (!text.empty() && text.front() == ' ')
        text.remove_prefix(1);
    while (!text.empty() && text.back() == ' ')
        text.remove_suffix(1);
    bool negative = false;
    if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
        negative = text.front() == '-';
        text.remove_prefix(1);
    }
    std::int64_t unscaled = 0;
    int scale = -1;
    bool any = false;
    for (char c : text) {
        if (c == '.' && scale < 0) {
            scale = 0;
            continue;
        }
        if (c == ',' && scale < 0)
            continue; // thousands separator
        if (c < '0' || c > '9' || unscaled > (std::numeric_limits<std::int64_t>::max() - 9) / 10)
            return false;
        unscaled = unscaled * 10 + (c - '0');
        any = true;
        if (scale >= 0)
            ++scale;
    }
    out = Decimal{negative ? -unscaled : unscaled, scale < 0 ? 0 : scale};
    return any;
}

// The value as an exact decimal with the given scale.
bool toScaled(const Value &value, int scale, std::int64_t &out)
{
    Decimal decimal;
    if (const auto *integer = std::get_if<std::int64_t>(&value))
        decimal = {*integer, 0};
    else if (const auto *exact = std::get_if<Decimal>(&value))
        decimal = *exact;
    else if (const auto *text = std::get_if<std::string>(&value)) {
        if (!parseDecimalText(*text, decimal))
            return false;
    } else if (const auto *real = std::get_if<double>(&value)) {
        const double scaled = std::round(*real * static_cast<double>(power10(scale)));
        if (!std::isfinite(scaled) || std::fabs(scaled) > 9.2e18)
            return false;
        out = static_cast<std::int64_t>(scaled);
        return true;
    } else if (const auto *flag = std::get_if<bool>(&value))
        decimal = {*flag ? 1 : 0, 0};
    else if (std::holds_alternative<Null>(value))
        decimal = {0, 0};
    else
        return false;
    if (decimal.scale < 0 || decimal.scale > 18 || scale > 18)
        return false;
    if (decimal.scale > scale) {
        const auto divisor = power10(decimal.scale - scale);
        if (decimal.unscaled % divisor != 0)
            return false; // digits would be lost
        out = decimal.unscaled / divisor;
        return true;
    }
    const auto factor = power10(scale - decimal.scale);
    if (decimal.unscaled > std::numeric_limits<std::int64_t>::max() / factor ||
        decimal.unscaled < std::numeric_limits<std::int64_t>::min() / factor)
        return false;
    out = decimal.unscaled * factor;
    return true;
}

bool encodeText(const FieldDef &field, const Value &value, MutableBytes raw, const CodePage &codePage,
                std::string &error)
{
    std::string legacy;
    if (const auto *text = std::get_if<std::string>(&value)) {
        if (!codePage.fromUtf8(*text, legacy))
            return fail(error, field,
                        "text has characters the code page " + std::string(codePage.name()) + " cannot hold");
    } else if (!std::holds_alternative<Null>(value)) {
        legacy = toText(value);
    }
    const std::size_t capacity = field.type == DataType::String ? raw.size() : raw.size() - 1;
    if (legacy.size() > capacity)
        return fail(error, field,
                    "text of " + std::to_string(legacy.size()) + " bytes does not fit in " + std::to_string(capacity));
    if (field.type == DataType::LString) {
        raw[0] = static_cast<std::uint8_t>(legacy.size());
        std::fill(raw.begin() + 1, raw.end(), 0);
        std::memcpy(raw.data() + 1, legacy.data(), legacy.size());
    } else {
        std::fill(raw.begin(), raw.end(), field.type == DataType::String ? ' ' : 0);
        std::memcpy(raw.data(), legacy.data(), legacy.size());
    }
    return true;
}

bool integerFits(std::int64_t number, std::uint32_t size, bool isSigned)
{
    if (size == 8)
        return isSigned || number >= 0;
    const unsigned bits = size * 8;
    if (isSigned)
        return number >= -(std::int64_t{1} << (bits - 1)) && number < (std::int64_t{1} << (bits - 1));
    return number >= 0 && number < (std::int64_t{1} << bits);
}

bool encodeDate(const FieldDef &field, const Value &value, MutableBytes raw, std::string &error)
{
    if (std::holds_alternative<Null>(value)) {
        std::fill(raw.begin(), raw.end(), 0);
        return true;
    }
    const auto *date = std::get_if<Date>(&value);
    if (!date || date->month < 1 || date->month > 12 || date->day < 1 || date->day > 31 || date->year < 0 ||
        date->year > 9999)
        return fail(error, field, "needs a valid date");
    raw[0] = static_cast<std::uint8_t>(date->day);
    raw[1] = static_cast<std::uint8_t>(date->month);
    bytes::put16(raw, 2, static_cast<std::uint16_t>(date->year));
    return true;
}

bool encodeTime(const FieldDef &field, const Value &value, MutableBytes raw, std::string &error)
{
    if (std::holds_alternative<Null>(value)) {
        std::fill(raw.begin(), raw.end(), 0);
        return true;
    }
    const auto *time = std::get_if<Time>(&value);
    if (!time || time->hour < 0 || time->hour > 23 || time->minute < 0 || time->minute > 59 || time->second < 0 ||
        time->second > 59 || time->hundredths < 0 || time->hundredths > 99)
        return fail(error, field, "needs a valid time");
    raw[0] = static_cast<std::uint8_t>(time->hundredths);
    raw[1] = static_cast<std::uint8_t>(time->second);
    raw[2] = static_cast<std::uint8_t>(time->minute);
    raw[3] = static_cast<std::uint8_t>(time->hour);
    return true;
}

bool encodeNumber(const FieldDef &field, const Value &value, MutableBytes raw, std::string &error)
{
    switch (field.type) {
    case DataType::Integer:
    case DataType::AutoIncrement:
    case DataType::Unsigned: {
        std::int64_t number = 0;
        const bool isSigned =
            field.type != DataType::Unsigned &&
            !(field.type == DataType::Integer && field.size == 1 && !(field.flags & fieldflag::SignedTinyInt));
        if (!isIntegerSize(field.size) || !toScaled(value, 0, number) || !integerFits(number, field.size, isSigned))
            return fail(error, field,
                        "value \"" + toText(value) + "\" does not fit a " + std::to_string(field.size) +
                            "-byte integer");
        writeInteger(static_cast<std::uint64_t>(number), raw);
        return true;
    }
    case DataType::Float:
    case DataType::BFloat: {
        double number = 0;
        if (const auto *real = std::get_if<double>(&value))
            number = *real;
        else if (std::int64_t scaled = 0; toScaled(value, 9, scaled))
            number = static_cast<double>(scaled) / 1e9;
        else
            return fail(error, field, "needs a number");
        if (field.type == DataType::BFloat && (field.size == 4 || field.size == 8))
            encodeBFloat(number, raw);
        else if (field.size == 4)
            writeInteger(std::bit_cast<std::uint32_t>(static_cast<float>(number)), raw);
        else if (field.size == 8)
            writeInteger(std::bit_cast<std::uint64_t>(number), raw);
        else
            return fail(error, field, "float of impossible size");
        return true;
    }
    case DataType::Decimal:
    case DataType::Money:
    case DataType::Numeric:
    case DataType::NumericSa:
    case DataType::NumericSts:
    case DataType::Currency: {
        std::int64_t unscaled = 0;
        if (!toScaled(value, scaleOf(field), unscaled))
            return fail(error, field,
                        "value \"" + toText(value) + "\" is not a number with at most " +
                            std::to_string(scaleOf(field)) + " decimals");
        std::vector<std::uint8_t> bytes(raw.size(), 0);
        bool fits = true;
        if (field.type == DataType::Currency) {
            fits = field.size == 8;
            writeInteger(static_cast<std::uint64_t>(unscaled), bytes);
        } else if (field.type == DataType::Decimal || field.type == DataType::Money)
            fits = packDecimal(unscaled, bytes);
        else
            fits = packNumericText(unscaled, field.type, bytes);
        if (!fits)
            return fail(error, field, "value \"" + toText(value) + "\" has too many digits for the field");
        std::copy(bytes.begin(), bytes.end(), raw.begin());
        return true;
    }
    default:
        return fail(error, field, "data type " + std::to_string(static_cast<int>(field.type)) + " is not supported");
    }
}

} // namespace

bool decodeField(const FieldDef &field, Bytes record, const CodePage &codePage, Value &value, std::string &error)
{
    if (field.size == 0 || field.offset > record.size() || field.size > record.size() - field.offset)
        return fail(error, field,
                    "bytes " + std::to_string(field.offset) + ".." + std::to_string(field.offset + field.size) +
                        " lie outside the record of " + std::to_string(record.size()) + " bytes");
    return decodeOther(field, record.subspan(field.offset, field.size), codePage, value, error);
}

bool encodeField(const FieldDef &field, const Value &value, MutableBytes record, const CodePage &codePage,
                 std::string &error)
{
    if (field.size == 0 || field.offset > record.size() || field.size > record.size() - field.offset)
        return fail(error, field, "lies outside the record");
    const auto raw = record.subspan(field.offset, field.size);
    switch (field.type) {
    case DataType::String:
    case DataType::ZString:
    case DataType::LString:
        return encodeText(field, value, raw, codePage, error);
    case DataType::Date:
        return encodeDate(field, value, raw, error);
    case DataType::Time:
        return encodeTime(field, value, raw, error);
    case DataType::Logical:
    case DataType::Bit: {
        std::int64_t flag = 0;
        if (!toScaled(value, 0, flag) || (flag != 0 && flag != 1))
            return fail(error, field, "needs true or false");
        if (field.type == DataType::Logical) {
            if (field.size != 1 && field.size != 2)
                return fail(error, field, "logical must be 1 or 2 bytes");
            writeInteger(static_cast<std::uint64_t>(flag), raw);
        } else {
            if (field.decimals > 7)
                return fail(error, field, "bit number is not 0..7");
            const auto mask = static_cast<std::uint8_t>(1u << field.decimals);
            raw[0] = static_cast<std::uint8_t>(flag ? raw[0] | mask : raw[0] & ~mask);
        }
        return true;
    }
    default:
        return encodeNumber(field, value, raw, error);
    }
}

} // namespace recman
