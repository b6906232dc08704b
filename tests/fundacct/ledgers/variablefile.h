// Writes 6.x files of variable-length records with the table's own keys: the
// engine writes only fixed-length files, so the creator lays out the fixed
// parts with room for each tail pointer, and the tails are added here on
// variable pages, fragment by fragment, as the record manager stores them.
#pragma once

#include "dictionary.h"
#include "pagebuild.h"
#include "pagemap.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

namespace variablefile {

struct TailPage {
    std::vector<std::vector<std::uint8_t>> fragments; // each starts with its next pointer
};

inline std::size_t used(const TailPage &page)
{
    std::size_t bytes = 12 + 2 * (page.fragments.size() + 1);
    for (const auto &fragment : page.fragments)
        bytes += fragment.size();
    return bytes;
}

inline std::vector<std::uint8_t> pageBytes(const TailPage &tails, std::uint32_t pageSize, std::uint32_t logical)
{
    using namespace recman;
    std::vector<std::uint8_t> page(pageSize, 0);
    bytes::putPp24(page, 0, logical, pagetype::Variable);
    bytes::put16(page, 4, 1);
    bytes::put32(page, 6, 0xFFFFFFFFu);
    bytes::put16(page, 10, static_cast<std::uint16_t>(tails.fragments.size()));
    std::size_t at = 12;
    for (std::size_t f = 0; f < tails.fragments.size(); ++f) {
        bytes::put16(page, pageSize - 2 * (f + 1), static_cast<std::uint16_t>(at));
        std::copy(tails.fragments[f].begin(), tails.fragments[f].end(), page.begin() + at);
        at += tails.fragments[f].size();
    }
    bytes::put16(page, pageSize - 2 * (tails.fragments.size() + 1), static_cast<std::uint16_t>(at));
    return page;
}

inline void putPointer(std::vector<std::uint8_t> &record, std::size_t at, std::uint32_t page, std::uint8_t fragment)
{
    record[at] = static_cast<std::uint8_t>(page >> 16);
    record[at + 1] = static_cast<std::uint8_t>(page);
    record[at + 2] = static_cast<std::uint8_t>(page >> 8);
    record[at + 3] = fragment;
}

inline std::vector<std::uint8_t> readAll(const std::filesystem::path &path)
{
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

// Creates `path` for `table` (replacing it) holding `records` of
// table.recordLength() bytes: the first `fixedLength` bytes of each (all key
// fields must lie there) in the data pages, the rest as its tail.
inline void create(const std::filesystem::path &path, const recman::TableDef &table, std::uint32_t fixedLength,
                   const std::vector<std::vector<std::uint8_t>> &records)
{
    using namespace recman;
    FileSpec spec;
    std::string message;
    ASSERT_EQ(fileSpecFor(table, spec, message), Status::Success) << message;
    ASSERT_LT(fixedLength, table.recordLength());
    for (const auto &key : spec.keys)
        for (const auto &segment : key.segments)
            ASSERT_LE(segment.offset + segment.length, fixedLength) << "keys lie in the fixed part";
    spec.recordLength = fixedLength + 4; // the fixed part and its tail pointer, as the creator lays out a slot

    std::vector<TailPage> tails(1);
    std::vector<std::pair<std::uint32_t, std::uint8_t>> where; // tail page index, fragment
    for (const auto &record : records) {
        std::vector<std::uint8_t> fragment(4, 0xFF);
        fragment.insert(fragment.end(), record.begin() + fixedLength, record.end());
        tails.back().fragments.push_back(std::move(fragment));
        if (used(tails.back()) > spec.pageSize) {
            tails.push_back({{std::move(tails.back().fragments.back())}});
            tails[tails.size() - 2].fragments.pop_back();
            ASSERT_LE(used(tails.back()), spec.pageSize) << "a tail fits a page";
        }
        where.emplace_back(static_cast<std::uint32_t>(tails.size() - 1),
                           static_cast<std::uint8_t>(tails.back().fragments.size() - 1));
    }

    // The fixed parts take the same pages whatever their pointers say, so a
    // first pass tells where the tail pages start.
    auto fixedParts = [&](std::uint32_t firstTailPage) {
        std::vector<std::vector<std::uint8_t>> parts;
        for (std::size_t i = 0; i < records.size(); ++i) {
            parts.emplace_back(records[i].begin(), records[i].begin() + fixedLength);
            parts.back().resize(fixedLength + 4);
            putPointer(parts.back(), fixedLength, firstTailPage + where[i].first, where[i].second);
        }
        return parts;
    };
    ASSERT_EQ(createFile(path, spec, fixedParts(0), message, CreateMode::Overwrite), Status::Success) << message;
    auto file = readAll(path);
    const std::uint32_t firstTailPage = bytes::ws32(file, fcr::PagesInUse);
    ASSERT_EQ(createFile(path, spec, fixedParts(firstTailPage), message, CreateMode::Overwrite), Status::Success)
        << message;
    file = readAll(path);

    const std::uint32_t pageSize = spec.pageSize;
    for (std::uint32_t t = 0; t < tails.size(); ++t) {
        const std::uint32_t logical = firstTailPage + t;
        const auto physical = static_cast<std::uint32_t>(file.size() / pageSize);
        ASSERT_LT(logical, pageSize / 4 - 2) << "tail pages stay in the first page-allocation group";
        ASSERT_NE((physical - 2) % (pageSize / 4), 0u);
        ASSERT_NE((physical - 2) % (pageSize / 4), 1u);
        const auto page = pageBytes(tails[t], pageSize, logical);
        file.insert(file.end(), page.begin(), page.end());
        for (std::uint32_t copy = 2; copy < 4; ++copy)
            pagebuild::setPatEntry(MutableBytes(file).subspan(copy * pageSize, pageSize), logical, physical,
                                   pagetype::Variable);
    }
    for (std::uint32_t copy = 0; copy < 2; ++copy) {
        const MutableBytes control = MutableBytes(file).subspan(copy * pageSize, pageSize);
        bytes::put16(control, fcr::RecordLength, static_cast<std::uint16_t>(fixedLength));
        bytes::put16(control, fcr::FileFlags,
                     static_cast<std::uint16_t>(bytes::u16(control, fcr::FileFlags) | fileflag::Variable));
        control[fcr::VariableByte] = 0xFF;
        bytes::putWs32(control, fcr::PagesInUse, firstTailPage + static_cast<std::uint32_t>(tails.size()));
    }
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char *>(file.data()), static_cast<std::streamsize>(file.size()));
    ASSERT_TRUE(out.good());
}

} // namespace variablefile
