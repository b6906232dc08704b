#include "classdialog.h"
#include "dialogworker.h"
#include "formabout.h"
#include "formcomplexsorting.h"
#include "formerrordialog.h"
#include "formerrorlog.h"
#include "frmreportviewer.h"
#include "mdichild.h"
#include "mdiparent.h"
#include "menudefinition.h"
#include "viewedreport.h"

#include "guiapplication.h"
#include "recordingmessages.h"

#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QPrinter>

#include <gtest/gtest.h>

namespace {

// A child task as the real ones behave: one mdiChild, brought forward on request.
class FakeChildWorker : public ChildWorker {
public:
    explicit FakeChildWorker(int &shows) : shows_(shows) {}
    void DoMDIChild(QMdiArea &area) override
    {
        child_ = new mdiChild; // owned by its sub-window once shown
        child_->setWindowTitle("Account Code Maintenance");
        connect(child_, &mdiChild::Command, this, [this](const QString &command) {
            commands << command;
            if (command == "_Unload")
                emit unloaded();
        });
        child_->ShowForm(area);
    }
    void ShowChild() override
    {
        ++shows_;
        child_->BringToFront();
    }
    QStringList commands;

private:
    int &shows_;
    QPointer<mdiChild> child_;
};

class FrameTest : public ::testing::Test {
protected:
    GuiApplicationGuard app;
    void SetUp() override { guiApplication(); }
    void click(const char *name)
    {
        QAction *item = frame.MenuItem(name);
        ASSERT_NE(item, nullptr) << name;
        item->trigger();
    }
    ScopedMessages shown;
    mdiParent frame;
};

TEST_F(FrameTest, TheMenuTreeHasEveryItemByName)
{
    const std::vector<std::pair<QString, QString>> expected{
        {"mnuFile", "&File"},
        {"mnuFileProposedBudget", "Proposed &Budget"},
        {"mnuFilePrint", "&Print..."},
        {"mnuFilePrinterSetup", "Printer &Setup..."},
        {"mnuFileExit", "E&xit"},
        {"mnuEdit", "&Edit"},
        {"mnuBudgetAccountCodes", "&Account Codes"},
        {"mnuReports", "&Reports"},
        {"mnuReportBudgetStatus", "&Budget Status"},
        {"mnuReportHistorical", "&Historical Comparison"},
        {"mnuReportsExpenditureVsBudget", "&Expenditure vs Budget"},
        {"mnuReportRevenueStatus", "Revenue &Status"},
        {"mnuReportRevenueVsBudget", "&Revenue vs Budget"},
        {"mnuReportTax", "&Analysis of tax Revenue"},
        {"mnuReportsGenerator", "Report &Generator"},
        {"mnuReportsCustomerState", "Custom &State"},
        {"mnuReportsPublicBudget", "&Public Budget"},
        {"mnuReportCharts", "&Charts"},
        {"mnuChartsRevenue", "Revenue"},
        {"mnuChartsExpenditure", "Expenditure"},
        {"mnuMaintenance", "&Maintenance"},
        {"mnuMaintOrganization", "&Organization"},
        {"mnuMaintProposal", "&Proposal"},
        {"mnuMaintAccountCodes", "&Account Codes"},
        {"mnuMaintTaxRate", "&Tax Rate"},
        {"mnuMaintFundBalances", "&Fund Balances"},
        {"mnuMaintEqualDistricts", "&Equalization Districts"},
        {"mnuUtilities", "&Utilities"},
        {"mnuInitializeBudget", "Initialize &Budget"},
        {"mnuChooseProposal", "&Change Active Proposal"},
        {"mnuUtilitiesAuditTrail", "Audit &Trail"},
        {"mnuWindow", "&Window"},
        {"mnuRefresh", "&Refresh"},
        {"mnuWindowTileHorizontally", "Tile &Horizontally"},
        {"mnuWindowTileVertically", "Tile &Vertically"},
        {"mnuWindowCascade", "&Cascade"},
        {"mnuWindowArrangeIcons", "&Arrange Icons"},
        {"mnuHelp", "&Help"},
        {"mnuHelpAbout", "&About..."},
    };
    for (const auto &[name, caption] : expected) {
        const QAction *item = frame.MenuItem(name);
        ASSERT_NE(item, nullptr) << name.toStdString();
        EXPECT_EQ(item->text(), caption) << name.toStdString();
    }
    for (const char *name : {"mnuFileSep1", "mnuFileSep2", "mnuReportsSep2", "mnuReportsSep4", "mnuReportsSep5",
                             "mnuReportsSep6", "mnuWindowSep1"}) {
        ASSERT_NE(frame.MenuItem(name), nullptr) << name;
        EXPECT_TRUE(frame.MenuItem(name)->isSeparator()) << name;
    }
    EXPECT_EQ(frame.MenuItems().size(), qsizetype(expected.size() + 7));

    // Items sit in their menus in order.
    const QMenu *file = frame.MenuItem("mnuFile")->menu();
    QStringList names;
    for (const QAction *a : file->actions())
        names << a->objectName();
    EXPECT_EQ(names, QStringList({"mnuFileProposedBudget", "mnuFileSep1", "mnuFilePrint", "mnuFilePrinterSetup",
                                  "mnuFileSep2", "mnuFileExit"}));
    ASSERT_NE(frame.MenuItem("mnuReportCharts")->menu(), nullptr);
    EXPECT_EQ(frame.MenuItem("mnuReportCharts")->menu()->actions().size(), 2);
    EXPECT_EQ(frame.FormType(), "Parent");
}

TEST_F(FrameTest, AChildTaskOpensOnceAndComesForward)
{
    int created = 0;
    int shows = 0;
    FakeChildWorker *worker = nullptr;
    frame.registerChildWorker("workerAccountCodes", [&] {
        ++created;
        auto made = std::make_unique<FakeChildWorker>(shows);
        worker = made.get();
        return made;
    });
    click("mnuMaintAccountCodes");
    click("mnuMaintAccountCodes");
    EXPECT_EQ(created, 1);
    EXPECT_EQ(shows, 1);
    EXPECT_EQ(frame.Area().subWindowList().size(), 1);
    EXPECT_TRUE(frame.IsFormLoaded("WORKERACCOUNTCODES"));

    // File > Print reaches the active child.
    frame.Area().setActiveSubWindow(frame.Area().subWindowList().first());
    click("mnuFilePrint");
    EXPECT_EQ(worker->commands, QStringList({"_Print"}));

    // Closing the window releases the task; the next click opens a new one.
    frame.Area().subWindowList().first()->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(frame.IsFormLoaded("workerAccountCodes"));
    click("mnuMaintAccountCodes");
    EXPECT_EQ(created, 2);
}

// One blank page, all a viewer needs to have something to print.
class BlankReport final : public ViewedReport {
public:
    QString title() const override { return QStringLiteral("Budget Status Report"); }
    QPageLayout pageLayout() const override
    {
        return QPageLayout(QPageSize(QPageSize::Letter), QPageLayout::Landscape, QMarginsF());
    }
    int pageCount() const override { return 1; }
    void paintPage(int, QPainter &) const override {}
    bool paint(QPagedPaintDevice &, QString &) const override { return true; }
    bool write(ReportFormat, const QString &, QString &) const override { return false; }
};

TEST_F(FrameTest, PrintWithoutAChildBeepsAndAReportViewerPrintsItsReport)
{
    click("mnuFilePrint");
    ASSERT_EQ(shown->shown().size(), 1u);
    EXPECT_EQ(shown->shown()[0].kind, RecordingMessages::Shown::Kind::Beep);

    auto *viewer = new frmReportViewer; // owned by its sub-window once shown
    viewer->ShowForm(frame.Area());
    viewer->showPages(std::make_unique<BlankReport>());
    QStringList printed;
    viewer->setPrintConfirm([&](QPrinter &) {
        printed << viewer->windowTitle();
        return false; // the print dialog cancelled: nothing reaches a printer
    });
    frame.Area().setActiveSubWindow(frame.Area().subWindowList().first());
    click("mnuFilePrint");
    EXPECT_EQ(printed, QStringList{"Budget Status Report"});
    EXPECT_EQ(shown->shown().size(), 1u) << "a viewer's report prints without a beep";
}

TEST_F(FrameTest, ATaskNotAvailableSaysSoAndItemsWithoutATaskAreDisabled)
{
    for (const char *name : {"mnuReportsCustomerState", "mnuMaintTaxRate", "mnuRefresh"})
        EXPECT_FALSE(frame.MenuItem(name)->isEnabled()) << name << " has nothing to do, so it cannot be clicked";
    for (const char *name : {"mnuWindowCascade", "mnuWindowTileVertically"})
        click(name);
    EXPECT_TRUE(shown->shown().empty());

    frame.registerUnavailable(TaskKind::Modal, "WORKERPROPOSAL", "Proposal maintenance");
    frame.registerUnavailable(TaskKind::Report, "TaxRevenue", "The tax revenue report");
    frame.registerUnavailable(TaskKind::Child, "workerReportGenerator", "The report generator");
    EXPECT_TRUE(frame.HasTask(TaskKind::Modal, "workerProposal"));
    EXPECT_FALSE(frame.HasTask(TaskKind::Child, "workerProposal")) << "the kind is part of the name";
    for (const char *name : {"mnuMaintProposal", "mnuReportTax", "mnuReportsGenerator", "mnuChooseProposal"})
        click(name);
    QStringList said;
    for (const auto &item : shown->shown())
        said << item.message.text;
    EXPECT_EQ(said,
              QStringList({"Proposal maintenance is not available yet.", "The tax revenue report is not available yet.",
                           "The report generator is not available yet.",
                           "No task named workerSelectProposal is registered."}));
    EXPECT_TRUE(frame.Area().subWindowList().isEmpty());
    EXPECT_FALSE(frame.IsFormLoaded("workerReportGenerator"));
}

TEST_F(FrameTest, ModalTasksAndReportsGetWhatTheMenuPasses)
{
    mdiParent::EntryProperties entry;
    int runs = 0;
    struct Modal : ModalWorker {
        explicit Modal(int &runs) : runs_(runs) {}
        void DoModalForm() override { ++runs_; }
        int &runs_;
    };
    frame.registerModalWorker("workerEditGrid", [&](const mdiParent::EntryProperties &e) {
        entry = e;
        return std::make_unique<Modal>(runs);
    });
    frame.registerModalWorker("workerSysParams", [](const mdiParent::EntryProperties &) {
        return std::unique_ptr<ModalWorker>(); // could not initialise: nothing runs
    });
    QStringList reports;
    frame.registerReport("StatusReport", [&](const QString &type) { reports << "Status " + type; });
    frame.registerReport("Chart", [&](const QString &type) { reports << "Chart " + type; });

    click("mnuFileProposedBudget");
    click("mnuMaintOrganization");
    click("mnuReportBudgetStatus");
    click("mnuReportRevenueStatus");
    click("mnuChartsExpenditure");
    EXPECT_EQ(runs, 1);
    EXPECT_EQ(entry.value("DisplayType"), "PB");
    EXPECT_TRUE(entry.contains("LedgerID") && entry.value("LedgerID").isEmpty());
    EXPECT_TRUE(entry.contains("FundID"));
    EXPECT_EQ(reports, QStringList({"Status E", "Status R", "Chart E"}));
}

TEST_F(FrameTest, WindowsTileAndCascade)
{
    for (const char *title : {"One", "Two"}) {
        auto *child = new mdiChild;
        child->setWindowTitle(title);
        child->ShowForm(frame.Area());
    }
    frame.resize(800, 600);
    frame.show();
    click("mnuWindowTileVertically");
    const auto windows = frame.Area().subWindowList();
    EXPECT_EQ(windows[0]->y(), windows[1]->y());
    EXPECT_LT(windows[0]->x() + windows[0]->width(), windows[1]->x() + 1);
    click("mnuWindowTileHorizontally");
    EXPECT_EQ(windows[0]->x(), windows[1]->x());
    EXPECT_LE(windows[0]->y() + windows[0]->height(), windows[1]->y());

    QMenu *windowMenu = frame.MenuItem("mnuWindow")->menu();
    emit windowMenu->aboutToShow();
    QStringList listed;
    for (const QAction *a : windowMenu->actions())
        listed << a->text();
    EXPECT_TRUE(listed.contains("&1 One"));
    EXPECT_TRUE(listed.contains("&2 Two"));
}

} // namespace

namespace {

class NoControls : public DialogWorker {
public:
    void FormBuild(classDialog &) override {}
};

TEST(DialogFrame, DialogsHaveACloseBoxButNoMinimiseMaximiseOrHelp)
{
    guiApplication();
    NoControls worker;
    classDialog runtime(worker);
    formAbout about;
    formErrorLog log;
    formErrorDialog error;
    formComplexSorting sorting;
    for (const QDialog *dialog : std::initializer_list<const QDialog *>{&runtime, &about, &log, &error, &sorting}) {
        const Qt::WindowFlags flags = dialog->windowFlags();
        const char *name = dialog->metaObject()->className();
        EXPECT_EQ(flags & Qt::WindowType_Mask, Qt::Dialog) << name;
        EXPECT_TRUE(flags.testFlag(Qt::CustomizeWindowHint)) << name;
        EXPECT_TRUE(flags.testFlag(Qt::WindowCloseButtonHint)) << name;
        EXPECT_FALSE(flags & (Qt::WindowMinimizeButtonHint | Qt::WindowMaximizeButtonHint)) << name;
        EXPECT_FALSE(flags.testFlag(Qt::WindowContextHelpButtonHint)) << name;
    }
}

} // namespace
