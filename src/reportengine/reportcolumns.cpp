#include "reportcolumns.h"

#include "reportcells.h"
#include "reportfonts.h"

#include <algorithm>
#include <numeric>

namespace {

constexpr qreal baseSize = 8;
constexpr qreal smallestSize = 7;  // the smallest the text gets before text columns give way
constexpr qreal minimumSize = 4;   // for tables whose figures alone are wider than the page
constexpr qreal referenceSize = 10; // widths measured once here scale with the size
constexpr int fallbackWidth = 10;   // characters, for a column the table gives no width
constexpr int narrowestText = 8;    // characters a text column keeps
constexpr qreal slack = 1;          // points, so a measured width is not elided by rounding

// Widths at the reference size, without padding.
struct Measured {
    qreal averageChar = 0;
    std::vector<qreal> chars; // the table's widths
    // Of a number column, what must never be cut: its widest shown cell and
    // its heading's words (the heading wraps at blanks); nothing for text.
    std::vector<QStringList> whole;
    int deepest = 0; // the deepest group level, which indents the first column
};

// The widest shown cell of a number column (bold, as totals are): only the
// cells within a character of the longest are measured.
QString widestFigure(std::size_t column, const std::vector<ReportTable::Row> &rows, const QFontMetricsF &bold)
{
    qsizetype longest = 0;
    for (const ReportTable::Row &row : rows)
        longest = std::max(longest, row.cells[column].size());
    qreal widest = 0;
    QString figure;
    for (const ReportTable::Row &row : rows) {
        if (row.cells[column].size() < longest - 1)
            continue;
        const qreal width = bold.horizontalAdvance(row.cells[column]);
        if (width > widest) {
            widest = width;
            figure = row.cells[column];
        }
    }
    return figure;
}

// The widest of `texts` in bold at `size`: measured at the size they are
// printed, since text does not scale exactly with its size.
qreal widestAt(const QStringList &texts, qreal size)
{
    if (texts.isEmpty())
        return 0;
    const QFontMetricsF bold = pointMetrics(size, true);
    qreal widest = 0;
    for (const QString &text : texts)
        widest = std::max(widest, bold.horizontalAdvance(text));
    return widest;
}

Measured measure(const ReportTable &table, const std::vector<ReportTable::Kind> &kinds,
                 const std::vector<ReportTable::Row> &rows)
{
    const QFontMetricsF regular = pointMetrics(referenceSize, false);
    const QFontMetricsF bold = pointMetrics(referenceSize, true);
    Measured measured;
    measured.averageChar = regular.averageCharWidth();
    for (const ReportTable::Row &row : rows)
        measured.deepest = std::max(measured.deepest, row.level);
    for (std::size_t c = 0; c < kinds.size(); ++c) {
        const int chars = c < table.widths.size() && table.widths[c] > 0 ? table.widths[c] : fallbackWidth;
        measured.chars.push_back(chars * measured.averageChar);
        QStringList whole;
        if (isNumericKind(kinds[c])) {
            whole = QString(table.headings[qsizetype(c)])
                        .replace(QLatin1Char('\n'), QLatin1Char(' '))
                        .split(QLatin1Char(' '), Qt::SkipEmptyParts);
            whole << widestFigure(c, rows, bold);
        }
        measured.whole.push_back(whole);
    }
    return measured;
}

ColumnFit sized(qreal size, std::size_t count)
{
    ColumnFit fit;
    fit.size = size;
    fit.pad = size * 1.25;
    fit.indent = size;
    fit.width.assign(count, 0);
    return fit;
}

// Places the columns left to right.
ColumnFit &placed(ColumnFit &fit)
{
    fit.left.clear();
    qreal x = 0;
    for (const qreal width : fit.width) {
        fit.left.push_back(x);
        x += width;
    }
    return fit;
}

} // namespace

ColumnFit fitColumns(const ReportTable &table, const std::vector<ReportTable::Kind> &kinds,
                     const std::vector<ReportTable::Row> &shownRows, qreal pageWidth)
{
    const Measured measured = measure(table, kinds, shownRows);
    const std::size_t count = kinds.size();
    const auto natural = [&](const ColumnFit &fit, std::size_t c) {
        const qreal scale = fit.size / referenceSize;
        return std::max(measured.chars[c] * scale, widestAt(measured.whole[c], fit.size)) + fit.pad + slack;
    };
    // The text a little smaller, then every column in proportion.
    for (qreal size = baseSize; size >= smallestSize; size -= 0.5) {
        ColumnFit fit = sized(size, count);
        for (std::size_t c = 0; c < count; ++c)
            fit.width[c] = natural(fit, c);
        const qreal total = std::accumulate(fit.width.begin(), fit.width.end(), qreal(0));
        if (total <= pageWidth) {
            // The room left over goes to the text, the figures staying together.
            qreal texts = 0;
            for (std::size_t c = 0; c < count; ++c)
                texts += isNumericKind(kinds[c]) ? 0 : fit.width[c];
            for (std::size_t c = 0; c < count; ++c)
                if (texts <= 0 || !isNumericKind(kinds[c]))
                    fit.width[c] += (pageWidth - total) * fit.width[c] / (texts > 0 ? texts : total);
            return placed(fit);
        }
    }
    // The text columns give way, down to a few characters each, while the
    // figures keep their width.
    for (qreal size = smallestSize;; size -= 0.5) {
        ColumnFit fit = sized(size, count);
        const qreal scale = size / referenceSize;
        std::vector<qreal> least(count, 0);
        qreal fixed = 0; // the figures and the least of every text column
        qreal wanted = 0; // what the text columns would take beyond their least
        for (std::size_t c = 0; c < count; ++c) {
            if (isNumericKind(kinds[c])) {
                fit.width[c] = natural(fit, c);
                fixed += fit.width[c];
                continue;
            }
            const qreal indent = c == 0 ? fit.indent * measured.deepest : 0;
            least[c] = std::min(natural(fit, c), narrowestText * measured.averageChar * scale + fit.pad + indent);
            fixed += least[c];
            wanted += natural(fit, c) - least[c];
        }
        if (fixed <= pageWidth || size <= minimumSize) {
            const qreal share = wanted > 0 ? std::clamp((pageWidth - fixed) / wanted, qreal(0), qreal(1)) : 0;
            for (std::size_t c = 0; c < count; ++c)
                if (!isNumericKind(kinds[c]))
                    fit.width[c] = least[c] + (natural(fit, c) - least[c]) * share;
            return placed(fit);
        }
    }
}
