#pragma once

#include "reportdefinitiondata.h"

#include <QString>

#include <vector>

struct ParsedSubreport {
    QString name;
    ReportDefinitionData data; // its table in `main`, its formulas in `formulas`
};

// Reads the sections and keys of a definition file (docs/report-definitions.md)
// into data; formulas are kept as text for the checker. On failure `error`
// begins with `fileLabel` and the line.
bool parseReportDefinition(const QString &fileLabel, const QString &text, ReportDefinitionData &report,
                           std::vector<ParsedSubreport> &subreports, QString &error);
