// The proposed budget grid on the general fund's expenditure ledger of the
// 10,000-account demo district (4,996 live accounts), offscreen, each beside
// the bare store call it wraps:
//   OpenGrid5000       build the dialog, load the ledger, paint it   | StoreGetListNew5000
//   EditComponent      type one component cell: amount, summary and totals repainted
//   SaveGrid5000       save 5,000 changed rows (conflict check included) | StoreUpdateBatch5000, StoreRetrieve5000
//   pbgrid_benchmarks             SQLite (and PostgreSQL when $KORA_BENCH_PG is set)
#include "benchdatabase.h"

#include "appglobals.h"
#include "classdialog.h"
#include "classgrid.h"
#include "proposedbudget.h"
#include "workereditgrid.h"

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QTableView>

#include <memory>

namespace {

const QString generalFund = QStringLiteral("A");
const QString expenditure = QStringLiteral("E");

// A grid open on the ledger, as the user sees it.
struct OpenGrid {
    explicit OpenGrid(BenchDatabase &database)
        : worker(database.db(),
                 [](std::vector<FundEntry> &funds, QString &) {
                     funds = {{QStringLiteral("A"), QStringLiteral("General Fund")}};
                     return true;
                 }),
          dialog(worker)
    {
        worker.setDisplayType(QStringLiteral("PB"));
        worker.setFundID(generalFund);
        worker.setLedgerID(expenditure);
        worker.Initialise();
        dialog.Build(1);
        dialog.show();
        dialog.repaint(); // painted now, not at the next turn of the event loop
    }
    workerEditGrid worker;
    classDialog dialog;
};

void setGlobals()
{
    gstrProposalID = QStringLiteral("1");
    gstrBudgetYearID = QStringLiteral("2025");
    gstrProposedYearID = QStringLiteral("2026");
}

void openGrid(benchmark::State &state, BenchDatabase *(*open)())
{
    BenchDatabase *database = open();
    setGlobals();
    for (auto _ : state) {
        auto grid = std::make_unique<OpenGrid>(*database);
        benchmark::DoNotOptimize(grid->worker.Grid().CountRows());
        state.PauseTiming(); // closing the window is not opening it
        grid.reset();
        state.ResumeTiming();
    }
}

void storeGetListNew(benchmark::State &state, BenchDatabase *(*open)())
{
    BenchDatabase *database = open();
    for (auto _ : state) {
        clsProposedBudget store;
        store.setAdoConnection(database->db());
        store.ProposedBudgetItem().ProposalID = QStringLiteral("1");
        store.ProposedBudgetItem().FundID = generalFund;
        store.ProposedBudgetItem().LedgerID = expenditure;
        std::vector<clsProposedBudgetItem> items;
        if (!store.GetListNew(items))
            state.SkipWithError(store.Error().ErrorText().toStdString().c_str());
        benchmark::DoNotOptimize(items.data());
    }
}

// The first open cell of a component in each row; 0 when the account takes part in none.
QString openComponent(const classGrid &grid, int row)
{
    for (const char *key : {"CatA", "CatP", "CatC"}) {
        if (!grid.CellLocked(row, QLatin1String(key)))
            return QLatin1String(key);
    }
    return {};
}

void editComponent(benchmark::State &state, BenchDatabase *(*open)())
{
    setGlobals();
    OpenGrid grid(*open());
    classGrid &cells = grid.worker.Grid();
    QAbstractItemModel *model = cells.view()->model();
    const int row = cells.CountRows() / 2;
    const QString key = openComponent(cells, row);
    int column = 0;
    while (cells.ColumnKey(column + 1) != key)
        ++column;
    int round = 0;
    for (auto _ : state) {
        model->setData(model->index(row - 1, column), QString::number(1000 + (++round % 7)), Qt::EditRole);
        cells.companionView()->repaint(); // the totals line
    }
    if (cells.GetAmount(row, QStringLiteral("Amount")) != cells.GetAmount(row, key))
        state.SkipWithError("the amount did not follow the component");
}

void saveGrid(benchmark::State &state, BenchDatabase *(*open)())
{
    setGlobals();
    OpenGrid grid(*open());
    classGrid &cells = grid.worker.Grid();
    int round = 0;
    for (auto _ : state) {
        state.PauseTiming();
        const Currency step = Currency::fromRaw(++round % 2 ? 100 : -100);
        for (int row = 1; row <= cells.CountRows(); ++row) {
            const QString key = openComponent(cells, row);
            if (key.isEmpty())
                continue;
            cells.SetCell(row, key, cells.GetAmount(row, key) + step);
            cells.SetCell(row, QStringLiteral("Amount"), cells.GetAmount(row, QStringLiteral("Amount")) + step);
        }
        state.ResumeTiming();
        if (!grid.dialog.Save()) {
            state.SkipWithError("the save failed");
            break;
        }
    }
}

// The store on the benchmark database, and proposal 1's general-fund expenditure rows.
std::vector<clsProposedBudgetItem> generalFundExpenditure(BenchDatabase *database, clsProposedBudget &store)
{
    store.setAdoConnection(database->db());
    store.ProposedBudgetItem().ProposalID = QStringLiteral("1");
    store.ProposedBudgetItem().FundID = generalFund;
    store.ProposedBudgetItem().LedgerID = expenditure;
    std::vector<clsProposedBudgetItem> items;
    store.GetListNew(items);
    return items;
}

// The store calls a grid save makes, without the grid: 5,000 UpdateBatch in one transaction.
void storeUpdateBatch(benchmark::State &state, BenchDatabase *(*open)())
{
    clsProposedBudget store;
    std::vector<clsProposedBudgetItem> items = generalFundExpenditure(open(), store);
    int round = 0;
    for (auto _ : state) {
        const Currency step = Currency::fromRaw(++round % 2 ? 100 : -100);
        store.BeginTransaction();
        for (clsProposedBudgetItem &item : items) {
            item.ProposalID = QStringLiteral("1");
            item.ProposedCatP += step;
            store.ProposedBudgetItem() = item;
            if (!store.UpdateBatch()) {
                state.SkipWithError(store.Error().ErrorText().toStdString().c_str());
                break;
            }
        }
        store.Endtransaction();
    }
}

// The other store call a grid save makes per row: 5,000 Retrieve.
void storeRetrieve(benchmark::State &state, BenchDatabase *(*open)())
{
    clsProposedBudget store;
    std::vector<clsProposedBudgetItem> items = generalFundExpenditure(open(), store);
    for (auto _ : state) {
        for (const clsProposedBudgetItem &item : items) {
            store.ProposedBudgetItem().ID = item.ID;
            store.ProposedBudgetItem().ProposalID = QStringLiteral("1");
            if (!store.Retrieve()) {
                state.SkipWithError(store.Error().ErrorText().toStdString().c_str());
                break;
            }
        }
    }
}

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const std::pair<const char *, void (*)(benchmark::State &, BenchDatabase * (*)())> cases[] = {
        {"OpenGrid5000", openGrid}, {"StoreGetListNew5000", storeGetListNew},   {"EditComponent", editComponent},
        {"SaveGrid5000", saveGrid}, {"StoreUpdateBatch5000", storeUpdateBatch}, {"StoreRetrieve5000", storeRetrieve},
    };
    for (const auto &[name, run] : cases) {
        benchmark::RegisterBenchmark((std::string(name) + "/SQLite").c_str(), run, &BenchDatabase::sqlite)
            ->Unit(benchmark::kMillisecond);
        if (!qEnvironmentVariableIsEmpty("KORA_BENCH_PG"))
            benchmark::RegisterBenchmark((std::string(name) + "/PostgreSQL").c_str(), run, &BenchDatabase::postgres)
                ->Unit(benchmark::kMillisecond);
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
