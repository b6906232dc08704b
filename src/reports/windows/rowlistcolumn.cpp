#include "rowlistcolumn.h"

#include "classgrid.h"
#include "wrappererror.h"

#include <QComboBox>
#include <QPointer>
#include <QStyledItemDelegate>

namespace {

int columnIndex(const classGrid &grid, const QString &key)
{
    for (int column = 1; column <= grid.CountColumns(); ++column) {
        if (grid.ColumnKey(column) == key)
            return column - 1;
    }
    throw WrapperError(invalidPropertyValueError, QStringLiteral("setRowListColumn"), invalidKeyText());
}

// Edits through a combo box filled from the row's list and leaves the drawing
// to the view's own delegate, so the column keeps the grid's look.
class RowListDelegate : public QStyledItemDelegate {
public:
    RowListDelegate(int listColumn, QAbstractItemDelegate *painter, QObject *parent)
        : QStyledItemDelegate(parent), listColumn_(listColumn), painter_(painter)
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
        const QString list = index.siblingAtColumn(listColumn_).data(Qt::EditRole).toString();
        if (list.isEmpty())
            return nullptr;
        auto *box = new QComboBox(parent);
        box->addItems(list.split(QLatin1Char('\t')));
        // A pick is a finished edit: the cell takes it at once.
        connect(box, &QComboBox::activated, this, [this, box] {
            auto *self = const_cast<RowListDelegate *>(this);
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
    int listColumn_;
    QPointer<QAbstractItemDelegate> painter_;
};

} // namespace

void setRowListColumn(classGrid &grid, const QString &key, const QString &listKey)
{
    QTableView *view = grid.view();
    const int column = columnIndex(grid, key);
    view->setItemDelegateForColumn(column, new RowListDelegate(columnIndex(grid, listKey), view->itemDelegate(), view));
}
