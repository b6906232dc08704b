#pragma once

#include "gridcolumn.h"

#include <QString>

#include <functional>

class StoreBase;
class classDialog;
class classGrid;

// An editable grid keeps beside each editable column its twin (see
// classGrid::AddTwinColumn), holding the value as loaded or last saved; the
// rows where a column differs from its twin are the ones to write.

// Adds an editable column followed by its twin.
void addColumnWithTwin(classGrid &grid, const QString &key, const QString &caption, GridColumnOptions options);

// A check cell, ticked or not, whatever values its column stores for either.
bool isChecked(const classGrid &grid, int row, const QString &key);

// Every twin of the row takes its column's value: the row as loaded or saved.
void keepAsLoaded(classGrid &grid, int row);

enum class SaveResult {
    Saved,
    RowFailed,         // a write failed (it has told the user why); everything was rolled back
    TransactionFailed, // the transaction could not begin or commit; the store's error says why
};

// Writes each changed row through `write`, all in one transaction of `store`:
// committed when every write succeeded, and the written rows then count as
// loaded; rolled back at the first failure, leaving the store's error as the
// write left it. Nothing changed writes nothing. The dialog's status bar says
// so while it runs.
SaveResult saveChangedRows(classDialog &dialog, StoreBase &store, classGrid &grid,
                           const std::function<bool(int row)> &write);
