#include "adminrun.h"
#include "schema.h"
#include "testdatabases.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

namespace {

TEST(BudgetAdminTest, CreateThenCheckAnSqliteFile)
{
    QTemporaryDir folder;
    const QString file = folder.filePath("district/budget.sqlite");
    AdminRun run = admin({"--sqlite", file, "check"});
    EXPECT_EQ(run.exitCode, AdminExit::Unreachable);
    EXPECT_TRUE(run.err.contains("does not exist")) << run.err.toStdString();

    run = admin({"--sqlite", file, "create"});
    ASSERT_EQ(run.exitCode, AdminExit::Ok) << run.err.toStdString();
    EXPECT_TRUE(run.out.contains("Created the budget database")) << run.out.toStdString();

    run = admin({"--sqlite", file, "check"});
    EXPECT_EQ(run.exitCode, AdminExit::Ok) << run.err.toStdString();
    EXPECT_TRUE(run.out.contains(QString("schema version %1").arg(BudgetSchema::programVersion())));

    run = admin({"--sqlite", file, "create"});
    EXPECT_EQ(run.exitCode, AdminExit::Refused);
    EXPECT_TRUE(run.err.contains("already exists")) << run.err.toStdString();
}

TEST(BudgetAdminTest, RefusesForeignUnreachableAndMalformedTargets)
{
    QTemporaryDir folder;
    const QString foreign = folder.filePath("other.sqlite");
    {
        BudgetDbConfig config;
        config.sqliteFile = foreign;
        clsAdoConnection connection;
        connection.configure(config);
        connection.setSchemaPolicy(clsAdoConnection::SchemaPolicy::LeaveAlone);
        ASSERT_TRUE(connection.OpenConnection());
        ASSERT_TRUE(connection.dbConnection()->execute("create table Payroll (x integer)"));
    }
    AdminRun run = admin({"--sqlite", foreign, "create"});
    EXPECT_EQ(run.exitCode, AdminExit::Refused);
    EXPECT_TRUE(run.err.contains("not a Kora-Budget database")) << run.err.toStdString();
    run = admin({"--sqlite", foreign, "check"});
    EXPECT_EQ(run.exitCode, AdminExit::Refused);
    EXPECT_TRUE(run.err.contains("not a Kora-Budget database")) << run.err.toStdString();

    run = admin({"--pg", "host=" + folder.filePath("nowhere") + " dbname=budget", "create"});
    EXPECT_EQ(run.exitCode, AdminExit::Unreachable);
    EXPECT_TRUE(run.err.contains("Cannot reach")) << run.err.toStdString();

    EXPECT_EQ(admin({"--pg", "colour=blue", "check"}).exitCode, AdminExit::Usage);
    EXPECT_EQ(admin({"--sqlite", "a", "--pg", "host=b", "check"}).exitCode, AdminExit::Usage);
    EXPECT_EQ(admin({"frobnicate"}).exitCode, AdminExit::Usage);
    EXPECT_EQ(admin({}).exitCode, AdminExit::Usage);
    const AdminRun help = admin({"help"});
    EXPECT_TRUE(help.err.contains("create") && help.err.contains("check"));
}

TEST(BudgetAdminTest, ConfigurationFileNamesTheTarget)
{
    QTemporaryDir folder;
    const QString ini = folder.filePath("budgetdb.ini");
    QFile file(ini);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("[Database]\nBackend=sqlite\n[SQLite]\nFile=from-config.sqlite\n");
    file.close();
    const AdminRun run = admin({"--config", ini, "create"});
    ASSERT_EQ(run.exitCode, AdminExit::Ok) << run.err.toStdString();
    EXPECT_TRUE(QFile::exists(folder.filePath("from-config.sqlite")));
}

TEST(BudgetAdminTest, CreatesAPostgresDatabaseThatDoesNotExistYet)
{
    const QString server = qEnvironmentVariable("KORA_TEST_PG");
    if (server.isEmpty())
        GTEST_SKIP() << "KORA_TEST_PG is not set; run scripts/test.sh to test on PostgreSQL";
    const auto pg = BudgetDbConfig::parsePgSettings(server);
    ASSERT_TRUE(pg);
    const QString name = QString("kora_admin_%1").arg(QCoreApplication::applicationPid());
    const QString target = QString("host=%1 port=%2 dbname=%3 user=%4").arg(pg->host).arg(pg->port).arg(name, pg->user);
    AdminRun run = admin({"--pg", target, "create"});
    ASSERT_EQ(run.exitCode, AdminExit::Ok) << run.err.toStdString();
    run = admin({"--pg", target, "create"});
    EXPECT_EQ(run.exitCode, AdminExit::Refused);
    EXPECT_TRUE(run.err.contains("already exists")) << run.err.toStdString();
    EXPECT_EQ(admin({"--pg", target, "check"}).exitCode, AdminExit::Ok);
}

} // namespace
