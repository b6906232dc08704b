#include "amountentry.h"

#include <QRegularExpression>

AmountEntry parseAmountEntry(const QString &text)
{
    const QString typed = text.trimmed();
    if (typed.isEmpty())
        return {Currency(), {}};
    // Digits grouped by commas or not, an optional fraction, a sign or brackets.
    static const QRegularExpression shape(
        QStringLiteral(R"(^(\(\s*)?([-+])?\s*\$?\s*(\d{1,3}(,\d{3})+|\d*)(\.(\d*))?\s*(\))?$)"));
    const QRegularExpressionMatch match = shape.match(typed);
    const bool bracketed = match.hasMatch() && match.capturedLength(1) > 0;
    const bool closed = match.hasMatch() && match.capturedLength(7) > 0;
    if (!match.hasMatch() || bracketed != closed || (bracketed && match.capturedLength(2) > 0) ||
        (match.capturedLength(3) == 0 && match.capturedLength(6) == 0))
        return {std::nullopt, QStringLiteral("\"%1\" is not an amount").arg(typed)};
    if (match.capturedLength(6) > 4)
        return {std::nullopt, QStringLiteral("\"%1\" has more than four decimals").arg(typed)};
    // Eleven whole digits and four decimals are exactly what an amount column holds.
    QString whole = match.captured(3);
    whole.remove(u',');
    while (whole.startsWith(u'0'))
        whole.remove(0, 1);
    if (whole.size() > 11)
        return {std::nullopt, QStringLiteral("\"%1\" is beyond \u00b199,999,999,999.9999").arg(typed)};
    return {Currency::parse(typed), {}};
}
