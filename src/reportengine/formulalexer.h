#pragma once

#include "reportvalue.h"

#include <QString>

#include <vector>

struct FormulaToken {
    enum class Kind { End, Number, Text, Name, Field, Parameter, FormulaReference, Symbol };

    Kind kind = Kind::End;
    int position = 0;
    QString text;      // Name: as written; Symbol: the operator; references: the name
    QString table;     // Field only
    ReportValue value; // Number and Text literals
};

// Splits formula text into tokens, ending with one End token; a character or
// reference that cannot start a token throws FormulaFailure.
std::vector<FormulaToken> tokenizeFormula(const QString &text);
