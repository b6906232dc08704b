// The budget stores on the large demo district: 10,000 account codes, 5,000
// of them in the general fund's expenditure ledger, 1,000 account-code folders.
//   budgetdb_benchmarks                      SQLite (and PostgreSQL when $KORA_BENCH_PG is set)
//   budgetdb_benchmarks --write-sql DIR      the statements each operation sends, for the sqlite3 shell
#include "benchdatabase.h"
#include "proposal.h"
#include "proposedbudget.h"
#include "treesummary.h"

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QDir>

#include <algorithm>
#include <cstring>
#include <functional>
#include <map>

namespace {

using Operation = std::function<bool(BenchDatabase &, QString &why)>;

bool fail(QString &why, const clsErrObject &error)
{
    why = error.ErrorText();
    return false;
}

// Stores hold their open audit batches, so they are made in place, never copied.
template <typename Store> void attach(Store &store, BenchDatabase &database)
{
    store.setAdoConnection(database.db());
}

qsizetype liveGeneralExpenditure(const demo::District &district)
{
    return std::count_if(district.accounts.begin(), district.accounts.end(),
                         [](const demo::Account &a) { return a.fundId == u"A" && a.ledger == u'E' && !a.historical; });
}

bool getListNew(BenchDatabase &database, QString &why)
{
    clsProposedBudget store;
    attach(store, database);
    store.ProposedBudgetItem() = {.ProposalID = "1", .FundID = "A", .LedgerID = "E"};
    std::vector<clsProposedBudgetItem> items;
    if (!store.GetListNew(items))
        return fail(why, store.Error());
    benchmark::DoNotOptimize(items.data());
    const qsizetype expected = liveGeneralExpenditure(database.district());
    if (qsizetype(items.size()) != expected)
        why = QStringLiteral("%1 accounts listed, %2 expected").arg(items.size()).arg(expected);
    return why.isEmpty();
}

// Rewrites the active proposal's 5,000 general-fund expenditure rows; each
// run moves every amount by a cent so every row really changes.
bool updateBatch(BenchDatabase &database, QString &why)
{
    static std::map<BenchDatabase *, std::vector<clsProposedBudgetItem>> loaded;
    static int round = 0;
    auto &items = loaded[&database];
    clsProposedBudget store;
    attach(store, database);
    if (items.empty()) {
        store.ProposedBudgetItem() = {.ProposalID = "1", .FundID = "A", .LedgerID = "E"};
        if (!store.GetListNew(items))
            return fail(why, store.Error());
        for (auto &item : items)
            item.ProposalID = "1";
    }
    const Currency step = Currency::fromRaw(++round % 2 ? 100 : -100);
    store.BeginTransaction();
    for (auto &item : items) {
        // As the entry grid saves a general-fund row: one component changes, the total is their sum.
        (item.CatP ? item.ProposedCatP : item.CatA ? item.ProposedCatA : item.ProposedCatC) += step;
        item.ProposedBudget = item.ProposedCatA + item.ProposedCatP + item.ProposedCatC;
        store.ProposedBudgetItem() = item;
        if (!store.UpdateBatch()) {
            store.AbortTransaction();
            return fail(why, store.Error());
        }
    }
    store.Endtransaction();
    return true;
}

bool initNewProposal(BenchDatabase &database, QString &why)
{
    clsProposal store;
    attach(store, database);
    store.ProposalItem() = {.ID = "2", .Name = "Board Adjusted Budget"};
    QString source = QStringLiteral("C");
    return store.InitNewProposal(source) || fail(why, store.Error());
}

// Walks every account-code folder of every fund and ledger, from their top folders.
bool foldersAcctCodeCount(BenchDatabase &database, QString &why)
{
    clsTreeSummary store;
    attach(store, database);
    for (const demo::Fund &fund : database.district().funds) {
        for (const char *ledger : {"R", "E"}) {
            store.TreeItem() = {.NodeType = "T", .FundID = fund.id, .LedgerID = ledger, .ParentID = 0};
            std::vector<clsTreeItem> roots;
            if (!store.GetChildren(roots))
                return fail(why, store.Error());
            for (const clsTreeItem &root : roots) {
                if (!store.GetFoldersAcctCodeCount(root, 1))
                    return fail(why, store.Error());
            }
        }
    }
    const auto expected = std::count_if(database.district().folders.begin(), database.district().folders.end(),
                                        [](const demo::Folder &f) { return f.nodeType == u'T'; });
    if (qsizetype(store.Items().size()) != expected)
        why = QStringLiteral("%1 folders walked, %2 expected").arg(store.Items().size()).arg(expected);
    return why.isEmpty();
}

bool populate(BenchDatabase &database, QString &why)
{
    return database.populate(why);
}

struct Named {
    const char *name;
    Operation operation;
    bool startsEmpty; // the operation needs the tables emptied first (outside the timing)
};

const Named operations[] = {
    {"Populate10000", populate, true},
    {"GetListNew5000", getListNew, false},
    {"UpdateBatch5000", updateBatch, false},
    {"InitNewProposalFromC", initNewProposal, false},
    {"GetFoldersAcctCodeCount1000", foldersAcctCodeCount, false},
};

void run(benchmark::State &state, BenchDatabase *(*open)(), const Named &op)
{
    BenchDatabase *database = open();
    QString why;
    for (auto _ : state) {
        if (op.startsEmpty) {
            state.PauseTiming();
            const bool cleared = database->clear(why);
            state.ResumeTiming();
            if (!cleared)
                break;
        }
        if (!op.operation(*database, why))
            break;
    }
    if (!why.isEmpty())
        state.SkipWithError(why.toStdString().c_str());
}

// Runs each operation once on SQLite, writing the statements it sends to DIR/<name>.sql.
int writeSql(const QString &folder)
{
    QDir().mkpath(folder);
    BenchDatabase *database = BenchDatabase::sqlite();
    // The shell starts each operation from a copy of the database as the operation found it.
    auto keep = [&](const char *name) {
        const QString copy = folder + u'/' + QLatin1String(name) + QStringLiteral(".db");
        QFile::remove(copy);
        return QFile::copy(database->sqliteFile(), copy);
    };
    for (const Named &op : operations) {
        QString why;
        if (op.startsEmpty && !database->clear(why))
            return 1;
        // A warm-up run first, so the trace holds the operation's statements only.
        if (!op.startsEmpty && !op.operation(*database, why))
            return 1;
        if (!keep(op.name))
            return 1;
        database->traceTo(folder + u'/' + QLatin1String(op.name) + QStringLiteral(".sql"));
        const bool done = op.operation(*database, why);
        database->traceTo(QString());
        if (!done) {
            std::fprintf(stderr, "%s: %s\n", op.name, qPrintable(why));
            return 1;
        }
    }
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    if (argc == 3 && std::strcmp(argv[1], "--write-sql") == 0)
        return writeSql(QString::fromLocal8Bit(argv[2]));
    for (const Named &op : operations) {
        benchmark::RegisterBenchmark((std::string(op.name) + "/SQLite").c_str(), run, &BenchDatabase::sqlite, op)
            ->Unit(benchmark::kMillisecond);
        if (!qEnvironmentVariableIsEmpty("KORA_BENCH_PG"))
            benchmark::RegisterBenchmark((std::string(op.name) + "/PostgreSQL").c_str(), run, &BenchDatabase::postgres,
                                         op)
                ->Unit(benchmark::kMillisecond);
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
