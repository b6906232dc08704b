// Ledger figures on a large sample installation (20,000 accounts, 1,000,000
// detail transactions), generated once per run in a temporary folder:
//   BM_CalcBalanceAllExpenditure  step through every expenditure account and
//                                 balance it to the fiscal year's last month
//   BM_GetEqualByAccountCode      position on a random account's first
//                                 transaction (key 1 from the lowest date)
//   BM_ListByAccountCode          read a random account's transactions
// Run with --benchmark_repetitions for medians.
#include "objectsummaryledgers.h"
#include "objecttransactions.h"
#include "sampleinstallation.h"

#include <QFileInfo>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <random>

namespace {

constexpr int accountCount = 20'000;
constexpr std::int64_t transactionCount = 1'000'000;

// KORA_LEDGERS_BENCH_ROOT names a folder to keep the installation in between
// runs (made when it holds none); without it a temporary folder is used.
struct LargeInstallation {
    QTemporaryDir temporary;
    QString root = qEnvironmentVariable("KORA_LEDGERS_BENCH_ROOT", temporary.path());
    QString fund;
    std::vector<QString> expenditureCodes;
    QString failure;

    LargeInstallation()
    {
        QString message;
        if (!QFileInfo::exists(root + QStringLiteral("/FILE.DDF")) &&
            createSampleInstallation(root, smallSampleDistrict(), {accountCount, transactionCount}, message) != 0) {
            failure = message;
            return;
        }
        fund = root + QStringLiteral("\\FUND");
        classObjectELSummary summary;
        std::vector<AccountCodeName> codes;
        if (summary.Init(root, fund) != 0 || summary.GetAcctCodeList(codes) != 0) {
            failure = summary.ErrorMsg();
            return;
        }
        for (const AccountCodeName &code : codes)
            expenditureCodes.push_back(code.AccountCode);
    }
};

LargeInstallation &installation()
{
    static LargeInstallation large;
    return large;
}

bool ready(benchmark::State &state)
{
    if (installation().failure.isEmpty())
        return true;
    state.SkipWithError(installation().failure.toStdString().c_str());
    return false;
}

// Binds a record object to the large installation; false (and the benchmark
// skipped with the reason) when either is not there.
template <class RecordObject> bool initialised(benchmark::State &state, RecordObject &object)
{
    if (!ready(state))
        return false;
    if (object.Init(installation().root, installation().fund) == 0)
        return true;
    state.SkipWithError(object.ErrorMsg().toStdString().c_str());
    return false;
}

void BM_CalcBalanceAllExpenditure(benchmark::State &state)
{
    classObjectELSummary summary;
    if (!initialised(state, summary))
        return;
    summary.TransDate = QStringLiteral("06-30-25");
    std::int64_t accounts = 0;
    for (auto _ : state) {
        Currency total;
        for (int status = summary.StepFirst(); status == 0; status = summary.StepNext()) {
            if (summary.CalcBalance() != 0) {
                state.SkipWithError(summary.ErrorMsg().toStdString().c_str());
                return;
            }
            total += summary.TotalUnencumBalance;
            ++accounts;
        }
        benchmark::DoNotOptimize(total);
    }
    state.SetItemsProcessed(accounts);
    state.counters["accounts"] = static_cast<double>(summary.TotalRecords());
}

void BM_GetEqualByAccountCode(benchmark::State &state)
{
    classObjectTransactions transactions;
    if (!initialised(state, transactions))
        return;
    const auto control = transactions.DataControl();
    control->setIndexNumber(1);
    // The engine builds a key's index on first use; time the reads, not that.
    control->GetFirst();
    const auto &codes = installation().expenditureCodes;
    std::mt19937 random(7);
    for (auto _ : state) {
        control->clearRecord();
        control->setFieldValue(QStringLiteral("Account Code"), codes[random() % codes.size()]);
        control->setFieldValue(QStringLiteral("Trans Date"), QString::fromLatin1(lowestDateText));
        if (control->GetGreaterOrEqual() != 0) {
            state.SkipWithError("account without transactions");
            return;
        }
    }
    state.SetItemsProcessed(state.iterations());
    state.counters["transactions"] = static_cast<double>(control->TotalRecords());
}

void BM_ListByAccountCode(benchmark::State &state)
{
    classObjectTransactions transactions;
    if (!initialised(state, transactions))
        return;
    const auto &codes = installation().expenditureCodes;
    std::vector<TransactionFields> warmUp; // builds the account key's index before timing
    transactions.GetListByAccountCode(codes.front(), warmUp);
    std::mt19937 random(11);
    std::int64_t read = 0;
    for (auto _ : state) {
        std::vector<TransactionFields> list;
        transactions.GetListByAccountCode(codes[random() % codes.size()], list);
        read += static_cast<std::int64_t>(list.size());
    }
    state.SetItemsProcessed(state.iterations());
    state.counters["per_account"] =
        benchmark::Counter(static_cast<double>(read) / static_cast<double>(state.iterations()));
}

} // namespace

BENCHMARK(BM_CalcBalanceAllExpenditure)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_GetEqualByAccountCode)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_ListByAccountCode)->Unit(benchmark::kMicrosecond);

BENCHMARK_MAIN();
