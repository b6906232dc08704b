#include "dates.h"
#include "formreportformat.h"
#include "guiapplication.h"
#include "recordingmessages.h"
#include "refusedwrites.h"
#include "testdatabases.h"
#include "workerreportgenerator.h"

#include <QComboBox>
#include <QLineEdit>
#include <QMdiArea>

#include <functional>
#include <memory>
#include <ostream>

inline void PrintTo(const QString &text, std::ostream *out)
{
    *out << '"' << text.toStdString() << '"';
}

namespace {

bool twoFunds(std::vector<FundEntry> &funds, QString &)
{
    funds = {{"A", "General Fund"}, {"B", "Capital Fund"}};
    return true;
}

QStringList column(classGrid &grid, const QString &key)
{
    QStringList values;
    for (int row = 1; row <= grid.CountRows(); ++row)
        values << grid.GetItemValue(row, key);
    return values;
}

// Marks the available column with `key` and moves it across.
void choose(FormReportFormat &form, const QString &key)
{
    const int row = column(form.gridAvailable(), "Heading").indexOf(key) + 1;
    ASSERT_GT(row, 0) << key.toStdString() << " is not available";
    form.gridAvailable().SelectRow(row);
    form.MoveRowRight();
}

void unchoose(FormReportFormat &form, const QString &key)
{
    const int row = column(form.gridSelected(), "Heading").indexOf(key) + 1;
    ASSERT_GT(row, 0) << key.toStdString() << " is not selected";
    form.gridSelected().SelectRow(row);
    form.MoveRowLeft();
}

// The last message box, as "title|text".
QString lastMessage(const RecordingMessages &messages)
{
    if (messages.shown().empty())
        return {};
    const auto &last = messages.shown().back();
    return last.message.title + u'|' + last.message.text;
}

// The dialog alone: the headings move within their limits; nothing is written.
class FormatDialogTest : public ::testing::Test {
protected:
    GuiApplicationGuard app;
    ScopedMessages messages;
    FormReportFormat form{nullptr, twoFunds};
};

TEST_F(FormatDialogTest, SevenHeadingsAtMostAndTheDefaultsStay)
{
    ASSERT_TRUE(form.LoadForm());
    EXPECT_EQ(column(form.gridSelected(), "Description"), (QStringList{"Account Code", "Account Name"}));
    EXPECT_EQ(form.gridAvailable().CountRows(), 11);
    EXPECT_EQ(form.fundList().currentText(), "A - General Fund");
    EXPECT_EQ(form.ledgerList().currentText(), "E - Expenditure");

    for (const char *key : {"CurBudget", "CurExpense", "ProposedBudget", "PriorBudget", "Prior2Expense"})
        choose(form, key);
    ASSERT_EQ(form.gridSelected().CountRows(), 7);
    EXPECT_TRUE(messages->shown().empty());
    choose(form, "Increment");
    EXPECT_EQ(lastMessage(messages.get()), "Report Format|You cannot selected more than 7 headings! ");
    EXPECT_EQ(form.gridSelected().CountRows(), 7) << "the eighth heading is refused";
    EXPECT_EQ(form.gridAvailable().CountRows(), 6);

    messages->clear();
    form.gridSelected().SelectRow(2);
    form.MoveRowLeft();
    EXPECT_EQ(lastMessage(messages.get()), "Report Format|You cannot remove the default heading! ");
    EXPECT_EQ(column(form.gridSelected(), "Description").mid(0, 2), (QStringList{"Account Code", "Account Name"}));

    // Back on the left, a heading takes its place in the offered order again.
    unchoose(form, "CurExpense");
    EXPECT_EQ(column(form.gridAvailable(), "Heading").mid(0, 3),
              (QStringList{"AdjustedBudget", "CurExpense", "ProjectedAmount"}));
    EXPECT_EQ(form.chosenKeys(), (QStringList{"CurBudget", "ProposedBudget", "PriorBudget", "Prior2Expense"}));

    // The ledger changes the texts of both grids.
    form.ledgerList().setCurrentIndex(1);
    EXPECT_EQ(column(form.gridSelected(), "Description").last(), "Revenue");
    EXPECT_EQ(column(form.gridAvailable(), "Description").mid(1, 2), (QStringList{"Revenue", "Projected Revenue"}));
}

// The generator window over a budget database, its format dialog answered by the test.
class ReportGeneratorWindowTest : public testdb::DatabaseTest {
protected:
    void SetUp() override
    {
        guiApplication();
        DatabaseTest::SetUp();
        if (IsSkipped() || HasFatalFailure())
            return;
        area_ = std::make_unique<QMdiArea>();
        area_->resize(1000, 600);
    }
    void TearDown() override
    {
        worker_.reset();
        area_.reset();
        DatabaseTest::TearDown();
    }

    void open()
    {
        ReportGeneratorContext context;
        context.connection = db();
        context.listFunds = twoFunds;
        context.printFormat = [this](std::int32_t id) { printed << id; };
        context.lockToolbar = lockToolbar;
        context.runFormat = [this](FormReportFormat &form) {
            formTitles << form.windowTitle();
            if (!form.LoadForm() || !fill)
                return int(FormReportFormat::Cancelled);
            formTitles.last() = form.windowTitle();
            fill(form);
            form.SaveFormat();
            return form.CloseAction();
        };
        worker_ = std::make_unique<workerReportGenerator>(std::move(context));
        worker_->DoMDIChild(*area_);
    }

    std::int32_t addFormat(const QString &name, const QString &date, const QStringList &headings)
    {
        exec(QString("Insert into Report (Name, Description, Ledger, FundID, Date) Values ('%1', 'About %1', 'E', "
                     "'A', '%2')")
                 .arg(name, date));
        const std::int32_t id = scalar("select ID from Report where Name = '" + name + "'").toInt();
        for (qsizetype i = 0; i < headings.size(); ++i)
            exec(QString("Insert into RptHeading Values (%1, '%2', %3)").arg(id).arg(headings[i]).arg(i + 1));
        return id;
    }

    mdiChild &child() { return *worker_->child(); }
    classGrid &grid() { return *child().Grid(1); }
    void command(const QString &key) { worker_->mwfrmChild_Command(key); }
    void selectFormat(const QString &name) { grid().SelectRow(column(grid(), "Name").indexOf(name) + 1); }
    QString headingsOf(std::int32_t id)
    {
        return rows(
            QString("select ReportHeading, SortOrder from RptHeading where ReportID = %1 order by SortOrder").arg(id));
    }

    ScopedMessages messages;
    std::function<void(classToolbar &)> lockToolbar;
    std::function<void(FormReportFormat &)> fill;
    QStringList formTitles;
    QList<std::int32_t> printed;

private:
    std::unique_ptr<QMdiArea> area_;
    std::unique_ptr<workerReportGenerator> worker_;
};

TEST_P(ReportGeneratorWindowTest, ListsTheFormatsWithTheirDatesAndPrintsTheOneSelected)
{
    addFormat("Capital Outlay", "20251231", {});
    const std::int32_t first = addFormat("Board Summary", "20240309", {"CurBudget"});
    lockToolbar = [](classToolbar &toolbar) {
        for (int i = 1; i <= toolbar.Count(); ++i)
            toolbar.Item(i).setEnabled(toolbar.Item(i).PrivKey() != "15340");
    };
    open();

    EXPECT_EQ(grid().ColumnName("Name"), "Report  Name");
    EXPECT_EQ(column(grid(), "Name"), (QStringList{"Board Summary", "Capital Outlay"})) << "listed by name";
    EXPECT_EQ(column(grid(), "Date"), (QStringList{"03-09-24", "12-31-25"}));

    grid().ClearSelectedRows();
    grid().view()->setCurrentIndex({});
    command("_Print");
    EXPECT_EQ(lastMessage(messages.get()), "Report Format|Please select the report to print first.");
    EXPECT_TRUE(printed.isEmpty());
    selectFormat("Board Summary");
    command("_Print");
    EXPECT_EQ(printed, QList<std::int32_t>{first});

    // Without the edit privilege a double click opens nothing.
    command("_gridLeftDblClick");
    EXPECT_TRUE(formTitles.isEmpty());
}

TEST_P(ReportGeneratorWindowTest, ANewFormatIsWrittenWithItsColumnsUnderANameNoOtherHas)
{
    addFormat("Board Summary", "20240309", {});
    open();
    fill = [](FormReportFormat &form) {
        form.nameField().setText("  Revenue Plan ");
        form.descriptionField().setText("For the board");
        form.ledgerList().setCurrentIndex(1);
        form.fundList().setCurrentIndex(1);
        choose(form, "ProposedBudget");
        choose(form, "CurExpense");
    };
    command("Report_Create");
    ASSERT_EQ(formTitles, QStringList{"New Report Format"});
    const QString today = FormatYYYYMMDD(QDate::currentDate());
    const std::int32_t id = scalar("select ID from Report where Name = 'Revenue Plan'").toInt();
    EXPECT_EQ(rows("select Name, Description, Ledger, FundID, Date from Report where ID = " + QString::number(id)),
              "Revenue Plan,For the board,R,B," + today);
    EXPECT_EQ(headingsOf(id), "ProposedBudget,1|CurExpense,2");
    EXPECT_EQ(column(grid(), "Name"), (QStringList{"Board Summary", "Revenue Plan"}));
    EXPECT_EQ(grid().GetItemValue(grid().CurrentRow(), "Name"), "Revenue Plan") << "the new format is current";
    EXPECT_EQ(column(grid(), "Date").last(), FormatMMDDYY(QDate::currentDate()));
    const QString trail = "select Task, TableName, ColumnName, NewValue from AuditTrail order by ID";
    EXPECT_TRUE(rows(trail).contains("Report Formats,Report,Name,Revenue Plan"));
    EXPECT_TRUE(rows(trail).contains("Report Formats,RptHeading,ReportHeading,CurExpense"));
    EXPECT_EQ(rows("select Task from AuditTrail where Task <> 'Report Formats'"), "");
    const QString audited = rows(trail);

    const QString formats = rows("select ID, Name from Report order by ID");
    for (const auto &[name, refusal] : {std::pair{"Board Summary", "Report name is already exist in the database!"},
                                        std::pair{"   ", "Please enter Report Name!"}}) {
        messages->clear();
        fill = [name](FormReportFormat &form) {
            form.nameField().setText(name);
            choose(form, "CurBudget");
        };
        command("Report_Create");
        EXPECT_EQ(lastMessage(messages.get()), QString("Report Format|") + refusal);
        EXPECT_EQ(rows("select ID, Name from Report order by ID"), formats);
        EXPECT_EQ(rows("select ReportHeading from RptHeading order by ReportHeading"), "CurExpense|ProposedBudget");
        EXPECT_EQ(rows(trail), audited) << "a refused save records nothing";
    }
}

TEST_P(ReportGeneratorWindowTest, EditingReplacesEveryColumnOfTheFormat)
{
    addFormat("Other", "20240101", {"Increment"});
    const std::int32_t id = addFormat("Board Summary", "20240309", {"CurBudget", "PriorBudget", "IncPercent"});
    open();
    QStringList loaded;
    fill = [&loaded](FormReportFormat &form) {
        loaded << form.nameField().text() << form.descriptionField().text() << form.fundList().currentText();
        loaded << column(form.gridSelected(), "Description");
        unchoose(form, "PriorBudget");
        choose(form, "Prior2Expense");
        form.descriptionField().setText("Revised");
    };
    selectFormat("Board Summary");
    command("_gridLeftDblClick");
    ASSERT_EQ(formTitles, QStringList{"Edit Report Format"});
    EXPECT_EQ(loaded, (QStringList{"Board Summary", "About Board Summary", "A - General Fund", "Account Code",
                                   "Account Name", "Budget", "Budget", "Percent Increase /Decrease"}));
    EXPECT_EQ(headingsOf(id), "CurBudget,1|IncPercent,2|Prior2Expense,3");
    EXPECT_EQ(rows("select Name, Description, Date from Report where ID = " + QString::number(id)),
              "Board Summary,Revised," + FormatYYYYMMDD(QDate::currentDate()));
    EXPECT_EQ(rows("select ReportHeading from RptHeading where ReportID <> " + QString::number(id)), "Increment");

    // Another format's name is refused on edit too.
    fill = [](FormReportFormat &form) { form.nameField().setText("Other"); };
    command("Report_Edit");
    EXPECT_EQ(lastMessage(messages.get()), "Report Format|Report name is already exist in the database!");
    EXPECT_EQ(scalar("select Name from Report where ID = " + QString::number(id)), "Board Summary");

    // A format that went away meanwhile cannot be opened.
    exec("Delete from Report where ID = " + QString::number(id));
    messages->clear();
    command("Report_Edit");
    EXPECT_EQ(lastMessage(messages.get()), "Report Format|Problem opening Report Format:Record not Found.");
}

TEST_P(ReportGeneratorWindowTest, DeletingAsksFirstAndTakesTheColumnsAlong)
{
    const std::int32_t keep = addFormat("Keep", "20240101", {"CurBudget"});
    const std::int32_t drop = addFormat("Drop", "20240102", {"CurBudget", "Increment"});
    open();
    selectFormat("Drop");
    messages->answer(MsgAnswer::No);
    command("Report_Delete");
    EXPECT_EQ(lastMessage(messages.get()), "Report Format|Are you sure you want to delete this report?");
    EXPECT_EQ(messages->shown().back().message.buttons, MsgButtons::YesNo);
    EXPECT_EQ(headingsOf(drop), "CurBudget,1|Increment,2");

    messages->answer(MsgAnswer::Yes);
    command("Report_Delete");
    EXPECT_EQ(rows("select ID from Report"), QString::number(keep));
    EXPECT_EQ(headingsOf(drop), "");
    EXPECT_EQ(headingsOf(keep), "CurBudget,1");
    EXPECT_EQ(column(grid(), "Name"), QStringList{"Keep"});
    EXPECT_TRUE(rows("select Task, TableName, RowKey, ColumnName, OldValue, NewValue from AuditTrail")
                    .contains("Report Formats,Report,ID=" + QString::number(drop) + ",Name,Drop,"));
}

TEST_P(ReportGeneratorWindowTest, AColumnThatCannotBeWrittenLeavesNothingWritten)
{
    const std::int32_t id = addFormat("Board Summary", "20240309", {"CurBudget"});
    refuseWrites(*db(), "RptHeading", "INSERT", "NEW.ReportHeading = 'IncPercent'");
    open();
    fill = [](FormReportFormat &form) {
        form.nameField().setText("Taxes");
        choose(form, "CurBudget");
        choose(form, "IncPercent");
    };
    command("Report_Create");
    EXPECT_TRUE(lastMessage(messages.get()).startsWith("Report Format| error: "))
        << lastMessage(messages.get()).toStdString();
    EXPECT_TRUE(lastMessage(messages.get()).contains("write refused by the test"));
    EXPECT_EQ(rows("select Name from Report"), "Board Summary") << "the new format's name went back with its columns";
    EXPECT_EQ(rows("select Task from AuditTrail"), "") << "and so did its audit entries";

    fill = [](FormReportFormat &form) {
        form.nameField().setText("Renamed");
        choose(form, "IncPercent");
    };
    selectFormat("Board Summary");
    command("Report_Edit");
    EXPECT_EQ(rows("select Name, Date from Report"), "Board Summary,20240309");
    EXPECT_EQ(headingsOf(id), "CurBudget,1") << "the old columns stay when the new ones fail";
    EXPECT_EQ(column(grid(), "Name"), QStringList{"Board Summary"});
}

KORA_ALL_BACKENDS(ReportGeneratorWindowTest);

} // namespace
