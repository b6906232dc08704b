#pragma once

#include "dbconnection.h"

#include <QStringList>

// Bringing in a budget database made before the version table existed: its
// tables are compared with the first release's, and when nothing is missing it
// is marked as a budget database and brought up to date. The first release is
// read back from a scratch database built by the schema's own statements, so
// nothing here restates the schema.
namespace BudgetAdoption {

struct Findings {
    // What is missing or of the wrong type, one line each, naming the table,
    // the column, the type expected and the type found. Empty: it can be adopted.
    QStringList problems;
    // Views the database lacks; adopting creates them.
    QStringList missingViews;
};

// False only when the database cannot be read (error says why).
bool examine(DbConnection &db, Findings &findings, DbError *error = nullptr);

// Creates the missing views and indexes, records the first release and
// applies every later migration, all in one transaction.
bool adopt(DbConnection &db, const Findings &findings, DbError *error = nullptr);

} // namespace BudgetAdoption
