// Another program writes the file while we have it open: our next read sees
// its changes, and they survive our updates, which either land beside them or
// are refused. Another process holding the file for writing keeps us to reading.
#include "file.h"
#include "oldformatfile.h"
#include "recmantest.h"
#include "writelockholder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <thread>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

using recman::File;
using recman::OpenMode;
using recman::Status;
using recmantest::OldFile;
using recmantest::oldRecord;

namespace {

// Writes bytes at an offset from a separate process, as another program would.
void writeFromAnotherProcess(const std::filesystem::path &path, std::uint64_t offset, std::vector<std::uint8_t> bytes)
{
    const pid_t child = ::fork();
    if (child == 0) {
        const int fd = ::open(path.c_str(), O_WRONLY);
        const bool ok = fd >= 0 && ::pwrite(fd, bytes.data(), bytes.size(), static_cast<off_t>(offset)) ==
                                       static_cast<ssize_t>(bytes.size());
        ::_exit(ok ? 0 : 1);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
}

struct LiveOldFile {
    recmantest::TempDir dir;
    std::filesystem::path path = dir / "POSTINGS.DAT";
    OldFile shape;
    File file;
    LiveOldFile()
    {
        shape.headerCount = 2;
        shape.pages.push_back({0x8002, {oldRecord(1, 'a'), oldRecord(2, 'b')}});
        recmantest::writeBytes(path, shape.bytes());
        EXPECT_EQ(file.open(path, OpenMode::ReadWrite), Status::Success) << file.lastMessage();
        EXPECT_EQ(file.stepFirst(), Status::Success);
    }
};

TEST(OutsideWriter, AChangeToTheSameRecordIsNeverOverwritten)
{
    LiveOldFile live;
    std::vector<std::uint8_t> ours(live.file.record().begin(), live.file.record().end());
    // The other program posts into bytes 12..15 of record 1; we change bytes 4..7.
    writeFromAnotherProcess(live.path, live.shape.address(1, 0) + 12, {'P', 'O', 'S', 'T'});
    const auto theirs = recmantest::readBytes(live.path);
    std::fill_n(ours.begin() + 4, 4, std::uint8_t{'Z'});
    EXPECT_EQ(live.file.update(ours), Status::Conflict);
    EXPECT_NE(live.file.lastMessage().find("changed by another user"), std::string::npos);
    EXPECT_EQ(recmantest::readBytes(live.path), theirs) << "a refused update changed the file";
}

TEST(OutsideWriter, AChangeToAnotherRecordOnThePageSurvivesOurUpdate)
{
    LiveOldFile live;
    std::vector<std::uint8_t> ours(live.file.record().begin(), live.file.record().end());
    writeFromAnotherProcess(live.path, live.shape.address(1, 1) + 12, {'P', 'O', 'S', 'T'});
    std::fill_n(ours.begin() + 4, 4, std::uint8_t{'Z'});
    ASSERT_EQ(live.file.update(ours), Status::Success) << live.file.lastMessage();
    live.file.close();
    File reread;
    ASSERT_EQ(reread.open(live.path), Status::Success);
    ASSERT_EQ(reread.stepFirst(), Status::Success);
    EXPECT_EQ(std::vector<std::uint8_t>(reread.record().begin(), reread.record().end()), ours);
    ASSERT_EQ(reread.stepNext(), Status::Success);
    auto expected = oldRecord(2, 'b');
    std::copy_n("POST", 4, expected.begin() + 12);
    EXPECT_EQ(std::vector<std::uint8_t>(reread.record().begin(), reread.record().end()), expected);
}

TEST(OutsideWriter, SixXFilesAreCheckedOnTheirCurrentPage)
{
    recmantest::TempDir dir;
    const auto path = recmantest::writableFixture(dir, "GALTELA.DAT");
    File file;
    ASSERT_EQ(file.open(path, OpenMode::ReadWrite), Status::Success) << file.lastMessage();
    ASSERT_EQ(file.stepFirst(), Status::Success);
    std::vector<std::uint8_t> ours(file.record().begin(), file.record().end());
    // Find the record where it lies on disk and change one of its bytes there.
    const auto before = recmantest::readBytes(path);
    const auto at = std::search(before.begin(), before.end(), ours.begin(), ours.end());
    ASSERT_NE(at, before.end());
    writeFromAnotherProcess(path, static_cast<std::uint64_t>(at - before.begin()) + 600, {'X'});
    const auto theirs = recmantest::readBytes(path);
    ours[500] = 'Z';
    EXPECT_EQ(file.update(ours), Status::Conflict);
    EXPECT_EQ(recmantest::readBytes(path), theirs);
}

TEST(OutsideWriter, TheNextReadSeesAChangeMadeWhileOpen)
{
    LiveOldFile live;
    writeFromAnotherProcess(live.path, live.shape.address(1, 1) + 12, {'P', 'O', 'S', 'T'});
    ASSERT_EQ(live.file.stepNext(), Status::Success);
    EXPECT_EQ(std::string(live.file.record().begin() + 12, live.file.record().begin() + 16), "POST");
    writeFromAnotherProcess(live.path, live.shape.address(1, 0) + 12, {'A', 'G', 'A', 'I'});
    ASSERT_EQ(live.file.stepPrevious(), Status::Success);
    EXPECT_EQ(std::string(live.file.record().begin() + 12, live.file.record().begin() + 16), "AGAI");

    // A keyed read of a 6.x file, with its index already built. The file was
    // last changed long enough before the open for its times to be trusted.
    recmantest::TempDir dir;
    const auto path = recmantest::writableFixture(dir, "GALTELA.DAT");
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    File file;
    ASSERT_EQ(file.open(path), Status::Success) << file.lastMessage();
    ASSERT_EQ(file.getFirst(0), Status::Success);
    const std::vector<std::uint8_t> first(file.record().begin(), file.record().end());
    const auto key = file.keyValueOf(0, first);
    const auto before = recmantest::readBytes(path);
    const auto at = std::search(before.begin(), before.end(), first.begin(), first.end());
    ASSERT_NE(at, before.end());
    writeFromAnotherProcess(path, static_cast<std::uint64_t>(at - before.begin()) + 600, {'X'});
    ASSERT_EQ(file.getEqual(0, key), Status::Success) << file.lastMessage();
    EXPECT_EQ(file.record()[600], 'X');
}

TEST(OutsideWriter, AScanLooksAgainWithinItsCheckInterval)
{
    // A run of steps skips looking at the file for speed, but not for long:
    // a change made during the run is seen once the interval has passed.
    recmantest::TempDir dir;
    const auto path = recmantest::writableFixture(dir, "GALTELA.DAT");
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    File file;
    ASSERT_EQ(file.open(path), Status::Success) << file.lastMessage();
    ASSERT_EQ(file.stepFirst(), Status::Success);
    ASSERT_EQ(file.stepNext(), Status::Success);
    ASSERT_EQ(file.stepNext(), Status::Success);
    const std::vector<std::uint8_t> third(file.record().begin(), file.record().end());
    ASSERT_EQ(file.stepPrevious(), Status::Success);
    ASSERT_EQ(file.stepPrevious(), Status::Success);
    ASSERT_EQ(file.stepNext(), Status::Success);
    const auto before = recmantest::readBytes(path);
    const auto at = std::search(before.begin(), before.end(), third.begin(), third.end());
    ASSERT_NE(at, before.end());
    const auto middle = third.size() / 2;
    writeFromAnotherProcess(path, static_cast<std::uint64_t>(at - before.begin()) + middle,
                            {static_cast<std::uint8_t>(third[middle] ^ 0xFF)});
    std::this_thread::sleep_for(std::chrono::milliseconds(60)); // three check intervals
    ASSERT_EQ(file.stepNext(), Status::Success);
    EXPECT_EQ(file.record()[middle], third[middle] ^ 0xFF);
}

TEST(OutsideWriter, AFileAnotherProcessHoldsForWritingIsLocked)
{
    LiveOldFile live;
    live.file.close();
    WriteLockHolder holder(live.path);
    ASSERT_TRUE(holder.holds());
    File file;
    EXPECT_EQ(file.open(live.path, OpenMode::ReadWrite), Status::FileInUse);
    EXPECT_NE(file.lastMessage().find("File Locked by other process"), std::string::npos) << file.lastMessage();
    EXPECT_EQ(file.open(live.path), Status::Success) << file.lastMessage();
    // Reading alongside does not make it ours to write either.
    File writer;
    EXPECT_EQ(writer.open(live.path, OpenMode::ReadWrite), Status::FileInUse);

    holder.release();
    EXPECT_EQ(writer.open(live.path, OpenMode::ReadWrite), Status::Success) << writer.lastMessage();
}

} // namespace
