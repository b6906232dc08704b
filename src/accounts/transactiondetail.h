#pragma once

#include "currency.h"
#include "objecttransactions.h"

#include <QString>

#include <map>
#include <optional>
#include <span>
#include <vector>

// The transaction grid of the account detail view, without the screen: its
// columns per ledger, where a transaction's amounts go, and the running balance.

struct DetailColumn {
    const char *key;
    const char *caption;
    const char *caption2; // second heading line, "" for none
    int widthTwips;
    // A text column shows this field of the transaction (the date column
    // formats it); amount and balance columns have none.
    QString TransactionFields::*source = nullptr;
    // An amount column, totalled: +1 or -1 as it adds to or takes from the
    // balance. 0 for text and balance columns.
    int balanceSign = 0;
};

// The grid's columns for ledger "E" or "R" (any other letter: none).
std::span<const DetailColumn> detailColumns(QChar ledger);
// The key of the ledger's balance column: "UnencumberedBalance" or "UnearnedBalance".
QString detailBalanceKey(QChar ledger);

// One grid row: the transaction's texts by column key, and the amount cells
// its column code fills (a column absent here stays empty).
struct DetailRow {
    std::map<QString, QString> texts;
    std::map<QString, Currency> amounts;
    Currency balance;
};

// The amount cells a transaction fills, by column key, given its ledger,
// its column code (compared without regard to case or surrounding blanks)
// and its two amounts. An unknown code fills none.
std::map<QString, Currency> detailAmountCells(QChar ledger, const QString &columnId, Currency amount1,
                                              Currency amount2);

// The grid rows for an account's transactions in the order given, each with
// the balance running from 0 through it. nullopt when a transaction's amount
// is not a number; `failure` then names the transaction and the text.
std::optional<std::vector<DetailRow>> detailRows(QChar ledger, const std::vector<TransactionFields> &transactions,
                                                 QString &failure);
