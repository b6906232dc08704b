#include "countedstore.h"

CountedStore::FailText CountedStore::countThen(const QString &suffix)
{
    return [suffix](qint64 count) { return QString::number(count) + suffix; };
}

CountedStore::FailText CountedStore::always(const QString &text)
{
    return [text](qint64) { return text; };
}

bool CountedStore::retrieveAs(const QString &errorClass, const QString &sql, const QString &sub,
                              const QString &notFoundText, const std::function<void(const Recordset &)> &fill)
{
    if (retrieveFirst(sql, sub, notFoundText, fill))
        return true;
    Error().setErrorCls(errorClass);
    return false;
}
