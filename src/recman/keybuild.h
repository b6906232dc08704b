// One key of a file being created, after its records are written: the key's
// order (read back from the data pages, one key at a time so memory stays at
// one sort image per record), its count of distinct values, and with index
// pages its linked-duplicate chains and its B-tree. Internal to the creator.
#pragma once

#include "newfile.h"
#include "status.h"

#include <cstdint>
#include <string>

namespace recman {

struct BuiltKey {
    std::uint64_t distinct = 0;
    std::uint32_t root = 0xFFFFFFFF; // page of the B-tree's root, with index pages
};

// `nextPage`: the next free logical page; advanced past the index pages written.
Status buildKey(NewFileWriter &writer, const FileSpec &spec, const Layout &layout, std::size_t key,
                std::uint32_t recordCount, std::uint32_t &nextPage, BuiltKey &built, std::string &message);

} // namespace recman
