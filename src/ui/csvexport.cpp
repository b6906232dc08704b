#include "csvexport.h"

#include "csvrecord.h"
#include "gridexport.h"

bool exportGridCsv(const classGrid &grid, const QString &path, QString &error)
{
    const GridExportTable table = gridExportTable(grid);
    QStringList names;
    std::vector<bool> textColumns;
    for (const classGridColumn &column : table.columns) {
        names << column.HeadingOneLine();
        textColumns.push_back(column.Type() == GridColumnType::Text);
    }
    QString text = csvRecord(names, std::vector<bool>(std::size_t(names.size()), true));
    for (const QStringList &values : table.rows)
        text += csvRecord(values, textColumns);
    return writeCsvFile(path, text, error);
}
