// Keyed reads of a big file straight down its own index pages (see
// indexdescent.h): no record list, no index in memory.
#include "indexdescent.h"
#include "openfile.h"

namespace recman {

using namespace keyed;

Status File::descend(int key, int operation, const std::vector<std::uint8_t> &image)
{
    auto &file = *impl_->file;
    auto &at = impl_->at;
    const auto &definition = file.indexes.key(static_cast<std::size_t>(key));
    IndexDescent tree(*file.pages, file.header, definition, file.checkedIndexPages[static_cast<std::size_t>(key)]);
    using Bound = IndexDescent::Bound;
    constexpr std::uint32_t highestRecord = 0xFFFFFFFF;
    const IndexTarget lowest{nullptr, 0, IndexTarget::Lowest}, highest{nullptr, 0, IndexTarget::Highest};
    const bool linked = definition.duplicatePointerOffset != 0;
    std::optional<IndexEntry> entry;
    bool lastOfChain = false; // a search backwards lands on the last record of a linked chain
    switch (operation) {
    case Equal:
        entry = tree.find(Bound::AtLeast, {&image, 0});
        if (!entry || entry->image != image)
            return fail(Status::KeyNotFound, "no record with that value of " + keyName(key));
        break;
    case GreaterOrEqual:
        entry = tree.find(Bound::AtLeast, {&image, 0});
        break;
    case Greater:
        entry = tree.find(Bound::After, {&image, highestRecord});
        break;
    case Less:
        entry = tree.find(Bound::Below, {&image, 0});
        lastOfChain = true;
        break;
    case LessOrEqual:
        entry = tree.find(Bound::AtMost, {&image, highestRecord});
        lastOfChain = true;
        break;
    case First:
        entry = tree.find(Bound::After, lowest);
        break;
    case Last:
        entry = tree.find(Bound::Below, highest);
        lastOfChain = true;
        break;
    default: {
        const int direction = operation == Next ? +1 : -1;
        lastOfChain = direction < 0;
        if (linked) {
            // Within a chain of equal values, by the records' own pointers.
            const auto same = tree.find(Bound::AtLeast, {&image, 0});
            if (same && same->image == image)
                if (const auto neighbour = tree.chainStep(*same, at.address, direction)) {
                    entry = IndexEntry{image, *neighbour, *neighbour};
                    break;
                }
            entry = direction > 0 ? tree.find(Bound::After, {&image, highestRecord})
                                  : tree.find(Bound::Below, {&image, 0});
        } else {
            entry = tree.find(direction > 0 ? Bound::After : Bound::Below, {&image, at.address});
        }
    }
    }
    if (!entry)
        return fail(Status::EndOfFile, "no record in that direction on " + keyName(key));
    const auto address = lastOfChain ? entry->last : entry->first;
    std::vector<std::uint8_t> bytes;
    tree.readRecord(address, entry->image, bytes);
    at.onRecord = true;
    at.ordinal.reset();
    at.address = address;
    at.bytes = std::move(bytes);
    at.keyPath = key;
    at.keyImage = std::move(entry->image);
    return Status::Success;
}

} // namespace recman
