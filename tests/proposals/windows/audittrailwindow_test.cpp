#include "../storetest.h"

#include "guiapplication.h"
#include "recordingmessages.h"
#include "workeraudittrail.h"

#include <QDateEdit>
#include <QFile>
#include <QLineEdit>
#include <QMdiArea>
#include <QTemporaryDir>

namespace {

class AuditTrailWindowTest : public StoreTest {
protected:
    void SetUp() override
    {
        guiApplication();
        StoreTest::SetUp();
    }
    void prepare() override
    {
        entry("2026-03-01T23:59:59.999Z", "CLERK", "Proposed Budget", "A2100", "CatPProposal", "20", "75");
        entry("2026-03-02T00:00:00.000Z", "BUSINESS", "Line Items", "A2100.1", "LineItemText", "Paper", "Chalk");
        entry("2026-03-03T08:00:00.000Z", "CLERK", "Proposed Budget", "B2100", "ProposedBudget", "", "0");
        entry("2026-02-28T12:00:00.000Z", "CLERK", "Fund Balances", "", "CurrentBalance", "1", "-1234.5");
        area.resize(1200, 500);
        worker = std::make_unique<workerAuditTrail>(db());
        worker->DoMDIChild(area);
    }
    void TearDown() override
    {
        worker.reset();
        StoreTest::TearDown();
    }
    void entry(const char *when, const char *user, const char *task, const char *account, const char *column,
               const char *old, const char *now)
    {
        exec(QString("Insert into AuditTrail (ChangedAt, UserID, Workstation, Task, TableName, AccountCode, "
                     "ColumnName, OldValue, NewValue) values ('%1','%2','WS-7','%3','T','%4','%5','%6','%7')")
                 .arg(when, user, task, account, column, old, now));
    }
    // When, user and new value of each row shown.
    std::string shown() const
    {
        classGrid &grid = *worker->child()->Grid(1);
        QStringList out;
        for (int row = 1; row <= grid.CountRows(); ++row)
            out << grid.GetItemValue(row, "ChangedAt").mid(5, 11) + ' ' + grid.GetItemValue(row, "UserID") + ' ' +
                       grid.GetItemValue(row, "NewValue");
        return out.join('|').toStdString();
    }
    template <typename Widget> Widget &control(const char *name) const
    {
        return *worker->child()->findChild<Widget *>(name);
    }
    void pick(const QString &list, const QString &key)
    {
        classDropDown &lists = worker->child()->DropDown();
        lists.setListIndex(list, lists.KeyToIndex(list, key));
        worker->mwfrmChild_Command(list);
    }

    ScopedMessages messages;
    QMdiArea area;
    std::unique_ptr<workerAuditTrail> worker;
};

TEST_P(AuditTrailWindowTest, ListsNewestFirstAndNarrowsByAccountUserTaskAndDays)
{
    EXPECT_EQ(shown(), "03-03 08:00 CLERK 0|03-02 00:00 BUSINESS Chalk|03-01 23:59 CLERK 75|02-28 12:00 CLERK -1234.5");
    EXPECT_EQ(worker->child()->Statusbar().PanelText("Status"), "4 entries");
    const classGrid &grid = *worker->child()->Grid(1);
    EXPECT_EQ(grid.GetItemValue(1, "ChangedAt"), "2026-03-03 08:00:00");
    EXPECT_EQ(grid.GetItemValue(3, "OldValue"), "20");
    EXPECT_EQ(grid.GetItemValue(3, "Workstation"), "WS-7");

    pick("cboUser", "CLERK");
    pick("cboTask", "Proposed Budget");
    EXPECT_EQ(shown(), "03-03 08:00 CLERK 0|03-01 23:59 CLERK 75");
    control<QLineEdit>("txtAccountCode").setText("A21");
    worker->mwfrmChild_Command("Find");
    EXPECT_EQ(shown(), "03-01 23:59 CLERK 75");

    pick("cboUser", "");
    pick("cboTask", "");
    control<QLineEdit>("txtAccountCode").clear();
    control<QDateEdit>("dtpFrom").setDate(QDate(2026, 3, 1));
    control<QDateEdit>("dtpTo").setDate(QDate(2026, 3, 2));
    worker->mwfrmChild_Command("Find");
    EXPECT_EQ(shown(), "03-02 00:00 BUSINESS Chalk|03-01 23:59 CLERK 75") << "both days are whole";

    control<QDateEdit>("dtpFrom").setDate(QDate(2026, 3, 3));
    worker->mwfrmChild_Command("Find");
    ASSERT_EQ(messages->shown().size(), 1u);
    EXPECT_EQ(messages->shown()[0].error.text, "The day \"To\" (2026-03-02) is before the day \"From\" (2026-03-03).");
    EXPECT_EQ(shown(), "03-02 00:00 BUSINESS Chalk|03-01 23:59 CLERK 75") << "the list stays as it was";

    // The list leaves the program as shown.
    QTemporaryDir folder;
    messages->answerText(folder.filePath("trail.csv"));
    worker->mwfrmChild_Command("Export");
    QFile written(folder.filePath("trail.csv"));
    ASSERT_TRUE(written.open(QIODevice::ReadOnly));
    const QStringList lines = QString::fromUtf8(written.readAll()).split("\r\n", Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 3) << lines.join('\n').toStdString();
    EXPECT_TRUE(lines[0].startsWith("\"When (UTC)\"")) << lines[0].toStdString();
    EXPECT_TRUE(lines[1].contains("Chalk")) << lines[1].toStdString();
}

INSTANTIATE_TEST_SUITE_P(Backends, AuditTrailWindowTest,
                         ::testing::Values(::testdb::Backend::SQLite, ::testdb::Backend::PostgreSQL),
                         ::testdb::paramName);

} // namespace
