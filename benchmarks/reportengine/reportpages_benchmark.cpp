// A budget status of 5,000 rows (250 folders of 18 accounts, their totals and
// the grand total) in the state's columns, landscape:
//   BM_Layout5000     the rows laid out on pages
//   BM_FirstPage5000  laid out and the first page painted as a preview shows it
//   BM_Pdf5000        laid out and written as a PDF
//   BM_Xlsx5000, BM_Csv5000  the same rows as a workbook and as CSV
#include "reportdocument.h"
#include "reportlayout.h"

#include "currency.h"

#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

namespace {

using Kind = ReportTable::Kind;
using RowKind = ReportTable::RowKind;

constexpr int folders = 250;
constexpr int accounts = 18;

const ReportTable &statusTable()
{
    static const ReportTable table = [] {
        ReportTable made;
        made.headings = {"Account",
                         "Description",
                         "Original\nAppropriation",
                         "Transfers and\nAdjustments",
                         "Revised\nAppropriation",
                         "Expended\nto Date",
                         "Outstanding\nEncumbrances",
                         "Unencumbered\nBalance",
                         "Proposed\nBudget",
                         "Increase\n(Decrease)",
                         "Percent"};
        made.kinds = {Kind::Text,   Kind::Text,   Kind::Amount, Kind::Amount, Kind::Amount, Kind::Amount,
                      Kind::Amount, Kind::Amount, Kind::Amount, Kind::Amount, Kind::Percent};
        made.widths = {14, 30, 14, 14, 14, 14, 14, 14, 14, 14, 8};
        Currency grand;
        for (int f = 0; f < folders; ++f) {
            made.rows.push_back({RowKind::GroupHeader, 0, false, {QString("Function %1").arg(f + 1)}});
            made.rows.back().cells.resize(made.headings.size());
            Currency sum;
            for (int a = 0; a < accounts; ++a) {
                const Currency amount = Currency::fromRaw(qint64(f * accounts + a) * 98765431 + 12345678);
                sum += amount;
                std::vector<QString> cells{QString("A%1.%2").arg(1000 + f).arg(a * 10, 3, 10, QChar('0')),
                                           QString("Account %1 of function %2").arg(a).arg(f + 1)};
                for (int c = 0; c < 8; ++c)
                    cells.push_back((c == 1 ? -amount : amount).toSqlText());
                cells.push_back("3.25");
                made.rows.push_back({RowKind::Detail, 1, false, cells});
            }
            grand += sum;
            std::vector<QString> total{QString("Total Function %1").arg(f + 1), ""};
            for (int c = 0; c < 8; ++c)
                total.push_back(sum.toSqlText());
            total.push_back("3.25");
            made.rows.push_back({RowKind::GroupTotal, 0, false, total});
        }
        std::vector<QString> total{"Grand Total", ""};
        for (int c = 0; c < 8; ++c)
            total.push_back(grand.toSqlText());
        total.push_back("");
        made.rows.push_back({RowKind::GrandTotal, 0, false, total});
        return made;
    }();
    return table;
}

ReportPageSetup setup()
{
    ReportPageSetup made;
    made.orientation = PaperOrientation::Landscape;
    made.district = "Lakeview Central School District";
    made.title = "Budget Status Report";
    made.subtitles = {"General Fund - Expenditures", "As of 11/23/2026"};
    made.printedOn = "11/23/2026";
    return made;
}

std::unique_ptr<ReportDocument> laidOut()
{
    return ReportDocument::fromTable(statusTable(), {}, setup());
}

void BM_Layout5000(benchmark::State &state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(laidOut()->pageCount());
    state.counters["rows"] = double(statusTable().rows.size());
    state.counters["pages"] = laidOut()->pageCount();
}

void BM_FirstPage5000(benchmark::State &state)
{
    // A preview page at 96 dpi, as the viewer paints it.
    QImage page(1056, 816, QImage::Format_RGB32);
    for (auto _ : state) {
        const auto document = laidOut();
        page.fill(Qt::white);
        QPainter painter(&page);
        painter.scale(96.0 / 72, 96.0 / 72);
        document->paintPage(0, painter);
    }
}

void BM_Pdf5000(benchmark::State &state)
{
    QTemporaryDir dir;
    QString error;
    for (auto _ : state)
        if (!laidOut()->writePdf(dir.filePath("status.pdf"), error))
            state.SkipWithError(qPrintable(error));
}

void BM_Xlsx5000(benchmark::State &state)
{
    QTemporaryDir dir;
    const auto document = laidOut();
    QString error;
    for (auto _ : state)
        if (!document->writeXlsx(dir.filePath("status.xlsx"), error))
            state.SkipWithError(qPrintable(error));
}

void BM_Csv5000(benchmark::State &state)
{
    QTemporaryDir dir;
    const auto document = laidOut();
    QString error;
    for (auto _ : state)
        if (!document->writeCsv(dir.filePath("status.csv"), error))
            state.SkipWithError(qPrintable(error));
}

} // namespace

BENCHMARK(BM_Layout5000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FirstPage5000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Pdf5000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Xlsx5000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Csv5000)->Unit(benchmark::kMillisecond);

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
