// Typing, moving and pasting in an editable grid, the amounts a cell takes,
// and the component summary's shares.
#include "amountentry.h"
#include "componentsummary.h"
#include "gridentry.h"

#include "guiapplication.h"
#include "recordingmessages.h"

#include "classgrid.h"

#include <QClipboard>
#include <QKeyEvent>
#include <QLineEdit>
#include <QTableView>

#include <gtest/gtest.h>

namespace {

TEST(AmountEntry, TakesWhatUsersTypeAndNamesWhatItRefuses)
{
    const std::pair<const char *, const char *> accepted[] = {
        {"1,234.50", "1234.5"},
        {"1234.5", "1234.5"},
        {"(200.00)", "-200"},
        {"-0.0001", "-0.0001"},
        {" 12 ", "12"},
        {"", "0"},
        {".5", "0.5"},
        {"99,999,999,999.9999", "99999999999.9999"},
        {"-99999999999.9999", "-99999999999.9999"},
        {"00000000000012", "12"},
    };
    for (const auto &[typed, value] : accepted) {
        const AmountEntry entry = parseAmountEntry(typed);
        ASSERT_TRUE(entry.ok()) << typed << ": " << entry.problem.toStdString();
        EXPECT_EQ(entry.value->toSqlText(), value) << typed;
    }
    const std::pair<const char *, const char *> refused[] = {
        {"abc", "\"abc\" is not an amount"},
        {"12.34567", "\"12.34567\" has more than four decimals"},
        {"100,000,000,000", "\"100,000,000,000\" is beyond \u00b199,999,999,999.9999"},
        {"-123456789012.5", "\"-123456789012.5\" is beyond \u00b199,999,999,999.9999"},
        {"1,23.5", "\"1,23.5\" is not an amount"},
        {"(200", "\"(200\" is not an amount"},
        {"(-5)", "\"(-5)\" is not an amount"},
        {"12'; drop table x", "\"12'; drop table x\" is not an amount"},
        {".", "\".\" is not an amount"},
    };
    for (const auto &[typed, problem] : refused) {
        const AmountEntry entry = parseAmountEntry(typed);
        EXPECT_FALSE(entry.ok()) << typed;
        EXPECT_EQ(entry.problem, QString::fromUtf8(problem)) << typed;
    }
}

TEST(ComponentShares, RoundHalfAwayFromZeroInTenthsOfAPercent)
{
    const auto money = [](const char *text) { return *Currency::parse(text); };
    EXPECT_EQ(shareText(money("1"), money("3")), "33.3%");
    EXPECT_EQ(shareText(money("2"), money("3")), "66.7%");
    EXPECT_EQ(shareText(money("1"), money("8")), "12.5%");
    EXPECT_EQ(shareText(money("-1"), money("8")), "-12.5%");
    EXPECT_EQ(shareText(money("5"), money("0")), "0.0%");
    EXPECT_EQ(shareText(money("99999999999.9999"), money("99999999999.9999")), "100.0%");
}

class GridEntryTest : public ::testing::Test {
protected:
    GridEntryTest()
    {
        grid.Init(&view, &totals);
        const auto column = [](GridColumnType type, bool editable, const char *caption2 = "") {
            GridColumnOptions options;
            options.type = type;
            options.editable = editable;
            options.caption2 = caption2;
            return options;
        };
        grid.AddColumn("Code", "Code", column(GridColumnType::Text, false));
        grid.AddColumn("Amount", "Amount", column(GridColumnType::Amount, true));
        grid.AddColumn("OrigAmount", "", [&] {
            auto hidden = column(GridColumnType::Amount, false);
            hidden.hidden = true;
            return hidden;
        }());
        grid.AddColumn("CatA", "Category", column(GridColumnType::Amount, true, "Admin"));
        auto note = column(GridColumnType::Text, true);
        note.maxLength = 5;
        grid.AddColumn("Note", "Note", note);
        for (const char *code : {"A1", "A2", "A3"}) {
            const int row = grid.AddRow();
            grid.SetCell(row, "Code", QString(code));
            grid.SetCell(row, "Amount", *Currency::parse("1234.5"));
        }
        grid.setCellLocked(2, "CatA", true);
        entry = new GridEntry(grid, "Code", "Entry");
        QObject::connect(entry, &GridEntry::edited,
                         [this](int row, const QString &key) { edits << QString("%1:%2").arg(row).arg(key); });
        view.resize(600, 300);
        view.show();
    }

    void press(QWidget *to, int key, const QString &text = {})
    {
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier, text);
        QApplication::sendEvent(to, &event);
    }
    void typeInto(const QString &text)
    {
        for (const QChar c : text)
            press(editor() ? static_cast<QWidget *>(editor()) : &view, 0, QString(c));
    }
    // The open editor; closed ones wait hidden for their deferred deletion.
    QLineEdit *editor() const
    {
        for (QLineEdit *line : view.viewport()->findChildren<QLineEdit *>()) {
            if (line->isVisible())
                return line;
        }
        return nullptr;
    }
    void current(int row, int column) { view.setCurrentIndex(view.model()->index(row - 1, column - 1)); }
    QString at() const
    {
        const QModelIndex index = view.currentIndex();
        return QString("%1:%2").arg(index.row() + 1).arg(grid.ColumnKey(index.column() + 1));
    }

    GuiApplicationGuard app;
    ScopedMessages shown;
    QTableView view;
    QTableView totals;
    classGrid grid;
    GridEntry *entry = nullptr;
    QStringList edits;
};

TEST_F(GridEntryTest, TypingReplacesTheCellEnterMovesDownTabMovesRight)
{
    current(1, 2);
    typeInto("75");
    ASSERT_NE(editor(), nullptr);
    EXPECT_EQ(editor()->text(), "75") << "the typed figure replaces 1,234.50";
    press(editor(), Qt::Key_Return);
    EXPECT_EQ(grid.GetItemValue(1, "Amount"), "75");
    EXPECT_EQ(at(), "2:Amount");

    press(&view, Qt::Key_Enter);
    EXPECT_EQ(at(), "3:Amount") << "Enter moves down without editing too";

    typeInto("8");
    press(editor(), Qt::Key_Tab);
    EXPECT_EQ(grid.GetItemValue(3, "Amount"), "8");
    EXPECT_EQ(at(), "3:CatA") << "Tab passes over the hidden twin";
    EXPECT_TRUE(shown->shown().empty());
}

TEST_F(GridEntryTest, ARefusedFigureKeepsTheCellAndTheEditorOpen)
{
    current(2, 2);
    typeInto("12.34567");
    press(editor(), Qt::Key_Return);
    ASSERT_EQ(shown->shown().size(), 1u);
    EXPECT_EQ(shown->shown()[0].message.text,
              "Amount: \"12.34567\" has more than four decimals. The cell keeps 1,234.50.");
    EXPECT_EQ(shown->shown()[0].message.title, "Entry");
    ASSERT_NE(editor(), nullptr) << "what was typed is still there to correct";
    EXPECT_EQ(editor()->text(), "12.34567");
    EXPECT_EQ(grid.GetItemValue(2, "Amount"), "1234.5");
    EXPECT_EQ(at(), "2:Amount");

    editor()->setText("abc");
    press(editor(), Qt::Key_Tab);
    EXPECT_EQ(shown->shown().size(), 2u);
    EXPECT_EQ(at(), "2:Amount");
}

TEST_F(GridEntryTest, PastesABlockIntoEditableCellsFromTheCurrentOne)
{
    // A spreadsheet block: CRLF rows, a trailing line break, a closed cell repeating its own figure.
    EXPECT_TRUE(entry->PasteBlock(1, "Amount", "10\t1\tab\r\n20\t\tcd\r\n"));
    EXPECT_EQ(grid.GetItemValue(1, "Amount"), "10");
    EXPECT_EQ(grid.GetItemValue(1, "CatA"), "1");
    EXPECT_EQ(grid.GetItemValue(1, "Note"), "ab");
    EXPECT_EQ(grid.GetItemValue(2, "Amount"), "20");
    EXPECT_EQ(grid.GetItemValue(2, "Note"), "cd");
    EXPECT_EQ(grid.GetItemValue(1, "OrigAmount"), "") << "hidden twins are never pasted into";
    EXPECT_EQ(edits, QStringList({"1:Amount", "1:CatA", "1:Note", "2:Amount", "2:Note"}));

    // Ctrl+V takes the clipboard's block from the current cell.
    QApplication::clipboard()->setText("30\t3\n");
    current(3, 2);
    QKeyEvent paste(QEvent::KeyPress, Qt::Key_V, Qt::ControlModifier);
    QApplication::sendEvent(&view, &paste);
    EXPECT_EQ(grid.GetItemValue(3, "Amount"), "30");
    EXPECT_EQ(grid.GetItemValue(3, "CatA"), "3");
    EXPECT_TRUE(shown->shown().empty());
}

TEST_F(GridEntryTest, ARefusedValueStopsThePasteAndEveryRefusalIsNamedOnce)
{
    EXPECT_FALSE(entry->PasteBlock(1, "Amount", "5\t6\n7\t8\tlonger than five\nx\n9\n"));
    ASSERT_EQ(shown->shown().size(), 1u);
    EXPECT_EQ(shown->shown()[0].message.text, "Nothing was pasted. These values cannot go where they would land:\n"
                                              "A2, Category Admin: \"8\" cannot go into a cell that is closed\n"
                                              "A2, Note: \"longer than five\" is longer than 5 characters\n"
                                              "A3, Amount: \"x\" is not an amount\n"
                                              "row 4: \"9\" falls below the last row");
    EXPECT_EQ(grid.GetItemValue(1, "Amount"), "1234.5");
    EXPECT_EQ(grid.GetItemValue(1, "CatA"), "");
    EXPECT_TRUE(edits.isEmpty());

    EXPECT_FALSE(entry->PasteBlock(3, "Note", "a\tb"));
    EXPECT_TRUE(shown->shown().back().message.text.endsWith("A3: \"b\" falls past the last column"));
}

} // namespace
