#pragma once

#include "reportdocument.h"

#include <vector>

// The columns of a report across the page, in points, and the body text size
// that lets them fit.
struct ColumnFit {
    qreal size = 8;   // of the body text
    qreal pad = 6;    // blank between two columns
    qreal indent = 8; // of the first column, per group level
    std::vector<qreal> left;
    std::vector<qreal> width;

    qreal contentLeft(std::size_t c) const { return left[c] + pad / 2; }
    qreal contentRight(std::size_t c) const { return left[c] + width[c] - pad / 2; }
    qreal contentWidth(std::size_t c) const { return width[c] - pad; }
    qreal tableWidth() const { return left.empty() ? 0 : left.back() + width.back(); }
};

// The table's widths (in average characters) scaled to fill `pageWidth`.
// When they are too wide the text gets a little smaller, and then the text
// columns give way (their cells are elided); a number column is always as
// wide as its widest shown cell, so no figure is ever cut.
ColumnFit fitColumns(const ReportTable &table, const std::vector<ReportTable::Kind> &kinds,
                     const std::vector<ReportTable::Row> &shownRows, qreal pageWidth);
