#include "file.h"

#include "indexpage.h"
#include "keyorder.h"
#include "openfile.h"

#include <algorithm>
#include <cstring>
#include <functional>

namespace recman {

namespace {

const FileInfo emptyInfo;

using namespace keyed;

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
    const auto now = StepRun::now();
    if (continuesRun && !run.checkDue(now)) {
        ++run.stepsSinceCheck;
    } else {
        run.checked(now);
        std::string message;
        if (const auto status = refresh(file, message); status != Status::Success)
            return fail(status, "the file changed on disk and cannot be read now: " + message);
    }
    auto &at = impl_->at;
    if (at.generation != file.generation) {
        // The file was read anew: find the current record in its list by its
        // address (a file whose records are not listed yet keeps the address).
        if (at.ordinal) {
            const auto ordinal = file.listed ? file.records.ordinalOf(at.address) : std::nullopt;
            at.ordinal = ordinal ? std::optional(static_cast<std::uint32_t>(*ordinal)) : std::nullopt;
            at.onRecord = at.ordinal || !file.listed;
        }
        at.generation = file.generation;
    }
    return std::nullopt;
}

std::optional<Status> File::listRecords()
{
    std::string message;
    if (const auto status = findInList(message); status != Status::Success)
        return fail(status, std::move(message));
    return std::nullopt;
}

Status File::findInList(std::string &message)
{
    auto &file = *impl_->file;
    if (const auto status = recman::listRecords(file, message); status != Status::Success)
        return status;
    // A record reached without the list gets its place in it.
    auto &at = impl_->at;
    if (at.onRecord && !at.ordinal) {
        const auto ordinal = file.records.ordinalOf(at.address);
        at.ordinal = ordinal ? std::optional(static_cast<std::uint32_t>(*ordinal)) : std::nullopt;
        at.onRecord = at.ordinal.has_value();
    }
    return Status::Success;
}

void File::setCurrent(std::uint32_t ordinal)
{
    auto &at = impl_->at;
    const auto &records = impl_->file->records;
    at.onRecord = true;
    at.ordinal = ordinal;
    at.address = records.address(ordinal);
    const auto bytes = records.record(ordinal);
    at.bytes.assign(bytes.begin(), bytes.end());
}

bool File::onLiveRecord() const
{
    if (!impl_ || !impl_->at.onRecord)
        return false;
    return !impl_->at.ordinal || impl_->file->records.live(*impl_->at.ordinal);
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

Status File::countRecords()
{
    if (const auto refused = ready())
        return *refused;
    if (const auto refused = listRecords())
        return *refused;
    return Status::Success;
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
        return fail(Status::EndOfFile, "no record in that direction on " + keyName(key));
    const auto ordinal = index.ordinalAt(position);
    setCurrent(ordinal);
    impl_->at.keyPath = key;
    impl_->at.keyImage = index.imageOfRecord(ordinal);
    return Status::Success;
}

Status File::keyed(int key, Bytes keyValue, int operation)
{
    if (const auto refused = checkKey(key))
        return *refused;
    auto &file = *impl_->file;
    const auto &at = impl_->at;
    const auto &definition = file.indexes.key(static_cast<std::size_t>(key));
    std::vector<std::uint8_t> image;
    if (takesValue(operation)) {
        if (keyValue.size() < definition.length())
            return fail(Status::InvalidKeyLength, "key value of " + std::to_string(keyValue.size()) +
                                                      " bytes is shorter than " + keyName(key) + " (" +
                                                      std::to_string(definition.length()) + " bytes)");
        appendSortImage(definition, keyValue.first(definition.length()), image);
    } else if (operation == Next || operation == Previous) {
        if (!at.onRecord || at.keyPath < 0)
            return fail(Status::InvalidPositioning, "no current record on a key; use a get operation first");
        if (at.keyPath != key)
            return fail(Status::DifferentKeyNumber,
                        "positioned on key " + std::to_string(at.keyPath) + ", not " + std::to_string(key));
        image = at.keyImage;
    }
    bool trustIndexPages = true;
    if (descends(key)) {
        try {
            return descend(key, operation, image);
        } catch (const FormatError &error) {
            file.info.warnings.push_back("index pages of " + keyName(key) + " not used (" + error.what() +
                                         "); its order was built from a scan of the records");
            trustIndexPages = false;
        }
    }
    if (const auto refused = buildIndex(key, trustIndexPages))
        return *refused;
    return fromIndex(key, operation, image);
}

Status File::fromIndex(int key, int operation, const std::vector<std::uint8_t> &image)
{
    auto &index = *impl_->file->indexes.built(static_cast<std::size_t>(key));
    const auto before = [&](std::size_t position) { return position == 0 ? index.size() : position - 1; };
    switch (operation) {
    case Equal: {
        const auto position = index.lowerBound(image);
        if (!index.imageAtEquals(position, image))
            return fail(Status::KeyNotFound, "no record with that value of " + keyName(key));
        return positionAt(key, position);
    }
    case Greater:
        return positionAt(key, index.upperBound(image));
    case GreaterOrEqual:
        return positionAt(key, index.lowerBound(image));
    case Less:
        return positionAt(key, before(index.lowerBound(image)));
    case LessOrEqual:
        return positionAt(key, before(index.upperBound(image)));
    case First:
        return positionAt(key, 0);
    case Last:
        return positionAt(key, before(index.size()));
    default:
        break;
    }
    // Next, previous: found again by (key image, ordinal), which works even
    // when the current record has since been deleted or changed.
    const auto &at = impl_->at;
    const bool forward = operation == Next;
    if (!at.ordinal)
        return fail(Status::InvalidPositioning, "the current record is no longer in the file");
    const auto position = index.lowerBound(image, *at.ordinal);
    if (forward)
        return positionAt(key, position < index.size() && index.ordinalAt(position) == *at.ordinal ? position + 1
                                                                                                   : position);
    return positionAt(key, before(position));
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
Status File::getFirst(int key)
{
    return keyed(key, {}, First);
}
Status File::getLast(int key)
{
    return keyed(key, {}, Last);
}
Status File::getNext(int key)
{
    return keyed(key, {}, Next);
}
Status File::getPrevious(int key)
{
    return keyed(key, {}, Previous);
}

std::optional<Status> File::checkKey(int key)
{
    if (const auto refused = ready())
        return refused;
    if (key < 0 || static_cast<std::size_t>(key) >= impl_->file->indexes.size())
        return fail(Status::InvalidKeyNumber, keyName(key) + " does not exist; the file has " +
                                                  std::to_string(impl_->file->indexes.size()) + " keys");
    return std::nullopt;
}

std::optional<Status> File::buildIndex(int key, bool trustIndexPages)
{
    // Also when another File built the index: this one's record needs its place in the list.
    if (const auto refused = listRecords())
        return refused;
    if (impl_->file->indexes.built(static_cast<std::size_t>(key)))
        return std::nullopt;
    try {
        impl_->file->indexes.use(static_cast<std::size_t>(key), trustIndexPages);
    } catch (const std::bad_alloc &) {
        return fail(Status::IoError, "not enough memory to build the index of " + keyName(key));
    }
    return std::nullopt;
}

bool File::descends(int key) const
{
    const auto &file = *impl_->file;
    std::string problem;
    return file.descends && !file.indexes.built(static_cast<std::size_t>(key)) &&
           indexLayoutReadable(file.header, file.indexes.key(static_cast<std::size_t>(key)), problem);
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
    auto &at = impl_->at;
    if (!impl_->file->listed)
        return stepUnlisted(direction, onward);
    const auto &records = impl_->file->records;
    const auto count = static_cast<std::int64_t>(records.size());
    const std::int64_t current = at.ordinal ? std::int64_t{*at.ordinal} : -2;
    std::int64_t next = which == Step::First ? 0 : which == Step::Last ? count - 1 : current + direction;
    if (onward && !at.ordinal && at.onRecord) {
        // Reached by key in a file listed since: find the record in the list.
        if (const auto refused = listRecords())
            return *refused;
        if (at.ordinal)
            next = std::int64_t{*at.ordinal} + direction;
    }
    if (!at.onRecord && onward)
        return fail(Status::InvalidPositioning, "no current record to step from");
    for (; next >= 0 && next < count; next += direction)
        if (records.live(static_cast<std::size_t>(next))) {
            setCurrent(static_cast<std::uint32_t>(next));
            at.keyPath = -1;
            return Status::Success;
        }
    return fail(Status::EndOfFile, "no record in that direction");
}

Status File::stepUnlisted(int direction, bool onward)
{
    auto &file = *impl_->file;
    auto &at = impl_->at;
    if (onward && !at.onRecord)
        return fail(Status::InvalidPositioning, "no current record to step from");
    const auto from = onward ? std::optional(at.address) : std::nullopt;
    try {
        auto &walk = file.slots();
        const auto slot = direction > 0 ? walk.next(from) : walk.previous(from);
        if (!slot)
            return fail(Status::EndOfFile, "no record in that direction");
        // Read aside first: a record that cannot be assembled leaves the current one whole.
        walk.record(slot->bytes, impl_->scratch);
        std::swap(at.bytes, impl_->scratch);
        at.onRecord = true;
        at.ordinal.reset();
        at.address = slot->address;
        at.keyPath = -1;
        return Status::Success;
    } catch (const FormatError &error) {
        return fail(Status::IoError, file.path.string() + ": " + error.what());
    }
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
        if (const auto status = placeInList(message); status != Status::Success)
            return status;
        const auto status = updateRecord(*impl_->file, *at.ordinal, at.bytes, written, message);
        if (status == Status::Success) {
            if (at.keyPath >= 0)
                at.keyImage =
                    sortImageOfRecord(impl_->file->indexes.key(static_cast<std::size_t>(at.keyPath)), written);
            at.bytes = std::move(written);
        }
        return status;
    });
}

Status File::placeInList(std::string &message)
{
    // Writes go through the record list: made now for a file opened without.
    if (const auto status = findInList(message); status != Status::Success)
        return status;
    if (!onLiveRecord()) {
        message = "the record read is no longer in the file";
        return Status::Conflict;
    }
    return Status::Success;
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
    return guardedWrite([&](std::string &message) {
        if (const auto status = refuseUnlessOwn(*impl_->file, "delete", message); status != Status::Success)
            return status;
        if (const auto status = placeInList(message); status != Status::Success)
            return status;
        return deleteRecord(*impl_->file, *impl_->at.ordinal, message);
    });
}

} // namespace recman
