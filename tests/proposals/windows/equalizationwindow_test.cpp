#include "proposalwindowtest.h"
#include "refusedwrites.h"

#include "equalizationwindow.h"

#include <QAbstractButton>

namespace {

const QString numbersMessage = "Kora-Budget|Please make sure all the fields are filled with numbers";
const std::string northAndSouth = "North,0.8,1000,900,0.7,800,700|South,0.9,2000,1900,0.6,600,500";

// The window over the districts North and South, on each backend.
class EqualizationWindowTest : public WindowTest {
protected:
    void prepare() override
    {
        const QString insert = "Insert into TaxRate (TownShip, CurrentEqualRate, CurrentAssessment, CurrentTaxAssess, "
                               "PrevEqualRate, PrevAssessment, PrevTaxAssess) values ";
        exec(insert + "('North', 0.8, 1000, 900, 0.7, 800, 700)");
        exec(insert + "('South', 0.9, 2000, 1900, 0.6, 600, 500)");
        openWindow<workerEqualization>();
    }
    // A row's cells as typed, from the district's name on.
    void type(int row, const QStringList &cells)
    {
        const char *keys[] = {"District",
                              "CurrentRate",
                              "CurrentTotalAssessment",
                              "CurrentTaxableAssessment",
                              "PreviousRate",
                              "PreviousTotalAssessment",
                              "PreviousTaxableAssessment"};
        for (int i = 0; i < cells.size(); ++i)
            if (!cells[i].isNull())
                grid().SetCell(row, keys[i], cells[i]);
    }
    std::string stored()
    {
        return rows("select TownShip, CurrentEqualRate, CurrentAssessment, CurrentTaxAssess, PrevEqualRate, "
                    "PrevAssessment, PrevTaxAssess from TaxRate order by ID")
            .toStdString();
    }
    void erase(int row)
    {
        grid().SelectRow(row);
        recorder->answer(MsgAnswer::Yes);
        worker->UserAction(*dialog, "cmdErase");
    }
};

TEST_P(EqualizationWindowTest, ANewDistrictIsStoredWithItsPriorPairCrossedAnEditedOneStraight)
{
    qobject_cast<QAbstractButton *>(dialog->Control("cmdAdd").field())->click();
    ASSERT_EQ(grid().CurrentRow(), 3);
    type(3, {"Maple Falls", "0.5", "300", "200", "0.25", "100", "80"});
    type(1, {{}, {}, {}, {}, {}, "810"});
    ASSERT_TRUE(dialog->Save()) << shownTexts().join('\n').toStdString();
    EXPECT_EQ(stored(), "North,0.8,1000,900,0.7,810,700|South,0.9,2000,1900,0.6,600,500|"
                        "Maple Falls,0.5,300,200,0.25,80,100");
    // What was stored, the crossed prior pair included.
    EXPECT_EQ(rows("select Task, TableName, ColumnName, OldValue, NewValue from AuditTrail order by ID").toStdString(),
              "Equalization,TaxRate,PrevAssessment,800,810|Equalization,TaxRate,TownShip,,Maple Falls|"
              "Equalization,TaxRate,CurrentEqualRate,,0.5|Equalization,TaxRate,CurrentAssessment,,300|"
              "Equalization,TaxRate,CurrentTaxAssess,,200|Equalization,TaxRate,PrevEqualRate,,0.25|"
              "Equalization,TaxRate,PrevAssessment,,80|Equalization,TaxRate,PrevTaxAssess,,100");
}

TEST_P(EqualizationWindowTest, ARowThatIsNotAllNumbersSavesNothing)
{
    type(1, {{}, {}, "1001"});
    type(2, {{}, "abc"});
    EXPECT_FALSE(dialog->Save());
    EXPECT_EQ(shownTexts(), QStringList{numbersMessage});
    EXPECT_EQ(stored(), northAndSouth);
    EXPECT_EQ(grid().GetItemValue(2, "CurrentRate"), "abc") << "the user's typing is kept";

    // A new district with a number left out is refused the same way.
    type(2, {{}, "0.9"});
    type(grid().AddRow(), {"East", "1", "5", "4", "", "3", "2"});
    EXPECT_FALSE(dialog->Save());
    EXPECT_EQ(shownTexts(), (QStringList{numbersMessage, numbersMessage}));
    EXPECT_EQ(stored(), northAndSouth);
}

TEST_P(EqualizationWindowTest, FailedWritesAreNamedAndUndone)
{
    refuseWrites(*db(), "TaxRate", "INSERT", "NEW.TownShip = 'West'");
    type(1, {{}, "0.81"});
    type(grid().AddRow(), {"West", "1", "5", "4", "1", "3", "2"});
    EXPECT_FALSE(dialog->Save());
    EXPECT_TRUE(shownTexts().value(0).startsWith("Equalization Districts|Error adding Equalization Districts: "));
    EXPECT_EQ(stored(), northAndSouth);
    EXPECT_EQ(auditTrail(), "");

    // South erased behind the window's back: neither its edit nor its erasure can be carried out.
    recorder->clear();
    grid().DeleteRow(3);
    exec("Delete from TaxRate where TownShip = 'South'");
    type(2, {{}, "0.95"});
    EXPECT_FALSE(dialog->Save());
    erase(2);
    EXPECT_EQ(shownTexts(),
              (QStringList{"Equalization Districts|Error updating Equalization Districts: 0 records to be update",
                           "Equalization Districts|Erase the district \"South\"?",
                           "Equalization Districts|Error Erase the Equalization District: 0 records to be Delete"}));
    EXPECT_EQ(grid().CountRows(), 2);
    EXPECT_EQ(stored(), "North,0.8,1000,900,0.7,800,700");

    erase(1);
    EXPECT_EQ(stored(), "");
    EXPECT_EQ(grid().GetItemValue(1, "District"), "South");
}

KORA_ALL_BACKENDS(EqualizationWindowTest);

} // namespace
