#include "objecttransactions.h"

#include "installationschema.h"
#include "objectfunds.h"
#include "objectsummary.h"
#include "objectsysparams.h"
#include "objectyear.h"

#include <array>

namespace {
using T = TransactionFields;
const FundFileDef transactionsFile{"Transactions", "\\DetTrans.btr"};
const FundFileDef countersFile{"Counters", "\\Counters.btr"};
const std::array<std::pair<QChar, FundFileDef>, 3> summaryFiles{{
    {u'R', {"SummaryRevenue", "\\SumRev.btr"}},
    {u'E', {"SummaryExpenditure", "\\SumExp.btr"}},
    {u'G', {"SummaryGeneral", "\\SumGen.btr"}},
}};
const auto detailCounter = QStringLiteral("Detail Transactions");
const auto scanningText = QStringLiteral("Scanning Transaction Summary File...");
constexpr std::int64_t progressEvery = 1000;

const std::array<FieldBinding<T>, 16> transactionBindings{{
    {"ID", &T::ID},
    {"Ledger ID", &T::LedgerID},
    {"Fund ID", &T::FundID},
    {"Account Code", &T::AccountCode},
    {"Trans Date", &T::TransDate},
    {"Reference Number", &T::ReferenceNumber},
    {"Reference Text", &T::ReferenceText},
    {"Vendor ID", &T::VendorID},
    {"Description", &T::Description},
    {"Encumbrance Number", &T::EncumbranceNumber},
    {"Invoice Number", &T::InvoiceNumber},
    {"Check Number", &T::CheckNumber},
    {"Receipt Number", &T::ReceiptNumber},
    {"Column ID", &T::ColumnID},
    {"Amount 1", &T::Amount1},
    {"Amount 2", &T::Amount2},
}};

// Closes whichever control transactions are still open, undoing them unless kept.
class ControlTransactions {
public:
    int begin(DataAccessControl &control)
    {
        const int status = control.BeginTransaction();
        if (status == 0)
            open_.push_back(&control);
        return status;
    }
    // All kept or, failing that, all rolled back: also across a crash.
    int commit()
    {
        const int status = DataAccessControl::endTransactions(open_);
        open_.clear();
        return status;
    }
    ~ControlTransactions()
    {
        for (DataAccessControl *control : open_)
            control->AbortTransaction();
    }

private:
    std::vector<DataAccessControl *> open_;
};
} // namespace

classObjectTransactions::classObjectTransactions() : RecordObject(transactionsFile, transactionBindings, 0)
{
}

int classObjectTransactions::openCompanions(const QString &ddfPath, const QString &dataFolder)
{
    ddfPath_ = ddfPath;
    dataFolder_ = dataFolder;
    for (const auto &[ledger, file] : summaryFiles) {
        auto &control = summaries_[ledger];
        if (!control)
            control = std::make_shared<DataAccessControl>();
        if (const int status = bindFundFile(*control, ddfPath, dataFolder, file); status != 0)
            return status;
    }
    if (!counters_)
        counters_ = std::make_shared<DataAccessControl>();
    // Without a readable year the sums cover every year, as they always could.
    classObjectYear year;
    FundYearStart.clear();
    FundYearEnd.clear();
    if (year.Init(ddfPath, installationFolder(ddfPath)) == 0 && year.RetrieveLatestYear() == 0) {
        FundYearStart = year.FiscalYearStart;
        FundYearEnd = year.FiscalYearEnd;
    }
    return bindFundFile(*counters_, ddfPath, installationFolder(ddfPath), countersFile);
}

std::shared_ptr<DataAccessControl> classObjectTransactions::SummaryControl(QChar ledger) const
{
    const auto found = summaries_.find(ledger.toUpper());
    return found == summaries_.end() ? nullptr : found->second;
}

int classObjectTransactions::fail(int status, const QString &why)
{
    finish(status);
    errorMsg_ = why;
    return status;
}

int classObjectTransactions::done(int status)
{
    errorMsg_.clear();
    return finish(status == 9 ? 0 : status);
}

int classObjectTransactions::Add()
{
    errorMsg_.clear();
    if (ID == 0) {
        if (const int status = GetUniqueDetailID(ID); status != 0)
            return status;
    }
    return RecordObject::Add();
}

int classObjectTransactions::postToSummary(const TransactionFields &record, bool reverse)
{
    const QChar ledger = record.LedgerID.isEmpty() ? QChar() : record.LedgerID.front().toUpper();
    const auto control = SummaryControl(ledger);
    const QString amountName = monthlyAmountForColumn(ledger, record.ColumnID.trimmed().toUpper());
    const int month = monthOfDateText(record.TransDate);
    const auto amount = ledgerAmountFromText(record.Amount1);
    if (!control || amountName.isEmpty() || month == 0 || !amount)
        return fail(statusBadLedgerInput,
                    QStringLiteral("transaction %1 cannot be posted: ledger \"%2\", column \"%3\", date \"%4\", "
                                   "amount \"%5\"")
                        .arg(record.ID)
                        .arg(record.LedgerID, record.ColumnID, record.TransDate, record.Amount1));
    const QString field = monthlyFieldName(month, amountName);
    control->setIndexNumber(0);
    control->clearRecord();
    control->setFieldValue(QStringLiteral("Account Code"), record.AccountCode);
    int status = control->GetEqual();
    if (status == 0) {
        const Currency sum = control->FieldValue(field).value<Currency>() + (reverse ? -*amount : *amount);
        status = control->setFieldValue(field, ledgerAmountText(sum, false)) ? control->Update() : control->Status();
        control->Unlock();
    }
    if (status != 0)
        return fail(status, QStringLiteral("summary of account %1: %2")
                                .arg(record.AccountCode, fundStatusMessage(status, control->Message())));
    return 0;
}

int classObjectTransactions::UpdateSummary()
{
    errorMsg_.clear();
    const int status = postToSummary(*this, false);
    return status == 0 ? finish(0) : status;
}

int classObjectTransactions::DeleteItemDetail(int id)
{
    errorMsg_.clear();
    ID = id;
    return Delete();
}

int classObjectTransactions::DeleteItems_UpdSum(const QString &referenceNumber)
{
    List items;
    if (const int status = GetListbyRefNo(referenceNumber, items); status != 0)
        return status;
    ControlTransactions transactions;
    int status = transactions.begin(control());
    for (const auto &[ledger, summary] : summaries_)
        status = status != 0 ? status : transactions.begin(*summary);
    for (const TransactionFields &item : items) {
        if (status == 0)
            status = postToSummary(item, true);
        if (status == 0) {
            ID = item.ID;
            status = seekByKey();
            status = status != 0 ? status : control().Delete();
        }
    }
    if (status != 0)
        return errorMsg_.isEmpty() ? finish(status) : status;
    return done(transactions.commit());
}

int classObjectTransactions::GetNewID(const QString &counter, int &id)
{
    if (!counters_)
        return notBound();
    counters_->setIndexNumber(0);
    counters_->clearRecord();
    counters_->setFieldValue(QStringLiteral("Counter Name"), counter);
    const int status = counters_->GetEqual();
    if (status == 0)
        id = counters_->FieldValue(QStringLiteral("Next Value")).toInt();
    return status == 0 ? 0
                       : fail(status, QStringLiteral("counter \"%1\": %2")
                                          .arg(counter, fundStatusMessage(status, counters_->Message())));
}

int classObjectTransactions::WriteNextValue(const QString &counter, int nextValue)
{
    int current = 0;
    int status = GetNewID(counter, current);
    if (status != 0)
        return status;
    status =
        counters_->setFieldValue(QStringLiteral("Next Value"), nextValue) ? counters_->Update() : counters_->Status();
    counters_->Unlock();
    return status == 0 ? 0 : fail(status, fundStatusMessage(status, counters_->Message()));
}

int classObjectTransactions::GetUniqueDetailID(int &id)
{
    errorMsg_.clear();
    int next = 0;
    int status = GetNewID(detailCounter, next);
    if (status == 0)
        status = WriteNextValue(detailCounter, next + 1);
    if (status == 0)
        id = next;
    return status;
}

int classObjectTransactions::CorrectFundData(const TransactionProgress &progress, int &corrected)
{
    corrected = 0;
    errorMsg_.clear();
    if (!DataBound())
        return notBound();
    classObjectSysParams organisation;
    classObjectFunds funds;
    if (organisation.Init(ddfPath_, installationFolder(ddfPath_)) == 0 && organisation.Retrieve() == 0)
        funds.USState = organisation.State;
    if (const int status = funds.Init(ddfPath_, dataFolder_); status != 0)
        return fail(status, funds.Message());

    DataAccessControl &detail = control();
    const std::int64_t total = detail.TotalRecords();
    QHash<QString, QString> fundOfCode; // "" for codes no fund owns
    ControlTransactions transaction;
    int status = transaction.begin(detail);
    status = status != 0 ? status : detail.StepFirst();
    std::int64_t scanned = 0;
    while (status == 0) {
        const QString code = detail.FieldValue(QStringLiteral("Account Code")).toString();
        auto known = fundOfCode.find(code);
        if (known == fundOfCode.end()) {
            QString fundId;
            if (funds.GetFundFromAccountCode(code, fundId) != 0)
                fundId.clear();
            known = fundOfCode.insert(code, fundId);
        }
        if (!known->isEmpty() && detail.FieldValue(QStringLiteral("Fund ID")).toString() != *known) {
            status = detail.setFieldValue(QStringLiteral("Fund ID"), *known) ? detail.Update() : detail.Status();
            corrected += status == 0 ? 1 : 0;
        }
        if (progress && ++scanned % progressEvery == 0)
            progress(scanningText, scanned, total);
        if (status == 0)
            status = detail.StepNext();
    }
    if (status != 9) {
        corrected = 0;
        return finish(status);
    }
    if (progress)
        progress(scanningText, total, total);
    return done(transaction.commit());
}
