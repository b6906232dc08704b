#pragma once

#include "budgetdbconfig.h"
#include "dbconnection.h"
#include "errobject.h"

#include <memory>

// The application's connection to the budget database: set up from
// configuration, opened once at start-up and shared by every store through
// dbConnection().
class clsAdoConnection {
public:
    // What OpenConnection may create and what it does with the schema.
    enum class SchemaPolicy {
        // The program: the database must exist and hold a budget schema (an
        // older one is upgraded); a missing SQLite file or an empty database
        // is refused, naming what was looked for. Nothing is created.
        RequireBudget,
        // kora-budget-admin's demo and the tests: a missing SQLite file (and
        // its folder) is made, an empty database gets the schema.
        CreateOrUpgrade,
        // kora-budget-admin's own inspection: opened as found, schema
        // untouched (SQLite makes a missing file empty, so check first when
        // that matters).
        LeaveAlone,
    };

    clsAdoConnection();
    ~clsAdoConnection();
    clsAdoConnection(const clsAdoConnection &) = delete;
    clsAdoConnection &operator=(const clsAdoConnection &) = delete;

    // Takes backend, file, server and ODBC settings from a loaded configuration.
    void configure(const BudgetDbConfig &config);

    void setLessConn(bool lessConn) { config_.LessConn = lessConn; }
    void setDSNname(const QString &name) { config_.DSNname = name; }
    void setServerName(const QString &name) { config_.ServerName = name; }
    // Kept for the record; the data source supplies the credentials.
    void setUsername(const QString &name) { config_.Username = name; }
    void setPassword(const QString &password) { config_.Password = password; }
    void setSchemaPolicy(SchemaPolicy policy) { schemaPolicy_ = policy; }

    const BudgetDbConfig &config() const { return config_; }

    clsErrObject &Error() { return error_; }
    // What the driver said when the last OpenConnection failed. Error's text
    // holds the fixed connection message, what was looked for, and this.
    const QString &driverMessage() const { return driverMessage_; }

    // The ODBC connection string: the full driver string when LessConn, else the data source name.
    QString connectionString() const;

    bool OpenConnection();
    bool CloseConnection();

    // The open connection the stores share (closed until OpenConnection succeeds).
    std::shared_ptr<DbConnection> dbConnection() const { return connection_; }

private:
    bool fail(const QString &reason, const QString &driverText);
    bool checkSchema();

    BudgetDbConfig config_;
    SchemaPolicy schemaPolicy_ = SchemaPolicy::RequireBudget;
    std::shared_ptr<DbConnection> connection_;
    clsErrObject error_;
    QString driverMessage_;
};

// The application's one connection, made at start-up.
extern std::unique_ptr<clsAdoConnection> gadoConnection;
