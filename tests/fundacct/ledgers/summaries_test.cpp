#include "installationschema.h"
#include "ledgerfixture.h"
#include "objectsummaryledgers.h"

TEST(SummaryAmounts, TextsKeepEveryDecimalAndMonthsWrapAtTheFiscalYear)
{
    EXPECT_EQ(ledgerAmountText(Currency::fromRaw(12345678900), true), QStringLiteral("1,234,567.89"));
    EXPECT_EQ(ledgerAmountText(Currency::fromRaw(-500), true), QStringLiteral("-0.05"));
    EXPECT_EQ(ledgerAmountText(Currency::fromRaw(10000005), true), QStringLiteral("1,000.0005"));
    EXPECT_EQ(ledgerAmountText(Currency::fromUnits(1234), false), QStringLiteral("1234.00"));
    EXPECT_EQ(ledgerAmountText(Currency(), false), QStringLiteral("0.00"));
    EXPECT_EQ(ledgerAmountFromText(QString()), Currency());
    EXPECT_EQ(ledgerAmountFromText(QStringLiteral("1,000.0005")), Currency::fromRaw(10000005));
    EXPECT_FALSE(ledgerAmountFromText(QStringLiteral("12a")));

    EXPECT_EQ(fiscalMonthsThrough(7, 7), std::vector<int>{7});
    EXPECT_EQ(fiscalMonthsThrough(7, 1), (std::vector<int>{7, 8, 9, 10, 11, 12, 1}));
    EXPECT_EQ(fiscalMonthsThrough(7, 6).size(), 12u);
    EXPECT_EQ(fiscalMonthsThrough(1, 12).size(), 12u);
    EXPECT_TRUE(fiscalMonthsThrough(0, 5).empty());
    EXPECT_TRUE(fiscalMonthsThrough(7, 13).empty());
    EXPECT_EQ(monthOfDateText(QStringLiteral("20250315")), 3);
    EXPECT_EQ(monthOfDateText(QStringLiteral("2025")), 0);
}

// Figures in every month of the fiscal year July..June, so each target month
// adds exactly one known step.
TEST(ExpenditureBalance, CountsFromTheFirstFiscalMonthThroughTheTargetAcrossTheYearEnd)
{
    classObjectELSummary summary;
    summary.FirstFiscalMonth = 7;
    summary.AccountCode = QStringLiteral("A2110.450");
    summary.OpeningEntry[6] = QStringLiteral("120,000.00"); // July
    summary.BudgetAdj[11] = QStringLiteral("5,000.00");     // December
    summary.BudgetAdj[0] = QStringLiteral("-1,000.00");     // January
    summary.EncumPlaced[7] = QStringLiteral("30,000.00");   // August
    summary.EncumLiquid[8] = QStringLiteral("20,000.00");   // September
    summary.PaymentExp[8] = QStringLiteral("20,000.00");
    summary.PaymentExp[5] = QStringLiteral("0.50"); // June, the year's last month
    summary.EncumPlaced[3] = QString();             // April stays empty

    const auto balanceTo = [&](const char *date) {
        summary.TransDate = QString::fromLatin1(date);
        EXPECT_EQ(summary.CalcBalance(), 0) << summary.ErrorMsg().toStdString();
        return summary.TotalUnencumBalance;
    };
    EXPECT_EQ(balanceTo("07-31-24"), Currency::fromUnits(120000));
    EXPECT_EQ(summary.TotalEncumPlaced, Currency());
    EXPECT_EQ(balanceTo("12-31-24"), Currency::fromUnits(120000 + 5000 - 10000 - 20000));
    EXPECT_EQ(summary.TotalBudgetAdjustment, Currency::fromUnits(5000));
    EXPECT_EQ(summary.TotalEncumPlaced, Currency::fromUnits(30000));
    EXPECT_EQ(summary.TotalEncumLiquid, Currency::fromUnits(20000));
    EXPECT_EQ(balanceTo("01-31-25"), Currency::fromUnits(94000));
    EXPECT_EQ(summary.TotalBudgetAdjustment, Currency::fromUnits(4000));
    EXPECT_EQ(balanceTo("06-30-25"), Currency::fromUnits(94000) - Currency::fromRaw(5000));
    EXPECT_EQ(summary.TotalPaymentExpense, Currency::fromRaw(200005000));
    EXPECT_EQ(summary.Balance, summary.TotalUnencumBalance);

    summary.TransDate = QStringLiteral("13-01-25");
    EXPECT_EQ(summary.CalcBalance(), statusBadLedgerInput);
    summary.TransDate = QStringLiteral("06-30-25");
    summary.PaymentExp[2] = QStringLiteral("lots");
    EXPECT_EQ(summary.CalcBalance(), statusBadLedgerInput);
    EXPECT_TRUE(summary.ErrorMsg().contains(QStringLiteral("03 Payment Expense")));
    summary.FirstFiscalMonth = 0;
    EXPECT_EQ(summary.CalcBalance(), statusBadLedgerInput);
}

TEST(RevenueAndGeneralBalance, UnearnedAndNetBalances)
{
    classObjectRLSummary revenue;
    revenue.FirstFiscalMonth = 7;
    revenue.OpeningEntry[6] = QStringLiteral("9,000.00");
    revenue.BudgetAdj[9] = QStringLiteral("500.00");
    revenue.RevenueRec[1] = QStringLiteral("4,000.00");
    revenue.TransDate = QStringLiteral("01-31-25");
    ASSERT_EQ(revenue.CalcBalance(), 0);
    EXPECT_EQ(revenue.TotalUnearnedBalance, Currency::fromUnits(9500));
    revenue.TransDate = QStringLiteral("02-28-25");
    ASSERT_EQ(revenue.CalcBalance(), 0);
    EXPECT_EQ(revenue.Balance, Currency::fromUnits(5500));

    classObjectGLSummary general;
    general.FirstFiscalMonth = 7;
    general.Debits[6] = QStringLiteral("100.00");
    general.Credits[7] = QStringLiteral("40.00");
    general.Debits[0] = QStringLiteral("1.00");
    general.TransDate = QStringLiteral("12-31-24");
    ASSERT_EQ(general.CalcBalance(), 0);
    EXPECT_EQ(general.Balance, Currency::fromUnits(60));
    EXPECT_EQ(general.TotalCredits, Currency::fromUnits(40));
}

using SummaryFileTest = LedgerTest;

// Every monthly field of every summary equals the sum of Amount 1 of the
// transactions of its account, month and column.
TEST_F(SummaryFileTest, EachMonthIsTheSumOfItsTransactions)
{
    classObjectTransactions transactions;
    init(transactions);
    classObjectRLSummary revenue;
    classObjectELSummary expenditure;
    classObjectGLSummary general;
    init(revenue);
    init(expenditure);
    init(general);
    EXPECT_EQ(expenditure.FirstFiscalMonth, 7);

    const auto check = [&](auto &summary, QChar ledger, const auto &amounts) {
        int accounts = 0;
        for (int status = summary.StepFirst(); status == 0; status = summary.StepNext()) {
            ++accounts;
            EXPECT_EQ(summary.Position, accounts);
            std::vector<TransactionFields> list;
            ASSERT_EQ(transactions.GetListByAccountCode(summary.AccountCode, list), 0);
            std::map<std::pair<int, QString>, Currency> sums;
            for (const TransactionFields &t : list)
                sums[{monthOfDateText(t.TransDate), monthlyAmountForColumn(ledger, t.ColumnID)}] += amount(t.Amount1);
            for (const auto &[name, member] : amounts) {
                for (int month = 1; month <= 12; ++month) {
                    const QString &text = (summary.*member)[month - 1];
                    const Currency expected = sums[{month, QString::fromLatin1(name)}];
                    EXPECT_EQ(amount(text), expected)
                        << summary.AccountCode.toStdString() << " " << month << " " << name;
                    EXPECT_EQ(text.isEmpty(), expected.isZero());
                }
            }
        }
        EXPECT_EQ(accounts, summary.TotalRecords());
        EXPECT_GT(accounts, 0);
    };
    using R = RevenueSummaryFields;
    using E = ExpenditureSummaryFields;
    using G = GeneralSummaryFields;
    check(revenue, u'R',
          std::vector<std::pair<const char *, MonthlyTexts R::*>>{{"Opening Entry", &R::OpeningEntry},
                                                                  {"Budget Adjustment", &R::BudgetAdj},
                                                                  {"Revenue Received", &R::RevenueRec}});
    check(expenditure, u'E',
          std::vector<std::pair<const char *, MonthlyTexts E::*>>{{"Opening Entry", &E::OpeningEntry},
                                                                  {"Budget Adjustment", &E::BudgetAdj},
                                                                  {"Encum Placed", &E::EncumPlaced},
                                                                  {"Encum Liquidated", &E::EncumLiquid},
                                                                  {"Payment Expense", &E::PaymentExp}});
    check(general, u'G',
          std::vector<std::pair<const char *, MonthlyTexts G::*>>{{"Debits", &G::Debits}, {"Credits", &G::Credits}});
}

// The year's balance from the summary agrees with the one the transactions give.
TEST_F(SummaryFileTest, YearBalanceMatchesTheTransactionsAndTheOpeningEntryIsFound)
{
    classObjectTransactions transactions;
    classObjectELSummary summary;
    init(transactions);
    init(summary);
    summary.AccountCode = QStringLiteral("A2110.120");
    ASSERT_EQ(summary.Retrieve(), 0);
    EXPECT_EQ(summary.Name, QStringLiteral("Teaching Salaries K-6"));
    EXPECT_EQ(summary.FindOpeningEntryMonth(), 7);
    EXPECT_EQ(summary.FindOpeningEntryValue(), QStringLiteral("3,500,000.00"));
    summary.TransDate = QStringLiteral("06-30-25");
    ASSERT_EQ(summary.CalcBalance(), 0);
    Currency fromTransactions;
    ASSERT_EQ(transactions.CalculateUnencBalance(summary.AccountCode, fromTransactions), 0);
    EXPECT_EQ(summary.TotalUnencumBalance, fromTransactions);
    EXPECT_EQ(summary.TotalOpeningBalance, Currency::fromUnits(3500000));

    classObjectGLSummary general;
    init(general);
    general.AccountCode = QStringLiteral("A200");
    ASSERT_EQ(general.Retrieve(), 0);
    Currency running;
    for (const int month : fiscalMonthsThrough(7, 6)) {
        running += amount(general.Debits[month - 1]);
        if (!running.isZero())
            EXPECT_EQ(amount(general.YearsDebits[month - 1]), running) << month;
    }
    EXPECT_EQ(general.FindOpeningEntryMonth(), 7);
}

TEST_F(SummaryFileTest, ListsByFundStateCodeAndParent)
{
    classObjectELSummary summary;
    init(summary);
    std::vector<ExpenditureSummaryFields> fundA;
    ASSERT_EQ(summary.GetList(QStringLiteral("A"), fundA), 0);
    QStringList codes;
    for (const auto &record : fundA) {
        codes << record.AccountCode;
        EXPECT_EQ(record.FundID, QStringLiteral("A"));
    }
    EXPECT_EQ(codes, (QStringList{"A1010.150", "A1240.150", "A2110.120", "A2110.450", "A5510.200"}));
    summary.AccountCode = QStringLiteral("A2110.450");
    ASSERT_EQ(summary.Retrieve(), 0);
    EXPECT_EQ(fundA[3].PaymentExp, summary.PaymentExp);
    EXPECT_EQ(fundA[3].Name, summary.Name);

    std::vector<ExpenditureSummaryFields> none;
    EXPECT_EQ(summary.GetList(QStringLiteral("Z"), none), 0);
    EXPECT_TRUE(none.empty());

    std::vector<AccountCodeName> all;
    ASSERT_EQ(summary.GetAcctCodeList(all), 0);
    ASSERT_EQ(static_cast<std::int64_t>(all.size()), summary.TotalRecords());
    EXPECT_EQ(all.front().AccountCode, QStringLiteral("A1010.150"));
    EXPECT_EQ(all.back().Name, QStringLiteral("Special Education Salaries"));

    std::vector<ExpenditureSummaryFields> state;
    ASSERT_EQ(summary.GetListWithStateCode(QStringLiteral("A2110"), state), 0);
    ASSERT_EQ(state.size(), 2u);
    EXPECT_EQ(state[1].AccountCode, QStringLiteral("A2110.450"));

    summary.Clear();
    summary.AccountCode = QStringLiteral("A2110.500");
    summary.ParentID = QStringLiteral("A2110");
    summary.Name = QStringLiteral("Textbooks");
    summary.BudgetAdj[9] = QStringLiteral("1,250.25");
    ASSERT_EQ(summary.Add(), 0) << summary.ErrorMsg().toStdString();
    int children = 0;
    ASSERT_EQ(summary.RptCountChildren(QStringLiteral("A2110"), children), 0);
    EXPECT_EQ(children, 1);
    std::vector<ExpenditureSummaryFields> kids;
    ASSERT_EQ(summary.GetChildren(QStringLiteral("A2110"), kids), 0);
    ASSERT_EQ(kids.size(), 1u);
    EXPECT_EQ(kids[0].BudgetAdj[9], QStringLiteral("1,250.25"));
    ASSERT_EQ(summary.RptCountChildren(QStringLiteral("Nobody"), children), 0);
    EXPECT_EQ(children, 0);
}

TEST_F(SummaryFileTest, UpdateMovesCodesRejectsBadAmountsAndZeroBalancesClearsAll)
{
    classObjectRLSummary summary;
    init(summary);
    summary.AccountCode = QStringLiteral("A3101");
    ASSERT_EQ(summary.Retrieve(), 0);
    const MonthlyTexts received = summary.RevenueRec;

    summary.OpeningEntry[7] = QStringLiteral("not money");
    EXPECT_EQ(summary.Update(), statusBadLedgerInput);
    EXPECT_TRUE(summary.ErrorMsg().contains(QStringLiteral("08 Opening Entry")));
    summary.OpeningEntry[7] = QStringLiteral("10.0001");
    summary.NewAccountCode = QStringLiteral("A3102");
    ASSERT_EQ(summary.Update(), 0) << summary.ErrorMsg().toStdString();
    EXPECT_EQ(summary.AccountCode, QStringLiteral("A3102"));
    EXPECT_TRUE(summary.NewAccountCode.isEmpty());

    summary.Clear();
    summary.AccountCode = QStringLiteral("A3101");
    EXPECT_EQ(summary.Retrieve(), 4);
    summary.AccountCode = QStringLiteral("A3102");
    ASSERT_EQ(summary.Retrieve(), 0);
    EXPECT_EQ(summary.OpeningEntry[7], QStringLiteral("10.0001"));
    EXPECT_EQ(summary.RevenueRec, received);
    EXPECT_EQ(summary.Name, QStringLiteral("Basic Formula Aid"));

    ASSERT_EQ(summary.ZeroBalances(), 0);
    for (int status = summary.StepFirst(); status == 0; status = summary.StepNext()) {
        for (const MonthlyTexts *texts : {&summary.OpeningEntry, &summary.BudgetAdj, &summary.RevenueRec})
            EXPECT_EQ(*texts, MonthlyTexts{}) << summary.AccountCode.toStdString();
    }
    EXPECT_EQ(summary.Delete(), 0);
    EXPECT_EQ(summary.Retrieve(), 4);
}

TEST(SummaryUnbound, OperationsWithoutAFileReportNotOpen)
{
    classObjectELSummary summary;
    std::vector<ExpenditureSummaryFields> list;
    EXPECT_EQ(summary.GetList(QStringLiteral("A"), list), 3);
    EXPECT_EQ(summary.StepFirst(), 3);
    EXPECT_EQ(summary.ZeroBalances(), 3);
    EXPECT_EQ(summary.TotalRecords(), 0);
}
