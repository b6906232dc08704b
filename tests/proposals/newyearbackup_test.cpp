#include "newyeartest.h"

#include "newyearbackup.h"

#include <QFileInfo>

namespace {

class NewYearBackupTest : public NewYearTest {};

TEST_P(NewYearBackupTest, AnSQLiteCopyBesideTheDatabaseHoldsEveryRowAndNeverOverwritesAnEarlierOne)
{
    if (GetParam() != testdb::Backend::SQLite)
        GTEST_SKIP() << "the program copies SQLite files only";
    const QDate day(2026, 6, 30);
    const QString file = database().config().sqliteFile;
    QString first;
    DbError error;
    ASSERT_TRUE(NewYearBackup::writeSqliteCopy(*db(), "2025", day, first, &error)) << error.text.toStdString();
    EXPECT_EQ(QFileInfo(first).dir(), QFileInfo(file).dir());
    EXPECT_EQ(QFileInfo(first).fileName(),
              QFileInfo(file).completeBaseName() + "-before-2025-rollover-2026-06-30." + QFileInfo(file).suffix());

    exec("Insert into LnItem values(1,9,'After the copy',1)");
    QString second;
    ASSERT_TRUE(NewYearBackup::writeSqliteCopy(*db(), "2025", day, second, &error)) << error.text.toStdString();
    EXPECT_TRUE(second.endsWith("-2." + QFileInfo(file).suffix())) << second.toStdString();

    BudgetDbConfig copy = database().config();
    copy.sqliteFile = second;
    clsAdoConnection reader;
    reader.configure(copy);
    ASSERT_TRUE(reader.OpenConnection()) << reader.driverMessage().toStdString();
    EXPECT_EQ(dump(*reader.dbConnection()), dump());
    copy.sqliteFile = first;
    clsAdoConnection older;
    older.configure(copy);
    ASSERT_TRUE(older.OpenConnection()) << older.driverMessage().toStdString();
    EXPECT_NE(dump(*older.dbConnection()), dump());

    ASSERT_TRUE(db()->BeginTrans());
    QString refused;
    EXPECT_FALSE(NewYearBackup::writeSqliteCopy(*db(), "2025", day, refused, &error));
    EXPECT_TRUE(error.text.contains(file)) << error.text.toStdString();
    db()->RollbackTrans();
}

TEST_P(NewYearBackupTest, AServerDatabaseNamesItsDumpCommandAndTheOtherWorkstations)
{
    if (GetParam() != testdb::Backend::PostgreSQL)
        GTEST_SKIP() << "only a server has other sessions and a dump tool";
    const QString name = database().config().pg.database;
    const QString command = NewYearBackup::serverDumpCommand(*db(), "2025");
    EXPECT_TRUE(command.startsWith("pg_dump ")) << command.toStdString();
    EXPECT_TRUE(command.contains("--file=" + name + "-before-2025-rollover.dump")) << command.toStdString();
    EXPECT_TRUE(command.endsWith(' ' + name)) << command.toStdString();

    QStringList alone;
    ASSERT_TRUE(NewYearBackup::otherWorkstations(*db(), alone));
    EXPECT_TRUE(alone.isEmpty()) << alone.join(", ").toStdString();
    clsAdoConnection other;
    other.configure(database().config());
    ASSERT_TRUE(other.OpenConnection()) << other.driverMessage().toStdString();
    QStringList two;
    ASSERT_TRUE(NewYearBackup::otherWorkstations(*db(), two));
    ASSERT_EQ(two.size(), 1);
    EXPECT_TRUE(two.front().contains(database().config().pg.user)) << two.front().toStdString();
}

KORA_NEW_YEAR_BACKENDS(NewYearBackupTest);

} // namespace
