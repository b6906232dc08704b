#pragma once

#include "gridcolumn.h"
#include "gridmodel.h"
#include "gridsorting.h"
#include "gridsortlayout.h"
#include "gridtotals.h"
#include "gridview.h"

#include "currency.h"

#include <QObject>
#include <QStringList>
#include <QTableView>

#include <memory>

// The grid wrapper: a table view of rows addressed by 1-based index and
// columns addressed by key, with a companion view underneath that shows the
// totals. It checks what the worker asks and leaves the work to the cells
// (GridModel), the view (GridView), the totals (GridTotals), the sort order
// (GridSorting) and the exports (gridExportTable). Wrong use throws WrapperError and changes nothing.
class classGrid : public QObject {
    Q_OBJECT
public:
    explicit classGrid(QObject *parent = nullptr);
    ~classGrid() override;

    // Binds the wrapper to its views; the companion may be null.
    void Init(QTableView *grid, QTableView *companion);
    QTableView *view() const { return view_.view(); }
    QTableView *companionView() const { return totals_.companion(); }
    void SetVertScrollBar(bool always);
    void Reset();   // no columns, no rows, default settings
    void Refresh(); // repaint after many changes
    int CountRows() const;
    int CountColumns() const;

    bool Greenbar() const;
    void setGreenbar(bool on);
    void RefreshGreenbar();
    bool LinesHorizontal() const { return view_.linesHorizontal(); }
    void setLinesHorizontal(bool on);
    bool LinesVertical() const { return view_.linesVertical(); }
    void setLinesVertical(bool on);

    // Multi-line mode: rows grow to show several lines, either a constant
    // number or the number held in a column of the row.
    bool MultiLineMode() const { return multiLine_; }
    void setMultiLineMode(bool on);
    int MultiLineValueConstant() const;
    void setMultiLineValueConstant(int lines);
    QString MultiLineValueColumnKey() const;
    void setMultiLineValueColumnKey(const QString &key);
    void RefreshMultiLine();

    bool SingleSelection() const { return view_.singleSelection(); }
    void setSingleSelection(bool on);

    classGridColumn &AddColumn(const QString &key, const QString &caption, const GridColumnOptions &options = {});
    // The hidden twin of a column, keyed "Orig" and the column's key, that
    // keeps the value the column was loaded with (see RowChanged).
    classGridColumn &AddTwinColumn(const QString &key);
    const classGridColumn &Column(const QString &key) const;
    classGridColumn &Column(const QString &key);
    QString ColumnExtra1(const QString &key) const;
    void setColumnExtra1(const QString &key, const QString &text);
    bool ColumnHidden(const QString &key) const;
    void setColumnHidden(const QString &key, bool hidden);
    bool ColumnDataEdit(const QString &key) const;
    void setColumnDataEdit(const QString &key, bool editable);
    QString ColumnName(const QString &key) const; // the caption
    void setColumnName(const QString &key, const QString &caption);
    QString ColumnKey(int column) const; // 1-based
    void ColumnWidth(const QString &key, int twips);
    bool ColumnTotal(const QString &key) const;
    void setColumnTotal(const QString &key, bool on);
    // A grouped column shows its value only on the first row of each run of
    // equal values (and of equal values in the grouped columns before it).
    bool ColumnGrouping(const QString &key) const;
    void setColumnGrouping(const QString &key, bool on);
    // True when a column has the key; never raises.
    bool ColumnVerify(const QString &key) const { return model_->columnOf(key) >= 0; }
    // Moves the current cell to the column, in the current row (row 1 when
    // none is current); a hidden column cannot be made current.
    void SetColumn(const QString &key);

    int AddRow(); // the new row's index
    void DeleteRow(int row);
    void ResetRows(int count = 0);

    // Plain value: amounts as "1234.5", check cells their checked or unchecked value.
    QString GetItemValue(int row, const QString &key) const;
    QString CellValue(int row, const QString &key) const { return GetItemValue(row, key); }
    // As shown: amounts as "1,234.50".
    QString GetCellValue(int row, const QString &key) const;
    Currency GetAmount(int row, const QString &key) const;
    void SetCell(int row, const QString &key, const QString &value);
    void SetCell(int row, const QString &key, Currency amount);
    void SetCell(int row, const QString &key, bool checked);
    bool CellLocked(int row, const QString &key) const;
    void setCellLocked(int row, const QString &key, bool locked);
    // The value in `wantedKey` of the first row whose `searchKey` cell equals
    // `value`; empty when none does.
    QString GetValueUsingKey(const QString &searchKey, const QString &value, const QString &wantedKey) const;
    // True when any column of the row differs from its twin (text compared
    // without regard to case, amounts by value).
    bool RowChanged(int row) const;

    int CurrentRow() const; // 0 when none
    QString CurrentColumnName() const;
    QString CurrentCellValue() const;
    void setCurrentCellValue(const QString &value);
    QString CurrentRowValue(const QString &key) const;
    void setCurrentRowValue(const QString &key, const QString &value);
    void SelectRow(int row); // makes it current and selected
    void SetSelectedRow(int row) { SelectRow(row); }
    void ClearSelectedRow(int row);
    void ClearSelectedRows();
    int FirstselectedRow() const; // 0 when none
    QStringList GetSelectedByKey(const QString &key) const;

    bool Sorting() const { return sorting_.enabled(); }
    void setSorting(bool on) { sorting_.setEnabled(on); }
    void SortingDisable();
    void SortingRestore();
    void DoSortSimple(const QString &key);
    // The complex-sorting dialog; "This feature has not been enabled for this
    // window." when no column is offered in it.
    void DoSortComplex();
    void SetSort(const GridSortOrder &order);
    GridSortOrder GetSort() const { return sorting_.order(); }
    void ClearSort() { sorting_.clear(); }
    // The user's default order: SaveSortDefault keeps the current order under
    // SortLayoutName in the application's settings, so that ResetSort brings
    // it back in this run and the next. A saved order naming a column the
    // grid no longer has is ignored.
    void ResetSort();
    void SaveSortDefault();
    // "<form>/<grid>": the object name (else the caption) of the window or MDI
    // child the grid sits on, and the grid's object name, unless the worker
    // sets one. Empty (the default is kept for this run only) when either is.
    QString SortLayoutName() const;
    void setSortLayoutName(const QString &name) { sortLayoutName_ = name; }

    int HeaderHeight() const; // twips
    void setHeaderHeight(int twips);

    // The balance column shows the running sum of an amount column.
    void Balance(const QString &amountKey, const QString &balanceKey);
    void RefreshBalance();

    void ShowTotals(bool on);
    bool TotalsShown() const { return totals_.shown(); }
    void RefreshTotals();
    Currency GetColumnTotal(const QString &key) const;

    // On: typing starts editing the current cell; off: a double click or F2.
    bool DirectEdit() const { return view_.directEdit(); }
    void setDirectEdit(bool on);
    void RefreshHScrollBar();

    bool Visible() const;
    void setVisible(bool on);

signals:
    void cellChanged(int row, const QString &key);
    void keyPressed(int key);
    void leftDoubleClicked();
    void rightClicked();
    void visibilityChanged();
    void resized();

private:
    int columnIndex(const QString &key, const char *member) const;
    int rowIndex(int row, const char *member) const;
    void requireMultiLine(const char *member) const;
    void applyColumn(int column);
    void applyRowHeight(int row); // 0-based
    void syncTotals();

    std::unique_ptr<GridModel> model_;
    GridTotals totals_{*model_};
    GridSorting sorting_{*model_};
    GridView view_{*model_};
    bool multiLine_ = false;
    int multiLineConstant_ = 1;
    QString multiLineColumnKey_;
    QString sortLayoutName_;
};
