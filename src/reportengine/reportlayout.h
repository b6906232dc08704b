#pragma once

#include "reportdefinition.h"
#include "reportdocument.h"

#include <QPageLayout>
#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

class QPainter;

// What every page of a report carries beside its rows.
struct ReportPageSetup {
    PaperOrientation orientation = PaperOrientation::Portrait;
    QString district;       // first line of the page header
    QString title;          // the report's title
    QStringList subtitles;  // e.g. the fund, the years, the proposal
    QStringList notes;      // printed after the grand total (e.g. how figures are computed)
    QString printedOn;      // the date shown in the footer, "MM/dd/yyyy"
};

// The table and charts of a run laid out on letter-size pages: page header
// (district, title, subtitles, column headings repeated), rows with group
// headers and totals, page footer (page n of m, printed date).
class ReportPages {
public:
    static std::unique_ptr<ReportPages> layout(const ReportTable &table, const std::vector<ReportChart> &charts,
                                               const ReportPageSetup &setup);
    ~ReportPages();

    QPageLayout pageLayout() const;
    int pageCount() const;
    void paintPage(int index, QPainter &painter) const;

private:
    ReportPages();
    struct Impl;
    std::unique_ptr<Impl> impl_;
};
