#pragma once

#include "dbconnection.h"

#include <QString>

// Rewrites the statements the stores send, written for the original ODBC
// engine, into text SQLite or PostgreSQL accept. Only these constructs change:
//   convert(x, sql_double|sql_integer|...)  -> CAST(x AS ...)
//   if(condition, a, b)                     -> CASE WHEN condition THEN a ELSE b END
//   a number run into a word (0Where)       -> "0 Where"
//   <TableId>_Summarytree                   -> a quoted lower-case name, so ids that
//                                              start with a digit stay one identifier
// Everything inside quotes is left untouched. An ODBC target that is neither
// (the original engine) gets the text unchanged.
class SqlDialectAdapter {
public:
    explicit SqlDialectAdapter(SqlDialect target = SqlDialect::SQLite) : target_(target) {}

    SqlDialect target() const { return target_; }
    QString adapt(const QString &sql) const;

    // The stored name of a per-year copy of the summary tree, as the adapter writes it.
    static QString yearTreeTableName(const QString &tableId);

    // A query giving a table's or view's columns in order as name, declared
    // (the type as the database states it) and generated (1 when the database
    // assigns the value on insert); the relation is named as an unquoted
    // statement names it. Empty for an engine whose catalog is unknown.
    QString columnCatalogQuery(const QString &relation) const;
    // A statement that moves a generated key past the rows written with
    // explicit keys; empty where the engine does so by itself.
    QString generatedKeyResync(const QString &table, const QString &column) const;

private:
    SqlDialect target_;
};
