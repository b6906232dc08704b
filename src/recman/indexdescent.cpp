#include "indexdescent.h"

#include "indexpage.h"
#include "keyorder.h"
#include "recordscan.h"

#include <cstring>

namespace recman {

namespace {

constexpr int MaxDepth = 32;

std::string keyName(const KeyDefinition &key)
{
    return "key " + std::to_string(key.number);
}

} // namespace

IndexDescent::IndexDescent(const PageMap &pages, const FileHeader &header, const KeyDefinition &key,
                           CheckedIndexPages &checked)
    : pages_(pages), header_(header), key_(key), checked_(checked), linked_(key.duplicatePointerOffset != 0)
{
    if (checked_.epoch != pages_.cacheEpoch()) {
        checked_.pages.clear();
        checked_.epoch = pages_.cacheEpoch();
    }
}

int IndexDescent::compare(const std::vector<std::uint8_t> &image, std::uint32_t record,
                          const IndexTarget &target) const
{
    if (target.extreme != IndexTarget::None)
        return -target.extreme;
    if (const int order = std::memcmp(image.data(), target.image->data(), image.size()); order != 0)
        return order;
    // Entries of a linked key are one per value; others are ordered by
    // record address between equal values.
    if (linked_ || record == target.record)
        return 0;
    return record < target.record ? -1 : 1;
}

std::optional<IndexEntry> IndexDescent::find(Bound bound, const IndexTarget &target)
{
    const std::uint32_t root = key_.indexRoot;
    const auto noValues = [&]() -> std::optional<IndexEntry> {
        if (key_.uniqueValues != 0)
            throw FormatError("index of " + keyName(key_) + " is empty, its definition counts " +
                              std::to_string(key_.uniqueValues) + " values");
        return std::nullopt;
    };
    if (root == IndexPage::None || root == 0)
        return noValues(); // an empty tree
    // The keys a page must lie between, from the entries around it in its parent.
    std::optional<IndexEntry> below, above, found;
    std::vector<std::uint8_t> image;
    const auto entryAt = [&](const IndexPage &page, std::size_t i) {
        IndexEntry entry{{}, page.record(i), page.lastDuplicate(i)};
        appendSortImage(key_, page.keyBytes(i), entry.image);
        return entry;
    };
    const auto ordered = [&](const IndexEntry &low, const IndexEntry &high) {
        const int order = std::memcmp(low.image.data(), high.image.data(), low.image.size());
        return order < 0 || (order == 0 && !linked_ && low.first < high.first);
    };
    std::uint32_t number = root;
    for (int depth = 0;; ++depth) {
        if (depth > MaxDepth)
            throw FormatError("index of " + keyName(key_) + " is deeper than " + std::to_string(MaxDepth));
        const IndexPage page(pages_, header_, key_, number);
        const auto name = "index page " + std::to_string(number) + " of " + keyName(key_);
        if (page.count() == 0) {
            if (depth == 0)
                return noValues();
            throw FormatError(name + " is empty");
        }
        if (checked_.pages.count(number) == 0) {
            // Once per page: its entries in order, and within its parent's.
            std::optional<IndexEntry> previous = below;
            for (std::size_t i = 0; i < page.count(); ++i) {
                auto entry = entryAt(page, i);
                if (previous && !ordered(*previous, entry))
                    throw FormatError(name + " is out of order");
                previous = std::move(entry);
            }
            if (above && !ordered(*previous, *above))
                throw FormatError(name + " is out of order");
            checked_.pages.insert(number);
        }
        // First entry not below the target (AtLeast, Below) or above it (After, AtMost).
        const bool strict = bound == Bound::After || bound == Bound::AtMost;
        std::size_t low = 0, high = page.count();
        while (low < high) {
            const std::size_t middle = low + (high - low) / 2;
            image.clear();
            appendSortImage(key_, page.keyBytes(middle), image);
            const int order = compare(image, page.record(middle), target);
            if (order < 0 || (strict && order == 0))
                low = middle + 1;
            else
                high = middle;
        }
        const bool forward = bound == Bound::AtLeast || bound == Bound::After;
        if (forward && low < page.count())
            found = entryAt(page, low);
        if (!forward && low > 0)
            found = entryAt(page, low - 1);
        if (page.leaf())
            return found;
        if (low > 0)
            below = entryAt(page, low - 1);
        if (low < page.count())
            above = entryAt(page, low);
        number = page.childBefore(low);
    }
}

std::uint32_t IndexDescent::chainPointer(std::uint32_t address, int direction) const
{
    const auto page = pages_.page(address / header_.pageSize, header_.format == Format::V6 ? pagetype::Data : 0);
    const auto offset = address % header_.pageSize + key_.duplicatePointerOffset + (direction > 0 ? 4 : 0);
    if (offset + 4 > page->size())
        throw FormatError("duplicate chain of " + keyName(key_) + " leaves its page");
    const auto neighbour = bytes::ws32(*page, offset);
    if (neighbour == IndexPage::None || (direction > 0 ? neighbour <= address : neighbour >= address))
        throw FormatError("duplicate chain of " + keyName(key_) + " is broken at record " + std::to_string(address));
    return neighbour;
}

std::optional<std::uint32_t> IndexDescent::chainStep(const IndexEntry &chain, std::uint32_t address,
                                                     int direction) const
{
    if (direction > 0 ? address >= chain.last : address <= chain.first)
        return std::nullopt;
    std::vector<std::uint8_t> record;
    bool stillInChain = true;
    try {
        readRecord(address, chain.image, record);
    } catch (const FormatError &) {
        stillInChain = false;
    }
    if (stillInChain)
        return chainPointer(address, direction);
    std::optional<std::uint32_t> before;
    for (std::uint32_t at = chain.first;; at = chainPointer(at, +1)) {
        if (direction > 0 && at > address)
            return at;
        if (direction < 0 && at >= address)
            return before;
        if (at == chain.last)
            return direction > 0 ? std::nullopt : std::optional(at);
        before = at;
    }
}

void IndexDescent::readRecord(std::uint32_t address, const std::vector<std::uint8_t> &image,
                              std::vector<std::uint8_t> &out) const
{
    readRecordAt(header_, pages_, address, out);
    std::vector<std::uint8_t> value;
    appendKeyValue(key_, out, value);
    if (isNullKey(key_, value) || sortImageOfRecord(key_, out) != image)
        throw FormatError("record at address " + std::to_string(address) + " disagrees with its entry in the index of " +
                          keyName(key_));
}

} // namespace recman
