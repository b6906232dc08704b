#include "objectsummary.h"
#include "objecttransactions.h"

namespace {
using T = TransactionFields;
const auto accountField = QStringLiteral("Account Code");
const auto vendorField = QStringLiteral("Vendor ID");
const auto encumbranceField = QStringLiteral("Encumbrance Number");
const auto checkField = QStringLiteral("Check Number");
const auto receiptField = QStringLiteral("Receipt Number");
const auto referenceField = QStringLiteral("Reference Number");
constexpr int poNumberWidth = 6;
constexpr int extendedBlockRows = 4096;

// Signs of Amount 1 by "ledger:column" for the outstanding-amount sums.
using Signs = std::map<QString, int>;
const Signs encumbranceSigns{{QStringLiteral("E:EP"), 1}, {QStringLiteral("E:EL"), -1}};
const Signs outstandingSigns{{QStringLiteral("R:OE"), 1}, {QStringLiteral("R:BA"), 1},  {QStringLiteral("R:RR"), -1},
                             {QStringLiteral("E:EP"), 1}, {QStringLiteral("E:EL"), -1}, {QStringLiteral("G:DR"), 1},
                             {QStringLiteral("G:CR"), -1}};
const Signs unencumberedSigns{{QStringLiteral("E:OE"), 1},
                              {QStringLiteral("E:BA"), 1},
                              {QStringLiteral("E:EP"), -1},
                              {QStringLiteral("E:EL"), 1},
                              {QStringLiteral("E:PE"), -1}};

QString columnKey(const TransactionFields &record)
{
    return record.LedgerID.trimmed().toUpper() + u':' + record.ColumnID.trimmed().toUpper();
}

bool isEncumbrancePlaced(const TransactionFields &record)
{
    return columnKey(record) == QStringLiteral("E:EP");
}

bool isUnbounded(const QString &from, const QString &to)
{
    return from == QLatin1String(lowestDateText) && to == QLatin1String(highestDateText);
}

bool within(const QString &date, const QString &from, const QString &to)
{
    return isUnbounded(from, to) || (date >= from && date <= to);
}
} // namespace

int transactionQueryKey(TransactionQuery kind)
{
    switch (kind) {
    case TransactionQuery::Vendors:
        return 3;
    case TransactionQuery::Encumbrances:
        return 4;
    case TransactionQuery::Checks:
        return 5;
    case TransactionQuery::Receipts:
        return 6;
    case TransactionQuery::AccountCodes:
        break;
    }
    return 1;
}

QString transactionQueryField(TransactionQuery kind)
{
    switch (kind) {
    case TransactionQuery::Vendors:
        return vendorField;
    case TransactionQuery::Encumbrances:
        return encumbranceField;
    case TransactionQuery::Checks:
        return checkField;
    case TransactionQuery::Receipts:
        return receiptField;
    case TransactionQuery::AccountCodes:
        break;
    }
    return accountField;
}

bool classObjectTransactions::inPeriod(const QString &date) const
{
    return within(date, PeriodStart, PeriodEnd);
}

std::pair<QString, QString> classObjectTransactions::periodOf(const KeyRange &range) const
{
    if (range.fundYear && isUnbounded(PeriodStart, PeriodEnd) && !FundYearStart.isEmpty() && !FundYearEnd.isEmpty())
        return {FundYearStart, FundYearEnd};
    return {PeriodStart, PeriodEnd};
}

int classObjectTransactions::walkRange(const KeyRange &range, const Visitor &visit)
{
    errorMsg_.clear();
    if (!DataBound())
        return notBound();
    DataAccessControl &file = control();
    const auto [from, to] = periodOf(range);
    file.setIndexNumber(range.key);
    file.clearRecord();
    for (const auto &[field, value] : range.fixed) {
        if (!file.setFieldValue(field, value))
            return fail(file.Status(), file.Message());
    }
    if (range.dated && !file.setFieldValue(QStringLiteral("Trans Date"), from))
        return fail(file.Status(), file.Message());
    int status = file.GetGreaterOrEqual();
    for (; status == 0; status = file.GetNext()) {
        const bool inRange = std::ranges::all_of(range.fixed, [&](const auto &fixed) {
            return file.FieldValue(fixed.first).toString() == fixed.second.trimmed();
        });
        if (!inRange)
            break;
        TransactionFields record;
        loadCurrent(record);
        if (range.dated && !range.fixed.empty() && record.TransDate > to)
            break;
        if (within(record.TransDate, from, to) && !visit(record))
            break;
    }
    return done(status);
}

int classObjectTransactions::listRange(const KeyRange &range, const Filter &keep, List &list)
{
    return walkRange(range, [&](TransactionFields &record) {
        if (keep(record))
            list.push_back(std::move(record));
        return true;
    });
}

int classObjectTransactions::firstOf(const KeyRange &range, const Filter &match)
{
    bool found = false;
    const int status = walkRange(range, [&](TransactionFields &record) {
        found = match(record);
        if (found)
            static_cast<TransactionFields &>(*this) = std::move(record);
        return !found;
    });
    return status != 0 || found ? status : finish(4);
}

int classObjectTransactions::signedSum(const KeyRange &range, const Signs &signs, Currency &amount)
{
    Currency sum;
    QString bad;
    const int status = walkRange(range, [&](TransactionFields &record) {
        const auto sign = signs.find(columnKey(record));
        if (sign == signs.end())
            return true;
        const auto value = ledgerAmountFromText(record.Amount1);
        if (!value)
            bad = QStringLiteral("transaction %1 has no amount: \"%2\"").arg(record.ID).arg(record.Amount1);
        else
            sum += sign->second < 0 ? -*value : *value;
        return bad.isEmpty();
    });
    if (status != 0)
        return status;
    if (!bad.isEmpty())
        return fail(statusBadLedgerInput, bad);
    amount = sum;
    return 0;
}

namespace {
bool anyValue(const QString &value)
{
    return !value.isEmpty();
}
} // namespace

int classObjectTransactions::GetListAnyVendor(List &list)
{
    return listRange(
        {3, {}, false}, [](const T &r) { return anyValue(r.VendorID); }, list);
}
int classObjectTransactions::GetListSpecificVendor(const QString &vendorId, List &list)
{
    return listRange(
        {3, {{vendorField, vendorId}}, true}, [](const T &) { return true; }, list);
}
int classObjectTransactions::GetListAnyEncumbrance(List &list)
{
    return listRange(
        {4, {}, false}, [](const T &r) { return anyValue(r.EncumbranceNumber); }, list);
}
int classObjectTransactions::GetListSpecificEncumbrance(const QString &encumbranceNumber, List &list)
{
    return listRange(
        {4, {{encumbranceField, encumbranceNumber}}, true}, [](const T &) { return true; }, list);
}
int classObjectTransactions::GetListAnyCheck(List &list)
{
    return listRange(
        {5, {}, false}, [](const T &r) { return anyValue(r.CheckNumber); }, list);
}
int classObjectTransactions::GetListSpecificCheck(const QString &checkNumber, List &list)
{
    return listRange(
        {5, {{checkField, checkNumber}}, false}, [](const T &) { return true; }, list);
}
int classObjectTransactions::GetListAnyReceipt(List &list)
{
    return listRange(
        {6, {}, false}, [](const T &r) { return anyValue(r.ReceiptNumber); }, list);
}
int classObjectTransactions::GetListSpecificReceipt(const QString &receiptNumber, List &list)
{
    return listRange(
        {6, {{receiptField, receiptNumber}}, false}, [](const T &) { return true; }, list);
}
int classObjectTransactions::GetListSpecificAccountCode(const QString &ledgerId, const QString &fundId,
                                                        const QString &accountCode, List &list)
{
    return listRange(
        {2,
         {{QStringLiteral("Ledger ID"), ledgerId}, {QStringLiteral("Fund ID"), fundId}, {accountField, accountCode}},
         true},
        [](const T &) { return true; }, list);
}
int classObjectTransactions::GetListByAccountCode(const QString &accountCode, List &list)
{
    return listRange(
        {1, {{accountField, accountCode}}, true}, [](const T &) { return true; }, list);
}
int classObjectTransactions::GetListbyRefNo(const QString &referenceNumber, List &list)
{
    return listRange(
        {7, {{referenceField, referenceNumber}}, false}, [](const T &) { return true; }, list);
}
int classObjectTransactions::GetListForFundInLedger(const QString &ledgerId, const QString &fundId, List &list)
{
    return listRange(
        {2, {{QStringLiteral("Ledger ID"), ledgerId}, {QStringLiteral("Fund ID"), fundId}}, false},
        [](const T &) { return true; }, list);
}

int classObjectTransactions::distinctValues(int key, const QString &field, const QString &ledgerId, QStringList &values)
{
    errorMsg_.clear();
    if (!DataBound())
        return notBound();
    DataAccessControl &file = control();
    file.setIndexNumber(key);
    int status = file.GetFirst();
    file.setExtendedOps(true);
    file.setCacheRows(extendedBlockRows);
    file.setSelectedFields(field + QStringLiteral(", Ledger ID"));
    while (status == 0) {
        status = file.GetNextExtended();
        for (int row = 0; status == 0 && row < file.Rows(); ++row) {
            const QString value = file.RowColumnValue(row, 0).toString();
            const bool ofLedger = ledgerId.isEmpty() ||
                                  file.RowColumnValue(row, 1).toString().compare(ledgerId, Qt::CaseInsensitive) == 0;
            if (ofLedger && !value.isEmpty() && (values.isEmpty() || values.back() != value))
                values << value;
        }
    }
    file.setExtendedOps(false);
    return done(status);
}

int classObjectTransactions::GetListAllAccountCodes(QStringList &codes)
{
    return distinctValues(1, accountField, {}, codes);
}
int classObjectTransactions::GetListAllEncumbrances(QStringList &numbers)
{
    return distinctValues(4, encumbranceField, {}, numbers);
}
int classObjectTransactions::FetchList(TransactionQuery kind, const QString &ledgerId, QStringList &values)
{
    return distinctValues(transactionQueryKey(kind), transactionQueryField(kind), ledgerId, values);
}

int classObjectTransactions::FetchListEncumbrances(std::vector<OpenEncumbrance> &list)
{
    OpenEncumbrance current;
    const auto flush = [&] {
        if (!current.EncumbranceNumber.isEmpty() && !current.Outstanding.isZero())
            list.push_back(current);
    };
    QString bad;
    const int status = walkRange({4, {}, false, true}, [&](TransactionFields &record) {
        if (record.EncumbranceNumber.isEmpty())
            return true;
        if (record.EncumbranceNumber != current.EncumbranceNumber) {
            flush();
            current = {record.EncumbranceNumber, record.VendorID, {}};
        }
        if (current.VendorID.isEmpty())
            current.VendorID = record.VendorID;
        const auto sign = encumbranceSigns.find(columnKey(record));
        const auto value = ledgerAmountFromText(record.Amount1);
        if (!value)
            bad = QStringLiteral("transaction %1 has no amount: \"%2\"").arg(record.ID).arg(record.Amount1);
        else if (sign != encumbranceSigns.end())
            current.Outstanding += sign->second < 0 ? -*value : *value;
        return bad.isEmpty();
    });
    if (status == 0 && !bad.isEmpty())
        return fail(statusBadLedgerInput, bad);
    if (status == 0)
        flush();
    return status;
}

int classObjectTransactions::FetchListByRefs(const QString &prefix, QStringList &references)
{
    errorMsg_.clear();
    if (!DataBound())
        return notBound();
    DataAccessControl &file = control();
    file.setIndexNumber(7);
    file.clearRecord();
    if (!file.setFieldValue(referenceField, prefix))
        return fail(file.Status(), file.Message());
    int status = file.GetGreaterOrEqual();
    for (; status == 0; status = file.GetNext()) {
        const QString reference = file.FieldValue(referenceField).toString();
        if (!reference.startsWith(prefix.trimmed(), Qt::CaseInsensitive))
            break;
        if (inPeriod(file.FieldValue(QStringLiteral("Trans Date")).toString()) &&
            (references.isEmpty() || references.back() != reference))
            references << reference;
    }
    return done(status);
}

int classObjectTransactions::FetchUnique(TransactionQuery kind, const QString &value)
{
    const int key = transactionQueryKey(kind);
    return firstOf({key, {{transactionQueryField(kind), value}}, key <= 4}, [](const T &) { return true; });
}

int classObjectTransactions::RetrievePONumber(const QString &poNumber)
{
    return firstOf({4, {{encumbranceField, ConvertPONumber(poNumber)}}, true, true}, isEncumbrancePlaced);
}

int classObjectTransactions::RetrieveAcctRef(const QString &accountCode, const QString &referenceNumber)
{
    return firstOf({7, {{referenceField, referenceNumber}}, false},
                   [&](const T &r) { return r.AccountCode == accountCode.trimmed(); });
}

QString classObjectTransactions::ConvertPONumber(const QString &text)
{
    QString number = text.trimmed();
    if (number.startsWith(QLatin1String("PE"), Qt::CaseInsensitive) ||
        number.startsWith(QLatin1String("PR"), Qt::CaseInsensitive))
        number = number.mid(2).trimmed();
    const bool digits = !number.isEmpty() && std::ranges::all_of(number, [](QChar c) { return c.isDigit(); });
    return digits && number.size() < poNumberWidth ? number.rightJustified(poNumberWidth, u'0') : number.toUpper();
}

int classObjectTransactions::CalculateOutstandingEncumbranceAmount(const QString &accountCode, Currency &amount)
{
    return signedSum({1, {{accountField, accountCode}}, true, true}, encumbranceSigns, amount);
}
int classObjectTransactions::Calc_OutEncAmt_byEncNo(const QString &encumbranceNumber, Currency &amount)
{
    return signedSum({4, {{encumbranceField, ConvertPONumber(encumbranceNumber)}}, true, true}, encumbranceSigns,
                     amount);
}
int classObjectTransactions::CalculateOutstandingAmount(const QString &accountCode, Currency &amount)
{
    return signedSum({1, {{accountField, accountCode}}, true, true}, outstandingSigns, amount);
}
int classObjectTransactions::CalculateUnencBalance(const QString &accountCode, Currency &amount)
{
    return signedSum({1, {{accountField, accountCode}}, true, true}, unencumberedSigns, amount);
}
