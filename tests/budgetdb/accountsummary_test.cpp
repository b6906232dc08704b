#include "accountsummary.h"
#include "testdatabases.h"

#include <gtest/gtest.h>

#include <tuple>

namespace {

class AccountStoreTest : public testdb::DatabaseTest {
protected:
    void SetUp() override
    {
        DatabaseTest::SetUp();
        store.setAdoConnection(db());
    }

    // Adds a live code of fund A, ledger E and returns its ID.
    qint64 add(const QString &code, qint64 parent = 1, const QString &name = "Name", const QString &catA = "")
    {
        store.ClearAccountCode();
        clsAccountCode &a = store.AccountCode();
        a.setFundID("a");
        a.setLedgerID("e");
        a.setAccountCode(code);
        a.setAccountName(name);
        a.setParentID(parent);
        a.setBuildingID(parent + 100);
        a.setProgramID(parent + 200);
        a.setCatAFlag(catA);
        EXPECT_TRUE(store.Add()) << store.Error().ErrorText().toStdString();
        EXPECT_TRUE(store.Retrieve(true));
        return store.AccountCode().ID();
    }

    // Every stored column of one row, in table order.
    QString stored(qint64 id)
    {
        return rows(QString("select Ledger, FundID, AccountCode, AccountName, ParentID, ProgramID, BuildingID, "
                            "StateCode, HistoricalCode, CatAFlag, CatPFlag, CatCFlag, ProjectedAmount, CurrentBudget "
                            "from AccountCodes where ID = %1")
                        .arg(id));
    }

    QStringList codes(const std::vector<clsAccountCode> &list)
    {
        QStringList out;
        for (const auto &code : list)
            out << code.AccountCode();
        return out;
    }

    void expectError(int number, const char *sub, const char *text)
    {
        EXPECT_EQ(store.Error().ErrorNumber(), number);
        EXPECT_EQ(store.Error().ErrorSub(), sub);
        EXPECT_EQ(store.Error().ErrorText(), text);
    }

    ClsAccountSummary store;
};

TEST(AccountCodeItem, AssignmentRules)
{
    clsAccountCode code;
    code.setLedgerID(" r ");
    EXPECT_EQ(code.LedgerID(), "R");
    code.setLedgerID("X");
    EXPECT_EQ(code.LedgerID(), "R");
    code.setLedgerID("");
    EXPECT_EQ(code.LedgerID(), "");
    code.setFundID(" b ");
    EXPECT_EQ(code.FundID(), "B");
    code.setAccountCode("  B100  ");
    EXPECT_EQ(code.AccountCode(), "B100");
}

TEST_P(AccountStoreTest, AddRetrieveAndUpdateRoundTripEveryColumn)
{
    const QString longName(4000, QChar(u'x'));
    const qint64 id = add(" A100 ", 3, "  Superintendent's Office ", "A");
    ASSERT_GT(id, 0);
    EXPECT_EQ(store.AccountCode().AccountCode(), "A100");
    EXPECT_EQ(store.AccountCode().AccountName(), "Superintendent's Office");

    store.AccountCode().setAccountName(QString::fromUtf8("Élève – 学校 ") + longName);
    store.AccountCode().setProjectedAmount(*Currency::parse("-99999999999.9999"));
    store.AccountCode().setStateCode("S-1");
    ASSERT_TRUE(store.Update()) << store.Error().ErrorText().toStdString();
    EXPECT_FALSE(db()->inTransaction());
    store.ClearAccountCode();
    store.AccountCode().setID(id);
    ASSERT_TRUE(store.Retrieve());
    EXPECT_EQ(store.AccountCode().AccountName(), QString::fromUtf8("Élève – 学校 ") + longName);
    EXPECT_EQ(store.AccountCode().ProjectedAmount(), *Currency::parse("-99999999999.9999"));
    EXPECT_EQ(store.AccountCode().StateCode(), "S-1");
}

TEST_P(AccountStoreTest, FailuresEndInFalseWithTheErrorFilledAndNothingWritten)
{
    const qint64 id = add("A100");
    // A missing row.
    store.AccountCode().setID(id + 50);
    EXPECT_FALSE(store.Update());
    expectError(999, "Update", "No record found to be Update.");
    EXPECT_FALSE(db()->inTransaction());
    store.AccountCode().setID(id + 50);
    EXPECT_FALSE(store.Retrieve());
    expectError(999, "Retrieve", "Record not Found.");
    EXPECT_EQ(store.AccountCode().ID(), id + 50) << "a miss leaves the item as it was";
    EXPECT_FALSE(store.Delete());
    expectError(999, "Delete", "No record found to be delete.");
    EXPECT_FALSE(db()->inTransaction());

    // An amount beyond the column's range is refused by the database, not truncated.
    store.AccountCode().setID(id);
    ASSERT_TRUE(store.Retrieve());
    store.AccountCode().setProjectedAmount(*Currency::parse("100000000000"));
    EXPECT_FALSE(store.Update());
    EXPECT_EQ(store.Error().ErrorSub(), "Update");
    EXPECT_FALSE(store.Error().ErrorText().isEmpty());
    EXPECT_FALSE(db()->inTransaction());
    ASSERT_TRUE(store.Retrieve());
    EXPECT_TRUE(store.AccountCode().ProjectedAmount().isZero());

    // A duplicate code breaks the table's uniqueness.
    store.ClearAccountCode();
    store.AccountCode().setAccountCode("A100");
    EXPECT_FALSE(store.Add());
    EXPECT_EQ(store.Error().ErrorSub(), "Account Codes");
    EXPECT_FALSE(db()->inTransaction());
}

TEST_P(AccountStoreTest, UpdateWritesEveryColumnOfItsRowAndNoOther)
{
    const qint64 first = add("A100", 1, "First", "A");
    const qint64 second = add("A200", 2, "Second", "A");
    const qint64 third = add("A300", 3, "Third");
    const QString firstBefore = stored(first);
    const QString thirdBefore = stored(third);
    EXPECT_EQ(stored(second), "E,A,A200,Second,2,202,102,,,A,,,0,0");

    // Every column gets a value no other column holds, so a crossed or dropped one shows.
    store.ClearAccountCode();
    clsAccountCode &a = store.AccountCode();
    a.setID(second);
    a.setLedgerID("R");
    a.setFundID("C");
    a.setAccountCode("C250");
    a.setAccountName("Changed");
    a.setParentID(7);
    a.setProgramID(8);
    a.setBuildingID(9);
    a.setStateCode("ST");
    a.setHistoricalCode("H");
    a.setCatAFlag("");
    a.setCatPFlag("P");
    a.setCatCFlag("C");
    a.setProjectedAmount(*Currency::parse("12.3456"));
    ASSERT_TRUE(store.Update()) << store.Error().ErrorText().toStdString();
    EXPECT_EQ(stored(second), "R,C,C250,Changed,7,8,9,ST,H,,P,C,12.3456,0");
    EXPECT_EQ(stored(first), firstBefore);
    EXPECT_EQ(stored(third), thirdBefore);

    // Retrieve reads every column back into the item.
    store.ClearAccountCode();
    store.AccountCode().setID(second);
    ASSERT_TRUE(store.Retrieve());
    const clsAccountCode &r = store.AccountCode();
    EXPECT_EQ(
        QStringList({r.LedgerID(), r.FundID(), r.AccountCode(), r.AccountName(), QString::number(r.ParentID()),
                     QString::number(r.ProgramID()), QString::number(r.BuildingID()), r.StateCode(), r.HistoricalCode(),
                     r.CatAFlag(), r.CatPFlag(), r.CatCFlag(), r.ProjectedAmount().toSqlText()})
            .join(','),
        "R,C,C250,Changed,7,8,9,ST,H,,P,C,12.3456");

    // Retiring one code leaves the others live.
    store.AccountCode().setID(first);
    ASSERT_TRUE(store.Delete());
    EXPECT_EQ(rows("select AccountCode, HistoricalCode from AccountCodes order by AccountCode"), "A100,H|A300,|C250,H");
}

// Inside the caller's transaction each write stands or falls alone; the caller's end decides.
TEST_P(AccountStoreTest, WritesJoinTheCallersTransaction)
{
    const qint64 first = add("A100", 1, "First");
    ASSERT_TRUE(store.BeginTransaction());
    store.AccountCode().setID(first);
    ASSERT_TRUE(store.Retrieve());
    store.AccountCode().setAccountName("Changed");
    ASSERT_TRUE(store.UpdateBatch());
    store.AccountCode().setID(first + 99);
    EXPECT_FALSE(store.UpdateBatch());
    expectError(999, "Update", "No record found to be Update.");
    EXPECT_FALSE(store.Delete());
    expectError(999, "Delete", "No record found to be delete.");
    EXPECT_TRUE(db()->inTransaction()) << "a failed write leaves the caller's transaction to the caller";
    const qint64 second = add("A200", 1, "Second");
    ASSERT_TRUE(store.AbortTransaction());
    EXPECT_EQ(rows("select AccountCode, AccountName from AccountCodes"), "A100,First") << "the caller aborted";

    ASSERT_TRUE(store.BeginTransaction());
    store.AccountCode().setID(first);
    ASSERT_TRUE(store.Retrieve());
    store.AccountCode().setAccountName("Kept");
    ASSERT_TRUE(store.Update());
    store.AccountCode().setID(second + 99);
    EXPECT_FALSE(store.Update());
    add("A200", 1, "Second");
    ASSERT_TRUE(store.Endtransaction());
    EXPECT_EQ(rows("select AccountCode, AccountName from AccountCodes order by AccountCode"), "A100,Kept|A200,Second");
}

TEST_P(AccountStoreTest, ListsByFundLedgerAndView)
{
    add("A300", 1);
    add("A100", 1);
    add("A200", 2);
    // The same folder, building and program in another fund and in the other ledger.
    for (const auto &[code, fund, ledger] : {std::tuple{"B100", "B", "E"}, std::tuple{"A150", "A", "R"}}) {
        store.ClearAccountCode();
        store.AccountCode().setAccountCode(code);
        store.AccountCode().setFundID(fund);
        store.AccountCode().setLedgerID(ledger);
        store.AccountCode().setParentID(1);
        store.AccountCode().setBuildingID(102);
        store.AccountCode().setProgramID(201);
        ASSERT_TRUE(store.Add());
    }

    store.ClearAccountCode();
    store.AccountCode().setFundID("A");
    store.AccountCode().setLedgerID("E");
    store.AccountCode().setParentID(1);
    store.AccountCode().setBuildingID(102);
    store.AccountCode().setProgramID(201);
    const auto children = [&](const char *view) {
        std::vector<clsAccountCode> list;
        EXPECT_TRUE(store.GetChildren(view, list));
        return codes(list);
    };
    EXPECT_EQ(children("t"), (QStringList{"A100", "A300"}));
    EXPECT_EQ(children("B"), QStringList{"A200"});
    EXPECT_EQ(children("P"), (QStringList{"A100", "A300"}));
    EXPECT_EQ(children("x").size(), 3);
    std::vector<clsAccountCode> list;
    ASSERT_TRUE(store.GetListWithSecurity(list, {}));
    EXPECT_EQ(list.size(), 3u);

    qint64 count = -1;
    ASSERT_TRUE(store.CountAccountCode("A", count));
    // The asterisk is sent as written; SQL engines read it literally, so it matches no code here.
    EXPECT_EQ(count, 0);
    store.AccountCode().setLedgerID("R");
    list.clear();
    ASSERT_TRUE(store.GetList(list));
    EXPECT_EQ(codes(list), QStringList{"A150"});
}

TEST_P(AccountStoreTest, ValidateAccountChecksFundPrefixAndExistence)
{
    add("A100");
    store.ClearAccountCode();
    store.AccountCode().setFundID("A");
    QString code = " a123 ";
    EXPECT_TRUE(store.ValidateAccount(code));
    EXPECT_EQ(code, "A123");
    code = "B123";
    EXPECT_FALSE(store.ValidateAccount(code));
    expectError(0, "ValidateAccount", "Account code must start with the current viewing fund.");
    code = "a100";
    EXPECT_FALSE(store.ValidateAccount(code));
    expectError(0, "ValidateAccount", "Account code already exists.");
    // Existence is checked over the whole table, whatever fund the code is in.
    store.AccountCode().setFundID("");
    code = "A100";
    EXPECT_FALSE(store.ValidateAccount(code));
    bool found = false;
    ASSERT_TRUE(store.FindAccountCode("it's", found));
    EXPECT_FALSE(found);
    // A lookup that cannot run is still reported as the validation's failure.
    ClsAccountSummary orphan;
    orphan.AccountCode().setFundID("A");
    code = "A200";
    EXPECT_FALSE(orphan.ValidateAccount(code));
    EXPECT_EQ(orphan.Error().ErrorSub(), "ValidateAccount");
    EXPECT_FALSE(orphan.Error().ErrorText().isEmpty());
}

TEST_P(AccountStoreTest, BrokenConnectionMidBatchWritesNothing)
{
    if (GetParam() != testdb::Backend::PostgreSQL)
        GTEST_SKIP() << "only a server connection can be cut";
    const qint64 id = add("A100", 1, "Before");
    ASSERT_TRUE(store.BeginTransaction());
    store.AccountCode().setID(id);
    ASSERT_TRUE(store.Retrieve());
    store.AccountCode().setAccountName("During");
    ASSERT_TRUE(store.UpdateBatch());
    ASSERT_TRUE(database().terminateServerSession());
    store.AccountCode().setAccountName("After");
    EXPECT_FALSE(store.UpdateBatch());
    EXPECT_FALSE(store.Error().ErrorText().isEmpty());
    store.AbortTransaction();

    EXPECT_EQ(rowsOverNewConnection(QString("select AccountName from AccountCodes where ID = %1").arg(id)), "Before");
}

KORA_ALL_BACKENDS(AccountStoreTest);

} // namespace
