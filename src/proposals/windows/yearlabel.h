#pragma once

#include <QString>

// The label a heading shows for a budget year: the year's ID as it stands for
// a district that budgets by calendar year, otherwise the fiscal year's two
// calendar years ("2024-2025" for the fiscal year that ends in 2025).
QString budgetYearLabel(const QString &yearId, bool calendarYear);

// The year before a budget year ("2024" for "2025"); the ID unchanged when it
// is not a year number.
QString previousBudgetYearId(const QString &yearId);
