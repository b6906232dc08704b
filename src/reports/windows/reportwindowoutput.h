#pragma once

#include "modreports.h"
#include "reportdocument.h"

class QMdiArea;
class QPrinter;

// Where the program's reports go: the viewer window in the frame's area, or
// the frame's printer with the dialog's copies and the report's orientation.
class ReportWindowOutput final : public ReportOutput {
public:
    ReportWindowOutput(QMdiArea &area, QPrinter &printer, ReportSources sources);

    void Preview(std::unique_ptr<ReportDefinition> definition) override;
    void Print(std::unique_ptr<ReportDefinition> definition, int copies) override;

private:
    QMdiArea &area_;
    QPrinter &printer_;
    ReportSources sources_;
};
