#pragma once

#include "dbconnection.h"
#include "errobject.h"

#include <functional>
#include <memory>
#include <vector>

// What every budget-database store shares: the connection, its own error
// object, the transaction calls, and the few statement shapes the stores run.
// Each helper leaves the error object filled and returns false on failure; a
// database error is reported with the driver's number and text.
class StoreBase {
public:
    explicit StoreBase(QString className);
    virtual ~StoreBase();

    // The shared connection; a store read before one is set gets a closed one.
    const std::shared_ptr<DbConnection> &adoConnection();
    void setAdoConnection(std::shared_ptr<DbConnection> connection);

    clsErrObject &Error() { return error_; }
    const clsErrObject &Error() const { return error_; }

    bool BeginTransaction();
    bool AbortTransaction();
    bool Endtransaction();

protected:
    DbConnection &db();

    // Fills the error object from a database failure in operation `sub`.
    void reportDbError(const QString &sub, const DbError &error);
    // Fills the error object: number, then text, then procedure.
    void report(int number, const QString &sub, const QString &text);

    // An insert of exactly one row in its own transaction; any other count
    // rolls back and reports 999 "Invalid number of records added!".
    bool addOneRow(const QString &sql, const QString &sub);

    enum class OwnTransaction { Yes, No };
    enum class OnMiss { RollBack, LeaveOpen };
    enum class Expect { AtLeastOne, ExactlyOne };
    // An update or delete that must touch at least one row (or exactly one). With
    // its own transaction it commits on success; a miss reports (999, sub, missText).
    bool changeRows(const QString &sql, const QString &sub, const QString &missText, OwnTransaction own,
                    OnMiss onMiss = OnMiss::RollBack, Expect expect = Expect::AtLeastOne);

    // A batch statement (no transaction of its own) that must touch exactly one
    // row; any other count reports (999, sub, failText(count)).
    bool changeOneRow(const QString &sql, const QString &sub, const std::function<QString(qint64)> &failText);

    // Runs `work` inside a transaction: the caller's when one is open already,
    // else one of its own, committed when work returns true and rolled back
    // (keeping work's error report) when it returns false.
    bool inTransaction(const QString &sub, const std::function<bool()> &work);

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
    std::shared_ptr<DbConnection> connection_;
    clsErrObject error_;
};
