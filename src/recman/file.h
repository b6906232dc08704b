// recman::File — one open record-manager data file.
//
//   recman::File file;
//   if (file.open(path) != recman::Status::Success) report(file.lastMessage());
//   for (auto s = file.getFirst(0); s == recman::Status::Success; s = file.getNext(0))
//       use(file.record());
//
// Keyed operations take a key number and, where they search, a key value:
// the key's segments' bytes concatenated (KeyDefinition::length() bytes; longer
// buffers are fine, the rest is ignored). keyValueOf() builds one from a record.
// getNext/getPrevious continue on the key the last get used (7 for another
// key, 8 after a step or with no current record). Step operations walk the
// records in physical order and may follow any get. Past either end: 9;
// get-equal without a match: 4. Every operation returns a Status; on failure
// lastMessage() says what happened and the current record stays in place.
//
// Writes (open with OpenMode::ReadWrite):
//  - update() rewrites the current record in place. In files of the record
//    manager only fixed-length, uncompressed records whose key bytes stay the
//    same can be updated; in files this engine created, anything goes. If
//    the record's bytes on disk are no longer the ones read (another program
//    changed it), the update is refused with Conflict (80), nothing written.
//  - insert() and erase() work only in files this engine created.
// Each write reaches the disk (fsync) before the call returns.
//
// Files of this process that open the same data file share one handle, one
// lock and one set of pages, so each sees the others' writes. Before every
// operation the file's size and change times are looked at; when another
// program changed it, the operation reads its structure again, so the change
// is seen. The one exception is a scan: a stepNext or stepPrevious that
// follows a step in the same direction looks only every 64 steps or 20 ms,
// so for up to 64 steps or 20 ms it may not see another program's change. record() is the current record as this File read it. Files that
// share a data file must be used from one thread.
#pragma once

#include "bytes.h"
#include "keydef.h"
#include "status.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace recman {

enum class OpenMode { ReadOnly, ReadWrite };

struct FileInfo {
    std::string format;            // "5.x" or "6.x"
    std::uint16_t versionWord = 0; // 5.x: major version; 6.x: e.g. 0x0600, 0x0610
    std::uint32_t pageSize = 0;
    std::uint32_t recordLength = 0; // fixed part
    std::uint32_t physicalRecordLength = 0;
    // Live records the data pages hold, once they have been listed (at open
    // for files up to listAtOpenLimit(); else on the first step, write or
    // index built in memory); until then what the control record says.
    std::uint32_t recordCount = 0;
    bool recordsCounted = false;
    std::uint32_t headerRecordCount = 0; // what the control record says; a check, never corrected
    bool variable = false;
    bool compressed = false;
    bool ownerProtected = false;
    bool createdByEngine = false;
    std::uint16_t fileFlags = 0;
    std::vector<KeyDefinition> keys;
    std::vector<std::string> warnings; // oddities found while reading (e.g. count mismatch)
    // Set when open rolled back a group of writes that never ended: what was done.
    std::string rolledBack;

    bool countMismatch() const { return recordsCounted && recordCount != headerRecordCount; }
};

// Files up to this size (bytes; default 32 MiB) have their records listed
// when they are opened, which checks the control record's count at once and
// lets keyed reads use indexes held in memory. Bigger files list their
// records only when first needed (a step, a write), and their keyed reads go
// down the file's own index pages (with a fallback to an index in memory when
// the pages are damaged), so opening and reading by key cost the same for a
// file of any size. Files opened from now on follow a new limit.
void setListAtOpenLimit(std::uint64_t bytes);
std::uint64_t listAtOpenLimit();

class File {
public:
    File();
    ~File();
    File(File &&) noexcept;
    File &operator=(File &&) noexcept;

    Status open(const std::filesystem::path &path, OpenMode mode = OpenMode::ReadOnly);
    void close();
    bool isOpen() const;
    const std::string &lastMessage() const { return message_; }
    // Facts about the open file (empty when closed).
    const FileInfo &info() const;
    // Lists the records now if they are not yet (see setListAtOpenLimit), so
    // that info() holds the count the data pages hold and any mismatch.
    Status countRecords();
    std::size_t keyCount() const;

    Status getEqual(int key, Bytes keyValue);
    Status getGreater(int key, Bytes keyValue);
    Status getGreaterOrEqual(int key, Bytes keyValue);
    Status getLess(int key, Bytes keyValue);
    Status getLessOrEqual(int key, Bytes keyValue);
    Status getFirst(int key);
    Status getLast(int key);
    Status getNext(int key);
    Status getPrevious(int key);

    Status stepFirst();
    Status stepLast();
    Status stepNext();
    Status stepPrevious();

    // Bytes of the current record (empty when there is none).
    Bytes record() const;
    // Copies the current record into buffer; DataBufferTooShort if it does not fit
    // (the part that fits is copied, length says the full size).
    Status readRecord(MutableBytes buffer, std::size_t &length) const;
    // Record address of the current record (as the record manager's Get Position).
    Status position(std::uint32_t &address) const;
    // Key value of a record for a key (segments concatenated).
    std::vector<std::uint8_t> keyValueOf(int key, Bytes record) const;

    // Bytes of pages the file's cache holds now (bounded by pageCacheLimit()).
    std::size_t cachedPageBytes() const;

    Status update(Bytes record);
    Status insert(Bytes record);
    Status erase();

    // A group of writes that a crash cannot tear: after beginGroup, every write
    // first saves the bytes it overwrites in a journal beside the file (see
    // journal.h). endGroup keeps the writes and removes the journal; abortGroup
    // puts the file back as it was at beginGroup and reads it afresh (no
    // current record). A group still open when the process dies, or when the
    // File is closed, is rolled back by the next open for writing
    // (FileInfo::rolledBack says so). On a file opened read-only nothing can be
    // written, so no journal is kept.
    Status beginGroup();
    Status endGroup();
    Status abortGroup();
    bool inGroup() const;
    // Ends the groups of several files as one (see groupcommit.h): after a
    // crash at any point, the next opens find either every file's writes kept
    // or every file put back. If the commit cannot be made, every group is
    // rolled back. Each File's lastMessage() says what went wrong.
    static Status endGroups(std::span<File *const> files);

    struct Impl;

private:
    enum class Step { First, Last, Next, Previous };

    Status fail(Status status, std::string message) const;
    // Before every operation: the file is open, its structure is current, and
    // this File's current record found again in it. A status when not.
    // continuedStep: the direction of a stepNext (+1) or stepPrevious (-1),
    // which may skip looking at the file's times (see StepRun); 0 otherwise.
    std::optional<Status> ready(int continuedStep = 0);
    void setCurrent(std::uint32_t ordinal);
    bool onLiveRecord() const;
    // Lists the file's records if they are not yet, and finds the current
    // record's place in the list.
    std::optional<Status> listRecords();
    Status findInList(std::string &message);
    // ready(), and the key number exists.
    std::optional<Status> checkKey(int key);
    // Builds the key's index in memory if it is not built yet: from the
    // file's own index pages when they are consistent (and trusted), else
    // from the records.
    std::optional<Status> buildIndex(int key, bool trustIndexPages = true);
    // The key's reads go down the file's own index pages (see
    // setListAtOpenLimit).
    bool descends(int key) const;
    // operation (keyed::Operation) on key, with the sort image of the value
    // searched for or, for next and previous, of the current record.
    Status keyed(int key, Bytes keyValue, int operation);
    Status fromIndex(int key, int operation, const std::vector<std::uint8_t> &image);
    // The same down the index pages; throws FormatError where they are damaged.
    Status descend(int key, int operation, const std::vector<std::uint8_t> &image);
    // Before a write: the file's records listed and the current one found in
    // the list (Conflict when it is gone).
    Status placeInList(std::string &message);
    Status step(Step which);
    // A step in a file whose records are not listed: slot by slot on the pages.
    Status stepUnlisted(int direction, bool onward);
    Status positionAt(int key, std::size_t position);
    Status guardedWrite(const std::function<Status(std::string &)> &write);
    // Puts the file back from its journal; every File sharing it reads it
    // afresh (this one is closed if that fails).
    Status rollBackGroup();
    // close() of the File whose group is still open.
    void leaveGroupAtClose();

    std::unique_ptr<Impl> impl_;
    mutable std::string message_;
};

} // namespace recman
