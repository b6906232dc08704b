#include "objecttransactions.h"

#include <algorithm>

namespace {
const QString &queryValueOf(TransactionQuery kind, const TransactionFields &record)
{
    switch (kind) {
    case TransactionQuery::Vendors:
        return record.VendorID;
    case TransactionQuery::Encumbrances:
        return record.EncumbranceNumber;
    case TransactionQuery::Checks:
        return record.CheckNumber;
    case TransactionQuery::Receipts:
        return record.ReceiptNumber;
    case TransactionQuery::AccountCodes:
        break;
    }
    return record.AccountCode;
}
} // namespace

bool classObjectTransactions::FundSelection(const TransactionFields &record) const
{
    return search_.funds.isEmpty() || search_.funds.contains(record.FundID, Qt::CaseInsensitive);
}

bool classObjectTransactions::Compare(const TransactionFields &record) const
{
    const bool ledger =
        search_.ledgerId.isEmpty() || record.LedgerID.compare(search_.ledgerId, Qt::CaseInsensitive) == 0;
    const bool period = record.TransDate >= search_.fromDate && record.TransDate <= search_.toDate;
    const bool value = search_.values.isEmpty() || search_.values.contains(queryValueOf(search_.by, record));
    return ledger && period && value;
}

void classObjectTransactions::searchFrom(const QString &keyValue)
{
    DataAccessControl &file = control();
    file.clearRecord();
    const int key = file.IndexNumber();
    const bool stored =
        file.setFieldValue(key == 1 ? QStringLiteral("Account Code") : transactionQueryField(search_.by), keyValue) &&
        (key > 4 || file.setFieldValue(QStringLiteral("Trans Date"), search_.fromDate));
    searchPending_ = stored && file.GetGreaterOrEqual() == 0;
    searchEnded_ = !searchPending_;
}

int classObjectTransactions::DTSearch_Prepare(const TransactionSearch &search)
{
    errorMsg_.clear();
    if (!DataBound())
        return notBound();
    search_ = search;
    search_.values.sort();
    search_.values.removeDuplicates();
    searchAccount_.clear();
    control().setIndexNumber(transactionQueryKey(search_.by));
    searchFrom(search_.values.isEmpty() ? QString() : search_.values.front());
    return finish(0);
}

int classObjectTransactions::searchNext()
{
    DataAccessControl &file = control();
    while (!searchEnded_) {
        const int status = searchPending_ ? 0 : file.GetNext();
        searchPending_ = false;
        if (status != 0)
            break;
        TransactionFields record;
        loadCurrent(record);
        if (!searchAccount_.isEmpty()) {
            if (record.AccountCode != searchAccount_ || record.TransDate > search_.toDate)
                break;
        } else if (!search_.values.isEmpty()) {
            // Jump over the stretches of the key no chosen value lies in.
            const QString &value = queryValueOf(search_.by, record);
            const bool chosen = std::binary_search(search_.values.begin(), search_.values.end(), value);
            if (!chosen || record.TransDate > search_.toDate) {
                const auto next = std::upper_bound(search_.values.begin(), search_.values.end(), value);
                if (next == search_.values.end())
                    break;
                searchFrom(*next);
                continue;
            }
        }
        if (FundSelection(record) && Compare(record)) {
            static_cast<TransactionFields &>(*this) = std::move(record);
            return finish(0);
        }
    }
    searchEnded_ = true;
    return finish(9);
}

int classObjectTransactions::DTSearch_GetNext()
{
    errorMsg_.clear();
    return DataBound() ? searchNext() : notBound();
}

int classObjectTransactions::DTSearch_GetGreater(const QString &keyValue)
{
    errorMsg_.clear();
    if (!DataBound())
        return notBound();
    searchAccount_.clear();
    control().setIndexNumber(transactionQueryKey(search_.by));
    searchFrom(keyValue);
    return searchNext();
}

int classObjectTransactions::DTSearch_GetAccountCode(const QString &accountCode)
{
    errorMsg_.clear();
    if (!DataBound())
        return notBound();
    searchAccount_ = accountCode.trimmed();
    control().setIndexNumber(1);
    searchFrom(searchAccount_);
    const int status = searchNext();
    return status == 9 ? finish(4) : status;
}
