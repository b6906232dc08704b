#include "gridsortlayout.h"

#include <QStringList>

QString classGridSortLayout::GetLayout() const
{
    return key_ + (ascending_ ? QStringLiteral(":A") : QStringLiteral(":D"));
}

bool classGridSortLayout::SetLayout(const QString &text)
{
    const int colon = text.lastIndexOf(QLatin1Char(':'));
    if (colon <= 0)
        return false;
    const QString direction = text.mid(colon + 1);
    if (direction != QLatin1String("A") && direction != QLatin1String("D"))
        return false;
    key_ = text.left(colon);
    ascending_ = direction == QLatin1String("A");
    return true;
}

QString sortOrderToText(const GridSortOrder &order)
{
    QStringList parts;
    for (const auto &step : order)
        parts << step.GetLayout();
    return parts.join(QLatin1Char(';'));
}

GridSortOrder sortOrderFromText(const QString &text)
{
    GridSortOrder order;
    for (const QString &part : text.split(QLatin1Char(';'), Qt::SkipEmptyParts)) {
        classGridSortLayout step;
        if (step.SetLayout(part))
            order.push_back(step);
    }
    return order;
}
