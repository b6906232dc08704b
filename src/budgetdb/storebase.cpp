#include "storebase.h"

#include <algorithm>

// The rows of a batch (where = the batch's condition) as they stood before its first write.
struct StoreBase::Batch {
    AuditedRows rows;
    int transaction = 0; // the openTransactions_ it was opened in
    AuditTrail::Snapshot before;
};

namespace {

// Writes share a batch when they read the same rows the same way. Compared
// field by field: a batch's conditions may be long, and lists shared with the
// batch's own compare without reading them.
bool sameBatch(const AuditedRows &a, const AuditedRows &b)
{
    return a.table == b.table && a.batch == b.batch && a.key == b.key && a.account == b.account &&
           std::equal(a.columns.begin(), a.columns.end(), b.columns.begin(), b.columns.end(),
                      [](const AuditColumn &x, const AuditColumn &y) { return x.name == y.name && x.kind == y.kind; });
}

} // namespace

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
    if (db().BeginTrans(&error)) {
        ++openTransactions_;
        return true;
    }
    reportDbError(QStringLiteral("BeginTransaction"), error);
    return false;
}

bool StoreBase::AbortTransaction()
{
    DbError error;
    const bool undone = db().RollbackTrans(&error);
    closeTransaction();
    if (!undone)
        reportDbError(QStringLiteral("AbortTransaction"), error);
    return undone;
}

bool StoreBase::Endtransaction()
{
    const QString sub = QStringLiteral("Endtransaction");
    DbError error;
    bool committed = recordBatches(sub);
    if (!committed)
        db().RollbackTrans();
    else if (!(committed = db().CommitTrans(&error)))
        reportDbError(sub, error);
    closeTransaction();
    return committed;
}

StoreBase::Batch *StoreBase::batchOf(const QString &sub, const AuditedRows &rows)
{
    const auto open = std::find_if(batches_.begin(), batches_.end(),
                                   [&](const std::unique_ptr<Batch> &batch) { return sameBatch(batch->rows, rows); });
    if (open != batches_.end())
        return open->get();
    auto batch = std::make_unique<Batch>(Batch{rows, openTransactions_, {}});
    DbError error;
    if (!AuditTrail::snapshot(db(), rows, rows.batch, batch->before, &error)) {
        reportDbError(sub, error);
        return nullptr;
    }
    batches_.push_back(std::move(batch));
    return batches_.back().get();
}

bool StoreBase::recordBatches(const QString &sub)
{
    return std::all_of(batches_.begin(), batches_.end(), [&](const std::unique_ptr<Batch> &batch) {
        return batch->transaction < openTransactions_ || recordChanges(sub, batch->rows, batch->rows.batch, batch->before);
    });
}

void StoreBase::closeTransaction()
{
    if (openTransactions_ == 0)
        return;
    std::erase_if(batches_, [this](const std::unique_ptr<Batch> &batch) {
        return batch->transaction >= openTransactions_;
    });
    --openTransactions_;
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
    // In a batch the rows were (or are now) read for the whole save; Endtransaction records it.
    if (!rows.batch.isEmpty() && openTransactions_ > 0)
        return batchOf(sub, rows) && write();
    AuditTrail::Snapshot before;
    DbError error;
    if (!AuditTrail::snapshot(db(), rows, before, &error)) {
        reportDbError(sub, error);
        return false;
    }
    return write() && recordChanges(sub, rows, {rows.where}, before);
}

bool StoreBase::recordChanges(const QString &sub, const AuditedRows &rows, const QStringList &conditions,
                              const AuditTrail::Snapshot &before)
{
    AuditTrail::Snapshot after;
    DbError error;
    if (AuditTrail::snapshot(db(), rows, conditions, after, &error) &&
        AuditTrail::record(db(), auditTask_, AuditTrail::changes(rows, before, after), &error))
        return true;
    reportDbError(sub, error);
    return false;
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
