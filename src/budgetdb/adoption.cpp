#include "adoption.h"

#include "adoconnection.h"
#include "catalog.h"
#include "schema.h"

#include <algorithm>

namespace BudgetAdoption {
namespace {

using BudgetCatalog::Column;
using BudgetCatalog::Family;
using BudgetSchema::SchemaObject;

struct Relation {
    SchemaObject object;
    std::vector<Column> columns;
};

// The first release's tables and views as a database built by its statements reports them.
bool firstReleaseShape(std::vector<Relation> &shape, DbError *error)
{
    BudgetDbConfig scratchConfig;
    scratchConfig.backend = BudgetDbConfig::Backend::SQLite;
    scratchConfig.sqliteFile = QStringLiteral(":memory:");
    clsAdoConnection scratch;
    scratch.configure(scratchConfig);
    scratch.setSchemaPolicy(clsAdoConnection::SchemaPolicy::LeaveAlone);
    if (!scratch.OpenConnection()) {
        if (error)
            *error = {-1, QStringLiteral("Cannot open a scratch SQLite database: ") + scratch.driverMessage()};
        return false;
    }
    DbConnection &db = *scratch.dbConnection();
    const std::vector<SchemaObject> objects = BudgetSchema::firstRelease(SqlDialect::SQLite);
    for (const SchemaObject &object : objects)
        if (!db.execute(object.sql, nullptr, error))
            return false;
    shape.clear();
    for (const SchemaObject &object : objects) {
        if (object.type == SchemaObject::Type::Index)
            continue;
        Relation relation{object, {}};
        if (!BudgetCatalog::columns(db, object.name, relation.columns, error))
            return false;
        shape.push_back(std::move(relation));
    }
    return true;
}

bool fits(const Column &expected, const Column &found)
{
    if (expected.generated && !found.generated)
        return false;
    const BudgetCatalog::ColumnType &want = expected.type;
    const BudgetCatalog::ColumnType &have = found.type;
    if (want.family == Family::Decimal)
        return have.family == Family::Decimal && (have.scale < 0 || have.scale >= want.scale);
    return have.family == want.family;
}

QString expectedType(const Column &column)
{
    if (column.generated)
        return column.declared + QStringLiteral(" assigned by the database");
    if (column.type.family == Family::Decimal)
        return QStringLiteral("%1 (an exact decimal with at least %2 places)")
            .arg(column.declared)
            .arg(column.type.scale);
    return column.declared;
}

QString foundType(const Column &expected, const Column &found)
{
    QString type = found.declared.isEmpty() ? QStringLiteral("no declared type") : found.declared;
    if (expected.generated && !found.generated)
        type += QStringLiteral(" not assigned by the database");
    return type;
}

QStringList names(const std::vector<Column> &columns)
{
    QStringList list;
    for (const Column &column : columns)
        list << column.name;
    return list;
}

// Compares one table or view found in the database with what the schema expects of it.
void compare(const QString &name, const std::vector<Column> &expected, const std::vector<Column> &found,
             QStringList &problems)
{
    bool complete = true;
    for (const Column &want : expected) {
        const auto have = std::find_if(found.begin(), found.end(), [&](const Column &c) {
            return c.name.compare(want.name, Qt::CaseInsensitive) == 0;
        });
        if (have == found.end()) {
            problems << QStringLiteral("%1.%2: missing (expected %3).").arg(name, want.name, expectedType(want));
            complete = false;
        } else if (!fits(want, *have)) {
            problems << QStringLiteral("%1.%2: expected %3, found %4.")
                            .arg(name, want.name, expectedType(want), foundType(want, *have));
        }
    }
    if (!complete || !BudgetSchema::insertedByPosition(name))
        return;
    const QStringList wanted = names(expected);
    const QStringList have = names(found);
    if (have.join(u',').compare(wanted.join(u','), Qt::CaseInsensitive) != 0)
        problems << QStringLiteral("%1: rows are written by position, so its columns must be exactly %2, in this "
                                   "order; found %3.")
                        .arg(name, wanted.join(QStringLiteral(", ")), have.join(QStringLiteral(", ")));
}

} // namespace

bool examine(DbConnection &db, Findings &findings, DbError *error)
{
    findings = {};
    std::vector<Relation> shape;
    if (!firstReleaseShape(shape, error))
        return false;
    std::vector<Column> found;
    const std::vector<Column> *tree = nullptr;
    for (const Relation &relation : shape) {
        if (!BudgetCatalog::columns(db, relation.object.name, found, error))
            return false;
        const bool view = relation.object.type == SchemaObject::Type::View;
        if (relation.object.name.compare(QStringLiteral("BudgetSummaryTree"), Qt::CaseInsensitive) == 0)
            tree = &relation.columns;
        if (found.empty() && view)
            findings.missingViews << relation.object.name;
        else if (found.empty())
            findings.problems << QStringLiteral("Table %1: missing.").arg(relation.object.name);
        else
            compare(relation.object.name, relation.columns, found, findings.problems);
    }
    // The per-year copies of the tree are copied back into it with "select *".
    QStringList tables;
    if (!BudgetCatalog::tables(db, tables, error))
        return false;
    for (const QString &table : tables) {
        if (!tree || !BudgetSchema::isYearTreeCopy(table))
            continue;
        if (!BudgetCatalog::columns(db, table, found, error))
            return false;
        compare(table, *tree, found, findings.problems);
    }
    return true;
}

bool adopt(DbConnection &db, const Findings &findings, DbError *error)
{
    Transaction transaction(db);
    if (!transaction.begun()) {
        if (error)
            *error = {-1, QStringLiteral("Cannot begin a transaction on the database.")};
        return false;
    }
    for (const SchemaObject &object : BudgetSchema::firstRelease(db.statementDialect())) {
        const bool wanted = object.type == SchemaObject::Type::Index ||
                            (object.type == SchemaObject::Type::View &&
                             findings.missingViews.contains(object.name, Qt::CaseInsensitive));
        if (wanted && !db.execute(object.sql, nullptr, error))
            return false;
    }
    return BudgetSchema::recordFirstRelease(db, error) && BudgetSchema::applyMigrations(db, error) &&
           transaction.commit(error);
}

} // namespace BudgetAdoption
