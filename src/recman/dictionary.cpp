#include "dictionary.h"

#include "file.h"
#include "paths.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <map>

namespace recman {

namespace {

bool sameName(std::string_view a, std::string_view b)
{
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
               return std::tolower(static_cast<unsigned char>(x)) == std::tolower(static_cast<unsigned char>(y));
           });
}

// X$File, X$Field and X$Index: the dictionary describes itself with these.
constexpr std::uint32_t fileRecordLength = 97;
constexpr std::uint32_t fieldRecordLength = 32;
constexpr std::uint32_t indexRecordLength = 10;

// Xi$Flags bits (they differ from the data file's key flags).
namespace xiflag {
constexpr std::uint16_t Duplicates = 0x0001;
constexpr std::uint16_t Modifiable = 0x0002;
constexpr std::uint16_t NullKey = 0x0008;
constexpr std::uint16_t Segmented = 0x0010;
constexpr std::uint16_t CaseInsensitive = 0x0020;
constexpr std::uint16_t Descending = 0x0040;
constexpr std::uint16_t Extended = 0x0100;
} // namespace xiflag

FieldDef column(const char *name, DataType type, std::uint32_t offset, std::uint32_t size)
{
    return FieldDef{name, type, offset, size, 0, 0};
}

IndexDef index(std::vector<IndexSegmentDef> segments, bool duplicates)
{
    return IndexDef{std::move(segments), duplicates, false, false};
}

std::vector<TableDef> systemTables()
{
    TableDef file{"X$File", "FILE.DDF", {}, {}, 1, 16};
    file.fields = {column("Xf$Id", DataType::Unsigned, 0, 2), column("Xf$Name", DataType::String, 2, 20),
                   column("Xf$Loc", DataType::String, 22, 64), column("Xf$Flags", DataType::Unsigned, 86, 1),
                   column("Xf$Reserved", DataType::String, 87, 10)};
    file.indexes = {index({{"Xf$Id"}}, false), index({{"Xf$Name", false, true}}, false)};
    TableDef field{"X$Field", "FIELD.DDF", {}, {}, 2, 16};
    field.fields = {column("Xe$Id", DataType::Unsigned, 0, 2),      column("Xe$File", DataType::Unsigned, 2, 2),
                    column("Xe$Name", DataType::String, 4, 20),     column("Xe$DataType", DataType::Unsigned, 24, 1),
                    column("Xe$Offset", DataType::Unsigned, 25, 2), column("Xe$Size", DataType::Unsigned, 27, 2),
                    column("Xe$Dec", DataType::Unsigned, 29, 1),    column("Xe$Flags", DataType::Unsigned, 30, 2)};
    field.indexes = {index({{"Xe$Id"}}, false), index({{"Xe$File"}}, true), index({{"Xe$Name", false, true}}, true),
                     index({{"Xe$File"}, {"Xe$Name", false, true}}, false),
                     index({{"Xe$File"}, {"Xe$Offset"}, {"Xe$Dec"}}, true)};
    TableDef indexTable{"X$Index", "INDEX.DDF", {}, {}, 3, 16};
    indexTable.fields = {column("Xi$File", DataType::Unsigned, 0, 2), column("Xi$Field", DataType::Unsigned, 2, 2),
                         column("Xi$Number", DataType::Unsigned, 4, 2), column("Xi$Part", DataType::Unsigned, 6, 2),
                         column("Xi$Flags", DataType::Unsigned, 8, 2)};
    indexTable.indexes = {index({{"Xi$File"}}, true), index({{"Xi$Field"}}, true),
                          index({{"Xi$File"}, {"Xi$Number"}, {"Xi$Part"}}, false)};
    return {file, field, indexTable};
}

std::string text(Bytes raw, const CodePage &codePage)
{
    std::size_t end = raw.size();
    while (end > 0 && (raw[end - 1] == ' ' || raw[end - 1] == 0))
        --end;
    return codePage.toUtf8(raw.first(end));
}

// Reads every record of one DDF; at least minimumLength bytes each.
Status readAll(const std::filesystem::path &root, const char *name, std::uint32_t minimumLength,
               std::vector<std::vector<std::uint8_t>> &records, std::string &message)
{
    const auto path = resolveLegacyPath(name, root);
    if (!path) {
        message = std::string("dictionary file ") + name + " not found in " + root.string();
        return Status::FileNotFound;
    }
    File file;
    if (const auto status = file.open(*path); status != Status::Success) {
        message = file.lastMessage();
        return status;
    }
    if (file.info().recordLength < minimumLength) {
        message = path->string() + ": records of " + std::to_string(file.info().recordLength) +
                  " bytes are too short for " + name;
        return Status::NotARecordManagerFile;
    }
    for (auto status = file.stepFirst(); status == Status::Success; status = file.stepNext())
        records.emplace_back(file.record().begin(), file.record().end());
    return Status::Success;
}

struct IndexRow {
    std::uint16_t file, field, number, part, flags;
};

void attachIndexes(std::vector<TableDef> &tables, const std::map<std::uint16_t, std::string> &fieldNames,
                   std::vector<IndexRow> rows)
{
    // Old dictionaries number indexes and parts from 1, newer ones from 0.
    const bool fromOne = !rows.empty() && std::all_of(rows.begin(), rows.end(), [](const IndexRow &row) {
        return row.number >= 1 && row.part >= 1;
    });
    std::sort(rows.begin(), rows.end(), [](const IndexRow &a, const IndexRow &b) {
        return std::tie(a.file, a.number, a.part) < std::tie(b.file, b.number, b.part);
    });
    for (auto &table : tables) {
        std::map<std::uint16_t, IndexDef> byNumber;
        for (const auto &row : rows) {
            if (row.file != table.id)
                continue;
            auto &definition = byNumber[static_cast<std::uint16_t>(row.number - (fromOne ? 1 : 0))];
            const auto name = fieldNames.find(row.field);
            definition.segments.push_back({name == fieldNames.end() ? "" : name->second,
                                           (row.flags & xiflag::Descending) != 0,
                                           (row.flags & xiflag::CaseInsensitive) != 0});
            if (definition.segments.size() == 1) {
                definition.duplicates = (row.flags & xiflag::Duplicates) != 0;
                definition.modifiable = (row.flags & xiflag::Modifiable) != 0;
                definition.nullKey = (row.flags & xiflag::NullKey) != 0;
            }
        }
        for (auto &[number, definition] : byNumber) {
            if (number >= table.indexes.size())
                table.indexes.resize(number + 1);
            table.indexes[number] = std::move(definition);
        }
    }
}

} // namespace

const FieldDef *TableDef::field(std::string_view fieldName) const
{
    const auto found = std::find_if(fields.begin(), fields.end(),
                                    [&](const FieldDef &candidate) { return sameName(candidate.name, fieldName); });
    return found == fields.end() ? nullptr : &*found;
}

std::uint32_t TableDef::recordLength() const
{
    std::uint32_t length = 0;
    for (const auto &candidate : fields)
        length = std::max(length, candidate.offset + candidate.size);
    return length;
}

Status Dictionary::open(const std::filesystem::path &root)
{
    root_ = root;
    tables_.clear();
    std::vector<std::vector<std::uint8_t>> files, fields, indexes;
    // 87 bytes: older dictionaries lack the reserved tail of 97-byte ones.
    for (const auto &[name, minimum, into] :
         {std::tuple{"FILE.DDF", 87u, &files}, std::tuple{"FIELD.DDF", fieldRecordLength, &fields},
          std::tuple{"INDEX.DDF", indexRecordLength, &indexes}})
        if (const auto status = readAll(root, name, minimum, *into, message_); status != Status::Success)
            return status;
    for (const auto &row : files) {
        TableDef table;
        table.id = bytes::u16(row, 0);
        table.name = text(Bytes(row).subspan(2, 20), *codePage_);
        table.location = text(Bytes(row).subspan(22, 64), *codePage_);
        table.flags = row[86];
        tables_.push_back(std::move(table));
    }
    std::map<std::uint16_t, std::string> fieldNames;
    for (const auto &row : fields) {
        FieldDef definition;
        const auto fieldId = bytes::u16(row, 0);
        const auto tableId = bytes::u16(row, 2);
        definition.name = text(Bytes(row).subspan(4, 20), *codePage_);
        const auto type = row[24];
        definition.type = static_cast<DataType>(type);
        definition.offset = bytes::u16(row, 25);
        definition.size = bytes::u16(row, 27);
        definition.decimals = row[29];
        definition.flags = bytes::u16(row, 30);
        fieldNames[fieldId] = definition.name;
        // 255 names an index and 227 a constraint; size-0 rows carry no data.
        if (type == 255 || type == 227 || definition.size == 0)
            continue;
        for (auto &table : tables_)
            if (table.id == tableId)
                table.fields.push_back(definition);
    }
    for (auto &table : tables_)
        std::stable_sort(table.fields.begin(), table.fields.end(), [](const FieldDef &a, const FieldDef &b) {
            return std::tie(a.offset, a.decimals) < std::tie(b.offset, b.decimals);
        });
    std::vector<IndexRow> rows;
    for (const auto &row : indexes)
        rows.push_back(
            {bytes::u16(row, 0), bytes::u16(row, 2), bytes::u16(row, 4), bytes::u16(row, 6), bytes::u16(row, 8)});
    attachIndexes(tables_, fieldNames, std::move(rows));
    message_.clear();
    return Status::Success;
}

const TableDef *Dictionary::table(std::string_view name) const
{
    for (const auto &candidate : tables_)
        if (sameName(candidate.name, name))
            return &candidate;
    message_ = "no table \"" + std::string(name) + "\" in the dictionary at " + root_.string();
    return nullptr;
}

std::optional<std::filesystem::path> Dictionary::dataFilePath(const TableDef &table) const
{
    auto found = resolveLegacyPath(table.location, root_);
    if (!found)
        message_ =
            "data file \"" + table.location + "\" of table \"" + table.name + "\" not found below " + root_.string();
    return found;
}

Status fileSpecFor(const TableDef &table, FileSpec &spec, std::string &message)
{
    spec = FileSpec{};
    spec.recordLength = table.recordLength();
    for (std::size_t number = 0; number < table.indexes.size(); ++number) {
        const auto &definition = table.indexes[number];
        KeyDefinition key;
        key.number = static_cast<int>(number);
        for (const auto &part : definition.segments) {
            const auto *field = table.field(part.field);
            if (!field) {
                message = "index " + std::to_string(number) + " of table \"" + table.name +
                          "\" names unknown field \"" + part.field + "\"";
                return Status::InvalidKeyNumber;
            }
            KeySegment segment;
            segment.key = key.number;
            segment.segment = static_cast<int>(key.segments.size());
            segment.flags = keyflag::Extended;
            if (definition.duplicates)
                segment.flags |= keyflag::Duplicates;
            if (definition.modifiable)
                segment.flags |= keyflag::Modifiable;
            if (definition.nullKey)
                segment.flags |= keyflag::NullAll;
            if (part.descending)
                segment.flags |= keyflag::Descending;
            if (part.caseInsensitive)
                segment.flags |= keyflag::CaseInsensitive;
            // Types that are no key types order as unsigned bytes.
            const bool keyType =
                field->type != DataType::Note && field->type != DataType::LVar && field->type != DataType::Bit;
            segment.rawType = static_cast<std::uint8_t>(keyType ? field->type : DataType::Unsigned);
            segment.offset = field->offset;
            segment.length = field->size;
            segment.nullValue = field->type == DataType::String ? ' ' : 0;
            key.segments.push_back(segment);
        }
        spec.keys.push_back(std::move(key));
    }
    return Status::Success;
}

Status createDataFile(const std::filesystem::path &path, const TableDef &table, const RecordSource &records,
                      std::string &message, CreateMode mode)
{
    FileSpec spec;
    if (const auto status = fileSpecFor(table, spec, message); status != Status::Success)
        return status;
    return createFile(path, spec, records, message, mode);
}

Status createDataFile(const std::filesystem::path &path, const TableDef &table,
                      const std::vector<std::vector<std::uint8_t>> &records, std::string &message, CreateMode mode)
{
    return createDataFile(path, table, recordsFrom(records), message, mode);
}

std::vector<std::uint8_t> blankRecord(const TableDef &table, const CodePage &codePage)
{
    std::vector<std::uint8_t> record(table.recordLength(), 0);
    std::string ignored;
    for (const auto &field : table.fields)
        encodeField(field, Null{}, record, codePage, ignored);
    return record;
}

namespace {

// Field encoding errors while writing the dictionary's own rows mean a name
// too long or a code-page problem: report them.
class RowWriter {
public:
    RowWriter(const TableDef &table, const CodePage &codePage) : table_(table), codePage_(codePage) {}
    bool set(std::vector<std::uint8_t> &row, const char *fieldName, const Value &value)
    {
        return encodeField(*table_.field(fieldName), value, row, codePage_, error);
    }
    std::string error;

private:
    const TableDef &table_;
    const CodePage &codePage_;
};

} // namespace

Status createDictionary(const std::filesystem::path &root, const std::vector<TableDef> &tables, std::string &message,
                        const CodePage &codePage)
{
    const auto system = systemTables();
    std::vector<TableDef> all = system;
    std::uint16_t nextTableId = 100;
    for (auto table : tables) {
        if (table.id == 0)
            table.id = nextTableId++;
        all.push_back(std::move(table));
    }
    RowWriter fileRow(system[0], codePage), fieldRow(system[1], codePage), indexRow(system[2], codePage);
    std::vector<std::vector<std::uint8_t>> fileRows, fieldRows, indexRows;
    std::uint16_t nextFieldId = 1;
    for (const auto &table : all) {
        std::vector<std::uint8_t> row(fileRecordLength, ' ');
        bool ok = fileRow.set(row, "Xf$Id", std::int64_t{table.id}) && fileRow.set(row, "Xf$Name", table.name) &&
                  fileRow.set(row, "Xf$Loc", table.location) && fileRow.set(row, "Xf$Flags", std::int64_t{table.flags});
        fileRows.push_back(std::move(row));
        std::map<std::string, std::uint16_t> ids;
        for (const auto &field : table.fields) {
            std::vector<std::uint8_t> fieldBytes(fieldRecordLength, ' ');
            ids[field.name] = nextFieldId;
            ok = ok && fieldRow.set(fieldBytes, "Xe$Id", std::int64_t{nextFieldId++}) &&
                 fieldRow.set(fieldBytes, "Xe$File", std::int64_t{table.id}) &&
                 fieldRow.set(fieldBytes, "Xe$Name", field.name) &&
                 fieldRow.set(fieldBytes, "Xe$DataType", std::int64_t{static_cast<int>(field.type)}) &&
                 fieldRow.set(fieldBytes, "Xe$Offset", std::int64_t{field.offset}) &&
                 fieldRow.set(fieldBytes, "Xe$Size", std::int64_t{field.size}) &&
                 fieldRow.set(fieldBytes, "Xe$Dec", std::int64_t{field.decimals}) &&
                 fieldRow.set(fieldBytes, "Xe$Flags", std::int64_t{field.flags});
            fieldRows.push_back(std::move(fieldBytes));
        }
        for (std::size_t number = 0; number < table.indexes.size(); ++number) {
            const auto &definition = table.indexes[number];
            for (std::size_t part = 0; part < definition.segments.size(); ++part) {
                const auto &segment = definition.segments[part];
                const auto id = ids.find(segment.field);
                if (id == ids.end()) {
                    message = "index " + std::to_string(number) + " of table \"" + table.name +
                              "\" names unknown field \"" + segment.field + "\"";
                    return Status::InvalidKeyNumber;
                }
                std::uint16_t flags = xiflag::Extended;
                flags |= definition.duplicates ? xiflag::Duplicates : 0;
                flags |= definition.modifiable ? xiflag::Modifiable : 0;
                flags |= definition.nullKey ? xiflag::NullKey : 0;
                flags |= part + 1 < definition.segments.size() ? xiflag::Segmented : 0;
                flags |= segment.caseInsensitive ? xiflag::CaseInsensitive : 0;
                flags |= segment.descending ? xiflag::Descending : 0;
                std::vector<std::uint8_t> indexBytes(indexRecordLength, 0);
                ok = ok && indexRow.set(indexBytes, "Xi$File", std::int64_t{table.id}) &&
                     indexRow.set(indexBytes, "Xi$Field", std::int64_t{id->second}) &&
                     indexRow.set(indexBytes, "Xi$Number", static_cast<std::int64_t>(number)) &&
                     indexRow.set(indexBytes, "Xi$Part", static_cast<std::int64_t>(part)) &&
                     indexRow.set(indexBytes, "Xi$Flags", std::int64_t{flags});
                indexRows.push_back(std::move(indexBytes));
            }
        }
        if (!ok) {
            message = "table \"" + table.name + "\": " + fileRow.error + fieldRow.error + indexRow.error;
            return Status::InvalidOperation;
        }
    }
    const std::vector<std::vector<std::uint8_t>> *rows[] = {&fileRows, &fieldRows, &indexRows};
    for (std::size_t i = 0; i < system.size(); ++i)
        if (const auto status =
                createDataFile(root / system[i].location, system[i], *rows[i], message, CreateMode::Overwrite);
            status != Status::Success)
            return status;
    return Status::Success;
}

} // namespace recman
