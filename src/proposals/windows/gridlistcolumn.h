#pragma once

#include <QString>
#include <QStringList>

class classGrid;

// Makes a text column of the grid edit through a drop-down of fixed entries
// (a status column's "Open" and "Close"); the cell holds the entry's text.
void setListColumn(classGrid &grid, const QString &key, const QStringList &entries);
