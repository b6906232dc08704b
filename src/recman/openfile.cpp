#include "openfile.h"

#include "collation.h"
#include "recordscan.h"

#include <map>
#include <mutex>

namespace recman {

namespace {

std::uint64_t listLimit = 32u << 20;

FileInfo describe(const FileHeader &header)
{
    FileInfo info;
    info.format = header.formatName();
    info.versionWord = header.versionWord;
    info.pageSize = header.pageSize;
    info.recordLength = header.recordLength;
    info.physicalRecordLength = header.physicalLength;
    info.recordCount = header.recordCount;
    info.recordsCounted = false;
    info.headerRecordCount = header.recordCount;
    info.variable = header.variable;
    info.compressed = header.compressed;
    info.ownerProtected = header.ownerProtected;
    info.createdByEngine = header.createdByEngine;
    info.fileFlags = header.fileFlags;
    info.keys = header.keys;
    return info;
}

// Opens of this process, by file identity: a second open of a file joins the
// first, so both see one set of pages and one lock.
struct Registry {
    std::mutex mutex;
    std::map<FileIdentity, std::weak_ptr<OpenFile>> files;
};

Registry &registry()
{
    static Registry instance;
    return instance;
}

Status lockForWriting(FileHandle &handle, const std::filesystem::path &path, std::string &message)
{
    if (handle.tryLockExclusive())
        return Status::Success;
    message = "File Locked by other process: " + path.string() + " is open for writing elsewhere";
    return Status::FileInUse;
}

// With the write lock just taken, before any page is read or cached: a group
// of writes that never ended is put back from its journal.
Status takeForWriting(FileHandle &handle, const std::filesystem::path &path, std::string &rolledBack,
                      std::string &message)
{
    if (const auto status = lockForWriting(handle, path, message); status != Status::Success)
        return status;
    if (rollBack(path, rolledBack) != Rollback::Failed)
        return Status::Success;
    message = rolledBack;
    return Status::IoError;
}

// Called inside a catch block: the status and message for a file whose
// structure could not be read.
Status readFailure(const OpenFile &file, std::string &message)
{
    try {
        throw;
    } catch (const FormatError &error) {
        // Pages that do not name themselves in a file with an owner name are
        // encrypted with it: say so rather than call the file unreadable.
        if (file.header.ownerProtected) {
            message = file.path.string() +
                      ": the file is protected by an owner name and its data is encrypted; it can only be opened "
                      "with that owner name in the record manager (" +
                      error.what() + ")";
            return Status::OwnerNameRequired;
        }
        message = file.path.string() + ": " + error.what();
        return Status::NotARecordManagerFile;
    } catch (const std::bad_alloc &) {
        message = file.path.string() + ": not enough memory to read the file";
    } catch (const std::exception &error) {
        message = file.path.string() + ": " + error.what();
    }
    return Status::IoError;
}

} // namespace

Status listRecords(OpenFile &file, std::string &message)
{
    try {
        file.listRecords();
        return Status::Success;
    } catch (...) {
        return readFailure(file, message);
    }
}

void setListAtOpenLimit(std::uint64_t bytes)
{
    listLimit = bytes;
}

std::uint64_t listAtOpenLimit()
{
    return listLimit;
}

Status refresh(OpenFile &file, std::string &message)
{
    try {
        file.refreshIfChanged();
        return Status::Success;
    } catch (...) {
        return readFailure(file, message);
    }
}

void OpenFile::load()
{
    // Everything is read into new parts first, so that a failure leaves the
    // previous picture whole.
    const auto newStamp = handle.stamp();
    auto newHeader = readHeader(handle);
    if (generation == 0)
        header = newHeader; // so that a failure can say what kind of file it was
    auto newCache = std::make_unique<PageCache>(handle, newHeader.pageSize, pageCacheLimit());
    auto newPages = std::make_unique<PageMap>(handle, newHeader, newStamp.size, newCache.get());
    attachCollatingSequences(newHeader, *newPages);
    const bool listNow = newHeader.createdByEngine || newStamp.size <= listLimit;
    std::optional<ScanResult> scan;
    if (listNow)
        scan = scanRecords(newHeader, *newPages);
    stamp = newStamp;
    header = std::move(newHeader);
    cache = std::move(newCache);
    pages = std::move(newPages);
    info = describe(header);
    records = RecordStore(*pages, header);
    listed = false;
    descends = !listNow;
    unusedSlots.clear();
    if (scan)
        adopt(std::move(*scan));
    checkedIndexPages.assign(info.keys.size(), {});
    slotWalk.reset();
    freePhysical.clear();
    freePhysicalKnown = false;
    // Key definitions live in info so that indexes can point at them for good.
    indexes = KeyIndexes(info.keys, records, pages.get(), &header, &info.warnings);
    ++generation;
}

void OpenFile::listRecords()
{
    if (!listed)
        adopt(scanRecords(header, *pages));
}

SlotWalk &OpenFile::slots()
{
    if (!slotWalk) {
        slotWalk = std::make_unique<SlotWalk>(header, *pages);
        info.warnings.insert(info.warnings.end(), slotWalk->warnings().begin(), slotWalk->warnings().end());
    }
    return *slotWalk;
}

void OpenFile::adopt(ScanResult scan)
{
    records = std::move(scan.records);
    unusedSlots = std::move(scan.unusedSlots);
    info.recordCount = static_cast<std::uint32_t>(records.size());
    info.recordsCounted = true;
    info.warnings.insert(info.warnings.end(), scan.warnings.begin(), scan.warnings.end());
    listed = true;
}

void OpenFile::refreshIfChanged()
{
    const auto now = handle.stamp();
    if (now.sameAs(stamp) && stamp.settled)
        return;
    // Unchanged times that are too recent to prove anything: records added,
    // removed or moved change the control record, so while it is the same
    // dropping the cached pages is enough to read every record's bytes anew.
    if (now.sameAs(stamp) && readHeader(handle).page == header.page) {
        cache->clear();
        stamp.settled = now.settled;
        return;
    }
    load();
}

void OpenFile::restoredBehindCache()
{
    // Its times may not have moved (same clock tick): no stamp matches one
    // never taken, so the next refresh reads the structure and a new cache.
    stamp = {};
}

void OpenFile::dropJournal()
{
    handle.setJournal(nullptr);
    journal.reset();
    groupOwner = nullptr;
}

void OpenFile::wroteOwnChange()
{
    cache->clear();
    // Another program's write in the same clock tick as ours would go unseen
    // until the file changes again; taking our own stamp as settled avoids
    // reading the whole structure again after every write of ours.
    stamp = handle.stamp();
    stamp.settled = true;
}

Status openShared(const std::filesystem::path &path, OpenMode mode, std::shared_ptr<OpenFile> &file,
                  std::string &message)
{
    auto fresh = std::make_shared<OpenFile>();
    fresh->path = path;
    fresh->mode = mode;
    const auto reason =
        fresh->handle.open(path, mode == OpenMode::ReadOnly ? FileHandle::Mode::Read : FileHandle::Mode::ReadWrite);
    if (!reason.empty()) {
        message = "cannot open " + path.string() + ": " + reason;
        return mode == OpenMode::ReadOnly ? Status::IoError : Status::AccessDenied;
    }
    auto &shared = registry();
    std::lock_guard lock(shared.mutex);
    std::erase_if(shared.files, [](const auto &entry) { return entry.second.expired(); });
    const auto identity = fresh->handle.identity();
    if (auto existing = shared.files[identity].lock()) {
        std::string rolledBack;
        if (mode == OpenMode::ReadWrite && existing->mode == OpenMode::ReadOnly) {
            // The first open only read: the file is now shared for writing, under our lock.
            if (const auto status = takeForWriting(fresh->handle, path, rolledBack, message);
                status != Status::Success)
                return status;
            existing->handle = std::move(fresh->handle);
            existing->mode = OpenMode::ReadWrite;
            if (!rolledBack.empty())
                existing->restoredBehindCache();
        }
        if (const auto status = refresh(*existing, message); status != Status::Success)
            return status;
        if (!rolledBack.empty())
            existing->info.rolledBack = std::move(rolledBack);
        file = std::move(existing);
        return Status::Success;
    }
    std::string rolledBack;
    if (mode == OpenMode::ReadWrite)
        if (const auto status = takeForWriting(fresh->handle, path, rolledBack, message); status != Status::Success)
            return status;
    try {
        fresh->load();
    } catch (...) {
        return readFailure(*fresh, message);
    }
    fresh->info.rolledBack = std::move(rolledBack);
    shared.files[identity] = fresh;
    file = std::move(fresh);
    return Status::Success;
}

} // namespace recman
