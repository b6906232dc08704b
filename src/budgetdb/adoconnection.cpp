#include "adoconnection.h"

#include "schema.h"

#include <QAtomicInteger>
#include <QDir>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>

std::unique_ptr<clsAdoConnection> gadoConnection;

namespace {

const QString connectFailedText = QStringLiteral("Error connecting to Database on PSQL2000 Server.");

QString uniqueConnectionName()
{
    static QAtomicInteger<quint64> counter;
    return QStringLiteral("kora-budget-%1").arg(counter.fetchAndAddRelaxed(1) + 1);
}

// Which engine sits behind an ODBC data source decides how statements are rewritten.
SqlDialect probeOdbcEngine(const QSqlDatabase &db)
{
    QSqlQuery probe(db);
    if (probe.exec(QStringLiteral("select sqlite_version()")))
        return SqlDialect::SQLite;
    if (probe.exec(QStringLiteral("select version()")) && probe.next() &&
        probe.value(0).toString().contains(QStringLiteral("PostgreSQL")))
        return SqlDialect::PostgreSQL;
    return SqlDialect::Odbc;
}

} // namespace

clsAdoConnection::clsAdoConnection() : connection_(std::make_shared<DbConnection>())
{
    error_.setErrorCls(QStringLiteral("clsAdoConnection"));
}

clsAdoConnection::~clsAdoConnection()
{
    CloseConnection();
}

void clsAdoConnection::configure(const BudgetDbConfig &config)
{
    config_ = config;
}

QString clsAdoConnection::connectionString() const
{
    if (!config_.LessConn)
        return config_.DSNname;
    return QStringLiteral("Driver={") + config_.odbcDriver + QStringLiteral("};") + QStringLiteral("ServerName = ") +
           config_.ServerName + QStringLiteral(";TransportHint = TCP:SPX") + QStringLiteral(";ServerDSN=") +
           config_.DSNname;
}

// The user reads the fixed connection message, then where the program
// looked and why it could not open it there.
bool clsAdoConnection::fail(const QString &reason, const QString &driverText)
{
    connection_->detach();
    driverMessage_ = driverText;
    error_.set(-1, QStringLiteral("OpenConnection"),
               connectFailedText + u' ' + config_.describe() + QStringLiteral(": ") + reason);
    return false;
}

bool clsAdoConnection::checkSchema()
{
    if (schemaPolicy_ == SchemaPolicy::LeaveAlone)
        return true;
    DbError error;
    if (schemaPolicy_ == SchemaPolicy::RequireBudget) {
        BudgetSchema::State state;
        if (!BudgetSchema::inspect(*connection_, state, &error))
            return fail(error.text, error.text);
        if (state.kind == BudgetSchema::Kind::Empty)
            return fail(QStringLiteral("it holds no budget database (kora-budget-admin creates one)."), QString());
    }
    if (!BudgetSchema::migrate(*connection_, &error))
        return fail(error.text, error.text);
    return true;
}

bool clsAdoConnection::OpenConnection()
{
    CloseConnection();
    error_.Clear();
    driverMessage_.clear();
    const bool sqlite = config_.backend == BudgetDbConfig::Backend::SQLite;
    if (sqlite && schemaPolicy_ == SchemaPolicy::RequireBudget && !QFileInfo::exists(config_.sqliteFile))
        return fail(QStringLiteral("the file does not exist."), QString());
    if (sqlite && schemaPolicy_ != SchemaPolicy::RequireBudget)
        QDir().mkpath(QFileInfo(config_.sqliteFile).absolutePath());

    const QString name = uniqueConnectionName();
    SqlDialect backend = SqlDialect::SQLite;
    SqlDialect statements = SqlDialect::SQLite;
    bool opened = false;
    QString detail;
    {
        QSqlDatabase db;
        switch (config_.backend) {
        case BudgetDbConfig::Backend::SQLite:
            db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
            db.setDatabaseName(config_.sqliteFile);
            db.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=5000"));
            break;
        case BudgetDbConfig::Backend::PostgreSQL:
            backend = SqlDialect::PostgreSQL;
            db = QSqlDatabase::addDatabase(QStringLiteral("QPSQL"), name);
            db.setHostName(config_.pg.host);
            db.setPort(config_.pg.port);
            db.setDatabaseName(config_.pg.database);
            db.setUserName(config_.pg.user);
            db.setPassword(config_.pg.password);
            db.setConnectOptions(QStringLiteral("connect_timeout=10"));
            break;
        case BudgetDbConfig::Backend::Odbc:
            backend = SqlDialect::Odbc;
            db = QSqlDatabase::addDatabase(QStringLiteral("QODBC"), name);
            db.setDatabaseName(connectionString());
            break;
        }
        // No credentials are passed: the data source carries them.
        opened = db.isValid() && db.open();
        detail = db.isValid() ? db.lastError().text().trimmed() : QStringLiteral("The Qt SQL driver is missing.");
        if (opened && backend == SqlDialect::Odbc)
            statements = probeOdbcEngine(db);
        else
            statements = backend;
    }
    if (!opened) {
        QSqlDatabase::removeDatabase(name);
        return fail(detail, detail);
    }
    connection_->attach(name, backend, statements);
    return checkSchema();
}

bool clsAdoConnection::CloseConnection()
{
    connection_->detach();
    return true;
}
