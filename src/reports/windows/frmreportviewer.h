#pragma once

#include "reportdocument.h"
#include "viewedreport.h"

#include <QWidget>

#include <functional>
#include <memory>

class QAction;
class QLabel;
class QMdiArea;
class QPrinter;
class QProgressBar;
class QPushButton;
class QStackedWidget;
class QToolBar;
class ReportPreview;

// The report viewer, a child window of the frame: the preview of one report
// (page navigation, zoom, fit to width or page), Print and Export to PDF,
// CSV and XLSX. While the report is prepared it shows lblWait with the
// progress and a Cancel button instead.
class frmReportViewer : public QWidget {
    Q_OBJECT
public:
    explicit frmReportViewer(QWidget *parent = nullptr);
    ~frmReportViewer() override;

    // The engine's document shown; null when none is.
    std::shared_ptr<const ReportDocument> Report() const { return document_; }
    void setReport(std::shared_ptr<const ReportDocument> document);
    // Shows pages of any kind (the document's, or a test's); null shows none.
    void showPages(std::unique_ptr<ViewedReport> report);
    // Puts the report on the screen: its first page, fitted to the window's width.
    void Preview();

    // Inside the frame's area, most of its size.
    void ShowForm(QMdiArea &area);

    // The document's run: given the progress to report to, gives the document
    // or null with `error` set.
    using ReportRun =
        std::function<std::shared_ptr<const ReportDocument>(const ReportProgress &progress, QString &error)>;
    // Runs the report with lblWait up, then previews it. False with `error`
    // when no report came (the run's message, or "Cancelled."); the window
    // then closes, as it does when the user closed it meanwhile.
    bool Prepare(const ReportRun &run, QString &error);
    // Shows lblWait with the progress and Cancel; the progress it returns
    // keeps the window answering and says stop once Cancel was pressed or
    // the window was asked to close.
    ReportProgress BeginWait();
    // Hides lblWait; false (and the window closes) when the user closed it meanwhile.
    bool EndWait();
    bool Waiting() const { return waiting_; }
    bool Cancelled() const { return cancelled_; }

    ReportPreview &preview() const { return *preview_; }
    // Prints through the print dialog (copies, orientation, printer); false
    // when cancelled or failed (and said so).
    bool Print();
    // Asks for a file name and writes the report there; false when cancelled or failed (and said so).
    bool Export(ReportFormat format);

    // The printer Print starts from (the frame's, whose set-up the user chose); the viewer's own by default.
    void setPrinter(QPrinter &printer) { printer_ = &printer; }
    QPrinter &printer() const { return *printer_; }
    // The print dialog; returns false when the user cancels it. Tests answer it themselves.
    using PrintConfirm = std::function<bool(QPrinter &printer)>;
    void setPrintConfirm(PrintConfirm confirm) { confirm_ = std::move(confirm); }

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void buildToolbar();
    QAction *addTool(const char *name, const QString &text, const std::function<void()> &act);
    void updateActions();
    void closeWindow();

    std::shared_ptr<const ReportDocument> document_;
    std::unique_ptr<ViewedReport> report_;
    std::unique_ptr<QPrinter> ownPrinter_;
    QPrinter *printer_;
    PrintConfirm confirm_;
    QStackedWidget *stack_;
    ReportPreview *preview_;
    QWidget *waitPanel_;
    QLabel *lblWait_;
    QProgressBar *progress_;
    QPushButton *cancel_;
    QLabel *pageLabel_;
    QLabel *zoomLabel_;
    QLabel *statusLabel_;
    QToolBar *toolbar_;
    bool waiting_ = false;
    bool cancelled_ = false;
    bool closeAsked_ = false;
};
