#include "errobject.h"
#include "recordingmessages.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

TEST(ErrObject, TranslatesRecordManagerStatusesOnlyWhenTheNumberIsSetFirst)
{
    clsErrObject error;
    error.setErrorNumber(84);
    error.setErrorText("anything");
    EXPECT_EQ(error.ErrorText(), "Record Or Page is Locked by other process. Please try again!");

    error.setErrorNumber(5);
    error.setErrorText("x");
    EXPECT_EQ(error.ErrorText(), "Invalid key number");

    clsErrObject early;
    early.setErrorText("Custom text");
    early.setErrorNumber(4);
    EXPECT_EQ(early.ErrorText(), "Custom text");

    clsErrObject other;
    other.setErrorNumber(999);
    other.setErrorText("Record not Found.");
    EXPECT_EQ(other.ErrorText(), "Record not Found.");
}

TEST(ErrObject, DatabaseErrorsKeepTheDatabasesOwnWords)
{
    // SQLite's codes 1 and 5 are a failed statement and a busy file, not record-manager statuses.
    clsErrObject error;
    error.setDatabaseError(5, "Update", "database is locked");
    EXPECT_EQ(error.ErrorNumber(), 5);
    EXPECT_EQ(error.ErrorSub(), "Update");
    EXPECT_EQ(error.ErrorText(), "database is locked");
    error.setErrorText("no such table: Missing");
    EXPECT_EQ(error.ErrorText(), "no such table: Missing") << "a later text keeps the database's origin";

    // Back to a record-manager status: translated again.
    error.Clear();
    error.setErrorNumber(85);
    error.setErrorText("held");
    EXPECT_EQ(error.ErrorText(), "File Locked by other process. Please try again.");
    error.setDatabaseError(84, "Add", "duplicate key");
    error.setErrorNumber(1);
    error.setErrorText("x");
    EXPECT_EQ(error.ErrorText(), "Invalid operation.");
}

TEST(ErrObject, ClearKeepsTheClassName)
{
    clsErrObject error;
    error.setErrorCls("clsYears");
    error.set(999, "Retrieve", "Record not Found.");
    error.Clear();
    EXPECT_EQ(error.ErrorNumber(), 0);
    EXPECT_TRUE(error.ErrorText().isEmpty());
    EXPECT_TRUE(error.ErrorSub().isEmpty());
    EXPECT_EQ(error.ErrorCls(), "clsYears");
}

TEST(ErrObject, DisplayAndLogShowProcedureNumberAndText)
{
    ScopedMessages shown;
    clsErrObject error;
    error.set(999, "Update", "No record found to be Update.");
    error.DisplayError();
    ASSERT_EQ(shown->shown().size(), 1u);
    EXPECT_EQ(shown->shown()[0].message.text, "Update 999: No record found to be Update.");
    EXPECT_EQ(shown->shown()[0].message.title, "Kora-Budget");

    QTemporaryDir dir;
    clsErrObject::setLogFilePath(dir.filePath("Err.txt"));
    error.LogError();
    error.LogError();
    QFile log(dir.filePath("Err.txt"));
    ASSERT_TRUE(log.open(QIODevice::ReadOnly));
    const QStringList lines = QString::fromUtf8(log.readAll()).split('\n', Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 2);
    EXPECT_TRUE(lines[0].startsWith('"') && lines[0].endsWith("Update 999: No record found to be Update.\""));

    // An unwritable log is ignored.
    clsErrObject::setLogFilePath(dir.filePath("missing/dir/Err.txt"));
    error.LogError();
    clsErrObject::setLogFilePath({});
}
