#include "indexbuild.h"

#include <algorithm>
#include <stdexcept>

namespace recman {

namespace {

constexpr std::uint32_t None = 0xFFFFFFFF;
constexpr std::size_t EntriesStart = 16;

// Pages a level needs for `entries` entries when all but its last pages are
// full: each page but the last passes one entry up to its parent.
std::uint64_t pagesFor(std::uint64_t entries, std::uint32_t capacity)
{
    return entries <= capacity ? 1 : (entries + 1 + capacity) / (capacity + 1);
}

} // namespace

TreeBuilder::TreeBuilder(const TreeShape &shape, std::uint64_t count, PagePlacer place)
    : shape_(shape), place_(std::move(place))
{
    if (shape_.capacity() < 2)
        throw std::invalid_argument("index pages must hold at least two entries");
    std::uint64_t entries = count;
    for (;;) {
        Level level;
        level.entries = entries;
        level.pages = pagesFor(entries, shape_.capacity());
        levels_.push_back(std::move(level));
        openPage(levels_.size() - 1);
        if (levels_.back().pages == 1)
            break;
        entries = levels_.back().pages - 1;
    }
}

// Full pages, except that the last two share what is left when the last one
// alone would be less than half full.
std::uint32_t TreeBuilder::plannedCount(const Level &level) const
{
    const std::uint32_t capacity = shape_.capacity();
    if (level.pages == 1)
        return static_cast<std::uint32_t>(level.entries);
    const auto rest = static_cast<std::uint32_t>(level.entries - (level.pages - 1) * (capacity + 1));
    const bool last = level.pageIndex + 1 == level.pages;
    if (rest >= capacity / 2)
        return last ? rest : capacity;
    const std::uint32_t shared = capacity + rest;
    if (last)
        return shared / 2;
    return level.pageIndex + 2 == level.pages ? shared - shared / 2 : capacity;
}

void TreeBuilder::add(Bytes entry)
{
    addEntry(0, entry);
}

void TreeBuilder::addEntry(std::size_t height, Bytes entry)
{
    auto &level = levels_[height];
    if (level.count == plannedCount(level)) {
        // The page is complete: this entry separates it from the next one.
        const auto number = closePage(height);
        ++level.pageIndex;
        openPage(height);
        addChild(height + 1, number);
        addEntry(height + 1, entry);
        return;
    }
    const std::size_t at = EntriesStart + std::size_t{level.count} * shape_.entryLength;
    std::copy(entry.begin(), entry.end(), level.page.begin() + static_cast<std::ptrdiff_t>(at));
    bytes::put32(level.page, at + shape_.entryLength - 4, height == 0 ? None : 0);
    ++level.count;
}

void TreeBuilder::addChild(std::size_t height, std::uint32_t child)
{
    auto &level = levels_.at(height);
    const std::size_t at = level.count == 0 ? 12 : EntriesStart + std::size_t{level.count} * shape_.entryLength - 4;
    putPointer(level.page, at, child);
}

// An internal page's last child goes to the header; the last entry's own
// child field stays 0, as in the record manager's pages.
std::uint32_t TreeBuilder::closePage(std::size_t height)
{
    auto &level = levels_[height];
    auto &page = level.page;
    if (height == 0) {
        bytes::put32(page, 8, None);
        bytes::put32(page, 12, None);
    } else {
        const std::size_t last = EntriesStart + std::size_t{level.count} * shape_.entryLength - 4;
        std::copy_n(page.begin() + static_cast<std::ptrdiff_t>(last), 4, page.begin() + 8);
        bytes::put32(page, last, 0);
    }
    bytes::put16(page, 4, 1);
    bytes::put16(page, 6, static_cast<std::uint16_t>(level.count));
    return place_(page);
}

void TreeBuilder::openPage(std::size_t height)
{
    auto &level = levels_[height];
    level.page.assign(shape_.pageSize, 0);
    level.count = 0;
}

void TreeBuilder::putPointer(MutableBytes page, std::size_t offset, std::uint32_t number) const
{
    if (shape_.format == Format::V5)
        bytes::putWs32(page, offset, number);
    else
        bytes::putPp24(page, offset, number, static_cast<std::uint8_t>(0x80 + shape_.key));
}

std::uint32_t TreeBuilder::finish()
{
    for (std::size_t height = 0;; ++height) {
        auto &level = levels_[height];
        if (level.pageIndex + 1 != level.pages || level.count != plannedCount(level))
            throw std::logic_error("index builder was given a different number of entries than announced");
        const auto number = closePage(height);
        if (height + 1 == levels_.size())
            return number;
        addChild(height + 1, number);
    }
}

} // namespace recman
