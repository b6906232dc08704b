#pragma once

#include "formula.h"
#include "formulanode.h"

// Evaluates a parsed node against a context; throws FormulaFailure.
ReportValue evaluateFormulaNode(const FormulaNode &node, const FormulaContext &context);
