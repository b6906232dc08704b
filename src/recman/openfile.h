// State of an open data file, shared by every File of this process that has
// the same file open (so that each sees the others' writes), and by the
// navigation and the write code. Pages are read on demand through a small
// cache; the file's size and change times are looked at before every
// operation, and a change made by another program makes the next operation
// read the file's structure again.
#pragma once

#include "file.h"
#include "filehandle.h"
#include "header.h"
#include "indexdescent.h"
#include "journal.h"
#include "keyindex.h"
#include "pagecache.h"
#include "pagemap.h"
#include "recordscan.h"
#include "recordstore.h"

#include <chrono>
#include <ctime>
#include <memory>
#include <optional>
#include <vector>

namespace recman {

struct OpenFile {
    std::filesystem::path path;
    FileHandle handle;
    OpenMode mode = OpenMode::ReadOnly; // ReadWrite once any File of ours opened it so (and holds the lock)
    FileHeader header;
    std::unique_ptr<PageCache> cache;
    std::unique_ptr<PageMap> pages;
    // The live records in physical order. Listed at open for small files and
    // our own; a bigger file's are listed when first needed (a step, a write,
    // an index built in memory), and meanwhile its keyed reads go down its
    // own index pages.
    RecordStore records;
    bool listed = false;
    bool descends = false;
    std::vector<CheckedIndexPages> checkedIndexPages; // per key
    std::unique_ptr<SlotWalk> slotWalk;                // steps while the records are not listed
    KeyIndexes indexes;
    std::vector<std::uint32_t> unusedSlots;
    // Physical pages no current page uses (own files only; filled on first write).
    std::vector<std::uint32_t> freePhysical;
    bool freePhysicalKnown = false;
    FileInfo info;
    // What the file looked like when its structure was last read, and how
    // many times it has been read (so that each File can find its place again).
    FileStamp stamp;
    std::uint64_t generation = 0;
    // The group of writes a writing File of ours has open (File::beginGroup):
    // its journal, set on the shared handle, so every write through it, by
    // any File sharing it, saves its before-image first.
    std::unique_ptr<Journal> journal;
    const File::Impl *groupOwner = nullptr;

    // Reads header and page tables, and the record list of a small file;
    // throws FormatError.
    void load();
    // Lists the records if they are not yet; throws FormatError.
    void listRecords();
    // The walk of live slots that steps take while the records are not
    // listed, made on first use; throws FormatError.
    SlotWalk &slots();
    // load() again when the file changed on disk since it was last looked at.
    void refreshIfChanged();
    // After a write of ours: cached pages are stale, the new stamp is ours.
    void wroteOwnChange();
    // The file was put back from its journal behind the cache: the next
    // operation reads it all anew, dropping the cached pages.
    void restoredBehindCache();
    // Takes a scan's records as the file's list.
    void adopt(ScanResult scan);
    // Ends the group's journal on the handle; the journal file stays.
    void dropJournal();
};

// Where one File stands: the current record's address and, when the record
// list holds it, its ordinal there (of a given generation of the list; by
// the address it is found again after the list was read anew); after a keyed
// operation, the key it was reached by and that key's sort image at the time
// (so next/previous still work after the record was deleted or changed).
// bytes: the record as this File read it, which an update checks the disk
// against.
struct Currency {
    bool onRecord = false;
    std::uint32_t address = 0;
    std::optional<std::uint32_t> ordinal;
    std::uint64_t generation = 0;
    int keyPath = -1;
    std::vector<std::uint8_t> keyImage;
    std::vector<std::uint8_t> bytes;
};

// A run of steps in one direction (stepNext after stepNext, ...). Looking at
// the file's times costs a system call, more than a step itself, so a step
// that continues a run looks only every stepsPerCheck steps or once
// checkInterval has passed since the last look; every other operation looks.
struct StepRun {
    static constexpr int stepsPerCheck = 64;
    static constexpr std::chrono::milliseconds checkInterval{20};

    int direction = 0; // of the last operation: +1, -1, or 0 for anything but stepNext/stepPrevious
    int stepsSinceCheck = 0;
    std::chrono::nanoseconds lastCheck{};

    bool checkDue(std::chrono::nanoseconds time) const
    {
        return stepsSinceCheck >= stepsPerCheck || time - lastCheck >= checkInterval;
    }
    void checked(std::chrono::nanoseconds time)
    {
        stepsSinceCheck = 0;
        lastCheck = time;
    }
    // The kernel's coarse monotonic clock (a few milliseconds fine, so a look
    // may come up to one tick after 20 ms): the precise one costs more than a
    // step.
    static std::chrono::nanoseconds now()
    {
        timespec time{};
        ::clock_gettime(CLOCK_MONOTONIC_COARSE, &time);
        return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
    }
};

struct File::Impl {
    std::shared_ptr<OpenFile> file;
    OpenMode mode = OpenMode::ReadOnly; // this File's; the shared file may be open for writing by another
    bool inGroup = false;               // beginGroup called; file->groupOwner is this when a journal is kept

    Currency at;
    StepRun run;
    std::vector<std::uint8_t> scratch; // a record read before it becomes the current one
};

// The keyed operations, as File::keyed takes them.
namespace keyed {
enum Operation { Equal, Greater, GreaterOrEqual, Less, LessOrEqual, First, Last, Next, Previous };
inline bool takesValue(int operation)
{
    return operation <= LessOrEqual;
}
inline std::string keyName(int key)
{
    return "key " + std::to_string(key);
}
} // namespace keyed

// Opens path, or joins this process's open of the same file. Status and
// message as File::open gives them.
Status openShared(const std::filesystem::path &path, OpenMode mode, std::shared_ptr<OpenFile> &file,
                  std::string &message);

// refreshIfChanged() and listRecords() with their failure as a status and message.
Status refresh(OpenFile &file, std::string &message);
Status listRecords(OpenFile &file, std::string &message);

// Writes; each returns Success or a status and sets message. asRead: the
// record's bytes as the caller read them.
Status updateRecord(OpenFile &file, std::uint32_t ordinal, Bytes asRead, Bytes record, std::string &message);
Status insertRecord(OpenFile &file, Bytes record, std::uint32_t &ordinal, std::string &message);
// AccessDenied with a message naming the operation unless the file is one
// this engine created (the only files it inserts into and deletes from).
Status refuseUnlessOwn(const OpenFile &file, const char *operation, std::string &message);
Status deleteRecord(OpenFile &file, std::uint32_t ordinal, std::string &message);

} // namespace recman
