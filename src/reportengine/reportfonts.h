#pragma once

#include <QFont>
#include <QFontMetricsF>

class QPaintDevice;

// The one type face of every report. Sizes are in points of the painter's
// coordinates: a report is painted with its painter scaled to points, so the
// font is made for the device's resolution to come out at that size.
QFont reportFont(qreal points, bool bold, const QPaintDevice *device);

// A report font made for a device, with its metrics, made once for the many
// lines of a page.
struct DeviceFont {
    DeviceFont(qreal points, bool bold, const QPaintDevice *device)
        : font(reportFont(points, bold, device)), metrics(font, device)
    {
    }
    QFont font;
    QFontMetricsF metrics;
};

// Metrics in points, for laying out before any device exists.
QFontMetricsF pointMetrics(qreal points, bool bold);

// `text` broken at blanks into lines no wider than `width`; a word wider than
// the width stays whole on its own line.
QStringList wrappedLines(const QString &text, const QFontMetricsF &metrics, qreal width);
