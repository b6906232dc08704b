#include "pagemap.h"

namespace recman {

PageMap::PageMap(const FileHandle &file, const FileHeader &header, std::uint64_t fileSize, PageCache *cache)
    : file_(file), cache_(cache), format_(header.format), pageSize_(header.pageSize),
      physicalPages_(static_cast<std::uint32_t>(fileSize / header.pageSize)), logicalEnd_(header.pagesInUse)
{
    // A partial last page is ignored; a control record counting more pages
    // than the file holds means the file was cut short.
    if (logicalEnd_ > physicalPages_)
        throw FormatError("file is truncated: the control record counts " + std::to_string(logicalEnd_) +
                          " pages, the file holds " + std::to_string(physicalPages_));
    if (format_ == Format::V6)
        loadPats(header.usage);
}

bool PageMap::isPatPosition(std::uint32_t physical) const
{
    if (physical < 2)
        return false;
    const auto within = (physical - 2) % (pageSize_ / 4);
    return within == 0 || within == 1;
}

void PageMap::loadPats(std::uint32_t fcrUsage)
{
    if (logicalEnd_ <= 1)
        return;
    const std::uint32_t groupCount = (logicalEnd_ - 1 + entriesPerPat() - 1) / entriesPerPat();
    for (std::uint32_t g = 0; g < groupCount; ++g) {
        PatGroup group;
        for (int copy = 0; copy < 2; ++copy) {
            const std::uint32_t physical = patPhysical(g) + static_cast<std::uint32_t>(copy);
            if (physical >= physicalPages_)
                continue;
            group.copies[copy].resize(pageSize_);
            if (!file_.readAt(std::uint64_t{physical} * pageSize_, group.copies[copy]))
                throw FormatError("cannot read page allocation table page " + std::to_string(physical));
            const auto &page = group.copies[copy];
            group.valid[copy] = page[0] == 'P' && page[1] == 'P';
            group.usage[copy] = bytes::u32(page, 4);
        }
        if (!group.valid[0] && !group.valid[1])
            throw FormatError("page allocation table " + std::to_string(g) + " at page " +
                              std::to_string(patPhysical(g)) + " has no \"PP\" signature (encrypted or corrupt)");
        // A copy newer than the control record belongs to a commit that never
        // finished; prefer the newest copy the control record can vouch for.
        auto rank = [&](int copy) -> std::int64_t {
            if (!group.valid[copy])
                return -1;
            const std::int64_t usage = group.usage[copy];
            return usage <= fcrUsage ? usage + (std::int64_t{1} << 33) : usage;
        };
        group.current = rank(1) > rank(0) ? 1 : 0;
        groups_.push_back(std::move(group));
    }
}

std::size_t PageMap::entryOffset(std::uint32_t logical, std::uint32_t &group) const
{
    if (logical == 0 || logical >= logicalEnd_)
        throw FormatError("logical page " + std::to_string(logical) + " is outside the file's " +
                          std::to_string(logicalEnd_) + " pages");
    group = (logical - 1) / entriesPerPat();
    const std::uint32_t index = logical - group * entriesPerPat();
    return 4 + 4 * std::size_t{index};
}

std::uint8_t PageMap::typeOf(std::uint32_t logical) const
{
    if (format_ == Format::V5)
        return pagetype::Unused;
    std::uint32_t group = 0;
    const auto at = entryOffset(logical, group);
    return bytes::pp24Tag(groups_.at(group).copies[groups_[group].current], at);
}

std::uint32_t PageMap::physicalOf(std::uint32_t logical) const
{
    if (format_ == Format::V5) {
        if (logical >= physicalPages_)
            throw FormatError("page " + std::to_string(logical) + " lies beyond the end of the file");
        return logical;
    }
    std::uint32_t group = 0;
    const auto at = entryOffset(logical, group);
    const auto &pat = groups_.at(group).copies[groups_[group].current];
    const auto physical = bytes::pp24(pat, at);
    if (physical >= physicalPages_ || physical < 2 || isPatPosition(physical))
        throw FormatError("page allocation table maps logical page " + std::to_string(logical) +
                          " to impossible physical page " + std::to_string(physical));
    return physical;
}

void PageMap::read(std::uint32_t logical, std::uint8_t expectedTag, std::vector<std::uint8_t> &out) const
{
    const auto physical = physicalOf(logical);
    out.resize(pageSize_);
    if (!file_.readAt(std::uint64_t{physical} * pageSize_, out))
        throw FormatError("cannot read page " + std::to_string(physical));
    checkNamed(out, logical, expectedTag);
}

CachedPage PageMap::page(std::uint32_t logical, std::uint8_t expectedTag) const
{
    auto page = cache_->get(physicalOf(logical));
    checkNamed(*page, logical, expectedTag);
    return page;
}

void PageMap::checkNamed(Bytes page, std::uint32_t logical, std::uint8_t expectedTag) const
{
    const bool named = format_ == Format::V5 ? bytes::ws32(page, 0) == logical
                                             : bytes::pp24(page, 0) == logical && page[1] == expectedTag;
    if (!named)
        throw FormatError("page " + std::to_string(logical) +
                          " does not carry its own page number and type (encrypted, corrupt or unknown layout)");
}

} // namespace recman
