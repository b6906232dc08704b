#pragma once

#include "gridexport.h"

#include <QString>

// Writes a grid's export table as a one-sheet workbook (writeXlsx): the
// two-line headings in a wrapped header row, amounts as numbers in the grids'
// "#,##0.00" format, text columns holding only dates as dates, check values
// as text, a SUM formula under each totalled column when the grid shows its
// totals, and every column as wide as its widest entry.
class GridXlsxWriter {
public:
    explicit GridXlsxWriter(GridExportTable table) : table_(std::move(table)) {}

    // Nothing is left behind on failure; the error text comes back in `error`.
    bool write(const QString &path, QString &error) const;

private:
    GridExportTable table_;
};
