// In-memory index of one key: record ordinals ordered by (sort image of the
// key value, ordinal). Ordinals grow in physical order and with every insert,
// so duplicates keep their insertion order.
#pragma once

#include "keydef.h"
#include "recordstore.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace recman {

class KeyIndex {
public:
    KeyIndex(const KeyDefinition &key, const RecordStore &records);
    // An index whose order is already known (read from the file's own index
    // pages): ordinals by key, equal keys by ordinal.
    KeyIndex(const KeyDefinition &key, const RecordStore &records, std::vector<std::uint32_t> order);

    const KeyDefinition &key() const { return *key_; }
    std::size_t size() const { return order_.size(); }
    std::uint32_t ordinalAt(std::size_t position) const { return order_[position]; }

    // Sort image of a key value (KeyDefinition::length() bytes) or of a record's key.
    std::vector<std::uint8_t> imageOfValue(Bytes keyValue) const;
    std::vector<std::uint8_t> imageOfRecord(std::uint32_t ordinal) const;

    // First position whose key is >= image (or > image for upperBound).
    std::size_t lowerBound(const std::vector<std::uint8_t> &image) const;
    std::size_t upperBound(const std::vector<std::uint8_t> &image) const;
    // First position at or after (image, ordinal) in index order.
    std::size_t lowerBound(const std::vector<std::uint8_t> &image, std::uint32_t ordinal) const;
    bool imageAtEquals(std::size_t position, const std::vector<std::uint8_t> &image) const;

    // False when the record is left out of this key (null key value).
    bool indexes(std::uint32_t ordinal) const;
    void insert(std::uint32_t ordinal);
    void erase(std::uint32_t ordinal, const std::vector<std::uint8_t> &image);

private:
    int compareAt(std::size_t position, const std::vector<std::uint8_t> &image) const;

    const KeyDefinition *key_;
    const RecordStore *records_;
    std::vector<std::uint32_t> order_;
    mutable std::vector<std::uint8_t> scratch_;
    mutable std::vector<std::uint8_t> valueScratch_;
};

// The indexes of an open file. Each is built on the first keyed use of its key
// (a keyed get or a write that checks it); stepping in physical order never
// builds one, so opening a file costs no sorting. An index not yet built needs
// no upkeep on writes: it is built later from the records as they then stand.
// A file the record manager wrote has its own index pages: the order is read
// from them when they are consistent, and otherwise built from the records,
// with a warning. (Our writes to such files never change key bytes, so they
// leave those pages valid.)
class KeyIndexes {
public:
    KeyIndexes() = default;
    // keys and records must outlive this object and stay where they are.
    // pages and header (may be null: no index pages) likewise; warnings
    // receives why a key's index pages were not used.
    KeyIndexes(const std::vector<KeyDefinition> &keys, const RecordStore &records, const PageMap *pages = nullptr,
               const FileHeader *header = nullptr, std::vector<std::string> *warnings = nullptr);

    std::size_t size() const { return built_.size(); }
    const KeyDefinition &key(std::size_t number) const { return (*keys_)[number]; }
    // The index of a key, built now if it was not yet (from the file's index
    // pages if they are consistent and trustIndexPages, else from the records).
    KeyIndex &use(std::size_t number, bool trustIndexPages = true);
    // The index of a key if it has been built, else null.
    KeyIndex *built(std::size_t number) const { return built_[number].get(); }

private:
    std::optional<std::vector<std::uint32_t>> orderFromIndexPages(std::size_t number) const;
    const std::vector<KeyDefinition> *keys_ = nullptr;
    const RecordStore *records_ = nullptr;
    const PageMap *pages_ = nullptr;
    const FileHeader *header_ = nullptr;
    std::vector<std::string> *warnings_ = nullptr;
    std::vector<std::unique_ptr<KeyIndex>> built_;
};

} // namespace recman
