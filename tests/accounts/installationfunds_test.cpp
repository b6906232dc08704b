#include "appglobals.h"
#include "sampleinstallationfixture.h"
#include "workeraccountcodes.h"

// The Fund drop-down's funds come from the fund-accounting installation the
// program was started on.
class InstallationFundsTest : public SampleInstallationTest {
protected:
    void TearDown() override { resetAppGlobals(); }
};

TEST_F(InstallationFundsTest, ListsEveryFundOfTheInstallationAndSaysWhyWhenItCannot)
{
    gstrRootPath = root();
    gstrFundPath = fund();
    std::vector<FundEntry> funds;
    QString error;
    ASSERT_TRUE(readInstallationFunds(funds, error)) << error.toStdString();
    const SampleDistrict district = smallSampleDistrict();
    ASSERT_EQ(funds.size(), district.funds.size());
    for (std::size_t i = 0; i < funds.size(); ++i) {
        EXPECT_EQ(funds[i].id, district.funds[i].id.trimmed());
        EXPECT_EQ(funds[i].name, district.funds[i].name.trimmed());
    }

    gstrRootPath = root() + QStringLiteral("/missing");
    gstrFundPath = gstrRootPath + QStringLiteral("\\FUND");
    funds.clear();
    EXPECT_FALSE(readInstallationFunds(funds, error));
    EXPECT_FALSE(error.isEmpty());
    EXPECT_TRUE(funds.empty());
}
