#pragma once

#include "gridcolumn.h"

#include <QString>
#include <QStringList>

#include <vector>

class classGrid;

// What every export of a grid writes: its visible columns in order, each
// row's plain values in them (GetItemValue), and whether the grid shows its
// totals. Hidden columns never get this far.
struct GridExportTable {
    std::vector<classGridColumn> columns;
    std::vector<QStringList> rows;
    bool totalsShown = false;
};

GridExportTable gridExportTable(const classGrid &grid);

enum class ExportFormat { Csv, Xlsx };

// The file dialog's filters, CSV first.
QStringList exportFilters();

struct ExportTarget {
    QString path;
    ExportFormat format = ExportFormat::Csv;
};

// A name ending in .csv or .xlsx keeps its format whatever filter was chosen;
// any other name takes the chosen filter's format and extension, or stays
// as it is, as CSV, when no filter was chosen (a name typed into a box).
ExportTarget exportTarget(const QString &path, const QString &chosenFilter);
