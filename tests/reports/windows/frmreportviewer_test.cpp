#include "frmreportviewer.h"

#include "guiapplication.h"
#include "recordingmessages.h"
#include "reportpreview.h"

#include <QAction>
#include <QFile>
#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPagedPaintDevice>
#include <QPainter>
#include <QPointer>
#include <QPrinter>
#include <QPushButton>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

// Pages that say which of them were painted, and files that say what wrote them.
struct FakeLog {
    std::vector<int> painted;
    QStringList written;
    int paintedOnDevice = 0;
    QPageLayout::Orientation deviceOrientation = QPageLayout::Portrait;
};

class FakeReport final : public ViewedReport {
public:
    FakeReport(FakeLog &log, int pages, QPageLayout::Orientation orientation = QPageLayout::Portrait)
        : log_(log), pages_(pages),
          layout_(QPageSize(QPageSize::Letter), orientation, QMarginsF(36, 36, 36, 36), QPageLayout::Point)
    {
    }
    QString failWith;

    QString title() const override { return QStringLiteral("Budget Status Report"); }
    QPageLayout pageLayout() const override { return layout_; }
    int pageCount() const override { return pages_; }
    void paintPage(int index, QPainter &painter) const override
    {
        log_.painted.push_back(index);
        painter.drawText(QPointF(0, 20), QStringLiteral("Page %1").arg(index + 1));
    }
    bool paint(QPagedPaintDevice &device, QString &error) const override
    {
        if (!failWith.isEmpty()) {
            error = failWith;
            return false;
        }
        log_.deviceOrientation = device.pageLayout().orientation();
        log_.paintedOnDevice = pages_;
        return true;
    }
    bool write(ReportFormat format, const QString &path, QString &error) const override
    {
        if (!failWith.isEmpty()) {
            error = failWith;
            return false;
        }
        log_.written << reportFormatSuffix(format) + ':' + path;
        return true;
    }

private:
    FakeLog &log_;
    int pages_;
    QPageLayout layout_;
};

class ReportViewerTest : public ::testing::Test {
protected:
    GuiApplicationGuard app;
    ScopedMessages recorder;
    FakeLog log;
    std::unique_ptr<frmReportViewer> viewer = std::make_unique<frmReportViewer>();

    FakeReport &showReport(int pages, QPageLayout::Orientation orientation = QPageLayout::Portrait)
    {
        auto report = std::make_unique<FakeReport>(log, pages, orientation);
        FakeReport &shown = *report;
        viewer->resize(900, 700);
        viewer->show();
        viewer->showPages(std::move(report));
        viewer->Preview();
        return shown;
    }
    QAction &action(const char *name) { return *viewer->findChild<QAction *>(name); }
    QString label(const char *name) { return viewer->findChild<QLabel *>(name)->text(); }
    // The page the preview paints now.
    int paintedPage()
    {
        log.painted.clear();
        viewer->grab();
        return log.painted.empty() ? -1 : log.painted.back();
    }
};

TEST_F(ReportViewerTest, NavigatesThePagesAndPaintsTheOneShown)
{
    EXPECT_FALSE(action("actNext").isEnabled()) << "nothing to show yet";
    EXPECT_FALSE(action("actPrint").isEnabled());
    showReport(3);
    EXPECT_EQ(label("lblPage"), "Page 1 of 3");
    EXPECT_EQ(paintedPage(), 0);
    EXPECT_FALSE(action("actFirst").isEnabled());
    EXPECT_FALSE(action("actPrevious").isEnabled());
    action("actNext").trigger();
    EXPECT_EQ(label("lblPage"), "Page 2 of 3");
    EXPECT_EQ(paintedPage(), 1);
    EXPECT_TRUE(action("actPrevious").isEnabled());
    action("actLast").trigger();
    EXPECT_EQ(paintedPage(), 2);
    EXPECT_FALSE(action("actNext").isEnabled());
    EXPECT_FALSE(action("actLast").isEnabled());
    viewer->preview().setPage(7);
    EXPECT_EQ(viewer->preview().page(), 2) << "past the end stays on the last page";
    action("actFirst").trigger();
    EXPECT_EQ(paintedPage(), 0);
}

TEST_F(ReportViewerTest, ZoomsInStepsAndFitsTheWindow)
{
    showReport(2);
    ReportPreview &preview = viewer->preview();
    const int room = preview.viewport()->width() - 24;
    EXPECT_EQ(preview.fit(), ReportPreview::Fit::Width) << "a report opens fitted to the width";
    EXPECT_NEAR(preview.pageSize().width(), room, 1);

    action("actFitPage").trigger();
    EXPECT_LE(preview.pageSize().height(), preview.viewport()->height() - 24 + 1);
    EXPECT_LE(preview.pageSize().width(), room + 1);

    viewer->resize(1200, 1000);
    EXPECT_NEAR(preview.pageSize().height(), preview.viewport()->height() - 24, 1) << "the fit follows the window";

    preview.setZoom(1.0);
    action("actZoomIn").trigger();
    EXPECT_DOUBLE_EQ(preview.zoom(), 1.25);
    action("actZoomOut").trigger();
    action("actZoomOut").trigger();
    EXPECT_DOUBLE_EQ(preview.zoom(), 0.75);
    const QSize fixed = preview.pageSize();
    viewer->resize(700, 500);
    EXPECT_EQ(preview.pageSize(), fixed) << "a chosen zoom stays when the window changes";
    for (int i = 0; i < 12; ++i)
        action("actZoomIn").trigger();
    EXPECT_DOUBLE_EQ(preview.zoom(), ReportPreview::maxZoom);
    EXPECT_FALSE(action("actZoomIn").isEnabled());
    for (int i = 0; i < 12; ++i)
        action("actZoomOut").trigger();
    EXPECT_DOUBLE_EQ(preview.zoom(), ReportPreview::minZoom);
    EXPECT_FALSE(action("actZoomOut").isEnabled());
}

TEST_F(ReportViewerTest, ExportsInTheChosenFormatToTheNamedFile)
{
    FakeReport &report = showReport(2);
    QTemporaryDir dir;
    recorder->answerText(dir.filePath("status"));
    EXPECT_TRUE(viewer->Export(ReportFormat::Csv));
    recorder->answerText(dir.filePath("status.book.xlsx"));
    action("actExportXlsx").trigger();
    recorder->answerText(dir.filePath("status"));
    action("actExportPdf").trigger();
    EXPECT_EQ(log.written, (QStringList{"csv:" + dir.filePath("status.csv"), "xlsx:" + dir.filePath("status.book.xlsx"),
                                        "pdf:" + dir.filePath("status.pdf")}));
    recorder->answerText(std::nullopt);
    EXPECT_FALSE(viewer->Export(ReportFormat::Pdf)) << "cancelled";
    recorder->answerText(QString("  "));
    EXPECT_FALSE(viewer->Export(ReportFormat::Pdf)) << "no name";
    EXPECT_EQ(log.written.size(), 3);

    report.failWith = "No space left on device";
    recorder->clear();
    recorder->answerText(dir.filePath("full.pdf"));
    EXPECT_FALSE(viewer->Export(ReportFormat::Pdf));
    ASSERT_EQ(recorder->shown().size(), 2);
    EXPECT_EQ(recorder->shown()[1].message.text,
              "Cannot write " + dir.filePath("full.pdf") + ": No space left on device");
}

TEST_F(ReportViewerTest, PrintsInTheReportsOrientationWithTheCopiesTheDialogLeaves)
{
    FakeReport &report = showReport(4, QPageLayout::Landscape);
    QTemporaryDir dir;
    viewer->printer().setOutputFileName(dir.filePath("printed.pdf"));
    QPageLayout::Orientation offered = QPageLayout::Portrait;
    bool answer = false;
    viewer->setPrintConfirm([&](QPrinter &printer) {
        offered = printer.pageLayout().orientation();
        printer.setCopyCount(3);
        return answer;
    });
    EXPECT_FALSE(viewer->Print());
    EXPECT_EQ(offered, QPageLayout::Landscape) << "the dialog opens on the report's orientation";
    EXPECT_EQ(log.paintedOnDevice, 0) << "cancelled in the dialog";
    EXPECT_TRUE(recorder->shown().empty());

    answer = true;
    EXPECT_TRUE(viewer->Print());
    EXPECT_EQ(log.paintedOnDevice, 4);
    EXPECT_EQ(log.deviceOrientation, QPageLayout::Landscape);
    EXPECT_EQ(viewer->printer().copyCount(), 3);

    // Printing at once, as a report procedure does when the user chose Print.
    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFileName(dir.filePath("direct.pdf"));
    QString error;
    log.paintedOnDevice = 0;
    EXPECT_TRUE(printReport(report, printer, 2, error));
    EXPECT_EQ(printer.copyCount(), 2);
    EXPECT_EQ(log.paintedOnDevice, 4);

    report.failWith = "Printer out of paper";
    EXPECT_FALSE(viewer->Print());
    ASSERT_EQ(recorder->shown().size(), 1);
    EXPECT_EQ(recorder->shown()[0].message.text, "Cannot print Budget Status Report: Printer out of paper");
}

TEST_F(ReportViewerTest, WaitsWithProgressUntilDoneOrCancelled)
{
    QMdiArea area;
    area.resize(1000, 800);
    area.show();
    QPointer<frmReportViewer> window = viewer.release(); // the sub-window owns it now
    window->ShowForm(area);
    const auto lblWaitShown = [&] { return window->findChild<QLabel *>("lblWait")->isVisibleTo(window); };

    window->showPages(std::make_unique<FakeReport>(log, 3));
    window->Preview();
    ReportProgress progress = window->BeginWait();
    EXPECT_TRUE(lblWaitShown());
    EXPECT_FALSE(window->findChild<QAction *>("actPrint")->isEnabled());
    EXPECT_FALSE(window->findChild<QAction *>("actNext")->isEnabled());
    EXPECT_TRUE(progress(1, 10));
    window->findChild<QPushButton *>("cmdCancel")->click();
    EXPECT_FALSE(progress(2, 10)) << "Cancel stops the run at its next progress";
    EXPECT_TRUE(window->EndWait());
    EXPECT_FALSE(lblWaitShown());
    EXPECT_TRUE(window->findChild<QAction *>("actNext")->isEnabled());

    progress = window->BeginWait();
    EXPECT_TRUE(progress(1, 10)) << "a new wait starts uncancelled";
    area.subWindowList().front()->close();
    EXPECT_TRUE(window->isVisible()) << "the run still uses the window";
    EXPECT_FALSE(progress(2, 10));
    EXPECT_FALSE(window->EndWait());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(window.isNull()) << "closed once the run gave up";
    EXPECT_TRUE(area.subWindowList().isEmpty());
}

} // namespace
