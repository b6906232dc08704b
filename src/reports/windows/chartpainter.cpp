#include "chartpainter.h"

#include "reportchart.h"
#include "reportdocument.h"

#include <QApplication>
#include <QBarCategoryAxis>
#include <QBarSeries>
#include <QBarSet>
#include <QChart>
#include <QCoreApplication>
#include <QFontMetricsF>
#include <QGraphicsScene>
#include <QLocale>
#include <QPainter>
#include <QThread>
#include <QValueAxis>

#include <algorithm>

namespace {

// Series colours that stay apart in print and on a grey-scale copy.
const std::array<QColor, 4> seriesColours{QColor(0x2f, 0x55, 0x97), QColor(0xc5, 0x8b, 0x2c),
                                          QColor(0x5b, 0x9b, 0x5b), QColor(0x8c, 0x4a, 0x78)};

// The scene's units are the painter's (points on the paper), so fonts are
// sized in them rather than in the screen's points.
constexpr int titleSize = 11;
constexpr int labelSize = 8;

QFont sizedFont(int size, bool bold = false)
{
    QFont font;
    font.setPixelSize(size);
    font.setBold(bold);
    return font;
}

// The words of `text` on lines no wider than `width` where they can be, as
// the axis' rich text shows them.
QString wrapped(const QString &text, const QFontMetricsF &metrics, double width)
{
    QStringList lines;
    for (const QString &word : text.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        if (!lines.isEmpty() && metrics.horizontalAdvance(lines.back() + QLatin1Char(' ') + word) <= width)
            lines.back() += QLatin1Char(' ') + word;
        else
            lines << word;
    }
    for (QString &line : lines)
        line = line.toHtmlEscaped();
    return lines.join(QStringLiteral("<br>"));
}

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
    // Qt Charts draws through graphics items, which live only in a widget
    // application's own thread; anywhere else the engine's plain bars serve.
    auto *application = qobject_cast<QApplication *>(QCoreApplication::instance());
    if (!application || QThread::currentThread() != application->thread()) {
        paintBarChart(chart, painter, rect);
        return;
    }
    // The chart lives in a scene of its own, the size of the target rectangle
    // in the painter's units, and is rendered without any view.
    QGraphicsScene scene;
    auto *drawn = new QChart;
    scene.addItem(drawn);
    drawn->setGeometry(QRectF(QPointF(0, 0), rect.size()));
    drawn->setBackgroundVisible(false);
    drawn->setDropShadowEnabled(false);
    drawn->setTitle(chart.title);
    drawn->setTitleFont(sizedFont(titleSize, true));

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
    categories->setLabelsFont(sizedFont(labelSize));
    categories->append(chart.categories);
    drawn->addAxis(categories, Qt::AlignBottom);
    series->attachAxis(categories);
    auto *amounts = new QValueAxis;
    amounts->setRange(0, std::max(1.0, largestValue(chart)) * 1.05);
    amounts->applyNiceNumbers();
    amounts->setTitleText(QStringLiteral("Dollars"));
    amounts->setTitleFont(sizedFont(labelSize, true));
    amounts->setLabelsFont(sizedFont(labelSize));
    amounts->setLabelFormat(QStringLiteral("%.0f"));
    drawn->addAxis(amounts, Qt::AlignLeft);
    series->attachAxis(amounts);
    drawn->legend()->setAlignment(Qt::AlignBottom);
    drawn->legend()->setFont(sizedFont(labelSize));
    // Amounts of a budget run to millions: labels with thousands separators.
    drawn->setLocale(QLocale(QLocale::English, QLocale::UnitedStates));
    drawn->setLocalizeNumbers(true);

    // The chart lays itself out on posted events; they are delivered now, as
    // no event loop runs for it. Folder names are long: once the plot's width
    // is known they wrap onto lines as wide as a group of bars.
    QCoreApplication::sendPostedEvents(drawn);
    if (!chart.categories.isEmpty()) {
        const double slot = drawn->plotArea().width() / chart.categories.size();
        const QFontMetricsF metrics(categories->labelsFont());
        QStringList labels;
        for (const QString &category : chart.categories)
            labels << wrapped(category, metrics, slot * 0.75);
        categories->setCategories(labels);
        QCoreApplication::sendPostedEvents(drawn);
    }
    scene.setSceneRect(drawn->geometry());
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    scene.render(&painter, rect, scene.sceneRect(), Qt::IgnoreAspectRatio);
    painter.restore();
}
