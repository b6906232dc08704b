#pragma once

#include <QString>
#include <QStringList>

class classGrid;

// Makes a text column of the grid edit through a drop-down of fixed entries
// (a status column's "Open" and "Close"); the cell holds the entry's text.
void setListColumn(classGrid &grid, const QString &key, const QStringList &entries);

// Makes a text column of the grid edit through a drop-down whose entries
// differ from row to row: each row holds them in the column `listKey`, joined
// with tabs. The cell holds the entry's text; a row with no entries is not edited.
void setRowListColumn(classGrid &grid, const QString &key, const QString &listKey);
