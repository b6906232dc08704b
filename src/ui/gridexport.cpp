#include "gridexport.h"

#include "classgrid.h"

namespace {

const QString csvFilter = QStringLiteral("CSV text (*.csv)");
const QString xlsxFilter = QStringLiteral("Excel workbook (*.xlsx)");

} // namespace

GridExportTable gridExportTable(const classGrid &grid)
{
    GridExportTable table;
    QStringList keys;
    for (int column = 1; column <= grid.CountColumns(); ++column) {
        const QString key = grid.ColumnKey(column);
        if (grid.ColumnHidden(key))
            continue;
        keys << key;
        table.columns.push_back(grid.Column(key));
    }
    for (int row = 1; row <= grid.CountRows(); ++row) {
        QStringList values;
        for (const QString &key : keys)
            values << grid.GetItemValue(row, key);
        table.rows.push_back(values);
    }
    table.totalsShown = grid.TotalsShown();
    return table;
}

QStringList exportFilters()
{
    return {csvFilter, xlsxFilter};
}

ExportTarget exportTarget(const QString &path, const QString &chosenFilter)
{
    if (path.endsWith(QLatin1String(".xlsx"), Qt::CaseInsensitive))
        return {path, ExportFormat::Xlsx};
    if (path.endsWith(QLatin1String(".csv"), Qt::CaseInsensitive))
        return {path, ExportFormat::Csv};
    if (chosenFilter.isEmpty())
        return {path, ExportFormat::Csv};
    if (chosenFilter == xlsxFilter)
        return {path + QStringLiteral(".xlsx"), ExportFormat::Xlsx};
    return {path + QStringLiteral(".csv"), ExportFormat::Csv};
}
