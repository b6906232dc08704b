#include "line.h"

#include "proposedbudget.h"

namespace {

void fillLine(const Recordset &row, clsLineItem &item)
{
    item.AcctId = static_cast<std::int32_t>(row.number("AcctId"));
    item.LineItemNumber = static_cast<std::int32_t>(row.number("LineItemNumber"));
    item.LineItemText = row.text("LineItemText");
    item.LineItemAmount = row.amount("LineItemAmount");
}

AuditedRows auditedLine(std::int32_t accountId, std::int32_t lineNumber)
{
    return {QStringLiteral("LnItem"),
            {QStringLiteral("AcctId"), QStringLiteral("LineItemNumber")},
            {{QStringLiteral("LineItemText")}, {QStringLiteral("LineItemAmount"), AuditColumn::Kind::Amount}},
            "AcctId = " + QString::number(accountId) + " and LineItemNumber = " + QString::number(lineNumber),
            AuditTrail::accountCodeOf(QStringLiteral("LnItem")),
            // A save writes the lines of one account.
            {"AcctId = " + QString::number(accountId)}};
}

} // namespace

clsLine::clsLine() : CountedStore(QStringLiteral("clsLine"))
{
}

bool clsLine::UpdateBatch()
{
    const QString sql = "Update LnItem Set " + QStringLiteral(" LineItemText = ") + sqlText(item_.LineItemText) + "," +
                        " LineItemAmount = " + item_.LineItemAmount.toSqlText() +
                        " where AcctID = " + QString::number(item_.AcctId) +
                        " And LineItemNumber =  " + QString::number(item_.LineItemNumber);
    return changeRows(sql, QStringLiteral("Update"), Expect::ExactlyOne,
                      countThen(QStringLiteral(" records to be update")),
                      auditedLine(item_.AcctId, item_.LineItemNumber));
}

bool clsLine::AddBatch()
{
    const QString sql = "Insert into LnItem (AcctId, LineItemNumber, LineItemText, LineItemAmount) values (" +
                        QString::number(item_.AcctId) + "," + QString::number(item_.LineItemNumber) + "," +
                        sqlText(item_.LineItemText) + "," + item_.LineItemAmount.toSqlText() + ")";
    return changeRows(sql, QStringLiteral("Add"), Expect::ExactlyOne,
                      countThen(QStringLiteral(" records to be Added. ")),
                      auditedLine(item_.AcctId, item_.LineItemNumber));
}

bool clsLine::UpdateLineTotal(const QString &proposalID)
{
    const QString sql = "Update ProposalBudget Set " + QStringLiteral(" ProposedBudget = ") +
                        item_.LineItemAmount.toSqlText() + " where AcctID = " + QString::number(item_.AcctId) +
                        " and ProposalID = " + sqlText(proposalID);
    return changeRows(sql, QStringLiteral("Update line total"), Expect::ExactlyOne,
                      countThen(QStringLiteral(" records to be update")),
                      clsProposedBudget::auditedAmounts(item_.AcctId, proposalID));
}

bool clsLine::Delete()
{
    const QString sql = "Delete from LnItem where AcctId = " + QString::number(item_.AcctId) +
                        " and LineItemNumber = " + QString::number(item_.LineItemNumber);
    return changeRows(sql, QStringLiteral("Delete"), Expect::ExactlyOne,
                      countThen(QStringLiteral(" records to be deleted")),
                      auditedLine(item_.AcctId, item_.LineItemNumber));
}

bool clsLine::GetList(std::vector<clsLineItem> &items)
{
    return readList<clsLineItem>("select * from LnItem where AcctId = " + QString::number(item_.AcctId),
                                 QStringLiteral("GetList"), items, fillLine);
}

bool clsLine::Retrieve()
{
    const QString sql = "Select * from LnItem where AcctID = " + QString::number(item_.AcctId) +
                        " and LineItemNumber = " + QString::number(item_.LineItemNumber);
    return retrieveAs(QStringLiteral("Line:Retrieve"), sql, QStringLiteral("Retrieve Budget"),
                      QStringLiteral("Record not Found."), [this](const Recordset &row) { fillLine(row, item_); });
}
