#include "gridtwins.h"

#include "classgrid.h"
#include "dialogstatus.h"
#include "storebase.h"

#include <vector>

void addColumnWithTwin(classGrid &grid, const QString &key, const QString &caption, GridColumnOptions options)
{
    options.editable = true;
    grid.AddColumn(key, caption, options);
    grid.AddTwinColumn(key);
}

bool isChecked(const classGrid &grid, int row, const QString &key)
{
    return grid.Column(key).IsChecked(grid.GetItemValue(row, key));
}

void keepAsLoaded(classGrid &grid, int row)
{
    for (int column = 1; column <= grid.CountColumns(); ++column) {
        const classGridColumn &twin = grid.Column(grid.ColumnKey(column));
        if (twin.IsOrigTwin())
            grid.SetCell(row, twin.Key(), grid.GetItemValue(row, twin.TwinOf()));
    }
}

namespace {

SaveResult writeChangedRows(StoreBase &store, classGrid &grid, const std::function<bool(int row)> &write)
{
    if (!store.BeginTransaction())
        return SaveResult::TransactionFailed;
    std::vector<int> written;
    for (int row = 1; row <= grid.CountRows(); ++row) {
        if (!grid.RowChanged(row))
            continue;
        if (!write(row)) {
            // The write's reason is what the user needs, not the rollback's.
            const clsErrObject reason = store.Error();
            store.AbortTransaction();
            store.Error() = reason;
            return SaveResult::RowFailed;
        }
        written.push_back(row);
    }
    // A commit that fails has already ended the transaction.
    if (!store.Endtransaction())
        return SaveResult::TransactionFailed;
    for (const int row : written)
        keepAsLoaded(grid, row);
    return SaveResult::Saved;
}

} // namespace

SaveResult saveChangedRows(classDialog &dialog, StoreBase &store, classGrid &grid,
                           const std::function<bool(int row)> &write)
{
    setStatusText(dialog, QStringLiteral("Updating Records. Please wait..."));
    const SaveResult result = writeChangedRows(store, grid, write);
    setStatusText(dialog, QString());
    return result;
}
