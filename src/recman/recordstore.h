// The records of an open file in physical (step) order. Fixed-length records
// are known by their address only and read from their page, through the page
// cache, when asked for; records that had to be assembled (variable tails,
// expanded compression) and inserted ones are kept in a buffer of their own.
#pragma once

#include "bytes.h"
#include "pagemap.h"

#include <cstdint>
#include <optional>
#include <unordered_map>
#include <vector>

namespace recman {

class RecordStore {
public:
    RecordStore() = default;
    // Records on pages are read through pages, which must outlive the store.
    RecordStore(const PageMap &pages, const FileHeader &header);

    std::size_t size() const { return addresses_.size(); }
    // The record's bytes. A view into a page stays valid until two more
    // records have been asked for (the last two pages read are kept).
    Bytes record(std::size_t ordinal) const;
    std::uint32_t address(std::size_t ordinal) const { return addresses_[ordinal]; }
    bool live(std::size_t ordinal) const { return live_[ordinal]; }
    void setLive(std::size_t ordinal, bool live) { live_[ordinal] = live; }
    // Ordinal of the live record at an address, if the store holds one there.
    std::optional<std::size_t> ordinalOf(std::uint32_t address) const;

    // A record read from its page whenever it is wanted.
    std::size_t appendOnPage(std::uint32_t address);
    // A record copied into the store's own buffer.
    std::size_t append(Bytes record, std::uint32_t address);
    // After an update: a copied record takes the new bytes; one on a page is
    // read again from the page, which the writer has rewritten.
    void replace(std::size_t ordinal, Bytes record);
    void reserve(std::size_t records) { addresses_.reserve(records), live_.reserve(records); }

private:
    struct Copy {
        std::uint64_t start;
        std::uint32_t length;
    };

    std::size_t add(std::uint32_t address);

    const PageMap *pages_ = nullptr;
    std::uint32_t pageSize_ = 0;
    std::uint32_t userOffset_ = 0;
    std::uint32_t recordLength_ = 0;
    std::uint8_t dataTag_ = 0;
    std::vector<std::uint32_t> addresses_;
    bool inAddressOrder_ = true; // as a scan lists them; inserts into freed slots break it
    std::vector<bool> live_; // a bit a record: the list must stay small for big files
    std::unordered_map<std::size_t, Copy> copies_;
    std::vector<std::uint8_t> assembled_;
    // The last two pages read, so that records on the same page need no
    // look-up (and views into them stay valid a while).
    struct Pin {
        CachedPage page;
        std::uint32_t logical = 0;
        std::uint64_t epoch = 0;
    };
    mutable Pin pinned_[2];
    mutable unsigned nextPin_ = 0;
};

} // namespace recman
