#include "benchdatabase.h"

#include <QFile>
#include <QSqlDatabase>
#include <QSqlDriver>

#include <sqlite3.h>

#include <cstdio>
#include <stdexcept>

#include "budgetdatabase.h"

namespace {

demo::DistrictOptions benchSize()
{
    return {.accounts = 10000, .folders = 1000};
}

std::FILE *traceFile = nullptr;

int traceStatement(unsigned, void *, void *statement, void *)
{
    if (!traceFile)
        return 0;
    char *text = sqlite3_expanded_sql(static_cast<sqlite3_stmt *>(statement));
    if (text) {
        std::fprintf(traceFile, "%s;\n", text);
        sqlite3_free(text);
    }
    return 0;
}

} // namespace

BenchDatabase::BenchDatabase(const BudgetDbConfig &config, QString sqliteFile)
    : district_(demo::makeDistrict(benchSize())), sqliteFile_(std::move(sqliteFile))
{
    connection_.configure(config);
    connection_.setSchemaPolicy(clsAdoConnection::SchemaPolicy::CreateOrUpgrade);
    if (!connection_.OpenConnection())
        throw std::runtime_error(("cannot open the benchmark database: " + connection_.Error().ErrorText() + " " +
                                  connection_.driverMessage())
                                     .toStdString());
    QString why;
    if (!clear(why) || !populate(why))
        throw std::runtime_error(why.toStdString());
}

BenchDatabase *BenchDatabase::sqlite()
{
    static QTemporaryDir folder;
    static BenchDatabase database = [] {
        BudgetDbConfig config;
        config.backend = BudgetDbConfig::Backend::SQLite;
        config.sqliteFile = folder.filePath(QStringLiteral("bench.db"));
        return BenchDatabase(config, config.sqliteFile);
    }();
    return &database;
}

BenchDatabase *BenchDatabase::postgres()
{
    const QString settings = qEnvironmentVariable("KORA_BENCH_PG");
    if (settings.isEmpty())
        return nullptr;
    static BenchDatabase database = [&] {
        BudgetDbConfig config;
        config.backend = BudgetDbConfig::Backend::PostgreSQL;
        QString error;
        const auto pg = BudgetDbConfig::parsePgSettings(settings, &error);
        if (!pg)
            throw std::runtime_error(("KORA_BENCH_PG: " + error).toStdString());
        config.pg = *pg;
        return BenchDatabase(config, QString());
    }();
    return &database;
}

bool BenchDatabase::clear(QString &why)
{
    for (const char *table : {"AccountCodes", "BudgetSummaryTree", "Proposal", "ProposalBudget", "BudgetYears",
                              "Yearlist", "Parms", "LnItem", "Bals", "TaxRate", "Report", "RptHeading", "Budgets"}) {
        DbError error;
        if (!db()->execute(QStringLiteral("DELETE FROM %1").arg(table), nullptr, &error)) {
            why = error.text;
            return false;
        }
    }
    return true;
}

bool BenchDatabase::populate(QString &why)
{
    DbError error;
    if (demo::populateBudgetDatabase(*db(), district_, &error))
        return true;
    why = error.text;
    return false;
}

void BenchDatabase::traceTo(const QString &path)
{
    const QVariant handle = QSqlDatabase::database(db()->connectionName(), false).driver()->handle();
    auto *sqlite = *static_cast<sqlite3 *const *>(handle.data());
    if (traceFile)
        std::fclose(traceFile);
    traceFile = path.isEmpty() ? nullptr : std::fopen(QFile::encodeName(path).constData(), "w");
    sqlite3_trace_v2(sqlite, traceFile ? SQLITE_TRACE_STMT : 0, traceFile ? traceStatement : nullptr, nullptr);
}
