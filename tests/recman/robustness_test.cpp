// Truncated, corrupted and unsupported files end in a status with a message:
// never a crash, a hang or a wrong record count presented as good.
#include "bytes.h"
#include "file.h"
#include "recmantest.h"

#include <gtest/gtest.h>

#include <random>

using namespace recman;

namespace {

const char *const fixtures[] = {"MBBSEMU.DAT", "VARIABLE.DAT", "GALTELA.DAT", "MULTIACS.DAT"};

// Opens the bytes and walks every record and key, with the records listed at
// open and (as for a big file) without, then down the index pages; returns
// the open status.
Status exercise(const recmantest::TempDir &dir, const std::vector<std::uint8_t> &bytes)
{
    const auto path = dir / "case.dat";
    recmantest::writeBytes(path, bytes);
    const auto savedLimit = listAtOpenLimit();
    Status status = Status::Success;
    for (const auto limit : {savedLimit, std::uint64_t{0}}) {
        setListAtOpenLimit(limit);
        File file;
        status = file.open(path);
        if (status != Status::Success) {
            EXPECT_FALSE(file.lastMessage().empty());
            break;
        }
        std::size_t steps = 0;
        for (auto s = file.stepFirst(); s == Status::Success; s = file.stepNext())
            ++steps;
        if (file.countRecords() == Status::Success)
            EXPECT_EQ(steps, file.info().recordCount);
        for (int key = 0; key < static_cast<int>(file.keyCount()); ++key)
            for (auto s = file.getFirst(key); s == Status::Success; s = file.getNext(key)) {
            }
    }
    setListAtOpenLimit(savedLimit);
    return status;
}

TEST(Robustness, TruncatedFilesAreRefusedOrReadConsistently)
{
    recmantest::TempDir dir;
    for (const char *name : fixtures) {
        const auto original = recmantest::readBytes(recmantest::fixture(name));
        for (std::size_t length = 0; length < original.size(); length += length < 4096 ? 97 : 1531) {
            SCOPED_TRACE(std::string(name) + " cut at " + std::to_string(length));
            exercise(dir, std::vector<std::uint8_t>(original.begin(), original.begin() + length));
        }
    }
}

TEST(Robustness, FlippedBytesNeverCrash)
{
    recmantest::TempDir dir;
    std::mt19937 random(1234);
    for (const char *name : fixtures) {
        const auto original = recmantest::readBytes(recmantest::fixture(name));
        std::uniform_int_distribution<std::size_t> anywhere(0, original.size() - 1);
        std::uniform_int_distribution<std::size_t> header(0, 0x1FF);
        for (int round = 0; round < 150; ++round) {
            auto bytes = original;
            // Half the rounds hit the control record, where damage matters most.
            for (int flip = 0; flip < 4; ++flip)
                bytes[round % 2 ? header(random) : anywhere(random)] ^= static_cast<std::uint8_t>(1 + random() % 255);
            exercise(dir, bytes);
        }
    }
}

std::vector<std::uint8_t> galtela()
{
    return recmantest::readBytes(recmantest::fixture("GALTELA.DAT"));
}

// Opens a patched copy and returns its message (empty on success).
std::string refusal(const std::vector<std::uint8_t> &bytes, Status expected = Status::NotARecordManagerFile)
{
    recmantest::TempDir dir;
    recmantest::writeBytes(dir / "case.dat", bytes);
    File file;
    EXPECT_EQ(file.open(dir / "case.dat"), expected);
    return file.lastMessage();
}

TEST(Robustness, UnsupportedFormatsAreNamed)
{
    // Both control-record copies of GALTELA live at pages 0 and 1 (4096 bytes each).
    auto patchBoth = [](std::vector<std::uint8_t> bytes, std::size_t offset, std::uint16_t value) {
        for (std::size_t copy : {0u, 4096u})
            bytes::put16(bytes, copy + offset, value);
        return bytes;
    };
    EXPECT_NE(refusal(patchBoth(galtela(), 0x4A, 0x0900)).find("8.x or later"), std::string::npos);
    EXPECT_NE(refusal(patchBoth(galtela(), 0x106, 0x0800)).find("variable-tail allocation"), std::string::npos);
    EXPECT_NE(refusal(patchBoth(galtela(), 0x106, 0x0002)).find("blank truncation"), std::string::npos);
    EXPECT_NE(refusal(patchBoth(galtela(), 0x18, 976)).find("does not match"), std::string::npos);
    EXPECT_NE(refusal(patchBoth(galtela(), 0x08, 1000)).find("page size"), std::string::npos);
    // Every page after the control records XORed, as an encrypted file would be.
    auto encrypted = galtela();
    for (std::size_t i = 2 * 4096; i < encrypted.size(); ++i)
        encrypted[i] ^= (i % 2) ? 0x91 : 0xF7;
    EXPECT_NE(refusal(encrypted).find("encrypted"), std::string::npos);
    auto unknown = galtela();
    unknown[0] = 'X';
    EXPECT_NE(refusal(unknown).find("unknown signature"), std::string::npos);
    EXPECT_NE(refusal(std::vector<std::uint8_t>(100, 0)).find("shorter than one page"), std::string::npos);
}

TEST(Robustness, VariablePageWithAnImpossibleFragmentCount)
{
    // Found by fuzzing: a fragment count larger than the page made the
    // directory start wrap around and a fragment read run past the page.
    auto bytes = recmantest::readBytes(recmantest::fixture("VARIABLE.DAT"));
    int patched = 0;
    for (std::size_t page = 512; page + 512 <= bytes.size(); page += 512)
        if (bytes::u32(bytes, page + 6) == 0xFFFFFFFF && (bytes::u16(bytes, page + 4) & 0x8000) == 0) {
            bytes::put16(bytes, page + 10, 0xFFF0);
            ++patched;
        }
    ASSERT_GT(patched, 0);
    EXPECT_NE(refusal(bytes).find("fragments"), std::string::npos);
}

TEST(Robustness, OwnerProtectedFilesReadUnlessEncrypted)
{
    auto bytes = recmantest::readBytes(recmantest::fixture("MBBSEMU.DAT"));
    bytes[7] = 0xFC; // version -4: an owner name is set
    recmantest::TempDir dir;
    recmantest::writeBytes(dir / "owner.dat", bytes);
    File file;
    ASSERT_EQ(file.open(dir / "owner.dat"), Status::Success) << file.lastMessage();
    EXPECT_TRUE(file.info().ownerProtected);
    EXPECT_EQ(file.info().recordCount, 4u);

    // With its pages encrypted, the owner name is what is missing.
    for (std::size_t i = 512; i < bytes.size(); ++i)
        bytes[i] ^= (i % 2) ? 0x91 : 0xF7;
    recmantest::writeBytes(dir / "encrypted.dat", bytes);
    EXPECT_EQ(file.open(dir / "encrypted.dat"), Status::OwnerNameRequired);
    EXPECT_NE(file.lastMessage().find("owner name"), std::string::npos) << file.lastMessage();
}

TEST(Robustness, ShadowCopiesAreChosenByUsageCount)
{
    // GALTELA's current control record is copy B (usage 2). Swapping the usage
    // counts makes the stale copy A current: its header counts no records.
    auto bytes = galtela();
    bytes::put32(bytes, 0x04, 3);
    recmantest::TempDir dir;
    recmantest::writeBytes(dir / "swap.dat", bytes);
    File file;
    ASSERT_EQ(file.open(dir / "swap.dat"), Status::Success) << file.lastMessage();
    EXPECT_EQ(file.info().headerRecordCount, 0u);
    // A copy with usage 0 (never written) is not current, whatever else it holds.
    bytes = galtela();
    bytes::put32(bytes, 4096 + 0x04, 0);
    bytes::put32(bytes, 0x04, 0);
    std::fill(bytes.begin() + 4096 + 8, bytes.begin() + 8192, 0);
    recmantest::writeBytes(dir / "zero.dat", bytes);
    ASSERT_EQ(file.open(dir / "zero.dat"), Status::Success) << file.lastMessage();
    EXPECT_EQ(file.info().headerRecordCount, 0u) << "copy A (the stale one) should have been used";
}

TEST(Robustness, ImpossibleCountsDoNotAllocateOrLoop)
{
    auto bytes = recmantest::readBytes(recmantest::fixture("MBBSEMU.DAT"));
    bytes::putWs32(bytes, 0x1A, 0x7FFFFFF0); // record count
    recmantest::TempDir dir;
    recmantest::writeBytes(dir / "count.dat", bytes);
    File file;
    ASSERT_EQ(file.open(dir / "count.dat"), Status::Success) << file.lastMessage();
    EXPECT_EQ(file.info().recordCount, 4u);
    ASSERT_FALSE(file.info().warnings.empty());
    // A free-slot chain pointing at itself.
    bytes = recmantest::readBytes(recmantest::fixture("MBBSEMU.DAT"));
    bytes::putWs32(bytes, 0x10, 512 + 6);
    bytes::putWs32(bytes, 512 + 6, 512 + 6);
    recmantest::writeBytes(dir / "loop.dat", bytes);
    ASSERT_EQ(file.open(dir / "loop.dat"), Status::Success) << file.lastMessage();
    EXPECT_FALSE(file.info().warnings.empty());
}

} // namespace
