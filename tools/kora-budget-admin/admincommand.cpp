#include "admincommand.h"

#include <QFileInfo>

#include <algorithm>

namespace {

std::vector<AdminCommand> &registry()
{
    static std::vector<AdminCommand> commands;
    return commands;
}

void printUsage(QTextStream &err)
{
    err << "Usage: kora-budget-admin [--config FILE | --sqlite FILE | --pg \"host=.. port=.. dbname=.. user=..\"] "
           "COMMAND\n\nCommands:\n";
    for (const AdminCommand &command : adminCommands())
        err << "  " << command.name.leftJustified(10) << command.summary << '\n';
    err << "\nWithout a target option the database comes from the configuration file\n"
           "(--config, else $KORA_BUDGET_CONFIG, else "
        << BudgetDbConfig::defaultConfigPath() << ").\n";
}

void openAsFound(const BudgetDbConfig &config, clsAdoConnection &connection)
{
    connection.configure(config);
    connection.setSchemaPolicy(clsAdoConnection::SchemaPolicy::LeaveAlone);
    connection.OpenConnection();
}

// A PostgreSQL database that does not exist yet is made through the server's maintenance database.
bool createPostgresDatabase(const BudgetDbConfig &config, QTextStream &err)
{
    BudgetDbConfig maintenance = config;
    maintenance.pg.database = QStringLiteral("postgres");
    clsAdoConnection server;
    openAsFound(maintenance, server);
    if (!server.dbConnection()->isOpen()) {
        err << "Cannot reach the PostgreSQL server for the " << config.describe() << ": "
            << server.driverMessage() << '\n';
        return false;
    }
    DbError error;
    if (!server.dbConnection()->execute(QStringLiteral("CREATE DATABASE \"%1\"").arg(config.pg.database), nullptr,
                                        &error)) {
        err << "Cannot create the " << config.describe() << ": " << error.text << '\n';
        return false;
    }
    return true;
}

} // namespace

bool openDatabase(const BudgetDbConfig &config, bool createMissing, QTextStream &err, clsAdoConnection &connection)
{
    const bool sqlite = config.backend == BudgetDbConfig::Backend::SQLite;
    if (sqlite && !createMissing && !QFileInfo::exists(config.sqliteFile)) {
        err << "The " << config.describe() << " does not exist.\n";
        return false;
    }
    openAsFound(config, connection);
    if (!connection.dbConnection()->isOpen() && createMissing &&
        config.backend == BudgetDbConfig::Backend::PostgreSQL) {
        if (!createPostgresDatabase(config, err))
            return false;
        openAsFound(config, connection);
    }
    if (connection.dbConnection()->isOpen())
        return true;
    err << "Cannot reach the " << config.describe() << ": " << connection.driverMessage() << '\n';
    return false;
}

AdminCommandRegistration::AdminCommandRegistration(AdminCommand command)
{
    auto &commands = registry();
    commands.push_back(std::move(command));
    std::sort(commands.begin(), commands.end(),
              [](const AdminCommand &a, const AdminCommand &b) { return a.name < b.name; });
}

const std::vector<AdminCommand> &adminCommands()
{
    return registry();
}

int runAdmin(const QStringList &arguments, QTextStream &out, QTextStream &err)
{
    QString configPath;
    std::optional<QString> sqliteFile;
    std::optional<QString> pgKeywords;
    QStringList rest;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString &argument = arguments[i];
        const bool takesValue = argument == u"--config" || argument == u"--sqlite" || argument == u"--pg";
        if (takesValue && i + 1 >= arguments.size()) {
            err << argument << " needs a value.\n";
            return AdminExit::Usage;
        }
        if (argument == u"--config")
            configPath = arguments[++i];
        else if (argument == u"--sqlite")
            sqliteFile = arguments[++i];
        else if (argument == u"--pg")
            pgKeywords = arguments[++i];
        else
            rest << argument;
    }
    if (rest.isEmpty() || rest.front() == u"help" || rest.front() == u"--help") {
        printUsage(err);
        return rest.isEmpty() ? AdminExit::Usage : AdminExit::Ok;
    }
    const auto command = std::find_if(adminCommands().begin(), adminCommands().end(),
                                      [&](const AdminCommand &c) { return c.name == rest.front(); });
    if (command == adminCommands().end()) {
        err << "Unknown command \"" << rest.front() << "\".\n\n";
        printUsage(err);
        return AdminExit::Usage;
    }

    BudgetDbConfig target;
    QString problem;
    if (sqliteFile && pgKeywords) {
        err << "Give either --sqlite or --pg, not both.\n";
        return AdminExit::Usage;
    }
    if (sqliteFile) {
        target.backend = BudgetDbConfig::Backend::SQLite;
        target.sqliteFile = *sqliteFile;
    } else if (pgKeywords) {
        const auto pg = BudgetDbConfig::parsePgSettings(*pgKeywords, &problem);
        if (!pg) {
            err << problem << '\n';
            return AdminExit::Usage;
        }
        target.backend = BudgetDbConfig::Backend::PostgreSQL;
        target.pg = *pg;
    } else {
        const QString path = configPath.isEmpty() ? BudgetDbConfig::resolvePath({}) : configPath;
        const auto loaded = BudgetDbConfig::load(path, &problem);
        if (!loaded) {
            err << problem << '\n';
            return AdminExit::Usage;
        }
        target = *loaded;
    }
    AdminContext context{target, target.describe(), rest.mid(1), out, err};
    return command->run(context);
}
