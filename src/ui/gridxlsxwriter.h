#pragma once

#include "gridexport.h"

#include <QString>

// Writes a grid's export table as a one-sheet workbook: the two-line
// headings in a wrapped header row, amounts as numbers in the grids'
// "#,##0.00" format, text columns holding only dates as dates, check values
// as text, a SUM formula under each totalled column when the grid shows its
// totals, and every column as wide as its widest entry.
class GridXlsxWriter {
public:
    explicit GridXlsxWriter(GridExportTable table) : table_(std::move(table)) {}

    // The workbook is written under a temporary name beside `path` and then
    // renamed onto it, so a failure leaves neither a part-written file nor a
    // damaged older one; the error text comes back in `error`.
    bool write(const QString &path, QString &error) const;

private:
    GridExportTable table_;
};
