#pragma once

#include "currency.h"

#include <QString>

#include <array>
#include <optional>
#include <vector>

// Helpers shared by the ledger summaries and the detail transactions: the
// texts monthly amounts travel in, and the walk through a fiscal year.

// One amount per calendar month, index 0 = January; "" is an empty month.
using MonthlyTexts = std::array<QString, 12>;

// "#,##0.00" (grouped) or "00.00" (plain, for writing into a file). A third
// or fourth decimal is kept when the amount has one, so no amount is ever
// rounded away on its way through a text.
QString ledgerAmountText(Currency amount, bool grouped);

// A monthly text back to an amount: "" is 0; nullopt for text that is no amount.
std::optional<Currency> ledgerAmountFromText(const QString &text);

// The calendar months (1-12) of a fiscal year starting at firstMonth, up to
// and including lastMonth: (7, 1) gives 7..12, 1. Empty unless both are 1-12.
std::vector<int> fiscalMonthsThrough(int firstMonth, int lastMonth);

// The month (1-12) of a "yyyymmdd" date text, 0 when there is none.
int monthOfDateText(const QString &yyyymmdd);

// The lowest and highest date a date key can hold: a period with no start
// is read from the lowest date.
inline constexpr auto lowestDateText = "00000000";
inline constexpr auto highestDateText = "99999999";
