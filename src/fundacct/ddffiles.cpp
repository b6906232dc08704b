#include "ddffiles.h"

#include "creator.h"
#include "dataaccesscontrol.h"
#include "file.h"

#include <cstring>

namespace fs = std::filesystem;
using recman::Bytes;
using recman::DataType;
namespace keyflag = recman::keyflag;

namespace {

constexpr std::uint32_t fileRecordLength = 97;
constexpr std::uint32_t fieldRecordLength = 32;
constexpr std::uint32_t indexRecordLength = 10;
constexpr int nameLength = 20;
constexpr int locationLength = 64;

recman::KeySegment segment(std::uint32_t offset, std::uint32_t length, DataType type, std::uint16_t flags)
{
    recman::KeySegment s;
    s.offset = offset;
    s.length = length;
    s.rawType = static_cast<std::uint8_t>(type);
    s.flags = static_cast<std::uint16_t>(flags | keyflag::Extended);
    return s;
}

recman::KeyDefinition key(int number, std::vector<recman::KeySegment> segments)
{
    recman::KeyDefinition k;
    k.number = number;
    for (std::size_t i = 0; i < segments.size(); ++i) {
        segments[i].key = number;
        segments[i].segment = static_cast<int>(i);
    }
    k.segments = std::move(segments);
    return k;
}

void putText(std::vector<std::uint8_t> &record, std::size_t offset, std::size_t size, const QString &text)
{
    const QByteArray bytes = text.toLatin1().left(static_cast<qsizetype>(size));
    std::memset(record.data() + offset, ' ', size);
    std::memcpy(record.data() + offset, bytes.constData(), static_cast<std::size_t>(bytes.size()));
}

void put16(std::vector<std::uint8_t> &record, std::size_t offset, unsigned value)
{
    record[offset] = static_cast<std::uint8_t>(value);
    record[offset + 1] = static_cast<std::uint8_t>(value >> 8);
}

QString getText(Bytes record, std::size_t offset, std::size_t size)
{
    QByteArray bytes(reinterpret_cast<const char *>(record.data() + offset), static_cast<qsizetype>(size));
    while (!bytes.isEmpty() && (bytes.back() == ' ' || bytes.back() == '\0'))
        bytes.chop(1);
    return QString::fromLatin1(bytes);
}

unsigned get16(Bytes record, std::size_t offset)
{
    return record[offset] | record[offset + 1] << 8;
}

int create(const fs::path &path, std::uint32_t recordLength, std::vector<recman::KeyDefinition> keys,
           const std::vector<std::vector<std::uint8_t>> &records, QString &message)
{
    recman::FileSpec spec;
    spec.recordLength = recordLength;
    spec.keys = std::move(keys);
    std::string why;
    const auto status = recman::createFile(path, spec, records, why, recman::CreateMode::Overwrite);
    if (status != recman::Status::Success)
        message = QString::fromStdString(why);
    return recman::statusNumber(status);
}

// The file whose name matches `wanted` case-insensitively in `folder`.
std::optional<fs::path> findDictionaryFile(const QString &ddfPath, const char *wanted)
{
    return resolveFundPath(ddfPath, QString::fromLatin1(wanted));
}

template <class Visit> int scan(const fs::path &path, std::uint32_t minimumLength, Visit visit, QString &message)
{
    recman::File file;
    auto status = file.open(path);
    if (status == recman::Status::Success && file.info().recordLength < minimumLength) {
        message = QStringLiteral("%1 has %2-byte records")
                      .arg(QString::fromStdString(path.string()))
                      .arg(file.info().recordLength);
        return DataAccessControl::StatusDictionaryMissing;
    }
    for (status = status == recman::Status::Success ? file.stepFirst() : status; status == recman::Status::Success;
         status = file.stepNext())
        visit(file.record());
    if (status == recman::Status::EndOfFile)
        return 0;
    message = QString::fromStdString(file.lastMessage());
    return DataAccessControl::StatusDictionaryMissing;
}

} // namespace

std::vector<recman::KeyDefinition> fundKeyDefinitions(const FundTableSpec &spec)
{
    std::vector<recman::KeyDefinition> keys;
    for (const FundIndex &index : spec.indexes) {
        std::uint16_t flags = 0;
        if (index.duplicates)
            flags |= keyflag::Duplicates;
        if (index.modifiable)
            flags |= keyflag::Modifiable;
        std::vector<recman::KeySegment> segments;
        for (const QString &name : index.segments) {
            const FundField *field = spec.table.field(name);
            const bool text = field->type == DataType::String;
            segments.push_back(segment(static_cast<std::uint32_t>(field->offset),
                                       static_cast<std::uint32_t>(field->size), field->type,
                                       flags | (text && index.caseInsensitive ? keyflag::CaseInsensitive : 0)));
        }
        keys.push_back(key(index.number, std::move(segments)));
    }
    return keys;
}

int writeFundDictionary(const fs::path &folder, const std::vector<FundTableSpec> &tables, QString &message)
{
    std::vector<std::vector<std::uint8_t>> files, fields, indexes;
    int fieldId = 0;
    for (const FundTableSpec &spec : tables) {
        auto &file = files.emplace_back(fileRecordLength, 0);
        put16(file, 0, static_cast<unsigned>(spec.id));
        putText(file, 2, nameLength, spec.table.name);
        putText(file, 22, locationLength, spec.table.location);
        QHash<QString, int> idsByName;
        for (const FundField &f : spec.table.fields) {
            auto &row = fields.emplace_back(fieldRecordLength, 0);
            idsByName.insert(f.name, ++fieldId);
            put16(row, 0, static_cast<unsigned>(fieldId));
            put16(row, 2, static_cast<unsigned>(spec.id));
            putText(row, 4, nameLength, f.name);
            row[24] = static_cast<std::uint8_t>(f.type);
            put16(row, 25, static_cast<unsigned>(f.offset));
            put16(row, 27, static_cast<unsigned>(f.size));
            row[29] = static_cast<std::uint8_t>(f.decimals);
        }
        for (const FundIndex &index : spec.indexes) {
            for (qsizetype part = 0; part < index.segments.size(); ++part) {
                auto &row = indexes.emplace_back(indexRecordLength, 0);
                put16(row, 0, static_cast<unsigned>(spec.id));
                put16(row, 2, static_cast<unsigned>(idsByName.value(index.segments[part])));
                put16(row, 4, static_cast<unsigned>(index.number));
                put16(row, 6, static_cast<unsigned>(part));
                // Xi$Flags: 0x1 duplicates, 0x2 modifiable, 0x10 more segments, 0x20 case-insensitive, 0x100 typed
                put16(row, 8,
                      (index.duplicates ? 0x1u : 0) | (index.modifiable ? 0x2u : 0) |
                          (part + 1 < index.segments.size() ? 0x10u : 0) | (index.caseInsensitive ? 0x20u : 0) |
                          0x100u);
            }
        }
    }
    const auto u16 = DataType::Unsigned;
    int status =
        create(folder / "FILE.DDF", fileRecordLength,
               {key(0, {segment(0, 2, u16, 0)}),
                key(1, {segment(2, nameLength, DataType::String, keyflag::Modifiable | keyflag::CaseInsensitive)})},
               files, message);
    if (status == 0)
        status = create(
            folder / "FIELD.DDF", fieldRecordLength,
            {key(0, {segment(0, 2, u16, 0)}), key(1, {segment(2, 2, u16, keyflag::Duplicates)}),
             key(2, {segment(2, 2, u16, 0), segment(4, nameLength, DataType::String, keyflag::CaseInsensitive)})},
            fields, message);
    if (status == 0)
        status = create(folder / "INDEX.DDF", indexRecordLength,
                        {key(0, {segment(0, 2, u16, keyflag::Duplicates)}),
                         key(1, {segment(0, 2, u16, 0), segment(4, 2, u16, 0), segment(6, 2, u16, 0)})},
                        indexes, message);
    return status;
}

int readFundTable(const QString &ddfPath, const QString &tableName, FundTable &table, QString &message)
{
    const auto filePath = findDictionaryFile(ddfPath, "FILE.DDF");
    const auto fieldPath = findDictionaryFile(ddfPath, "FIELD.DDF");
    if (!filePath || !fieldPath) {
        message = QStringLiteral("no data dictionary (FILE.DDF, FIELD.DDF) in \"%1\"").arg(ddfPath);
        return DataAccessControl::StatusDictionaryMissing;
    }
    int tableId = -1;
    table = FundTable{};
    int status = scan(
        *filePath, 86,
        [&](Bytes row) {
            if (tableId < 0 && getText(row, 2, nameLength).compare(tableName.trimmed(), Qt::CaseInsensitive) == 0) {
                tableId = static_cast<int>(get16(row, 0));
                table.name = getText(row, 2, nameLength);
                table.location = getText(row, 22, locationLength);
            }
        },
        message);
    if (status != 0)
        return status;
    if (tableId < 0) {
        message = QStringLiteral("the data dictionary has no table \"%1\"").arg(tableName);
        return DataAccessControl::StatusUnknownTable;
    }
    status = scan(
        *fieldPath, fieldRecordLength,
        [&](Bytes row) {
            const unsigned type = row[24];
            const int size = static_cast<int>(get16(row, 27));
            if (static_cast<int>(get16(row, 2)) != tableId || type == 227 || type == 255 || size == 0)
                return;
            table.fields.push_back({getText(row, 4, nameLength), static_cast<DataType>(type),
                                    static_cast<int>(get16(row, 25)), size, row[29]});
        },
        message);
    table.index();
    return status;
}
