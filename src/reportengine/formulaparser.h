#pragma once

#include "formulanode.h"

#include <QString>

#include <memory>

// Parses formula text by the grammar in formula.h; throws FormulaFailure.
// An empty or blank text gives nullptr.
std::unique_ptr<FormulaNode> parseFormulaText(const QString &text);
