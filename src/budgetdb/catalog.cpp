#include "catalog.h"

#include "sqldialectadapter.h"

#include <QRegularExpression>
#include <QSqlDatabase>

namespace BudgetCatalog {

ColumnType classify(const QString &declared)
{
    const QString type = declared.trimmed().toUpper();
    // The order follows SQLite's own reading of a declared type.
    if (type.contains(QStringLiteral("INT")))
        return {Family::Integer};
    if (type.contains(QStringLiteral("CHAR")) || type.contains(QStringLiteral("TEXT")) ||
        type.contains(QStringLiteral("CLOB")))
        return {Family::Text};
    if (type.contains(QStringLiteral("REAL")) || type.contains(QStringLiteral("FLOA")) ||
        type.contains(QStringLiteral("DOUB")))
        return {Family::Real};
    if (type.startsWith(QStringLiteral("NUMERIC")) || type.startsWith(QStringLiteral("DECIMAL"))) {
        static const QRegularExpression places(QStringLiteral("^\\w+\\s*\\(\\s*\\d+\\s*(?:,\\s*(\\d+)\\s*)?\\)$"));
        const auto match = places.match(type);
        if (!match.hasMatch())
            return {Family::Decimal};
        // NUMERIC(p) has no places.
        return {Family::Decimal, match.captured(1).isEmpty() ? 0 : match.captured(1).toInt()};
    }
    return {Family::Other};
}

bool tables(DbConnection &db, QStringList &names, DbError *error)
{
    names.clear();
    if (!db.isOpen()) {
        if (error)
            *error = {-1, QStringLiteral("The budget database is not open.")};
        return false;
    }
    for (const QString &name : QSqlDatabase::database(db.connectionName(), false).tables(QSql::Tables))
        if (!name.startsWith(QStringLiteral("sqlite_"), Qt::CaseInsensitive))
            names << name;
    return true;
}

bool columns(DbConnection &db, const QString &relation, std::vector<Column> &found, DbError *error)
{
    found.clear();
    const QString query = SqlDialectAdapter(db.statementDialect()).columnCatalogQuery(relation);
    if (query.isEmpty()) {
        if (error)
            *error = {-1, QStringLiteral("The column types of this ODBC data source's engine cannot be read; "
                                         "only SQLite and PostgreSQL sources can.")};
        return false;
    }
    Recordset rows;
    if (!db.open(query, rows, error))
        return false;
    for (; !rows.atEnd(); rows.MoveNext()) {
        const QString declared = rows.text(QStringLiteral("declared"));
        found.push_back({rows.text(QStringLiteral("name")), declared, classify(declared),
                         rows.number(QStringLiteral("generated")) == 1});
    }
    return true;
}

bool rowCount(DbConnection &db, const QString &table, qint64 &count, DbError *error)
{
    Recordset rows;
    if (!db.open(QStringLiteral("SELECT COUNT(*) AS n FROM %1").arg(quoted(table)), rows, error))
        return false;
    count = rows.number(QStringLiteral("n"));
    return true;
}

QString quoted(const QString &name)
{
    QString inner = name.toLower();
    inner.replace(u'"', QStringLiteral("\"\""));
    return u'"' + inner + u'"';
}

} // namespace BudgetCatalog
