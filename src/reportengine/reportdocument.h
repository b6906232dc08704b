#pragma once

#include <QPageLayout>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <vector>

class DbConnection;
class QPainter;
class QPagedPaintDevice;
class ReportDefinition;
struct ReportPageSetup;

// Where a report's data comes from: the budget database, and the Kora-Fund
// installation whose year tables ("<TableId>_SummaryExpenditure") are read
// through the data-access control.
struct ReportSources {
    DbConnection *budget = nullptr;
    QString fundRoot; // the installation root (the data dictionary's folder)
};

// Told how far the run has come; returns false to cancel it.
using ReportProgress = std::function<bool(int done, int total)>;

// The rows a report produced, as its columns show them: for CSV and XLSX and
// for tests. Each cell keeps its exact value; `kinds` says how to format it.
struct ReportTable {
    enum class Kind { Text, Amount, Percent, Number, Date };
    enum class RowKind { Detail, GroupHeader, GroupTotal, GrandTotal };
    QStringList headings;    // one per column, lines joined by "\n"
    std::vector<Kind> kinds; // one per column
    std::vector<int> widths; // one per column, in average characters
    struct Row {
        RowKind kind = RowKind::Detail;
        int level = 0;        // group depth, from 0; indents the first column
        bool newPage = false; // a group header that starts a new page
        // Amounts and numbers as plain decimals ("1234.5"), percentages as the
        // percentage ("12.5" is 12.5 %), dates "MM/dd/yyyy"; any other text
        // ("n/a") is shown as it stands. "" for empty.
        std::vector<QString> cells;
    };
    std::vector<Row> rows;
};

// A chart of a report, painted by whoever registered a chart painter (the
// program and the command line register one built on Qt Charts).
struct ReportChart {
    QString title;
    QStringList categories;
    std::vector<QString> seriesNames;
    std::vector<std::vector<double>> series; // one value per category, for drawing only
};
using ChartPainter = std::function<void(const ReportChart &, QPainter &, const QRectF &)>;
void setChartPainter(ChartPainter painter);

// A report run once and laid out on pages; paints the same pages onto any
// paged device (preview, printer, PDF).
class ReportDocument {
public:
    // Runs the definition: reads its data, applies the record selection,
    // groups, totals and lays out the pages. nullptr with `error` set on failure
    // (or "Cancelled." when progress said stop).
    static std::unique_ptr<ReportDocument> run(const ReportDefinition &definition, const ReportSources &sources,
                                               QString &error, const ReportProgress &progress = {});
    // A document of rows and charts already made, laid out on pages: where a
    // run ends, and how tests and tools build one directly.
    static std::unique_ptr<ReportDocument> fromTable(ReportTable table, std::vector<ReportChart> charts,
                                                     const ReportPageSetup &setup);
    ~ReportDocument();

    const QString &title() const;
    QPageLayout pageLayout() const;
    int pageCount() const;
    // Paints page `index` (from 0) with the painter's coordinates in points
    // (1/72 inch) from the page's top-left corner of the paintable area.
    void paintPage(int index, QPainter &painter) const;
    // Every page onto a device already set up (a printer's copies and
    // orientation, a PDF writer), each scaled down to fit when the device's
    // paper is smaller; returns false with `error` when painting fails.
    bool paint(QPagedPaintDevice &device, QString &error) const;

    bool writePdf(const QString &path, QString &error) const;
    bool writeCsv(const QString &path, QString &error) const;
    bool writeXlsx(const QString &path, QString &error) const;

    const ReportTable &table() const;
    const std::vector<ReportChart> &charts() const;

private:
    ReportDocument();
    struct Impl;
    std::unique_ptr<Impl> impl_;
};
