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

    balances.setFundBalanceItem({" A ", money("10.5"), money("99999999999.9999"), "General"});
    ASSERT_TRUE(balances.AddBatch());
    EXPECT_FALSE(balances.AddBatch()) << "one row per fund";
    balances.FundBalanceItem().PreviousYearBalance = money("-3");
    ASSERT_TRUE(balances.UpdateBatch());
    balances.setFundBalanceItem({"A", {}, {}, ""});
    ASSERT_TRUE(balances.Retrieve());
    EXPECT_EQ(balances.FundBalanceItem().CurrentYearBalance, money("99999999999.9999"));
    EXPECT_EQ(balances.FundBalanceItem().PreviousYearBalance, money("-3"));
}

TEST_P(BalancesTest, UpdatesTouchTheirOwnFundOrDistrictOnly)
{
    exec("Insert into Bals values ('A', 1, 2)");
    exec("Insert into Bals values ('B', 3, 4)");
    balances.setFundBalanceItem({"B", money("30.0003"), money("40.0004"), ""});
    ASSERT_TRUE(balances.UpdateBatch());
    EXPECT_EQ(rows("select Fund, CurrentBalance, PreviousBalance from Bals order by Fund"), "A,1,2|B,40.0004,30.0003");

    exec("Insert into TaxRate (TownShip) values ('North')");
    exec("Insert into TaxRate (TownShip) values ('South')");
    const QString south = scalar("select ID from TaxRate where TownShip = 'South'");
    districts.setEqualizationItem(
        {south.toInt(), "South End", 0.5, money("1.0001"), money("2.0002"), 0.25, money("3.0003"), money("4.0004")});
    ASSERT_TRUE(districts.UpdateBatch());
    const QString all = "select TownShip, CurrentEqualRate, CurrentAssessment, CurrentTaxAssess, PrevEqualRate, "
                        "PrevAssessment, PrevTaxAssess from TaxRate order by ID";
    EXPECT_EQ(rows(all), "North,0,0,0,0,0,0|South End,0.5,1.0001,2.0002,0.25,3.0003,4.0004");
    ASSERT_TRUE(districts.DeleteBatch());
    EXPECT_EQ(rows("select TownShip from TaxRate"), "North");
}

TEST_P(BalancesTest, NewDistrictsStoreThePriorAssessmentsCrossed)
{
    clsEqualizationItem town{0,    "Maple Falls", 0.8734,     money("1000000"), money("900000"),
                             0.91, money("100"),  money("80")};
    districts.setEqualizationItem(town);
    ASSERT_TRUE(districts.AddBatch());
    EXPECT_EQ(rows("select TownShip, PrevAssessment, PrevTaxAssess from TaxRate"), "Maple Falls,80,100");
    ASSERT_TRUE(districts.Retrieve(true));
    EXPECT_DOUBLE_EQ(districts.EqualizationItem().CurrentRate, 0.8734);

    town.ID = districts.EqualizationItem().ID;
    town.DistrickName = "Maple Falls Village";
    districts.setEqualizationItem(town);
    ASSERT_TRUE(districts.UpdateBatch());
    EXPECT_EQ(rows("select TownShip, PrevAssessment, PrevTaxAssess from TaxRate"), "Maple Falls Village,100,80");
    ASSERT_TRUE(districts.DeleteBatch());
    EXPECT_FALSE(districts.DeleteBatch());
    expectError(districts.Error(), "Delete", "0 records to be Delete");
    EXPECT_FALSE(districts.Retrieve(false));
    expectError(districts.Error(), "Retrieve Equalization", "Record not Found.");
}

KORA_ALL_BACKENDS(BalancesTest);

} // namespace
