#include "programstart.h"

#include "budgetdbconfig.h"
#include "errobject.h"
#include "fundfieldvalue.h"
#include "messageservice.h"
#include "programarguments.h"
#include "programtasks.h"

std::optional<int> answerUsage(const ProgramArguments &arguments, QTextStream &out, QTextStream &err)
{
    if (arguments.help) {
        out << programUsage();
        return ProgramExit::Ok;
    }
    if (!arguments.problem.isEmpty() || arguments.commandLine.trimmed().isEmpty()) {
        if (!arguments.problem.isEmpty())
            err << arguments.problem << "\n\n";
        err << programUsage();
        return ProgramExit::Usage;
    }
    return std::nullopt;
}

ProgramStart startProgram(const ProgramArguments &arguments, std::function<void(formErrorDialog &)> errorDialogLoaded)
{
    ProgramStart result;
    QString configError;
    const std::optional<BudgetDbConfig> config = BudgetDbConfig::load(arguments.configPath, &configError);
    if (!config) {
        messages().messageBox({QLatin1String(applicationTitle), configError, MsgButtons::OK, MsgIcon::Critical});
        result.exitCode = ProgramExit::Failed;
        return result;
    }
    if (!config->fundCodePage.isEmpty())
        setFundCodePage(config->fundCodePage); // a name the configuration has already checked
    auto window = std::make_unique<ProgramWindow>();
    registerProgramTasks(window->frame);
    StartupSettings settings;
    settings.commandLine = arguments.commandLine;
    settings.config = *config;
    settings.errorDialogLoaded = std::move(errorDialogLoaded);
    if (!window->load.Load(settings)) {
        result.exitCode = ProgramExit::Failed;
        return result;
    }
    result.window = std::move(window);
    return result;
}
