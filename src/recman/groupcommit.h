// Ending the groups of writes of several data files as one: after a crash at
// any point, either every file keeps its group's writes or every file is put
// back.
//
//  1. Each data file is synced, then its journal gets a last entry naming one
//     decision file and is synced.
//  2. The decision file (listing the data files) is written under a temporary
//     name, synced, renamed into place, and its folder synced. The rename is
//     the commit point.
//  3. Each group ends as one alone does: data synced, journal removed.
//  4. The decision file is removed.
//
// The decision file lies beside the first data file, named
// "<first data file>.<16 random hex digits>.kbc": a name no other commit uses,
// so a decision file left behind is never taken for another commit's.
// Recovery (rollBack, at the next open for writing): a journal whose last
// entry names a decision file that exists keeps its writes; any other journal
// is rolled back. The recovery that removes the last journal naming a
// decision file removes that file too; one left by a crash between steps 3
// and 4 names no journal left, is harmless, and is removed by the next commit
// whose first data file is the same.
#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <span>
#include <string>

namespace recman {

class FileHandle;
class Journal;

struct GroupMember {
    Journal *journal;
    FileHandle *data;
};

struct GroupCommitOutcome {
    // The commit point was passed: the writes stand, also across a crash.
    bool decided = false;
    // What went wrong ("" if nothing): before the commit point, why it was
    // not reached (the journals stay, for the caller to roll back); after it,
    // which journal could not be removed (the next open for writing removes it).
    std::string problem;
};

GroupCommitOutcome commitGroups(std::span<const GroupMember> members);

// After each step, for each member it concerns (0 for the decision), for
// tests that kill the process there.
enum class GroupCommitStep { DecisionNamed, Decided, GroupEnded };
using GroupCommitProbe = std::function<void(GroupCommitStep, std::size_t member)>;
void setGroupCommitProbe(GroupCommitProbe probe);

// Removes a decision file once no journal of the data files it lists still
// names it (or may: a journal that cannot be read keeps it).
void removeDecisionIfSettled(const std::filesystem::path &decision);

} // namespace recman
