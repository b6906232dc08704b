#include "gridcolumn.h"

classGridColumn::classGridColumn(const QString &key, const QString &description, const GridColumnOptions &options)
    : key_(key), description_(description), options_(options)
{
    if (IsOrigTwin()) {
        options_.hidden = true;
        options_.editable = false;
        options_.total = false;
    }
}

QString classGridColumn::Heading() const
{
    return options_.caption2.isEmpty() ? description_ : description_ + QLatin1Char('\n') + options_.caption2;
}

QString classGridColumn::HeadingOneLine() const
{
    const QString joined = (description_.trimmed() + QLatin1Char(' ') + options_.caption2.trimmed()).trimmed();
    return joined.isEmpty() ? key_ : joined;
}

bool classGridColumn::IsChecked(const QString &value) const
{
    const QString text = value.trimmed();
    return !text.isEmpty() && text != QLatin1String("0") &&
           text.compare(QLatin1String("false"), Qt::CaseInsensitive) != 0 &&
           text.compare(options_.uncheckedValue.trimmed(), Qt::CaseInsensitive) != 0;
}
