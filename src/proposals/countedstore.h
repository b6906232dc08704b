#pragma once

#include "storebase.h"

#include <functional>

// What the proposal, line-item, balance and district stores add to
// StoreBase: the failure texts of their one-row statements and a lookup whose
// failure names its own class.
class CountedStore : public StoreBase {
public:
    using StoreBase::StoreBase;

protected:
    using FailText = std::function<QString(qint64 count)>;
    // "<count><suffix>", e.g. "0 records to be update".
    static FailText countThen(const QString &suffix);
    // A fixed text whatever the count.
    static FailText always(const QString &text);

    // retrieveFirst whose failures carry `errorClass` in the error object.
    bool retrieveAs(const QString &errorClass, const QString &sql, const QString &sub, const QString &notFoundText,
                    const std::function<void(const Recordset &)> &fill);
};
