#pragma once

#include "dbconnection.h"

#include <QStringList>

// Copies a whole budget database into another one on any backend: every
// table of the schema and every per-year copy of the tree (views are made by
// the schema, not copied). The target must be empty or an empty budget
// database; everything written to it, its schema included, is one transaction,
// committed only when every table's row count and amount totals match the
// source's exactly.
namespace BudgetCopy {

struct Outcome {
    enum class Status {
        Copied,
        Refused, // source or target unsuitable; nothing was written
        Failed,  // a statement or the verification failed; the target was rolled back
    };
    Status status = Status::Failed;
    // Copied: one line per table; otherwise why, one line per cause.
    QStringList lines;
    qint64 rows = 0;
};

// The names say how messages name the two databases ("SQLite file ...").
Outcome copy(DbConnection &source, const QString &sourceName, DbConnection &target, const QString &targetName);

} // namespace BudgetCopy
