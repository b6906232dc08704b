#include "budgetdbconfig.h"

#include "codepage.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSettings>
#include <QStandardPaths>

namespace {

constexpr auto configEnvironment = "KORA_BUDGET_CONFIG";

void setError(QString *error, const QString &text)
{
    if (error)
        *error = text;
}

std::optional<BudgetDbConfig::Backend> parseBackend(const QString &text)
{
    const QString name = text.trimmed().toLower();
    if (name.isEmpty() || name == u"sqlite")
        return BudgetDbConfig::Backend::SQLite;
    if (name == u"postgresql" || name == u"postgres" || name == u"pg")
        return BudgetDbConfig::Backend::PostgreSQL;
    if (name == u"odbc")
        return BudgetDbConfig::Backend::Odbc;
    return std::nullopt;
}

std::optional<bool> parseFlag(const QString &text)
{
    const QString flag = text.trimmed().toLower();
    if (flag.isEmpty() || flag == u"false" || flag == u"no" || flag == u"0")
        return false;
    if (flag == u"true" || flag == u"yes" || flag == u"1")
        return true;
    return std::nullopt;
}

QString pgHost(const BudgetDbConfig::PgSettings &pg)
{
    return pg.host.isEmpty() ? QStringLiteral("localhost") : pg.host;
}

} // namespace

QString backendName(BudgetDbConfig::Backend backend)
{
    switch (backend) {
    case BudgetDbConfig::Backend::SQLite:
        return QStringLiteral("sqlite");
    case BudgetDbConfig::Backend::PostgreSQL:
        return QStringLiteral("postgresql");
    case BudgetDbConfig::Backend::Odbc:
        return QStringLiteral("odbc");
    }
    return {};
}

QString BudgetDbConfig::defaultConfigPath()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QStringLiteral("/kora-budget/budgetdb.ini");
}

QString BudgetDbConfig::defaultSqliteFile()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
           QStringLiteral("/kora-budget/budget.sqlite");
}

QString BudgetDbConfig::resolvePath(const QStringList &arguments)
{
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString &argument = arguments[i];
        if (argument == u"--config" && i + 1 < arguments.size())
            return arguments[i + 1];
        if (argument.startsWith(QStringLiteral("--config=")))
            return argument.mid(9);
    }
    const QString fromEnvironment = qEnvironmentVariable(configEnvironment);
    return fromEnvironment.isEmpty() ? defaultConfigPath() : fromEnvironment;
}

std::optional<BudgetDbConfig> BudgetDbConfig::load(const QString &path, QString *error)
{
    BudgetDbConfig config;
    if (!QFileInfo::exists(path)) {
        if (path == defaultConfigPath())
            return config;
        setError(error, QStringLiteral("The configuration file %1 does not exist.").arg(path));
        return std::nullopt;
    }
    QSettings ini(path, QSettings::IniFormat);
    if (ini.status() != QSettings::NoError) {
        setError(error, QStringLiteral("Cannot read the configuration file %1.").arg(path));
        return std::nullopt;
    }
    const QString backendText = ini.value(QStringLiteral("Database/Backend")).toString();
    const auto backend = parseBackend(backendText);
    if (!backend) {
        setError(error, QStringLiteral("%1: unknown Database/Backend \"%2\" (use sqlite, postgresql or odbc).")
                            .arg(path, backendText));
        return std::nullopt;
    }
    config.backend = *backend;

    const QString file = ini.value(QStringLiteral("SQLite/File")).toString().trimmed();
    if (!file.isEmpty())
        config.sqliteFile = QFileInfo(file).isAbsolute() ? file : QFileInfo(path).dir().filePath(file);

    ini.beginGroup(QStringLiteral("PostgreSQL"));
    config.pg.host = ini.value(QStringLiteral("Host"), config.pg.host).toString().trimmed();
    config.pg.database = ini.value(QStringLiteral("Database"), config.pg.database).toString().trimmed();
    config.pg.user = ini.value(QStringLiteral("User")).toString().trimmed();
    config.pg.password = ini.value(QStringLiteral("Password")).toString();
    bool portOk = true;
    const QString port = ini.value(QStringLiteral("Port")).toString().trimmed();
    if (!port.isEmpty())
        config.pg.port = port.toInt(&portOk);
    ini.endGroup();
    if (!portOk || config.pg.port <= 0 || config.pg.port > 65535) {
        setError(error, QStringLiteral("%1: PostgreSQL/Port \"%2\" is not a port number.").arg(path, port));
        return std::nullopt;
    }

    ini.beginGroup(QStringLiteral("ODBC"));
    const QString dsn = ini.value(QStringLiteral("DSNname")).toString().trimmed();
    if (!dsn.isEmpty())
        config.DSNname = dsn;
    config.ServerName = ini.value(QStringLiteral("ServerName")).toString().trimmed();
    const QString driver = ini.value(QStringLiteral("Driver")).toString().trimmed();
    if (!driver.isEmpty())
        config.odbcDriver = driver;
    config.Username = ini.value(QStringLiteral("Username")).toString();
    config.Password = ini.value(QStringLiteral("Password")).toString();
    const QString lessConnText = ini.value(QStringLiteral("LessConn")).toString();
    ini.endGroup();
    const auto lessConn = parseFlag(lessConnText);
    if (!lessConn) {
        setError(error, QStringLiteral("%1: ODBC/LessConn \"%2\" is not true or false.").arg(path, lessConnText));
        return std::nullopt;
    }
    config.LessConn = *lessConn;

    config.fundCodePage = ini.value(QStringLiteral("KoraFund/CodePage")).toString().trimmed();
    if (!config.fundCodePage.isEmpty() && !recman::CodePage::byName(config.fundCodePage.toStdString())) {
        setError(error, QStringLiteral("%1: KoraFund/CodePage \"%2\" is not a code page Kora-Budget reads "
                                       "(use 1252, 437, latin1, 866 or 1251).")
                            .arg(path, config.fundCodePage));
        return std::nullopt;
    }

    const QString taxKey = QStringLiteral("Reports/PropertyTaxCodes");
    if (ini.contains(taxKey)) {
        config.propertyTaxCodes.clear();
        for (const QString &code : ini.value(taxKey).toStringList())
            if (!code.trimmed().isEmpty())
                config.propertyTaxCodes << code.trimmed();
        if (config.propertyTaxCodes.isEmpty()) {
            setError(error, QStringLiteral("%1: %2 is empty; it names the revenue codes (or their beginnings) that "
                                           "are the real property tax, A1001 by default.")
                                .arg(path, taxKey));
            return std::nullopt;
        }
    }
    return config;
}

bool BudgetDbConfig::save(const QString &path) const
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QSettings ini(path, QSettings::IniFormat);
    ini.setValue(QStringLiteral("Database/Backend"), backendName(backend));
    ini.setValue(QStringLiteral("SQLite/File"), sqliteFile);
    ini.setValue(QStringLiteral("PostgreSQL/Host"), pg.host);
    ini.setValue(QStringLiteral("PostgreSQL/Port"), pg.port);
    ini.setValue(QStringLiteral("PostgreSQL/Database"), pg.database);
    ini.setValue(QStringLiteral("PostgreSQL/User"), pg.user);
    ini.setValue(QStringLiteral("PostgreSQL/Password"), pg.password);
    ini.setValue(QStringLiteral("ODBC/DSNname"), DSNname);
    ini.setValue(QStringLiteral("ODBC/ServerName"), ServerName);
    ini.setValue(QStringLiteral("ODBC/LessConn"), LessConn);
    ini.setValue(QStringLiteral("ODBC/Driver"), odbcDriver);
    if (!fundCodePage.isEmpty())
        ini.setValue(QStringLiteral("KoraFund/CodePage"), fundCodePage);
    if (propertyTaxCodes != defaultPropertyTaxCodes())
        ini.setValue(QStringLiteral("Reports/PropertyTaxCodes"), propertyTaxCodes);
    ini.sync();
    return ini.status() == QSettings::NoError;
}

QString BudgetDbConfig::describe() const
{
    switch (backend) {
    case Backend::SQLite:
        return QStringLiteral("SQLite file %1").arg(sqliteFile);
    case Backend::PostgreSQL:
        return QStringLiteral("PostgreSQL database \"%1\" on %2:%3").arg(pg.database, pgHost(pg)).arg(pg.port);
    case Backend::Odbc:
        if (LessConn)
            return QStringLiteral("ODBC data source \"%1\" on server \"%2\"").arg(DSNname, ServerName);
        return QStringLiteral("ODBC data source \"%1\"").arg(DSNname);
    }
    return {};
}

QString BudgetDbConfig::shortName() const
{
    switch (backend) {
    case Backend::SQLite:
        return QFileInfo(sqliteFile).fileName();
    case Backend::PostgreSQL:
        return pgHost(pg) + u'/' + pg.database;
    case Backend::Odbc:
        return LessConn && !ServerName.isEmpty() ? ServerName + u'/' + DSNname : DSNname;
    }
    return {};
}

std::optional<BudgetDbConfig::PgSettings> BudgetDbConfig::parsePgSettings(const QString &keywords, QString *error)
{
    PgSettings settings;
    static const QRegularExpression pair(QStringLiteral(R"((\w+)\s*=\s*(\S*))"));
    QString rest = keywords;
    for (auto match = pair.globalMatch(keywords); match.hasNext();) {
        const auto m = match.next();
        const QString key = m.captured(1).toLower();
        const QString value = m.captured(2);
        rest.replace(m.captured(0), QString());
        if (key == u"host")
            settings.host = value;
        else if (key == u"port") {
            bool ok = false;
            settings.port = value.toInt(&ok);
            if (!ok || settings.port <= 0 || settings.port > 65535) {
                setError(error, QStringLiteral("\"%1\" is not a port number.").arg(value));
                return std::nullopt;
            }
        } else if (key == u"dbname")
            settings.database = value;
        else if (key == u"user")
            settings.user = value;
        else if (key == u"password")
            settings.password = value;
        else {
            setError(error, QStringLiteral("Unknown PostgreSQL setting \"%1\".").arg(key));
            return std::nullopt;
        }
    }
    if (!rest.trimmed().isEmpty()) {
        setError(error, QStringLiteral("Cannot read \"%1\" in the PostgreSQL settings.").arg(rest.trimmed()));
        return std::nullopt;
    }
    return settings;
}
