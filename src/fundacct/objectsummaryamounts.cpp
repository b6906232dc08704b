#include "objectsummaryamounts.h"

#include <cstdlib>

QString ledgerAmountText(Currency amount, bool grouped)
{
    const std::int64_t raw = amount.raw();
    const std::uint64_t magnitude = raw < 0 ? 0 - static_cast<std::uint64_t>(raw) : static_cast<std::uint64_t>(raw);
    QString units = QString::number(magnitude / Currency::Scale);
    if (grouped) {
        for (qsizetype at = units.size() - 3; at > 0; at -= 3)
            units.insert(at, u',');
    }
    QString fraction = QStringLiteral("%1").arg(magnitude % Currency::Scale, 4, 10, QLatin1Char('0'));
    while (fraction.size() > 2 && fraction.endsWith(u'0'))
        fraction.chop(1);
    return (raw < 0 ? QStringLiteral("-") : QString()) + units + u'.' + fraction;
}

std::optional<Currency> ledgerAmountFromText(const QString &text)
{
    if (text.trimmed().isEmpty())
        return Currency();
    return Currency::parse(text);
}

std::vector<int> fiscalMonthsThrough(int firstMonth, int lastMonth)
{
    std::vector<int> months;
    if (firstMonth < 1 || firstMonth > 12 || lastMonth < 1 || lastMonth > 12)
        return months;
    for (int month = firstMonth;; month = month % 12 + 1) {
        months.push_back(month);
        if (month == lastMonth)
            break;
    }
    return months;
}

int monthOfDateText(const QString &yyyymmdd)
{
    bool ok = false;
    const int month = yyyymmdd.mid(4, 2).toInt(&ok);
    return ok && yyyymmdd.size() >= 6 && month >= 1 && month <= 12 ? month : 0;
}
