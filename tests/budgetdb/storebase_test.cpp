#include "storebase.h"
#include "testdatabases.h"

#include <gtest/gtest.h>

namespace {

// The shared transaction rule of multi-statement store operations.
class TwoRowStore : public StoreBase {
public:
    TwoRowStore() : StoreBase(QStringLiteral("TwoRowStore")) {}
    bool addTwo(const QString &second)
    {
        return inTransaction(QStringLiteral("addTwo"), [&] {
            return run(QStringLiteral("Insert into Bals values ('A', 1, 0)"), QStringLiteral("addTwo")) &&
                   run(second, QStringLiteral("addTwo"));
        });
    }
};

class StoreBaseTest : public testdb::DatabaseTest {
protected:
    qint64 rowCount()
    {
        Recordset rows;
        EXPECT_TRUE(db()->open(QStringLiteral("select count(*) as n from Bals"), rows));
        return rows.number(QStringLiteral("n"));
    }
};

TEST_P(StoreBaseTest, OwnTransactionCommitsWholeOrNothing)
{
    TwoRowStore store;
    store.setAdoConnection(db());
    EXPECT_FALSE(store.addTwo(QStringLiteral("Insert into NoSuchTable values (1)")));
    EXPECT_EQ(store.Error().ErrorSub(), "addTwo");
    EXPECT_FALSE(db()->inTransaction());
    EXPECT_EQ(rowCount(), 0) << "the first row must have been rolled back";

    EXPECT_TRUE(store.addTwo(QStringLiteral("Insert into Bals values ('B', 2, 0)")));
    EXPECT_FALSE(db()->inTransaction());
    EXPECT_EQ(rowCount(), 2);
}

TEST_P(StoreBaseTest, CallersTransactionIsLeftToTheCaller)
{
    TwoRowStore store;
    store.setAdoConnection(db());
    ASSERT_TRUE(store.BeginTransaction());
    EXPECT_TRUE(store.addTwo(QStringLiteral("Insert into Bals values ('B', 2, 0)")));
    EXPECT_TRUE(db()->inTransaction());
    store.AbortTransaction();
    EXPECT_EQ(rowCount(), 0);
}

KORA_ALL_BACKENDS(StoreBaseTest);

} // namespace
