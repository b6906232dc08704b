#pragma once

#include "reportdocument.h"

// Paints the chart into `area` (points) with the registered chart painter,
// or, when none is registered (a test, a tool without charts), as plain bars.
void paintChart(const ReportChart &chart, QPainter &painter, const QRectF &area);

// The plain bars: one group per category, one bar per series, a value axis
// with its zero line, and a legend.
void paintBarChart(const ReportChart &chart, QPainter &painter, const QRectF &area);
