#include "testdatabases.h"

#include "currency.h"

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

// The driver manager reads its driver and data source lists once per process,
// so the process gets one private pair of lists, set up before any test runs:
// a driver for SQLite and the data source "Korawin" on a file in a temporary folder.
class OdbcSandbox {
public:
    OdbcSandbox()
    {
        if (!QFile::exists(QString::fromLatin1(odbcDriverFile))) {
            problem_ = QStringLiteral("the SQLite ODBC driver (libsqliteodbc) is not installed");
            return;
        }
        const QString ini = folder_.path();
        const QString file = folder_.filePath(QStringLiteral("korawin.sqlite"));
        const bool written =
            folder_.isValid() &&
            writeFile(ini + QStringLiteral("/odbcinst.ini"),
                      QStringLiteral("[KoraSQLite3]\nDescription=SQLite3 ODBC Driver\nDriver=%1\nSetup=%1\n")
                          .arg(QString::fromLatin1(odbcDriverFile))) &&
            writeFile(ini + QStringLiteral("/odbc.ini"),
                      QStringLiteral("[Korawin]\nDriver=KoraSQLite3\nDatabase=%1\nTimeout=5000\n").arg(file));
        if (!written) {
            problem_ = QStringLiteral("cannot write the ODBC configuration");
            return;
        }
        qputenv("ODBCSYSINI", ini.toLocal8Bit());
        qputenv("ODBCINI", (ini + QStringLiteral("/odbc.ini")).toLocal8Bit());
        // The driver manager converts wide text for a narrow driver through the
        // locale's character set, which an application's start-up sets.
        setlocale(LC_CTYPE, "C.UTF-8");
        databaseFile_ = file;
    }
    const QString &databaseFile() const { return databaseFile_; }
    const QString &problem() const { return problem_; }

private:
    QTemporaryDir folder_;
    QString databaseFile_;
    QString problem_;
};

OdbcSandbox &odbcSandbox()
{
    static OdbcSandbox sandbox;
    return sandbox;
}

// Before main: a test that touches ODBC first must already see the private lists.
const bool odbcReady = (odbcSandbox(), true);

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
    connection_->setSchemaPolicy(clsAdoConnection::SchemaPolicy::CreateOrUpgrade);
    if (!connection_->OpenConnection())
        unavailable_ = connection_->Error().ErrorText() + QStringLiteral(" (") + connection_->driverMessage() +
                       QStringLiteral(")");
}

TestDatabase::~TestDatabase()
{
    connection_->CloseConnection();
    if (!odbcFile_.isEmpty())
        QFile::remove(odbcFile_);
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
    const QString &database = odbcSandbox().databaseFile();
    if (database.isEmpty()) {
        unavailable_ = odbcSandbox().problem();
        return false;
    }
    // "Korawin" always names the same file: give this test an empty one.
    QFile::remove(database);
    odbcFile_ = database;
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

namespace {

QString rowsOf(DbConnection &db, const QString &sql)
{
    Recordset rs;
    DbError error;
    EXPECT_TRUE(db.open(sql, rs, &error)) << sql.toStdString() << ": " << error.text.toStdString();
    const QStringList columns = sql.section(QStringLiteral(" from "), 0, 0, QString::SectionCaseInsensitiveSeps)
                                    .section(QStringLiteral("select "), 1, -1, QString::SectionCaseInsensitiveSeps)
                                    .split(u',');
    QStringList out;
    for (; !rs.atEnd(); rs.MoveNext()) {
        QStringList cells;
        for (const QString &column : columns) {
            const QString text = rs.text(column.trimmed().section(u'.', -1));
            const auto number = Currency::parse(text);
            cells << (number ? number->toSqlText() : text);
        }
        out << cells.join(u',');
    }
    return out.join(u'|');
}

} // namespace

QString DatabaseTest::rows(const QString &sql)
{
    return rowsOf(*db(), sql);
}

QString DatabaseTest::rowsOverNewConnection(const QString &sql)
{
    clsAdoConnection fresh;
    fresh.configure(database_->config());
    if (!fresh.OpenConnection()) {
        ADD_FAILURE() << "a new connection: " << fresh.driverMessage().toStdString();
        return {};
    }
    return rowsOf(*fresh.dbConnection(), sql);
}

void DatabaseTest::endSessionOnWrite(const QString &table, const QString &operation, const QString &condition)
{
    exec(QStringLiteral("CREATE OR REPLACE FUNCTION end_session() RETURNS trigger AS 'BEGIN PERFORM "
                        "pg_terminate_backend(pg_backend_pid()); RETURN NEW; END' LANGUAGE plpgsql"));
    exec(QStringLiteral("CREATE TRIGGER end_session BEFORE %1 ON %2 FOR EACH ROW WHEN (%3) EXECUTE FUNCTION "
                        "end_session()")
             .arg(operation, table, condition));
}

} // namespace testdb
