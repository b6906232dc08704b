#include "gridsorting.h"

#include "formcomplexsorting.h"
#include "gridmodel.h"

#include "messageservice.h"

#include <QMdiSubWindow>
#include <QSettings>

#include <algorithm>

namespace {

QString settingsKey(const QString &layoutName)
{
    return QStringLiteral("SortLayouts/") + layoutName;
}

bool offeredInDialog(const classGridColumn &column)
{
    return column.SortComplex() && !column.IsOrigTwin();
}

} // namespace

void GridSorting::disable()
{
    enabledBeforeDisable_ = enabled_;
    enabled_ = false;
}

void GridSorting::restore()
{
    enabled_ = enabledBeforeDisable_;
}

void GridSorting::setOrder(const GridSortOrder &order)
{
    order_ = order;
    cells_.sortRows(order_);
}

void GridSorting::reset()
{
    order_.clear();
    default_.clear();
}

std::optional<GridSortOrder> GridSorting::simpleOrder(int column) const
{
    const classGridColumn &settings = cells_.columns()[std::size_t(column)];
    if (!enabled_ || !settings.SortSimple())
        return std::nullopt;
    const QString &key = settings.Key();
    // A second click on the same column turns the order round.
    const bool ascending = order_.size() != 1 || order_.front().Key() != key || !order_.front().Ascending();
    return GridSortOrder{classGridSortLayout(key, ascending)};
}

std::optional<GridSortOrder> GridSorting::askComplexOrder(QWidget *parent) const
{
    const auto &columns = cells_.columns();
    if (std::none_of(columns.begin(), columns.end(), offeredInDialog)) {
        messages().messageBox({QStringLiteral("Error"),
                               QStringLiteral("This feature has not been enabled for this window."), MsgButtons::OK,
                               MsgIcon::Exclamation, MsgAnswer::OK});
        return std::nullopt;
    }
    formComplexSorting dialog(parent);
    for (const auto &column : columns) {
        if (offeredInDialog(column))
            dialog.AddColumn(column.Key(), column.HeadingOneLine());
    }
    dialog.SetLayout(order_);
    dialog.exec();
    if (dialog.CloseAction() != formComplexSorting::Confirmed)
        return std::nullopt;
    return dialog.Action();
}

void GridSorting::saveDefault(const QString &layoutName)
{
    default_ = order_;
    if (!layoutName.isEmpty())
        QSettings().setValue(settingsKey(layoutName), sortOrderToText(order_));
}

GridSortOrder GridSorting::savedDefault(const QString &layoutName) const
{
    const QVariant saved = layoutName.isEmpty() ? QVariant() : QSettings().value(settingsKey(layoutName));
    if (!saved.isValid())
        return default_;
    const GridSortOrder order = sortOrderFromText(saved.toString());
    const bool known = std::all_of(order.begin(), order.end(), [this](const classGridSortLayout &step) {
        return cells_.columnOf(step.Key()) >= 0;
    });
    return known ? order : default_;
}

QString sortLayoutNameOf(const QWidget *grid)
{
    if (!grid || grid->objectName().isEmpty())
        return {};
    // The form is the window, or the widget an MDI sub-window holds (its
    // window is the frame, shared by every child).
    for (const QWidget *widget = grid; widget; widget = widget->parentWidget()) {
        if (widget->isWindow() || qobject_cast<const QMdiSubWindow *>(widget->parentWidget())) {
            const QString form = widget->objectName().isEmpty() ? widget->windowTitle() : widget->objectName();
            return form.isEmpty() ? QString() : form + QLatin1Char('/') + grid->objectName();
        }
    }
    return {};
}
