#pragma once

#include "griddelegate.h"

#include <QObject>
#include <QPointer>
#include <QTableView>

#include <vector>

class GridModel;

// The view side of a grid: how its table view is set up and drawn (rules,
// row heights, selection mode, edit triggers), which cell is current and
// which rows are selected, and the view's events as signals. Rows and
// columns are 0-based here, as in the model; settings made before the view
// is bound apply when it is.
class GridView : public QObject {
    Q_OBJECT
public:
    explicit GridView(GridModel &cells, QObject *parent = nullptr);
    ~GridView() override;

    void bind(QTableView &view);
    QTableView *view() const { return view_; }

    bool linesHorizontal() const { return linesHorizontal_; }
    bool linesVertical() const { return linesVertical_; }
    void setLines(bool horizontal, bool vertical);
    bool singleSelection() const { return singleSelection_; }
    void setSingleSelection(bool on);
    // On: typing starts editing the current cell; off: a double click or F2.
    bool directEdit() const { return directEdit_; }
    void setDirectEdit(bool on);
    void setWordWrap(bool on);
    void setRowLines(int row, int lines);
    void applyColumn(int column); // hidden and width as the column's settings say

    int currentRow() const; // -1 when none
    int currentColumn() const;
    void setCurrent(int row, int column);
    // Makes the row current (on its first shown column) and the only one selected.
    void selectRow(int row);
    void deselectRow(int row);
    void clearSelection();
    std::vector<int> selectedRows() const; // in row order

signals:
    void keyPressed(int key);
    void leftDoubleClicked();
    void rightClicked();
    void visibilityChanged();
    void resized();
    void headerClicked(int column);
    void columnResized();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void applyLines();
    void applyEditTriggers();

    GridModel &cells_;
    QPointer<QTableView> view_;
    QPointer<GridDelegate> delegate_;
    bool linesHorizontal_ = true;
    bool linesVertical_ = true;
    bool singleSelection_ = true;
    bool directEdit_ = true;
};
