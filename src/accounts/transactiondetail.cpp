#include "transactiondetail.h"

#include "dates.h"
#include "objectsummaryamounts.h"

#include <array>

namespace {

using T = TransactionFields;

const DetailColumn expenditureColumns[] = {
    {"Date", "Date", "", 1000, &T::TransDate},
    {"EncumbNumber", "Encumb", "Number", 1000, &T::EncumbranceNumber},
    {"InvoiceNumber", "Invoice", "Number", 1200, &T::InvoiceNumber},
    {"CheckNumber", "Check", "Number", 850, &T::CheckNumber},
    {"Reference", "Reference", "", 1600, &T::ReferenceText},
    {"VendorNumber", "Vender", "Number", 950, &T::VendorID},
    {"Ref", "Ref", "", 1150, &T::ReferenceNumber},
    {"AppropAmount", "Approp", "Amount", 1550, nullptr, +1},
    {"EncumbPlaced", "Encumb", "Placed", 1450, nullptr, -1},
    {"EncumbLiquid", "Encumb", "Liquid", 1450, nullptr, +1},
    {"PaymentExpense", "Payment", "Expense", 1450, nullptr, -1},
    {"UnencumberedBalance", "Unencumb.", "Balance", 1600},
};

const DetailColumn revenueColumns[] = {
    {"Date", "Date", "", 1000, &T::TransDate},
    {"ReceiptNumber", "Receipt", "Number", 1100, &T::ReceiptNumber},
    {"Reference", "Reference", "", 3200, &T::ReferenceText},
    {"Ref", "Ref", "", 1300, &T::ReferenceNumber},
    {"EstimatedRevenue", "Estimated", "Revenue", 1800, nullptr, +1},
    {"RevenueReceived", "Revenue", "Received", 1800, nullptr, -1},
    {"UnearnedBalance", "Unearned", "Balance", 1900},
};

// What an amount cell of a transaction's row holds.
enum class Cell { Empty, Zero, Amount1, Amount2 };

// Where a column code puts the amounts, in the order of the ledger's amount
// columns. Two notations for the code are in use: the numbered one ("5" is a
// payment against an encumbrance, liquidating Amount1 and expending Amount2)
// and the lettered one our installations write, which names the monthly
// summary field the transaction feeds (docs/fund-installation.md); a
// budget adjustment counts with the appropriation or estimate it changes.
struct ColumnRule {
    char ledger;
    std::array<const char *, 3> codes; // nullptr pads
    std::array<Cell, 4> cells;
};

constexpr Cell E = Cell::Empty, Z = Cell::Zero, A1 = Cell::Amount1, A2 = Cell::Amount2;

const ColumnRule columnRules[] = {
    {'E', {"1", "OE", "BA"}, {A1, Z, E, Z}},
    {'E', {"2", "EP"}, {Z, A1, E, Z}},
    {'E', {"3", "EL"}, {Z, Z, A1, Z}},
    {'E', {"4", "PE"}, {Z, Z, E, A1}},
    {'E', {"5"}, {Z, Z, A1, A2}},
    {'R', {"1", "OE", "BA"}, {A1, E}},
    {'R', {"2", "RR"}, {Z, A1}},
};

const ColumnRule *ruleFor(QChar ledger, const QString &columnId)
{
    const QString code = columnId.trimmed().toUpper();
    for (const ColumnRule &rule : columnRules) {
        if (ledger.toUpper() != QLatin1Char(rule.ledger))
            continue;
        for (const char *candidate : rule.codes) {
            if (candidate && code == QLatin1String(candidate))
                return &rule;
        }
    }
    return nullptr;
}

QString shownDate(const QString &yyyymmdd)
{
    QDate date;
    return TryDateFromYYYYMMDD(yyyymmdd, date) == 0 ? FormatMMDDYY(date) : yyyymmdd;
}

std::optional<Currency> amountOf(const TransactionFields &record, const QString &text, const char *field,
                                 QString &failure)
{
    if (auto amount = ledgerAmountFromText(text))
        return amount;
    failure = QStringLiteral("transaction %1 of account %2: \"%3\" is no amount in %4")
                  .arg(record.ID)
                  .arg(record.AccountCode, text, QLatin1String(field));
    return std::nullopt;
}

} // namespace

std::span<const DetailColumn> detailColumns(QChar ledger)
{
    switch (ledger.toUpper().unicode()) {
    case u'E':
        return expenditureColumns;
    case u'R':
        return revenueColumns;
    default:
        return {};
    }
}

QString detailBalanceKey(QChar ledger)
{
    const auto columns = detailColumns(ledger);
    return columns.empty() ? QString() : QLatin1String(columns.back().key);
}

std::map<QString, Currency> detailAmountCells(QChar ledger, const QString &columnId, Currency amount1, Currency amount2)
{
    std::map<QString, Currency> cells;
    const ColumnRule *rule = ruleFor(ledger, columnId);
    if (!rule)
        return cells;
    std::size_t amountColumn = 0;
    for (const DetailColumn &column : detailColumns(ledger)) {
        if (column.balanceSign == 0)
            continue;
        switch (rule->cells[amountColumn++]) {
        case Cell::Empty:
            break;
        case Cell::Zero:
            cells[QLatin1String(column.key)] = Currency();
            break;
        case Cell::Amount1:
            cells[QLatin1String(column.key)] = amount1;
            break;
        case Cell::Amount2:
            cells[QLatin1String(column.key)] = amount2;
            break;
        }
    }
    return cells;
}

std::optional<std::vector<DetailRow>> detailRows(QChar ledger, const std::vector<TransactionFields> &transactions,
                                                 QString &failure)
{
    const auto columns = detailColumns(ledger);
    std::vector<DetailRow> rows;
    rows.reserve(transactions.size());
    Currency balance;
    for (const TransactionFields &record : transactions) {
        const auto amount1 = amountOf(record, record.Amount1, "Amount 1", failure);
        const auto amount2 = amount1 ? amountOf(record, record.Amount2, "Amount 2", failure) : std::nullopt;
        if (!amount2)
            return std::nullopt;
        DetailRow row;
        for (const DetailColumn &column : columns) {
            if (column.source)
                row.texts[QLatin1String(column.key)] = record.*column.source;
        }
        row.texts[QStringLiteral("Date")] = shownDate(record.TransDate);
        row.amounts = detailAmountCells(ledger, record.ColumnID, *amount1, *amount2);
        for (const DetailColumn &column : columns) {
            const auto cell = row.amounts.find(QLatin1String(column.key));
            if (cell != row.amounts.end())
                balance += column.balanceSign < 0 ? -cell->second : cell->second;
        }
        row.balance = balance;
        rows.push_back(std::move(row));
    }
    return rows;
}
