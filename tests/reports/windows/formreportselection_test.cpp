#include "formreportselection.h"

#include "appglobals.h"
#include "classgrid.h"
#include "guiapplication.h"
#include "recordingmessages.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QFontMetrics>
#include <QGroupBox>
#include <QKeyEvent>
#include <QTableView>
#include <QTimer>

#include <gtest/gtest.h>

#include <functional>

namespace {

const std::vector<FundEntry> twoFunds{{"A", "General Fund"}, {"WW", "Water District"}};
const QStringList statusOptions{"2 years Actual", "Prior Year Actual, Current year projected",
                                "Current Year Projected"};

class ReportSelectionTest : public ::testing::Test {
protected:
    GuiApplicationGuard app;
    ScopedMessages recorder;
    std::int16_t savedPreview = gintPrintPreview;
    formReportSelection form;

    ~ReportSelectionTest() override { gintPrintPreview = savedPreview; }

    classGrid &grid() { return form.dialog().Control("Grid").Grid(); }
    bool enabled(const char *name) { return form.dialog().Control(name).Enabled(); }
    // A click as the user makes it, so the dialog hears of it.
    void press(const char *name) { form.dialog().findChild<QAbstractButton *>(name)->click(); }

    // A status report's dialog, filled in the caller's order.
    void fillAsStatusReport()
    {
        form.setOptionFundSelection(twoFunds);
        form.setOptionTypeSelection({"Detail", "Summary"});
        form.setOptionOptionSelection(statusOptions);
        form.setCaption("Budget Status Report");
        form.AddReport("Expenditure", "Expenditure", 2, 1, 1, 2);
    }

    // Shows the dialog and lets `user` act on it once it is up.
    void showAndDo(std::function<void()> user)
    {
        QTimer::singleShot(0, &form.dialog(), std::move(user));
        form.ShowDialog();
    }

    // The entries the row's drop-down offers in a choice column.
    QStringList dropDownEntries(int row, const QString &key)
    {
        QTableView &view = *grid().view();
        int column = 1;
        while (grid().ColumnKey(column) != key)
            ++column;
        const QModelIndex index = view.model()->index(row - 1, column - 1);
        QAbstractItemDelegate *delegate = view.itemDelegateForIndex(index);
        std::unique_ptr<QWidget> editor(delegate->createEditor(view.viewport(), QStyleOptionViewItem(), index));
        QStringList entries;
        if (auto *box = qobject_cast<QComboBox *>(editor.get())) {
            for (int i = 0; i < box->count(); ++i)
                entries << box->itemText(i);
        }
        return entries;
    }
};

TEST_F(ReportSelectionTest, NothingOfferedGivesTheDefaultsAndNoReport)
{
    QDialog &dialog = form.dialog();
    EXPECT_EQ(dialog.windowTitle(), "Select A Report");
    const std::vector<std::pair<const char *, QString>> captions{
        {"chkPercent", "Show Percent Inc/Dec"}, {"fraEncumOut", "Records"}, {"optAll", "All Records"},
        {"optSelected", "Compare Code"},       {"fraCopies", "Copies"},    {"fraPreview", "Preview"},
        {"optPreview", "Print Preview"},       {"optPrint", "Print"},      {"fraOrientation", "Orientation"},
        {"optLandscape", "Landscape"},         {"optPortrait", "Portrait"}, {"cmdCancel", "Close"}};
    for (const auto &[name, caption] : captions)
        EXPECT_EQ(form.dialog().Control(name).Caption(), caption) << name;
    for (const char *frame : {"fraEncumOut", "fraCopies", "fraPreview", "fraOrientation"})
        EXPECT_FALSE(enabled(frame)) << frame;

    // Even an option the program ticks in a frame not offered does not count.
    form.dialog().Control("optSelected").setValue(true);
    form.dialog().Control("optLandscape").setValue(true);
    form.dialog().Control("optPreview").setValue(true);
    EXPECT_FALSE(form.Preview());
    EXPECT_EQ(form.Copies(), 1);
    EXPECT_EQ(form.Records(), 1);
    EXPECT_EQ(form.Orientation(), 1);

    EXPECT_EQ(form.SelectedReport(), "");
    EXPECT_EQ(form.SelectedFund(), "");
    EXPECT_EQ(form.CloseAction(), 0);

    // An empty fund collection: an empty list, an empty cell, no message.
    form.AddReport("Expenditure", "Expenditure", 1, 1, 1, 1);
    EXPECT_EQ(form.FundList(), "");
    EXPECT_EQ(grid().GetItemValue(1, "FundSelection"), "");
    EXPECT_TRUE(grid().ColumnHidden("FundSelection"));
    EXPECT_TRUE(dropDownEntries(1, "FundSelection").isEmpty());
    EXPECT_TRUE(recorder->shown().empty());
    EXPECT_EQ(form.SelectedReport(), "") << "a row is a report only once it is selected";
}

TEST_F(ReportSelectionTest, TheSelectedRowsFlagsOfferItsFrames)
{
    gintPrintPreview = 1;
    fillAsStatusReport();
    EXPECT_FALSE(enabled("fraPreview")) << "no row selected yet";
    grid().SelectRow(1);
    EXPECT_TRUE(enabled("fraPreview"));
    EXPECT_TRUE(enabled("fraOrientation"));
    EXPECT_FALSE(enabled("fraCopies"));
    EXPECT_FALSE(enabled("fraEncumOut"));
    EXPECT_TRUE(form.Preview()) << "the user's print-preview setting chooses Print Preview";
    press("optLandscape");
    EXPECT_EQ(form.Orientation(), 2);
    press("optPortrait");
    EXPECT_EQ(form.Orientation(), 1);
    press("optPrint");
    EXPECT_FALSE(form.Preview());

    grid().ClearSelectedRows();
    EXPECT_FALSE(enabled("fraPreview"));
    EXPECT_FALSE(form.Preview());

    gintPrintPreview = 0;
    grid().SelectRow(1);
    EXPECT_FALSE(form.Preview()) << "without the setting an offered Preview frame starts on Print";
}

TEST_F(ReportSelectionTest, TheCallersSettersOfferFramesForEveryRow)
{
    gintPrintPreview = 1;
    fillAsStatusReport();
    form.setRecords(1);
    form.setCopies(3);
    EXPECT_TRUE(enabled("fraEncumOut"));
    EXPECT_FALSE(enabled("txtCompare")) << "the code is typed only for Compare Code";
    EXPECT_EQ(form.Copies(), 3);
    press("optSelected");
    EXPECT_TRUE(enabled("txtCompare"));
    form.dialog().Control("txtCompare").setText(" 21 ");
    EXPECT_EQ(form.Records(), 2);
    EXPECT_EQ(form.CompareCode(), " 21 ");
    form.setRecords(0);
    EXPECT_EQ(form.Records(), 1) << "withdrawn, the frame gives all records";
    form.setCopies(0);
    EXPECT_EQ(form.Copies(), 1);
    form.setPreview(true);
    EXPECT_TRUE(form.Preview());
    form.setPreview(false);
    EXPECT_FALSE(enabled("fraPreview"));
    EXPECT_FALSE(form.Preview()) << "a withdrawn Preview frame prints";
    grid().SelectRow(1);
    EXPECT_TRUE(enabled("fraPreview")) << "the row's own flag still offers it";
}

TEST_F(ReportSelectionTest, EachRowOffersTheListsItWasAddedWith)
{
    fillAsStatusReport();
    const QStringList funds = form.FundList().split('\t');
    ASSERT_EQ(funds.size(), 2);
    EXPECT_TRUE(funds[0].startsWith("A") && funds[0].endsWith("- General Fund")) << funds[0].toStdString();
    EXPECT_TRUE(funds[1].startsWith("WW") && funds[1].endsWith("- Water District")) << funds[1].toStdString();
    // The names start at one place whatever the fund's code.
    const QFontMetrics metrics(grid().view()->font());
    const auto nameStart = [&](const QString &entry) { return metrics.horizontalAdvance(entry.left(entry.indexOf("- "))); };
    EXPECT_NEAR(nameStart(funds[0]), nameStart(funds[1]), 2);
    EXPECT_EQ(form.TypeList(), "Detail\tSummary");
    EXPECT_EQ(form.OptionList(), statusOptions.join('\t'));

    form.setOptionFundSelection({{"C", "Cafeteria"}});
    form.setOptionTypeSelection({});
    form.setOptionSpecialSelection({"Account", "Name"});
    form.setOptionTotalsSelection(true);
    form.AddReport("Revenue", "Revenue", 2, 1, 1, 2, "second row");

    EXPECT_EQ(dropDownEntries(1, "FundSelection"), funds);
    EXPECT_EQ(dropDownEntries(2, "FundSelection").size(), 1);
    EXPECT_TRUE(dropDownEntries(2, "FundSelection")[0].endsWith("- Cafeteria"));
    EXPECT_EQ(dropDownEntries(1, "OptionSelection"), statusOptions);
    EXPECT_TRUE(dropDownEntries(2, "TypeSelection").isEmpty());
    EXPECT_EQ(dropDownEntries(2, "Totals"), (QStringList{"Yes", "No"}));
    EXPECT_EQ(grid().GetItemValue(1, "OptionSelection"), "2 years Actual") << "each cell starts on its first entry";
    EXPECT_EQ(grid().GetItemValue(2, "SpecialSelection"), "Account");
    EXPECT_FALSE(grid().ColumnHidden("SpecialSelection"));
    EXPECT_TRUE(grid().ColumnHidden("Page Break")) << "not offered by the caller";

    grid().SelectRow(1);
    grid().SetCell(1, "FundSelection", funds[1]);
    grid().SetCell(1, "OptionSelection", statusOptions[2]);
    EXPECT_EQ(form.SelectedReport(), "Expenditure");
    EXPECT_EQ(form.SelectedFund(), funds[1]);
    EXPECT_EQ(form.SelectedOption(), "Current Year Projected");
    EXPECT_EQ(form.SelectedFundID(), "WW") << "the row's own funds, not the ones given since";
    grid().SelectRow(2);
    EXPECT_EQ(form.SelectedFundID(), "C");
    EXPECT_EQ(form.SelectedChoice("Totals"), "Yes");
}

TEST_F(ReportSelectionTest, CloseActionIsOneOnlyForOkWithAReportChosen)
{
    fillAsStatusReport();
    showAndDo([&] { press("cmdOK"); });
    EXPECT_EQ(form.CloseAction(), 1) << "the only row is chosen when the dialog opens";
    EXPECT_EQ(form.SelectedReport(), "Expenditure");
    EXPECT_FALSE(form.dialog().isVisible());

    // The caller's loop shows it again; this time the user closes it.
    showAndDo([&] { press("cmdCancel"); });
    EXPECT_EQ(form.CloseAction(), 0);
    showAndDo([&] {
        QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
        QApplication::sendEvent(&form.dialog(), &escape);
    });
    EXPECT_EQ(form.CloseAction(), 0);

    // OK without a report says so and keeps the dialog open.
    showAndDo([&] {
        grid().ClearSelectedRows();
        press("cmdOK");
        EXPECT_TRUE(form.dialog().isVisible());
        press("cmdCancel");
    });
    EXPECT_EQ(form.CloseAction(), 0);
    ASSERT_EQ(recorder->shown().size(), 1);
    EXPECT_EQ(recorder->shown()[0].message.text, "Please select a report.");
    EXPECT_EQ(recorder->shown()[0].message.title, "Budget Status Report");
}

TEST_F(ReportSelectionTest, CategoriesAndDisabledReportsAreNotOffered)
{
    form.setReportCategory("Status");
    form.AddReport("Expenditure", "Expenditure", 2, 1, 1, 2);
    form.setReportCategory("Comparison");
    form.AddReport("History", "Expenditure Historical Comparison", 2, 1, 1, 1);
    form.AddReport("VsBudget", "Expenditure Vs Proposed Budget ", 2, 1, 1, 2);
    QTableView &view = *grid().view();

    form.SetReportCategory();
    EXPECT_TRUE(view.isRowHidden(0));
    EXPECT_FALSE(view.isRowHidden(1));
    grid().SelectRow(2);
    form.DisableReport("History");
    EXPECT_TRUE(view.isRowHidden(1));
    EXPECT_EQ(form.SelectedReport(), "") << "a disabled row is no longer chosen";
    EXPECT_FALSE(enabled("fraPreview"));

    showAndDo([&] { press("cmdOK"); });
    EXPECT_EQ(form.SelectedReport(), "Expenditure Vs Proposed Budget ") << "the first row offered is chosen";
    EXPECT_EQ(form.CloseAction(), 1);
}

} // namespace
