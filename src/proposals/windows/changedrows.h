#pragma once

#include "gridcolumn.h"

#include <QString>

#include <functional>

class StoreBase;
class classGrid;

// Editable grid columns keep the value they were loaded with in a hidden twin
// "Orig" + key; a row whose cell differs from its twin has been changed.

// Adds an editable column followed by its hidden twin.
void addColumnWithTwin(classGrid &grid, const QString &key, const QString &caption, GridColumnOptions options);

// A loaded value: the cell and its twin.
void setLoaded(classGrid &grid, int row, const QString &key, const QString &value);

// Writes the changed rows with `saveRow` in one transaction on the store's
// connection: committed when every row was written, rolled back at the first
// row that was not (saveRow has told the user why). A transaction that cannot
// be begun or committed is reported under `title`. Unchanged rows are not
// visited, so nothing changed writes nothing.
bool saveChangedRows(StoreBase &store, const classGrid &grid, const QString &title,
                     const std::function<bool(int row)> &saveRow);
