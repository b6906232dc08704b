#pragma once

#include "file.h"

#include <filesystem>

#include <sys/wait.h>
#include <unistd.h>

// Another process holding a data file open for writing, and so its lock,
// until this object dies (or release()). holds(): the child got the lock.
class WriteLockHolder {
public:
    explicit WriteLockHolder(const std::filesystem::path &path)
    {
        if (::pipe(ready_) != 0 || ::pipe(release_) != 0)
            return;
        child_ = ::fork();
        if (child_ == 0) {
            recman::File holder;
            char byte = holder.open(path, recman::OpenMode::ReadWrite) == recman::Status::Success ? 'y' : 'n';
            (void)!::write(ready_[1], &byte, 1);
            (void)!::read(release_[0], &byte, 1);
            ::_exit(0);
        }
        char byte = 0;
        holds_ = child_ > 0 && ::read(ready_[0], &byte, 1) == 1 && byte == 'y';
    }
    ~WriteLockHolder() { release(); }
    WriteLockHolder(const WriteLockHolder &) = delete;
    WriteLockHolder &operator=(const WriteLockHolder &) = delete;

    bool holds() const { return holds_; }

    void release()
    {
        if (child_ > 0) {
            const char byte = 'r';
            (void)!::write(release_[1], &byte, 1);
            ::waitpid(child_, nullptr, 0);
        }
        child_ = -1;
        holds_ = false;
        for (int *fd : {&ready_[0], &ready_[1], &release_[0], &release_[1]})
            if (*fd >= 0) {
                ::close(*fd);
                *fd = -1;
            }
    }

private:
    int ready_[2] = {-1, -1};
    int release_[2] = {-1, -1};
    pid_t child_ = -1;
    bool holds_ = false;
};
