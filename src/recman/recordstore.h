// The records of an open file, held in memory in physical (step) order.
// Fixed-length records stay where they lie in the file's image, read once at
// open; records that had to be assembled (variable tails, expanded
// compression) and inserted ones are kept in a buffer of their own.
#pragma once

#include "bytes.h"
#include "filehandle.h"

#include <cstdint>
#include <vector>

namespace recman {

class RecordStore {
public:
    std::size_t size() const { return places_.size(); }
    Bytes record(std::size_t ordinal) const
    {
        const auto &place = places_[ordinal];
        return (place.inImage ? image_.bytes() : Bytes(assembled_)).subspan(place.start, place.length);
    }
    MutableBytes mutableRecord(std::size_t ordinal)
    {
        const auto &place = places_[ordinal];
        return (place.inImage ? image_.bytes() : MutableBytes(assembled_)).subspan(place.start, place.length);
    }
    std::uint32_t address(std::size_t ordinal) const { return places_[ordinal].address; }
    bool live(std::size_t ordinal) const { return places_[ordinal].live; }
    void setLive(std::size_t ordinal, bool live) { places_[ordinal].live = live; }

    // The file's bytes; records added with appendFromImage lie in them.
    void adoptImage(FileImage image) { image_ = std::move(image); }
    Bytes image() const { return image_.bytes(); }

    // A record that lies in the image (record must be a view into image()).
    std::size_t appendFromImage(Bytes record, std::uint32_t address)
    {
        return add(static_cast<std::uint64_t>(record.data() - image_.bytes().data()), record.size(), address, true);
    }
    // A record copied into the store's own buffer.
    std::size_t append(Bytes record, std::uint32_t address)
    {
        const auto start = assembled_.size();
        assembled_.insert(assembled_.end(), record.begin(), record.end());
        return add(start, record.size(), address, false);
    }
    void reserve(std::size_t records, std::size_t assembledBytes)
    {
        places_.reserve(records);
        assembled_.reserve(assembledBytes);
    }

private:
    struct Place {
        std::uint64_t start;
        std::uint32_t length;
        std::uint32_t address;
        bool inImage;
        bool live;
    };

    std::size_t add(std::uint64_t start, std::size_t length, std::uint32_t address, bool inImage)
    {
        places_.push_back({start, static_cast<std::uint32_t>(length), address, inImage, true});
        return places_.size() - 1;
    }

    FileImage image_;
    std::vector<std::uint8_t> assembled_;
    std::vector<Place> places_;
};

} // namespace recman
