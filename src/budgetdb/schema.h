#pragma once

#include "dbconnection.h"

#include <QString>

#include <optional>
#include <vector>

// The budget database's tables, created and upgraded by numbered migrations.
// Migration 1 is the whole schema; each later one is a change on top. All
// pending migrations run in one transaction, so a database is never left
// half-upgraded, and a database written by a newer program is refused.
namespace BudgetSchema {

int programVersion();

enum class Kind {
    Empty,   // no tables: ready to be created
    Budget,  // holds the version table
    Foreign, // has tables but is not a budget database
};

struct State {
    Kind kind = Kind::Empty;
    int version = 0; // for Kind::Budget
};

bool inspect(DbConnection &db, State &state, DbError *error = nullptr);

// Creates an empty database's schema or applies the missing migrations. Fails
// with a clear text for a foreign database or one newer than this program.
bool migrate(DbConnection &db, DbError *error = nullptr);
// The same inside the caller's open transaction, for work that must stand or
// fall with the schema (a copy into an empty database, an adoption).
bool applyMigrations(DbConnection &db, DbError *error = nullptr);

// One statement of the first release's schema.
struct SchemaObject {
    enum class Type { Table, Index, View };
    Type type = Type::Table;
    QString name; // the table's or view's name; empty for an index
    QString sql;
};

// The first release: what a budget database made before the version table
// existed holds, and what every later migration builds on.
std::vector<SchemaObject> firstRelease(SqlDialect dialect);
// Marks a database holding the first release as a budget database (in the caller's transaction).
bool recordFirstRelease(DbConnection &db, DbError *error = nullptr);

// Whether rows reach this table by position, so its columns must stand in the schema's order.
bool insertedByPosition(const QString &table);
// "2024_summarytree" -> "2024": the fund-year table id of a per-year copy of the tree.
std::optional<QString> yearTreeTableId(const QString &table);
bool isYearTreeCopy(const QString &table);

// Creates the per-year copy of the summary tree for a fund-year table id
// (the table the new-year roll-over copies the live tree from). Idempotent.
bool createYearTreeCopy(DbConnection &db, const QString &tableId, DbError *error = nullptr);

} // namespace BudgetSchema
