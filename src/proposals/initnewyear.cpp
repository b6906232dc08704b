#include "initnewyear.h"

#include "objectsummaryledgers.h"
#include "status.h"

#include <vector>

namespace {

const QString accountSub = QStringLiteral("Init Budget Year");
const QString noAccountSub = QStringLiteral("Init New Budget Year");
const QString folderSub = QStringLiteral("Update Folders");
const QString yearSub = QStringLiteral("Update Year Table");
const QString proposalSub = QStringLiteral("Update Proposal");

// The error number of a Kora-Fund figure that is no amount.
constexpr int badLedgerAmount = 998;

// Our texts already carry the record manager's words where it has some, and
// name the account or file: keep them rather than the bare status wording.
void reportInOwnWords(clsErrObject &error, int number, const QString &text)
{
    error.setDatabaseError(number, accountSub, text);
}

} // namespace

struct clsInitNewYear::AccountRow {
    QString id;
    QString ledger;
    QString code;
    Currency currentBudget;
};

// One account's figures in the latest fund year.
struct clsInitNewYear::LedgerFigures {
    QString parentId;
    QString programId;
    QString buildingId;
    Currency budget;
    Currency actual;
};

// The two ledger summaries, opened once for the whole pass.
class clsInitNewYear::LedgerReader {
public:
    // 0, or the status of the summary that could not be opened, with `why`.
    int open(const LedgerSummaryPlace &place, QString &why)
    {
        if (const int status = revenue_.Init(place.ddfPath, place.dataFolder); status != 0) {
            why = QStringLiteral("Cannot open the revenue ledger summary in ") + place.dataFolder + ": " +
                  revenue_.ErrorMsg();
            return status;
        }
        if (const int status = expenditure_.Init(place.ddfPath, place.dataFolder); status != 0) {
            why = QStringLiteral("Cannot open the expenditure ledger summary in ") + place.dataFolder + ": " +
                  expenditure_.ErrorMsg();
            return status;
        }
        return 0;
    }

    // 0 with the figures, the record manager's key-not-found status, or
    // another status (or badLedgerAmount) with `why`.
    int read(const AccountRow &account, bool adjusted, LedgerFigures &figures, QString &why)
    {
        if (account.ledger.trimmed() == u"E")
            return read(
                expenditure_,
                ActualAmount<ExpenditureSummaryFields>{&ExpenditureSummaryFields::PaymentExp, "Payment Expense"},
                account, adjusted, figures, why);
        return read(revenue_, ActualAmount<RevenueSummaryFields>{&RevenueSummaryFields::RevenueRec, "Revenue Received"},
                    account, adjusted, figures, why);
    }

private:
    // The ledger's amount that makes the year's actual, and its field name.
    template <class Fields> struct ActualAmount {
        MonthlyTexts Fields::*member;
        const char *name;
    };

    template <class Summary, class Fields>
    static int read(Summary &summary, ActualAmount<Fields> actual, const AccountRow &account, bool adjusted,
                    LedgerFigures &figures, QString &why)
    {
        summary.Clear();
        summary.AccountCode = account.code.trimmed();
        const int status = summary.Retrieve();
        if (status != 0) {
            why = QStringLiteral("Cannot read account %1 from the ledger summary: %2")
                      .arg(account.code.trimmed(), summary.ErrorMsg());
            return status;
        }
        figures = {summary.ParentID.trimmed(), summary.ProgramID.trimmed(), summary.BuildingID.trimmed(), {}, {}};
        for (int month = 1; month <= 12; ++month) {
            const auto add = [&](const MonthlyTexts &texts, const char *amountName, Currency &into) {
                const QString &text = texts[month - 1];
                const auto amount = ledgerAmountFromText(text);
                if (!amount)
                    why = QStringLiteral("\"%1 %2\" of account %3 is not an amount: \"%4\"")
                              .arg(month, 2, 10, QLatin1Char('0'))
                              .arg(QLatin1String(amountName), account.code.trimmed(), text);
                else
                    into += *amount;
                return amount.has_value();
            };
            if (!add(summary.OpeningEntry, "Opening Entry", figures.budget) ||
                (adjusted && !add(summary.BudgetAdj, "Budget Adjustment", figures.budget)) ||
                !add(summary.*actual.member, actual.name, figures.actual))
                return badLedgerAmount;
        }
        return 0;
    }

    classObjectRLSummary revenue_;
    classObjectELSummary expenditure_;
};

clsInitNewYear::clsInitNewYear() : StoreBase(QStringLiteral("clsInitNewYear"))
{
}

bool clsInitNewYear::InitSummaryBudgetFiles()
{
    cancelled_ = false;
    return atomically(accountSub, [this] {
        QString summary;
        if (!rollAccounts(summary) || (clearLineItem_ && !run(QStringLiteral("Delete from LnItem"), accountSub)))
            return false;
        if (clearLineItem_)
            summary += QStringLiteral("; line items cleared");
        return recordSummary(accountSub, QStringLiteral("AccountCodes"), summary);
    });
}

bool clsInitNewYear::rollAccounts(QString &summary)
{
    std::vector<AccountRow> accounts;
    // Read them all first: the pass updates the table it reads.
    if (!readList<AccountRow>(
            QStringLiteral("Select * from AccountCodes"), accountSub, accounts,
            [](const Recordset &row, AccountRow &account) {
                account = {row.text("ID"), row.text("Ledger"), row.text("AccountCode"), row.amount("CurrentBudget")};
            }))
        return false;
    if (accounts.empty()) {
        report(999, noAccountSub, QStringLiteral("No Account code Found."));
        return false;
    }
    LedgerReader ledgers;
    QString why;
    if (const int status = ledgers.open(ledgers_, why); status != 0) {
        reportInOwnWords(Error(), status, why);
        return false;
    }
    const int total = static_cast<int>(accounts.size());
    int retired = 0;
    for (int done = 0; done < total; ++done) {
        if (progress_ && !progress_({done, total, accounts[done].code.trimmed()})) {
            cancelled_ = true;
            reportInOwnWords(Error(), 0, QStringLiteral("Stopped by the user."));
            return false;
        }
        if (!rollAccount(ledgers, accounts[done], retired))
            return false;
    }
    summary = QStringLiteral("%1 accounts rolled from budget year %2 (%3 budget), %4 made historical")
                  .arg(total)
                  .arg(currentBudgetYear_.trimmed(),
                       budgetFrom_.trimmed() == u"A" ? QStringLiteral("adjusted") : QStringLiteral("original"))
                  .arg(retired);
    return true;
}

bool clsInitNewYear::rollAccount(LedgerReader &ledgers, const AccountRow &account, int &retired)
{
    LedgerFigures figures;
    QString why;
    const int status = ledgers.read(account, budgetFrom_.trimmed() == u"A", figures, why);
    const bool found = status == 0;
    if (!found && status != recman::statusNumber(recman::Status::KeyNotFound)) {
        reportInOwnWords(Error(), status, why);
        return false;
    }
    const QString history = "INSERT INTO Budgets values(" + account.id + "," + sqlText(currentBudgetYear_) + "," +
                            account.currentBudget.toSqlText() + "," +
                            (found ? figures.actual.toSqlText() : QStringLiteral("0")) + ")";
    const QString update =
        found ? "Update Accountcodes set " + ("Parentid = " + sqlText(figures.parentId) + ",") +
                    ("ProgramID = " + sqlText(figures.programId) + ",") +
                    ("BuildingID = " + sqlText(figures.buildingId) + ",") +
                    "CurrentBudget = " + figures.budget.toSqlText() + " Where Accountcode = " + sqlText(account.code)
              : "Update Accountcodes set " + QStringLiteral("HistoricalCode = 'H',") + "Parentid = '0'," +
                    "ProgramID = '0'," + "BuildingID = '0'" + " Where Accountcode = " + sqlText(account.code);
    const FailText failText = countThen(QStringLiteral(" records to be update"));
    retired += found ? 0 : 1;
    return executeCounted(history, accountSub, Expect::ExactlyOne, failText) &&
           executeCounted(update, accountSub, Expect::ExactlyOne, failText);
}

bool clsInitNewYear::UpdateFolders()
{
    return atomically(folderSub, [this] {
        QString tableId;
        Recordset years;
        if (!query(QStringLiteral("Select * from Yearlist order by YearNumber "), folderSub, years))
            return false;
        for (; !years.atEnd(); years.MoveNext())
            tableId = years.text("TableId").trimmed();
        years.Close();
        if (tableId.isEmpty()) {
            report(999, folderSub, QStringLiteral("No year found in Yearlist."));
            return false;
        }
        return run(QStringLiteral("Delete from BudgetSummaryTree "), folderSub) &&
               run("Insert into BudgetSummaryTree select * from " + tableId + "_Summarytree", folderSub) &&
               recordSummary(folderSub, QStringLiteral("BudgetSummaryTree"),
                             QStringLiteral("Replaced by the tree of fund year table %1").arg(tableId));
    });
}

bool clsInitNewYear::UpdateYearTable()
{
    bool plain = false;
    const qint64 proposed = proposedYear_.trimmed().toLongLong(&plain);
    if (!plain) {
        report(999, yearSub, QStringLiteral("The proposed year \"%1\" is not a number.").arg(proposedYear_));
        return false;
    }
    const QString next = QString::number(proposed + 1);
    return atomically(yearSub, [&] {
        if (!run(QStringLiteral("Update BudgetYears set Status = 'H' where Status = 'C'"), yearSub) ||
            !run("Update BudgetYears set YearName = ' Fiscal Year " + proposedYear_.trimmed() + "'" +
                     ", Status = 'C' where Status = 'P'",
                 yearSub) ||
            !run("Insert into BudgetYears values('" + next + "'" + ", 'Proposed Year " + next + "','P')", yearSub))
            return false;
        QString oldest;
        if (!retrieveFirst(QStringLiteral("select * from BudgetYears order by YearId"), yearSub,
                           QStringLiteral("No budget year found."),
                           [&](const Recordset &row) { oldest = row.text("YearID"); }))
            return false;
        return run("Delete from BudgetYears where YearID = " + sqlText(oldest), yearSub) &&
               recordSummary(yearSub, QStringLiteral("BudgetYears"),
                             QStringLiteral("Fiscal Year %1 current, Proposed Year %2 added, year %3 removed")
                                 .arg(proposedYear_.trimmed(), next, oldest.trimmed()));
    });
}

bool clsInitNewYear::UpdateProposal()
{
    return atomically(proposalSub, [this] {
        return run(QStringLiteral("update Proposal set Name = '', Status = '', Active = 'N' "), proposalSub) &&
               run(QStringLiteral("update Proposal set Name = 'Default Proposal', Status = 'O', Active = 'Y' where "
                                  "ID = '1'"),
                   proposalSub) &&
               run(QStringLiteral("Update ProposalBudget set ProposedBudget = 0,CatAProposal = 0, CatPProposal = 0, "
                                  "CatCProposal = 0 where ProposalID = '1'"),
                   proposalSub) &&
               run(QStringLiteral("delete from ProposalBudget "), proposalSub) &&
               run(QStringLiteral("INSERT INTO ProposalBudget SELECT ID, '1',0,0,0,0 FROM Accountcodes "),
                   proposalSub) &&
               recordSummary(proposalSub, QStringLiteral("Proposal"),
                             QStringLiteral("Proposal 1 \"Default Proposal\" open and active with zero amounts for "
                                            "every account; the other proposals freed"));
    });
}

bool runNewBudgetYear(clsInitNewYear &store, const std::function<void(const QString &)> &status)
{
    using Step = bool (clsInitNewYear::*)();
    static const std::pair<const char *, Step> steps[] = {
        {"Updating Budget Summary Files ...", &clsInitNewYear::InitSummaryBudgetFiles},
        {"Updating Folders ...", &clsInitNewYear::UpdateFolders},
        {"Updating Budget Year Files ...", &clsInitNewYear::UpdateYearTable},
        {"Updating Proposal Files ...", &clsInitNewYear::UpdateProposal},
    };
    if (!store.BeginTransaction())
        return false;
    for (const auto &[text, step] : steps) {
        if (status)
            status(QString::fromLatin1(text));
        if (!(store.*step)()) {
            // The step's report is what the user needs, whatever the rollback says.
            const clsErrObject failure = store.Error();
            store.AbortTransaction();
            store.Error() = failure;
            return false;
        }
    }
    return store.Endtransaction();
}
