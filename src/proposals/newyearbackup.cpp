#include "newyearbackup.h"

#include <QDir>
#include <QFileInfo>
#include <QSqlDatabase>

namespace NewYearBackup {

namespace {

QSqlDatabase qtDatabase(DbConnection &db)
{
    return QSqlDatabase::database(db.connectionName(), false);
}

} // namespace

QString backupPathFor(const QString &databaseFile, const QString &closingYear, QDate day)
{
    const QFileInfo file(databaseFile);
    const QString stem = file.completeBaseName() + QStringLiteral("-before-") + closingYear.trimmed() +
                         QStringLiteral("-rollover-") + day.toString(Qt::ISODate);
    const QString suffix = file.suffix().isEmpty() ? QString() : u'.' + file.suffix();
    QString path = file.dir().filePath(stem + suffix);
    for (int n = 2; QFileInfo::exists(path); ++n)
        path = file.dir().filePath(stem + u'-' + QString::number(n) + suffix);
    return path;
}

bool writeSqliteCopy(DbConnection &db, const QString &closingYear, QDate day, QString &written, DbError *error)
{
    const QString file = qtDatabase(db).databaseName();
    if (db.dialect() != SqlDialect::SQLite || file.isEmpty()) {
        if (error)
            *error = {-1, QStringLiteral("The budget database is not an SQLite file; it cannot be copied here.")};
        return false;
    }
    if (db.inTransaction()) {
        if (error)
            *error = {-1, QStringLiteral("The copy of %1 cannot be taken while a change is open.").arg(file)};
        return false;
    }
    const QString path = backupPathFor(file, closingYear, day);
    DbError failure;
    if (!db.execute(QStringLiteral("VACUUM INTO ") + sqlText(path), nullptr, &failure)) {
        if (error)
            *error = {failure.number,
                      QStringLiteral("Cannot write the copy %1 of %2: %3").arg(path, file, failure.text)};
        return false;
    }
    written = path;
    return true;
}

QString serverDumpCommand(DbConnection &db, const QString &closingYear)
{
    const QSqlDatabase server = qtDatabase(db);
    const QString name = server.databaseName();
    QStringList words{QStringLiteral("pg_dump")};
    if (!server.hostName().isEmpty())
        words << QStringLiteral("--host=") + server.hostName();
    if (server.port() > 0)
        words << QStringLiteral("--port=") + QString::number(server.port());
    if (!server.userName().isEmpty())
        words << QStringLiteral("--username=") + server.userName();
    words << QStringLiteral("--format=custom")
          << QStringLiteral("--file=%1-before-%2-rollover.dump").arg(name, closingYear.trimmed()) << name;
    return words.join(u' ');
}

bool otherWorkstations(DbConnection &db, QStringList &workstations, DbError *error)
{
    Recordset rows;
    if (!db.open(QStringLiteral("select coalesce(client_hostname, host(client_addr), 'this server') as workstation, "
                                "usename as username, application_name as program from pg_stat_activity "
                                "where datname = current_database() and pid <> pg_backend_pid() "
                                "and backend_type = 'client backend' order by 1, 2"),
                 rows, error))
        return false;
    for (; !rows.atEnd(); rows.MoveNext()) {
        const QString program = rows.text("program").trimmed();
        workstations << QStringLiteral("%1 (%2%3)")
                            .arg(rows.text("workstation"), rows.text("username"),
                                 program.isEmpty() ? QString() : QStringLiteral(", ") + program);
    }
    return true;
}

} // namespace NewYearBackup
