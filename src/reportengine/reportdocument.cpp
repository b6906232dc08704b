#include "reportdocument.h"

#include "csvrecord.h"
#include "reportdocumentimpl.h"
#include "sheettable.h"

#include <QPageSize>
#include <QPagedPaintDevice>
#include <QPainter>
#include <QPdfWriter>
#include <QSaveFile>

#include <algorithm>

namespace {

SheetTable::Kind sheetKind(ReportTable::Kind kind)
{
    switch (kind) {
    case ReportTable::Kind::Amount:
        return SheetTable::Kind::Amount;
    case ReportTable::Kind::Percent:
        return SheetTable::Kind::Percent;
    case ReportTable::Kind::Number:
        return SheetTable::Kind::Number;
    case ReportTable::Kind::Date:
        return SheetTable::Kind::Date;
    case ReportTable::Kind::Text:
        break;
    }
    return SheetTable::Kind::Text;
}

ReportTable::Kind kindOf(const ReportTable &table, std::size_t column)
{
    return column < table.kinds.size() ? table.kinds[column] : ReportTable::Kind::Text;
}

QStringList cellsOf(const ReportTable::Row &row, qsizetype columns)
{
    QStringList cells(row.cells.begin(), row.cells.end());
    cells.resize(columns);
    return cells;
}

} // namespace

ReportDocument::ReportDocument() : impl_(std::make_unique<Impl>()) {}
ReportDocument::~ReportDocument() = default;

std::unique_ptr<ReportDocument> ReportDocument::fromTable(ReportTable table, std::vector<ReportChart> charts,
                                                          const ReportPageSetup &setup)
{
    std::unique_ptr<ReportDocument> document(new ReportDocument);
    Impl &d = *document->impl_;
    d.title = setup.title;
    d.table = std::move(table);
    d.charts = std::move(charts);
    d.setup = setup;
    d.pages = ReportPages::layout(d.table, d.charts, d.setup);
    return document;
}

const QString &ReportDocument::title() const
{
    return impl_->title;
}

QPageLayout ReportDocument::pageLayout() const
{
    return impl_->pages->pageLayout();
}

int ReportDocument::pageCount() const
{
    return impl_->pages->pageCount();
}

void ReportDocument::paintPage(int index, QPainter &painter) const
{
    impl_->pages->paintPage(index, painter);
}

bool ReportDocument::paint(QPagedPaintDevice &device, QString &error) const
{
    // The device keeps the paper it was set up with; pages that do not fit
    // on it (landscape on portrait paper, letter on A4) are scaled down whole.
    const QSizeF ours = pageLayout().paintRect(QPageLayout::Point).size();
    const QSizeF theirs = device.pageLayout().paintRect(QPageLayout::Point).size();
    const qreal fit = std::min({qreal(1), theirs.width() / ours.width(), theirs.height() / ours.height()});
    QPainter painter;
    if (!painter.begin(&device)) {
        error = QStringLiteral("Cannot start painting the report \"%1\".").arg(title());
        return false;
    }
    const qreal scale = device.logicalDpiX() / 72.0 * fit;
    for (int page = 0; page < pageCount(); ++page) {
        if (page > 0 && !device.newPage()) {
            error = QStringLiteral("Cannot start page %1 of the report \"%2\".").arg(page + 1).arg(title());
            painter.end();
            return false;
        }
        painter.save();
        painter.scale(scale, scale);
        paintPage(page, painter);
        painter.restore();
    }
    if (!painter.end()) {
        error = QStringLiteral("Cannot finish painting the report \"%1\".").arg(title());
        return false;
    }
    return true;
}

bool ReportDocument::writePdf(const QString &path, QString &error) const
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        error = file.errorString();
        return false;
    }
    {
        QPdfWriter writer(&file);
        writer.setPageLayout(pageLayout());
        writer.setTitle(title());
        writer.setCreator(QStringLiteral("Kora-Budget"));
        if (!paint(writer, error))
            return false;
    } // the writer finishes the file as it goes
    if (!file.commit()) {
        error = file.errorString();
        return false;
    }
    return true;
}

bool ReportDocument::writeCsv(const QString &path, QString &error) const
{
    const ReportTable &table = impl_->table;
    const qsizetype columns = table.headings.size();
    QStringList headings;
    std::vector<bool> quoted;
    for (qsizetype c = 0; c < columns; ++c) {
        headings << QString(table.headings[c]).replace(QLatin1Char('\n'), QLatin1Char(' '));
        const ReportTable::Kind kind = kindOf(table, std::size_t(c));
        quoted.push_back(kind == ReportTable::Kind::Text || kind == ReportTable::Kind::Date);
    }
    QString text = csvRecord(headings, std::vector<bool>(std::size_t(columns), true));
    for (const ReportTable::Row &row : table.rows)
        text += csvRecord(cellsOf(row, columns), quoted);
    return writeCsvFile(path, text, error);
}

bool ReportDocument::writeXlsx(const QString &path, QString &error) const
{
    const ReportTable &table = impl_->table;
    const qsizetype columns = table.headings.size();
    SheetTable sheet;
    for (qsizetype c = 0; c < columns; ++c)
        sheet.columns.push_back({table.headings[c], sheetKind(kindOf(table, std::size_t(c)))});
    sheet.rows.reserve(table.rows.size());
    for (const ReportTable::Row &row : table.rows)
        sheet.rows.push_back({cellsOf(row, columns), row.kind != ReportTable::RowKind::Detail, row.level});
    return ::writeXlsx(sheet, path, error);
}

const ReportTable &ReportDocument::table() const
{
    return impl_->table;
}

const std::vector<ReportChart> &ReportDocument::charts() const
{
    return impl_->charts;
}
