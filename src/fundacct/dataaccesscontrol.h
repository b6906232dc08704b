#pragma once

#include <QString>
#include <QStringList>
#include <QVariant>

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace recman {
enum class Status : int;
}

// The data-access control: one open Kora-Fund file seen through the data
// dictionary. Set DdfPath, FileName (the dictionary's table name) and
// optionally Location (the data file, a Windows path), then Open. Every
// operation returns the status it leaves in Status (0 = done); Message says
// what went wrong in words.
//
// Records are read into and written from one record buffer: FieldValue reads
// and sets a field of it by name, the keyed Get operations search with the key
// value that the buffer's key fields hold (IndexNumber chooses the key), and
// Insert/Update write the buffer. A Get that fails leaves buffer and position
// as they were. Update refuses with 80 when another program changed the record
// since it was read; writes to a file another process held for writing at
// Open (then opened for reading) give 85.
//
// Field values: text fields give QString (right-trimmed), integer fields and
// whole numbers of decimal types qlonglong, numbers with decimal places in any
// exact type (currency, money, decimal, numeric) Currency (which converts to
// QString as plain decimal text), floats double; value<Currency>() gives the
// amount of any of them. Anything else is the decoded value as text. Setting takes
// the same types or text and converts by the field's type; a value that does
// not fit (text too long, a number out of range) is refused, never cut, and
// the buffer keeps what it held. Text is stored in the installation's code
// page (fundCodePage(), Windows-1252 unless set), as it was when Open ran.
//
// What the file engine finds wrong with the file (a free-slot chain that
// loops, index pages it cannot use, ...) goes to the error log with the
// file's path, once per Open: at Open, or after the operation that found it.
class DataAccessControl {
public:
    // Status codes of the control's own failures, beside the file engine's.
    enum : int {
        StatusDictionaryMissing = 1001, // no readable FILE.DDF/FIELD.DDF/INDEX.DDF at DdfPath
        StatusUnknownTable = 1002,      // FileName not in the dictionary
        StatusUnknownField = 1003,      // FieldValue on a name the table does not have
        StatusBadFieldValue = 1004,     // value cannot be stored in the field (type, size)
        // Open: the file's header counts a different number of records than its
        // pages hold. The file is open and every record is read; the error log has it.
        // Found by a later operation, it goes to the error log alone; that
        // operation's status is its own.
        StatusRecordCountMismatch = 1005,
    };

    DataAccessControl();
    ~DataAccessControl();
    DataAccessControl(const DataAccessControl &) = delete;
    DataAccessControl &operator=(const DataAccessControl &) = delete;

    const QString &DdfPath() const;
    void setDdfPath(const QString &path);
    const QString &FileName() const;
    void setFileName(const QString &tableName);
    const QString &Location() const;
    void setLocation(const QString &location);
    int IndexNumber() const;
    void setIndexNumber(int key);

    // A failed access (unknown field, a value that does not fit) sets Status
    // and Message; a successful one leaves them as the last operation left them.
    QVariant FieldValue(const QString &field);
    // Whether the open table has a field of that name (ignoring case).
    bool hasField(const QString &field) const;
    bool setFieldValue(const QString &field, const QVariant &value);
    // Every field to its empty value (blanks, zero), e.g. before building a new record.
    void clearRecord();

    int Status() const;
    const QString &Message() const;

    // 0 pads written text with blanks as the dictionary's files are; any
    // other character code pads with that character.
    int BlankChar() const;
    void setBlankChar(int character);

    // Settings of the block read GetNextExtended. ExtendedOps must be on for it;
    // CacheRows is the block size (0 = to the end of the file); SelectedFields
    // names the columns, comma-separated. AutoMode and CancelDialog are kept
    // for the callers that set them; without a progress dialog they change nothing.
    bool ExtendedOps() const;
    void setExtendedOps(bool on);
    bool AutoMode() const;
    void setAutoMode(bool on);
    bool CancelDialog() const;
    void setCancelDialog(bool on);
    int CacheRows() const;
    void setCacheRows(int rows);
    const QString &SelectedFields() const;
    void setSelectedFields(const QString &fields);
    // The block the last GetNextExtended delivered; row and column from 0.
    int Rows() const;
    QVariant RowColumnValue(int row, int column) const;

    const QString &VAccessName() const;
    void setVAccessName(const QString &name);

    // Joins this control to a master: after each successful positioning of the
    // master, this control reads its record whose current key equals the
    // master's value of `field` (its own status tells whether one was found).
    // Null master ends the join. Both controls must outlive the join.
    void setJoin(DataAccessControl *master, const QString &field);
    const QString &Join() const;

    // Records in the open file.
    std::int64_t TotalRecords() const;

    int Open();
    int Close();
    int GetEqual();
    int GetGreaterOrEqual();
    int GetNext();
    int GetLast();
    int GetFirst();
    int GetNextExtended();
    int StepFirst();
    int StepNext();
    int Insert();
    int Update();
    int Delete();
    int Unlock();
    // A transaction on this control: writes after BeginTransaction are undone
    // by AbortTransaction (the file is then as it was at BeginTransaction, read
    // afresh, with no current record); Endtransaction keeps them. The bytes each
    // write overwrites are kept in a journal beside the data file, so a
    // transaction a crash interrupts is rolled back by the next Open (status 0,
    // Message and the error log say so). Closing the file with a transaction
    // open aborts it.
    int BeginTransaction();
    int AbortTransaction();
    int Endtransaction();
    // Ends the transactions of several controls as one: after a crash at any
    // point, the next Opens find every control's writes kept or every one's
    // rolled back. If they cannot be kept, all are rolled back. Every
    // control's Status and Message tell the outcome, which is returned.
    static int endTransactions(std::span<DataAccessControl *const> controls);

    // The data file the last Open resolved, as a native path ("" before).
    QString resolvedFilePath() const;

    struct Impl;

private:
    // Takes a positioning result: the record into the buffer, joined controls follow.
    int positioned(recman::Status result, bool byStep, const char *operation);
    void followMaster();

    std::unique_ptr<Impl> impl_;
};
