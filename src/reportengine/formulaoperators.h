#pragma once

#include "formulanode.h"

// The operators' meaning on values; each throws FormulaFailure at `position`
// for operands of the wrong kinds, a division by zero or a number too large.

// Join, Add, Subtract, Multiply, Divide, Percent. Null in arithmetic gives
// null; joining reads null as "".
ReportValue applyArithmetic(FormulaOperator op, const ReportValue &left, const ReportValue &right, int position);
ReportValue negateValue(const ReportValue &value, int position);
// Equal, NotEqual, Less, Greater, LessOrEqual, GreaterOrEqual.
bool compareValues(FormulaOperator op, const ReportValue &left, const ReportValue &right, int position);
// A condition: a truth value; null counts as false.
bool truthOf(const ReportValue &value, int position);
// "a number", "Text", ... for messages.
QString describeKind(ReportValue::Type type, bool capitalised = false);
