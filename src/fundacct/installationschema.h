#pragma once

#include "dictionary.h"

#include <QStringList>

#include <vector>

// The Kora-Fund installation as our sample installations lay it out
// (docs/fund-installation.md): every table with its fields, offsets and keys
// (index i is key i of the data file).
struct FundTableSpec {
    recman::TableDef table; // location "FUND\<file>"; id 0, numbered when the dictionary is written
    QString fileName;       // "Funds.btr"
};

const std::vector<FundTableSpec> &installationTables();
const FundTableSpec &installationTable(const QString &name);

// The ledgers' monthly amounts, in field order within a month.
QStringList monthlyAmountNames(QChar ledger);               // 'R', 'E' or 'G'
QString monthlyFieldName(int month, const QString &amount); // "07 Encum Placed"

// The monthly amount a transaction column feeds ("EP" in ledger 'E' feeds
// "Encum Placed"); empty for a column the ledger does not have.
QString monthlyAmountForColumn(QChar ledger, const QString &columnId);
