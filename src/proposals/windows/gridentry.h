#pragma once

#include <QPointer>
#include <QString>
#include <QStyledItemDelegate>

class classGrid;
class QTableView;

// Spreadsheet-style entry on an editable grid: typing replaces the cell,
// Enter moves down and Tab right, amounts are checked as they are typed
// (refused with a message that names the value, the cell keeps its figure),
// and Ctrl+V pastes a tab-separated block from the current cell. Owned by the
// grid wrapper, so it goes before the view does. Painting and
// editors stay the grid's own; this only judges and moves.
class GridEntry : public QStyledItemDelegate {
    Q_OBJECT
public:
    // `rowLabelKey` names the column that identifies a row in messages;
    // `title` is the title of those messages.
    GridEntry(classGrid &grid, QString rowLabelKey, QString title);
    ~GridEntry() override;

    // Pastes rows of tab-separated values into the visible columns from
    // (row, key) on. Cells that cannot take their value (locked, not an
    // amount, past the grid) are all named in one message and then nothing
    // is pasted. True when the block went in.
    bool PasteBlock(int row, const QString &key, const QString &text);

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    void setModelData(QWidget *editor, QAbstractItemModel *model, const QModelIndex &index) const override;

signals:
    // A pasted value went into the cell (typed values arrive as the grid's cellChanged).
    void edited(int row, const QString &key);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    // Empty when the text may go into the cell; otherwise why not.
    QString refusal(const QString &key, const QString &text) const;
    // Tells the user why the editor's text cannot go into the cell at `at`; false when it can.
    bool refuseTyped(QWidget *editor, const QModelIndex &at) const;
    void moveDown();

    classGrid &grid_;
    QPointer<QTableView> view_;
    QPointer<QAbstractItemDelegate> base_;
    QString rowLabelKey_;
    QString title_;
};
