#pragma once

#include "adoconnection.h"
#include "budgetdbconfig.h"

#include <QString>
#include <QStringList>
#include <QTextStream>

#include <functional>
#include <optional>
#include <vector>

// Exit codes of kora-budget-admin.
namespace AdminExit {
inline constexpr int Ok = 0;
inline constexpr int Refused = 1;     // the target exists, is foreign, or is not usable as asked
inline constexpr int Unreachable = 2; // the database cannot be reached
inline constexpr int Failed = 3;      // the work failed part-way; all it wrote was rolled back
inline constexpr int Usage = 64;
} // namespace AdminExit

// What a command is given: the database it works on and its own arguments.
struct AdminContext {
    BudgetDbConfig target;
    QString targetDescription; // how messages name the database
    QStringList arguments;     // what follows the command name, target options removed
    QTextStream &out;
    QTextStream &err;
};

struct AdminCommand {
    QString name;
    QString summary; // one line for the usage text
    std::function<int(AdminContext &)> run;
};

// A command file registers itself with a namespace-scope
//   const AdminCommandRegistration registration{{"name", "summary", runFunction}};
struct AdminCommandRegistration {
    explicit AdminCommandRegistration(AdminCommand command);
};

const std::vector<AdminCommand> &adminCommands();

// Opens a database as found, leaving its schema alone. With `createMissing`
// a PostgreSQL database that does not exist yet is created on its server
// (and an SQLite file is made by opening it); without it a missing SQLite file
// is reported rather than created. Says why on err and returns false when the
// database cannot be reached.
bool openDatabase(const BudgetDbConfig &config, bool createMissing, QTextStream &err, clsAdoConnection &connection);

// Parses [--config FILE | --sqlite FILE | --pg "keywords"] COMMAND [ARGS...] and runs the command.
int runAdmin(const QStringList &arguments, QTextStream &out, QTextStream &err);
