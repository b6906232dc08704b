// A file opened without listing its records (as big files are) reads by key
// straight down its own index pages, and steps slot by slot on its pages.
// Every answer must be the one the list and the index built in memory give:
// the same record for every get and step, the same order both ways, and
// damage noticed on the way and left for the records' own order.
#include "file.h"
#include "keyedanswers.h"
#include "recmantest.h"

#include <gtest/gtest.h>

#include <functional>

using namespace recman;
using recmantest::addressOf;
using recmantest::keyedAnswers;
using recmantest::Unlisted;

namespace {

// Every record stepping forward and back, with its address.
std::vector<std::pair<std::uint32_t, std::vector<std::uint8_t>>> stepAnswers(File &file)
{
    std::vector<std::pair<std::uint32_t, std::vector<std::uint8_t>>> answers;
    for (auto status = file.stepFirst(); status == Status::Success; status = file.stepNext())
        answers.emplace_back(addressOf(file), std::vector<std::uint8_t>(file.record().begin(), file.record().end()));
    for (auto status = file.stepLast(); status == Status::Success; status = file.stepPrevious())
        answers.emplace_back(addressOf(file), std::vector<std::uint8_t>(file.record().begin(), file.record().end()));
    return answers;
}

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
