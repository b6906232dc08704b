// Builds 5.x data files byte by byte, so that a test can reproduce exactly the
// page and slot shapes real files of the record manager hold.
#pragma once

#include "bytes.h"
#include "header.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace recmantest {

struct OldPage {
    std::uint16_t usage = 0x8001; // bit 15: data page
    // One entry per slot; nullopt leaves the slot all zero (never used).
    std::vector<std::optional<std::vector<std::uint8_t>>> slots;
};

// A file of fixed-length records whose key 0 is a unique 4-byte integer at
// offset 0. headerCount and freeHead are written as given, whatever the pages hold.
struct OldFile {
    std::uint32_t pageSize = 512;
    std::uint16_t recordLength = 16;
    std::uint32_t headerCount = 0;
    std::uint32_t freeHead = 0xFFFFFFFFu;
    std::vector<OldPage> pages; // data pages 1, 2, ...

    // File byte address of a slot, as the free chain and Get Position give it.
    std::uint32_t address(std::uint32_t page, std::uint32_t slot) const { return page * pageSize + 6 + slot * recordLength; }

    std::vector<std::uint8_t> bytes() const
    {
        using namespace recman;
        std::vector<std::uint8_t> out(pageSize * (pages.size() + 1), 0);
        MutableBytes control(out.data(), pageSize);
        bytes::put16(control, fcr::Usage, 1);
        control[7] = 5;
        bytes::put16(control, fcr::PageSize, static_cast<std::uint16_t>(pageSize));
        bytes::putWs32(control, 0x0C, 0xFFFFFFFFu);
        bytes::putWs32(control, fcr::FreeHead, freeHead);
        bytes::put16(control, fcr::KeyCount, 1);
        bytes::put16(control, fcr::RecordLength, recordLength);
        bytes::put16(control, fcr::PhysicalLength, recordLength);
        bytes::putWs32(control, fcr::RecordCount, headerCount);
        bytes::put16(control, 0x24, 1);
        bytes::putWs32(control, fcr::PagesInUse, static_cast<std::uint32_t>(pages.size() + 1));
        bytes::put16(control, fcr::SegmentSpecs + 0x14, 0); // position
        bytes::put16(control, fcr::SegmentSpecs + 0x16, 4); // length
        control[fcr::SegmentSpecs + 0x1C] = 1;              // integer
        for (std::uint32_t p = 0; p < pages.size(); ++p) {
            MutableBytes page(out.data() + (p + 1) * pageSize, pageSize);
            bytes::putWs32(page, 0, p + 1);
            bytes::put16(page, 4, pages[p].usage);
            for (std::uint32_t s = 0; s < pages[p].slots.size(); ++s)
                if (const auto &slot = pages[p].slots[s])
                    std::copy(slot->begin(), slot->end(), page.begin() + 6 + s * recordLength);
        }
        return out;
    }
};

// A record of `length` bytes: the key `id`, then `fill` in every other byte.
inline std::vector<std::uint8_t> oldRecord(std::uint32_t id, std::uint8_t fill, std::size_t length = 16)
{
    std::vector<std::uint8_t> record(length, fill);
    recman::bytes::put32(record, 0, id);
    return record;
}

// A deleted slot: the next free address (ws32), then zeros.
inline std::vector<std::uint8_t> freedSlot(std::uint32_t next, std::size_t length = 16)
{
    std::vector<std::uint8_t> slot(length, 0);
    recman::bytes::putWs32(slot, 0, next);
    return slot;
}

} // namespace recmantest
