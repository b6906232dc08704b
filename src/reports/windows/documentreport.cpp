#include "documentreport.h"

#include "chartpainter.h"
#include "frmreportviewer.h"
#include "reportdocument.h"

namespace {

class DocumentReport final : public ViewedReport {
public:
    explicit DocumentReport(std::shared_ptr<const ReportDocument> document) : document_(std::move(document)) {}

    QString title() const override { return document_->title(); }
    QPageLayout pageLayout() const override { return document_->pageLayout(); }
    int pageCount() const override { return document_->pageCount(); }
    void paintPage(int index, QPainter &painter) const override { document_->paintPage(index, painter); }
    bool paint(QPagedPaintDevice &device, QString &error) const override { return document_->paint(device, error); }
    bool write(ReportFormat format, const QString &path, QString &error) const override
    {
        switch (format) {
        case ReportFormat::Pdf:
            return document_->writePdf(path, error);
        case ReportFormat::Csv:
            return document_->writeCsv(path, error);
        case ReportFormat::Xlsx:
            return document_->writeXlsx(path, error);
        }
        return false;
    }

private:
    std::shared_ptr<const ReportDocument> document_;
};

} // namespace

std::unique_ptr<ViewedReport> viewedReport(std::shared_ptr<const ReportDocument> document)
{
    return std::make_unique<DocumentReport>(std::move(document));
}

// The viewer's ties to the engine's document live here, so that the viewer
// itself shows any ViewedReport.
void frmReportViewer::setReport(std::shared_ptr<const ReportDocument> document)
{
    document_ = document;
    showPages(document ? viewedReport(std::move(document)) : nullptr);
}

bool frmReportViewer::Prepare(const ReportRun &run, QString &error)
{
    const ReportProgress progress = BeginWait();
    std::shared_ptr<const ReportDocument> document = run(progress, error);
    if (!EndWait()) {
        if (error.isEmpty())
            error = QStringLiteral("Cancelled.");
        return false;
    }
    if (!document) {
        closeWindow();
        return false;
    }
    setReport(std::move(document));
    Preview();
    return true;
}

void registerChartPainter()
{
    setChartPainter(paintReportChart);
}
