#pragma once

#include "reportdocument.h"
#include "reportrunstate.h"

#include <QString>

#include <vector>

// What a run that progress told to stop fails with.
inline const QString reportCancelled = QStringLiteral("Cancelled.");

// Groups the selected rows: orders them by the definition's groups (folders
// by their tree's sort order), then writes group headers, detail rows, group
// totals and the grand total into the report's table.
class ReportGrouping {
public:
    // `shown`: the definition's columns the table shows, in order.
    ReportGrouping(const RunState &state, std::vector<int> shown);

    // Orders the rows, stably, by every group's value in turn.
    bool sort(std::vector<int> &rows, QString &error);
    bool build(const std::vector<int> &rows, ReportTable &table, const ReportProgress &progress, QString &error);

private:
    // One open group: what tells it apart, the label of its total, the sums of its rows.
    struct Level {
        QString identity;
        int group = 0;                      // index into the definition's groups
        const FolderNode *folder = nullptr; // a folder level
        bool hasTotal = false;
        QString totalLabel;
        ColumnSums sums;
    };

    bool groupValues(int row, std::vector<ReportValue> &values, QString &error) const;
    // The levels a row belongs to, outermost first (identity, group and folder only).
    std::vector<Level> levelsOf(int row, const std::vector<ReportValue> &values) const;
    bool open(Level &level, int row, int depth, ReportTable &table, QString &error) const;
    bool close(const Level &level, ReportTable::RowKind kind, int depth, ReportTable &table, QString &error) const;
    bool rowValues(int row, std::vector<ReportValue> &values, QString &error) const;

    const RunState &state_;
    std::vector<int> shown_;
    std::vector<std::vector<ReportValue>> groupValues_; // per main row, after sort()
    ColumnSums grand_;
};
