#include "gridxlsxwriter.h"

#include "sheettable.h"

namespace {

// A text column is written as dates when every value in it is one.
bool isDateColumn(const GridExportTable &table, std::size_t column)
{
    if (table.columns[column].Type() != GridColumnType::Text)
        return false;
    bool any = false;
    for (const QStringList &row : table.rows) {
        const QString &value = row[qsizetype(column)];
        if (value.trimmed().isEmpty())
            continue;
        if (!shownDate(value))
            return false;
        any = true;
    }
    return any;
}

SheetTable::Kind kindOf(const GridExportTable &table, std::size_t column)
{
    if (table.columns[column].Type() == GridColumnType::Amount)
        return SheetTable::Kind::Amount;
    return isDateColumn(table, column) ? SheetTable::Kind::Date : SheetTable::Kind::Text;
}

} // namespace

bool GridXlsxWriter::write(const QString &path, QString &error) const
{
    SheetTable sheet;
    for (std::size_t c = 0; c < table_.columns.size(); ++c) {
        const classGridColumn &column = table_.columns[c];
        const QString heading = column.Heading();
        const SheetTable::Kind kind = kindOf(table_, c);
        sheet.columns.push_back({heading.trimmed().isEmpty() ? column.Key() : heading, kind,
                                 column.Total() && kind == SheetTable::Kind::Amount});
    }
    for (const QStringList &values : table_.rows)
        sheet.rows.push_back({values});
    sheet.totalsRow = table_.totalsShown;
    return writeXlsx(sheet, path, error);
}
