#pragma once

#include "currency.h"
#include "reportdatatable.h"

#include <QString>

#include <optional>

class DbConnection;

// The readers of a run's tables: each reads its whole table in one go.

// The result of a statement on the budget database, sent as given.
bool readSqlTable(DbConnection &db, const QString &sql, DataTable &into, QString &error);

// A Kora-Fund year table "<TableId>_SummaryExpenditure" or "_SummaryRevenue" of
// the installation at `fundRoot`: the account fields and the fiscal year's totals.
bool readFundTable(const QString &fundRoot, const QString &table, DataTable &into, QString &error);

// The equalization districts of TaxRate with the levy (and, when given, the
// prior year's levy) apportioned by full value.
bool readLevyTable(DbConnection &db, Currency levy, std::optional<Currency> priorLevy, DataTable &into, QString &error);
