#pragma once

#include "storebase.h"

#include <functional>
#include <memory>

// What the proposal, line-item, balance and district stores add to
// StoreBase: the failure texts of their one-row statements, a store-owned
// transaction begun with a report on failure, and a lookup whose failure
// names its own class.
class CountedStore : public StoreBase {
public:
    using StoreBase::StoreBase;

protected:
    using FailText = std::function<QString(qint64 count)>;
    // "<count><suffix>", e.g. "0 records to be update".
    static FailText countThen(const QString &suffix);
    // A fixed text whatever the count.
    static FailText always(const QString &text);

    // A transaction this store begins and rolls back unless committed; null
    // (and reported under `sub`) when the connection will not begin one.
    std::unique_ptr<Transaction> beginOwn(const QString &sub);
    // Commits `transaction`; a failure is reported under `sub`.
    bool commit(Transaction &transaction, const QString &sub);

    // retrieveFirst whose failures carry `errorClass` in the error object.
    bool retrieveAs(const QString &errorClass, const QString &sql, const QString &sub, const QString &notFoundText,
                    const std::function<void(const Recordset &)> &fill);
};
