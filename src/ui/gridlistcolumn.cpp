#include "gridlistcolumn.h"

#include "classgrid.h"
#include "wrappererror.h"

#include <QComboBox>
#include <QPointer>
#include <QStyledItemDelegate>

#include <functional>

namespace {

using EntriesOf = std::function<QStringList(const QModelIndex &)>;

int columnIndex(const classGrid &grid, const QString &key, const QString &caller)
{
    for (int column = 1; column <= grid.CountColumns(); ++column) {
        if (grid.ColumnKey(column) == key)
            return column - 1;
    }
    throw WrapperError(invalidPropertyValueError, caller, invalidKeyText());
}

// Edits through a combo box and leaves the drawing to the view's own delegate,
// so the column keeps the grid's rules and colours.
class ListDelegate : public QStyledItemDelegate {
public:
    ListDelegate(EntriesOf entriesOf, QAbstractItemDelegate *painter, QObject *parent)
        : QStyledItemDelegate(parent), entriesOf_(std::move(entriesOf)), painter_(painter)
    {
    }

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        if (painter_)
            painter_->paint(painter, option, index);
        else
            QStyledItemDelegate::paint(painter, option, index);
    }

    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &, const QModelIndex &index) const override
    {
        const QStringList entries = entriesOf_(index);
        if (entries.isEmpty())
            return nullptr;
        auto *box = new QComboBox(parent);
        box->addItems(entries);
        // A pick is a finished edit: the cell takes it at once.
        connect(box, &QComboBox::activated, this, [this, box] {
            auto *self = const_cast<ListDelegate *>(this);
            emit self->commitData(box);
            emit self->closeEditor(box);
        });
        return box;
    }

    void setEditorData(QWidget *editor, const QModelIndex &index) const override
    {
        auto *box = static_cast<QComboBox *>(editor);
        box->setCurrentIndex(box->findText(index.data(Qt::EditRole).toString()));
    }

    void setModelData(QWidget *editor, QAbstractItemModel *model, const QModelIndex &index) const override
    {
        const QString picked = static_cast<QComboBox *>(editor)->currentText();
        if (picked != index.data(Qt::EditRole).toString())
            model->setData(index, picked, Qt::EditRole);
    }

private:
    EntriesOf entriesOf_;
    QPointer<QAbstractItemDelegate> painter_;
};

void setListDelegate(classGrid &grid, int column, EntriesOf entriesOf)
{
    QTableView *view = grid.view();
    view->setItemDelegateForColumn(column, new ListDelegate(std::move(entriesOf), view->itemDelegate(), view));
}

} // namespace

void setListColumn(classGrid &grid, const QString &key, const QStringList &entries)
{
    setListDelegate(grid, columnIndex(grid, key, QStringLiteral("setListColumn")),
                    [entries](const QModelIndex &) { return entries; });
}

void setRowListColumn(classGrid &grid, const QString &key, const QString &listKey)
{
    const int column = columnIndex(grid, key, QStringLiteral("setRowListColumn"));
    const int listColumn = columnIndex(grid, listKey, QStringLiteral("setRowListColumn"));
    setListDelegate(grid, column, [listColumn](const QModelIndex &index) {
        const QString list = index.siblingAtColumn(listColumn).data(Qt::EditRole).toString();
        return list.isEmpty() ? QStringList() : list.split(QLatin1Char('\t'));
    });
}
