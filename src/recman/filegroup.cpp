// Groups of writes (File::beginGroup and the rest), kept in a journal.
#include "openfile.h"

namespace recman {

Status File::beginGroup()
{
    if (!impl_)
        return fail(Status::FileNotOpen, "file not open");
    if (impl_->inGroup)
        return fail(Status::InvalidOperation, "a group of writes is already open on this file");
    if (impl_->mode == OpenMode::ReadWrite) {
        auto journal = std::make_unique<Journal>();
        if (auto why = journal->begin(impl_->path); !why.empty())
            return fail(Status::IoError, "cannot begin a group of writes: " + why);
        impl_->handle.setJournal(journal.get());
        impl_->journal = std::move(journal);
    }
    impl_->inGroup = true;
    return Status::Success;
}

bool File::inGroup() const
{
    return impl_ && impl_->inGroup;
}

Status File::endGroup()
{
    if (!inGroup())
        return fail(Status::InvalidOperation, "no group of writes is open on this file");
    impl_->inGroup = false;
    if (!impl_->journal)
        return Status::Success;
    impl_->handle.setJournal(nullptr);
    const auto why = impl_->journal->commit(impl_->handle);
    impl_->journal.reset();
    if (why.empty())
        return Status::Success;
    if (const auto status = rollBackGroup(); status != Status::Success)
        return status;
    return fail(Status::IoError, "the group of writes could not be kept (" + why + "); it was rolled back");
}

Status File::abortGroup()
{
    if (!inGroup())
        return fail(Status::InvalidOperation, "no group of writes is open on this file");
    impl_->inGroup = false;
    if (!impl_->journal)
        return Status::Success;
    impl_->handle.setJournal(nullptr);
    impl_->journal.reset();
    return rollBackGroup();
}

Status File::rollBackGroup()
{
    const auto path = impl_->path;
    const auto mode = impl_->mode;
    std::string report;
    if (rollBack(path, report) == Rollback::Failed) {
        close(); // what is in memory is no longer what is on disk
        return fail(Status::IoError, report + "; the file was closed and is rolled back when next opened");
    }
    return open(path, mode);
}

} // namespace recman
