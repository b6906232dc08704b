#include "pagebuild.h"

#include "pagemap.h"

#include <algorithm>

namespace recman::pagebuild {

void putPageNumber(MutableBytes page, std::uint32_t number, std::uint8_t tag, Format format)
{
    if (format == Format::V5)
        bytes::putWs32(page, 0, number);
    else
        bytes::putPp24(page, 0, number, tag);
}

std::vector<std::uint8_t> emptyDataPage(std::uint32_t pageSize, std::uint32_t logical, Format format)
{
    std::vector<std::uint8_t> page(pageSize, 0);
    putPageNumber(page, logical, pagetype::Data, format);
    bytes::put16(page, 4, 0x8001);
    return page;
}

void touchDataPage(MutableBytes page)
{
    const auto counter = static_cast<std::uint16_t>(bytes::u16(page, 4) & 0x7FFF);
    bytes::put16(page, 4, static_cast<std::uint16_t>(0x8000 | (counter == 0x7FFF ? 1 : counter + 1)));
}

void fillSlot(MutableBytes slot, Bytes record, std::uint16_t usage)
{
    bytes::put16(slot, 0, usage == 0 ? 1 : usage);
    fillUncountedSlot(slot.subspan(2), record);
}

void fillUncountedSlot(MutableBytes slot, Bytes record)
{
    std::copy(record.begin(), record.end(), slot.begin());
    std::fill(slot.begin() + static_cast<std::ptrdiff_t>(record.size()), slot.end(), 0xFF);
}

void freeSlot(MutableBytes slot, std::uint32_t nextFree)
{
    std::fill(slot.begin(), slot.end(), 0);
    bytes::putWs32(slot, 0, nextFree);
}

std::vector<std::uint8_t> emptyIndexPage(std::uint32_t pageSize, std::uint32_t logical, int key)
{
    std::vector<std::uint8_t> page(pageSize, 0);
    bytes::putPp24(page, 0, logical, static_cast<std::uint8_t>(pagetype::IndexBase + key));
    bytes::put32(page, 8, 0xFFFFFFFF);
    return page;
}

std::vector<std::uint8_t> acsPage(std::uint32_t pageSize, std::uint32_t logical, const CollatingSequence &acs,
                                  Format format)
{
    std::vector<std::uint8_t> page(pageSize, 0);
    putPageNumber(page, logical, pagetype::Acs, format);
    page[6] = 0xAC;
    for (std::size_t i = 0; i < 8; ++i)
        page[7 + i] = i < acs.name.size() ? static_cast<std::uint8_t>(acs.name[i]) : ' ';
    std::copy(acs.table.begin(), acs.table.end(), page.begin() + 0x0F);
    return page;
}

std::vector<std::uint8_t> emptyPatPage(std::uint32_t pageSize, std::uint32_t usage)
{
    std::vector<std::uint8_t> page(pageSize, 0);
    page[0] = 'P';
    page[1] = 'P';
    bytes::put16(page, 2, 1);
    bytes::put32(page, 4, usage);
    return page;
}

void setPatEntry(MutableBytes pat, std::uint32_t index, std::uint32_t physical, std::uint8_t type)
{
    bytes::putPp24(pat, 4 + 4 * std::size_t{index}, physical, type);
}

} // namespace recman::pagebuild
