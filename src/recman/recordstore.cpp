#include "recordstore.h"

#include <algorithm>

namespace recman {

RecordStore::RecordStore(const PageMap &pages, const FileHeader &header)
    : pages_(&pages), pageSize_(header.pageSize), userOffset_(header.userOffset), recordLength_(header.recordLength),
      dataTag_(header.format == Format::V6 ? pagetype::Data : 0)
{
}

Bytes RecordStore::record(std::size_t ordinal) const
{
    if (const auto copy = copies_.find(ordinal); copy != copies_.end())
        return Bytes(assembled_).subspan(copy->second.start, copy->second.length);
    const auto address = addresses_[ordinal];
    const auto logical = address / pageSize_;
    const auto epoch = pages_->cacheEpoch();
    const Pin *held = nullptr;
    for (const auto &pin : pinned_)
        if (pin.page && pin.logical == logical && pin.epoch == epoch)
            held = &pin;
    if (!held) {
        auto &pin = pinned_[nextPin_++ % 2];
        pin = {pages_->page(logical, dataTag_), logical, epoch};
        held = &pin;
    }
    return Bytes(*held->page).subspan(address % pageSize_ + userOffset_, recordLength_);
}

std::optional<std::size_t> RecordStore::ordinalOf(std::uint32_t address) const
{
    if (inAddressOrder_) {
        const auto found = std::lower_bound(addresses_.begin(), addresses_.end(), address);
        const auto ordinal = static_cast<std::size_t>(found - addresses_.begin());
        if (found != addresses_.end() && *found == address && live(ordinal))
            return ordinal;
        return std::nullopt;
    }
    // A slot freed and used again holds a live record after a dead one.
    for (std::size_t ordinal = addresses_.size(); ordinal-- > 0;)
        if (addresses_[ordinal] == address && live(ordinal))
            return ordinal;
    return std::nullopt;
}

std::size_t RecordStore::add(std::uint32_t address)
{
    inAddressOrder_ = inAddressOrder_ && (addresses_.empty() || address > addresses_.back());
    addresses_.push_back(address);
    live_.push_back(true);
    return addresses_.size() - 1;
}

std::size_t RecordStore::appendOnPage(std::uint32_t address)
{
    return add(address);
}

std::size_t RecordStore::append(Bytes record, std::uint32_t address)
{
    const auto ordinal = add(address);
    copies_[ordinal] = {assembled_.size(), static_cast<std::uint32_t>(record.size())};
    assembled_.insert(assembled_.end(), record.begin(), record.end());
    return ordinal;
}

void RecordStore::replace(std::size_t ordinal, Bytes record)
{
    const auto copy = copies_.find(ordinal);
    if (copy == copies_.end())
        return;
    const auto target = MutableBytes(assembled_).subspan(copy->second.start, copy->second.length);
    std::copy_n(record.begin(), std::min(record.size(), target.size()), target.begin());
}

} // namespace recman
