#include "taxlevy.h"
#include "testdatabases.h"

#include <gtest/gtest.h>

namespace {

Currency money(const char *text)
{
    return *Currency::parse(QString::fromLatin1(text));
}

class TaxLevyTest : public testdb::DatabaseTest {
protected:
    // An account with its current budget and its figures in proposal 2 (and a
    // decoy row in proposal 1): stored total and the three components.
    void account(const char *code, const char *fund, const char *ledger, const char *flags, const char *current,
                 const char *proposal2)
    {
        exec(QString("Insert into AccountCodes (Ledger, FundID, AccountCode, CatAFlag, CatPFlag, CatCFlag, "
                     "CurrentBudget) values ('%1','%2','%3','%4','%5','%6',%7)")
                 .arg(ledger, fund, code, QString(flags).contains('A') ? "A" : "",
                      QString(flags).contains('P') ? "P" : "", QString(flags).contains('C') ? "C" : "", current));
        const QString id = scalar(QString("select ID from AccountCodes where AccountCode = '%1'").arg(code));
        exec(QString("Insert into ProposalBudget values (%1,'2',%2)").arg(id, proposal2));
        exec(QString("Insert into ProposalBudget values (%1,'1',1000000,1000000,1000000,1000000)").arg(id));
    }

    void prepareDistrict()
    {
        // Appropriations: the components count where the account takes part, the stored total elsewhere.
        account("A2110.150", "A", "E", "P", "900000", "1,0,800000.25,999");
        account("A1240.150", "A", "E", "AC", "150000", "1,100000,999,50000");
        account("A9901.950", "A", "E", "", "20000", "25000.50,7,7,7");
        // Revenues: the tax's codes by their beginning; the fund balance and aid lower the levy.
        account("A1001", "A", "R", "", "600000", "700000,0,0,0");
        account("a1001.01 ", "A", "R", "", "5000", "6000,0,0,0");
        account("A1085", "A", "R", "", "100000", "120000.25,0,0,0");
        account("A3101", "A", "R", "", "300000", "310000,0,0,0");
        account("A599", "A", "R", "A", "50000", "40000,0,0,0");
        // Other funds never count.
        account("C1440", "C", "R", "", "70000", "80000,0,0,0");
        account("F2250.150", "F", "E", "", "90000", "95000,0,0,0");
    }
};

TEST_P(TaxLevyTest, ProposalAndCurrentBudgetGiveAppropriationsLessOtherRevenues)
{
    prepareDistrict();
    TaxLevy levy;
    DbError error;
    ASSERT_TRUE(readProposedTaxLevy(*db(), "2", {"A1001"}, levy, &error)) << error.text.toStdString();
    EXPECT_EQ(levy.appropriations, money("975000.75")); // 800000.25 + 150000 + 25000.50
    EXPECT_EQ(levy.otherRevenues, money("470000.25"));  // 120000.25 + 310000 + 40000
    EXPECT_EQ(levy.propertyTaxBudgeted, money("706000"));
    EXPECT_EQ(levy.levy(), money("505000.50"));

    ASSERT_TRUE(readCurrentTaxLevy(*db(), {"A1001"}, levy, &error)) << error.text.toStdString();
    EXPECT_EQ(levy.appropriations, money("1070000"));
    EXPECT_EQ(levy.otherRevenues, money("450000"));
    EXPECT_EQ(levy.propertyTaxBudgeted, money("605000"));

    // Another setting: the STAR reimbursement counted with the tax.
    ASSERT_TRUE(readProposedTaxLevy(*db(), "2", {" A1001", "A1085"}, levy, &error));
    EXPECT_EQ(levy.otherRevenues, money("350000"));
    EXPECT_EQ(levy.propertyTaxBudgeted, money("826000.25"));

    // A database without the view says so.
    exec("DROP VIEW ProposalAmount");
    EXPECT_FALSE(readProposedTaxLevy(*db(), "2", {"A1001"}, levy, &error));
    EXPECT_TRUE(error.text.contains("proposalamount", Qt::CaseInsensitive)) << error.text.toStdString();
}

TEST_P(TaxLevyTest, TownsComeInEntryOrderWithTheChosenYearsFigures)
{
    exec("Insert into TaxRate (TownShip, CurrentEqualRate, CurrentAssessment, CurrentTaxAssess, PrevEqualRate, "
         "PrevAssessment, PrevTaxAssess) values (' Wappinger ', 0.8734, 5000000, 4500000.5, 0.91, 4800000, 4400000)");
    exec("Insert into TaxRate (TownShip, CurrentEqualRate, CurrentAssessment, CurrentTaxAssess, PrevEqualRate, "
         "PrevAssessment, PrevTaxAssess) values ('Fishkill', 1, 2000000, 1800000, 0.98, 1900000, 1700000)");
    std::vector<LevyTown> towns;
    DbError error;
    ASSERT_TRUE(readLevyTowns(*db(), true, towns, &error)) << error.text.toStdString();
    ASSERT_EQ(towns.size(), 2u);
    EXPECT_EQ(towns[0].name, "Wappinger");
    EXPECT_EQ(towns[0].taxableAssessment, money("4500000.5"));
    EXPECT_DOUBLE_EQ(towns[0].equalizationRate, 0.8734);
    ASSERT_TRUE(readLevyTowns(*db(), false, towns, &error));
    EXPECT_EQ(towns[1].name, "Fishkill");
    EXPECT_EQ(towns[1].taxableAssessment, money("1700000"));
    EXPECT_DOUBLE_EQ(towns[1].equalizationRate, 0.98);
}

KORA_ALL_BACKENDS(TaxLevyTest);

} // namespace
