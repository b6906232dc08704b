#include "sampleinstallationfixture.h"
#include "securityrecords.h"

using SecurityTest = SampleInstallationTest;

TEST_F(SecurityTest, UsersAreFoundByLoginIdWhateverTheCase)
{
    classObjectUsers users;
    ASSERT_EQ(users.Init(root(), fund()), 0) << users.Message().toStdString();
    users.LoginUserID = QStringLiteral("business");
    ASSERT_EQ(users.RetrieveByLoginID(), 0);
    EXPECT_EQ(users.ID, QStringLiteral("U001"));
    EXPECT_EQ(users.DisplayName(), QStringLiteral("Pat Q. Business"));
    EXPECT_EQ(users.PrintPreview, QStringLiteral("1"));

    users.Clear();
    users.LoginUserID = QStringLiteral("CLERK");
    ASSERT_EQ(users.RetrieveByLoginID(), 0);
    EXPECT_EQ(users.DisplayName(), QStringLiteral("Casey Clerk"));

    users.LoginUserID = QStringLiteral("JDOE");
    EXPECT_EQ(users.RetrieveByLoginID(), 4);
}

TEST_F(SecurityTest, BudgetPrivilegesOfTheFullAndTheLimitedUser)
{
    QSet<QString> keys;
    ASSERT_EQ(userPrivilegeKeys(root(), fund(), QStringLiteral("U001"), QStringLiteral("BUDGET"), keys), 0);
    EXPECT_EQ(keys.size(), 18);
    EXPECT_TRUE(keys.contains(QStringLiteral("mnuInitializeBudget")));
    EXPECT_FALSE(keys.contains(QStringLiteral("mnuPostJournal"))); // another application's key

    ASSERT_EQ(userPrivilegeKeys(root(), fund(), QStringLiteral("U002"), QStringLiteral("BUDGET"), keys), 0);
    EXPECT_EQ(keys, (QSet<QString>{QStringLiteral("mnuFileProposedBudget"), QStringLiteral("mnuReportBudgetStatus"),
                                   QStringLiteral("mnuReportRevenueStatus"), QStringLiteral("mnuChooseProposal")}));

    ASSERT_EQ(userPrivilegeKeys(root(), fund(), QStringLiteral("U001"), QStringLiteral("FUND"), keys), 0);
    EXPECT_TRUE(keys.isEmpty()); // no UserPrivileges record for that application
    ASSERT_EQ(userPrivilegeKeys(root(), fund(), QStringLiteral("U404"), QStringLiteral("BUDGET"), keys), 0);
    EXPECT_TRUE(keys.isEmpty());

    QTemporaryDir empty;
    EXPECT_EQ(userPrivilegeKeys(empty.path(), empty.path(), QStringLiteral("U001"), QStringLiteral("BUDGET"), keys),
              DataAccessControl::StatusDictionaryMissing);
}

TEST_F(SecurityTest, AccountCodeAccessEntriesAndModules)
{
    classObjectAcctCode access;
    ASSERT_EQ(access.Init(root(), fund()), 0);
    std::vector<AcctCodeFields> entries;
    ASSERT_EQ(access.GetListForUser(QStringLiteral("U002"), entries), 0);
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries[0].Entry, QStringLiteral("A2###.*"));
    EXPECT_TRUE(accountCodeAllowed(QStringLiteral("A2110.450"), entries));
    EXPECT_TRUE(accountCodeAllowed(QStringLiteral("f2250.150"), entries));
    EXPECT_FALSE(accountCodeAllowed(QStringLiteral("A1010.150"), entries));
    std::vector<AcctCodeFields> none;
    ASSERT_EQ(access.GetListForUser(QStringLiteral("U001"), none), 0);
    EXPECT_TRUE(none.empty());
    EXPECT_FALSE(accountCodeAllowed(QStringLiteral("A2110.450"), none));

    classObjectAppModul modules;
    ASSERT_EQ(modules.Init(root(), fund()), 0);
    std::vector<AppModulFields> list;
    ASSERT_EQ(modules.GetListForApplication(QStringLiteral("budget"), list), 0);
    EXPECT_EQ(list.size(), 5u);
}
