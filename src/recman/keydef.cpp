#include "keydef.h"

namespace recman {

DataType KeySegment::type() const
{
    if (has(keyflag::Extended))
        return static_cast<DataType>(rawType);
    return has(keyflag::Binary) ? DataType::Unsigned : DataType::String;
}

std::uint32_t KeyDefinition::length() const
{
    std::uint32_t total = 0;
    for (const auto &segment : segments)
        total += segment.length;
    return total;
}

} // namespace recman
