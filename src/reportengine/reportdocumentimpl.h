#pragma once

#include "reportdocument.h"
#include "reportlayout.h"

// Shared by the run (which fills it) and the output side (which paints and writes it).
struct ReportDocument::Impl {
    QString title;
    ReportTable table;
    std::vector<ReportChart> charts;
    ReportPageSetup setup;
    std::unique_ptr<ReportPages> pages;
};
