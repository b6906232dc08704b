#include "fundbalance.h"

namespace {

void fillBalances(const Recordset &row, clsFundBalanceItem &item)
{
    item.CurrentYearBalance = row.amount("CurrentBalance");
    item.PreviousYearBalance = row.amount("PreviousBalance");
}

AuditedRows auditedBalances(const QString &fund)
{
    return {QStringLiteral("Bals"),
            {QStringLiteral("Fund")},
            {{QStringLiteral("CurrentBalance"), AuditColumn::Kind::Amount},
             {QStringLiteral("PreviousBalance"), AuditColumn::Kind::Amount}},
            "Fund = " + sqlText(fund),
            {},
            // A save writes any of the district's few funds: the whole table is its batch.
            {QString()}};
}

} // namespace

clsFundBalance::clsFundBalance() : CountedStore(QStringLiteral("clsFundBalance"))
{
}

bool clsFundBalance::UpdateBatch()
{
    const QString sql =
        "Update Bals Set " + QStringLiteral(" CurrentBalance = ") + item_.CurrentYearBalance.toSqlText() + "," +
        " PreviousBalance = " + item_.PreviousYearBalance.toSqlText() + " where Fund = " + sqlText(item_.Fund);
    return changeRows(sql, QStringLiteral("Update"), Expect::ExactlyOne,
                      countThen(QStringLiteral(" records to be update")), auditedBalances(item_.Fund));
}

bool clsFundBalance::AddBatch()
{
    const QString sql = "Insert into Bals (Fund, CurrentBalance, PreviousBalance) values (" + sqlText(item_.Fund) +
                        "," + item_.CurrentYearBalance.toSqlText() + "," + item_.PreviousYearBalance.toSqlText() + ")";
    return changeRows(sql, QStringLiteral("Add"), Expect::ExactlyOne,
                      countThen(QStringLiteral(" records to be Added. ")), auditedBalances(item_.Fund));
}

bool clsFundBalance::GetList(std::vector<clsFundBalanceItem> &items)
{
    return readList<clsFundBalanceItem>(QStringLiteral("select * from Bals "), QStringLiteral("GetList"), items,
                                        [](const Recordset &row, clsFundBalanceItem &item) {
                                            item.Fund = row.text("Fund");
                                            fillBalances(row, item);
                                        });
}

bool clsFundBalance::Retrieve()
{
    return retrieveFirst("Select * from Bals where Fund = " + sqlText(item_.Fund),
                         QStringLiteral("Retrieve Fund Balance"), QStringLiteral("Record not Found."),
                         [this](const Recordset &row) { fillBalances(row, item_); });
}
