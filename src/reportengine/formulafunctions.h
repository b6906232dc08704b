#pragma once

#include "reportvalue.h"

#include <QString>

#include <vector>

// A built-in function of the formula language. Unless `acceptsNull`, a null
// argument makes the call null without calling `apply`.
struct FormulaFunction {
    const char *name;
    int minArguments;
    int maxArguments;
    bool acceptsNull;
    // Throws FormulaFailure at `position` for an argument of the wrong kind.
    ReportValue (*apply)(const std::vector<ReportValue> &arguments, int position);
};

// The function of that name in any case; nullptr when there is none.
const FormulaFunction *findFormulaFunction(const QString &name);
