// Building blocks of pages, shared by file creation (5.x and 6.x) and by the
// writes to 6.x files this engine created.
#pragma once

#include "bytes.h"
#include "header.h"

#include <cstdint>
#include <vector>

namespace recman::pagebuild {

// A page's own number at its start: 5.x physical (ws32), 6.x logical with its type tag.
void putPageNumber(MutableBytes page, std::uint32_t number, std::uint8_t tag, Format format);
// A data page with its self-identifying header and page usage 1.
std::vector<std::uint8_t> emptyDataPage(std::uint32_t pageSize, std::uint32_t logical, Format format = Format::V6);
// Bumps the usage counter of a data page, keeping the data-page bit.
void touchDataPage(MutableBytes page);
// Fills one slot: record usage count, the record, and "none" duplicate pointers.
void fillSlot(MutableBytes slot, Bytes record, std::uint16_t usage);
// The same without the usage count, as 5.x slots are.
void fillUncountedSlot(MutableBytes slot, Bytes record);
// Empties a slot and links it into the free chain in front of `nextFree`.
void freeSlot(MutableBytes slot, std::uint32_t nextFree);
// Empty B-tree root of key `key`.
std::vector<std::uint8_t> emptyIndexPage(std::uint32_t pageSize, std::uint32_t logical, int key);
std::vector<std::uint8_t> acsPage(std::uint32_t pageSize, std::uint32_t logical, const CollatingSequence &acs,
                                  Format format = Format::V6);
// A PAT page with usage `usage` and no entries.
std::vector<std::uint8_t> emptyPatPage(std::uint32_t pageSize, std::uint32_t usage);
void setPatEntry(MutableBytes pat, std::uint32_t index, std::uint32_t physical, std::uint8_t type);

} // namespace recman::pagebuild
