// The before-images of one group of writes to a data file, kept in a journal
// beside it ("<file>.kbj") so that a crash in the middle of the group can be
// undone at the next open.
//
// Order of events: the journal is created and synced (with its folder) before
// the group's first change; each write's before-image is appended and synced
// before the write; at the end of the group the data file is synced, then the
// journal emptied, synced and removed. A journal found at open therefore
// belongs to a group that never ended, and putting its before-images back,
// newest first, gives the file as it was before the group. An entry torn by
// the crash (incomplete, or its checksum fails) ends the journal: it was being
// written when the crash came, so its write never reached the data file.
//
// A group ended together with other files' groups (groupcommit.h) ends its
// journal with an entry naming the decision file: while that file exists the
// group was committed, and the journal is removed without putting anything
// back. A torn naming entry names nothing.
//
// Journal layout: the 8-byte tag "KORAJNL1", then entries
//   kind (1 byte: 1 = bytes, 2 = the file grew, 3 = decision), offset (u64),
//   length (u32), the bytes (length of them, kinds 1 and 3), checksum (u64,
//   FNV-1a of the rest).
// A "grew" entry holds the size before the write (offset); putting it back
// cuts the file to that size. A "decision" entry's bytes are the decision
// file's path relative to the journal's folder (offset 0). All numbers
// little-endian.
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>

namespace recman {

class FileHandle;

std::filesystem::path journalPathFor(const std::filesystem::path &dataFile);

class Journal {
public:
    Journal() = default;
    ~Journal(); // closes; a journal not committed stays on disk for the next open
    Journal(const Journal &) = delete;
    Journal &operator=(const Journal &) = delete;

    // Creates the journal of dataFile and syncs it and its folder; "" or why not.
    std::string begin(const std::filesystem::path &dataFile);
    // Saves what data holds at [offset, offset + length) before it is
    // overwritten (and that the file grows, if it does); synced. False on failure.
    bool save(const FileHandle &data, std::uint64_t offset, std::size_t length);
    // The group is kept: data synced, then the journal removed. "" or why not.
    std::string commit(FileHandle &data);
    // Step 1 of a commit over several files: data synced, then an entry
    // naming the decision file appended and synced. "" or why not.
    std::string nameDecision(FileHandle &data, const std::filesystem::path &decision);
    const std::filesystem::path &dataFile() const { return dataFile_; }

private:
    bool append(std::span<const std::uint8_t> entry);

    int fd_ = -1;
    std::filesystem::path dataFile_;
};

// What rollBack found.
enum class Rollback { NoJournal, RolledBack, Kept, Failed };

// Puts back the before-images of dataFile's journal, if there is one, newest
// first; syncs the data file, then removes the journal. A journal whose group
// was committed with other files' (its decision file exists) is removed
// without putting anything back (Kept). The caller holds the file's write
// lock. `report` says what was done, or why it failed (the journal then
// stays, so a later open tries again).
Rollback rollBack(const std::filesystem::path &dataFile, std::string &report);

// Whether dataFile's journal names the decision file, or cannot be read to tell.
bool journalMayName(const std::filesystem::path &dataFile, const std::filesystem::path &decision);

} // namespace recman
