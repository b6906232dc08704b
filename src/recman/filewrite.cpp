// Writes. Files of the record manager get only the one safe change: a record
// rewritten in place on its current page, key bytes untouched, so its B-trees
// stay valid. Files this engine created (empty B-trees, marked in the control
// record) also take inserts, deletes and key changes, committed by shadow
// paging: changed pages go to unused physical pages, then the inactive PAT
// copy, then the inactive control record copy (the commit point), each step
// synced to disk. A crash leaves either the old or the new state.
#include "openfile.h"

#include "keyorder.h"
#include "pagebuild.h"
#include "recordscan.h"

#include <algorithm>
#include <map>
#include <set>

namespace recman {

namespace {

struct SlotPlace {
    std::uint32_t logical;
    std::uint32_t offset;
};

SlotPlace placeOf(const FileHeader &header, std::uint32_t address)
{
    return {address / header.pageSize, address % header.pageSize};
}

std::uint8_t dataTag(const FileHeader &header)
{
    return header.format == Format::V6 ? pagetype::Data : 0;
}

bool keyBytesEqual(const KeyDefinition &key, Bytes a, Bytes b)
{
    std::vector<std::uint8_t> left, right;
    appendKeyValue(key, a, left);
    appendKeyValue(key, b, right);
    return left == right;
}

// A unique key that `record` would duplicate (other than record `self`), or -1.
int duplicatedKey(OpenFile &file, Bytes record, std::optional<std::uint32_t> self)
{
    for (std::size_t k = 0; k < file.indexes.size(); ++k) {
        if (file.indexes.key(k).allowsDuplicates())
            continue;
        std::vector<std::uint8_t> value;
        appendKeyValue(file.indexes.key(k), record, value);
        if (isNullKey(file.indexes.key(k), value))
            continue;
        const auto &index = file.indexes.use(k);
        const auto image = index.imageOfValue(value);
        for (auto position = index.lowerBound(image); index.imageAtEquals(position, image); ++position)
            if (!self || index.ordinalAt(position) != *self)
                return index.key().number;
    }
    return -1;
}

std::uint16_t nextUsage(std::uint16_t usage)
{
    return static_cast<std::uint16_t>(usage == 0xFFFE ? 1 : usage + 1);
}

Status writeFailed(std::string &message)
{
    message = "writing to the file failed (disk full or I/O error); the file keeps its previous state";
    return Status::IoError;
}

// A record's page as it stands on disk now, read through the page tables
// that are current now: another program may have moved pages since we opened.
struct PageOnDisk {
    std::vector<std::uint8_t> bytes;
    std::uint32_t physical = 0;
};

// Status::Conflict (with the message set) when the record's user bytes on disk
// are no longer the ones we read, or, in our own files, when anything was
// committed since we opened (our page tables would then be stale).
Status readRecordPage(OpenFile &file, std::uint32_t ordinal, Bytes asRead, PageOnDisk &page, std::string &message)
{
    const auto &header = file.header;
    const auto place = placeOf(header, file.records.address(ordinal));
    const FileHeader now = readHeader(file.handle);
    const bool moved = header.format == Format::V6 && now.usage != header.usage;
    if (moved && header.createdByEngine) {
        message = "the file was changed by another program since it was opened; nothing was written";
        return Status::Conflict;
    }
    std::unique_ptr<PageMap> freshMap;
    if (moved)
        freshMap = std::make_unique<PageMap>(file.handle, now, file.handle.size());
    const PageMap &map = freshMap ? *freshMap : *file.pages;
    map.read(place.logical, dataTag(header), page.bytes);
    page.physical = map.physicalOf(place.logical);
    const Bytes stored = Bytes(page.bytes).subspan(place.offset + header.userOffset, header.recordLength);
    if (!std::ranges::equal(stored, asRead)) {
        message = "the record was changed by another user since it was read; nothing was written (read it again)";
        return Status::Conflict;
    }
    return Status::Success;
}

// In place, on the page as it stands on disk: the record manager's own files,
// whose B-trees must not see a changed key. Only the record's own bytes change;
// everything else on the page stays as the other writers left it.
Status updateInPlace(OpenFile &file, std::uint32_t ordinal, PageOnDisk &page, Bytes record, std::string &message)
{
    const auto &header = file.header;
    const auto place = placeOf(header, file.records.address(ordinal));
    const auto slot = MutableBytes(page.bytes).subspan(place.offset, header.physicalLength);
    std::copy(record.begin(), record.end(), slot.begin() + header.userOffset);
    if (header.format == Format::V6)
        bytes::put16(slot, 0, nextUsage(bytes::u16(slot, 0)));
    pagebuild::touchDataPage(page.bytes);
    if (!file.handle.writeAt(std::uint64_t{page.physical} * header.pageSize, page.bytes) || !file.handle.sync())
        return writeFailed(message);
    return Status::Success;
}

// One shadow-paged change of a file this engine created.
class ShadowCommit {
public:
    explicit ShadowCommit(OpenFile &file) : file_(file), control_(file.header.page) {}

    std::vector<std::uint8_t> &page(std::uint32_t logical)
    {
        auto found = pages_.find(logical);
        if (found == pages_.end()) {
            found = pages_.emplace(logical, std::vector<std::uint8_t>{}).first;
            if (logical < file_.pages->logicalPageEnd())
                file_.pages->read(logical, pagetype::Data, found->second);
        }
        return found->second;
    }
    void addPage(std::uint32_t logical, std::vector<std::uint8_t> content) { pages_[logical] = std::move(content); }
    MutableBytes control() { return control_; }

    bool commit()
    {
        auto &pages = *file_.pages;
        const auto pageSize = file_.header.pageSize;
        const auto usage = file_.header.usage + 1;
        ensureFreePhysical();
        // 1. Changed pages (always data pages) onto physical pages no current page uses.
        std::map<std::uint32_t, std::uint32_t> placed;
        for (auto &[logical, content] : pages_) {
            const auto physical = takePhysical();
            if (!file_.handle.writeAt(std::uint64_t{physical} * pageSize, content))
                return false;
            placed[logical] = physical;
        }
        if (!file_.handle.sync())
            return false;
        // 2. Inactive PAT copies: remapped entries, plus repair of any copy left
        //    newer than the control record by a commit that never finished.
        const std::uint32_t end = std::max(pages.logicalPageEnd(), bytes::ws32(control_, fcr::PagesInUse));
        auto groups = pages.patGroups();
        const std::uint32_t groupCount = (end - 1 + pages.entriesPerPat() - 1) / pages.entriesPerPat();
        std::set<std::uint32_t> touched;
        for (const auto &entry : placed)
            touched.insert((entry.first - 1) / pages.entriesPerPat());
        while (groups.size() < groupCount) {
            PageMap::PatGroup fresh;
            fresh.copies[0] = fresh.copies[1] = pagebuild::emptyPatPage(pageSize, 0);
            fresh.current = 1; // so that copy 0 is written
            fresh.valid[1] = true;
            groups.push_back(std::move(fresh));
        }
        for (std::uint32_t g = 0; g < groups.size(); ++g) {
            auto &group = groups[g];
            const int inactive = 1 - group.current;
            const bool stale = group.valid[inactive] && group.usage[inactive] > file_.header.usage;
            if (!touched.count(g) && !stale)
                continue;
            auto content = group.copies[group.current];
            std::uint32_t newUsage = group.usage[group.current];
            if (touched.count(g)) {
                newUsage = usage;
                for (const auto &[logical, physical] : placed)
                    if ((logical - 1) / pages.entriesPerPat() == g)
                        pagebuild::setPatEntry(content, logical - g * pages.entriesPerPat(), physical, pagetype::Data);
            }
            bytes::put32(content, 4, newUsage);
            if (!file_.handle.writeAt(std::uint64_t{pages.patPhysical(g) + inactive} * pageSize, content))
                return false;
            group.copies[inactive] = std::move(content);
            group.usage[inactive] = newUsage;
            group.valid[inactive] = true;
            if (touched.count(g))
                group.current = inactive;
        }
        if (!file_.handle.sync())
            return false;
        // 3. The inactive control record copy: the commit point.
        const int inactiveControl = 1 - file_.header.currentCopy;
        bytes::put32(control_, fcr::Usage, usage);
        if (!file_.handle.writeAt(std::uint64_t{static_cast<std::uint32_t>(inactiveControl)} * pageSize, control_) ||
            !file_.handle.sync())
            return false;
        // Committed: the in-memory view follows.
        std::vector<std::uint32_t> released;
        for (const auto &entry : placed)
            if (entry.first < pages.logicalPageEnd())
                released.push_back(pages.physicalOf(entry.first));
        pages.patGroups() = std::move(groups);
        pages.setLogicalPageEnd(bytes::ws32(control_, fcr::PagesInUse));
        pages.setPhysicalPageCount(static_cast<std::uint32_t>(file_.handle.size() / pageSize));
        file_.freePhysical.insert(file_.freePhysical.end(), released.begin(), released.end());
        file_.header.usage = usage;
        file_.header.currentCopy = inactiveControl;
        file_.header.page = control_;
        file_.header.freeHead = bytes::ws32(control_, fcr::FreeHead);
        file_.header.recordCount = bytes::ws32(control_, fcr::RecordCount);
        file_.header.pagesInUse = pages.logicalPageEnd();
        return true;
    }

private:
    void ensureFreePhysical()
    {
        if (file_.freePhysicalKnown)
            return;
        const auto &pages = *file_.pages;
        std::vector<bool> used(pages.physicalPageCount(), false);
        for (std::uint32_t logical = 1; logical < pages.logicalPageEnd(); ++logical)
            used[pages.physicalOf(logical)] = true;
        for (std::uint32_t physical = pages.physicalPageCount(); physical-- > 4;)
            if (!used[physical] && !pages.isPatPosition(physical))
                file_.freePhysical.push_back(physical);
        nextAppend_ = pages.physicalPageCount();
        file_.freePhysicalKnown = true;
    }

    std::uint32_t takePhysical()
    {
        if (!file_.freePhysical.empty()) {
            const auto physical = file_.freePhysical.back();
            file_.freePhysical.pop_back();
            return physical;
        }
        auto physical = std::max<std::uint32_t>(std::max(nextAppend_, file_.pages->physicalPageCount()), 4);
        while (file_.pages->isPatPosition(physical))
            ++physical;
        nextAppend_ = physical + 1;
        return physical;
    }

    OpenFile &file_;
    std::vector<std::uint8_t> control_;
    std::map<std::uint32_t, std::vector<std::uint8_t>> pages_;
    std::uint32_t nextAppend_ = 0;
};


// Indexes not built yet need nothing: they are built from the records later.
void reindex(OpenFile &file, std::uint32_t ordinal, const std::vector<std::vector<std::uint8_t>> &oldImages)
{
    for (std::size_t k = 0; k < file.indexes.size(); ++k)
        if (auto *index = file.indexes.built(k)) {
            index->erase(ordinal, oldImages[k]);
            index->insert(ordinal);
        }
}

// Taken for every key, built or not: a uniqueness check during the write may
// build an index before the old images are needed.
std::vector<std::vector<std::uint8_t>> imagesOf(const OpenFile &file, std::uint32_t ordinal)
{
    std::vector<std::vector<std::uint8_t>> images;
    for (std::size_t k = 0; k < file.indexes.size(); ++k)
        images.push_back(sortImageOfRecord(file.indexes.key(k), file.records.record(ordinal)));
    return images;
}

// The first key whose bytes differ between two records, or -1.
int changedKey(const OpenFile &file, Bytes before, Bytes after, bool modifiableOnesCount)
{
    for (std::size_t k = 0; k < file.indexes.size(); ++k) {
        const auto &key = file.indexes.key(k);
        if ((modifiableOnesCount || !key.modifiable()) && !keyBytesEqual(key, before, after))
            return key.number;
    }
    return -1;
}

Status checkRecordShape(const OpenFile &file, Bytes record, std::string &message)
{
    if (file.header.variable || file.header.compressed) {
        message = "writes to variable-length or compressed records are not supported";
        return Status::AccessDenied;
    }
    if (record.size() != file.header.recordLength) {
        message = "record of " + std::to_string(record.size()) + " bytes; this file's records have " +
                  std::to_string(file.header.recordLength);
        return Status::DataBufferTooShort;
    }
    return Status::Success;
}

Status updateOwn(OpenFile &file, std::uint32_t ordinal, Bytes record, std::string &message)
{
    if (const int key = changedKey(file, file.records.record(ordinal), record, false); key >= 0) {
        message = "key " + std::to_string(key) + " is not modifiable";
        return Status::ModifiableKeyError;
    }
    if (const int key = duplicatedKey(file, record, ordinal); key >= 0) {
        message = "another record already has this value of unique key " + std::to_string(key);
        return Status::DuplicateKey;
    }
    const auto place = placeOf(file.header, file.records.address(ordinal));
    ShadowCommit commit(file);
    auto &page = commit.page(place.logical);
    const auto slot = MutableBytes(page).subspan(place.offset, file.header.physicalLength);
    pagebuild::fillSlot(slot, record, nextUsage(bytes::u16(slot, 0)));
    pagebuild::touchDataPage(page);
    if (!commit.commit())
        return writeFailed(message);
    return Status::Success;
}

} // namespace

Status refuseUnlessOwn(const OpenFile &file, const char *operation, std::string &message)
{
    if (file.header.createdByEngine)
        return Status::Success;
    message = std::string(operation) +
              " refused: this file was written by the record manager, whose B-tree indexes this engine does not "
              "maintain; the file is unchanged";
    return Status::AccessDenied;
}

Status updateRecord(OpenFile &file, std::uint32_t ordinal, Bytes asRead, Bytes record, std::string &message)
{
    if (const auto status = checkRecordShape(file, record, message); status != Status::Success)
        return status;
    const auto oldImages = imagesOf(file, ordinal);
    try {
        PageOnDisk page;
        Status status = readRecordPage(file, ordinal, asRead, page, message);
        if (status != Status::Success)
            return status;
        if (file.header.createdByEngine) {
            status = updateOwn(file, ordinal, record, message);
        } else {
            if (const int key = changedKey(file, file.records.record(ordinal), record, true); key >= 0) {
                message = "update would change key " + std::to_string(key) +
                          "; in a file of the record manager only non-key bytes can be changed";
                return Status::AccessDenied;
            }
            status = updateInPlace(file, ordinal, page, record, message);
        }
        if (status != Status::Success)
            return status;
    } catch (const FormatError &error) {
        message = std::string("update refused: ") + error.what();
        return Status::IoError;
    }
    file.wroteOwnChange();
    file.records.replace(ordinal, record);
    reindex(file, ordinal, oldImages);
    return Status::Success;
}

Status insertRecord(OpenFile &file, Bytes record, std::uint32_t &ordinal, std::string &message)
{
    if (const auto status = refuseUnlessOwn(file, "insert", message); status != Status::Success)
        return status;
    if (const auto status = checkRecordShape(file, record, message); status != Status::Success)
        return status;
    if (const int key = duplicatedKey(file, record, std::nullopt); key >= 0) {
        message = "another record already has this value of unique key " + std::to_string(key);
        return Status::DuplicateKey;
    }
    const auto &header = file.header;
    try {
        ShadowCommit commit(file);
        std::uint32_t address = 0;
        bool fromUnused = false;
        if (header.freeHead != 0xFFFFFFFF) {
            address = header.freeHead;
            const auto place = placeOf(header, address);
            const auto &page = commit.page(place.logical);
            bytes::putWs32(commit.control(), fcr::FreeHead, bytes::ws32(page, place.offset));
        } else if (!file.unusedSlots.empty()) {
            address = file.unusedSlots.front();
            fromUnused = true;
        } else {
            const auto logical = bytes::ws32(commit.control(), fcr::PagesInUse);
            commit.addPage(logical, pagebuild::emptyDataPage(header.pageSize, logical));
            bytes::putWs32(commit.control(), fcr::PagesInUse, logical + 1);
            address = logical * header.pageSize + slotOffset(header, 0);
        }
        const auto place = placeOf(header, address);
        auto &page = commit.page(place.logical);
        pagebuild::fillSlot(MutableBytes(page).subspan(place.offset, header.physicalLength), record, 1);
        pagebuild::touchDataPage(page);
        bytes::putWs32(commit.control(), fcr::RecordCount, header.recordCount + 1);
        const bool newPage = place.logical >= file.pages->logicalPageEnd();
        if (!commit.commit())
            return writeFailed(message);
        file.wroteOwnChange();
        if (fromUnused)
            file.unusedSlots.erase(file.unusedSlots.begin());
        if (newPage)
            for (std::uint32_t slot = 1; slot < slotsPerPage(header); ++slot)
                file.unusedSlots.push_back(place.logical * header.pageSize + slotOffset(header, slot));
        ordinal = static_cast<std::uint32_t>(file.records.append(record, address));
    } catch (const FormatError &error) {
        message = std::string("insert refused: ") + error.what();
        return Status::IoError;
    }
    for (std::size_t k = 0; k < file.indexes.size(); ++k)
        if (auto *index = file.indexes.built(k))
            index->insert(ordinal);
    ++file.info.recordCount;
    file.info.headerRecordCount = file.header.recordCount;
    return Status::Success;
}

Status deleteRecord(OpenFile &file, std::uint32_t ordinal, std::string &message)
{
    if (const auto status = refuseUnlessOwn(file, "delete", message); status != Status::Success)
        return status;
    const auto &header = file.header;
    const auto oldImages = imagesOf(file, ordinal);
    try {
        const auto address = file.records.address(ordinal);
        const auto place = placeOf(header, address);
        ShadowCommit commit(file);
        auto &page = commit.page(place.logical);
        pagebuild::freeSlot(MutableBytes(page).subspan(place.offset, header.physicalLength), header.freeHead);
        pagebuild::touchDataPage(page);
        bytes::putWs32(commit.control(), fcr::FreeHead, address);
        bytes::putWs32(commit.control(), fcr::RecordCount, header.recordCount - 1);
        if (!commit.commit())
            return writeFailed(message);
        file.wroteOwnChange();
    } catch (const FormatError &error) {
        message = std::string("delete refused: ") + error.what();
        return Status::IoError;
    }
    for (std::size_t k = 0; k < file.indexes.size(); ++k)
        if (auto *index = file.indexes.built(k))
            index->erase(ordinal, oldImages[k]);
    file.records.setLive(ordinal, false);
    --file.info.recordCount;
    file.info.headerRecordCount = file.header.recordCount;
    return Status::Success;
}

} // namespace recman
