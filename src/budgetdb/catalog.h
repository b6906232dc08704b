#pragma once

#include "dbconnection.h"

#include <QString>
#include <QStringList>

#include <vector>

// What a database says about its own tables, read the same way on every
// engine, so that an existing database can be compared with the schema and a
// whole database can be copied table by table.
namespace BudgetCatalog {

// How the program treats a column's values.
enum class Family {
    Text,
    Integer,
    Decimal, // exact, with `scale` places when the type states them
    Real,    // binary floating point
    Other,
};

struct ColumnType {
    Family family = Family::Other;
    int scale = -1; // decimal places of a Decimal; -1 when the type leaves them open
};

// By the type's name as SQLite and PostgreSQL spell it: "NUMERIC(19,4)",
// "character varying(30)", "double precision", "bigint", "TEXT".
ColumnType classify(const QString &declared);

struct Column {
    QString name;
    QString declared; // as the database states it
    ColumnType type;
    bool generated = false; // the database assigns the value on insert
};

// The base tables (not views), as stored; the engine's own tables left out.
bool tables(DbConnection &db, QStringList &names, DbError *error = nullptr);

// A table's or view's columns in order; none when there is no such relation.
bool columns(DbConnection &db, const QString &relation, std::vector<Column> &found, DbError *error = nullptr);

bool rowCount(DbConnection &db, const QString &table, qint64 &count, DbError *error = nullptr);

// A table or column name quoted for a statement: lower case, which is how
// PostgreSQL stores the unquoted names the stores use, and which SQLite matches
// without regard to case.
QString quoted(const QString &name);

} // namespace BudgetCatalog
