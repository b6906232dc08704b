#include "reportcells.h"

#include "currency.h"

#include <QRegularExpression>

namespace {

QString groupedNumber(const QString &value)
{
    static const QRegularExpression plain(QStringLiteral("^(-?)(\\d+)(\\.\\d+)?$"));
    const auto match = plain.match(value.trimmed());
    if (!match.hasMatch())
        return value;
    QString digits = match.captured(2);
    for (qsizetype at = digits.size() - 3; at > 0; at -= 3)
        digits.insert(at, QLatin1Char(','));
    return match.captured(1) + digits + match.captured(3);
}

} // namespace

QString shownCell(ReportTable::Kind kind, const QString &value)
{
    if (value.isEmpty())
        return value;
    switch (kind) {
    case ReportTable::Kind::Amount:
        if (const auto amount = Currency::parse(value))
            return amount->toDisplayText();
        break;
    case ReportTable::Kind::Percent:
        if (const auto percent = Currency::parse(value))
            return percent->toDisplayText() + QLatin1Char('%');
        break;
    case ReportTable::Kind::Number:
        return groupedNumber(value);
    case ReportTable::Kind::Text:
    case ReportTable::Kind::Date:
        break;
    }
    return value;
}
