// Bounds-checked little-endian access to file bytes, and the record manager's
// odd 32-bit forms. Every read checks its range and throws FormatError, so a
// hostile file can never make the engine read outside a buffer.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>

namespace recman {

using Bytes = std::span<const std::uint8_t>;
using MutableBytes = std::span<std::uint8_t>;

// Raised inside the engine for a file whose structure cannot be trusted; the
// public API turns it into a Status and a message.
class FormatError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

namespace bytes {

inline void require(Bytes data, std::size_t offset, std::size_t length, const char *what)
{
    if (offset > data.size() || length > data.size() - offset)
        throw FormatError(std::string(what) + " lies outside its page or record");
}

inline std::uint8_t u8(Bytes data, std::size_t offset)
{
    require(data, offset, 1, "byte field");
    return data[offset];
}

inline std::uint16_t u16(Bytes data, std::size_t offset)
{
    require(data, offset, 2, "16-bit field");
    return static_cast<std::uint16_t>(data[offset] | data[offset + 1] << 8);
}

inline std::uint32_t u32(Bytes data, std::size_t offset)
{
    require(data, offset, 4, "32-bit field");
    return static_cast<std::uint32_t>(data[offset]) | static_cast<std::uint32_t>(data[offset + 1]) << 8 |
           static_cast<std::uint32_t>(data[offset + 2]) << 16 | static_cast<std::uint32_t>(data[offset + 3]) << 24;
}

// Word-swapped 32-bit value: high 16-bit word first, each word little-endian.
inline std::uint32_t ws32(Bytes data, std::size_t offset)
{
    return static_cast<std::uint32_t>(u16(data, offset)) << 16 | u16(data, offset + 2);
}

// Page pointer with a type tag in byte 1: bytes hi, tag, lo, mid.
inline std::uint32_t pp24(Bytes data, std::size_t offset)
{
    require(data, offset, 4, "page pointer");
    return static_cast<std::uint32_t>(data[offset]) << 16 | static_cast<std::uint32_t>(data[offset + 3]) << 8 |
           data[offset + 2];
}

inline std::uint8_t pp24Tag(Bytes data, std::size_t offset)
{
    return u8(data, offset + 1);
}

// Variable-record pointer: bytes hi, lo, mid, fragment.
struct VariablePointer {
    std::uint32_t page = 0;
    std::uint8_t fragment = 0;
    bool none = true;
};

inline VariablePointer vp24(Bytes data, std::size_t offset)
{
    require(data, offset, 4, "variable-record pointer");
    if (u32(data, offset) == 0xFFFFFFFFu)
        return {};
    return {static_cast<std::uint32_t>(data[offset]) << 16 | static_cast<std::uint32_t>(data[offset + 2]) << 8 |
                data[offset + 1],
            data[offset + 3], false};
}

inline void put16(MutableBytes data, std::size_t offset, std::uint16_t value)
{
    data[offset] = static_cast<std::uint8_t>(value);
    data[offset + 1] = static_cast<std::uint8_t>(value >> 8);
}

inline void put32(MutableBytes data, std::size_t offset, std::uint32_t value)
{
    put16(data, offset, static_cast<std::uint16_t>(value));
    put16(data, offset + 2, static_cast<std::uint16_t>(value >> 16));
}

inline void putWs32(MutableBytes data, std::size_t offset, std::uint32_t value)
{
    put16(data, offset, static_cast<std::uint16_t>(value >> 16));
    put16(data, offset + 2, static_cast<std::uint16_t>(value));
}

inline void putPp24(MutableBytes data, std::size_t offset, std::uint32_t page, std::uint8_t tag)
{
    data[offset] = static_cast<std::uint8_t>(page >> 16);
    data[offset + 1] = tag;
    data[offset + 2] = static_cast<std::uint8_t>(page);
    data[offset + 3] = static_cast<std::uint8_t>(page >> 8);
}

} // namespace bytes
} // namespace recman
