#pragma once

#include "adoconnection.h"
#include "dbconnection.h"

#include <gtest/gtest.h>

#include <QString>
#include <QTemporaryDir>

#include <memory>
#include <string>
#include <vector>

// Fresh, empty-schema budget databases for store tests, on each backend the
// program supports: an SQLite file, a private PostgreSQL server (settings in
// KORA_TEST_PG, started by scripts/test.sh) and the ODBC data source "Korawin"
// through unixODBC and the SQLite ODBC driver.
namespace testdb {

enum class Backend { SQLite, PostgreSQL, Odbc };

std::vector<Backend> allBackends();
std::string backendName(Backend backend);
// For INSTANTIATE_TEST_SUITE_P's name generator.
std::string paramName(const ::testing::TestParamInfo<Backend> &info);

// One fresh database; dropped (or deleted) again when destroyed.
class TestDatabase {
public:
    explicit TestDatabase(Backend backend);
    ~TestDatabase();
    TestDatabase(const TestDatabase &) = delete;
    TestDatabase &operator=(const TestDatabase &) = delete;

    // Empty when the database is ready; otherwise why it is not (the test should skip or fail).
    const QString &unavailable() const { return unavailable_; }
    // The configuration that opens this database (for tests that open their own connection).
    const BudgetDbConfig &config() const { return config_; }
    clsAdoConnection &connection() { return *connection_; }
    std::shared_ptr<DbConnection> db() const { return connection_->dbConnection(); }

    // Ends this test's PostgreSQL session from a second connection, as a server restart would.
    bool terminateServerSession();

private:
    bool preparePostgres();
    bool prepareOdbc();

    Backend backend_;
    BudgetDbConfig config_;
    QString unavailable_;
    QString pgDatabase_;
    QString odbcFile_;
    BudgetDbConfig::PgSettings adminPg_; // the server's own database, where test databases are made
    std::unique_ptr<QTemporaryDir> folder_;
    std::unique_ptr<clsAdoConnection> connection_;
};

// Base for store tests run once per backend:
//   class MyStoreTest : public testdb::DatabaseTest {};
//   TEST_P(MyStoreTest, ...) { ... db() ... }
//   KORA_ALL_BACKENDS(MyStoreTest);
class DatabaseTest : public ::testing::TestWithParam<Backend> {
protected:
    void SetUp() override;
    void TearDown() override;

    std::shared_ptr<DbConnection> db() const { return database_->db(); }
    TestDatabase &database() { return *database_; }
    // Runs a statement the test needs for its set-up; fails the test when it does not run.
    void exec(const QString &sql);
    // The named columns of each row the query returns, "," between cells and
    // "|" between rows; numbers in their plain decimal form so every backend
    // reads the same. The columns are those the select list names.
    QString rows(const QString &sql);
    // The first cell of rows(sql).
    QString scalar(const QString &sql) { return rows(sql).section('|', 0, 0).section(',', 0, 0); }
    // The audit trail in the order written: task, table, row, account, column, old and new value.
    std::string auditTrail()
    {
        return rows("select Task, TableName, RowKey, AccountCode, ColumnName, OldValue, NewValue from AuditTrail "
                    "order by ID")
            .toStdString();
    }
    // rows(sql) over a new connection, for reading after this test's session has ended.
    QString rowsOverNewConnection(const QString &sql);
    // Makes the PostgreSQL server end this test's session as it writes a row
    // that `condition` picks, as a server stopped in the middle of a save would.
    void endSessionOnWrite(const QString &table, const QString &operation, const QString &condition);

private:
    std::unique_ptr<TestDatabase> database_;
};

} // namespace testdb

#define KORA_ALL_BACKENDS(Suite)                                                                                       \
    INSTANTIATE_TEST_SUITE_P(AllBackends, Suite, ::testing::ValuesIn(::testdb::allBackends()), ::testdb::paramName)
