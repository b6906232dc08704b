#pragma once

#include <span>

// The demo district's base chart of accounts as plain tables: funds,
// buildings, programs, folders and the account codes they give rise to.
namespace demo::chart {

// The general fund's real property tax, the line that balances its budgets,
// and the part of its fund balance it budgets as a revenue. A district has
// one of each; larger demo districts copy neither.
constexpr const char *propertyTaxCode = "A1001";
constexpr const char *fundBalanceCode = "A0599";

struct FundSpec {
    const char *id;
    const char *name;
    const char *checkingId;
    const char *checkingName;
    const char *bankAccount;
    int balanceThousands; // size of its fund balance
};

struct BuildingSpec {
    const char *code;
    const char *name;
    const char *abbreviation;
    const char *level; // "elem", "sec", or "" for the district office
};

struct ProgramSpec {
    const char *code;
    const char *name;
};

// A folder of a fund and ledger's account-code tree, keyed within that tree.
struct FolderSpec {
    const char *fund;
    char ledger;
    const char *key;
    const char *parentKey; // "" at the top level
    const char *name;
};

struct RevenueSpec {
    const char *fund;
    const char *code;
    const char *name;
    const char *folder;
    const char *program;
    int thousands; // typical yearly budget
};

enum class Placement { DistrictWide, EachSchool };

// One function code of an expenditure ledger, expanded into one account per
// object (and per school when placed in each school). A folder key ending in
// "*" takes the school's level ("inst.teach.elem").
struct FunctionSpec {
    const char *fund;
    const char *function;
    const char *name; // short: account names must fit 40 characters
    const char *folder;
    const char *objects;    // object codes separated by blanks
    const char *components; // "A", "P", "C", "AP", "APC"; only for the general fund
    Placement placement;
    const char *program;
    int thousands; // typical yearly budget of a full-weight object, district-wide
};

struct ObjectSpec {
    const char *code;
    const char *name;
    int weightPercent;
};

// Split of an account's amount over its components, in percent.
struct ComponentShare {
    const char *components;
    int a, p, c;
};

std::span<const FundSpec> funds();
std::span<const BuildingSpec> buildings();
std::span<const ProgramSpec> programs();
std::span<const FolderSpec> folders();
std::span<const RevenueSpec> revenues();
std::span<const FunctionSpec> functions();
std::span<const ObjectSpec> objects();
std::span<const ComponentShare> componentShares();
// Codes of the base chart that were retired from the live budget.
std::span<const char *const> retiredCodes();

} // namespace demo::chart
