#include "keyorder.h"

#include "numeric.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace recman {

namespace {

std::size_t segmentImageLength(const KeySegment &segment)
{
    switch (segment.type()) {
    case DataType::BFloat:
        return 8;
    case DataType::Decimal:
    case DataType::Money:
        return 1 + segment.length * 2 - 1;
    case DataType::Numeric:
    case DataType::NumericSa:
        return 1 + segment.length;
    case DataType::NumericSts:
        return segment.length; // sign byte + digits without the trailing sign
    default:
        return segment.length;
    }
}

std::uint8_t collate(const KeySegment &segment, std::uint8_t byte)
{
    if (segment.has(keyflag::Acs) && segment.acs)
        return segment.acs->table[byte];
    if (segment.has(keyflag::CaseInsensitive) && byte >= 'a' && byte <= 'z')
        return static_cast<std::uint8_t>(byte - 'a' + 'A');
    return byte;
}

// Little-endian integer of any length as big-endian bytes; signed values get
// their sign bit flipped so that negatives sort first.
void appendInteger(Bytes raw, bool isSigned, std::vector<std::uint8_t> &out)
{
    for (std::size_t i = raw.size(); i-- > 0;) {
        std::uint8_t byte = raw[i];
        if (isSigned && i + 1 == raw.size())
            byte ^= 0x80;
        out.push_back(byte);
    }
}

void appendIeeeBits(std::uint64_t bits, int width, std::vector<std::uint8_t> &out)
{
    const std::uint64_t sign = std::uint64_t{1} << (width - 1);
    bits = (bits & sign) ? ~bits : (bits | sign);
    for (int shift = width - 8; shift >= 0; shift -= 8)
        out.push_back(static_cast<std::uint8_t>(bits >> shift));
}

void appendFloat(Bytes raw, std::vector<std::uint8_t> &out)
{
    if (raw.size() == 4)
        appendIeeeBits(bytes::u32(raw, 0), 32, out);
    else if (raw.size() == 8)
        appendIeeeBits(static_cast<std::uint64_t>(bytes::u32(raw, 4)) << 32 | bytes::u32(raw, 0), 64, out);
    else
        appendInteger(raw, false, out);
}

void appendDouble(double value, std::vector<std::uint8_t> &out)
{
    appendIeeeBits(std::bit_cast<std::uint64_t>(value), 64, out);
}

// Sign class then digits; negative digits are complemented so larger
// magnitudes sort first. Minus zero sorts as zero.
void appendDigits(const DecimalDigits &value, std::size_t width, std::vector<std::uint8_t> &out)
{
    const bool negative = value.negative && !value.isZero();
    out.push_back(negative ? 0 : 1);
    std::size_t written = 0;
    for (std::size_t i = 0; i < value.digits.size() && written < width; ++i, ++written)
        out.push_back(negative ? static_cast<std::uint8_t>(15 - value.digits[i]) : value.digits[i]);
    for (; written < width; ++written)
        out.push_back(0);
}

void appendString(const KeySegment &segment, Bytes raw, std::vector<std::uint8_t> &out)
{
    for (auto byte : raw)
        out.push_back(collate(segment, byte));
}

// Text up to the terminator, padded with zero bytes: a shorter string sorts
// before any longer one that extends it.
void appendZString(const KeySegment &segment, Bytes raw, std::vector<std::uint8_t> &out)
{
    const auto end = std::find(raw.begin(), raw.end(), std::uint8_t{0});
    const auto used = static_cast<std::size_t>(end - raw.begin());
    appendString(segment, raw.first(used), out);
    out.insert(out.end(), raw.size() - used, 0);
}

// Length byte not translated; text padded with zeros, the length last as tie-break.
void appendLString(const KeySegment &segment, Bytes raw, std::vector<std::uint8_t> &out)
{
    if (raw.empty())
        return;
    const std::size_t capacity = raw.size() - 1;
    const std::size_t used = std::min<std::size_t>(raw[0], capacity);
    appendString(segment, raw.subspan(1, used), out);
    out.insert(out.end(), capacity - used, 0);
    out.push_back(static_cast<std::uint8_t>(used));
}

void appendSegment(const KeySegment &segment, Bytes raw, std::vector<std::uint8_t> &out)
{
    const std::size_t start = out.size();
    switch (segment.type()) {
    case DataType::Integer:
    case DataType::AutoIncrement:
    case DataType::Currency:
        appendInteger(raw, true, out);
        break;
    case DataType::Unsigned:
    case DataType::Date:
    case DataType::Time:
    case DataType::Logical:
    case DataType::Timestamp:
    case DataType::Bit:
        appendInteger(raw, false, out);
        break;
    case DataType::Float:
        appendFloat(raw, out);
        break;
    case DataType::BFloat:
        appendDouble(decodeBFloat(raw), out);
        break;
    case DataType::Decimal:
    case DataType::Money:
        appendDigits(unpackDecimal(raw), raw.size() * 2 - 1, out);
        break;
    case DataType::Numeric:
    case DataType::NumericSa:
        appendDigits(unpackNumericText(raw, segment.type()), raw.size(), out);
        break;
    case DataType::NumericSts:
        appendDigits(unpackNumericText(raw, segment.type()), raw.size() - 1, out);
        break;
    case DataType::ZString:
        appendZString(segment, raw, out);
        break;
    case DataType::LString:
        appendLString(segment, raw, out);
        break;
    default:
        appendString(segment, raw, out);
        break;
    }
    if (segment.has(keyflag::Descending))
        for (std::size_t i = start; i < out.size(); ++i)
            out[i] = static_cast<std::uint8_t>(~out[i]);
}

} // namespace

std::size_t sortImageLength(const KeyDefinition &key)
{
    std::size_t total = 0;
    for (const auto &segment : key.segments)
        total += segment.length == 0 ? 0 : segmentImageLength(segment);
    return total;
}

void appendSortImage(const KeyDefinition &key, Bytes keyValue, std::vector<std::uint8_t> &out)
{
    std::vector<std::uint8_t> padded;
    if (keyValue.size() < key.length()) {
        // Callers check lengths; a short value is still never read past its end.
        padded.assign(keyValue.begin(), keyValue.end());
        padded.resize(key.length(), 0);
        keyValue = padded;
    }
    std::size_t position = 0;
    for (const auto &segment : key.segments) {
        if (segment.length == 0)
            continue;
        appendSegment(segment, keyValue.subspan(position, segment.length), out);
        position += segment.length;
    }
}

void appendKeyValue(const KeyDefinition &key, Bytes record, std::vector<std::uint8_t> &out)
{
    // Bytes beyond a short record (an expanded compressed record, say) count as zeros.
    for (const auto &segment : key.segments) {
        const std::size_t start = std::min<std::size_t>(segment.offset, record.size());
        const std::size_t available = std::min<std::size_t>(segment.length, record.size() - start);
        out.insert(out.end(), record.begin() + static_cast<std::ptrdiff_t>(start),
                   record.begin() + static_cast<std::ptrdiff_t>(start + available));
        out.insert(out.end(), segment.length - available, 0);
    }
}

std::vector<std::uint8_t> sortImageOfRecord(const KeyDefinition &key, Bytes record)
{
    std::vector<std::uint8_t> value, image;
    appendKeyValue(key, record, value);
    appendSortImage(key, value, image);
    return image;
}

bool isNullKey(const KeyDefinition &key, Bytes keyValue)
{
    const bool anySegment = (key.flags() & keyflag::NullAny) != 0;
    const bool allSegments = (key.flags() & keyflag::NullAll) != 0;
    if (!anySegment && !allSegments)
        return false;
    bool everyNull = true;
    bool someNull = false;
    std::size_t position = 0;
    for (const auto &segment : key.segments) {
        const auto part = keyValue.subspan(position, segment.length);
        position += segment.length;
        const bool isNull =
            std::all_of(part.begin(), part.end(), [&](std::uint8_t b) { return b == segment.nullValue; });
        everyNull = everyNull && isNull;
        someNull = someNull || isNull;
    }
    return anySegment ? someNull : everyNull;
}

bool recordCoversKey(const KeyDefinition &key, std::size_t recordLength)
{
    return std::all_of(key.segments.begin(), key.segments.end(), [&](const KeySegment &segment) {
        return segment.offset <= recordLength && segment.length <= recordLength - segment.offset;
    });
}

} // namespace recman
