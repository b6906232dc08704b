#include "viewedreport.h"

#include <QPrinter>

bool printReport(const ViewedReport &report, QPrinter &printer, int copies, QString &error,
                 const std::function<bool(QPrinter &)> &confirm)
{
    error.clear();
    if (!printer.setPageLayout(report.pageLayout())) {
        error = QStringLiteral("The printer \"%1\" cannot take the report's page layout.").arg(printer.printerName());
        return false;
    }
    printer.setCopyCount(std::max(1, copies));
    printer.setDocName(report.title());
    if (confirm && !confirm(printer))
        return false;
    return report.paint(printer, error);
}

QString reportFormatSuffix(ReportFormat format)
{
    switch (format) {
    case ReportFormat::Pdf:
        return QStringLiteral("pdf");
    case ReportFormat::Csv:
        return QStringLiteral("csv");
    case ReportFormat::Xlsx:
        return QStringLiteral("xlsx");
    }
    return {};
}
