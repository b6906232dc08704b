#pragma once

#include "recordobject.h"

#include <cstdint>

struct FundFields {
    QString ID;
    QString Name;
    QString CheckingID;
    QString GLMask;
    QString RLMask;
    QString ELMask;
    QString CheckingName; // from the joined checking account
    QString USState;      // the organisation's state; set by the owner, kept by Clear
};

// The funds file, joined with the checking accounts on "Checking ID".
class classObjectFunds : public RecordObject<FundFields> {
public:
    classObjectFunds();

    std::shared_ptr<DataAccessControl> JoinTableControl() const { return checking_; }

    int RetrieveID(const QString &fundId);
    // The fund whose GL, RL or EL mask matches the whole code (first by fund
    // ID); 4 when none does. See docs/fund-installation.md for the rules.
    int GetFundFromAccountCode(const QString &accountCode, QString &fundId);
    // True when the code matches this fund's "GL Mask".
    bool FundCheckingAccountCodeCheck(const QString &accountCode) const;
    std::int64_t GetCount() const;

protected:
    int openCompanions(const QString &ddfPath, const QString &dataFolder) override;
    void completeRecord(FundFields &record) override;

private:
    std::shared_ptr<DataAccessControl> checking_;
};

// Mask matching under the state's rules (NJ keeps its sub-funds 11-13 in fund 10).
bool accountCodeFitsMask(const QString &accountCode, const QString &mask, const QString &usState);
