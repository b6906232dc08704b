#pragma once

#include "reportvalue.h"

#include <QString>

#include <memory>
#include <vector>

struct FormulaFunction;

// Thrown inside parsing and evaluation only; Formula's public calls catch it
// and hand it back as a FormulaError.
struct FormulaFailure {
    int position;
    QString message; // ends with " at position N"
};
[[noreturn]] void failFormula(int position, const QString &what);

enum class FormulaOperator {
    Or, And, Not,
    Equal, NotEqual, Less, Greater, LessOrEqual, GreaterOrEqual,
    Join, Add, Subtract, Multiply, Divide, Percent, Negate,
};

// One node of a parsed formula. `position` is where its token starts, so an
// evaluation error can point at the operator, reference or call at fault.
struct FormulaNode {
    enum class Kind { Literal, Field, Parameter, FormulaReference, Unary, Binary, In, If, Call };

    Kind kind = Kind::Literal;
    int position = 0;
    int depth = 1;                    // of the tree below and including this node
    ReportValue literal;              // Literal
    QString table;                    // Field
    QString name;                     // Field's field; Parameter's and FormulaReference's name
    FormulaOperator op = FormulaOperator::Add; // Unary, Binary
    const FormulaFunction *function = nullptr; // Call
    // In: the items sorted, when every one is a number as written, so a long
    // folder list is searched rather than walked for each row.
    std::vector<Currency> sortedNumbers;
    // Unary: operand; Binary: left, right; In: value, list items...;
    // If: condition, then, else; Call: arguments.
    std::vector<std::unique_ptr<FormulaNode>> children;
};
