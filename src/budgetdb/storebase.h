#pragma once

#include "audittrail.h"
#include "dbconnection.h"
#include "errobject.h"

#include <functional>
#include <memory>
#include <vector>

// What every budget-database store shares: the connection, its own error
// object, the transaction calls, and the few statement shapes the stores run.
// Each helper leaves the error object filled and returns false on failure; a
// database error is reported with the driver's number and the database's text.
//
// The transaction rule of every store: each operation that writes is all or
// nothing. It runs in a transaction of its own, or, when the caller has one
// open, in a savepoint inside the caller's; on failure everything it did is
// undone back to where it began, so the caller can still commit the rest or
// abort it all. The ...Batch operations follow the same rule; their names only
// say that callers group them between BeginTransaction and Endtransaction.
//
// Every write is recorded in the audit trail inside the same work, under the
// task the window that owns the store has set (setAuditTask). Writes made in a
// transaction opened by BeginTransaction whose rows name a `batch` are audited
// together: their rows read once before the first and once when Endtransaction
// ends that transaction, the entries inserted before it commits (and dropped
// with an AbortTransaction).
class StoreBase {
public:
    explicit StoreBase(QString className);
    virtual ~StoreBase();

    // The shared connection; a store read before one is set gets a closed one.
    const std::shared_ptr<DbConnection> &adoConnection();
    void setAdoConnection(std::shared_ptr<DbConnection> connection);

    clsErrObject &Error() { return error_; }
    const clsErrObject &Error() const { return error_; }

    // Nest as DbConnection's transactions do. A failing Endtransaction has ended
    // the transaction (rolled back).
    bool BeginTransaction();
    bool AbortTransaction();
    bool Endtransaction();

    // The task the audit trail names for this store's changes (AuditTask).
    void setAuditTask(QString task) { auditTask_ = std::move(task); }

protected:
    DbConnection &db();

    // Fills the error object from a database failure in operation `sub`.
    void reportDbError(const QString &sub, const DbError &error);
    // Fills the error object: number, then text, then procedure.
    void report(int number, const QString &sub, const QString &text);

    // The failure text of a statement that touched the wrong number of rows.
    using FailText = std::function<QString(qint64 count)>;
    // "<count><suffix>", e.g. "0 records to be update".
    static FailText countThen(const QString &suffix);
    // A fixed text whatever the count.
    static FailText always(const QString &text);

    // Runs `work` under the transaction rule above: committed (or its savepoint
    // kept) when it returns true, undone when it returns false, keeping work's report.
    bool atomically(const QString &sub, const std::function<bool()> &work);

    enum class Expect { ExactlyOne, AtLeastOne };
    // A row-changing statement whose count must meet `expect`; any other count
    // reports (999, sub, failText(count)). No transaction of its own: for use
    // inside atomically().
    bool executeCounted(const QString &sql, const QString &sub, Expect expect, const FailText &failText);
    // executeCounted as one all-or-nothing operation, audited over `rows`.
    bool changeRows(const QString &sql, const QString &sub, Expect expect, const FailText &failText,
                    const AuditedRows &rows);

    // Runs `write` and records each column it changed among `rows`. No
    // transaction of its own: for use inside atomically(), so the entries
    // stand or fall with the change.
    bool audited(const QString &sub, const AuditedRows &rows, const std::function<bool()> &write);
    // audited() as one all-or-nothing operation.
    bool atomicallyAudited(const QString &sub, const AuditedRows &rows, const std::function<bool()> &write);
    // One entry for bulk work on `table`, described by `text` (inside atomically()).
    bool recordSummary(const QString &sub, const QString &table, const QString &text);

    // Runs a statement with no count rule; false (and reported) on a database error.
    bool run(const QString &sql, const QString &sub, qint64 *affected = nullptr);

    // Opens a query; false (and reported) on a database error.
    bool query(const QString &sql, const QString &sub, Recordset &rows);

    // First row into `fill`; an empty result reports (999, sub, notFoundText).
    bool retrieveFirst(const QString &sql, const QString &sub, const QString &notFoundText,
                       const std::function<void(const Recordset &)> &fill);

    // One new item per row, appended to `items` in the statement's order.
    template <typename Item>
    bool readList(const QString &sql, const QString &sub, std::vector<Item> &items,
                  const std::function<void(const Recordset &, Item &)> &fill)
    {
        Recordset rows;
        if (!query(sql, sub, rows))
            return false;
        for (; !rows.atEnd(); rows.MoveNext()) {
            Item item;
            fill(rows, item);
            items.push_back(std::move(item));
        }
        rows.Close();
        return true;
    }

private:
    struct Batch;
    // The batch `rows` belong to, opened (its rows read) on first use; null on failure.
    Batch *batchOf(const QString &sub, const AuditedRows &rows);
    // Records the batches of the innermost transaction opened by BeginTransaction.
    bool recordBatches(const QString &sub);
    // Reads the rows `conditions` pick again and records how they differ from `before`.
    bool recordChanges(const QString &sub, const AuditedRows &rows, const QStringList &conditions,
                       const AuditTrail::Snapshot &before);
    // That transaction is over: its batches are done with.
    void closeTransaction();

    std::shared_ptr<DbConnection> connection_;
    clsErrObject error_;
    QString auditTask_;
    int openTransactions_ = 0; // opened by BeginTransaction and not yet ended
    std::vector<std::unique_ptr<Batch>> batches_;
};
