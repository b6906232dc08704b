#include "reportdocument.h"

#include "reportdefinition.h"
#include "reportgrouping.h"
#include "reportlayout.h"
#include "reportrunstate.h"

#include <QDate>

namespace {

constexpr int progressEvery = 256;

// A heading's line breaks (chr(13), chr(10) or both) as "\n".
QString headingText(const ReportValue &value)
{
    QString text = value.toText();
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    text.replace(u'\r', u'\n');
    return text;
}

bool evaluateOnce(const RunState &state, const std::vector<DefinitionFormula> &formulas, QStringList &into,
                  QString &error)
{
    for (const DefinitionFormula &formula : formulas) {
        ReportValue value;
        if (!state.evaluate(formula, -1, value, error))
            return false;
        into << value.toText();
    }
    return true;
}

bool pageSetup(const RunState &state, const ReportDefinition &definition, ReportPageSetup &setup, QString &error)
{
    const ReportDefinitionData &report = state.report();
    setup.orientation = definition.orientation();
    setup.title = report.title;
    setup.printedOn = QDate::currentDate().toString(QStringLiteral("MM/dd/yyyy"));
    ReportValue district;
    if (!state.evaluate(report.district, -1, district, error))
        return false;
    setup.district = district.toText();
    return evaluateOnce(state, report.subtitles, setup.subtitles, error) &&
           evaluateOnce(state, report.notes, setup.notes, error);
}

// The columns the report shows (`show` true), with their headings.
bool shownColumns(const RunState &state, std::vector<int> &shown, ReportTable &table, QString &error)
{
    const auto &columns = state.report().columns;
    for (int c = 0; c < static_cast<int>(columns.size()); ++c) {
        const DefinitionColumn &column = columns[c];
        ReportValue show;
        if (!state.evaluate(column.show, -1, show, error))
            return false;
        if (column.show.isSet() && !(show.type() == ReportValue::Type::Boolean && show.asBoolean()))
            continue;
        ReportValue heading;
        if (!state.evaluate(column.heading, -1, heading, error))
            return false;
        shown.push_back(c);
        table.headings << headingText(heading);
        table.kinds.push_back(column.kind);
        table.widths.push_back(column.width);
    }
    return true;
}

// The main rows the record selection keeps.
bool selectRows(const RunState &state, std::vector<int> &kept, const ReportProgress &progress, QString &error)
{
    const DefinitionFormula &selection = state.report().selection;
    const int total = static_cast<int>(state.main().rowCount());
    for (int row = 0; row < total; ++row) {
        if (progress && row % progressEvery == 0 && !progress(row, total * 2)) {
            error = reportCancelled;
            return false;
        }
        if (!selection.isSet()) {
            kept.push_back(row);
            continue;
        }
        ReportValue keep;
        if (!state.evaluate(selection, row, keep, error))
            return false;
        if (keep.type() == ReportValue::Type::Boolean) {
            if (keep.asBoolean())
                kept.push_back(row);
        } else if (!keep.isNull()) {
            error = QStringLiteral("%1: the record selection gives \"%2\", not true or false")
                        .arg(state.label(), keep.toText());
            return false;
        }
    }
    return true;
}

bool fillCharts(const RunState &state, const std::vector<int> &rows, std::vector<ReportChart> &charts, QString &error)
{
    for (const DefinitionChart &definition : state.report().charts) {
        ReportChart chart;
        ReportValue title;
        if (!state.evaluate(definition.title, -1, title, error))
            return false;
        chart.title = title.toText();
        QHash<QString, int> categoryIndex;
        std::vector<std::vector<Currency>> sums(definition.series.size());
        for (const auto &series : definition.series)
            chart.seriesNames.push_back(series.first);
        for (const int row : rows) {
            ReportValue category;
            if (!state.evaluate(definition.category, row, category, error))
                return false;
            const QString name = category.toText();
            auto found = categoryIndex.constFind(name);
            if (found == categoryIndex.cend()) {
                found = categoryIndex.insert(name, static_cast<int>(chart.categories.size()));
                chart.categories << name;
                for (auto &series : sums)
                    series.push_back(Currency());
            }
            for (std::size_t s = 0; s < definition.series.size(); ++s) {
                ReportValue value;
                if (!state.evaluate(definition.series[s].second, row, value, error))
                    return false;
                if (value.type() == ReportValue::Type::Number)
                    sums[s][*found] += value.asNumber();
            }
        }
        for (const auto &series : sums) {
            std::vector<double> values;
            for (const Currency amount : series)
                values.push_back(amount.toDouble());
            chart.series.push_back(std::move(values));
        }
        charts.push_back(std::move(chart));
    }
    return true;
}

} // namespace

std::unique_ptr<ReportDocument> ReportDocument::run(const ReportDefinition &definition, const ReportSources &sources,
                                                    QString &error, const ReportProgress &progress)
{
    if (progress && !progress(0, 1)) {
        error = reportCancelled;
        return nullptr;
    }
    RunState state(definition, sources);
    if (!state.read(error))
        return nullptr;

    ReportPageSetup setup;
    ReportTable table;
    std::vector<ReportChart> charts;
    std::vector<int> shown;
    std::vector<int> kept;
    if (!pageSetup(state, definition, setup, error) || !shownColumns(state, shown, table, error) ||
        !selectRows(state, kept, progress, error))
        return nullptr;

    ReportGrouping grouping(state, shown);
    if (!grouping.sort(kept, error) || !grouping.build(kept, table, progress, error) ||
        !fillCharts(state, kept, charts, error))
        return nullptr;
    if (progress && !progress(1, 1)) {
        error = reportCancelled;
        return nullptr;
    }
    return fromTable(std::move(table), std::move(charts), setup);
}
