#include "levyapportionment.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace {

Currency money(const char *text)
{
    return *Currency::parse(QString::fromLatin1(text));
}

// The state's worked example: a $6,000,000 levy over four towns.
std::vector<LevyTown> stateExample(double scale)
{
    return {{"A", money("2000000"), 0.50 * scale},
            {"B", money("100000000"), 1.00 * scale},
            {"C", money("100000000"), 0.60 * scale},
            {"D", money("5000000"), 0.25 * scale}};
}

TEST(LevyApportionmentTest, StateExampleGivesThePublishedFiguresWhicheverWayRatesAreStored)
{
    for (double scale : {1.0, 100.0}) {
        const LevyApportionment result = apportionLevy(money("6000000"), stateExample(scale));
        ASSERT_TRUE(result.ok()) << result.error.toStdString();
        EXPECT_EQ(result.ratesArePercentages, scale == 100.0);
        const char *expected[][4] = {{"A", "4000000", "82568.81", "41.2844"},
                                     {"B", "100000000", "2064220.18", "20.6422"},
                                     {"C", "166666666.67", "3440366.97", "34.4037"},
                                     {"D", "20000000", "412844.04", "82.5688"}};
        ASSERT_EQ(result.towns.size(), 4u);
        for (std::size_t i = 0; i < 4; ++i) {
            EXPECT_EQ(result.towns[i].name, expected[i][0]);
            EXPECT_EQ(result.towns[i].fullValue, money(expected[i][1])) << i;
            EXPECT_EQ(result.towns[i].share, money(expected[i][2])) << i;
            EXPECT_EQ(result.towns[i].ratePerThousand, money(expected[i][3])) << i;
        }
        EXPECT_EQ(result.totalFullValue, money("290666666.67"));
        EXPECT_EQ(result.fullValueRate, money("20.6422"));
    }
}

TEST(LevyApportionmentTest, MissingCentsGoToTheLargestRemainders)
{
    // Quotas of 4.6, 2.7 and 2.7 cents: rounding each would levy 11 cents, not 10.
    const LevyApportionment result =
        apportionLevy(money("0.10"), {{"North", money("46"), 1}, {"East", money("27"), 1}, {"West", money("27"), 1}});
    ASSERT_TRUE(result.ok());
    EXPECT_EQ(result.towns[0].share, money("0.04"));
    EXPECT_EQ(result.towns[1].share, money("0.03"));
    EXPECT_EQ(result.towns[2].share, money("0.03"));

    // Equal remainders: the earlier town takes the cent.
    const LevyApportionment even =
        apportionLevy(money("100"), {{"1", money("10"), 0.5}, {"2", money("10"), 0.5}, {"3", money("10"), 0.5}});
    EXPECT_EQ(even.towns[0].share, money("33.34"));
    EXPECT_EQ(even.towns[2].share, money("33.33"));

    // A levy with parts of a cent is apportioned as rounded to the cent.
    EXPECT_EQ(apportionLevy(money("10.005"), {{"Only", money("5"), 1}}).towns[0].share, money("10.01"));
}

TEST(LevyApportionmentTest, RatesOfOneListAreReadTogether)
{
    // 1.05 is 105 % among fractions; beside a rate above 2 every rate is a percentage.
    EXPECT_FALSE(equalizationRatesArePercentages({0.8734, 1.05, 2.0}));
    EXPECT_TRUE(equalizationRatesArePercentages({1.7, 87.34}));
    const LevyApportionment fractions =
        apportionLevy(money("1000"), {{"X", money("100"), 1.05}, {"Y", money("100"), 0.5}});
    const LevyApportionment percents =
        apportionLevy(money("1000"), {{"X", money("100"), 105}, {"Y", money("100"), 50}});
    EXPECT_EQ(fractions.towns[0].fullValue, percents.towns[0].fullValue);
    EXPECT_EQ(fractions.towns[0].fullValue, money("95.24"));
}

TEST(LevyApportionmentTest, UnusableTownsAreRefusedByName)
{
    const auto refusal = [](const std::vector<LevyTown> &towns) {
        return apportionLevy(money("1000"), towns).error.toStdString();
    };
    EXPECT_NE(refusal({{"Dover", money("100"), 0.9}, {"Amenia", money("100"), 0}}).find("\"Amenia\""),
              std::string::npos);
    EXPECT_NE(refusal({{"Dover", money("100"), -0.5}}).find("equalization rate -0.5"), std::string::npos);
    EXPECT_NE(refusal({{"Dover", money("100"), NAN}}).find("\"Dover\""), std::string::npos);
    const std::string zero = refusal({{"Pawling", money("0"), 0.9}});
    EXPECT_NE(zero.find("\"Pawling\" has a taxable assessment of 0.00"), std::string::npos) << zero;
    EXPECT_NE(refusal({}).find("no equalization districts"), std::string::npos);
    // A minute rate makes a full value no amount can hold.
    EXPECT_NE(refusal({{"Dover", money("100"), 0.9}, {"Kent", money("90000000000"), 0.00000001}})
                  .find("\"Kent\" has a full value or tax rate beyond what an amount holds"),
              std::string::npos);
}

// Random districts: the shares add up to the levy to the cent, each is its
// exact quota rounded down or up, and only the largest remainders were rounded up.
TEST(LevyApportionmentTest, RandomDistrictsAddUpAndStayWithinACent)
{
    std::mt19937_64 random(20260701);
    const auto between = [&](long long low, long long high) {
        return std::uniform_int_distribution<long long>(low, high)(random);
    };
    for (int trial = 0; trial < 2000; ++trial) {
        const bool percentages = trial % 2 == 1;
        const Currency levy = Currency::fromRaw(between(-1'000'000, 5'000'000'000) * 100);
        std::vector<LevyTown> towns(std::size_t(between(1, 12)));
        long double totalFullValue = 0;
        std::vector<long double> fullValues;
        for (std::size_t i = 0; i < towns.size(); ++i) {
            // Fractions with four places from 0.5 % to 150 %; the same as percentages with two.
            // Percentages are recognised by one rate above 2 %.
            const long long rate = between(percentages && i == 0 ? 300 : 50, 15000);
            towns[i] = {QString::number(i), Currency::fromRaw(between(1, 3'000'000'000'00) * 100),
                        percentages ? rate / 100.0 : rate / 10000.0};
            fullValues.push_back(static_cast<long double>(towns[i].taxableAssessment.raw()) / rate);
            totalFullValue += fullValues.back();
        }

        const LevyApportionment result = apportionLevy(levy, towns);
        ASSERT_TRUE(result.ok()) << result.error.toStdString();
        Currency sum;
        long double lowestRoundedUp = 2, highestRoundedDown = -1;
        for (std::size_t i = 0; i < towns.size(); ++i) {
            sum += result.towns[i].share;
            const long double quota = static_cast<long double>(levy.raw()) / 100 * fullValues[i] / totalFullValue;
            const long double cents = static_cast<long double>(result.towns[i].share.raw()) / 100;
            const long double floor = std::floor(quota);
            ASSERT_LT(std::fabs(cents - quota), 1.000001L) << "trial " << trial << " town " << i;
            if (cents > floor + 0.5L)
                lowestRoundedUp = std::min(lowestRoundedUp, quota - floor);
            else
                highestRoundedDown = std::max(highestRoundedDown, quota - floor);
        }
        ASSERT_EQ(sum, levy) << "trial " << trial;
        ASSERT_GE(lowestRoundedUp, highestRoundedDown - 1e-6L) << "trial " << trial;
    }
}

} // namespace
