#pragma once

#include "dbconnection.h"

#include <QString>
#include <QStringList>

namespace demo {

// Collects rows for one table and sends them as multi-row inserts, far fewer
// round trips than one statement per row.
class RowBatch {
public:
    // `head` is the insert up to VALUES: "INSERT INTO Bals (Fund, CurrentBalance, PreviousBalance)".
    RowBatch(DbConnection &db, QString head, int rowsPerStatement = 250);

    // Values of one row, already written as SQL literals.
    bool add(const QStringList &values, DbError *error);
    // Sends what is still held.
    bool flush(DbError *error);

private:
    DbConnection &db_;
    QString head_;
    int rowsPerStatement_;
    QStringList rows_;
};

// A quoted text literal that keeps its blanks, for values whose padding is
// part of what is stored (a right-aligned sort order, " Fiscal Year 2025").
QString exactText(const QString &value);

} // namespace demo
