#include "classstatusbar.h"
#include "classtoolbar.h"
#include "csvrecord.h"
#include "twips.h"
#include "wrappererror.h"

#include "guiapplication.h"

#include <QStatusBar>
#include <QToolBar>

#include <gtest/gtest.h>

namespace {

TEST(Toolbar, ButtonsByKeyWithPrivilegeKeys)
{
    guiApplication();
    QToolBar bar;
    classToolbar toolbar;
    toolbar.Init(&bar);
    toolbar.AddButton("Folder_Create", "BUD_FOLDER", "New", "Create Folder");
    toolbar.AddSeparator();
    toolbar.AddButton("Expand", "", "", "Expand All", ToolbarButtonStyle::Check, "Expand");
    EXPECT_EQ(toolbar.Count(), 2);
    EXPECT_EQ(toolbar.Item(1).PrivKey(), "BUD_FOLDER");
    EXPECT_EQ(toolbar.Item("Expand").ToolTipText(), "Expand All");
    EXPECT_THROW(toolbar.AddButton("Expand", "", "", ""), WrapperError);
    EXPECT_THROW(toolbar.Item(3), WrapperError);
    EXPECT_THROW(toolbar.setButtonEnabled("Nope", false), WrapperError);

    QStringList clicked;
    QObject::connect(&toolbar, &classToolbar::buttonClicked, [&](const QString &key) { clicked << key; });
    toolbar.Item("Folder_Create").action()->trigger();
    toolbar.setButtonEnabled("Folder_Create", false);
    toolbar.Item("Folder_Create").action()->trigger(); // disabled: nothing
    EXPECT_EQ(clicked, QStringList({"Folder_Create"}));
    EXPECT_FALSE(toolbar.ButtonEnabled("Folder_Create"));

    toolbar.setButtonValue("Expand", true);
    EXPECT_TRUE(toolbar.ButtonValue("Expand"));
}

TEST(Statusbar, PanelsByKeyInTheOrderAsked)
{
    guiApplication();
    QStatusBar bar;
    classStatusbar status;
    status.Init(&bar);
    status.AddPanel(0, "User", "User", "J. Doe", PanelAlignment::Left, PanelAutoSize::Spring, 620, "User name");
    status.AddPanel(0, "Date", "Date", "  01-02-04  ", PanelAlignment::Centre, PanelAutoSize::Contents, 20);
    status.AddPanel(2, "Proposal", "Proposal", " Proposal: 1  ", PanelAlignment::Centre);
    EXPECT_EQ(status.KeyToIndex("User"), 1);
    EXPECT_EQ(status.KeyToIndex("Proposal"), 2);
    EXPECT_EQ(status.KeyToIndex("Date"), 3);
    EXPECT_EQ(status.KeyToIndex("Nope"), 0);
    EXPECT_EQ(status.PanelTooltip("User"), "User name");
    status.setPanelText("Proposal", " Proposal: 2  ");
    EXPECT_EQ(status.PanelText("Proposal"), " Proposal: 2  ");
    // The minimum width in twips, widened to the text when that is longer.
    const QLabel *user = bar.findChild<QLabel *>("User");
    EXPECT_EQ(user->minimumWidth(), std::max(twipsToPixels(620), user->minimumSizeHint().width()));
    EXPECT_GT(user->minimumSizeHint().width(), twipsToPixels(620));
    EXPECT_THROW(status.AddPanel(0, "User", "", ""), WrapperError);
    EXPECT_THROW(status.PanelText("Nope"), WrapperError);

    status.RemovePanel("Proposal");
    EXPECT_EQ(status.KeyToIndex("Date"), 2);

    status.ShowProgress(10);
    status.SetProgress(25);
    EXPECT_TRUE(status.ProgressVisible());
    EXPECT_EQ(status.ProgressValue(), 10);
    status.ShowStep("Date", "Loading 3", 3);
    EXPECT_EQ(status.PanelText("Date"), "Loading 3");
    EXPECT_EQ(status.ProgressValue(), 3);
    status.HideProgress();
    EXPECT_FALSE(status.ProgressVisible());
}

TEST(Csv, FieldsAreQuotedByRfc4180)
{
    EXPECT_EQ(csvRecord({"A", "1234.5", "say \"hi\"", "x,y"}, {true, false, true, false}),
              "\"A\",1234.5,\"say \"\"hi\"\"\",\"x,y\"\r\n");
    EXPECT_EQ(csvRecord({"two\nlines"}, {false}), "\"two\nlines\"\r\n");
    EXPECT_EQ(csvRecord({}, {}), "\r\n");
}

TEST(Twips, ScaleByTheScreenResolution)
{
    guiApplication();
    EXPECT_EQ(pixelsToTwips(twipsToPixels(1440)), 1440);
    EXPECT_EQ(twipsToPixels(0), 0);
    EXPECT_GT(twipsToPixels(1440), 50);
}

} // namespace
