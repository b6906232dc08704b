#pragma once

#include <QDate>
#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

// A table on its way into a CSV or XLSX file: the same shape for a grid's
// export and a report's rows, so both go through one writer.
struct SheetTable {
    enum class Kind {
        Text,
        Amount,  // exact decimals; a number in "#,##0.00"
        Percent, // the percentage as a decimal ("12.5" is 12.5 %); a number in "0.00%"
        Number,  // any other decimal; a number as it stands
        Date,    // "MM/DD/YY" or "MM/DD/YYYY"; a date in "mm/dd/yyyy"
    };
    struct Column {
        QString heading; // lines joined by "\n"
        Kind kind = Kind::Text;
        bool summed = false; // gets a SUM formula in the totals row
    };
    struct Row {
        QStringList cells; // one per column; "" for an empty cell
        bool bold = false;
        int indent = 0; // of the first cell, in levels
    };
    std::vector<Column> columns;
    std::vector<Row> rows;
    bool totalsRow = false; // a row under the data with a SUM under each summed column
};

// The dates the screens show: "MM/DD/YY" (a two-digit year below 50 is in
// this century) and "MM/DD/YYYY".
std::optional<QDate> shownDate(const QString &text);

// Writes the table as a one-sheet workbook: the headings in a bold, wrapped,
// frozen header row, each cell as its column's kind says (a cell that does not
// read as that kind, such as "n/a", stays text), bold rows bold, and every
// column as wide as its widest entry. The workbook is written under a
// temporary name beside `path` and then renamed onto it, so a failure leaves
// neither a part-written file nor a damaged older one; the error text comes
// back in `error`.
bool writeXlsx(const SheetTable &table, const QString &path, QString &error);
