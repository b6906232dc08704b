#pragma once

#include <QString>
#include <QStringList>

#include <optional>

// Where the budget database is and how to reach it, read from an INI file
// (see docs/configuration.md for the keys and where the file is looked for).
struct BudgetDbConfig {
    enum class Backend { SQLite, PostgreSQL, Odbc };

    struct PgSettings {
        QString host; // a host name or the directory of a unix socket
        int port = 5432;
        QString database = QStringLiteral("kora_budget");
        QString user;
        QString password;
    };

    Backend backend = Backend::SQLite;
    QString sqliteFile = defaultSqliteFile();
    PgSettings pg;
    // ODBC: by data source name alone, or (LessConn) by a full driver string.
    QString DSNname = QStringLiteral("Korawin");
    QString ServerName;
    bool LessConn = false;
    QString odbcDriver = QStringLiteral("Pervasive ODBC Client Interface");
    QString Username;
    QString Password;
    // The code page of the text in Kora-Fund's files ("1252", "437", "latin1",
    // "866" or "1251"); empty for Windows-1252.
    QString fundCodePage;
    // The general fund's revenue codes that are the real property tax, each a
    // code or the beginning of codes ("A1001" takes "A1001" and "A1001.01"):
    // the tax levy is what the budget needs from them.
    QStringList propertyTaxCodes = defaultPropertyTaxCodes();

    // The per-user file used when neither --config nor KORA_BUDGET_CONFIG names one.
    static QString defaultConfigPath();
    static QString defaultSqliteFile();
    static QStringList defaultPropertyTaxCodes() { return {QStringLiteral("A1001")}; }
    // --config FILE (or --config=FILE) in arguments, else $KORA_BUDGET_CONFIG, else the default.
    static QString resolvePath(const QStringList &arguments);

    // The per-user default file may be missing and then gives the defaults; a
    // file named any other way must exist. A missing or malformed file gives
    // nullopt and *error naming it.
    static std::optional<BudgetDbConfig> load(const QString &path, QString *error = nullptr);
    bool save(const QString &path) const;

    // What was looked for, for messages: "SQLite file /srv/budget.sqlite",
    // "PostgreSQL database "kora_budget" on budget-server:5432", ...
    QString describe() const;
    // The database in a few words, for the main window's title: the SQLite
    // file's name, server/database, or the ODBC data source.
    QString shortName() const;

    // libpq-style "host=/tmp/pg port=5433 dbname=budget user=kora password=x".
    static std::optional<PgSettings> parsePgSettings(const QString &keywords, QString *error = nullptr);
};

QString backendName(BudgetDbConfig::Backend backend);
