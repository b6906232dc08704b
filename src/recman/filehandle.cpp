#include "filehandle.h"

#include "journal.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace recman {

FileHandle::~FileHandle()
{
    close();
}

FileHandle::FileHandle(FileHandle &&other) noexcept : fd_(other.fd_), journal_(other.journal_)
{
    other.fd_ = -1;
    other.journal_ = nullptr;
}

FileHandle &FileHandle::operator=(FileHandle &&other) noexcept
{
    if (this != &other) {
        close();
        fd_ = other.fd_;
        journal_ = other.journal_;
        other.fd_ = -1;
        other.journal_ = nullptr;
    }
    return *this;
}

std::string FileHandle::open(const std::filesystem::path &path, Mode mode)
{
    close();
    int flags = O_CLOEXEC;
    if (mode == Mode::Read)
        flags |= O_RDONLY;
    else if (mode == Mode::ReadWrite)
        flags |= O_RDWR;
    else
        flags |= O_RDWR | O_CREAT | O_EXCL;
    do {
        fd_ = ::open(path.c_str(), flags, 0644);
    } while (fd_ < 0 && errno == EINTR);
    if (fd_ < 0)
        return std::strerror(errno);
    struct stat info {};
    if (::fstat(fd_, &info) != 0 || !S_ISREG(info.st_mode)) {
        close();
        return "not a regular file";
    }
    return {};
}

void FileHandle::close()
{
    if (fd_ >= 0)
        ::close(fd_);
    fd_ = -1;
}

std::uint64_t FileHandle::size() const
{
    struct stat info {};
    if (fd_ < 0 || ::fstat(fd_, &info) != 0)
        return 0;
    return static_cast<std::uint64_t>(info.st_size);
}

bool FileHandle::readAt(std::uint64_t offset, std::span<std::uint8_t> buffer) const
{
    return readFully(fd_, offset, buffer);
}

namespace {

template <typename Buffer, typename Transfer>
bool transferAll(Buffer buffer, std::uint64_t offset, Transfer transfer)
{
    std::size_t done = 0;
    while (done < buffer.size()) {
        const auto moved = transfer(buffer.data() + done, buffer.size() - done, static_cast<off_t>(offset + done));
        if (moved < 0 && errno == EINTR)
            continue;
        if (moved <= 0)
            return false;
        done += static_cast<std::size_t>(moved);
    }
    return true;
}

std::int64_t nanoseconds(const timespec &time)
{
    return std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
}

} // namespace

FileStamp FileHandle::stamp() const
{
    struct stat info {};
    if (fd_ < 0 || ::fstat(fd_, &info) != 0)
        return {};
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    // Far more than a kernel clock tick; a later write in the same tick as the
    // last change could otherwise leave both times as they are.
    constexpr std::int64_t settleTime = 50'000'000;
    const auto changed = nanoseconds(info.st_ctim);
    return {static_cast<std::uint64_t>(info.st_size), nanoseconds(info.st_mtim), changed,
            nanoseconds(now) - std::max(changed, nanoseconds(info.st_mtim)) > settleTime};
}

FileIdentity FileHandle::identity() const
{
    struct stat info {};
    if (fd_ < 0 || ::fstat(fd_, &info) != 0)
        return {};
    return {static_cast<std::uint64_t>(info.st_dev), static_cast<std::uint64_t>(info.st_ino)};
}

bool FileHandle::writeAt(std::uint64_t offset, std::span<const std::uint8_t> data)
{
    if (journal_ && !journal_->save(*this, offset, data.size()))
        return false;
    return writeFully(fd_, offset, data);
}

bool FileHandle::sync()
{
    return fd_ >= 0 && ::fsync(fd_) == 0;
}

bool FileHandle::tryLockExclusive()
{
    return fd_ >= 0 && ::flock(fd_, LOCK_EX | LOCK_NB) == 0;
}

bool readFully(int fd, std::uint64_t offset, std::span<std::uint8_t> buffer)
{
    return transferAll(buffer, offset, [fd](void *at, std::size_t length, off_t from) {
        return ::pread(fd, at, length, from);
    });
}

bool writeFully(int fd, std::uint64_t offset, std::span<const std::uint8_t> data)
{
    return transferAll(data, offset, [fd](const void *at, std::size_t length, off_t from) {
        return ::pwrite(fd, at, length, from);
    });
}

std::string systemReason(const std::string &what)
{
    return what + ": " + std::strerror(errno);
}

bool readWholeFile(const std::filesystem::path &path, std::vector<std::uint8_t> &content)
{
    const Descriptor file{::open(path.c_str(), O_RDONLY | O_CLOEXEC)};
    struct stat info {};
    if (file.fd < 0 || ::fstat(file.fd, &info) != 0)
        return false;
    content.resize(static_cast<std::size_t>(info.st_size));
    return readFully(file.fd, 0, content);
}

bool syncDirectory(const std::filesystem::path &directory)
{
    const int fd = ::open(directory.empty() ? "." : directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0)
        return false;
    const bool ok = ::fsync(fd) == 0;
    ::close(fd);
    return ok;
}

} // namespace recman
