#pragma once

#include <QStyledItemDelegate>

class GridModel;

// Paints the cells of a grid with the horizontal and vertical rules drawn
// separately (the view's own grid draws both or neither), and keeps editors
// within the column's maximum length.
class GridDelegate : public QStyledItemDelegate {
public:
    GridDelegate(const GridModel &model, QObject *parent);

    void setLines(bool horizontal, bool vertical);
    bool horizontal() const { return horizontal_; }
    bool vertical() const { return vertical_; }

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option, const QModelIndex &index) const override;

private:
    const GridModel &model_;
    bool horizontal_ = true;
    bool vertical_ = true;
};
