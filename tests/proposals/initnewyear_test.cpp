#include "newyeartest.h"

#include "refusedwrites.h"

namespace {

class NewYearStoreTest : public NewYearTest {};

TEST_P(NewYearStoreTest, OriginalBudgetTakesTheOpeningEntriesAndMissingAccountsBecomeHistorical)
{
    ASSERT_TRUE(store.InitSummaryBudgetFiles()) << store.Error().ErrorText().toStdString();

    // Folders from the fund year's record; the budget is the opening entries alone.
    EXPECT_EQ(accountRow("A2110.450"), ",12,5,3,120000");
    EXPECT_EQ(history("A2110.450"), "2024,90,80|2025,100,1234.56");
    EXPECT_EQ(accountRow("A1001"), ",,,,9000000");
    EXPECT_EQ(history("A1001"), "2025,100,4000012.34");
    // Gone from Kora-Fund: historical, out of every folder, its budget kept, no actual.
    EXPECT_EQ(accountRow("A9999.999"), "H,0,0,0,100");
    EXPECT_EQ(history("A9999.999"), "2025,100,0");
    EXPECT_EQ(count("from Budgets where YearID = '2025'"), 12);
    EXPECT_EQ(count("from AccountCodes where HistoricalCode = 'H'"), 1);
    EXPECT_EQ(rows("select LineItemNumber, LineItemText, LineItemAmount from LnItem order by LineItemNumber"),
              "1,Paper,40|2,Chalk,60");
}

TEST_P(NewYearStoreTest, AdjustedBudgetAddsEveryMonthsAdjustmentAndLineItemsCanBeCleared)
{
    store.setBudgetFrom("A");
    store.setClearLineItem(true);
    ASSERT_TRUE(store.InitSummaryBudgetFiles()) << store.Error().ErrorText().toStdString();

    EXPECT_EQ(accountRow("A2110.450"), ",12,5,3,121200.25");
    EXPECT_EQ(accountRow("A1001"), ",,,,9000010");
    // The actual is the same whichever budget is taken.
    EXPECT_EQ(history("A2110.450"), "2024,90,80|2025,100,1234.56");
    EXPECT_EQ(count("from LnItem"), 0);
}

TEST_P(NewYearStoreTest, TheRunLeavesOneDefaultProposalTheLatestTreeAndShiftedYears)
{
    ASSERT_TRUE(runAll()) << store.Error().ErrorText().toStdString();

    EXPECT_EQ(steps, QStringList({"Updating Budget Summary Files ...", "Updating Folders ...",
                                  "Updating Budget Year Files ...", "Updating Proposal Files ..."}));
    EXPECT_EQ(rows("select ID, Name, Status, Active from Proposal order by ID"), "1,Default Proposal,O,Y|2,,,N|3,,,N");
    EXPECT_EQ(count("from ProposalBudget"), 12);
    EXPECT_EQ(count("from ProposalBudget p, AccountCodes a where a.ID = p.AcctId and p.ProposalID = '1' and "
                    "p.ProposedBudget = 0 and p.CatAProposal = 0 and p.CatPProposal = 0 and p.CatCProposal = 0"),
              12);
    EXPECT_EQ(rows("select YearID, YearName, Status from BudgetYears order by YearID"),
              "2025, Fiscal Year 2025,H|2026, Fiscal Year 2026,C|2027,Proposed Year 2027,P");
    EXPECT_EQ(rows("select ID, ParentID, Name, ForceNewPage from BudgetSummaryTree order by ID"),
              "1,0,Instruction,|2,1,Teaching,Y");
    // One entry per step, not one per account.
    EXPECT_EQ(
        auditTrail(),
        "New Budget Year,AccountCodes,,,,,12 accounts rolled from budget year 2025 (original budget), 1 made "
        "historical|New Budget Year,BudgetSummaryTree,,,,,Replaced by the tree of fund year table FY2025|"
        "New Budget Year,BudgetYears,,,,,Fiscal Year 2026 current, Proposed Year 2027 added, year 2024 removed|"
        "New Budget Year,Proposal,,,,,Proposal 1 \"Default Proposal\" open and active with zero amounts for every "
        "account; the other proposals freed");
}

TEST_P(NewYearStoreTest, RefusesAnEmptyChartAMissingTreeCopyAnUnreachableKoraFundAndAYearThatIsNoNumber)
{
    const QString before = dump();
    store.setProposedYear("2026-A");
    EXPECT_FALSE(store.UpdateYearTable());
    EXPECT_EQ(store.Error().ErrorSub(), "Update Year Table");
    EXPECT_TRUE(store.Error().ErrorText().contains("2026-A"));

    exec("Insert into Yearlist values('2026','FY2026')");
    EXPECT_FALSE(store.UpdateFolders());
    EXPECT_EQ(store.Error().ErrorSub(), "Update Folders");
    exec("Delete from Yearlist where TableId = 'FY2026'");
    EXPECT_EQ(dump(), before);

    // Kora-Fund out of reach is no reason to retire every account.
    store.setLedgerSummaries({root(), root() + "\\NOWHERE"});
    EXPECT_FALSE(runAll());
    EXPECT_EQ(store.Error().ErrorSub(), "Init Budget Year");
    EXPECT_TRUE(store.Error().ErrorText().contains("NOWHERE")) << store.Error().ErrorText().toStdString();
    EXPECT_EQ(dump(), before);

    exec("Delete from Yearlist");
    EXPECT_FALSE(store.UpdateFolders());
    EXPECT_EQ(store.Error().ErrorSub(), "Update Folders");

    exec("Delete from AccountCodes");
    EXPECT_FALSE(store.InitSummaryBudgetFiles());
    expectError(store.Error(), "Init New Budget Year", "No Account code Found.");
}

// A write refused in each step in turn: the steps after it never run and
// nothing of the steps before it stays.
TEST_P(NewYearStoreTest, AFailureInAnyStepLeavesEveryTableAsItWas)
{
    struct Injection {
        const char *table;
        const char *operation;
        QString condition;
    };
    const QString last = id("A9999.999");
    const std::vector<Injection> injections{
        {"Budgets", "INSERT", "NEW.AcctId = " + last},
        {"BudgetSummaryTree", "INSERT", "NEW.Name = 'Teaching'"},
        {"BudgetYears", "INSERT", "NEW.Status = 'P'"},
        {"ProposalBudget", "INSERT", "NEW.AcctId = " + last},
    };
    const QString before = dump();
    for (std::size_t step = 0; step < injections.size(); ++step) {
        SCOPED_TRACE(injections[step].table);
        const QString trigger = QStringLiteral("refuse_%1_%2").arg(injections[step].table, injections[step].operation);
        refuseWrites(*db(), injections[step].table, injections[step].operation, injections[step].condition);
        steps.clear();

        EXPECT_FALSE(runAll());
        EXPECT_TRUE(store.Error().ErrorText().contains("write refused by the test"))
            << store.Error().ErrorText().toStdString();
        EXPECT_EQ(steps.size(), qsizetype(step + 1));
        EXPECT_FALSE(db()->inTransaction());
        EXPECT_EQ(dump(), before);

        exec(db()->dialect() == SqlDialect::PostgreSQL
                 ? "DROP TRIGGER " + trigger.toLower() + " ON " + injections[step].table
                 : "DROP TRIGGER " + trigger.toLower());
    }
    ASSERT_TRUE(runAll()) << store.Error().ErrorText().toStdString();
    EXPECT_NE(dump(), before);
}

TEST_P(NewYearStoreTest, CancelHalfWayThroughTheAccountsLeavesEveryTableAsItWas)
{
    const QString before = dump();
    std::vector<NewYearProgress> heard;
    store.setProgress([&](const NewYearProgress &progress) {
        heard.push_back(progress);
        return progress.done < 5;
    });
    EXPECT_FALSE(runAll());
    EXPECT_TRUE(store.Cancelled());
    EXPECT_EQ(steps.size(), 1);
    ASSERT_EQ(heard.size(), 6u);
    EXPECT_EQ(heard.front().done, 0);
    EXPECT_EQ(heard.back().total, 12);
    EXPECT_FALSE(heard.back().accountCode.isEmpty());
    EXPECT_EQ(dump(), before);

    store.setProgress({});
    EXPECT_TRUE(runAll());
    EXPECT_FALSE(store.Cancelled());
}

TEST_P(NewYearStoreTest, AServerGoneMidRunLeavesEveryTableAsItWas)
{
    if (GetParam() != testdb::Backend::PostgreSQL)
        GTEST_SKIP() << "only a server connection can be cut";
    const QString before = dump();
    store.setProgress([&](const NewYearProgress &progress) {
        if (progress.done == 5)
            EXPECT_TRUE(database().terminateServerSession());
        return true;
    });
    EXPECT_FALSE(runAll());
    EXPECT_FALSE(store.Error().ErrorText().isEmpty());

    clsAdoConnection fresh;
    fresh.configure(database().config());
    ASSERT_TRUE(fresh.OpenConnection()) << fresh.driverMessage().toStdString();
    EXPECT_EQ(dump(*fresh.dbConnection()), before);
}

KORA_NEW_YEAR_BACKENDS(NewYearStoreTest);

} // namespace
