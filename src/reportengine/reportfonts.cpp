#include "reportfonts.h"

#include <QImage>
#include <QPaintDevice>

namespace {

constexpr qreal pointsPerInch = 72;

// A device whose pixels are points.
const QImage &pointDevice()
{
    static const QImage image = [] {
        QImage made(1, 1, QImage::Format_RGB32);
        const int perMetre = qRound(pointsPerInch / 0.0254);
        made.setDotsPerMeterX(perMetre);
        made.setDotsPerMeterY(perMetre);
        return made;
    }();
    return image;
}

} // namespace

QFont reportFont(qreal points, bool bold, const QPaintDevice *device)
{
    QFont font(QStringLiteral("Helvetica"));
    font.setStyleHint(QFont::SansSerif);
    // Unhinted glyphs measure the same on every device, so what fits when
    // laid out fits when painted.
    font.setHintingPreference(QFont::PreferNoHinting);
    font.setBold(bold);
    const int dpi = device ? device->logicalDpiY() : int(pointsPerInch);
    font.setPointSizeF(points * pointsPerInch / dpi);
    return font;
}

QFontMetricsF pointMetrics(qreal points, bool bold)
{
    const QImage &device = pointDevice();
    return QFontMetricsF(reportFont(points, bold, &device), &device);
}

QStringList wrappedLines(const QString &text, const QFontMetricsF &metrics, qreal width)
{
    QStringList lines;
    QString line;
    for (const QString &word : text.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        const QString longer = line.isEmpty() ? word : line + QLatin1Char(' ') + word;
        if (!line.isEmpty() && metrics.horizontalAdvance(longer) > width) {
            lines << line;
            line = word;
        } else {
            line = longer;
        }
    }
    if (!line.isEmpty() || lines.isEmpty())
        lines << line;
    return lines;
}
