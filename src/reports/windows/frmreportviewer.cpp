#include "frmreportviewer.h"

#include "messageservice.h"
#include "reportpreview.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QPrintDialog>
#include <QPrinter>
#include <QProgressBar>
#include <QPushButton>
#include <QStackedWidget>
#include <QStyle>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>

namespace {

const QString exportTitle = QStringLiteral("Report Export");

QString formatFilter(ReportFormat format)
{
    switch (format) {
    case ReportFormat::Pdf:
        return QStringLiteral("PDF document (*.pdf)");
    case ReportFormat::Csv:
        return QStringLiteral("Comma separated values (*.csv)");
    case ReportFormat::Xlsx:
        return QStringLiteral("Excel workbook (*.xlsx)");
    }
    return {};
}

void showProblem(const QString &title, const QString &text)
{
    messages().messageBox({title, text, MsgButtons::OK, MsgIcon::Critical, MsgAnswer::OK});
}

} // namespace

frmReportViewer::frmReportViewer(QWidget *parent)
    : QWidget(parent), ownPrinter_(std::make_unique<QPrinter>(QPrinter::HighResolution)), printer_(ownPrinter_.get())
{
    setObjectName(QStringLiteral("frmReportViewer"));
    setWindowTitle(QStringLiteral("Report Viewer"));
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    toolbar_ = new QToolBar(this);
    toolbar_->setObjectName(QStringLiteral("tbrViewer"));
    layout->addWidget(toolbar_);

    stack_ = new QStackedWidget(this);
    preview_ = new ReportPreview(stack_);
    stack_->addWidget(preview_);
    waitPanel_ = new QWidget(stack_);
    auto *waitLayout = new QVBoxLayout(waitPanel_);
    waitLayout->addStretch();
    lblWait_ = new QLabel(QStringLiteral("Please wait while the report is prepared..."), waitPanel_);
    lblWait_->setObjectName(QStringLiteral("lblWait"));
    lblWait_->setAlignment(Qt::AlignCenter);
    waitLayout->addWidget(lblWait_);
    progress_ = new QProgressBar(waitPanel_);
    progress_->setObjectName(QStringLiteral("prgWait"));
    progress_->setRange(0, 0);
    progress_->setFixedWidth(360);
    waitLayout->addWidget(progress_, 0, Qt::AlignHCenter);
    cancel_ = new QPushButton(QStringLiteral("Cancel"), waitPanel_);
    cancel_->setObjectName(QStringLiteral("cmdCancel"));
    waitLayout->addWidget(cancel_, 0, Qt::AlignHCenter);
    waitLayout->addStretch();
    stack_->addWidget(waitPanel_);
    layout->addWidget(stack_, 1);
    connect(cancel_, &QPushButton::clicked, this, [this] {
        cancelled_ = true;
        cancel_->setEnabled(false);
        lblWait_->setText(QStringLiteral("Cancelling..."));
    });

    statusLabel_ = new QLabel(this);
    statusLabel_->setObjectName(QStringLiteral("lblStatus"));
    statusLabel_->setContentsMargins(6, 2, 6, 2);
    layout->addWidget(statusLabel_);

    confirm_ = [this](QPrinter &printer) {
        QPrintDialog dialog(&printer, this);
        return dialog.exec() == QDialog::Accepted;
    };
    buildToolbar();
    connect(preview_, &ReportPreview::pageChanged, this, &frmReportViewer::updateActions);
    connect(preview_, &ReportPreview::zoomChanged, this, &frmReportViewer::updateActions);
    updateActions();
}

frmReportViewer::~frmReportViewer()
{
    preview_->setReport(nullptr); // the preview must not paint pages that are going
}

QAction *frmReportViewer::addTool(const char *name, const QString &text, const std::function<void()> &act)
{
    auto *action = new QAction(text, this);
    action->setObjectName(QLatin1String(name));
    connect(action, &QAction::triggered, this, act);
    toolbar_->addAction(action);
    return action;
}

void frmReportViewer::buildToolbar()
{
    ReportPreview &view = *preview_;
    const auto icon = [this](QStyle::StandardPixmap pixmap) { return style()->standardIcon(pixmap); };
    addTool("actFirst", QStringLiteral("First Page"), [&view] { view.setPage(0); })
        ->setIcon(icon(QStyle::SP_MediaSkipBackward));
    addTool("actPrevious", QStringLiteral("Previous Page"), [&view] { view.setPage(view.page() - 1); })
        ->setIcon(icon(QStyle::SP_MediaSeekBackward));
    pageLabel_ = new QLabel(toolbar_);
    pageLabel_->setObjectName(QStringLiteral("lblPage"));
    pageLabel_->setContentsMargins(6, 0, 6, 0);
    pageLabel_->setAlignment(Qt::AlignCenter);
    pageLabel_->setMinimumWidth(pageLabel_->fontMetrics().horizontalAdvance(QStringLiteral("Page 0000 of 0000")) + 12);
    toolbar_->addWidget(pageLabel_);
    addTool("actNext", QStringLiteral("Next Page"), [&view] { view.setPage(view.page() + 1); })
        ->setIcon(icon(QStyle::SP_MediaSeekForward));
    addTool("actLast", QStringLiteral("Last Page"), [&view] { view.setPage(view.pageCount() - 1); })
        ->setIcon(icon(QStyle::SP_MediaSkipForward));
    toolbar_->addSeparator();
    addTool("actZoomOut", QStringLiteral("-"), [&view] { view.zoomOut(); })->setToolTip(QStringLiteral("Zoom Out"));
    zoomLabel_ = new QLabel(toolbar_);
    zoomLabel_->setObjectName(QStringLiteral("lblZoom"));
    zoomLabel_->setAlignment(Qt::AlignCenter);
    zoomLabel_->setMinimumWidth(zoomLabel_->fontMetrics().horizontalAdvance(QStringLiteral("0000%")));
    toolbar_->addWidget(zoomLabel_);
    addTool("actZoomIn", QStringLiteral("+"), [&view] { view.zoomIn(); })->setToolTip(QStringLiteral("Zoom In"));
    addTool("actFitWidth", QStringLiteral("Fit Width"), [&view] { view.setFit(ReportPreview::Fit::Width); });
    addTool("actFitPage", QStringLiteral("Fit Page"), [&view] { view.setFit(ReportPreview::Fit::Page); });
    toolbar_->addSeparator();
    addTool("actPrint", QStringLiteral("Print..."), [this] { Print(); });

    auto *exportButton = new QToolButton(toolbar_);
    exportButton->setObjectName(QStringLiteral("cmdExport"));
    exportButton->setText(QStringLiteral("Export"));
    exportButton->setPopupMode(QToolButton::InstantPopup);
    auto *menu = new QMenu(exportButton);
    const std::array<std::tuple<const char *, const char *, ReportFormat>, 3> formats{
        {{"actExportPdf", "PDF...", ReportFormat::Pdf},
         {"actExportCsv", "CSV...", ReportFormat::Csv},
         {"actExportXlsx", "Excel Workbook (XLSX)...", ReportFormat::Xlsx}}};
    for (const auto &[name, text, format] : formats) {
        QAction *action = menu->addAction(QLatin1String(text));
        action->setObjectName(QLatin1String(name));
        connect(action, &QAction::triggered, this, [this, format = format] { Export(format); });
    }
    exportButton->setMenu(menu);
    toolbar_->addWidget(exportButton);
}

void frmReportViewer::updateActions()
{
    const int count = preview_->pageCount();
    const int page = preview_->page();
    const bool shown = report_ && !waiting_;
    const auto enable = [this](const char *name, bool on) { findChild<QAction *>(QLatin1String(name))->setEnabled(on); };
    enable("actFirst", shown && page > 0);
    enable("actPrevious", shown && page > 0);
    enable("actNext", shown && page + 1 < count);
    enable("actLast", shown && page + 1 < count);
    enable("actZoomIn", shown && preview_->zoom() < ReportPreview::maxZoom);
    enable("actZoomOut", shown && preview_->zoom() > ReportPreview::minZoom);
    enable("actFitWidth", shown);
    enable("actFitPage", shown);
    enable("actPrint", shown);
    findChild<QToolButton *>(QStringLiteral("cmdExport"))->setEnabled(shown);
    pageLabel_->setText(shown && count ? QStringLiteral("Page %1 of %2").arg(page + 1).arg(count) : QString());
    zoomLabel_->setText(shown ? QStringLiteral("%1%").arg(qRound(preview_->zoom() * 100)) : QString());
}

void frmReportViewer::showPages(std::unique_ptr<ViewedReport> report)
{
    preview_->setReport(report.get());
    report_ = std::move(report);
    setWindowTitle(report_ ? report_->title() : QStringLiteral("Report Viewer"));
    updateActions();
}

void frmReportViewer::Preview()
{
    EndWait();
    stack_->setCurrentWidget(preview_);
    preview_->setPage(0);
    preview_->setFit(ReportPreview::Fit::Width);
    updateActions();
    preview_->setFocus();
}

void frmReportViewer::ShowForm(QMdiArea &area)
{
    QMdiSubWindow *sub = area.addSubWindow(this);
    sub->setAttribute(Qt::WA_DeleteOnClose);
    sub->setWindowIcon(style()->standardIcon(QStyle::SP_FileDialogContentsView));
    if (area.viewport()->width() > 0)
        sub->resize(area.viewport()->size() * 4 / 5);
    show();
    sub->show();
    area.setActiveSubWindow(sub);
}

ReportProgress frmReportViewer::BeginWait()
{
    waiting_ = true;
    cancelled_ = false;
    closeAsked_ = false;
    lblWait_->setText(QStringLiteral("Please wait while the report is prepared..."));
    progress_->setRange(0, 0);
    cancel_->setEnabled(true);
    stack_->setCurrentWidget(waitPanel_);
    updateActions();
    QApplication::processEvents();
    return [this](int done, int total) {
        if (total > 0) {
            progress_->setRange(0, total);
            progress_->setValue(std::clamp(done, 0, total));
        }
        // The user may press Cancel or close the window while the report runs.
        QApplication::processEvents();
        return !cancelled_;
    };
}

bool frmReportViewer::EndWait()
{
    if (!waiting_)
        return !closeAsked_;
    waiting_ = false;
    stack_->setCurrentWidget(preview_);
    updateActions();
    if (closeAsked_)
        closeWindow();
    return !closeAsked_;
}

bool frmReportViewer::Print()
{
    if (!report_)
        return false;
    QString error;
    if (printReport(*report_, *printer_, printer_->copyCount(), error, confirm_))
        return true;
    if (!error.isEmpty())
        showProblem(QStringLiteral("Print"), QStringLiteral("Cannot print ") + report_->title() +
                                                 QStringLiteral(": ") + error);
    return false;
}

bool frmReportViewer::Export(ReportFormat format)
{
    if (!report_)
        return false;
    const QString suffix = reportFormatSuffix(format);
    const auto answer = messages().saveFileName(
        {exportTitle, QStringLiteral("Please enter the file name for the report you want to export to! "),
         report_->title() + QLatin1Char('.') + suffix, {formatFilter(format)}});
    if (!answer || answer->path.trimmed().isEmpty())
        return false;
    QString path = answer->path.trimmed();
    if (QFileInfo(path).suffix().isEmpty())
        path += QLatin1Char('.') + suffix;
    QString error;
    if (!report_->write(format, path, error)) {
        showProblem(exportTitle, QStringLiteral("Cannot write ") + path + QStringLiteral(": ") + error);
        return false;
    }
    statusLabel_->setText(QStringLiteral("Exported to ") + QDir::toNativeSeparators(path));
    return true;
}

void frmReportViewer::closeWindow()
{
    // The sub-window closes its child first and goes only when the child does.
    if (auto *sub = qobject_cast<QMdiSubWindow *>(parentWidget()))
        sub->close();
    else
        close();
}

void frmReportViewer::closeEvent(QCloseEvent *event)
{
    // The run still uses the window: it stops at its next progress and the window closes then.
    if (waiting_) {
        cancelled_ = true;
        closeAsked_ = true;
        event->ignore();
        return;
    }
    event->accept();
}
