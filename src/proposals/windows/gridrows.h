#pragma once

#include <QString>
#include <QStringList>

#include <functional>

class StoreBase;
class classGrid;

// Editable grids keep, beside each editable column, a hidden twin keyed
// "Orig" + the column's key that holds the value as loaded; only rows where a
// column differs from its twin are written.
void addTwinColumn(classGrid &grid, const QString &key);
// Copies the cell's value into its twin, once the row is loaded.
void keepAsLoaded(classGrid &grid, int row, const QString &key);
// Amounts compare by value, an empty cell as zero; other cells as text
// without regard to case.
bool differsFromTwin(const classGrid &grid, int row, const QString &key);
bool rowDiffers(const classGrid &grid, int row, const QStringList &keys);

// A check cell counts as ticked for any value but blank or "0".
bool isChecked(const classGrid &grid, int row, const QString &key);

enum class SaveResult {
    Saved,
    RowFailed,         // a write failed; everything was rolled back
    TransactionFailed, // the transaction could not begin or commit; the store's error says why
};

// Writes each row that differs from its twins in `keys` through `write`, all
// in one transaction of `store`: committed when every write succeeded, rolled
// back at the first failure.
SaveResult saveChangedRows(StoreBase &store, const classGrid &grid, const QStringList &keys,
                           const std::function<bool(int row)> &write);
