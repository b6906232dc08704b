#pragma once

#include "viewedreport.h"

#include <memory>

class ReportDocument;

// The engine's document as the viewer and the printer see it.
std::unique_ptr<ViewedReport> viewedReport(std::shared_ptr<const ReportDocument> document);

// Charts of every report are drawn on Qt Charts from here on; the program
// and the command line call it once at start-up.
void registerChartPainter();
