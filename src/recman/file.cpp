#include "file.h"

#include "collation.h"
#include "keyorder.h"
#include "openfile.h"
#include "recordscan.h"

#include <algorithm>
#include <cstring>
#include <functional>

namespace recman {

namespace {

const FileInfo emptyInfo;

enum Operation { Equal, Greater, GreaterOrEqual, Less, LessOrEqual };

FileInfo describe(const FileHeader &header, const ScanResult &scan)
{
    FileInfo info;
    info.format = header.formatName();
    info.versionWord = header.versionWord;
    info.pageSize = header.pageSize;
    info.recordLength = header.recordLength;
    info.physicalRecordLength = header.physicalLength;
    info.recordCount = static_cast<std::uint32_t>(scan.records.size());
    info.headerRecordCount = header.recordCount;
    info.variable = header.variable;
    info.compressed = header.compressed;
    info.ownerProtected = header.ownerProtected;
    info.createdByEngine = header.createdByEngine;
    info.fileFlags = header.fileFlags;
    info.keys = header.keys;
    info.warnings = scan.warnings;
    return info;
}

} // namespace

File::File() = default;
File::~File() = default;
File::File(File &&) noexcept = default;
File &File::operator=(File &&) noexcept = default;

Status File::fail(Status status, std::string message) const
{
    message_ = std::move(message);
    return status;
}

Status File::open(const std::filesystem::path &path, OpenMode mode)
{
    close();
    if (path.empty())
        return fail(Status::InvalidFileName, "no file name given");
    auto impl = std::make_unique<Impl>();
    impl->mode = mode;
    impl->path = path;
    std::error_code error;
    if (!std::filesystem::exists(path, error))
        return fail(Status::FileNotFound, "file not found: " + path.string());
    if (!std::filesystem::is_regular_file(path, error))
        return fail(Status::InvalidFileName, path.string() + " is not a file");
    const auto reason =
        impl->handle.open(path, mode == OpenMode::ReadOnly ? FileHandle::Mode::Read : FileHandle::Mode::ReadWrite);
    if (!reason.empty())
        return fail(mode == OpenMode::ReadOnly ? Status::IoError : Status::AccessDenied,
                    "cannot open " + path.string() + ": " + reason);
    if (mode == OpenMode::ReadWrite && !impl->handle.tryLockExclusive())
        return fail(Status::FileInUse, path.string() + " is open for writing by another process");
    std::string rolledBack;
    if (mode == OpenMode::ReadWrite && rollBack(path, rolledBack) == Rollback::Failed)
        return fail(Status::IoError, rolledBack);
    try {
        // One read of the whole file: records are then taken from memory, and
        // a file changed later by someone else cannot tear the picture.
        FileImage image;
        if (const auto failure = impl->handle.readWhole(image); !failure.empty())
            return fail(Status::IoError, "cannot read " + path.string() + ": " + failure);
        impl->header = readHeader(impl->handle);
        impl->pages = std::make_unique<PageMap>(impl->handle, impl->header, image.bytes().size());
        attachCollatingSequences(impl->header, *impl->pages);
        auto scan = scanRecords(impl->header, *impl->pages, std::move(image));
        impl->info = describe(impl->header, scan);
        impl->info.rolledBack = std::move(rolledBack);
        impl->records = std::move(scan.records);
        impl->unusedSlots = std::move(scan.unusedSlots);
        // Key definitions live in info so that indexes can point at them for good.
        impl->indexes = KeyIndexes(impl->info.keys, impl->records);
    } catch (const FormatError &error) {
        // Pages that do not name themselves in a file with an owner name are
        // encrypted with it: say so rather than call the file unreadable.
        if (impl->header.ownerProtected)
            return fail(Status::OwnerNameRequired,
                        path.string() + ": the file is protected by an owner name and its data is encrypted; it "
                                        "can only be opened with that owner name in the record manager (" +
                            error.what() + ")");
        return fail(Status::NotARecordManagerFile, path.string() + ": " + error.what());
    } catch (const std::bad_alloc &) {
        return fail(Status::IoError, path.string() + ": not enough memory to load the file");
    } catch (const std::exception &error) {
        return fail(Status::IoError, path.string() + ": " + error.what());
    }
    impl_ = std::move(impl);
    message_.clear();
    return Status::Success;
}

void File::close()
{
    impl_.reset();
}

bool File::isOpen() const
{
    return impl_ != nullptr;
}

const FileInfo &File::info() const
{
    return impl_ ? impl_->info : emptyInfo;
}

std::size_t File::keyCount() const
{
    return impl_ ? impl_->indexes.size() : 0;
}

std::vector<std::uint8_t> File::keyValueOf(int key, Bytes record) const
{
    std::vector<std::uint8_t> value;
    if (!impl_ || key < 0 || static_cast<std::size_t>(key) >= impl_->indexes.size())
        return value;
    const auto &definition = impl_->indexes.key(static_cast<std::size_t>(key));
    if (recordCoversKey(definition, record.size()))
        appendKeyValue(definition, record, value);
    return value;
}

Status File::positionAt(int key, std::size_t position)
{
    auto &index = *impl_->indexes.built(static_cast<std::size_t>(key));
    if (position >= index.size())
        return fail(Status::EndOfFile, "no record in that direction on key " + std::to_string(key));
    const auto ordinal = index.ordinalAt(position);
    impl_->current = ordinal;
    impl_->keyPath = key;
    impl_->keyImage = index.imageOfRecord(ordinal);
    return Status::Success;
}

Status File::keyed(int key, Bytes keyValue, int operation)
{
    if (const auto refused = useKey(key))
        return *refused;
    auto &index = *impl_->indexes.built(static_cast<std::size_t>(key));
    if (keyValue.size() < index.key().length())
        return fail(Status::InvalidKeyLength, "key value of " + std::to_string(keyValue.size()) +
                                                  " bytes is shorter than key " + std::to_string(key) + " (" +
                                                  std::to_string(index.key().length()) + " bytes)");
    const auto image = index.imageOfValue(keyValue.first(index.key().length()));
    switch (operation) {
    case Equal: {
        const auto position = index.lowerBound(image);
        if (!index.imageAtEquals(position, image))
            return fail(Status::KeyNotFound, "no record with that value of key " + std::to_string(key));
        return positionAt(key, position);
    }
    case Greater:
        return positionAt(key, index.upperBound(image));
    case GreaterOrEqual:
        return positionAt(key, index.lowerBound(image));
    case Less: {
        const auto position = index.lowerBound(image);
        return positionAt(key, position == 0 ? index.size() : position - 1);
    }
    default: {
        const auto position = index.upperBound(image);
        return positionAt(key, position == 0 ? index.size() : position - 1);
    }
    }
}

Status File::getEqual(int key, Bytes keyValue)
{
    return keyed(key, keyValue, Equal);
}
Status File::getGreater(int key, Bytes keyValue)
{
    return keyed(key, keyValue, Greater);
}
Status File::getGreaterOrEqual(int key, Bytes keyValue)
{
    return keyed(key, keyValue, GreaterOrEqual);
}
Status File::getLess(int key, Bytes keyValue)
{
    return keyed(key, keyValue, Less);
}
Status File::getLessOrEqual(int key, Bytes keyValue)
{
    return keyed(key, keyValue, LessOrEqual);
}

std::optional<Status> File::useKey(int key)
{
    if (!impl_)
        return fail(Status::FileNotOpen, "file not open");
    if (key < 0 || static_cast<std::size_t>(key) >= impl_->indexes.size())
        return fail(Status::InvalidKeyNumber, "key " + std::to_string(key) + " does not exist; the file has " +
                                                  std::to_string(impl_->indexes.size()) + " keys");
    try {
        impl_->indexes.use(static_cast<std::size_t>(key));
    } catch (const std::bad_alloc &) {
        return fail(Status::IoError, "not enough memory to build the index of key " + std::to_string(key));
    }
    return std::nullopt;
}

Status File::getFirst(int key)
{
    if (const auto refused = useKey(key))
        return *refused;
    return positionAt(key, 0);
}

Status File::getLast(int key)
{
    if (const auto refused = useKey(key))
        return *refused;
    const auto size = impl_->indexes.built(static_cast<std::size_t>(key))->size();
    return positionAt(key, size == 0 ? 0 : size - 1);
}

Status File::getNext(int key)
{
    return neighbour(key, +1);
}
Status File::getPrevious(int key)
{
    return neighbour(key, -1);
}

Status File::neighbour(int key, int direction)
{
    if (const auto refused = useKey(key))
        return *refused;
    if (!impl_->current || impl_->keyPath < 0)
        return fail(Status::InvalidPositioning, "no current record on a key; use a get operation first");
    if (impl_->keyPath != key)
        return fail(Status::DifferentKeyNumber,
                    "positioned on key " + std::to_string(impl_->keyPath) + ", not " + std::to_string(key));
    // Found again by (key image, ordinal): this works even when the current
    // record has since been deleted.
    auto &index = *impl_->indexes.built(static_cast<std::size_t>(key));
    auto position = index.lowerBound(impl_->keyImage, *impl_->current);
    if (direction > 0)
        return positionAt(key, position < index.size() && index.ordinalAt(position) == *impl_->current ? position + 1
                                                                                                       : position);
    return positionAt(key, position == 0 ? index.size() : position - 1);
}

Status File::stepFirst()
{
    return step(Step::First);
}
Status File::stepLast()
{
    return step(Step::Last);
}
Status File::stepNext()
{
    return step(Step::Next);
}
Status File::stepPrevious()
{
    return step(Step::Previous);
}

Status File::step(Step which)
{
    if (!impl_)
        return fail(Status::FileNotOpen, "file not open");
    const auto &records = impl_->records;
    const auto count = static_cast<std::int64_t>(records.size());
    const std::int64_t current = impl_->current ? std::int64_t{*impl_->current} : -2;
    const int direction = (which == Step::First || which == Step::Next) ? +1 : -1;
    std::int64_t at = which == Step::First ? 0 : which == Step::Last ? count - 1 : current + direction;
    if (!impl_->current && (which == Step::Next || which == Step::Previous))
        return fail(Status::InvalidPositioning, "no current record to step from");
    for (; at >= 0 && at < count; at += direction)
        if (records.live(static_cast<std::size_t>(at))) {
            impl_->current = static_cast<std::uint32_t>(at);
            impl_->keyPath = -1;
            return Status::Success;
        }
    return fail(Status::EndOfFile, "no record in that direction");
}

Bytes File::record() const
{
    if (!impl_ || !impl_->current || !impl_->records.live(*impl_->current))
        return {};
    return impl_->records.record(*impl_->current);
}

Status File::readRecord(MutableBytes buffer, std::size_t &length) const
{
    if (!impl_)
        return fail(Status::FileNotOpen, "file not open");
    if (!impl_->current || !impl_->records.live(*impl_->current))
        return fail(Status::InvalidPositioning, "no current record");
    const auto bytesOfRecord = record();
    length = bytesOfRecord.size();
    const auto copied = std::min(buffer.size(), bytesOfRecord.size());
    std::memcpy(buffer.data(), bytesOfRecord.data(), copied);
    if (copied < bytesOfRecord.size())
        return fail(Status::DataBufferTooShort, "record of " + std::to_string(bytesOfRecord.size()) +
                                                    " bytes does not fit a buffer of " + std::to_string(buffer.size()));
    return Status::Success;
}

Status File::position(std::uint32_t &address) const
{
    if (!impl_)
        return fail(Status::FileNotOpen, "file not open");
    if (!impl_->current || !impl_->records.live(*impl_->current))
        return fail(Status::InvalidPositioning, "no current record");
    address = impl_->records.address(*impl_->current);
    return Status::Success;
}

Status File::guardedWrite(const std::function<Status(std::string &)> &write)
{
    std::string message;
    try {
        const auto status = write(message);
        return fail(status, std::move(message));
    } catch (const std::exception &error) {
        return fail(Status::IoError, std::string("write abandoned: ") + error.what());
    }
}

Status File::update(Bytes record)
{
    if (!impl_)
        return fail(Status::FileNotOpen, "file not open");
    if (!impl_->current || !impl_->records.live(*impl_->current))
        return fail(Status::InvalidPositioning, "no current record to update");
    return guardedWrite([&](std::string &message) { return updateRecord(*impl_, *impl_->current, record, message); });
}

Status File::insert(Bytes record)
{
    if (!impl_)
        return fail(Status::FileNotOpen, "file not open");
    return guardedWrite([&](std::string &message) {
        std::uint32_t ordinal = 0;
        const auto status = insertRecord(*impl_, record, ordinal, message);
        if (status == Status::Success) {
            impl_->current = ordinal;
            impl_->keyPath = -1;
        }
        return status;
    });
}

Status File::erase()
{
    if (!impl_)
        return fail(Status::FileNotOpen, "file not open");
    if (!impl_->current || !impl_->records.live(*impl_->current))
        return fail(Status::InvalidPositioning, "no current record to delete");
    return guardedWrite([&](std::string &message) { return deleteRecord(*impl_, *impl_->current, message); });
}

} // namespace recman
