#include "menudefinition.h"

#include "mdiparent.h"
#include "systemparameters.h"

#include <QCoreApplication>
#include <QMdiArea>

namespace {

MenuEntry item(const char *name, const char *caption, const char *parent, std::function<void(mdiParent &)> action = {})
{
    return {QLatin1String(name), QLatin1String(caption), QLatin1String(parent), std::move(action)};
}

MenuEntry separator(const char *name, const char *parent)
{
    return {QLatin1String(name), QString(), QLatin1String(parent), {}};
}

std::function<void(mdiParent &)> modal(const char *worker)
{
    return [worker](mdiParent &frame) { frame.RunModalWorker(QLatin1String(worker)); };
}

std::function<void(mdiParent &)> child(const char *worker)
{
    return [worker](mdiParent &frame) { frame.OpenChildWorker(QLatin1String(worker)); };
}

std::function<void(mdiParent &)> report(const char *name, const char *type = "")
{
    return [name, type](mdiParent &frame) { frame.RunReport(QLatin1String(name), QLatin1String(type)); };
}

std::vector<MenuEntry> build()
{
    return {
        item("mnuFile", "&File", ""),
        item("mnuFileProposedBudget", "Proposed &Budget", "mnuFile",
             [](mdiParent &frame) {
                 QCoreApplication::processEvents();
                 frame.RunModalWorker(QStringLiteral("workerEditGrid"),
                                      {{QStringLiteral("DisplayType"), QStringLiteral("PB")},
                                       {QStringLiteral("LedgerID"), QString()},
                                       {QStringLiteral("FundID"), QString()}});
             }),
        separator("mnuFileSep1", "mnuFile"),
        item("mnuFilePrint", "&Print...", "mnuFile", [](mdiParent &frame) { frame.FilePrint(); }),
        item("mnuFilePrinterSetup", "Printer &Setup...", "mnuFile", [](mdiParent &frame) { frame.PrinterSetup(); }),
        separator("mnuFileSep2", "mnuFile"),
        item("mnuFileExit", "E&xit", "mnuFile", [](mdiParent &frame) { frame.close(); }),
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
        // The worker's factory opens the system parameters first and gives
        // nothing when they cannot be read.
        item("mnuMaintOrganization", "&Organization", "mnuMaintenance",
             [](mdiParent &frame) {
                 if (openSystemParameters())
                     frame.RunModalWorker(QStringLiteral("workerSysParams"));
             }),
        item("mnuMaintProposal", "&Proposal", "mnuMaintenance", modal("workerProposal")),
        item("mnuMaintAccountCodes", "&Account Codes", "mnuMaintenance", child("workerAccountCodes")),
        item("mnuMaintTaxRate", "&Tax Rate", "mnuMaintenance"),
        item("mnuMaintFundBalances", "&Fund Balances", "mnuMaintenance", modal("workerFundBalances")),
        item("mnuMaintEqualDistricts", "&Equalization Districts", "mnuMaintenance", modal("workerEqualization")),
        item("mnuUtilities", "&Utilities", ""),
        item("mnuInitializeBudget", "Initialize &Budget", "mnuUtilities",
             [](mdiParent &frame) {
                 const QString name = QStringLiteral("workerInitBudget");
                 if (frame.IsFormLoaded(name))
                     frame.ShowWorker(name);
                 else
                     frame.RunModalWorker(name);
             }),
        item("mnuChooseProposal", "&Change Active Proposal", "mnuUtilities", modal("workerSelectProposal")),
        item("mnuWindow", "&Window", ""),
        item("mnuRefresh", "&Refresh", "mnuWindow"),
        separator("mnuWindowSep1", "mnuWindow"),
        item("mnuWindowTileHorizontally", "Tile &Horizontally", "mnuWindow",
             [](mdiParent &frame) { frame.TileHorizontally(); }),
        item("mnuWindowTileVertically", "Tile &Vertically", "mnuWindow",
             [](mdiParent &frame) { frame.TileVertically(); }),
        item("mnuWindowCascade", "&Cascade", "mnuWindow", [](mdiParent &frame) { frame.Area().cascadeSubWindows(); }),
        item("mnuWindowArrangeIcons", "&Arrange Icons", "mnuWindow", [](mdiParent &frame) { frame.ArrangeIcons(); }),
        item("mnuHelp", "&Help", ""),
        item("mnuHelpAbout", "&About...", "mnuHelp", [](mdiParent &frame) { frame.ShowAbout(); }),
    };
}

} // namespace

const std::vector<MenuEntry> &frameMenu()
{
    static const std::vector<MenuEntry> menu = build();
    return menu;
}
