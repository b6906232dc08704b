#include "appglobals.h"
#include "currency.h"
#include "dataaccesscontrol.h"
#include "fundfiles.h"
#include "sampleinstallationfixture.h"

#include <QDir>
#include <QFile>

namespace {
void openOn(DataAccessControl &control, const QString &ddf, const QString &table, const QString &location)
{
    control.setDdfPath(ddf);
    control.setFileName(table);
    control.setLocation(location);
    control.Open();
}
} // namespace

using ControlTest = SampleInstallationTest;

TEST_F(ControlTest, WindowsLocationsResolveWhateverTheCase)
{
    DataAccessControl control;
    openOn(control, root().toUpper(), QStringLiteral("funds"), root() + QStringLiteral("\\fund\\FUNDS.BTR"));
    ASSERT_EQ(control.Status(), 0) << control.Message().toStdString();
    EXPECT_EQ(control.TotalRecords(), 3);

    DataAccessControl relative;
    openOn(relative, root(), QStringLiteral("Funds"), QStringLiteral("Fund\\Funds.btr"));
    EXPECT_EQ(relative.Status(), 0) << relative.Message().toStdString();

    DataAccessControl fromDictionary; // no Location: the dictionary's own
    openOn(fromDictionary, root(), QStringLiteral("Years"), QString());
    EXPECT_EQ(fromDictionary.Status(), 0) << fromDictionary.Message().toStdString();

    std::unique_ptr<DataAccessControl> created;
    gstrRootPath = root();
    EXPECT_EQ(OpenFundFile(created, QStringLiteral("ignored"), QStringLiteral("Users"),
                           root() + QStringLiteral("\\FUND\\Users.btr")),
              0);
    ASSERT_TRUE(created);
    EXPECT_EQ(created->BlankChar(), 0);
    resetAppGlobals();
}

TEST_F(ControlTest, FailuresGiveDistinctStatusesAndWords)
{
    QTemporaryDir empty;
    DataAccessControl control;
    openOn(control, empty.path(), QStringLiteral("Funds"), QString());
    EXPECT_EQ(control.Status(), DataAccessControl::StatusDictionaryMissing);
    EXPECT_TRUE(control.Message().contains(QStringLiteral("FILE.DDF")));

    openOn(control, root(), QStringLiteral("Payroll"), QString());
    EXPECT_EQ(control.Status(), DataAccessControl::StatusUnknownTable);
    EXPECT_TRUE(control.Message().contains(QStringLiteral("Payroll")));

    openOn(control, root(), QStringLiteral("Funds"), root() + QStringLiteral("\\FUND\\Nowhere.btr"));
    EXPECT_EQ(control.Status(), 12);
    EXPECT_EQ(control.GetFirst(), 3);

    openOn(control, root(), QStringLiteral("Funds"), QString());
    ASSERT_EQ(control.Status(), 0);
    EXPECT_FALSE(control.FieldValue(QStringLiteral("Colour")).isValid());
    EXPECT_EQ(control.Status(), DataAccessControl::StatusUnknownField);
    EXPECT_FALSE(control.setFieldValue(QStringLiteral("ID"), QStringLiteral("TOOLONG")));
    EXPECT_EQ(control.Status(), DataAccessControl::StatusBadFieldValue);
    control.setIndexNumber(9);
    EXPECT_NE(control.GetFirst(), 0);
}

TEST_F(ControlTest, KeyedReadsStepsAndExtendedBlocks)
{
    DataAccessControl control;
    openOn(control, root(), QStringLiteral("SummaryExpenditure"), QString());
    ASSERT_EQ(control.Status(), 0);
    control.setIndexNumber(0);
    control.setFieldValue(QStringLiteral("Account Code"), QStringLiteral("A2110.450"));
    ASSERT_EQ(control.GetEqual(), 0);
    EXPECT_EQ(control.FieldValue(QStringLiteral("Name")).toString(), QStringLiteral("Teaching Supplies"));
    EXPECT_EQ(control.FieldValue(QStringLiteral("07 Opening Entry")).value<Currency>(), Currency::fromUnits(120000));
    // Field names are matched as the dictionary matches them: any case, surrounding blanks ignored.
    EXPECT_EQ(control.FieldValue(QStringLiteral(" account CODE ")).toString(), QStringLiteral("A2110.450"));
    EXPECT_EQ(control.Status(), 0);
    EXPECT_FALSE(control.FieldValue(QStringLiteral("Account Codes")).isValid());
    EXPECT_EQ(control.Status(), DataAccessControl::StatusUnknownField);

    control.setFieldValue(QStringLiteral("Account Code"), QStringLiteral("A2110.999"));
    EXPECT_EQ(control.GetEqual(), 4);
    EXPECT_EQ(control.FieldValue(QStringLiteral("Account Code")).toString(), QStringLiteral("A2110.999"));

    control.clearRecord();
    ASSERT_EQ(control.GetGreaterOrEqual(), 0);
    control.setExtendedOps(true);
    control.setCacheRows(3);
    control.setSelectedFields(QStringLiteral("Account Code, Name"));
    QStringList codes;
    int blocks = 0;
    while (control.GetNextExtended() == 0) {
        ++blocks;
        EXPECT_LE(control.Rows(), 3);
        for (int row = 0; row < control.Rows(); ++row)
            codes << control.RowColumnValue(row, 0).toString();
    }
    EXPECT_EQ(control.Status(), 9);
    EXPECT_EQ(codes.size(), control.TotalRecords());
    EXPECT_EQ(blocks, (codes.size() + 2) / 3);
    EXPECT_TRUE(std::is_sorted(codes.begin(), codes.end()));

    int stepped = 0;
    for (int s = control.StepFirst(); s == 0; s = control.StepNext())
        ++stepped;
    EXPECT_EQ(stepped, control.TotalRecords());
}

TEST_F(ControlTest, AbortTransactionPutsEveryWriteBack)
{
    DataAccessControl control;
    openOn(control, root(), QStringLiteral("Buildings"), QString());
    ASSERT_EQ(control.Status(), 0);
    const auto before = control.TotalRecords();
    ASSERT_EQ(control.BeginTransaction(), 0);
    control.clearRecord();
    control.setFieldValue(QStringLiteral("Building ID"), QStringLiteral("09"));
    control.setFieldValue(QStringLiteral("Name"), QStringLiteral("Annex"));
    ASSERT_EQ(control.Insert(), 0) << control.Message().toStdString();
    control.setFieldValue(QStringLiteral("Building ID"), QStringLiteral("01"));
    ASSERT_EQ(control.GetEqual(), 0);
    control.setFieldValue(QStringLiteral("Name"), QStringLiteral("Renamed"));
    ASSERT_EQ(control.Update(), 0);
    control.setFieldValue(QStringLiteral("Building ID"), QStringLiteral("02"));
    ASSERT_EQ(control.GetEqual(), 0);
    ASSERT_EQ(control.Delete(), 0);
    ASSERT_EQ(control.AbortTransaction(), 0) << control.Message().toStdString();

    EXPECT_EQ(control.TotalRecords(), before);
    control.setFieldValue(QStringLiteral("Building ID"), QStringLiteral("01"));
    ASSERT_EQ(control.GetEqual(), 0);
    EXPECT_EQ(control.FieldValue(QStringLiteral("Name")).toString(), QStringLiteral("Lakeview Elementary"));
    control.setFieldValue(QStringLiteral("Building ID"), QStringLiteral("02"));
    EXPECT_EQ(control.GetEqual(), 0);
    control.setFieldValue(QStringLiteral("Building ID"), QStringLiteral("09"));
    EXPECT_EQ(control.GetEqual(), 4);
    EXPECT_EQ(control.Endtransaction(), 1);
}

TEST(FundDataLocation, YearRules)
{
    QTemporaryDir root;
    resetAppGlobals();
    gstrRootPath = root.path().toUpper();
    gstrFundPath = gstrRootPath + QStringLiteral("\\FUND");
    gstrFundDataPath = gstrRootPath + QStringLiteral("\\FUND\\DATA");
    gstrYear = QStringLiteral("2001");
    const QString yearFolder = gstrFundDataPath + QStringLiteral("\\2001");
    EXPECT_EQ(GetFundDataLocation(2002), gstrFundPath);
    EXPECT_EQ(GetFundDataLocation(2025), gstrFundPath);
    EXPECT_EQ(GetFundDataLocation(2001), gstrFundPath);
    EXPECT_EQ(GetFundDataLocation(1999), yearFolder); // named by gstrYear, not by the argument

    QDir(root.path()).mkpath(QStringLiteral("fund/data/2001"));
    QFile building(root.path() + QStringLiteral("/fund/data/2001/Building.BTR"));
    ASSERT_TRUE(building.open(QIODevice::WriteOnly));
    building.close();
    EXPECT_EQ(GetFundDataLocation(2001), yearFolder);
    resetAppGlobals();
}
