#pragma once

#include "currency.h"

#include <QString>

#include <optional>

// An amount as a user types it into a grid cell: "1,234.50", "1234.5",
// "-75", "(200.00)" for a negative. Refused with a reason that names the
// value: text, a fifth decimal, or a figure beyond what the database keeps
// (±99,999,999,999.9999).
struct AmountEntry {
    std::optional<Currency> value;
    QString problem; // empty when value is set

    bool ok() const { return value.has_value(); }
};

AmountEntry parseAmountEntry(const QString &text);
