#include "file.h"

#include "keyorder.h"
#include "openfile.h"

#include <algorithm>
#include <cstring>
#include <functional>

namespace recman {

namespace {

const FileInfo emptyInfo;

enum Operation { Equal, Greater, GreaterOrEqual, Less, LessOrEqual };

} // namespace

File::File() = default;
File::File(File &&) noexcept = default;

File::~File()
{
    close();
}

File &File::operator=(File &&other) noexcept
{
    if (this != &other) {
        close();
        impl_ = std::move(other.impl_);
        message_ = std::move(other.message_);
    }
    return *this;
}

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
    std::error_code error;
    if (!std::filesystem::exists(path, error))
        return fail(Status::FileNotFound, "file not found: " + path.string());
    if (!std::filesystem::is_regular_file(path, error))
        return fail(Status::InvalidFileName, path.string() + " is not a file");
    auto impl = std::make_unique<Impl>();
    std::string message;
    if (const auto status = openShared(path, mode, impl->file, message); status != Status::Success)
        return fail(status, std::move(message));
    impl->mode = mode;
    impl->at.generation = impl->file->generation;
    impl_ = std::move(impl);
    message_.clear();
    return Status::Success;
}

std::optional<Status> File::ready(int continuedStep)
{
    if (!impl_)
        return fail(Status::FileNotOpen, "file not open");
    auto &file = *impl_->file;
    auto &run = impl_->run;
    const bool continuesRun = continuedStep != 0 && continuedStep == run.direction;
    run.direction = continuedStep;
    if (continuesRun && !run.checkDue()) {
        ++run.stepsSinceCheck;
    } else {
        run.checked();
        std::string message;
        if (const auto status = refresh(file, message); status != Status::Success)
            return fail(status, "the file changed on disk and cannot be read now: " + message);
    }
    auto &at = impl_->at;
    if (at.generation != file.generation) {
        // The record list was read anew: find the current record by its address.
        if (at.current) {
            const auto ordinal = file.records.ordinalOf(at.address);
            at.current = ordinal ? std::optional(static_cast<std::uint32_t>(*ordinal)) : std::nullopt;
        }
        at.generation = file.generation;
    }
    return std::nullopt;
}

void File::setCurrent(std::uint32_t ordinal)
{
    auto &at = impl_->at;
    const auto &records = impl_->file->records;
    at.current = ordinal;
    at.address = records.address(ordinal);
    const auto bytes = records.record(ordinal);
    at.bytes.assign(bytes.begin(), bytes.end());
}

bool File::onLiveRecord() const
{
    return impl_ && impl_->at.current && impl_->file->records.live(*impl_->at.current);
}

std::size_t File::cachedPageBytes() const
{
    return impl_ ? impl_->file->cache->cachedBytes() : 0;
}

void File::close()
{
    if (impl_ && impl_->file->groupOwner == impl_.get())
        leaveGroupAtClose();
    impl_.reset();
}

bool File::isOpen() const
{
    return impl_ != nullptr;
}

const FileInfo &File::info() const
{
    return impl_ ? impl_->file->info : emptyInfo;
}

std::size_t File::keyCount() const
{
    return impl_ ? impl_->file->indexes.size() : 0;
}

std::vector<std::uint8_t> File::keyValueOf(int key, Bytes record) const
{
    std::vector<std::uint8_t> value;
    if (!impl_ || key < 0 || static_cast<std::size_t>(key) >= impl_->file->indexes.size())
        return value;
    const auto &definition = impl_->file->indexes.key(static_cast<std::size_t>(key));
    if (recordCoversKey(definition, record.size()))
        appendKeyValue(definition, record, value);
    return value;
}

Status File::positionAt(int key, std::size_t position)
{
    auto &index = *impl_->file->indexes.built(static_cast<std::size_t>(key));
    if (position >= index.size())
        return fail(Status::EndOfFile, "no record in that direction on key " + std::to_string(key));
    const auto ordinal = index.ordinalAt(position);
    setCurrent(ordinal);
    impl_->at.keyPath = key;
    impl_->at.keyImage = index.imageOfRecord(ordinal);
    return Status::Success;
}

Status File::keyed(int key, Bytes keyValue, int operation)
{
    if (const auto refused = useKey(key))
        return *refused;
    auto &index = *impl_->file->indexes.built(static_cast<std::size_t>(key));
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
    if (const auto refused = ready())
        return refused;
    if (key < 0 || static_cast<std::size_t>(key) >= impl_->file->indexes.size())
        return fail(Status::InvalidKeyNumber, "key " + std::to_string(key) + " does not exist; the file has " +
                                                  std::to_string(impl_->file->indexes.size()) + " keys");
    try {
        impl_->file->indexes.use(static_cast<std::size_t>(key));
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
    const auto size = impl_->file->indexes.built(static_cast<std::size_t>(key))->size();
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
    auto &at = impl_->at;
    if (!at.current || at.keyPath < 0)
        return fail(Status::InvalidPositioning, "no current record on a key; use a get operation first");
    if (at.keyPath != key)
        return fail(Status::DifferentKeyNumber,
                    "positioned on key " + std::to_string(at.keyPath) + ", not " + std::to_string(key));
    // Found again by (key image, ordinal): this works even when the current
    // record has since been deleted.
    auto &index = *impl_->file->indexes.built(static_cast<std::size_t>(key));
    auto position = index.lowerBound(at.keyImage, *at.current);
    if (direction > 0)
        return positionAt(key, position < index.size() && index.ordinalAt(position) == *at.current ? position + 1
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
    const int direction = (which == Step::First || which == Step::Next) ? +1 : -1;
    const bool onward = which == Step::Next || which == Step::Previous;
    if (const auto refused = ready(onward ? direction : 0))
        return *refused;
    const auto &records = impl_->file->records;
    auto &at = impl_->at;
    const auto count = static_cast<std::int64_t>(records.size());
    const std::int64_t current = at.current ? std::int64_t{*at.current} : -2;
    std::int64_t next = which == Step::First ? 0 : which == Step::Last ? count - 1 : current + direction;
    if (!at.current && onward)
        return fail(Status::InvalidPositioning, "no current record to step from");
    for (; next >= 0 && next < count; next += direction)
        if (records.live(static_cast<std::size_t>(next))) {
            setCurrent(static_cast<std::uint32_t>(next));
            at.keyPath = -1;
            return Status::Success;
        }
    return fail(Status::EndOfFile, "no record in that direction");
}

Bytes File::record() const
{
    if (!onLiveRecord())
        return {};
    return impl_->at.bytes;
}

Status File::readRecord(MutableBytes buffer, std::size_t &length) const
{
    if (!impl_)
        return fail(Status::FileNotOpen, "file not open");
    if (!onLiveRecord())
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
    if (!onLiveRecord())
        return fail(Status::InvalidPositioning, "no current record");
    address = impl_->at.address;
    return Status::Success;
}

Status File::guardedWrite(const std::function<Status(std::string &)> &write)
{
    // The file may be shared with a File of ours that writes; this one may not.
    if (impl_->mode == OpenMode::ReadOnly)
        return fail(Status::AccessDenied, "file was opened read-only");
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
    if (const auto refused = ready())
        return *refused;
    if (!onLiveRecord())
        return fail(Status::InvalidPositioning, "no current record to update");
    auto &at = impl_->at;
    // The caller may pass record() itself, a view of at.bytes.
    std::vector<std::uint8_t> written(record.begin(), record.end());
    return guardedWrite([&](std::string &message) {
        const auto status = updateRecord(*impl_->file, *at.current, at.bytes, written, message);
        if (status == Status::Success) {
            if (at.keyPath >= 0)
                at.keyImage =
                    sortImageOfRecord(impl_->file->indexes.key(static_cast<std::size_t>(at.keyPath)), written);
            at.bytes = std::move(written);
        }
        return status;
    });
}

Status File::insert(Bytes record)
{
    if (const auto refused = ready())
        return *refused;
    return guardedWrite([&](std::string &message) {
        std::uint32_t ordinal = 0;
        const auto status = insertRecord(*impl_->file, record, ordinal, message);
        if (status == Status::Success) {
            setCurrent(ordinal);
            impl_->at.keyPath = -1;
        }
        return status;
    });
}

Status File::erase()
{
    if (const auto refused = ready())
        return *refused;
    if (!onLiveRecord())
        return fail(Status::InvalidPositioning, "no current record to delete");
    return guardedWrite([&](std::string &message) { return deleteRecord(*impl_->file, *impl_->at.current, message); });
}

} // namespace recman
