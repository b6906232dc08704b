#pragma once

#include "currency.h"

#include <QString>
#include <QVariant>

#include <memory>
#include <optional>
#include <vector>

class QSqlQuery;

// What the database said when a statement failed.
struct DbError {
    int number = 0; // the driver's native error code when it has one, else -1
    QString text;
};

enum class SqlDialect { SQLite, PostgreSQL, Odbc };

// A forward-only result read the way the stores read a recordset: test
// atEnd() right after opening, read the current row by column name (case-
// insensitive), MoveNext() to the next.
class Recordset {
public:
    Recordset();
    ~Recordset();
    Recordset(Recordset &&) noexcept;
    Recordset &operator=(Recordset &&) noexcept;

    bool atEnd() const;
    void MoveNext();
    void Close();

    bool hasColumn(const QString &column) const;
    bool isNull(const QString &column) const;
    QVariant value(const QString &column) const;
    // Text with a null read as "".
    QString text(const QString &column) const;
    // Whole number by numeric value of the column (text "12 " reads 12); null or non-numeric reads 0.
    qint64 number(const QString &column) const;
    // Amount rounded to four places (SQLite hands decimals back as doubles); null reads 0.
    Currency amount(const QString &column) const;
    double real(const QString &column) const;

    // The result's columns in select-list order, for readers that take every
    // column (the report engine): name, whether the database declares it
    // numeric (PostgreSQL hands numerics over as text), and the value by position.
    int columnCount() const;
    QString columnName(int index) const;
    bool columnIsNumeric(int index) const;
    QVariant value(int index) const;

private:
    friend class DbConnection;
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

// The one open connection to the budget database, shared by every store.
// Statements are sent as the stores write them; the connection rewrites only
// the few constructs the backend's dialect will not take (see SqlDialectAdapter).
// A default-constructed DbConnection is closed: every statement fails.
class DbConnection {
public:
    DbConnection();
    ~DbConnection();
    DbConnection(const DbConnection &) = delete;
    DbConnection &operator=(const DbConnection &) = delete;

    bool isOpen() const;
    // The backend the connection runs on.
    SqlDialect dialect() const;
    // The dialect statements are rewritten for (an ODBC source says which engine it is).
    SqlDialect statementDialect() const;

    // Runs a row-changing statement. On success fills the records-affected count.
    bool execute(const QString &sql, qint64 *recordsAffected = nullptr, DbError *error = nullptr);
    // Opens a query; the recordset is positioned on the first row (or atEnd()).
    bool open(const QString &sql, Recordset &rows, DbError *error = nullptr);

    // Transactions nest: inside an open one, BeginTrans sets a savepoint,
    // CommitTrans keeps the work since it in the enclosing transaction and
    // RollbackTrans undoes only that work. The outermost commit or rollback decides.
    bool BeginTrans(DbError *error = nullptr);
    bool CommitTrans(DbError *error = nullptr);
    bool RollbackTrans(DbError *error = nullptr);
    bool inTransaction() const;
    // How many transactions are open: 0 none, 1 the outermost, more nested ones.
    int transactionDepth() const;

    // The statement text actually sent for sql on this connection's backend.
    QString adapt(const QString &sql) const;

    // The Qt connection name this connection runs on; empty when closed.
    QString connectionName() const;

private:
    friend class clsAdoConnection;
    // Takes over an open Qt connection; statements are rewritten for `statements`.
    void attach(const QString &connectionName, SqlDialect backend, SqlDialect statements);
    // Closes and removes the Qt connection (idempotent).
    void detach();
    // Runs "<statement> <name of the innermost savepoint>".
    bool runSavepointStatement(const QString &statement, DbError *error);

    struct Impl;
    std::unique_ptr<Impl> impl_;
};

// Single-quoted SQL text literal with blanks trimmed and an embedded apostrophe
// doubled, so "Superintendent's Office" is stored as typed and nothing a user
// types can change a statement.
QString sqlText(const QString &value);

// Rolls back unless commit() was called (and succeeded).
class Transaction {
public:
    explicit Transaction(DbConnection &connection);
    ~Transaction();
    Transaction(const Transaction &) = delete;
    Transaction &operator=(const Transaction &) = delete;
    bool begun() const { return begun_; }
    bool commit(DbError *error = nullptr);

private:
    DbConnection &connection_;
    bool begun_ = false;
    bool done_ = false;
};
