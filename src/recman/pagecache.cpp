#include "pagecache.h"

#include "bytes.h"

#include <algorithm>
#include <atomic>
#include <cstring>

namespace recman {

namespace {

std::atomic<std::size_t> limitForNewFiles{4u << 20};
// Pages read at once on a miss that follows the last run read: enough to
// make a sequential scan cheap.
constexpr std::uint32_t runPages = 16;
constexpr std::size_t minimumPages = 2 * runPages;

} // namespace

void setPageCacheLimit(std::size_t bytes)
{
    limitForNewFiles = bytes;
}

std::size_t pageCacheLimit()
{
    return limitForNewFiles;
}

PageCache::PageCache(const FileHandle &file, std::uint32_t pageSize, std::size_t limitBytes)
    : file_(file), pageSize_(pageSize), limitPages_(std::max(minimumPages, limitBytes / pageSize))
{
}

CachedPage PageCache::get(std::uint32_t physical)
{
    if (const auto found = entries_.find(physical); found != entries_.end()) {
        order_.splice(order_.begin(), order_, found->second);
        return found->second->second;
    }
    const std::uint64_t filePages = file_.size() / pageSize_;
    if (physical >= filePages)
        throw FormatError("page " + std::to_string(physical) + " lies beyond the end of the file");
    // Read ahead only when the misses run in order, as a scan's do (the page
    // after the last run, or after the last single page); a look-up down an
    // index, or of a variable tail in the middle of a scan, reads just the
    // page it needs and leaves the scan's run where it was.
    const bool inOrder = physical == nextInOrder_ || physical == lastSingle_ + 1;
    const auto count =
        static_cast<std::uint32_t>(std::min<std::uint64_t>(inOrder ? runPages : 1, filePages - physical));
    if (inOrder)
        nextInOrder_ = physical + count;
    else
        lastSingle_ = physical;
    run_.resize(std::size_t{count} * pageSize_);
    if (!file_.readAt(std::uint64_t{physical} * pageSize_, run_))
        throw FormatError("cannot read page " + std::to_string(physical));
    CachedPage asked;
    // Inserted last to first, so the page asked for ends up most recent.
    for (std::uint32_t i = count; i-- > 0;) {
        if (entries_.count(physical + i) != 0)
            continue;
        const auto start = run_.begin() + static_cast<std::ptrdiff_t>(std::size_t{i} * pageSize_);
        auto page = std::make_shared<const std::vector<std::uint8_t>>(start, start + pageSize_);
        if (i == 0)
            asked = page;
        insert(physical + i, std::move(page));
    }
    return asked;
}

void PageCache::insert(std::uint32_t physical, CachedPage page)
{
    order_.emplace_front(physical, std::move(page));
    entries_[physical] = order_.begin();
    while (entries_.size() > limitPages_) {
        entries_.erase(order_.back().first);
        order_.pop_back();
    }
}

void PageCache::clear()
{
    entries_.clear();
    order_.clear();
    ++epoch_;
}

} // namespace recman
