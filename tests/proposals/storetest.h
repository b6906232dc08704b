#pragma once

#include "currency.h"
#include "errobject.h"
#include "testdatabases.h"

#include <QStringList>

#include <gtest/gtest.h>

// A fresh budget database per backend with a few account codes, for the
// proposal, line-item, balance and district stores.
class StoreTest : public testdb::DatabaseTest {
protected:
    // Runs prepare() only when the backend is there.
    void SetUp() override
    {
        DatabaseTest::SetUp();
        if (!IsSkipped() && !HasFatalFailure())
            prepare();
    }
    virtual void prepare() = 0;

    // Adds an account code and returns its ID. `flags` holds the component
    // letters the account takes part in ("AP" = administrative and program).
    qint64 account(const QString &code, const QString &fund = "A", const QString &ledger = "E",
                   const QString &flags = "", const QString &current = "100", const QString &historical = "")
    {
        const auto flag = [&](QChar c) { return flags.contains(c) ? QString("'%1'").arg(c) : QString("''"); };
        exec(QString("Insert into AccountCodes (Ledger, FundID, AccountCode, AccountName, HistoricalCode, CatAFlag, "
                     "CatPFlag, CatCFlag, CurrentBudget, CatACurBudget, CatPCurBudget, CatCCurBudget) values "
                     "('%1','%2','%3','Name of %3','%4',%5,%6,%7,%8,1.5,2.25,3.125)")
                 .arg(ledger, fund, code, historical, flag('A'), flag('P'), flag('C'), current));
        return scalar("select ID from AccountCodes where AccountCode = '" + code + "'").toLongLong();
    }

    static Currency money(const char *text) { return *Currency::parse(text); }
    static void expectError(const clsErrObject &error, const QString &sub, const QString &text)
    {
        EXPECT_EQ(error.ErrorNumber(), 999);
        EXPECT_EQ(error.ErrorSub(), sub);
        EXPECT_EQ(error.ErrorText(), text);
    }
};
