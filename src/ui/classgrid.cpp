#include "classgrid.h"

#include "twips.h"
#include "wrappererror.h"

#include <QHeaderView>
#include <QTableView>

#include <algorithm>

namespace {

QString source(const char *member)
{
    return QStringLiteral("classGrid.") + QLatin1String(member);
}

} // namespace

classGrid::classGrid(QObject *parent) : QObject(parent), model_(std::make_unique<GridModel>())
{
    connect(model_.get(), &GridModel::cellEdited, this, [this](int row, int column) {
        const QString key = model_->columns()[column].Key();
        if (totals_.feedsBalance(key))
            totals_.refreshBalance();
        emit cellChanged(row + 1, key);
    });
    connect(&view_, &GridView::keyPressed, this, &classGrid::keyPressed);
    connect(&view_, &GridView::leftDoubleClicked, this, &classGrid::leftDoubleClicked);
    connect(&view_, &GridView::rightClicked, this, &classGrid::rightClicked);
    connect(&view_, &GridView::visibilityChanged, this, &classGrid::visibilityChanged);
    connect(&view_, &GridView::resized, this, &classGrid::resized);
    connect(&view_, &GridView::columnResized, this, &classGrid::syncTotals);
    connect(&view_, &GridView::headerClicked, this, [this](int column) {
        if (column >= 0 && column < model_->columnCount())
            DoSortSimple(model_->columns()[column].Key());
    });
}

classGrid::~classGrid() = default;

void classGrid::Init(QTableView *grid, QTableView *companion)
{
    view_.bind(*grid);
    totals_.bind(*grid, companion);
}

void classGrid::SetVertScrollBar(bool always)
{
    if (QTableView *view = view_.view())
        view->setVerticalScrollBarPolicy(always ? Qt::ScrollBarAlwaysOn : Qt::ScrollBarAsNeeded);
}

void classGrid::Reset()
{
    model_->clearAll();
    sorting_.reset();
    totals_.clearBalance();
    multiLine_ = false;
    multiLineConstant_ = 1;
    multiLineColumnKey_.clear();
    model_->setGreenbar(false);
    ShowTotals(false);
}

void classGrid::Refresh()
{
    if (QTableView *view = view_.view())
        view->viewport()->update();
    RefreshTotals();
}

int classGrid::CountRows() const
{
    return model_->rowCount();
}

int classGrid::CountColumns() const
{
    return model_->columnCount();
}

bool classGrid::Greenbar() const
{
    return model_->greenbar();
}

void classGrid::setGreenbar(bool on)
{
    model_->setGreenbar(on);
}

void classGrid::RefreshGreenbar()
{
    model_->setGreenbar(model_->greenbar());
}

void classGrid::setLinesHorizontal(bool on)
{
    view_.setLines(on, view_.linesVertical());
}

void classGrid::setLinesVertical(bool on)
{
    view_.setLines(view_.linesHorizontal(), on);
}

void classGrid::setMultiLineMode(bool on)
{
    multiLine_ = on;
    view_.setWordWrap(on);
    RefreshMultiLine();
}

int classGrid::MultiLineValueConstant() const
{
    requireMultiLine("MultiLineValueConstant.Get");
    return multiLineConstant_;
}

void classGrid::setMultiLineValueConstant(int lines)
{
    requireMultiLine("MultiLineValueConstant.Let");
    multiLineConstant_ = std::max(1, lines);
    multiLineColumnKey_.clear();
    RefreshMultiLine();
}

QString classGrid::MultiLineValueColumnKey() const
{
    requireMultiLine("MultiLineValueColumnKey.Get");
    return multiLineColumnKey_;
}

void classGrid::setMultiLineValueColumnKey(const QString &key)
{
    requireMultiLine("MultiLineValueColumnKey.Let");
    columnIndex(key, "MultiLineValueColumnKey.Let");
    multiLineColumnKey_ = key;
    RefreshMultiLine();
}

void classGrid::RefreshMultiLine()
{
    for (int row = 0; row < model_->rowCount(); ++row)
        applyRowHeight(row);
}

void classGrid::applyRowHeight(int row)
{
    int lines = 1;
    if (multiLine_) {
        const int column = multiLineColumnKey_.isEmpty() ? -1 : model_->columnOf(multiLineColumnKey_);
        lines = column >= 0 ? std::max(1, model_->cell(row, column).toInt()) : multiLineConstant_;
    }
    view_.setRowLines(row, lines);
}

void classGrid::requireMultiLine(const char *member) const
{
    if (!multiLine_)
        throw WrapperError(wrongModeError, source(member), QStringLiteral("Wrong mode to use this property."));
}

void classGrid::setSingleSelection(bool on)
{
    view_.setSingleSelection(on);
}

classGridColumn &classGrid::AddColumn(const QString &key, const QString &caption, const GridColumnOptions &options)
{
    if (key.isEmpty())
        throw WrapperError(invalidPropertyValueError, source("AddColumn"), invalidKeyText());
    if (model_->columnOf(key) >= 0)
        throw WrapperError(duplicateKeyError, source("AddColumn"), duplicateKeyText());
    if (!options.twinOf.isEmpty())
        columnIndex(options.twinOf, "AddColumn");
    model_->addColumn(classGridColumn(key, caption, options));
    const int column = model_->columnCount() - 1;
    applyColumn(column);
    return model_->columns()[column];
}

classGridColumn &classGrid::AddTwinColumn(const QString &key)
{
    const classGridColumn &column = model_->columns()[columnIndex(key, "AddTwinColumn")];
    GridColumnOptions options;
    options.type = column.Type();
    options.sortSimple = false;
    options.checkedValue = column.CheckValue(true);
    options.uncheckedValue = column.CheckValue(false);
    options.twinOf = key;
    return AddColumn(QStringLiteral("Orig") + key, QString(), options);
}

const classGridColumn &classGrid::Column(const QString &key) const
{
    return model_->columns()[columnIndex(key, "Column")];
}

classGridColumn &classGrid::Column(const QString &key)
{
    return model_->columns()[columnIndex(key, "Column")];
}

QString classGrid::ColumnExtra1(const QString &key) const
{
    return model_->columns()[columnIndex(key, "ColumnExtra1.Get")].Extra1();
}

void classGrid::setColumnExtra1(const QString &key, const QString &text)
{
    model_->columns()[columnIndex(key, "ColumnExtra1.Let")].setExtra1(text);
}

bool classGrid::ColumnHidden(const QString &key) const
{
    return model_->columns()[columnIndex(key, "ColumnHidden.Get")].Hidden();
}

void classGrid::setColumnHidden(const QString &key, bool hidden)
{
    const int column = columnIndex(key, "ColumnHidden.Let");
    model_->columns()[column].setHidden(hidden || model_->columns()[column].IsOrigTwin());
    applyColumn(column);
}

bool classGrid::ColumnDataEdit(const QString &key) const
{
    return model_->columns()[columnIndex(key, "ColumnDataEdit.Get")].Editable();
}

void classGrid::setColumnDataEdit(const QString &key, bool editable)
{
    const int column = columnIndex(key, "ColumnDataEdit.Let");
    model_->columns()[column].setEditable(editable && !model_->columns()[column].IsOrigTwin());
    model_->columnChanged(column);
}

QString classGrid::ColumnName(const QString &key) const
{
    return model_->columns()[columnIndex(key, "ColumnName.Get")].Description();
}

void classGrid::setColumnName(const QString &key, const QString &caption)
{
    const int column = columnIndex(key, "ColumnName.Let");
    model_->columns()[column].setDescription(caption);
    model_->columnChanged(column);
}

QString classGrid::ColumnKey(int column) const
{
    if (column < 1 || column > model_->columnCount())
        throw WrapperError(invalidArrayIndexError, source("ColumnKey"), QStringLiteral("Invalid column index value"));
    return model_->columns()[column - 1].Key();
}

void classGrid::ColumnWidth(const QString &key, int twips)
{
    const int column = columnIndex(key, "ColumnWidth");
    model_->columns()[column].setWidthTwips(twips);
    applyColumn(column);
}

bool classGrid::ColumnTotal(const QString &key) const
{
    return model_->columns()[columnIndex(key, "ColumnTotal.Get")].Total();
}

void classGrid::setColumnTotal(const QString &key, bool on)
{
    const int column = columnIndex(key, "ColumnTotal.Let");
    model_->columns()[column].setTotal(on && !model_->columns()[column].IsOrigTwin());
    RefreshTotals();
}

bool classGrid::ColumnGrouping(const QString &key) const
{
    return model_->columns()[columnIndex(key, "ColumnGrouping.Get")].Grouping();
}

void classGrid::setColumnGrouping(const QString &key, bool on)
{
    const int column = columnIndex(key, "ColumnGrouping.Let");
    model_->columns()[column].setGrouping(on);
    // Grouping a column changes what the grouped columns after it show.
    for (int c = column; c < model_->columnCount(); ++c)
        model_->columnChanged(c);
}

void classGrid::SetColumn(const QString &key)
{
    const int column = columnIndex(key, "SetColumn");
    if (model_->columns()[column].Hidden())
        throw WrapperError(invalidPropertyValueError, source("SetColumn"), invalidKeyText());
    view_.setCurrent(rowIndex(std::max(CurrentRow(), 1), "SetColumn"), column);
}

int classGrid::AddRow()
{
    const int row = model_->appendRow();
    if (multiLine_)
        applyRowHeight(row);
    return row + 1;
}

void classGrid::DeleteRow(int row)
{
    model_->removeRow(rowIndex(row, "DeleteRow"));
    RefreshBalance();
}

void classGrid::ResetRows(int count)
{
    if (count < 0)
        throw WrapperError(invalidPropertyValueError, source("ResetRows"), invalidCountText());
    model_->clearRows();
    model_->setRowCountTo(count);
}

QString classGrid::GetItemValue(int row, const QString &key) const
{
    const int r = rowIndex(row, "GetItemValue");
    return model_->cell(r, columnIndex(key, "GetItemValue"));
}

QString classGrid::GetCellValue(int row, const QString &key) const
{
    const int r = rowIndex(row, "GetCellValue");
    return model_->displayText(r, columnIndex(key, "GetCellValue"));
}

Currency classGrid::GetAmount(int row, const QString &key) const
{
    const int r = rowIndex(row, "GetAmount");
    return model_->amount(r, columnIndex(key, "GetAmount")).value_or(Currency());
}

void classGrid::SetCell(int row, const QString &key, const QString &value)
{
    const int r = rowIndex(row, "SetCell");
    const int column = columnIndex(key, "SetCell");
    if (!model_->setCell(r, column, value))
        throw WrapperError(13, source("SetCell"), QStringLiteral("Type mismatch"));
    if (totals_.feedsBalance(key))
        totals_.refreshBalance();
}

void classGrid::SetCell(int row, const QString &key, Currency amount)
{
    SetCell(row, key, amount.toSqlText());
}

void classGrid::SetCell(int row, const QString &key, bool checked)
{
    SetCell(row, key, checked ? QStringLiteral("1") : QStringLiteral("0"));
}

bool classGrid::CellLocked(int row, const QString &key) const
{
    const int r = rowIndex(row, "CellLocked.Get");
    return model_->locked(r, columnIndex(key, "CellLocked.Get"));
}

void classGrid::setCellLocked(int row, const QString &key, bool locked)
{
    const int r = rowIndex(row, "CellLocked.Let");
    model_->setLocked(r, columnIndex(key, "CellLocked.Let"), locked);
}

QString classGrid::GetValueUsingKey(const QString &searchKey, const QString &value, const QString &wantedKey) const
{
    const int search = columnIndex(searchKey, "GetValueUsingKey");
    const int wanted = columnIndex(wantedKey, "GetValueUsingKey");
    for (int row = 0; row < model_->rowCount(); ++row) {
        if (model_->cell(row, search) == value)
            return model_->cell(row, wanted);
    }
    return {};
}

bool classGrid::RowChanged(int row) const
{
    return model_->rowDiffersFromTwins(rowIndex(row, "RowChanged"));
}

int classGrid::CurrentRow() const
{
    return view_.currentRow() + 1;
}

QString classGrid::CurrentColumnName() const
{
    const int column = view_.currentColumn();
    return column < 0 ? QString() : model_->columns()[column].Key();
}

QString classGrid::CurrentCellValue() const
{
    const int row = view_.currentRow();
    return row < 0 ? QString() : model_->cell(row, view_.currentColumn());
}

void classGrid::setCurrentCellValue(const QString &value)
{
    const int row = CurrentRow();
    if (row == 0)
        throw WrapperError(invalidArrayIndexError, source("CurrentCellValue.Let"), invalidRowText());
    SetCell(row, CurrentColumnName(), value);
}

QString classGrid::CurrentRowValue(const QString &key) const
{
    const int row = CurrentRow();
    if (row == 0)
        throw WrapperError(invalidArrayIndexError, source("CurrentRowValue.Get"), invalidRowText());
    return GetItemValue(row, key);
}

void classGrid::setCurrentRowValue(const QString &key, const QString &value)
{
    const int row = CurrentRow();
    if (row == 0)
        throw WrapperError(invalidArrayIndexError, source("CurrentRowValue.Let"), invalidRowText());
    SetCell(row, key, value);
}

void classGrid::SelectRow(int row)
{
    view_.selectRow(rowIndex(row, "SelectRow"));
}

void classGrid::ClearSelectedRow(int row)
{
    view_.deselectRow(rowIndex(row, "ClearSelectedRow"));
}

void classGrid::ClearSelectedRows()
{
    view_.clearSelection();
}

int classGrid::FirstselectedRow() const
{
    const std::vector<int> rows = view_.selectedRows();
    return rows.empty() ? 0 : rows.front() + 1;
}

QStringList classGrid::GetSelectedByKey(const QString &key) const
{
    const int column = columnIndex(key, "GetSelectedByKey");
    QStringList values;
    for (const int row : view_.selectedRows())
        values << model_->cell(row, column);
    return values;
}

void classGrid::SortingDisable()
{
    sorting_.disable();
}

void classGrid::SortingRestore()
{
    sorting_.restore();
}

void classGrid::DoSortSimple(const QString &key)
{
    if (const auto order = sorting_.simpleOrder(columnIndex(key, "DoSortSimple")))
        SetSort(*order);
}

void classGrid::DoSortComplex()
{
    if (const auto order = sorting_.askComplexOrder(view_.view() ? view_.view()->window() : nullptr))
        SetSort(*order);
}

void classGrid::SetSort(const GridSortOrder &order)
{
    for (const auto &step : order)
        columnIndex(step.Key(), "SetSort");
    sorting_.setOrder(order);
    totals_.refreshBalance();
}

QString classGrid::SortLayoutName() const
{
    return sortLayoutName_.isEmpty() ? sortLayoutNameOf(view_.view()) : sortLayoutName_;
}

void classGrid::SaveSortDefault()
{
    sorting_.saveDefault(SortLayoutName());
}

void classGrid::ResetSort()
{
    SetSort(sorting_.savedDefault(SortLayoutName()));
}

int classGrid::HeaderHeight() const
{
    return view_.view() ? pixelsToTwips(view_.view()->horizontalHeader()->height()) : 0;
}

void classGrid::setHeaderHeight(int twips)
{
    if (QTableView *view = view_.view())
        view->horizontalHeader()->setFixedHeight(twipsToPixels(twips));
}

void classGrid::Balance(const QString &amountKey, const QString &balanceKey)
{
    columnIndex(amountKey, "Balance");
    columnIndex(balanceKey, "Balance");
    totals_.setBalance(amountKey, balanceKey);
}

void classGrid::RefreshBalance()
{
    totals_.refreshBalance();
}

void classGrid::ShowTotals(bool on)
{
    totals_.setShown(on);
    syncTotals();
}

void classGrid::RefreshTotals()
{
    totals_.refresh();
}

Currency classGrid::GetColumnTotal(const QString &key) const
{
    return totals_.total(columnIndex(key, "GetColumnTotal"));
}

void classGrid::setDirectEdit(bool on)
{
    view_.setDirectEdit(on);
}

void classGrid::RefreshHScrollBar()
{
    if (QTableView *view = view_.view())
        view->updateGeometry();
    syncTotals();
}

bool classGrid::Visible() const
{
    return view_.view() && !view_.view()->isHidden();
}

void classGrid::setVisible(bool on)
{
    if (QTableView *view = view_.view())
        view->setVisible(on);
    totals_.followGrid(on);
}

int classGrid::columnIndex(const QString &key, const char *member) const
{
    const int column = model_->columnOf(key);
    if (column < 0)
        throw WrapperError(invalidPropertyValueError, source(member), invalidKeyText());
    return column;
}

int classGrid::rowIndex(int row, const char *member) const
{
    if (row < 1 || row > model_->rowCount())
        throw WrapperError(invalidArrayIndexError, source(member), invalidRowText());
    return row - 1;
}

void classGrid::applyColumn(int column)
{
    view_.applyColumn(column);
    syncTotals();
    model_->columnChanged(column);
}

void classGrid::syncTotals()
{
    if (QTableView *view = view_.view())
        totals_.syncColumns(*view);
}
