// The command "adopt": brings in a budget database made before the version table.
#include "admincommand.h"
#include "adoption.h"
#include "schema.h"

namespace {

int adopt(AdminContext &context)
{
    if (!context.arguments.isEmpty()) {
        context.err << "adopt takes no arguments.\n";
        return AdminExit::Usage;
    }
    clsAdoConnection connection;
    if (!openDatabase(context.target, false, context.err, connection))
        return AdminExit::Unreachable;
    DbConnection &db = *connection.dbConnection();
    BudgetSchema::State state;
    DbError error;
    if (!BudgetSchema::inspect(db, state, &error)) {
        context.err << "Cannot read the " << context.targetDescription << ": " << error.text << '\n';
        return AdminExit::Unreachable;
    }
    if (state.kind == BudgetSchema::Kind::Empty) {
        context.err << "The " << context.targetDescription
                    << " holds no tables: there is nothing to adopt (create makes a new budget database).\n";
        return AdminExit::Refused;
    }
    if (state.kind == BudgetSchema::Kind::Budget) {
        context.err << "The " << context.targetDescription << " already is a Kora-Budget database (schema version "
                    << state.version
                    << (state.version > BudgetSchema::programVersion() ? ", newer than this program" : "")
                    << "); nothing was changed.\n";
        return AdminExit::Refused;
    }
    BudgetAdoption::Findings findings;
    if (!BudgetAdoption::examine(db, findings, &error)) {
        context.err << "Cannot read the tables of the " << context.targetDescription << ": " << error.text << '\n';
        return AdminExit::Unreachable;
    }
    if (!findings.problems.isEmpty()) {
        context.err << "The " << context.targetDescription << " cannot be adopted:\n";
        for (const QString &problem : findings.problems)
            context.err << "  " << problem << '\n';
        context.err << "Nothing was changed.\n";
        return AdminExit::Refused;
    }
    if (!BudgetAdoption::adopt(db, findings, &error)) {
        context.err << "Cannot adopt the " << context.targetDescription << ": " << error.text
                    << "\nNothing was changed.\n";
        return AdminExit::Failed;
    }
    context.out << "Adopted the " << context.targetDescription << " as a Kora-Budget database (schema version "
                << BudgetSchema::programVersion() << ").\n";
    if (!findings.missingViews.isEmpty())
        context.out << "Created the views it lacked: " << findings.missingViews.join(QStringLiteral(", ")) << ".\n";
    return AdminExit::Ok;
}

const AdminCommandRegistration adoptCommand{
    {QStringLiteral("adopt"),
     QStringLiteral("check an existing budget database made without Kora-Budget's version table, then record it"),
     adopt}};

} // namespace
