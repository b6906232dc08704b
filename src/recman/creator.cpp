#include "creator.h"

#include "filehandle.h"
#include "header.h"
#include "indexbuild.h"
#include "keybuild.h"
#include "newfile.h"
#include "pagebuild.h"
#include "pagemap.h"

#include <algorithm>
#include <cstring>
#include <numeric>
#include <set>

namespace recman {

namespace {

constexpr std::uint16_t formatVersion = 0x0600;

std::string checkKeys(const FileSpec &spec)
{
    if (spec.keys.size() > 119)
        return "more than 119 keys";
    std::set<const CollatingSequence *> collations;
    for (std::size_t k = 0; k < spec.keys.size(); ++k) {
        const auto &key = spec.keys[k];
        const auto name = "key " + std::to_string(k);
        if (key.segments.empty())
            return name + " has no segments";
        for (const auto &segment : key.segments) {
            if (segment.length == 0 || segment.offset + segment.length > spec.recordLength)
                return name + " has a segment outside the record";
            if (segment.has(keyflag::Acs) && !segment.acs)
                return name + " asks for a collating sequence but none is given";
            if (segment.has(keyflag::Acs))
                collations.insert(segment.acs.get());
        }
        if (spec.indexPages && (key.flags() & keyflag::RepeatingDuplicates) != 0)
            return name + ": index pages with repeating duplicates are not written";
        if (spec.indexPages && TreeShape{spec.format, spec.pageSize, 0, indexEntryLength(key)}.capacity() < 2)
            return name + " is too long: fewer than two of its index entries fit a " + std::to_string(spec.pageSize) +
                   "-byte page";
    }
    if (spec.format == Format::V5 && collations.size() > 1)
        return "a 5.x file holds one collating sequence; the keys name " + std::to_string(collations.size());
    return {};
}

// File geometry the creator cannot honour (InvalidOperation), then key
// definitions it cannot honour (InvalidKeyLength).
Status checkSpec(const FileSpec &spec, std::string &message)
{
    const std::uint32_t smallestPage = spec.format == Format::V5 ? 512 : 1024;
    if (spec.pageSize < smallestPage || spec.pageSize > 4096 || spec.pageSize % 512 != 0)
        message = "page size must be a multiple of 512 from " + std::to_string(smallestPage) + " to 4096";
    else if (spec.recordLength == 0 || spec.recordLength > 4000)
        message = "record length must be 1..4000";
    else if (spec.format == Format::V5 && !spec.indexPages)
        message = "5.x files are only created with their index pages, as the record manager writes them";
    if (!message.empty())
        return Status::InvalidOperation;
    message = checkKeys(spec);
    return message.empty() ? Status::Success : Status::InvalidKeyLength;
}

void writeSegmentSpec(MutableBytes at, const FileSpec &spec, const Layout &layout, std::size_t k, std::size_t s,
                      const BuiltKey &built)
{
    const auto &key = spec.keys[k];
    const auto &segment = key.segments[s];
    const bool v6 = spec.format == Format::V6;
    const auto tag = static_cast<std::uint8_t>(pagetype::IndexBase + k);
    std::uint16_t flags = segment.flags;
    flags = static_cast<std::uint16_t>(s + 1 < key.segments.size() ? flags | keyflag::Segmented
                                                                   : flags & ~keyflag::Segmented);
    if (s == 0) {
        const auto root = spec.indexPages ? built.root : layout.firstIndexPage + static_cast<std::uint32_t>(k);
        if (v6)
            bytes::putPp24(at, 0x00, root, tag);
        else
            bytes::putWs32(at, 0x00, root);
        bytes::putWs32(at, 0x04, static_cast<std::uint32_t>(built.distinct));
        const auto keyLength = key.length();
        const auto entryLength = indexEntryLength(key);
        const auto maxEntries = (spec.pageSize - 12) / entryLength;
        bytes::put16(at, 0x0A, static_cast<std::uint16_t>(keyLength));
        bytes::put16(at, 0x0C, static_cast<std::uint16_t>(entryLength));
        bytes::put16(at, 0x0E, static_cast<std::uint16_t>(maxEntries));
        bytes::put16(at, 0x10, static_cast<std::uint16_t>(maxEntries / 2));
        bytes::put16(at, 0x12, static_cast<std::uint16_t>(layout.duplicateOffsets[k]));
        at[0x18] = v6 ? tag : 0;
    }
    bytes::put16(at, 0x08, flags);
    bytes::put16(at, 0x14, static_cast<std::uint16_t>(segment.offset + layout.userOffset));
    bytes::put16(at, 0x16, static_cast<std::uint16_t>(segment.length));
    // 5.x keeps its one table on page 1, named in the control record.
    if (v6 && segment.has(keyflag::Acs)) {
        const auto page = layout.acsPages.at(segment.acs.get());
        at[0x19] = static_cast<std::uint8_t>(page >> 16);
        at[0x1A] = static_cast<std::uint8_t>(page);
        at[0x1B] = static_cast<std::uint8_t>(page >> 8);
    }
    at[0x1C] = segment.rawType;
    at[0x1D] = segment.nullValue;
}

// The fields only 6.x control records have.
void putNewFormatFields(MutableBytes page, const FileSpec &spec, const Layout &layout)
{
    page[0] = 'F';
    page[1] = 'C';
    bytes::put32(page, fcr::Usage, 1);
    bytes::put16(page, 0x22, 0xFFFF);
    bytes::put16(page, fcr::Version, formatVersion);
    const auto linked = [](auto offset) { return offset != 0; };
    const auto firstDuplicate = std::find_if(layout.duplicateOffsets.begin(), layout.duplicateOffsets.end(), linked);
    bytes::put16(page, fcr::DuplicateOffset,
                 static_cast<std::uint16_t>(firstDuplicate == layout.duplicateOffsets.end() ? 0 : *firstDuplicate));
    page[fcr::DuplicateCount] = static_cast<std::uint8_t>(
        std::count_if(layout.duplicateOffsets.begin(), layout.duplicateOffsets.end(), linked));
    page[fcr::KeyCountAgain] = static_cast<std::uint8_t>(spec.keys.size());
    bytes::put16(page, fcr::KatOffset, static_cast<std::uint16_t>(layout.katOffset));
    if (!spec.indexPages)
        std::memcpy(page.data() + fcr::CreatorTag, creatorTag, sizeof creatorTag);
}

std::vector<std::uint8_t> controlRecord(const FileSpec &spec, const Layout &layout, std::uint32_t recordCount,
                                        std::uint32_t pagesInUse, const std::vector<BuiltKey> &built)
{
    std::vector<std::uint8_t> page(spec.pageSize, 0);
    if (spec.format == Format::V6) {
        putNewFormatFields(page, spec, layout);
    } else {
        bytes::put16(page, fcr::Usage, 1);
        page[7] = 5; // major version
    }
    bytes::put16(page, fcr::PageSize, static_cast<std::uint16_t>(spec.pageSize));
    bytes::put32(page, 0x0C, 0xFFFFFFFF);
    bytes::putWs32(page, fcr::FreeHead, 0xFFFFFFFF);
    bytes::put16(page, fcr::KeyCount, static_cast<std::uint16_t>(spec.keys.size()));
    bytes::put16(page, fcr::RecordLength, static_cast<std::uint16_t>(spec.recordLength));
    bytes::put16(page, fcr::PhysicalLength, static_cast<std::uint16_t>(layout.physicalLength));
    bytes::putWs32(page, fcr::RecordCount, recordCount);
    bytes::put16(page, 0x24, 1);
    bytes::putWs32(page, fcr::PagesInUse, pagesInUse);
    if (!layout.collations.empty()) {
        const auto &name = layout.collations.front()->name;
        for (std::size_t i = 0; i < 8; ++i)
            page[fcr::AcsName + i] = i < name.size() ? static_cast<std::uint8_t>(name[i]) : ' ';
    }
    std::size_t at = fcr::SegmentSpecs;
    std::size_t segments = 0;
    for (std::size_t k = 0; k < spec.keys.size(); ++k) {
        if (spec.format == Format::V6)
            bytes::put16(page, layout.katOffset + 2 * k, static_cast<std::uint16_t>(at));
        for (std::size_t s = 0; s < spec.keys[k].segments.size(); ++s, ++segments) {
            writeSegmentSpec(MutableBytes(page).subspan(at, fcr::SegmentSpecSize), spec, layout, k, s, built[k]);
            at += fcr::SegmentSpecSize;
        }
    }
    if (spec.format == Format::V6)
        page[fcr::SegmentCount] = static_cast<std::uint8_t>(segments);
    return page;
}

Status writeNewFile(FileHandle &file, const FileSpec &spec, const RecordSource &records, std::string &message)
{
    const auto layout = planLayout(spec);
    if (layout.slotsPerPage == 0) {
        message = "records of " + std::to_string(layout.physicalLength) +
                  " bytes with their duplicate pointers do not fit a " + std::to_string(spec.pageSize) + "-byte page";
        return Status::InvalidOperation;
    }
    const auto segmentCount =
        std::accumulate(spec.keys.begin(), spec.keys.end(), std::size_t{0},
                        [](std::size_t n, const KeyDefinition &key) { return n + key.segments.size(); });
    const std::size_t segmentsEnd = spec.format == Format::V6 ? layout.katOffset : spec.pageSize;
    if (fcr::SegmentSpecs + fcr::SegmentSpecSize * segmentCount > segmentsEnd) {
        message = "too many key segments for a " + std::to_string(spec.pageSize) + "-byte page";
        return Status::InvalidKeyLength;
    }
    NewFileWriter writer(file, layout);
    bool ok = true;
    std::uint32_t logical = 1;
    for (const auto &acs : layout.collations)
        ok =
            ok && writer.addPage(logical, pagebuild::acsPage(spec.pageSize, logical, *acs, spec.format), pagetype::Acs),
        ++logical;
    for (; logical < layout.firstDataPage; ++logical) {
        const auto key = static_cast<int>(logical - layout.firstIndexPage);
        ok = ok && writer.addPage(logical, pagebuild::emptyIndexPage(spec.pageSize, logical, key),
                                  static_cast<std::uint8_t>(pagetype::IndexBase + key));
    }
    std::vector<std::uint8_t> page;
    std::vector<std::uint8_t> record;
    std::uint32_t count = 0;
    std::uint32_t slot = layout.slotsPerPage;
    while (ok && (record.clear(), records(record))) {
        if (record.size() != spec.recordLength) {
            message = "record " + std::to_string(count) + " has " + std::to_string(record.size()) +
                      " bytes; the file's records have " + std::to_string(spec.recordLength);
            return Status::DataBufferTooShort;
        }
        if (slot == layout.slotsPerPage) {
            if (!page.empty())
                ok = writer.addPage(logical++, page, pagetype::Data);
            page = pagebuild::emptyDataPage(spec.pageSize, logical, spec.format);
            slot = 0;
        }
        const auto at = MutableBytes(page).subspan(6 + slot * layout.physicalLength, layout.physicalLength);
        if (spec.format == Format::V6)
            pagebuild::fillSlot(at, record, 1);
        else
            pagebuild::fillUncountedSlot(at, record);
        ++slot;
        if (++count == 0x7FFFFFFF) {
            message = "too many records";
            return Status::CreateIoError;
        }
    }
    if (ok && !page.empty())
        ok = writer.addPage(logical++, page, pagetype::Data);
    ok = ok && writer.flush(); // the keys read the records back
    std::vector<BuiltKey> built(spec.keys.size());
    for (std::size_t k = 0; ok && k < spec.keys.size(); ++k)
        if (const auto status = buildKey(writer, spec, layout, k, count, logical, built[k], message);
            status != Status::Success)
            return status;
    ok = ok && writer.finish(controlRecord(spec, layout, count, logical, built)) && file.sync();
    if (!ok) {
        message = "writing the new file failed (disk full or I/O error)";
        return Status::CreateIoError;
    }
    return Status::Success;
}

} // namespace

Status createFile(const std::filesystem::path &path, const FileSpec &spec, const RecordSource &records,
                  std::string &message, CreateMode mode)
{
    message.clear();
    if (const auto status = checkSpec(spec, message); status != Status::Success)
        return status;
    std::error_code error;
    if (path.empty() || path.filename().empty()) {
        message = "no file name given";
        return Status::InvalidFileName;
    }
    if (mode == CreateMode::FailIfExists && std::filesystem::exists(path, error)) {
        message = path.string() + " already exists";
        return Status::FileAlreadyExists;
    }
    auto temporary = path;
    temporary += ".kora-new";
    std::filesystem::remove(temporary, error);
    FileHandle file;
    const auto reason = file.open(temporary, FileHandle::Mode::CreateNew);
    if (!reason.empty()) {
        message = "cannot create " + temporary.string() + ": " + reason;
        return Status::CreateIoError;
    }
    Status status = Status::Success;
    try {
        status = writeNewFile(file, spec, records, message);
    } catch (const std::bad_alloc &) {
        message = "not enough memory to create the file";
        status = Status::CreateIoError;
    }
    file.close();
    if (status == Status::Success) {
        std::filesystem::rename(temporary, path, error);
        if (error) {
            message = "cannot move the new file into place: " + error.message();
            status = Status::CreateIoError;
        } else {
            syncDirectory(path.parent_path());
            return status;
        }
    }
    std::filesystem::remove(temporary, error);
    return status;
}

RecordSource recordsFrom(const std::vector<std::vector<std::uint8_t>> &records)
{
    return [&records, next = std::size_t{0}](std::vector<std::uint8_t> &record) mutable {
        if (next == records.size())
            return false;
        record = records[next++];
        return true;
    };
}

Status createFile(const std::filesystem::path &path, const FileSpec &spec,
                  const std::vector<std::vector<std::uint8_t>> &records, std::string &message, CreateMode mode)
{
    return createFile(path, spec, recordsFrom(records), message, mode);
}

} // namespace recman
