#include "mdichild.h"
#include "mdichildworker.h"
#include "setwaiting.h"

#include "guiapplication.h"
#include "recordingmessages.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QKeyEvent>
#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMouseEvent>
#include <QPointer>
#include <QTableView>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

class ChildTest : public ::testing::Test {
protected:
    GuiApplicationGuard app;
    void SetUp() override
    {
        guiApplication();
        child = std::make_unique<mdiChild>();
        QObject::connect(child.get(), &mdiChild::Command, [this](const QString &c) { commands << c; });
    }

    void fillGrid(classGrid &grid)
    {
        grid.AddColumn("ID", "", {.hidden = true});
        grid.AddColumn("Fund", "Fund");
        grid.AddColumn("CurrentBalance", "Current Balance",
                       {.caption2 = "2004", .type = GridColumnType::Amount, .editable = true});
        grid.AddTwinColumn("CurrentBalance");
        const int row = grid.AddRow();
        grid.SetCell(row, "ID", QString("7"));
        grid.SetCell(row, "Fund", QString("A \"General\""));
        grid.SetCell(row, "CurrentBalance", QString("1,234.5"));
        grid.SetCell(row, "OrigCurrentBalance", QString("99"));
    }

    ScopedMessages shown;
    std::unique_ptr<mdiChild> child;
    QStringList commands;
};

TEST_F(ChildTest, BadGridSlotsAndCountsAreRefused)
{
    EXPECT_EQ(child->Grid(0), nullptr);
    EXPECT_EQ(child->Grid(3), nullptr);
    ASSERT_EQ(shown->shown().size(), 2u);
    EXPECT_EQ(shown->shown()[0].message.text, "Invalid grid index value");
    EXPECT_NE(child->Grid(2), nullptr);

    child->setGridCount(2);
    child->setGridCount(3);
    EXPECT_EQ(child->GridCount(), 2);
    EXPECT_EQ(shown->shown().back().message.text, "Invalid Grid Count Value");
    child->setGridCount(0);
    EXPECT_EQ(child->GridCount(), 2);
}

TEST_F(ChildTest, ExportWritesVisibleColumnsOnly)
{
    QTemporaryDir dir;
    const QString path = dir.filePath("out.csv");
    fillGrid(*child->Grid(1));
    shown->answerText(path);
    child->DoExport();

    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(QString::fromUtf8(file.readAll()),
              "\"Fund\",\"Current Balance 2004\"\r\n\"A \"\"General\"\"\",1234.5\r\n");
    ASSERT_EQ(shown->shown().size(), 2u);
    EXPECT_EQ(shown->shown()[0].message.text, "Please enter the file name for the data you want to export to! ");
    EXPECT_EQ(shown->shown()[0].message.title, "Grid Data Export");
    EXPECT_EQ(shown->shown()[1].message.text, "Data export finished!");
}

TEST_F(ChildTest, ACancelledEmptyOrUnwritableExportWritesNothing)
{
    QTemporaryDir dir;
    fillGrid(*child->Grid(1));
    shown->answerText(std::nullopt);
    child->DoExport();
    shown->answerText(QString("  "));
    child->DoExport();
    EXPECT_TRUE(QDir(dir.path()).isEmpty());
    EXPECT_EQ(shown->shown().size(), 2u); // the two prompts, no "finished"

    shown->answerText(QString("/nonexistent-dir/x/out.csv"));
    child->DoExport();
    ASSERT_EQ(shown->shown().size(), 4u);
    EXPECT_TRUE(shown->shown()[3].message.text.startsWith("Cannot write /nonexistent-dir/x/out.csv"));
}

TEST_F(ChildTest, ActionsComeBackAsCommandStrings)
{
    child->Toolbar().AddButton("Folder_Create", "", "New", "Create Folder");
    child->DropDown().AddDropDown("Ledger", "Ledger:");
    child->DropDown().AddItem("Ledger", "R", "Revenue");
    child->setGridCount(2);
    classGrid &second = *child->Grid(2);
    second.AddColumn("Amount", "Amount", {.type = GridColumnType::Amount, .editable = true});
    second.AddRow();
    commands.clear();

    child->Toolbar().Item("Folder_Create").action()->trigger();
    emit qobject_cast<QComboBox *>(child->DropDown().control("Ledger"))->activated(0);
    second.view()->model()->setData(second.view()->model()->index(0, 0), "1", Qt::EditRole);
    emit second.keyPressed('7');
    child->DoPrint();
    child->DoRefresh();
    child->close();
    EXPECT_EQ(commands, QStringList({"Folder_Create", "Ledger", "_CellChange(2)", "_KeyPress(2)", "_Print", "_Refresh",
                                     "_Unload"}));
    EXPECT_EQ(child->GridKeyAscii(), '7');
    EXPECT_EQ(child->CurrentGridSlot(), 2);
}

TEST_F(ChildTest, InitFormEmptiesEveryPart)
{
    fillGrid(*child->Grid(1));
    child->Explorer().AddRootFolder("F", "Folder");
    child->Statusbar().AddPanel(0, "Status", "Status", "x");
    child->InitForm();
    EXPECT_EQ(child->Grid(1)->CountColumns(), 0);
    EXPECT_EQ(child->Explorer().NodeCount(), 0);
    EXPECT_EQ(child->Statusbar().Count(), 0);
    EXPECT_EQ(child->FormType(), "Child");
}

TEST_F(ChildTest, DropsPanelsAndTheTimerBecomeCommands)
{
    child->Explorer().AddRootFolder("F1", "One");
    child->Explorer().AddRootFolder("F2", "Two");
    child->Statusbar().AddPanel(0, "Status", "Status", "Open");
    QObject::connect(child.get(), &mdiChild::Command, [this](const QString &c) {
        if (c == "_explorerNodeDrag")
            child->Explorer().setDragSuccessful(true);
    });
    commands.clear();
    child->Explorer().DropNode("F2", "F1");
    EXPECT_TRUE(commands.contains("_explorerNodeDrag"));
    EXPECT_EQ(child->Explorer().Node("F2").parentKey, "F1");

    commands.clear();
    QLabel *panel = child->findChild<QLabel *>("Status");
    QMouseEvent release(QEvent::MouseButtonRelease, QPointF(1, 1), panel->mapToGlobal(QPointF(1, 1)), Qt::LeftButton,
                        Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(panel, &release);
    EXPECT_EQ(commands, QStringList({"Status"}));

    child->Timer().start(1);
    QElapsedTimer waited;
    waited.start();
    while (!commands.contains("_Timer") && waited.elapsed() < 2000)
        QApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    child->Timer().stop();
    EXPECT_TRUE(commands.contains("_Timer"));
}

TEST_F(ChildTest, SetWaitingMarksTheActiveChild)
{
    QMdiArea area;
    child.release()->ShowForm(area); // the area's sub-window owns it from here
    area.show();
    auto *shownChild = qobject_cast<mdiChild *>(area.activeSubWindow()->widget());
    ASSERT_NE(shownChild, nullptr);
    SetWaiting(true);
    EXPECT_TRUE(shownChild->Waiting());
    EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::BusyCursor);
    SetWaiting(false);
    EXPECT_FALSE(shownChild->Waiting());
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

TEST_F(ChildTest, ExplorerBoxAndSortLayoutNamesBelongToTheChild)
{
    child->setWindowTitle("Account Codes");
    QMdiArea area;
    child.release()->ShowForm(area);
    area.show();
    auto *shown = qobject_cast<mdiChild *>(area.subWindowList().front()->widget());
    EXPECT_EQ(shown->Grid(2)->SortLayoutName(), "Account Codes/grid3");
    QWidget *explorerBox = shown->Explorer().caption()->parentWidget();
    EXPECT_FALSE(explorerBox->isVisible());
    shown->Explorer().setVisible(true);
    EXPECT_TRUE(explorerBox->isVisible());
}

// Keeps the commands that reach it past the base.
class RecordingWorker : public MdiChildWorker {
public:
    QStringList received;
    void DoMDIChild(QMdiArea &area) override { openChild("Worker").ShowForm(area); }

protected:
    void doCommand(const QString &command) override { received << command; }
};

TEST_F(ChildTest, AWorkerHearsItsWindowUntilTheWindowUnloads)
{
    QMdiArea area;
    RecordingWorker worker;
    bool unloaded = false;
    QObject::connect(&worker, &ChildWorker::unloaded, [&] { unloaded = true; });
    worker.ShowChild(); // no window yet: nothing to bring forward
    worker.DoMDIChild(area);
    ASSERT_TRUE(worker.child());
    EXPECT_EQ(worker.child()->windowTitle(), "Worker");
    emit worker.child()->Command("Find");
    EXPECT_EQ(worker.received, QStringList{"Find"});

    worker.child()->Unload();
    EXPECT_TRUE(unloaded);
    EXPECT_EQ(worker.child(), nullptr);
    EXPECT_FALSE(worker.received.contains("_Unload"));
    const qsizetype heard = worker.received.size();
    worker.mwfrmChild_Command("Find");
    EXPECT_EQ(worker.received.size(), heard) << "no window, no command";
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

TEST_F(ChildTest, EscapeAndTheCloseBoxSendTheWorkersCloseCommand)
{
    child->setCloseCommand("Close");
    bool agree = false;
    mdiChild *shownChild = child.get();
    QObject::connect(shownChild, &mdiChild::Command, [&](const QString &c) {
        if (c == "Close" && agree)
            shownChild->Unload();
    });
    QMdiArea area;
    child.release()->ShowForm(area);
    area.show();
    QPointer<QMdiSubWindow> sub = area.subWindowList().front();
    commands.clear();

    sub->close(); // the close box
    QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    QApplication::sendEvent(shownChild, &escape);
    EXPECT_EQ(commands, QStringList({"Close", "Close"}));
    EXPECT_TRUE(sub->isVisible());

    agree = true;
    QApplication::sendEvent(shownChild, &escape);
    commands.removeAll("_Visible"); // its parts are hidden as it goes
    EXPECT_EQ(commands, QStringList({"Close", "Close", "Close", "_Unload"}));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(sub.isNull());
}

} // namespace
