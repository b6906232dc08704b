#include "formtransactionquerypopup.h"

#include "objectsummaryledgers.h"

#include "guiapplication.h"
#include "recordingmessages.h"
#include "sampleinstallationfixture.h"

#include <QApplication>
#include <QItemSelectionModel>
#include <QMouseEvent>
#include <QPushButton>
#include <QTableView>
#include <QTimer>

#include <gtest/gtest.h>

namespace {

QueryItems numbered(int count)
{
    QueryItems items;
    for (int i = 1; i <= count; ++i)
        items.push_back({QStringLiteral("A%1").arg(i, 4, 10, QLatin1Char('0')), QStringLiteral("Account %1").arg(i)});
    return items;
}

QStringList shown(QTableView *view)
{
    QStringList values;
    for (int row = 0; row < view->model()->rowCount(); ++row)
        values << view->model()->index(row, 0).data().toString();
    return values;
}

// What the mouse sends for a double click on a row: press, release, double click, release.
void doubleClick(QTableView *view, int row)
{
    const QPoint at = view->visualRect(view->model()->index(row, 0)).center();
    const QPointF global = view->viewport()->mapToGlobal(QPointF(at));
    for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease, QEvent::MouseButtonDblClick,
                                    QEvent::MouseButtonRelease}) {
        const Qt::MouseButtons held = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
        QMouseEvent event(type, QPointF(at), global, Qt::LeftButton, held, Qt::NoModifier);
        QApplication::sendEvent(view->viewport(), &event);
    }
}

void select(QTableView *view, std::initializer_list<int> rows)
{
    view->clearSelection();
    for (const int row : rows)
        view->selectionModel()->select(view->model()->index(row, 0),
                                       QItemSelectionModel::Select | QItemSelectionModel::Rows);
}

class QueryPopUpTest : public ::testing::Test {
protected:
    GuiApplicationGuard app;
    ScopedMessages messages;
    formTransactionQueryPopUp popUp;
};

TEST_F(QueryPopUpTest, EachModeHasItsCaption)
{
    const std::pair<TransactionQuery, const char *> modes[] = {{TransactionQuery::AccountCodes, "Select Account Codes"},
                                                               {TransactionQuery::Vendors, "Select Vendors"},
                                                               {TransactionQuery::Encumbrances, "Select Encumbrances"},
                                                               {TransactionQuery::Checks, "Select Checks"},
                                                               {TransactionQuery::Receipts, "Select Receipts"}};
    for (const auto &[mode, caption] : modes) {
        popUp.setMode(mode);
        EXPECT_EQ(popUp.windowTitle(), caption);
        EXPECT_EQ(popUp.availableList()->isColumnHidden(1), mode != TransactionQuery::AccountCodes) << caption;
    }
    popUp.setCaptions("Folder Ajustment for: Instruction", "Selected (Items selected in the subfolder of Instruction)");
    EXPECT_EQ(popUp.windowTitle(), "Folder Ajustment for: Instruction");
}

TEST_F(QueryPopUpTest, SeveralRowsMoveEitherWayAndComeBackToTheirPlaces)
{
    popUp.LoadList(numbered(6));
    EXPECT_EQ(popUp.statusText(), "Loaded 6 records...");
    select(popUp.availableList(), {4, 1, 2});
    popUp.MoveRowRight();
    EXPECT_EQ(shown(popUp.availableList()), QStringList({"A0001", "A0004", "A0006"}));
    EXPECT_EQ(popUp.SearchValues(), QStringList({"A0002", "A0003", "A0005"}));
    select(popUp.availableList(), {2});
    popUp.findChild<QPushButton *>("cmdMoveRight")->click();
    EXPECT_EQ(popUp.SearchValues(), QStringList({"A0002", "A0003", "A0005", "A0006"}));

    select(popUp.chosenList(), {0, 3});
    popUp.findChild<QPushButton *>("cmdMoveLeft")->click();
    EXPECT_EQ(shown(popUp.availableList()), QStringList({"A0001", "A0002", "A0004", "A0006"}));
    EXPECT_EQ(popUp.SearchValues(), QStringList({"A0003", "A0005"}));

    // A new list starts with nothing chosen.
    popUp.LoadList(numbered(2));
    EXPECT_TRUE(popUp.SearchValues().isEmpty());
    EXPECT_EQ(shown(popUp.availableList()), QStringList({"A0001", "A0002"}));
}

TEST_F(QueryPopUpTest, ADoubleClickMovesTheRowItIsOn)
{
    popUp.LoadList(numbered(3));
    popUp.resize(600, 400);
    popUp.show();
    QTableView *left = popUp.availableList();
    doubleClick(left, 1);
    EXPECT_EQ(popUp.SearchValues(), QStringList({"A0002"}));
    doubleClick(popUp.chosenList(), 0);
    EXPECT_TRUE(popUp.SearchValues().isEmpty());
    EXPECT_EQ(shown(left), QStringList({"A0001", "A0002", "A0003"}));
}

TEST_F(QueryPopUpTest, ValuesChosenBeforehandStartOnTheRight)
{
    popUp.LoadList(numbered(5));
    popUp.setSearchValues({" a0004", "A0002", "NOT THERE"});
    EXPECT_EQ(popUp.SearchValues(), QStringList({"A0002", "A0004"}));
    EXPECT_EQ(shown(popUp.availableList()), QStringList({"A0001", "A0003", "A0005"}));
}

TEST_F(QueryPopUpTest, FindGoesToTheNextMatchAndWrapsAround)
{
    QueryItems items = numbered(12);
    items[6].description = QStringLiteral("Band uniforms");
    popUp.LoadList(items);
    const auto current = [&] { return popUp.availableList()->selectionModel()->currentIndex().row(); };
    // After the last match it starts again from the top; descriptions are searched too.
    const std::pair<const char *, int> finds[] = {{"a001", 9}, {"A001", 10}, {"A001", 11}, {"A001", 9}, {"uniform", 6}};
    for (const auto &[text, row] : finds) {
        EXPECT_TRUE(popUp.FindInList(text)) << text;
        EXPECT_EQ(current(), row) << text;
    }
    EXPECT_FALSE(popUp.FindInList("0099"));
    EXPECT_EQ(popUp.statusText(), "\"0099\" is not in the list.");
    EXPECT_EQ(current(), 6);
    EXPECT_TRUE(popUp.FindInList("A0002"));
    EXPECT_EQ(popUp.statusText(), "Loaded 12 records...");
}

TEST_F(QueryPopUpTest, LoadingReportsItsProgressAndFreezesTheLists)
{
    QStringList reported;
    bool frozen = true;
    QTimer probe;
    QObject::connect(&probe, &QTimer::timeout, [&] {
        reported << popUp.statusText();
        frozen = frozen && !popUp.availableList()->isEnabled();
    });
    probe.start(0);
    popUp.LoadList(numbered(5000));
    probe.stop();
    EXPECT_TRUE(reported.contains("Loaded 2000 records...")) << reported.join(" | ").toStdString();
    EXPECT_TRUE(frozen);
    EXPECT_EQ(popUp.statusText(), "Loaded 5000 records...");
    EXPECT_TRUE(popUp.availableList()->isEnabled());
    EXPECT_EQ(popUp.availableList()->model()->rowCount(), 5000);
}

TEST_F(QueryPopUpTest, DisplayReturnsWhetherTheUserChose)
{
    popUp.LoadList(numbered(3));
    QTimer::singleShot(0, [&] {
        select(popUp.availableList(), {0});
        popUp.MoveRowRight();
        popUp.findChild<QPushButton *>("cmdOK")->click();
    });
    EXPECT_EQ(popUp.Display(), formTransactionQueryPopUp::Chosen);
    EXPECT_EQ(popUp.SearchValues(), QStringList({"A0001"}));
    QTimer::singleShot(0, [&] { popUp.findChild<QPushButton *>("cmdCancel")->click(); });
    EXPECT_EQ(popUp.Display(), formTransactionQueryPopUp::Cancelled);
    EXPECT_EQ(popUp.CloseAction(), formTransactionQueryPopUp::Cancelled);
}

class QueryPopUpFileTest : public SampleInstallationTest {
protected:
    GuiApplicationGuard app;
    ScopedMessages messages;
    formTransactionQueryPopUp popUp;
    FundDataPlace place() const { return {root(), fund()}; }
};

TEST_F(QueryPopUpFileTest, AccountCodesComeFromTheSummariesOtherKindsFromTheTransactions)
{
    classObjectELSummary summary;
    ASSERT_EQ(summary.Init(root(), fund()), 0);
    std::vector<AccountCodeName> expected;
    ASSERT_EQ(summary.GetAcctCodeList(expected), 0);

    popUp.setLedger("e");
    ASSERT_TRUE(popUp.LoadList(place()));
    QAbstractItemModel *model = popUp.availableList()->model();
    ASSERT_EQ(model->rowCount(), int(expected.size()));
    EXPECT_EQ(model->index(0, 0).data().toString(), expected.front().AccountCode);
    EXPECT_EQ(model->index(0, 1).data().toString(), expected.front().Name);
    EXPECT_EQ(popUp.statusText(), QStringLiteral("Loaded %1 records...").arg(expected.size()));

    popUp.setLedger("");
    ASSERT_TRUE(popUp.LoadList(place()));
    const QStringList all = shown(popUp.availableList());
    EXPECT_GT(all.size(), int(expected.size())) << "every ledger's codes";
    EXPECT_TRUE(std::is_sorted(all.begin(), all.end()));

    classObjectTransactions transactions;
    ASSERT_EQ(transactions.Init(root(), fund()), 0);
    QStringList vendors;
    ASSERT_EQ(transactions.FetchList(TransactionQuery::Vendors, "E", vendors), 0);
    ASSERT_FALSE(vendors.isEmpty());
    popUp.setMode(TransactionQuery::Vendors);
    popUp.setLedger("E");
    ASSERT_TRUE(popUp.LoadList(place()));
    EXPECT_EQ(shown(popUp.availableList()), vendors);

    EXPECT_FALSE(popUp.LoadList(FundDataPlace{root(), fund() + "\\MISSING"}));
    EXPECT_EQ(popUp.availableList()->model()->rowCount(), 0);
    ASSERT_EQ(messages->shown().size(), 1u);
    EXPECT_TRUE(
        messages->shown().front().message.text.startsWith("Cannot read the list for \"Select Vendors\". error: "))
        << messages->shown().front().message.text.toStdString();
}

} // namespace
