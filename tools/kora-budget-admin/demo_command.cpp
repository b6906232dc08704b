// The command "demo": a budget database holding the demo district, and
// optionally the matching fund-accounting sample installation.
#include "admincommand.h"
#include "adoconnection.h"
#include "budgetdatabase.h"
#include "fundinstallation.h"

#include <QElapsedTimer>

namespace {

struct DemoArguments {
    demo::DistrictOptions district;
    QString fundRoot;
};

std::optional<int> wholeNumber(const QString &text)
{
    bool ok = false;
    const int value = text.toInt(&ok);
    return ok && value >= 0 ? std::optional<int>(value) : std::nullopt;
}

// --scale N (account codes), --folders N, --fund-root DIR; nullopt after reporting a usage error.
std::optional<DemoArguments> parse(AdminContext &context)
{
    DemoArguments parsed;
    const QStringList &args = context.arguments;
    for (qsizetype i = 0; i < args.size(); ++i) {
        const QString &option = args[i];
        if (i + 1 >= args.size()) {
            context.err << "demo: " << option << " needs a value.\n";
            return std::nullopt;
        }
        const QString value = args[++i];
        if (option == QLatin1String("--fund-root")) {
            parsed.fundRoot = value;
            continue;
        }
        const auto number = wholeNumber(value);
        if (!number || (option != QLatin1String("--scale") && option != QLatin1String("--folders"))) {
            context.err << "demo: unknown option or bad number: " << option << ' ' << value
                        << "\nusage: demo [--scale ACCOUNTS] [--folders FOLDERS] [--fund-root DIR]\n";
            return std::nullopt;
        }
        (option == QLatin1String("--scale") ? parsed.district.accounts : parsed.district.folders) = *number;
    }
    return parsed;
}

// Opens the target, creating its schema when it is empty; a PostgreSQL
// database that does not exist yet is made by the "create" command.
bool openCreating(AdminContext &context, clsAdoConnection &connection)
{
    connection.configure(context.target);
    connection.setSchemaPolicy(clsAdoConnection::SchemaPolicy::CreateOrUpgrade);
    if (connection.OpenConnection())
        return true;
    if (context.target.backend == BudgetDbConfig::Backend::PostgreSQL) {
        for (const AdminCommand &command : adminCommands()) {
            if (command.name == QLatin1String("create") && command.run(context) == AdminExit::Ok &&
                connection.OpenConnection())
                return true;
        }
    }
    context.err << connection.Error().ErrorText() << '\n';
    return false;
}

int writeFundInstallation(AdminContext &context, const demo::District &district, const QString &root)
{
    QString message;
    SampleSummary summary;
    if (createSampleInstallation(root, demo::sampleDistrictOf(district), {}, message, &summary) != 0) {
        context.err << "Cannot write the Kora-Fund sample installation under " << root << ": " << message << '\n';
        return AdminExit::Refused;
    }
    context.out << "Wrote the Kora-Fund sample installation under " << root << ": " << summary.accounts << " accounts, "
                << summary.transactions << " transactions.\n";
    return AdminExit::Ok;
}

int runDemo(AdminContext &context)
{
    const auto arguments = parse(context);
    if (!arguments)
        return AdminExit::Usage;
    QElapsedTimer timer;
    timer.start();
    const demo::District district = demo::makeDistrict(arguments->district);
    clsAdoConnection connection;
    if (!openCreating(context, connection))
        return AdminExit::Unreachable;
    DbError error;
    if (!demo::populateBudgetDatabase(*connection.dbConnection(), district, &error)) {
        context.err << "Cannot fill the " << context.targetDescription << " with the demo district: " << error.text
                    << "\nNothing was written.\n";
        return AdminExit::Refused;
    }
    context.out << "Filled the " << context.targetDescription << " with " << district.organisation.name << ": "
                << district.accounts.size() << " account codes, " << district.folders.size() << " folders, "
                << district.proposals.size() << " proposals, years " << district.years.front().year << '-'
                << district.years.back().year << " (" << timer.elapsed() << " ms).\n";
    if (arguments->fundRoot.isEmpty())
        return AdminExit::Ok;
    return writeFundInstallation(context, district, arguments->fundRoot);
}

const AdminCommandRegistration demoCommand{
    {QStringLiteral("demo"),
     QStringLiteral("fill the target with the demo district [--scale N] [--folders N] [--fund-root DIR]"), runDemo}};

} // namespace
