#include "currency.h"
#include "dataaccesscontrol.h"
#include "dictionary.h"
#include "fundfieldvalue.h"
#include "sampleinstallationfixture.h"

namespace {
using recman::DataType;

const recman::FieldDef code{"Code", DataType::String, 0, 6, 0, 0};
const recman::FieldDef month{"Month", DataType::Integer, 6, 2, 0, 0};
const recman::FieldDef amount{"Amount", DataType::Currency, 8, 8, 4, 0};

QVariant read(const recman::FieldDef &field, const std::vector<std::uint8_t> &record,
              const recman::CodePage &page = recman::CodePage::windows1252())
{
    QVariant value;
    QString why;
    EXPECT_TRUE(readFundField(field, record, page, value, why)) << why.toStdString();
    return value;
}

bool write(const recman::FieldDef &field, const QVariant &value, std::vector<std::uint8_t> &record, char pad = ' ',
           const recman::CodePage &page = recman::CodePage::windows1252())
{
    QString why;
    const bool stored = writeFundField(field, value, record, page, pad, why);
    EXPECT_EQ(stored, why.isEmpty()) << "a refusal says why, an acceptance says nothing";
    return stored;
}

// Sets the code page of the installation for one test and puts the default back.
struct CodePageScope {
    explicit CodePageScope(const char *name) { EXPECT_TRUE(setFundCodePage(QString::fromLatin1(name))); }
    ~CodePageScope() { setFundCodePage(QStringLiteral("1252")); }
};
} // namespace

TEST(FundFieldValues, ValuesFitOrAreRefusedLeavingTheRecordAsItWas)
{
    std::vector<std::uint8_t> record(20, 0xAA);
    ASSERT_TRUE(write(code, QStringLiteral("AB"), record, '*'));
    EXPECT_EQ(std::string(record.begin(), record.begin() + 6), "AB****");
    ASSERT_TRUE(write(code, QStringLiteral("AB"), record));
    EXPECT_EQ(read(code, record).toString(), QStringLiteral("AB"));
    record[2] = 0; // NUL padding as some writers leave it
    EXPECT_EQ(read(code, record).toString(), QStringLiteral("AB"));
    const auto before = record;
    EXPECT_FALSE(write(code, QStringLiteral("ABCDEFG"), record)); // never cut to fit
    EXPECT_EQ(record, before);

    ASSERT_TRUE(write(month, -12, record));
    EXPECT_EQ(read(month, record).toLongLong(), -12);
    ASSERT_TRUE(write(month, QStringLiteral(" 32767 "), record));
    EXPECT_EQ(read(month, record).toLongLong(), 32767);
    EXPECT_FALSE(write(month, 32768, record));
    EXPECT_FALSE(write(month, QStringLiteral("7a"), record));
    EXPECT_EQ(read(month, record).toLongLong(), 32767);
    ASSERT_TRUE(write(month, QStringLiteral("  "), record)); // blank is zero
    EXPECT_EQ(read(month, record).toLongLong(), 0);

    ASSERT_TRUE(write(amount, QStringLiteral("-1,234.56"), record));
    EXPECT_EQ(read(amount, record).value<Currency>(), Currency::fromRaw(-12345600));
    EXPECT_EQ(read(amount, record).toString(), QStringLiteral("-1234.56"));
    ASSERT_TRUE(write(amount, QVariant::fromValue(Currency::fromRaw(1)), record));
    EXPECT_EQ(read(amount, record).value<Currency>(), Currency::fromRaw(1));
    EXPECT_FALSE(write(amount, QStringLiteral("0.00001"), record)); // a fifth decimal would be lost
    EXPECT_FALSE(write(amount, QStringLiteral("ten"), record));
    EXPECT_EQ(read(amount, record).value<Currency>(), Currency::fromRaw(1));
    ASSERT_TRUE(write(amount, QString(), record));
    EXPECT_TRUE(read(amount, record).value<Currency>().isZero());
    ASSERT_TRUE(write(code, QVariant::fromValue(Currency::fromRaw(25000)), record)); // amounts as plain text
    EXPECT_EQ(read(code, record).toString(), QStringLiteral("2.5"));
    EXPECT_EQ(record[19], 0xAA); // nothing written past the last field
}

TEST(FundFieldValues, TextTravelsInTheInstallationsCodePage)
{
    std::vector<std::uint8_t> record(20, 0);
    EXPECT_EQ(&fundCodePage(), &recman::CodePage::windows1252());
    ASSERT_TRUE(write(code, QStringLiteral("é€"), record, ' ', fundCodePage()));
    EXPECT_EQ(record[0], 0xE9);
    EXPECT_EQ(record[1], 0x80);
    EXPECT_EQ(read(code, record).toString(), QStringLiteral("é€"));
    // Six characters are six bytes in a single-byte code page: they fit exactly.
    ASSERT_TRUE(write(code, QStringLiteral("Café €"), record));
    EXPECT_EQ(read(code, record).toString(), QStringLiteral("Café €"));

    const auto before = record;
    EXPECT_FALSE(write(code, QStringLiteral("Ωmega"), record)); // no Greek in 1252: refused, not '?'
    EXPECT_FALSE(write(code, QStringLiteral("€"), record, ' ', recman::CodePage::latin1()));
    EXPECT_EQ(record, before);

    ASSERT_TRUE(write(code, QStringLiteral("é"), record, '.', recman::CodePage::dos437()));
    EXPECT_EQ(std::string(record.begin() + 1, record.begin() + 6), ".....");
    ASSERT_TRUE(write(code, QStringLiteral("é"), record, ' ', recman::CodePage::dos437()));
    EXPECT_EQ(record[0], 0x82);
    EXPECT_EQ(read(code, record, recman::CodePage::dos437()).toString(), QStringLiteral("é"));
    EXPECT_EQ(read(code, record).toString(), QStringLiteral("‚")); // the same byte means something else in 1252

    EXPECT_FALSE(setFundCodePage(QStringLiteral("klingon")));
    EXPECT_EQ(&fundCodePage(), &recman::CodePage::windows1252());
}

using ControlFieldTest = SampleInstallationTest;

TEST_F(ControlFieldTest, AccentedNamesRoundTripThroughTheFileAndTooLongLeavesTheRecord)
{
    DataAccessControl control;
    control.setDdfPath(root());
    control.setFileName(QStringLiteral("Buildings"));
    ASSERT_EQ(control.Open(), 0) << control.Message().toStdString();
    control.clearRecord();
    control.setFieldValue(QStringLiteral("Building ID"), QStringLiteral("07"));
    ASSERT_TRUE(control.setFieldValue(QStringLiteral("Name"), QStringLiteral("École Saint-Éloi € 1")));
    ASSERT_EQ(control.Insert(), 0) << control.Message().toStdString();

    control.clearRecord();
    control.setFieldValue(QStringLiteral("Building ID"), QStringLiteral("07"));
    ASSERT_EQ(control.GetEqual(), 0);
    EXPECT_EQ(control.FieldValue(QStringLiteral("Name")).toString(), QStringLiteral("École Saint-Éloi € 1"));

    const QString tooLong(41, u'x');
    EXPECT_FALSE(control.setFieldValue(QStringLiteral("Name"), tooLong));
    EXPECT_EQ(control.Status(), DataAccessControl::StatusBadFieldValue);
    EXPECT_TRUE(control.Message().contains(QStringLiteral("Name"))) << control.Message().toStdString();
    EXPECT_EQ(control.FieldValue(QStringLiteral("Name")).toString(), QStringLiteral("École Saint-Éloi € 1"));
    EXPECT_FALSE(control.setFieldValue(QStringLiteral("Name"), QStringLiteral("日本")));
    EXPECT_EQ(control.Status(), DataAccessControl::StatusBadFieldValue);
    ASSERT_EQ(control.Update(), 0); // the refused values never reached the buffer
    control.clearRecord();
    control.setFieldValue(QStringLiteral("Building ID"), QStringLiteral("07"));
    ASSERT_EQ(control.GetEqual(), 0);
    EXPECT_EQ(control.FieldValue(QStringLiteral("Name")).toString(), QStringLiteral("École Saint-Éloi € 1"));

    {
        // A control takes the installation's code page when it opens: the same bytes, other characters.
        CodePageScope dos("cp437");
        DataAccessControl other;
        other.setDdfPath(root());
        other.setFileName(QStringLiteral("Buildings"));
        ASSERT_EQ(other.Open(), 0);
        other.setFieldValue(QStringLiteral("Building ID"), QStringLiteral("07"));
        ASSERT_EQ(other.GetEqual(), 0);
        EXPECT_EQ(other.FieldValue(QStringLiteral("Name")).toString(), QStringLiteral("╔cole Saint-╔loi Ç 1"));
    }
    ASSERT_EQ(control.Delete(), 0);
}

// A dictionary of another program may hold types our tables do not use; bytes
// that are no value of the field's type are reported, not shown as something.
TEST(ControlFieldValues, BytesThatAreNoValueGiveAStatusInReadsAndBlocks)
{
    QTemporaryDir root;
    recman::TableDef table{"Events", "Events.btr", {}, {}, 0, 0};
    table.fields = {{"Code", DataType::String, 0, 4, 0, 0}, {"Held", DataType::Date, 4, 4, 0, 0}};
    table.indexes = {recman::IndexDef{{{"Code"}}, false, true, false}};
    const std::vector<std::vector<std::uint8_t>> rows{{'A', ' ', ' ', ' ', 1, 7, 0xE8, 0x07},
                                                      {'B', ' ', ' ', ' ', 40, 13, 0xE8, 0x07}}; // 40/13/2024
    std::size_t next = 0;
    std::string why;
    const std::filesystem::path folder = root.path().toStdString();
    ASSERT_EQ(recman::createDictionary(folder, {table}, why), recman::Status::Success) << why;
    ASSERT_EQ(recman::createDataFile(
                  folder / "Events.btr", table,
                  [&](std::vector<std::uint8_t> &record) {
                      if (next == rows.size())
                          return false;
                      record = rows[next++];
                      return true;
                  },
                  why),
              recman::Status::Success)
        << why;

    DataAccessControl control;
    control.setDdfPath(root.path());
    control.setFileName(QStringLiteral("events"));
    ASSERT_EQ(control.Open(), 0) << control.Message().toStdString();
    ASSERT_EQ(control.GetFirst(), 0);
    EXPECT_EQ(control.FieldValue(QStringLiteral("Held")).toString(), QStringLiteral("2024-07-01"));
    ASSERT_EQ(control.GetNext(), 0);
    EXPECT_FALSE(control.FieldValue(QStringLiteral("Held")).isValid());
    EXPECT_EQ(control.Status(), DataAccessControl::StatusBadFieldValue);
    EXPECT_TRUE(control.Message().contains(QStringLiteral("Held"))) << control.Message().toStdString();

    ASSERT_EQ(control.GetFirst(), 0);
    control.setExtendedOps(true);
    control.setSelectedFields(QStringLiteral("Code,Held"));
    EXPECT_EQ(control.GetNextExtended(), DataAccessControl::StatusBadFieldValue);
    ASSERT_EQ(control.Rows(), 2);
    EXPECT_EQ(control.RowColumnValue(0, 1).toString(), QStringLiteral("2024-07-01"));
    EXPECT_EQ(control.RowColumnValue(1, 0).toString(), QStringLiteral("B"));
    EXPECT_FALSE(control.RowColumnValue(1, 1).isValid());
}
