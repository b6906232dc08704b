// Ledger amounts stored in every numeric type a dictionary may give them: the
// summaries and transactions read the same exact amounts, balances agree, and
// a posting adds into the month instead of replacing it.
#include "fundfieldvalue.h"
#include "installationschema.h"
#include "ledgerfixture.h"
#include "objectsummaryledgers.h"

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

// Rewrites a data file record by record for the retyped table.
void convertFile(const std::filesystem::path &path, const recman::TableDef &from, const recman::TableDef &to)
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
    std::string message;
    ASSERT_EQ(recman::createDataFile(path, to, records, message, recman::CreateMode::Overwrite), recman::Status::Success)
        << message;
}

struct Snapshot {
    MonthlyTexts placed;
    Currency unencumbered;
};

class AmountTypeTest : public LedgerTest, public ::testing::WithParamInterface<AmountType> {
protected:
    void retypeLedgerAmounts()
    {
        std::vector<recman::TableDef> tables;
        for (const FundTableSpec &spec : installationTables()) {
            tables.push_back(spec.table);
            if (spec.table.name != "SummaryExpenditure" && spec.table.name != "Transactions")
                continue;
            tables.back() = retyped(spec.table, GetParam());
            convertFile(std::filesystem::path(root().toStdString()) / "FUND" / spec.fileName.toStdString(), spec.table,
                        tables.back());
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
};

TEST_P(AmountTypeTest, BalancesAndPostingsAreExact)
{
    const Snapshot before = snapshot();
    ASSERT_FALSE(before.unencumbered.isZero());
    retypeLedgerAmounts();
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
}

INSTANTIATE_TEST_SUITE_P(Types, AmountTypeTest,
                         ::testing::Values(AmountType{"Money", recman::DataType::Money, 8, 2},
                                           AmountType{"Decimal", recman::DataType::Decimal, 8, 2},
                                           AmountType{"Numeric", recman::DataType::Numeric, 12, 2},
                                           AmountType{"Float", recman::DataType::Float, 8, 0},
                                           AmountType{"BFloat", recman::DataType::BFloat, 8, 0}),
                         [](const auto &info) { return std::string(info.param.name); });

} // namespace
