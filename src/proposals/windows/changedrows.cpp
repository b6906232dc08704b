#include "changedrows.h"

#include "classgrid.h"
#include "messageservice.h"
#include "storebase.h"

void addColumnWithTwin(classGrid &grid, const QString &key, const QString &caption, GridColumnOptions options)
{
    options.editable = true;
    grid.AddColumn(key, caption, options);
    GridColumnOptions twin;
    twin.type = options.type;
    twin.hidden = true;
    grid.AddColumn(QStringLiteral("Orig") + key, caption, twin);
}

void setLoaded(classGrid &grid, int row, const QString &key, const QString &value)
{
    grid.SetCell(row, key, value);
    grid.SetCell(row, QStringLiteral("Orig") + key, value);
}

namespace {
bool reportTransactionFailure(StoreBase &store, const QString &title)
{
    messages().errorDialog({1, title, store.Error().ErrorText(), false});
    return false;
}
} // namespace

bool saveChangedRows(StoreBase &store, const classGrid &grid, const QString &title,
                     const std::function<bool(int row)> &saveRow)
{
    if (!store.BeginTransaction())
        return reportTransactionFailure(store, title);
    for (int row = 1; row <= grid.CountRows(); ++row) {
        if (grid.RowChanged(row) && !saveRow(row)) {
            store.AbortTransaction();
            return false;
        }
    }
    return store.Endtransaction() || reportTransactionFailure(store, title);
}
