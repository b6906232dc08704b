#include "gridrows.h"

#include "classgrid.h"
#include "storebase.h"

namespace {

QString twinKey(const QString &key)
{
    return QStringLiteral("Orig") + key;
}

Currency amountOf(const QString &text)
{
    return Currency::parse(text).value_or(Currency());
}

} // namespace

void addTwinColumn(classGrid &grid, const QString &key)
{
    GridColumnOptions options;
    options.hidden = true;
    options.sortSimple = false;
    grid.AddColumn(twinKey(key), QString(), options);
}

void keepAsLoaded(classGrid &grid, int row, const QString &key)
{
    grid.SetCell(row, twinKey(key), grid.GetItemValue(row, key));
}

bool differsFromTwin(const classGrid &grid, int row, const QString &key)
{
    const QString value = grid.GetItemValue(row, key);
    const QString loaded = grid.GetItemValue(row, twinKey(key));
    if (grid.Column(key).Type() == GridColumnType::Amount)
        return amountOf(value) != amountOf(loaded);
    return value.compare(loaded, Qt::CaseInsensitive) != 0;
}

bool rowDiffers(const classGrid &grid, int row, const QStringList &keys)
{
    for (const QString &key : keys) {
        if (differsFromTwin(grid, row, key))
            return true;
    }
    return false;
}

bool isChecked(const classGrid &grid, int row, const QString &key)
{
    const QString value = grid.GetItemValue(row, key).trimmed();
    return !value.isEmpty() && value != u"0";
}

SaveResult saveChangedRows(StoreBase &store, const classGrid &grid, const QStringList &keys,
                           const std::function<bool(int row)> &write)
{
    if (!store.BeginTransaction())
        return SaveResult::TransactionFailed;
    for (int row = 1; row <= grid.CountRows(); ++row) {
        if (rowDiffers(grid, row, keys) && !write(row)) {
            // The write's reason is what the user needs, not the rollback's.
            const clsErrObject reason = store.Error();
            store.AbortTransaction();
            store.Error() = reason;
            return SaveResult::RowFailed;
        }
    }
    // A commit that fails has already ended the transaction.
    return store.Endtransaction() ? SaveResult::Saved : SaveResult::TransactionFailed;
}
