// A file opened without listing its records (as big files are) reads by key
// straight down its own index pages, and steps slot by slot on its pages.
// Every answer must be the one the list and the index built in memory give:
// the same record for every get and step, the same order both ways, and
// damage noticed on the way and left for the records' own order.
#include "file.h"
#include "keyedanswers.h"
#include "openfile.h"
#include "recmantest.h"

#include <gtest/gtest.h>

#include <functional>

using namespace recman;
using recmantest::addressOf;
using recmantest::keyedAnswers;
using recmantest::stepAnswers;
using recmantest::Unlisted;

namespace {

class IndexDescentTest : public ::testing::TestWithParam<std::string> {};

TEST_P(IndexDescentTest, EveryKeyedAnswerIsTheIndexInMemorysAnswer)
{
    File listed;
    ASSERT_EQ(listed.open(recmantest::fixture(GetParam() + ".DAT")), Status::Success);
    ASSERT_TRUE(listed.info().recordsCounted);
    recmantest::TempDir dir;
    const Unlisted unlisted;
    File descending;
    ASSERT_EQ(descending.open(recmantest::writableFixture(dir, GetParam() + ".DAT")), Status::Success);
    for (int key = 0; key < static_cast<int>(listed.keyCount()); ++key) {
        SCOPED_TRACE("key " + std::to_string(key));
        EXPECT_EQ(keyedAnswers(descending, key), keyedAnswers(listed, key));
    }
    // Steps walk the pages in the list's order, also on from a record read by key.
    EXPECT_EQ(stepAnswers(descending), stepAnswers(listed));
    if (listed.info().recordCount >= 2) {
        ASSERT_EQ(descending.getLast(0), Status::Success);
        ASSERT_EQ(listed.getLast(0), Status::Success);
        ASSERT_EQ(descending.stepPrevious(), Status::Success);
        ASSERT_EQ(listed.stepPrevious(), Status::Success);
        EXPECT_EQ(addressOf(descending), addressOf(listed));
    }
    // Nothing was listed or built in memory, and nothing was found wrong.
    EXPECT_FALSE(descending.info().recordsCounted);
    EXPECT_TRUE(descending.info().warnings.empty());
    ASSERT_EQ(descending.countRecords(), Status::Success);
    EXPECT_TRUE(descending.info().recordsCounted);
    EXPECT_EQ(descending.info().recordCount, listed.info().recordCount);
}

INSTANTIATE_TEST_SUITE_P(RealFiles, IndexDescentTest,
                         ::testing::Values("MBBSEMU", "VARIABLE", "GALTELA", "MULTIACS"));

std::vector<std::vector<std::uint8_t>> keyedRecords(File &file, int key, int direction)
{
    std::vector<std::vector<std::uint8_t>> records;
    for (auto status = direction > 0 ? file.getFirst(key) : file.getLast(key); status == Status::Success;
         status = direction > 0 ? file.getNext(key) : file.getPrevious(key))
        records.emplace_back(file.record().begin(), file.record().end());
    return records;
}

// VARIABLE.DAT key 1 is a tree of several levels on 512-byte pages. Damage on
// a search's path is noticed there: the key's order is then built from the
// records, with a warning, and a scan by key goes on without a gap.
TEST(IndexDescentDamage, DamageOnThePathFallsBackToTheRecords)
{
    File good;
    ASSERT_EQ(good.open(recmantest::fixture("VARIABLE.DAT")), Status::Success);
    const auto forward = keyedRecords(good, 1, +1), backward = keyedRecords(good, 1, -1);
    ASSERT_EQ(forward.size(), 1024u);
    const std::size_t root = good.info().keys[1].indexRoot * std::size_t{512};
    const std::size_t entry = good.info().keys[1].indexEntryLength, keyLength = good.info().keys[1].length();
    const auto original = recmantest::readBytes(recmantest::fixture("VARIABLE.DAT"));

    const std::function<void(MutableBytes)> damages[] = {
        [&](MutableBytes page) { bytes::putWs32(page, root + 12, good.info().keys[1].indexRoot); }, // a loop
        [&](MutableBytes page) { bytes::putWs32(page, root + 8, 0x7FFF); },                       // outside the file
        [&](MutableBytes page) {                                                                 // swapped values
            for (std::size_t i = 0; i < keyLength; ++i)
                std::swap(page[root + 16 + i], page[root + 16 + entry + i]);
        },
        [&](MutableBytes page) { bytes::putWs32(page, root + 16 + keyLength, 0x200); }, // a record of another value
    };
    const Unlisted unlisted;
    for (std::size_t d = 0; d < std::size(damages); ++d) {
        SCOPED_TRACE("damage " + std::to_string(d));
        recmantest::TempDir dir;
        const auto path = dir / "VARIABLE.DAT";
        auto bytes = original;
        damages[d](MutableBytes(bytes));
        recmantest::writeBytes(path, bytes);
        for (int direction : {+1, -1}) {
            File damaged;
            ASSERT_EQ(damaged.open(path), Status::Success);
            EXPECT_EQ(keyedRecords(damaged, 1, direction), direction > 0 ? forward : backward);
            ASSERT_EQ(damaged.info().warnings.size(), 1u);
            EXPECT_NE(damaged.info().warnings[0].find("index pages of key 1 not used"), std::string::npos);
        }
    }
}

// Another program's change to a record is seen by the next keyed read, which
// reads the pages on its path afresh.
TEST(IndexDescent, AnotherProgramsChangeIsSeenByTheNextRead)
{
    recmantest::TempDir dir;
    // A 5.x file, whose record addresses are file offsets.
    const auto path = recmantest::writableFixture(dir, "MBBSEMU.DAT");
    const Unlisted unlisted;
    File file;
    ASSERT_EQ(file.open(path), Status::Success);
    ASSERT_EQ(file.getFirst(0), Status::Success);
    const auto key = file.keyValueOf(0, file.record());
    const std::vector<std::uint8_t> before(file.record().begin(), file.record().end());
    const auto address = addressOf(file);
    // The last byte of the record is no part of key 0.
    ASSERT_LT(file.info().keys[0].segments.back().offset + file.info().keys[0].segments.back().length,
              before.size());
    {
        auto bytes = recmantest::readBytes(path);
        const auto at = std::size_t{address} + before.size() - 1;
        bytes[at] ^= 0xFF;
        recmantest::writeBytes(path, bytes);
    }
    ASSERT_EQ(file.getEqual(0, key), Status::Success);
    ASSERT_EQ(file.record().size(), before.size());
    EXPECT_EQ(file.record().back(), static_cast<std::uint8_t>(before.back() ^ 0xFF));
}

} // namespace

namespace {

// A page of a key's tree must hold keys between its parent's entries around
// it. VARIABLE.DAT key 1 (a unique 16-bit integer): the root's leftmost child
// gets a last entry above the root's first, still in order within its page.
// A get-equal of the child's first value passes that page and notices.
TEST(IndexDescentDamage, APageOutsideItsParentsRangeIsNoticed)
{
    recmantest::TempDir dir;
    const auto path = recmantest::writableFixture(dir, "VARIABLE.DAT");
    auto bytes = recmantest::readBytes(path);
    std::size_t root = 0, entry = 0;
    {
        File file;
        ASSERT_EQ(file.open(path), Status::Success);
        root = file.info().keys[1].indexRoot * std::size_t{512};
        entry = file.info().keys[1].indexEntryLength;
    }
    const std::size_t child = bytes::ws32(bytes, root + 12) * std::size_t{512};
    const std::size_t last = child + 16 + (bytes::u16(bytes, child + 6) - 1u) * entry;
    const auto firstOfChild = std::vector<std::uint8_t>(bytes.begin() + static_cast<std::ptrdiff_t>(child + 16),
                                                        bytes.begin() + static_cast<std::ptrdiff_t>(child + 18));
    const auto above = static_cast<std::int16_t>(bytes::u16(bytes, root + 16) + 1);
    bytes::put16(MutableBytes(bytes), last, static_cast<std::uint16_t>(above));
    recmantest::writeBytes(path, bytes);

    const Unlisted unlisted;
    File file;
    ASSERT_EQ(file.open(path), Status::Success);
    ASSERT_EQ(file.getEqual(1, firstOfChild), Status::Success);
    EXPECT_EQ(file.keyValueOf(1, file.record()), firstOfChild);
    ASSERT_EQ(file.info().warnings.size(), 1u);
    EXPECT_NE(file.info().warnings[0].find("out of order"), std::string::npos);
}

// Reads go on from where a File stands when the file is read anew, when
// another File of ours builds the key's index in memory, and when another
// program took the current record out of its duplicate chain.
TEST(IndexDescent, PositionsSurviveReloadsSharedIndexesAndChangedRecords)
{
    recmantest::TempDir dir;
    // MBBSEMU.DAT: a 5.x file (addresses are file offsets), four records
    // whose key 0 is one linked-duplicate chain ("Sysop").
    const auto path = recmantest::writableFixture(dir, "MBBSEMU.DAT");
    std::vector<std::uint32_t> chain;
    {
        File file;
        ASSERT_EQ(file.open(path), Status::Success);
        for (auto s = file.getFirst(0); s == Status::Success; s = file.getNext(0))
            chain.push_back(addressOf(file));
        ASSERT_EQ(chain.size(), 4u);
        // Listed at open, two steps in; then read anew as a file opened without a list.
        ASSERT_EQ(file.stepFirst(), Status::Success);
        ASSERT_EQ(file.stepNext(), Status::Success);
        const auto second = addressOf(file);
        const Unlisted unlisted;
        auto bytes = recmantest::readBytes(path);
        bytes[second + 1] ^= 0x01;            // in no key
        bytes.resize(bytes.size() + 512, 0); // a new page, never used: the file is read anew
        recmantest::writeBytes(path, bytes);
        // (A step back, not on: a run of steps on may not look at the file yet.)
        ASSERT_EQ(file.stepPrevious(), Status::Success);
        EXPECT_LT(addressOf(file), second);
        EXPECT_FALSE(file.info().recordsCounted);
    }
    const Unlisted unlisted;
    File reader, other;
    ASSERT_EQ(reader.open(path), Status::Success);
    ASSERT_EQ(other.open(path), Status::Success);
    ASSERT_EQ(reader.getFirst(0), Status::Success);
    ASSERT_EQ(reader.getNext(0), Status::Success);
    EXPECT_EQ(addressOf(reader), chain[1]);
    // Another program takes the second record out of the chain: its key
    // changes, it is unlinked (its neighbours now point at each other, its
    // own pointers at nothing). The next record is still the chain's third.
    auto bytes = recmantest::readBytes(path);
    const auto pointers = reader.info().keys[0].duplicatePointerOffset;
    bytes[chain[1] + 2] = 'X';
    bytes::putWs32(MutableBytes(bytes), chain[0] + pointers + 4, chain[2]);
    bytes::putWs32(MutableBytes(bytes), chain[2] + pointers, chain[0]);
    bytes::putWs32(MutableBytes(bytes), chain[1] + pointers, 0xFFFFFFFF);
    bytes::putWs32(MutableBytes(bytes), chain[1] + pointers + 4, 0xFFFFFFFF);
    recmantest::writeBytes(path, bytes);
    ASSERT_EQ(reader.getNext(0), Status::Success);
    EXPECT_EQ(addressOf(reader), chain[2]);
    EXPECT_TRUE(reader.info().warnings.empty()) << reader.info().warnings.front();
    // The other File finds damage on key 3 and builds its index in memory;
    // the reader goes on along key 3 from the record it stands on.
    ASSERT_EQ(reader.getFirst(3), Status::Success);
    const auto firstOn3 = addressOf(reader);
    {
        auto damaged = recmantest::readBytes(path);
        const auto root = reader.info().keys[3].indexRoot * std::size_t{512};
        bytes::put16(MutableBytes(damaged), root + 6, 0); // an empty root: the key counts values
        recmantest::writeBytes(path, damaged);
    }
    ASSERT_EQ(other.getLast(3), Status::Success);
    ASSERT_FALSE(other.info().warnings.empty());
    ASSERT_EQ(reader.getNext(3), Status::Success);
    EXPECT_NE(addressOf(reader), firstOn3);
}

// A run of steps looks at the file after 64 steps or 20 ms, whichever first.
TEST(StepRun, LooksAfter64StepsOr20Milliseconds)
{
    using namespace std::chrono_literals;
    StepRun run;
    run.checked(1s);
    run.stepsSinceCheck = 63;
    EXPECT_FALSE(run.checkDue(1s + 19ms));
    EXPECT_TRUE(run.checkDue(1s + 20ms));
    run.stepsSinceCheck = 64;
    EXPECT_TRUE(run.checkDue(1s));
}

} // namespace
