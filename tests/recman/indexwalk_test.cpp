// Walking a real file's own index pages must give exactly the records, in the
// same order, that sorting a full scan gives; a damaged index must be refused.
#include "file.h"
#include "indexwalk.h"
#include "openfile.h"
#include "recmantest.h"

#include <gtest/gtest.h>

using namespace recman;

namespace {

class IndexWalkTest : public ::testing::TestWithParam<std::string> {};

TEST_P(IndexWalkTest, EveryKeyWalksInScanOrder)
{
    auto file = recmantest::openInternals(recmantest::fixture(GetParam() + ".DAT"));
    ASSERT_TRUE(file);
    for (std::size_t key = 0; key < file->info.keys.size(); ++key)
        recmantest::expectIndexPagesMatchSort(*file, key);
}

INSTANTIATE_TEST_SUITE_P(RealFiles, IndexWalkTest, ::testing::Values("MBBSEMU", "VARIABLE", "GALTELA", "MULTIACS"));

// VARIABLE.DAT key 1 is a tree of several levels on 512-byte pages. Each kind
// of damage must be refused with its reason, never walked into a wrong order.
TEST(IndexWalkDamage, RefusesLoopsStrayPagesDisorderAndLostValues)
{
    recmantest::TempDir dir;
    const auto path = recmantest::writableFixture(dir, "VARIABLE.DAT");
    const auto original = recmantest::readBytes(path);
    std::uint32_t root = 0;
    std::size_t entryLength = 0, keyLength = 0;
    {
        auto file = recmantest::openInternals(path);
        ASSERT_TRUE(file);
        root = file->info.keys[1].indexRoot;
        ASSERT_NE(root, 0u);
        entryLength = file->info.keys[1].indexEntryLength;
        keyLength = file->info.keys[1].length();
    }
    const std::size_t at = std::size_t{root} * 512;
    ASSERT_NE(recman::bytes::u32(original, at + 12), 0xFFFFFFFFu) << "root of key 1 should not be a leaf";
    const auto problemAfter = [&](auto damage) {
        auto bytes = original;
        damage(recman::MutableBytes(bytes));
        recmantest::writeBytes(path, bytes);
        auto file = recmantest::openInternals(path);
        std::string problem;
        EXPECT_FALSE(walkKeyIndex(*file->pages, file->header, file->info.keys[1], problem));
        return problem;
    };
    EXPECT_NE(problemAfter([&](auto page) { bytes::putWs32(page, at + 12, root); }).find("reached twice"),
              std::string::npos);
    EXPECT_NE(problemAfter([&](auto page) { bytes::putWs32(page, at + 8, 0x7FFF); }).find("outside the file"),
              std::string::npos);
    // Two entries of the root swap their key values: out of order.
    EXPECT_NE(problemAfter([&](auto page) {
                  ASSERT_GE(bytes::u16(page, at + 6), 2);
                  for (std::size_t i = 0; i < keyLength; ++i)
                      std::swap(page[at + 16 + i], page[at + 16 + entryLength + i]);
              }).find("out of order"),
              std::string::npos);
    // The root forgets its last entry (and the subtree before it): values lost.
    EXPECT_NE(problemAfter([&](auto page) {
                  bytes::put16(page, at + 6, static_cast<std::uint16_t>(bytes::u16(page, at + 6) - 1));
              }).find("its definition says"),
              std::string::npos);
}

std::vector<std::vector<std::uint8_t>> keyedRecords(File &file, int key)
{
    std::vector<std::vector<std::uint8_t>> records;
    for (auto status = file.getFirst(key); status == Status::Success; status = file.getNext(key))
        records.emplace_back(file.record().begin(), file.record().end());
    return records;
}

// Keyed reads go through the index pages; damaged ones are left for the
// records' own order, with a warning, and the answers stay the same.
TEST(IndexWalkDamage, KeyedReadsFallBackToTheRecordsWithAWarning)
{
    File good;
    ASSERT_EQ(good.open(recmantest::fixture("VARIABLE.DAT")), Status::Success);
    const auto expected = keyedRecords(good, 1);
    ASSERT_EQ(expected.size(), 1024u);
    EXPECT_TRUE(good.info().warnings.empty());

    recmantest::TempDir dir;
    const auto path = recmantest::writableFixture(dir, "VARIABLE.DAT");
    auto bytes = recmantest::readBytes(path);
    const std::size_t root = good.info().keys[1].indexRoot * std::size_t{512};
    recman::bytes::putWs32(bytes, root + 12, good.info().keys[1].indexRoot);
    recmantest::writeBytes(path, bytes);
    File damaged;
    ASSERT_EQ(damaged.open(path), Status::Success);
    EXPECT_EQ(keyedRecords(damaged, 1), expected);
    ASSERT_EQ(damaged.info().warnings.size(), 1u);
    EXPECT_NE(damaged.info().warnings[0].find("index pages of key 1 not used"), std::string::npos);
}

} // namespace
