#pragma once

#include "objectsummaryamounts.h"
#include "recordobject.h"

#include <QHash>
#include <QStringList>

#include <functional>
#include <map>

struct TransactionFields {
    int ID = 0;
    QString LedgerID; // "R", "E" or "G"
    QString FundID;
    QString AccountCode;
    QString TransDate; // yyyymmdd
    QString ReferenceNumber;
    QString ReferenceText;
    QString VendorID;
    // Not in the transaction file: the vendor's name, for callers that look it up.
    QString VendorName;
    QString Description;
    QString EncumbranceNumber;
    QString InvoiceNumber;
    QString CheckNumber;
    QString ReceiptNumber;
    QString ColumnID; // which monthly amount of the summary Amount1 feeds, see docs/fund-installation.md
    QString Amount1;  // plain decimal text as the file holds it: "1234.5"
    QString Amount2;
};

// What the transaction query picks transactions by.
enum class TransactionQuery { AccountCodes, Vendors, Encumbrances, Checks, Receipts };

// A prepared transaction search: the chosen values of one kind, narrowed by
// ledger, funds and a period. Empty lists accept everything.
struct TransactionSearch {
    TransactionQuery by = TransactionQuery::AccountCodes;
    QStringList values;
    QString ledgerId;
    QStringList funds;
    QString fromDate = QString::fromLatin1(lowestDateText);
    QString toDate = QString::fromLatin1(highestDateText);
};

struct OpenEncumbrance {
    QString EncumbranceNumber;
    QString VendorID;
    Currency Outstanding;
};

// Progress of a long walk: its text, records done, records in all.
using TransactionProgress = std::function<void(const QString &text, std::int64_t done, std::int64_t total)>;

// The detail transactions ("Transactions", "\DetTrans.btr"), with the three
// ledger summaries they post into and the counters file that numbers them.
// Key paths: 0 "ID"; 1 "Account Code" + "Trans Date"; 2 "Ledger ID" + "Fund ID"
// + "Account Code" + "Trans Date"; 3 "Vendor ID" + "Trans Date"; 4
// "Encumbrance Number" + "Trans Date"; 5 "Check Number"; 6 "Receipt Number";
// 7 "Reference Number". Every list honours PeriodStart..PeriodEnd.
class classObjectTransactions : public RecordObject<TransactionFields> {
public:
    classObjectTransactions();

    // The period lists and calculations are limited to (yyyymmdd, inclusive).
    QString PeriodStart = QString::fromLatin1(lowestDateText);
    QString PeriodEnd = QString::fromLatin1(highestDateText);
    // The Kora-Fund year (yyyymmdd, inclusive), from the latest "Years" record
    // at Init. Purchase-order numbers start again each year, so the sums and
    // the encumbrance look-ups cover this year only while the period is left
    // as it is; a period set, or these cleared, and they cover what the period says.
    QString FundYearStart;
    QString FundYearEnd;

    // The summary file of a ledger ('R', 'E', 'G'); null before Init or for
    // another letter. Each control keeps its own view of its file: a summary
    // object that is to see the postings takes this control (setDataControl).
    std::shared_ptr<DataAccessControl> SummaryControl(QChar ledger) const;
    // Words for the last failure of an operation of this object.
    QString ErrorMsg() const { return errorMsg_.isEmpty() ? Message() : errorMsg_; }

    // Adds the properties as a new transaction; an ID of 0 is first drawn from the counter.
    int Add();
    // Adds Amount1 into the monthly field of the account's summary that the
    // ledger, column and month of the properties name.
    int UpdateSummary();
    // Deletes one transaction, leaving the summaries alone.
    int DeleteItemDetail(int id);
    // Deletes every transaction of a reference and takes each out of its
    // summary, all or nothing.
    int DeleteItems_UpdSum(const QString &referenceNumber);

    using List = std::vector<TransactionFields>;
    int GetListAnyVendor(List &list);
    int GetListSpecificVendor(const QString &vendorId, List &list);
    int GetListAnyEncumbrance(List &list);
    int GetListSpecificEncumbrance(const QString &encumbranceNumber, List &list);
    int GetListAnyCheck(List &list);
    int GetListSpecificCheck(const QString &checkNumber, List &list);
    int GetListAnyReceipt(List &list);
    int GetListSpecificReceipt(const QString &receiptNumber, List &list);
    // One account of one fund and ledger, by date.
    int GetListSpecificAccountCode(const QString &ledgerId, const QString &fundId, const QString &accountCode,
                                   List &list);
    // One account whatever its ledger, by date.
    int GetListByAccountCode(const QString &accountCode, List &list);
    int GetListbyRefNo(const QString &referenceNumber, List &list);
    // The distinct account codes, and encumbrance numbers, that have transactions.
    int GetListAllAccountCodes(QStringList &codes);
    int GetListAllEncumbrances(QStringList &numbers);
    int GetListForFundInLedger(const QString &ledgerId, const QString &fundId, List &list);

    // The distinct values of one kind, in order, for the query pop-up; a
    // ledger narrows them to that ledger's transactions.
    int FetchList(TransactionQuery kind, const QString &ledgerId, QStringList &values);
    // The purchase orders still (partly) open: placed less liquidated is not 0.
    int FetchListEncumbrances(std::vector<OpenEncumbrance> &list);
    // The distinct reference numbers beginning with a prefix: "PE" the
    // purchase orders' encumbrances, "PR" their liquidations.
    int FetchListByRefs(const QString &prefix, QStringList &references);
    // The first transaction carrying a value of one kind, into the properties; 4 when none.
    int FetchUnique(TransactionQuery kind, const QString &value);

    // The encumbrance that placed a purchase order, into the properties; 4 when none.
    int RetrievePONumber(const QString &poNumber);
    // The account's transaction with a reference number, into the properties; 4 when none.
    int RetrieveAcctRef(const QString &accountCode, const QString &referenceNumber);
    // A purchase order as typed or referenced ("PE12", " 12") to the
    // encumbrance number the file keeps ("000012"); other text trimmed, upper case.
    static QString ConvertPONumber(const QString &text);

    // An account's encumbrances placed less liquidated.
    int CalculateOutstandingEncumbranceAmount(const QString &accountCode, Currency &amount);
    // One purchase order's encumbrances placed less liquidated, over its accounts.
    int Calc_OutEncAmt_byEncNo(const QString &encumbranceNumber, Currency &amount);
    // What is still open on an account in its own ledger: revenue the estimate
    // (opening + adjustments) less receipts; expenditure the open
    // encumbrances; general debits less credits.
    int CalculateOutstandingAmount(const QString &accountCode, Currency &amount);
    // An expenditure account's opening + adjustments - open encumbrances - payments.
    int CalculateUnencBalance(const QString &accountCode, Currency &amount);

    // A search walks the key of its kind: Prepare positions before the first
    // candidate, GetNext gives each match (9 at the end), GetGreater resumes
    // at a key value, GetAccountCode restricts the walk to one account (4
    // when it has no match).
    int DTSearch_Prepare(const TransactionSearch &search);
    int DTSearch_GetNext();
    int DTSearch_GetGreater(const QString &keyValue);
    int DTSearch_GetAccountCode(const QString &accountCode);
    // The search's fund and ledger filter, and its value and period filter.
    bool FundSelection(const TransactionFields &record) const;
    bool Compare(const TransactionFields &record) const;

    // Rewrites each transaction's "Fund ID" from its account code by the
    // funds' masks, all or nothing; codes no fund owns are left alone.
    int CorrectFundData(const TransactionProgress &progress, int &corrected);

    // The next transaction ID, advancing the counter "Detail Transactions".
    int GetUniqueDetailID(int &id);
    int GetNewID(const QString &counter, int &id);
    int WriteNextValue(const QString &counter, int nextValue);

protected:
    int openCompanions(const QString &ddfPath, const QString &dataFolder) override;

private:
    // Which records a list reads: the leading key fields fixed to values,
    // the date segment (when the key has one) from PeriodStart.
    struct KeyRange {
        int key = 0;
        std::vector<std::pair<QString, QString>> fixed;
        bool dated = false;
        bool fundYear = false; // a default period means the fund year
    };
    using Filter = std::function<bool(const TransactionFields &)>;
    // Sees each record of the range in key order; returning false stops the walk.
    using Visitor = std::function<bool(TransactionFields &)>;

    int walkRange(const KeyRange &range, const Visitor &visit);
    int listRange(const KeyRange &range, const Filter &keep, List &list);
    int distinctValues(int key, const QString &field, const QString &ledgerId, QStringList &values);
    // Sum of Amount1 of the account's transactions, signed by ledger and column.
    int signedSum(const KeyRange &range, const std::map<QString, int> &signs, Currency &amount);
    // Adds an amount into the summary month that a transaction feeds.
    int postToSummary(const TransactionFields &record, bool reverse);
    int firstOf(const KeyRange &range, const Filter &match);
    int searchNext();
    // Positions the search's key on a value (and the period's first date); next read is the record there.
    void searchFrom(const QString &keyValue);
    int fail(int status, const QString &why);
    int done(int status);
    bool inPeriod(const QString &date) const;
    // The dates a range covers: the period, or the fund year (see FundYearStart).
    std::pair<QString, QString> periodOf(const KeyRange &range) const;

    std::map<QChar, std::shared_ptr<DataAccessControl>> summaries_;
    std::shared_ptr<DataAccessControl> counters_;
    QString ddfPath_;
    QString dataFolder_;
    QString errorMsg_;
    TransactionSearch search_;
    QString searchAccount_;      // set by DTSearch_GetAccountCode: the walk ends with this account
    bool searchPending_ = false; // the record positioned on is still to be looked at
    bool searchEnded_ = true;
};

// The key path and field a query kind walks.
int transactionQueryKey(TransactionQuery kind);
QString transactionQueryField(TransactionQuery kind);
