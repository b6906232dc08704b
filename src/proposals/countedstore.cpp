#include "countedstore.h"

bool CountedStore::retrieveAs(const QString &errorClass, const QString &sql, const QString &sub,
                              const QString &notFoundText, const std::function<void(const Recordset &)> &fill)
{
    if (retrieveFirst(sql, sub, notFoundText, fill))
        return true;
    Error().setErrorCls(errorClass);
    return false;
}
