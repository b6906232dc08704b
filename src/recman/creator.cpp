#include "creator.h"

#include "filehandle.h"
#include "header.h"
#include "keyorder.h"
#include "pagebuild.h"
#include "pagemap.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <numeric>

namespace recman {

namespace {

constexpr std::uint16_t formatVersion = 0x0600;

struct Layout {
    std::uint32_t pageSize = 0;
    std::uint32_t physicalLength = 0;
    std::uint32_t katOffset = 0;
    std::vector<std::uint32_t> duplicateOffsets; // per key, 0 = none
    std::vector<std::shared_ptr<const CollatingSequence>> collations;
    std::map<const CollatingSequence *, std::uint32_t> acsPages; // logical page of each table
    std::uint32_t firstIndexPage = 0;
    std::uint32_t firstDataPage = 0;
};

std::string checkKeys(const FileSpec &spec)
{
    if (spec.keys.size() > 119)
        return "more than 119 keys";
    for (std::size_t k = 0; k < spec.keys.size(); ++k) {
        const auto &key = spec.keys[k];
        if (key.segments.empty())
            return "key " + std::to_string(k) + " has no segments";
        for (const auto &segment : key.segments) {
            if (segment.length == 0 || segment.offset + segment.length > spec.recordLength)
                return "key " + std::to_string(k) + " has a segment outside the record";
            if (segment.has(keyflag::Acs) && !segment.acs)
                return "key " + std::to_string(k) + " asks for a collating sequence but none is given";
        }
    }
    return {};
}

// File geometry the creator cannot honour (InvalidOperation), then key
// definitions it cannot honour (InvalidKeyLength).
Status checkSpec(const FileSpec &spec, std::string &message)
{
    if (spec.pageSize < 1024 || spec.pageSize > 4096 || spec.pageSize % 512 != 0)
        message = "page size must be a multiple of 512 from 1024 to 4096";
    else if (spec.recordLength == 0 || spec.recordLength > 4000)
        message = "record length must be 1..4000";
    if (!message.empty())
        return Status::InvalidOperation;
    message = checkKeys(spec);
    return message.empty() ? Status::Success : Status::InvalidKeyLength;
}

Layout planLayout(const FileSpec &spec)
{
    Layout layout;
    layout.pageSize = spec.pageSize;
    std::uint32_t slot = 2 + spec.recordLength;
    for (const auto &key : spec.keys) {
        layout.duplicateOffsets.push_back(key.allowsDuplicates() ? slot : 0);
        slot += key.allowsDuplicates() ? 8 : 0;
        for (const auto &segment : key.segments)
            if (segment.has(keyflag::Acs) && !layout.acsPages.count(segment.acs.get())) {
                layout.acsPages[segment.acs.get()] = static_cast<std::uint32_t>(layout.collations.size() + 1);
                layout.collations.push_back(segment.acs);
            }
    }
    layout.physicalLength = slot;
    layout.katOffset = spec.pageSize >= 2048 ? spec.pageSize - 240 : spec.pageSize - 48;
    layout.firstIndexPage = static_cast<std::uint32_t>(layout.collations.size() + 1);
    layout.firstDataPage = layout.firstIndexPage + static_cast<std::uint32_t>(spec.keys.size());
    return layout;
}

void writeSegmentSpec(MutableBytes at, const FileSpec &spec, const Layout &layout, std::size_t k, std::size_t s,
                      std::uint64_t uniqueValues)
{
    const auto &key = spec.keys[k];
    const auto &segment = key.segments[s];
    std::uint16_t flags = segment.flags;
    flags = static_cast<std::uint16_t>(s + 1 < key.segments.size() ? flags | keyflag::Segmented
                                                                   : flags & ~keyflag::Segmented);
    if (s == 0) {
        bytes::putPp24(at, 0x00, layout.firstIndexPage + static_cast<std::uint32_t>(k),
                       static_cast<std::uint8_t>(pagetype::IndexBase + k));
        bytes::putWs32(at, 0x04, static_cast<std::uint32_t>(uniqueValues));
        const auto keyLength = key.length();
        const auto entryLength = keyLength + 8 + (key.allowsDuplicates() ? 4 : 0);
        const auto maxEntries = (spec.pageSize - 12) / entryLength;
        bytes::put16(at, 0x0A, static_cast<std::uint16_t>(keyLength));
        bytes::put16(at, 0x0C, static_cast<std::uint16_t>(entryLength));
        bytes::put16(at, 0x0E, static_cast<std::uint16_t>(maxEntries));
        bytes::put16(at, 0x10, static_cast<std::uint16_t>(maxEntries / 2));
        bytes::put16(at, 0x12, static_cast<std::uint16_t>(layout.duplicateOffsets[k]));
        at[0x18] = static_cast<std::uint8_t>(pagetype::IndexBase + k);
    }
    bytes::put16(at, 0x08, flags);
    bytes::put16(at, 0x14, static_cast<std::uint16_t>(segment.offset + 2));
    bytes::put16(at, 0x16, static_cast<std::uint16_t>(segment.length));
    if (segment.has(keyflag::Acs)) {
        const auto page = layout.acsPages.at(segment.acs.get());
        at[0x19] = static_cast<std::uint8_t>(page >> 16);
        at[0x1A] = static_cast<std::uint8_t>(page);
        at[0x1B] = static_cast<std::uint8_t>(page >> 8);
    }
    at[0x1C] = segment.rawType;
    at[0x1D] = segment.nullValue;
}

std::vector<std::uint8_t> controlRecord(const FileSpec &spec, const Layout &layout, std::uint32_t recordCount,
                                        std::uint32_t pagesInUse, const std::vector<std::uint64_t> &uniqueValues)
{
    std::vector<std::uint8_t> page(spec.pageSize, 0);
    page[0] = 'F';
    page[1] = 'C';
    bytes::put32(page, fcr::Usage, 1);
    bytes::put16(page, fcr::PageSize, static_cast<std::uint16_t>(spec.pageSize));
    bytes::put32(page, 0x0C, 0xFFFFFFFF);
    bytes::putWs32(page, fcr::FreeHead, 0xFFFFFFFF);
    bytes::put16(page, fcr::KeyCount, static_cast<std::uint16_t>(spec.keys.size()));
    bytes::put16(page, fcr::RecordLength, static_cast<std::uint16_t>(spec.recordLength));
    bytes::put16(page, fcr::PhysicalLength, static_cast<std::uint16_t>(layout.physicalLength));
    bytes::putWs32(page, fcr::RecordCount, recordCount);
    bytes::put16(page, 0x22, 0xFFFF);
    bytes::put16(page, 0x24, 1);
    bytes::putWs32(page, fcr::PagesInUse, pagesInUse);
    if (!layout.collations.empty()) {
        const auto &name = layout.collations.front()->name;
        for (std::size_t i = 0; i < 8; ++i)
            page[fcr::AcsName + i] = i < name.size() ? static_cast<std::uint8_t>(name[i]) : ' ';
    }
    bytes::put16(page, fcr::Version, formatVersion);
    const auto firstDuplicate =
        std::find_if(layout.duplicateOffsets.begin(), layout.duplicateOffsets.end(), [](auto o) { return o != 0; });
    bytes::put16(page, fcr::DuplicateOffset,
                 static_cast<std::uint16_t>(firstDuplicate == layout.duplicateOffsets.end() ? 0 : *firstDuplicate));
    page[fcr::DuplicateCount] = static_cast<std::uint8_t>(
        std::count_if(layout.duplicateOffsets.begin(), layout.duplicateOffsets.end(), [](auto o) { return o != 0; }));
    page[fcr::KeyCountAgain] = static_cast<std::uint8_t>(spec.keys.size());
    bytes::put16(page, fcr::KatOffset, static_cast<std::uint16_t>(layout.katOffset));
    std::memcpy(page.data() + fcr::CreatorTag, creatorTag, sizeof creatorTag);
    std::size_t at = fcr::SegmentSpecs;
    std::size_t segments = 0;
    for (std::size_t k = 0; k < spec.keys.size(); ++k) {
        bytes::put16(page, layout.katOffset + 2 * k, static_cast<std::uint16_t>(at));
        for (std::size_t s = 0; s < spec.keys[k].segments.size(); ++s, ++segments) {
            writeSegmentSpec(MutableBytes(page).subspan(at, fcr::SegmentSpecSize), spec, layout, k, s, uniqueValues[k]);
            at += fcr::SegmentSpecSize;
        }
    }
    page[fcr::SegmentCount] = static_cast<std::uint8_t>(segments);
    return page;
}

// Collects pages by physical number and writes contiguous runs in large writes.
class PageSink {
public:
    PageSink(FileHandle &file, std::uint32_t pageSize) : file_(file), pageSize_(pageSize) {}
    bool put(std::uint32_t physical, Bytes page)
    {
        if (!buffer_.empty() && physical != start_ + buffer_.size() / pageSize_ && !flush())
            return false;
        if (buffer_.empty())
            start_ = physical;
        buffer_.insert(buffer_.end(), page.begin(), page.end());
        return buffer_.size() < (1u << 20) || flush();
    }
    bool flush()
    {
        const bool ok = buffer_.empty() || file_.writeAt(std::uint64_t{start_} * pageSize_, buffer_);
        buffer_.clear();
        return ok;
    }

private:
    FileHandle &file_;
    std::uint32_t pageSize_;
    std::uint32_t start_ = 0;
    std::vector<std::uint8_t> buffer_;
};

// Writes the pages of a new file; logical pages get physical pages in order,
// skipping the places reserved for PAT pairs.
class NewFileWriter {
public:
    NewFileWriter(FileHandle &file, const FileSpec &spec) : spec_(spec), sink_(file, spec.pageSize) {}

    bool addPage(std::uint32_t logical, Bytes page, std::uint8_t type)
    {
        while (isPat(nextPhysical_))
            ++nextPhysical_;
        const auto group = (logical - 1) / entriesPerPat();
        if (group >= pats_.size())
            pats_.push_back(pagebuild::emptyPatPage(spec_.pageSize, 1));
        pagebuild::setPatEntry(pats_[group], logical - group * entriesPerPat(), nextPhysical_, type);
        return sink_.put(nextPhysical_++, page);
    }

    bool finish(Bytes controlRecord)
    {
        bool ok = sink_.flush();
        for (std::uint32_t g = 0; g < pats_.size(); ++g)
            for (std::uint32_t copy = 0; copy < 2; ++copy)
                ok = ok && sink_.put(2 + g * (spec_.pageSize / 4) + copy, pats_[g]);
        ok = ok && sink_.flush();
        ok = ok && sink_.put(0, controlRecord) && sink_.put(1, controlRecord) && sink_.flush();
        return ok;
    }

private:
    std::uint32_t entriesPerPat() const { return spec_.pageSize / 4 - 2; }
    bool isPat(std::uint32_t physical) const { return physical < 4 || (physical - 2) % (spec_.pageSize / 4) < 2; }

    const FileSpec &spec_;
    PageSink sink_;
    std::vector<std::vector<std::uint8_t>> pats_;
    std::uint32_t nextPhysical_ = 4;
};

// Sort images of the unique keys, to refuse duplicates before the file exists.
class UniquenessCheck {
public:
    explicit UniquenessCheck(const FileSpec &spec) : spec_(spec), images_(spec.keys.size()) {}

    void add(Bytes record)
    {
        for (std::size_t k = 0; k < spec_.keys.size(); ++k) {
            value_.clear();
            appendKeyValue(spec_.keys[k], record, value_);
            if (isNullKey(spec_.keys[k], value_))
                continue;
            appendSortImage(spec_.keys[k], value_, images_[k]);
        }
    }

    // Distinct values per key; returns the number of a unique key with a duplicate, or -1.
    int countDistinct(std::vector<std::uint64_t> &distinct) const
    {
        for (std::size_t k = 0; k < spec_.keys.size(); ++k) {
            const auto width = sortImageLength(spec_.keys[k]);
            const auto &images = images_[k];
            const std::size_t rows = width == 0 ? 0 : images.size() / width;
            std::vector<std::uint32_t> order(rows);
            std::iota(order.begin(), order.end(), 0u);
            auto less = [&](std::uint32_t a, std::uint32_t b) {
                return std::memcmp(&images[a * width], &images[b * width], width) < 0;
            };
            std::sort(order.begin(), order.end(), less);
            std::uint64_t count = rows == 0 ? 0 : 1;
            for (std::size_t i = 1; i < rows; ++i)
                if (less(order[i - 1], order[i]))
                    ++count;
                else if (!spec_.keys[k].allowsDuplicates())
                    return static_cast<int>(k);
            distinct.push_back(count);
        }
        return -1;
    }

private:
    const FileSpec &spec_;
    std::vector<std::vector<std::uint8_t>> images_;
    std::vector<std::uint8_t> value_;
};

Status writeNewFile(FileHandle &file, const FileSpec &spec, const RecordSource &records, std::string &message)
{
    const auto layout = planLayout(spec);
    if (layout.physicalLength > spec.pageSize - 6) {
        message = "records of " + std::to_string(layout.physicalLength) +
                  " bytes with their duplicate pointers do not fit a " + std::to_string(spec.pageSize) + "-byte page";
        return Status::InvalidOperation;
    }
    const auto segmentCount =
        std::accumulate(spec.keys.begin(), spec.keys.end(), std::size_t{0},
                        [](std::size_t n, const KeyDefinition &key) { return n + key.segments.size(); });
    if (fcr::SegmentSpecs + fcr::SegmentSpecSize * segmentCount > layout.katOffset) {
        message = "too many key segments for a " + std::to_string(spec.pageSize) + "-byte page";
        return Status::InvalidKeyLength;
    }
    NewFileWriter writer(file, spec);
    bool ok = true;
    std::uint32_t logical = 1;
    for (const auto &acs : layout.collations)
        ok = ok && writer.addPage(logical, pagebuild::acsPage(spec.pageSize, logical, *acs), pagetype::Acs), ++logical;
    for (std::size_t k = 0; k < spec.keys.size(); ++k, ++logical)
        ok = ok && writer.addPage(logical, pagebuild::emptyIndexPage(spec.pageSize, logical, static_cast<int>(k)),
                                  static_cast<std::uint8_t>(pagetype::IndexBase + k));
    const std::uint32_t perPage = (spec.pageSize - 6) / layout.physicalLength;
    UniquenessCheck unique(spec);
    std::vector<std::uint8_t> page;
    std::vector<std::uint8_t> record;
    std::uint32_t count = 0;
    std::uint32_t slot = perPage;
    while (ok && (record.clear(), records(record))) {
        if (record.size() != spec.recordLength) {
            message = "record " + std::to_string(count) + " has " + std::to_string(record.size()) +
                      " bytes; the file's records have " + std::to_string(spec.recordLength);
            return Status::DataBufferTooShort;
        }
        if (slot == perPage) {
            if (!page.empty())
                ok = writer.addPage(logical++, page, pagetype::Data);
            page = pagebuild::emptyDataPage(spec.pageSize, logical);
            slot = 0;
        }
        pagebuild::fillSlot(MutableBytes(page).subspan(6 + slot * layout.physicalLength, layout.physicalLength), record,
                            1);
        unique.add(record);
        ++slot;
        if (++count == 0x7FFFFFFF) {
            message = "too many records";
            return Status::CreateIoError;
        }
    }
    if (ok && !page.empty())
        ok = writer.addPage(logical++, page, pagetype::Data);
    std::vector<std::uint64_t> distinct;
    const int duplicateKey = unique.countDistinct(distinct);
    if (duplicateKey >= 0) {
        message = "two records have the same value of unique key " + std::to_string(duplicateKey);
        return Status::DuplicateKey;
    }
    ok = ok && writer.finish(controlRecord(spec, layout, count, logical, distinct)) && file.sync();
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
