// Reads a key's order from the file's own B-tree index pages instead of
// sorting every record: an in-order walk of the tree, following each linked
// duplicate chain through the records' pointer pairs. The walk trusts
// nothing: a page outside the file, a page seen twice, keys out of order, a
// broken duplicate chain or a count that disagrees with the key's definition
// make it fail with the reason, and the caller falls back to an index built
// from a scan of the records.
#pragma once

#include "header.h"
#include "keydef.h"
#include "pagemap.h"
#include "recordstore.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace recman {

// Record addresses of every record the key indexes, in key order (duplicates
// in chain order), as RecordStore::address gives them; runStarts: the
// positions where a new key value begins.
struct KeyWalk {
    std::vector<std::uint32_t> addresses;
    std::vector<std::uint32_t> runStarts;
};

// Empty with a reason in problem when the index cannot be trusted (or the
// file keeps none, as the files this engine creates do).
std::optional<KeyWalk> walkKeyIndex(const PageMap &pages, const FileHeader &header, const KeyDefinition &key,
                                    std::string &problem);

// The walk as ordinals of the record list. Empty with a reason when a
// walked record is not a live record of the list, its own key disagrees with
// the order (or is null), or equal keys are not in
// record order (the order the engine keeps duplicates in), or the count of
// records disagrees with the list's.
std::optional<std::vector<std::uint32_t>> ordinalsInWalkOrder(const RecordStore &records, const KeyDefinition &key,
                                                              const KeyWalk &walk, std::string &problem);

} // namespace recman
