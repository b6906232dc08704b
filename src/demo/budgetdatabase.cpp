#include "budgetdatabase.h"

#include "rowbatch.h"
#include "schema.h"

#include <QHash>

namespace demo {

namespace {

QString number(qint64 value)
{
    return QString::number(value);
}
QString amount(Currency value)
{
    return value.toSqlText();
}
QString rate(double value)
{
    return QString::number(value, 'g', 17);
}
QString flag(bool set, QChar letter)
{
    return set ? sqlText(letter) : sqlText(QString());
}

bool fail(DbError *error, const QString &text)
{
    if (error)
        *error = {-1, text};
    return false;
}

class Populator {
public:
    Populator(DbConnection &db, const District &district) : db_(db), district_(district) {}

    bool run(DbError *error)
    {
        if (!isEmpty(error))
            return false;
        Transaction transaction(db_);
        if (!transaction.begun())
            return fail(error, QStringLiteral("Cannot begin a transaction on the budget database."));
        return writeFolders(error) && writeYears(error) && writeYearTreeCopies(error) && writeAccounts(error) &&
               readAccountIds(error) && writeProposals(error) && writeLineItems(error) && writeHistory(error) &&
               writeBalances(error) && writeTowns(error) && writeReportFormats(error) && transaction.commit(error);
    }

private:
    bool isEmpty(DbError *error)
    {
        for (const char *table : {"AccountCodes", "BudgetSummaryTree", "BudgetYears", "Proposal", "Report"}) {
            Recordset rows;
            if (!db_.open(QStringLiteral("select count(*) As RecCount from %1").arg(table), rows, error))
                return false;
            if (rows.number(QStringLiteral("RecCount")) != 0)
                return fail(error, QStringLiteral("The budget database already holds data (table %1 is not empty); "
                                                  "the demo district goes into an empty one.")
                                       .arg(table));
        }
        return true;
    }

    bool writeFolders(DbError *error)
    {
        RowBatch rows(db_, QStringLiteral("INSERT INTO BudgetSummaryTree (ID, NodeType, FundID, LedgerID, ParentID, "
                                          "SortOrder, Name, ForceNewPage)"));
        for (const Folder &f : district_.folders) {
            // Sort order right-aligned in ten places and the page flag with its blank, as the tree store writes them.
            if (!rows.add({sqlText(number(f.id)), sqlText(f.nodeType), sqlText(f.fundId), sqlText(f.ledger),
                           sqlText(number(f.parentId)), exactText(QStringLiteral("%1").arg(f.sortOrder, 10)),
                           sqlText(f.name), exactText(f.forceNewPage ? QStringLiteral("Y ") : QStringLiteral("N "))},
                          error))
                return false;
        }
        return rows.flush(error);
    }

    bool writeYears(DbError *error)
    {
        RowBatch years(db_, QStringLiteral("INSERT INTO BudgetYears (YearID, YearName, Status)"));
        RowBatch list(db_, QStringLiteral("INSERT INTO Yearlist (YearNumber, TableId)"));
        for (const FiscalYear &y : district_.years) {
            if (!years.add({sqlText(number(y.year)), exactText(y.yearName), sqlText(y.status)}, error) ||
                !list.add({sqlText(number(y.year)), sqlText(y.tableId)}, error))
                return false;
        }
        const QString calendar = district_.calendarYear ? QStringLiteral("Y") : QStringLiteral("N");
        return years.flush(error) && list.flush(error) &&
               db_.execute(QStringLiteral("INSERT INTO Parms (CalenderYear) VALUES (%1)").arg(sqlText(calendar)),
                           nullptr, error);
    }

    // Every year's copy of the tree starts as the live tree, so rolling into
    // a new year keeps the folders.
    bool writeYearTreeCopies(DbError *error)
    {
        for (const FiscalYear &y : district_.years) {
            const QString copy = y.tableId + QLatin1String("_Summarytree");
            if (!BudgetSchema::createYearTreeCopy(db_, y.tableId, error) ||
                !db_.execute(QLatin1String("Delete from ") + copy, nullptr, error) ||
                !db_.execute(QLatin1String("Insert into ") + copy + QLatin1String(" select * from BudgetSummaryTree"),
                             nullptr, error))
                return false;
        }
        return true;
    }

    bool writeAccounts(DbError *error)
    {
        RowBatch rows(db_, QStringLiteral("INSERT INTO AccountCodes (Ledger, FundID, AccountCode, AccountName, "
                                          "ParentID, ProgramID, BuildingID, StateCode, HistoricalCode, CatAFlag, "
                                          "CatPFlag, CatCFlag, ProjectedAmount, CurrentBudget, CatACurBudget, "
                                          "CatPCurBudget, CatCCurBudget)"));
        for (const Account &a : district_.accounts) {
            if (!rows.add({sqlText(a.ledger), sqlText(a.fundId), sqlText(a.code), sqlText(a.name),
                           sqlText(number(a.parentId)), sqlText(number(a.programId)), sqlText(number(a.buildingId)),
                           sqlText(a.stateCode), flag(a.historical, u'H'), flag(a.catA, u'A'), flag(a.catP, u'P'),
                           flag(a.catC, u'C'), amount(a.projectedAmount), amount(a.currentBudget),
                           amount(a.catACurBudget), amount(a.catPCurBudget), amount(a.catCCurBudget)},
                          error))
                return false;
        }
        return rows.flush(error);
    }

    // The database numbers the accounts; the other tables refer to those numbers.
    bool readAccountIds(DbError *error)
    {
        Recordset rows;
        if (!db_.open(QStringLiteral("select ID, AccountCode from AccountCodes"), rows, error))
            return false;
        for (; !rows.atEnd(); rows.MoveNext())
            accountIds_.insert(rows.text(QStringLiteral("AccountCode")).trimmed(), rows.number(QStringLiteral("ID")));
        if (accountIds_.size() != qsizetype(district_.accounts.size()))
            return fail(error, QStringLiteral("%1 account codes were read back of %2 written.")
                                   .arg(accountIds_.size())
                                   .arg(district_.accounts.size()));
        return true;
    }

    QString accountId(const QString &code) const { return number(accountIds_.value(code)); }

    bool writeProposals(DbError *error)
    {
        RowBatch proposalRows(db_, QStringLiteral("INSERT INTO Proposal (ID, Name, Status, Active)"));
        RowBatch amounts(db_, QStringLiteral("INSERT INTO ProposalBudget (AcctId, ProposalID, ProposedBudget, "
                                             "CatAProposal, CatPProposal, CatCProposal)"));
        for (const Proposal &p : district_.proposals) {
            if (!proposalRows.add({sqlText(p.id), sqlText(p.name), sqlText(p.status), sqlText(p.active ? "Y" : "N")},
                                  error))
                return false;
            for (std::size_t i = 0; i < district_.accounts.size(); ++i) {
                const ProposalFigures &f = p.figures[i];
                if (!amounts.add({accountId(district_.accounts[i].code), sqlText(p.id), amount(f.proposedBudget),
                                  amount(f.catA), amount(f.catP), amount(f.catC)},
                                 error))
                    return false;
            }
        }
        return proposalRows.flush(error) && amounts.flush(error);
    }

    bool writeLineItems(DbError *error)
    {
        RowBatch rows(db_, QStringLiteral("INSERT INTO LnItem (AcctId, LineItemNumber, LineItemText, LineItemAmount)"));
        for (const LineItem &line : district_.lineItems) {
            if (!rows.add({accountId(line.accountCode), number(line.number), sqlText(line.text), amount(line.amount)},
                          error))
                return false;
        }
        return rows.flush(error);
    }

    // History rows of the closed years, as each year's roll-over wrote them.
    bool writeHistory(DbError *error)
    {
        RowBatch rows(db_, QStringLiteral("INSERT INTO Budgets (AcctId, YearID, CurrentBudget, ActualAmount)"));
        for (const Account &a : district_.accounts) {
            for (const YearFigures &y : a.history) {
                if (y.year >= district_.currentYear().year)
                    continue;
                if (!rows.add({accountId(a.code), sqlText(number(y.year)), amount(y.originalBudget), amount(y.actual)},
                              error))
                    return false;
            }
        }
        return rows.flush(error);
    }

    bool writeBalances(DbError *error)
    {
        RowBatch rows(db_, QStringLiteral("INSERT INTO Bals (Fund, CurrentBalance, PreviousBalance)"));
        for (const FundBalance &b : district_.fundBalances) {
            if (!rows.add({sqlText(b.fundId), amount(b.current), amount(b.previous)}, error))
                return false;
        }
        return rows.flush(error);
    }

    bool writeTowns(DbError *error)
    {
        RowBatch rows(db_, QStringLiteral("INSERT INTO TaxRate (TownShip, CurrentEqualRate, CurrentAssessment, "
                                          "CurrentTaxAssess, PrevEqualRate, PrevAssessment, PrevTaxAssess)"));
        for (const Town &t : district_.towns) {
            if (!rows.add({sqlText(t.name), rate(t.currentRate), amount(t.currentAssessment),
                           amount(t.currentTaxableAssessment), rate(t.priorRate), amount(t.priorAssessment),
                           amount(t.priorTaxableAssessment)},
                          error))
                return false;
        }
        return rows.flush(error);
    }

    bool writeReportFormats(DbError *error)
    {
        for (const ReportFormat &r : district_.reportFormats) {
            if (!db_.execute(QStringLiteral("INSERT INTO Report (Name, Description, Ledger, FundID, Date) VALUES "
                                            "(%1,%2,%3,%4,%5)")
                                 .arg(sqlText(r.name), sqlText(r.description), sqlText(r.ledger), sqlText(r.fundId),
                                      sqlText(r.date)),
                             nullptr, error))
                return false;
            Recordset rows;
            if (!db_.open(QStringLiteral("select ID from Report where Name = %1").arg(sqlText(r.name)), rows, error))
                return false;
            const QString reportId = number(rows.number(QStringLiteral("ID")));
            RowBatch headings(db_, QStringLiteral("INSERT INTO RptHeading (ReportID, ReportHeading, SortOrder)"));
            for (std::size_t i = 0; i < r.headings.size(); ++i) {
                if (!headings.add({reportId, sqlText(r.headings[i]), number(qint64(i) + 1)}, error))
                    return false;
            }
            if (!headings.flush(error))
                return false;
        }
        return true;
    }

    DbConnection &db_;
    const District &district_;
    QHash<QString, qint64> accountIds_;
};

} // namespace

bool populateBudgetDatabase(DbConnection &db, const District &district, DbError *error)
{
    return Populator(db, district).run(error);
}

} // namespace demo
