// The new budget year, end to end through the store (the four steps in one
// transaction, committed), on the 10,000-account demo district against a
// Kora-Fund installation of 20,000 accounts drawn from the same district (its
// live codes, then synthetic ones). The database is refilled before each run,
// untimed. Progress is reported to a handler that does what the window's
// does between its repaints: nothing.
//   newyear_benchmarks            SQLite (and PostgreSQL when $KORA_BENCH_PG is set)
#include "benchdatabase.h"
#include "benchinstallation.h"

#include "initnewyear.h"

#include <benchmark/benchmark.h>


namespace {

constexpr int installationAccounts = 20'000;
constexpr std::int64_t installationTransactions = 200'000;

const QString &installation()
{
    SampleOptions options;
    options.accounts = installationAccounts;
    options.transactions = installationTransactions;
    return benchInstallation(options);
}

QString firstCell(DbConnection &db, const QString &sql)
{
    Recordset rows;
    db.open(sql, rows);
    return rows.atEnd() ? QString() : rows.text(QStringLiteral("v")).trimmed();
}

QString yearWithStatus(DbConnection &db, const char *status)
{
    return firstCell(
        db, QStringLiteral("select YearID as v from BudgetYears where Status = '%1'").arg(QLatin1String(status)));
}

int historicalCodes(DbConnection &db)
{
    return firstCell(db, QStringLiteral("select count(*) as v from AccountCodes where HistoricalCode = 'H'")).toInt();
}

void rollForward(benchmark::State &state, BenchDatabase *(*open)())
{
    BenchDatabase *database = open();
    if (!database) {
        state.SkipWithError("KORA_BENCH_PG is not set");
        return;
    }
    const QString root = installation();
    int accounts = 0;
    int historicalBefore = 0;
    for (auto _ : state) {
        state.PauseTiming();
        QString why;
        if (!database->clear(why) || !database->populate(why)) {
            state.SkipWithError(why.toStdString().c_str());
            return;
        }
        clsInitNewYear store;
        historicalBefore = historicalCodes(*database->db());
        store.setAdoConnection(database->db());
        store.setCurrentBudgetYear(yearWithStatus(*database->db(), "C"));
        store.setProposedYear(yearWithStatus(*database->db(), "P"));
        store.setBudgetFrom(QStringLiteral("A"));
        store.setClearLineItem(false);
        store.setLedgerSummaries({root, root + QStringLiteral("\\FUND")});
        store.setProgress([&accounts](const NewYearProgress &progress) {
            accounts = progress.total;
            return true;
        });
        state.ResumeTiming();
        if (!runNewBudgetYear(store, {})) {
            state.SkipWithError(store.Error().ErrorText().toStdString().c_str());
            return;
        }
    }
    state.counters["accounts"] = accounts;
    // Codes the run found missing from Kora-Fund and made historical.
    state.counters["retired"] = historicalCodes(*database->db()) - historicalBefore;
}

void sqlite(benchmark::State &state)
{
    rollForward(state, &BenchDatabase::sqlite);
}
void postgres(benchmark::State &state)
{
    rollForward(state, &BenchDatabase::postgres);
}

} // namespace

BENCHMARK(sqlite)->Name("NewBudgetYear10000/SQLite")->Iterations(3)->Unit(benchmark::kMillisecond);
BENCHMARK(postgres)->Name("NewBudgetYear10000/PostgreSQL")->Iterations(3)->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
