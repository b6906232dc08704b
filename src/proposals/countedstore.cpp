#include "countedstore.h"

CountedStore::FailText CountedStore::countThen(const QString &suffix)
{
    return [suffix](qint64 count) { return QString::number(count) + suffix; };
}

CountedStore::FailText CountedStore::always(const QString &text)
{
    return [text](qint64) { return text; };
}

std::unique_ptr<Transaction> CountedStore::beginOwn(const QString &sub)
{
    auto transaction = std::make_unique<Transaction>(db());
    if (transaction->begun())
        return transaction;
    report(-1, sub, QStringLiteral("Cannot begin a transaction on the budget database."));
    return nullptr;
}

bool CountedStore::commit(Transaction &transaction, const QString &sub)
{
    DbError error;
    if (transaction.commit(&error))
        return true;
    reportDbError(sub, error);
    return false;
}

bool CountedStore::retrieveAs(const QString &errorClass, const QString &sql, const QString &sub,
                              const QString &notFoundText, const std::function<void(const Recordset &)> &fill)
{
    if (retrieveFirst(sql, sub, notFoundText, fill))
        return true;
    Error().setErrorCls(errorClass);
    return false;
}
