#include "classdialog.h"
#include "classdropdown.h"
#include "classgrid.h"
#include "classstatusbar.h"
#include "classtoolbar.h"
#include "twips.h"
#include "wrappererror.h"

#include "guiapplication.h"
#include "recordingmessages.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

#include <gtest/gtest.h>

namespace {

// A worker that builds a small dialog and writes down what it was asked.
class RecordingWorker : public DialogWorker {
public:
    QStringList events;
    bool accept = false;
    bool saveSucceeds = true;

    void FormBuild(classDialog &dialog) override
    {
        events << "FormBuild";
        dialog.SetSize(6200, 5400);
        dialog.SetCaption("Fund Balances");
        dialog.AddControl(DialogControlKind::TextBox, "txtName", "Name").Move(200, 100, 3000);
        dialog.AddControl(DialogControlKind::CommandButton, "cmdGo", "Go").Move(3400, 100, 1000);
        dialog.AddControl(DialogControlKind::Frame, "fraPreview", "Preview").Move(200, 800, 3000, 1200);
        dialog.AddControl(DialogControlKind::OptionButton, "optPreview", "Print Preview", "fraPreview").Move(120, 300);
        dialog.AddControl(DialogControlKind::OptionButton, "optPrint", "Print", "fraPreview").Move(120, 700);
        dialog.AddControl(DialogControlKind::ComboBox, "cboFunds", "Fund").Move(200, 2200, 4000);
        dialog.AddControl(DialogControlKind::Grid, "AcctGrid").Move(50, 3000, 6000, 2000);
        dialog.AddControl(DialogControlKind::StatusBar, "sbrStatus");
    }
    void SecurityLock(classDialog &) override { events << "SecurityLock"; }
    void LoadData(classDialog &dialog) override
    {
        events << "LoadData";
        dialog.Control("cboFunds").AddItem("General", "A");
        dialog.Control("cboFunds").AddItem("Debt", "B");
        dialog.Control("cboFunds").setListIndex(0);
    }
    void LockControls(classDialog &) override { events << "LockControls"; }
    void UserAction(classDialog &, const QString &name) override { events << "UserAction:" + name; }
    bool ValidateData(classDialog &) override
    {
        events << "ValidateData";
        return accept;
    }
    bool SaveData(classDialog &) override
    {
        events << "SaveData";
        return saveSucceeds;
    }
};

class DialogTest : public ::testing::Test {
protected:
    GuiApplicationGuard app;
    void SetUp() override
    {
        guiApplication();
        dialog.Build();
        dialog.show();
    }
    void clickOK() { dialog.findChild<QPushButton *>("cmdDialogOK")->click(); }

    RecordingWorker worker;
    classDialog dialog{worker};
};

TEST_F(DialogTest, BuildingRaisesTheEventsInOrder)
{
    EXPECT_EQ(worker.events, QStringList({"FormBuild", "SecurityLock", "LoadData", "LockControls"}));
    EXPECT_EQ(dialog.windowTitle(), "Fund Balances");
    EXPECT_EQ(dialog.Control("cboFunds").Text(), "General");
    EXPECT_EQ(dialog.Control("cboFunds").DropDown().GetSelectedByKey("cboFunds"), "A");
}

TEST_F(DialogTest, ARefusedValidationKeepsTheDialogOpenAndSavesNothing)
{
    worker.events.clear();
    clickOK();
    EXPECT_EQ(worker.events, QStringList({"ValidateData"}));
    EXPECT_TRUE(dialog.isVisible());
    EXPECT_EQ(dialog.CloseAction(), classDialog::Cancelled);

    worker.accept = true;
    worker.saveSucceeds = false; // a failed write leaves it open too
    clickOK();
    EXPECT_TRUE(dialog.isVisible());

    worker.saveSucceeds = true;
    worker.events.clear();
    clickOK();
    EXPECT_EQ(worker.events, QStringList({"ValidateData", "SaveData"}));
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_EQ(dialog.CloseAction(), classDialog::Saved);
}

TEST_F(DialogTest, UserActionsCarryTheControlName)
{
    worker.events.clear();
    dialog.findChild<QPushButton *>("cmdGo")->click();
    dialog.findChild<QRadioButton *>("optPrint")->click();
    auto *name = dialog.findChild<QLineEdit *>("txtName");
    name->setFocus();
    emit name->textEdited("x");
    DialogControl &grid = dialog.Control("AcctGrid");
    grid.Grid().AddColumn("Amount", "Amount", {.type = GridColumnType::Amount, .editable = true});
    grid.Grid().AddRow();
    grid.Grid().view()->model()->setData(grid.Grid().view()->model()->index(0, 0), "5", Qt::EditRole);
    EXPECT_EQ(worker.events, QStringList({"UserAction:cmdGo", "UserAction:optPrint", "UserAction:txtName_Change",
                                          "UserAction:AcctGrid_CellChange"}));
    dialog.findChild<QPushButton *>("cmdDialogCancel")->click();
    EXPECT_EQ(worker.events.last(), "UserAction:AcctGrid_CellChange"); // cancel saves nothing
    EXPECT_FALSE(dialog.isVisible());
}

TEST_F(DialogTest, ControlsArePlacedInTwipsAndKeepTheirProperties)
{
    DialogControl &name = dialog.Control("txtName");
    EXPECT_NEAR(name.Left(), 200, 15);
    EXPECT_NEAR(name.Width(), 3000, 15);
    name.setMaxLength(40);
    EXPECT_EQ(dialog.findChild<QLineEdit *>("txtName")->maxLength(), 40);

    // Options in one frame exclude each other; positions are inside the frame.
    DialogControl &preview = dialog.Control("optPreview");
    DialogControl &print = dialog.Control("optPrint");
    preview.setValue(true);
    print.setValue(true);
    EXPECT_FALSE(preview.Value());
    EXPECT_EQ(preview.widget()->parentWidget(), dialog.Control("fraPreview").field());
    EXPECT_NEAR(print.Top(), 700, 15);

    EXPECT_THROW(dialog.AddControl(DialogControlKind::Label, "txtName"), WrapperError);
    EXPECT_THROW(dialog.AddControl(DialogControlKind::Label, "lblX", "x", "txtName"), WrapperError);
    EXPECT_THROW(dialog.Control("nothing"), WrapperError);
    EXPECT_THROW(dialog.Control("cmdGo").Grid(), WrapperError);
    EXPECT_THROW(dialog.Control("cmdGo").setMaxLength(3), WrapperError);
}

TEST(DialogMask, ClassicMasksBecomeInputMasks)
{
    EXPECT_EQ(inputMaskFromClassic("#####-####"), "99999-9999");
    EXPECT_EQ(inputMaskFromClassic("###-###-####"), "999-999-9999");
    EXPECT_EQ(inputMaskFromClassic("?A&"), "anx");
    EXPECT_EQ(inputMaskFromClassic("(9)"), "(\\9)");
}

TEST_F(DialogTest, SaveFromAWorkerButtonFollowsTheSameRule)
{
    worker.events.clear();
    EXPECT_FALSE(dialog.Save());
    worker.accept = true;
    EXPECT_TRUE(dialog.Save());
    EXPECT_EQ(worker.events, QStringList({"ValidateData", "ValidateData", "SaveData"}));
    dialog.Reload();
    EXPECT_EQ(worker.events.mid(3), QStringList({"LoadData", "LockControls"}));
}

class BarsWorker : public DialogWorker {
public:
    QStringList actions;
    void FormBuild(classDialog &dialog) override
    {
        dialog.SetSize(4000, 2000);
        dialog.ShowStandardButtons(false);
        dialog.AddControl(DialogControlKind::Toolbar, "tbrMain")
            .Toolbar()
            .AddButton("tlbLnItem", "", "", "Line Item", ToolbarButtonStyle::Default, "List");
        dialog.AddControl(DialogControlKind::StatusBar, "sbrStatus").Statusbar().AddPanel(0, "Status", "Status", "");
        dialog.AddControl(DialogControlKind::ListBox, "lstProposals", "Proposal    Description")
            .Move(200, 150, 3000, 1200);
    }
    void UserAction(classDialog &dialog, const QString &name) override
    {
        actions << name;
        if (name == "tlbLnItem")
            dialog.CloseDialog();
    }
};

TEST(DialogBars, ToolbarButtonsRaiseTheirKeyAndMayCloseTheDialog)
{
    GuiApplicationGuard app;
    BarsWorker worker;
    classDialog dialog(worker);
    dialog.Build();
    dialog.show();
    EXPECT_FALSE(dialog.findChild<QPushButton *>("cmdDialogOK")->isVisible());
    DialogControl &list = dialog.Control("lstProposals");
    list.AddItem("1  Budget", "1");
    list.AddItem("2  Draft", "2");
    dialog.Control("tbrMain").Toolbar().Item("tlbLnItem").action()->trigger();
    EXPECT_EQ(worker.actions, QStringList({"tlbLnItem"}));
    EXPECT_EQ(dialog.CloseAction(), classDialog::ClosedByWorker);
    EXPECT_FALSE(dialog.isVisible());
}

// A worker with a Close button of its own that asks before it lets go.
class ClosingWorker : public DialogWorker {
public:
    QStringList actions;
    void FormBuild(classDialog &dialog) override
    {
        dialog.SetSize(4000, 2000);
        dialog.ShowStandardButtons(false);
        dialog.AddControl(DialogControlKind::CommandButton, "cmdClose", "Close").Move(2800, 1400, 1000);
        dialog.SetCloseAction("cmdClose");
    }
    void UserAction(classDialog &dialog, const QString &name) override
    {
        actions << name;
        if (name == "cmdClose" && messages().messageBox({"Fund Balances", "Discard Changes?", MsgButtons::YesNo,
                                                         MsgIcon::Question, MsgAnswer::No}) == MsgAnswer::Yes)
            dialog.CloseDialog();
    }
};

void pressEscape(QWidget &widget)
{
    QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    QApplication::sendEvent(&widget, &escape);
}

TEST(DialogClose, EscapeAndTheCloseBoxAskTheWorkerLikeItsCloseButton)
{
    GuiApplicationGuard app;
    ScopedMessages shown;
    ClosingWorker worker;
    classDialog dialog(worker);
    dialog.Build();
    dialog.show();

    pressEscape(dialog); // unanswered: "No"
    EXPECT_EQ(worker.actions, QStringList({"cmdClose"}));
    EXPECT_TRUE(dialog.isVisible());
    dialog.close(); // the close box
    EXPECT_EQ(worker.actions, QStringList({"cmdClose", "cmdClose"}));
    EXPECT_TRUE(dialog.isVisible());
    ASSERT_EQ(shown->shown().size(), 2u);
    EXPECT_EQ(shown->shown()[1].message.text, "Discard Changes?");

    shown->answer(MsgAnswer::Yes);
    dialog.close();
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_EQ(dialog.CloseAction(), classDialog::ClosedByWorker);
}

TEST_F(DialogTest, WithoutACloseActionEscapeCancels)
{
    worker.events.clear();
    pressEscape(dialog);
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_EQ(dialog.CloseAction(), classDialog::Cancelled);
    EXPECT_TRUE(worker.events.isEmpty());
}

} // namespace
