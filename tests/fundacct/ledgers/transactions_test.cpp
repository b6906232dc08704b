#include "ledgerfixture.h"
#include "groupcommit.h"
#include "installationschema.h"
#include "objectsummaryledgers.h"

#include <QDir>
#include <QFile>

#include <csignal>
#include <set>
#include <sys/wait.h>
#include <unistd.h>

namespace {
// The first purchase order of the sample: the EP line of an expenditure account.
TransactionFields firstPurchaseOrder(classObjectTransactions &transactions)
{
    std::vector<TransactionFields> all;
    EXPECT_EQ(transactions.GetListAnyEncumbrance(all), 0);
    for (const TransactionFields &t : all) {
        if (t.ColumnID == QStringLiteral("EP"))
            return t;
    }
    ADD_FAILURE() << "no purchase order in the sample";
    return {};
}

QStringList codesOf(const std::vector<TransactionFields> &list, QString TransactionFields::*field)
{
    QStringList values;
    for (const TransactionFields &t : list)
        values << t.*field;
    return values;
}
} // namespace

using TransactionsTest = LedgerTest;

TEST_F(TransactionsTest, PostingAddsIntoTheMonthAndDeletingAReferenceTakesItOut)
{
    classObjectTransactions transactions;
    init(transactions);
    // The summary reads through the control the postings go through.
    classObjectELSummary summary;
    summary.setDataControl(transactions.SummaryControl(u'e'));
    summary.AccountCode = QStringLiteral("A2110.450");
    ASSERT_EQ(summary.Retrieve(), 0);
    const Currency before = amount(summary.EncumPlaced[2]);
    // Never Init'ed itself: the fiscal year's first month still comes from the parameters.
    summary.TransDate = QStringLiteral("06");
    EXPECT_EQ(summary.CalcBalance(), 0) << summary.ErrorMsg().toStdString();
    EXPECT_EQ(summary.FirstFiscalMonth, 7);

    int first = 0;
    int second = 0;
    ASSERT_EQ(transactions.GetUniqueDetailID(first), 0);
    ASSERT_EQ(transactions.GetUniqueDetailID(second), 0);
    EXPECT_EQ(second, first + 1);
    EXPECT_EQ(static_cast<std::int64_t>(first), transactions.DataControl()->TotalRecords() + 1);

    for (const char *value : {"12.34", "0.0066"}) {
        transactions.Clear();
        transactions.LedgerID = QStringLiteral("E");
        transactions.FundID = QStringLiteral("A");
        transactions.AccountCode = QStringLiteral("A2110.450");
        transactions.TransDate = QStringLiteral("20250314");
        transactions.ReferenceNumber = QStringLiteral("PE900001");
        transactions.EncumbranceNumber = QStringLiteral("900001");
        transactions.ColumnID = QStringLiteral("ep");
        transactions.Amount1 = QString::fromLatin1(value);
        ASSERT_EQ(transactions.Add(), 0) << transactions.ErrorMsg().toStdString();
        EXPECT_EQ(transactions.ID, second + (value[0] == '1' ? 1 : 2));
        ASSERT_EQ(transactions.UpdateSummary(), 0) << transactions.ErrorMsg().toStdString();
    }
    ASSERT_EQ(summary.Retrieve(), 0);
    EXPECT_EQ(amount(summary.EncumPlaced[2]), before + Currency::fromRaw(123466));

    // A column the ledger does not have changes nothing.
    transactions.ColumnID = QStringLiteral("RR");
    EXPECT_EQ(transactions.UpdateSummary(), statusBadLedgerInput);
    transactions.ColumnID = QStringLiteral("EP");
    transactions.TransDate = QStringLiteral("2025");
    EXPECT_EQ(transactions.UpdateSummary(), statusBadLedgerInput);
    ASSERT_EQ(summary.Retrieve(), 0);
    EXPECT_EQ(amount(summary.EncumPlaced[2]), before + Currency::fromRaw(123466));

    ASSERT_EQ(transactions.DeleteItems_UpdSum(QStringLiteral("PE900001")), 0) << transactions.ErrorMsg().toStdString();
    ASSERT_EQ(summary.Retrieve(), 0);
    EXPECT_EQ(amount(summary.EncumPlaced[2]), before);
    std::vector<TransactionFields> left;
    ASSERT_EQ(transactions.GetListbyRefNo(QStringLiteral("PE900001"), left), 0);
    EXPECT_TRUE(left.empty());
}

// A failure in the middle of a reference's deletion leaves detail and summaries untouched.
TEST_F(TransactionsTest, DeletingAReferenceIsAllOrNothing)
{
    classObjectTransactions transactions;
    init(transactions);
    const TransactionFields po = firstPurchaseOrder(transactions);
    transactions.Clear();
    transactions.LedgerID = QStringLiteral("E");
    transactions.AccountCode = QStringLiteral("A9999.999"); // no summary record
    transactions.TransDate = QStringLiteral("20250101");
    transactions.ReferenceNumber = po.ReferenceNumber;
    transactions.ColumnID = QStringLiteral("EP");
    transactions.Amount1 = QStringLiteral("5.00");
    ASSERT_EQ(transactions.Add(), 0);

    classObjectELSummary summary;
    summary.setDataControl(transactions.SummaryControl(u'E'));
    summary.AccountCode = po.AccountCode;
    ASSERT_EQ(summary.Retrieve(), 0);
    const MonthlyTexts placed = summary.EncumPlaced;
    EXPECT_EQ(transactions.DeleteItems_UpdSum(po.ReferenceNumber), 4);
    ASSERT_EQ(summary.Retrieve(), 0);
    EXPECT_EQ(summary.EncumPlaced, placed);
    std::vector<TransactionFields> still;
    ASSERT_EQ(transactions.GetListbyRefNo(po.ReferenceNumber, still), 0);
    EXPECT_EQ(still.size(), 2u);

    EXPECT_EQ(transactions.DeleteItemDetail(transactions.ID), 0);
    EXPECT_EQ(transactions.Retrieve(), 4);
}

// The detail file and the summaries end their groups as one: a crash while
// they end leaves the reference either wholly there or wholly deleted.
TEST_F(TransactionsTest, DeletingAReferenceKilledWhileItEndsLeavesDetailAndSummariesAgreeing)
{
    TransactionFields po;
    {
        classObjectTransactions transactions;
        init(transactions);
        po = firstPurchaseOrder(transactions);
    }
    // What an open (for writing, which recovers the files) finds: the
    // reference's detail lines and its summary's encumbrances placed.
    const auto found = [this, &po] {
        classObjectTransactions transactions;
        init(transactions);
        std::vector<TransactionFields> items;
        EXPECT_EQ(transactions.GetListbyRefNo(po.ReferenceNumber, items), 0);
        classObjectELSummary summary;
        summary.setDataControl(transactions.SummaryControl(u'E'));
        summary.AccountCode = po.AccountCode;
        EXPECT_EQ(summary.Retrieve(), 0);
        return std::pair{items.size(), summary.EncumPlaced};
    };
    const auto [lines, placed] = found();
    ASSERT_GT(lines, 0u);

    // Killed after the detail file's journal names the decision file, then
    // after the detail file's group has ended. The child opens the files
    // itself: none is open here while it runs.
    for (const auto killAfter : {recman::GroupCommitStep::DecisionNamed, recman::GroupCommitStep::GroupEnded}) {
        const bool deleted = killAfter == recman::GroupCommitStep::GroupEnded;
        SCOPED_TRACE(deleted);
        const pid_t child = ::fork();
        if (child == 0) {
            classObjectTransactions killed;
            recman::setGroupCommitProbe([killAfter](recman::GroupCommitStep step, std::size_t member) {
                if (step == killAfter && member == 0)
                    ::kill(::getpid(), SIGKILL);
            });
            if (killed.Init(root(), fund()) == 0)
                killed.DeleteItems_UpdSum(po.ReferenceNumber);
            ::_exit(1);
        }
        int status = 0;
        ::waitpid(child, &status, 0);
        ASSERT_TRUE(WIFSIGNALED(status)) << "the child did not reach the commit";
        const auto [linesLeft, placedNow] = found();
        EXPECT_EQ(linesLeft, deleted ? 0u : lines);
        EXPECT_EQ(placedNow == placed, !deleted);
    }
}

TEST_F(TransactionsTest, ListsByVendorEncumbranceCheckReceiptAndAccount)
{
    classObjectTransactions transactions;
    init(transactions);
    const TransactionFields po = firstPurchaseOrder(transactions);

    std::vector<TransactionFields> order;
    ASSERT_EQ(transactions.GetListSpecificEncumbrance(po.EncumbranceNumber, order), 0);
    ASSERT_EQ(order.size(), 3u);
    EXPECT_EQ(codesOf(order, &TransactionFields::ColumnID).join(u','), QStringLiteral("EP,EL,PE"));
    EXPECT_LE(order[0].TransDate, order[2].TransDate);

    std::vector<TransactionFields> check;
    ASSERT_EQ(transactions.GetListSpecificCheck(order[2].CheckNumber, check), 0);
    ASSERT_EQ(check.size(), 1u);
    EXPECT_EQ(check[0].InvoiceNumber, order[2].InvoiceNumber);

    std::vector<TransactionFields> vendor;
    ASSERT_EQ(transactions.GetListSpecificVendor(po.VendorID, vendor), 0);
    EXPECT_GE(vendor.size(), 3u);
    for (std::size_t i = 0; i < vendor.size(); ++i) {
        EXPECT_EQ(vendor[i].VendorID, po.VendorID);
        if (i > 0)
            EXPECT_LE(vendor[i - 1].TransDate, vendor[i].TransDate);
    }

    std::vector<TransactionFields> receipts;
    ASSERT_EQ(transactions.GetListAnyReceipt(receipts), 0);
    ASSERT_FALSE(receipts.empty());
    for (const TransactionFields &t : receipts)
        EXPECT_EQ(t.ColumnID, QStringLiteral("RR"));
    std::vector<TransactionFields> oneReceipt;
    ASSERT_EQ(transactions.GetListSpecificReceipt(receipts[0].ReceiptNumber, oneReceipt), 0);
    EXPECT_EQ(oneReceipt.size(), 1u);

    std::vector<TransactionFields> byCode, byLedger;
    ASSERT_EQ(transactions.GetListByAccountCode(QStringLiteral("A2110.120"), byCode), 0);
    ASSERT_EQ(transactions.GetListSpecificAccountCode(QStringLiteral("E"), QStringLiteral("A"),
                                                      QStringLiteral("A2110.120"), byLedger),
              0);
    EXPECT_EQ(byCode.size(), 7u);
    EXPECT_EQ(codesOf(byCode, &TransactionFields::TransDate), codesOf(byLedger, &TransactionFields::TransDate));
    EXPECT_EQ(byCode[0].ColumnID, QStringLiteral("OE"));

    // A period narrows every list.
    transactions.PeriodStart = QStringLiteral("20240801");
    transactions.PeriodEnd = QStringLiteral("20241231");
    std::vector<TransactionFields> inPeriod;
    ASSERT_EQ(transactions.GetListByAccountCode(QStringLiteral("A2110.120"), inPeriod), 0);
    EXPECT_LT(inPeriod.size(), byCode.size());
    for (const TransactionFields &t : inPeriod)
        EXPECT_TRUE(t.TransDate >= transactions.PeriodStart && t.TransDate <= transactions.PeriodEnd);
    transactions.PeriodStart = QString::fromLatin1(lowestDateText);
    transactions.PeriodEnd = QString::fromLatin1(highestDateText);

    std::vector<TransactionFields> fundC;
    ASSERT_EQ(transactions.GetListForFundInLedger(QStringLiteral("R"), QStringLiteral("C"), fundC), 0);
    QStringList fundCCodes = codesOf(fundC, &TransactionFields::AccountCode);
    fundCCodes.removeDuplicates();
    EXPECT_EQ(fundCCodes, QStringList{QStringLiteral("C1440")});

    QStringList codes;
    ASSERT_EQ(transactions.GetListAllAccountCodes(codes), 0);
    EXPECT_EQ(codes.size(), 14); // eleven accounts and three cash accounts
    EXPECT_TRUE(std::is_sorted(codes.begin(), codes.end()));
    QStringList vendors;
    ASSERT_EQ(transactions.FetchList(TransactionQuery::Vendors, QStringLiteral("E"), vendors), 0);
    EXPECT_TRUE(vendors.contains(po.VendorID));
    EXPECT_EQ(vendors.removeDuplicates(), 0);
    QStringList revenueVendors;
    ASSERT_EQ(transactions.FetchList(TransactionQuery::Vendors, QStringLiteral("R"), revenueVendors), 0);
    EXPECT_TRUE(revenueVendors.isEmpty());
}

TEST_F(TransactionsTest, PurchaseOrdersReferencesAndOutstandingEncumbrances)
{
    classObjectTransactions transactions;
    init(transactions);
    const TransactionFields po = firstPurchaseOrder(transactions);
    const int number = po.EncumbranceNumber.toInt();

    EXPECT_EQ(classObjectTransactions::ConvertPONumber(QStringLiteral("PE%1").arg(number)), po.EncumbranceNumber);
    EXPECT_EQ(classObjectTransactions::ConvertPONumber(QStringLiteral(" pr 12 ")), QStringLiteral("000012"));
    EXPECT_EQ(classObjectTransactions::ConvertPONumber(QStringLiteral("ab-7")), QStringLiteral("AB-7"));
    ASSERT_EQ(transactions.RetrievePONumber(QString::number(number)), 0);
    EXPECT_EQ(transactions.ColumnID, QStringLiteral("EP"));
    EXPECT_EQ(transactions.ID, po.ID);
    EXPECT_EQ(transactions.RetrievePONumber(QStringLiteral("999999")), 4);
    ASSERT_EQ(transactions.RetrieveAcctRef(po.AccountCode, QStringLiteral("PR") + po.EncumbranceNumber), 0);
    EXPECT_EQ(transactions.ColumnID, QStringLiteral("EL"));
    EXPECT_EQ(transactions.RetrieveAcctRef(QStringLiteral("F2250.150"), po.ReferenceNumber), 4);
    ASSERT_EQ(transactions.FetchUnique(TransactionQuery::Vendors, po.VendorID), 0);
    EXPECT_EQ(transactions.VendorID, po.VendorID);

    QStringList placed, liquidated;
    ASSERT_EQ(transactions.FetchListByRefs(QStringLiteral("PE"), placed), 0);
    ASSERT_EQ(transactions.FetchListByRefs(QStringLiteral("PR"), liquidated), 0);
    EXPECT_EQ(placed.size(), liquidated.size());
    EXPECT_TRUE(placed.contains(po.ReferenceNumber));
    for (const QString &reference : placed)
        EXPECT_TRUE(reference.startsWith(QStringLiteral("PE")));

    // Every sample order is paid in full; a new, half-liquidated one stays open.
    std::vector<OpenEncumbrance> open;
    ASSERT_EQ(transactions.FetchListEncumbrances(open), 0);
    EXPECT_TRUE(open.empty());
    for (const auto &[column, value] : {std::pair{"EP", "800.00"}, std::pair{"EL", "300.00"}}) {
        transactions.Clear();
        transactions.LedgerID = QStringLiteral("E");
        transactions.AccountCode = po.AccountCode;
        transactions.TransDate = QStringLiteral("20250201");
        transactions.EncumbranceNumber = QStringLiteral("777777");
        transactions.VendorID = QStringLiteral("V0001");
        transactions.ColumnID = QString::fromLatin1(column);
        transactions.Amount1 = QString::fromLatin1(value);
        ASSERT_EQ(transactions.Add(), 0);
    }
    Currency outstanding;
    ASSERT_EQ(transactions.Calc_OutEncAmt_byEncNo(QStringLiteral("PE777777"), outstanding), 0);
    EXPECT_EQ(outstanding, Currency::fromUnits(500));
    ASSERT_EQ(transactions.CalculateOutstandingEncumbranceAmount(po.AccountCode, outstanding), 0);
    EXPECT_EQ(outstanding, Currency::fromUnits(500));
    ASSERT_EQ(transactions.CalculateOutstandingAmount(po.AccountCode, outstanding), 0);
    EXPECT_EQ(outstanding, Currency::fromUnits(500));
    ASSERT_EQ(transactions.FetchListEncumbrances(open), 0);
    ASSERT_EQ(open.size(), 1u);
    EXPECT_EQ(open[0].EncumbranceNumber, QStringLiteral("777777"));
    EXPECT_EQ(open[0].VendorID, QStringLiteral("V0001"));
    EXPECT_EQ(open[0].Outstanding, Currency::fromUnits(500));

    // Revenue: the estimate not yet received.
    std::vector<TransactionFields> revenue;
    ASSERT_EQ(transactions.GetListByAccountCode(QStringLiteral("A1001"), revenue), 0);
    Currency expected;
    for (const TransactionFields &t : revenue)
        expected += t.ColumnID == QStringLiteral("RR") ? -amount(t.Amount1) : amount(t.Amount1);
    ASSERT_EQ(transactions.CalculateOutstandingAmount(QStringLiteral("A1001"), outstanding), 0);
    EXPECT_EQ(outstanding, expected);
}

TEST_F(TransactionsTest, SumsAndOrderLookUpsKeepToTheFundYearUnlessToldOtherwise)
{
    classObjectTransactions transactions;
    init(transactions);
    ASSERT_EQ(transactions.FundYearStart, QStringLiteral("20240701"));
    ASSERT_EQ(transactions.FundYearEnd, QStringLiteral("20250630"));
    const TransactionFields po = firstPurchaseOrder(transactions);
    // Order 000777 placed last year and partly liquidated; the same number again this year.
    const auto post = [&](const char *date, const char *column, const char *value) {
        transactions.Clear();
        transactions.LedgerID = QStringLiteral("E");
        transactions.AccountCode = po.AccountCode;
        transactions.TransDate = QString::fromLatin1(date);
        transactions.EncumbranceNumber = QStringLiteral("000777");
        transactions.VendorID = QStringLiteral("V0001");
        transactions.ColumnID = QString::fromLatin1(column);
        transactions.Amount1 = QString::fromLatin1(value);
        ASSERT_EQ(transactions.Add(), 0) << transactions.ErrorMsg().toStdString();
    };
    post("20240315", "EP", "900.00");
    post("20240410", "EL", "250.00");
    post("20250201", "EP", "800.00");
    post("20250301", "EL", "300.00");
    const int thisYearsOrder = transactions.ID - 1;

    const auto outstanding = [&](Currency &byOrder, Currency &byAccount, std::vector<OpenEncumbrance> &open) {
        open.clear();
        ASSERT_EQ(transactions.Calc_OutEncAmt_byEncNo(QStringLiteral("PE777"), byOrder), 0);
        ASSERT_EQ(transactions.CalculateOutstandingEncumbranceAmount(po.AccountCode, byAccount), 0);
        ASSERT_EQ(transactions.FetchListEncumbrances(open), 0);
    };
    Currency byOrder, byAccount;
    std::vector<OpenEncumbrance> open;
    outstanding(byOrder, byAccount, open);
    EXPECT_EQ(byOrder, Currency::fromUnits(500));
    EXPECT_EQ(byAccount, Currency::fromUnits(500));
    ASSERT_EQ(open.size(), 1u);
    EXPECT_EQ(open[0].Outstanding, Currency::fromUnits(500));
    ASSERT_EQ(transactions.RetrievePONumber(QStringLiteral("777")), 0);
    EXPECT_EQ(transactions.ID, thisYearsOrder);

    // A period chosen is what counts: last year alone.
    transactions.PeriodStart = QStringLiteral("20230701");
    transactions.PeriodEnd = QStringLiteral("20240630");
    outstanding(byOrder, byAccount, open);
    EXPECT_EQ(byOrder, Currency::fromUnits(650));
    EXPECT_EQ(byAccount, Currency::fromUnits(650));
    ASSERT_EQ(open.size(), 1u);
    EXPECT_EQ(transactions.RetrievePONumber(QStringLiteral("777")), 0);
    EXPECT_EQ(transactions.TransDate, QStringLiteral("20240315"));

    // Every year, when asked for: the two orders merge.
    transactions.PeriodStart = QString::fromLatin1(lowestDateText);
    transactions.PeriodEnd = QString::fromLatin1(highestDateText);
    transactions.FundYearStart.clear();
    outstanding(byOrder, byAccount, open);
    EXPECT_EQ(byOrder, Currency::fromUnits(1150));
    EXPECT_EQ(byAccount, Currency::fromUnits(1150));
    ASSERT_EQ(open.size(), 1u);
    EXPECT_EQ(open[0].Outstanding, Currency::fromUnits(1150));
}

TEST_F(TransactionsTest, SearchesWalkOnlyTheChosenValuesFundsAndPeriod)
{
    classObjectTransactions transactions;
    init(transactions);
    std::vector<TransactionFields> all;
    ASSERT_EQ(transactions.GetListAnyVendor(all), 0);
    ASSERT_GE(all.size(), 6u);
    const QString vendorA = all.front().VendorID;
    const QString vendorB = all.back().VendorID;

    TransactionSearch search;
    search.by = TransactionQuery::Vendors;
    search.values = {vendorB, vendorA, QStringLiteral("V9999")};
    search.ledgerId = QStringLiteral("e");
    search.fromDate = QStringLiteral("20240701");
    search.toDate = QStringLiteral("20250630");
    ASSERT_EQ(transactions.DTSearch_Prepare(search), 0);
    std::multiset<int> found;
    while (transactions.DTSearch_GetNext() == 0)
        found.insert(transactions.ID);
    std::multiset<int> expected;
    for (const TransactionFields &t : all) {
        if (t.VendorID == vendorA || t.VendorID == vendorB)
            expected.insert(t.ID);
    }
    EXPECT_EQ(found, expected);
    EXPECT_EQ(transactions.DTSearch_GetNext(), 9);

    ASSERT_EQ(transactions.DTSearch_GetGreater(vendorB), 0);
    EXPECT_EQ(transactions.VendorID, vendorB);

    TransactionSearch byFund;
    byFund.funds = {QStringLiteral("F")};
    ASSERT_EQ(transactions.DTSearch_Prepare(byFund), 0);
    ASSERT_EQ(transactions.DTSearch_GetAccountCode(QStringLiteral("F2250.150")), 0);
    int count = 1;
    while (transactions.DTSearch_GetNext() == 0) {
        EXPECT_EQ(transactions.AccountCode, QStringLiteral("F2250.150"));
        ++count;
    }
    EXPECT_EQ(count, 7);
    EXPECT_EQ(transactions.DTSearch_GetAccountCode(QStringLiteral("A2110.120")), 4); // not fund F
    EXPECT_FALSE(transactions.FundSelection(all.front()));
}

TEST_F(TransactionsTest, CorrectFundDataRewritesWrongFundsFromTheMasks)
{
    classObjectTransactions transactions;
    init(transactions);
    std::vector<TransactionFields> lunch;
    ASSERT_EQ(transactions.GetListByAccountCode(QStringLiteral("C1440"), lunch), 0);
    ASSERT_GE(lunch.size(), 2u);
    for (const TransactionFields &t : lunch) {
        static_cast<TransactionFields &>(transactions) = t;
        transactions.FundID = QStringLiteral("A");
        ASSERT_EQ(transactions.Update(), 0);
    }

    std::vector<std::pair<QString, std::int64_t>> reports;
    int corrected = 0;
    ASSERT_EQ(
        transactions.CorrectFundData(
            [&](const QString &text, std::int64_t done, std::int64_t) { reports.emplace_back(text, done); }, corrected),
        0)
        << transactions.ErrorMsg().toStdString();
    EXPECT_EQ(corrected, static_cast<int>(lunch.size()));
    ASSERT_FALSE(reports.empty());
    EXPECT_EQ(reports.back().first, QStringLiteral("Scanning Transaction Summary File..."));
    EXPECT_EQ(reports.back().second, transactions.DataControl()->TotalRecords());

    for (int status = transactions.DataControl()->StepFirst(); status == 0;
         status = transactions.DataControl()->StepNext()) {
        const auto field = [&](const char *name) {
            return transactions.DataControl()->FieldValue(QString::fromLatin1(name)).toString();
        };
        EXPECT_EQ(field("Fund ID"), field("Account Code").left(1)) << field("ID").toStdString();
    }
    ASSERT_EQ(transactions.CorrectFundData({}, corrected), 0);
    EXPECT_EQ(corrected, 0);
}

TEST_F(TransactionsTest, AnOldYearsFolderSharesTheInstallationsCountersAndOrganisation)
{
    // Before 2002 a year's own files lie in FUND\DATA\<year>; counters and
    // the organisation record stay in FUND.
    const QString year = root() + QStringLiteral("/FUND/DATA/1999");
    ASSERT_TRUE(QDir().mkpath(year));
    const QStringList perYear{QStringLiteral("Funds.btr"),  QStringLiteral("Checking.btr"), QStringLiteral("FundPara.btr"),
                              QStringLiteral("SumRev.btr"), QStringLiteral("SumExp.btr"),   QStringLiteral("SumGen.btr"),
                              QStringLiteral("DetTrans.btr")};
    for (const FundTableSpec &spec : installationTables())
        if (perYear.contains(spec.fileName, Qt::CaseInsensitive))
            ASSERT_TRUE(QFile::copy(root() + QStringLiteral("/FUND/") + spec.fileName, year + u'/' + spec.fileName));

    classObjectTransactions transactions;
    ASSERT_EQ(transactions.Init(root(), fund() + QStringLiteral("\\DATA\\1999")), 0)
        << transactions.ErrorMsg().toStdString();
    int id = 0;
    ASSERT_EQ(transactions.GetUniqueDetailID(id), 0) << transactions.ErrorMsg().toStdString();
    EXPECT_EQ(static_cast<std::int64_t>(id), transactions.DataControl()->TotalRecords() + 1);
    int corrected = -1;
    EXPECT_EQ(transactions.CorrectFundData({}, corrected), 0) << transactions.ErrorMsg().toStdString();
    EXPECT_EQ(corrected, 0);
}

