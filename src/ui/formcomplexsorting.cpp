#include "formcomplexsorting.h"

#include "dialogframe.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

#include <utility>

namespace {

constexpr int keyRole = Qt::UserRole;

QTableWidget *makeList(const QString &name, const QStringList &headings, QWidget *parent)
{
    auto *table = new QTableWidget(0, int(headings.size()), parent);
    table->setObjectName(name);
    table->setHorizontalHeaderLabels(headings);
    table->verticalHeader()->setVisible(false);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->setSelectionMode(QAbstractItemView::SingleSelection);
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
    return table;
}

QPushButton *makeButton(const QString &name, const QString &caption, QWidget *parent)
{
    auto *button = new QPushButton(caption, parent);
    button->setObjectName(name);
    return button;
}

} // namespace

formComplexSorting::formComplexSorting(QWidget *parent) : QDialog(parent)
{
    setDialogFrame(*this);
    setWindowTitle(QStringLiteral("Sort"));
    available_ = makeList(QStringLiteral("gridAvailable"), {QStringLiteral("Available columns")}, this);
    selected_ = makeList(QStringLiteral("gridSelected"), {QStringLiteral("Sort by"), QStringLiteral("Order")}, this);
    selected_->horizontalHeader()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
    add_ = makeButton(QStringLiteral("cmdAdd"), QStringLiteral("&Add >"), this);
    remove_ = makeButton(QStringLiteral("cmdRemove"), QStringLiteral("< &Remove"), this);
    up_ = makeButton(QStringLiteral("cmdMoveUp"), QStringLiteral("Move &Up"), this);
    down_ = makeButton(QStringLiteral("cmdMoveDown"), QStringLiteral("Move &Down"), this);
    auto *resetButton = makeButton(QStringLiteral("cmdReset"), QStringLiteral("R&eset"), this);
    auto *ok = makeButton(QStringLiteral("cmdOK"), QStringLiteral("OK"), this);
    auto *cancel = makeButton(QStringLiteral("cmdCancel"), QStringLiteral("Cancel"), this);
    ok->setDefault(true);

    auto *middle = new QVBoxLayout;
    middle->addStretch();
    for (QPushButton *button : {add_, remove_, up_, down_, resetButton})
        middle->addWidget(button);
    middle->addStretch();
    auto *lists = new QHBoxLayout;
    lists->addWidget(available_, 2);
    lists->addLayout(middle);
    lists->addWidget(selected_, 3);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(ok);
    buttons->addWidget(cancel);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(lists);
    layout->addLayout(buttons);
    resize(560, 320);

    connect(add_, &QPushButton::clicked, this, &formComplexSorting::add);
    connect(remove_, &QPushButton::clicked, this, &formComplexSorting::remove);
    connect(up_, &QPushButton::clicked, this, [this] { move(-1); });
    connect(down_, &QPushButton::clicked, this, [this] { move(1); });
    connect(resetButton, &QPushButton::clicked, this, &formComplexSorting::reset);
    connect(ok, &QPushButton::clicked, this, [this] {
        closeAction_ = Confirmed;
        accept();
    });
    connect(cancel, &QPushButton::clicked, this, [this] {
        closeAction_ = Cancelled;
        reject();
    });
    connect(available_, &QTableWidget::itemSelectionChanged, this, &formComplexSorting::updateButtons);
    connect(selected_, &QTableWidget::itemSelectionChanged, this, &formComplexSorting::updateButtons);
    updateButtons();
}

void formComplexSorting::AddColumn(const QString &key, const QString &description)
{
    offered_.emplace_back(key, description);
    const int row = available_->rowCount();
    available_->insertRow(row);
    auto *item = new QTableWidgetItem(description);
    item->setData(keyRole, key);
    available_->setItem(row, 0, item);
}

void formComplexSorting::SetLayout(const GridSortOrder &order)
{
    reset();
    for (const auto &step : order) {
        for (int row = 0; row < available_->rowCount(); ++row) {
            if (available_->item(row, 0)->data(keyRole).toString() == step.Key()) {
                addSelectedRow(step.Key(), available_->item(row, 0)->text(), step.Ascending());
                available_->removeRow(row);
                break;
            }
        }
    }
    updateButtons();
}

GridSortOrder formComplexSorting::Action() const
{
    GridSortOrder order;
    for (int row = 0; row < selected_->rowCount(); ++row) {
        const auto *direction = qobject_cast<QComboBox *>(selected_->cellWidget(row, 1));
        order.emplace_back(selected_->item(row, 0)->data(keyRole).toString(), direction->currentIndex() == 0);
    }
    return order;
}

void formComplexSorting::add()
{
    const int row = available_->currentRow();
    if (row < 0)
        return;
    const QTableWidgetItem *item = available_->item(row, 0);
    addSelectedRow(item->data(keyRole).toString(), item->text(), true);
    available_->removeRow(row);
    updateButtons();
}

void formComplexSorting::remove()
{
    const int row = selected_->currentRow();
    if (row < 0)
        return;
    const QTableWidgetItem *item = selected_->item(row, 0);
    const int at = available_->rowCount();
    available_->insertRow(at);
    auto *back = new QTableWidgetItem(item->text());
    back->setData(keyRole, item->data(keyRole));
    available_->setItem(at, 0, back);
    selected_->removeRow(row);
    updateButtons();
}

void formComplexSorting::move(int by)
{
    const int row = selected_->currentRow();
    const int target = row + by;
    if (row < 0 || target < 0 || target >= selected_->rowCount())
        return;
    GridSortOrder order = Action();
    QStringList captions;
    for (int r = 0; r < selected_->rowCount(); ++r)
        captions << selected_->item(r, 0)->text();
    std::swap(order[row], order[target]);
    captions.swapItemsAt(row, target);
    selected_->setRowCount(0);
    for (std::size_t r = 0; r < order.size(); ++r)
        addSelectedRow(order[r].Key(), captions[int(r)], order[r].Ascending());
    selected_->setCurrentCell(target, 0);
    updateButtons();
}

void formComplexSorting::reset()
{
    selected_->setRowCount(0);
    available_->setRowCount(0);
    const auto offered = offered_;
    offered_.clear();
    for (const auto &[key, description] : offered)
        AddColumn(key, description);
    updateButtons();
}

void formComplexSorting::addSelectedRow(const QString &key, const QString &description, bool ascending)
{
    const int row = selected_->rowCount();
    selected_->insertRow(row);
    auto *item = new QTableWidgetItem(description);
    item->setData(keyRole, key);
    selected_->setItem(row, 0, item);
    auto *direction = new QComboBox(selected_);
    direction->addItems({QStringLiteral("Ascending"), QStringLiteral("Descending")});
    direction->setCurrentIndex(ascending ? 0 : 1);
    selected_->setCellWidget(row, 1, direction);
}

void formComplexSorting::updateButtons()
{
    const int row = selected_->currentRow();
    add_->setEnabled(available_->currentRow() >= 0);
    remove_->setEnabled(row >= 0);
    up_->setEnabled(row > 0);
    down_->setEnabled(row >= 0 && row < selected_->rowCount() - 1);
}
