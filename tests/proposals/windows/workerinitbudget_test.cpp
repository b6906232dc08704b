#include "../newyeartest.h"

#include "newyearprogress.h"
#include "refusedwrites.h"
#include "workerinitbudget.h"

#include "appglobals.h"
#include "classdialog.h"
#include "classstatusbar.h"
#include "guiapplication.h"
#include "recordingmessages.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QProgressDialog>
#include <QPushButton>

namespace {

class InitBudgetWindowTest : public NewYearTest {
protected:
    void SetUp() override
    {
        guiApplication();
        NewYearTest::SetUp();
        gstrBudgetYearID = "2025";
        gstrProposedYearID = "2026";
        worker = std::make_unique<WorkerInitBudget>(db(), LedgerSummaryPlace{root(), dataFolder()});
        worker->setToday(QDate(2026, 6, 30));
        dialog = std::make_unique<classDialog>(*worker);
        dialog->Build();
    }
    void TearDown() override
    {
        dialog.reset();
        worker.reset();
        resetAppGlobals();
        NewYearTest::TearDown();
    }

    void pressOk() { dialog->findChild<QAbstractButton *>("cmdOk")->click(); }
    void choose(const char *list, int index) { dialog->Control(list).setListIndex(index); }
    // The message boxes shown, as "icon|text".
    QStringList shown() const
    {
        QStringList texts;
        for (const RecordingMessages::Shown &box : recorder->shown()) {
            EXPECT_EQ(box.message.title, "Initial New Budget Year");
            texts << QString::number(int(box.message.icon)) + '|' + box.message.text;
        }
        return texts;
    }
    // The copies written beside an SQLite database.
    QStringList copies() const
    {
        if (GetParam() != testdb::Backend::SQLite)
            return {};
        const QFileInfo file(const_cast<InitBudgetWindowTest *>(this)->database().config().sqliteFile);
        return file.dir().entryList({"*-before-2025-rollover-2026-06-30*"});
    }

    static inline const QString question = "Please close your Kora-Fund Application before Initial New Budget Year! ";
    static inline const QString unchanged =
        "The budget database is exactly as it was before: nothing of the new year was written.";

    ScopedMessages recorder;
    std::unique_ptr<WorkerInitBudget> worker;
    std::unique_ptr<classDialog> dialog;
};

// A message box as shown() lists it.
QString box(MsgIcon icon, const QString &text)
{
    return QString::number(int(icon)) + '|' + text;
}

TEST_P(InitBudgetWindowTest, ShowsTheClosingYearTheTwoChoicesAndHowTheDatabaseIsCopied)
{
    EXPECT_EQ(dialog->windowTitle(), "Initial New Budget Year");
    const DialogControl &year = dialog->Control("txtBudgetYear");
    EXPECT_EQ(year.Caption(), "Current Fiscal Year in Budget");
    EXPECT_EQ(year.Text(), "2025");
    EXPECT_FALSE(year.Enabled());
    const auto entries = [&](const char *name) {
        auto *combo = qobject_cast<QComboBox *>(dialog->Control(name).field());
        QStringList texts;
        for (int i = 0; i < combo->count(); ++i)
            texts << combo->itemText(i);
        return dialog->Control(name).Caption() + '=' + texts.join('/') + '@' +
               QString::number(dialog->Control(name).ListIndex());
    };
    EXPECT_EQ(entries("cboClearLineItem"), "Clear line item description =Yes/No@0");
    EXPECT_EQ(entries("cboGetBudget"), "Get budget From =Original Budget/Adjusted Budget@0");
    EXPECT_EQ(dialog->Control("cmdOk").Caption(), "OK");
    EXPECT_EQ(dialog->Control("cmdCancel").Caption(), "Cancel");

    const QString notice = dialog->Control("lblBackup").Text();
    if (GetParam() == testdb::Backend::SQLite) {
        EXPECT_TRUE(notice.contains(QFileInfo(database().config().sqliteFile).absolutePath())) << notice.toStdString();
    } else {
        EXPECT_TRUE(notice.contains("pg_dump ")) << notice.toStdString();
        EXPECT_TRUE(notice.endsWith("connected to the budget database: none.")) << notice.toStdString();
        // Someone else opens the budget database before the user presses OK.
        clsAdoConnection other;
        other.configure(database().config());
        ASSERT_TRUE(other.OpenConnection());
        recorder->answer(MsgAnswer::Cancel);
        pressOk();
        const QString refreshed = dialog->Control("lblBackup").Text();
        EXPECT_TRUE(refreshed.contains("(" + database().config().pg.user)) << refreshed.toStdString();
        EXPECT_FALSE(refreshed.endsWith("none.")) << refreshed.toStdString();
    }
}

TEST_P(InitBudgetWindowTest, CancelOnTheQuestionOrEscapeChangesAndCopiesNothing)
{
    const QString before = dump();
    recorder->answer(MsgAnswer::Cancel);
    pressOk();
    EXPECT_EQ(shown(), QStringList{box(MsgIcon::Exclamation, question)});
    EXPECT_EQ(recorder->shown().front().message.buttons, MsgButtons::OKCancel);
    EXPECT_EQ(dump(), before);
    EXPECT_TRUE(copies().isEmpty());

    EXPECT_TRUE(dialog->findChild<QPushButton *>("cmdOk")->isDefault());
    dialog->reject(); // Escape: closed as Cancel closes it, asking nothing
    EXPECT_EQ(dialog->CloseAction(), classDialog::ClosedByWorker);
    EXPECT_EQ(recorder->shown().size(), 1u);
    EXPECT_EQ(dump(), before);
}

TEST_P(InitBudgetWindowTest, OkRollsTheYearWithTheChosenOptionsAfterCopyingTheDatabase)
{
    choose("cboClearLineItem", 1);
    choose("cboGetBudget", 1);
    recorder->answer(MsgAnswer::OK);
    pressOk();

    EXPECT_EQ(
        shown(),
        QStringList({box(MsgIcon::Exclamation, question),
                     box(MsgIcon::Information,
                         "Finished Initialize Budget New Year! Please close the application and re-open again")}));
    EXPECT_EQ(dialog->CloseAction(), classDialog::ClosedByWorker);
    EXPECT_EQ(accountRow("A2110.450"), ",12,5,3,121200.25");
    EXPECT_EQ(count("from LnItem"), 2);
    EXPECT_EQ(rows("select YearID, Status from BudgetYears order by YearID"), "2025,H|2026,C|2027,P");
    if (GetParam() == testdb::Backend::SQLite)
        EXPECT_EQ(copies().size(), 1);
}

TEST_P(InitBudgetWindowTest, AFailedStepIsShownWithItsNumberAndTextAndChangesNothing)
{
    refuseWrites(*db(), "BudgetYears", "INSERT", "NEW.Status = 'P'");
    const QString before = dump();
    recorder->answer(MsgAnswer::OK);
    pressOk();

    const QStringList texts = shown();
    ASSERT_EQ(texts.size(), 2);
    EXPECT_TRUE(texts[1].startsWith(box(MsgIcon::Critical, "Error "))) << texts[1].toStdString();
    EXPECT_TRUE(texts[1].contains("write refused by the test")) << texts[1].toStdString();
    EXPECT_TRUE(texts[1].endsWith(unchanged));
    EXPECT_EQ(dialog->Control("sbrStatus").Statusbar().PanelText("Status"), "Updating Budget Year Files ...");
    EXPECT_EQ(dump(), before);
    EXPECT_NE(dialog->CloseAction(), classDialog::ClosedByWorker);
}

TEST_P(InitBudgetWindowTest, CancelOnTheProgressChangesNothingAndSaysSo)
{
    const QString before = dump();
    worker->setProgressShown([&](NewYearProgressWindow &progress) {
        EXPECT_EQ(progress.dialog()->windowModality(), Qt::ApplicationModal);
        progress.dialog()->cancel();
    });
    recorder->answer(MsgAnswer::OK);
    pressOk();

    EXPECT_EQ(shown().value(1), box(MsgIcon::Information, "The new budget year was cancelled. " + unchanged));
    EXPECT_EQ(dump(), before);
}

TEST_P(InitBudgetWindowTest, ACopyThatCannotBeWrittenStopsTheRunBeforeItBegins)
{
    if (GetParam() != testdb::Backend::SQLite)
        GTEST_SKIP() << "the program copies SQLite files only";
    const QString before = dump();
    // Some other task left a change open on the connection: no consistent copy can be read.
    ASSERT_TRUE(db()->BeginTrans());
    recorder->answer(MsgAnswer::OK);
    pressOk();
    ASSERT_TRUE(db()->RollbackTrans());

    const QStringList texts = shown();
    ASSERT_EQ(texts.size(), 2);
    EXPECT_TRUE(texts[1].startsWith(box(MsgIcon::Critical, "The copy of "))) << texts[1].toStdString();
    EXPECT_TRUE(texts[1].contains("The new budget year was not started."));
    EXPECT_EQ(dump(), before);
}

TEST(NewYearTimeLeft, EstimatesFromThePaceSoFar)
{
    EXPECT_EQ(timeLeftText(1000, 1, 11), "About 10 s left");
    EXPECT_EQ(timeLeftText(1500, 1000, 10000), "About 14 s left");
    EXPECT_EQ(timeLeftText(30000, 1, 4), "About 1 min 30 s left");
    EXPECT_EQ(timeLeftText(5000, 0, 10), "");
    EXPECT_EQ(timeLeftText(5000, 10, 10), "");
}

KORA_NEW_YEAR_BACKENDS(InitBudgetWindowTest);

} // namespace
