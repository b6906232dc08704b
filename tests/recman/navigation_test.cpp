// Keyed and physical navigation on real files: order, duplicates, edges and
// the status of each failure.
#include "file.h"
#include "recmantest.h"

#include <gtest/gtest.h>

#include <cstring>

using namespace recman;

namespace {

// VARIABLE.DAT: record i carries u16 i%64 at offset 4 (key 0, duplicates)
// and u16 i at offset 6 (key 1, unique).
std::uint16_t field16(Bytes record, std::size_t offset)
{
    std::uint16_t value = 0;
    std::memcpy(&value, record.data() + offset, 2);
    return value;
}

Bytes bytesOf(const std::uint16_t &value)
{
    return Bytes(reinterpret_cast<const std::uint8_t *>(&value), 2);
}

class VariableFile : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(file.open(recmantest::fixture("VARIABLE.DAT")), Status::Success); }
    std::uint16_t current(std::size_t offset) const { return field16(file.record(), offset); }
    File file;
};

TEST_F(VariableFile, UniqueKeyRunsInValueOrderBothWays)
{
    std::uint16_t expected = 0;
    for (auto s = file.getFirst(1); s == Status::Success; s = file.getNext(1))
        ASSERT_EQ(current(6), expected++);
    EXPECT_EQ(expected, 1024);
    EXPECT_EQ(file.getNext(1), Status::EndOfFile);
    for (auto s = file.getLast(1); s == Status::Success; s = file.getPrevious(1))
        ASSERT_EQ(current(6), --expected);
    EXPECT_EQ(expected, 0);
}

TEST_F(VariableFile, DuplicatesKeepInsertionOrder)
{
    const std::uint16_t five = 5;
    ASSERT_EQ(file.getEqual(0, bytesOf(five)), Status::Success);
    std::vector<std::uint16_t> ids;
    do
        ids.push_back(current(6));
    while (file.getNext(0) == Status::Success && current(4) == 5);
    ASSERT_EQ(ids.size(), 16u);
    for (std::size_t i = 0; i < ids.size(); ++i)
        EXPECT_EQ(ids[i], 5 + 64 * i);
    // Variable tails: record i is 8 + i bytes long.
    EXPECT_EQ(file.record().size(), 8u + current(6));
}

TEST_F(VariableFile, RangeOperationsAroundDuplicates)
{
    const std::uint16_t five = 5, big = 63, beyond = 64;
    ASSERT_EQ(file.getGreater(0, bytesOf(five)), Status::Success);
    EXPECT_EQ(current(6), 6); // first record of the next value
    ASSERT_EQ(file.getGreaterOrEqual(0, bytesOf(five)), Status::Success);
    EXPECT_EQ(current(6), 5); // first duplicate
    ASSERT_EQ(file.getLessOrEqual(0, bytesOf(five)), Status::Success);
    EXPECT_EQ(current(6), 5 + 64 * 15); // last duplicate
    ASSERT_EQ(file.getLess(0, bytesOf(five)), Status::Success);
    EXPECT_EQ(current(6), 4 + 64 * 15);
    EXPECT_EQ(file.getGreater(0, bytesOf(big)), Status::EndOfFile);
    EXPECT_EQ(file.getGreaterOrEqual(0, bytesOf(beyond)), Status::EndOfFile);
    const std::uint16_t zero = 0;
    EXPECT_EQ(file.getLess(0, bytesOf(zero)), Status::EndOfFile);
}

TEST_F(VariableFile, FailuresReturnTheirStatusAndKeepTheCurrentRecord)
{
    const std::uint16_t seven = 7, missing = 5000;
    ASSERT_EQ(file.getEqual(1, bytesOf(seven)), Status::Success);
    EXPECT_EQ(file.getEqual(1, bytesOf(missing)), Status::KeyNotFound);
    EXPECT_EQ(current(6), 7);
    EXPECT_EQ(file.getEqual(2, bytesOf(seven)), Status::InvalidKeyNumber);
    EXPECT_EQ(file.getFirst(-1), Status::InvalidKeyNumber);
    EXPECT_EQ(file.getNext(0), Status::DifferentKeyNumber);
    EXPECT_EQ(file.getEqual(1, Bytes(bytesOf(seven).first(1))), Status::InvalidKeyLength);
    std::uint8_t small[4];
    std::size_t length = 0;
    EXPECT_EQ(file.readRecord(small, length), Status::DataBufferTooShort);
    EXPECT_EQ(length, 15u);
    std::uint32_t address = 0;
    EXPECT_EQ(file.position(address), Status::Success);
    EXPECT_GT(address, 0u);
    // Physical steps continue from a keyed position, and a step ends keyed currency.
    ASSERT_EQ(file.stepNext(), Status::Success);
    EXPECT_EQ(current(6), 8);
    EXPECT_EQ(file.getNext(1), Status::InvalidPositioning);
    ASSERT_EQ(file.stepFirst(), Status::Success);
    EXPECT_EQ(file.stepPrevious(), Status::EndOfFile);
    ASSERT_EQ(file.stepLast(), Status::Success);
    EXPECT_EQ(file.stepNext(), Status::EndOfFile);
}

TEST(Navigation, ClosedAndMissingFiles)
{
    File file;
    EXPECT_EQ(file.getFirst(0), Status::FileNotOpen);
    EXPECT_EQ(file.stepFirst(), Status::FileNotOpen);
    EXPECT_EQ(file.update({}), Status::FileNotOpen);
    EXPECT_TRUE(file.record().empty());
    EXPECT_EQ(file.open(recmantest::fixture("NOSUCH.DAT")), Status::FileNotFound);
    EXPECT_EQ(file.open(""), Status::InvalidFileName);
    EXPECT_EQ(file.open(recmantest::fixture("")), Status::InvalidFileName) << "a folder is no data file";
}

TEST(Navigation, EmptyFileAndAlternateCollatingSequences)
{
    File file;
    ASSERT_EQ(file.open(recmantest::fixture("MULTIACS.DAT")), Status::Success) << file.lastMessage();
    EXPECT_EQ(file.getFirst(0), Status::EndOfFile);
    EXPECT_EQ(file.stepFirst(), Status::EndOfFile);
    // Key 0 uses the table named ALLCAPS, key 2 the one named LOWER.
    ASSERT_TRUE(file.info().keys[0].segments[0].acs);
    EXPECT_EQ(file.info().keys[0].segments[0].acs->name, "ALLCAPS");
    EXPECT_EQ(file.info().keys[2].segments[0].acs->name, "LOWER");
    EXPECT_EQ(file.info().keys[0].segments[0].acs->table['a'], 'A');

    ASSERT_EQ(file.open(recmantest::fixture("GALTELA.DAT")), Status::Success);
    // Key 1 is case-folded through GALCAPS: each next key is >= the previous one folded.
    const auto &acs = *file.info().keys[1].segments[0].acs;
    std::string previous;
    for (auto s = file.getFirst(1); s == Status::Success; s = file.getNext(1)) {
        std::string folded;
        for (std::size_t i = 0; i < 16 && file.record()[i] != 0; ++i)
            folded.push_back(static_cast<char>(acs.table[file.record()[i]]));
        EXPECT_LE(previous, folded);
        previous = folded;
    }
}

} // namespace
