#pragma once

#include "fundtable.h"

#include <QStringList>

#include <vector>

// The Kora-Fund installation as our sample installations lay it out
// (docs/fund-installation.md): every table with its fields, offsets and keys.
struct FundIndex {
    int number = 0;
    QStringList segments; // field names, in order
    bool duplicates = false;
    bool caseInsensitive = false;
    bool modifiable = false;
};

struct FundTableSpec {
    int id = 0;
    FundTable table;  // name, location "FUND\<file>", fields with offsets
    QString fileName; // "Funds.btr"
    std::vector<FundIndex> indexes;
};

const std::vector<FundTableSpec> &installationTables();
const FundTableSpec &installationTable(const QString &name);

// The ledgers' monthly amounts, in field order within a month.
QStringList monthlyAmountNames(QChar ledger);               // 'R', 'E' or 'G'
QString monthlyFieldName(int month, const QString &amount); // "07 Encum Placed"

// The monthly amount a transaction column feeds ("EP" in ledger 'E' feeds
// "Encum Placed"); empty for a column the ledger does not have.
QString monthlyAmountForColumn(QChar ledger, const QString &columnId);
