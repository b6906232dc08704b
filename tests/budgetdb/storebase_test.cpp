#include "appglobals.h"
#include "refusedwrites.h"
#include "storebase.h"
#include "testdatabases.h"
#include "years.h"

#include <QDateTime>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QSysInfo>

#include <gtest/gtest.h>

namespace {

// A store whose one operation writes two rows: the second statement decides
// whether the whole operation stands.
class TwoRowStore : public StoreBase {
public:
    TwoRowStore() : StoreBase(QStringLiteral("TwoRowStore")) {}
    bool addTwo(const QString &fund, const QString &second)
    {
        return atomically(QStringLiteral("addTwo"), [&] {
            return run(QStringLiteral("Insert into Bals values ('%1', 1, 0)").arg(fund), QStringLiteral("addTwo")) &&
                   run(second, QStringLiteral("addTwo"));
        });
    }
    // Must touch exactly one row of Bals.
    bool zeroOne(const QString &condition) { return setOne("CurrentBalance = 0", condition); }
    // The same, audited with the other writes of a save over `batch`.
    bool setOne(const QString &assignment, const QString &condition, const QStringList &batch = {})
    {
        return changeRows(QStringLiteral("Update Bals set %1 where %2").arg(assignment, condition),
                          QStringLiteral("setOne"), Expect::ExactlyOne, countThen(QStringLiteral(" rows")),
                          {QStringLiteral("Bals"),
                           {QStringLiteral("Fund")},
                           {{QStringLiteral("CurrentBalance"), AuditColumn::Kind::Amount},
                            {QStringLiteral("PreviousBalance"), AuditColumn::Kind::Amount}},
                           condition,
                           {},
                           batch});
    }
};

class StoreBaseTest : public testdb::DatabaseTest {
protected:
    void SetUp() override
    {
        DatabaseTest::SetUp();
        store.setAdoConnection(db());
    }
    QString funds() { return rows("select Fund, CurrentBalance from Bals order by Fund"); }

    TwoRowStore store;
};

TEST_P(StoreBaseTest, AnOperationOfItsOwnCommitsWholeOrNothing)
{
    EXPECT_FALSE(store.addTwo("A", "Insert into NoSuchTable values (1)"));
    EXPECT_EQ(store.Error().ErrorSub(), "addTwo");
    EXPECT_FALSE(db()->inTransaction());
    EXPECT_EQ(funds(), "") << "the first row must have been rolled back";

    EXPECT_TRUE(store.addTwo("A", "Insert into Bals values ('B', 2, 0)"));
    EXPECT_FALSE(db()->inTransaction());
    EXPECT_EQ(funds(), "A,1|B,2");
}

TEST_P(StoreBaseTest, AWrongRowCountIsUndoneNotCommitted)
{
    exec("Insert into Bals values ('A', 5, 0)");
    exec("Insert into Bals values ('B', 6, 0)");
    EXPECT_FALSE(store.zeroOne("CurrentBalance > 0"));
    EXPECT_EQ(store.Error().ErrorText(), "2 rows");
    EXPECT_EQ(store.Error().ErrorNumber(), 999);
    EXPECT_FALSE(store.zeroOne("Fund = 'Z'"));
    EXPECT_EQ(store.Error().ErrorText(), "0 rows");
    EXPECT_EQ(funds(), "A,5|B,6");
    EXPECT_TRUE(store.zeroOne("Fund = 'B'"));
    EXPECT_EQ(funds(), "A,5|B,0");
}

// Inside a caller's transaction an operation runs in a savepoint: its failure
// undoes only its own work, and the caller's commit or rollback decides the rest.
TEST_P(StoreBaseTest, NestedWorkRollsBackToWhereItBegan)
{
    exec("Insert into Bals values ('A', 5, 0)");
    exec("Insert into Bals values ('B', 6, 0)");
    ASSERT_TRUE(store.BeginTransaction());
    EXPECT_TRUE(store.addTwo("C", "Insert into Bals values ('D', 2, 0)"));
    EXPECT_FALSE(store.addTwo("E", "Insert into NoSuchTable values (1)"));
    EXPECT_FALSE(store.zeroOne("CurrentBalance > 0"));
    EXPECT_EQ(db()->transactionDepth(), 1) << "each operation closed its own savepoint";
    // After a failed statement the caller's transaction still takes work (PostgreSQL would refuse it otherwise).
    EXPECT_TRUE(store.zeroOne("Fund = 'A'"));
    ASSERT_TRUE(store.Endtransaction());
    EXPECT_FALSE(db()->inTransaction());
    EXPECT_EQ(funds(), "A,0|B,6|C,1|D,2");
}

TEST_P(StoreBaseTest, TheCallersRollbackUndoesNestedWorkThatSucceeded)
{
    ASSERT_TRUE(store.BeginTransaction());
    ASSERT_TRUE(store.BeginTransaction());
    EXPECT_TRUE(store.addTwo("A", "Insert into Bals values ('B', 2, 0)"));
    ASSERT_TRUE(store.Endtransaction());
    EXPECT_TRUE(db()->inTransaction()) << "the inner commit only keeps the work in the outer transaction";
    ASSERT_TRUE(store.AbortTransaction());
    EXPECT_EQ(funds(), "");
    EXPECT_FALSE(store.AbortTransaction()) << "nothing left to roll back";
    EXPECT_FALSE(store.Error().ErrorText().isEmpty());
}

TEST_P(StoreBaseTest, DatabaseErrorsKeepTheDatabasesWords)
{
    EXPECT_FALSE(store.addTwo("A", "Insert into NoSuchTable values (1)"));
    const QString text = store.Error().ErrorText().toLower();
    EXPECT_TRUE(text.contains("nosuchtable") || text.contains("no such table")) << text.toStdString();
    for (const char *recordManagerText : {"Invalid operation.", "I/o error.", "Invalid key number"})
        EXPECT_NE(store.Error().ErrorText(), recordManagerText);

    clsYears years;
    years.setAdoConnection(db());
    exec("DROP TABLE Parms");
    EXPECT_FALSE(years.CheckCalendarYear());
    EXPECT_EQ(years.Error().ErrorSub(), "Retrive Calendar Year");
    EXPECT_TRUE(years.Error().ErrorText().contains("Parms", Qt::CaseInsensitive))
        << years.Error().ErrorText().toStdString();
}

// Another program holding the file for writing: the user is told why and what to do.
TEST_P(StoreBaseTest, ABusySqliteFileSaysAnotherUserIsSaving)
{
    if (GetParam() != testdb::Backend::SQLite)
        GTEST_SKIP() << "a file lock is SQLite's";
    exec("PRAGMA busy_timeout = 50");
    const QString holder = QStringLiteral("busy-holder");
    {
        QSqlDatabase other = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), holder);
        other.setDatabaseName(database().config().sqliteFile);
        ASSERT_TRUE(other.open());
        QSqlQuery hold(other);
        ASSERT_TRUE(hold.exec(QStringLiteral("BEGIN EXCLUSIVE")));

        EXPECT_FALSE(store.addTwo("A", "Insert into Bals values ('B', 2, 0)"));
        const QString written = store.Error().ErrorText();
        EXPECT_TRUE(written.startsWith("Another user is saving to the budget database. Please try again."))
            << written.toStdString();
        EXPECT_TRUE(written.contains("locked")) << "the database's own words stay: " << written.toStdString();
        EXPECT_EQ(store.Error().ErrorNumber() & 0xff, 5);
        clsYears years;
        years.setAdoConnection(db());
        EXPECT_FALSE(years.GetCurrentBudgetYear());
        EXPECT_TRUE(years.Error().ErrorText().startsWith("Another user is saving"))
            << years.Error().ErrorText().toStdString();

        ASSERT_TRUE(hold.exec(QStringLiteral("ROLLBACK")));
        other.close();
    }
    QSqlDatabase::removeDatabase(holder);
    EXPECT_TRUE(store.addTwo("A", "Insert into Bals values ('B', 2, 0)")) << store.Error().ErrorText().toStdString();
}

// The audit trail: written with the change, gone with its rollback.
TEST_P(StoreBaseTest, AWriteIsAuditedColumnByColumnAndARollbackLeavesNoEntry)
{
    gstrUserID = "BUSINESS";
    store.setAuditTask("Fund Balances");
    exec("Insert into Bals values ('A', 5, 0)");
    exec("Insert into Bals values ('B', 6.25, 3)");
    const QDateTime before = QDateTime::currentDateTimeUtc().addSecs(-1);
    ASSERT_TRUE(store.zeroOne("Fund = 'B'"));
    EXPECT_EQ(auditTrail(), "Fund Balances,Bals,Fund=B,,CurrentBalance,6.25,0") << "the unchanged column is left out";
    EXPECT_EQ(rows("select UserID, Workstation from AuditTrail").toStdString(),
              "BUSINESS," + QSysInfo::machineHostName().toStdString());
    const QDateTime when = QDateTime::fromString(scalar("select ChangedAt from AuditTrail"), Qt::ISODateWithMs);
    EXPECT_EQ(when.timeSpec(), Qt::UTC);
    EXPECT_TRUE(when >= before && when <= QDateTime::currentDateTimeUtc()) << when.toString().toStdString();

    ASSERT_TRUE(store.BeginTransaction());
    EXPECT_TRUE(store.zeroOne("Fund = 'A'"));
    ASSERT_TRUE(store.AbortTransaction());
    EXPECT_FALSE(store.zeroOne("Fund = 'Z'"));
    EXPECT_EQ(rows("select RowKey from AuditTrail"), "Fund=B");

    // An entry that cannot be written takes its change with it.
    refuseWrites(*db(), "AuditTrail", "INSERT", "NEW.RowKey = 'Fund=A'");
    EXPECT_FALSE(store.zeroOne("Fund = 'A'"));
    EXPECT_EQ(funds(), "A,5|B,0");
    resetAppGlobals();
}

// A save's writes are read once before and once at its end, and recorded only if it commits.
TEST_P(StoreBaseTest, TheWritesOfASaveAreAuditedTogetherAtItsEnd)
{
    store.setAuditTask("Fund Balances");
    exec("Insert into Bals values ('A', 5, 0)");
    exec("Insert into Bals values ('B', 6.25, 3)");
    exec("Insert into Bals values ('C', 1, 2)");
    const QStringList all{"Fund <> 'none'"};
    const auto save = [&](const std::function<bool()> &writes) {
        EXPECT_TRUE(store.BeginTransaction());
        if (writes())
            return store.Endtransaction();
        store.AbortTransaction();
        return false;
    };
    ASSERT_TRUE(save([&] {
        EXPECT_TRUE(store.setOne("CurrentBalance = 0", "Fund = 'A'", all));
        EXPECT_FALSE(store.setOne("CurrentBalance = 0", "Fund = 'Z'", all)) << "a failed write leaves the rest";
        EXPECT_TRUE(store.setOne("PreviousBalance = 4", "Fund = 'C'", all));
        EXPECT_TRUE(store.setOne("PreviousBalance = 5", "Fund = 'C'", all));
        EXPECT_EQ(rows("select RowKey from AuditTrail"), "") << "recorded when the save ends";
        return true;
    }));
    EXPECT_EQ(auditTrail(), "Fund Balances,Bals,Fund=A,,CurrentBalance,5,0|"
                            "Fund Balances,Bals,Fund=C,,PreviousBalance,2,5");

    // An aborted save records nothing, now or with the next save.
    EXPECT_FALSE(save([&] { return store.setOne("CurrentBalance = 7", "Fund = 'B'", all) && false; }));
    ASSERT_TRUE(save([&] { return store.setOne("CurrentBalance = 8", "Fund = 'C'", all); }));
    EXPECT_EQ(rows("select RowKey, NewValue from AuditTrail where ID > 2"), "Fund=C,8");
    EXPECT_EQ(funds(), "A,0|B,6.25|C,8");

    // Recorded inside the save: a caller's rollback takes the entries along, and
    // entries that cannot be written take the save with them.
    ASSERT_TRUE(store.BeginTransaction());
    ASSERT_TRUE(save([&] { return store.setOne("CurrentBalance = 9", "Fund = 'A'", all); }));
    ASSERT_TRUE(store.AbortTransaction());
    refuseWrites(*db(), "AuditTrail", "INSERT", "NEW.RowKey = 'Fund=B'");
    EXPECT_FALSE(save([&] { return store.setOne("CurrentBalance = 9", "Fund = 'B'", all); }));
    EXPECT_EQ(funds(), "A,0|B,6.25|C,8");
    EXPECT_EQ(rows("select RowKey from AuditTrail order by ID"), "Fund=A|Fund=C|Fund=C");

    // A batch read in parts compares the rows of every part.
    const QStringList parts{"Fund = 'A'", "Fund in ('B', 'C')"};
    ASSERT_TRUE(save([&] {
        return store.setOne("CurrentBalance = 1", "Fund = 'A'", parts) &&
               store.setOne("CurrentBalance = 2", "Fund = 'C'", parts);
    }));
    EXPECT_EQ(rows("select RowKey, NewValue from AuditTrail where ID > 3 order by ID"), "Fund=A,1|Fund=C,2");
}

TEST_P(StoreBaseTest, TheTrailIsReadNewestFirstThroughItsFilters)
{
    const auto entry = [this](const char *when, const char *user, const char *task, const char *account) {
        exec(QString("Insert into AuditTrail (ChangedAt, UserID, Task, AccountCode, NewValue) values "
                     "('%1','%2','%3','%4','%1')")
                 .arg(when, user, task, account));
    };
    entry("2026-03-01T23:59:59.999Z", "CLERK", "Proposed Budget", "A2100");
    entry("2026-03-02T00:00:00.000Z", "BUSINESS", "Line Items", "A2100.1");
    entry("2026-03-03T08:00:00.000Z", "CLERK", "Proposed Budget", "B2100");
    entry("2026-02-28T12:00:00.000Z", "CLERK", "Fund Balances", "");
    const auto read = [this](const AuditFilter &filter) {
        std::vector<AuditEntry> entries;
        DbError error;
        EXPECT_TRUE(AuditTrail::read(*db(), filter, entries, &error)) << error.text.toStdString();
        QStringList when;
        for (const AuditEntry &e : entries)
            when << e.changedAt.mid(5, 5);
        return when.join(' ').toStdString();
    };
    EXPECT_EQ(read({}), "03-03 03-02 03-01 02-28");
    EXPECT_EQ(read({"A21", {}, {}, {}, {}}), "03-02 03-01");
    EXPECT_EQ(read({{}, "CLERK", "Proposed Budget", {}, {}}), "03-03 03-01");
    EXPECT_EQ(read({{}, {}, {}, QDate(2026, 3, 1), QDate(2026, 3, 2)}), "03-02 03-01") << "both days whole";
    QStringList users;
    ASSERT_TRUE(AuditTrail::users(*db(), users, nullptr));
    EXPECT_EQ(users, QStringList({"BUSINESS", "CLERK"}));
}

KORA_ALL_BACKENDS(StoreBaseTest);

} // namespace
