#pragma once

#include "adoconnection.h"
#include "district.h"

#include <QString>
#include <QTemporaryDir>

#include <memory>

// A budget database holding the large demo district (10,000 accounts, 1,000
// folders), opened once per backend for all benchmarks of the run.
class BenchDatabase {
public:
    // SQLite: a file in a temporary folder. PostgreSQL: the libpq-style
    // settings in $KORA_BENCH_PG (a database that is emptied first).
    static BenchDatabase *sqlite();
    static BenchDatabase *postgres(); // nullptr when $KORA_BENCH_PG is not set

    const demo::District &district() const { return district_; }
    std::shared_ptr<DbConnection> db() const { return connection_.dbConnection(); }
    const QString &sqliteFile() const { return sqliteFile_; }

    // Empties every table the demo district fills.
    bool clear(QString &why);
    bool populate(QString &why);

    // While set, every statement the SQLite connection runs is appended to this file.
    void traceTo(const QString &path);

private:
    BenchDatabase(const BudgetDbConfig &config, QString sqliteFile);

    demo::District district_;
    mutable clsAdoConnection connection_;
    QString sqliteFile_;
};
