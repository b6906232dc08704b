#include "chartpainter.h"

#include "reportdocument.h"

#include <QBarCategoryAxis>
#include <QBarSeries>
#include <QBarSet>
#include <QChart>
#include <QCoreApplication>
#include <QFontMetricsF>
#include <QGraphicsScene>
#include <QLocale>
#include <QPainter>
#include <QValueAxis>

#include <algorithm>

namespace {

// Series colours that stay apart in print and on a grey-scale copy.
const std::array<QColor, 4> seriesColours{QColor(0x2f, 0x55, 0x97), QColor(0xc5, 0x8b, 0x2c),
                                          QColor(0x5b, 0x9b, 0x5b), QColor(0x8c, 0x4a, 0x78)};

double largestValue(const ReportChart &chart)
{
    double largest = 0;
    for (const std::vector<double> &values : chart.series) {
        for (const double value : values)
            largest = std::max(largest, value);
    }
    return largest;
}

} // namespace

void paintReportChart(const ReportChart &chart, QPainter &painter, const QRectF &rect)
{
    if (rect.isEmpty())
        return;
    // The chart lives in a scene of its own, the size of the target rectangle
    // in the painter's units, and is rendered without any view.
    QGraphicsScene scene;
    auto *drawn = new QChart;
    scene.addItem(drawn);
    drawn->setGeometry(QRectF(QPointF(0, 0), rect.size()));
    drawn->setBackgroundVisible(false);
    drawn->setDropShadowEnabled(false);
    drawn->setTitle(chart.title);
    QFont titleFont = drawn->titleFont();
    titleFont.setBold(true);
    drawn->setTitleFont(titleFont);

    auto *series = new QBarSeries;
    for (std::size_t i = 0; i < chart.series.size(); ++i) {
        auto *set = new QBarSet(i < chart.seriesNames.size() ? chart.seriesNames[i] : QString());
        set->setColor(seriesColours[i % seriesColours.size()]);
        set->setBorderColor(seriesColours[i % seriesColours.size()].darker(130));
        for (int c = 0; c < chart.categories.size(); ++c) {
            const std::vector<double> &values = chart.series[i];
            *set << (std::size_t(c) < values.size() ? values[std::size_t(c)] : 0.0);
        }
        series->append(set);
    }
    drawn->addSeries(series);

    auto *categories = new QBarCategoryAxis;
    categories->append(chart.categories);
    // Folder names are long: when they do not fit under their bars they slant.
    const QFontMetricsF metrics(categories->labelsFont());
    double widest = 0;
    for (const QString &category : chart.categories)
        widest = std::max(widest, metrics.horizontalAdvance(category));
    if (!chart.categories.isEmpty() && widest > rect.width() * 0.75 / chart.categories.size())
        categories->setLabelsAngle(-40);
    drawn->addAxis(categories, Qt::AlignBottom);
    series->attachAxis(categories);
    auto *amounts = new QValueAxis;
    amounts->setRange(0, std::max(1.0, largestValue(chart)) * 1.05);
    amounts->applyNiceNumbers();
    amounts->setTitleText(QStringLiteral("Dollars"));
    amounts->setLabelFormat(QStringLiteral("%.0f"));
    drawn->addAxis(amounts, Qt::AlignLeft);
    series->attachAxis(amounts);
    drawn->legend()->setAlignment(Qt::AlignBottom);
    // Amounts of a budget run to millions: labels with thousands separators.
    drawn->setLocale(QLocale(QLocale::English, QLocale::UnitedStates));
    drawn->setLocalizeNumbers(true);

    // The chart lays itself out on posted events; they are delivered now, as no event loop runs for it.
    QCoreApplication::sendPostedEvents(drawn);
    scene.setSceneRect(drawn->geometry());
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    scene.render(&painter, rect, scene.sceneRect(), Qt::IgnoreAspectRatio);
    painter.restore();
}
