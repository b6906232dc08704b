// The page layout of a file being created, and the writer that places its
// pages: 6.x logical pages on physical pages around the PAT pairs, 5.x pages
// where their numbers say. Internal to the creator.
#pragma once

#include "creator.h"
#include "filehandle.h"

#include <cstdint>
#include <map>
#include <memory>
#include <vector>

namespace recman {

struct Layout {
    Format format = Format::V6;
    std::uint32_t pageSize = 0;
    std::uint32_t userOffset = 0; // 6.x slots start with a usage count
    std::uint32_t physicalLength = 0;
    std::uint32_t slotsPerPage = 0;
    std::uint32_t katOffset = 0;
    std::vector<std::uint32_t> duplicateOffsets; // per key, 0 = none
    std::vector<std::shared_ptr<const CollatingSequence>> collations;
    std::map<const CollatingSequence *, std::uint32_t> acsPages; // logical page of each table
    std::uint32_t firstIndexPage = 0;                            // empty roots, in files without index pages
    std::uint32_t firstDataPage = 0;

    // Record address of the record with ordinal `ordinal`, as the file stores it.
    std::uint32_t address(std::uint32_t ordinal) const
    {
        return (firstDataPage + ordinal / slotsPerPage) * pageSize + 6 + ordinal % slotsPerPage * physicalLength;
    }
};

Layout planLayout(const FileSpec &spec);

// Collects pages by physical number and writes contiguous runs in large writes.
class PageSink {
public:
    PageSink(FileHandle &file, std::uint32_t pageSize) : file_(file), pageSize_(pageSize) {}
    bool put(std::uint32_t physical, Bytes page);
    bool flush();

private:
    FileHandle &file_;
    std::uint32_t pageSize_;
    std::uint32_t start_ = 0;
    std::vector<std::uint8_t> buffer_;
};

class NewFileWriter {
public:
    NewFileWriter(FileHandle &file, const Layout &layout);

    // Pages must come in logical order, 1, 2, ...
    bool addPage(std::uint32_t logical, Bytes page, std::uint8_t type);
    // Written pages are read back and rewritten in place (after flush()).
    bool flush() { return sink_.flush(); }
    bool readPage(std::uint32_t logical, MutableBytes page) const;
    bool rewritePage(std::uint32_t logical, Bytes page);
    bool finish(Bytes controlRecord);

private:
    std::uint32_t entriesPerPat() const { return pageSize_ / 4 - 2; }
    bool isPat(std::uint32_t physical) const;

    FileHandle &file_;
    Format format_;
    std::uint32_t pageSize_;
    PageSink sink_;
    std::vector<std::vector<std::uint8_t>> pats_;
    std::vector<std::uint32_t> physical_; // by logical page
    std::uint32_t nextPhysical_;
};

} // namespace recman
