#pragma once

#include "currency.h"

#include <QString>

// One fund's balances (table Bals); FundDesc is the fund's name, not stored.
struct clsFundBalanceItem {
    QString Fund;
    Currency PreviousYearBalance;
    Currency CurrentYearBalance;
    QString FundDesc;
};
