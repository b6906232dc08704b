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
    EXPECT_EQ(keys.size(), 21);
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

// Each case changes the security files of its own installation.
class PrivilegeRulesTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        QString message;
        ASSERT_EQ(createSampleInstallation(folder.path(), smallSampleDistrict(), {}, message), 0)
            << message.toStdString();
    }
    QString root() const { return folder.path(); }
    QString fund() const { return folder.path() + QStringLiteral("\\FUND"); }
    QSet<QString> heldBy(const char *userId)
    {
        QSet<QString> keys;
        EXPECT_EQ(userPrivilegeKeys(root(), fund(), QLatin1String(userId), QStringLiteral("BUDGET"), keys), 0);
        return keys;
    }
    void grant(const char *key, const char *granted)
    {
        classObjectAppPriv grants;
        ASSERT_EQ(grants.Init(root(), fund()), 0);
        grants.UserID = QStringLiteral("U002");
        grants.ApplicationID = QStringLiteral("budget");
        grants.PrivilegeKey = QLatin1String(key);
        grants.Granted = QLatin1String(granted);
        ASSERT_EQ(grants.Add(), 0) << grants.Message().toStdString();
    }
    void undefine(const char *key)
    {
        classObjectAppPrivDef definitions;
        ASSERT_EQ(definitions.Init(root(), fund()), 0);
        definitions.ApplicationID = QStringLiteral("BUDGET");
        definitions.PrivilegeKey = QLatin1String(key);
        ASSERT_EQ(definitions.Delete(), 0) << definitions.Message().toStdString();
    }

    QTemporaryDir folder;
};

TEST_F(PrivilegeRulesTest, GrantsMatchDefinitionsWhateverTheCaseAndAreSpelledAsDefined)
{
    grant("MNUMAINTPROPOSAL", "y");
    grant("mnureporttax", "N");          // taken away
    grant("mnuNotDefinedAnywhere", "Y"); // granted but unknown to the installation
    const QSet<QString> held = heldBy("U002");
    EXPECT_TRUE(held.contains(QStringLiteral("mnuMaintProposal")));
    EXPECT_FALSE(held.contains(QStringLiteral("MNUMAINTPROPOSAL")));
    EXPECT_EQ(held.size(), 5);
    EXPECT_EQ(privilegeKeyIdentity(QStringLiteral(" mnuReportTax ")),
              privilegeKeyIdentity(QStringLiteral("MNUREPORTTAX")));
}

TEST_F(PrivilegeRulesTest, AKeyTheInstallationDropsIsHeldByNobody)
{
    undefine("mnuInitializeBudget");
    undefine("mnuChooseProposal");
    const QSet<QString> all = heldBy("U001"); // "All Privileges"
    EXPECT_EQ(all.size(), 19);
    EXPECT_FALSE(all.contains(QStringLiteral("mnuInitializeBudget")));
    const QSet<QString> clerk = heldBy("U002");
    EXPECT_EQ(clerk, (QSet<QString>{QStringLiteral("mnuFileProposedBudget"), QStringLiteral("mnuReportBudgetStatus"),
                                    QStringLiteral("mnuReportRevenueStatus")}));
}

TEST(UserRecord, OnlyAUserMarkedYIsActive)
{
    classObjectUsers user;
    for (const auto &[flag, active] : std::initializer_list<std::pair<const char *, bool>>{
             {"Y", true}, {"y", true}, {"N", false}, {"", false}, {" ", false}}) {
        user.Active = QLatin1String(flag);
        EXPECT_EQ(user.IsActive(), active) << '"' << flag << '"';
    }
}
