#pragma once

#include "dbconnection.h"

#include <QString>

#include <gtest/gtest.h>

// Makes the database refuse one kind of write to a table where `condition`
// (on NEW, or OLD for an update) holds, as a server-side rule would, so that a test can fail a save
// part way through. `operation` is "INSERT" or "UPDATE".
inline void refuseWrites(DbConnection &db, const QString &table, const QString &operation, const QString &condition)
{
    const QString name = QStringLiteral("refuse_%1_%2").arg(table, operation).toLower();
    QStringList statements;
    if (db.dialect() == SqlDialect::PostgreSQL) {
        statements << QStringLiteral("CREATE OR REPLACE FUNCTION refuse_write() RETURNS trigger AS "
                                     "'BEGIN RAISE EXCEPTION ''write refused by the test''; END' LANGUAGE plpgsql")
                   << QStringLiteral("CREATE TRIGGER %1 BEFORE %2 ON %3 FOR EACH ROW WHEN (%4) "
                                     "EXECUTE FUNCTION refuse_write()")
                          .arg(name, operation, table, condition);
    } else {
        statements << QStringLiteral("CREATE TRIGGER %1 BEFORE %2 ON %3 WHEN %4 "
                                     "BEGIN SELECT RAISE(ABORT, 'write refused by the test'); END")
                          .arg(name, operation, table, condition);
    }
    for (const QString &sql : statements) {
        DbError error;
        ASSERT_TRUE(db.execute(sql, nullptr, &error)) << sql.toStdString() << ": " << error.text.toStdString();
    }
}
