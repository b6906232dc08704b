#include "organizationwindow.h"

#include "classdialog.h"
#include "dates.h"
#include "sampleinstallation.h"

#include "guiapplication.h"
#include "recordingmessages.h"

#include <QAbstractButton>
#include <QFile>
#include <QLineEdit>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

// The organisation record as another program holding it shows it: the first
// read is refused with the record manager's "record in use" status (which
// read it is can be chosen), later reads succeed.
class HeldSysParams : public classObjectSysParams {
public:
    int refusedReads = 0;

protected:
    int positionForRead() override
    {
        const int status = classObjectSysParams::positionForRead();
        if (status != 0 || refusedReads == 0)
            return status;
        --refusedReads;
        return 84;
    }
};

// A fresh sample installation per test, whose organisation record the tests change.
class OrganizationWindowTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        QString message;
        ASSERT_EQ(createSampleInstallation(folder.path(), smallSampleDistrict(), {}, message), 0)
            << message.toStdString();
    }
    void bind() { ASSERT_EQ(record.Init(folder.path(), folder.path() + "\\FUND"), 0) << record.Message().toStdString(); }
    bool open()
    {
        if (!record.DataBound())
            bind();
        worker = std::make_unique<workerSysParams>(record);
        if (!worker->Initialise())
            return false;
        dialog = std::make_unique<classDialog>(*worker);
        dialog->Build(worker->mode());
        return true;
    }
    DialogControl &control(const char *name) const { return dialog->Control(name); }
    QLineEdit *edit(const char *name) const { return qobject_cast<QLineEdit *>(control(name).field()); }
    void click(const char *name) const { qobject_cast<QAbstractButton *>(control(name).field())->click(); }
    QByteArray fileBytes() const
    {
        QFile file(record.DataControl()->resolvedFilePath());
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }
    // The organisation as a second reader of the file sees it now.
    SysParamFields onDisk() const
    {
        classObjectSysParams reader;
        EXPECT_EQ(reader.Init(folder.path(), folder.path() + "\\FUND"), 0);
        EXPECT_EQ(reader.Retrieve(), 0);
        return reader;
    }
    QStringList shownTexts() const
    {
        QStringList texts;
        for (const auto &shown : shownMessages->shown())
            texts << (shown.kind == RecordingMessages::Shown::Kind::ErrorDialog
                          ? shown.error.title + ": " + shown.error.text
                          : shown.message.title + ": " + shown.message.text);
        return texts;
    }

    GuiApplicationGuard app;
    ScopedMessages shownMessages;
    QTemporaryDir folder;
    HeldSysParams record;
    std::unique_ptr<workerSysParams> worker;
    std::unique_ptr<classDialog> dialog;
};

// The parameter file as the fund-accounting product's record manager keeps it:
// without the mark this engine leaves on the files it creates, so the engine
// treats it as a file it did not make and may only rewrite a record in place.
void markAsRecordManagerFile(const QString &path)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    QByteArray bytes = file.readAll();
    const int pageSize = quint8(bytes[0x08]) | quint8(bytes[0x09]) << 8;
    for (int copy : {0, pageSize}) {
        ASSERT_EQ(bytes.mid(copy + 0xE0, 4), "KORA");
        bytes.replace(copy + 0xE0, 8, QByteArray(8, '\0'));
    }
    file.seek(0);
    ASSERT_EQ(file.write(bytes), bytes.size());
}

TEST_F(OrganizationWindowTest, SavingWritesTheFieldsInPlaceAndNothingElse)
{
    bind();
    const QString path = record.DataControl()->resolvedFilePath();
    record.DataControl()->Close();
    markAsRecordManagerFile(path);
    ASSERT_EQ(record.DataControl()->Open(), 0);
    const QByteArray before = fileBytes();
    ASSERT_TRUE(open());
    EXPECT_EQ(control("lblTitle").Caption(), "Change Organization's Parameters");
    control("txtCity").setText("Lakeview Heights Village");
    control("cboStates").setListIndex(1);
    click("cmdOK");
    EXPECT_TRUE(shownTexts().isEmpty()) << shownTexts().join('\n').toStdString();
    EXPECT_EQ(dialog->CloseAction(), classDialog::ClosedByWorker);

    const SysParamFields now = onDisk();
    EXPECT_EQ(now.City, "Lakeview Heights Village");
    EXPECT_EQ(now.State, "NJ");
    EXPECT_EQ(now.ZipCode, "12000-0001");
    EXPECT_EQ(now.Telephone, "555-010-0100");
    EXPECT_EQ(now.DateChg, FormatYYYYMMDD(QDate::currentDate()));

    // Byte for byte, the file changed only in the city, the state, the change date and
    // the usage counters of the record's slot and of its page, which every
    // rewrite of a record bumps.
    const QByteArray after = fileBytes();
    ASSERT_EQ(after.size(), before.size());
    const qsizetype record = before.indexOf("Lakeview Union Free School District");
    const qsizetype city = after.indexOf("Lakeview Heights Village");
    const qsizetype state = after.indexOf("NJ ", city);
    const qsizetype changed = after.indexOf(FormatYYYYMMDD(QDate::currentDate()).toLatin1());
    ASSERT_GE(record, 0);
    ASSERT_GE(city, record);
    ASSERT_GE(changed, record);
    const int pageSize = quint8(before[0x08]) | quint8(before[0x09]) << 8;
    const qsizetype pageUsage = record - record % pageSize + 4;
    const auto within = [](qsizetype i, qsizetype from, qsizetype length) { return i >= from && i < from + length; };
    QList<qsizetype> differing;
    for (qsizetype i = 0; i < after.size(); ++i) {
        if (after[i] == before[i])
            continue;
        differing << i;
        EXPECT_TRUE(within(i, city, 24) || within(i, state, 2) || within(i, changed, 8) || within(i, record - 2, 2) ||
                    within(i, pageUsage, 2))
            << "byte " << i << " changed outside the city, the state, the change date and the usage counters";
    }
    EXPECT_TRUE(differing.contains(city + 9)) << "the city's new words were written";
}

TEST_F(OrganizationWindowTest, PartlyTypedMaskedFieldsAreRefusedByName)
{
    ASSERT_TRUE(open());
    const QByteArray before = fileBytes();
    edit("txtTel")->setText("555-01");
    EXPECT_FALSE(dialog->Save());
    EXPECT_EQ(shownTexts(), QStringList{"System Parameters Maintenance: The Telephone is incomplete: 555-01"});
    EXPECT_EQ(fileBytes(), before);

    // A five-digit zip is a whole value.
    edit("txtTel")->clear();
    edit("txtZip")->setText("12345");
    ASSERT_TRUE(dialog->Save()) << shownTexts().join('\n').toStdString();
    EXPECT_EQ(onDisk().ZipCode, "12345");
}

TEST_F(OrganizationWindowTest, AHeldRecordIsOfferedForViewingOnly)
{
    record.refusedReads = 1;
    shownMessages->answer(MsgAnswer::No);
    EXPECT_FALSE(open()) << "No: no dialog";
    EXPECT_EQ(shownTexts(), QStringList{"System Parameters Maintenance: The System Parameters record is locked.\n"
                                        "Would you like to view the data ?"});
    EXPECT_EQ(shownMessages->shown()[0].message.buttons, MsgButtons::YesNo);

    const QByteArray before = fileBytes();
    record.refusedReads = 1;
    shownMessages->answer(MsgAnswer::Yes);
    ASSERT_TRUE(open());
    EXPECT_EQ(control("lblTitle").Caption(), "View Organization's Parameters");
    EXPECT_EQ(control("txtCity").Text(), "Lakeview");
    EXPECT_TRUE(edit("txtCity")->isReadOnly());
    EXPECT_FALSE(control("cmdOK").Visible());
    EXPECT_FALSE(dialog->Save());
    EXPECT_EQ(fileBytes(), before);
}

TEST_F(OrganizationWindowTest, ReadAndWriteFailuresAreToldInTheirOwnWords)
{
    classObjectSysParams unbound;
    workerSysParams nothing(unbound);
    EXPECT_FALSE(nothing.Initialise());
    record.refusedReads = 2; // held, and the viewing read fails too
    shownMessages->answer(MsgAnswer::Yes);
    EXPECT_FALSE(open());
    EXPECT_EQ(shownTexts().value(0), "System Parameters Maintenance: Cannot initialize System Parameters table.");
    EXPECT_EQ(shownTexts().value(2), "System Parameters Maintenance: Error retrieving the system parameter record.");

    // The record vanishes between loading and saving.
    shownMessages->clear();
    ASSERT_TRUE(open());
    classObjectSysParams other;
    other.SetDataControl(record.DataControl());
    ASSERT_EQ(other.DeleteAllRecords(), 0);
    EXPECT_FALSE(dialog->Save());
    ASSERT_EQ(shownTexts().size(), 1);
    EXPECT_TRUE(shownTexts()[0].startsWith("Kora-Fund: Cannot retrieve system parameters settings. error:"))
        << shownTexts()[0].toStdString();

    // A value the file cannot hold is refused by the write.
    shownMessages->clear();
    ASSERT_EQ(record.Create(), 0);
    ASSERT_TRUE(open());
    edit("txtCity")->setMaxLength(100);
    control("txtCity").setText(QString(31, 'x'));
    EXPECT_FALSE(dialog->Save());
    ASSERT_EQ(shownTexts().size(), 1);
    EXPECT_TRUE(shownTexts()[0].startsWith("Kora-Fund: The System Parameters cannot be updated. error:"))
        << shownTexts()[0].toStdString();
    EXPECT_EQ(onDisk().City, "Lakeview");
}

} // namespace
