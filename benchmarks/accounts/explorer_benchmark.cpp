// The account code window on the large demo district (10,000 account codes,
// 5,000 of them in the general fund's expenditure ledger, 1,000 folders):
// opening it, and switching fund, ledger or view, each to a painted tree.
// Every switch lands on the general fund's expenditure codes in the
// account-code view, the largest tree there is.
//   accounts_benchmarks        (runs on Qt's offscreen platform unless told otherwise)
#include "benchdatabase.h"
#include "budgetapplication.h"
#include "mdichild.h"
#include "workeraccountcodes.h"

#include <benchmark/benchmark.h>

#include <QMdiArea>
#include <QTreeWidget>

#include <memory>

namespace {

AccountCodesContext contextOn(BenchDatabase &database)
{
    AccountCodesContext context;
    context.connection = database.db();
    const demo::District &district = database.district();
    context.listFunds = [&district](std::vector<FundEntry> &funds, QString &) {
        for (const demo::Fund &fund : district.funds)
            funds.push_back({fund.id, fund.name});
        return true;
    };
    return context;
}

// Paints the tree now, as the window would on its next turn of the event loop.
void paint(workerAccountCodes &worker)
{
    QTreeWidget *tree = worker.child()->Explorer().view();
    tree->viewport()->repaint();
}

void choose(workerAccountCodes &worker, const QString &list, const QString &key)
{
    classDropDown &lists = worker.child()->DropDown();
    lists.setListIndex(list, lists.KeyToIndex(list, key));
    worker.mwfrmChild_Command(list);
}

void openExplorer(benchmark::State &state)
{
    BenchDatabase &database = *BenchDatabase::sqlite();
    QMdiArea area;
    area.resize(1200, 800);
    area.show();
    for (auto _ : state) {
        workerAccountCodes worker(contextOn(database));
        worker.DoMDIChild(area);
        paint(worker);
        state.PauseTiming();
        worker.child()->Unload();
        state.ResumeTiming();
    }
}

// Switches `list` away to `other` (untimed), then back to `home` (timed).
void switchBack(benchmark::State &state, const QString &list, const QString &other, const QString &home)
{
    BenchDatabase &database = *BenchDatabase::sqlite();
    QMdiArea area;
    area.resize(1200, 800);
    area.show();
    workerAccountCodes worker(contextOn(database));
    worker.DoMDIChild(area);
    qsizetype nodes = 0;
    for (auto _ : state) {
        state.PauseTiming();
        choose(worker, list, other);
        state.ResumeTiming();
        choose(worker, list, home);
        paint(worker);
        nodes = worker.child()->Explorer().NodeCount();
    }
    state.counters["nodes"] = double(nodes);
}

void switchFund(benchmark::State &state)
{
    switchBack(state, QStringLiteral("Fund"), QStringLiteral("C"), QStringLiteral("A"));
}
void switchLedger(benchmark::State &state)
{
    switchBack(state, QStringLiteral("Ledger"), QStringLiteral("R"), QStringLiteral("E"));
}
void switchView(benchmark::State &state)
{
    switchBack(state, QStringLiteral("View"), QStringLiteral("B"), QStringLiteral("T"));
}

} // namespace

BENCHMARK(openExplorer)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(switchFund)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(switchLedger)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(switchView)->Unit(benchmark::kMillisecond)->MinTime(2.0);

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    BudgetApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
