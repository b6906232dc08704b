#include "adminrun.h"
#include "catalog.h"
#include "schema.h"
#include "testdatabases.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QRegularExpression>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QSqlRecord>

#include <map>

namespace {

using testdb::Backend;

BudgetDbConfig sqliteConfig(const QString &file)
{
    BudgetDbConfig config;
    config.backend = BudgetDbConfig::Backend::SQLite;
    config.sqliteFile = file;
    return config;
}

std::unique_ptr<clsAdoConnection> openAsFound(const BudgetDbConfig &config)
{
    auto connection = std::make_unique<clsAdoConnection>();
    connection->configure(config);
    connection->setSchemaPolicy(clsAdoConnection::SchemaPolicy::LeaveAlone);
    EXPECT_TRUE(connection->OpenConnection()) << connection->driverMessage().toStdString();
    return connection;
}

void exec(clsAdoConnection &connection, const QString &sql)
{
    DbError error;
    EXPECT_TRUE(connection.dbConnection()->execute(sql, nullptr, &error))
        << sql.toStdString() << ": " << error.text.toStdString();
}

qint64 rowCount(clsAdoConnection &connection, const QString &table)
{
    qint64 count = -1;
    EXPECT_TRUE(BudgetCatalog::rowCount(*connection.dbConnection(), table, count)) << table.toStdString();
    return count;
}

// Every row of every table of an SQLite file, read past the program's own code.
std::map<QString, QStringList> dump(const QString &file)
{
    std::map<QString, QStringList> tables;
    const QString name = QStringLiteral("dump-") + file;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        db.setDatabaseName(file);
        EXPECT_TRUE(db.open());
        for (const QString &table : db.tables()) {
            QStringList &rows = tables[table.toLower()];
            QSqlQuery query(QStringLiteral("SELECT * FROM \"%1\"").arg(table), db);
            while (query.next()) {
                QStringList values;
                for (int i = 0; i < query.record().count(); ++i)
                    values << (query.isNull(i) ? QStringLiteral("<null>") : query.value(i).toString());
                rows << values.join(u'|');
            }
            rows.sort();
        }
    }
    QSqlDatabase::removeDatabase(name);
    return tables;
}

// A PostgreSQL database name on the test server that the copy creates; dropped afterwards.
class NewPostgresDatabase {
public:
    NewPostgresDatabase()
    {
        static int counter = 0;
        const QString keywords = qEnvironmentVariable("KORA_TEST_PG");
        const auto server = BudgetDbConfig::parsePgSettings(keywords);
        if (keywords.isEmpty() || !server)
            return;
        server_.backend = BudgetDbConfig::Backend::PostgreSQL;
        server_.pg = *server;
        config_ = server_;
        config_.pg.database = QStringLiteral("kora_copy_%1_%2").arg(QCoreApplication::applicationPid()).arg(++counter);
    }
    ~NewPostgresDatabase()
    {
        if (!available())
            return;
        auto connection = openAsFound(server_);
        exec(*connection, QStringLiteral("DROP DATABASE IF EXISTS %1 WITH (FORCE)").arg(config_.pg.database));
    }
    bool available() const { return config_.backend == BudgetDbConfig::Backend::PostgreSQL; }
    const BudgetDbConfig &config() const { return config_; }

private:
    BudgetDbConfig server_;
    BudgetDbConfig config_;
};

class CopyTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        source_ = folder_.filePath("source.sqlite");
        const AdminRun run = admin({"--sqlite", source_, "demo"});
        ASSERT_EQ(run.exitCode, AdminExit::Ok) << run.err.toStdString();
        // Figures at the edges of what the columns hold.
        auto source = openAsFound(sqliteConfig(source_));
        exec(*source, "INSERT INTO AccountCodes (Ledger, FundID, AccountCode, AccountName, ProjectedAmount, "
                      "CurrentBudget) VALUES ('E', 'GF', 'ZZ-EDGE', ' O''Neil Hall  ', 99999999999.9999, -0.0001)");
        exec(*source, "INSERT INTO TaxRate (TownShip, CurrentEqualRate) VALUES ('Edge', 0.8725)");
    }

    // Writes a configuration file naming `config` and returns its path.
    QString configFile(const BudgetDbConfig &config)
    {
        const QString path = folder_.filePath(QStringLiteral("target-%1.ini").arg(++configs_));
        EXPECT_TRUE(config.save(path));
        return path;
    }

    AdminRun copyTo(const BudgetDbConfig &target, const QStringList &from = {})
    {
        QStringList arguments = from.isEmpty() ? QStringList{"--sqlite", source_} : from;
        return admin(arguments << "copy"
                               << "--to" << configFile(target));
    }

    QTemporaryDir folder_;
    QString source_;
    int configs_ = 0;
};

TEST_F(CopyTest, SqliteToPostgresAndBackKeepsEveryFigure)
{
    NewPostgresDatabase pg;
    if (!pg.available())
        GTEST_SKIP() << "KORA_TEST_PG is not set; run scripts/test.sh to test on PostgreSQL";
    AdminRun run = copyTo(pg.config());
    ASSERT_EQ(run.exitCode, AdminExit::Ok) << run.err.toStdString();
    EXPECT_TRUE(run.out.contains("every table's row count and amount totals match")) << run.out.toStdString();
    EXPECT_TRUE(run.out.contains("fy2024_summarytree: ")) << run.out.toStdString();

    {
        auto server = openAsFound(pg.config());
        DbConnection &db = *server->dbConnection();
        Recordset edge;
        ASSERT_TRUE(db.open("select * from AccountCodes where AccountCode = 'ZZ-EDGE'", edge));
        EXPECT_EQ(edge.text("AccountName"), " O'Neil Hall  ");
        EXPECT_EQ(edge.amount("ProjectedAmount"), *Currency::parse("99999999999.9999"));
        EXPECT_EQ(edge.amount("CurrentBudget"), *Currency::parse("-0.0001"));
        const qint64 lastId = edge.number("ID");
        edge.Close();
        // Keys the database assigns carry on after the copied ones.
        exec(*server, "Insert into AccountCodes (Ledger, FundID, AccountCode) Values ('E','GF','ZZ-NEW')");
        ASSERT_TRUE(db.open("select ID from AccountCodes where AccountCode = 'ZZ-NEW'", edge));
        EXPECT_EQ(edge.number("ID"), lastId + 1);
        edge.Close();
        exec(*server, "Delete from AccountCodes where AccountCode = 'ZZ-NEW'");
        ASSERT_TRUE(db.open("select CurrentEqualRate from TaxRate where TownShip = 'Edge'", edge));
        EXPECT_DOUBLE_EQ(edge.real("CurrentEqualRate"), 0.8725);
    }

    const QString back = folder_.filePath("back/budget.sqlite");
    run = copyTo(sqliteConfig(back), targetOptions(pg.config()));
    ASSERT_EQ(run.exitCode, AdminExit::Ok) << run.err.toStdString();
    const auto before = dump(source_);
    EXPECT_EQ(dump(back), before);
    EXPECT_GT(before.at("budgetsummarytree").size(), 10);
}

TEST_F(CopyTest, RefusesATargetHoldingDataAndUnsuitableDatabases)
{
    const QString target = folder_.filePath("target.sqlite");
    ASSERT_EQ(admin({"--sqlite", target, "create"}).exitCode, AdminExit::Ok);
    {
        auto connection = openAsFound(sqliteConfig(target));
        exec(*connection, "INSERT INTO Bals (Fund, CurrentBalance) VALUES ('GF', 10)");
    }
    AdminRun run = copyTo(sqliteConfig(target));
    EXPECT_EQ(run.exitCode, AdminExit::Refused);
    EXPECT_TRUE(run.err.contains("SQLite file " + target + " already holds data: Bals (1 row)"))
        << run.err.toStdString();
    {
        auto connection = openAsFound(sqliteConfig(target));
        EXPECT_EQ(rowCount(*connection, "Bals"), 1);
        EXPECT_EQ(rowCount(*connection, "AccountCodes"), 0);
    }

    const QString foreign = folder_.filePath("foreign.sqlite");
    exec(*openAsFound(sqliteConfig(foreign)), "CREATE TABLE Payroll (x INTEGER)");
    run = copyTo(sqliteConfig(foreign));
    EXPECT_EQ(run.exitCode, AdminExit::Refused);
    EXPECT_TRUE(run.err.contains("not a Kora-Budget database")) << run.err.toStdString();
    run = admin({"--sqlite", foreign, "copy", "--to", configFile(sqliteConfig(folder_.filePath("new.sqlite")))});
    EXPECT_EQ(run.exitCode, AdminExit::Refused);
    EXPECT_TRUE(run.err.contains("adopt it first")) << run.err.toStdString();

    // A mistyped configuration path never falls back to the default database.
    run = admin({"--sqlite", source_, "copy", "--to", folder_.filePath("no-such.ini")});
    EXPECT_EQ(run.exitCode, AdminExit::Usage);
    EXPECT_TRUE(run.err.contains("no-such.ini does not exist")) << run.err.toStdString();
    EXPECT_EQ(admin({"--sqlite", source_, "copy"}).exitCode, AdminExit::Usage);
}

TEST_F(CopyTest, MismatchedFiguresRollBackEverything)
{
    const QString target = folder_.filePath("target.sqlite");
    ASSERT_EQ(admin({"--sqlite", target, "create"}).exitCode, AdminExit::Ok);
    {
        // The target's own triggers change an amount and swallow rows as they arrive.
        auto connection = openAsFound(sqliteConfig(target));
        exec(*connection, "CREATE TRIGGER skew AFTER INSERT ON LnItem BEGIN UPDATE LnItem SET LineItemAmount = "
                          "LineItemAmount + 0.0001 WHERE AcctId = new.AcctId AND LineItemNumber = new.LineItemNumber; "
                          "END");
        exec(*connection, "CREATE TRIGGER lose BEFORE INSERT ON Bals BEGIN SELECT RAISE(IGNORE); END");
    }
    const AdminRun run = copyTo(sqliteConfig(target));
    EXPECT_EQ(run.exitCode, AdminExit::Failed);
    EXPECT_TRUE(run.err.contains("failed and was rolled back")) << run.err.toStdString();
    EXPECT_TRUE(
        run.err.contains(QRegularExpression("LnItem.LineItemAmount: totals \\S+ in the source, \\S+ in the copy")))
        << run.err.toStdString();
    EXPECT_TRUE(run.err.contains(QRegularExpression("Bals: \\d+ rows in the source, 0 rows in the copy")))
        << run.err.toStdString();
    auto connection = openAsFound(sqliteConfig(target));
    for (const char *table : {"AccountCodes", "LnItem", "Budgets", "BudgetSummaryTree"})
        EXPECT_EQ(rowCount(*connection, table), 0) << table;
}

// A value the target cannot take stops the copy part-way; nothing of it stays, not even the schema.
class CopyFailureTest : public CopyTest, public ::testing::WithParamInterface<Backend> {};

TEST_P(CopyFailureTest, FailingPartWayLeavesTheTargetEmpty)
{
    {
        // SQLite keeps text that does not read as a number in an INTEGER column.
        auto source = openAsFound(sqliteConfig(source_));
        exec(*source, "UPDATE Budgets SET AcctId = 'x1' WHERE rowid = (SELECT MAX(rowid) FROM Budgets)");
    }
    NewPostgresDatabase pg;
    if (GetParam() == Backend::PostgreSQL && !pg.available())
        GTEST_SKIP() << "KORA_TEST_PG is not set; run scripts/test.sh to test on PostgreSQL";
    const BudgetDbConfig target =
        GetParam() == Backend::PostgreSQL ? pg.config() : sqliteConfig(folder_.filePath("target.sqlite"));
    const AdminRun run = copyTo(target);
    EXPECT_EQ(run.exitCode, AdminExit::Failed);
    EXPECT_TRUE(run.err.contains("Budgets.AcctId in the SQLite file " + source_ + " holds \"x1\"", Qt::CaseInsensitive))
        << run.err.toStdString();
    auto connection = openAsFound(target);
    BudgetSchema::State state;
    ASSERT_TRUE(BudgetSchema::inspect(*connection->dbConnection(), state));
    EXPECT_EQ(state.kind, BudgetSchema::Kind::Empty);
}

INSTANTIATE_TEST_SUITE_P(Targets, CopyFailureTest, ::testing::Values(Backend::SQLite, Backend::PostgreSQL),
                         ::testdb::paramName);

} // namespace
