// Field values by data-dictionary type: decode a field from a record's bytes,
// encode a value into them.
#pragma once

#include "bytes.h"
#include "codepage.h"
#include "keydef.h"
#include "value.h"

#include <cstdint>
#include <string>

namespace recman {

struct FieldDef {
    std::string name;
    DataType type = DataType::String;
    std::uint32_t offset = 0; // 0-based in the user record
    std::uint32_t size = 0;
    std::uint8_t decimals = 0; // implied decimals; bit number for Bit fields
    std::uint16_t flags = 0;   // dictionary field flags (bit 0 case-insensitive, bit 3 signed 1-byte integer)
};

namespace fieldflag {
constexpr std::uint16_t CaseInsensitive = 0x0001;
constexpr std::uint16_t SignedTinyInt = 0x0008;
} // namespace fieldflag

// Decodes the field. Returns false with a reason when the record is too short,
// the size is impossible for the type, or the bytes are not a valid value.
bool decodeField(const FieldDef &field, Bytes record, const CodePage &codePage, Value &value, std::string &error);

// Encodes value into the field's bytes of record. Refuses (false, with a
// reason, record unchanged) a value that does not fit: text too long,
// number out of range, decimals that would be lost.
bool encodeField(const FieldDef &field, const Value &value, MutableBytes record, const CodePage &codePage,
                 std::string &error);

} // namespace recman
