#pragma once

#include "formula.h"

#include <QHash>

#include <gtest/gtest.h>

#include <ostream>

inline void PrintTo(const QString &value, std::ostream *out)
{
    *out << '"' << value.toStdString() << '"';
}

inline void PrintTo(const ReportValue &value, std::ostream *out)
{
    static const char *const kinds[] = {"null", "number", "text", "boolean", "date"};
    *out << kinds[int(value.type())] << "(" << value.toText().toStdString() << ")";
}

inline ReportValue number(const char *text)
{
    return ReportValue::number(*Currency::parse(QString::fromLatin1(text)));
}
inline ReportValue text(const QString &value)
{
    return ReportValue::text(value);
}

// A row, its parameters and its named formulas, as a report run supplies them.
struct MapContext : FormulaContext {
    QHash<QString, ReportValue> fields; // "Table.Field"
    QHash<QString, ReportValue> parameters;
    QHash<QString, ReportValue> formulas;

    std::optional<ReportValue> field(const QString &table, const QString &field) const override
    {
        return lookup(fields, table + u'.' + field);
    }
    std::optional<ReportValue> parameter(const QString &name) const override { return lookup(parameters, name); }
    std::optional<ReportValue> formula(const QString &name) const override { return lookup(formulas, name); }

private:
    static std::optional<ReportValue> lookup(const QHash<QString, ReportValue> &map, const QString &key)
    {
        const auto found = map.constFind(key);
        return found == map.constEnd() ? std::nullopt : std::optional<ReportValue>(*found);
    }
};

// The value of a formula that must parse and evaluate cleanly.
inline ReportValue evaluated(const QString &formulaText, const FormulaContext &context = MapContext())
{
    FormulaError error;
    const auto formula = Formula::parse(formulaText, error);
    if (!formula) {
        ADD_FAILURE() << formulaText.toStdString() << ": " << error.message.toStdString();
        return {};
    }
    const ReportValue value = formula->evaluate(context, error);
    if (!error.message.isEmpty())
        ADD_FAILURE() << formulaText.toStdString() << ": " << error.message.toStdString();
    return value;
}

// The message a formula is refused with, at parsing or else at evaluation; "" when none.
inline QString refusal(const QString &formulaText, const FormulaContext &context = MapContext())
{
    FormulaError error;
    if (const auto formula = Formula::parse(formulaText, error))
        formula->evaluate(context, error);
    return error.message;
}
