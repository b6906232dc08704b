// Kora-Fund files used while Kora-Fund works on them: a header count that
// disagrees is reported and logged but every record is read, a record
// another program changed after we read it is never overwritten, and what it
// and our other controls write is seen by the next read.
#include "dataaccesscontrol.h"
#include "errobject.h"
#include "fundfieldvalue.h"
#include "installationschema.h"
#include "objectsysparams.h"
#include "sampleinstallation.h"
#include "writelockholder.h"

#include "bytes.h"
#include "file.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

class LiveFileTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        QString message;
        ASSERT_EQ(createSampleInstallation(folder.path(), smallSampleDistrict(), {}, message), 0)
            << message.toStdString();
        clsErrObject::setLogFilePath(folder.filePath(QStringLiteral("Err.txt")));
    }
    void TearDown() override { clsErrObject::setLogFilePath(QString()); }

    QString root() const { return folder.path(); }
    QString dataFile(const QString &name) const { return folder.filePath(QStringLiteral("FUND/") + name); }
    QByteArray bytesOf(const QString &name) const
    {
        QFile file(dataFile(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    // Sets the record count in both control record copies of a 6.x file.
    void setHeaderCount(const QString &name, std::uint32_t count) const
    {
        QByteArray bytes = bytesOf(name);
        const auto pageSize = recman::bytes::u16(
            recman::Bytes(reinterpret_cast<const std::uint8_t *>(bytes.data()), static_cast<std::size_t>(bytes.size())),
            0x08);
        for (std::size_t copy = 0; copy < 2; ++copy)
            recman::bytes::putWs32(recman::MutableBytes(reinterpret_cast<std::uint8_t *>(bytes.data()),
                                                        static_cast<std::size_t>(bytes.size())),
                                   copy * pageSize + 0x1A, count);
        QFile file(dataFile(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(bytes);
    }
    int open(DataAccessControl &control, const QString &table) const
    {
        control.setDdfPath(root());
        control.setFileName(table);
        control.setLocation(QString());
        return control.Open();
    }
    QString errorLog() const
    {
        QFile log(folder.filePath(QStringLiteral("Err.txt")));
        return log.open(QIODevice::ReadOnly) ? QString::fromUtf8(log.readAll()) : QString();
    }

    QTemporaryDir folder;
};

// As another program would: a separate process overwrites bytes in place.
void overwriteFromAnotherProcess(const QString &path, qint64 offset, const QByteArray &bytes)
{
    const QByteArray native = QFile::encodeName(path);
    const pid_t child = ::fork();
    if (child == 0) {
        const int fd = ::open(native.constData(), O_WRONLY);
        const bool ok =
            fd >= 0 && ::pwrite(fd, bytes.constData(), static_cast<std::size_t>(bytes.size()), offset) == bytes.size();
        ::_exit(ok ? 0 : 1);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
}

TEST_F(LiveFileTest, AHeaderCountThatDisagreesIsReportedLoggedAndEveryRecordRead)
{
    DataAccessControl control;
    ASSERT_EQ(open(control, QStringLiteral("Buildings")), 0);
    const auto records = control.TotalRecords();
    control.Close();
    setHeaderCount(QStringLiteral("building.btr"), 1);

    EXPECT_EQ(open(control, QStringLiteral("Buildings")), DataAccessControl::StatusRecordCountMismatch);
    EXPECT_TRUE(control.Message().contains(QStringLiteral("counts 1 records but its data pages hold %1").arg(records)))
        << control.Message().toStdString();
    EXPECT_EQ(control.TotalRecords(), records);
    int stepped = 0;
    for (int status = control.StepFirst(); status == 0; status = control.StepNext())
        ++stepped;
    EXPECT_EQ(stepped, records);
    EXPECT_TRUE(errorLog().contains(QStringLiteral("1005: ")));
    EXPECT_TRUE(errorLog().contains(QStringLiteral("building.btr")));

    // A record object opens such a file and works with it.
    setHeaderCount(QStringLiteral("Params.btr"), 7);
    classObjectSysParams organisation;
    ASSERT_EQ(organisation.Init(root(), root() + QStringLiteral("\\FUND")), 0) << organisation.Message().toStdString();
    EXPECT_EQ(organisation.Retrieve(), 0);
    EXPECT_EQ(organisation.State, QStringLiteral("NY"));
}

// Kora-Fund posts while we have the file open; its header count then disagrees.
TEST_F(LiveFileTest, AHeaderCountFoundWrongAfterOpenIsLoggedOnceAndLeavesTheStatusAlone)
{
    DataAccessControl control;
    ASSERT_EQ(open(control, QStringLiteral("Buildings")), 0);
    ASSERT_EQ(control.StepFirst(), 0);
    setHeaderCount(QStringLiteral("building.btr"), 1);
    EXPECT_FALSE(errorLog().contains(QStringLiteral("1005: ")));

    EXPECT_EQ(control.StepFirst(), 0);
    EXPECT_EQ(control.Message(), QString());
    const QString logged = errorLog();
    EXPECT_EQ(logged.count(QStringLiteral("DataAccessControl.StepFirst 1005: ")), 1) << logged.toStdString();
    EXPECT_TRUE(logged.contains(dataFile(QStringLiteral("building.btr")))) << logged.toStdString();
    while (control.StepNext() == 0) {
    }
    // Another change makes the engine read the file afresh and find the same again.
    const qint64 at = bytesOf(QStringLiteral("building.btr")).indexOf("Lakeview Elementary");
    ASSERT_GE(at, 0);
    overwriteFromAnotherProcess(dataFile(QStringLiteral("building.btr")), at, QByteArrayLiteral("Lakeview Academy   "));
    EXPECT_EQ(control.StepFirst(), 0);
    EXPECT_EQ(errorLog().count(QStringLiteral("1005: ")), 1) << errorLog().toStdString();
    EXPECT_EQ(errorLog().count(QStringLiteral("counts 1 records")), 2) << "the engine's words and Open's, once each";
}

TEST_F(LiveFileTest, ARecordChangedByAnotherProgramAfterOurReadIsNotOverwritten)
{
    DataAccessControl control;
    ASSERT_EQ(open(control, QStringLiteral("Buildings")), 0);
    control.setIndexNumber(0);
    control.setFieldValue(QStringLiteral("Building ID"), QStringLiteral("01"));
    ASSERT_EQ(control.GetEqual(), 0);
    ASSERT_EQ(control.FieldValue(QStringLiteral("Name")).toString(), QStringLiteral("Lakeview Elementary"));

    const QByteArray before = bytesOf(QStringLiteral("building.btr"));
    const qint64 at = before.indexOf("Lakeview Elementary");
    ASSERT_GE(at, 0);
    ASSERT_EQ(before.indexOf("Lakeview Elementary", at + 1), -1);
    overwriteFromAnotherProcess(dataFile(QStringLiteral("building.btr")), at, QByteArrayLiteral("Lakeview Academy   "));
    const QByteArray theirs = bytesOf(QStringLiteral("building.btr"));

    control.setFieldValue(QStringLiteral("Name"), QStringLiteral("Renamed"));
    EXPECT_EQ(control.Update(), 80);
    EXPECT_TRUE(control.Message().contains(QStringLiteral("changed by another user")))
        << control.Message().toStdString();
    EXPECT_EQ(bytesOf(QStringLiteral("building.btr")), theirs);
}

TEST_F(LiveFileTest, TwoControlsOnOneFileSeeEachOthersWritesAndAnotherProgramsPostings)
{
    DataAccessControl first, second;
    ASSERT_EQ(open(first, QStringLiteral("Buildings")), 0) << first.Message().toStdString();
    ASSERT_EQ(open(second, QStringLiteral("Buildings")), 0) << second.Message().toStdString();
    auto nameOfBuilding01 = [](DataAccessControl &control) {
        control.setIndexNumber(0);
        control.setFieldValue(QStringLiteral("Building ID"), QStringLiteral("01"));
        return control.GetEqual() == 0 ? control.FieldValue(QStringLiteral("Name")).toString().trimmed() : QString();
    };
    ASSERT_EQ(nameOfBuilding01(first), QStringLiteral("Lakeview Elementary"));
    first.setFieldValue(QStringLiteral("Name"), QStringLiteral("Renamed"));
    ASSERT_EQ(first.Update(), 0) << first.Message().toStdString();
    EXPECT_EQ(nameOfBuilding01(second), QStringLiteral("Renamed"));
    second.setFieldValue(QStringLiteral("Name"), QStringLiteral("Again"));
    ASSERT_EQ(second.Update(), 0) << second.Message().toStdString();
    EXPECT_EQ(nameOfBuilding01(first), QStringLiteral("Again"));

    const qint64 at = bytesOf(QStringLiteral("building.btr")).indexOf("Again ");
    ASSERT_GE(at, 0);
    overwriteFromAnotherProcess(dataFile(QStringLiteral("building.btr")), at, QByteArrayLiteral("Posted"));
    EXPECT_EQ(nameOfBuilding01(first), QStringLiteral("Posted"));
    EXPECT_EQ(nameOfBuilding01(second), QStringLiteral("Posted"));
}

TEST_F(LiveFileTest, AFileAnotherProcessHoldsForWritingIsReadButNotWritten)
{
    const WriteLockHolder holder(QFile::encodeName(dataFile(QStringLiteral("building.btr"))).toStdString());
    ASSERT_TRUE(holder.holds());
    const QByteArray before = bytesOf(QStringLiteral("building.btr"));

    DataAccessControl control;
    ASSERT_EQ(open(control, QStringLiteral("Buildings")), 0) << control.Message().toStdString();
    control.setFieldValue(QStringLiteral("Building ID"), QStringLiteral("01"));
    ASSERT_EQ(control.GetEqual(), 0);
    control.setFieldValue(QStringLiteral("Name"), QStringLiteral("Renamed"));
    EXPECT_EQ(control.Update(), 85);
    EXPECT_TRUE(control.Message().contains(QStringLiteral("locked by another process")))
        << control.Message().toStdString();
    EXPECT_EQ(control.Insert(), 85);
    EXPECT_EQ(control.Delete(), 85);
    EXPECT_EQ(bytesOf(QStringLiteral("building.btr")), before);
}

TEST_F(LiveFileTest, ATransactionCutShortByACrashIsRolledBackAtTheNextOpen)
{
    const QByteArray before = bytesOf(QStringLiteral("building.btr"));
    const pid_t child = ::fork();
    if (child == 0) {
        DataAccessControl control;
        bool ok = open(control, QStringLiteral("Buildings")) == 0 && control.BeginTransaction() == 0;
        for (int status = ok ? control.StepFirst() : 1; ok && status == 0; status = control.StepNext())
            ok = control.setFieldValue(QStringLiteral("Name"), QStringLiteral("Zeroed")) && control.Update() == 0;
        control.clearRecord();
        control.setFieldValue(QStringLiteral("Building ID"), QStringLiteral("77"));
        if (ok && control.Insert() == 0 && control.GetEqual() == 0 && control.Delete() == 0)
            ::kill(::getpid(), SIGKILL);
        ::_exit(1);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    ASSERT_TRUE(WIFSIGNALED(status)) << "the child's writes failed";
    ASSERT_NE(bytesOf(QStringLiteral("building.btr")), before);

    DataAccessControl control;
    ASSERT_EQ(open(control, QStringLiteral("Buildings")), 0) << control.Message().toStdString();
    EXPECT_EQ(bytesOf(QStringLiteral("building.btr")), before);
    EXPECT_TRUE(control.Message().contains(QStringLiteral("rolled back"))) << control.Message().toStdString();
    EXPECT_TRUE(errorLog().contains(QStringLiteral("building.btr.kbj"))) << errorLog().toStdString();
    control.setFieldValue(QStringLiteral("Building ID"), QStringLiteral("01"));
    ASSERT_EQ(control.GetEqual(), 0);
    EXPECT_EQ(control.FieldValue(QStringLiteral("Name")).toString(), QStringLiteral("Lakeview Elementary"));
}

TEST_F(LiveFileTest, FieldsTheDictionaryLacksAreNamedOnceAndTheRestStillWorks)
{
    // This installation names the fax field differently and has no report name.
    std::vector<recman::TableDef> tables;
    for (const FundTableSpec &spec : installationTables()) {
        tables.push_back(spec.table);
        if (spec.table.name != "SysParameters")
            continue;
        for (auto &field : tables.back().fields) {
            if (field.name == "Fax Number")
                field.name = "Fax";
            if (field.name == "Report Name")
                field.name = "Print Name";
        }
    }
    std::string why;
    ASSERT_EQ(recman::createDictionary(root().toStdString(), tables, why, fundCodePage()), recman::Status::Success)
        << why;

    classObjectSysParams organisation;
    ASSERT_EQ(organisation.Init(root(), root() + QStringLiteral("\\FUND")), 0);
    EXPECT_EQ(organisation.Message(),
              QStringLiteral("the data dictionary's table \"SysParameters\" has no field \"Fax Number\"; left empty"));
    EXPECT_EQ(errorLog().count(QStringLiteral("Fax Number")), 1);
    EXPECT_FALSE(errorLog().contains(QStringLiteral("Report Name")));
    for (int round = 0; round < 2; ++round) {
        ASSERT_EQ(organisation.Retrieve(), 0) << organisation.Message().toStdString();
        EXPECT_EQ(organisation.State, QStringLiteral("NY"));
        EXPECT_TRUE(organisation.Fax.isEmpty());
    }
    organisation.City = QStringLiteral("Lakeview Falls");
    organisation.Fax = QStringLiteral("555-0100");
    ASSERT_EQ(organisation.Update(), 0) << organisation.Message().toStdString();
    organisation.Clear();
    ASSERT_EQ(organisation.Retrieve(), 0);
    EXPECT_EQ(organisation.City, QStringLiteral("Lakeview Falls"));
    EXPECT_EQ(errorLog().count(QStringLiteral("Fax Number")), 1) << "named once, not per operation";
}

// The real variable-length file: an 8-byte fixed part, tails up to 1029 bytes;
// key 1's index pages are a tree of several levels.
class VariableLengthControl : public ::testing::Test {
protected:
    void SetUp() override
    {
        std::filesystem::copy_file(std::filesystem::path(KORA_FIXTURES_DIR) / "recman" / "VARIABLE.DAT", dataFile());
        std::filesystem::permissions(dataFile(), std::filesystem::perms::owner_write,
                                     std::filesystem::perm_options::add);
        recman::TableDef table{"Variable", "VARIABLE.DAT", {}, {}, 0, 0};
        table.fields = {{"Counter", recman::DataType::Integer, 0, 4, 0, 0},
                        {"Key", recman::DataType::Integer, 4, 2, 0, 0},
                        {"Other", recman::DataType::Integer, 6, 2, 0, 0}};
        table.indexes = {{{{"Key"}}, true, true, false}};
        std::string why;
        ASSERT_EQ(recman::createDictionary(root(), {table}, why), recman::Status::Success) << why;
        clsErrObject::setLogFilePath(folder.filePath(QStringLiteral("Err.txt")));
    }
    void TearDown() override { clsErrObject::setLogFilePath(QString()); }

    std::filesystem::path root() const { return folder.path().toStdString(); }
    std::filesystem::path dataFile() const { return root() / "VARIABLE.DAT"; }
    int open(DataAccessControl &control) const
    {
        control.setDdfPath(folder.path());
        control.setFileName(QStringLiteral("Variable"));
        return control.Open();
    }
    QString errorLog() const
    {
        QFile log(folder.filePath(QStringLiteral("Err.txt")));
        return log.open(QIODevice::ReadOnly) ? QString::fromUtf8(log.readAll()) : QString();
    }

    QTemporaryDir folder;
};

TEST_F(VariableLengthControl, SteppingAndBlocksKeepEveryRecordWhole)
{
    DataAccessControl control;
    ASSERT_EQ(open(control), 0) << control.Message().toStdString();
    int stepped = 0;
    for (int status = control.StepFirst(); status == 0; status = control.StepNext())
        ++stepped;
    EXPECT_EQ(stepped, 1024);
    EXPECT_EQ(control.GetLast(), 0);
    const QVariant lastKey = control.FieldValue(QStringLiteral("Key"));
    control.clearRecord();
    ASSERT_TRUE(control.setFieldValue(QStringLiteral("Key"), lastKey));
    EXPECT_EQ(control.GetEqual(), 0);
    control.setExtendedOps(true);
    control.setSelectedFields(QStringLiteral("Key,Other"));
    ASSERT_EQ(control.StepFirst(), 0);
    EXPECT_EQ(control.GetNextExtended(), 0);
    EXPECT_EQ(control.Rows(), 1024);
}

// Key 1's index pages are read at its first keyed use: a loop in them is
// found then, after Open, and logged once with the file's path.
TEST_F(VariableLengthControl, IndexPagesFoundDamagedAtTheFirstKeyedReadAreLoggedOnce)
{
    std::uint32_t root = 0;
    {
        recman::File file;
        ASSERT_EQ(file.open(dataFile()), recman::Status::Success);
        root = file.info().keys[1].indexRoot;
        ASSERT_NE(root, 0u);
    }
    QFile data(QString::fromStdString(dataFile().string()));
    ASSERT_TRUE(data.open(QIODevice::ReadWrite));
    ASSERT_TRUE(data.seek(qint64{root} * 512 + 12)); // the root's leftmost child: the root itself
    std::uint8_t child[4];
    recman::bytes::putWs32(recman::MutableBytes(child), 0, root);
    ASSERT_EQ(data.write(reinterpret_cast<const char *>(child), 4), 4);
    ASSERT_TRUE(data.flush());

    DataAccessControl control;
    ASSERT_EQ(open(control), 0) << control.Message().toStdString();
    control.setIndexNumber(0);
    ASSERT_EQ(control.GetFirst(), 0);
    EXPECT_EQ(errorLog(), QString());

    control.setIndexNumber(1);
    ASSERT_EQ(control.GetFirst(), 0);
    EXPECT_EQ(control.Message(), QString());
    const QString logged = errorLog();
    EXPECT_EQ(logged.count(QStringLiteral("index pages of key 1 not used")), 1) << logged.toStdString();
    EXPECT_TRUE(logged.contains(
        QStringLiteral("DataAccessControl.GetFirst 0: \"%1\"").arg(QString::fromStdString(dataFile().string()))))
        << logged.toStdString();
    int read = 1;
    while (control.GetNext() == 0)
        ++read;
    EXPECT_EQ(read, 1024);
    EXPECT_EQ(control.GetLast(), 0);
    EXPECT_EQ(errorLog(), logged);

    // Written again (as another program would), the file is read afresh and
    // key 1's damage found anew at its next use: nothing new to say.
    ASSERT_TRUE(data.seek(qint64{root} * 512 + 12));
    ASSERT_EQ(data.write(reinterpret_cast<const char *>(child), 4), 4);
    data.close();
    control.setIndexNumber(0);
    EXPECT_EQ(control.GetFirst(), 0);
    control.setIndexNumber(1);
    EXPECT_EQ(control.GetFirst(), 0);
    EXPECT_EQ(errorLog(), logged);
}

} // namespace
