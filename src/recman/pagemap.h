// Page access. 5.x files address pages physically; 6.x files map logical pages
// to physical ones through page allocation tables (PAT) kept in shadow pairs,
// so a reader must always go through the current PAT copy and never pick up a
// stale physical page.
#pragma once

#include "filehandle.h"
#include "header.h"
#include "pagecache.h"

#include <cstdint>
#include <vector>

namespace recman {

// PAT entry type tags (6.x).
namespace pagetype {
constexpr std::uint8_t Unused = 0x00;
constexpr std::uint8_t Acs = 'A';
constexpr std::uint8_t Data = 'D';
constexpr std::uint8_t Variable = 'V';
constexpr std::uint8_t IndexBase = 0x80; // + key number
} // namespace pagetype

class PageMap {
public:
    // fileSize: the file's size when the header was read. cache: where page()
    // reads through (may be null for a map used only with read()).
    PageMap(const FileHandle &file, const FileHeader &header, std::uint64_t fileSize, PageCache *cache = nullptr);

    std::uint32_t pageSize() const { return pageSize_; }
    std::uint32_t physicalPageCount() const { return physicalPages_; }
    // Logical pages 1 .. logicalPageEnd()-1 may hold data.
    std::uint32_t logicalPageEnd() const { return logicalEnd_; }

    // 6.x: PAT type of a logical page; 5.x: always Unused (callers look at the page).
    std::uint8_t typeOf(std::uint32_t logical) const;
    std::uint32_t physicalOf(std::uint32_t logical) const;

    // Reads a page and checks that it names itself (and, in 6.x, carries the
    // expected type tag). A mismatch means encryption, corruption or an
    // unknown layout, and throws.
    void read(std::uint32_t logical, std::uint8_t expectedTag, std::vector<std::uint8_t> &out) const;
    // The same page through the cache, checked alike.
    CachedPage page(std::uint32_t logical, std::uint8_t expectedTag) const;
    std::uint64_t cacheEpoch() const { return cache_->epoch(); }

    // Entries per PAT page and the physical page of PAT pair `group`.
    std::uint32_t entriesPerPat() const { return pageSize_ / 4 - 2; }
    std::uint32_t patPhysical(std::uint32_t group) const { return 2 + group * (pageSize_ / 4); }
    bool isPatPosition(std::uint32_t physical) const;

    struct PatGroup {
        std::vector<std::uint8_t> copies[2];
        std::uint32_t usage[2] = {0, 0};
        bool valid[2] = {false, false};
        int current = 0;
    };
    const std::vector<PatGroup> &patGroups() const { return groups_; }
    std::vector<PatGroup> &patGroups() { return groups_; }
    void setLogicalPageEnd(std::uint32_t end) { logicalEnd_ = end; }
    void setPhysicalPageCount(std::uint32_t count) { physicalPages_ = count; }

private:
    void loadPats(std::uint32_t fcrUsage);
    void checkNamed(Bytes page, std::uint32_t logical, std::uint8_t expectedTag) const;
    std::size_t entryOffset(std::uint32_t logical, std::uint32_t &group) const;

    const FileHandle &file_;
    PageCache *cache_;
    Format format_;
    std::uint32_t pageSize_;
    std::uint32_t physicalPages_;
    std::uint32_t logicalEnd_;
    std::vector<PatGroup> groups_;
};

} // namespace recman
