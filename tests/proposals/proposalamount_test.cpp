#include "proposalamount.h"
#include "proposedbudget.h"
#include "storetest.h"

#include <map>
#include <string>

namespace {

// The view ProposalAmount and proposalAmount() must give every account the
// same figures: the reports read the one, the program's own totals the other.
using Figures = std::map<std::string, std::string>;

class ProposalAmountTest : public StoreTest {
protected:
    void prepare() override {}

    // "total/administrative/program/capital" by "account/proposal", as a report reads the view.
    Figures viewFigures()
    {
        Figures figures;
        Recordset rows;
        DbError error;
        EXPECT_TRUE(db()->open("select * from ProposalAmount", rows, &error)) << error.text.toStdString();
        for (; !rows.atEnd(); rows.MoveNext())
            figures[key(rows.number("AcctId"), rows.text("ProposalID"))] = figuresText(
                rows.amount("Amount"), rows.amount("CatAAmount"), rows.amount("CatPAmount"), rows.amount("CatCAmount"));
        return figures;
    }

    static std::string key(qint64 account, const QString &proposal)
    {
        return QString("%1/%2").arg(account).arg(proposal).toStdString();
    }
    static std::string figuresText(Currency total, Currency a, Currency p, Currency c)
    {
        return QStringList{total.toSqlText(), a.toSqlText(), p.toSqlText(), c.toSqlText()}.join('/').toStdString();
    }
};

TEST_P(ProposalAmountTest, ViewAndFunctionAgreeOnEveryKindOfAccount)
{
    struct Case {
        const char *code, *fund, *ledger, *flags;
        const char *stored;   // ProposedBudget, CatAProposal, CatPProposal, CatCProposal
        const char *expected; // total/administrative/program/capital
    };
    const Case cases[] = {
        // The stored total is stale and the capital figure is not the account's: only A and P count.
        {"A2110.150", "A", "E", "AP", "999,1000.1234,0.0001,77", "1000.1235/1000.1234/0.0001/0"},
        {"A9010.800", "A", "E", "APC", "0,33333333333.3333,33333333333.3333,33333333333.3334",
         "100000000000/33333333333.3333/33333333333.3333/33333333333.3334"},
        {"A1010.400", "A", "E", "", "250.5,1,2,3", "250.5/0/0/0"},
        {"A1020.400", "a", "e", "C", "1,2,3,-4.5", "-4.5/0/0/-4.5"},
        {"A1001", "A", "R", "A", "31500000,5,6,7", "31500000/0/0/0"},
        {"B2110.150", "B", "E", "P", "12.75,1,2,3", "12.75/0/0/0"},
    };
    Figures expected;
    for (const Case &c : cases) {
        const qint64 id = account(c.code, c.fund, c.ledger, c.flags);
        for (const char *proposal : {"1", "3"}) {
            exec(QString("Insert into ProposalBudget values (%1,'%2',%3)").arg(id).arg(proposal, c.stored));
            expected[key(id, proposal)] = c.expected;
        }
    }
    // Flags of blanks, a tab or a line break take no part; a letter after a tab does.
    const qint64 blank = account("A1030.400", "A", "E");
    exec(QString("Update AccountCodes set CatAFlag = '  ', CatPFlag = '\t', CatCFlag = '\n' where ID = %1").arg(blank));
    exec(QString("Insert into ProposalBudget values (%1,'1',8,1,2,3)").arg(blank));
    expected[key(blank, "1")] = "8/0/0/0";
    const qint64 tabbed = account("A1040.400", "A", "E");
    exec(QString("Update AccountCodes set CatPFlag = '\tP' where ID = %1").arg(tabbed));
    exec(QString("Insert into ProposalBudget values (%1,'1',8,1,2,3)").arg(tabbed));
    expected[key(tabbed, "1")] = "2/0/2/0";
    // A row whose account is gone has no amount.
    exec("Insert into ProposalBudget values (99999,'1',5,0,0,0)");

    EXPECT_EQ(viewFigures(), expected);

    // The function, over what the store's list reads for each fund, ledger and proposal.
    Figures computed;
    clsProposedBudget store;
    store.setAdoConnection(db());
    for (const char *fund : {"A", "a", "B"})
        for (const char *ledger : {"E", "e", "R"})
            for (const char *proposal : {"1", "3"}) {
                store.ProposedBudgetItem() = {};
                store.ProposedBudgetItem().FundID = fund;
                store.ProposedBudgetItem().LedgerID = ledger;
                store.ProposedBudgetItem().ProposalID = proposal;
                std::vector<clsProposedBudgetItem> items;
                ASSERT_TRUE(store.GetList(items)) << store.Error().ErrorText().toStdString();
                for (const clsProposedBudgetItem &item : items) {
                    const ProposalAmount amount = proposalAmount(item);
                    computed[key(item.ID, proposal)] =
                        figuresText(amount.total, amount.administrative, amount.program, amount.capital);
                }
            }
    EXPECT_EQ(computed, expected);
}

KORA_ALL_BACKENDS(ProposalAmountTest);

} // namespace
