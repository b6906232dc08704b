#pragma once

#include "currency.h"

#include <QString>

#include <cstdint>

// One numbered line of an account's detail (table LnItem). Line items belong
// to the account, not to a proposal.
struct clsLineItem {
    std::int32_t AcctId = 0; // 32 bits: database-assigned account IDs may pass 32767
    std::int32_t LineItemNumber = 0;
    QString LineItemText;
    Currency LineItemAmount;
};
