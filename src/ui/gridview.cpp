#include "gridview.h"

#include "gridmodel.h"
#include "twips.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>

#include <algorithm>

GridView::GridView(GridModel &cells, QObject *parent) : QObject(parent), cells_(cells)
{
}

GridView::~GridView()
{
    // The view may outlive the grid; it must not keep its model.
    if (view_)
        view_->setModel(nullptr);
}

void GridView::bind(QTableView &view)
{
    view_ = &view;
    view_->setModel(&cells_);
    delegate_ = new GridDelegate(cells_, view_);
    view_->setItemDelegate(delegate_);
    view_->setShowGrid(false); // the delegate draws each kind of rule on its own
    applyLines();
    view_->setSelectionBehavior(QAbstractItemView::SelectRows);
    view_->horizontalHeader()->setDefaultAlignment(Qt::AlignCenter);
    view_->verticalHeader()->setDefaultSectionSize(view_->fontMetrics().height() + 6);
    view_->verticalHeader()->setVisible(false); // keeps the totals' columns under the grid's
    view_->setWordWrap(false);
    view_->installEventFilter(this);
    view_->viewport()->installEventFilter(this);
    connect(view_->horizontalHeader(), &QHeaderView::sectionClicked, this, &GridView::headerClicked);
    connect(view_->horizontalHeader(), &QHeaderView::sectionResized, this, &GridView::columnResized);
    setSingleSelection(singleSelection_);
    applyEditTriggers();
}

void GridView::setLines(bool horizontal, bool vertical)
{
    linesHorizontal_ = horizontal;
    linesVertical_ = vertical;
    applyLines();
}

void GridView::applyLines()
{
    if (!delegate_)
        return;
    delegate_->setLines(linesHorizontal_, linesVertical_);
    view_->viewport()->update();
}

void GridView::setSingleSelection(bool on)
{
    singleSelection_ = on;
    if (view_)
        view_->setSelectionMode(on ? QAbstractItemView::SingleSelection : QAbstractItemView::ExtendedSelection);
}

void GridView::setDirectEdit(bool on)
{
    directEdit_ = on;
    applyEditTriggers();
}

void GridView::applyEditTriggers()
{
    if (!view_)
        return;
    view_->setEditTriggers(directEdit_ ? QAbstractItemView::AllEditTriggers
                                       : QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed);
}

void GridView::setWordWrap(bool on)
{
    if (view_)
        view_->setWordWrap(on);
}

void GridView::setRowLines(int row, int lines)
{
    if (view_)
        view_->verticalHeader()->resizeSection(row, lines * view_->fontMetrics().lineSpacing() + 6);
}

void GridView::applyColumn(int column)
{
    if (!view_)
        return;
    const classGridColumn &settings = cells_.columns()[std::size_t(column)];
    view_->setColumnHidden(column, settings.Hidden());
    view_->setColumnWidth(column, twipsToPixels(settings.WidthTwips()));
}

int GridView::currentRow() const
{
    return view_ && view_->currentIndex().isValid() ? view_->currentIndex().row() : -1;
}

int GridView::currentColumn() const
{
    return view_ && view_->currentIndex().isValid() ? view_->currentIndex().column() : -1;
}

void GridView::setCurrent(int row, int column)
{
    if (!view_)
        return;
    const QModelIndex at = cells_.index(row, column);
    view_->setCurrentIndex(at);
    view_->scrollTo(at);
}

void GridView::selectRow(int row)
{
    if (!view_)
        return;
    const auto &columns = cells_.columns();
    const auto shown = std::find_if(columns.begin(), columns.end(), [](const auto &c) { return !c.Hidden(); });
    const int column = shown == columns.end() ? cells_.columnCount() - 1 : int(shown - columns.begin());
    const QModelIndex at = cells_.index(row, column);
    view_->setCurrentIndex(at);
    view_->selectionModel()->select(at, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    view_->scrollTo(at);
}

void GridView::deselectRow(int row)
{
    if (view_)
        view_->selectionModel()->select(cells_.index(row, 0),
                                        QItemSelectionModel::Deselect | QItemSelectionModel::Rows);
}

void GridView::clearSelection()
{
    if (view_)
        view_->clearSelection();
}

std::vector<int> GridView::selectedRows() const
{
    std::vector<int> rows;
    if (!view_)
        return rows;
    for (const QModelIndex &at : view_->selectionModel()->selectedRows())
        rows.push_back(at.row());
    std::sort(rows.begin(), rows.end());
    return rows;
}

bool GridView::eventFilter(QObject *watched, QEvent *event)
{
    if (!view_)
        return false;
    if (watched == view_) {
        switch (event->type()) {
        case QEvent::KeyPress: {
            const auto *key = static_cast<QKeyEvent *>(event);
            emit keyPressed(key->text().isEmpty() ? key->key() : key->text().at(0).unicode());
            break;
        }
        case QEvent::Show:
        case QEvent::Hide:
            emit visibilityChanged();
            break;
        case QEvent::Resize:
            emit resized();
            break;
        default:
            break;
        }
    } else if (watched == view_->viewport()) {
        if (event->type() == QEvent::MouseButtonDblClick &&
            static_cast<QMouseEvent *>(event)->button() == Qt::LeftButton) {
            emit leftDoubleClicked();
        } else if (event->type() == QEvent::MouseButtonPress &&
                   static_cast<QMouseEvent *>(event)->button() == Qt::RightButton) {
            const QModelIndex at = view_->indexAt(static_cast<QMouseEvent *>(event)->position().toPoint());
            if (at.isValid())
                view_->setCurrentIndex(at);
            emit rightClicked();
        }
    }
    return false;
}
