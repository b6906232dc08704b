#include "componentsummary.h"

#include "classgrid.h"

namespace {

const int listedAccounts = 12;

} // namespace

QString shareText(Currency part, Currency total)
{
    if (total.isZero())
        return QStringLiteral("0.0%");
    // Tenths of a percent in integers: part * 1000 / total, rounded half away from zero.
    const __int128 scaled = static_cast<__int128>(part.raw()) * 1000 * 2 / total.raw();
    const __int128 tenths = scaled >= 0 ? (scaled + 1) / 2 : (scaled - 1) / 2;
    const long long value = static_cast<long long>(tenths);
    const long long magnitude = value < 0 ? -value : value;
    return QStringLiteral("%1%2.%3%")
        .arg(value < 0 ? QStringLiteral("-") : QString())
        .arg(magnitude / 10)
        .arg(magnitude % 10);
}

QString ComponentSummary::text() const
{
    const Currency sum = total();
    const auto part = [&](const char *name, Currency amount) {
        return QStringLiteral("%1 %2 (%3)").arg(QLatin1String(name), amount.toDisplayText(), shareText(amount, sum));
    };
    return part("Administrative", administrative) + QStringLiteral("     ") + part("Program", program) +
           QStringLiteral("     ") + part("Capital", capital);
}

QString ComponentSummary::warning() const
{
    if (withoutComponent.isEmpty())
        return {};
    QString listed = withoutComponent.mid(0, listedAccounts).join(QStringLiteral(", "));
    if (withoutComponent.size() > listedAccounts)
        listed += QStringLiteral(" and %1 more").arg(withoutComponent.size() - listedAccounts);
    return QStringLiteral("In no component, so no amount can be given here: ") + listed;
}

ComponentSummary summariseComponents(const classGrid &grid, const QString &codeKey)
{
    ComponentSummary summary;
    const struct {
        const char *key;
        Currency ComponentSummary::*total;
    } parts[] = {{"CatA", &ComponentSummary::administrative},
                 {"CatP", &ComponentSummary::program},
                 {"CatC", &ComponentSummary::capital}};
    for (int row = 1; row <= grid.CountRows(); ++row) {
        bool any = false;
        for (const auto &part : parts) {
            const QString key = QLatin1String(part.key);
            if (grid.CellLocked(row, key))
                continue;
            any = true;
            summary.*part.total += grid.GetAmount(row, key);
        }
        if (!any)
            summary.withoutComponent << grid.GetItemValue(row, codeKey);
    }
    return summary;
}
