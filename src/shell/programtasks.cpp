#include "programtasks.h"

#include "mdiparent.h"

// The one place where the program's tasks are plugged in. Each row is a task
// whose window is not written yet: its menu item tells the user so. A task
// that lands takes its row out and registers its factory in
// registerProgramTasks (registerModalWorker, registerChildWorker or
// registerReport) under the same name.
const std::vector<ProgramTask> &programTasks()
{
    static const std::vector<ProgramTask> tasks{
        {TaskKind::Modal, "workerEditGrid", "Proposed budget entry"},
        {TaskKind::Modal, "workerEditAccountCodes", "Account code editing"},
        {TaskKind::Report, "StatusReport", "The status report"},
        {TaskKind::Report, "HistoricalComparison", "The historical comparison report"},
        {TaskKind::Report, "VersusBudget", "The versus-budget report"},
        {TaskKind::Report, "TaxRevenue", "The tax revenue report"},
        {TaskKind::Child, "workerReportGenerator", "The report generator"},
        {TaskKind::Report, "PublicBudget", "The public budget report"},
        {TaskKind::Report, "Chart", "Charts"},
        {TaskKind::Modal, "workerSysParams", "Organization maintenance"},
        {TaskKind::Modal, "workerProposal", "Proposal maintenance"},
        {TaskKind::Child, "workerAccountCodes", "Account code maintenance"},
        {TaskKind::Modal, "workerFundBalances", "Fund balance maintenance"},
        {TaskKind::Modal, "workerEqualization", "Equalization district maintenance"},
        {TaskKind::Modal, "workerInitBudget", "Budget year initialization"},
        {TaskKind::Modal, "workerSelectProposal", "Changing the active proposal"},
    };
    return tasks;
}

void registerProgramTasks(mdiParent &frame)
{
    for (const ProgramTask &task : programTasks())
        frame.registerUnavailable(task.kind, QLatin1String(task.name), QLatin1String(task.title));
}
