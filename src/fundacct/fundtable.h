#pragma once

#include "bytes.h"
#include "keydef.h"

#include <QHash>
#include <QString>
#include <QVariant>

#include <filesystem>
#include <optional>
#include <vector>

// One table of the Kora-Fund data dictionary as the data-access control uses
// it: the fields by name and the file's default location.
struct FundField {
    QString name;
    recman::DataType type = recman::DataType::String;
    int offset = 0;
    int size = 0;
    int decimals = 0;
};

struct FundTable {
    QString name;
    QString location; // the dictionary's location text (a Windows path)
    std::vector<FundField> fields;
    int recordLength = 0; // end of the last field

    // Case-insensitive; nullptr when the table has no such field.
    const FundField *field(const QString &name) const;
    void index();

private:
    QHash<QString, int> byName_;
};

// Reads a table's definition from the dictionary in ddfPath. 0, or a
// DataAccessControl status with the reason in `message`.
int readFundTable(const QString &ddfPath, const QString &tableName, FundTable &table, QString &message);

// A field of a record: text right-trimmed, integers as qlonglong, amounts as Currency.
QVariant decodeFundField(const FundField &field, recman::Bytes record);
// Stores a value (the field's own type, or text) into a record; false with a
// reason when it does not fit. Text shorter than the field is padded with `pad`.
bool encodeFundField(const FundField &field, const QVariant &value, recman::MutableBytes record, char pad,
                     QString &message);

// A Windows-style location (drive, either slash, any case) onto an existing
// file: a relative location, or one starting with ddfPath, is taken under
// the dictionary folder. nullopt when no such file exists.
std::optional<std::filesystem::path> resolveFundPath(const QString &ddfPath, const QString &location);
