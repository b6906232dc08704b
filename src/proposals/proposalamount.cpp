#include "proposalamount.h"

namespace {

bool sameCode(const QString &value, const char *code)
{
    return value.trimmed().compare(QLatin1String(code), Qt::CaseInsensitive) == 0;
}

} // namespace

ProposalAmount proposalAmount(const clsProposedBudgetItem &item)
{
    const bool components = sameCode(item.FundID, "A") && sameCode(item.LedgerID, "E");
    if (!components || !(item.CatA || item.CatP || item.CatC))
        return {item.ProposedBudget, {}, {}, {}};
    ProposalAmount amount;
    amount.administrative = item.CatA ? item.ProposedCatA : Currency();
    amount.program = item.CatP ? item.ProposedCatP : Currency();
    amount.capital = item.CatC ? item.ProposedCatC : Currency();
    amount.total = amount.administrative + amount.program + amount.capital;
    return amount;
}
