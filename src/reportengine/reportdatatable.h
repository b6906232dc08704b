#pragma once

#include "reportvalue.h"

#include <QHash>
#include <QString>
#include <QStringList>

#include <vector>

// The rows of one table of a report run, every cell a report value. Read once
// per run; rows are found by key through a hash, never by a statement per row.
class DataTable {
public:
    void setColumns(const QStringList &columns);
    // The column's position (any case); -1 when there is none.
    // Looked up as written first: formulas mostly spell a column as the source does.
    int column(const QString &name) const
    {
        const auto exact = index_.constFind(name);
        return exact != index_.cend() ? *exact : index_.value(name.toLower(), -1);
    }

    void addRow(std::vector<ReportValue> row) { rows_.push_back(std::move(row)); }
    const std::vector<std::vector<ReportValue>> &rows() const { return rows_; }
    std::size_t rowCount() const { return rows_.size(); }
    const ReportValue &cell(std::size_t row, int column) const { return rows_[row][column]; }

    // Indexes the rows by a column; rows sharing a key become one, numbers
    // added up and everything else taken from the first. False when there is no such column.
    bool indexBy(const QString &column);
    // The row with that key; -1 when there is none.
    int find(const ReportValue &key) const;

private:
    QStringList columns_;
    QHash<QString, int> index_;
    std::vector<std::vector<ReportValue>> rows_;
    QHash<QString, int> byKey_;
};

// A value as a key: text trimmed, numbers as plain decimals, so 12 and "12" meet.
QString keyText(const ReportValue &value);
