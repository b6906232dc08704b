// Enumerates the live records of a file in physical order: data pages only,
// current copies only, free slots excluded, variable tails reassembled and
// compressed records expanded.
#pragma once

#include "header.h"
#include "pagemap.h"
#include "recordstore.h"

#include <string>
#include <vector>

namespace recman {

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
