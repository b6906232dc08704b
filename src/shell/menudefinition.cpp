#include "menudefinition.h"

#include "mdiparent.h"
#include "systemparameters.h"

#include <QCoreApplication>
#include <QMdiArea>

namespace {

// What an item does: a frame operation, or a task of the frame's by name.
struct Runs {
    std::optional<MenuTask> task;
    std::function<void(mdiParent &)> action;
};

MenuEntry item(const char *name, const char *caption, const char *parent, Runs runs = {})
{
    return {QLatin1String(name), QLatin1String(caption), QLatin1String(parent), std::move(runs.task),
            std::move(runs.action)};
}

MenuEntry separator(const char *name, const char *parent)
{
    return {QLatin1String(name), QString(), QLatin1String(parent), std::nullopt, {}};
}

Runs does(std::function<void(mdiParent &)> action)
{
    return {std::nullopt, std::move(action)};
}

Runs runs(TaskKind kind, const char *task, std::function<void(mdiParent &, const QString &)> run)
{
    const QString name = QLatin1String(task);
    return {MenuTask{kind, name}, [name, run = std::move(run)](mdiParent &frame) { run(frame, name); }};
}

Runs modal(const char *worker)
{
    return runs(TaskKind::Modal, worker, [](mdiParent &frame, const QString &name) { frame.RunModalWorker(name); });
}

Runs child(const char *worker)
{
    return runs(TaskKind::Child, worker, [](mdiParent &frame, const QString &name) { frame.OpenChildWorker(name); });
}

Runs report(const char *name, const char *type = "")
{
    return runs(TaskKind::Report, name,
                [type](mdiParent &frame, const QString &report) { frame.RunReport(report, QLatin1String(type)); });
}

std::vector<MenuEntry> build()
{
    return {
        item("mnuFile", "&File", ""),
        item("mnuFileProposedBudget", "Proposed &Budget", "mnuFile",
             runs(TaskKind::Modal, "workerEditGrid",
                  [](mdiParent &frame, const QString &name) {
                      QCoreApplication::processEvents();
                      frame.RunModalWorker(name, {{QStringLiteral("DisplayType"), QStringLiteral("PB")},
                                                  {QStringLiteral("LedgerID"), QString()},
                                                  {QStringLiteral("FundID"), QString()}});
                  })),
        separator("mnuFileSep1", "mnuFile"),
        item("mnuFilePrint", "&Print...", "mnuFile", does([](mdiParent &frame) { frame.FilePrint(); })),
        item("mnuFilePrinterSetup", "Printer &Setup...", "mnuFile",
             does([](mdiParent &frame) { frame.PrinterSetup(); })),
        separator("mnuFileSep2", "mnuFile"),
        item("mnuFileExit", "E&xit", "mnuFile", does([](mdiParent &frame) { frame.close(); })),
        item("mnuEdit", "&Edit", ""),
        item("mnuBudgetAccountCodes", "&Account Codes", "mnuEdit", modal("workerEditAccountCodes")),
        item("mnuReports", "&Reports", ""),
        item("mnuReportBudgetStatus", "&Budget Status", "mnuReports", report("StatusReport", "E")),
        item("mnuReportHistorical", "&Historical Comparison", "mnuReports", report("HistoricalComparison")),
        item("mnuReportsExpenditureVsBudget", "&Expenditure vs Budget", "mnuReports", report("VersusBudget", "E")),
        separator("mnuReportsSep2", "mnuReports"),
        item("mnuReportRevenueStatus", "Revenue &Status", "mnuReports", report("StatusReport", "R")),
        item("mnuReportRevenueVsBudget", "&Revenue vs Budget", "mnuReports", report("VersusBudget", "R")),
        separator("mnuReportsSep4", "mnuReports"),
        item("mnuReportTax", "&Analysis of tax Revenue", "mnuReports", report("TaxRevenue")),
        separator("mnuReportsSep5", "mnuReports"),
        item("mnuReportsGenerator", "Report &Generator", "mnuReports", child("workerReportGenerator")),
        separator("mnuReportsSep6", "mnuReports"),
        item("mnuReportsCustomerState", "Custom &State", "mnuReports"), // present, handled nowhere
        item("mnuReportsPublicBudget", "&Public Budget", "mnuReports", report("PublicBudget")),
        item("mnuReportCharts", "&Charts", "mnuReports"),
        item("mnuChartsRevenue", "Revenue", "mnuReportCharts", report("Chart", "R")),
        item("mnuChartsExpenditure", "Expenditure", "mnuReportCharts", report("Chart", "E")),
        item("mnuMaintenance", "&Maintenance", ""),
        // The organisation record is opened before its dialog; a file that
        // cannot be opened is reported and no dialog runs.
        item("mnuMaintOrganization", "&Organization", "mnuMaintenance",
             runs(TaskKind::Modal, "workerSysParams",
                  [](mdiParent &frame, const QString &name) {
                      if (openSystemParameters())
                          frame.RunModalWorker(name);
                  })),
        item("mnuMaintProposal", "&Proposal", "mnuMaintenance", modal("workerProposal")),
        item("mnuMaintAccountCodes", "&Account Codes", "mnuMaintenance", child("workerAccountCodes")),
        item("mnuMaintTaxRate", "&Tax Rate", "mnuMaintenance"),
        item("mnuMaintFundBalances", "&Fund Balances", "mnuMaintenance", modal("workerFundBalances")),
        item("mnuMaintEqualDistricts", "&Equalization Districts", "mnuMaintenance", modal("workerEqualization")),
        item("mnuUtilities", "&Utilities", ""),
        // Opened like a child task, by name, but run as a modal one.
        item("mnuInitializeBudget", "Initialize &Budget", "mnuUtilities",
             runs(TaskKind::Modal, "workerInitBudget",
                  [](mdiParent &frame, const QString &name) {
                      if (frame.IsFormLoaded(name))
                          frame.ShowWorker(name);
                      else
                          frame.RunModalWorker(name);
                  })),
        item("mnuChooseProposal", "&Change Active Proposal", "mnuUtilities", modal("workerSelectProposal")),
        item("mnuUtilitiesAuditTrail", "Audit &Trail", "mnuUtilities", child("workerAuditTrail")),
        item("mnuWindow", "&Window", ""),
        item("mnuRefresh", "&Refresh", "mnuWindow"),
        separator("mnuWindowSep1", "mnuWindow"),
        item("mnuWindowTileHorizontally", "Tile &Horizontally", "mnuWindow",
             does([](mdiParent &frame) { frame.TileHorizontally(); })),
        item("mnuWindowTileVertically", "Tile &Vertically", "mnuWindow",
             does([](mdiParent &frame) { frame.TileVertically(); })),
        item("mnuWindowCascade", "&Cascade", "mnuWindow",
             does([](mdiParent &frame) { frame.Area().cascadeSubWindows(); })),
        item("mnuWindowArrangeIcons", "&Arrange Icons", "mnuWindow",
             does([](mdiParent &frame) { frame.ArrangeIcons(); })),
        item("mnuHelp", "&Help", ""),
        item("mnuHelpAbout", "&About...", "mnuHelp", does([](mdiParent &frame) { frame.ShowAbout(); })),
    };
}

} // namespace

const std::vector<MenuEntry> &frameMenu()
{
    static const std::vector<MenuEntry> menu = build();
    return menu;
}
