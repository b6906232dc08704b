// The large sample installation (20,000 accounts, 1,000,000 detail
// transactions): how long writing it takes, and reading it back through the
// data-access control. Peak memory of the process is reported as a counter
// (peak_rss_mb). One iteration each; run with --benchmark_repetitions for medians.
#include "dataaccesscontrol.h"
#include "sampleinstallation.h"

#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <sys/resource.h>

namespace {

constexpr int accountCount = 20'000;
constexpr std::int64_t transactionCount = 1'000'000;

double peakMegabytes()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) / 1024.0; // ru_maxrss is in KiB
}

QTemporaryDir &folder()
{
    static QTemporaryDir large;
    return large;
}

void BM_CreateLargeInstallation(benchmark::State &state)
{
    SampleSummary summary;
    for (auto _ : state) {
        QString message;
        if (createSampleInstallation(folder().path(), smallSampleDistrict(), {accountCount, transactionCount}, message,
                                     &summary) != 0) {
            state.SkipWithError(message.toStdString().c_str());
            return;
        }
    }
    state.counters["accounts"] = static_cast<double>(summary.accounts);
    state.counters["transactions"] = static_cast<double>(summary.transactions);
    state.counters["peak_rss_mb"] = peakMegabytes();
}

// Every transaction's account code and amount, in key order.
void BM_ReadBackTransactions(benchmark::State &state)
{
    std::int64_t records = 0;
    for (auto _ : state) {
        DataAccessControl control;
        control.setDdfPath(folder().path());
        control.setFileName(QStringLiteral("Transactions"));
        control.setIndexNumber(1);
        if (control.Open() != 0) {
            state.SkipWithError(control.Message().toStdString().c_str());
            return;
        }
        records = 0;
        for (int s = control.GetFirst(); s == 0; s = control.GetNext()) {
            benchmark::DoNotOptimize(control.FieldValue(QStringLiteral("Account Code")));
            benchmark::DoNotOptimize(control.FieldValue(QStringLiteral("Amount 1")));
            ++records;
        }
    }
    state.counters["records"] = static_cast<double>(records);
    state.counters["peak_rss_mb"] = peakMegabytes();
}

} // namespace

BENCHMARK(BM_CreateLargeInstallation)->Iterations(1)->Unit(benchmark::kSecond);
BENCHMARK(BM_ReadBackTransactions)->Iterations(1)->Unit(benchmark::kSecond);
BENCHMARK_MAIN();
