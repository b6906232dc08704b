#include "adoconnection.h"
#include "budgetdbconfig.h"
#include "schema.h"
#include "testdatabases.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QTemporaryDir>

namespace {

void writeIni(const QString &path, const QByteArray &text)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(text);
}

TEST(BudgetDbConfigTest, ReadsEveryBackendsSettings)
{
    QTemporaryDir folder;
    const QString path = folder.filePath("budgetdb.ini");
    writeIni(path, "[Database]\nBackend=PostgreSQL\n[SQLite]\nFile=data/budget.sqlite\n"
                   "[PostgreSQL]\nHost=db.district.local\nPort=6543\nDatabase=budget\nUser=office\nPassword=s3cret\n"
                   "[ODBC]\nDSNname=Budget2\nServerName=SERVER1\nLessConn=true\nDriver=Some Driver\n"
                   "[KoraFund]\nCodePage=866\n[Reports]\nPropertyTaxCodes=A1001, A1002.1\n");
    QString error;
    const auto config = BudgetDbConfig::load(path, &error);
    ASSERT_TRUE(config) << error.toStdString();
    EXPECT_EQ(config->backend, BudgetDbConfig::Backend::PostgreSQL);
    EXPECT_EQ(config->sqliteFile, folder.filePath("data/budget.sqlite")) << "relative to the file";
    EXPECT_EQ(config->pg.host, "db.district.local");
    EXPECT_EQ(config->pg.port, 6543);
    EXPECT_EQ(config->pg.database, "budget");
    EXPECT_EQ(config->pg.user, "office");
    EXPECT_EQ(config->pg.password, "s3cret");
    EXPECT_EQ(config->DSNname, "Budget2");
    EXPECT_EQ(config->ServerName, "SERVER1");
    EXPECT_TRUE(config->LessConn);
    EXPECT_EQ(config->odbcDriver, "Some Driver");
    EXPECT_EQ(config->fundCodePage, "866");
    EXPECT_EQ(config->propertyTaxCodes, QStringList({"A1001", "A1002.1"}));

    // What save writes, load reads back.
    const QString copy = folder.filePath("copy/budgetdb.ini");
    ASSERT_TRUE(config->save(copy));
    const auto again = BudgetDbConfig::load(copy);
    ASSERT_TRUE(again);
    EXPECT_EQ(again->pg.port, 6543);
    EXPECT_EQ(again->sqliteFile, config->sqliteFile);
    EXPECT_TRUE(again->LessConn);
    EXPECT_EQ(again->fundCodePage, "866");
    EXPECT_EQ(again->propertyTaxCodes, config->propertyTaxCodes);
}

TEST(BudgetDbConfigTest, OnlyTheDefaultFileMayBeMissingAndBadValuesAreRefused)
{
    QTemporaryDir folder;
    const QByteArray configHome = qgetenv("XDG_CONFIG_HOME");
    qputenv("XDG_CONFIG_HOME", folder.path().toUtf8());
    const auto defaults = BudgetDbConfig::load(BudgetDbConfig::defaultConfigPath());
    qputenv("XDG_CONFIG_HOME", configHome);
    ASSERT_TRUE(defaults);
    EXPECT_EQ(defaults->backend, BudgetDbConfig::Backend::SQLite);
    EXPECT_EQ(defaults->DSNname, "Korawin");
    EXPECT_FALSE(defaults->LessConn);
    EXPECT_EQ(defaults->propertyTaxCodes, QStringList{"A1001"});

    const QString mistyped = folder.filePath("budgetdb.ni");
    QString error;
    EXPECT_FALSE(BudgetDbConfig::load(mistyped, &error));
    EXPECT_EQ(error, "The configuration file " + mistyped + " does not exist.");

    const QString path = folder.filePath("bad.ini");
    for (const QByteArray &text : {QByteArray("[Database]\nBackend=oracle\n"), QByteArray("[PostgreSQL]\nPort=http\n"),
                                   QByteArray("[ODBC]\nLessConn=maybe\n"), QByteArray("[KoraFund]\nCodePage=utf-7\n"),
                                   QByteArray("[Reports]\nPropertyTaxCodes=\n")}) {
        writeIni(path, text);
        EXPECT_FALSE(BudgetDbConfig::load(path, &error)) << text.constData();
        EXPECT_TRUE(error.contains(path)) << error.toStdString();
    }
}

TEST(BudgetDbConfigTest, TargetsAreNamedInFullForMessagesAndShortForTitles)
{
    BudgetDbConfig config;
    config.sqliteFile = "/srv/district/budget.sqlite";
    EXPECT_EQ(config.describe(), "SQLite file /srv/district/budget.sqlite");
    EXPECT_EQ(config.shortName(), "budget.sqlite");
    config.backend = BudgetDbConfig::Backend::PostgreSQL;
    config.pg.host = "budget-server";
    config.pg.port = 6543;
    config.pg.database = "northfield";
    EXPECT_EQ(config.describe(), "PostgreSQL database \"northfield\" on budget-server:6543");
    EXPECT_EQ(config.shortName(), "budget-server/northfield");
    config.pg.host.clear();
    EXPECT_EQ(config.shortName(), "localhost/northfield");
    config.backend = BudgetDbConfig::Backend::Odbc;
    EXPECT_EQ(config.describe(), "ODBC data source \"Korawin\"");
    EXPECT_EQ(config.shortName(), "Korawin");
    config.LessConn = true;
    config.ServerName = "SERVER1";
    EXPECT_EQ(config.describe(), "ODBC data source \"Korawin\" on server \"SERVER1\"");
    EXPECT_EQ(config.shortName(), "SERVER1/Korawin");
}

TEST(BudgetDbConfigTest, ConfigFileIsChosenByOptionThenEnvironmentThenDefault)
{
    qputenv("KORA_BUDGET_CONFIG", "/env/budget.ini");
    EXPECT_EQ(BudgetDbConfig::resolvePath({"kora", "--config", "/opt/a.ini"}), "/opt/a.ini");
    EXPECT_EQ(BudgetDbConfig::resolvePath({"kora", "--config=/opt/b.ini"}), "/opt/b.ini");
    EXPECT_EQ(BudgetDbConfig::resolvePath({"kora", "USER", "C:\\KORA"}), "/env/budget.ini");
    qunsetenv("KORA_BUDGET_CONFIG");
    EXPECT_EQ(BudgetDbConfig::resolvePath({"kora"}), BudgetDbConfig::defaultConfigPath());
    EXPECT_TRUE(BudgetDbConfig::defaultConfigPath().endsWith("/kora-budget/budgetdb.ini"));
}

TEST(BudgetDbConfigTest, PostgresKeywordSettings)
{
    const auto pg = BudgetDbConfig::parsePgSettings("host=/tmp/pg port=5433  dbname=budget user=kora password=x");
    ASSERT_TRUE(pg);
    EXPECT_EQ(pg->host, "/tmp/pg");
    EXPECT_EQ(pg->port, 5433);
    EXPECT_EQ(pg->database, "budget");
    EXPECT_EQ(pg->user, "kora");
    EXPECT_EQ(pg->password, "x");
    QString error;
    EXPECT_FALSE(BudgetDbConfig::parsePgSettings("host=a sslmode=require", &error));
    EXPECT_TRUE(error.contains("sslmode"));
    EXPECT_FALSE(BudgetDbConfig::parsePgSettings("port=99999", &error));
    EXPECT_FALSE(BudgetDbConfig::parsePgSettings("garbage", &error));
}

TEST(AdoConnectionTest, OdbcConnectionStringFollowsLessConn)
{
    clsAdoConnection connection;
    EXPECT_EQ(connection.connectionString(), "Korawin");
    connection.setServerName("BUDGETSRV");
    connection.setLessConn(true);
    EXPECT_EQ(connection.connectionString(), "Driver={Pervasive ODBC Client Interface};ServerName = BUDGETSRV;"
                                             "TransportHint = TCP:SPX;ServerDSN=Korawin");
    connection.setDSNname("Other");
    EXPECT_TRUE(connection.connectionString().endsWith(";ServerDSN=Other"));
}

TEST(AdoConnectionTest, FailuresToConnectSayWhereAndWhyInTheErrorObject)
{
    QTemporaryDir folder;
    writeIni(folder.filePath("plainfile"), "x");
    std::vector<BudgetDbConfig> unreachable(3);
    unreachable[0].sqliteFile = folder.filePath("plainfile/budget.sqlite"); // a folder that is a file
    unreachable[1].backend = BudgetDbConfig::Backend::PostgreSQL;
    unreachable[1].pg.host = folder.filePath("no-server-here");
    unreachable[1].pg.port = 5499;
    unreachable[2].backend = BudgetDbConfig::Backend::Odbc;
    unreachable[2].DSNname = "NoSuchSource";
    const QString where[] = {folder.filePath("plainfile/budget.sqlite"), folder.filePath("no-server-here") + ":5499",
                             "\"NoSuchSource\""};
    for (std::size_t i = 0; i < unreachable.size(); ++i) {
        const BudgetDbConfig &config = unreachable[i];
        clsAdoConnection connection;
        connection.configure(config);
        connection.setSchemaPolicy(clsAdoConnection::SchemaPolicy::CreateOrUpgrade);
        EXPECT_FALSE(connection.OpenConnection()) << backendName(config.backend).toStdString();
        const QString text = connection.Error().ErrorText();
        EXPECT_TRUE(text.startsWith("Error connecting to Database on PSQL2000 Server. " + config.describe() + ": "))
            << text.toStdString();
        EXPECT_TRUE(text.contains(where[i])) << text.toStdString();
        EXPECT_FALSE(connection.driverMessage().isEmpty());
        EXPECT_TRUE(text.endsWith(connection.driverMessage())) << text.toStdString();
        EXPECT_FALSE(connection.dbConnection()->isOpen());
        EXPECT_TRUE(connection.dbConnection()->connectionName().isEmpty());
    }
    EXPECT_FALSE(QFileInfo::exists(folder.filePath("plainfile/budget.sqlite")));
}

TEST(AdoConnectionTest, TheProgramsOpeningCreatesNothing)
{
    QTemporaryDir folder;
    BudgetDbConfig config;
    config.sqliteFile = folder.filePath("mistyped/budget.sqlite");
    clsAdoConnection program; // the default policy is the program's
    program.configure(config);
    EXPECT_FALSE(program.OpenConnection());
    EXPECT_EQ(program.Error().ErrorText(), "Error connecting to Database on PSQL2000 Server. SQLite file " +
                                               config.sqliteFile + ": the file does not exist.");
    EXPECT_FALSE(QFileInfo::exists(folder.filePath("mistyped")));

    // An existing file without a budget database is refused and left as it was.
    config.sqliteFile = folder.filePath("empty.sqlite");
    writeIni(config.sqliteFile, "");
    program.configure(config);
    EXPECT_FALSE(program.OpenConnection());
    EXPECT_TRUE(program.Error().ErrorText().endsWith(": it holds no budget database (kora-budget-admin creates one)."))
        << program.Error().ErrorText().toStdString();
    EXPECT_EQ(QFileInfo(config.sqliteFile).size(), 0);

    // Once made, the program opens it.
    clsAdoConnection admin;
    admin.configure(config);
    admin.setSchemaPolicy(clsAdoConnection::SchemaPolicy::CreateOrUpgrade);
    ASSERT_TRUE(admin.OpenConnection()) << admin.Error().ErrorText().toStdString();
    EXPECT_TRUE(program.OpenConnection()) << program.Error().ErrorText().toStdString();
}

TEST(AdoConnectionTest, SqliteFileIsCreatedWithTheSchemaAndConnectionsAreSeparate)
{
    QTemporaryDir folder;
    BudgetDbConfig config;
    config.sqliteFile = folder.filePath("new/budget.sqlite");
    clsAdoConnection first;
    clsAdoConnection second;
    first.configure(config);
    second.configure(config);
    first.setSchemaPolicy(clsAdoConnection::SchemaPolicy::CreateOrUpgrade);
    ASSERT_TRUE(first.OpenConnection()) << first.driverMessage().toStdString();
    ASSERT_TRUE(second.OpenConnection());
    const QString name = first.dbConnection()->connectionName();
    EXPECT_NE(name, second.dbConnection()->connectionName());
    BudgetSchema::State state;
    ASSERT_TRUE(BudgetSchema::inspect(*second.dbConnection(), state));
    EXPECT_EQ(state.version, BudgetSchema::programVersion());

    const auto shared = first.dbConnection();
    EXPECT_TRUE(first.CloseConnection());
    EXPECT_FALSE(QSqlDatabase::contains(name));
    EXPECT_FALSE(shared->isOpen()) << "stores holding the connection see it closed";
    EXPECT_FALSE(shared->execute("delete from Bals"));
    ASSERT_TRUE(first.OpenConnection());
    EXPECT_TRUE(shared->isOpen()) << "reopening serves the same shared object";

    // A database from a newer program is refused on open, with the reason.
    ASSERT_TRUE(second.dbConnection()->execute("UPDATE KoraSchema SET Version = 1000"));
    clsAdoConnection third;
    third.configure(config);
    EXPECT_FALSE(third.OpenConnection());
    EXPECT_TRUE(third.Error().ErrorText().contains("newer than this program"));
}

class RecordsetTest : public testdb::DatabaseTest {};

TEST_P(RecordsetTest, ColumnsByAnyCaseNumbersFromTextAndNulls)
{
    exec("Insert into BudgetSummaryTree (ID, SortOrder, Name) values ('12 ', '  0x', NULL)");
    Recordset rows;
    ASSERT_TRUE(db()->open("select ID, SortOrder, Name from BudgetSummaryTree", rows));
    ASSERT_FALSE(rows.atEnd());
    EXPECT_TRUE(rows.hasColumn("id"));
    EXPECT_TRUE(rows.hasColumn("SORTORDER"));
    EXPECT_EQ(rows.number("Id"), 12);
    EXPECT_EQ(rows.number("sortorder"), 0);
    EXPECT_TRUE(rows.isNull("name"));
    EXPECT_EQ(rows.text("Name"), "");
    EXPECT_FALSE(rows.value("NoSuchColumn").isValid());
    rows.MoveNext();
    EXPECT_TRUE(rows.atEnd());

    DbError error;
    EXPECT_FALSE(db()->open("select * from NoSuchTable", rows, &error));
    EXPECT_FALSE(error.text.isEmpty());
    EXPECT_FALSE(db()->execute("Update Nothing set x = 1", nullptr, &error));
    EXPECT_FALSE(db()->CommitTrans(&error)) << "no transaction is open";
}

KORA_ALL_BACKENDS(RecordsetTest);

} // namespace
