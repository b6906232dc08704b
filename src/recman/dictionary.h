// The data dictionary: FILE.DDF (tables), FIELD.DDF (columns), INDEX.DDF
// (index segments), themselves record-manager files.
//
//   recman::Dictionary dictionary;
//   if (dictionary.open(root) != Status::Success) report(dictionary.lastMessage());
//   const TableDef *funds = dictionary.table("Funds");
//   auto path = dictionary.dataFilePath(*funds);        // Xf$Loc resolved below root
//   const FieldDef *name = funds->field("Name");        // then decodeField(...)
//
// Writing: createDictionary(root, tables) writes the three DDF files (with the
// rows describing themselves), and createDataFile(path, table, records)
// writes a data file whose keys match the table's indexes.
#pragma once

#include "codepage.h"
#include "creator.h"
#include "fieldcodec.h"
#include "status.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace recman {

struct IndexSegmentDef {
    std::string field; // field name
    bool descending = false;
    bool caseInsensitive = false;
};

struct IndexDef {
    std::vector<IndexSegmentDef> segments;
    bool duplicates = false;
    bool modifiable = true;
    bool nullKey = false; // records whose key is all blanks/zeros are not indexed
};

struct TableDef {
    std::string name;
    std::string location; // as stored, e.g. "Funds.btr" or "C:\KORA\FUND\Funds.btr"
    std::vector<FieldDef> fields;
    std::vector<IndexDef> indexes; // index i is key i of the data file
    std::uint16_t id = 0;          // assigned by createDictionary when 0
    std::uint8_t flags = 0;        // 16 = one of the dictionary's own tables

    // Case-insensitive lookup; nullptr when absent.
    const FieldDef *field(std::string_view fieldName) const;
    // Record length the fields need (end of the last field).
    std::uint32_t recordLength() const;
};

class Dictionary {
public:
    explicit Dictionary(const CodePage &codePage = CodePage::windows1252()) : codePage_(&codePage) {}

    // Reads FILE.DDF, FIELD.DDF and INDEX.DDF from `root` (names matched case-insensitively).
    Status open(const std::filesystem::path &root);
    const std::string &lastMessage() const { return message_; }
    const std::filesystem::path &root() const { return root_; }
    const CodePage &codePage() const { return *codePage_; }

    const std::vector<TableDef> &tables() const { return tables_; }
    // Case-insensitive; nullptr when absent (lastMessage() says so).
    const TableDef *table(std::string_view name) const;
    // The table's data file, found below the dictionary root; nullopt if missing.
    std::optional<std::filesystem::path> dataFilePath(const TableDef &table) const;

private:
    const CodePage *codePage_;
    std::filesystem::path root_;
    std::vector<TableDef> tables_;
    mutable std::string message_;
};

// Key definitions for a table's indexes (types from the fields).
Status fileSpecFor(const TableDef &table, FileSpec &spec, std::string &message);

// Writes FILE.DDF, FIELD.DDF and INDEX.DDF into root (replacing existing ones).
Status createDictionary(const std::filesystem::path &root, const std::vector<TableDef> &tables, std::string &message,
                        const CodePage &codePage = CodePage::windows1252());

// Creates a table's data file from raw records of table.recordLength() bytes.
Status createDataFile(const std::filesystem::path &path, const TableDef &table, const RecordSource &records,
                      std::string &message, CreateMode mode = CreateMode::FailIfExists);
Status createDataFile(const std::filesystem::path &path, const TableDef &table,
                      const std::vector<std::vector<std::uint8_t>> &records, std::string &message,
                      CreateMode mode = CreateMode::FailIfExists);

// A record of the table with every field empty: text blank, numbers zero,
// dates null. Fill it with encodeField().
std::vector<std::uint8_t> blankRecord(const TableDef &table, const CodePage &codePage = CodePage::windows1252());

} // namespace recman
