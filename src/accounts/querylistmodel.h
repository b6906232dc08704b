#pragma once

#include <QAbstractTableModel>
#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

// One value the query pop-up offers: the value itself (an account code, a
// vendor ID ...) and what describes it (the account's name; may be empty).
struct QueryListItem {
    QString value;
    QString description;
};

using QueryItems = std::vector<QueryListItem>;

// One of the pop-up's two lists: a subset of the loaded items, always in the
// order they were loaded in, so a value moved back returns to its place.
class QueryListModel : public QAbstractTableModel {
    Q_OBJECT
public:
    QueryListModel(std::shared_ptr<const QueryItems> items, QObject *parent = nullptr);

    void setHeadings(const QString &value, const QString &description);
    // Forgets every row and takes the (new) loaded items.
    void reset(std::shared_ptr<const QueryItems> items);
    // Adds items by their positions in the loaded list, keeping load order.
    void add(const std::vector<int> &positions);
    // Removes the rows (0-based, any order) and returns their items' positions.
    std::vector<int> take(const std::vector<int> &rows);
    const std::vector<int> &positions() const { return positions_; }
    const QueryListItem &item(int row) const { return (*items_)[std::size_t(positions_[std::size_t(row)])]; }
    QStringList values() const;

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    std::shared_ptr<const QueryItems> items_;
    std::vector<int> positions_; // ascending
    QString headings_[2];
};
