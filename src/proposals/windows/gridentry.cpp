#include "gridentry.h"

#include "amountentry.h"

#include "classgrid.h"
#include "messageservice.h"

#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>
#include <QLineEdit>
#include <QTableView>

namespace {

QString editorText(QWidget *editor)
{
    const auto *line = qobject_cast<QLineEdit *>(editor);
    return line ? line->text() : QString();
}

bool isEnter(const QKeyEvent &key)
{
    return key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter;
}

} // namespace

GridEntry::GridEntry(classGrid &grid, QString rowLabelKey, QString title)
    : QStyledItemDelegate(&grid), grid_(grid), view_(grid.view()), base_(grid.view()->itemDelegate()),
      rowLabelKey_(std::move(rowLabelKey)), title_(std::move(title))
{
    view_->setItemDelegate(this);
    view_->installEventFilter(this);
}

GridEntry::~GridEntry()
{
    if (view_ && view_->itemDelegate() == this)
        view_->setItemDelegate(base_);
}

void GridEntry::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    base_ ? base_->paint(painter, option, index) : QStyledItemDelegate::paint(painter, option, index);
}

QSize GridEntry::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    return base_ ? base_->sizeHint(option, index) : QStyledItemDelegate::sizeHint(option, index);
}

QWidget *GridEntry::createEditor(QWidget *parent, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    return base_ ? base_->createEditor(parent, option, index)
                 : QStyledItemDelegate::createEditor(parent, option, index);
}

QString GridEntry::refusal(const QString &key, const QString &text) const
{
    const classGridColumn &column = grid_.Column(key);
    if (column.Type() == GridColumnType::Amount)
        return parseAmountEntry(text).problem;
    if (column.MaxLength() > 0 && text.size() > column.MaxLength())
        return QStringLiteral("\"%1\" is longer than %2 characters").arg(text).arg(column.MaxLength());
    return {};
}

bool GridEntry::refuseTyped(QWidget *editor, const QModelIndex &at) const
{
    if (!at.isValid())
        return false;
    const QString key = grid_.ColumnKey(at.column() + 1);
    const QString problem = refusal(key, editorText(editor));
    if (problem.isEmpty())
        return false;
    messages().messageBox({title_,
                           grid_.Column(key).HeadingOneLine() + QStringLiteral(": ") + problem +
                               QStringLiteral(". The cell keeps ") + grid_.GetCellValue(at.row() + 1, key) +
                               QLatin1Char('.'),
                           MsgButtons::OK, MsgIcon::Exclamation, MsgAnswer::OK});
    return true;
}

void GridEntry::setModelData(QWidget *editor, QAbstractItemModel *model, const QModelIndex &index) const
{
    // Enter and Tab have judged the value already; a click elsewhere has not.
    if (refusal(grid_.ColumnKey(index.column() + 1), editorText(editor)).isEmpty())
        QStyledItemDelegate::setModelData(editor, model, index);
    else
        refuseTyped(editor, index);
}

void GridEntry::moveDown()
{
    const QModelIndex at = view_->currentIndex();
    if (at.isValid() && at.row() + 1 < view_->model()->rowCount())
        view_->setCurrentIndex(view_->model()->index(at.row() + 1, at.column()));
}

bool GridEntry::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress || !view_)
        return QStyledItemDelegate::eventFilter(watched, event);
    const auto &key = *static_cast<QKeyEvent *>(event);
    if (watched == view_) {
        if (isEnter(key)) {
            moveDown();
            return true;
        }
        if (key.matches(QKeySequence::Paste) && view_->currentIndex().isValid()) {
            const QModelIndex at = view_->currentIndex();
            PasteBlock(at.row() + 1, grid_.ColumnKey(at.column() + 1), QApplication::clipboard()->text());
            return true;
        }
        return false;
    }
    auto *editor = qobject_cast<QWidget *>(watched);
    const bool leaves = isEnter(key) || key.key() == Qt::Key_Tab || key.key() == Qt::Key_Backtab;
    if (!editor || !leaves)
        return QStyledItemDelegate::eventFilter(watched, event);
    if (refuseTyped(editor, view_->currentIndex()))
        return true; // the editor stays open with what was typed
    if (!isEnter(key))
        return QStyledItemDelegate::eventFilter(watched, event);
    emit commitData(editor);
    emit closeEditor(editor, QAbstractItemDelegate::NoHint);
    moveDown();
    return true;
}

bool GridEntry::PasteBlock(int row, const QString &key, const QString &text)
{
    QStringList columns;
    bool from = false;
    for (int c = 1; c <= grid_.CountColumns(); ++c) {
        const QString k = grid_.ColumnKey(c);
        from = from || k == key;
        if (from && !grid_.ColumnHidden(k))
            columns << k;
    }
    QStringList lines = text.split(u'\n');
    if (!lines.isEmpty() && lines.back().isEmpty())
        lines.removeLast(); // a spreadsheet ends its block with a line break

    struct Pending {
        int row;
        QString key;
        QString value;
    };
    std::vector<Pending> pending;
    QStringList refused;
    for (int r = 0; r < lines.size(); ++r) {
        QString line = lines[r];
        if (line.endsWith(u'\r'))
            line.chop(1);
        const QStringList values = line.split(u'\t');
        const int target = row + r;
        for (int c = 0; c < values.size(); ++c) {
            const QString value = values[c].trimmed();
            const auto refuse = [&](const QString &where, const QString &why) {
                refused << QStringLiteral("%1: \"%2\" %3").arg(where, value, why);
            };
            if (target > grid_.CountRows()) {
                refuse(QStringLiteral("row %1").arg(target), QStringLiteral("falls below the last row"));
                continue;
            }
            const QString label = grid_.GetItemValue(target, rowLabelKey_);
            if (c >= columns.size()) {
                refuse(label, QStringLiteral("falls past the last column"));
                continue;
            }
            const QString &k = columns[c];
            const QString where = label + QStringLiteral(", ") + grid_.Column(k).HeadingOneLine();
            if (!grid_.ColumnDataEdit(k) || grid_.CellLocked(target, k)) {
                // A block copied back over itself may repeat what a closed cell holds.
                if (!value.isEmpty() && value != grid_.GetCellValue(target, k) &&
                    value != grid_.GetItemValue(target, k))
                    refuse(where, QStringLiteral("cannot go into a cell that is closed"));
                continue;
            }
            const QString problem = refusal(k, value);
            if (!problem.isEmpty()) {
                refused << where + QStringLiteral(": ") + problem;
                continue;
            }
            pending.push_back({target, k, value});
        }
    }
    if (!refused.isEmpty()) {
        messages().messageBox({title_,
                               QStringLiteral("Nothing was pasted. These values cannot go where they would land:\n") +
                                   refused.join(u'\n'),
                               MsgButtons::OK, MsgIcon::Exclamation, MsgAnswer::OK});
        return false;
    }
    for (const Pending &cell : pending) {
        grid_.SetCell(cell.row, cell.key, cell.value);
        emit edited(cell.row, cell.key);
    }
    return true;
}
