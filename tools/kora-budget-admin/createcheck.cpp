// The commands "create" and "check".
#include "admincommand.h"
#include "adoconnection.h"
#include "schema.h"

#include <QFileInfo>

namespace {

// Opens the target without touching its schema; reports and returns false when it cannot be reached.
bool openAsFound(AdminContext &context, clsAdoConnection &connection)
{
    connection.configure(context.target);
    connection.setSchemaPolicy(clsAdoConnection::SchemaPolicy::LeaveAlone);
    if (connection.OpenConnection())
        return true;
    context.err << "Cannot reach the " << context.targetDescription << ": " << connection.driverMessage() << '\n';
    return false;
}

bool inspect(AdminContext &context, clsAdoConnection &connection, BudgetSchema::State &state)
{
    DbError error;
    if (BudgetSchema::inspect(*connection.dbConnection(), state, &error))
        return true;
    context.err << "Cannot read the " << context.targetDescription << ": " << error.text << '\n';
    return false;
}

// A PostgreSQL database that does not exist yet is made through the server's maintenance database.
bool createPostgresDatabase(AdminContext &context)
{
    BudgetDbConfig maintenance = context.target;
    maintenance.pg.database = QStringLiteral("postgres");
    clsAdoConnection server;
    server.configure(maintenance);
    server.setSchemaPolicy(clsAdoConnection::SchemaPolicy::LeaveAlone);
    if (!server.OpenConnection()) {
        context.err << "Cannot reach the PostgreSQL server for the " << context.targetDescription << ": "
                    << server.driverMessage() << '\n';
        return false;
    }
    DbError error;
    const QString name = context.target.pg.database;
    if (!server.dbConnection()->execute(QStringLiteral("CREATE DATABASE \"%1\"").arg(name), nullptr, &error)) {
        context.err << "Cannot create the " << context.targetDescription << ": " << error.text << '\n';
        return false;
    }
    return true;
}

int create(AdminContext &context)
{
    const BudgetDbConfig &target = context.target;
    clsAdoConnection connection;
    connection.configure(target);
    connection.setSchemaPolicy(clsAdoConnection::SchemaPolicy::LeaveAlone);
    if (!connection.OpenConnection()) {
        if (target.backend != BudgetDbConfig::Backend::PostgreSQL) {
            context.err << "Cannot reach the " << context.targetDescription << ": " << connection.driverMessage()
                        << '\n';
            return AdminExit::Unreachable;
        }
        if (!createPostgresDatabase(context) || !openAsFound(context, connection))
            return AdminExit::Unreachable;
    }
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
    if (context.target.backend == BudgetDbConfig::Backend::SQLite && !QFileInfo::exists(context.target.sqliteFile)) {
        context.err << "The " << context.targetDescription << " does not exist.\n";
        return AdminExit::Unreachable;
    }
    clsAdoConnection connection;
    if (!openAsFound(context, connection))
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
