// Owns one operating-system file descriptor; positioned reads and writes so
// that no shared file offset exists to get out of step.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <string>

namespace recman {

class Journal;

// All bytes of a file, in memory. The buffer is not zeroed first: the read
// fills it.
class FileImage {
public:
    FileImage() = default;
    explicit FileImage(std::size_t size);
    std::span<std::uint8_t> bytes() { return {bytes_.get(), size_}; }
    std::span<const std::uint8_t> bytes() const { return {bytes_.get(), size_}; }

private:
    std::unique_ptr<std::uint8_t[]> bytes_;
    std::size_t size_ = 0;
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
    // Reads exactly buffer.size() bytes at offset; false on a short read or error.
    bool readAt(std::uint64_t offset, std::span<std::uint8_t> buffer) const;
    // The whole file as it is now; the size is taken once, so a file that grows
    // meanwhile is read to that size and one that shrinks fails the read.
    std::string readWhole(FileImage &image) const;
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

// Makes a rename or create durable by syncing the directory that holds it.
bool syncDirectory(const std::filesystem::path &directory);

} // namespace recman
