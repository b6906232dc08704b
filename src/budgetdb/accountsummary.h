#pragma once

#include "currency.h"
#include "storebase.h"

#include <QString>

#include <any>
#include <vector>

// One row of AccountCodes. Codes and funds are kept trimmed (funds upper-case);
// the ledger takes only "R", "E" or empty.
class clsAccountCode {
public:
    qint64 ID() const { return id_; }
    void setID(qint64 id) { id_ = id; }
    const QString &AccountCode() const { return accountCode_; }
    void setAccountCode(const QString &code) { accountCode_ = code.trimmed(); }
    const QString &FundID() const { return fundId_; }
    void setFundID(const QString &fund) { fundId_ = fund.trimmed().toUpper(); }
    const QString &LedgerID() const { return ledgerId_; }
    // Any value but "R", "E" or empty (after trimming, any case) is ignored.
    void setLedgerID(const QString &ledger);
    const QString &AccountName() const { return accountName_; }
    void setAccountName(const QString &name) { accountName_ = name; }
    const QString &StateCode() const { return stateCode_; }
    void setStateCode(const QString &code) { stateCode_ = code; }
    qint64 ParentID() const { return parentId_; }
    void setParentID(qint64 id) { parentId_ = id; }
    qint64 BuildingID() const { return buildingId_; }
    void setBuildingID(qint64 id) { buildingId_ = id; }
    qint64 ProgramID() const { return programId_; }
    void setProgramID(qint64 id) { programId_ = id; }
    const QString &HistoricalCode() const { return historicalCode_; }
    void setHistoricalCode(const QString &code) { historicalCode_ = code; }
    const QString &CatAFlag() const { return catAFlag_; }
    void setCatAFlag(const QString &flag) { catAFlag_ = flag; }
    const QString &CatCFlag() const { return catCFlag_; }
    void setCatCFlag(const QString &flag) { catCFlag_ = flag; }
    const QString &CatPFlag() const { return catPFlag_; }
    void setCatPFlag(const QString &flag) { catPFlag_ = flag; }
    Currency ProjectedAmount() const { return projectedAmount_; }
    void setProjectedAmount(Currency amount) { projectedAmount_ = amount; }
    // A free key screens use to tie the object to a tree node or grid row.
    const QString &KeyField() const { return keyField_; }
    void setKeyField(const QString &key) { keyField_ = key; }

private:
    qint64 id_ = 0;
    QString accountCode_;
    QString fundId_;
    QString ledgerId_;
    QString accountName_;
    QString stateCode_;
    qint64 parentId_ = 0;
    qint64 buildingId_ = 0;
    qint64 programId_ = 0;
    QString historicalCode_;
    QString catAFlag_;
    QString catCFlag_;
    QString catPFlag_;
    Currency projectedAmount_;
    QString keyField_;
};

// Reads and writes the account codes of one fund and ledger at a time (those
// of the current AccountCode()). Codes are never removed: Delete retires them.
class ClsAccountSummary : public StoreBase {
public:
    ClsAccountSummary();

    clsAccountCode &AccountCode() { return accountCode_; }
    const QString &Year() const { return year_; }
    void setYear(const QString &year) { year_ = year; }

    bool Add();
    bool Update();
    // Update, for callers that group it with other writes.
    bool UpdateBatch();
    // Marks the code historical; no row is removed.
    bool Delete();
    bool GetList(std::vector<clsAccountCode> &codes);
    // The security object is accepted for the callers' sake and plays no part in the query.
    bool GetListWithSecurity(std::vector<clsAccountCode> &codes, const std::any &security);
    // By ID, or by AccountCode when byCode; fills AccountCode().
    bool Retrieve(bool byCode = false);
    // Whether the code exists in any fund or ledger.
    bool FindAccountCode(const QString &code, bool &found);
    // Codes under the current folder ("T"), building ("B") or program ("P"),
    // ordered by code; any other mode lists the whole fund and ledger.
    bool GetChildren(const QString &viewMode, std::vector<clsAccountCode> &codes);
    bool CountAccountCode(const QString &prefix, qint64 &count);
    void ClearAccountCode();
    // Trims and upper-cases code (the caller's variable), then checks that it
    // starts with the current fund and does not exist yet.
    bool ValidateAccount(QString &code);

private:
    QString fundLedgerCondition() const;
    bool readCodes(const QString &sql, const QString &sub, std::vector<clsAccountCode> &codes, bool withAmount);
    QString updateStatement() const;

    clsAccountCode accountCode_;
    QString year_;
};
