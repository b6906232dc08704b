#include "chartpainter.h"

#include "guiapplication.h"
#include "reportdocument.h"

#include <QImage>
#include <QPainter>

#include <gtest/gtest.h>

namespace {

// Pixels close to a colour, inside and outside a rectangle.
struct ColourCount {
    int inside = 0;
    int outside = 0;
};

ColourCount countColour(const QImage &image, const QRect &rect, QColor colour)
{
    ColourCount count;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor pixel = image.pixelColor(x, y);
            const bool near = std::abs(pixel.red() - colour.red()) < 8 && std::abs(pixel.green() - colour.green()) < 8 &&
                              std::abs(pixel.blue() - colour.blue()) < 8;
            if (near)
                ++(rect.contains(x, y) ? count.inside : count.outside);
        }
    }
    return count;
}

TEST(ChartPainterTest, DrawsEachSeriesAsBarsInsideItsRectangleOnly)
{
    guiApplication();
    ReportChart chart;
    chart.title = "Proposed Budget by Function";
    chart.categories = {"General Support", "Instruction", "Transportation"};
    chart.seriesNames = {"Current Budget", "Proposed Budget"};
    chart.series = {{1'000'000, 1'000'000, 1'000'000}, {2'000'000, 2'000'000, 2'000'000}};

    QImage image(900, 700, QImage::Format_RGB32);
    image.fill(Qt::white);
    const QRect target(150, 120, 600, 450);
    {
        QPainter painter(&image);
        paintReportChart(chart, painter, target);
    }
    // The first two series colours of the painter.
    const ColourCount current = countColour(image, target, QColor(0x2f, 0x55, 0x97));
    const ColourCount proposed = countColour(image, target, QColor(0xc5, 0x8b, 0x2c));
    EXPECT_EQ(current.outside + proposed.outside, 0) << "nothing is drawn outside the chart's rectangle";
    EXPECT_GT(current.inside, 0);
    // Twice the amount, about twice the bar (the legend's swatches are the same size for both).
    EXPECT_GT(proposed.inside, current.inside * 3 / 2);
    EXPECT_LT(proposed.inside, current.inside * 5 / 2);
    for (int x = 0; x < image.width(); ++x)
        ASSERT_EQ(image.pixelColor(x, 10), QColor(Qt::white)) << "the area above the chart stays blank";

    ReportChart empty;
    QPainter painter(&image);
    paintReportChart(empty, painter, target); // no categories, no series: an empty chart, no failure
}

} // namespace
