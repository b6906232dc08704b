#pragma once

#include "dbconnection.h"

#include <QDate>
#include <QString>
#include <QStringList>

#include <optional>

// The copy of the budget database taken before a year is rolled forward. An
// SQLite database is copied by the program itself; a server's database is
// copied with the server's own dump tool, which the dialog tells the user how
// to run, naming the other workstations still connected.
namespace NewYearBackup {

// The first free name beside `databaseFile` for the copy taken on `day`
// before closing `closingYear`: "budget-before-2025-rollover-2026-11-23.sqlite",
// then "...-2.sqlite" and so on.
QString backupPathFor(const QString &databaseFile, const QString &closingYear, QDate day);

// Writes a consistent copy of an SQLite budget database (SQLite's own
// VACUUM INTO, which reads one snapshot) to backupPathFor(...). Must be
// called outside a transaction. False with `error` naming the file otherwise.
bool writeSqliteCopy(DbConnection &db, const QString &closingYear, QDate day, QString &written,
                     DbError *error = nullptr);

// The pg_dump command that copies a PostgreSQL budget database into a file
// named for the closing year.
QString serverDumpCommand(DbConnection &db, const QString &closingYear);

// The other sessions on the same PostgreSQL database, as
// "host (user, program)", from the server's activity list.
bool otherWorkstations(DbConnection &db, QStringList &workstations, DbError *error = nullptr);

} // namespace NewYearBackup
