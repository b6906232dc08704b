#include "programtasks.h"

#include "adoconnection.h"
#include "chartpainter.h"
#include "appglobals.h"
#include "codechooser.h"
#include "equalizationwindow.h"
#include "fundbalanceswindow.h"
#include "fundfiles.h"
#include "installationfunds.h"
#include "mdiparent.h"
#include "menusecurity.h"
#include "modmain.h"
#include "modreports.h"
#include "organizationwindow.h"
#include "reportwindowoutput.h"
#include "selectiondialog.h"
#include "systemparameters.h"
#include "workeraccountcodes.h"
#include "workeraudittrail.h"
#include "workereditaccountcodes.h"
#include "workereditgrid.h"
#include "workerinitbudget.h"
#include "workerproposal.h"
#include "workerreportgenerator.h"
#include "workerselectproposal.h"

// The one place where the program's tasks are plugged in. Each row is a task
// whose window is not written yet: its menu item tells the user so. A task
// that lands takes its row out and registers its factory in
// registerProgramTasks (registerModalWorker, registerChildWorker or
// registerReport) under the same name.
const std::vector<ProgramTask> &programTasks()
{
    static const std::vector<ProgramTask> tasks{};
    return tasks;
}

namespace {

std::shared_ptr<DbConnection> budgetDatabase()
{
    return gadoConnection->dbConnection();
}

// What the proposal windows say when another proposal becomes the current
// one: the status-bar panel's text, and the title's proposal name.
ProposalPanel proposalPanel(mdiParent &frame)
{
    return [&frame](const QString &text) {
        frame.Statusbar().setPanelText(QStringLiteral("Proposal"), text);
        frame.ShowProposal(ProposalName(gstrProposalID));
    };
}

// The report procedures as the frame runs them: the selection dialog over
// the frame, the viewer in its area, its printer; charts drawn by Qt Charts.
modReports reportProcedures(mdiParent &frame)
{
    setChartPainter(paintReportChart);
    ReportServices services;
    services.environment = ReportEnvironment::fromAppContext();
    services.listFunds = readInstallationFunds;
    services.makeSelection = [&frame] { return std::make_unique<SelectionDialog>(&frame); };
    services.output = std::make_shared<ReportWindowOutput>(frame.Area(), frame.Printer(),
                                                           ReportSources{budgetDatabase().get(), gstrRootPath});
    return modReports(std::move(services));
}

void registerReports(mdiParent &frame)
{
    frame.registerReport(QStringLiteral("StatusReport"),
                         [&frame](const QString &ledger) { reportProcedures(frame).PrintStatusReport(ledger); });
    frame.registerReport(QStringLiteral("HistoricalComparison"),
                         [&frame](const QString &) { reportProcedures(frame).PrintHistoricalReport(); });
    frame.registerReport(QStringLiteral("VersusBudget"),
                         [&frame](const QString &ledger) { reportProcedures(frame).PrintVsProposedReport(ledger); });
    frame.registerReport(QStringLiteral("TaxRevenue"),
                         [&frame](const QString &) { reportProcedures(frame).PrintTaxRevenueReport(); });
    frame.registerReport(QStringLiteral("PublicBudget"),
                         [&frame](const QString &) { reportProcedures(frame).PrintPublicBudgetReport(); });
    frame.registerReport(QStringLiteral("Chart"),
                         [&frame](const QString &ledger) { reportProcedures(frame).PrintChart(ledger); });
}
} // namespace

void registerProgramTasks(mdiParent &frame)
{
    for (const ProgramTask &task : programTasks())
        frame.registerUnavailable(task.kind, QLatin1String(task.name), QLatin1String(task.title));

    registerReports(frame);
    QWidget *const parent = &frame;
    frame.registerChildWorker(QStringLiteral("workerAccountCodes"), [&frame] {
        AccountCodesContext context;
        context.connection = budgetDatabase();
        context.listFunds = readInstallationFunds;
        context.chooseCodes = chooseWithQueryPopUp;
        // The budget entry grid in its account-editing display type.
        context.editAccountsInGrid = [&frame](const QString &fund, const QString &ledger) {
            frame.RunModalWorker(QStringLiteral("workerEditGrid"),
                                 {{QStringLiteral("DisplayType"), QStringLiteral("AC")},
                                  {QStringLiteral("FundID"), fund},
                                  {QStringLiteral("LedgerID"), ledger}});
        };
        context.printListing = [&frame](const QString &fund, const QString &ledger, const QString &node) {
            reportProcedures(frame).PrintAccountCodeListing(fund, ledger, node);
        };
        return std::make_unique<workerAccountCodes>(std::move(context));
    });
    frame.registerChildWorker(QStringLiteral("workerReportGenerator"), [&frame] {
        ReportGeneratorContext context;
        context.connection = budgetDatabase();
        context.listFunds = readInstallationFunds;
        context.printFormat = [&frame](std::int32_t formatId) { reportProcedures(frame).PrintGeneratedReport(formatId); };
        context.lockToolbar = LockToolbar;
        return std::make_unique<workerReportGenerator>(std::move(context));
    });
    frame.registerChildWorker(QStringLiteral("workerAuditTrail"),
                              [] { return std::make_unique<workerAuditTrail>(budgetDatabase()); });
    frame.registerModalWorker(QStringLiteral("workerEditGrid"), [](const mdiParent::EntryProperties &entry) {
        auto worker = std::make_unique<workerEditGrid>(budgetDatabase(), readInstallationFunds);
        worker->setDisplayType(entry.value(QStringLiteral("DisplayType")));
        worker->setFundID(entry.value(QStringLiteral("FundID")));
        worker->setLedgerID(entry.value(QStringLiteral("LedgerID")));
        return std::unique_ptr<ModalWorker>(std::move(worker));
    });
    frame.registerModalWorker(QStringLiteral("workerEditAccountCodes"), [](const mdiParent::EntryProperties &entry) {
        auto worker = workerEditAccountCodes::fromAppContext();
        worker->FundID = entry.value(QStringLiteral("FundID"));
        worker->LedgerID = entry.value(QStringLiteral("LedgerID"));
        return std::unique_ptr<ModalWorker>(std::move(worker));
    });
    frame.registerModalWorker(QStringLiteral("workerProposal"), [&frame](const mdiParent::EntryProperties &) {
        return std::make_unique<workerProposal>(budgetDatabase(), proposalPanel(frame), &frame);
    });
    frame.registerModalWorker(QStringLiteral("workerSelectProposal"), [&frame](const mdiParent::EntryProperties &) {
        return std::make_unique<workerSelectProposal>(budgetDatabase(), proposalPanel(frame), &frame);
    });
    frame.registerModalWorker(QStringLiteral("workerFundBalances"), [parent](const mdiParent::EntryProperties &) {
        return std::make_unique<workerFundBalances>(budgetDatabase(), gstrRootPath, gstrFundPath, parent);
    });
    frame.registerModalWorker(QStringLiteral("workerEqualization"), [parent](const mdiParent::EntryProperties &) {
        return std::make_unique<workerEqualization>(budgetDatabase(), parent);
    });
    // The ledger summaries of the latest fund-accounting year close the budget year.
    frame.registerModalWorker(QStringLiteral("workerInitBudget"), [parent](const mdiParent::EntryProperties &) {
        return std::make_unique<WorkerInitBudget>(
            budgetDatabase(), LedgerSummaryPlace{gstrRootPath, GetFundDataLocation(gstrFundYear.toInt())}, parent);
    });
    // The menu opens the organisation record before it asks for this task.
    frame.registerModalWorker(QStringLiteral("workerSysParams"), [parent](const mdiParent::EntryProperties &) {
        return std::make_unique<workerSysParams>(*systemParameters, parent);
    });
}
