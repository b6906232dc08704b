#include "reportdatatable.h"

#include "exactarithmetic.h"

void DataTable::setColumns(const QStringList &columns)
{
    columns_ = columns;
    index_.clear();
    for (int i = 0; i < columns.size(); ++i) {
        index_.insert(columns[i].toLower(), i);
        index_.insert(columns[i], i);
    }
}

bool DataTable::indexBy(const QString &name)
{
    const int keyColumn = column(name);
    if (keyColumn < 0)
        return false;
    byKey_.clear();
    std::vector<std::vector<ReportValue>> merged;
    merged.reserve(rows_.size());
    for (auto &row : rows_) {
        const QString key = keyText(row[keyColumn]);
        const auto found = byKey_.constFind(key);
        if (found == byKey_.cend()) {
            byKey_.insert(key, static_cast<int>(merged.size()));
            merged.push_back(std::move(row));
            continue;
        }
        std::vector<ReportValue> &first = merged[*found];
        for (std::size_t c = 0; c < row.size(); ++c) {
            if (c == static_cast<std::size_t>(keyColumn) || row[c].type() != ReportValue::Type::Number)
                continue;
            const Currency base = first[c].type() == ReportValue::Type::Number ? first[c].asNumber() : Currency();
            if (first[c].isNull() || first[c].type() == ReportValue::Type::Number)
                first[c] = ReportValue::number(addExact(base, row[c].asNumber()).value_or(base));
        }
    }
    rows_ = std::move(merged);
    return true;
}

int DataTable::find(const ReportValue &key) const
{
    return byKey_.value(keyText(key), -1);
}

QString keyText(const ReportValue &value)
{
    return value.toText().trimmed();
}
