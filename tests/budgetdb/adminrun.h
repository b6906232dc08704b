#pragma once

#include "admincommand.h"

#include <QString>
#include <QStringList>
#include <QTextStream>

// One run of kora-budget-admin inside the test process.
struct AdminRun {
    int exitCode = 0;
    QString out;
    QString err;
};

inline AdminRun admin(const QStringList &arguments)
{
    AdminRun run;
    QTextStream out(&run.out);
    QTextStream err(&run.err);
    run.exitCode = runAdmin(arguments, out, err);
    out.flush();
    err.flush();
    return run;
}

// The options that name this database on the admin program's command line.
inline QStringList targetOptions(const BudgetDbConfig &config)
{
    if (config.backend == BudgetDbConfig::Backend::PostgreSQL)
        return {QStringLiteral("--pg"), QStringLiteral("host=%1 port=%2 dbname=%3 user=%4")
                                            .arg(config.pg.host)
                                            .arg(config.pg.port)
                                            .arg(config.pg.database, config.pg.user)};
    return {QStringLiteral("--sqlite"), config.sqliteFile};
}
