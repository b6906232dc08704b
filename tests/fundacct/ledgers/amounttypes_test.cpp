// Ledger amounts stored in every numeric type a dictionary may give them: the
// summaries and transactions read the same exact amounts, balances agree, and
// a posting adds into the month instead of replacing it.
#include "fundfieldvalue.h"
#include "installationschema.h"
#include "ledgerfixture.h"
#include "objectsummaryledgers.h"
#include "variablefile.h"

#include "file.h"

namespace {

struct AmountType {
    const char *name;
    recman::DataType type;
    std::uint32_t size;
    std::uint8_t decimals;
};

// The table with its currency fields in another type, fields laid out anew.
recman::TableDef retyped(recman::TableDef table, const AmountType &to)
{
    std::uint32_t offset = 0;
    for (auto &field : table.fields) {
        if (field.type == recman::DataType::Currency) {
            field.type = to.type;
            field.size = to.size;
            field.decimals = to.decimals;
        }
        field.offset = offset;
        offset += field.size;
    }
    return table;
}

enum class Layout { Fixed, Variable };

// Rewrites a data file record by record for the retyped table. Variable-length
// records keep the fields before the first amount in their fixed part.
void convertFile(const std::filesystem::path &path, const recman::TableDef &from, const recman::TableDef &to,
                 Layout layout)
{
    std::vector<std::vector<std::uint8_t>> records;
    {
        recman::File file;
        ASSERT_EQ(file.open(path), recman::Status::Success) << file.lastMessage();
        for (auto status = file.stepFirst(); status == recman::Status::Success; status = file.stepNext()) {
            std::vector<std::uint8_t> record(to.recordLength(), 0);
            for (std::size_t i = 0; i < from.fields.size(); ++i) {
                recman::Value value;
                std::string error;
                ASSERT_TRUE(recman::decodeField(from.fields[i], file.record(), fundCodePage(), value, error)) << error;
                ASSERT_TRUE(recman::encodeField(to.fields[i], value, record, fundCodePage(), error)) << error;
            }
            records.push_back(std::move(record));
        }
    }
    if (layout == Layout::Variable) {
        const auto firstAmount = std::find_if(from.fields.begin(), from.fields.end(), [](const auto &field) {
            return field.type == recman::DataType::Currency;
        });
        ASSERT_NE(firstAmount, from.fields.end());
        variablefile::create(path, to, to.fields[firstAmount - from.fields.begin()].offset, records);
        return;
    }
    std::string message;
    ASSERT_EQ(recman::createDataFile(path, to, records, message, recman::CreateMode::Overwrite),
              recman::Status::Success)
        << message;
}

QString joined(const MonthlyTexts &months)
{
    return QStringList(months.begin(), months.end()).join(QLatin1Char('/'));
}

struct Snapshot {
    MonthlyTexts placed;
    Currency unencumbered;
};

class RetypedLedgerTest : public LedgerTest {
protected:
    void retypeLedgerAmounts(const AmountType &to, Layout layout = Layout::Fixed)
    {
        std::vector<recman::TableDef> tables;
        for (const FundTableSpec &spec : installationTables()) {
            tables.push_back(spec.table);
            if (spec.table.name != "SummaryExpenditure" && spec.table.name != "SummaryRevenue" &&
                spec.table.name != "Transactions")
                continue;
            tables.back() = retyped(spec.table, to);
            convertFile(std::filesystem::path(root().toStdString()) / "FUND" / spec.fileName.toStdString(), spec.table,
                        tables.back(), layout);
            ASSERT_FALSE(HasFatalFailure());
        }
        std::string why;
        ASSERT_EQ(recman::createDictionary(root().toStdString(), tables, why, fundCodePage()), recman::Status::Success)
            << why;
    }

    Snapshot snapshot()
    {
        classObjectELSummary summary;
        init(summary);
        summary.AccountCode = QStringLiteral("A2110.450");
        EXPECT_EQ(summary.Retrieve(), 0) << summary.ErrorMsg().toStdString();
        summary.TransDate = QStringLiteral("06");
        EXPECT_EQ(summary.CalcBalance(), 0) << summary.ErrorMsg().toStdString();
        return {summary.EncumPlaced, summary.TotalUnencumBalance};
    }

    // What the record objects read: every revenue account with its months, a
    // revenue account's balance, each expenditure account's year, and an
    // account's transactions.
    std::string reads()
    {
        QStringList lines;
        classObjectRLSummary revenue;
        init(revenue);
        std::vector<RevenueSummaryFields> accounts;
        EXPECT_EQ(revenue.GetAllAccounts(accounts), 0) << revenue.ErrorMsg().toStdString();
        for (const RevenueSummaryFields &account : accounts)
            lines << account.AccountCode + QLatin1Char(' ') + joined(account.OpeningEntry) + QLatin1Char(' ') +
                         joined(account.RevenueRec);
        revenue.AccountCode = QStringLiteral("A3101");
        EXPECT_EQ(revenue.Retrieve(), 0) << revenue.ErrorMsg().toStdString();
        revenue.TransDate = QStringLiteral("06");
        EXPECT_EQ(revenue.CalcBalance(), 0) << revenue.ErrorMsg().toStdString();
        lines << QStringLiteral("unearned ") + revenue.TotalUnearnedBalance.toSqlText();
        classObjectELSummary expenditure;
        init(expenditure);
        EXPECT_EQ(expenditure.ForEachAccountYear([&](const auto &) {
            lines << expenditure.AccountCode + QLatin1Char(' ') + expenditure.TotalPaymentExpense.toSqlText() +
                         QLatin1Char(' ') + expenditure.TotalUnencumBalance.toSqlText();
        }),
                  0)
            << expenditure.ErrorMsg().toStdString();
        classObjectTransactions transactions;
        init(transactions);
        std::vector<TransactionFields> list;
        EXPECT_EQ(transactions.GetListByAccountCode(QStringLiteral("A2110.450"), list), 0);
        EXPECT_FALSE(list.empty());
        for (const TransactionFields &t : list)
            lines << t.ReferenceNumber + QLatin1Char(' ') + t.Amount1 + QLatin1Char(' ') + t.Amount2;
        return lines.join(QLatin1Char('\n')).toStdString();
    }
};

class AmountTypeTest : public RetypedLedgerTest, public ::testing::WithParamInterface<AmountType> {};

TEST_P(AmountTypeTest, BalancesAndPostingsAreExact)
{
    const Snapshot before = snapshot();
    ASSERT_FALSE(before.unencumbered.isZero());
    retypeLedgerAmounts(GetParam());
    const Snapshot after = snapshot();
    EXPECT_EQ(after.placed, before.placed);
    EXPECT_EQ(after.unencumbered, before.unencumbered);

    classObjectTransactions transactions;
    init(transactions);
    transactions.LedgerID = QStringLiteral("E");
    transactions.FundID = QStringLiteral("A");
    transactions.AccountCode = QStringLiteral("A2110.450");
    transactions.TransDate = QStringLiteral("20250314");
    transactions.ReferenceNumber = QStringLiteral("PE900001");
    transactions.EncumbranceNumber = QStringLiteral("900001");
    transactions.ColumnID = QStringLiteral("EP");
    transactions.Amount1 = QStringLiteral("12.34");
    ASSERT_EQ(transactions.Add(), 0) << transactions.ErrorMsg().toStdString();
    ASSERT_EQ(transactions.UpdateSummary(), 0) << transactions.ErrorMsg().toStdString();
    const Snapshot posted = snapshot();
    EXPECT_EQ(amount(posted.placed[2]), amount(before.placed[2]) + Currency::fromRaw(123400));
    EXPECT_EQ(posted.unencumbered, before.unencumbered - Currency::fromRaw(123400));
    std::vector<TransactionFields> list;
    ASSERT_EQ(transactions.GetListbyRefNo(QStringLiteral("PE900001"), list), 0);
    ASSERT_EQ(list.size(), 1u);
    EXPECT_EQ(amount(list[0].Amount1), Currency::fromRaw(123400));

    classObjectELSummary summary;
    init(summary);
    summary.AccountCode = QStringLiteral("A2110.450");
    ASSERT_EQ(summary.Retrieve(), 0) << summary.ErrorMsg().toStdString();
    summary.BudgetAdj[9] = QStringLiteral("1,250.25");
    ASSERT_EQ(summary.Update(), 0) << summary.ErrorMsg().toStdString();
    summary.Clear();
    summary.AccountCode = QStringLiteral("A2110.450");
    ASSERT_EQ(summary.Retrieve(), 0) << summary.ErrorMsg().toStdString();
    EXPECT_EQ(summary.BudgetAdj[9], QStringLiteral("1,250.25"));
    EXPECT_EQ(summary.EncumPlaced, posted.placed);
}

INSTANTIATE_TEST_SUITE_P(Types, AmountTypeTest,
                         ::testing::Values(AmountType{"Money", recman::DataType::Money, 8, 2},
                                           AmountType{"Decimal", recman::DataType::Decimal, 8, 2},
                                           AmountType{"Numeric", recman::DataType::Numeric, 12, 2},
                                           AmountType{"Float", recman::DataType::Float, 8, 0},
                                           AmountType{"BFloat", recman::DataType::BFloat, 8, 0}),
                         [](const auto &info) { return std::string(info.param.name); });

using VariableLengthLedgerTest = RetypedLedgerTest;

// Decimal amounts in the variable tails of the summaries and transactions: the
// record objects read what they read from the fixed-length currency files.
// The engine writes no variable-length records, so a write is refused whole.
TEST_F(VariableLengthLedgerTest, ReadsMatchTheFixedCurrencyFilesAndWritesAreRefused)
{
    const std::string before = reads();
    const Snapshot balance = snapshot();
    ASSERT_GT(std::count(before.begin(), before.end(), '\n'), 10);
    retypeLedgerAmounts({"Decimal", recman::DataType::Decimal, 8, 2}, Layout::Variable);
    ASSERT_FALSE(HasFatalFailure());
    {
        recman::File file;
        ASSERT_EQ(file.open(std::filesystem::path(root().toStdString()) / "FUND" / "SumExp.btr"),
                  recman::Status::Success);
        EXPECT_TRUE(file.info().variable);
    }
    EXPECT_EQ(reads(), before);
    const Snapshot after = snapshot();
    EXPECT_EQ(after.placed, balance.placed);
    EXPECT_EQ(after.unencumbered, balance.unencumbered);

    classObjectELSummary summary;
    init(summary);
    summary.AccountCode = QStringLiteral("A2110.450");
    ASSERT_EQ(summary.Retrieve(), 0) << summary.ErrorMsg().toStdString();
    summary.BudgetAdj[9] = QStringLiteral("1,250.25");
    EXPECT_EQ(summary.Update(), recman::statusNumber(recman::Status::AccessDenied));
    EXPECT_EQ(summary.ErrorMsg(), QStringLiteral("Access to file denied."));
    // A record made afresh has room for the amounts in its tail.
    DataAccessControl &control = *summary.DataControl();
    control.clearRecord();
    ASSERT_TRUE(control.setFieldValue(QStringLiteral("12 Payment Expense"), QStringLiteral("12.34")));
    EXPECT_EQ(control.FieldValue(QStringLiteral("12 Payment Expense")).value<Currency>(), Currency::fromRaw(123400));
    classObjectTransactions posting;
    init(posting);
    posting.LedgerID = QStringLiteral("E");
    posting.FundID = QStringLiteral("A");
    posting.AccountCode = QStringLiteral("A2110.450");
    posting.TransDate = QStringLiteral("20250314");
    posting.ColumnID = QStringLiteral("EP");
    posting.Amount1 = QStringLiteral("12.34");
    EXPECT_NE(posting.UpdateSummary(), 0);
    EXPECT_EQ(reads(), before);
}

} // namespace
