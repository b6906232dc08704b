#include "equalizationwindow.h"
#include "refusedwrites.h"

#include "appglobals.h"
#include "classdialog.h"
#include "classgrid.h"

#include "guiapplication.h"
#include "recordingmessages.h"
#include "testdatabases.h"

#include <QAbstractButton>

namespace {

const char *const everyColumn = "select TownShip, CurrentEqualRate, CurrentAssessment, CurrentTaxAssess, "
                                "PrevEqualRate, PrevAssessment, PrevTaxAssess from TaxRate order by ID";

class EqualizationWindowTest : public testdb::DatabaseTest {
protected:
    void SetUp() override
    {
        DatabaseTest::SetUp();
        gstrBudgetYearID = "2025";
        gbCalendarYear = true;
    }
    void TearDown() override
    {
        resetAppGlobals();
        DatabaseTest::TearDown();
    }
    void district(const QString &values)
    {
        exec("Insert into TaxRate (TownShip, CurrentEqualRate, CurrentAssessment, CurrentTaxAssess, PrevEqualRate, "
             "PrevAssessment, PrevTaxAssess) values (" + values + ")");
    }
    classGrid &open()
    {
        worker = std::make_unique<workerEqualization>(db());
        dialog = std::make_unique<classDialog>(*worker);
        dialog->Build(1);
        return grid();
    }
    classGrid &grid() const { return dialog->Control("AcctGrid").Grid(); }
    void type(int row, const QString &key, const QString &text) { grid().SetCell(row, key, text); }
    // A row's district and six numbers as typed.
    void fill(int row, const QStringList &cells)
    {
        const char *keys[] = {"District", "CurrentRate", "CurrentTotalAssessment", "CurrentTaxableAssessment",
                              "PreviousRate", "PreviousTotalAssessment", "PreviousTaxableAssessment"};
        for (int i = 0; i < cells.size(); ++i)
            type(row, keys[i], cells[i]);
    }
    std::string stored() { return rows(everyColumn).toStdString(); }
    QStringList messageTexts() const
    {
        QStringList texts;
        for (const auto &shown : shownMessages->shown())
            texts << shown.message.title + ": " + shown.message.text;
        return texts;
    }

    GuiApplicationGuard app;
    ScopedMessages shownMessages;
    std::unique_ptr<workerEqualization> worker;
    std::unique_ptr<classDialog> dialog;
};

TEST_P(EqualizationWindowTest, LoadsEveryDistrictUnderItsYears)
{
    district("'North', 0.8734, 1000000, 900000, 0.85, 950000, 850000");
    district("'South', 1, 20.5, 10.25, 1, 0, 0");
    open();
    ASSERT_EQ(grid().CountRows(), 2);
    EXPECT_EQ(grid().GetItemValue(1, "District"), "North");
    EXPECT_EQ(grid().GetItemValue(1, "CurrentRate"), "0.8734");
    EXPECT_EQ(grid().GetItemValue(1, "OrigPreviousTaxableAssessment"), "850000");
    EXPECT_EQ(grid().GetItemValue(2, "CurrentTotalAssessment"), "20.5");
    EXPECT_TRUE(grid().ColumnHidden("Id"));
    EXPECT_EQ(grid().Column("CurrentRate").Heading(), "Rate\n2025");
    EXPECT_EQ(grid().Column("PreviousTaxableAssessment").Heading(), "Taxable Assessment\n2024");
    EXPECT_FALSE(grid().RowChanged(1));
}

TEST_P(EqualizationWindowTest, ANewDistrictIsStoredWithItsPriorPairCrossedAnEditedOneStraight)
{
    district("'North', 0.8, 1000, 900, 0.7, 800, 700");
    open();
    qobject_cast<QAbstractButton *>(dialog->Control("cmdAdd").field())->click();
    ASSERT_EQ(grid().CountRows(), 2);
    EXPECT_EQ(grid().CurrentRow(), 2);
    fill(2, {"Maple Falls", "0.5", "300", "200", "0.25", "100", "80"});
    type(1, "PreviousTotalAssessment", "810");
    ASSERT_TRUE(dialog->Save()) << messageTexts().join('\n').toStdString();
    EXPECT_EQ(stored(), "North,0.8,1000,900,0.7,810,700|Maple Falls,0.5,300,200,0.25,80,100");
    EXPECT_TRUE(shownMessages->shown().empty());
}

TEST_P(EqualizationWindowTest, ARowThatIsNotAllNumbersSavesNothing)
{
    district("'North', 0.8, 1000, 900, 0.7, 800, 700");
    district("'South', 0.9, 2000, 1900, 0.6, 600, 500");
    open();
    type(1, "CurrentTotalAssessment", "1001");
    type(2, "CurrentRate", "abc");
    EXPECT_FALSE(dialog->Save());
    EXPECT_EQ(messageTexts(), QStringList{"Kora-Budget: Please make sure all the fields are filled with numbers"});
    EXPECT_EQ(stored(), "North,0.8,1000,900,0.7,800,700|South,0.9,2000,1900,0.6,600,500");
    EXPECT_EQ(grid().GetItemValue(2, "CurrentRate"), "abc") << "the user's typing is kept";

    // A new district with a number left out is refused the same way.
    shownMessages->clear();
    type(2, "CurrentRate", "0.9");
    fill(grid().AddRow(), {"East", "1", "5", "4", "", "3", "2"});
    EXPECT_FALSE(dialog->Save());
    EXPECT_EQ(messageTexts(), QStringList{"Kora-Budget: Please make sure all the fields are filled with numbers"});
    EXPECT_EQ(stored(), "North,0.8,1000,900,0.7,800,700|South,0.9,2000,1900,0.6,600,500");
}

TEST_P(EqualizationWindowTest, FailedWritesAreNamedAndUndone)
{
    district("'North', 0.8, 1000, 900, 0.7, 800, 700");
    district("'South', 0.9, 2000, 1900, 0.6, 600, 500");
    refuseWrites(*db(), "TaxRate", "INSERT", "NEW.TownShip = 'West'");
    open();
    type(1, "CurrentRate", "0.81");
    fill(grid().AddRow(), {"West", "1", "5", "4", "1", "3", "2"});
    EXPECT_FALSE(dialog->Save());
    ASSERT_EQ(shownMessages->shown().size(), 1u);
    EXPECT_TRUE(shownMessages->shown()[0].message.text.startsWith("Error adding Equalization Districts: "));
    EXPECT_EQ(stored(), "North,0.8,1000,900,0.7,800,700|South,0.9,2000,1900,0.6,600,500");

    // South erased behind the window's back: its edit cannot be written.
    shownMessages->clear();
    grid().DeleteRow(3);
    exec("Delete from TaxRate where TownShip = 'South'");
    type(2, "CurrentRate", "0.95");
    EXPECT_FALSE(dialog->Save());
    EXPECT_EQ(messageTexts(),
              QStringList{"Equalization Districts: Error updating Equalization Districts: 0 records to be update"});
    EXPECT_EQ(stored(), "North,0.8,1000,900,0.7,800,700");
}

TEST_P(EqualizationWindowTest, EraseRemovesTheCurrentDistrictOnceTheUserAgrees)
{
    district("'North', 0.8, 1000, 900, 0.7, 800, 700");
    district("'South', 0.9, 2000, 1900, 0.6, 600, 500");
    open();
    grid().SelectRow(1);
    worker->UserAction(*dialog, "cmdErase"); // the question defaults to No
    EXPECT_EQ(rows("select TownShip from TaxRate order by ID").toStdString(), "North|South");
    EXPECT_EQ(grid().CountRows(), 2);

    shownMessages->answer(MsgAnswer::Yes);
    worker->UserAction(*dialog, "cmdErase");
    EXPECT_EQ(rows("select TownShip from TaxRate").toStdString(), "South");
    ASSERT_EQ(grid().CountRows(), 1);
    EXPECT_EQ(grid().GetItemValue(1, "District"), "South");

    // Gone already: the count says so and the row stays.
    shownMessages->clear();
    exec("Delete from TaxRate");
    grid().SelectRow(1);
    shownMessages->answer(MsgAnswer::Yes);
    worker->UserAction(*dialog, "cmdErase");
    EXPECT_EQ(messageTexts().value(1),
              "Equalization Districts: Error Erase the Equalization District: 0 records to be Delete");
    EXPECT_EQ(grid().CountRows(), 1);

    // A row never saved just goes.
    grid().SelectRow(grid().AddRow());
    shownMessages->answer(MsgAnswer::Yes);
    worker->UserAction(*dialog, "cmdErase");
    EXPECT_EQ(grid().CountRows(), 1);
}

KORA_ALL_BACKENDS(EqualizationWindowTest);

} // namespace
