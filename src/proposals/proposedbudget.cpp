#include "proposedbudget.h"

#include "patternmatch.h"

#include <QHash>

#include <algorithm>

namespace {

const QString addSub = QStringLiteral("Add Budget ");
const QString addFailure = QStringLiteral("Invalid number of records added!");

bool flagSet(const Recordset &row, const char *column)
{
    return !row.text(column).trimmed().isEmpty();
}

void fillAccount(const Recordset &row, clsProposedBudgetItem &item)
{
    item.ID = static_cast<std::int32_t>(row.number("id"));
    item.AccountCode = row.text("AccountCode");
    item.AccountName = row.text("Accountname");
    item.CurrentBudget = row.amount("CurrentBudget");
}

void fillFlags(const Recordset &row, clsProposedBudgetItem &item)
{
    item.CatA = flagSet(row, "CatAFlag");
    item.CatP = flagSet(row, "CatPFlag");
    item.CatC = flagSet(row, "CatCFlag");
}

void fillComponents(const Recordset &row, clsProposedBudgetItem &item)
{
    item.ProposedCatA = row.amount("CatAProposal");
    item.ProposedCatP = row.amount("CatPProposal");
    item.ProposedCatC = row.amount("CatCProposal");
}

void fillWithAmounts(const Recordset &row, clsProposedBudgetItem &item)
{
    fillAccount(row, item);
    fillFlags(row, item);
    item.ProposedBudget = row.amount("ProposedBudget");
    fillComponents(row, item);
}

} // namespace

clsProposedBudget::clsProposedBudget() : CountedStore(QStringLiteral("clsProposedBudget"))
{
}

bool clsProposedBudget::isGeneralFundExpenditure() const
{
    return item_.FundID.compare(QStringLiteral("A"), Qt::CaseInsensitive) == 0 &&
           item_.LedgerID.compare(QStringLiteral("E"), Qt::CaseInsensitive) == 0;
}

// The fund, ledger and proposal conditions every joined list shares.
QString clsProposedBudget::selection() const
{
    return " and AccountCodes.Ledger = " + sqlText(item_.LedgerID) +
           " and AccountCodes.FundID = " + sqlText(item_.FundID) + " and proposalId = " + sqlText(item_.ProposalID);
}

// Rows carry no fund, ledger or proposal of their own; the items get the ones they were selected by.
void clsProposedBudget::stampSelection(std::vector<clsProposedBudgetItem> &items, std::size_t from) const
{
    for (std::size_t i = from; i < items.size(); ++i) {
        items[i].FundID = item_.FundID;
        items[i].LedgerID = item_.LedgerID;
        items[i].ProposalID = item_.ProposalID;
    }
}

QString clsProposedBudget::updateStatement() const
{
    return "Update ProposalBudget Set " + QStringLiteral(" CatAProposal = ") + item_.ProposedCatA.toSqlText() +
           ",CatCProposal = " + item_.ProposedCatC.toSqlText() + ",CatPProposal = " + item_.ProposedCatP.toSqlText() +
           ",ProposedBudget = " + item_.ProposedBudget.toSqlText() + " where AcctId = " + QString::number(item_.ID) +
           " and ProposalId = " + sqlText(item_.ProposalID);
}

QString clsProposedBudget::insertStatement() const
{
    return "Insert into ProposalBudget (AcctId, ProposalId, ProposedBudget,CatAProposal, CatPProposal, "
           "CatCProposal) Values " +
           QStringLiteral("(") + QString::number(item_.ID) + "," + sqlText(item_.ProposalID) + "," +
           item_.ProposedBudget.toSqlText() + "," + item_.ProposedCatA.toSqlText() + "," +
           item_.ProposedCatP.toSqlText() + "," + item_.ProposedCatC.toSqlText() + " )";
}

AuditedRows clsProposedBudget::auditedAmounts(std::int32_t accountId, const QString &proposalId)
{
    using Kind = AuditColumn::Kind;
    return {QStringLiteral("ProposalBudget"),
            {QStringLiteral("AcctId"), QStringLiteral("ProposalID")},
            {{QStringLiteral("ProposedBudget"), Kind::Amount},
             {QStringLiteral("CatAProposal"), Kind::Amount},
             {QStringLiteral("CatPProposal"), Kind::Amount},
             {QStringLiteral("CatCProposal"), Kind::Amount}},
            "AcctId = " + QString::number(accountId) + " and ProposalID = " + sqlText(proposalId),
            AuditTrail::accountCodeOf(QStringLiteral("ProposalBudget")),
            // A save of the grid writes many accounts of one proposal.
            {"ProposalID = " + sqlText(proposalId)}};
}

void clsProposedBudget::expectWrites(const QString &proposalId, const std::vector<std::int32_t> &accountIds)
{
    // Short enough for any backend's statement, few enough statements to stay cheap.
    constexpr qsizetype accountsPerRead = 500;
    expectedProposal_ = proposalId;
    expectedAccounts_ = QSet<std::int32_t>(accountIds.begin(), accountIds.end());
    expectedBatch_.clear();
    // In key order, so each chunk's rows are neighbours in the table's key.
    std::vector<std::int32_t> ordered(expectedAccounts_.begin(), expectedAccounts_.end());
    std::sort(ordered.begin(), ordered.end());
    QStringList chunk;
    const auto flush = [&] {
        expectedBatch_ << "ProposalID = " + sqlText(proposalId) + " and AcctId in (" + chunk.join(u',') + u')';
        chunk.clear();
    };
    for (const std::int32_t id : ordered) {
        chunk << QString::number(id);
        if (chunk.size() == accountsPerRead)
            flush();
    }
    if (!chunk.isEmpty())
        flush();
}

AuditedRows clsProposedBudget::auditedWrite() const
{
    AuditedRows rows = auditedAmounts(item_.ID, item_.ProposalID);
    if (item_.ProposalID == expectedProposal_ && !expectedBatch_.isEmpty())
        rows.batch = expectedAccounts_.contains(item_.ID) ? expectedBatch_ : QStringList();
    return rows;
}

bool clsProposedBudget::UpdateBatch()
{
    return changeRows(updateStatement(), QStringLiteral("Update"), Expect::ExactlyOne,
                      countThen(QStringLiteral(" records to be update")), auditedWrite());
}

bool clsProposedBudget::GetList(std::vector<clsProposedBudgetItem> &items)
{
    return GetListWithSecurity(items, {}, false);
}

bool clsProposedBudget::GetListWithSecurity(std::vector<clsProposedBudgetItem> &items, const QStringList &accessEntries,
                                            bool restrict)
{
    const QString sql = "select Accountcodes.id, Accountcodes.AccountCode, " +
                        QStringLiteral(" Accountcodes.Accountname, accountcodes.CurrentBudget,CatAFlag, CatCFlag, "
                                       "CatPFlag, ") +
                        " ProposalBudget.ProposedBudget, " +
                        " ProposalBudget.CatAProposal, ProposalBudget.CatPProposal, ProposalBudget.CatCProposal " +
                        " from AccountCodes, ProposalBudget where " + " AccountCodes.ID = ProposalBudget.AcctId  " +
                        selection() + " order by AccountCode";
    std::vector<clsProposedBudgetItem> read;
    if (!readList<clsProposedBudgetItem>(
            sql, restrict ? QStringLiteral("GetListWithSecurity") : QStringLiteral("GetList"), read, fillWithAmounts))
        return false;
    const std::size_t first = items.size();
    for (clsProposedBudgetItem &item : read) {
        const auto allowed = [&item](const QString &entry) { return matchesPattern(item.AccountCode, entry); };
        if (!restrict || std::any_of(accessEntries.begin(), accessEntries.end(), allowed))
            items.push_back(std::move(item));
    }
    stampSelection(items, first);
    return true;
}

bool clsProposedBudget::GetListSep(std::vector<clsProposedBudgetItem> &items)
{
    const std::size_t first = items.size();
    const QString sub = QStringLiteral("GetListSep");
    bool read = false;
    if (isGeneralFundExpenditure()) {
        const QString sql =
            "select Accountcodes.id, Accountcodes.AccountCode, " +
            QStringLiteral(" Accountcodes.Accountname, accountcodes.CurrentBudget, CatAFlag, CatCFlag, CatPFlag,") +
            " Proposal_GenFund.CatAProposal, Proposal_GenFund.CatPProposal, Proposal_GenFund.CatCProposal " +
            " from AccountCodes, Proposal_GenFund where " + " AccountCodes.ID = Proposal_GenFund.AcctId  " +
            selection();
        read = readList<clsProposedBudgetItem>(sql, sub, items, [](const Recordset &row, clsProposedBudgetItem &item) {
            fillAccount(row, item);
            fillFlags(row, item);
            fillComponents(row, item);
        });
    } else {
        const QString sql = "select Accountcodes.id, Accountcodes.AccountCode, " +
                            QStringLiteral(" Accountcodes.Accountname, accountcodes.CurrentBudget, ") +
                            " ProposalBudget.ProposedBudget " + " from AccountCodes, ProposalBudget where " +
                            " AccountCodes.ID = ProposalBudget.AcctId  " + selection();
        read = readList<clsProposedBudgetItem>(sql, sub, items, [](const Recordset &row, clsProposedBudgetItem &item) {
            fillAccount(row, item);
            item.ProposedBudget = row.amount("ProposedBudget");
        });
    }
    if (read)
        stampSelection(items, first);
    return read;
}

bool clsProposedBudget::GetListNew(std::vector<clsProposedBudgetItem> &items)
{
    const QString sub = QStringLiteral("GetListNew");
    const bool components = isGeneralFundExpenditure();
    const QString accountsSql =
        components ? "select id, AccountCode, Accountname, " +
                         QStringLiteral(" currentBudget, CatAFlag, CatCFlag, CatPFlag ") + " from AccountCodes where " +
                         " Ledger = " + sqlText(item_.LedgerID) + " and FundID = " + sqlText(item_.FundID) +
                         " and HistoricalCode <> 'H' order by accountcode"
                   : "select Accountcodes.id, Accountcodes.AccountCode, " +
                         QStringLiteral(" Accountcodes.Accountname, accountcodes.currentBudget ") +
                         " from AccountCodes where " + " AccountCodes.Ledger = " + sqlText(item_.LedgerID) +
                         " and AccountCodes.FundID = " + sqlText(item_.FundID) +
                         " and HistoricalCode <> 'H' order by accountcode";
    const QString amountsSql =
        components ? "Select AcctId, CatAProposal,CatPProposal,CatCProposal from Proposal_GenFund where " +
                         QStringLiteral(" Proposalid = ") + sqlText(item_.ProposalID)
                   : "Select AcctId, ProposedBudget from proposalBudget where " + QStringLiteral(" Proposalid = ") +
                         sqlText(item_.ProposalID);

    std::vector<clsProposedBudgetItem> accounts;
    std::vector<clsProposedBudgetItem> amounts;
    const bool read = readList<clsProposedBudgetItem>(accountsSql, sub, accounts,
                                                      [components](const Recordset &row, clsProposedBudgetItem &item) {
                                                          fillAccount(row, item);
                                                          if (components)
                                                              fillFlags(row, item);
                                                      }) &&
                      readList<clsProposedBudgetItem>(amountsSql, sub, amounts,
                                                      [components](const Recordset &row, clsProposedBudgetItem &item) {
                                                          item.ID = static_cast<std::int32_t>(row.number("AcctId"));
                                                          if (components)
                                                              fillComponents(row, item);
                                                          else
                                                              item.ProposedBudget = row.amount("ProposedBudget");
                                                      });
    if (!read)
        return false;

    // The first amount row of an account wins, as a scan from the top would find it.
    QHash<std::int32_t, const clsProposedBudgetItem *> byAccount;
    for (const clsProposedBudgetItem &amount : amounts) {
        if (!byAccount.contains(amount.ID))
            byAccount.insert(amount.ID, &amount);
    }
    const std::size_t first = items.size();
    for (clsProposedBudgetItem &account : accounts) {
        if (const clsProposedBudgetItem *amount = byAccount.value(account.ID)) {
            account.ProposedBudget = amount->ProposedBudget;
            account.ProposedCatA = amount->ProposedCatA;
            account.ProposedCatP = amount->ProposedCatP;
            account.ProposedCatC = amount->ProposedCatC;
        }
        items.push_back(std::move(account));
    }
    stampSelection(items, first);
    return true;
}

bool clsProposedBudget::Add()
{
    return AddBatch();
}

bool clsProposedBudget::AddBatch()
{
    return changeRows(insertStatement(), addSub, Expect::ExactlyOne, always(addFailure), auditedWrite());
}

bool clsProposedBudget::Update()
{
    const QString sub = QStringLiteral("Update Budget ");
    return atomicallyAudited(sub, auditedWrite(), [&] {
        qint64 affected = 0;
        if (!run(updateStatement(), sub, &affected))
            return false;
        if (affected == 1)
            return true;
        if (affected > 1) {
            report(999, sub, addFailure);
            return false;
        }
        // No row yet: insert one, keeping the amounts the caller set (Retrieve would overwrite them).
        const clsProposedBudgetItem wanted = item_;
        const bool exists = Retrieve();
        item_ = wanted;
        if (exists) {
            report(999, sub, countThen(QStringLiteral(" records to be update"))(0));
            return false;
        }
        return executeCounted(insertStatement(), addSub, Expect::ExactlyOne, always(addFailure));
    });
}

bool clsProposedBudget::Retrieve()
{
    const QString sql = "Select * from ProposalBudget where AcctId = " + QString::number(item_.ID) +
                        " and ProposalID = " + sqlText(item_.ProposalID);
    return retrieveAs(QStringLiteral("ProposalBudget:Retrieve"), sql, QStringLiteral("Retrieve Budget"),
                      "Record not found on propsal :" + item_.ProposalID, [this](const Recordset &row) {
                          item_.ProposalID = row.text("ProposalID");
                          fillComponents(row, item_);
                          item_.ProposedBudget = row.amount("ProposedBudget");
                      });
}
