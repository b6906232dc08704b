#include "indexwalk.h"

#include "indexpage.h"
#include "keyorder.h"

#include <algorithm>
#include <cstring>
#include <unordered_set>

namespace recman {

namespace {

constexpr std::uint32_t None = IndexPage::None;
constexpr int MaxDepth = 32;

struct Walker {
    const PageMap &pages;
    const FileHeader &header;
    const KeyDefinition &key;
    KeyWalk out;
    std::unordered_set<std::uint32_t> seenPages;
    std::unordered_set<std::uint32_t> seenRecords;
    std::vector<std::uint8_t> lastImage;
    std::vector<std::uint8_t> image;
    std::uint32_t entries = 0;
    bool linked = key.duplicatePointerOffset != 0;

    void fail(const std::string &why) const { throw FormatError(why); }

    void visit(std::uint32_t pageNumber, int depth)
    {
        if (depth > MaxDepth)
            fail("index of key " + std::to_string(key.number) + " is deeper than " + std::to_string(MaxDepth));
        if (pageNumber == 0 || pageNumber >= indexPageLimit(pages, header))
            fail("index page " + std::to_string(pageNumber) + " of key " + std::to_string(key.number) +
                 " lies outside the file");
        if (!seenPages.insert(pageNumber).second)
            fail("index page " + std::to_string(pageNumber) + " of key " + std::to_string(key.number) +
                 " is reached twice (a loop)");
        const IndexPage page(pages, header, key, pageNumber);
        // An empty tree keeps an empty root page (its child fields are not
        // meaningful); an empty page below the root is damage.
        if (page.count() == 0) {
            if (depth == 0)
                return;
            fail("index page " + std::to_string(pageNumber) + " of key " + std::to_string(key.number) + " is empty");
        }
        const bool leaf = page.leaf();
        if (!leaf)
            visit(page.childBefore(0), depth + 1);
        for (std::size_t i = 0; i < page.count(); ++i) {
            entry(page.keyBytes(i), page.record(i), page.lastDuplicate(i));
            if (!leaf)
                visit(page.childBefore(i + 1), depth + 1);
        }
    }

    void entry(Bytes keyBytes, std::uint32_t record, std::uint32_t last)
    {
        ++entries;
        image.clear();
        appendSortImage(key, keyBytes, image);
        const int order = entries == 1 ? 1 : std::memcmp(image.data(), lastImage.data(), image.size());
        if (order < 0 || (order == 0 && linked))
            fail("index of key " + std::to_string(key.number) + " is out of order");
        if (order > 0)
            out.runStarts.push_back(static_cast<std::uint32_t>(out.addresses.size()));
        lastImage = image;
        if (!linked)
            return add(record);
        chain(record, last);
    }

    void add(std::uint32_t address)
    {
        if (!seenRecords.insert(address).second)
            fail("record " + std::to_string(address) + " appears twice in the index of key " +
                 std::to_string(key.number));
        out.addresses.push_back(address);
    }

    // A linked-duplicate chain: first record to last through each slot's
    // "next" pointer, bounded by the records the file can hold.
    void chain(std::uint32_t address, std::uint32_t last)
    {
        const auto dataTag = header.format == Format::V6 ? pagetype::Data : std::uint8_t{0};
        for (;;) {
            const std::uint32_t logical = address / header.pageSize;
            if (address == None || logical == 0 || logical >= indexPageLimit(pages, header))
                fail("duplicate chain of key " + std::to_string(key.number) + " leaves the file");
            add(address);
            if (address == last)
                return;
            const auto page = pages.page(logical, dataTag);
            address = bytes::ws32(*page, address % header.pageSize + key.duplicatePointerOffset + 4);
        }
    }
};

} // namespace

std::optional<KeyWalk> walkKeyIndex(const PageMap &pages, const FileHeader &header, const KeyDefinition &key,
                                    std::string &problem)
{
    if (!indexLayoutReadable(header, key, problem))
        return std::nullopt;
    Walker walker{pages, header, key, {}, {}, {}, {}, {}};
    try {
        // An empty tree has no root: all ones, or page 0 (the control record).
        if (key.indexRoot != None && key.indexRoot != 0)
            walker.visit(key.indexRoot, 0);
        if (walker.entries != key.uniqueValues)
            walker.fail("index of key " + std::to_string(key.number) + " holds " + std::to_string(walker.entries) +
                        " values, its definition says " + std::to_string(key.uniqueValues));
    } catch (const FormatError &error) {
        problem = error.what();
        return std::nullopt;
    }
    return std::move(walker.out);
}

std::optional<std::vector<std::uint32_t>> ordinalsInWalkOrder(const RecordStore &records, const KeyDefinition &key,
                                                              const KeyWalk &walk, std::string &problem)
{
    // The record list is in physical order, which is address order; the
    // look-up relies on it and checks it first.
    const std::size_t count = records.size();
    for (std::size_t i = 1; i < count; ++i)
        if (records.address(i) <= records.address(i - 1)) {
            problem = "records are not listed in address order";
            return std::nullopt;
        }
    std::vector<std::uint32_t> order;
    order.reserve(walk.addresses.size());
    std::size_t run = 0;
    std::vector<std::uint8_t> value, image, previous;
    for (std::size_t position = 0; position < walk.addresses.size(); ++position) {
        const auto address = walk.addresses[position];
        std::size_t low = 0, high = count;
        while (low < high) {
            const std::size_t middle = low + (high - low) / 2;
            if (records.address(middle) < address)
                low = middle + 1;
            else
                high = middle;
        }
        if (low == count || records.address(low) != address || !records.live(low)) {
            problem = "index names record address " + std::to_string(address) + ", which holds no live record";
            return std::nullopt;
        }
        const bool newValue = run < walk.runStarts.size() && walk.runStarts[run] == position;
        if (newValue)
            ++run;
        else if (!order.empty() && order.back() >= low) {
            problem = "equal keys are not in record order";
            return std::nullopt;
        }
        // The records themselves must agree with the index: searches compare
        // record keys, so they have to stand in the order the pages give.
        value.clear();
        appendKeyValue(key, records.record(low), value);
        image.clear();
        appendSortImage(key, value, image);
        const int compared = position == 0 ? 1 : std::memcmp(image.data(), previous.data(), image.size());
        if (isNullKey(key, value) || (newValue ? compared <= 0 : compared != 0)) {
            problem = "record at address " + std::to_string(address) + " disagrees with its index entry";
            return std::nullopt;
        }
        std::swap(image, previous);
        order.push_back(static_cast<std::uint32_t>(low));
    }
    // Every live record is in the index unless a null key leaves it out.
    std::size_t live = 0;
    for (std::size_t i = 0; i < count; ++i)
        live += records.live(i) ? 1 : 0;
    const bool mayLeaveOut = (key.flags() & (keyflag::NullAll | keyflag::NullAny)) != 0;
    if (order.size() > live || (!mayLeaveOut && order.size() != live)) {
        problem = "index holds " + std::to_string(order.size()) + " records, the file " + std::to_string(live);
        return std::nullopt;
    }
    return order;
}

} // namespace recman
