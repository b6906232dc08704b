#include "journal.h"

#include "bytes.h"
#include "filehandle.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace recman {

namespace {

constexpr char tag[] = "KORAJNL1";
constexpr std::size_t tagLength = 8;
constexpr std::uint8_t kindBytes = 1;
constexpr std::uint8_t kindGrew = 2;
constexpr std::size_t entryHead = 1 + 8 + 4;
constexpr std::size_t checksumLength = 8;

std::uint64_t fnv1a(std::span<const std::uint8_t> data)
{
    std::uint64_t hash = 0xcbf29ce484222325ull;
    for (const auto byte : data)
        hash = (hash ^ byte) * 0x100000001b3ull;
    return hash;
}

void put64(MutableBytes data, std::size_t offset, std::uint64_t value)
{
    bytes::put32(data, offset, static_cast<std::uint32_t>(value));
    bytes::put32(data, offset + 4, static_cast<std::uint32_t>(value >> 32));
}

std::uint64_t u64(Bytes data, std::size_t offset)
{
    return bytes::u32(data, offset) | std::uint64_t{bytes::u32(data, offset + 4)} << 32;
}

std::vector<std::uint8_t> entry(std::uint8_t kind, std::uint64_t offset, std::size_t length)
{
    std::vector<std::uint8_t> bytes(entryHead + (kind == kindBytes ? length : 0) + checksumLength);
    bytes[0] = kind;
    put64(bytes, 1, offset);
    bytes::put32(bytes, 9, static_cast<std::uint32_t>(length));
    return bytes;
}

void seal(std::vector<std::uint8_t> &entry)
{
    const auto body = entry.size() - checksumLength;
    put64(entry, body, fnv1a(Bytes(entry).first(body)));
}

std::string systemReason(const std::string &what)
{
    return what + ": " + std::strerror(errno);
}

// Closes a descriptor on every path out.
struct Descriptor {
    int fd;
    ~Descriptor()
    {
        if (fd >= 0)
            ::close(fd);
    }
};

// The journal's whole content; false (with errno) if it cannot be read.
bool readJournal(const std::filesystem::path &path, std::vector<std::uint8_t> &content)
{
    const Descriptor file{::open(path.c_str(), O_RDONLY | O_CLOEXEC)};
    struct stat info {};
    if (file.fd < 0 || ::fstat(file.fd, &info) != 0)
        return false;
    content.resize(static_cast<std::size_t>(info.st_size));
    return readFully(file.fd, 0, content);
}

struct Entry {
    std::uint8_t kind;
    std::uint64_t offset;
    Bytes bytes;
};

// The complete entries, oldest first; a torn one ends the list.
std::vector<Entry> entriesOf(Bytes content, bool &torn)
{
    std::vector<Entry> entries;
    std::size_t at = tagLength;
    torn = false;
    while (at < content.size()) {
        const auto rest = content.subspan(at);
        if (rest.size() < entryHead + checksumLength) {
            torn = true;
            break;
        }
        const std::uint8_t kind = rest[0];
        const std::uint64_t length = kind == kindBytes ? bytes::u32(rest, 9) : 0;
        if ((kind != kindBytes && kind != kindGrew) || rest.size() < entryHead + length + checksumLength ||
            u64(rest, entryHead + length) != fnv1a(rest.first(entryHead + length))) {
            torn = true;
            break;
        }
        entries.push_back({kind, u64(rest, 1), rest.subspan(entryHead, length)});
        at += entryHead + length + checksumLength;
    }
    return entries;
}

// Empties, syncs and removes a journal: once it is empty, nothing is put back,
// even if the removal is lost in a crash.
bool discard(const std::filesystem::path &path)
{
    const Descriptor file{::open(path.c_str(), O_WRONLY | O_CLOEXEC)};
    if (file.fd < 0 || ::ftruncate(file.fd, 0) != 0 || ::fsync(file.fd) != 0)
        return false;
    return ::unlink(path.c_str()) == 0 && syncDirectory(path.parent_path());
}

} // namespace

std::filesystem::path journalPathFor(const std::filesystem::path &dataFile)
{
    auto path = dataFile;
    path += ".kbj";
    return path;
}

Journal::~Journal()
{
    if (fd_ >= 0)
        ::close(fd_);
}

std::string Journal::begin(const std::filesystem::path &dataFile)
{
    const auto path = journalPathFor(dataFile);
    fd_ = ::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
    if (fd_ < 0)
        return errno == EEXIST ? path.string() + " already exists: a group of writes is still open on the file"
                               : systemReason("cannot create " + path.string());
    dataFile_ = dataFile;
    if (!writeFully(fd_, 0, Bytes(reinterpret_cast<const std::uint8_t *>(tag), tagLength)) || ::fsync(fd_) != 0 ||
        !syncDirectory(path.parent_path())) {
        const auto reason = systemReason("cannot write " + path.string());
        ::close(fd_);
        fd_ = -1;
        ::unlink(path.c_str());
        return reason;
    }
    return {};
}

bool Journal::append(std::span<const std::uint8_t> entry)
{
    struct stat info {};
    return ::fstat(fd_, &info) == 0 && writeFully(fd_, static_cast<std::uint64_t>(info.st_size), entry) &&
           ::fdatasync(fd_) == 0;
}

bool Journal::save(const FileHandle &data, std::uint64_t offset, std::size_t length)
{
    const std::uint64_t size = data.size();
    if (offset < size) {
        const auto kept = static_cast<std::size_t>(std::min<std::uint64_t>(length, size - offset));
        auto image = entry(kindBytes, offset, kept);
        if (!data.readAt(offset, MutableBytes(image).subspan(entryHead, kept)))
            return false;
        seal(image);
        if (!append(image))
            return false;
    }
    if (offset + length > size) {
        auto grew = entry(kindGrew, size, 0);
        seal(grew);
        return append(grew);
    }
    return true;
}

std::string Journal::commit(FileHandle &data)
{
    if (!data.sync())
        return systemReason("cannot sync " + dataFile_.string());
    ::close(fd_);
    fd_ = -1;
    if (!discard(journalPathFor(dataFile_)))
        return systemReason("cannot remove " + journalPathFor(dataFile_).string());
    return {};
}

Rollback rollBack(const std::filesystem::path &dataFile, std::string &report)
{
    const auto path = journalPathFor(dataFile);
    std::error_code error;
    if (!std::filesystem::exists(path, error))
        return Rollback::NoJournal;
    std::vector<std::uint8_t> content;
    if (!readJournal(path, content)) {
        report = systemReason("cannot read the journal " + path.string());
        return Rollback::Failed;
    }
    const Bytes all(content);
    // Shorter than its tag: torn while being created, before any change.
    if (all.size() >= tagLength && !std::equal(all.begin(), all.begin() + tagLength, tag)) {
        report = path.string() + " is not a journal of this program; move it away to open the file";
        return Rollback::Failed;
    }
    bool torn = false;
    const auto entries = all.size() < tagLength ? std::vector<Entry>{} : entriesOf(all, torn);
    const Descriptor data{::open(dataFile.c_str(), O_RDWR | O_CLOEXEC)};
    if (data.fd < 0) {
        report = systemReason("cannot open " + dataFile.string() + " to roll back its journal");
        return Rollback::Failed;
    }
    for (auto step = entries.rbegin(); step != entries.rend(); ++step) {
        const bool put = step->kind == kindBytes ? writeFully(data.fd, step->offset, step->bytes)
                                                 : ::ftruncate(data.fd, static_cast<off_t>(step->offset)) == 0;
        if (!put) {
            report = systemReason("cannot roll back " + dataFile.string() + " from " + path.string());
            return Rollback::Failed;
        }
    }
    if (::fsync(data.fd) != 0 || !discard(path)) {
        report = systemReason("cannot finish rolling back " + dataFile.string() + " from " + path.string());
        return Rollback::Failed;
    }
    report = dataFile.string() + ": a group of writes that never ended was rolled back from " + path.string() + " (" +
             std::to_string(entries.size()) + " before-images" + (torn ? ", a torn last entry ignored" : "") + ")";
    return Rollback::RolledBack;
}

} // namespace recman
