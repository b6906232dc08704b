#pragma once

#include <QString>

class classGrid;

// Writes the grid's visible columns, names first, then one record per row;
// text in quotes, amounts and check values bare. Nothing is left behind on
// failure; the error text comes back in `error`.
bool exportGridCsv(const classGrid &grid, const QString &path, QString &error);
