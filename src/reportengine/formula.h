#pragma once

#include "reportvalue.h"

#include <QString>
#include <QStringList>

#include <memory>
#include <optional>
#include <vector>

// A field reference of a formula: {Table.Field}.
struct FormulaField {
    QString table;
    QString field;
};

// What a formula is evaluated against. The report run supplies one per row.
class FormulaContext {
public:
    virtual ~FormulaContext() = default;
    // {Table.Field} of the current row; nullopt when there is no such field.
    virtual std::optional<ReportValue> field(const QString &table, const QString &field) const = 0;
    // {?Name}; nullopt when the definition has no such parameter field.
    virtual std::optional<ReportValue> parameter(const QString &name) const = 0;
    // {@Name}, another named formula; nullopt when there is none.
    virtual std::optional<ReportValue> formula(const QString &name) const = 0;
};

// Where and why a formula was refused. `position` counts characters from 0;
// `message` names the fault and ends with " at position N", e.g.
// "Expected ')' at position 14", "Text and a number cannot be compared at position 6".
struct FormulaError {
    int position = 0;
    QString message;
};

// One formula of the report language, parsed once and evaluated many times.
// Grammar (case-insensitive keywords):
//   expr     := 'if' expr 'then' expr 'else' expr | or
//   or       := and ('or' and)*
//   and      := not ('and' not)*
//   not      := 'not' not | compare
//   compare  := join (('=' | '<>' | '<' | '>' | '<=' | '>=') join | 'in' '[' list? ']')?
//   join     := sum ('&' sum)*
//   sum      := product (('+' | '-') product)*
//   product  := unary (('*' | '/' | '%') unary)*
//   unary    := '-' unary | primary
//   primary  := number | 'text' | "text" | 'true' | 'false' | {Table.Field} | {?Param} | {@Formula}
//             | name '(' list? ')' | '(' expr ')'
//   list     := expr (',' expr)*
// Inside quotes the quote doubled stands for itself: 'It''s'. Names inside
// braces may hold blanks ({Budget Lines.Prior Year}); a field splits at its first '.'.
// Functions: chr(n), totext(x[, decimals]), round(x[, decimals]), abs(x), trim(t),
// left(t, n), upper(t), isnull(x), date(y, m, d), year(d).
// An empty formula text evaluates to null.
//
// Meaning:
// - Numbers are exact to four places; '*', '/' and '%' round half away from
//   zero to four places. 'a % b' is a as a percentage of b (a / b * 100).
//   Dividing by zero is an evaluation error.
// - '&' joins any two values as text (ReportValue::toText; null joins as "");
//   '+' of two texts joins them too. chr(13), a carriage return, is the line
//   break of a two-line heading ('Line one' & chr(13) & 'Line two').
// - Null in arithmetic, and as any function's argument but isnull's and
//   totext's, gives null. Null equals only null ('=' and '<>'), and '<', '>',
//   '<=', '>=' with a null side are false. A null condition (if, and, or, not)
//   counts as false.
// - Comparisons need two values of the same kind: texts compare case-sensitively
//   and by character code, truth values false before true; a number compared
//   with text is an error. 'x in [ ... ]' is x = some item; '[ ]' holds nothing.
// - Dates: date +/- whole days, and date - date gives days.
// - if/and/or evaluate only the side they need, so a guard protects a division.
// Syntax, unknown function names and wrong argument counts are refused by
// parse; a reference the context lacks, by evaluate. Formulas nested deeper
// than 200 levels are refused. A parsed formula never changes: copies share
// it and may be evaluated on several threads at once.
class Formula {
public:
    static std::optional<Formula> parse(const QString &text, FormulaError &error);

    // Evaluation errors (a field the context lacks, division by zero, a
    // comparison of text with a number) come back in `error`; the result is null then.
    ReportValue evaluate(const FormulaContext &context, FormulaError &error) const;

    const QString &text() const;
    // Every {Table.Field} the formula names, for checking against the data at load.
    std::vector<FormulaField> fields() const;
    // Every {?Param} and {@Formula} it names.
    QStringList parameters() const;
    QStringList formulas() const;

    ~Formula();
    Formula(const Formula &);
    Formula &operator=(const Formula &);
    Formula(Formula &&) noexcept;
    Formula &operator=(Formula &&) noexcept;

private:
    struct Impl;
    explicit Formula(std::shared_ptr<const Impl> impl);
    std::shared_ptr<const Impl> impl_;
};
