#pragma once

#include "storetest.h"

#include "initnewyear.h"
#include "objectsummaryledgers.h"
#include "sampleinstallation.h"
#include "schema.h"

#include <QTemporaryDir>

// A budget database closing year 2025 (proposed 2026) beside the small
// sample Kora-Fund installation, whose latest year holds known figures for
// one expenditure and one revenue account. One account code of the budget,
// "A9999.999", is not in Kora-Fund.
class NewYearTest : public StoreTest {
protected:
    static void SetUpTestSuite()
    {
        folder_ = new QTemporaryDir();
        QString message;
        ASSERT_EQ(createSampleInstallation(folder_->path(), smallSampleDistrict(), {}, message), 0)
            << message.toStdString();

        classObjectELSummary expenditure;
        ASSERT_EQ(expenditure.Init(root(), dataFolder()), 0);
        expenditure.AccountCode = QStringLiteral("A2110.450");
        ASSERT_EQ(expenditure.Retrieve(), 0);
        expenditure.ParentID = QStringLiteral("12");
        expenditure.ProgramID = QStringLiteral("5");
        expenditure.BuildingID = QStringLiteral("3");
        expenditure.OpeningEntry = {};
        expenditure.OpeningEntry[6] = QStringLiteral("120,000.00");
        expenditure.BudgetAdj = {};
        expenditure.BudgetAdj[8] = QStringLiteral("1,500.25");
        expenditure.BudgetAdj[1] = QStringLiteral("-300.00");
        expenditure.PaymentExp = {};
        expenditure.PaymentExp[7] = QStringLiteral("1,000.00");
        expenditure.PaymentExp[11] = QStringLiteral("234.56");
        ASSERT_EQ(expenditure.Update(), 0) << expenditure.ErrorMsg().toStdString();

        classObjectRLSummary revenue;
        ASSERT_EQ(revenue.Init(root(), dataFolder()), 0);
        revenue.AccountCode = QStringLiteral("A1001");
        ASSERT_EQ(revenue.Retrieve(), 0);
        revenue.OpeningEntry = {};
        revenue.OpeningEntry[6] = QStringLiteral("9,000,000.00");
        revenue.BudgetAdj = {};
        revenue.BudgetAdj[0] = QStringLiteral("10.00");
        revenue.RevenueRec = {};
        revenue.RevenueRec[9] = QStringLiteral("4,000,000.00");
        revenue.RevenueRec[2] = QStringLiteral("12.34");
        ASSERT_EQ(revenue.Update(), 0) << revenue.ErrorMsg().toStdString();
    }
    static void TearDownTestSuite()
    {
        delete folder_;
        folder_ = nullptr;
    }
    static QString root() { return folder_->path(); }
    static QString dataFolder() { return folder_->path() + QStringLiteral("\\FUND"); }

    void prepare() override
    {
        for (const auto &[code, ledger] : codes())
            StoreTest::account(code, code.left(1), ledger);
        exec("Update AccountCodes set ParentID = '77', ProgramID = '78', BuildingID = '79'");
        exec("Insert into Proposal values('1','Board draft','C','N')");
        exec("Insert into Proposal values('2','Second look','O','Y')");
        exec("Insert into Proposal values('3','','','N')");
        exec("INSERT INTO ProposalBudget SELECT ID, '1',5,1,2,2 FROM AccountCodes");
        exec("INSERT INTO ProposalBudget SELECT ID, '2',7,0,0,0 FROM AccountCodes");
        exec("Insert into BudgetYears values('2024',' Fiscal Year 2024','H')");
        exec("Insert into BudgetYears values('2025',' Fiscal Year 2025','C')");
        exec("Insert into BudgetYears values('2026','Proposed Year 2026','P')");
        exec("Insert into Yearlist values('2024','FY2024')");
        exec("Insert into Yearlist values('2025','FY2025')");
        for (const char *year : {"FY2024", "FY2025"}) {
            DbError error;
            ASSERT_TRUE(BudgetSchema::createYearTreeCopy(*db(), year, &error)) << error.text.toStdString();
        }
        exec("Insert into FY2024_Summarytree values('1','T','A','E','0','1','Old folder','')");
        exec("Insert into FY2025_Summarytree values('1','T','A','E','0','1','Instruction','')");
        exec("Insert into FY2025_Summarytree values('2','T','A','E','1','2','Teaching','Y')");
        exec("Insert into BudgetSummaryTree values('9','T','A','E','0','9','Live folder','')");
        const QString line = id("A2110.450");
        exec("Insert into LnItem values(" + line + ",1,'Paper',40)");
        exec("Insert into LnItem values(" + line + ",2,'Chalk',60)");
        exec("Insert into Budgets values(" + line + ",'2024',90,80)");

        store.setAdoConnection(db());
        store.setAuditTask(AuditTask::NewBudgetYear);
        store.setCurrentBudgetYear("2025");
        store.setProposedYear("2026");
        store.setClearLineItem(false);
        store.setBudgetFrom("O");
        store.setLedgerSummaries({root(), dataFolder()});
    }

    static std::vector<std::pair<QString, QString>> codes()
    {
        return {{"A1001", "R"},     {"A3101", "R"},     {"A1010.150", "E"}, {"A1240.150", "E"},
                {"A2110.120", "E"}, {"A2110.450", "E"}, {"A5510.200", "E"}, {"C1440", "R"},
                {"C2860.400", "E"}, {"F4289", "R"},     {"F2250.150", "E"}, {"A9999.999", "E"}};
    }
    QString id(const QString &code) { return scalar("select ID from AccountCodes where AccountCode = '" + code + "'"); }
    QString accountRow(const QString &code)
    {
        return rows("select HistoricalCode, ParentID, ProgramID, BuildingID, CurrentBudget from AccountCodes "
                    "where AccountCode = '" +
                    code + "'");
    }
    // The rows a "from ... where ..." tail selects.
    qint64 count(const QString &tail)
    {
        Recordset rs;
        DbError error;
        EXPECT_TRUE(db()->open("select count(*) as n " + tail, rs, &error)) << error.text.toStdString();
        return rs.atEnd() ? -1 : rs.number("n");
    }
    QString history(const QString &code)
    {
        return rows("select YearID, CurrentBudget, ActualAmount from Budgets where AcctId = " + id(code) +
                    " order by YearID");
    }

    // Every row of every table, the per-year trees included, read through
    // `connection`, in a fixed order.
    static QString dump(DbConnection &connection)
    {
        static const std::vector<std::pair<const char *, const char *>> tables{
            {"AccountCodes",
             "ID, Ledger, FundID, AccountCode, AccountName, ParentID, ProgramID, BuildingID, StateCode, "
             "HistoricalCode, CatAFlag, CatPFlag, CatCFlag, ProjectedAmount, CurrentBudget, "
             "CatACurBudget, CatPCurBudget, CatCCurBudget"},
            {"BudgetSummaryTree", treeColumns},
            {"FY2024_Summarytree", treeColumns},
            {"FY2025_Summarytree", treeColumns},
            {"Proposal", "ID, Name, Status, Active"},
            {"ProposalBudget", "AcctId, ProposalID, ProposedBudget, CatAProposal, CatPProposal, CatCProposal"},
            {"BudgetYears", "YearID, YearName, Status"},
            {"Yearlist", "YearNumber, TableId"},
            {"Parms", "CalenderYear"},
            {"LnItem", "AcctId, LineItemNumber, LineItemText, LineItemAmount"},
            {"Bals", "Fund, CurrentBalance, PreviousBalance"},
            {"TaxRate", "ID, TownShip, CurrentEqualRate, CurrentAssessment, CurrentTaxAssess, PrevEqualRate, "
                        "PrevAssessment, PrevTaxAssess"},
            {"Report", "ID, Name, Description, Ledger, FundID, Date"},
            {"RptHeading", "ReportID, ReportHeading, SortOrder"},
            {"Budgets", "AcctId, YearID, CurrentBudget, ActualAmount"},
            {"AuditTrail", "ID, ChangedAt, Task, TableName, NewValue"},
        };
        QStringList out;
        for (const auto &[table, columnList] : tables) {
            const QStringList columns = QString::fromLatin1(columnList).split(QStringLiteral(", "));
            Recordset rs;
            DbError error;
            const QString sql = QStringLiteral("select %1 from %2 order by %1").arg(columnList, table);
            if (!connection.open(sql, rs, &error)) {
                ADD_FAILURE() << sql.toStdString() << ": " << error.text.toStdString();
                continue;
            }
            for (; !rs.atEnd(); rs.MoveNext()) {
                QStringList cells;
                for (const QString &column : columns) {
                    const QString text = rs.text(column);
                    const auto number = Currency::parse(text);
                    cells << (number ? number->toSqlText() : text);
                }
                out << QString::fromLatin1(table) + ": " + cells.join(u'|');
            }
        }
        return out.join(u'\n');
    }
    QString dump() { return dump(*db()); }

    // Runs the whole roll-forward; the step texts heard go to `steps`.
    bool runAll()
    {
        return runNewBudgetYear(store, [this](const QString &text) { steps << text; });
    }

    clsInitNewYear store;
    QStringList steps;

private:
    static constexpr auto treeColumns = "ID, NodeType, FundID, LedgerID, ParentID, SortOrder, Name, ForceNewPage";
    static inline QTemporaryDir *folder_ = nullptr;
};

#define KORA_NEW_YEAR_BACKENDS(Suite)                                                                                  \
    INSTANTIATE_TEST_SUITE_P(Backends, Suite,                                                                          \
                             ::testing::Values(::testdb::Backend::SQLite, ::testdb::Backend::PostgreSQL),              \
                             ::testdb::paramName)
