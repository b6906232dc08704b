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
        if (argument == QLatin1String("--config")) {
            if (++i == arguments.size()) // its file follows
                result.problem = QStringLiteral("--config needs the configuration file after it.");
        } else if (argument.startsWith(QLatin1String("--config="))) {
            continue;
        } else if (argument == QLatin1String("--startup-timing")) {
            result.startupTiming = true;
        } else if (argument == QLatin1String("--help") || argument == QLatin1String("-h")) {
            result.help = true;
        } else {
            words << argument;
        }
    }
    result.commandLine = words.join(u' ');
    return result;
}

QString programUsage()
{
    return QStringLiteral("Usage: kora-budget [--config FILE] [--startup-timing] LOGIN-ID ROOT\n"
                          "\n"
                          "  LOGIN-ID          the user's Kora-Fund log-in ID\n"
                          "  ROOT              the folder Kora-Fund is installed under\n"
                          "  --config FILE     the budget database configuration; else $KORA_BUDGET_CONFIG,\n"
                          "                    else %1\n"
                          "  --startup-timing  print the milliseconds to the shown main window, then quit\n"
                          "  --help            this text\n"
                          "\n"
                          "The program opens an existing budget database only; kora-budget-admin creates one.\n")
        .arg(BudgetDbConfig::defaultConfigPath());
}
