#include "griddelegate.h"

#include "gridmodel.h"

#include <QApplication>
#include <QLineEdit>
#include <QPainter>

GridDelegate::GridDelegate(const GridModel &model, QObject *parent) : QStyledItemDelegate(parent), model_(model)
{
}

void GridDelegate::setLines(bool horizontal, bool vertical)
{
    horizontal_ = horizontal;
    vertical_ = vertical;
}

void GridDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    QStyledItemDelegate::paint(painter, option, index);
    if (!horizontal_ && !vertical_)
        return;
    // The same colour the view uses for its own grid, on the cell's bottom and right edges.
    const QWidget *widget = option.widget;
    const QStyle *style = widget ? widget->style() : QApplication::style();
    const int hint = style->styleHint(QStyle::SH_Table_GridLineColor, &option, widget);
    painter->save();
    painter->setPen(QColor::fromRgba(static_cast<QRgb>(hint)));
    const QRect r = option.rect;
    if (horizontal_)
        painter->drawLine(r.bottomLeft(), r.bottomRight());
    if (vertical_)
        painter->drawLine(r.topRight(), r.bottomRight());
    painter->restore();
}

QWidget *GridDelegate::createEditor(QWidget *parent, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    QWidget *editor = QStyledItemDelegate::createEditor(parent, option, index);
    const int limit = model_.columns()[index.column()].MaxLength();
    if (auto *line = qobject_cast<QLineEdit *>(editor); line && limit > 0)
        line->setMaxLength(limit);
    return editor;
}
