#include "classgrid.h"
#include "formcomplexsorting.h"
#include "twips.h"
#include "wrappererror.h"

#include "guiapplication.h"
#include "recordingmessages.h"

#include <QApplication>
#include <QComboBox>
#include <QHeaderView>
#include <QImage>
#include <QPushButton>
#include <QSettings>
#include <QTableView>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTimer>

#include <gtest/gtest.h>

namespace {

class GridTest : public ::testing::Test {
protected:
    GuiApplicationGuard app;
    void SetUp() override
    {
        guiApplication();
        // Saved sort layouts go to a folder of this test, never the user's settings.
        QCoreApplication::setOrganizationName("KoraTest");
        QCoreApplication::setApplicationName("ui_tests");
        QSettings::setDefaultFormat(QSettings::IniFormat);
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settingsDir.path());
        grid.Init(&view, &totals);
        grid.AddColumn("Fund", "Fund");
        grid.AddColumn("Amount", "Proposed Budget ",
                       {.caption2 = "2004", .type = GridColumnType::Amount, .editable = true, .total = true});
        grid.AddTwinColumn("Amount");
        grid.AddColumn("Name", "Name", {.editable = true, .maxLength = 5});
    }

    int addRow(const QString &fund, const QString &amount, const QString &name = {})
    {
        const int row = grid.AddRow();
        grid.SetCell(row, "Fund", fund);
        grid.SetCell(row, "Amount", amount);
        grid.SetCell(row, "OrigAmount", amount);
        grid.SetCell(row, "Name", name);
        return row;
    }

    QStringList column(const QString &key) const
    {
        QStringList values;
        for (int row = 1; row <= grid.CountRows(); ++row)
            values << grid.GetItemValue(row, key);
        return values;
    }

    QTemporaryDir settingsDir;
    QTableView view;
    QTableView totals;
    classGrid grid;
};

template <typename F> WrapperError caught(F &&f)
{
    try {
        f();
    } catch (const WrapperError &e) {
        return e;
    }
    ADD_FAILURE() << "no WrapperError";
    return WrapperError(0, {}, {});
}

TEST_F(GridTest, WrongUseIsRefusedWithItsMessageAndChangesNothing)
{
    addRow("A", "10");

    const WrapperError key = caught([&] { grid.setColumnDataEdit("Nope", true); });
    EXPECT_EQ(key.description(), "Invalid property key value");
    EXPECT_EQ(key.source(), "classGrid.ColumnDataEdit.Let");

    EXPECT_EQ(caught([&] { grid.GetItemValue(0, "Fund"); }).description(), "Invalid row index value");
    EXPECT_EQ(caught([&] { grid.SetCell(2, "Fund", QString("B")); }).description(), "Invalid row index value");
    EXPECT_EQ(caught([&] { grid.DeleteRow(5); }).number(), invalidArrayIndexError);
    EXPECT_EQ(caught([&] { grid.ResetRows(-1); }).description(), "Invalid row count value");
    EXPECT_EQ(caught([&] { grid.AddColumn("Fund", "Again"); }).description(), "Duplicate Key");

    EXPECT_EQ(grid.CountColumns(), 4);
    EXPECT_EQ(grid.CountRows(), 1);
    EXPECT_EQ(grid.GetItemValue(1, "Fund"), "A");
}

TEST_F(GridTest, TwinsAreMarkedWhenAddedNotGuessedFromTheirKey)
{
    EXPECT_TRUE(grid.ColumnHidden("OrigAmount"));
    EXPECT_TRUE(view.isColumnHidden(2));
    EXPECT_FALSE(grid.ColumnDataEdit("OrigAmount"));
    grid.setColumnHidden("OrigAmount", false);
    EXPECT_TRUE(grid.ColumnHidden("OrigAmount"));
    EXPECT_FALSE(grid.ColumnHidden("Amount"));
    EXPECT_EQ(caught([&] { grid.AddTwinColumn("Nope"); }).description(), "Invalid property key value");

    // A column whose key only begins like a twin's is an ordinary column.
    grid.AddColumn("OriginalBudget", "Original Budget",
                   {.type = GridColumnType::Amount, .editable = true, .sortComplex = true, .total = true});
    EXPECT_FALSE(grid.ColumnHidden("OriginalBudget"));
    EXPECT_TRUE(grid.ColumnDataEdit("OriginalBudget"));
    EXPECT_TRUE(grid.ColumnTotal("OriginalBudget"));
    const int row = addRow("A", "5");
    grid.SetCell(row, "OriginalBudget", QString("7"));
    EXPECT_FALSE(grid.RowChanged(row)); // it is nobody's twin
    EXPECT_EQ(grid.GetColumnTotal("OriginalBudget").toSqlText(), "7");
    grid.SetCell(row, "Amount", QString("6"));
    EXPECT_TRUE(grid.RowChanged(row));
}

TEST_F(GridTest, CheckCellsReadAnyFlagAndWriteTheValueTheirColumnDefines)
{
    grid.AddColumn("CatAFlag", "A",
                   {.type = GridColumnType::Check, .editable = true, .checkedValue = "A", .uncheckedValue = " "});
    grid.AddColumn("Active", "Active", {.type = GridColumnType::Check, .editable = true});
    const int row = addRow("A", "1");
    QAbstractItemModel &model = *view.model();
    const auto checked = [&](int column) { return model.data(model.index(row - 1, column), Qt::CheckStateRole); };

    EXPECT_EQ(grid.GetItemValue(row, "CatAFlag"), " ");
    for (const char *flag : {"A", "P", "C", "Y"}) {
        grid.SetCell(row, "Active", QString(flag));
        EXPECT_EQ(checked(5), Qt::Checked) << flag;
        EXPECT_EQ(grid.GetItemValue(row, "Active"), "1") << flag;
    }
    for (const char *blank : {"", " ", "0"}) {
        grid.SetCell(row, "Active", QString(blank));
        EXPECT_EQ(checked(5), Qt::Unchecked) << blank;
    }

    // A loaded flag is saved as it was loaded, and the user's tick writes the column's flag.
    grid.SetCell(row, "CatAFlag", QString("A"));
    EXPECT_EQ(checked(4), Qt::Checked);
    EXPECT_EQ(grid.GetItemValue(row, "CatAFlag"), "A");
    EXPECT_TRUE(model.setData(model.index(row - 1, 4), Qt::Unchecked, Qt::CheckStateRole));
    EXPECT_EQ(grid.GetItemValue(row, "CatAFlag"), " ");
    EXPECT_TRUE(model.setData(model.index(row - 1, 4), Qt::Checked, Qt::CheckStateRole));
    EXPECT_EQ(grid.GetItemValue(row, "CatAFlag"), "A");
    grid.SetCell(row, "CatAFlag", false);
    EXPECT_EQ(grid.GetItemValue(row, "CatAFlag"), " ");
}

TEST_F(GridTest, ASortKeepsTheUsersRecordCurrentAndSelected)
{
    addRow("B", "10");
    addRow("C", "9");
    addRow("A", "100");
    grid.SelectRow(2);
    ASSERT_EQ(grid.CurrentRowValue("Fund"), "C");

    emit view.horizontalHeader()->sectionClicked(0); // the user's click on the Fund heading
    EXPECT_EQ(column("Fund"), QStringList({"A", "B", "C"}));
    EXPECT_EQ(grid.CurrentRow(), 3);
    EXPECT_EQ(grid.CurrentRowValue("Fund"), "C");
    EXPECT_EQ(grid.GetSelectedByKey("Fund"), QStringList({"C"}));

    grid.DoSortSimple("Amount");
    EXPECT_EQ(grid.CurrentRowValue("Fund"), "C");
    EXPECT_EQ(grid.FirstselectedRow(), 1);
}

TEST_F(GridTest, AmountsAreExactAndShownWithGrouping)
{
    addRow("A", "1,234.5");
    addRow("B", "-0.05");
    EXPECT_EQ(grid.GetItemValue(1, "Amount"), "1234.5");
    EXPECT_EQ(grid.GetCellValue(1, "Amount"), "1,234.50");
    EXPECT_EQ(grid.GetCellValue(2, "Amount"), "-0.05");
    EXPECT_EQ(view.model()->headerData(1, Qt::Horizontal).toString(), "Proposed Budget \n2004");

    const WrapperError bad = caught([&] { grid.SetCell(1, "Amount", QString("12abc")); });
    EXPECT_EQ(bad.number(), 13);
    EXPECT_EQ(grid.GetItemValue(1, "Amount"), "1234.5");

    // A typed amount that does not parse is refused and the cell keeps its value.
    EXPECT_FALSE(view.model()->setData(view.model()->index(0, 1), "ten", Qt::EditRole));
    EXPECT_TRUE(view.model()->setData(view.model()->index(0, 1), "0.1", Qt::EditRole));
    EXPECT_TRUE(view.model()->setData(view.model()->index(1, 1), "0.2", Qt::EditRole));
    EXPECT_EQ(grid.GetColumnTotal("Amount"), Currency::fromRaw(3000));
    EXPECT_EQ(totals.model()->index(0, 1).data().toString(), "0.30");
    EXPECT_EQ(totals.model()->index(0, 0).data().toString(), ""); // no total on Fund
}

TEST_F(GridTest, LockedCellsAndLengthLimitsRefuseEdits)
{
    addRow("A", "1", "abc");
    QAbstractItemModel &model = *view.model();
    grid.setCellLocked(1, "Amount", true);
    EXPECT_TRUE(grid.CellLocked(1, "Amount"));
    EXPECT_FALSE(model.flags(model.index(0, 1)) & Qt::ItemIsEditable);
    EXPECT_FALSE(model.setData(model.index(0, 1), "5", Qt::EditRole));
    EXPECT_EQ(grid.GetItemValue(1, "Amount"), "1");
    EXPECT_FALSE(model.flags(model.index(0, 0)) & Qt::ItemIsEditable); // Fund not editable

    EXPECT_FALSE(model.setData(model.index(0, 3), "toolong", Qt::EditRole));
    EXPECT_EQ(grid.GetItemValue(1, "Name"), "abc");
}

TEST_F(GridTest, UserEditsRaiseCellChangeButCodeDoesNot)
{
    addRow("A", "1");
    std::vector<std::pair<int, QString>> changes;
    QObject::connect(&grid, &classGrid::cellChanged,
                     [&](int row, const QString &key) { changes.emplace_back(row, key); });
    grid.SetCell(1, "Amount", QString("2"));
    EXPECT_TRUE(changes.empty());
    view.model()->setData(view.model()->index(0, 1), "3", Qt::EditRole);
    ASSERT_EQ(changes.size(), 1u);
    EXPECT_EQ(changes[0], std::make_pair(1, QString("Amount")));
}

TEST_F(GridTest, RowChangedComparesWithTwinsByValue)
{
    addRow("A", "1.50", "x");
    EXPECT_FALSE(grid.RowChanged(1));
    grid.SetCell(1, "Amount", QString("1.5"));
    EXPECT_FALSE(grid.RowChanged(1));
    grid.SetCell(1, "Amount", QString("1.51"));
    EXPECT_TRUE(grid.RowChanged(1));

    grid.AddTwinColumn("Name");
    grid.SetCell(1, "Amount", QString("1.5"));
    grid.SetCell(1, "OrigName", QString("X")); // text compares without regard to case
    EXPECT_FALSE(grid.RowChanged(1));
}

TEST_F(GridTest, SimpleSortTogglesAndHonoursTheColumnSettings)
{
    addRow("B", "10");
    addRow("C", "9");
    addRow("A", "100");

    grid.DoSortSimple("Amount"); // by value, not by text
    EXPECT_EQ(column("Fund"), QStringList({"C", "B", "A"}));
    grid.DoSortSimple("Amount");
    EXPECT_EQ(column("Fund"), QStringList({"A", "B", "C"}));

    grid.Column("Fund").setSortSimple(false);
    grid.DoSortSimple("Fund");
    EXPECT_EQ(column("Fund"), QStringList({"A", "B", "C"}));

    grid.SaveSortDefault();
    grid.SortingDisable();
    grid.DoSortSimple("Amount");
    EXPECT_EQ(column("Fund"), QStringList({"A", "B", "C"}));
    grid.SortingRestore();
    grid.DoSortSimple("Amount");
    EXPECT_EQ(column("Fund"), QStringList({"C", "B", "A"}));
    grid.ResetSort();
    EXPECT_EQ(column("Fund"), QStringList({"A", "B", "C"}));
}

TEST_F(GridTest, ComplexSortWithoutOfferedColumnsOnlyExplains)
{
    ScopedMessages shown;
    addRow("B", "1");
    addRow("A", "2");
    grid.DoSortComplex();
    ASSERT_EQ(shown->shown().size(), 1u);
    EXPECT_EQ(shown->shown()[0].message.title, "Error");
    EXPECT_EQ(shown->shown()[0].message.text, "This feature has not been enabled for this window.");
    EXPECT_EQ(column("Fund"), QStringList({"B", "A"}));
    EXPECT_TRUE(grid.GetSort().empty());
}

TEST(ComplexSortingDialog, BuildsTheOrderFromTheButtons)
{
    guiApplication();
    formComplexSorting dialog;
    dialog.AddColumn("Fund", "Fund");
    dialog.AddColumn("Amount", "Amount");
    dialog.AddColumn("Name", "Name");
    dialog.SetLayout({classGridSortLayout("Name", false)});

    auto *available = dialog.findChild<QTableWidget *>("gridAvailable");
    auto *selected = dialog.findChild<QTableWidget *>("gridSelected");
    ASSERT_EQ(available->rowCount(), 2);
    available->setCurrentCell(1, 0); // Amount
    dialog.findChild<QPushButton *>("cmdAdd")->click();
    selected->setCurrentCell(1, 0);
    dialog.findChild<QPushButton *>("cmdMoveUp")->click();
    const GridSortOrder expected{classGridSortLayout("Amount", true), classGridSortLayout("Name", false)};
    EXPECT_EQ(dialog.Action(), expected);

    dialog.findChild<QPushButton *>("cmdReset")->click();
    EXPECT_TRUE(dialog.Action().empty());
    EXPECT_EQ(available->rowCount(), 3);
    dialog.findChild<QPushButton *>("cmdOK")->click();
    EXPECT_EQ(dialog.CloseAction(), formComplexSorting::Confirmed);
}

TEST(SortLayout, SurvivesItsTextForm)
{
    const GridSortOrder order{classGridSortLayout("Fund", true), classGridSortLayout("A:B", false)};
    EXPECT_EQ(sortOrderToText(order), "Fund:A;A:B:D");
    EXPECT_EQ(sortOrderFromText(sortOrderToText(order)), order);
    classGridSortLayout step;
    EXPECT_FALSE(step.SetLayout("Fund:X"));
    EXPECT_FALSE(step.SetLayout(":A"));
}

TEST_F(GridTest, MultiLinePropertiesBelongToMultiLineMode)
{
    const WrapperError constant = caught([&] { grid.MultiLineValueConstant(); });
    EXPECT_EQ(constant.description(), "Wrong mode to use this property.");
    EXPECT_EQ(constant.source(), "classGrid.MultiLineValueConstant.Get");
    EXPECT_EQ(caught([&] { grid.MultiLineValueColumnKey(); }).source(), "classGrid.MultiLineValueColumnKey.Get");

    addRow("A", "1");
    const int single = view.rowHeight(0);
    grid.setMultiLineMode(true);
    grid.setMultiLineValueConstant(3);
    EXPECT_EQ(grid.MultiLineValueConstant(), 3);
    EXPECT_GT(view.rowHeight(0), 2 * single);
    EXPECT_EQ(caught([&] { grid.setMultiLineValueColumnKey("Nope"); }).description(), "Invalid property key value");
}

TEST_F(GridTest, BalanceAndGreenbarFollowTheRows)
{
    grid.AddColumn("Balance", "Balance", {.type = GridColumnType::Amount});
    addRow("A", "10");
    addRow("B", "-2.5");
    addRow("C", "1");
    grid.Balance("Amount", "Balance");
    EXPECT_EQ(column("Balance"), QStringList({"10", "7.5", "8.5"}));
    grid.SetSort({classGridSortLayout("Fund", false)});
    EXPECT_EQ(column("Balance"), QStringList({"1", "-1.5", "8.5"}));
    grid.DeleteRow(3);
    EXPECT_EQ(column("Balance"), QStringList({"1", "-1.5"}));

    grid.setGreenbar(true);
    EXPECT_FALSE(view.model()->index(0, 0).data(Qt::BackgroundRole).isValid());
    EXPECT_TRUE(view.model()->index(1, 0).data(Qt::BackgroundRole).isValid());
}

TEST_F(GridTest, SelectionAndLookupByKey)
{
    addRow("A", "1");
    addRow("B", "2");
    EXPECT_EQ(grid.GetValueUsingKey("Fund", "A", "Amount"), "1");
    EXPECT_EQ(grid.GetValueUsingKey("Fund", "Z", "Amount"), "");
    grid.SelectRow(2);
    grid.ClearSelectedRows();
    EXPECT_EQ(grid.FirstselectedRow(), 0);

    // Several rows come back in row order, whatever order they were picked in.
    addRow("C", "3");
    grid.setSingleSelection(false);
    for (const int row : {3, 1})
        view.selectionModel()->select(view.model()->index(row - 1, 0),
                                      QItemSelectionModel::Select | QItemSelectionModel::Rows);
    EXPECT_EQ(grid.GetSelectedByKey("Fund"), QStringList({"A", "C"}));
    EXPECT_EQ(grid.FirstselectedRow(), 1);
    grid.ClearSelectedRow(1);
    EXPECT_EQ(grid.GetSelectedByKey("Fund"), QStringList({"C"}));
}

TEST_F(GridTest, TheTotalsRowAddsUpMarkedColumnsAndIsSeenOnlyWhenAskedFor)
{
    addRow("A", "10.25");
    addRow("B", "-2");
    const QAbstractItemModel &row = *totals.model();
    EXPECT_EQ(row.index(0, 1).data().toString(), "8.25");
    EXPECT_FALSE(row.index(0, 0).data().isValid()); // Fund carries no total
    EXPECT_EQ(grid.GetColumnTotal("Amount").toSqlText(), "8.25");
    EXPECT_TRUE(totals.isColumnHidden(2)); // under the hidden twin

    grid.setVisible(true);
    EXPECT_TRUE(totals.isHidden());
    grid.ShowTotals(true);
    EXPECT_FALSE(totals.isHidden());
    grid.setVisible(false);
    EXPECT_TRUE(totals.isHidden());
    grid.setVisible(true);
    EXPECT_FALSE(totals.isHidden());
}

TEST_F(GridTest, AConfirmedComplexSortOrdersByEveryChosenColumn)
{
    grid.Column("Fund").setSortComplex(true);
    grid.Column("Amount").setSortComplex(true);
    addRow("B", "1");
    addRow("A", "1");
    addRow("A", "5");
    QTimer::singleShot(0, [] {
        for (QWidget *top : QApplication::topLevelWidgets()) {
            auto *dialog = qobject_cast<formComplexSorting *>(top);
            if (!dialog || !dialog->isVisible())
                continue;
            auto *available = dialog->findChild<QTableWidget *>("gridAvailable");
            auto *add = dialog->findChild<QPushButton *>("cmdAdd");
            available->setCurrentCell(1, 0); // Amount first
            add->click();
            available->setCurrentCell(0, 0); // then Fund
            add->click();
            auto *selected = dialog->findChild<QTableWidget *>("gridSelected");
            qobject_cast<QComboBox *>(selected->cellWidget(0, 1))->setCurrentIndex(1); // Amount descending
            dialog->findChild<QPushButton *>("cmdOK")->click();
        }
    });
    grid.DoSortComplex();
    EXPECT_EQ(column("Fund"), QStringList({"A", "A", "B"}));
    EXPECT_EQ(column("Amount"), QStringList({"5", "1", "1"}));
    EXPECT_EQ(sortOrderToText(grid.GetSort()), "Amount:D;Fund:A");
}

TEST_F(GridTest, RowsAndColumnsKeepTheirSettings)
{
    grid.AddColumn("Active", "Active", {.type = GridColumnType::Check, .editable = true});
    grid.ResetRows(2);
    EXPECT_EQ(grid.CountRows(), 2);
    EXPECT_EQ(grid.GetItemValue(2, "Active"), "0");
    EXPECT_EQ(grid.GetItemValue(2, "Fund"), "");
    QAbstractItemModel &model = *view.model();
    EXPECT_TRUE(model.flags(model.index(0, 4)) & Qt::ItemIsUserCheckable);
    EXPECT_TRUE(model.setData(model.index(0, 4), Qt::Checked, Qt::CheckStateRole));
    EXPECT_EQ(grid.GetItemValue(1, "Active"), "1");
    grid.SetCell(2, "Active", true);
    EXPECT_EQ(grid.GetItemValue(2, "Active"), "1");

    EXPECT_THROW(grid.ColumnKey(9), WrapperError);
    grid.ColumnWidth("Fund", 2880);
    EXPECT_EQ(view.columnWidth(0), twipsToPixels(2880));
    EXPECT_EQ(totals.columnWidth(0), view.columnWidth(0));

    grid.Reset();
    EXPECT_EQ(grid.CountColumns(), 0);
    EXPECT_EQ(grid.CountRows(), 0);
}

TEST_F(GridTest, GroupingBlanksRepeatsWithinTheOuterGroupAndSetColumnRefusesWrongKeys)
{
    for (const QString fund : {"A", "A", "B"})
        addRow(fund, "1", "x");
    grid.setColumnGrouping("Fund", true);
    grid.setColumnGrouping("Name", true);
    const auto shown = [&](int row, int column) { return view.model()->index(row, column).data().toString(); };
    // Name repeats on row 3, but Fund starts a new group there.
    EXPECT_EQ(QStringList({shown(0, 0), shown(1, 0), shown(2, 0), shown(1, 3), shown(2, 3)}),
              QStringList({"A", "", "B", "", "x"}));
    EXPECT_EQ(grid.GetCellValue(2, "Fund"), "A");
    EXPECT_EQ(caught([&] { grid.setColumnGrouping("Nope", false); }).source(), "classGrid.ColumnGrouping.Let");

    EXPECT_FALSE(grid.ColumnVerify("Nope"));
    grid.SelectRow(2);
    grid.SetColumn("Name");
    EXPECT_EQ(caught([&] { grid.SetColumn("OrigAmount"); }).description(), "Invalid property key value");
    EXPECT_EQ(std::pair(grid.CurrentRow(), grid.CurrentColumnName()), std::pair(2, QString("Name")));
}

TEST_F(GridTest, HorizontalAndVerticalRulesAreDrawnIndependently)
{
    addRow("A", "1");
    view.resize(500, 200);
    const QRect cell = view.visualRect(view.model()->index(0, 3)); // an empty cell
    const auto rules = [&](bool horizontal, bool vertical) {
        grid.setLinesHorizontal(horizontal);
        grid.setLinesVertical(vertical);
        const QImage image = view.viewport()->grab().toImage();
        const QRgb inside = image.pixel(cell.center());
        return std::pair(image.pixel(cell.center().x(), cell.bottom()) != inside,
                         image.pixel(cell.right(), cell.center().y()) != inside);
    };
    EXPECT_EQ(rules(true, false), std::pair(true, false));
    EXPECT_EQ(rules(false, true), std::pair(false, true));
}

TEST_F(GridTest, SavedSortDefaultComesBackForTheSameGridOnly)
{
    grid.SaveSortDefault(); // unnamed: kept for this run only
    EXPECT_TRUE(QSettings().allKeys().isEmpty());
    grid.setSortLayoutName("Accounts/grid1");
    grid.SetSort({classGridSortLayout("Fund", true), classGridSortLayout("Amount", false)});
    grid.SaveSortDefault();
    const auto firstAfterReset = [](const QString &name, const QStringList &keys) {
        QTableView table;
        classGrid next;
        next.Init(&table, nullptr);
        next.setSortLayoutName(name);
        for (const QString &key : keys)
            next.AddColumn(key, key);
        for (const QString fund : {"B", "A"})
            next.SetCell(next.AddRow(), "Fund", fund);
        next.ResetSort();
        return next.GetItemValue(1, "Fund");
    };
    EXPECT_EQ(firstAfterReset("Accounts/grid1", {"Fund", "Amount"}), "A");
    EXPECT_EQ(firstAfterReset("Reports/grid1", {"Fund", "Amount"}), "B");
    EXPECT_EQ(firstAfterReset("Accounts/grid1", {"Fund"}), "B"); // the saved order names a missing column
}

} // namespace
