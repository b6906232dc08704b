#include "gridtotals.h"

#include <QHeaderView>
#include <QScrollBar>

GridTotalsModel::GridTotalsModel(GridModel &cells, QObject *parent) : QAbstractTableModel(parent), cells_(cells)
{
    const auto update = [this] { refresh(); };
    connect(&cells_, &QAbstractItemModel::dataChanged, this, update);
    connect(&cells_, &QAbstractItemModel::rowsInserted, this, update);
    connect(&cells_, &QAbstractItemModel::rowsRemoved, this, update);
    connect(&cells_, &QAbstractItemModel::headerDataChanged, this, update);
    // New columns change the shape; everything else only the figures.
    connect(&cells_, &QAbstractItemModel::columnsAboutToBeInserted, this, [this] { beginResetModel(); });
    connect(&cells_, &QAbstractItemModel::columnsInserted, this, [this] { endResetModel(); });
    connect(&cells_, &QAbstractItemModel::modelAboutToBeReset, this, [this] { beginResetModel(); });
    connect(&cells_, &QAbstractItemModel::modelReset, this, [this] { endResetModel(); });
}

int GridTotalsModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : 1;
}

int GridTotalsModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : cells_.columnCount();
}

QVariant GridTotalsModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.column() >= cells_.columnCount())
        return {};
    const classGridColumn &column = cells_.columns()[std::size_t(index.column())];
    if (role == Qt::TextAlignmentRole)
        return QVariant(Qt::AlignRight | Qt::AlignVCenter);
    if (role != Qt::DisplayRole || !column.Total())
        return {};
    return cells_.columnTotal(index.column()).toDisplayText();
}

void GridTotalsModel::refresh()
{
    if (columnCount() > 0)
        emit dataChanged(index(0, 0), index(0, columnCount() - 1));
}

GridTotals::GridTotals(GridModel &cells) : cells_(cells), model_(cells)
{
}

GridTotals::~GridTotals()
{
    // The view may outlive the totals; it must not keep their model.
    if (companion_)
        companion_->setModel(nullptr);
}

void GridTotals::bind(QTableView &grid, QTableView *companion)
{
    companion_ = companion;
    if (!companion_)
        return;
    companion_->setModel(&model_);
    companion_->horizontalHeader()->hide();
    companion_->verticalHeader()->setVisible(false);
    companion_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    companion_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    companion_->setSelectionMode(QAbstractItemView::NoSelection);
    companion_->setFocusPolicy(Qt::NoFocus);
    companion_->setFixedHeight(grid.verticalHeader()->defaultSectionSize() + 2 * companion_->frameWidth());
    companion_->setVisible(shown_);
    // The totals scroll sideways with the grid above them.
    QObject::connect(grid.horizontalScrollBar(), &QScrollBar::valueChanged, companion_->horizontalScrollBar(),
                     &QScrollBar::setValue);
}

void GridTotals::setShown(bool on)
{
    shown_ = on;
    if (companion_)
        companion_->setVisible(on);
}

void GridTotals::followGrid(bool gridVisible)
{
    if (companion_)
        companion_->setVisible(gridVisible && shown_);
}

void GridTotals::syncColumns(const QTableView &grid)
{
    if (!companion_)
        return;
    for (int column = 0; column < cells_.columnCount(); ++column) {
        companion_->setColumnHidden(column, grid.isColumnHidden(column));
        companion_->setColumnWidth(column, grid.columnWidth(column));
    }
}

void GridTotals::setBalance(const QString &amountKey, const QString &balanceKey)
{
    amountKey_ = amountKey;
    balanceKey_ = balanceKey;
    refreshBalance();
}

void GridTotals::clearBalance()
{
    amountKey_.clear();
    balanceKey_.clear();
}

void GridTotals::refreshBalance()
{
    if (balanceKey_.isEmpty())
        return;
    const int amount = cells_.columnOf(amountKey_);
    const int balance = cells_.columnOf(balanceKey_);
    Currency running;
    for (int row = 0; row < cells_.rowCount(); ++row) {
        running += cells_.amount(row, amount).value_or(Currency());
        cells_.setCell(row, balance, running.toSqlText());
    }
}
