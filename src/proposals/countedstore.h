#pragma once

#include "storebase.h"

#include <functional>

// What the proposal, line-item, balance and district stores add to
// StoreBase: a lookup whose failure names its own class.
class CountedStore : public StoreBase {
public:
    using StoreBase::StoreBase;

protected:
    // retrieveFirst whose failures carry `errorClass` in the error object.
    bool retrieveAs(const QString &errorClass, const QString &sql, const QString &sub, const QString &notFoundText,
                    const std::function<void(const Recordset &)> &fill);
};
