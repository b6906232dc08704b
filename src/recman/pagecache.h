// A small, bounded cache of a file's pages, read on demand with positioned
// reads. A miss right after the pages last read reads a short run of
// following pages too, so that a scan in physical order costs few system
// calls; other misses read one page. Pages are handed out as shared
// pointers: a page evicted while a caller still looks at it stays alive for
// that caller. The owner drops everything whenever the file changes on disk.
#pragma once

#include "filehandle.h"

#include <cstdint>
#include <list>
#include <memory>
#include <unordered_map>
#include <vector>

namespace recman {

using CachedPage = std::shared_ptr<const std::vector<std::uint8_t>>;

class PageCache {
public:
    PageCache(const FileHandle &file, std::uint32_t pageSize, std::size_t limitBytes);

    // The physical page; throws FormatError when it cannot be read whole.
    CachedPage get(std::uint32_t physical);
    void clear();
    // Grows with every clear(): a page obtained under another epoch may be stale.
    std::uint64_t epoch() const { return epoch_; }
    std::size_t cachedBytes() const { return entries_.size() * std::size_t{pageSize_}; }

private:
    void insert(std::uint32_t physical, CachedPage page);

    const FileHandle &file_;
    std::uint32_t pageSize_;
    std::size_t limitPages_;
    // Most recently used first.
    std::list<std::pair<std::uint32_t, CachedPage>> order_;
    std::unordered_map<std::uint32_t, decltype(order_)::iterator> entries_;
    std::vector<std::uint8_t> run_;
    std::uint32_t nextInOrder_ = 1;          // the page after the last run read
    std::uint32_t lastSingle_ = 0xFFFFFFFE;  // the last page read alone
    std::uint64_t epoch_ = 0;
};

// The byte limit given to the cache of each file opened from now on
// (default 4 MiB; at least a few pages are always kept).
void setPageCacheLimit(std::size_t bytes);
std::size_t pageCacheLimit();

} // namespace recman
