// The commands "create" and "check".
#include "admincommand.h"
#include "schema.h"

namespace {

bool inspect(AdminContext &context, clsAdoConnection &connection, BudgetSchema::State &state)
{
    DbError error;
    if (BudgetSchema::inspect(*connection.dbConnection(), state, &error))
        return true;
    context.err << "Cannot read the " << context.targetDescription << ": " << error.text << '\n';
    return false;
}

int create(AdminContext &context)
{
    clsAdoConnection connection;
    if (!openDatabase(context.target, true, context.err, connection))
        return AdminExit::Unreachable;
    BudgetSchema::State state;
    if (!inspect(context, connection, state))
        return AdminExit::Unreachable;
    if (state.kind == BudgetSchema::Kind::Budget) {
        context.err << "The " << context.targetDescription << " already exists (schema version " << state.version
                    << "); nothing was changed.\n";
        return AdminExit::Refused;
    }
    if (state.kind == BudgetSchema::Kind::Foreign) {
        context.err << "The " << context.targetDescription
                    << " already holds other tables and is not a Kora-Budget database; nothing was changed.\n";
        return AdminExit::Refused;
    }
    DbError error;
    if (!BudgetSchema::migrate(*connection.dbConnection(), &error)) {
        context.err << "Cannot create the schema in the " << context.targetDescription << ": " << error.text << '\n';
        return AdminExit::Refused;
    }
    context.out << "Created the budget database: " << context.targetDescription << " (schema version "
                << BudgetSchema::programVersion() << ").\n";
    return AdminExit::Ok;
}

int check(AdminContext &context)
{
    clsAdoConnection connection;
    if (!openDatabase(context.target, false, context.err, connection))
        return AdminExit::Unreachable;
    BudgetSchema::State state;
    if (!inspect(context, connection, state))
        return AdminExit::Unreachable;
    switch (state.kind) {
    case BudgetSchema::Kind::Empty:
        context.err << "The " << context.targetDescription << " is empty: no Kora-Budget schema (use create).\n";
        return AdminExit::Refused;
    case BudgetSchema::Kind::Foreign:
        context.err << "The " << context.targetDescription << " is not a Kora-Budget database.\n";
        return AdminExit::Refused;
    case BudgetSchema::Kind::Budget:
        break;
    }
    context.out << context.targetDescription << ": Kora-Budget schema version " << state.version
                << " (this program: " << BudgetSchema::programVersion() << ").\n";
    if (state.version > BudgetSchema::programVersion()) {
        context.err << "The database is newer than this program.\n";
        return AdminExit::Refused;
    }
    if (state.version < BudgetSchema::programVersion())
        context.out << "Opening it with this program upgrades it.\n";
    return AdminExit::Ok;
}

const AdminCommandRegistration createCommand{
    {QStringLiteral("create"), QStringLiteral("make a new, empty budget database at the target"), create}};
const AdminCommandRegistration checkCommand{
    {QStringLiteral("check"), QStringLiteral("report the target's schema version"), check}};

} // namespace
