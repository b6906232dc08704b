#include "documentreport.h"
#include "frmreportviewer.h"
#include "guiapplication.h"
#include "recordingmessages.h"
#include "reportlayout.h"
#include "reportpreview.h"

#include <QFile>
#include <QImage>
#include <QLabel>
#include <QMdiArea>
#include <QPainter>
#include <QPointer>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

using Kind = ReportTable::Kind;
using RowKind = ReportTable::RowKind;

std::shared_ptr<const ReportDocument> statusDocument(int folders, std::vector<ReportChart> charts = {})
{
    ReportTable table;
    table.headings = {"Account", "Description", "Revised\nBudget"};
    table.kinds = {Kind::Text, Kind::Text, Kind::Amount};
    table.widths = {12, 30, 14};
    for (int folder = 0; folder < folders; ++folder) {
        table.rows.push_back({RowKind::GroupHeader, 0, folder > 0, {QString("Folder %1").arg(folder), "", ""}});
        table.rows.push_back({RowKind::Detail, 1, false, {"A2110.150", "Teachers", "1234567.89"}});
    }
    ReportPageSetup setup;
    setup.title = "Budget Status Report";
    setup.district = "Sample School District";
    setup.orientation = PaperOrientation::Landscape;
    return ReportDocument::fromTable(std::move(table), std::move(charts), setup);
}

QByteArray fileStart(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.read(5) : QByteArray();
}

class DocumentViewerTest : public ::testing::Test {
protected:
    GuiApplicationGuard app;
    ScopedMessages recorder;
    QMdiArea area;
    QPointer<frmReportViewer> viewer = new frmReportViewer;

    void SetUp() override
    {
        area.resize(1000, 800);
        area.show();
        viewer->ShowForm(area);
    }
};

TEST_F(DocumentViewerTest, PreparesShowsAndExportsTheEnginesDocument)
{
    const auto document = statusDocument(3);
    std::vector<std::pair<int, int>> told;
    QString error;
    ASSERT_TRUE(viewer->Prepare(
        [&](const ReportProgress &progress, QString &) {
            for (int done = 1; done <= 3; ++done) {
                told.emplace_back(done, 3);
                progress(done, 3);
            }
            return document;
        },
        error));
    EXPECT_EQ(told.size(), 3u);
    EXPECT_EQ(viewer->Report(), document);
    EXPECT_EQ(viewer->windowTitle(), "Budget Status Report");
    EXPECT_EQ(viewer->preview().pageCount(), 3) << "each folder after the first starts a page";
    EXPECT_EQ(viewer->findChild<QLabel *>("lblPage")->text(), "Page 1 of 3");
    EXPECT_FALSE(viewer->findChild<QLabel *>("lblWait")->isVisibleTo(viewer));
    const QSize page = viewer->preview().pageSize();
    EXPECT_GT(page.width(), page.height()) << "the landscape page is shown landscape";

    QTemporaryDir dir;
    recorder->answerText(dir.filePath("status"));
    ASSERT_TRUE(viewer->Export(ReportFormat::Pdf));
    EXPECT_EQ(fileStart(dir.filePath("status.pdf")), "%PDF-");
    recorder->answerText(dir.filePath("status.xlsx"));
    ASSERT_TRUE(viewer->Export(ReportFormat::Xlsx));
    EXPECT_EQ(fileStart(dir.filePath("status.xlsx")).left(2), "PK") << "a workbook is a zip file";
}

TEST_F(DocumentViewerTest, ARunThatGivesNoReportClosesTheWindowWithItsMessage)
{
    QString error;
    EXPECT_FALSE(viewer->Prepare(
        [](const ReportProgress &, QString &why) {
            why = "BgtStat.rpt: no table SummaryTree";
            return nullptr;
        },
        error));
    EXPECT_EQ(error, "BgtStat.rpt: no table SummaryTree");
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(viewer.isNull());
}

TEST_F(DocumentViewerTest, RegisteredChartsAreDrawnByTheQtChartsPainter)
{
    ReportChart chart;
    chart.title = "Proposed Budget";
    chart.categories = {"General Support", "Instruction"};
    chart.seriesNames = {"Current Budget", "Proposed Budget"};
    chart.series = {{5'000'000, 30'000'000}, {5'500'000, 31'000'000}};
    const auto document = statusDocument(0, {chart});
    const auto paintedColour = [&](QColor colour) {
        QImage image(QSize(792, 612), QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        document->paintPage(0, painter);
        painter.end();
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                if (image.pixelColor(x, y) == colour)
                    return true;
        return false;
    };
    const QColor firstSeries(0x2f, 0x55, 0x97); // the Qt Charts painter's first series
    EXPECT_FALSE(paintedColour(firstSeries)) << "before registering the engine draws its own bars";
    registerChartPainter();
    EXPECT_TRUE(paintedColour(firstSeries));
    setChartPainter({});
}

} // namespace
