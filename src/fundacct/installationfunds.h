#pragma once

#include <QString>

#include <functional>
#include <vector>

// One entry of a fund drop-down: the fund ID (the key) and its name.
struct FundEntry {
    QString id;
    QString name;
};

// Fills `funds`; false with `why` filled when they cannot be read. Windows
// take one so that tests can hand them funds of their own.
using FundListReader = std::function<bool(std::vector<FundEntry> &funds, QString &why)>;

// The funds of the fund-accounting installation named by the start-up
// globals, in fund-ID order. `why` starts with the record manager's status,
// then names the folder and what went wrong: "12 (C:\FUND: File not found.)".
bool readInstallationFunds(std::vector<FundEntry> &funds, QString &why);
