#include "journal.h"

#include "bytes.h"
#include "filehandle.h"
#include "groupcommit.h"

#include <algorithm>
#include <cerrno>
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
constexpr std::uint8_t kindDecision = 3;
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
    std::vector<std::uint8_t> bytes(entryHead + (kind == kindGrew ? 0 : length) + checksumLength);
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
        const std::uint64_t length = kind == kindGrew ? 0 : bytes::u32(rest, 9);
        if ((kind != kindBytes && kind != kindGrew && kind != kindDecision) || rest.size() < entryHead + length + checksumLength ||
            u64(rest, entryHead + length) != fnv1a(rest.first(entryHead + length))) {
            torn = true;
            break;
        }
        entries.push_back({kind, u64(rest, 1), rest.subspan(entryHead, length)});
        at += entryHead + length + checksumLength;
    }
    return entries;
}

// A journal read and cut into entries.
struct ReadJournal {
    std::vector<std::uint8_t> content;
    std::vector<Entry> entries; // point into content
    bool torn = false;
};

// "" or why the journal cannot be used.
std::string readEntries(const std::filesystem::path &path, ReadJournal &journal)
{
    if (!readWholeFile(path, journal.content))
        return systemReason("cannot read the journal " + path.string());
    const Bytes all(journal.content);
    // Shorter than its tag: torn while being created, before any change.
    if (all.size() < tagLength)
        return {};
    if (!std::equal(all.begin(), all.begin() + tagLength, tag))
        return path.string() + " is not a journal of this program; move it away to open the file";
    journal.entries = entriesOf(all, journal.torn);
    return {};
}

std::filesystem::path folderOf(const std::filesystem::path &file)
{
    std::error_code error;
    const auto absolute = std::filesystem::absolute(file, error);
    return (error ? file : absolute).parent_path();
}

// The decision file the journal's last entry names; empty if none.
std::filesystem::path namedDecision(const ReadJournal &journal, const std::filesystem::path &dataFile)
{
    if (journal.entries.empty() || journal.entries.back().kind != kindDecision)
        return {};
    const auto name = journal.entries.back().bytes;
    return (folderOf(dataFile) / std::string(name.begin(), name.end())).lexically_normal();
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

std::string Journal::nameDecision(FileHandle &data, const std::filesystem::path &decision)
{
    // The writes must be on disk before the decision that keeps them is.
    if (!data.sync())
        return systemReason("cannot sync " + dataFile_.string());
    const auto name = decision.lexically_relative(folderOf(dataFile_)).string();
    auto named = entry(kindDecision, 0, name.size());
    std::copy(name.begin(), name.end(), named.begin() + entryHead);
    seal(named);
    if (!append(named))
        return systemReason("cannot write " + journalPathFor(dataFile_).string());
    return {};
}

Rollback rollBack(const std::filesystem::path &dataFile, std::string &report)
{
    const auto path = journalPathFor(dataFile);
    std::error_code error;
    if (!std::filesystem::exists(path, error))
        return Rollback::NoJournal;
    ReadJournal journal;
    if (report = readEntries(path, journal); !report.empty())
        return Rollback::Failed;
    const auto decision = namedDecision(journal, dataFile);
    const bool kept = !decision.empty() && std::filesystem::exists(decision, error);
    if (error) {
        report = "cannot tell whether " + decision.string() + " exists: " + error.message();
        return Rollback::Failed;
    }
    const Descriptor data{::open(dataFile.c_str(), O_RDWR | O_CLOEXEC)};
    if (data.fd < 0) {
        report = systemReason("cannot open " + dataFile.string() + " to roll back its journal");
        return Rollback::Failed;
    }
    const auto &entries = journal.entries;
    for (auto step = entries.rbegin(); !kept && step != entries.rend(); ++step) {
        if (step->kind == kindDecision)
            continue;
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
    if (kept) {
        removeDecisionIfSettled(decision);
        report = dataFile.string() + ": kept: the group of writes was committed with " + decision.string() +
                 "; its journal " + path.string() + " was removed";
        return Rollback::Kept;
    }
    const auto images = std::count_if(entries.begin(), entries.end(),
                                      [](const Entry &entry) { return entry.kind != kindDecision; });
    report = dataFile.string() + ": a group of writes that never ended was rolled back from " + path.string() + " (" +
             std::to_string(images) + " before-images" + (journal.torn ? ", a torn last entry ignored" : "") + ")";
    return Rollback::RolledBack;
}

bool journalMayName(const std::filesystem::path &dataFile, const std::filesystem::path &decision)
{
    const auto path = journalPathFor(dataFile);
    std::error_code error;
    if (!std::filesystem::exists(path, error))
        return static_cast<bool>(error);
    ReadJournal journal;
    return !readEntries(path, journal).empty() || namedDecision(journal, dataFile) == decision.lexically_normal();
}

} // namespace recman
