#include "transactiondetail.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

Currency money(const char *text)
{
    return *Currency::parse(QString::fromLatin1(text));
}

TransactionFields transaction(int id, const char *column, const char *amount1, const char *amount2 = "0")
{
    TransactionFields t;
    t.ID = id;
    t.AccountCode = QStringLiteral("A2110.150");
    t.TransDate = QStringLiteral("20240815");
    t.ColumnID = QString::fromLatin1(column);
    t.Amount1 = QString::fromLatin1(amount1);
    t.Amount2 = QString::fromLatin1(amount2);
    return t;
}

// The cells a column code fills, as "Key=amount" in the ledger's column order; "-" for an empty cell.
QString cells(QChar ledger, const QString &columnId)
{
    const auto filled = detailAmountCells(ledger, columnId, money("11.25"), money("7.5"));
    QStringList shown;
    for (const DetailColumn &column : detailColumns(ledger)) {
        if (column.balanceSign == 0)
            continue;
        const auto cell = filled.find(QLatin1String(column.key));
        shown << (cell == filled.end() ? QStringLiteral("-") : cell->second.toSqlText());
    }
    return shown.join(u' ');
}

} // namespace

// Expenditure cells in the order Approp, Placed, Liquid, Payment; revenue Estimated, Received.
TEST(DetailColumnMapping, EveryColumnCodeFillsItsCellsWhateverItsCase)
{
    const struct {
        QChar ledger;
        const char *codes;
        const char *expected;
    } cases[] = {
        {u'E', "1 OE BA", "11.25 0 - 0"}, {u'E', "2 EP", "0 11.25 - 0"}, {u'E', "3 EL", "0 0 11.25 0"},
        {u'E', "4 PE", "0 0 - 11.25"},    {u'E', "5", "0 0 11.25 7.5"},  {u'R', "1 OE BA", "11.25 -"},
        {u'R', "2 RR", "0 11.25"},
    };
    for (const auto &c : cases) {
        for (const QString &code : QString::fromLatin1(c.codes).split(u' ')) {
            for (const QString &written : {code.toUpper(), code.toLower(), QStringLiteral(" ") + code + u' '}) {
                SCOPED_TRACE(QString(c.ledger).toStdString() + " \"" + written.toStdString() + "\"");
                EXPECT_EQ(cells(c.ledger, written), QLatin1String(c.expected));
                EXPECT_EQ(cells(c.ledger.toLower(), written), QLatin1String(c.expected));
            }
        }
    }
    // A code of the other ledger, or none known, fills no cell.
    EXPECT_EQ(cells(u'E', QStringLiteral("RR")), QStringLiteral("- - - -"));
    EXPECT_EQ(cells(u'R', QStringLiteral("5")), QStringLiteral("- -"));
    EXPECT_EQ(cells(u'E', QStringLiteral("DR")), QStringLiteral("- - - -"));
    EXPECT_EQ(cells(u'E', QString()), QStringLiteral("- - - -"));
}

TEST(DetailRunningBalance, LastBalanceIsAppropriationsLessPlacedPlusLiquidatedLessPayments)
{
    // Amounts with four decimals that binary floating point cannot hold exactly.
    const std::vector<TransactionFields> records{
        transaction(1, "OE", "1000.1"),   transaction(2, "ba", "0.2"),      transaction(3, "ep", "300.3333"),
        transaction(4, "EL", "100.1111"), transaction(5, "pe", "100.1111"), transaction(6, "5", "50.05", "49.95"),
        transaction(7, "2", "-0.0001"),   transaction(8, "3", "0.0001"),    transaction(9, "4", "0.7"),
        transaction(10, "1", "12.3456"),  transaction(11, "zz", "999"),
    };
    QString failure;
    const auto rows = detailRows(u'E', records, failure);
    ASSERT_TRUE(rows) << failure.toStdString();
    ASSERT_EQ(rows->size(), records.size());

    EXPECT_EQ(rows->front().balance, money("1000.1"));
    EXPECT_EQ(rows->at(2).balance, money("699.9667")) << "placed encumbrances lower the balance";
    EXPECT_EQ(rows->back().balance, money("1012.6456") - money("300.3332") + money("150.1612") - money("150.7611"));
    EXPECT_EQ(rows->at(9).balance, rows->back().balance) << "an unknown column code moves nothing";
}

TEST(DetailRunningBalance, RevenueBalanceIsTheEstimateNotYetReceived)
{
    QString failure;
    const auto rows = detailRows(u'R',
                                 {transaction(1, "oe", "500"), transaction(2, "RR", "120.5"),
                                  transaction(3, "2", "79.4999"), transaction(4, "1", "-10")},
                                 failure);
    ASSERT_TRUE(rows);
    EXPECT_EQ(rows->at(0).balance, money("500"));
    EXPECT_EQ(rows->at(1).balance, money("379.5"));
    EXPECT_EQ(rows->back().balance, money("290.0001"));
}

TEST(DetailRows, TextsDateAndAnAmountThatIsNoNumber)
{
    TransactionFields t = transaction(41, "PE", "25");
    t.EncumbranceNumber = QStringLiteral("000012");
    t.InvoiceNumber = QStringLiteral("INV-7");
    t.CheckNumber = QStringLiteral("5512");
    t.ReferenceText = QStringLiteral("Paper");
    t.VendorID = QStringLiteral("V100");
    t.ReferenceNumber = QStringLiteral("CD5512");
    t.ReceiptNumber = QStringLiteral("R9");
    QString failure;
    const auto rows = detailRows(u'E', {t}, failure);
    ASSERT_TRUE(rows);
    QStringList texts;
    for (const auto &[key, text] : rows->front().texts)
        texts << key + u'=' + text;
    EXPECT_EQ(texts.join(u' '), "CheckNumber=5512 Date=08-15-24 EncumbNumber=000012 InvoiceNumber=INV-7 "
                                "Ref=CD5512 Reference=Paper VendorNumber=V100")
        << "an expenditure row has no receipt";
    EXPECT_EQ(detailRows(u'R', {t}, failure)->front().texts.at("ReceiptNumber"), "R9");

    const auto bad = detailRows(u'E', {transaction(1, "OE", "10"), transaction(77, "PE", "1O.00")}, failure);
    EXPECT_FALSE(bad);
    EXPECT_TRUE(failure.contains("77") && failure.contains("\"1O.00\"") && failure.contains("A2110.150"))
        << failure.toStdString();
    EXPECT_FALSE(detailRows(u'E', {transaction(78, "5", "1", "x")}, failure));
    EXPECT_TRUE(failure.contains("Amount 2")) << failure.toStdString();
}
