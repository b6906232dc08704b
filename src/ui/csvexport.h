#pragma once

#include <QString>
#include <QStringList>

#include <vector>

// One CSV record (RFC 4180): fields separated by commas, quoted fields in
// double quotes with inner quotes doubled; a field that must be quoted (a
// comma, quote or line break in it) always is.
QString csvRecord(const QStringList &fields, const std::vector<bool> &quoted);

class classGrid;

// Writes the grid's visible columns, names first, then one record per row;
// text in quotes, amounts and check values bare. Nothing is left behind on
// failure; the error text comes back in `error`.
bool exportGridCsv(const classGrid &grid, const QString &path, QString &error);
