// Owns one operating-system file descriptor; positioned reads and writes so
// that no shared file offset exists to get out of step.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <unistd.h>
#include <vector>

namespace recman {

class Journal;

// What a file looks like from outside: any write by anyone changes the size
// or the change times. The times only move in the kernel's clock ticks, so a
// stamp taken within a tick or two of the last change may not notice the
// next one: such a stamp is not settled.
struct FileStamp {
    std::uint64_t size = 0;
    std::int64_t modified = 0; // nanoseconds
    std::int64_t changed = 0;  // nanoseconds (inode change)
    bool settled = false;
    bool sameAs(const FileStamp &other) const
    {
        return size == other.size && modified == other.modified && changed == other.changed;
    }
};

// Which file this is, whatever the name it was opened by.
struct FileIdentity {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    auto operator<=>(const FileIdentity &) const = default;
};

class FileHandle {
public:
    FileHandle() = default;
    ~FileHandle();
    FileHandle(FileHandle &&other) noexcept;
    FileHandle &operator=(FileHandle &&other) noexcept;
    FileHandle(const FileHandle &) = delete;
    FileHandle &operator=(const FileHandle &) = delete;

    enum class Mode { Read, ReadWrite, CreateNew };
    // Returns an empty string on success, else the system's reason.
    std::string open(const std::filesystem::path &path, Mode mode);
    void close();
    bool isOpen() const { return fd_ >= 0; }

    std::uint64_t size() const;
    FileStamp stamp() const;
    FileIdentity identity() const;
    // Reads exactly buffer.size() bytes at offset; false on a short read or error.
    bool readAt(std::uint64_t offset, std::span<std::uint8_t> buffer) const;
    // With a journal set, the bytes about to be overwritten are saved in it first.
    bool writeAt(std::uint64_t offset, std::span<const std::uint8_t> data);
    void setJournal(Journal *journal) { journal_ = journal; }
    bool sync();
    // Exclusive advisory lock so that two of our own processes never write at once.
    bool tryLockExclusive();

private:
    int fd_ = -1;
    Journal *journal_ = nullptr;
};

// "what: <the system's reason (errno)>".
std::string systemReason(const std::string &what);
// Makes a rename or create durable by syncing the directory that holds it.
bool syncDirectory(const std::filesystem::path &directory);
// All of buffer read or written at offset of a descriptor (interrupted calls
// retried); false on an error or, reading, the file's end.
bool readFully(int fd, std::uint64_t offset, std::span<std::uint8_t> buffer);
bool writeFully(int fd, std::uint64_t offset, std::span<const std::uint8_t> data);
// The whole content of a file; false (errno set) if it cannot be read.
bool readWholeFile(const std::filesystem::path &path, std::vector<std::uint8_t> &content);

// Closes a descriptor on every path out.
struct Descriptor {
    int fd;
    ~Descriptor()
    {
        if (fd >= 0)
            ::close(fd);
    }
};

} // namespace recman
