#pragma once

#include "gridmodel.h"

#include "currency.h"

#include <QAbstractTableModel>
#include <QPointer>
#include <QTableView>

// The companion grid's single row: the totals of the columns marked Total.
class GridTotalsModel : public QAbstractTableModel {
    Q_OBJECT
public:
    explicit GridTotalsModel(GridModel &cells, QObject *parent = nullptr);
    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    void refresh();

private:
    GridModel &cells_;
};

// What a grid adds up: the totals row shown in the companion view under the
// grid, column for column, and a balance column that keeps the running sum
// of an amount column.
class GridTotals {
public:
    explicit GridTotals(GridModel &cells);
    ~GridTotals();
    GridTotals(const GridTotals &) = delete;
    GridTotals &operator=(const GridTotals &) = delete;

    // The companion may be null; it then shows nothing.
    void bind(QTableView &grid, QTableView *companion);
    QTableView *companion() const { return companion_; }

    bool shown() const { return shown_; }
    void setShown(bool on);
    // The companion is seen while the grid is and the totals are shown.
    void followGrid(bool gridVisible);
    // Column widths and hidden columns as the grid has them.
    void syncColumns(const QTableView &grid);
    void refresh() { model_.refresh(); }
    Currency total(int column) const { return cells_.columnTotal(column); }

    // Both keys must name columns.
    void setBalance(const QString &amountKey, const QString &balanceKey);
    void clearBalance();
    bool feedsBalance(const QString &key) const { return !balanceKey_.isEmpty() && key == amountKey_; }
    void refreshBalance();

private:
    GridModel &cells_;
    GridTotalsModel model_;
    QPointer<QTableView> companion_;
    bool shown_ = false;
    QString amountKey_;
    QString balanceKey_;
};
