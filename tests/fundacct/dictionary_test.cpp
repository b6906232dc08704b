#include "currency.h"
#include "ddffiles.h"
#include "file.h"
#include "fundtable.h"
#include "installationschema.h"
#include "objectparameters.h"
#include "objectsysparams.h"
#include "sampleinstallationfixture.h"

using DictionaryTest = SampleInstallationTest;

// What the generator wrote into FILE/FIELD.DDF reads back as the layout, and
// every data file's own keys are the layout's keys.
TEST_F(DictionaryTest, EveryTableReadsBackAsDesigned)
{
    for (const FundTableSpec &spec : installationTables()) {
        FundTable read;
        QString message;
        ASSERT_EQ(readFundTable(root().toLower(), spec.table.name.toUpper(), read, message), 0)
            << message.toStdString();
        EXPECT_EQ(read.name, spec.table.name);
        EXPECT_EQ(read.location, QStringLiteral("FUND\\") + spec.fileName);
        ASSERT_EQ(read.fields.size(), spec.table.fields.size()) << spec.table.name.toStdString();
        for (std::size_t i = 0; i < read.fields.size(); ++i) {
            const FundField &want = spec.table.fields[i];
            const FundField *got = read.field(want.name.toLower());
            ASSERT_NE(got, nullptr) << want.name.toStdString();
            EXPECT_EQ(got->offset, want.offset) << want.name.toStdString();
            EXPECT_EQ(got->size, want.size);
            EXPECT_EQ(got->type, want.type);
            EXPECT_EQ(got->decimals, want.decimals);
        }
        EXPECT_EQ(read.recordLength, spec.table.recordLength);

        recman::File file;
        const auto path = resolveFundPath(root(), read.location);
        ASSERT_TRUE(path);
        ASSERT_EQ(file.open(*path), recman::Status::Success);
        const auto keys = fundKeyDefinitions(spec);
        ASSERT_EQ(file.info().keys.size(), keys.size()) << spec.table.name.toStdString();
        for (std::size_t k = 0; k < keys.size(); ++k) {
            ASSERT_EQ(file.info().keys[k].segments.size(), keys[k].segments.size());
            for (std::size_t s = 0; s < keys[k].segments.size(); ++s) {
                EXPECT_EQ(file.info().keys[k].segments[s].offset, keys[k].segments[s].offset);
                EXPECT_EQ(file.info().keys[k].segments[s].length, keys[k].segments[s].length);
                EXPECT_EQ(file.info().keys[k].allowsDuplicates(), keys[k].allowsDuplicates());
            }
        }
    }
}

TEST(FieldCodecs, ValuesFitOrAreRefusedWithAReason)
{
    std::vector<std::uint8_t> record(20, 0xAA);
    const FundField text{QStringLiteral("Code"), recman::DataType::String, 0, 6, 0};
    const FundField small{QStringLiteral("Month"), recman::DataType::Integer, 6, 2, 0};
    const FundField amount{QStringLiteral("Amount"), recman::DataType::Currency, 8, 8, 4};
    QString why;

    ASSERT_TRUE(encodeFundField(text, QStringLiteral("AB"), record, '*', why));
    EXPECT_EQ(std::string(record.begin(), record.begin() + 6), "AB****");
    ASSERT_TRUE(encodeFundField(text, QStringLiteral("AB"), record, ' ', why));
    EXPECT_EQ(decodeFundField(text, record).toString(), QStringLiteral("AB"));
    record[2] = 0; // NUL padding as some writers leave it
    EXPECT_EQ(decodeFundField(text, record).toString(), QStringLiteral("AB"));
    EXPECT_FALSE(encodeFundField(text, QStringLiteral("ABCDEFG"), record, ' ', why));
    EXPECT_TRUE(why.contains(QStringLiteral("7")));
    EXPECT_EQ(decodeFundField(text, record).toString(), QStringLiteral("AB")); // nothing half-written

    ASSERT_TRUE(encodeFundField(small, -12, record, ' ', why));
    EXPECT_EQ(decodeFundField(small, record).toLongLong(), -12);
    ASSERT_TRUE(encodeFundField(small, QStringLiteral(" 32767 "), record, ' ', why));
    EXPECT_EQ(decodeFundField(small, record).toLongLong(), 32767);
    EXPECT_FALSE(encodeFundField(small, 32768, record, ' ', why));
    EXPECT_FALSE(encodeFundField(small, QStringLiteral("7a"), record, ' ', why));
    EXPECT_EQ(decodeFundField(small, record).toLongLong(), 32767);

    ASSERT_TRUE(encodeFundField(amount, QStringLiteral("-1,234.56"), record, ' ', why));
    EXPECT_EQ(decodeFundField(amount, record).value<Currency>(), Currency::fromRaw(-12345600));
    EXPECT_EQ(decodeFundField(amount, record).toString(), QStringLiteral("-1234.56"));
    ASSERT_TRUE(encodeFundField(amount, QVariant::fromValue(Currency::fromRaw(1)), record, ' ', why));
    EXPECT_EQ(decodeFundField(amount, record).value<Currency>(), Currency::fromRaw(1));
    ASSERT_TRUE(encodeFundField(amount, QString(), record, ' ', why));
    EXPECT_TRUE(decodeFundField(amount, record).value<Currency>().isZero());
    EXPECT_FALSE(encodeFundField(amount, QStringLiteral("ten"), record, ' ', why));
    EXPECT_EQ(record[19], 0xAA); // nothing written past the last field
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
