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

// image: the whole file, read at open; fixed-length records stay in it.
ScanResult scanRecords(const FileHeader &header, const PageMap &pages, FileImage image);

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
