// The records of an open file, held in memory in physical (step) order.
#pragma once

#include "bytes.h"

#include <cstdint>
#include <vector>

namespace recman {

class RecordStore {
public:
    std::size_t size() const { return addresses_.size(); }
    Bytes record(std::size_t ordinal) const
    {
        return Bytes(data_).subspan(starts_[ordinal], starts_[ordinal + 1] - starts_[ordinal]);
    }
    MutableBytes mutableRecord(std::size_t ordinal)
    {
        return MutableBytes(data_).subspan(starts_[ordinal], starts_[ordinal + 1] - starts_[ordinal]);
    }
    std::uint32_t address(std::size_t ordinal) const { return addresses_[ordinal]; }
    bool live(std::size_t ordinal) const { return live_[ordinal] != 0; }
    void setLive(std::size_t ordinal, bool live) { live_[ordinal] = live ? 1 : 0; }

    std::size_t append(Bytes record, std::uint32_t address)
    {
        data_.insert(data_.end(), record.begin(), record.end());
        starts_.push_back(data_.size());
        addresses_.push_back(address);
        live_.push_back(1);
        return addresses_.size() - 1;
    }
    void reserve(std::size_t records, std::size_t bytes)
    {
        data_.reserve(bytes);
        starts_.reserve(records + 1);
        addresses_.reserve(records);
        live_.reserve(records);
    }

private:
    std::vector<std::uint8_t> data_;
    std::vector<std::uint64_t> starts_{0};
    std::vector<std::uint32_t> addresses_;
    std::vector<std::uint8_t> live_;
};

} // namespace recman
