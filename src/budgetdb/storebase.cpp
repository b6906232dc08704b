#include "storebase.h"

StoreBase::StoreBase(QString className)
{
    error_.setErrorCls(std::move(className));
}

StoreBase::~StoreBase() = default;

const std::shared_ptr<DbConnection> &StoreBase::adoConnection()
{
    if (!connection_)
        connection_ = std::make_shared<DbConnection>();
    return connection_;
}

void StoreBase::setAdoConnection(std::shared_ptr<DbConnection> connection)
{
    connection_ = std::move(connection);
}

DbConnection &StoreBase::db()
{
    return *adoConnection();
}

bool StoreBase::BeginTransaction()
{
    DbError error;
    if (db().BeginTrans(&error))
        return true;
    reportDbError(QStringLiteral("BeginTransaction"), error);
    return false;
}

bool StoreBase::AbortTransaction()
{
    DbError error;
    if (db().RollbackTrans(&error))
        return true;
    reportDbError(QStringLiteral("AbortTransaction"), error);
    return false;
}

bool StoreBase::Endtransaction()
{
    DbError error;
    if (db().CommitTrans(&error))
        return true;
    reportDbError(QStringLiteral("Endtransaction"), error);
    return false;
}

void StoreBase::reportDbError(const QString &sub, const DbError &error)
{
    error_.setDatabaseError(error.number, sub, error.text);
}

void StoreBase::report(int number, const QString &sub, const QString &text)
{
    error_.set(number, sub, text);
}

StoreBase::FailText StoreBase::countThen(const QString &suffix)
{
    return [suffix](qint64 count) { return QString::number(count) + suffix; };
}

StoreBase::FailText StoreBase::always(const QString &text)
{
    return [text](qint64) { return text; };
}

bool StoreBase::atomically(const QString &sub, const std::function<bool()> &work)
{
    DbError error;
    if (!db().BeginTrans(&error)) {
        reportDbError(sub, error);
        return false;
    }
    if (!work()) {
        db().RollbackTrans();
        return false;
    }
    if (!db().CommitTrans(&error)) {
        reportDbError(sub, error);
        return false;
    }
    return true;
}

bool StoreBase::executeCounted(const QString &sql, const QString &sub, Expect expect, const FailText &failText)
{
    qint64 affected = 0;
    if (!run(sql, sub, &affected))
        return false;
    if (expect == Expect::ExactlyOne ? affected == 1 : affected >= 1)
        return true;
    report(999, sub, failText(affected));
    return false;
}

bool StoreBase::changeRows(const QString &sql, const QString &sub, Expect expect, const FailText &failText,
                           const AuditedRows &rows)
{
    return atomicallyAudited(sub, rows, [&] { return executeCounted(sql, sub, expect, failText); });
}

bool StoreBase::atomicallyAudited(const QString &sub, const AuditedRows &rows, const std::function<bool()> &write)
{
    return atomically(sub, [&] { return audited(sub, rows, write); });
}

bool StoreBase::audited(const QString &sub, const AuditedRows &rows, const std::function<bool()> &write)
{
    AuditTrail::Snapshot before;
    AuditTrail::Snapshot after;
    DbError error;
    if (!AuditTrail::snapshot(db(), rows, before, &error)) {
        reportDbError(sub, error);
        return false;
    }
    if (!write())
        return false;
    if (!AuditTrail::snapshot(db(), rows, after, &error) ||
        !AuditTrail::record(db(), auditTask_, AuditTrail::changes(rows, before, after), &error)) {
        reportDbError(sub, error);
        return false;
    }
    return true;
}

bool StoreBase::recordSummary(const QString &sub, const QString &table, const QString &text)
{
    AuditEntry entry;
    entry.table = table;
    entry.newValue = text;
    DbError error;
    if (AuditTrail::record(db(), auditTask_, {entry}, &error))
        return true;
    reportDbError(sub, error);
    return false;
}

bool StoreBase::run(const QString &sql, const QString &sub, qint64 *affected)
{
    DbError error;
    if (db().execute(sql, affected, &error))
        return true;
    reportDbError(sub, error);
    return false;
}

bool StoreBase::query(const QString &sql, const QString &sub, Recordset &rows)
{
    DbError error;
    if (db().open(sql, rows, &error))
        return true;
    reportDbError(sub, error);
    return false;
}

bool StoreBase::retrieveFirst(const QString &sql, const QString &sub, const QString &notFoundText,
                              const std::function<void(const Recordset &)> &fill)
{
    Recordset rows;
    if (!query(sql, sub, rows))
        return false;
    if (rows.atEnd()) {
        report(999, sub, notFoundText);
        return false;
    }
    fill(rows);
    rows.Close();
    return true;
}
