#include "admincommand.h"
#include "fundinstallation.h"

#include <gtest/gtest.h>

#include <QSet>
#include <QTemporaryDir>

using namespace demo;

TEST(DemoFundInstallation, CarriesTheLiveAccountsWithNodesTheBuildingsResolve)
{
    const District district = makeDistrict();
    const SampleDistrict sample = sampleDistrictOf(district);
    EXPECT_EQ(sample.years, (std::vector<int>{2023, 2024, 2025}));
    EXPECT_EQ(sample.funds.size(), district.funds.size());
    QSet<QString> buildingIds;
    for (const auto &[id, name] : sample.buildings)
        buildingIds.insert(id);
    qsizetype budgeted = 0;
    for (const SampleAccount &a : sample.accounts) {
        SCOPED_TRACE(a.code.toStdString());
        if (a.ledger == u'G') {
            EXPECT_TRUE(a.parentId.isEmpty());
            continue;
        }
        ++budgeted;
        const int index = district.accountIndex(a.code);
        ASSERT_GE(index, 0);
        EXPECT_FALSE(district.accounts[index].historical);
        EXPECT_EQ(a.budget, district.accounts[index].currentBudget);
        EXPECT_TRUE(buildingIds.contains(a.buildingId));
        EXPECT_EQ(a.parentId.toInt(), district.accounts[index].parentId);
    }
    const auto live = std::count_if(district.accounts.begin(), district.accounts.end(),
                                    [](const Account &a) { return !a.historical; });
    EXPECT_EQ(budgeted, live);

    QTemporaryDir root;
    QString message;
    SampleSummary summary;
    ASSERT_EQ(createSampleInstallation(root.path(), sample, {}, message, &summary), 0) << message.toStdString();
    EXPECT_EQ(summary.accounts, qint64(sample.accounts.size()));
}

namespace {

int admin(const QStringList &arguments, QString &output)
{
    output.clear();
    QTextStream out(&output);
    QTextStream err(&output);
    const int code = runAdmin(arguments, out, err);
    out.flush();
    err.flush();
    return code;
}

} // namespace

TEST(DemoAdminCommand, FillsANewDatabaseOnceAndRefusesBadArguments)
{
    QTemporaryDir folder;
    const QString file = folder.filePath("budget.db");
    QString output;
    ASSERT_EQ(admin({"--sqlite", file, "demo", "--fund-root", folder.filePath("fund")}, output), AdminExit::Ok)
        << output.toStdString();
    EXPECT_TRUE(output.contains("Northfield Central School District")) << output.toStdString();
    EXPECT_TRUE(output.contains("Kora-Fund sample installation")) << output.toStdString();

    EXPECT_EQ(admin({"--sqlite", file, "demo"}, output), AdminExit::Refused);
    EXPECT_TRUE(output.contains("Nothing was written")) << output.toStdString();
    EXPECT_EQ(admin({"--sqlite", file, "demo", "--scale", "many"}, output), AdminExit::Usage);
    EXPECT_EQ(admin({"--sqlite", file, "demo", "--folders"}, output), AdminExit::Usage);
}
