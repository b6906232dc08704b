#include "admincommand.h"
#include "dataaccesscontrol.h"
#include "fundinstallation.h"
#include "installationschema.h"

#include <gtest/gtest.h>

#include <QSet>
#include <QTemporaryDir>

#include <map>

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

// The current year's summaries hold what the district's history says for it:
// received or paid to date, outstanding encumbrances and adjustments, and
// nothing after the last posted month.
TEST(DemoFundInstallation, SummariesHoldTheCurrentYearsFiguresToDate)
{
    const District district = makeDistrict();
    QTemporaryDir root;
    QString message;
    ASSERT_EQ(createSampleInstallation(root.path(), sampleDistrictOf(district), {}, message), 0)
        << message.toStdString();
    int checked = 0;
    for (const auto &[table, ledger] : {std::pair{"SummaryRevenue", u'R'}, std::pair{"SummaryExpenditure", u'E'}}) {
        DataAccessControl summary;
        summary.setDdfPath(root.path());
        summary.setFileName(QString::fromLatin1(table));
        ASSERT_EQ(summary.Open(), 0);
        for (int s = summary.StepFirst(); s == 0; s = summary.StepNext()) {
            const QString code = summary.FieldValue(QStringLiteral("Account Code")).toString().trimmed();
            std::map<QString, Currency> year; // amount name -> the year's sum
            for (int month = 1; month <= 12; ++month)
                for (const QString &amount : monthlyAmountNames(ledger)) {
                    const Currency value = summary.FieldValue(monthlyFieldName(month, amount)).value<Currency>();
                    year[amount] += value;
                    if (month == 5 || month == 6)
                        EXPECT_TRUE(value.isZero()) << code.toStdString() << " posted in month " << month;
                }
            const int index = district.accountIndex(code);
            ASSERT_GE(index, 0) << code.toStdString();
            const Account &account = district.accounts[std::size_t(index)];
            const YearFigures &now = account.history.back();
            ASSERT_EQ(now.year, 2025);
            SCOPED_TRACE(code.toStdString());
            EXPECT_EQ(year["Opening Entry"], account.currentBudget);
            EXPECT_EQ(year["Budget Adjustment"], now.adjustments);
            if (ledger == u'R') {
                EXPECT_EQ(year["Revenue Received"], now.actual);
            } else {
                EXPECT_EQ(year["Payment Expense"], now.actual);
                EXPECT_EQ(year["Encum Placed"] - year["Encum Liquidated"], now.encumbered);
            }
            ++checked;
        }
    }
    EXPECT_EQ(checked, std::count_if(district.accounts.begin(), district.accounts.end(),
                                     [](const Account &a) { return !a.historical; }));
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
