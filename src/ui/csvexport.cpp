#include "csvexport.h"

#include "classgrid.h"

#include <QSaveFile>

namespace {

bool mustQuote(const QString &field)
{
    return field.contains(QLatin1Char(',')) || field.contains(QLatin1Char('"')) || field.contains(QLatin1Char('\n')) ||
           field.contains(QLatin1Char('\r'));
}

} // namespace

QString csvRecord(const QStringList &fields, const std::vector<bool> &quoted)
{
    QStringList out;
    for (int i = 0; i < fields.size(); ++i) {
        const QString &field = fields[i];
        const bool quote = (std::size_t(i) < quoted.size() && quoted[std::size_t(i)]) || mustQuote(field);
        out << (quote ? QLatin1Char('"') + QString(field).replace(QLatin1Char('"'), QStringLiteral("\"\"")) +
                            QLatin1Char('"')
                      : field);
    }
    return out.join(QLatin1Char(',')) + QStringLiteral("\r\n");
}

bool exportGridCsv(const classGrid &grid, const QString &path, QString &error)
{
    QStringList keys;
    QStringList names;
    std::vector<bool> textColumns;
    for (int column = 1; column <= grid.CountColumns(); ++column) {
        const QString key = grid.ColumnKey(column);
        if (grid.ColumnHidden(key))
            continue;
        keys << key;
        names << grid.Column(key).HeadingOneLine();
        textColumns.push_back(grid.Column(key).Type() == GridColumnType::Text);
    }
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        error = file.errorString();
        return false;
    }
    QString text = csvRecord(names, std::vector<bool>(std::size_t(names.size()), true));
    for (int row = 1; row <= grid.CountRows(); ++row) {
        QStringList values;
        for (const QString &key : keys)
            values << grid.GetItemValue(row, key);
        text += csvRecord(values, textColumns);
    }
    file.write(text.toUtf8());
    if (!file.commit()) {
        error = file.errorString();
        return false;
    }
    return true;
}
