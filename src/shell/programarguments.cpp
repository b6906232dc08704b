#include "programarguments.h"

#include "budgetdbconfig.h"

ProgramArguments parseProgramArguments(const QStringList &arguments)
{
    ProgramArguments result;
    result.startupTiming = qEnvironmentVariableIsSet("KORA_STARTUP_TIMING");
    result.configPath = BudgetDbConfig::resolvePath(arguments);
    QStringList words;
    for (qsizetype i = 1; i < arguments.size(); ++i) {
        const QString &argument = arguments[i];
        if (argument == QLatin1String("--config"))
            ++i; // its file follows
        else if (argument.startsWith(QLatin1String("--config=")))
            continue;
        else if (argument == QLatin1String("--startup-timing"))
            result.startupTiming = true;
        else
            words << argument;
    }
    result.commandLine = words.join(u' ');
    return result;
}
