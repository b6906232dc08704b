#include "keybuild.h"

#include "indexbuild.h"
#include "keyorder.h"
#include "pagebuild.h"
#include "pagemap.h"

#include <algorithm>
#include <cstring>

namespace recman {

namespace {

constexpr std::uint32_t None = 0xFFFFFFFF;

struct Written {
    NewFileWriter &writer;
    const FileSpec &spec;
    const Layout &layout;
    std::uint32_t recordCount;

    std::size_t slotOffset(std::uint32_t slot) const { return 6 + std::size_t{slot} * layout.physicalLength; }

    // Each data page in turn, with its first ordinal and its number of records;
    // `change` returns true when it changed the page, which is then rewritten.
    template <typename Change> bool forEachDataPage(Change change) const
    {
        std::vector<std::uint8_t> page(layout.pageSize);
        for (std::uint32_t first = 0; first < recordCount; first += layout.slotsPerPage) {
            const auto logical = layout.firstDataPage + first / layout.slotsPerPage;
            if (!writer.readPage(logical, page))
                return false;
            if (change(MutableBytes(page), first, std::min(layout.slotsPerPage, recordCount - first)) &&
                !writer.rewritePage(logical, page))
                return false;
        }
        return true;
    }
};

// Non-null records in key order, equal values in record order.
struct KeyOrder {
    std::vector<std::uint32_t> ordinals;
    std::vector<bool> startsValue; // per position
    std::uint64_t distinct = 0;
};

bool sortKey(const Written &file, const KeyDefinition &key, KeyOrder &order)
{
    const std::size_t width = sortImageLength(key);
    std::vector<std::uint8_t> images(std::size_t{file.recordCount} * width);
    std::vector<std::uint8_t> value, image;
    order.ordinals.reserve(file.recordCount);
    const bool read = file.forEachDataPage([&](MutableBytes page, std::uint32_t first, std::uint32_t count) {
        for (std::uint32_t slot = 0; slot < count; ++slot) {
            const auto record = page.subspan(file.slotOffset(slot) + file.layout.userOffset, file.spec.recordLength);
            value.clear();
            appendKeyValue(key, record, value);
            if (isNullKey(key, value))
                continue;
            image.clear();
            appendSortImage(key, value, image);
            std::copy(image.begin(), image.end(), images.begin() + static_cast<std::ptrdiff_t>((first + slot) * width));
            order.ordinals.push_back(first + slot);
        }
        return false;
    });
    const auto at = [&](std::uint32_t ordinal) { return images.data() + std::size_t{ordinal} * width; };
    std::sort(order.ordinals.begin(), order.ordinals.end(), [&](std::uint32_t a, std::uint32_t b) {
        const int compared = std::memcmp(at(a), at(b), width);
        return compared < 0 || (compared == 0 && a < b);
    });
    order.startsValue.resize(order.ordinals.size());
    for (std::size_t i = 0; i < order.ordinals.size(); ++i) {
        order.startsValue[i] = i == 0 || std::memcmp(at(order.ordinals[i - 1]), at(order.ordinals[i]), width) != 0;
        order.distinct += order.startsValue[i] ? 1 : 0;
    }
    return read;
}

// Each value's records linked first to last through the slots' pointer pairs
// (previous, next; all ones at the ends), in record order.
bool linkDuplicates(const Written &file, std::size_t key, const KeyOrder &order)
{
    std::vector<std::uint32_t> previous(file.recordCount, None), next(file.recordCount, None);
    for (std::size_t i = 1; i < order.ordinals.size(); ++i)
        if (!order.startsValue[i]) {
            next[order.ordinals[i - 1]] = file.layout.address(order.ordinals[i]);
            previous[order.ordinals[i]] = file.layout.address(order.ordinals[i - 1]);
        }
    const std::size_t pair = file.layout.duplicateOffsets[key];
    return file.forEachDataPage([&](MutableBytes page, std::uint32_t first, std::uint32_t count) {
        for (std::uint32_t slot = 0; slot < count; ++slot) {
            bytes::putWs32(page, file.slotOffset(slot) + pair, previous[first + slot]);
            bytes::putWs32(page, file.slotOffset(slot) + pair + 4, next[first + slot]);
        }
        return true;
    });
}

// One entry per record, or per value with linked duplicates (its first and
// last record); the key bytes are read back from the first record.
bool buildTree(const Written &file, std::size_t k, const KeyOrder &order, std::uint32_t &nextPage, std::uint32_t &root)
{
    const auto &key = file.spec.keys[k];
    const bool linked = file.layout.duplicateOffsets[k] != 0;
    const std::size_t keyLength = key.length();
    const TreeShape shape{file.layout.format, file.layout.pageSize, static_cast<int>(k), indexEntryLength(key)};
    const auto tag = static_cast<std::uint8_t>(pagetype::IndexBase + k);
    bool ok = true;
    TreeBuilder tree(shape, linked ? order.distinct : order.ordinals.size(), [&](MutableBytes page) {
        const auto number = nextPage++;
        pagebuild::putPageNumber(page, number, tag, file.layout.format);
        ok = ok && file.writer.addPage(number, page, tag);
        return number;
    });
    // Keys often follow record order, so the page last read usually serves the next entry.
    std::vector<std::uint8_t> page(file.layout.pageSize), entry;
    std::uint32_t pageHeld = 0;
    for (std::size_t i = 0; ok && i < order.ordinals.size(); ++i) {
        if (linked && !order.startsValue[i])
            continue;
        const auto address = file.layout.address(order.ordinals[i]);
        if (address / file.layout.pageSize != pageHeld) {
            pageHeld = address / file.layout.pageSize;
            ok = file.writer.readPage(pageHeld, page);
        }
        const auto record =
            Bytes(page).subspan(address % file.layout.pageSize + file.layout.userOffset, file.spec.recordLength);
        entry.clear();
        appendKeyValue(key, record, entry);
        entry.resize(shape.entryLength);
        bytes::putWs32(entry, keyLength, address);
        if (linked) {
            auto last = i + 1;
            while (last < order.ordinals.size() && !order.startsValue[last])
                ++last;
            bytes::putWs32(entry, keyLength + 4, file.layout.address(order.ordinals[last - 1]));
        }
        tree.add(entry);
    }
    if (ok)
        root = tree.finish();
    return ok;
}

} // namespace

Status buildKey(NewFileWriter &writer, const FileSpec &spec, const Layout &layout, std::size_t key,
                std::uint32_t recordCount, std::uint32_t &nextPage, BuiltKey &built, std::string &message)
{
    const Written file{writer, spec, layout, recordCount};
    KeyOrder order;
    bool ok = sortKey(file, spec.keys[key], order);
    built.distinct = order.distinct;
    if (ok && !spec.keys[key].allowsDuplicates() && order.distinct != order.ordinals.size()) {
        message = "two records have the same value of unique key " + std::to_string(key);
        return Status::DuplicateKey;
    }
    if (ok && spec.indexPages) {
        if (layout.duplicateOffsets[key] != 0)
            ok = linkDuplicates(file, key, order);
        ok = ok && buildTree(file, key, order, nextPage, built.root);
    }
    if (!ok) {
        message = "writing the new file failed (disk full or I/O error)";
        return Status::CreateIoError;
    }
    return Status::Success;
}

} // namespace recman
