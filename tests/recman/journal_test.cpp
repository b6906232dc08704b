// Groups of writes: a process killed in the middle of one leaves a journal,
// and the next open for writing puts the file back byte for byte.
#include "creator.h"
#include "file.h"
#include "groupcommit.h"
#include "journal.h"
#include "recmantest.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstring>
#include <functional>
#include <sys/wait.h>
#include <unistd.h>

using namespace recman;

namespace {

constexpr std::uint32_t recordLength = 40;

std::vector<std::uint8_t> makeRecord(std::int32_t id, char fill)
{
    std::vector<std::uint8_t> record(recordLength, static_cast<std::uint8_t>(fill));
    std::memcpy(record.data(), &id, 4);
    return record;
}

FileSpec idKeyed()
{
    FileSpec spec;
    spec.recordLength = recordLength;
    KeyDefinition id;
    id.segments.push_back({0, 0, keyflag::Extended, static_cast<std::uint8_t>(DataType::Integer), 0, 4, 0, {}});
    spec.keys = {id};
    return spec;
}

// Runs work in a child process that is killed (SIGKILL): by work itself, or
// when work succeeds.
void inKilledChild(const std::function<bool()> &work)
{
    const pid_t child = ::fork();
    if (child == 0) {
        if (work())
            ::kill(::getpid(), SIGKILL);
        ::_exit(1);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    ASSERT_TRUE(WIFSIGNALED(status)) << "the child's writes failed";
}

bool openInGroup(File &file, const std::filesystem::path &path)
{
    return file.open(path, OpenMode::ReadWrite) == Status::Success && file.beginGroup() == Status::Success;
}

// In a child process: opens the file for writing, begins a group, makes the
// writes and is killed before the group ends.
void killedMidGroup(const std::filesystem::path &path, const std::function<bool(File &)> &writes)
{
    inKilledChild([&] {
        File file;
        return openInGroup(file, path) && writes(file);
    });
}

bool firstRecordChanged(File &file, char fill)
{
    if (file.stepFirst() != Status::Success)
        return false;
    std::vector<std::uint8_t> record(file.record().begin(), file.record().end());
    std::fill(record.begin() + 4, record.end(), static_cast<std::uint8_t>(fill));
    return file.update(record) == Status::Success;
}

// Several updates, inserts that grow the file, and a delete.
bool manyWrites(File &file)
{
    for (std::int32_t id = 100; id < 112; ++id)
        if (file.insert(makeRecord(id, 'n')) != Status::Success)
            return false;
    if (!firstRecordChanged(file, 'u') || file.getEqual(0, makeRecord(3, ' ')) != Status::Success)
        return false;
    return file.erase() == Status::Success && firstRecordChanged(file, 'v');
}

class JournalTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        std::vector<std::vector<std::uint8_t>> records;
        for (std::int32_t id = 1; id <= 20; ++id)
            records.push_back(makeRecord(id, 'a'));
        std::string message;
        ASSERT_EQ(createFile(path, idKeyed(), records, message), Status::Success) << message;
        original = recmantest::readBytes(path);
    }

    void appendToJournal(const std::vector<std::uint8_t> &bytes) const
    {
        auto content = recmantest::readBytes(journalPathFor(path));
        content.insert(content.end(), bytes.begin(), bytes.end());
        recmantest::writeBytes(journalPathFor(path), content);
    }

    recmantest::TempDir dir;
    std::filesystem::path path = dir / "GROUP.BTR";
    std::vector<std::uint8_t> original;
};

TEST_F(JournalTest, AGroupKilledMidwayIsRolledBackByTheNextOpenForWriting)
{
    killedMidGroup(path, manyWrites);
    ASSERT_TRUE(std::filesystem::exists(journalPathFor(path)));
    ASSERT_GT(recmantest::readBytes(path).size(), original.size()) << "the group should have grown the file";

    File reader; // a reader cannot put anything back and leaves the journal alone
    ASSERT_EQ(reader.open(path), Status::Success) << reader.lastMessage();
    EXPECT_TRUE(reader.info().rolledBack.empty());
    reader.close();
    EXPECT_TRUE(std::filesystem::exists(journalPathFor(path)));

    File file;
    ASSERT_EQ(file.open(path, OpenMode::ReadWrite), Status::Success) << file.lastMessage();
    EXPECT_NE(file.info().rolledBack.find("rolled back"), std::string::npos) << file.info().rolledBack;
    EXPECT_EQ(recmantest::readBytes(path), original);
    EXPECT_FALSE(std::filesystem::exists(journalPathFor(path)));
    EXPECT_EQ(file.info().recordCount, 20u);
    file.close();
    ASSERT_EQ(file.open(path, OpenMode::ReadWrite), Status::Success);
    EXPECT_TRUE(file.info().rolledBack.empty());
}

TEST_F(JournalTest, ATornJournalIsReadUpToItsLastCompleteEntry)
{
    // An entry that would blank the control record, cut short or with a
    // checksum that fails: the crash came while it was written, so its write
    // never happened and it must not be applied.
    std::vector<std::uint8_t> blanking(1 + 8 + 4 + 512 + 8, 0);
    blanking[0] = 1;
    blanking[9] = 0x00;
    blanking[10] = 0x02; // length 512 at offset 0
    for (const std::size_t kept : {blanking.size(), blanking.size() - 3, std::size_t{5}}) {
        SCOPED_TRACE(kept);
        std::filesystem::remove(path);
        recmantest::writeBytes(path, original);
        killedMidGroup(path, manyWrites);
        appendToJournal({blanking.begin(), blanking.begin() + static_cast<std::ptrdiff_t>(kept)});
        File file;
        ASSERT_EQ(file.open(path, OpenMode::ReadWrite), Status::Success) << file.lastMessage();
        EXPECT_NE(file.info().rolledBack.find("torn"), std::string::npos) << file.info().rolledBack;
        EXPECT_EQ(recmantest::readBytes(path), original);
    }

    // Torn while its tag was written: nothing had changed yet.
    recmantest::writeBytes(journalPathFor(path), {'K', 'O', 'R'});
    File file;
    ASSERT_EQ(file.open(path, OpenMode::ReadWrite), Status::Success) << file.lastMessage();
    EXPECT_EQ(recmantest::readBytes(path), original);
    EXPECT_FALSE(std::filesystem::exists(journalPathFor(path)));
    file.close();

    // Not a journal of ours: refused, named, and nothing touched.
    recmantest::writeBytes(journalPathFor(path), std::vector<std::uint8_t>(64, 'x'));
    EXPECT_EQ(file.open(path, OpenMode::ReadWrite), Status::IoError);
    EXPECT_NE(file.lastMessage().find("GROUP.BTR.kbj"), std::string::npos) << file.lastMessage();
    EXPECT_EQ(recmantest::readBytes(path), original);
    EXPECT_TRUE(std::filesystem::exists(journalPathFor(path)));
}

TEST_F(JournalTest, EndKeepsTheGroupAndAbortPutsTheFileBack)
{
    File file;
    ASSERT_EQ(file.open(path, OpenMode::ReadWrite), Status::Success);
    EXPECT_EQ(file.endGroup(), Status::InvalidOperation);
    ASSERT_EQ(file.beginGroup(), Status::Success);
    EXPECT_EQ(file.beginGroup(), Status::InvalidOperation);
    ASSERT_TRUE(manyWrites(file));
    ASSERT_EQ(file.abortGroup(), Status::Success) << file.lastMessage();
    EXPECT_EQ(recmantest::readBytes(path), original);
    EXPECT_FALSE(std::filesystem::exists(journalPathFor(path)));
    EXPECT_EQ(file.info().recordCount, 20u);
    ASSERT_EQ(file.getEqual(0, makeRecord(3, ' ')), Status::Success) << "the file is read afresh";

    ASSERT_EQ(file.beginGroup(), Status::Success);
    ASSERT_TRUE(manyWrites(file));
    ASSERT_EQ(file.endGroup(), Status::Success) << file.lastMessage();
    EXPECT_FALSE(std::filesystem::exists(journalPathFor(path)));
    const auto kept = recmantest::readBytes(path);
    file.close();
    ASSERT_EQ(file.open(path, OpenMode::ReadWrite), Status::Success);
    EXPECT_EQ(file.info().recordCount, 31u);
    EXPECT_EQ(recmantest::readBytes(path), kept);
}

TEST_F(JournalTest, FilesSharingTheFileShareItsGroup)
{
    File reader;
    File owner;
    File other;
    ASSERT_EQ(reader.open(path), Status::Success);
    ASSERT_EQ(owner.open(path, OpenMode::ReadWrite), Status::Success);
    ASSERT_EQ(other.open(path, OpenMode::ReadWrite), Status::Success);
    ASSERT_EQ(owner.beginGroup(), Status::Success);
    EXPECT_EQ(other.beginGroup(), Status::InvalidOperation) << "one group at a time on a shared file";
    ASSERT_TRUE(manyWrites(owner));
    ASSERT_TRUE(firstRecordChanged(other, 'o')) << other.lastMessage();
    ASSERT_EQ(reader.stepFirst(), Status::Success);
    EXPECT_EQ(reader.record()[4], 'o');

    // The other File's write went into the group and is undone with it; the
    // pages every File had cached are gone.
    ASSERT_EQ(owner.abortGroup(), Status::Success) << owner.lastMessage();
    EXPECT_EQ(recmantest::readBytes(path), original);
    for (File *file : {&reader, &other}) {
        ASSERT_EQ(file->stepFirst(), Status::Success);
        EXPECT_EQ(file->record()[4], 'a');
        EXPECT_EQ(file->info().recordCount, 20u);
    }

    // Closing the group's File while others still use the file puts it back at once.
    ASSERT_EQ(owner.beginGroup(), Status::Success);
    ASSERT_TRUE(manyWrites(owner));
    owner.close();
    EXPECT_EQ(recmantest::readBytes(path), original);
    EXPECT_FALSE(std::filesystem::exists(journalPathFor(path)));
    ASSERT_EQ(other.getEqual(0, makeRecord(3, ' ')), Status::Success) << "the deleted record is back";
    EXPECT_EQ(other.beginGroup(), Status::Success);
}

TEST_F(JournalTest, AReaderOfTheInterruptedFileSeesItRolledBack)
{
    killedMidGroup(path, manyWrites);
    File reader; // caches the pages the interrupted group left
    ASSERT_EQ(reader.open(path), Status::Success) << reader.lastMessage();
    ASSERT_EQ(reader.stepFirst(), Status::Success);
    ASSERT_EQ(reader.record()[4], 'v');

    File writer; // joins the reader's open, takes the lock and rolls back
    ASSERT_EQ(writer.open(path, OpenMode::ReadWrite), Status::Success) << writer.lastMessage();
    EXPECT_NE(writer.info().rolledBack.find("rolled back"), std::string::npos);
    EXPECT_EQ(recmantest::readBytes(path), original);
    ASSERT_EQ(reader.stepFirst(), Status::Success);
    EXPECT_EQ(reader.record()[4], 'a');
    EXPECT_EQ(reader.info().recordCount, 20u);
}

TEST(RecordManagerFileGroups, AnInPlaceUpdateKilledMidGroupIsRolledBack)
{
    recmantest::TempDir dir;
    const auto path = recmantest::writableFixture(dir, "GALTELA.DAT");
    const auto original = recmantest::readBytes(path);
    killedMidGroup(path, [](File &file) {
        for (bool more = file.stepFirst() == Status::Success; more; more = file.stepNext() == Status::Success) {
            std::vector<std::uint8_t> record(file.record().begin(), file.record().end());
            record[500] = 'Z';
            if (file.update(record) != Status::Success)
                return false;
        }
        return true;
    });
    ASSERT_NE(recmantest::readBytes(path), original);
    File file;
    ASSERT_EQ(file.open(path, OpenMode::ReadWrite), Status::Success) << file.lastMessage();
    EXPECT_FALSE(file.info().rolledBack.empty());
    EXPECT_EQ(recmantest::readBytes(path), original);
}

// Two files' groups ended as one, as a detail file and its summary are.
class GroupsOverFilesTest : public JournalTest {
protected:
    void SetUp() override
    {
        JournalTest::SetUp();
        std::filesystem::copy_file(path, second);
        // What a group of manyWrites leaves, ended alone.
        File file;
        ASSERT_TRUE(openInGroup(file, second) && manyWrites(file));
        ASSERT_EQ(file.endGroup(), Status::Success);
        file.close();
        after = recmantest::readBytes(second);
        recmantest::writeBytes(second, original);
    }

    // The child makes manyWrites in both files and is killed after the
    // commit's step number `step` (counted from 0 as the steps are reached).
    void killedInCommit(int step) const
    {
        inKilledChild([&] {
            File files[2];
            if (!openInGroup(files[0], path) || !openInGroup(files[1], second) || !manyWrites(files[0]) ||
                !manyWrites(files[1]))
                return false;
            int reached = 0;
            setGroupCommitProbe([&](GroupCommitStep, std::size_t) {
                if (reached++ == step)
                    ::kill(::getpid(), SIGKILL);
            });
            File *both[] = {&files[0], &files[1]};
            return File::endGroups(both) == Status::Success;
        });
    }

    std::vector<std::filesystem::path> decisionFiles() const
    {
        std::vector<std::filesystem::path> found;
        for (const auto &item : std::filesystem::directory_iterator(dir.path()))
            if (item.path().extension() == ".kbc")
                found.push_back(item.path());
        return found;
    }

    // Opens the file for writing, as the recovery does; what it reported.
    static std::string recovered(const std::filesystem::path &file)
    {
        File opened;
        EXPECT_EQ(opened.open(file, OpenMode::ReadWrite), Status::Success) << opened.lastMessage();
        return opened.info().rolledBack;
    }

    std::filesystem::path second = dir / "SUMMARY.BTR";
    std::vector<std::uint8_t> after;
};

TEST_F(GroupsOverFilesTest, AKillAtAnyStepOfTheCommitLeavesBothFilesBeforeOrBothAfter)
{
    // Steps: the decision named in each journal (0, 1), the decision file in
    // place (2), each group ended (3, 4).
    for (int step = 0; step <= 4; ++step) {
        SCOPED_TRACE(step);
        recmantest::writeBytes(path, original);
        recmantest::writeBytes(second, original);
        killedInCommit(step);
        const bool decided = step >= 2;
        ASSERT_EQ(decisionFiles().size(), decided ? 1u : 0u);
        ASSERT_EQ(std::filesystem::exists(journalPathFor(path)), step < 3);
        ASSERT_EQ(std::filesystem::exists(journalPathFor(second)), step < 4);

        const auto firstReport = recovered(path);
        const auto secondReport = recovered(second);
        EXPECT_EQ(recmantest::readBytes(path), decided ? after : original);
        EXPECT_EQ(recmantest::readBytes(second), decided ? after : original);
        if (step < 4)
            EXPECT_NE(secondReport.find(decided ? "kept" : "rolled back"), std::string::npos) << secondReport;
        if (step < 3)
            EXPECT_NE(firstReport.find(decided ? "kept" : "rolled back"), std::string::npos) << firstReport;
        // The recovery of the last journal naming it removes the decision file;
        // one whose journals were all removed before the crash stays.
        EXPECT_EQ(decisionFiles().size(), step == 4 ? 1u : 0u);
    }

    // Harmless, and the next commit with the same first file removes it.
    File files[2];
    ASSERT_TRUE(openInGroup(files[0], path) && openInGroup(files[1], second));
    File *both[] = {&files[0], &files[1]};
    ASSERT_EQ(File::endGroups(both), Status::Success) << files[0].lastMessage();
    EXPECT_TRUE(decisionFiles().empty());
    EXPECT_FALSE(std::filesystem::exists(journalPathFor(path)));
    EXPECT_FALSE(std::filesystem::exists(journalPathFor(second)));
}

TEST_F(GroupsOverFilesTest, OnlyACompleteEntryNamingAnExistingDecisionFileKeepsAGroup)
{
    killedInCommit(2);
    // The entry naming the decision file fails its checksum: it names nothing.
    auto journal = recmantest::readBytes(journalPathFor(second));
    journal.back() ^= 0xff;
    recmantest::writeBytes(journalPathFor(second), journal);
    EXPECT_NE(recovered(second).find("torn"), std::string::npos);
    EXPECT_EQ(recmantest::readBytes(second), original);
    ASSERT_EQ(decisionFiles().size(), 1u);

    // Without its decision file, a journal that names one is rolled back.
    std::filesystem::remove(decisionFiles().front());
    EXPECT_NE(recovered(path).find("rolled back"), std::string::npos);
    EXPECT_EQ(recmantest::readBytes(path), original);
}

TEST_F(GroupsOverFilesTest, ACommitThatCannotDecideRollsBackEveryGroup)
{
    File files[2];
    ASSERT_TRUE(openInGroup(files[0], path) && openInGroup(files[1], second));
    ASSERT_TRUE(manyWrites(files[0]) && manyWrites(files[1]));
    // Once the first journal names the decision file, a folder takes its
    // temporary name, so the decision file cannot be written.
    setGroupCommitProbe([&](GroupCommitStep step, std::size_t member) {
        if (step != GroupCommitStep::DecisionNamed || member != 0)
            return;
        const auto journal = recmantest::readText(journalPathFor(path));
        const auto end = journal.find(".kbc") + 4;
        const auto start = journal.rfind("GROUP.BTR.", end);
        std::filesystem::create_directory(dir / (journal.substr(start, end - start) + ".tmp"));
    });
    File *both[] = {&files[0], &files[1]};
    EXPECT_EQ(File::endGroups(both), Status::IoError);
    setGroupCommitProbe({});
    for (const File &file : files) {
        EXPECT_NE(file.lastMessage().find("rolled back"), std::string::npos) << file.lastMessage();
        EXPECT_FALSE(file.inGroup());
        EXPECT_EQ(file.info().recordCount, 20u);
    }
    EXPECT_EQ(recmantest::readBytes(path), original);
    EXPECT_EQ(recmantest::readBytes(second), original);
    EXPECT_FALSE(std::filesystem::exists(journalPathFor(path)));
    EXPECT_FALSE(std::filesystem::exists(journalPathFor(second)));
}

} // namespace
