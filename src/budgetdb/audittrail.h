#pragma once

#include "dbconnection.h"

#include <QDate>
#include <QMap>
#include <QString>
#include <QStringList>

#include <vector>

// The audit trail: every change to the budget figures, column by column, with
// when (UTC), who (the Kora-Fund user), where (the workstation) and in which
// task it was made. Entries are written in the transaction of the change they
// describe, so a change that is rolled back leaves none.
namespace AuditTask {
inline const QString ProposedBudget = QStringLiteral("Proposed Budget");
inline const QString NewBudgetYear = QStringLiteral("New Budget Year");
inline const QString AccountCodes = QStringLiteral("Account Codes");
inline const QString LineItems = QStringLiteral("Line Items");
inline const QString FundBalances = QStringLiteral("Fund Balances");
inline const QString Equalization = QStringLiteral("Equalization");
inline const QString Proposals = QStringLiteral("Proposals");
inline const QString ReportFormats = QStringLiteral("Report Formats");
} // namespace AuditTask

struct AuditColumn {
    // How a value is written into the trail, the same on every backend.
    enum class Kind { Text, Amount, Rate };
    QString name;
    Kind kind = Kind::Text;
};

// The rows one write may change: read before and after it and compared.
struct AuditedRows {
    QString table;
    QStringList key; // the columns that name a row
    std::vector<AuditColumn> columns;
    QString where;   // picks every row the write may touch, before and after it; empty: all
    QString account; // an SQL expression for the row's account code; empty when rows have none
    // Conditions whose rows together take in `where`'s (and maybe more), shared by
    // the writes of one save: inside a transaction the caller opened through the
    // store, the rows they pick are read once before the first write and once at
    // the end, not per write. Several conditions keep each read's statement short.
    // Empty: each write's rows are read on their own.
    QStringList batch = {};
};

struct AuditEntry {
    QString changedAt; // ISO 8601, UTC
    QString user;
    QString workstation;
    QString task;
    QString table;
    QString rowKey; // "AcctId=12, ProposalID=1"
    QString accountCode;
    QString column; // empty for a summary of bulk work
    QString oldValue;
    QString newValue;
};

struct AuditFilter {
    QString accountCode; // the codes beginning so
    QString user;
    QString task;
    QDate from; // UTC days, inclusive; invalid: open
    QDate to;
};

namespace AuditTrail {

struct Row {
    QString accountCode;
    QStringList values; // in the order of AuditedRows::columns
};
using Snapshot = QMap<QString, Row>; // by row key

// The `account` of rows that name their account by AcctId.
QString accountCodeOf(const QString &table);

bool snapshot(DbConnection &db, const AuditedRows &rows, Snapshot &into, DbError *error);
// The rows each condition picks (instead of `where`'s), together.
bool snapshot(DbConnection &db, const AuditedRows &rows, const QStringList &conditions, Snapshot &into,
              DbError *error);
// One entry per changed column; every column of a row that came or went.
std::vector<AuditEntry> changes(const AuditedRows &rows, const Snapshot &before, const Snapshot &after);
// Stamps the entries with the time, the user, the workstation and the task and
// inserts them on `db`, in whatever transaction is open there.
bool record(DbConnection &db, const QString &task, std::vector<AuditEntry> entries, DbError *error);

// The entries the filter lets through, newest first.
bool read(DbConnection &db, const AuditFilter &filter, std::vector<AuditEntry> &entries, DbError *error);
// The users and the tasks that have entries, for the filters' lists.
bool users(DbConnection &db, QStringList &values, DbError *error);
bool tasks(DbConnection &db, QStringList &values, DbError *error);

} // namespace AuditTrail
