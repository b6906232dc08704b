#include "gridmodel.h"

#include <QBrush>
#include <QColor>

#include <algorithm>
#include <numeric>

namespace {

const QColor greenbarColour(0xE4, 0xF2, 0xE4);
const QColor lockedColour(0xEE, 0xEE, 0xEE);

// A check state from the view, or a text from an editor.
QString checkText(const classGridColumn &column, const QVariant &value)
{
    if (value.typeId() == QMetaType::Int || value.typeId() == QMetaType::UInt)
        return column.CheckValue(value.toInt() == Qt::Checked);
    return column.CheckValue(column.IsChecked(value.toString()));
}

bool sameValue(GridColumnType type, const QString &a, const QString &b)
{
    if (type == GridColumnType::Amount) {
        const auto left = a.trimmed().isEmpty() ? std::optional<Currency>(Currency()) : Currency::parse(a);
        const auto right = b.trimmed().isEmpty() ? std::optional<Currency>(Currency()) : Currency::parse(b);
        if (left && right)
            return *left == *right;
    }
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

} // namespace

int GridModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int GridModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(columns_.size());
}

QString GridModel::displayText(int row, int column) const
{
    const QString &value = cell(row, column);
    if (columns_[column].Type() != GridColumnType::Amount || value.isEmpty())
        return columns_[column].Type() == GridColumnType::Check ? QString() : value;
    const auto parsed = Currency::parse(value);
    return parsed ? parsed->toDisplayText() : value;
}

std::optional<Currency> GridModel::amount(int row, int column) const
{
    const QString &value = cell(row, column);
    return value.isEmpty() ? std::optional<Currency>(Currency()) : Currency::parse(value);
}

QVariant GridModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    const int row = index.row();
    const int column = index.column();
    const GridColumnType type = columns_[column].Type();
    switch (role) {
    case Qt::DisplayRole:
        return repeatsGroup(row, column) ? QString() : displayText(row, column);
    case Qt::EditRole:
        return displayText(row, column);
    case Qt::CheckStateRole:
        if (type == GridColumnType::Check)
            return columns_[column].IsChecked(cell(row, column)) ? Qt::Checked : Qt::Unchecked;
        return {};
    case Qt::TextAlignmentRole:
        return type == GridColumnType::Amount ? QVariant(Qt::AlignRight | Qt::AlignVCenter)
                                              : QVariant(Qt::AlignLeft | Qt::AlignVCenter);
    case Qt::BackgroundRole:
        if (columns_[column].Editable() && locked(row, column))
            return QBrush(lockedColour);
        if (greenbar_ && row % 2 == 1)
            return QBrush(greenbarColour);
        return {};
    default:
        return {};
    }
}

bool GridModel::editable(int row, int column) const
{
    return columns_[column].Editable() && !columns_[column].Hidden() && !locked(row, column);
}

Qt::ItemFlags GridModel::flags(const QModelIndex &index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    if (editable(index.row(), index.column())) {
        flags |=
            columns_[index.column()].Type() == GridColumnType::Check ? Qt::ItemIsUserCheckable : Qt::ItemIsEditable;
    }
    return flags;
}

bool GridModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (!index.isValid() || !editable(index.row(), index.column()))
        return false;
    const classGridColumn &column = columns_[index.column()];
    QString text;
    if (column.Type() == GridColumnType::Check) {
        if (role != Qt::CheckStateRole && role != Qt::EditRole)
            return false;
        text = checkText(column, value);
    } else {
        if (role != Qt::EditRole)
            return false;
        text = value.toString();
        if (column.MaxLength() > 0 && text.size() > column.MaxLength())
            return false; // refused, never cut short
    }
    if (!setCell(index.row(), index.column(), text))
        return false;
    emit cellEdited(index.row(), index.column());
    return true;
}

QVariant GridModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole)
        return {};
    if (orientation == Qt::Vertical)
        return section + 1;
    return section < static_cast<int>(columns_.size()) ? columns_[section].Heading() : QString();
}

void GridModel::clearAll()
{
    beginResetModel();
    columns_.clear();
    rows_.clear();
    endResetModel();
}

void GridModel::addColumn(const classGridColumn &column)
{
    const int at = static_cast<int>(columns_.size());
    beginInsertColumns({}, at, at);
    columns_.push_back(column);
    for (Row &row : rows_) {
        row.cells.emplace_back();
        row.locked.push_back(0);
    }
    endInsertColumns();
}

int GridModel::columnOf(const QString &key) const
{
    const auto found =
        std::find_if(columns_.begin(), columns_.end(), [&](const classGridColumn &c) { return c.Key() == key; });
    return found == columns_.end() ? -1 : static_cast<int>(found - columns_.begin());
}

void GridModel::columnChanged(int column)
{
    emit headerDataChanged(Qt::Horizontal, column, column);
    if (!rows_.empty())
        emit dataChanged(index(0, column), index(rowCount() - 1, column));
}

int GridModel::appendRow()
{
    const int at = rowCount();
    beginInsertRows({}, at, at);
    Row row;
    row.cells.resize(columns_.size());
    row.locked.resize(columns_.size(), 0);
    for (std::size_t c = 0; c < columns_.size(); ++c) {
        if (columns_[c].Type() == GridColumnType::Check)
            row.cells[c] = columns_[c].CheckValue(false);
    }
    rows_.push_back(std::move(row));
    endInsertRows();
    return at;
}

void GridModel::removeRow(int row)
{
    beginRemoveRows({}, row, row);
    rows_.erase(rows_.begin() + row);
    endRemoveRows();
}

void GridModel::setRowCountTo(int count)
{
    while (rowCount() > count)
        removeRow(rowCount() - 1);
    while (rowCount() < count)
        appendRow();
}

void GridModel::clearRows()
{
    beginResetModel();
    rows_.clear();
    endResetModel();
}

bool GridModel::setCell(int row, int column, const QString &value)
{
    QString stored = value;
    switch (columns_[column].Type()) {
    case GridColumnType::Amount:
        if (!value.trimmed().isEmpty()) {
            const auto parsed = Currency::parse(value);
            if (!parsed)
                return false;
            stored = parsed->toSqlText();
        } else {
            stored.clear();
        }
        break;
    case GridColumnType::Check:
        stored = checkText(columns_[column], value);
        break;
    case GridColumnType::Text:
        break;
    }
    rows_[row].cells[column] = stored;
    // A grouped value decides whether the rows below it show theirs.
    const int last = columns_[column].Grouping() ? rowCount() - 1 : row;
    emit dataChanged(index(row, column), index(last, int(columns_.size()) - 1));
    return true;
}

bool GridModel::repeatsGroup(int row, int column) const
{
    if (row == 0 || !columns_[column].Grouping())
        return false;
    // Blank only while this column and every grouped column before it repeat
    // the row above, so an outer group's change shows the inner value again.
    for (int c = 0; c <= column; ++c) {
        if (columns_[c].Grouping() && rows_[row].cells[c] != rows_[row - 1].cells[c])
            return false;
    }
    return true;
}

void GridModel::setLocked(int row, int column, bool on)
{
    rows_[row].locked[column] = on ? 1 : 0;
    const QModelIndex at = index(row, column);
    emit dataChanged(at, at);
}

void GridModel::setGreenbar(bool on)
{
    greenbar_ = on;
    if (!rows_.empty())
        emit dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1), {Qt::BackgroundRole});
}

int GridModel::compareCells(int column, const Row &a, const Row &b) const
{
    const QString &left = a.cells[column];
    const QString &right = b.cells[column];
    if (columns_[column].Type() == GridColumnType::Amount) {
        const Currency l = left.isEmpty() ? Currency() : Currency::parse(left).value_or(Currency());
        const Currency r = right.isEmpty() ? Currency() : Currency::parse(right).value_or(Currency());
        return l < r ? -1 : (r < l ? 1 : 0);
    }
    return left.compare(right, Qt::CaseInsensitive);
}

void GridModel::sortRows(const GridSortOrder &order)
{
    std::vector<std::pair<int, bool>> steps;
    for (const auto &step : order) {
        const int column = columnOf(step.Key());
        if (column >= 0)
            steps.emplace_back(column, step.Ascending());
    }
    if (steps.empty())
        return;
    emit layoutAboutToBeChanged();
    std::vector<int> byPlace(rows_.size()); // the old row at each new place
    std::iota(byPlace.begin(), byPlace.end(), 0);
    std::stable_sort(byPlace.begin(), byPlace.end(), [&](int a, int b) {
        for (const auto &[column, ascending] : steps) {
            const int c = compareCells(column, rows_[std::size_t(a)], rows_[std::size_t(b)]);
            if (c != 0)
                return ascending ? c < 0 : c > 0;
        }
        return false;
    });
    std::vector<Row> sorted;
    sorted.reserve(rows_.size());
    std::vector<int> placeOf(rows_.size());
    for (std::size_t place = 0; place < byPlace.size(); ++place) {
        sorted.push_back(std::move(rows_[std::size_t(byPlace[place])]));
        placeOf[std::size_t(byPlace[place])] = int(place);
    }
    rows_ = std::move(sorted);
    // The current cell and the selection stay on their records, not on their row numbers.
    const QModelIndexList before = persistentIndexList();
    QModelIndexList after;
    for (const QModelIndex &at : before)
        after << index(placeOf[std::size_t(at.row())], at.column());
    changePersistentIndexList(before, after);
    emit layoutChanged();
}

Currency GridModel::columnTotal(int column) const
{
    Currency sum;
    for (int row = 0; row < rowCount(); ++row)
        sum += amount(row, column).value_or(Currency());
    return sum;
}

bool GridModel::rowDiffersFromTwins(int row) const
{
    for (std::size_t twin = 0; twin < columns_.size(); ++twin) {
        if (!columns_[twin].IsOrigTwin())
            continue;
        const int column = columnOf(columns_[twin].TwinOf());
        if (!sameValue(columns_[twin].Type(), cell(row, column), cell(row, int(twin))))
            return true;
    }
    return false;
}
