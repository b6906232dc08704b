#include "classgrid.h"

#include "griddelegate.h"
#include "twips.h"
#include "wrappererror.h"

#include <QEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>
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
}

classGrid::~classGrid()
{
    // The view may outlive the wrapper; it must not keep our model.
    if (view_)
        view_->setModel(nullptr);
}

void classGrid::Init(QTableView *grid, QTableView *companion)
{
    view_ = grid;
    view_->setModel(model_.get());
    delegate_ = new GridDelegate(*model_, view_);
    view_->setItemDelegate(delegate_);
    view_->setShowGrid(false); // the delegate draws each kind of rule on its own
    applyLines();
    view_->setSelectionBehavior(QAbstractItemView::SelectRows);
    view_->horizontalHeader()->setDefaultAlignment(Qt::AlignCenter);
    view_->verticalHeader()->setDefaultSectionSize(view_->fontMetrics().height() + 6);
    view_->verticalHeader()->setVisible(false); // keeps the totals' columns under the grid's
    view_->setWordWrap(false);
    view_->installEventFilter(this);
    view_->viewport()->installEventFilter(this);
    connect(view_->horizontalHeader(), &QHeaderView::sectionClicked, this, &classGrid::onHeaderClicked);
    connect(view_->horizontalHeader(), &QHeaderView::sectionResized, this, [this] { syncTotals(); });
    totals_.bind(*view_, companion);
    setSingleSelection(singleSelection_);
    applyEditTriggers();
}

void classGrid::SetVertScrollBar(bool always)
{
    if (view_)
        view_->setVerticalScrollBarPolicy(always ? Qt::ScrollBarAlwaysOn : Qt::ScrollBarAsNeeded);
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
    if (view_)
        view_->viewport()->update();
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
    linesHorizontal_ = on;
    applyLines();
}

void classGrid::setLinesVertical(bool on)
{
    linesVertical_ = on;
    applyLines();
}

void classGrid::applyLines()
{
    if (!delegate_)
        return;
    delegate_->setLines(linesHorizontal_, linesVertical_);
    view_->viewport()->update();
}

void classGrid::setMultiLineMode(bool on)
{
    multiLine_ = on;
    if (view_)
        view_->setWordWrap(on);
    RefreshMultiLine();
}

int classGrid::MultiLineValueConstant() const
{
    if (!multiLine_)
        throw WrapperError(wrongModeError, source("MultiLineValueConstant.Get"),
                           QStringLiteral("Wrong mode to use this property."));
    return multiLineConstant_;
}

void classGrid::setMultiLineValueConstant(int lines)
{
    if (!multiLine_)
        throw WrapperError(wrongModeError, source("MultiLineValueConstant.Let"),
                           QStringLiteral("Wrong mode to use this property."));
    multiLineConstant_ = std::max(1, lines);
    multiLineColumnKey_.clear();
    RefreshMultiLine();
}

QString classGrid::MultiLineValueColumnKey() const
{
    if (!multiLine_)
        throw WrapperError(wrongModeError, source("MultiLineValueColumnKey.Get"),
                           QStringLiteral("Wrong mode to use this property."));
    return multiLineColumnKey_;
}

void classGrid::setMultiLineValueColumnKey(const QString &key)
{
    if (!multiLine_)
        throw WrapperError(wrongModeError, source("MultiLineValueColumnKey.Let"),
                           QStringLiteral("Wrong mode to use this property."));
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
    if (!view_)
        return;
    int lines = 1;
    if (multiLine_) {
        const int column = multiLineColumnKey_.isEmpty() ? -1 : model_->columnOf(multiLineColumnKey_);
        lines = column >= 0 ? std::max(1, model_->cell(row, column).toInt()) : multiLineConstant_;
    }
    view_->verticalHeader()->resizeSection(row, lines * view_->fontMetrics().lineSpacing() + 6);
}

void classGrid::setSingleSelection(bool on)
{
    singleSelection_ = on;
    if (view_)
        view_->setSelectionMode(on ? QAbstractItemView::SingleSelection : QAbstractItemView::ExtendedSelection);
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
    const int row = rowIndex(std::max(CurrentRow(), 1), "SetColumn");
    if (!view_)
        return;
    const QModelIndex at = model_->index(row, column);
    view_->setCurrentIndex(at);
    view_->scrollTo(at);
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
    if (!view_ || !view_->currentIndex().isValid())
        return 0;
    return view_->currentIndex().row() + 1;
}

QString classGrid::CurrentColumnName() const
{
    if (!view_ || !view_->currentIndex().isValid())
        return {};
    return model_->columns()[view_->currentIndex().column()].Key();
}

QString classGrid::CurrentCellValue() const
{
    if (!view_ || !view_->currentIndex().isValid())
        return {};
    return model_->cell(view_->currentIndex().row(), view_->currentIndex().column());
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
    const int r = rowIndex(row, "SelectRow");
    if (!view_)
        return;
    int column = 0;
    while (column < model_->columnCount() && model_->columns()[column].Hidden())
        ++column;
    const QModelIndex at = model_->index(r, std::min(column, model_->columnCount() - 1));
    view_->setCurrentIndex(at);
    view_->selectionModel()->select(at, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    view_->scrollTo(at);
}

void classGrid::ClearSelectedRow(int row)
{
    const int r = rowIndex(row, "ClearSelectedRow");
    if (view_)
        view_->selectionModel()->select(model_->index(r, 0), QItemSelectionModel::Deselect | QItemSelectionModel::Rows);
}

void classGrid::ClearSelectedRows()
{
    if (view_)
        view_->clearSelection();
}

int classGrid::FirstselectedRow() const
{
    if (!view_)
        return 0;
    const QModelIndexList rows = view_->selectionModel()->selectedRows();
    if (rows.isEmpty())
        return 0;
    const auto first = std::min_element(rows.begin(), rows.end(),
                                        [](const QModelIndex &a, const QModelIndex &b) { return a.row() < b.row(); });
    return first->row() + 1;
}

QStringList classGrid::GetSelectedByKey(const QString &key) const
{
    const int column = columnIndex(key, "GetSelectedByKey");
    QStringList values;
    if (!view_)
        return values;
    QModelIndexList rows = view_->selectionModel()->selectedRows();
    std::sort(rows.begin(), rows.end(), [](const QModelIndex &a, const QModelIndex &b) { return a.row() < b.row(); });
    for (const QModelIndex &row : rows)
        values << model_->cell(row.row(), column);
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
    if (const auto order = sorting_.askComplexOrder(view_ ? view_->window() : nullptr))
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
    return sortLayoutName_.isEmpty() ? sortLayoutNameOf(view_) : sortLayoutName_;
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
    return view_ ? pixelsToTwips(view_->horizontalHeader()->height()) : 0;
}

void classGrid::setHeaderHeight(int twips)
{
    if (view_)
        view_->horizontalHeader()->setFixedHeight(twipsToPixels(twips));
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
    directEdit_ = on;
    applyEditTriggers();
}

void classGrid::RefreshHScrollBar()
{
    if (view_)
        view_->updateGeometry();
    syncTotals();
}

bool classGrid::Visible() const
{
    return view_ && !view_->isHidden();
}

void classGrid::setVisible(bool on)
{
    if (view_)
        view_->setVisible(on);
    totals_.followGrid(on);
}

bool classGrid::eventFilter(QObject *watched, QEvent *event)
{
    if (!view_)
        return false;
    if (watched == view_) {
        switch (event->type()) {
        case QEvent::KeyPress: {
            const auto *key = static_cast<QKeyEvent *>(event);
            emit keyPressed(key->text().isEmpty() ? key->key() : key->text().at(0).unicode());
            break;
        }
        case QEvent::Show:
        case QEvent::Hide:
            emit visibilityChanged();
            break;
        case QEvent::Resize:
            emit resized();
            break;
        default:
            break;
        }
    } else if (watched == view_->viewport()) {
        if (event->type() == QEvent::MouseButtonDblClick &&
            static_cast<QMouseEvent *>(event)->button() == Qt::LeftButton) {
            emit leftDoubleClicked();
        } else if (event->type() == QEvent::MouseButtonPress &&
                   static_cast<QMouseEvent *>(event)->button() == Qt::RightButton) {
            const QModelIndex at = view_->indexAt(static_cast<QMouseEvent *>(event)->position().toPoint());
            if (at.isValid())
                view_->setCurrentIndex(at);
            emit rightClicked();
        }
    }
    return false;
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
    const classGridColumn &settings = model_->columns()[column];
    if (view_) {
        view_->setColumnHidden(column, settings.Hidden());
        view_->setColumnWidth(column, twipsToPixels(settings.WidthTwips()));
        syncTotals();
    }
    model_->columnChanged(column);
}

void classGrid::applyEditTriggers()
{
    if (!view_)
        return;
    view_->setEditTriggers(directEdit_ ? QAbstractItemView::AllEditTriggers
                                       : QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed);
}

void classGrid::syncTotals()
{
    if (view_)
        totals_.syncColumns(*view_);
}

void classGrid::onHeaderClicked(int section)
{
    if (section >= 0 && section < model_->columnCount())
        DoSortSimple(model_->columns()[section].Key());
}
