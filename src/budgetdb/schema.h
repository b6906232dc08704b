#pragma once

#include "dbconnection.h"

#include <QString>

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

// Creates the per-year copy of the summary tree for a fund-year table id
// (the table the new-year roll-over copies the live tree from). Idempotent.
bool createYearTreeCopy(DbConnection &db, const QString &tableId, DbError *error = nullptr);

} // namespace BudgetSchema
