#include "reportlayout.h"

#include "reportcells.h"
#include "reportchart.h"
#include "reportcolumns.h"
#include "reportfonts.h"

#include <QDate>
#include <QPainter>
#include <QPen>

#include <algorithm>

namespace {

constexpr qreal margin = 36; // half an inch all round
constexpr qreal districtSize = 12;
constexpr qreal titleSize = 11;
constexpr qreal subtitleSize = 9;
constexpr qreal footerSize = 7;
constexpr qreal thinRule = 0.5;
constexpr qreal headingRule = 0.75;

using RowKind = ReportTable::RowKind;

// One line of the title block above every page's columns.
struct TitleLine {
    QString text;
    qreal size;
    bool bold;
};

// Vertical extents of a row: the gap above it (kept off a page's top), its
// line, and the space below.
struct RowExtent {
    qreal before = 0;
    qreal line = 0;
    qreal after = 0;
};

// What one page shows: a run of rows, a run of note lines, or one chart.
struct Page {
    std::vector<int> continued; // the headings of groups carried on from the page before
    int firstRow = 0;
    int endRow = 0;
    int firstNote = 0;
    int endNote = 0;
    int chart = -1;
};

} // namespace

struct ReportPages::Impl {
    ReportPageSetup setup;
    QPageLayout pageLayout;
    QSizeF area; // the paintable area, in points
    std::vector<ReportTable::Kind> kinds;
    std::vector<ReportTable::Row> rows; // cells as they are shown
    std::vector<ReportChart> charts;
    ColumnFit columns;
    std::vector<QStringList> headings; // each column's heading lines
    std::vector<TitleLine> titleLines;
    QStringList noteLines;
    std::vector<qreal> rowTop;  // from the body's top on the row's page
    std::vector<qreal> noteTop; // likewise
    std::vector<Page> pages;
    qreal titleHeight = 0;
    qreal headingHeight = 0;
    qreal bodyTop = 0;    // of a page with columns
    qreal bodyBottom = 0; // above the footer
    qreal rowHeight = 0;

    RowExtent extentOf(const ReportTable::Row &row) const;
    void measureTitle();
    void measureHeadings(const QStringList &texts);
    void paginate();
    void newPage(int row, int note);

    void paintTitle(QPainter &painter) const;
    void paintHeadings(QPainter &painter) const;
    void paintRow(QPainter &painter, const DeviceFont &font, const ReportTable::Row &row, qreal top) const;
    void paintFooter(QPainter &painter, int index) const;
};

RowExtent ReportPages::Impl::extentOf(const ReportTable::Row &row) const
{
    switch (row.kind) {
    case RowKind::GroupHeader:
        return {rowHeight * 0.5, rowHeight, 0};
    case RowKind::GroupTotal:
        return {0, rowHeight, rowHeight * 0.4};
    case RowKind::GrandTotal:
        return {rowHeight * 0.5, rowHeight + 3, 0}; // room for the double rule
    case RowKind::Detail:
        break;
    }
    return {0, rowHeight, 0};
}

void ReportPages::Impl::measureTitle()
{
    if (!setup.district.isEmpty())
        titleLines.push_back({setup.district, districtSize, true});
    if (!setup.title.isEmpty())
        titleLines.push_back({setup.title, titleSize, true});
    for (const QString &subtitle : setup.subtitles)
        titleLines.push_back({subtitle, subtitleSize, false});
    titleHeight = 0;
    for (const TitleLine &line : titleLines)
        titleHeight += pointMetrics(line.size, line.bold).lineSpacing();
    titleHeight += 8;
}

void ReportPages::Impl::measureHeadings(const QStringList &texts)
{
    const QFontMetricsF metrics = pointMetrics(columns.size, true);
    qsizetype lines = 0;
    for (std::size_t c = 0; c < kinds.size(); ++c) {
        QStringList wrapped;
        for (const QString &line : texts[qsizetype(c)].split(QLatin1Char('\n')))
            wrapped << wrappedLines(line, metrics, columns.contentWidth(c));
        lines = std::max(lines, wrapped.size());
        headings.push_back(wrapped);
    }
    headingHeight = lines > 0 ? metrics.lineSpacing() * qreal(lines) + 4 : 0;
}

void ReportPages::Impl::newPage(int row, int note)
{
    Page page;
    page.firstRow = page.endRow = row;
    page.firstNote = page.endNote = note;
    pages.push_back(page);
}

void ReportPages::Impl::paginate()
{
    const qreal height = bodyBottom - bodyTop;
    qreal y = 0;
    bool atTop = true;
    newPage(0, 0);
    rowTop.resize(rows.size());
    std::vector<int> open; // the heading of each group the rows are in, outermost first
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const ReportTable::Row &row = rows[i];
        RowExtent extent = extentOf(row);
        // A group's heading is not left alone at the foot of a page.
        const qreal keep = row.kind == RowKind::GroupHeader && i + 1 < rows.size() ? extentOf(rows[i + 1]).line : 0;
        const bool forced = row.kind == RowKind::GroupHeader && row.newPage;
        if (!atTop && (forced || y + extent.before + extent.line + keep > height)) {
            newPage(int(i), 0);
            // A page that begins inside groups says which, above its first row.
            std::vector<int> &continued = pages.back().continued;
            continued = open;
            if (row.kind == RowKind::GroupHeader)
                continued.resize(std::min(continued.size(), std::size_t(std::max(row.level, 0))));
            y = rowHeight * qreal(continued.size());
            atTop = true;
        }
        if (atTop)
            extent.before = 0;
        rowTop[i] = y + extent.before;
        y = rowTop[i] + extent.line + extent.after;
        atTop = false;
        pages.back().endRow = int(i) + 1;
        const auto level = std::size_t(std::max(row.level, 0));
        if (row.kind == RowKind::GroupHeader) {
            open.resize(std::min(open.size(), level));
            open.push_back(int(i));
        } else if (row.kind == RowKind::GroupTotal) {
            open.resize(std::min(open.size(), level));
        } else if (row.kind == RowKind::GrandTotal) {
            open.clear();
        }
    }
    if (!noteLines.isEmpty()) {
        const qreal line = pointMetrics(columns.size, false).lineSpacing();
        y += atTop ? 0 : rowHeight;
        noteTop.resize(std::size_t(noteLines.size()));
        for (qsizetype n = 0; n < noteLines.size(); ++n) {
            if (!atTop && y + line > height) {
                newPage(int(rows.size()), int(n));
                y = 0;
            }
            noteTop[std::size_t(n)] = y;
            y += line;
            atTop = false;
            pages.back().endNote = int(n) + 1;
        }
    }
    // A report of charts alone has no page of rows.
    if (rows.empty() && noteLines.isEmpty() && !charts.empty())
        pages.clear();
    for (std::size_t c = 0; c < charts.size(); ++c) {
        Page page;
        page.chart = int(c);
        pages.push_back(page);
    }
}

std::unique_ptr<ReportPages> ReportPages::layout(const ReportTable &table, const std::vector<ReportChart> &charts,
                                                 const ReportPageSetup &setup)
{
    std::unique_ptr<ReportPages> pages(new ReportPages);
    Impl &d = *pages->impl_;
    d.setup = setup;
    if (d.setup.printedOn.isEmpty())
        d.setup.printedOn = QDate::currentDate().toString(QStringLiteral("MM/dd/yyyy"));
    d.pageLayout = QPageLayout(QPageSize(QPageSize::Letter),
                               setup.orientation == PaperOrientation::Landscape ? QPageLayout::Landscape
                                                                                : QPageLayout::Portrait,
                               QMarginsF(margin, margin, margin, margin), QPageLayout::Point);
    d.area = d.pageLayout.paintRect(QPageLayout::Point).size();
    d.charts = charts;

    const std::size_t columnCount = table.headings.size();
    d.kinds.assign(columnCount, ReportTable::Kind::Text);
    std::copy_n(table.kinds.begin(), std::min(columnCount, table.kinds.size()), d.kinds.begin());
    d.rows.reserve(table.rows.size());
    for (const ReportTable::Row &row : table.rows) {
        ReportTable::Row shown = row;
        shown.cells.resize(columnCount);
        for (std::size_t c = 0; c < columnCount; ++c)
            shown.cells[c] = shownCell(d.kinds[c], shown.cells[c]);
        d.rows.push_back(std::move(shown));
    }
    d.columns = fitColumns(table, d.kinds, d.rows, d.area.width());
    d.rowHeight = d.columns.size * 1.4;

    d.measureTitle();
    d.measureHeadings(table.headings);
    const QFontMetricsF notes = pointMetrics(d.columns.size, false);
    for (const QString &note : setup.notes)
        for (const QString &paragraph : note.split(QLatin1Char('\n')))
            d.noteLines << wrappedLines(paragraph, notes, d.area.width());
    d.bodyTop = d.titleHeight + d.headingHeight + (d.headingHeight > 0 ? 4 : 0);
    d.bodyBottom = d.area.height() - pointMetrics(footerSize, false).lineSpacing() - 6;
    d.paginate();
    return pages;
}

ReportPages::ReportPages() : impl_(std::make_unique<Impl>()) {}
ReportPages::~ReportPages() = default;

QPageLayout ReportPages::pageLayout() const
{
    return impl_->pageLayout;
}

int ReportPages::pageCount() const
{
    return int(impl_->pages.size());
}

void ReportPages::Impl::paintTitle(QPainter &painter) const
{
    qreal y = 0;
    for (const TitleLine &line : titleLines) {
        const DeviceFont font(line.size, line.bold, painter.device());
        const QFontMetricsF &metrics = font.metrics;
        painter.setFont(font.font);
        const QString text = metrics.elidedText(line.text, Qt::ElideRight, area.width());
        painter.drawText(QPointF((area.width() - metrics.horizontalAdvance(text)) / 2, y + metrics.ascent()), text);
        y += metrics.lineSpacing();
    }
}

void ReportPages::Impl::paintHeadings(QPainter &painter) const
{
    if (headingHeight <= 0)
        return;
    const DeviceFont font(columns.size, true, painter.device());
    const QFontMetricsF &metrics = font.metrics;
    painter.setFont(font.font);
    const qreal bottom = titleHeight + headingHeight - 2;
    for (std::size_t c = 0; c < headings.size(); ++c) {
        const QStringList &lines = headings[c];
        // A figure's heading may reach into the blank before its column rather
        // than lose letters to the device font's hinting.
        const qreal room = columns.contentWidth(c) + (isNumericKind(kinds[c]) ? columns.pad / 2 : 0);
        for (qsizetype l = 0; l < lines.size(); ++l) {
            const QString text = metrics.elidedText(lines[l], Qt::ElideRight, room);
            const qreal baseline = bottom - metrics.descent() - metrics.lineSpacing() * qreal(lines.size() - 1 - l);
            const qreal x = isNumericKind(kinds[c]) ? columns.contentRight(c) - metrics.horizontalAdvance(text)
                                                    : columns.contentLeft(c);
            painter.drawText(QPointF(x, baseline), text);
        }
    }
    painter.setPen(QPen(Qt::black, headingRule));
    painter.drawLine(QPointF(0, bottom + 1), QPointF(columns.tableWidth(), bottom + 1));
}

void ReportPages::Impl::paintRow(QPainter &painter, const DeviceFont &font, const ReportTable::Row &row,
                                 qreal top) const
{
    const QFontMetricsF &metrics = font.metrics;
    painter.setFont(font.font);
    const qreal baseline = top + (rowHeight - metrics.height()) / 2 + metrics.ascent();
    painter.setPen(QPen(Qt::black, thinRule));
    for (std::size_t c = 0; c < row.cells.size(); ++c) {
        const QString &cell = row.cells[c];
        if (cell.isEmpty())
            continue;
        if (isNumericKind(kinds[c])) {
            const qreal right = columns.contentRight(c);
            painter.drawText(QPointF(right - metrics.horizontalAdvance(cell), baseline), cell);
            if (row.kind == RowKind::GroupTotal || row.kind == RowKind::GrandTotal)
                painter.drawLine(QPointF(columns.contentLeft(c), top), QPointF(right, top));
            if (row.kind == RowKind::GrandTotal) {
                const qreal under = top + rowHeight;
                painter.drawLine(QPointF(columns.contentLeft(c), under), QPointF(right, under));
                painter.drawLine(QPointF(columns.contentLeft(c), under + 2), QPointF(right, under + 2));
            }
            continue;
        }
        // Text runs on over the empty cells to its right.
        std::size_t last = c;
        while (last + 1 < row.cells.size() && row.cells[last + 1].isEmpty())
            ++last;
        const qreal left = columns.contentLeft(c) + (c == 0 ? columns.indent * row.level : 0);
        const QString text = metrics.elidedText(cell, Qt::ElideRight, columns.contentRight(last) - left);
        painter.drawText(QPointF(left, baseline), text);
    }
}

void ReportPages::Impl::paintFooter(QPainter &painter, int index) const
{
    const DeviceFont font(footerSize, false, painter.device());
    const QFontMetricsF &metrics = font.metrics;
    painter.setFont(font.font);
    const qreal baseline = area.height() - metrics.descent();
    const qreal rule = area.height() - metrics.lineSpacing() - 2;
    painter.setPen(QPen(Qt::black, thinRule));
    painter.drawLine(QPointF(0, rule), QPointF(area.width(), rule));
    const QString page = QStringLiteral("Page %1 of %2").arg(index + 1).arg(pages.size());
    const qreal pageWidth = metrics.horizontalAdvance(page);
    painter.drawText(QPointF(0, baseline), setup.printedOn);
    const qreal side = std::max(metrics.horizontalAdvance(setup.printedOn), pageWidth) + 12;
    const QString title = metrics.elidedText(setup.title, Qt::ElideRight, area.width() - 2 * side);
    painter.drawText(QPointF((area.width() - metrics.horizontalAdvance(title)) / 2, baseline), title);
    painter.drawText(QPointF(area.width() - pageWidth, baseline), page);
}

void ReportPages::paintPage(int index, QPainter &painter) const
{
    const Impl &d = *impl_;
    if (index < 0 || index >= pageCount())
        return;
    const Page &page = d.pages[std::size_t(index)];
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::black);
    d.paintTitle(painter);
    if (page.chart >= 0) {
        const QRectF area(0, d.titleHeight, d.area.width(), d.bodyBottom - d.titleHeight);
        paintChart(d.charts[std::size_t(page.chart)], painter, area);
    } else {
        d.paintHeadings(painter);
        const DeviceFont regular(d.columns.size, false, painter.device());
        const DeviceFont bold(d.columns.size, true, painter.device());
        for (std::size_t c = 0; c < page.continued.size(); ++c) {
            ReportTable::Row heading = d.rows[std::size_t(page.continued[c])];
            if (!heading.cells.empty())
                heading.cells[0] += QStringLiteral(" (continued)");
            d.paintRow(painter, bold, heading, d.bodyTop + d.rowHeight * qreal(c));
        }
        for (int r = page.firstRow; r < page.endRow; ++r) {
            const ReportTable::Row &row = d.rows[std::size_t(r)];
            d.paintRow(painter, row.kind == RowKind::Detail ? regular : bold, row,
                       d.bodyTop + d.rowTop[std::size_t(r)]);
        }
        painter.setFont(regular.font);
        for (int n = page.firstNote; n < page.endNote; ++n)
            painter.drawText(QPointF(0, d.bodyTop + d.noteTop[std::size_t(n)] + regular.metrics.ascent()),
                             d.noteLines[n]);
    }
    d.paintFooter(painter, index);
    painter.restore();
}
