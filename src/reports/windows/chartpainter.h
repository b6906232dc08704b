#pragma once

#include <QRectF>

class QPainter;
struct ReportChart;

// Draws a report's chart into `rect` of the painter (any device: screen,
// printer, PDF) as grouped bars: one group per category, one bar per series,
// with a legend, built on Qt Charts.
void paintReportChart(const ReportChart &chart, QPainter &painter, const QRectF &rect);
