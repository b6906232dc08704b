#include "frmreportviewer.h"
#include "guiapplication.h"
#include "modreports.h"
#include "appglobals.h"
#include "errobject.h"
#include "recordingmessages.h"
#include "reportdefinition.h"
#include "reportdemo.h"
#include "reportwindowoutput.h"
#include "selectiondialog.h"

#include <gtest/gtest.h>

#include <QFileInfo>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPrinter>
#include <QRegularExpression>

#include <deque>
#include <utility>

namespace {

// One confirmation of the dialog: the choices the user made in it.
struct Answer {
    int closeAction = 1;
    QString report;
    QString fund = "A";
    QString option;
    int records = 1;
    QString compareCode;
    bool preview = true;
    int copies = 1;
};

// The selection dialog as a script: records how it was filled, answers each
// ShowDialog with the next answer, and closes when the script runs out.
class ScriptedSelection final : public ReportSelection {
public:
    explicit ScriptedSelection(std::deque<Answer> answers, QStringList &log) : answers_(std::move(answers)), log_(log) {}

    void setOptionFundSelection(std::vector<FundEntry> funds) override
    {
        log_ << "funds " + QString::number(funds.size()) + (funds.empty() ? QString() : " first " + funds.front().id);
    }
    void setOptionTypeSelection(QStringList) override {}
    void setOptionOptionSelection(QStringList options) override { log_ << "options " + options.join('|'); }
    void setFrames(bool, int, int records, int orientation) override
    {
        log_ << QString("frames %1 %2").arg(records).arg(orientation);
    }
    void setCaption(const QString &caption) override { log_ << "caption " + caption; }
    void AddReport(const ReportRow &row) override
    {
        log_ << QString("row %1|%2|%3%4%5%6")
                    .arg(row.key, row.name)
                    .arg(row.previewFlag)
                    .arg(row.copiesFlag)
                    .arg(row.selectionFlag)
                    .arg(row.orientationFlag);
    }
    void ShowDialog() override
    {
        log_ << "show";
        current_ = answers_.empty() ? Answer{0} : answers_.front();
        if (!answers_.empty())
            answers_.pop_front();
    }
    int CloseAction() const override { return current_.closeAction; }
    QString SelectedReport() const override { return current_.report; }
    QString SelectedFundID() const override { return current_.fund; }
    QString SelectedType() const override { return "Detail"; }
    QString SelectedOption() const override { return current_.option; }
    int Records() const override { return current_.records; }
    QString CompareCode() const override { return current_.compareCode; }
    bool ShowPercent() const override { return false; }
    bool Preview() const override { return current_.preview; }
    int Copies() const override { return current_.copies; }
    int Orientation() const override { return 2; }

private:
    std::deque<Answer> answers_;
    QStringList &log_;
    Answer current_;
};

class RecordingOutput final : public ReportOutput {
public:
    explicit RecordingOutput(QStringList &log) : log_(log) {}
    void Preview(std::unique_ptr<ReportDefinition> definition) override { record("preview", *definition, 0); }
    void Print(std::unique_ptr<ReportDefinition> definition, int copies) override
    {
        record("print", *definition, copies);
    }

private:
    void record(const QString &how, ReportDefinition &definition, int copies)
    {
        QString entry = how + " " + QFileInfo(definition.path()).fileName();
        if (copies)
            entry += " x" + QString::number(copies);
        for (const ParameterField &field : definition.ParameterFields())
            if (field.Name == "RptOption" || field.Name == "CompareCode")
                entry += " " + field.Name + "=" + field.CurrentValue.toText();
        log_ << entry;
    }
    QStringList &log_;
};

class ReportProceduresTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(demo.problem().isEmpty()) << demo.problem().toStdString();
        clsErrObject::setLogFilePath(logFolder.filePath("Err.txt"));
    }
    void TearDown() override { clsErrObject::setLogFilePath(QString()); }

    modReports procedures(std::deque<Answer> answers)
    {
        ReportServices services;
        services.environment = demo.environment();
        services.listFunds = [](std::vector<FundEntry> &funds, QString &) {
            funds = {{"A", "General Fund"}, {"F", "Special Aid Fund"}};
            return true;
        };
        services.makeSelection = [this, answers]() -> std::unique_ptr<ReportSelection> {
            log << "dialog";
            return std::make_unique<ScriptedSelection>(answers, log);
        };
        services.output = std::make_shared<RecordingOutput>(log);
        return modReports(std::move(services));
    }

    QStringList outputs() const { return log.filter(QRegularExpression("^(preview|print) ")); }

    ReportDemo &demo = ReportDemo::get();
    ScopedMessages messages;
    QTemporaryDir logFolder;
    QStringList log;
};

} // namespace

TEST_F(ReportProceduresTest, TheStatusReportComesBackToTheDialogAfterEachRunUntilClosed)
{
    Answer preview{1, "Expenditure", "A", "Current Year Actual"};
    Answer print{1, "Expenditure", "A", "2 years Actual", 2, "A21", false, 3};
    procedures({preview, print}).PrintStatusReport("E");
    EXPECT_EQ(log.mid(0, 6), (QStringList{"dialog", "funds 2 first A", "options " + statusOptions().join('|'),
                                          "frames 1 2", "caption Budget Status Report", "row Expenditure|Expenditure|2112"}));
    EXPECT_EQ(outputs(), (QStringList{"preview BgtStat.rpt CompareCode= RptOption=4",
                                      "print BgtStat.rpt x3 CompareCode=A21 RptOption=1"}));
    EXPECT_EQ(log.count("show"), 3) << "the third showing was closed";

    log.clear();
    procedures({Answer{1, "Revenue", "A", "Current Year Projected"}}).PrintStatusReport("R");
    EXPECT_TRUE(log.contains("caption Revenue Status Report"));
    EXPECT_TRUE(log.contains("row Revenue|Revenue|2112"));
}

TEST_F(ReportProceduresTest, ClosingRunsNothingAndAFailedRunIsSaidThenTheDialogReturns)
{
    procedures({Answer{0}}).PrintVsProposedReport("R");
    EXPECT_TRUE(log.contains("caption Historical Comparison"));
    EXPECT_TRUE(log.contains("row Revenue|Revenue Vs Proposed Budget |2112"));
    EXPECT_TRUE(outputs().isEmpty());

    log.clear();
    Answer unknown{1, "Expenditure", "A", "Current Year Actual", 2, "ZZ9"};
    Answer blank{1, "Expenditure", "A", "Current Year Actual", 2, "   "};
    procedures({unknown, blank}).PrintStatusReport("E");
    ASSERT_EQ(messages->shown().size(), 1u);
    EXPECT_TRUE(messages->shown().front().message.text.contains("ZZ9") ||
                messages->shown().front().error.text.contains("ZZ9"));
    EXPECT_EQ(outputs(), QStringList{"preview BgtStat.rpt CompareCode= RptOption=4"});
}

TEST_F(ReportProceduresTest, TheTaxReportAndTheChartsGoStraightToTheViewer)
{
    procedures({}).PrintTaxRevenueReport();
    procedures({}).PrintChart("E");
    procedures({}).PrintChart("R");
    EXPECT_FALSE(log.contains("dialog"));
    EXPECT_EQ(outputs(), (QStringList{"preview TaxRev.rpt CompareCode=", "preview Chart.rpt", "preview Chart.rpt"}));
    EXPECT_TRUE(messages->shown().empty());
}

TEST_F(ReportProceduresTest, TheListingAndTheGeneratorOfferTheirOwnRowsAndFund)
{
    procedures({Answer{1, "Account Code Listing", "F"}}).PrintAccountCodeListing("F", "R", "T");
    EXPECT_TRUE(log.contains("funds 2 first F"));
    EXPECT_TRUE(log.contains("caption Account Codes"));
    EXPECT_TRUE(log.contains("row AccountCodeListing|Account Code Listing|2111"));
    EXPECT_EQ(outputs(), QStringList{"preview ActCodes.rpt"});

    log.clear();
    Recordset rows;
    ASSERT_TRUE(demo.db()->open("select ID, Name from Report order by ID", rows));
    const auto id = std::int32_t(rows.number("ID"));
    procedures({Answer{1, rows.text("Name"), "A"}}).PrintGeneratedReport(id);
    EXPECT_TRUE(log.contains("caption Report Generator"));
    EXPECT_TRUE(log.contains(QString("row %1|%2|2112").arg(id).arg(rows.text("Name"))));
    EXPECT_EQ(outputs(), QStringList{"preview RptGen.rpt CompareCode= RptOption="});

    log.clear();
    procedures({}).PrintGeneratedReport(id + 1000);
    EXPECT_FALSE(log.contains("dialog"));
    ASSERT_FALSE(messages->shown().empty());
    EXPECT_EQ(messages->shown().back().error.title, "Report Format");
}

TEST_F(ReportProceduresTest, TheProgramsOutputShowsTheViewerOrPrintsTheCopies)
{
    guiApplication();
    QMdiArea area;
    QPrinter printer;
    const QString pdf = logFolder.filePath("printed.pdf");
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(pdf);
    ReportWindowOutput output(area, printer, {demo.db().get(), demo.root()});
    ReportPreparation preparation(demo.environment());
    ASSERT_TRUE(preparation.readYears());
    ReportChoices choices;
    choices.fund = "A";
    choices.orientation = 2;
    output.Print(preparation.prepare(ReportKind::Historical, choices), 2);
    EXPECT_EQ(printer.copyCount(), 2);
    EXPECT_EQ(printer.pageLayout().orientation(), QPageLayout::Landscape);
    EXPECT_GT(QFileInfo(pdf).size(), 1000);

    output.Preview(preparation.prepare(ReportKind::TaxRevenue, choices));
    ASSERT_EQ(area.subWindowList().size(), 1);
    auto *viewer = qobject_cast<frmReportViewer *>(area.subWindowList().front()->widget());
    ASSERT_TRUE(viewer);
    ASSERT_TRUE(viewer->Report());
    EXPECT_EQ(viewer->Report()->title(), "Analysis of Tax Revenue");
    EXPECT_TRUE(messages->shown().empty());
}

TEST(SelectionDialogAdapter, FillsTheDialogAsTheProceduresAsk)
{
    guiApplication();
    const std::int16_t savedPreview = std::exchange(gintPrintPreview, std::int16_t(1));
    SelectionDialog dialog;
    dialog.setOptionFundSelection({{"A", "General Fund"}});
    dialog.setOptionOptionSelection(statusOptions());
    dialog.setFrames(true, 3, 2, 2);
    dialog.AddReport(reportRow(ReportKind::Status, "R"));
    EXPECT_TRUE(dialog.Preview());
    EXPECT_EQ(dialog.Copies(), 3);
    EXPECT_EQ(dialog.Records(), 2);
    EXPECT_EQ(dialog.Orientation(), 2);
    EXPECT_EQ(dialog.CloseAction(), 0);
    gintPrintPreview = savedPreview;
}
