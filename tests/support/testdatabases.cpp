#include "testdatabases.h"

#include <QCoreApplication>
#include <QFile>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>

#include <atomic>
#include <clocale>

namespace testdb {
namespace {

constexpr auto pgEnvironment = "KORA_TEST_PG";
constexpr auto odbcDriverFile = "/usr/lib/x86_64-linux-gnu/odbc/libsqlite3odbc.so";

std::atomic<int> databaseCounter{0};

QString uniqueSuffix()
{
    return QStringLiteral("%1_%2").arg(QCoreApplication::applicationPid()).arg(++databaseCounter);
}

bool writeFile(const QString &path, const QString &text)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;
    return file.write(text.toUtf8()) >= 0;
}

// Runs one statement on a short-lived administrative connection to the test server.
bool runOnServer(const BudgetDbConfig::PgSettings &pg, const QString &sql, QString *error)
{
    const QString name = QStringLiteral("kora-test-admin-") + uniqueSuffix();
    bool ok = false;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QPSQL"), name);
        db.setHostName(pg.host);
        db.setPort(pg.port);
        db.setDatabaseName(pg.database);
        db.setUserName(pg.user);
        db.setPassword(pg.password);
        if (db.open()) {
            QSqlQuery query(db);
            ok = query.exec(sql);
            if (!ok && error)
                *error = query.lastError().text();
        } else if (error) {
            *error = db.lastError().text();
        }
        db.close();
    }
    QSqlDatabase::removeDatabase(name);
    return ok;
}

std::optional<BudgetDbConfig::PgSettings> serverSettings(QString *why)
{
    const QString keywords = qEnvironmentVariable(pgEnvironment);
    if (keywords.isEmpty()) {
        *why = QStringLiteral("KORA_TEST_PG is not set; run scripts/test.sh to test on PostgreSQL");
        return std::nullopt;
    }
    return BudgetDbConfig::parsePgSettings(keywords, why);
}

} // namespace

std::vector<Backend> allBackends()
{
    return {Backend::SQLite, Backend::PostgreSQL, Backend::Odbc};
}

std::string backendName(Backend backend)
{
    switch (backend) {
    case Backend::SQLite:
        return "SQLite";
    case Backend::PostgreSQL:
        return "PostgreSQL";
    case Backend::Odbc:
        return "Odbc";
    }
    return "Unknown";
}

std::string paramName(const ::testing::TestParamInfo<Backend> &info)
{
    return backendName(info.param);
}

TestDatabase::TestDatabase(Backend backend)
    : backend_(backend), folder_(std::make_unique<QTemporaryDir>()), connection_(std::make_unique<clsAdoConnection>())
{
    if (!folder_->isValid()) {
        unavailable_ = QStringLiteral("cannot make a temporary folder");
        return;
    }
    config_.sqliteFile = folder_->filePath(QStringLiteral("budget.sqlite"));
    const bool ready = backend == Backend::SQLite       ? true
                       : backend == Backend::PostgreSQL ? preparePostgres()
                                                        : prepareOdbc();
    if (!ready)
        return;
    connection_->configure(config_);
    if (!connection_->OpenConnection())
        unavailable_ = connection_->Error().ErrorText() + QStringLiteral(" (") + connection_->driverMessage() +
                       QStringLiteral(")");
}

TestDatabase::~TestDatabase()
{
    connection_->CloseConnection();
    if (!pgDatabase_.isEmpty())
        runOnServer(adminPg_, QStringLiteral("DROP DATABASE IF EXISTS %1 WITH (FORCE)").arg(pgDatabase_), nullptr);
}

bool TestDatabase::preparePostgres()
{
    const auto settings = serverSettings(&unavailable_);
    if (!settings)
        return false;
    const QString name = QStringLiteral("kora_test_") + uniqueSuffix();
    QString error;
    if (!runOnServer(*settings, QStringLiteral("CREATE DATABASE %1").arg(name), &error)) {
        unavailable_ = QStringLiteral("cannot create a test database: ") + error;
        return false;
    }
    pgDatabase_ = name;
    adminPg_ = *settings;
    config_.backend = BudgetDbConfig::Backend::PostgreSQL;
    config_.pg = *settings;
    config_.pg.database = name;
    return true;
}

bool TestDatabase::prepareOdbc()
{
    if (!QFile::exists(QString::fromLatin1(odbcDriverFile))) {
        unavailable_ = QStringLiteral("the SQLite ODBC driver (libsqliteodbc) is not installed");
        return false;
    }
    // A private driver and data source list: "Korawin" names this test's file.
    const QString iniFolder = folder_->path();
    const bool written =
        writeFile(iniFolder + QStringLiteral("/odbcinst.ini"),
                  QStringLiteral("[KoraSQLite3]\nDescription=SQLite3 ODBC Driver\nDriver=%1\nSetup=%1\nThreading=2\n")
                      .arg(QString::fromLatin1(odbcDriverFile))) &&
        writeFile(iniFolder + QStringLiteral("/odbc.ini"),
                  QStringLiteral("[Korawin]\nDriver=KoraSQLite3\nDatabase=%1\nTimeout=5000\n").arg(config_.sqliteFile));
    if (!written) {
        unavailable_ = QStringLiteral("cannot write the ODBC configuration");
        return false;
    }
    // The driver manager converts the program's wide text to the driver's narrow
    // text through the locale's character set, as an application's start-up sets it.
    setlocale(LC_CTYPE, "C.UTF-8");
    qputenv("ODBCSYSINI", iniFolder.toLocal8Bit());
    qputenv("ODBCINI", (iniFolder + QStringLiteral("/odbc.ini")).toLocal8Bit());
    config_.backend = BudgetDbConfig::Backend::Odbc;
    config_.DSNname = QStringLiteral("Korawin");
    config_.LessConn = false;
    return true;
}

bool TestDatabase::terminateServerSession()
{
    if (backend_ != Backend::PostgreSQL)
        return false;
    QString error;
    return runOnServer(adminPg_,
                       QStringLiteral("SELECT pg_terminate_backend(pid) FROM pg_stat_activity "
                                      "WHERE datname = '%1' AND pid <> pg_backend_pid()")
                           .arg(pgDatabase_),
                       &error);
}

void DatabaseTest::SetUp()
{
    database_ = std::make_unique<TestDatabase>(GetParam());
    if (database_->unavailable().isEmpty())
        return;
    if (GetParam() == Backend::PostgreSQL && qEnvironmentVariableIsEmpty(pgEnvironment))
        GTEST_SKIP() << database_->unavailable().toStdString();
    FAIL() << backendName(GetParam()) << " test database: " << database_->unavailable().toStdString();
}

void DatabaseTest::TearDown()
{
    database_.reset();
}

void DatabaseTest::exec(const QString &sql)
{
    DbError error;
    ASSERT_TRUE(db()->execute(sql, nullptr, &error)) << sql.toStdString() << ": " << error.text.toStdString();
}

} // namespace testdb
