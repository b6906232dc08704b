#include "reportwindowoutput.h"

#include "frmreportviewer.h"
#include "messageservice.h"
#include "reportdefinition.h"

#include <QPrinter>

namespace {

void reportFailure(const ReportDefinition &definition, const QString &error)
{
    messages().errorDialog({1, definition.title(), error, false});
}

} // namespace

ReportWindowOutput::ReportWindowOutput(QMdiArea &area, QPrinter &printer, ReportSources sources)
    : area_(area), printer_(printer), sources_(sources)
{
}

void ReportWindowOutput::Preview(std::unique_ptr<ReportDefinition> definition)
{
    // The window belongs to the area once shown; it closes itself when the run fails.
    auto *viewer = new frmReportViewer;
    viewer->setPrinter(printer_);
    viewer->ShowForm(area_);
    const std::shared_ptr<const ReportDefinition> shared(std::move(definition));
    const ReportSources sources = sources_;
    QString error;
    const bool shown = viewer->Prepare(
        [shared, sources](const ReportProgress &progress, QString &why) -> std::shared_ptr<const ReportDocument> {
            return ReportDocument::run(*shared, sources, why, progress);
        },
        error);
    if (!shown && error != QLatin1String("Cancelled."))
        reportFailure(*shared, error);
}

void ReportWindowOutput::Print(std::unique_ptr<ReportDefinition> definition, int copies)
{
    QString error;
    const std::unique_ptr<ReportDocument> document = ReportDocument::run(*definition, sources_, error);
    if (!document) {
        reportFailure(*definition, error);
        return;
    }
    printer_.setCopyCount(copies);
    printer_.setPageOrientation(document->pageLayout().orientation());
    if (!document->paint(printer_, error))
        reportFailure(*definition, error);
}
