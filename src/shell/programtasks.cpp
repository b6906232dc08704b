#include "programtasks.h"

#include "adoconnection.h"
#include "appglobals.h"
#include "codechooser.h"
#include "equalizationwindow.h"
#include "fundbalanceswindow.h"
#include "fundfiles.h"
#include "installationfunds.h"
#include "mdiparent.h"
#include "menusecurity.h"
#include "messageservice.h"
#include "modmain.h"
#include "organizationwindow.h"
#include "systemparameters.h"
#include "workeraccountcodes.h"
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
    static const std::vector<ProgramTask> tasks{
        {TaskKind::Report, "StatusReport", "The status report"},
        {TaskKind::Report, "HistoricalComparison", "The historical comparison report"},
        {TaskKind::Report, "VersusBudget", "The versus-budget report"},
        {TaskKind::Report, "TaxRevenue", "The tax revenue report"},
        {TaskKind::Report, "PublicBudget", "The public budget report"},
        {TaskKind::Report, "Chart", "Charts"},
    };
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

// Stands in for the generator report's printing until that report is written.
void printGeneratedReportUntilWritten(std::int32_t)
{
    messages().messageBox(
        {QStringLiteral("Report Format"), QStringLiteral("The generator report is not available yet.")});
}
} // namespace

void registerProgramTasks(mdiParent &frame)
{
    for (const ProgramTask &task : programTasks())
        frame.registerUnavailable(task.kind, QLatin1String(task.name), QLatin1String(task.title));

    QWidget *const parent = &frame;
    frame.registerChildWorker(QStringLiteral("workerAccountCodes"), [&frame] {
        AccountCodesContext context;
        context.connection = budgetDatabase();
        context.listFunds = readInstallationFunds;
        context.chooseCodes = chooseWithQueryPopUp;
        // The budget entry grid in its account-editing display type.
        context.editAccountsInGrid = [&frame](const QString &fund, const QString &ledger) {
            frame.RunModalWorker(QStringLiteral("workerEditGrid"), {{QStringLiteral("DisplayType"), QStringLiteral("AC")},
                                                                    {QStringLiteral("FundID"), fund},
                                                                    {QStringLiteral("LedgerID"), ledger}});
        };
        return std::make_unique<workerAccountCodes>(std::move(context));
    });
    frame.registerChildWorker(QStringLiteral("workerReportGenerator"), [] {
        ReportGeneratorContext context;
        context.connection = budgetDatabase();
        context.listFunds = readInstallationFunds;
        context.printFormat = printGeneratedReportUntilWritten;
        context.lockToolbar = LockToolbar;
        return std::make_unique<workerReportGenerator>(std::move(context));
    });
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
