#include "formulafunctions.h"

#include "exactarithmetic.h"
#include "formulanode.h"
#include "formulaoperators.h"

#include <QLocale>

#include <climits>

namespace {
using Type = ReportValue::Type;
using Arguments = std::vector<ReportValue>;

[[noreturn]] void failArgument(const char *function, const QString &expected, const ReportValue &given, int position)
{
    failFormula(position, QStringLiteral("Function '%1' expects %2, not %3")
                              .arg(QLatin1String(function), expected, describeKind(given.type())));
}

const ReportValue &requireKind(const char *function, const ReportValue &value, Type type, int position)
{
    if (value.type() != type)
        failArgument(function, describeKind(type), value, position);
    return value;
}

// A whole number from `low` to `high` (INT_MAX: no upper limit).
qint64 requireWhole(const char *function, const ReportValue &value, qint64 low, qint64 high, int position)
{
    const QString expected = high == INT_MAX ? QStringLiteral("a whole number of %1 or more").arg(low)
                                             : QStringLiteral("a whole number from %1 to %2").arg(low).arg(high);
    if (value.type() != Type::Number)
        failArgument(function, expected, value, position);
    const Currency number = value.asNumber();
    if (number.raw() % Currency::Scale != 0 || number < Currency::fromUnits(low) || number > Currency::fromUnits(high))
        failFormula(position, QStringLiteral("Function '%1' expects %2, not %3")
                                  .arg(QLatin1String(function), expected, value.toText()));
    return number.raw() / Currency::Scale;
}

// The optional second argument: places to round to.
int decimalsOf(const char *function, const Arguments &args, int defaultDecimals, int position)
{
    return args.size() > 1 ? int(requireWhole(function, args[1], 0, 4, position)) : defaultDecimals;
}

Currency rounded(Currency value, int decimals, int position)
{
    const auto result = roundExact(value, decimals);
    if (!result)
        failFormula(position, QStringLiteral("Number too large"));
    return *result;
}

// "#,##0" followed by `decimals` places.
QString groupedText(Currency value, int decimals)
{
    const bool negative = value.raw() < 0;
    const quint64 magnitude = negative ? 0 - quint64(value.raw()) : quint64(value.raw());
    QLocale grouping(QLocale::C);
    grouping.setNumberOptions(QLocale::DefaultNumberOptions); // the C locale omits separators unless told
    const QString whole = grouping.toString(magnitude / Currency::Scale);
    QString text = negative ? QStringLiteral("-") + whole : whole;
    if (decimals > 0)
        text += u'.' + QStringLiteral("%1").arg(magnitude % Currency::Scale, 4, 10, QLatin1Char('0')).left(decimals);
    return text;
}

ReportValue chrOf(const Arguments &args, int position)
{
    return ReportValue::text(QString(QChar(char16_t(requireWhole("chr", args[0], 0, 0xFFFF, position)))));
}

// Numbers as "#,##0.00" (or the given places); anything else as it joins into text.
ReportValue toTextOf(const Arguments &args, int position)
{
    const int decimals = decimalsOf("totext", args, 2, position);
    if (args[0].type() != Type::Number)
        return ReportValue::text(args[0].toText());
    return ReportValue::text(groupedText(rounded(args[0].asNumber(), decimals, position), decimals));
}

ReportValue roundOf(const Arguments &args, int position)
{
    const Currency value = requireKind("round", args[0], Type::Number, position).asNumber();
    return ReportValue::number(rounded(value, decimalsOf("round", args, 0, position), position));
}

ReportValue absOf(const Arguments &args, int position)
{
    const ReportValue &value = requireKind("abs", args[0], Type::Number, position);
    return value.asNumber() < Currency() ? negateValue(value, position) : value;
}

ReportValue trimOf(const Arguments &args, int position)
{
    return ReportValue::text(requireKind("trim", args[0], Type::Text, position).asText().trimmed());
}

ReportValue leftOf(const Arguments &args, int position)
{
    const QString &text = requireKind("left", args[0], Type::Text, position).asText();
    return ReportValue::text(text.left(requireWhole("left", args[1], 0, INT_MAX, position)));
}

ReportValue upperOf(const Arguments &args, int position)
{
    return ReportValue::text(requireKind("upper", args[0], Type::Text, position).asText().toUpper());
}

ReportValue isNullOf(const Arguments &args, int)
{
    return ReportValue::boolean(args[0].isNull());
}

ReportValue dateOf(const Arguments &args, int position)
{
    const QDate date(int(requireWhole("date", args[0], 1, 9999, position)), int(requireWhole("date", args[1], 1, 12, position)),
                     int(requireWhole("date", args[2], 1, 31, position)));
    if (!date.isValid())
        failFormula(position, QStringLiteral("Function 'date' expects a day of the month, not %1/%2/%3")
                                  .arg(args[1].toText(), args[2].toText(), args[0].toText()));
    return ReportValue::date(date);
}

ReportValue yearOf(const Arguments &args, int position)
{
    if (args[0].type() != Type::Date)
        failArgument("year", QStringLiteral("a date"), args[0], position);
    return ReportValue::number(Currency::fromUnits(args[0].asDate().year()));
}

const FormulaFunction functions[] = {
    {"chr", 1, 1, false, chrOf},
    {"totext", 1, 2, true, toTextOf},
    {"round", 1, 2, false, roundOf},
    {"abs", 1, 1, false, absOf},
    {"trim", 1, 1, false, trimOf},
    {"left", 2, 2, false, leftOf},
    {"upper", 1, 1, false, upperOf},
    {"isnull", 1, 1, true, isNullOf},
    {"date", 3, 3, false, dateOf},
    {"year", 1, 1, false, yearOf},
};
} // namespace

const FormulaFunction *findFormulaFunction(const QString &name)
{
    for (const FormulaFunction &function : functions) {
        if (name.compare(QLatin1String(function.name), Qt::CaseInsensitive) == 0)
            return &function;
    }
    return nullptr;
}
