#include "gridlistcolumn.h"

#include "classgrid.h"
#include "wrappererror.h"

#include <QComboBox>
#include <QPointer>
#include <QStyledItemDelegate>

namespace {

// Edits through a combo box and leaves the drawing to the view's own delegate,
// so the column keeps the grid's rules and colours.
class ListDelegate : public QStyledItemDelegate {
public:
    ListDelegate(QStringList entries, QAbstractItemDelegate *painter, QObject *parent)
        : QStyledItemDelegate(parent), entries_(std::move(entries)), painter_(painter)
    {
    }

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        if (painter_)
            painter_->paint(painter, option, index);
        else
            QStyledItemDelegate::paint(painter, option, index);
    }

    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &, const QModelIndex &) const override
    {
        auto *box = new QComboBox(parent);
        box->addItems(entries_);
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
    QStringList entries_;
    QPointer<QAbstractItemDelegate> painter_;
};

} // namespace

void setListColumn(classGrid &grid, const QString &key, const QStringList &entries)
{
    QTableView *view = grid.view();
    for (int column = 1; column <= grid.CountColumns(); ++column) {
        if (grid.ColumnKey(column) == key) {
            view->setItemDelegateForColumn(column - 1, new ListDelegate(entries, view->itemDelegate(), view));
            return;
        }
    }
    throw WrapperError(invalidPropertyValueError, QStringLiteral("setListColumn"), invalidKeyText());
}
