#pragma once

#include "gridcolumn.h"
#include "gridsortlayout.h"

#include "currency.h"

#include <QAbstractTableModel>

#include <optional>
#include <vector>

// The cells of one grid: text per cell (amounts in their plain SQL form,
// check cells their column's checked or unchecked value), a lock flag per
// cell, and the columns' settings.
// Rows and columns are 0-based here; the wrapper speaks 1-based rows.
class GridModel : public QAbstractTableModel {
    Q_OBJECT
public:
    using QAbstractTableModel::QAbstractTableModel;

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    void clearAll();
    void addColumn(const classGridColumn &column);
    std::vector<classGridColumn> &columns() { return columns_; }
    const std::vector<classGridColumn> &columns() const { return columns_; }
    // -1 when no column has the key.
    int columnOf(const QString &key) const;
    void columnChanged(int column);

    int appendRow();
    void removeRow(int row);
    void setRowCountTo(int count);
    void clearRows();

    const QString &cell(int row, int column) const { return rows_[row].cells[column]; }
    // Stores a value in the column's form; false when an amount does not parse.
    bool setCell(int row, int column, const QString &value);
    std::optional<Currency> amount(int row, int column) const;
    QString displayText(int row, int column) const;
    bool locked(int row, int column) const { return rows_[row].locked[column] != 0; }
    void setLocked(int row, int column, bool on);
    // True when a grouped cell is shown blank because its group continues
    // from the row above.
    bool repeatsGroup(int row, int column) const;

    void setGreenbar(bool on);
    bool greenbar() const { return greenbar_; }
    // A stable sort; persistent indexes (a view's current cell and its
    // selection) move with their rows.
    void sortRows(const GridSortOrder &order);
    Currency columnTotal(int column) const;
    // True when a twin column of the row holds another value than its column
    // (text compared without regard to case, amounts by value).
    bool rowDiffersFromTwins(int row) const;

signals:
    // A user's edit (not a value set by code).
    void cellEdited(int row, int column);

private:
    struct Row {
        std::vector<QString> cells;
        std::vector<char> locked;
    };
    bool editable(int row, int column) const;
    int compareCells(int column, const Row &a, const Row &b) const;

    std::vector<classGridColumn> columns_;
    std::vector<Row> rows_;
    bool greenbar_ = false;
};
