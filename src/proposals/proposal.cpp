#include "proposal.h"

namespace {

const QString initSub = QStringLiteral("InitNewProposal");
const QString retrieveSub = QStringLiteral("Retrieve Budget");
const QString retrieveClass = QStringLiteral("Proposal:Retrieve");
const QString listColumns = QStringLiteral("select ID, Name, Status, Active from Proposal");

void fillProposal(const Recordset &row, clsProposalItem &item)
{
    item.ID = row.text("ID");
    item.Name = row.text("Name");
    item.Status = row.text("Status");
    item.Active = row.text("Active").trimmed().compare(QStringLiteral("Y"), Qt::CaseInsensitive) == 0;
}

bool isKnownSource(const QString &source)
{
    static const QStringList known{"C", "E", "1", "2", "3"};
    return known.contains(source, Qt::CaseInsensitive);
}

// The slots by ID; empty `where`: every slot (making one active clears the others).
AuditedRows auditedSlots(const QString &where, const QStringList &batch = {})
{
    return {QStringLiteral("Proposal"),
            {QStringLiteral("ID")},
            {{QStringLiteral("Name")}, {QStringLiteral("Status")}, {QStringLiteral("Active")}},
            where,
            {},
            batch};
}

// What the audit trail says of a new proposal's amounts: one entry, not one per account.
QString filledFrom(const QString &id, const QString &source)
{
    const QString from = source == u"E"   ? QStringLiteral("with zero amounts")
                         : source == u"C" ? QStringLiteral("from the current budget")
                                          : QStringLiteral("from proposal ") + source;
    return QStringLiteral("Proposal %1 filled %2 for every account").arg(id.trimmed(), from);
}

} // namespace

clsProposal::clsProposal() : CountedStore(QStringLiteral("clsProposal"))
{
}

bool clsProposal::UpdateBatch()
{
    const QString sql = "Update Proposal Set " + QStringLiteral(" Name = ") + sqlText(item_.Name) + "," +
                        " Status = " + sqlText(item_.Status) + "," +
                        " Active = " + sqlText(item_.Active ? QStringLiteral("Y") : QString()) +
                        " where ID = " + sqlText(item_.ID);
    return changeRows(sql, QStringLiteral("Update"), Expect::ExactlyOne,
                      countThen(QStringLiteral(" records to be update")),
                      // A save of the grid writes any of the few slots: the whole table is its batch.
                      auditedSlots("ID = " + sqlText(item_.ID), {QString()}));
}

bool clsProposal::InitNewProposal(QString &source)
{
    const QString claim = "Update Proposal Set " + QStringLiteral(" Name = ") + sqlText(item_.Name) +
                          ", Status = 'O', Active = 'Y' where ID = " + sqlText(item_.ID);
    return atomically(initSub, [&] {
        if (!audited(initSub, auditedSlots({}), [&] {
                return run(QStringLiteral("Update Proposal Set Active = 'N' "), initSub) &&
                       executeCounted(claim, initSub, Expect::ExactlyOne,
                                      countThen(QStringLiteral(" records to be update")));
            }))
            return false;
        if (!isKnownSource(source))
            source = QStringLiteral("E");
        return run("Delete from ProposalBudget where ProposalID = " + sqlText(item_.ID), initSub) &&
               fillSlotAmounts(source.toUpper()) &&
               recordSummary(initSub, QStringLiteral("ProposalBudget"), filledFrom(item_.ID, source.toUpper()));
    });
}

bool clsProposal::fillSlotAmounts(const QString &source)
{
    if (source == u"E") {
        return run("INSERT INTO ProposalBudget SELECT ID, " + sqlText(item_.ID) + ",0,0,0,0 FROM Accountcodes ",
                   initSub);
    }
    if (source == u"C") {
        return run("INSERT INTO ProposalBudget SELECT ID, " + sqlText(item_.ID) + ", CurrentBudget " +
                       ", if(CatAFlag='',0,CatACurBudget),if(CatPFlag='',0,CatPCurBudget),"
                       "if(CatCFlag='',0,CatCCurBudget) FROM Accountcodes ",
                   initSub);
    }
    return copyProposal(source);
}

bool clsProposal::copyProposal(const QString &source)
{
    struct SourceRow {
        qint64 acctId;
        Currency proposed, catA, catP, catC;
    };
    // Read the whole source first: the inserts go into the table being read.
    std::vector<SourceRow> rows;
    Recordset read;
    if (!query("Select * from ProposalBudget where ProposalID = " + sqlText(source), initSub, read))
        return false;
    for (; !read.atEnd(); read.MoveNext()) {
        rows.push_back({read.number("AcctId"), read.amount("ProposedBudget"), read.amount("CatAProposal"),
                        read.amount("CatPProposal"), read.amount("CatCProposal")});
    }
    read.Close();

    for (const SourceRow &row : rows) {
        const QString sql =
            "INSERT INTO ProposalBudget(AcctId,ProposalID,ProposedBudget,CatAProposal,CatPProposal,CatCProposal) " +
            QStringLiteral("  Values( ") + sqlText(QString::number(row.acctId)) + "," + sqlText(item_.ID) + "," +
            row.proposed.toSqlText() + "," + row.catA.toSqlText() + "," + row.catP.toSqlText() + "," +
            row.catC.toSqlText() + ")";
        if (!run(sql, initSub))
            return false;
    }
    return true;
}

bool clsProposal::Delete()
{
    const QString sub = QStringLiteral("Delete");
    const QString sql = "Update Proposal Set " + QStringLiteral(" Name = ") + sqlText(item_.Name) +
                        ", Status = '', Active = 'N' where ID = " + sqlText(item_.ID);
    return changeRows(sql, sub, Expect::ExactlyOne, countThen(QStringLiteral(" records to be update")),
                      auditedSlots("ID = " + sqlText(item_.ID)));
}

bool clsProposal::GetList(std::vector<clsProposalItem> &items)
{
    return readList<clsProposalItem>(listColumns, QStringLiteral("GetList"), items, fillProposal);
}

bool clsProposal::GetOpenList(std::vector<clsProposalItem> &items)
{
    return readList<clsProposalItem>(listColumns + " where Status = 'O'", QStringLiteral("GetOpenList"), items,
                                     fillProposal);
}

bool clsProposal::Retrieve()
{
    return retrieveAs(retrieveClass, "Select * from Proposal where ID = " + sqlText(item_.ID), retrieveSub,
                      QStringLiteral("Record not Found."), [this](const Recordset &row) { fillProposal(row, item_); });
}

bool clsProposal::GetAvailProposal()
{
    return retrieveAs(QStringLiteral("Proposal:GetAvailPropsal"),
                      QStringLiteral("Select * from Proposal where Status = '' order by id"),
                      QStringLiteral("Get Available Proposal"), QStringLiteral("No Record Found."),
                      [this](const Recordset &row) { item_.ID = row.text("ID"); });
}

bool clsProposal::GetActiveProposal()
{
    return retrieveAs(retrieveClass, QStringLiteral("Select * from Proposal where Active = 'Y'"), retrieveSub,
                      QStringLiteral("No Active Proposal Found."),
                      [this](const Recordset &row) { fillProposal(row, item_); });
}
