// Keyed reads straight down a file's own B-tree: each search reads only the
// pages on one path from the root to a leaf, so a file of any size needs
// neither a list of its records nor an index built in memory.
//
// The pages on the path are checked as they are read (inside the file,
// naming themselves, entries in order and between the keys of the parent
// entries around them, no deeper than 32 levels), and a record reached is
// checked against its entry (a live slot on a data page whose own key is the
// entry's). Damage throws FormatError; the caller then falls back to an index
// built from the records. A record the index lost cannot be noticed this way:
// only a walk of the whole tree sees that.
#pragma once

#include "header.h"
#include "keydef.h"
#include "pagemap.h"

#include <cstdint>
#include <optional>
#include <unordered_set>
#include <vector>

namespace recman {

// Index pages already found in order, so that a later search skips that
// check. Valid for one cache epoch: pages read anew are checked anew.
struct CheckedIndexPages {
    std::uint64_t epoch = 0;
    std::unordered_set<std::uint32_t> pages;
};

// An entry of the tree: one record, or for a linked-duplicate key the first
// and last record of the chain of records with that value.
struct IndexEntry {
    std::vector<std::uint8_t> image; // sort image of the key value
    std::uint32_t first = 0;
    std::uint32_t last = 0;
};

// Where a search stands in index order: a key's sort image and, between
// equal keys of a key that is not linked, a record address.
struct IndexTarget {
    enum Extreme { Lowest = -1, None = 0, Highest = 1 };
    const std::vector<std::uint8_t> *image = nullptr;
    std::uint32_t record = 0;
    Extreme extreme = None;
};

class IndexDescent {
public:
    IndexDescent(const PageMap &pages, const FileHeader &header, const KeyDefinition &key, CheckedIndexPages &checked);

    // The first entry at or after (after) the target, or the last entry
    // below (at most) it, in index order.
    enum class Bound { AtLeast, After, Below, AtMost };
    std::optional<IndexEntry> find(Bound bound, const IndexTarget &target);

    // Linked duplicates: the chain's record after (direction +1) or before
    // (-1) an address, none when the chain ends there. From the record's own
    // pointer pair while it still belongs to the chain, else (it changed or
    // went) by following the chain from its first record. Chains run in
    // address order: a pointer that does not move on is damage.
    std::optional<std::uint32_t> chainStep(const IndexEntry &chain, std::uint32_t address, int direction) const;

    // The record at an address, checked to be a live record whose key has
    // the given sort image. Its bytes go to out.
    void readRecord(std::uint32_t address, const std::vector<std::uint8_t> &image, std::vector<std::uint8_t> &out) const;

private:
    std::uint32_t chainPointer(std::uint32_t address, int direction) const;
    int compare(const std::vector<std::uint8_t> &image, std::uint32_t record, const IndexTarget &target) const;

    const PageMap &pages_;
    const FileHeader &header_;
    const KeyDefinition &key_;
    CheckedIndexPages &checked_;
    bool linked_;
};

} // namespace recman
