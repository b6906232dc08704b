#include "equalization.h"
#include "fundbalance.h"
#include "storetest.h"

namespace {

class BalancesTest : public StoreTest {
protected:
    void prepare() override
    {
        balances.setAdoConnection(db());
        districts.setAdoConnection(db());
    }
    static Currency money(const char *text) { return *Currency::parse(text); }

    clsFundBalance balances;
    clsEqualization districts;
};

TEST_P(BalancesTest, FundBalancesAreAddedFoundAndUpdated)
{
    balances.FundBalanceItem().Fund = "A";
    EXPECT_FALSE(balances.Retrieve());
    expectError(balances.Error(), "Retrieve Fund Balance", "Record not Found.");
    EXPECT_FALSE(balances.UpdateBatch());
    expectError(balances.Error(), "Update", "0 records to be update");

    ASSERT_TRUE(balances.BeginTransaction());
    balances.setFundBalanceItem({" A ", money("10.5"), money("99999999999.9999"), "General"});
    ASSERT_TRUE(balances.AddBatch());
    EXPECT_FALSE(balances.AddBatch()) << "one row per fund";
    ASSERT_TRUE(balances.AbortTransaction());
    EXPECT_EQ(rows("select Fund from Bals"), "");

    balances.setFundBalanceItem({"A", money("10.5"), money("99999999999.9999"), ""});
    ASSERT_TRUE(balances.AddBatch());
    balances.FundBalanceItem().PreviousYearBalance = money("-3");
    ASSERT_TRUE(balances.UpdateBatch());
    balances.setFundBalanceItem({"A", {}, {}, ""});
    ASSERT_TRUE(balances.Retrieve());
    EXPECT_EQ(balances.FundBalanceItem().CurrentYearBalance, money("99999999999.9999"));
    EXPECT_EQ(balances.FundBalanceItem().PreviousYearBalance, money("-3"));
    std::vector<clsFundBalanceItem> listed;
    ASSERT_TRUE(balances.GetList(listed));
    ASSERT_EQ(listed.size(), 1u);
    EXPECT_EQ(listed[0].Fund, "A");
}

TEST_P(BalancesTest, NewDistrictsStoreThePriorAssessmentsCrossed)
{
    clsEqualizationItem town{0,    "Maple Falls", 0.8734,     money("1000000"), money("900000"),
                             0.91, money("100"),  money("80")};
    districts.setEqualizationItem(town);
    ASSERT_TRUE(districts.AddBatch());
    EXPECT_EQ(rows("select TownShip, PrevAssessment, PrevTaxAssess from TaxRate"), "Maple Falls,80,100");

    districts.EqualizationItem() = {};
    districts.EqualizationItem().DistrickName = "Maple Falls";
    ASSERT_TRUE(districts.Retrieve(true));
    const clsEqualizationItem stored = districts.EqualizationItem();
    EXPECT_NE(stored.ID, 0);
    EXPECT_DOUBLE_EQ(stored.CurrentRate, 0.8734);
    EXPECT_EQ(stored.CurrentTaxableAssessment, money("900000"));

    town.ID = stored.ID;
    town.DistrickName = "Maple Falls Village";
    districts.setEqualizationItem(town);
    ASSERT_TRUE(districts.UpdateBatch());
    EXPECT_EQ(rows("select TownShip, PrevAssessment, PrevTaxAssess from TaxRate"), "Maple Falls Village,100,80");
    districts.EqualizationItem().DistrickName.clear();
    ASSERT_TRUE(districts.Retrieve(false));
    EXPECT_EQ(districts.EqualizationItem().DistrickName, "Maple Falls Village");

    ASSERT_TRUE(districts.DeleteBatch());
    EXPECT_FALSE(districts.DeleteBatch());
    expectError(districts.Error(), "Delete", "0 records to be Delete");
    EXPECT_FALSE(districts.Retrieve(false));
    expectError(districts.Error(), "Retrieve Equalization", "Record not Found.");
    std::vector<clsEqualizationItem> listed;
    ASSERT_TRUE(districts.GetList(listed));
    EXPECT_TRUE(listed.empty());
}

KORA_ALL_BACKENDS(BalancesTest);

} // namespace
