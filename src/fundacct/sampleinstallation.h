#pragma once

#include "currency.h"

#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

// A district as the sample installation needs it; the demo district and the
// tests each fill one.
struct SampleFund {
    QString id{};   // "A"
    QString name{}; // "General Fund"
    QString checkingId{};
    QString checkingName{};
    QString bankAccount{};
    // Empty masks are derived from the fund ID: "A###", "A####", "A####.*".
    QString glMask{};
    QString rlMask{};
    QString elMask{};
};

// An account's figures of the latest year to date, where the district knows
// them; its transactions then add up to them exactly.
struct SampleActuals {
    Currency adjustments{}; // budget transfers and amendments
    Currency actual{};      // payments, or revenue received
    Currency encumbered{};  // purchase orders still outstanding (expenditure only)
};

struct SampleAccount {
    QString code{}; // begins with the fund ID
    QString fundId{};
    QChar ledger; // 'R', 'E' or 'G'
    QString name{};
    QString stateCode{};
    QString parentId{};
    QString buildingId{};
    QString programId{};
    Currency budget{}; // the adopted amount: the opening entry of the year
    // Without them the account gets a few small random transactions.
    std::optional<SampleActuals> actuals{};
};

struct SampleDistrict {
    QString name;
    QString reportName;
    QString address1;
    QString address2;
    QString city;
    QString state = QStringLiteral("NY");
    QString zipCode;
    QString areaCode;
    QString telephone;
    QString fax;
    QString sedCode;
    int firstFiscalMonth = 7;
    std::vector<int> years; // fiscal years, oldest first; the last is the latest
    // Months of the latest year with transactions (2 to 12), from its first month.
    int monthsPosted = 12;
    std::vector<SampleFund> funds;
    std::vector<SampleAccount> accounts;
    std::vector<std::pair<QString, QString>> buildings; // ID, name
};

struct SampleOptions {
    // At least this many accounts: synthetic general-fund expenditure
    // accounts are added when the district has fewer.
    int accounts = 0;
    // About this many detail transactions; 0 gives a few per account.
    std::int64_t transactions = 0;
    std::uint64_t seed = 20250701;
};

struct SampleSummary {
    std::int64_t accounts = 0;
    std::int64_t transactions = 0;
};

// Writes the dictionary and every Kora-Fund file of docs/fund-installation.md
// under root (root\FILE.DDF ..., root\FUND\*.btr), replacing files there.
// 0, or a record-manager status with the reason in `message`.
int createSampleInstallation(const QString &root, const SampleDistrict &district, const SampleOptions &options,
                             QString &message, SampleSummary *summary = nullptr);

// A small district of three funds and a few dozen accounts, for tests and demos.
SampleDistrict smallSampleDistrict();
