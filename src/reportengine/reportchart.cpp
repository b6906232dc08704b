#include "reportchart.h"

#include "reportcells.h"
#include "reportfonts.h"

#include <QMutex>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace {

constexpr qreal titleSize = 10;
constexpr qreal labelSize = 7;

QMutex painterLock;
ChartPainter &registeredPainter()
{
    static ChartPainter painter;
    return painter;
}

const QColor &seriesColour(std::size_t series)
{
    static const QColor colours[] = {QColor(0x1f, 0x4e, 0x79), QColor(0xa9, 0xc4, 0xe0), QColor(0x7f, 0x7f, 0x7f),
                                     QColor(0xd6, 0x9a, 0x2d), QColor(0x4e, 0x8f, 0x4e)};
    return colours[series % std::size(colours)];
}

// A round step giving about `ticks` intervals over `range`.
double tickStep(double range, int ticks)
{
    if (range <= 0)
        return 1;
    const double rough = range / ticks;
    const double power = std::pow(10.0, std::floor(std::log10(rough)));
    for (const double factor : {1.0, 2.0, 2.5, 5.0})
        if (rough <= factor * power)
            return factor * power;
    return 10 * power;
}

// As many decimals as the step needs.
QString tickLabel(double value, double step)
{
    const int decimals = step >= 1 ? 0 : int(std::ceil(-std::log10(step) - 1e-9));
    return shownCell(ReportTable::Kind::Number, QString::number(value, 'f', decimals));
}

} // namespace

void setChartPainter(ChartPainter painter)
{
    const QMutexLocker locked(&painterLock);
    registeredPainter() = std::move(painter);
}

void paintChart(const ReportChart &chart, QPainter &painter, const QRectF &area)
{
    ChartPainter registered;
    {
        const QMutexLocker locked(&painterLock);
        registered = registeredPainter();
    }
    painter.save();
    if (registered)
        registered(chart, painter, area);
    else
        paintBarChart(chart, painter, area);
    painter.restore();
}

void paintBarChart(const ReportChart &chart, QPainter &painter, const QRectF &area)
{
    painter.setPen(Qt::black);
    painter.setFont(reportFont(titleSize, true, painter.device()));
    const QFontMetricsF titleMetrics(painter.font(), painter.device());
    qreal top = area.top() + titleMetrics.ascent();
    painter.drawText(QPointF(area.center().x() - titleMetrics.horizontalAdvance(chart.title) / 2, top), chart.title);
    top += titleMetrics.descent() + 8;

    painter.setFont(reportFont(labelSize, false, painter.device()));
    const QFontMetricsF metrics(painter.font(), painter.device());
    // The legend, in one line.
    qreal x = area.left();
    for (std::size_t s = 0; s < chart.seriesNames.size(); ++s) {
        painter.fillRect(QRectF(x, top, 8, 8), seriesColour(s));
        painter.drawText(QPointF(x + 11, top + 8), chart.seriesNames[s]);
        x += 11 + metrics.horizontalAdvance(chart.seriesNames[s]) + 16;
    }
    top += 8 + 10;

    double low = 0;
    double high = 0;
    for (const auto &values : chart.series)
        for (const double value : values) {
            low = std::min(low, value);
            high = std::max(high, value);
        }
    const double step = tickStep(high - low, 6);
    low = std::floor(low / step) * step;
    high = std::max(low + step, std::ceil(high / step) * step);

    qreal labelWidth = 0;
    for (double tick = low; tick <= high + step / 2; tick += step)
        labelWidth = std::max(labelWidth, metrics.horizontalAdvance(tickLabel(tick, step)));
    const qreal labelLines = 3;
    const QRectF plot(area.left() + labelWidth + 6, top, area.width() - labelWidth - 6,
                      area.bottom() - top - metrics.lineSpacing() * labelLines - 4);
    if (plot.width() <= 0 || plot.height() <= 0)
        return;
    const auto yOf = [&](double value) { return plot.bottom() - (value - low) / (high - low) * plot.height(); };

    painter.setPen(QPen(QColor(0xd0, 0xd0, 0xd0), 0.5));
    for (double tick = low; tick <= high + step / 2; tick += step) {
        const qreal y = yOf(tick);
        painter.drawLine(QPointF(plot.left(), y), QPointF(plot.right(), y));
        const QString label = tickLabel(tick, step);
        painter.save();
        painter.setPen(Qt::black);
        painter.drawText(QPointF(plot.left() - 4 - metrics.horizontalAdvance(label), y + metrics.ascent() / 2), label);
        painter.restore();
    }

    const std::size_t categories = std::size_t(chart.categories.size());
    const std::size_t seriesCount = std::max<std::size_t>(chart.series.size(), 1);
    if (categories > 0) {
        const qreal slot = plot.width() / qreal(categories);
        const qreal bar = slot * 0.8 / qreal(seriesCount);
        for (std::size_t c = 0; c < categories; ++c) {
            const qreal slotLeft = plot.left() + slot * qreal(c);
            for (std::size_t s = 0; s < chart.series.size(); ++s) {
                const double value = c < chart.series[s].size() ? chart.series[s][c] : 0;
                const qreal from = yOf(0);
                const qreal to = yOf(value);
                painter.fillRect(QRectF(slotLeft + slot * 0.1 + bar * qreal(s), std::min(from, to), bar,
                                        std::abs(from - to)),
                                 seriesColour(s));
            }
            painter.setPen(Qt::black);
            const QStringList lines = wrappedLines(chart.categories[qsizetype(c)], metrics, slot - 2);
            for (qsizetype l = 0; l < std::min<qsizetype>(lines.size(), qsizetype(labelLines)); ++l) {
                const QString line = metrics.elidedText(lines[l], Qt::ElideRight, slot - 2);
                painter.drawText(QPointF(slotLeft + (slot - metrics.horizontalAdvance(line)) / 2,
                                         plot.bottom() + 4 + metrics.ascent() + metrics.lineSpacing() * qreal(l)),
                                 line);
            }
        }
    }
    painter.setPen(QPen(Qt::black, 0.75));
    painter.drawLine(QPointF(plot.left(), yOf(0)), QPointF(plot.right(), yOf(0)));
    painter.drawLine(plot.topLeft(), plot.bottomLeft());
}
