#include "groupcommit.h"

#include "bytes.h"
#include "filehandle.h"
#include "journal.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <fcntl.h>
#include <random>
#include <string_view>
#include <unistd.h>
#include <vector>

namespace recman {

namespace {

// Decision file layout: the 8-byte tag "KORADEC1", then for each data file of
// the commit its path relative to the decision file's folder, as a length
// (u32, little-endian) and the bytes.
constexpr char tag[] = "KORADEC1";
constexpr std::size_t tagLength = 8;
constexpr std::size_t idDigits = 16;
constexpr std::string_view suffix = ".kbc";
constexpr std::string_view temporarySuffix = ".tmp";

GroupCommitProbe &probe()
{
    static GroupCommitProbe instance;
    return instance;
}

void reached(GroupCommitStep step, std::size_t member)
{
    if (probe())
        probe()(step, member);
}

std::filesystem::path absoluteOf(const std::filesystem::path &file)
{
    std::error_code error;
    const auto absolute = std::filesystem::absolute(file, error);
    return (error ? file : absolute).lexically_normal();
}

std::filesystem::path newDecisionPath(const std::filesystem::path &firstDataFile)
{
    std::random_device random;
    const std::uint64_t id = std::uint64_t{random()} << 32 | random();
    char digits[idDigits + 1];
    std::snprintf(digits, sizeof digits, "%016llx", static_cast<unsigned long long>(id));
    auto path = firstDataFile;
    path += "." + std::string(digits) + std::string(suffix);
    return path;
}

// "<firstName>.<16 hex digits>.kbc"
bool isDecisionName(std::string_view name, std::string_view firstName)
{
    if (name.size() != firstName.size() + 1 + idDigits + suffix.size() || !name.starts_with(firstName) ||
        name[firstName.size()] != '.' || !name.ends_with(suffix))
        return false;
    const auto digits = name.substr(firstName.size() + 1, idDigits);
    return std::all_of(digits.begin(), digits.end(), [](char c) { return std::isxdigit(static_cast<unsigned char>(c)); });
}

std::vector<std::uint8_t> decisionContent(const std::filesystem::path &decision,
                                          std::span<const GroupMember> members)
{
    std::vector<std::uint8_t> content(tag, tag + tagLength);
    for (const auto &member : members) {
        const auto name = absoluteOf(member.journal->dataFile()).lexically_relative(decision.parent_path()).string();
        const auto at = content.size();
        content.resize(at + 4);
        bytes::put32(content, at, static_cast<std::uint32_t>(name.size()));
        content.insert(content.end(), name.begin(), name.end());
    }
    return content;
}

// The data files a decision file lists; false if it cannot be read or is not one.
bool listedFiles(const std::filesystem::path &decision, std::vector<std::filesystem::path> &files)
{
    std::vector<std::uint8_t> content;
    if (!readWholeFile(decision, content) || content.size() < tagLength ||
        !std::equal(content.begin(), content.begin() + tagLength, tag))
        return false;
    for (std::size_t at = tagLength; at < content.size();) {
        if (content.size() - at < 4 || content.size() - at - 4 < bytes::u32(content, at))
            return false;
        const auto name = Bytes(content).subspan(at + 4, bytes::u32(content, at));
        files.push_back((decision.parent_path() / std::string(name.begin(), name.end())).lexically_normal());
        at += 4 + name.size();
    }
    return true;
}

// Written under a temporary name, synced, renamed into place and the folder
// synced: the rename is the commit point. "" once it has passed, else why not.
std::string writeDecision(const std::filesystem::path &decision, Bytes content)
{
    auto temporary = decision;
    temporary += temporarySuffix;
    {
        const Descriptor file{::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644)};
        if (file.fd < 0)
            return systemReason("cannot create " + temporary.string());
        if (!writeFully(file.fd, 0, content) || ::fsync(file.fd) != 0) {
            const auto why = systemReason("cannot write " + temporary.string());
            ::unlink(temporary.c_str());
            return why;
        }
    }
    if (::rename(temporary.c_str(), decision.c_str()) != 0) {
        const auto why = systemReason("cannot rename " + temporary.string() + " to " + decision.string());
        ::unlink(temporary.c_str());
        return why;
    }
    // A rename that may not survive a power cut is undone; one that cannot be
    // undone stands, and the commit with it.
    if (!syncDirectory(decision.parent_path())) {
        const auto why = systemReason("cannot sync the folder of " + decision.string());
        if (::unlink(decision.c_str()) == 0)
            return why;
    }
    return {};
}

void removeDecision(const std::filesystem::path &decision)
{
    // Failing leaves a file that names no journal left: the next sweep takes it.
    if (::unlink(decision.c_str()) == 0)
        syncDirectory(decision.parent_path());
}

// Decision files (and temporary ones) that crashes left beside the first data
// file of a commit. The caller holds that file's write lock, so no commit that
// could still use them is running.
void sweepDecisionsOf(const std::filesystem::path &firstDataFile)
{
    const auto firstName = firstDataFile.filename().string();
    std::error_code error;
    for (std::filesystem::directory_iterator item(firstDataFile.parent_path(), error), end; !error && item != end;
         item.increment(error)) {
        const auto name = item->path().filename().string();
        if (isDecisionName(name, firstName))
            removeDecisionIfSettled(item->path());
        else if (name.ends_with(temporarySuffix) &&
                 isDecisionName(std::string_view(name).substr(0, name.size() - temporarySuffix.size()), firstName))
            ::unlink(item->path().c_str());
    }
}

} // namespace

void setGroupCommitProbe(GroupCommitProbe newProbe)
{
    probe() = std::move(newProbe);
}

void removeDecisionIfSettled(const std::filesystem::path &decision)
{
    std::vector<std::filesystem::path> files;
    if (!listedFiles(decision, files))
        return; // gone already, or unreadable: left alone
    if (std::none_of(files.begin(), files.end(),
                     [&decision](const std::filesystem::path &file) { return journalMayName(file, decision); }))
        removeDecision(decision);
}

GroupCommitOutcome commitGroups(std::span<const GroupMember> members)
{
    const auto first = absoluteOf(members.front().journal->dataFile());
    sweepDecisionsOf(first);
    const auto decision = newDecisionPath(first);
    for (std::size_t member = 0; member < members.size(); ++member) {
        if (auto why = members[member].journal->nameDecision(*members[member].data, decision); !why.empty())
            return {false, why};
        reached(GroupCommitStep::DecisionNamed, member);
    }
    if (auto why = writeDecision(decision, decisionContent(decision, members)); !why.empty())
        return {false, why};
    reached(GroupCommitStep::Decided, 0);
    std::string problem;
    for (std::size_t member = 0; member < members.size(); ++member) {
        if (auto why = members[member].journal->commit(*members[member].data); !why.empty() && problem.empty())
            problem = why;
        reached(GroupCommitStep::GroupEnded, member);
    }
    // A journal left behind still needs the decision file.
    if (problem.empty())
        removeDecision(decision);
    return {true, problem};
}

} // namespace recman
