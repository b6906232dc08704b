#pragma once

#include "objectsummaryamounts.h"
#include "recordobject.h"

#include <QStringList>

#include <array>
#include <span>

// The account part of every ledger summary record.
struct SummaryAccountFields {
    QString AccountCode;
    QString FundID;
    QString ParentID;
    QString Name;
    QString BuildingID;
    QString ProgramID;
    QString StateCode;
};

struct AccountCodeName {
    QString AccountCode;
    QString Name;
};

// A monthly amount property of a ledger's field struct and the amount name
// its twelve fields carry ("Encum Placed" → "01 Encum Placed" .. "12 Encum Placed").
template <class Fields> struct MonthlyBinding {
    const char *amount;
    MonthlyTexts Fields::*member;
};

// A status of the summaries and transactions for input they cannot use: a
// balance date without a month, a monthly text that is no amount, a column
// the ledger does not have. ErrorMsg says which.
inline constexpr int statusBadLedgerInput = 1101;

// The untyped half of a summary object: field names, the monthly texts
// through the control, the extended reads. Lives in objectsummary.cpp.
class SummaryFileAccess {
public:
    // amountNames in field order within a month.
    explicit SummaryFileAccess(const QStringList &amountNames);

    const QString &fieldName(std::size_t amount, int month) const { return names_[amount][month - 1]; }

    // Monthly texts of the control's current record: "" for 0, else "#,##0.00".
    void load(DataAccessControl &control, std::size_t amount, MonthlyTexts &into) const;
    // 0, or the status of the first text that cannot be stored, with `why` set.
    int store(DataAccessControl &control, std::size_t amount, const MonthlyTexts &from, QString &why) const;
    // Writes 0 into every monthly field of the current record.
    int zero(DataAccessControl &control) const;
    // The fields of the extended list pass: "Account Code", "Fund ID", "Name",
    // then every monthly field, amount by amount.
    QString extendedSelection() const;

private:
    std::vector<MonthlyTexts> names_;
};

// A monthly amount as the summary properties show it: "" for 0.
QString monthlyTextOf(const QVariant &amount);

// FirstFiscalMonth of the fund parameters in the data folder.
int readFirstFiscalMonth(const QString &ddfPath, const QString &dataFolder, int &month);
// The same, from the fund parameters beside the file a control has open.
int readFirstFiscalMonthBeside(const DataAccessControl &control, int &month);

// Common operations of the three ledger summaries: record-object pattern over
// the summary file (key 0 "Account Code", 1 "Fund ID" + "Account Code", 2
// "Parent ID" + "Account Code", 3 "State Code" + "Account Code"), monthly
// amounts as texts, balances up to a date. A ledger supplies its amount
// properties and turns the fiscal-year sums into its totals.
template <class Fields, std::size_t AmountCount> class SummaryObject : public RecordObject<Fields> {
    using Base = RecordObject<Fields>;

public:
    using Amounts = std::array<MonthlyBinding<Fields>, AmountCount>;

    // The date balances are computed up to, shown "MM-DD-YY": its first two
    // characters are the last month counted.
    QString TransDate;
    // The ledger's balance after CalcBalance.
    Currency Balance;
    // 1-based place of the current record in the last StepFirst/StepNext walk.
    int Position = 0;
    // Update with a code here moves the record to that account code.
    QString NewAccountCode;
    // The fiscal year's first month, read from the fund parameters by Init.
    int FirstFiscalMonth = 0;

    std::int64_t TotalRecords() const { return this->DataBound() ? this->DataControl()->TotalRecords() : 0; }
    // Words for the last failure of an operation of this object.
    QString ErrorMsg() const { return errorMsg_.isEmpty() ? this->Message() : errorMsg_; }

    int Add()
    {
        errorMsg_.clear();
        if (!this->DataBound())
            return this->notBound();
        this->control().clearRecord();
        const int status = storeRecord();
        return status != 0 ? status : this->finish(this->control().Insert());
    }

    int Update()
    {
        errorMsg_.clear();
        int status = this->positionForWrite();
        if (status == 0)
            status = storeRecord();
        if (status == 0)
            status = NewAccountCode.trimmed().isEmpty() || NewAccountCode.trimmed() == this->AccountCode.trimmed()
                         ? this->control().Update()
                         : moveToNewCode();
        if (this->DataBound())
            this->control().Unlock();
        return this->finish(status);
    }

    // The accounts of a fund in code order, in one extended pass.
    int GetList(const QString &fundId, std::vector<Fields> &list) { return extendedList(fundId, false, list); }
    // Every account of every fund, by fund and code, in one extended pass.
    int GetAllAccounts(std::vector<Fields> &list) { return extendedList(QString(), true, list); }

    // Every account of every fund with its whole fiscal year totalled, in one
    // extended pass and straight from the stored amounts (no monthly texts):
    // what a report of the year reads. `visit` sees this object holding the
    // account's code, fund and name and its settled totals; the monthly
    // properties stay empty.
    template <class Visit> int ForEachAccountYear(Visit visit)
    {
        errorMsg_.clear();
        if (!this->DataBound())
            return this->notBound();
        DataAccessControl &control = this->control();
        int status = positionOn(1, QStringLiteral("Fund ID"), QString());
        control.setExtendedOps(true);
        control.setAutoMode(true);
        control.setCancelDialog(false);
        control.setCacheRows(extendedBlockRows);
        control.setSelectedFields(access_.extendedSelection());
        while (status == 0) {
            status = control.GetNextExtended();
            for (int row = 0; status == 0 && row < control.Rows(); ++row) {
                static_cast<Fields &>(*this) = Fields();
                this->AccountCode = control.RowColumnValue(row, 0).toString();
                this->FundID = control.RowColumnValue(row, 1).toString();
                this->Name = control.RowColumnValue(row, 2).toString();
                std::array<Currency, AmountCount> totals{};
                int column = 3;
                for (Currency &total : totals)
                    for (int month = 1; month <= 12; ++month)
                        total += control.RowColumnValue(row, column++).template value<Currency>();
                settleTotals(totals);
                visit(*this);
            }
        }
        control.setExtendedOps(false);
        return this->finish(endOfFile(status));
    }

    // Every account code and name of the file in one extended pass.
    int GetAcctCodeList(std::vector<AccountCodeName> &list)
    {
        errorMsg_.clear();
        if (!this->DataBound())
            return this->notBound();
        DataAccessControl &control = this->control();
        control.setIndexNumber(0);
        int status = control.GetFirst();
        if (status == 0) {
            control.setExtendedOps(true);
            control.setCacheRows(0);
            control.setSelectedFields(QStringLiteral("Account Code, Name"));
            status = control.GetNextExtended();
            for (int row = 0; status == 0 && row < control.Rows(); ++row)
                list.push_back({control.RowColumnValue(row, 0).toString(), control.RowColumnValue(row, 1).toString()});
            control.setExtendedOps(false);
        }
        return this->finish(endOfFile(status));
    }

    int GetListWithStateCode(const QString &stateCode, std::vector<Fields> &list)
    {
        return listWhere(3, QStringLiteral("State Code"), stateCode, list);
    }
    int GetChildren(const QString &parentId, std::vector<Fields> &list)
    {
        return listWhere(2, QStringLiteral("Parent ID"), parentId, list);
    }
    int RptCountChildren(const QString &parentId, int &count)
    {
        std::vector<Fields> children;
        const int status = GetChildren(parentId, children);
        count = status == 0 ? static_cast<int>(children.size()) : 0;
        return status;
    }
    // Every record in account-code order.
    int FetchAll(std::vector<Fields> &list)
    {
        errorMsg_.clear();
        return Base::GetList(list);
    }

    int StepFirst() { return step(true); }
    int StepNext() { return step(false); }

    // Clears every monthly amount of every record, all or nothing.
    int ZeroBalances()
    {
        errorMsg_.clear();
        if (!this->DataBound())
            return this->notBound();
        DataAccessControl &control = this->control();
        int status = control.BeginTransaction();
        if (status == 0)
            status = control.StepFirst();
        while (status == 0) {
            status = access_.zero(control);
            if (status == 0)
                status = control.Update();
            if (status == 0)
                status = control.StepNext();
        }
        status = endOfFile(status);
        if (status == 0)
            status = control.Endtransaction();
        else
            control.AbortTransaction();
        if (status == 0) {
            for (const auto &amount : amounts_)
                this->*amount.member = MonthlyTexts{};
        }
        return this->finish(status);
    }

    // Sums the current record's monthly amounts from the fiscal year's first
    // month through the month of TransDate and sets the ledger's totals and Balance.
    int CalcBalance()
    {
        errorMsg_.clear();
        // A summary reading through another object's control was never Init'ed.
        if ((FirstFiscalMonth < 1 || FirstFiscalMonth > 12) && this->DataBound())
            readFirstFiscalMonthBeside(*this->DataControl(), FirstFiscalMonth);
        bool ok = false;
        const int target = TransDate.left(2).toInt(&ok);
        const std::vector<int> months = fiscalMonthsThrough(FirstFiscalMonth, ok ? target : 0);
        if (months.empty())
            return fail(statusBadLedgerInput,
                        QStringLiteral("no month to balance to: date \"%1\", first fiscal month %2")
                            .arg(TransDate)
                            .arg(FirstFiscalMonth));
        std::array<Currency, AmountCount> totals{};
        for (const int month : months) {
            for (std::size_t k = 0; k < AmountCount; ++k) {
                const QString &text = (this->*amounts_[k].member)[month - 1];
                const auto amount = ledgerAmountFromText(text);
                if (!amount)
                    return fail(statusBadLedgerInput, QStringLiteral("\"%1\" of account %2 is not an amount: \"%3\"")
                                                          .arg(access_.fieldName(k, month), this->AccountCode, text));
                totals[k] += *amount;
            }
        }
        settleTotals(totals);
        return this->finish(0);
    }

    // The first non-empty opening amount of the fiscal year, and its month (0: none).
    QString FindOpeningEntryValue() const
    {
        const int month = FindOpeningEntryMonth();
        return month == 0 ? QString() : (this->*amounts_[openingAmount_].member)[month - 1];
    }
    int FindOpeningEntryMonth() const
    {
        const int first = FirstFiscalMonth >= 1 && FirstFiscalMonth <= 12 ? FirstFiscalMonth : 1;
        for (const int month : fiscalMonthsThrough(first, (first + 10) % 12 + 1)) {
            if (!(this->*amounts_[openingAmount_].member)[month - 1].trimmed().isEmpty())
                return month;
        }
        return 0;
    }

protected:
    // openingAmount: the index in `amounts` of the amount that opens the year.
    SummaryObject(FundFileDef file, const Amounts &amounts, std::size_t openingAmount)
        : Base(file, accountBindings(), 0), amounts_(amounts), openingAmount_(openingAmount),
          access_(amountNames(amounts))
    {
    }

    // The fiscal-year sums of each amount, in the order of `amounts`.
    virtual void settleTotals(const std::array<Currency, AmountCount> &totals) = 0;

    int openCompanions(const QString &ddfPath, const QString &dataFolder) override
    {
        return readFirstFiscalMonth(ddfPath, dataFolder, FirstFiscalMonth);
    }

    void completeRecord(Fields &record) override
    {
        for (std::size_t k = 0; k < AmountCount; ++k)
            access_.load(this->control(), k, record.*amounts_[k].member);
    }

    int fail(int status, const QString &why)
    {
        this->finish(status);
        errorMsg_ = why;
        return status;
    }

private:
    static constexpr int extendedBlockRows = 256;

    static std::span<const FieldBinding<Fields>> accountBindings()
    {
        using F = SummaryAccountFields;
        static const std::array<FieldBinding<Fields>, 7> bindings{{
            {"Account Code", static_cast<QString Fields::*>(&F::AccountCode)},
            {"Fund ID", static_cast<QString Fields::*>(&F::FundID)},
            {"Parent ID", static_cast<QString Fields::*>(&F::ParentID)},
            {"Name", static_cast<QString Fields::*>(&F::Name)},
            {"Building ID", static_cast<QString Fields::*>(&F::BuildingID)},
            {"Program ID", static_cast<QString Fields::*>(&F::ProgramID)},
            {"State Code", static_cast<QString Fields::*>(&F::StateCode)},
        }};
        return bindings;
    }

    static QStringList amountNames(const Amounts &amounts)
    {
        QStringList names;
        for (const auto &amount : amounts)
            names << QString::fromLatin1(amount.amount);
        return names;
    }

    static int endOfFile(int status) { return status == 9 ? 0 : status; }

    // The account fields and monthly amounts of the properties into the record buffer.
    int storeRecord()
    {
        int status = storeFields(this->control(), accountBindings(), static_cast<const Fields &>(*this));
        for (std::size_t k = 0; status == 0 && k < AmountCount; ++k) {
            QString why;
            status = access_.store(this->control(), k, this->*amounts_[k].member, why);
            if (status != 0)
                return fail(status, why);
        }
        return status == 0 ? 0 : this->finish(status);
    }

    // The record with the old code is replaced by one with the new code, as one change.
    int moveToNewCode()
    {
        DataAccessControl &control = this->control();
        const QString newCode = NewAccountCode.trimmed();
        int status = control.BeginTransaction();
        if (status == 0 && !control.setFieldValue(QStringLiteral("Account Code"), newCode))
            status = control.Status();
        if (status == 0)
            status = control.Insert();
        if (status == 0)
            status = this->seekByKey();
        if (status == 0)
            status = control.Delete();
        if (status != 0) {
            control.AbortTransaction();
            return status;
        }
        this->AccountCode = newCode;
        NewAccountCode.clear();
        return control.Endtransaction();
    }

    int step(bool first)
    {
        errorMsg_.clear();
        if (!this->DataBound())
            return this->notBound();
        const int status = first ? this->control().StepFirst() : this->control().StepNext();
        if (status == 0) {
            this->loadCurrent(static_cast<Fields &>(*this));
            Position = first ? 1 : Position + 1;
        }
        return this->finish(status);
    }

    // Positions on the first record whose `field` (the leading segment of key
    // path `key`) is at least `value`; 0 also when there is none (end of file).
    int positionOn(int key, const QString &field, const QString &value)
    {
        DataAccessControl &control = this->control();
        control.setIndexNumber(key);
        control.clearRecord();
        if (!control.setFieldValue(field, value))
            return control.Status();
        return control.GetGreaterOrEqual();
    }

    int listWhere(int key, const QString &field, const QString &value, std::vector<Fields> &list)
    {
        errorMsg_.clear();
        if (!this->DataBound())
            return this->notBound();
        int status = positionOn(key, field, value);
        while (status == 0 && this->control().FieldValue(field).toString() == value.trimmed()) {
            Fields record;
            this->loadCurrent(record);
            list.push_back(std::move(record));
            status = this->control().GetNext();
        }
        return this->finish(endOfFile(status));
    }

    // From the first account of `fundId` (key 1) while the fund stays the same, or to the end with allFunds.
    int extendedList(const QString &fundId, bool allFunds, std::vector<Fields> &list)
    {
        errorMsg_.clear();
        if (!this->DataBound())
            return this->notBound();
        DataAccessControl &control = this->control();
        int status = positionOn(1, QStringLiteral("Fund ID"), fundId);
        control.setExtendedOps(true);
        control.setAutoMode(true);
        control.setCancelDialog(false);
        control.setCacheRows(extendedBlockRows);
        control.setSelectedFields(access_.extendedSelection());
        bool inFund = true;
        while (status == 0 && inFund) {
            status = control.GetNextExtended();
            for (int row = 0; status == 0 && row < control.Rows() && inFund; ++row) {
                inFund = allFunds || control.RowColumnValue(row, 1).toString() == fundId.trimmed();
                if (inFund)
                    list.push_back(fromExtendedRow(control, row));
            }
        }
        control.setExtendedOps(false);
        return this->finish(endOfFile(status));
    }

    Fields fromExtendedRow(DataAccessControl &control, int row) const
    {
        Fields record;
        record.AccountCode = control.RowColumnValue(row, 0).toString();
        record.FundID = control.RowColumnValue(row, 1).toString();
        record.Name = control.RowColumnValue(row, 2).toString();
        int column = 3;
        for (const auto &amount : amounts_) {
            for (QString &text : record.*amount.member)
                text = monthlyTextOf(control.RowColumnValue(row, column++));
        }
        return record;
    }

    Amounts amounts_;
    std::size_t openingAmount_;
    SummaryFileAccess access_;
    QString errorMsg_;
};
