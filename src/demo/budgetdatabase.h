#pragma once

#include "dbconnection.h"
#include "district.h"

namespace demo {

// Fills a budget database whose schema is in place and whose tables are
// empty with the district: folders (and each budget year's copy of them),
// account codes, years, proposals and their amounts, line items, history,
// fund balances, towns and report formats. One transaction: on any failure
// nothing is left written and `error` says why.
bool populateBudgetDatabase(DbConnection &db, const District &district, DbError *error = nullptr);

} // namespace demo
