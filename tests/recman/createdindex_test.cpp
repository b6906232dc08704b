// Files created with their index pages, in both formats: the walk of every
// key's B-tree must give the order sorting the records gives, keyed reads must
// find every record, and the files must behave as the record manager's own.
#include "creator.h"
#include "file.h"
#include "indexwalk.h"
#include "keyedanswers.h"
#include "recmantest.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstring>

using namespace recman;

namespace {

constexpr std::int32_t recordCount = 3000;
constexpr std::uint32_t recordLength = 24;

KeySegment segment(std::uint16_t flags, DataType type, std::uint32_t offset, std::uint32_t length)
{
    return {
        0, 0, static_cast<std::uint16_t>(flags | keyflag::Extended), static_cast<std::uint8_t>(type), offset, length,
        0, {}};
}

std::shared_ptr<const CollatingSequence> upperCase()
{
    auto acs = std::make_shared<CollatingSequence>();
    acs->name = "UPPER";
    for (int c = 0; c < 256; ++c)
        acs->table[c] = static_cast<std::uint8_t>(std::toupper(c));
    return acs;
}

// Record i: id (int32, unique, scrambled), group (8 chars, ~31 records each,
// mixed case), amount (int32, ~3 records each, 0 = null on every tenth).
//   key 0: id                          unique
//   key 1: group, case-insensitive     linked duplicates
//   key 2: group by a collating        unique, two typed segments
//          sequence + id descending
//   key 3: amount, null when 0         linked duplicates, nulls left out
FileSpec spec(Format format, std::uint32_t pageSize)
{
    FileSpec spec;
    spec.format = format;
    spec.indexPages = true;
    spec.pageSize = pageSize;
    spec.recordLength = recordLength;
    spec.keys.resize(4);
    spec.keys[0].segments = {segment(0, DataType::Integer, 0, 4)};
    spec.keys[1].segments = {segment(keyflag::Duplicates | keyflag::CaseInsensitive, DataType::String, 4, 8)};
    spec.keys[2].segments = {segment(keyflag::Acs, DataType::String, 4, 8),
                             segment(keyflag::Descending, DataType::Integer, 0, 4)};
    spec.keys[2].segments[0].acs = upperCase();
    spec.keys[3].segments = {segment(keyflag::Duplicates | keyflag::NullAll, DataType::Integer, 12, 4)};
    for (int k = 0; k < 4; ++k)
        spec.keys[k].number = k;
    return spec;
}

std::vector<std::uint8_t> makeRecord(std::int32_t i)
{
    std::vector<std::uint8_t> record(recordLength, '.');
    const std::int32_t id = (i * 7919) % recordCount - recordCount / 2;
    std::memcpy(record.data(), &id, 4);
    char group[9];
    std::snprintf(group, sizeof group, "%c-%06d", i % 2 ? 'g' : 'G', i * 37 % 97);
    std::memcpy(record.data() + 4, group, 8);
    const std::int32_t amount = i % 10 == 0 ? 0 : i * 31 % 1000 + 1;
    std::memcpy(record.data() + 12, &amount, 4);
    return record;
}

std::vector<std::vector<std::uint8_t>> makeRecords(std::int32_t count)
{
    std::vector<std::vector<std::uint8_t>> records;
    for (std::int32_t i = 0; i < count; ++i)
        records.push_back(makeRecord(i));
    return records;
}

// Depth of the subtree under `number`; every page below the root must be at
// least half full and every leaf at the same depth, as in a B-tree the record
// manager keeps.
int checkedDepth(const OpenFile &file, std::size_t key, std::uint32_t number, bool root = true)
{
    const bool v5 = file.header.format == Format::V5;
    const auto held = file.pages->page(number, static_cast<std::uint8_t>(v5 ? 0 : 0x80 + key));
    const std::vector<std::uint8_t> page(held->begin(), held->end());
    const auto pointer = [&](std::size_t at) { return v5 ? bytes::ws32(page, at) : bytes::pp24(page, at); };
    const std::size_t entryLength = file.info.keys[key].indexEntryLength;
    const std::uint16_t count = bytes::u16(page, 6);
    if (!root)
        EXPECT_GE(count, (page.size() - 16) / entryLength / 2) << "index page " << number;
    if (bytes::u32(page, 12) == 0xFFFFFFFF)
        return 1;
    const int depth = checkedDepth(file, key, pointer(12), false);
    for (std::size_t i = 0; i < count; ++i) {
        const auto child = i + 1 < count ? pointer(16 + (i + 1) * entryLength - 4) : pointer(8);
        EXPECT_EQ(checkedDepth(file, key, child, false), depth) << "below index page " << number;
    }
    return depth + 1;
}

// Every linked-duplicate chain runs both ways: each record's previous and
// next pointers name its neighbours in the walk, all ones at the ends.
void expectChainsLinkBothWays(const OpenFile &file, std::size_t key)
{
    const auto &definition = file.info.keys[key];
    std::string problem;
    const auto walked = walkKeyIndex(*file.pages, file.header, definition, problem);
    ASSERT_TRUE(walked) << problem;
    const auto &addresses = walked->addresses;
    const auto pageSize = file.header.pageSize;
    const auto dataTag = static_cast<std::uint8_t>(file.header.format == Format::V6 ? 'D' : 0);
    for (std::size_t run = 0; run < walked->runStarts.size(); ++run) {
        const std::size_t first = walked->runStarts[run];
        const std::size_t end = run + 1 < walked->runStarts.size() ? walked->runStarts[run + 1] : addresses.size();
        for (std::size_t i = first; i < end; ++i) {
            const auto page = file.pages->page(addresses[i] / pageSize, dataTag);
            const std::size_t pair = addresses[i] % pageSize + definition.duplicatePointerOffset;
            EXPECT_EQ(bytes::ws32(*page, pair), i == first ? 0xFFFFFFFF : addresses[i - 1]) << addresses[i];
            EXPECT_EQ(bytes::ws32(*page, pair + 4), i + 1 == end ? 0xFFFFFFFF : addresses[i + 1]) << addresses[i];
        }
    }
}

struct Shape {
    Format format;
    std::uint32_t pageSize;
};

std::string nameOf(const Shape &shape)
{
    return std::string(shape.format == Format::V5 ? "V5" : "V6") + "Page" + std::to_string(shape.pageSize);
}

class CreatedIndexes : public ::testing::TestWithParam<Shape> {
protected:
    void SetUp() override
    {
        std::string message;
        ASSERT_EQ(createFile(path, spec(GetParam().format, GetParam().pageSize), makeRecords(recordCount), message),
                  Status::Success)
            << message;
    }
    recmantest::TempDir dir;
    std::filesystem::path path = dir / "INDEXED.BTR";
};

TEST_P(CreatedIndexes, EveryKeyWalksInSortedOrder)
{
    auto file = recmantest::openInternals(path);
    ASSERT_TRUE(file);
    EXPECT_EQ(file->header.format, GetParam().format);
    EXPECT_FALSE(file->header.createdByEngine);
    for (std::size_t key = 0; key < 4; ++key)
        recmantest::expectIndexPagesMatchSort(*file, key);
    EXPECT_EQ(file->info.keys[1].uniqueValues, 97u);
    expectChainsLinkBothWays(*file, 1);
    expectChainsLinkBothWays(*file, 3);
    for (std::size_t key = 0; key < 4; ++key) {
        const int depth = checkedDepth(*file, key, file->info.keys[key].indexRoot);
        if (key == 2 && GetParam().pageSize < 4096)
            EXPECT_GE(depth, 3);
    }
}

TEST_P(CreatedIndexes, KeyedReadsFindEveryRecordAndInsertsAreRefused)
{
    File file;
    ASSERT_EQ(file.open(path, OpenMode::ReadWrite), Status::Success) << file.lastMessage();
    const auto records = makeRecords(recordCount);
    std::vector<std::vector<std::uint8_t>> read;
    for (auto status = file.getFirst(0); status == Status::Success; status = file.getNext(0))
        read.emplace_back(file.record().begin(), file.record().end());
    EXPECT_EQ(read.size(), records.size());
    EXPECT_TRUE(std::is_permutation(read.begin(), read.end(), records.begin()));
    for (std::int32_t i : {0, 1, 1234, recordCount - 1}) {
        ASSERT_EQ(file.getEqual(0, Bytes(records[i]).first(4)), Status::Success);
        EXPECT_EQ(std::vector<std::uint8_t>(file.record().begin(), file.record().end()), records[i]);
    }
    std::size_t amounts = 0;
    for (auto status = file.getFirst(3); status == Status::Success; status = file.getNext(3))
        ++amounts;
    EXPECT_EQ(amounts, recordCount - recordCount / 10);
    // The reads went through the index pages: none was refused for the sort.
    EXPECT_TRUE(file.info().warnings.empty()) << file.info().warnings.front();
    EXPECT_EQ(file.insert(makeRecord(recordCount)), Status::AccessDenied);
}

// Trees of three levels and more, typed, descending and collated segments,
// chains and null keys: reads straight down the pages (as in a big file)
// answer as the index built in memory does.
TEST_P(CreatedIndexes, ReadsDownThePagesAnswerAsTheIndexInMemory)
{
    File listed;
    ASSERT_EQ(listed.open(path), Status::Success);
    const auto copy = dir / "COPY.BTR";
    std::filesystem::copy_file(path, copy);
    const recmantest::Unlisted unlisted;
    File descending;
    ASSERT_EQ(descending.open(copy), Status::Success);
    for (int key = 0; key < 4; ++key) {
        SCOPED_TRACE("key " + std::to_string(key));
        EXPECT_EQ(recmantest::keyedAnswers(descending, key, 29), recmantest::keyedAnswers(listed, key, 29));
    }
    EXPECT_EQ(recmantest::stepAnswers(descending), recmantest::stepAnswers(listed));
    EXPECT_FALSE(descending.info().recordsCounted);
    EXPECT_TRUE(descending.info().warnings.empty());
}

INSTANTIATE_TEST_SUITE_P(FormatsAndPages, CreatedIndexes,
                         ::testing::Values(Shape{Format::V5, 512}, Shape{Format::V5, 4096}, Shape{Format::V6, 1024},
                                           Shape{Format::V6, 4096}),
                         [](const auto &info) { return nameOf(info.param); });

// Trees of no entry and of one page: the walk must still accept them.
TEST(CreatedIndexEdges, EmptyAndSingleRecordFiles)
{
    recmantest::TempDir dir;
    for (const auto format : {Format::V5, Format::V6})
        for (const std::int32_t count : {0, 1}) {
            const auto path = dir / ("EDGE" + std::to_string(count) + (format == Format::V5 ? "5" : "6"));
            std::string message;
            ASSERT_EQ(createFile(path, spec(format, 1024), makeRecords(count), message), Status::Success) << message;
            auto file = recmantest::openInternals(path);
            ASSERT_TRUE(file);
            for (std::size_t key = 0; key < 4; ++key)
                recmantest::expectIndexPagesMatchSort(*file, key);
        }
}

TEST(CreatedIndexEdges, RefusesWhatItCannotWriteWithAReason)
{
    recmantest::TempDir dir;
    const auto refusal = [&](const FileSpec &wanted) {
        std::string message;
        EXPECT_NE(createFile(dir / "REFUSED.BTR", wanted, makeRecords(10), message), Status::Success);
        EXPECT_FALSE(std::filesystem::exists(dir / "REFUSED.BTR"));
        return message;
    };
    auto noIndex = spec(Format::V5, 1024);
    noIndex.indexPages = false;
    EXPECT_NE(refusal(noIndex).find("index pages"), std::string::npos);
    EXPECT_NE(refusal(spec(Format::V6, 512)).find("page size"), std::string::npos);
    auto twoTables = spec(Format::V5, 1024); // key 2 already uses one
    twoTables.keys[1].segments[0].flags |= keyflag::Acs;
    twoTables.keys[1].segments[0].acs = upperCase();
    EXPECT_NE(refusal(twoTables).find("one collating sequence"), std::string::npos);
    auto longKey = spec(Format::V5, 512);
    longKey.recordLength = 400;
    longKey.keys[0].segments[0] = segment(0, DataType::String, 0, 250);
    EXPECT_NE(refusal(longKey).find("key 0 is too long"), std::string::npos);
}

} // namespace
