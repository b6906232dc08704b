// Bulk loading of one key's B-tree from its entries in key order, in the page
// layout the record manager's own index pages have: leaves filled up, every
// page below the root at least half full, all leaves at one depth.
#pragma once

#include "bytes.h"
#include "header.h"
#include "keydef.h"

#include <cstdint>
#include <functional>
#include <vector>

namespace recman {

struct TreeShape {
    Format format = Format::V6;
    std::uint32_t pageSize = 0;
    int key = 0;
    std::size_t entryLength = 0; // key bytes, record address, [last duplicate], child

    // Entries one page holds after its 16-byte header.
    std::uint32_t capacity() const { return static_cast<std::uint32_t>((pageSize - 16) / entryLength); }
};

// Key bytes, record address, last duplicate (linked-duplicate keys), child.
inline std::size_t indexEntryLength(const KeyDefinition &key)
{
    return key.length() + 8 + (key.allowsDuplicates() ? 4 : 0);
}

// Gives a finished page its own number and writes it out; returns the number.
using PagePlacer = std::function<std::uint32_t(MutableBytes page)>;

// Feed it `count` entries in key order (their child fields are filled in
// here); finish() places the last pages and returns the root's number. Pages
// are placed children first, so the file never needs them back.
class TreeBuilder {
public:
    TreeBuilder(const TreeShape &shape, std::uint64_t count, PagePlacer place);
    void add(Bytes entry);
    std::uint32_t finish();

private:
    struct Level {
        std::uint64_t entries = 0; // entries this level holds in all its pages
        std::uint64_t pages = 0;
        std::uint64_t pageIndex = 0;
        std::uint32_t count = 0; // entries on the open page
        std::vector<std::uint8_t> page;
    };

    std::uint32_t plannedCount(const Level &level) const;
    void addEntry(std::size_t height, Bytes entry);
    void addChild(std::size_t height, std::uint32_t child);
    std::uint32_t closePage(std::size_t height);
    void openPage(std::size_t height);
    void putPointer(MutableBytes page, std::size_t offset, std::uint32_t number) const;

    TreeShape shape_;
    PagePlacer place_;
    std::vector<Level> levels_; // leaves first
};

} // namespace recman
