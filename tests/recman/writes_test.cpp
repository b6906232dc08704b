// Creating files, and the writes each kind of file allows.
#include "creator.h"
#include "file.h"
#include "pagecache.h"
#include "recmantest.h"

#include <gtest/gtest.h>

#include <cstring>

using namespace recman;

namespace {

constexpr std::uint32_t recordLength = 40;

// Record: bytes 0..3 signed id (unique key 0), bytes 4..19 name (key 1,
// duplicates, modifiable), rest free text.
std::vector<std::uint8_t> makeRecord(std::int32_t id, const std::string &name, const std::string &note = "")
{
    std::vector<std::uint8_t> record(recordLength, ' ');
    std::memcpy(record.data(), &id, 4);
    std::memcpy(record.data() + 4, name.data(), std::min<std::size_t>(name.size(), 16));
    std::memcpy(record.data() + 20, note.data(), std::min<std::size_t>(note.size(), 20));
    return record;
}

FileSpec sampleSpec()
{
    FileSpec spec;
    spec.recordLength = recordLength;
    KeyDefinition id;
    id.segments.push_back({0, 0, keyflag::Extended, static_cast<std::uint8_t>(DataType::Integer), 0, 4, 0, {}});
    KeyDefinition name;
    name.number = 1;
    name.segments.push_back({1,
                             0,
                             keyflag::Extended | keyflag::Duplicates | keyflag::Modifiable,
                             static_cast<std::uint8_t>(DataType::String),
                             4,
                             16,
                             0,
                             {}});
    spec.keys = {id, name};
    return spec;
}

std::vector<std::int32_t> idsInKeyOrder(File &file, int key)
{
    std::vector<std::int32_t> ids;
    for (auto s = file.getFirst(key); s == Status::Success; s = file.getNext(key)) {
        std::int32_t id = 0;
        std::memcpy(&id, file.record().data(), 4);
        ids.push_back(id);
    }
    return ids;
}

class CreatedFile : public ::testing::Test {
protected:
    void SetUp() override
    {
        std::vector<std::vector<std::uint8_t>> records;
        for (std::int32_t id : {5, -3, 200, 0, 7})
            records.push_back(makeRecord(id, id % 2 ? "ODD" : "EVEN", "note"));
        std::string message;
        ASSERT_EQ(createFile(path, sampleSpec(), records, message), Status::Success) << message;
    }
    recmantest::TempDir dir;
    std::filesystem::path path = dir / "SAMPLE.BTR";
};

TEST_F(CreatedFile, ReadsBackInKeyAndPhysicalOrder)
{
    File file;
    ASSERT_EQ(file.open(path), Status::Success) << file.lastMessage();
    EXPECT_EQ(file.info().format, "6.x");
    EXPECT_TRUE(file.info().createdByEngine);
    EXPECT_EQ(file.info().recordCount, 5u);
    EXPECT_EQ(file.info().physicalRecordLength, 2 + recordLength + 8);
    EXPECT_EQ(idsInKeyOrder(file, 0), (std::vector<std::int32_t>{-3, 0, 5, 7, 200}));
    // Duplicates of key 1 come in insertion order.
    EXPECT_EQ(idsInKeyOrder(file, 1), (std::vector<std::int32_t>{200, 0, 5, -3, 7}));
    std::vector<std::int32_t> physical;
    for (auto s = file.stepFirst(); s == Status::Success; s = file.stepNext()) {
        std::int32_t id = 0;
        std::memcpy(&id, file.record().data(), 4);
        physical.push_back(id);
    }
    EXPECT_EQ(physical, (std::vector<std::int32_t>{5, -3, 200, 0, 7}));
}

TEST_F(CreatedFile, InsertUpdateDeleteSurviveReopen)
{
    {
        File file;
        ASSERT_EQ(file.open(path, OpenMode::ReadWrite), Status::Success) << file.lastMessage();
        ASSERT_EQ(file.insert(makeRecord(42, "NEW")), Status::Success) << file.lastMessage();
        EXPECT_EQ(file.insert(makeRecord(42, "AGAIN")), Status::DuplicateKey);
        const std::int32_t five = 5;
        ASSERT_EQ(file.getEqual(0, Bytes(reinterpret_cast<const std::uint8_t *>(&five), 4)), Status::Success);
        ASSERT_EQ(file.update(makeRecord(5, "RENAMED", "changed")), Status::Success) << file.lastMessage();
        EXPECT_EQ(file.update(makeRecord(6, "RENAMED")), Status::ModifiableKeyError);
        const std::int32_t minusThree = -3;
        ASSERT_EQ(file.getEqual(0, Bytes(reinterpret_cast<const std::uint8_t *>(&minusThree), 4)), Status::Success);
        ASSERT_EQ(file.erase(), Status::Success) << file.lastMessage();
        // Next after a delete continues from where the deleted record stood.
        ASSERT_EQ(file.getNext(0), Status::Success);
        EXPECT_EQ(file.record()[0], 0);
        EXPECT_EQ(file.info().recordCount, 5u);
    }
    File file;
    ASSERT_EQ(file.open(path), Status::Success) << file.lastMessage();
    EXPECT_TRUE(file.info().warnings.empty());
    EXPECT_EQ(idsInKeyOrder(file, 0), (std::vector<std::int32_t>{0, 5, 7, 42, 200}));
    const std::int32_t five = 5;
    ASSERT_EQ(file.getEqual(0, Bytes(reinterpret_cast<const std::uint8_t *>(&five), 4)), Status::Success);
    EXPECT_EQ(std::string(file.record().begin() + 4, file.record().begin() + 11), "RENAMED");
    // The freed slot is reused by the next insert rather than growing the file.
    const auto sizeBefore = std::filesystem::file_size(path);
    file.close();
    ASSERT_EQ(file.open(path, OpenMode::ReadWrite), Status::Success);
    ASSERT_EQ(file.insert(makeRecord(-9, "REUSE")), Status::Success);
    file.close();
    ASSERT_EQ(file.open(path), Status::Success);
    EXPECT_EQ(file.info().recordCount, 6u);
    EXPECT_LE(std::filesystem::file_size(path), sizeBefore + 4096);
}

TEST_F(CreatedFile, CommitInterruptedBeforeTheControlRecordLeavesTheOldState)
{
    {
        File file;
        ASSERT_EQ(file.open(path, OpenMode::ReadWrite), Status::Success);
        const std::int32_t five = 5;
        ASSERT_EQ(file.getEqual(0, Bytes(reinterpret_cast<const std::uint8_t *>(&five), 4)), Status::Success);
        ASSERT_EQ(file.erase(), Status::Success);
    }
    // The delete wrote its data page, then PAT copy B (usage 2), then control
    // record copy B (usage 2). Undo only the last step, as a crash would.
    auto bytes = recmantest::readBytes(path);
    ASSERT_EQ(bytes[4096 + 4], 2);
    std::fill(bytes.begin() + 4096, bytes.begin() + 8192, 0);
    recmantest::writeBytes(path, bytes);
    File file;
    ASSERT_EQ(file.open(path), Status::Success) << file.lastMessage();
    EXPECT_EQ(file.info().recordCount, 5u);
    EXPECT_TRUE(file.info().warnings.empty()) << file.info().warnings.front();
    EXPECT_EQ(idsInKeyOrder(file, 0), (std::vector<std::int32_t>{-3, 0, 5, 7, 200}));
}

// 6,000 records on 1024-byte pages: 254 pages per allocation table and 20
// records per page, so the file needs a second table.
void createBulkFile(const std::filesystem::path &path)
{
    auto spec = sampleSpec();
    spec.pageSize = 1024;
    std::int32_t next = 0;
    std::string message;
    ASSERT_EQ(createFile(
                  path, spec,
                  [&](std::vector<std::uint8_t> &record) {
                      record = makeRecord(next, "BULK");
                      return next++ < 6000;
                  },
                  message),
              Status::Success)
        << message;
}

TEST(CreatedFiles, BulkFileSpanningPatGroupsTakesInserts)
{
    recmantest::TempDir dir;
    const auto path = dir / "BULK.BTR";
    ASSERT_NO_FATAL_FAILURE(createBulkFile(path));
    {
        File file;
        ASSERT_EQ(file.open(path, OpenMode::ReadWrite), Status::Success) << file.lastMessage();
        for (std::int32_t id = -1; id > -30; --id)
            ASSERT_EQ(file.insert(makeRecord(id, "MORE")), Status::Success) << file.lastMessage();
    }
    File file;
    ASSERT_EQ(file.open(path), Status::Success) << file.lastMessage();
    EXPECT_EQ(file.info().recordCount, 6029u);
    EXPECT_TRUE(file.info().warnings.empty());
    const auto ids = idsInKeyOrder(file, 0);
    ASSERT_EQ(ids.size(), 6029u);
    EXPECT_EQ(ids.front(), -29);
    EXPECT_EQ(ids.back(), 5999);
    EXPECT_TRUE(std::is_sorted(ids.begin(), ids.end()));
}

TEST_F(CreatedFile, CreateRefusesExistingFileAndDuplicateUniqueKeys)
{
    std::string message;
    EXPECT_EQ(createFile(path, sampleSpec(), std::vector<std::vector<std::uint8_t>>{}, message),
              Status::FileAlreadyExists);
    const auto other = dir / "DUP.BTR";
    EXPECT_EQ(createFile(other, sampleSpec(), {makeRecord(1, "A"), makeRecord(1, "B")}, message), Status::DuplicateKey);
    EXPECT_FALSE(std::filesystem::exists(other));
    EXPECT_EQ(createFile(other, sampleSpec(), {std::vector<std::uint8_t>(3, 0)}, message), Status::DataBufferTooShort);
    EXPECT_FALSE(std::filesystem::exists(other));
    auto tooLong = sampleSpec();
    tooLong.pageSize = 1024;
    tooLong.recordLength = 1020;
    EXPECT_EQ(createFile(other, tooLong, std::vector<std::vector<std::uint8_t>>{}, message), Status::InvalidOperation);
    tooLong.keys[0].segments[0].offset = 2000;
    tooLong.pageSize = 4096;
    EXPECT_EQ(createFile(other, tooLong, std::vector<std::vector<std::uint8_t>>{}, message), Status::InvalidKeyLength);
    EXPECT_FALSE(std::filesystem::exists(other));
    // Only the file that was there from the start remains.
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path()), std::filesystem::directory_iterator()), 1);
}

TEST(CreatedFiles, CollatingSequenceAndDescendingKeysSurviveTheRoundTrip)
{
    recmantest::TempDir dir;
    auto upper = std::make_shared<CollatingSequence>();
    upper->name = "UPPER";
    for (int i = 0; i < 256; ++i)
        upper->table[i] = static_cast<std::uint8_t>(i >= 'a' && i <= 'z' ? i - 32 : i);
    FileSpec spec;
    spec.recordLength = recordLength;
    KeyDefinition name;
    name.segments.push_back({0, 0, keyflag::Extended | keyflag::Duplicates | keyflag::Acs,
                             static_cast<std::uint8_t>(DataType::String), 4, 16, 0, upper});
    KeyDefinition idDown;
    idDown.number = 1;
    idDown.segments.push_back(
        {1, 0, keyflag::Extended | keyflag::Descending, static_cast<std::uint8_t>(DataType::Integer), 0, 4, 0, {}});
    spec.keys = {name, idDown};
    std::string message;
    ASSERT_EQ(createFile(dir / "ACS.BTR", spec, {makeRecord(1, "beta"), makeRecord(2, "ALPHA"), makeRecord(3, "Gamma")},
                         message),
              Status::Success)
        << message;
    File file;
    ASSERT_EQ(file.open(dir / "ACS.BTR"), Status::Success) << file.lastMessage();
    ASSERT_TRUE(file.info().keys[0].segments[0].acs);
    EXPECT_EQ(file.info().keys[0].segments[0].acs->name, "UPPER");
    EXPECT_EQ(idsInKeyOrder(file, 0), (std::vector<std::int32_t>{2, 1, 3}));
    EXPECT_EQ(idsInKeyOrder(file, 1), (std::vector<std::int32_t>{3, 2, 1}));
}

TEST(RecordManagerFileWrites, OnlyNonKeyBytesOfExistingRecordsChange)
{
    recmantest::TempDir dir;
    const auto path = recmantest::writableFixture(dir, "GALTELA.DAT");
    File file;
    ASSERT_EQ(file.open(path, OpenMode::ReadWrite), Status::Success) << file.lastMessage();
    ASSERT_EQ(file.stepFirst(), Status::Success);
    std::vector<std::uint8_t> record(file.record().begin(), file.record().end());
    const auto original = recmantest::readBytes(path);
    EXPECT_EQ(file.insert(record), Status::AccessDenied);
    EXPECT_EQ(file.erase(), Status::AccessDenied);
    auto keyChanged = record;
    keyChanged[0] ^= 1;
    EXPECT_EQ(file.update(keyChanged), Status::AccessDenied);
    EXPECT_EQ(recmantest::readBytes(path), original) << "a refused write changed the file";

    record[500] = 'Z';
    ASSERT_EQ(file.update(record), Status::Success) << file.lastMessage();
    file.close();
    ASSERT_EQ(file.open(path), Status::Success) << file.lastMessage();
    ASSERT_EQ(file.stepFirst(), Status::Success);
    EXPECT_EQ(file.record()[500], 'Z');
    EXPECT_EQ(file.info().recordCount, 73u);

    File readOnly;
    ASSERT_EQ(readOnly.open(path), Status::Success);
    ASSERT_EQ(readOnly.stepFirst(), Status::Success);
    EXPECT_EQ(readOnly.update(record), Status::AccessDenied);
}

TEST(RecordManagerFileWrites, VariableLengthRecordsAreNotRewritten)
{
    recmantest::TempDir dir;
    const auto path = recmantest::writableFixture(dir, "VARIABLE.DAT");
    File file;
    ASSERT_EQ(file.open(path, OpenMode::ReadWrite), Status::Success);
    ASSERT_EQ(file.stepFirst(), Status::Success);
    const std::vector<std::uint8_t> record(file.record().begin(), file.record().end());
    EXPECT_EQ(file.update(record), Status::AccessDenied);
    EXPECT_NE(file.lastMessage().find("variable-length"), std::string::npos);
}

} // namespace

// Indexes are built on a key's first keyed use; writes before and after that
// must leave every key's order right.
namespace {

std::vector<std::int32_t> idsInPhysicalOrder(File &file)
{
    std::vector<std::int32_t> ids;
    for (auto s = file.stepFirst(); s == Status::Success; s = file.stepNext()) {
        std::int32_t id = 0;
        std::memcpy(&id, file.record().data(), 4);
        ids.push_back(id);
    }
    return ids;
}

Status stepTo(File &file, std::int32_t wanted)
{
    auto s = file.stepFirst();
    for (; s == Status::Success; s = file.stepNext())
        if (std::memcmp(file.record().data(), &wanted, 4) == 0)
            break;
    return s;
}

} // namespace

TEST_F(CreatedFile, WritesBeforeAndAfterTheFirstKeyedUseKeepIndexesRight)
{
    File file;
    ASSERT_EQ(file.open(path, OpenMode::ReadWrite), Status::Success) << file.lastMessage();
    EXPECT_EQ(idsInPhysicalOrder(file), (std::vector<std::int32_t>{5, -3, 200, 0, 7}));
    // Before any keyed operation: a key change, a delete and an insert.
    ASSERT_EQ(stepTo(file, 200), Status::Success);
    ASSERT_EQ(file.update(makeRecord(200, "AAA")), Status::Success) << file.lastMessage();
    ASSERT_EQ(stepTo(file, -3), Status::Success);
    ASSERT_EQ(file.erase(), Status::Success) << file.lastMessage();
    ASSERT_EQ(file.insert(makeRecord(9, "ODD")), Status::Success) << file.lastMessage();
    EXPECT_EQ(file.insert(makeRecord(9, "ZZZ")), Status::DuplicateKey);
    EXPECT_EQ(idsInKeyOrder(file, 0), (std::vector<std::int32_t>{0, 5, 7, 9, 200}));
    EXPECT_EQ(idsInKeyOrder(file, 1), (std::vector<std::int32_t>{200, 0, 5, 7, 9}));
    // After both indexes exist: the same kinds of writes again.
    ASSERT_EQ(stepTo(file, 0), Status::Success);
    ASSERT_EQ(file.update(makeRecord(0, "ODD")), Status::Success) << file.lastMessage();
    ASSERT_EQ(stepTo(file, 5), Status::Success);
    ASSERT_EQ(file.erase(), Status::Success) << file.lastMessage();
    ASSERT_EQ(file.insert(makeRecord(-1, "EVEN")), Status::Success) << file.lastMessage();
    EXPECT_EQ(idsInKeyOrder(file, 0), (std::vector<std::int32_t>{-1, 0, 7, 9, 200}));
    // Equal keys stay in record order, whichever way the index came to be.
    EXPECT_EQ(idsInKeyOrder(file, 1), (std::vector<std::int32_t>{200, -1, 0, 7, 9}));
    const std::int32_t nine = 9;
    ASSERT_EQ(file.getEqual(0, Bytes(reinterpret_cast<const std::uint8_t *>(&nine), 4)), Status::Success);
    ASSERT_EQ(file.getNext(0), Status::Success);
    EXPECT_EQ(file.record()[0], 200);
}

TEST_F(CreatedFile, TwoFilesOfOneProcessShareItAndSeeEachOthersWrites)
{
    File first, second, reader;
    ASSERT_EQ(first.open(path, OpenMode::ReadWrite), Status::Success) << first.lastMessage();
    ASSERT_EQ(second.open(path, OpenMode::ReadWrite), Status::Success) << second.lastMessage();
    ASSERT_EQ(reader.open(path), Status::Success) << reader.lastMessage();
    const std::int32_t nine = 9;
    const Bytes key(reinterpret_cast<const std::uint8_t *>(&nine), 4);
    EXPECT_EQ(second.getEqual(0, key), Status::KeyNotFound);
    ASSERT_EQ(first.insert(makeRecord(9, "ODD", "first")), Status::Success) << first.lastMessage();
    ASSERT_EQ(second.getEqual(0, key), Status::Success) << second.lastMessage();
    ASSERT_EQ(second.update(makeRecord(9, "ODD", "second")), Status::Success) << second.lastMessage();
    ASSERT_EQ(reader.getEqual(0, key), Status::Success);
    EXPECT_EQ(std::string(reader.record().begin() + 20, reader.record().begin() + 26), "second");
    EXPECT_EQ(reader.update(makeRecord(9, "ODD", "reader")), Status::AccessDenied);
    // first still holds the bytes it wrote: its update would undo second's.
    EXPECT_EQ(first.update(makeRecord(9, "ODD", "again")), Status::Conflict);
    ASSERT_EQ(first.getEqual(0, key), Status::Success);
    ASSERT_EQ(first.erase(), Status::Success) << first.lastMessage();
    EXPECT_EQ(idsInKeyOrder(second, 0), (std::vector<std::int32_t>{-3, 0, 5, 7, 200}));
    EXPECT_EQ(second.getEqual(0, key), Status::KeyNotFound);
}

TEST(CreatedFiles, PagesAreCachedWithinTheLimit)
{
    recmantest::TempDir dir;
    const auto path = dir / "BULK.BTR";
    ASSERT_NO_FATAL_FAILURE(createBulkFile(path));
    const auto limit = pageCacheLimit();
    setPageCacheLimit(64 * 1024);
    File file;
    ASSERT_EQ(file.open(path), Status::Success) << file.lastMessage();
    EXPECT_EQ(idsInKeyOrder(file, 1).size(), 6000u);
    EXPECT_EQ(idsInPhysicalOrder(file).size(), 6000u);
    EXPECT_GT(file.cachedPageBytes(), 0u);
    EXPECT_LE(file.cachedPageBytes(), 64u * 1024);
    setPageCacheLimit(limit);
}

TEST_F(CreatedFile, AFileSpoiledBehindTheOpenIsRefusedByTheNextOperation)
{
    File file;
    ASSERT_EQ(file.open(path), Status::Success) << file.lastMessage();
    EXPECT_EQ(idsInKeyOrder(file, 1), (std::vector<std::int32_t>{200, 0, 5, -3, 7}));
    // Shortened and overwritten by another program while open.
    auto bytes = recmantest::readBytes(path);
    bytes.resize(bytes.size() / 3);
    std::fill(bytes.begin() + static_cast<std::ptrdiff_t>(bytes.size() / 2), bytes.end(), std::uint8_t{0xEE});
    recmantest::writeBytes(path, bytes);
    const std::int32_t seven = 7;
    EXPECT_EQ(file.getEqual(0, Bytes(reinterpret_cast<const std::uint8_t *>(&seven), 4)),
              Status::NotARecordManagerFile);
    EXPECT_NE(file.lastMessage().find("changed on disk"), std::string::npos) << file.lastMessage();
    EXPECT_TRUE(file.record().empty() || file.record()[0] == 7);
    file.close();
    EXPECT_NE(file.open(path), Status::Success);
}
