#include "databasecopy.h"

#include "catalog.h"
#include "schema.h"
#include "sqldialectadapter.h"

#include <QSet>

#include <algorithm>
#include <cmath>

namespace BudgetCopy {
namespace {

using BudgetCatalog::Column;
using BudgetCatalog::Family;
using BudgetCatalog::quoted;

constexpr int rowsPerInsert = 200;

// An amount exactly as stored: drivers hand decimals over as text, SQLite's as its own shortest text.
std::optional<Currency> amountOf(const QVariant &value)
{
    if (value.typeId() == QMetaType::Double)
        return Currency::fromDouble(value.toDouble());
    return Currency::parse(value.toString());
}

// The value as an SQL literal for a column of that family; nullopt when it is not one.
std::optional<QString> literal(const QVariant &value, Family family)
{
    if (value.isNull())
        return QStringLiteral("NULL");
    const QString text = value.toString();
    switch (family) {
    case Family::Integer: {
        bool ok = false;
        const qint64 whole = text.trimmed().toLongLong(&ok);
        return ok ? std::optional<QString>(QString::number(whole)) : std::nullopt;
    }
    case Family::Decimal: {
        const auto amount = amountOf(value);
        return amount ? std::optional<QString>(amount->toSqlText()) : std::nullopt;
    }
    case Family::Real: {
        bool ok = false;
        const double real = text.trimmed().toDouble(&ok);
        return ok && std::isfinite(real) ? std::optional<QString>(QString::number(real, 'g', 17)) : std::nullopt;
    }
    case Family::Text:
    case Family::Other:
        break;
    }
    QString quotedText = text;
    quotedText.replace(u'\'', QStringLiteral("''"));
    return u'\'' + quotedText + u'\'';
}

QString rowsText(qint64 count)
{
    return count == 1 ? QStringLiteral("1 row") : QStringLiteral("%1 rows").arg(count);
}

QString columnList(const std::vector<Column> &columns)
{
    QStringList names;
    for (const Column &column : columns)
        names << quoted(column.name);
    return names.join(QStringLiteral(", "));
}

// Row count and the exact total of each decimal column.
struct Tally {
    qint64 rows = 0;
    std::vector<Currency> totals;
};

std::vector<Column> decimalColumns(const std::vector<Column> &columns)
{
    std::vector<Column> decimals;
    std::copy_if(columns.begin(), columns.end(), std::back_inserter(decimals),
                 [](const Column &c) { return c.type.family == Family::Decimal; });
    return decimals;
}

bool tally(DbConnection &db, const QString &table, const std::vector<Column> &decimals, Tally &result, QString &problem)
{
    result = {0, std::vector<Currency>(decimals.size())};
    QString select = QStringLiteral("SELECT 1 AS counted");
    for (const Column &column : decimals)
        select += QStringLiteral(", ") + quoted(column.name);
    Recordset rows;
    DbError error;
    if (!db.open(select + QStringLiteral(" FROM ") + quoted(table), rows, &error)) {
        problem = error.text;
        return false;
    }
    for (; !rows.atEnd(); rows.MoveNext()) {
        ++result.rows;
        for (size_t i = 0; i < decimals.size(); ++i) {
            const QVariant value = rows.value(decimals[i].name);
            if (value.isNull())
                continue;
            const auto amount = amountOf(value);
            std::int64_t sum = 0;
            if (!amount || __builtin_add_overflow(result.totals[i].raw(), amount->raw(), &sum)) {
                problem = QStringLiteral("%1.%2 holds \"%3\", which cannot be totalled as an amount.")
                              .arg(table, decimals[i].name, value.toString());
                return false;
            }
            result.totals[i] = Currency::fromRaw(sum);
        }
    }
    return true;
}

class Copier {
public:
    Copier(DbConnection &source, const QString &sourceName, DbConnection &target, const QString &targetName)
        : source_(source), sourceName_(sourceName), target_(target), targetName_(targetName)
    {
    }

    Outcome run();

private:
    Outcome refuse(const QString &line) { return {Outcome::Status::Refused, {line}, 0}; }
    Outcome fail(const QString &line) { return {Outcome::Status::Failed, {line}, 0}; }

    std::optional<Outcome> checkSource();
    std::optional<Outcome> checkTarget(bool &needsSchema);
    std::optional<Outcome> planTables(QStringList &tables);
    std::optional<Outcome> columnsOf(const QString &table, std::vector<Column> &columns);
    std::optional<Outcome> copyRows(const QString &table, const std::vector<Column> &columns, qint64 &copied);
    QStringList verify(const QString &table, const std::vector<Column> &columns, QString &problem);

    DbConnection &source_;
    QString sourceName_;
    DbConnection &target_;
    QString targetName_;
};

std::optional<Outcome> Copier::checkSource()
{
    BudgetSchema::State state;
    DbError error;
    if (!BudgetSchema::inspect(source_, state, &error))
        return refuse(QStringLiteral("Cannot read the %1: %2").arg(sourceName_, error.text));
    if (state.kind == BudgetSchema::Kind::Empty)
        return refuse(QStringLiteral("The %1 holds no budget database.").arg(sourceName_));
    if (state.kind == BudgetSchema::Kind::Foreign)
        return refuse(QStringLiteral("The %1 is not a Kora-Budget database; adopt it first.").arg(sourceName_));
    if (state.version != BudgetSchema::programVersion())
        return refuse(QStringLiteral("The %1 has schema version %2, this program version %3; open it once with "
                                     "the matching Kora-Budget so that both are the same.")
                          .arg(sourceName_)
                          .arg(state.version)
                          .arg(BudgetSchema::programVersion()));
    return std::nullopt;
}

std::optional<Outcome> Copier::checkTarget(bool &needsSchema)
{
    BudgetSchema::State state;
    DbError error;
    if (!BudgetSchema::inspect(target_, state, &error))
        return refuse(QStringLiteral("Cannot read the %1: %2").arg(targetName_, error.text));
    needsSchema = state.kind == BudgetSchema::Kind::Empty;
    if (state.kind == BudgetSchema::Kind::Foreign)
        return refuse(QStringLiteral("The %1 holds other tables and is not a Kora-Budget database; nothing was "
                                     "copied.")
                          .arg(targetName_));
    if (state.kind == BudgetSchema::Kind::Budget && state.version != BudgetSchema::programVersion())
        return refuse(QStringLiteral("The %1 has schema version %2, not %3; nothing was copied.")
                          .arg(targetName_)
                          .arg(state.version)
                          .arg(BudgetSchema::programVersion()));
    QStringList tables;
    if (!BudgetCatalog::tables(target_, tables, &error))
        return refuse(QStringLiteral("Cannot read the %1: %2").arg(targetName_, error.text));
    QStringList holding;
    for (const QString &table : tables) {
        qint64 count = 0;
        if (table.compare(QStringLiteral("KoraSchema"), Qt::CaseInsensitive) == 0)
            continue;
        if (!BudgetCatalog::rowCount(target_, table, count, &error))
            return refuse(QStringLiteral("Cannot read the %1: %2").arg(targetName_, error.text));
        if (count > 0)
            holding << QStringLiteral("%1 (%2)").arg(table, rowsText(count));
    }
    if (!holding.isEmpty())
        return refuse(QStringLiteral("The %1 already holds data: %2. Copy only into an empty or newly created "
                                     "database; nothing was copied.")
                          .arg(targetName_, holding.join(QStringLiteral(", "))));
    return std::nullopt;
}

// The source's tables in the order they are copied, each present in the
// target (per-year copies of the tree are created there first).
std::optional<Outcome> Copier::planTables(QStringList &tables)
{
    DbError error;
    QStringList targetTables;
    if (!BudgetCatalog::tables(source_, tables, &error) || !BudgetCatalog::tables(target_, targetTables, &error))
        return fail(QStringLiteral("Cannot list the tables: %1").arg(error.text));
    QSet<QString> known;
    for (const QString &table : targetTables)
        known.insert(table.toLower());
    tables.removeIf([](const QString &t) { return t.compare(QStringLiteral("KoraSchema"), Qt::CaseInsensitive) == 0; });
    std::sort(tables.begin(), tables.end(),
              [](const QString &a, const QString &b) { return a.toLower() < b.toLower(); });
    QStringList unknown;
    for (const QString &table : tables) {
        if (known.contains(table.toLower()))
            continue;
        const auto yearId = BudgetSchema::yearTreeTableId(table);
        if (!yearId)
            unknown << table;
        else if (!BudgetSchema::createYearTreeCopy(target_, *yearId, &error))
            return fail(QStringLiteral("Cannot create %1 in the %2: %3").arg(table, targetName_, error.text));
    }
    if (!unknown.isEmpty())
        return refuse(QStringLiteral("The %1 holds tables that are not part of the budget schema: %2. They cannot "
                                     "be carried over; nothing was copied.")
                          .arg(sourceName_, unknown.join(QStringLiteral(", "))));
    return std::nullopt;
}

// The target's columns of a table, once both sides are seen to have the same ones.
std::optional<Outcome> Copier::columnsOf(const QString &table, std::vector<Column> &columns)
{
    DbError error;
    std::vector<Column> sourceColumns;
    if (!BudgetCatalog::columns(source_, table, sourceColumns, &error) ||
        !BudgetCatalog::columns(target_, table, columns, &error))
        return fail(QStringLiteral("Cannot read the columns of %1: %2").arg(table, error.text));
    auto missingFrom = [](const std::vector<Column> &from, const std::vector<Column> &in) {
        QStringList missing;
        for (const Column &column : from)
            if (std::none_of(in.begin(), in.end(),
                             [&](const Column &c) { return c.name.compare(column.name, Qt::CaseInsensitive) == 0; }))
                missing << column.name;
        return missing;
    };
    if (const QStringList extra = missingFrom(sourceColumns, columns); !extra.isEmpty())
        return refuse(QStringLiteral("%1 in the %2 has columns the budget schema does not have: %3. They cannot be "
                                     "carried over; nothing was copied.")
                          .arg(table, sourceName_, extra.join(QStringLiteral(", "))));
    if (const QStringList absent = missingFrom(columns, sourceColumns); !absent.isEmpty())
        return refuse(QStringLiteral("%1 in the %2 lacks the columns %3; nothing was copied.")
                          .arg(table, sourceName_, absent.join(QStringLiteral(", "))));
    return std::nullopt;
}

std::optional<Outcome> Copier::copyRows(const QString &table, const std::vector<Column> &columns, qint64 &copied)
{
    const QString names = columnList(columns);
    Recordset rows;
    DbError error;
    if (!source_.open(QStringLiteral("SELECT %1 FROM %2").arg(names, quoted(table)), rows, &error))
        return fail(QStringLiteral("Cannot read %1 from the %2: %3").arg(table, sourceName_, error.text));
    const QString insert = QStringLiteral("INSERT INTO %1 (%2) VALUES ").arg(quoted(table), names);
    QStringList batch;
    auto flush = [&]() -> std::optional<Outcome> {
        if (batch.isEmpty())
            return std::nullopt;
        if (!target_.execute(insert + batch.join(QStringLiteral(", ")), nullptr, &error))
            return fail(QStringLiteral("Cannot write %1 to the %2: %3").arg(table, targetName_, error.text));
        batch.clear();
        return std::nullopt;
    };
    copied = 0;
    for (; !rows.atEnd(); rows.MoveNext()) {
        QStringList values;
        for (const Column &column : columns) {
            const QVariant value = rows.value(column.name);
            const auto sql = literal(value, column.type.family);
            if (!sql)
                return fail(QStringLiteral("%1.%2 in the %3 holds \"%4\", which is not a value of type %5.")
                                .arg(table, column.name, sourceName_, value.toString(), column.declared));
            values << *sql;
        }
        batch << u'(' + values.join(QStringLiteral(", ")) + u')';
        ++copied;
        if (batch.size() == rowsPerInsert)
            if (auto failed = flush())
                return failed;
    }
    if (auto failed = flush())
        return failed;
    for (const Column &column : columns) {
        const QString resync = SqlDialectAdapter(target_.statementDialect()).generatedKeyResync(table, column.name);
        if (column.generated && !resync.isEmpty() && !target_.execute(resync, nullptr, &error))
            return fail(QStringLiteral("Cannot set the next %1.%2 in the %3: %4")
                            .arg(table, column.name, targetName_, error.text));
    }
    return std::nullopt;
}

// What differs between the two sides of a copied table; empty when they agree.
QStringList Copier::verify(const QString &table, const std::vector<Column> &columns, QString &problem)
{
    const std::vector<Column> decimals = decimalColumns(columns);
    Tally was;
    Tally is;
    if (!tally(source_, table, decimals, was, problem) || !tally(target_, table, decimals, is, problem))
        return {};
    QStringList differences;
    if (was.rows != is.rows)
        differences << QStringLiteral("%1: %2 in the source, %3 in the copy.")
                           .arg(table, rowsText(was.rows), rowsText(is.rows));
    for (size_t i = 0; i < decimals.size(); ++i)
        if (was.totals[i] != is.totals[i])
            differences << QStringLiteral("%1.%2: totals %3 in the source, %4 in the copy.")
                               .arg(table, decimals[i].name, was.totals[i].toSqlText(), is.totals[i].toSqlText());
    return differences;
}

Outcome Copier::run()
{
    bool needsSchema = false;
    if (auto refused = checkSource())
        return *refused;
    if (auto refused = checkTarget(needsSchema))
        return *refused;

    // The copy and its check must read one state of the source: a read
    // transaction holds an SQLite file still; PostgreSQL needs a snapshot.
    Transaction reading(source_);
    if (reading.begun() && source_.statementDialect() == SqlDialect::PostgreSQL &&
        !source_.execute(QStringLiteral("SET TRANSACTION ISOLATION LEVEL REPEATABLE READ")))
        return fail(QStringLiteral("Cannot read the %1 as one snapshot.").arg(sourceName_));
    Transaction writing(target_);
    if (!writing.begun())
        return fail(QStringLiteral("Cannot begin a transaction on the %1.").arg(targetName_));
    DbError error;
    if (needsSchema && !BudgetSchema::applyMigrations(target_, &error))
        return fail(QStringLiteral("Cannot create the schema in the %1: %2").arg(targetName_, error.text));
    QStringList tables;
    if (auto stopped = planTables(tables))
        return *stopped;

    Outcome outcome{Outcome::Status::Copied, {}, 0};
    std::vector<std::vector<Column>> columns(size_t(tables.size()));
    for (qsizetype i = 0; i < tables.size(); ++i) {
        qint64 copied = 0;
        if (auto stopped = columnsOf(tables[i], columns[size_t(i)]))
            return *stopped;
        if (auto stopped = copyRows(tables[i], columns[size_t(i)], copied))
            return *stopped;
        outcome.lines << QStringLiteral("%1: %2").arg(tables[i], rowsText(copied));
        outcome.rows += copied;
    }
    QStringList differences;
    for (qsizetype i = 0; i < tables.size(); ++i) {
        QString problem;
        differences << verify(tables[i], columns[size_t(i)], problem);
        if (!problem.isEmpty())
            return fail(QStringLiteral("Cannot verify %1: %2").arg(tables[i], problem));
    }
    if (!differences.isEmpty())
        return {Outcome::Status::Failed, differences, 0};
    if (!writing.commit(&error))
        return fail(QStringLiteral("Cannot commit the copy to the %1: %2").arg(targetName_, error.text));
    return outcome;
}

} // namespace

Outcome copy(DbConnection &source, const QString &sourceName, DbConnection &target, const QString &targetName)
{
    return Copier(source, sourceName, target, targetName).run();
}

} // namespace BudgetCopy
