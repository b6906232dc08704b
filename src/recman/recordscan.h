// Enumerates the live records of a file in physical order: data pages only,
// current copies only, free slots excluded, variable tails reassembled and
// compressed records expanded.
#pragma once

#include "header.h"
#include "pagemap.h"
#include "recordstore.h"

#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

namespace recman {

// The live slots of a file in physical order, found page by page: what a scan
// lists, and what steps through a file whose records are not listed walk.
// Follows the free-slot chain once, when made; the page last looked at is
// kept. Throws FormatError on damaged pages.
class SlotWalk {
public:
    SlotWalk(const FileHeader &header, const PageMap &pages);

    enum class State { Live, Unused, Free }; // Unused: a 6.x slot never written
    State state(std::uint32_t address, Bytes slot) const;

    struct Slot {
        std::uint32_t address;
        Bytes bytes; // valid until the walk looks at another page
    };
    // The first live slot after an address (the file's first when none), or
    // the last before one (the file's last when none).
    std::optional<Slot> next(std::optional<std::uint32_t> after);
    std::optional<Slot> previous(std::optional<std::uint32_t> before);
    // The record a slot holds (variable tail appended, compression expanded).
    void record(Bytes slot, std::vector<std::uint8_t> &out) const;
    // Oddities of the free-slot chain.
    const std::vector<std::string> &warnings() const { return warnings_; }

private:
    struct Place {
        std::uint32_t address = 0xFFFFFFFF;
        std::uint32_t logical = 0;
        std::uint32_t slot = 0;
    };
    Bytes page(std::uint32_t logical);
    std::optional<Slot> at(std::uint32_t logical, std::uint32_t slot);
    Place placeOf(std::uint32_t address) const;

    const FileHeader &header_;
    const PageMap &pages_;
    std::uint32_t perPage_;
    std::unordered_set<std::uint32_t> free_;
    bool chainComplete_ = true;
    std::vector<std::string> warnings_;
    CachedPage pinned_;
    std::uint32_t pinnedLogical_ = 0;
    std::uint64_t pinnedEpoch_ = 0;
    Place last_; // of the slot last returned
};

struct ScanResult {
    RecordStore records;
    std::vector<std::uint32_t> unusedSlots; // never-used slots (address form), for inserts in our own files
    std::vector<std::string> warnings;
};

// Reads the data pages through pages' cache; fixed-length records are listed
// by address and read again from their pages when wanted.
ScanResult scanRecords(const FileHeader &header, const PageMap &pages);

// The record whose slot is at an address, assembled like the scan's; throws
// FormatError when the address is no slot of a data page or the slot is unused.
void readRecordAt(const FileHeader &header, const PageMap &pages, std::uint32_t address, std::vector<std::uint8_t> &out);

// Slot geometry shared with the writer.
inline std::uint32_t slotsPerPage(const FileHeader &header)
{
    return (header.pageSize - 6) / header.physicalLength;
}
inline std::uint32_t slotOffset(const FileHeader &header, std::uint32_t slot)
{
    return 6 + slot * header.physicalLength;
}

} // namespace recman
