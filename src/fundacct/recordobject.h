#pragma once

#include "dataaccesscontrol.h"

#include <QString>
#include <QStringList>

#include <memory>
#include <span>
#include <variant>
#include <vector>

// Where a record object's file lives: the dictionary's table name and the
// file name under the data folder ("\Funds.btr").
struct FundFileDef {
    const char *recordName;
    const char *fileName;
};

// One field property of a record object's field struct, by dictionary name.
// Optional fields are ours, not Kora-Fund's: an installation may well lack them.
template <class Fields> struct FieldBinding {
    const char *field;
    std::variant<QString Fields::*, int Fields::*> member;
    bool optional = false;
};

// Opens a Kora-Fund file on a control: DdfPath, FileName, Location (the data
// folder followed by the file name), Open. Returns the status.
int bindFundFile(DataAccessControl &control, const QString &ddfPath, const QString &dataFolder,
                 const FundFileDef &file);

// The folder of the installation-wide files (users, years, counters, the
// organisation): FUND below the dictionary folder, whatever year is open.
QString installationFolder(const QString &ddfPath);

// The message for a status: the record manager's wording where the error
// object has one, otherwise the control's own explanation.
QString fundStatusMessage(int status, const QString &controlMessage);

// One message naming the fields a record object needs that the control's
// table lacks, written to the error log; "" when none is missing.
QString reportMissingFields(const DataAccessControl &control, const QStringList &missing);

// Copies between a control's record buffer and a field struct. Fields the
// installation's dictionary lacks are left out: their properties stay empty.
template <class Fields>
void loadFields(DataAccessControl &control, std::span<const FieldBinding<Fields>> bindings, Fields &into)
{
    for (const auto &binding : bindings) {
        if (!control.hasField(QString::fromLatin1(binding.field)))
            continue;
        const QVariant value = control.FieldValue(QString::fromLatin1(binding.field));
        if (const auto *text = std::get_if<QString Fields::*>(&binding.member))
            into.*(*text) = value.toString();
        else
            into.*std::get<int Fields::*>(binding.member) = value.toInt();
    }
}

// Returns the status of the first field that could not be stored, or 0.
template <class Fields>
int storeFields(DataAccessControl &control, std::span<const FieldBinding<Fields>> bindings, const Fields &from)
{
    for (const auto &binding : bindings) {
        const QString name = QString::fromLatin1(binding.field);
        if (!control.hasField(name))
            continue;
        const auto *text = std::get_if<QString Fields::*>(&binding.member);
        const bool stored = text ? control.setFieldValue(name, from.*(*text))
                                 : control.setFieldValue(name, from.*std::get<int Fields::*>(binding.member));
        if (!stored)
            return control.Status();
    }
    return 0;
}

// The common part of every record object: the bound control, its status
// message, and the single-record operations by key. A derived class supplies
// its file, its field bindings and its key path; its public data members
// (inherited from Fields) are the field properties.
template <class Fields> class RecordObject : public Fields {
public:
    std::shared_ptr<DataAccessControl> DataControl() const { return control_; }
    void setDataControl(std::shared_ptr<DataAccessControl> control) { control_ = std::move(control); }
    bool DataBound() const { return control_ != nullptr; }
    // Words for the last nonzero status of an operation of this object.
    const QString &Message() const { return message_; }

    virtual ~RecordObject() = default;

    int Init(const QString &ddfPath, const QString &dataFolder)
    {
        if (!control_)
            control_ = std::make_shared<DataAccessControl>();
        int status = bindFundFile(*control_, ddfPath, dataFolder, file_);
        if (status == 0)
            status = openCompanions(ddfPath, dataFolder);
        finish(status);
        if (status == 0)
            message_ = reportMissingFields(*control_, missingFields());
        return status;
    }

    // Empties the field properties.
    void Clear() { static_cast<Fields &>(*this) = Fields{}; }

    // Reads the record whose key equals the key fields' properties (the
    // single-record files: their one record).
    int Retrieve()
    {
        const int status = positionForRead();
        if (status == 0)
            loadCurrent(static_cast<Fields &>(*this));
        return finish(status);
    }

    int Add()
    {
        if (!control_)
            return notBound();
        control_->clearRecord();
        const int status = storeFields(*control_, bindings_, static_cast<const Fields &>(*this));
        return finish(status != 0 ? status : control_->Insert());
    }

    int Update() { return updateFields(bindings_); }

    int Delete()
    {
        const int status = seekByKey();
        return finish(status == 0 ? control_->Delete() : status);
    }

    int UnlockRecord() { return control_ ? finish(control_->Unlock()) : notBound(); }

    // Every record in key order, from a key of blanks.
    int GetList(std::vector<Fields> &list)
    {
        if (!control_)
            return notBound();
        control_->setIndexNumber(key_);
        control_->clearRecord();
        return finish(collect(list, control_->GetGreaterOrEqual(), [](const Fields &) { return true; }));
    }

protected:
    RecordObject(FundFileDef file, std::span<const FieldBinding<Fields>> bindings, int key)
        : file_(file), bindings_(bindings), key_(key)
    {
    }

    DataAccessControl &control() { return *control_; }

    // Files beside the main one (joined or second files); status 0 when all opened.
    virtual int openCompanions(const QString & /*ddfPath*/, const QString & /*dataFolder*/) { return 0; }
    // Fills the properties that do not come from the main file's fields.
    virtual void completeRecord(Fields & /*record*/) {}
    // How Retrieve and Update find their record: by key unless the file has one record.
    virtual int positionForRead() { return seekByKey(); }
    virtual int positionForWrite() { return seekByKey(); }

    // Positions for writing, writes the given fields of the properties, updates and unlocks.
    int updateFields(std::span<const FieldBinding<Fields>> fields)
    {
        int status = positionForWrite();
        if (status == 0) {
            status = storeFields(*control_, fields, static_cast<const Fields &>(*this));
            if (status == 0)
                status = control_->Update();
            control_->Unlock();
        }
        return finish(status);
    }

    // The records from the key the properties hold (on key path `key`), in key
    // order, while inRange accepts them: the properties name the first record
    // of a range, e.g. a user ID with the rest of the key blank.
    template <class InRange> int listFrom(int key, std::vector<Fields> &list, InRange inRange)
    {
        if (!control_)
            return notBound();
        control_->setIndexNumber(key);
        control_->clearRecord();
        const int status = storeFields(*control_, bindings_, static_cast<const Fields &>(*this));
        return finish(status != 0 ? status : collect(list, control_->GetGreaterOrEqual(), inRange));
    }

    // Positions on the record the key fields name, leaving the buffer holding it.
    int seekByKey() { return seekByKey(key_); }
    int seekByKey(int key)
    {
        if (!control_)
            return notBound();
        control_->setIndexNumber(key);
        control_->clearRecord();
        const int status = storeFields(*control_, bindings_, static_cast<const Fields &>(*this));
        return status != 0 ? status : control_->GetEqual();
    }

    // Records the message for a nonzero status and hands the status on.
    int finish(int status)
    {
        message_ = status == 0 ? QString() : fundStatusMessage(status, control_ ? control_->Message() : QString());
        return status;
    }

    void loadCurrent(Fields &record)
    {
        loadFields(*control_, bindings_, record);
        completeRecord(record);
    }

    int notBound() { return finish(3); }

private:
    QStringList missingFields() const
    {
        QStringList missing;
        for (const auto &binding : bindings_)
            if (!binding.optional && !control_->hasField(QString::fromLatin1(binding.field)))
                missing << QString::fromLatin1(binding.field);
        return missing;
    }

    template <class InRange> int collect(std::vector<Fields> &list, int status, InRange inRange)
    {
        while (status == 0) {
            Fields record;
            loadCurrent(record);
            if (!inRange(record))
                break;
            list.push_back(std::move(record));
            status = control_->GetNext();
        }
        return status == 9 ? 0 : status;
    }

    std::shared_ptr<DataAccessControl> control_;
    QString message_;
    FundFileDef file_;
    std::span<const FieldBinding<Fields>> bindings_;
    int key_;
};
