// The account detail window and the transaction query pop-up on the large
// installation: the demo district at 20,000 accounts, its budget database
// (SQLite) and its Kora-Fund installation with 1,000,000 detail transactions,
// two neighbouring general-fund expenditure accounts brought to 500
// transactions each.
//   BM_DetailNext500    Next, then Previous back, between the two accounts,
//                       each step repainted (first_load_ms: the window's first
//                       account, which builds the transaction file's index)
//   BM_ReadTransactions500  the record object's read of one of those
//                       accounts alone: the part of a step that is Kora-Fund's
//   BM_PopUpLoad20000   the pop-up reading every ledger's account codes and
//                       listing them, repainted
// KORA_ACCOUNTS_BENCH_ROOT names a folder to keep both in between runs.
#include "budgetdatabase.h"
#include "classdialog.h"
#include "classgrid.h"
#include "formtransactionquerypopup.h"
#include "fundinstallation.h"
#include "messageservice.h"
#include "workereditaccountcodes.h"

#include "adoconnection.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QTableView>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

namespace {

constexpr int accountCount = 20'000;
constexpr std::int64_t transactionCount = 1'000'000;
constexpr int perAccount = 500;

// Answers every input box with the code to find; other boxes take their default.
class ScriptedMessages final : public MessageService {
public:
    QString answer;
    MsgAnswer messageBox(const MessageRequest &request) override { return request.defaultAnswer; }
    std::optional<QString> inputBox(const QString &, const QString &, const QString &) override { return answer; }
    void errorDialog(const ErrorDialogRequest &) override {}
    void beep() override {}
};

struct LargeDistrict {
    QTemporaryDir temporary;
    QString root = qEnvironmentVariable("KORA_ACCOUNTS_BENCH_ROOT", temporary.path());
    FundDataPlace place{root, root + QStringLiteral("\\FUND")};
    clsAdoConnection connection;
    QString proposalId;
    QString first; // the first of the two accounts with 500 transactions
    QString failure;

    LargeDistrict()
    {
        const demo::District district = demo::makeDistrict({.accounts = accountCount});
        proposalId = district.activeProposal().id;
        const QString file = root + QStringLiteral("/budget.sqlite");
        const bool fresh = !QFileInfo::exists(file);
        BudgetDbConfig config;
        config.sqliteFile = file;
        connection.configure(config);
        DbError error;
        if (!connection.OpenConnection()) {
            failure = connection.Error().ErrorText();
            return;
        }
        if (fresh && !demo::populateBudgetDatabase(*connection.dbConnection(), district, &error)) {
            failure = error.text;
            return;
        }
        QString message;
        if (!QFileInfo::exists(root + QStringLiteral("/FILE.DDF")) &&
            createSampleInstallation(root, demo::sampleDistrictOf(district), {accountCount, transactionCount},
                                     message) != 0) {
            failure = message;
            return;
        }
        // Two neighbours in the middle of the general fund's expenditure codes.
        std::vector<QString> codes;
        for (const demo::Account &account : district.accounts) {
            if (!account.historical && account.fundId == QLatin1String("A") && account.ledger == u'E')
                codes.push_back(account.code);
        }
        first = codes[codes.size() / 2];
        for (const QString &code : {codes[codes.size() / 2], codes[codes.size() / 2 + 1]}) {
            if (!fillTo(code))
                return;
        }
    }

    // Adds payments to the account until it has perAccount transactions.
    bool fillTo(const QString &code)
    {
        classObjectTransactions transactions;
        std::vector<TransactionFields> existing;
        if (transactions.Init(place.ddfPath, place.dataFolder) != 0 ||
            transactions.GetListSpecificAccountCode(QStringLiteral("E"), QStringLiteral("A"), code, existing) != 0) {
            failure = transactions.ErrorMsg();
            return false;
        }
        for (std::size_t n = existing.size(); n < perAccount; ++n) {
            transactions.Clear();
            transactions.LedgerID = QStringLiteral("E");
            transactions.FundID = QStringLiteral("A");
            transactions.AccountCode = code;
            transactions.TransDate = QStringLiteral("2025%1%2")
                                         .arg(n % 12 + 1, 2, 10, QLatin1Char('0'))
                                         .arg(n % 28 + 1, 2, 10, QLatin1Char('0'));
            transactions.ReferenceNumber = QStringLiteral("BENCH%1").arg(n);
            transactions.ReferenceText = QStringLiteral("Payment");
            transactions.ColumnID = QStringLiteral("PE");
            transactions.Amount1 = QStringLiteral("12.34");
            transactions.Amount2 = QStringLiteral("0");
            if (transactions.Add() != 0) {
                failure = transactions.ErrorMsg();
                return false;
            }
        }
        return true;
    }
};

LargeDistrict &large()
{
    static LargeDistrict district;
    return district;
}

bool ready(benchmark::State &state)
{
    if (large().failure.isEmpty())
        return true;
    state.SkipWithError(large().failure.toStdString().c_str());
    return false;
}

void BM_DetailNext500(benchmark::State &state)
{
    if (!ready(state))
        return;
    auto scripted = std::make_unique<ScriptedMessages>();
    scripted->answer = large().first;
    auto previous = setMessageService(std::move(scripted));
    workerEditAccountCodes worker(large().connection.dbConnection(), large().proposalId, large().place);
    worker.FundID = QStringLiteral("A");
    worker.LedgerID = QStringLiteral("E");
    if (!worker.InitStores()) {
        state.SkipWithError("the stores did not open");
        return;
    }
    classDialog dialog(worker);
    dialog.Build();
    dialog.show();
    QElapsedTimer firstLoad;
    firstLoad.start();
    worker.UserAction(dialog, QStringLiteral("tlbFind"));
    QApplication::processEvents();
    state.counters["first_load_ms"] = double(firstLoad.nsecsElapsed()) / 1e6;
    bool forward = true;
    for (auto _ : state) {
        worker.UserAction(dialog, forward ? QStringLiteral("tlbNext") : QStringLiteral("tlbPrevious"));
        QApplication::processEvents();
        forward = !forward;
    }
    const int rows = dialog.Control(QStringLiteral("AcctGrid")).Grid().CountRows();
    if (rows != perAccount)
        state.SkipWithError("the account shown has not 500 transactions");
    state.counters["rows"] = rows;
    setMessageService(std::move(previous));
}

void BM_ReadTransactions500(benchmark::State &state)
{
    if (!ready(state))
        return;
    classObjectTransactions transactions;
    if (transactions.Init(large().place.ddfPath, large().place.dataFolder) != 0) {
        state.SkipWithError(transactions.ErrorMsg().toStdString().c_str());
        return;
    }
    std::size_t rows = 0;
    for (auto _ : state) {
        std::vector<TransactionFields> list;
        transactions.GetListSpecificAccountCode(QStringLiteral("E"), QStringLiteral("A"), large().first, list);
        rows = list.size();
    }
    state.counters["rows"] = double(rows);
}

void BM_PopUpLoad20000(benchmark::State &state)
{
    if (!ready(state))
        return;
    formTransactionQueryPopUp popUp;
    popUp.show();
    for (auto _ : state) {
        if (!popUp.LoadList(large().place)) {
            state.SkipWithError(popUp.statusText().toStdString().c_str());
            return;
        }
        QApplication::processEvents();
    }
    state.counters["codes"] = popUp.availableList()->model()->rowCount();
}

} // namespace

BENCHMARK(BM_DetailNext500)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReadTransactions500)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PopUpLoad20000)->Unit(benchmark::kMillisecond);

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
