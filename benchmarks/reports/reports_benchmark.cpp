// The standard reports end to end as the Reports menu runs them, on the
// 10,000-account demo district (5,000 accounts in the general fund's
// expenditure ledger) against a Kora-Fund installation of 20,000 accounts:
// the preparation (years, definition, parameters, narrowed selection), the
// run (budget SQL and the year's summaries), the pages, and then the PDF or
// the first page as the preview paints it.
//   reports_benchmarks     SQLite (and PostgreSQL when $KORA_BENCH_PG is set)
#include "benchdatabase.h"
#include "benchinstallation.h"

#include "appglobals.h"
#include "chartpainter.h"
#include "reportdefinition.h"
#include "reportdocument.h"
#include "reportpreparation.h"

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <QTemporaryDir>

namespace {

constexpr int installationAccounts = 20'000;

const QString &installation()
{
    SampleOptions options;
    options.accounts = installationAccounts;
    return benchInstallation(options);
}

ReportEnvironment environmentOf(BenchDatabase &database)
{
    const demo::District &district = database.district();
    const QString root = installation();
    gstrRootPath = root;
    gstrFundPath = root + QStringLiteral("\\FUND");
    gstrFundDataPath = root + QStringLiteral("\\FUND\\DATA");
    ReportEnvironment environment;
    environment.db = database.db();
    environment.rootPath = root;
    environment.fundPath = gstrFundPath;
    environment.proposalId = district.activeProposal().id;
    environment.proposedYear = QString::number(district.proposedYear().year);
    return environment;
}

enum class Output { Pdf, FirstPage };

void runReport(benchmark::State &state, BenchDatabase *(*open)(), ReportKind kind, Output output,
               const QString &option)
{
    BenchDatabase *database = open();
    if (!database) {
        state.SkipWithError("KORA_BENCH_PG is not set");
        return;
    }
    const ReportEnvironment environment = environmentOf(*database);
    ReportChoices choices;
    choices.report = QStringLiteral("Expenditure");
    choices.ledger = QStringLiteral("E");
    choices.fund = QStringLiteral("A");
    choices.option = option;
    choices.percent = true;
    QTemporaryDir folder;
    int pages = 0;
    for (auto _ : state) {
        ReportPreparation preparation(environment);
        std::unique_ptr<ReportDefinition> definition;
        if (preparation.readYears())
            definition = preparation.prepare(kind, choices);
        if (!definition) {
            state.SkipWithError(preparation.Error().ErrorText().toStdString().c_str());
            return;
        }
        QString error;
        const auto document = ReportDocument::run(*definition, {database->db().get(), environment.rootPath}, error);
        if (!document) {
            state.SkipWithError(error.toStdString().c_str());
            return;
        }
        if (output == Output::Pdf) {
            if (!document->writePdf(folder.filePath(QStringLiteral("report.pdf")), error)) {
                state.SkipWithError(error.toStdString().c_str());
                return;
            }
        } else {
            // What the preview paints first: page 1 at screen resolution.
            const QSizeF points = document->pageLayout().fullRect(QPageLayout::Point).size();
            QImage page(points.toSize() * 96 / 72, QImage::Format_RGB32);
            page.fill(Qt::white);
            QPainter painter(&page);
            painter.scale(96.0 / 72, 96.0 / 72);
            document->paintPage(0, painter);
        }
        pages = document->pageCount();
    }
    state.counters["pages"] = pages;
}

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    setChartPainter(paintReportChart);
    // Option 4 reads the year's 20,000-account summary for the two Details
    // subreports; option 3 reads the budget database alone.
    struct Case {
        const char *name;
        ReportKind kind;
        Output output;
        const char *option;
    };
    const Case cases[] = {
        {"BudgetStatus5000Option4ToPdf", ReportKind::Status, Output::Pdf, "Current Year Actual"},
        {"BudgetStatus5000Option4FirstPage", ReportKind::Status, Output::FirstPage, "Current Year Actual"},
        {"BudgetStatus5000Option3ToPdf", ReportKind::Status, Output::Pdf, "Current Year Projected"},
        {"BudgetStatus5000Option3FirstPage", ReportKind::Status, Output::FirstPage, "Current Year Projected"},
        {"TaxReportFirstPage", ReportKind::TaxRevenue, Output::FirstPage, ""},
        {"TaxReportToPdf", ReportKind::TaxRevenue, Output::Pdf, ""}};
    for (const Case &c : cases) {
        const auto run = [c](benchmark::State &state, BenchDatabase *(*open)()) {
            runReport(state, open, c.kind, c.output, QLatin1String(c.option));
        };
        benchmark::RegisterBenchmark((std::string(c.name) + "/SQLite").c_str(), run, &BenchDatabase::sqlite)
            ->Unit(benchmark::kMillisecond);
        if (!qEnvironmentVariableIsEmpty("KORA_BENCH_PG"))
            benchmark::RegisterBenchmark((std::string(c.name) + "/PostgreSQL").c_str(), run, &BenchDatabase::postgres)
                ->Unit(benchmark::kMillisecond);
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
