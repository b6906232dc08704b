#include "currency.h"

#include <cmath>
#include <limits>

std::optional<Currency> Currency::fromDouble(double value)
{
    if (!std::isfinite(value))
        return std::nullopt;
    const double scaled = std::round(value * Scale);
    // 2^63 is exactly representable; anything at or beyond it does not fit.
    if (std::fabs(scaled) >= 9223372036854775808.0)
        return std::nullopt;
    return Currency(static_cast<std::int64_t>(scaled));
}

std::optional<Currency> Currency::parse(const QString &input)
{
    QString text = input.trimmed();
    bool negative = false;
    if (text.startsWith(u'(') && text.endsWith(u')')) {
        negative = true;
        text = text.mid(1, text.size() - 2).trimmed();
    }
    if (text.startsWith(u'-')) {
        negative = !negative;
        text = text.mid(1).trimmed();
    } else if (text.startsWith(u'+')) {
        text = text.mid(1).trimmed();
    }
    if (text.startsWith(u'$'))
        text = text.mid(1).trimmed();
    if (text.isEmpty())
        return std::nullopt;

    constexpr std::int64_t maxRaw = std::numeric_limits<std::int64_t>::max();
    std::int64_t whole = 0;
    int index = 0;
    bool sawDigit = false;
    for (; index < text.size(); ++index) {
        const QChar c = text.at(index);
        if (c == u',')
            continue;
        if (!c.isDigit())
            break;
        const int digit = c.digitValue();
        if (whole > (maxRaw / Scale - digit) / 10)
            return std::nullopt;
        whole = whole * 10 + digit;
        sawDigit = true;
    }
    std::int64_t fraction = 0;
    if (index < text.size() && text.at(index) == u'.') {
        ++index;
        std::int64_t place = Scale / 10;
        bool roundUp = false;
        bool first = true;
        for (; index < text.size() && text.at(index).isDigit(); ++index) {
            const int digit = text.at(index).digitValue();
            sawDigit = true;
            if (place > 0) {
                fraction += digit * place;
                place /= 10;
            } else if (first) {
                roundUp = digit >= 5;
                first = false;
            }
        }
        if (roundUp)
            ++fraction;
    }
    if (!sawDigit || index != text.size())
        return std::nullopt;
    const std::int64_t raw = whole * Scale + fraction;
    return Currency(negative ? -raw : raw);
}

namespace {
QString digitsOf(std::int64_t raw, bool grouped, int minDecimals)
{
    const bool negative = raw < 0;
    // Work in unsigned so the most negative value has a magnitude too.
    const auto magnitude = negative ? ~static_cast<std::uint64_t>(raw) + 1 : static_cast<std::uint64_t>(raw);
    QString whole = QString::number(magnitude / Currency::Scale);
    if (grouped) {
        for (qsizetype at = whole.size() - 3; at > 0; at -= 3)
            whole.insert(at, u',');
    }
    QString decimals = QStringLiteral("%1").arg(magnitude % Currency::Scale, 4, 10, QLatin1Char('0'));
    while (decimals.size() > minDecimals && decimals.endsWith(u'0'))
        decimals.chop(1);
    QString text = negative ? QStringLiteral("-") + whole : whole;
    if (!decimals.isEmpty())
        text += u'.' + decimals;
    return text;
}
} // namespace

QString Currency::toSqlText() const
{
    return digitsOf(value_, false, 0);
}

QString Currency::toDisplayText() const
{
    // "#,##0.00" shows two places, rounded half away from zero.
    const std::int64_t cents = value_ >= 0 ? (value_ + 50) / 100 : (value_ - 50) / 100;
    return digitsOf(cents * 100, true, 2);
}
