#include "objectfunds.h"
#include "objectparameters.h"
#include "objectsysparams.h"
#include "objectyear.h"
#include "sampleinstallationfixture.h"

using RecordObjectsTest = SampleInstallationTest;

TEST_F(RecordObjectsTest, FundsJoinTheirCheckingAccountsAndOwnTheirCodes)
{
    classObjectFunds funds;
    ASSERT_EQ(funds.Init(root(), fund()), 0) << funds.Message().toStdString();
    EXPECT_EQ(funds.GetCount(), 3);
    ASSERT_EQ(funds.RetrieveID(QStringLiteral("C")), 0);
    EXPECT_EQ(funds.Name, QStringLiteral("School Lunch Fund"));
    EXPECT_EQ(funds.CheckingName, QStringLiteral("Lunch Checking"));
    EXPECT_TRUE(funds.FundCheckingAccountCodeCheck(QStringLiteral("C200")));
    EXPECT_FALSE(funds.FundCheckingAccountCodeCheck(QStringLiteral("A200")));
    EXPECT_EQ(funds.RetrieveID(QStringLiteral("Z")), 4);
    EXPECT_EQ(funds.Message(), QStringLiteral("Key value not found."));

    std::vector<FundFields> list;
    ASSERT_EQ(funds.GetList(list), 0);
    ASSERT_EQ(list.size(), 3u);
    EXPECT_EQ(list[2].CheckingName, QStringLiteral("Special Aid Checking"));

    QString fundId;
    EXPECT_EQ(funds.GetFundFromAccountCode(QStringLiteral("F2250.150"), fundId), 0);
    EXPECT_EQ(fundId, QStringLiteral("F"));
    EXPECT_EQ(funds.GetFundFromAccountCode(QStringLiteral("A1001"), fundId), 0);
    EXPECT_EQ(fundId, QStringLiteral("A"));
    EXPECT_EQ(funds.GetFundFromAccountCode(QStringLiteral("Q1001"), fundId), 4);
}

TEST(FundMasks, NewJerseyKeepsSubFundsInFundTen)
{
    EXPECT_TRUE(
        accountCodeFitsMask(QStringLiteral("11-000-100-100"), QStringLiteral("10-###-###-###"), QStringLiteral("NJ")));
    EXPECT_TRUE(accountCodeFitsMask(QStringLiteral("13-000-100-100"), QStringLiteral("10-*"), QStringLiteral("nj")));
    EXPECT_FALSE(accountCodeFitsMask(QStringLiteral("14-000-100-100"), QStringLiteral("10-*"), QStringLiteral("NJ")));
    EXPECT_FALSE(accountCodeFitsMask(QStringLiteral("11-000-100-100"), QStringLiteral("10-*"), QStringLiteral("NY")));
    EXPECT_FALSE(accountCodeFitsMask(QStringLiteral("A1"), QString(), QStringLiteral("NY")));
}

TEST_F(RecordObjectsTest, YearsGiveTheLatestYearAndItsTableId)
{
    classObjectYear years;
    years.YearNumber = QStringLiteral("0");
    ASSERT_EQ(years.Init(root(), fund()), 0) << years.Message().toStdString();
    ASSERT_EQ(years.RetrieveLatestYear(), 0);
    EXPECT_EQ(years.YearNumber, QStringLiteral("2025"));
    EXPECT_EQ(years.YearStatus, QStringLiteral("Y"));
    EXPECT_EQ(years.FiscalYearStart, QStringLiteral("20240701"));
    EXPECT_EQ(years.FiscalYearEnd, QStringLiteral("20250630"));

    YearListFields entry;
    ASSERT_EQ(years.RetrieveYearList(QStringLiteral("2024"), entry), 0);
    EXPECT_EQ(entry.TableId, QStringLiteral("FY2024"));
    ASSERT_EQ(years.AddYearList({QStringLiteral("2026"), QStringLiteral("FY2026"), QStringLiteral("Fiscal Year 2026")}),
              0);
    EXPECT_NE(years.AddYearList({QStringLiteral("2026"), QStringLiteral("FY2026"), QString()}), 0);
    std::vector<YearListFields> list;
    ASSERT_EQ(years.GetYearList(list), 0);
    ASSERT_EQ(list.size(), 4u);
    EXPECT_EQ(list.back().TableId, QStringLiteral("FY2026"));
    ASSERT_EQ(years.DeleteYearList(QStringLiteral("2026")), 0);
    EXPECT_EQ(years.RetrieveYearList(QStringLiteral("2026"), entry), 4);
}

TEST_F(RecordObjectsTest, ParametersAndOrganisationReadAndUpdate)
{
    classObjectParameters parameters;
    ASSERT_EQ(parameters.Init(root(), fund()), 0);
    ASSERT_EQ(parameters.Retrieve(), 0);
    EXPECT_EQ(parameters.FirstFiscalMonth, 7);
    EXPECT_EQ(parameters.LastFiscalMonth, 6);
    EXPECT_EQ(parameters.VendorNotes.split(QStringLiteral("\r\n")).size(), 5);
    EXPECT_TRUE(parameters.VendorNotes.endsWith(QStringLiteral("be sent with the order.")));
    parameters.NextCRNumber = 41;
    parameters.WarrantSort = QStringLiteral("X"); // not part of the CR block: must not be written
    ASSERT_EQ(parameters.UpdateCRMaintParams(), 0);
    classObjectParameters reread;
    ASSERT_EQ(reread.Init(root(), fund()), 0);
    ASSERT_EQ(reread.Retrieve(), 0);
    EXPECT_EQ(reread.NextCRNumber, 41);
    EXPECT_EQ(reread.WarrantSort, QStringLiteral("V"));

    classObjectSysParams organisation;
    ASSERT_EQ(organisation.Init(root(), fund()), 0);
    ASSERT_EQ(organisation.Retrieve(), 0);
    EXPECT_EQ(organisation.State, QStringLiteral("NY"));
    organisation.City = QStringLiteral("Lakeview Falls");
    ASSERT_EQ(organisation.Update(), 0) << organisation.Message().toStdString();
    organisation.Clear();
    ASSERT_EQ(organisation.Retrieve(), 0);
    EXPECT_EQ(organisation.City, QStringLiteral("Lakeview Falls"));
    EXPECT_EQ(organisation.DateChg.size(), 8);
    organisation.City = QString(31, u'x');
    EXPECT_EQ(organisation.Update(), DataAccessControl::StatusBadFieldValue);
    organisation.Clear();
    ASSERT_EQ(organisation.Retrieve(), 0);
    EXPECT_EQ(organisation.City, QStringLiteral("Lakeview Falls"));
}

TEST(RecordObjects, UnboundObjectsReportFileNotOpen)
{
    classObjectYear years;
    EXPECT_EQ(years.RetrieveLatestYear(), 3);
    EXPECT_EQ(years.Message(), QStringLiteral("File not open."));
    classObjectFunds funds;
    std::vector<FundFields> list;
    EXPECT_EQ(funds.GetList(list), 3);
}
