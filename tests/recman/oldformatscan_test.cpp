// Which slots of a 5.x file hold live records: every record the pages hold is
// read, the control record's count is a check that is reported, never trusted
// to stop the scan and never corrected.
#include "file.h"
#include "oldformatfile.h"
#include "recmantest.h"

#include <gtest/gtest.h>

using recman::File;
using recman::Status;
using recmantest::OldFile;
using recmantest::oldRecord;

namespace {

std::vector<std::uint32_t> idsInStepOrder(File &file)
{
    std::vector<std::uint32_t> ids;
    for (auto status = file.stepFirst(); status == Status::Success; status = file.stepNext())
        ids.push_back(recman::bytes::u32(file.record(), 0));
    return ids;
}

std::vector<std::uint32_t> idsInKeyOrder(File &file)
{
    std::vector<std::uint32_t> ids;
    for (auto status = file.getFirst(0); status == Status::Success; status = file.getNext(0))
        ids.push_back(recman::bytes::u32(file.record(), 0));
    return ids;
}

// Each case runs with the records listed at open and, as for a big file,
// with steps walking the pages and keyed reads going down the index pages.
class OldFormatScan : public ::testing::TestWithParam<bool> {};

struct Opened {
    recmantest::TempDir dir;
    std::filesystem::path path;
    File file;
    explicit Opened(const OldFile &shape)
    {
        path = dir / "LIVE.DAT";
        recmantest::writeBytes(path, shape.bytes());
        const auto saved = recman::listAtOpenLimit();
        if (!OldFormatScan::GetParam())
            recman::setListAtOpenLimit(0);
        EXPECT_EQ(file.open(path), Status::Success) << file.lastMessage();
        recman::setListAtOpenLimit(saved);
    }
};

TEST_P(OldFormatScan, PagesWithABareUsageWordHoldLiveRecords)
{
    OldFile shape;
    shape.headerCount = 4;
    shape.pages.push_back({0x8003, {oldRecord(1, 'a'), oldRecord(2, 'b')}});
    shape.pages.push_back({0x8000, {oldRecord(3, 'c'), oldRecord(4, 'd')}});
    Opened opened(shape);
    // Checked before any keyed read: these files keep no index pages, which
    // keyed reads then warn about.
    EXPECT_TRUE(opened.file.info().warnings.empty());
    EXPECT_EQ(idsInStepOrder(opened.file), (std::vector<std::uint32_t>{1, 2, 3, 4}));
    EXPECT_EQ(idsInKeyOrder(opened.file), (std::vector<std::uint32_t>{1, 2, 3, 4}));
    ASSERT_EQ(opened.file.countRecords(), Status::Success);
    EXPECT_FALSE(opened.file.info().countMismatch());
}

TEST_P(OldFormatScan, ZeroTailedRecordsAreLiveUnlessTheFreeChainNamesThem)
{
    OldFile shape;
    shape.headerCount = 3;
    // Slot 1 and slot 3 look alike (a word that reads as a slot address, then
    // zeros); only slot 3 is on the chain. Slot 4 was never written.
    constexpr std::uint32_t zeroTailed = 0x200000; // as a free-chain word: byte 32 of page 0
    shape.freeHead = shape.address(1, 3);
    shape.pages.push_back({0x8005,
                           {oldRecord(10, 'x'), oldRecord(zeroTailed, 0), oldRecord(12, 'y'),
                            recmantest::freedSlot(0xFFFFFFFFu), std::nullopt}});
    Opened opened(shape);
    EXPECT_TRUE(opened.file.info().warnings.empty());
    EXPECT_EQ(idsInStepOrder(opened.file), (std::vector<std::uint32_t>{10, zeroTailed, 12}));
    std::vector<std::uint8_t> key(4, 0);
    recman::bytes::put32(key, 0, zeroTailed);
    ASSERT_EQ(opened.file.getEqual(0, key), Status::Success);
    std::uint32_t address = 0;
    ASSERT_EQ(opened.file.position(address), Status::Success);
    EXPECT_EQ(address, shape.address(1, 1));
}

TEST_P(OldFormatScan, ABrokenFreeChainFallsBackToTheSlotShape)
{
    OldFile shape;
    shape.headerCount = 1;
    shape.freeHead = 7; // inside the control record: impossible
    shape.pages.push_back({0x8002, {oldRecord(1, 'a'), recmantest::freedSlot(0xFFFFFFFFu)}});
    Opened opened(shape);
    EXPECT_EQ(idsInStepOrder(opened.file), (std::vector<std::uint32_t>{1}));
    ASSERT_FALSE(opened.file.info().warnings.empty());
    EXPECT_NE(opened.file.info().warnings.front().find("free-slot chain"), std::string::npos);
}

TEST_P(OldFormatScan, AHeaderCountThatDisagreesIsReportedAndLeftAlone)
{
    for (const std::uint32_t headerCount : {1u, 5u}) {
        SCOPED_TRACE(headerCount);
        OldFile shape;
        shape.headerCount = headerCount;
        shape.pages.push_back({0x8002, {oldRecord(1, 'a'), oldRecord(2, 'b')}});
        shape.pages.push_back({0x8001, {oldRecord(3, 'c')}});
        Opened opened(shape);
        const auto &info = opened.file.info();
        EXPECT_EQ(idsInStepOrder(opened.file), (std::vector<std::uint32_t>{1, 2, 3}));
        // Counted at open when listed there, else when asked.
        EXPECT_EQ(info.recordsCounted, GetParam());
        ASSERT_EQ(opened.file.countRecords(), Status::Success);
        EXPECT_EQ(info.recordCount, 3u);
        EXPECT_EQ(info.headerRecordCount, headerCount);
        EXPECT_TRUE(info.countMismatch());
        ASSERT_EQ(info.warnings.size(), 1u);
        EXPECT_NE(info.warnings[0].find("counts " + std::to_string(headerCount) + " records"), std::string::npos);
        opened.file.close();
        EXPECT_EQ(recmantest::readBytes(opened.path), shape.bytes());
    }
}

TEST_P(OldFormatScan, NeverWrittenSlotsAndPagesAreNotRecords)
{
    OldFile shape;
    shape.headerCount = 1;
    shape.pages.push_back({0x8001, {oldRecord(1, 'a'), std::nullopt, std::nullopt}});
    shape.pages.push_back({0x8000, {}}); // allocated ahead, never used
    Opened opened(shape);
    EXPECT_EQ(idsInStepOrder(opened.file), (std::vector<std::uint32_t>{1}));
    ASSERT_EQ(opened.file.countRecords(), Status::Success);
    EXPECT_FALSE(opened.file.info().countMismatch());
}

INSTANTIATE_TEST_SUITE_P(ListedAndNot, OldFormatScan, ::testing::Bool(),
                         [](const auto &info) { return info.param ? "Listed" : "Unlisted"; });

} // namespace
