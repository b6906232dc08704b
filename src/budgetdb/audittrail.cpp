#include "audittrail.h"

#include "appglobals.h"

#include <QDateTime>
#include <QLocale>
#include <QSysInfo>

namespace AuditTrail {
namespace {

constexpr auto accountAlias = "AuditAccount";
// Rows per insert statement: few round trips without statements of unbounded length.
constexpr std::size_t rowsPerInsert = 100;

QString valueText(const Recordset &row, const AuditColumn &column)
{
    switch (column.kind) {
    case AuditColumn::Kind::Amount:
        return row.isNull(column.name) ? QString() : row.amount(column.name).toSqlText();
    case AuditColumn::Kind::Rate:
        return row.isNull(column.name) ? QString()
                                       : QString::number(row.real(column.name), 'g', QLocale::FloatingPointShortest);
    case AuditColumn::Kind::Text:
        break;
    }
    // Blanks that pad a text are no change of it.
    return row.text(column.name).trimmed();
}

QString rowKey(const Recordset &row, const QStringList &key)
{
    QStringList parts;
    for (const QString &column : key)
        parts << column + u'=' + row.text(column).trimmed();
    return parts.join(QStringLiteral(", "));
}

AuditEntry entry(const AuditedRows &rows, const QString &key, const QString &account, std::size_t column,
                 const QString &oldValue, const QString &newValue)
{
    AuditEntry change;
    change.table = rows.table;
    change.rowKey = key;
    change.accountCode = account;
    change.column = rows.columns[column].name;
    change.oldValue = oldValue;
    change.newValue = newValue;
    return change;
}

QString conditions(const AuditFilter &filter)
{
    QStringList where;
    if (!filter.accountCode.trimmed().isEmpty())
        where << QStringLiteral("AccountCode LIKE ") + sqlText(filter.accountCode.trimmed() + u'%');
    if (!filter.user.trimmed().isEmpty())
        where << QStringLiteral("UserID = ") + sqlText(filter.user);
    if (!filter.task.trimmed().isEmpty())
        where << QStringLiteral("Task = ") + sqlText(filter.task);
    // The stamps are ISO text, so a day's bounds compare as text.
    if (filter.from.isValid())
        where << QStringLiteral("ChangedAt >= ") + sqlText(filter.from.toString(Qt::ISODate));
    if (filter.to.isValid())
        where << QStringLiteral("ChangedAt < ") + sqlText(filter.to.addDays(1).toString(Qt::ISODate));
    return where.isEmpty() ? QString() : QStringLiteral(" WHERE ") + where.join(QStringLiteral(" AND "));
}

bool distinct(DbConnection &db, const QString &column, QStringList &values, DbError *error)
{
    Recordset rows;
    if (!db.open(QStringLiteral("SELECT DISTINCT %1 FROM AuditTrail ORDER BY %1").arg(column), rows, error))
        return false;
    values.clear();
    for (; !rows.atEnd(); rows.MoveNext())
        values << rows.text(column);
    return true;
}

} // namespace

QString accountCodeOf(const QString &table)
{
    return QStringLiteral("(SELECT AccountCode FROM AccountCodes WHERE AccountCodes.ID = %1.AcctId)").arg(table);
}

bool snapshot(DbConnection &db, const AuditedRows &rows, Snapshot &into, DbError *error)
{
    return snapshot(db, rows, QStringList{rows.where}, into, error);
}

bool snapshot(DbConnection &db, const AuditedRows &rows, const QStringList &conditions, Snapshot &into,
              DbError *error)
{
    QStringList selected = rows.key;
    for (const AuditColumn &column : rows.columns)
        selected << column.name;
    if (!rows.account.isEmpty())
        selected << rows.account + QStringLiteral(" AS ") + QLatin1String(accountAlias);
    into.clear();
    for (const QString &condition : conditions) {
        Recordset read;
        const QString where = condition.isEmpty() ? QString() : QStringLiteral(" WHERE ") + condition;
        if (!db.open(QStringLiteral("SELECT %1 FROM %2%3").arg(selected.join(QStringLiteral(", ")), rows.table, where),
                     read, error))
            return false;
        for (; !read.atEnd(); read.MoveNext()) {
            Row row;
            if (!rows.account.isEmpty())
                row.accountCode = read.text(QLatin1String(accountAlias)).trimmed();
            for (const AuditColumn &column : rows.columns)
                row.values << valueText(read, column);
            into.insert(rowKey(read, rows.key), row);
        }
    }
    return true;
}

std::vector<AuditEntry> changes(const AuditedRows &rows, const Snapshot &before, const Snapshot &after)
{
    std::vector<AuditEntry> found;
    const Row absent{QString(), QStringList(qsizetype(rows.columns.size()))};
    for (auto it = before.begin(); it != before.end(); ++it) {
        const Row now = after.value(it.key(), absent);
        const bool gone = !after.contains(it.key());
        for (std::size_t i = 0; i < rows.columns.size(); ++i) {
            const QString &old = it->values[qsizetype(i)];
            if (gone || old != now.values[qsizetype(i)])
                found.push_back(entry(rows, it.key(), it->accountCode, i, old, now.values[qsizetype(i)]));
        }
    }
    for (auto it = after.begin(); it != after.end(); ++it) {
        if (before.contains(it.key()))
            continue;
        for (std::size_t i = 0; i < rows.columns.size(); ++i)
            found.push_back(entry(rows, it.key(), it->accountCode, i, QString(), it->values[qsizetype(i)]));
    }
    return found;
}

bool record(DbConnection &db, const QString &task, std::vector<AuditEntry> entries, DbError *error)
{
    const QString when = QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs);
    const QString workstation = QSysInfo::machineHostName();
    QStringList values;
    const auto flush = [&] {
        if (values.isEmpty())
            return true;
        const QString sql = QStringLiteral("INSERT INTO AuditTrail (ChangedAt, UserID, Workstation, Task, TableName, "
                                           "RowKey, AccountCode, ColumnName, OldValue, NewValue) VALUES ") +
                            values.join(QStringLiteral(", "));
        values.clear();
        return db.execute(sql, nullptr, error);
    };
    for (AuditEntry &change : entries) {
        change.changedAt = when;
        change.user = gstrUserID;
        change.workstation = workstation;
        change.task = task;
        values << u'(' +
                      QStringList{sqlText(change.changedAt),   sqlText(change.user),   sqlText(change.workstation),
                                  sqlText(change.task),        sqlText(change.table),  sqlText(change.rowKey),
                                  sqlText(change.accountCode), sqlText(change.column), sqlText(change.oldValue),
                                  sqlText(change.newValue)}
                          .join(u',') +
                      u')';
        if (std::size_t(values.size()) == rowsPerInsert && !flush())
            return false;
    }
    return flush();
}

bool read(DbConnection &db, const AuditFilter &filter, std::vector<AuditEntry> &entries, DbError *error)
{
    Recordset rows;
    if (!db.open(QStringLiteral("SELECT ChangedAt, UserID, Workstation, Task, TableName, RowKey, AccountCode, "
                                "ColumnName, OldValue, NewValue FROM AuditTrail") +
                     conditions(filter) + QStringLiteral(" ORDER BY ChangedAt DESC, ID DESC"),
                 rows, error))
        return false;
    entries.clear();
    for (; !rows.atEnd(); rows.MoveNext()) {
        entries.push_back({rows.text("ChangedAt"), rows.text("UserID"), rows.text("Workstation"), rows.text("Task"),
                           rows.text("TableName"), rows.text("RowKey"), rows.text("AccountCode"),
                           rows.text("ColumnName"), rows.text("OldValue"), rows.text("NewValue")});
    }
    return true;
}

bool users(DbConnection &db, QStringList &values, DbError *error)
{
    return distinct(db, QStringLiteral("UserID"), values, error);
}

bool tasks(DbConnection &db, QStringList &values, DbError *error)
{
    return distinct(db, QStringLiteral("Task"), values, error);
}

} // namespace AuditTrail
