#include "keyindex.h"

#include "indexwalk.h"
#include "keyorder.h"

#include <algorithm>
#include <cstring>
#include <numeric>

namespace recman {

KeyIndex::KeyIndex(const KeyDefinition &key, const RecordStore &records) : key_(&key), records_(&records)
{
    // Sort images are built once into one flat buffer, then the ordinals are
    // sorted by plain byte comparison of those images.
    const std::size_t width = sortImageLength(key);
    std::vector<std::uint8_t> images;
    images.reserve(records.size() * width);
    std::vector<std::uint8_t> value;
    std::vector<std::uint32_t> rows;
    rows.reserve(records.size());
    for (std::uint32_t ordinal = 0; ordinal < records.size(); ++ordinal) {
        if (!records.live(ordinal))
            continue;
        value.clear();
        appendKeyValue(key, records.record(ordinal), value);
        if (isNullKey(key, value))
            continue;
        appendSortImage(key, value, images);
        rows.push_back(ordinal);
    }
    std::vector<std::uint32_t> slots(rows.size());
    std::iota(slots.begin(), slots.end(), 0u);
    std::sort(slots.begin(), slots.end(), [&](std::uint32_t a, std::uint32_t b) {
        const int order = width == 0 ? 0 : std::memcmp(&images[a * width], &images[b * width], width);
        return order != 0 ? order < 0 : a < b;
    });
    order_.reserve(slots.size());
    for (auto slot : slots)
        order_.push_back(rows[slot]);
}

KeyIndex::KeyIndex(const KeyDefinition &key, const RecordStore &records, std::vector<std::uint32_t> order)
    : key_(&key), records_(&records), order_(std::move(order))
{
}

std::vector<std::uint8_t> KeyIndex::imageOfValue(Bytes keyValue) const
{
    std::vector<std::uint8_t> image;
    appendSortImage(*key_, keyValue, image);
    return image;
}

std::vector<std::uint8_t> KeyIndex::imageOfRecord(std::uint32_t ordinal) const
{
    return sortImageOfRecord(*key_, records_->record(ordinal));
}

int KeyIndex::compareAt(std::size_t position, const std::vector<std::uint8_t> &image) const
{
    scratch_.clear();
    valueScratch_.clear();
    appendKeyValue(*key_, records_->record(order_[position]), valueScratch_);
    appendSortImage(*key_, valueScratch_, scratch_);
    return image.empty() ? 0 : std::memcmp(scratch_.data(), image.data(), image.size());
}

std::size_t KeyIndex::lowerBound(const std::vector<std::uint8_t> &image) const
{
    std::size_t low = 0, high = order_.size();
    while (low < high) {
        const std::size_t middle = low + (high - low) / 2;
        if (compareAt(middle, image) < 0)
            low = middle + 1;
        else
            high = middle;
    }
    return low;
}

std::size_t KeyIndex::upperBound(const std::vector<std::uint8_t> &image) const
{
    std::size_t low = 0, high = order_.size();
    while (low < high) {
        const std::size_t middle = low + (high - low) / 2;
        if (compareAt(middle, image) <= 0)
            low = middle + 1;
        else
            high = middle;
    }
    return low;
}

std::size_t KeyIndex::lowerBound(const std::vector<std::uint8_t> &image, std::uint32_t ordinal) const
{
    std::size_t low = lowerBound(image);
    const std::size_t high = upperBound(image);
    // Within equal keys the order is by ordinal.
    auto first = std::lower_bound(order_.begin() + static_cast<std::ptrdiff_t>(low),
                                  order_.begin() + static_cast<std::ptrdiff_t>(high), ordinal);
    return static_cast<std::size_t>(first - order_.begin());
}

bool KeyIndex::imageAtEquals(std::size_t position, const std::vector<std::uint8_t> &image) const
{
    return position < order_.size() && compareAt(position, image) == 0;
}

bool KeyIndex::indexes(std::uint32_t ordinal) const
{
    std::vector<std::uint8_t> value;
    appendKeyValue(*key_, records_->record(ordinal), value);
    return !isNullKey(*key_, value);
}

void KeyIndex::insert(std::uint32_t ordinal)
{
    if (!indexes(ordinal))
        return;
    const auto position = lowerBound(imageOfRecord(ordinal), ordinal);
    order_.insert(order_.begin() + static_cast<std::ptrdiff_t>(position), ordinal);
}

void KeyIndex::erase(std::uint32_t ordinal, const std::vector<std::uint8_t> &image)
{
    // Records are read from their pages, which already hold the record's new
    // bytes (or a freed slot): the search may be misled exactly at the entry
    // sought, and then a plain look through the index finds it.
    auto position = order_.begin() + static_cast<std::ptrdiff_t>(lowerBound(image, ordinal));
    if (position == order_.end() || *position != ordinal)
        position = std::find(order_.begin(), order_.end(), ordinal);
    if (position != order_.end())
        order_.erase(position);
}

KeyIndexes::KeyIndexes(const std::vector<KeyDefinition> &keys, const RecordStore &records, const PageMap *pages,
                       const FileHeader *header, std::vector<std::string> *warnings)
    : keys_(&keys), records_(&records), pages_(pages), header_(header), warnings_(warnings), built_(keys.size())
{
}

KeyIndex &KeyIndexes::use(std::size_t number, bool trustIndexPages)
{
    auto &index = built_[number];
    if (index)
        return *index;
    if (auto order = trustIndexPages ? orderFromIndexPages(number) : std::nullopt)
        index = std::make_unique<KeyIndex>((*keys_)[number], *records_, std::move(*order));
    else
        index = std::make_unique<KeyIndex>((*keys_)[number], *records_);
    return *index;
}

std::optional<std::vector<std::uint32_t>> KeyIndexes::orderFromIndexPages(std::size_t number) const
{
    if (!pages_ || !header_ || header_->createdByEngine)
        return std::nullopt;
    std::string problem;
    std::optional<std::vector<std::uint32_t>> order;
    if (auto walk = walkKeyIndex(*pages_, *header_, (*keys_)[number], problem))
        order = ordinalsInWalkOrder(*records_, (*keys_)[number], *walk, problem);
    if (!order && warnings_)
        warnings_->push_back("index pages of key " + std::to_string(number) + " not used (" + problem +
                             "); its order was built from a scan of the records");
    return order;
}

} // namespace recman
