#include "taxlevy.h"

namespace {

bool sameCode(const QString &value, const char *code)
{
    return value.trimmed().compare(QLatin1String(code), Qt::CaseInsensitive) == 0;
}

// Sums the general fund's rows of a query giving AccountCode, Ledger and Amount.
// The sums are made here, exactly, not by SQL (SQLite would add binary fractions).
bool sumLevy(DbConnection &db, const QString &sql, const QStringList &propertyTaxCodes, TaxLevy &levy, DbError *error)
{
    Recordset rows;
    if (!db.open(sql, rows, error))
        return false;
    levy = {};
    for (; !rows.atEnd(); rows.MoveNext()) {
        const Currency amount = rows.amount(QStringLiteral("Amount"));
        const QString ledger = rows.text(QStringLiteral("Ledger"));
        if (sameCode(ledger, "E"))
            levy.appropriations += amount;
        else if (sameCode(ledger, "R")) {
            const bool tax = isPropertyTaxCode(rows.text(QStringLiteral("AccountCode")), propertyTaxCodes);
            (tax ? levy.propertyTaxBudgeted : levy.otherRevenues) += amount;
        }
    }
    return true;
}

const QString generalFund = QStringLiteral(" UPPER(TRIM(AccountCodes.FundID)) = 'A'");

} // namespace

bool isPropertyTaxCode(const QString &accountCode, const QStringList &propertyTaxCodes)
{
    const QString code = accountCode.trimmed();
    for (const QString &taxCode : propertyTaxCodes)
        if (!taxCode.trimmed().isEmpty() && code.startsWith(taxCode.trimmed(), Qt::CaseInsensitive))
            return true;
    return false;
}

bool readProposedTaxLevy(DbConnection &db, const QString &proposalId, const QStringList &propertyTaxCodes,
                         TaxLevy &levy, DbError *error)
{
    return sumLevy(db,
                   QStringLiteral("SELECT AccountCodes.AccountCode, AccountCodes.Ledger, ProposalAmount.Amount FROM "
                                  "ProposalAmount INNER JOIN AccountCodes ON AccountCodes.ID = ProposalAmount.AcctId "
                                  "WHERE ProposalAmount.ProposalID = %1 AND")
                           .arg(sqlText(proposalId)) +
                       generalFund,
                   propertyTaxCodes, levy, error);
}

bool readCurrentTaxLevy(DbConnection &db, const QStringList &propertyTaxCodes, TaxLevy &levy, DbError *error)
{
    return sumLevy(
        db, QStringLiteral("SELECT AccountCode, Ledger, CurrentBudget AS Amount FROM AccountCodes WHERE") + generalFund,
        propertyTaxCodes, levy, error);
}

bool readLevyTowns(DbConnection &db, bool currentYear, std::vector<LevyTown> &towns, DbError *error)
{
    const QString sql = currentYear
                            ? QStringLiteral("SELECT TownShip, CurrentTaxAssess AS Taxable, CurrentEqualRate AS Rate "
                                             "FROM TaxRate ORDER BY ID")
                            : QStringLiteral("SELECT TownShip, PrevTaxAssess AS Taxable, PrevEqualRate AS Rate FROM "
                                             "TaxRate ORDER BY ID");
    Recordset rows;
    if (!db.open(sql, rows, error))
        return false;
    towns.clear();
    for (; !rows.atEnd(); rows.MoveNext())
        towns.push_back({rows.text(QStringLiteral("TownShip")).trimmed(), rows.amount(QStringLiteral("Taxable")),
                         rows.real(QStringLiteral("Rate"))});
    return true;
}
