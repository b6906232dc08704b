// Dictionary writer and reader agree; legacy paths resolve; the dictionary's
// failures are reported, not crashed on.
#include "dictionary.h"
#include "file.h"
#include "paths.h"
#include "recmantest.h"

#include <gtest/gtest.h>

#include <fstream>
#include <functional>

using namespace recman;

namespace {

TableDef fundsTable()
{
    TableDef funds;
    funds.name = "Funds";
    funds.location = "C:\\KORA\\FUND\\Funds.btr";
    funds.fields = {{"ID", DataType::String, 0, 4, 0, 0},
                    {"Name", DataType::String, 4, 30, 0, 0},
                    {"Balance", DataType::Currency, 34, 8, 4, 0},
                    {"Opened", DataType::Date, 42, 4, 0, 0},
                    {"Active", DataType::Logical, 46, 1, 0, 0}};
    funds.indexes = {IndexDef{{{"ID"}}, false, false, false},
                     IndexDef{{{"Name", false, true}, {"ID"}}, true, true, false}};
    return funds;
}

std::vector<std::uint8_t> fundRecord(const TableDef &table, const std::string &id, const std::string &name,
                                     std::int64_t balanceTenThousandths)
{
    auto record = blankRecord(table);
    std::string error;
    EXPECT_TRUE(encodeField(*table.field("ID"), id, record, CodePage::windows1252(), error)) << error;
    EXPECT_TRUE(encodeField(*table.field("Name"), name, record, CodePage::windows1252(), error)) << error;
    EXPECT_TRUE(
        encodeField(*table.field("Balance"), Decimal{balanceTenThousandths, 4}, record, CodePage::windows1252(), error))
        << error;
    EXPECT_TRUE(encodeField(*table.field("Opened"), Date{2003, 7, 1}, record, CodePage::windows1252(), error));
    EXPECT_TRUE(encodeField(*table.field("Active"), true, record, CodePage::windows1252(), error));
    return record;
}

TEST(Dictionary, WrittenDictionaryAndDataFileReadBack)
{
    recmantest::TempDir root;
    std::filesystem::create_directories(root / "Fund");
    const auto funds = fundsTable();
    std::string message;
    ASSERT_EQ(createDictionary(root.path(), {funds}, message), Status::Success) << message;
    const std::vector<std::vector<std::uint8_t>> records = {fundRecord(funds, "A", "General Fund", 1234567),
                                                            fundRecord(funds, "B", "café fund", -50000)};
    ASSERT_EQ(createDataFile(root / "Fund" / "FUNDS.BTR", funds, records, message), Status::Success) << message;

    Dictionary dictionary;
    ASSERT_EQ(dictionary.open(root.path()), Status::Success) << dictionary.lastMessage();
    EXPECT_NE(dictionary.table("X$Field"), nullptr);
    const auto *table = dictionary.table("FUNDS");
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(table->location, funds.location);
    ASSERT_EQ(table->fields.size(), funds.fields.size());
    EXPECT_EQ(table->field("balance")->type, DataType::Currency);
    EXPECT_EQ(table->field("Balance")->decimals, 4);
    ASSERT_EQ(table->indexes.size(), 2u);
    EXPECT_EQ(table->indexes[1].segments.size(), 2u);
    EXPECT_TRUE(table->indexes[1].duplicates);
    EXPECT_TRUE(table->indexes[1].segments[0].caseInsensitive);
    EXPECT_EQ(table->indexes[1].segments[1].field, "ID");
    EXPECT_EQ(dictionary.table("Nope"), nullptr);
    EXPECT_NE(dictionary.lastMessage().find("Nope"), std::string::npos);

    // The location is a Windows path on another drive; it still finds the file.
    const auto path = dictionary.dataFilePath(*table);
    ASSERT_TRUE(path.has_value()) << dictionary.lastMessage();
    File file;
    ASSERT_EQ(file.open(*path), Status::Success) << file.lastMessage();
    ASSERT_EQ(file.keyCount(), 2u);
    // Key 1 is case-insensitive on Name: "café fund" sorts before "General Fund".
    ASSERT_EQ(file.getFirst(1), Status::Success);
    Value value;
    std::string error;
    ASSERT_TRUE(decodeField(*table->field("Name"), file.record(), dictionary.codePage(), value, error)) << error;
    EXPECT_EQ(value, Value{std::string("café fund")});
    ASSERT_TRUE(decodeField(*table->field("Balance"), file.record(), dictionary.codePage(), value, error));
    EXPECT_EQ(toText(value), "-5.0000");
    ASSERT_TRUE(decodeField(*table->field("Opened"), file.record(), dictionary.codePage(), value, error));
    EXPECT_EQ(toText(value), "2003-07-01");
}

// Rewrites one DDF through `change`, keeping its keys but allowing a new record length.
void rewriteDdf(const std::filesystem::path &path, std::uint32_t newLength,
                const std::function<void(std::vector<std::uint8_t> &)> &change)
{
    File file;
    ASSERT_EQ(file.open(path), Status::Success);
    FileSpec spec;
    spec.recordLength = newLength;
    spec.keys = file.info().keys;
    std::vector<std::vector<std::uint8_t>> rows;
    for (auto s = file.stepFirst(); s == Status::Success; s = file.stepNext()) {
        rows.emplace_back(file.record().begin(), file.record().end());
        rows.back().resize(newLength);
        change(rows.back());
    }
    file.close();
    std::string message;
    ASSERT_EQ(createFile(path, spec, rows, message, CreateMode::Overwrite), Status::Success) << message;
}

TEST(Dictionary, BlankRecordsHoldEmptyValues)
{
    auto table = fundsTable();
    table.fields.push_back({"Amount", DataType::Decimal, 47, 3, 2, 0});
    const auto record = blankRecord(table);
    const std::vector<std::uint8_t> blankId(4, ' ');
    EXPECT_TRUE(std::equal(blankId.begin(), blankId.end(), record.begin()));
    Value value;
    std::string error;
    ASSERT_TRUE(decodeField(*table.field("Amount"), record, CodePage::windows1252(), value, error)) << error;
    EXPECT_EQ(value, (Value{Decimal{0, 2}}));
    ASSERT_TRUE(decodeField(*table.field("Opened"), record, CodePage::windows1252(), value, error));
    EXPECT_EQ(value, Value{Null{}});
}

TEST(Dictionary, OlderDictionariesWith87ByteFilesAndIndexesCountedFromOne)
{
    recmantest::TempDir root;
    std::string message;
    ASSERT_EQ(createDictionary(root.path(), {fundsTable()}, message), Status::Success) << message;
    rewriteDdf(root / "FILE.DDF", 87, [](std::vector<std::uint8_t> &) {});
    rewriteDdf(root / "INDEX.DDF", 10, [](std::vector<std::uint8_t> &row) {
        ++row[4]; // Xi$Number
        ++row[6]; // Xi$Part
    });
    Dictionary dictionary;
    ASSERT_EQ(dictionary.open(root.path()), Status::Success) << dictionary.lastMessage();
    const auto *table = dictionary.table("funds");
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(table->location, "C:\\KORA\\FUND\\Funds.btr");
    ASSERT_EQ(table->indexes.size(), 2u);
    EXPECT_EQ(table->indexes[0].segments.size(), 1u);
    EXPECT_EQ(table->indexes[0].segments[0].field, "ID");
    ASSERT_EQ(table->indexes[1].segments.size(), 2u);
    EXPECT_EQ(table->indexes[1].segments[0].field, "Name");
}

TEST(Dictionary, MissingFilesAndBrokenDictionariesAreReported)
{
    recmantest::TempDir root;
    Dictionary dictionary;
    EXPECT_EQ(dictionary.open(root.path()), Status::FileNotFound);
    EXPECT_NE(dictionary.lastMessage().find("FILE.DDF"), std::string::npos);

    // A FILE.DDF that is not a record-manager file.
    recmantest::writeBytes(root / "file.ddf", std::vector<std::uint8_t>(4096, 0x41));
    recmantest::writeBytes(root / "FIELD.DDF", {});
    EXPECT_EQ(dictionary.open(root.path()), Status::NotARecordManagerFile);

    // A table whose index names a field it does not have.
    auto funds = fundsTable();
    funds.indexes[0].segments[0].field = "Missing";
    std::string message;
    EXPECT_EQ(createDictionary(root.path(), {funds}, message), Status::InvalidKeyNumber);
    EXPECT_NE(message.find("Missing"), std::string::npos);
    // A name longer than the dictionary column.
    funds = fundsTable();
    funds.name = std::string(25, 'N');
    EXPECT_EQ(createDictionary(root.path(), {funds}, message), Status::InvalidOperation);
}

TEST(LegacyPaths, ResolveCaseInsensitivelyWithAnyDriveOrSeparator)
{
    recmantest::TempDir root;
    std::filesystem::create_directories(root / "FUND" / "Data" / "2001");
    std::ofstream(root / "FUND" / "FUNDS.BTR") << "x";
    std::ofstream(root / "FUND" / "Data" / "2001" / "SumRev.btr") << "x";
    EXPECT_EQ(resolveLegacyPath("fund\\funds.btr", root.path()), root / "FUND" / "FUNDS.BTR");
    EXPECT_EQ(resolveLegacyPath("C:\\KORA\\FUND\\Funds.btr", root.path()), root / "FUND" / "FUNDS.BTR");
    EXPECT_EQ(resolveLegacyPath("/fund/DATA/2001/SUMREV.BTR", root.path()),
              root / "FUND" / "Data" / "2001" / "SumRev.btr");
    EXPECT_EQ(resolveLegacyPath("\\FUND\\.\\Data\\..\\Funds.btr", root.path()), root / "FUND" / "FUNDS.BTR");
    // A relative path is not shortened: a missing folder means not found.
    EXPECT_FALSE(resolveLegacyPath("OTHER\\FUNDS.BTR", root.path()).has_value());
    EXPECT_FALSE(resolveLegacyPath("", root.path()).has_value());
    EXPECT_FALSE(resolveLegacyPath("C:\\", root.path()).has_value());
}

} // namespace
