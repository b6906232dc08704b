#include "formulaoperators.h"

#include "exactarithmetic.h"

namespace {
using Type = ReportValue::Type;

[[noreturn]] void failPair(const ReportValue &left, const ReportValue &right, const char *verb, int position)
{
    failFormula(position, QStringLiteral("%1 and %2 cannot be %3")
                              .arg(describeKind(left.type(), true), describeKind(right.type()), QLatin1String(verb)));
}

ReportValue numberOrFail(const std::optional<Currency> &result, int position)
{
    if (!result)
        failFormula(position, QStringLiteral("Number too large"));
    return ReportValue::number(*result);
}

// A whole count of days to move a date by.
qint64 daysOf(const ReportValue &days, int position)
{
    if (days.asNumber().raw() % Currency::Scale != 0)
        failFormula(position, QStringLiteral("A date moves by whole days, not %1").arg(days.toText()));
    return days.asNumber().raw() / Currency::Scale;
}

ReportValue addValues(const ReportValue &left, const ReportValue &right, int position)
{
    if (left.type() == Type::Number && right.type() == Type::Number)
        return numberOrFail(addExact(left.asNumber(), right.asNumber()), position);
    if (left.type() == Type::Text && right.type() == Type::Text)
        return ReportValue::text(left.asText() + right.asText());
    if (left.type() == Type::Date && right.type() == Type::Number)
        return ReportValue::date(left.asDate().addDays(daysOf(right, position)));
    if (left.type() == Type::Number && right.type() == Type::Date)
        return ReportValue::date(right.asDate().addDays(daysOf(left, position)));
    failPair(left, right, "added", position);
}

ReportValue subtractValues(const ReportValue &left, const ReportValue &right, int position)
{
    if (left.type() == Type::Number && right.type() == Type::Number)
        return numberOrFail(subtractExact(left.asNumber(), right.asNumber()), position);
    if (left.type() == Type::Date && right.type() == Type::Number)
        return ReportValue::date(left.asDate().addDays(-daysOf(right, position)));
    if (left.type() == Type::Date && right.type() == Type::Date)
        return ReportValue::number(Currency::fromUnits(right.asDate().daysTo(left.asDate())));
    failPair(left, right, "subtracted", position);
}

// Multiply, Divide and Percent: numbers only.
ReportValue scaleValues(FormulaOperator op, const ReportValue &left, const ReportValue &right, int position)
{
    if (left.type() != Type::Number || right.type() != Type::Number)
        failPair(left, right, op == FormulaOperator::Multiply ? "multiplied" : "divided", position);
    if (op == FormulaOperator::Multiply)
        return numberOrFail(multiplyExact(left.asNumber(), right.asNumber()), position);
    if (right.asNumber().isZero())
        failFormula(position, QStringLiteral("Division by zero"));
    return numberOrFail(op == FormulaOperator::Divide ? divideExact(left.asNumber(), right.asNumber())
                                                      : percentExact(left.asNumber(), right.asNumber()),
                        position);
}

// Negative, zero or positive as left orders before, with or after right.
int orderOf(const ReportValue &left, const ReportValue &right)
{
    switch (left.type()) {
    case Type::Number:
        return left.asNumber() < right.asNumber() ? -1 : left.asNumber() > right.asNumber() ? 1 : 0;
    case Type::Text:
        return left.asText().compare(right.asText(), Qt::CaseSensitive);
    case Type::Boolean:
        return int(left.asBoolean()) - int(right.asBoolean());
    case Type::Date:
        return left.asDate() < right.asDate() ? -1 : left.asDate() > right.asDate() ? 1 : 0;
    case Type::Null:
        break;
    }
    return 0;
}
} // namespace

QString describeKind(ReportValue::Type type, bool capitalised)
{
    static const char *const names[] = {"null", "a number", "text", "a truth value", "a date"};
    QString name = QLatin1String(names[int(type)]);
    if (capitalised)
        name[0] = name[0].toUpper();
    return name;
}

ReportValue applyArithmetic(FormulaOperator op, const ReportValue &left, const ReportValue &right, int position)
{
    if (op == FormulaOperator::Join)
        return ReportValue::text(left.toText() + right.toText());
    if (left.isNull() || right.isNull())
        return {};
    switch (op) {
    case FormulaOperator::Add:
        return addValues(left, right, position);
    case FormulaOperator::Subtract:
        return subtractValues(left, right, position);
    default:
        return scaleValues(op, left, right, position);
    }
}

ReportValue negateValue(const ReportValue &value, int position)
{
    if (value.isNull())
        return {};
    if (value.type() != Type::Number)
        failFormula(position, QStringLiteral("%1 cannot be negated").arg(describeKind(value.type(), true)));
    return numberOrFail(subtractExact(Currency(), value.asNumber()), position);
}

bool compareValues(FormulaOperator op, const ReportValue &left, const ReportValue &right, int position)
{
    const bool equality = op == FormulaOperator::Equal || op == FormulaOperator::NotEqual;
    if (left.isNull() || right.isNull()) {
        // Null equals only null and orders with nothing.
        const bool bothNull = left.isNull() && right.isNull();
        return equality && (op == FormulaOperator::Equal) == bothNull;
    }
    if (left.type() != right.type())
        failPair(left, right, "compared", position);
    const int order = orderOf(left, right);
    switch (op) {
    case FormulaOperator::Equal:
        return order == 0;
    case FormulaOperator::NotEqual:
        return order != 0;
    case FormulaOperator::Less:
        return order < 0;
    case FormulaOperator::Greater:
        return order > 0;
    case FormulaOperator::LessOrEqual:
        return order <= 0;
    default:
        return order >= 0;
    }
}

bool truthOf(const ReportValue &value, int position)
{
    if (value.isNull())
        return false;
    if (value.type() != Type::Boolean)
        failFormula(position, QStringLiteral("Expected a truth value, not %1").arg(describeKind(value.type())));
    return value.asBoolean();
}
