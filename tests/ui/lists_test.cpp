#include "classdropdown.h"
#include "classexplorer.h"
#include "padwidth.h"
#include "wrappererror.h"

#include "guiapplication.h"

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QMouseEvent>
#include <QTreeWidget>

#include <gtest/gtest.h>

namespace {

class DropDownTest : public ::testing::Test {
protected:
    GuiApplicationGuard app;
    void SetUp() override
    {
        guiApplication();
        lists.Init(&host);
        lists.AddDropDown("Fund", "Fund:", "Select a fund to view");
    }
    QWidget host;
    classDropDown lists;
};

TEST_F(DropDownTest, ScheduledEntriesCarryTheirStatus)
{
    const std::pair<const char *, const char *> statuses[] = {
        {"O", " - Open"}, {"C", " - Closed "}, {"P", " - Closing..."}, {"X", ""}};
    for (const auto &[status, shown] : statuses) {
        lists.AddItemSchedule("Fund", status, "Budget", status);
        const QString entry = lists.List("Fund", lists.ListCount("Fund") - 1);
        EXPECT_TRUE(*shown ? entry.endsWith(shown) : !entry.contains(" - ")) << status;
    }

    // The name is padded to the width of 20 "W" in the list's font.
    const formPadWidth measure(lists.control("Fund")->font());
    const QString padded = lists.List("Fund", 3);
    EXPECT_TRUE(padded.startsWith("Budget "));
    EXPECT_EQ(padded, measure.PadWidth("Budget", 20));
}

TEST_F(DropDownTest, EntriesAreFoundByKeyAndData)
{
    lists.AddItem("Fund", "A", "General", 10);
    lists.AddItem("Fund", "B", "Debt", 20);
    EXPECT_EQ(lists.ListIndex("Fund"), -1); // adding picks nothing
    EXPECT_EQ(lists.KeyToIndex("Fund", "B"), 1);
    EXPECT_EQ(lists.KeyToIndex("Fund", "Z"), -1);
    EXPECT_EQ(lists.FindItemData("Fund", 10), 0);
    EXPECT_EQ(lists.FindItemData("Fund", 99), -1);
    lists.setListIndex("Fund", 1);
    EXPECT_EQ(lists.GetSelectedByKey("Fund"), "B");
    EXPECT_EQ(lists.SelListCount("Fund"), 1);
    lists.RemoveItem("Fund", 0);
    EXPECT_EQ(lists.ListCount("Fund"), 1);
    EXPECT_EQ(lists.ItemData("Fund", 0), 20);

    EXPECT_THROW(lists.AddItem("Nope", "A", "x"), WrapperError);
    EXPECT_THROW(lists.List("Fund", 5), WrapperError);
    EXPECT_THROW(lists.AddDropDown("Fund", "again"), WrapperError);
    EXPECT_EQ(lists.Count(), 1);
}

TEST_F(DropDownTest, OnlyTheUsersChoiceRaisesTheListKey)
{
    lists.AddItem("Fund", "A", "General");
    lists.AddItem("Fund", "B", "Debt");
    QStringList raised;
    QObject::connect(&lists, &classDropDown::selectionChanged, [&](const QString &key) { raised << key; });
    lists.setListIndex("Fund", 0);
    EXPECT_TRUE(raised.isEmpty());
    auto *combo = qobject_cast<QComboBox *>(lists.control("Fund"));
    emit combo->activated(1);
    EXPECT_EQ(raised, QStringList({"Fund"}));
}

TEST_F(DropDownTest, ListBoxesCountTheirSelection)
{
    lists.AddListBox("Codes", "Codes", {}, 2400, 1500, true);
    for (const QString &key : {"1", "2", "3"})
        lists.AddItem("Codes", key, "Code " + key);
    lists.setSelected("Codes", 0, true);
    lists.setSelected("Codes", 2, true);
    EXPECT_EQ(lists.SelListCount("Codes"), 2);
    EXPECT_TRUE(lists.Selected("Codes", 2));
    EXPECT_FALSE(lists.Selected("Codes", 1));
}

TEST(PadWidth, StopsWithinToleranceAndNeverShortens)
{
    guiApplication();
    const formPadWidth measure;
    const int target = measure.widthInTwips("WWWW");
    const QString padded = measure.PadWidth("ab", 4);
    EXPECT_TRUE(padded.startsWith("ab"));
    EXPECT_TRUE(measure.widthInTwips(padded) >= target || target - measure.widthInTwips(padded) < 30);
    // One blank fewer would not have been close enough.
    const int oneLess = measure.widthInTwips(padded.left(padded.size() - 1));
    EXPECT_TRUE(padded == "ab" || (oneLess < target && target - oneLess >= 30));
    EXPECT_EQ(measure.PadWidth("WWWWWW", 2), "WWWWWW");
    EXPECT_EQ(measure.PadFundID("A"), measure.PadWidth("A", 2));
}

class ExplorerTest : public ::testing::Test {
protected:
    GuiApplicationGuard app;
    void SetUp() override
    {
        guiApplication();
        explorer.Init(&tree);
        explorer.AddRootFolder("F1", "Folder 1");
        explorer.AddFolder("F1", "F2", "Folder 2");
        explorer.AddFolder("F2", "F3", "Folder 3");
        explorer.AddRootFolder("G1", "Other");
        explorer.AddObject("F2", "A1", "1000  -  Salaries");
        explorer.setEnableDragDrop(true);
    }
    QTreeWidget tree;
    classExplorer explorer;
};

TEST_F(ExplorerTest, NodesAreKeptByKeyWithTheirPlace)
{
    EXPECT_EQ(explorer.NodeCount(), 5);
    const ExplorerNode node = explorer.Node("A1");
    EXPECT_EQ(node.parentKey, "F2");
    EXPECT_FALSE(node.folder);
    EXPECT_EQ(node.depth, 3);
    EXPECT_EQ(explorer.ChildKeys("F2"), QStringList({"F3", "A1"}));
    EXPECT_THROW(explorer.AddFolder("F1", "F2", "again"), WrapperError);
    EXPECT_THROW(explorer.AddObject("Nope", "X", "x"), WrapperError);
    explorer.RemoveNode("F2"); // and everything under it
    EXPECT_EQ(explorer.NodeCount(), 2);
    EXPECT_THROW(explorer.Node("A1"), WrapperError);
}

TEST_F(ExplorerTest, ADropMovesTheNodeOnlyWhenTheHandlerAgrees)
{
    bool agree = false;
    bool draggingSeen = false;
    QString seenParent;
    QString seenSelected;
    QObject::connect(&explorer, &classExplorer::nodeDragged, [&] {
        draggingSeen = explorer.Dragging();
        seenParent = explorer.NewParent();
        seenSelected = explorer.SelectedNode();
        explorer.setDragSuccessful(agree);
    });

    EXPECT_FALSE(explorer.DropNode("F2", "G1"));
    EXPECT_TRUE(draggingSeen);
    EXPECT_EQ(seenParent, "G1");
    EXPECT_EQ(seenSelected, "F2");
    EXPECT_EQ(explorer.Node("F2").parentKey, "F1");
    EXPECT_FALSE(explorer.Dragging());

    agree = true;
    EXPECT_TRUE(explorer.DropNode("F2", "G1"));
    EXPECT_EQ(explorer.Node("F2").parentKey, "G1");
    EXPECT_EQ(explorer.Node("A1").depth, 3);
}

TEST_F(ExplorerTest, DropsOnObjectsOrIntoTheDraggedSubtreeAreRefused)
{
    int raised = 0;
    QObject::connect(&explorer, &classExplorer::nodeDragged, [&] {
        ++raised;
        explorer.setDragSuccessful(true);
    });
    EXPECT_FALSE(explorer.DropNode("F3", "A1"));
    EXPECT_FALSE(explorer.DropNode("F1", "F3"));
    EXPECT_FALSE(explorer.DropNode("F1", "F1"));
    EXPECT_EQ(raised, 0);
}

TEST_F(DropDownTest, PercentageFollowsTheHostAndRefusesShareOutsideOneToHundred)
{
    host.show();
    host.resize(408, 60); // 400 inside the host's margins
    lists.Percentage("Fund", 50);
    host.resize(608, 60);
    EXPECT_THROW(lists.Percentage("Fund", 101), WrapperError);
    EXPECT_EQ(lists.control("Fund")->width(), 300);
}

TEST_F(ExplorerTest, CaptionShowsWhereTheSelectedNodeLies)
{
    QLabel caption;
    explorer.Init(&tree, &caption);
    explorer.setSelectedNode("A1");
    QObject::connect(&explorer, &classExplorer::nodeDragged, [&] { explorer.setDragSuccessful(true); });
    explorer.setNodeText("G1", "Wages");
    ASSERT_TRUE(explorer.DropNode("A1", "G1"));
    EXPECT_EQ(caption.text(), "Wages \\ 1000  -  Salaries");
    explorer.RemoveNodes();
    EXPECT_EQ(caption.text(), "");
}

void clickAt(QWidget *widget, QPoint at)
{
    QMouseEvent press(QEvent::MouseButtonPress, at, widget->mapToGlobal(at), Qt::LeftButton, Qt::LeftButton,
                      Qt::NoModifier);
    QMouseEvent release(QEvent::MouseButtonRelease, at, widget->mapToGlobal(at), Qt::LeftButton, Qt::NoButton,
                        Qt::NoModifier);
    QApplication::sendEvent(widget, &press);
    QApplication::sendEvent(widget, &release);
}

TEST_F(ExplorerTest, OneClickOnANodeIsOneClick)
{
    tree.resize(300, 300);
    tree.show();
    explorer.ExpandNodes();
    int clicks = 0;
    QObject::connect(&explorer, &classExplorer::nodeClicked, [&] { ++clicks; });
    const auto centreOf = [&](const QString &text) {
        return tree.visualItemRect(tree.findItems(text, Qt::MatchExactly | Qt::MatchRecursive).front()).center();
    };

    clickAt(tree.viewport(), centreOf("Other")); // another node
    EXPECT_EQ(clicks, 1);
    EXPECT_EQ(explorer.SelectedNode(), "G1");
    clickAt(tree.viewport(), centreOf("Other")); // the current node again
    EXPECT_EQ(clicks, 2);
    clickAt(tree.viewport(), centreOf("Folder 2"));
    EXPECT_EQ(clicks, 3);
    EXPECT_EQ(explorer.SelectedNode(), "F2");

    explorer.setSelectedNode("G1"); // moved to by code or by the keyboard
    EXPECT_EQ(clicks, 4);
    clickAt(tree.viewport(), centreOf("Other"));
    EXPECT_EQ(clicks, 5);
}

} // namespace
