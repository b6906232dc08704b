// Groups of writes (File::beginGroup and the rest), kept in a journal. The
// journal belongs to the file's shared open: one group at a time, begun by one
// File; writes made meanwhile through other Files sharing the file go into it.
#include "groupcommit.h"
#include "openfile.h"

#include <algorithm>

namespace recman {

Status File::beginGroup()
{
    if (!impl_)
        return fail(Status::FileNotOpen, "file not open");
    if (impl_->inGroup)
        return fail(Status::InvalidOperation, "a group of writes is already open on this file");
    auto &file = *impl_->file;
    if (impl_->mode == OpenMode::ReadWrite) {
        if (file.journal)
            return fail(Status::InvalidOperation, "another user of " + file.path.string() +
                                                      " in this program has a group of writes open on it");
        auto journal = std::make_unique<Journal>();
        if (auto why = journal->begin(file.path); !why.empty())
            return fail(Status::IoError, "cannot begin a group of writes: " + why);
        file.handle.setJournal(journal.get());
        file.journal = std::move(journal);
        file.groupOwner = impl_.get();
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
    auto &file = *impl_->file;
    if (file.groupOwner != impl_.get())
        return Status::Success;
    file.handle.setJournal(nullptr);
    const auto why = file.journal->commit(file.handle);
    file.dropJournal();
    if (why.empty())
        return Status::Success;
    if (const auto status = rollBackGroup(); status != Status::Success)
        return status;
    return fail(Status::IoError, "the group of writes could not be kept (" + why + "); it was rolled back");
}

Status File::endGroups(std::span<File *const> files)
{
    // One journal per shared open, kept by the File that began its group.
    std::vector<File *> owners;
    for (File *file : files) {
        if (!file->inGroup())
            return file->fail(Status::InvalidOperation, "no group of writes is open on this file");
        if (file->impl_->file->groupOwner == file->impl_.get() && std::ranges::find(owners, file) == owners.end())
            owners.push_back(file);
    }
    if (owners.size() < 2) {
        // One journal at most: nothing to decide between files.
        Status result = Status::Success;
        for (File *file : files) {
            const auto status = file->inGroup() ? file->endGroup() : Status::Success;
            result = result == Status::Success ? status : result;
        }
        return result;
    }
    std::vector<GroupMember> members;
    for (File *file : files)
        file->impl_->inGroup = false;
    for (File *owner : owners) {
        auto &open = *owner->impl_->file;
        open.handle.setJournal(nullptr);
        members.push_back({open.journal.get(), &open.handle});
    }
    const auto outcome = commitGroups(members);
    for (File *owner : owners)
        owner->impl_->file->dropJournal();
    if (outcome.problem.empty())
        return Status::Success;
    std::string message = "the groups of writes of " + std::to_string(owners.size()) + " files ";
    if (outcome.decided) {
        message += "were kept, but " + outcome.problem + "; the next open for writing removes it";
    } else {
        message += "could not be kept (" + outcome.problem + "); they were rolled back";
        for (File *owner : owners)
            if (owner->rollBackGroup() != Status::Success)
                message += "; " + owner->lastMessage();
    }
    for (File *file : files)
        file->fail(Status::IoError, message);
    return Status::IoError;
}

Status File::abortGroup()
{
    if (!inGroup())
        return fail(Status::InvalidOperation, "no group of writes is open on this file");
    impl_->inGroup = false;
    if (impl_->file->groupOwner != impl_.get())
        return Status::Success;
    impl_->file->dropJournal();
    return rollBackGroup();
}

Status File::rollBackGroup()
{
    auto &file = *impl_->file;
    std::string report;
    const bool failed = rollBack(file.path, report) == Rollback::Failed;
    // Whatever was put back, it was put back behind the cache.
    file.restoredBehindCache();
    if (failed) {
        close();
        return fail(Status::IoError, report + "; the file was closed and is rolled back when next opened");
    }
    impl_->at = Currency{};
    if (auto refused = ready())
        return *refused;
    return Status::Success;
}

void File::leaveGroupAtClose()
{
    auto &file = *impl_->file;
    file.dropJournal();
    // Alone, the journal stays for the next open to roll back. Others sharing
    // the file go on reading it: put it back for them now.
    if (impl_->file.use_count() > 1) {
        rollBack(file.path, message_);
        file.restoredBehindCache();
    }
}

} // namespace recman
