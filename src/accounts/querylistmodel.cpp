#include "querylistmodel.h"

#include <algorithm>
#include <iterator>

QueryListModel::QueryListModel(std::shared_ptr<const QueryItems> items, QObject *parent)
    : QAbstractTableModel(parent), items_(std::move(items))
{
}

void QueryListModel::setHeadings(const QString &value, const QString &description)
{
    headings_[0] = value;
    headings_[1] = description;
    emit headerDataChanged(Qt::Horizontal, 0, 1);
}

void QueryListModel::reset(std::shared_ptr<const QueryItems> items)
{
    beginResetModel();
    items_ = std::move(items);
    positions_.clear();
    endResetModel();
}

void QueryListModel::add(const std::vector<int> &positions)
{
    if (positions.empty())
        return;
    std::vector<int> adding = positions;
    std::sort(adding.begin(), adding.end());
    // Appending in load order is the usual case (loading, or values moved
    // from the end); one reset serves any other.
    if (positions_.empty() || adding.front() > positions_.back()) {
        beginInsertRows({}, int(positions_.size()), int(positions_.size() + adding.size()) - 1);
        positions_.insert(positions_.end(), adding.begin(), adding.end());
        endInsertRows();
        return;
    }
    beginResetModel();
    std::vector<int> merged;
    merged.reserve(positions_.size() + adding.size());
    std::merge(positions_.begin(), positions_.end(), adding.begin(), adding.end(), std::back_inserter(merged));
    positions_ = std::move(merged);
    endResetModel();
}

std::vector<int> QueryListModel::take(const std::vector<int> &rows)
{
    std::vector<int> sorted = rows;
    std::sort(sorted.begin(), sorted.end());
    sorted.erase(std::unique(sorted.begin(), sorted.end()), sorted.end());
    std::vector<int> taken;
    taken.reserve(sorted.size());
    // Back to front, so the rows still to remove keep their numbers; a run of
    // neighbours goes in one removal.
    for (auto last = sorted.rbegin(); last != sorted.rend();) {
        if (*last < 0 || *last >= int(positions_.size())) {
            ++last;
            continue;
        }
        auto first = last;
        while (std::next(first) != sorted.rend() && *std::next(first) == *first - 1)
            ++first;
        beginRemoveRows({}, *first, *last);
        const auto from = positions_.begin() + *first;
        const auto to = positions_.begin() + *last + 1;
        taken.insert(taken.end(), from, to);
        positions_.erase(from, to);
        endRemoveRows();
        last = std::next(first);
    }
    std::sort(taken.begin(), taken.end());
    return taken;
}

QStringList QueryListModel::values() const
{
    QStringList values;
    values.reserve(qsizetype(positions_.size()));
    for (const int position : positions_)
        values << (*items_)[std::size_t(position)].value;
    return values;
}

int QueryListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(positions_.size());
}

int QueryListModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : 2;
}

QVariant QueryListModel::data(const QModelIndex &index, int role) const
{
    if (role != Qt::DisplayRole || !index.isValid())
        return {};
    const QueryListItem &shown = item(index.row());
    return index.column() == 0 ? shown.value : shown.description;
}

QVariant QueryListModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole)
        return {};
    if (orientation == Qt::Vertical)
        return section + 1;
    return section >= 0 && section < 2 ? headings_[section] : QString();
}
