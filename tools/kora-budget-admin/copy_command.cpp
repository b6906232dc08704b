// The command "copy": the whole budget database to another backend.
#include "admincommand.h"
#include "databasecopy.h"

#include <QFileInfo>

namespace {

// --to CONFIG (or --to=CONFIG); empty after reporting a usage error.
QString targetConfigPath(AdminContext &context)
{
    const QStringList &args = context.arguments;
    QString path;
    if (args.size() == 2 && args[0] == u"--to")
        path = args[1];
    else if (args.size() == 1 && args[0].startsWith(QStringLiteral("--to=")))
        path = args[0].mid(5);
    if (path.isEmpty())
        context.err << "usage: copy --to CONFIG (the configuration file naming the database to copy into)\n";
    return path;
}

int copy(AdminContext &context)
{
    const QString path = targetConfigPath(context);
    if (path.isEmpty())
        return AdminExit::Usage;
    // A mistyped path must not fall back to the default database.
    if (!QFileInfo::exists(path)) {
        context.err << "The configuration file " << path << " does not exist.\n";
        return AdminExit::Usage;
    }
    QString problem;
    const auto target = BudgetDbConfig::load(path, &problem);
    if (!target) {
        context.err << problem << '\n';
        return AdminExit::Usage;
    }
    const QString targetName = target->describe();
    clsAdoConnection from;
    clsAdoConnection to;
    if (!openDatabase(context.target, false, context.err, from) || !openDatabase(*target, true, context.err, to))
        return AdminExit::Unreachable;

    const BudgetCopy::Outcome outcome =
        BudgetCopy::copy(*from.dbConnection(), context.targetDescription, *to.dbConnection(), targetName);
    switch (outcome.status) {
    case BudgetCopy::Outcome::Status::Copied:
        context.out << "Copied the " << context.targetDescription << " to the " << targetName << ": " << outcome.rows
                    << " rows; every table's row count and amount totals match.\n";
        for (const QString &line : outcome.lines)
            context.out << "  " << line << '\n';
        return AdminExit::Ok;
    case BudgetCopy::Outcome::Status::Refused:
        for (const QString &line : outcome.lines)
            context.err << line << '\n';
        return AdminExit::Refused;
    case BudgetCopy::Outcome::Status::Failed:
        break;
    }
    context.err << "The copy to the " << targetName << " failed and was rolled back; it holds nothing from the "
                << context.targetDescription << ":\n";
    for (const QString &line : outcome.lines)
        context.err << "  " << line << '\n';
    return AdminExit::Failed;
}

const AdminCommandRegistration copyCommand{
    {QStringLiteral("copy"),
     QStringLiteral("copy the whole budget database into the empty one named by --to CONFIG, verified"), copy}};

} // namespace
