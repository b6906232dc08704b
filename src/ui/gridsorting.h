#pragma once

#include "gridsortlayout.h"

#include <QString>

#include <optional>

class GridModel;
class QWidget;

// A grid's sort order, its default and the user's switch: the order sorts
// the rows, a default is kept under a layout name in the application's
// settings so that it comes back in this run and the next.
class GridSorting {
public:
    explicit GridSorting(GridModel &cells) : cells_(cells) {}

    bool enabled() const { return enabled_; }
    void setEnabled(bool on) { enabled_ = on; }
    void disable();
    void restore(); // the switch as it was before disable

    const GridSortOrder &order() const { return order_; }
    // Sorts the rows; every key must name a column.
    void setOrder(const GridSortOrder &order);
    void clear() { order_.clear(); }
    void reset(); // no order, no default

    // The order a click on the column's heading asks for: by that column, the
    // other way round on a second click. None when sorting is off or the
    // column does not allow it.
    std::optional<GridSortOrder> simpleOrder(int column) const;
    // The order the user builds in the complex-sorting dialog; none when the
    // user cancels, or (after saying so) when no column is offered in it.
    std::optional<GridSortOrder> askComplexOrder(QWidget *parent) const;

    void saveDefault(const QString &layoutName);
    // The saved default, unless it names a column the grid no longer has;
    // else the default of this run.
    GridSortOrder savedDefault(const QString &layoutName) const;

private:
    GridModel &cells_;
    GridSortOrder order_;
    GridSortOrder default_;
    bool enabled_ = true;
    bool enabledBeforeDisable_ = true;
};

// "<form>/<grid>": the object name (else the caption) of the window or MDI
// child the grid sits on, and the grid's object name; empty when either is.
QString sortLayoutNameOf(const QWidget *grid);
