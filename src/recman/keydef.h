// Key definitions as the record manager stores them: a key is one or more
// segments, each a typed byte range of the record with flags.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace recman {

// Extended data types (also the dictionary's field type codes).
enum class DataType : std::uint8_t {
    String = 0,
    Integer = 1,
    Float = 2,
    Date = 3,
    Time = 4,
    Decimal = 5,
    Money = 6,
    Logical = 7,
    Numeric = 8,
    BFloat = 9,
    LString = 10,
    ZString = 11,
    Note = 12,
    LVar = 13,
    Unsigned = 14,
    AutoIncrement = 15,
    Bit = 16,
    NumericSts = 17,
    NumericSa = 18,
    Currency = 19,
    Timestamp = 20,
};

// Key flag bits of a segment (on disk and in the create API).
namespace keyflag {
constexpr std::uint16_t Duplicates = 0x0001;
constexpr std::uint16_t Modifiable = 0x0002;
constexpr std::uint16_t Binary = 0x0004; // old-style type when Extended is clear
constexpr std::uint16_t NullAll = 0x0008;
constexpr std::uint16_t Segmented = 0x0010; // another segment follows
constexpr std::uint16_t Acs = 0x0020;
constexpr std::uint16_t Descending = 0x0040;
constexpr std::uint16_t RepeatingDuplicates = 0x0080;
constexpr std::uint16_t Extended = 0x0100;
constexpr std::uint16_t NullAny = 0x0200;
constexpr std::uint16_t CaseInsensitive = 0x0400;
} // namespace keyflag

// An alternate collating sequence: every key byte is mapped through the table.
struct CollatingSequence {
    std::string name;
    std::array<std::uint8_t, 256> table{};
};

struct KeySegment {
    int key = 0;     // key number
    int segment = 0; // segment number within the key
    std::uint16_t flags = 0;
    std::uint8_t rawType = 0; // extended type byte as stored (meaningful with keyflag::Extended)
    std::uint32_t offset = 0; // 0-based offset in the user record
    std::uint32_t length = 0;
    std::uint8_t nullValue = 0;
    std::shared_ptr<const CollatingSequence> acs; // set when keyflag::Acs is on
    std::uint32_t acsPage = 0;                    // 6.x: logical page of its table, 0 = the file's default

    // The type the comparison uses: the extended type, or the old binary/string choice.
    DataType type() const;
    bool has(std::uint16_t flag) const { return (flags & flag) != 0; }
};

struct KeyDefinition {
    int number = 0;
    std::vector<KeySegment> segments;
    std::uint32_t duplicatePointerOffset = 0; // slot offset of the linked-duplicate pair, 0 = none
    // The file's own B-tree of this key: the raw root pointer as stored (5.x
    // ws32 physical page, 6.x pp24 logical page; all ones = empty), the
    // length of one index entry and the number of distinct values it holds.
    std::uint32_t indexRoot = 0xFFFFFFFF;
    std::uint16_t indexEntryLength = 0;
    std::uint32_t uniqueValues = 0;

    std::uint16_t flags() const { return segments.empty() ? 0 : segments.front().flags; }
    bool allowsDuplicates() const { return (flags() & keyflag::Duplicates) != 0; }
    bool modifiable() const { return (flags() & keyflag::Modifiable) != 0; }
    std::uint32_t length() const;
};

} // namespace recman
