#include "currency.h"
#include "dictionary.h"
#include "file.h"
#include "fundfieldvalue.h"
#include "fundlocation.h"
#include "installationschema.h"
#include "objectparameters.h"
#include "objectsysparams.h"
#include "sampleinstallationfixture.h"

#include <QDir>
#include <QFile>

using DictionaryTest = SampleInstallationTest;

// What the generator wrote into the DDF files reads back as the layout, and
// every data file's own keys are the layout's keys.
TEST_F(DictionaryTest, EveryTableReadsBackAsDesigned)
{
    const auto folder = fundRootFolder(root().toUpper()); // found whatever the case
    ASSERT_TRUE(folder);
    recman::Dictionary dictionary(fundCodePage());
    ASSERT_EQ(dictionary.open(*folder), recman::Status::Success) << dictionary.lastMessage();
    std::uint16_t id = 100; // after the dictionary's own tables, in layout order
    for (const FundTableSpec &spec : installationTables()) {
        const recman::TableDef *read =
            dictionary.table(QString::fromStdString(spec.table.name).toUpper().toStdString());
        ASSERT_NE(read, nullptr) << spec.table.name;
        EXPECT_EQ(read->name, spec.table.name);
        EXPECT_EQ(read->id, id++);
        EXPECT_EQ(read->location, "FUND\\" + spec.fileName.toStdString());
        ASSERT_EQ(read->fields.size(), spec.table.fields.size()) << spec.table.name;
        for (const recman::FieldDef &want : spec.table.fields) {
            const recman::FieldDef *got = read->field(QString::fromStdString(want.name).toLower().toStdString());
            ASSERT_NE(got, nullptr) << want.name;
            EXPECT_EQ(got->offset, want.offset) << want.name;
            EXPECT_EQ(got->size, want.size);
            EXPECT_EQ(got->type, want.type);
            EXPECT_EQ(got->decimals, want.decimals);
        }
        EXPECT_EQ(read->recordLength(), spec.table.recordLength());

        recman::File file;
        const auto path = findFundFile(*folder, QString::fromStdString(read->location));
        ASSERT_TRUE(path);
        ASSERT_EQ(file.open(*path), recman::Status::Success);
        recman::FileSpec keys;
        std::string why;
        ASSERT_EQ(recman::fileSpecFor(*read, keys, why), recman::Status::Success) << why;
        ASSERT_EQ(file.info().keys.size(), keys.keys.size()) << spec.table.name;
        for (std::size_t k = 0; k < keys.keys.size(); ++k) {
            const auto &want = keys.keys[k];
            ASSERT_EQ(file.info().keys[k].segments.size(), want.segments.size());
            EXPECT_EQ(file.info().keys[k].allowsDuplicates(), want.allowsDuplicates());
            for (std::size_t s = 0; s < want.segments.size(); ++s) {
                EXPECT_EQ(file.info().keys[k].segments[s].offset, want.segments[s].offset);
                EXPECT_EQ(file.info().keys[k].segments[s].length, want.segments[s].length);
                EXPECT_EQ(file.info().keys[k].segments[s].flags & recman::keyflag::CaseInsensitive,
                          want.segments[s].flags & recman::keyflag::CaseInsensitive);
            }
        }
    }
}

TEST(FundLocations, WindowsPathsFindTheFilesBelowTheDictionaryOrElsewhere)
{
    QTemporaryDir root, elsewhere;
    ASSERT_TRUE(QDir(root.path()).mkpath(QStringLiteral("Fund/Data")));
    for (const QString &name :
         {root.path() + QStringLiteral("/Fund/Data/Users.BTR"), elsewhere.path() + QStringLiteral("/Other.btr")}) {
        QFile file(name);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    }
    const auto folder = fundRootFolder(QStringLiteral("C:") + root.path().toUpper().replace(u'/', u'\\'));
    ASSERT_TRUE(folder);
    EXPECT_EQ(QString::fromStdString(folder->string()), root.path());
    EXPECT_FALSE(fundRootFolder(root.path() + QStringLiteral("/Fund/Data/Users.BTR"))); // a file, not a folder
    EXPECT_FALSE(fundRootFolder(root.path() + QStringLiteral("/Missing")));

    const QString expected = root.path() + QStringLiteral("/Fund/Data/Users.BTR");
    for (const QString &location :
         {QStringLiteral("fund\\data\\users.btr"), QStringLiteral(".\\FUND/DATA/USERS.BTR"),
          QStringLiteral("D:\\KORA\\FUND\\DATA\\Users.btr"), root.path() + QStringLiteral("\\FUND\\DATA\\users.btr")}) {
        const auto found = findFundFile(*folder, location);
        ASSERT_TRUE(found) << location.toStdString();
        EXPECT_EQ(QString::fromStdString(found->string()), expected) << location.toStdString();
    }
    EXPECT_TRUE(findFundFile(*folder, elsewhere.path() + QStringLiteral("\\OTHER.BTR")));
    EXPECT_FALSE(findFundFile(*folder, QStringLiteral("Other.btr")));  // relative means below the dictionary
    EXPECT_FALSE(findFundFile(*folder, QStringLiteral("FUND\\DATA"))); // a folder is no data file
}

TEST(SingleRecordFiles, CreateWritesTheStandardRecords)
{
    QTemporaryDir folder;
    QString message;
    ASSERT_EQ(createSampleInstallation(folder.path(), smallSampleDistrict(), {}, message), 0);
    const QString fund = folder.path() + QStringLiteral("/FUND");

    classObjectSysParams organisation;
    ASSERT_EQ(organisation.Init(folder.path(), fund), 0);
    ASSERT_EQ(organisation.DeleteAllRecords(), 0);
    EXPECT_EQ(organisation.Retrieve(), 9);
    organisation.Name = QStringLiteral("New District");
    organisation.State = QStringLiteral("NJ");
    ASSERT_EQ(organisation.Create(), 0);
    organisation.Clear();
    ASSERT_EQ(organisation.Retrieve(), 0);
    EXPECT_EQ(organisation.Name, QStringLiteral("New District"));
    EXPECT_EQ(organisation.DateAdd, organisation.DateChg);

    classObjectParameters parameters;
    ASSERT_EQ(parameters.Init(folder.path(), fund), 0);
    EXPECT_EQ(parameters.Create(), 5); // the PARMS record exists already: duplicate key
    ASSERT_EQ(parameters.Retrieve(), 0);
    ASSERT_EQ(parameters.DataControl()->Delete(), 0);
    ASSERT_EQ(parameters.Create(), 0);
    parameters.Clear();
    ASSERT_EQ(parameters.Retrieve(), 0);
    const QStringList lines = parameters.VendorNotes.split(QStringLiteral("\r\n"));
    ASSERT_EQ(lines.size(), 5);
    EXPECT_EQ(lines[0], QStringLiteral("1.  Please ship prepaid.  Do not make collect shipments."));
    EXPECT_EQ(lines[3], QStringLiteral("4.  Charge and mail invoice to above address.  Attn: Business Office"));
    EXPECT_EQ(parameters.FirstFiscalMonth, 7);
    EXPECT_EQ(parameters.NextPONumber, 1);
    parameters.NextPONumber = 77;
    parameters.NextCRNumber = 12;
    ASSERT_EQ(parameters.UpdateTypedPOParams(), 0);
    ASSERT_EQ(parameters.UpdateNewYear(), 0);
    ASSERT_EQ(parameters.Retrieve(), 0);
    EXPECT_EQ(parameters.NextPONumber, 1);
    EXPECT_EQ(parameters.NextCRNumber, 1);
}
