#include "dataaccesscontrol.h"

#include "dictionary.h"
#include "errobject.h"
#include "file.h"
#include "fundfieldvalue.h"
#include "fundlocation.h"

#include <algorithm>
#include <limits>
#include <unordered_map>

namespace {
using FileStatus = recman::Status;

constexpr int statusInvalidOperation = 1;
constexpr int statusFileNotOpen = 3;
constexpr int statusEndOfFile = 9;
constexpr int statusFileNotFound = 12;

// Field names match ignoring ASCII case, as the dictionary's own look-up does.
char16_t foldedAscii(QChar c)
{
    const char16_t code = c.unicode();
    return code >= u'A' && code <= u'Z' ? static_cast<char16_t>(code + (u'a' - u'A')) : code;
}

struct FieldNameHash {
    using is_transparent = void;
    std::size_t operator()(QStringView name) const noexcept
    {
        std::size_t hash = 0;
        for (const QChar c : name)
            hash = hash * 31 + foldedAscii(c);
        return hash;
    }
};

struct FieldNameEqual {
    using is_transparent = void;
    bool operator()(QStringView a, QStringView b) const noexcept
    {
        return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(),
                                                  [](QChar x, QChar y) { return foldedAscii(x) == foldedAscii(y); });
    }
};

// Built once per table: FieldValue looks a field up by name on every call.
using FieldsByName = std::unordered_map<QString, const recman::FieldDef *, FieldNameHash, FieldNameEqual>;
} // namespace

struct DataAccessControl::Impl {
    QString ddfPath;
    QString fileName;
    QString location;
    QString vaccessName;
    QString selectedFields;
    QString message;
    QString joinField;
    QString resolvedPath;
    int index = 0;
    int status = 0;
    int blankChar = 0;
    int cacheRows = 0;
    bool extendedOps = false;
    bool autoMode = false;
    bool cancelDialog = false;

    recman::TableDef table;
    FieldsByName fieldsByName; // points into table.fields
    const recman::CodePage *codePage = &fundCodePage();
    std::filesystem::path dictionaryRoot;
    recman::File file;
    std::vector<std::uint8_t> buffer;
    bool positionedByStep = false;
    bool blockStartsAtCurrent = false;
    std::vector<std::vector<QVariant>> rows;

    DataAccessControl *master = nullptr;
    std::vector<DataAccessControl *> details;

    // Another process held the file for writing at Open: opened for reading only.
    bool lockedByOther = false;

    // What of the engine's findings about the file the error log has. The
    // engine finds some only after Open (a key's index pages are read at its
    // first keyed use), so every operation looks again; comparing a size keeps
    // that cheap. A file read afresh after another program changed it starts
    // its list again, so the texts already logged are kept to log each once.
    struct Logged {
        std::size_t warningsSeen = 0;
        std::vector<std::string> warnings;
        bool countMismatch = false;
    } logged;

    int set(int code, const QString &text = {})
    {
        status = code;
        message = text;
        return code;
    }

    // The status of a file operation; what the engine found wrong meanwhile goes to the error log.
    int fromFile(FileStatus code, const char *operation)
    {
        set(recman::statusNumber(code),
            code == FileStatus::Success ? QString() : QString::fromStdString(file.lastMessage()));
        logNewFindings(operation);
        return status;
    }

    // The buffer becomes the current record; variable-length records are
    // longer than the fixed part the buffer starts out with.
    void takeCurrentRecord()
    {
        const auto record = file.record();
        buffer.assign(record.begin(), record.end());
    }

    char pad() const { return blankChar == 0 ? ' ' : static_cast<char>(blankChar); }

    bool requireOpen()
    {
        if (file.isOpen())
            return true;
        set(statusFileNotOpen, QStringLiteral("file not open"));
        return false;
    }

    bool requireWritable()
    {
        if (!requireOpen())
            return false;
        if (!lockedByOther)
            return true;
        set(recman::statusNumber(FileStatus::FileInUse),
            QStringLiteral("\"%1\" is locked by another process; it was opened for reading only").arg(resolvedPath));
        return false;
    }

    const recman::FieldDef *fieldOrFail(const QString &name)
    {
        const auto found = fieldsByName.find(QStringView(name).trimmed());
        const recman::FieldDef *field = found == fieldsByName.end() ? nullptr : found->second;
        if (!field)
            set(StatusUnknownField,
                QStringLiteral("table \"%1\" has no field \"%2\"").arg(QString::fromStdString(table.name), name));
        return field;
    }

    // A field of `record`; an invalid value, with the status set, when its bytes are no value.
    QVariant read(const recman::FieldDef &field, recman::Bytes record)
    {
        QVariant value;
        QString why;
        if (!readFundField(field, record, *codePage, value, why))
            set(StatusBadFieldValue, why);
        return value;
    }

    // The table's definition from the dictionary at ddfPath: 0 or a status.
    int readTable()
    {
        const auto root = fundRootFolder(ddfPath);
        if (!root)
            return set(
                StatusDictionaryMissing,
                QStringLiteral("no data dictionary (FILE.DDF, FIELD.DDF, INDEX.DDF): no folder \"%1\"").arg(ddfPath));
        recman::Dictionary dictionary(*codePage);
        if (dictionary.open(*root) != FileStatus::Success)
            return set(StatusDictionaryMissing, QString::fromStdString(dictionary.lastMessage()));
        const recman::TableDef *found = dictionary.table(fileName.trimmed().toStdString());
        if (!found)
            return set(StatusUnknownTable, QString::fromStdString(dictionary.lastMessage()));
        table = *found;
        fieldsByName.clear();
        for (const recman::FieldDef &field : table.fields) // the first of equal names wins
            fieldsByName.try_emplace(QString::fromStdString(field.name), &field);
        dictionaryRoot = *root;
        return 0;
    }

    static void log(int number, const char *operation, const QString &text)
    {
        clsErrObject entry;
        entry.set(number, QStringLiteral("DataAccessControl.") + QLatin1String(operation), text);
        entry.LogError();
    }

    QString countMismatchText() const
    {
        const recman::FileInfo &info = file.info();
        return QStringLiteral("\"%1\": the file's header counts %2 records but its data pages hold %3; all %3 are "
                              "read (the file may need the record manager's recovery)")
            .arg(resolvedPath)
            .arg(info.headerRecordCount)
            .arg(info.recordCount);
    }

    // Logs the engine's findings about the open file not logged yet, the file
    // named: a header count that disagrees with StatusRecordCountMismatch as
    // Open reports it, each warning once. The status stays as it is.
    void logNewFindings(const char *operation)
    {
        if (!file.isOpen())
            return;
        const recman::FileInfo &info = file.info();
        if (info.countMismatch() && !logged.countMismatch)
            log(StatusRecordCountMismatch, operation, countMismatchText());
        logged.countMismatch = info.countMismatch();
        if (info.warnings.size() == logged.warningsSeen)
            return;
        logged.warningsSeen = info.warnings.size();
        for (const std::string &warning : info.warnings) {
            if (std::ranges::find(logged.warnings, warning) != logged.warnings.end())
                continue;
            logged.warnings.push_back(warning);
            log(0, operation, QStringLiteral("\"%1\": %2").arg(resolvedPath, QString::fromStdString(warning)));
        }
    }
};

DataAccessControl::DataAccessControl() : impl_(std::make_unique<Impl>())
{
}

DataAccessControl::~DataAccessControl()
{
    setJoin(nullptr, {});
    for (DataAccessControl *detail : impl_->details)
        detail->impl_->master = nullptr;
    Close();
}

const QString &DataAccessControl::DdfPath() const
{
    return impl_->ddfPath;
}
void DataAccessControl::setDdfPath(const QString &path)
{
    impl_->ddfPath = path;
}
const QString &DataAccessControl::FileName() const
{
    return impl_->fileName;
}
void DataAccessControl::setFileName(const QString &tableName)
{
    impl_->fileName = tableName;
}
const QString &DataAccessControl::Location() const
{
    return impl_->location;
}
void DataAccessControl::setLocation(const QString &location)
{
    impl_->location = location;
}
int DataAccessControl::IndexNumber() const
{
    return impl_->index;
}
void DataAccessControl::setIndexNumber(int key)
{
    impl_->index = key;
}
int DataAccessControl::Status() const
{
    return impl_->status;
}
const QString &DataAccessControl::Message() const
{
    return impl_->message;
}
int DataAccessControl::BlankChar() const
{
    return impl_->blankChar;
}
void DataAccessControl::setBlankChar(int character)
{
    impl_->blankChar = character;
}
bool DataAccessControl::ExtendedOps() const
{
    return impl_->extendedOps;
}
void DataAccessControl::setExtendedOps(bool on)
{
    impl_->extendedOps = on;
}
bool DataAccessControl::AutoMode() const
{
    return impl_->autoMode;
}
void DataAccessControl::setAutoMode(bool on)
{
    impl_->autoMode = on;
}
bool DataAccessControl::CancelDialog() const
{
    return impl_->cancelDialog;
}
void DataAccessControl::setCancelDialog(bool on)
{
    impl_->cancelDialog = on;
}
int DataAccessControl::CacheRows() const
{
    return impl_->cacheRows;
}
void DataAccessControl::setCacheRows(int rows)
{
    impl_->cacheRows = std::max(rows, 0);
}
const QString &DataAccessControl::SelectedFields() const
{
    return impl_->selectedFields;
}
void DataAccessControl::setSelectedFields(const QString &fields)
{
    impl_->selectedFields = fields;
}
int DataAccessControl::Rows() const
{
    return static_cast<int>(impl_->rows.size());
}
const QString &DataAccessControl::VAccessName() const
{
    return impl_->vaccessName;
}
void DataAccessControl::setVAccessName(const QString &name)
{
    impl_->vaccessName = name;
}
const QString &DataAccessControl::Join() const
{
    return impl_->joinField;
}
QString DataAccessControl::resolvedFilePath() const
{
    return impl_->resolvedPath;
}

QVariant DataAccessControl::RowColumnValue(int row, int column) const
{
    if (row < 0 || row >= Rows() || column < 0 || column >= static_cast<int>(impl_->rows[row].size()))
        return {};
    return impl_->rows[row][column];
}

std::int64_t DataAccessControl::TotalRecords() const
{
    return impl_->file.isOpen() ? impl_->file.info().recordCount : 0;
}

void DataAccessControl::setJoin(DataAccessControl *master, const QString &field)
{
    if (impl_->master)
        std::erase(impl_->master->impl_->details, this);
    impl_->master = master;
    impl_->joinField = master ? field : QString();
    if (master)
        master->impl_->details.push_back(this);
}

QVariant DataAccessControl::FieldValue(const QString &field)
{
    const recman::FieldDef *definition = impl_->fieldOrFail(field);
    return definition ? impl_->read(*definition, impl_->buffer) : QVariant();
}

bool DataAccessControl::hasField(const QString &field) const
{
    return impl_->fieldsByName.contains(QStringView(field).trimmed());
}

bool DataAccessControl::setFieldValue(const QString &field, const QVariant &value)
{
    const recman::FieldDef *definition = impl_->fieldOrFail(field);
    if (!definition)
        return false;
    QString why;
    if (!writeFundField(*definition, value, impl_->buffer, *impl_->codePage, impl_->pad(), why)) {
        impl_->set(StatusBadFieldValue, why);
        return false;
    }
    return true;
}

void DataAccessControl::clearRecord()
{
    auto &buffer = impl_->buffer;
    // The fixed part, and as much of a variable-length tail as the dictionary
    // has fields in: a record read before does not carry over.
    const std::size_t fixedPart = impl_->file.isOpen() ? impl_->file.info().recordLength : 0;
    buffer.assign(std::max<std::size_t>(fixedPart, impl_->table.recordLength()), 0);
    for (const recman::FieldDef &field : impl_->table.fields) {
        if (field.type == recman::DataType::String)
            std::fill_n(buffer.begin() + field.offset, field.size, std::uint8_t(' '));
    }
}

int DataAccessControl::Open()
{
    Close();
    Impl &d = *impl_;
    d.codePage = &fundCodePage();
    if (const int status = d.readTable(); status != 0)
        return status;
    const QString location = d.location.isEmpty() ? QString::fromStdString(d.table.location) : d.location;
    const auto path = findFundFile(d.dictionaryRoot, location);
    if (!path)
        return d.set(statusFileNotFound, QStringLiteral("no data file at \"%1\"").arg(location));
    FileStatus opened = d.file.open(*path, recman::OpenMode::ReadWrite);
    d.lockedByOther = opened == FileStatus::FileInUse;
    if (opened != FileStatus::Success && opened != FileStatus::FileNotFound)
        opened = d.file.open(*path, recman::OpenMode::ReadOnly);
    if (opened != FileStatus::Success)
        return d.fromFile(opened, "Open");
    // A variable-length record's fields run on into its tail, past the fixed part.
    if (!d.file.info().variable && d.file.info().recordLength < d.table.recordLength()) {
        d.file.close();
        return d.set(static_cast<int>(FileStatus::DataBufferTooShort),
                     QStringLiteral("records of \"%1\" are %2 bytes, the dictionary needs %3")
                         .arg(location)
                         .arg(d.file.info().recordLength)
                         .arg(d.table.recordLength()));
    }
    d.resolvedPath = QString::fromStdString(path->string());
    clearRecord();
    // The file is whole again; Message says so for a caller that wants to tell the user.
    const QString rolledBack = QString::fromStdString(d.file.info().rolledBack);
    if (!rolledBack.isEmpty())
        d.log(0, "Open", rolledBack);
    d.logNewFindings("Open");
    if (d.file.info().countMismatch())
        return d.set(StatusRecordCountMismatch, d.countMismatchText());
    return d.set(0, rolledBack);
}

int DataAccessControl::Close()
{
    Impl &d = *impl_;
    if (d.file.inGroup())
        AbortTransaction();
    d.file.close();
    d.rows.clear();
    d.logged = {};
    return d.set(0);
}

int DataAccessControl::positioned(recman::Status result, bool byStep, const char *operation)
{
    Impl &d = *impl_;
    if (result == FileStatus::Success) {
        d.takeCurrentRecord();
        d.positionedByStep = byStep;
        d.blockStartsAtCurrent = true;
        for (DataAccessControl *detail : d.details)
            detail->followMaster();
    }
    return d.fromFile(result, operation);
}

void DataAccessControl::followMaster()
{
    Impl &d = *impl_;
    if (!d.file.isOpen() || !d.master)
        return;
    const QVariant value = d.master->FieldValue(d.joinField);
    clearRecord();
    if (setFieldValue(d.joinField, value))
        GetEqual();
}

int DataAccessControl::GetEqual()
{
    if (!impl_->requireOpen())
        return impl_->status;
    return positioned(impl_->file.getEqual(impl_->index, impl_->file.keyValueOf(impl_->index, impl_->buffer)), false,
                      "GetEqual");
}

int DataAccessControl::GetGreaterOrEqual()
{
    if (!impl_->requireOpen())
        return impl_->status;
    return positioned(impl_->file.getGreaterOrEqual(impl_->index, impl_->file.keyValueOf(impl_->index, impl_->buffer)),
                      false, "GetGreaterOrEqual");
}

int DataAccessControl::GetNext()
{
    return impl_->requireOpen() ? positioned(impl_->file.getNext(impl_->index), false, "GetNext") : impl_->status;
}

int DataAccessControl::GetLast()
{
    return impl_->requireOpen() ? positioned(impl_->file.getLast(impl_->index), false, "GetLast") : impl_->status;
}

int DataAccessControl::GetFirst()
{
    return impl_->requireOpen() ? positioned(impl_->file.getFirst(impl_->index), false, "GetFirst") : impl_->status;
}

int DataAccessControl::StepFirst()
{
    return impl_->requireOpen() ? positioned(impl_->file.stepFirst(), true, "StepFirst") : impl_->status;
}

int DataAccessControl::StepNext()
{
    return impl_->requireOpen() ? positioned(impl_->file.stepNext(), true, "StepNext") : impl_->status;
}

int DataAccessControl::GetNextExtended()
{
    Impl &d = *impl_;
    d.rows.clear();
    if (!d.requireOpen())
        return d.status;
    if (!d.extendedOps)
        return d.set(statusInvalidOperation, QStringLiteral("extended operations are off (ExtendedOps)"));
    std::vector<const recman::FieldDef *> columns;
    for (const QString &name : d.selectedFields.split(u',', Qt::SkipEmptyParts)) {
        const recman::FieldDef *field = d.fieldOrFail(name);
        if (!field)
            return d.status;
        columns.push_back(field);
    }
    const std::size_t wanted =
        d.cacheRows > 0 ? static_cast<std::size_t>(d.cacheRows) : std::numeric_limits<std::size_t>::max();
    auto advance = [&] { return d.positionedByStep ? d.file.stepNext() : d.file.getNext(d.index); };
    d.set(0);
    FileStatus result = d.blockStartsAtCurrent && !d.file.record().empty() ? FileStatus::Success : advance();
    while (result == FileStatus::Success) {
        std::vector<QVariant> row;
        row.reserve(columns.size());
        for (const recman::FieldDef *field : columns)
            row.push_back(d.read(*field, d.file.record()));
        d.rows.push_back(std::move(row));
        if (d.rows.size() == wanted)
            break;
        result = advance();
    }
    d.blockStartsAtCurrent = false;
    if (d.rows.empty())
        return d.fromFile(result, "GetNextExtended");
    d.takeCurrentRecord();
    d.logNewFindings("GetNextExtended");
    return d.status; // a value that could not be read in the block says so
}

int DataAccessControl::Insert()
{
    Impl &d = *impl_;
    if (!d.requireWritable())
        return d.status;
    return d.fromFile(d.file.insert(d.buffer), "Insert");
}

int DataAccessControl::Update()
{
    Impl &d = *impl_;
    if (!d.requireWritable())
        return d.status;
    return d.fromFile(d.file.update(d.buffer), "Update");
}

int DataAccessControl::Delete()
{
    Impl &d = *impl_;
    if (!d.requireWritable())
        return d.status;
    return d.fromFile(d.file.erase(), "Delete");
}

// One process owns the files; there is no other holder of a lock to release.
int DataAccessControl::Unlock()
{
    return impl_->requireOpen() ? impl_->set(0) : impl_->status;
}

int DataAccessControl::BeginTransaction()
{
    Impl &d = *impl_;
    if (!d.requireOpen())
        return d.status;
    return d.fromFile(d.file.beginGroup(), "BeginTransaction");
}

int DataAccessControl::Endtransaction()
{
    return impl_->fromFile(impl_->file.endGroup(), "Endtransaction");
}

int DataAccessControl::endTransactions(std::span<DataAccessControl *const> controls)
{
    std::vector<recman::File *> files;
    for (DataAccessControl *control : controls)
        files.push_back(&control->impl_->file);
    const auto result = recman::File::endGroups(files);
    for (DataAccessControl *control : controls)
        control->impl_->fromFile(result, "Endtransaction");
    return recman::statusNumber(result);
}

int DataAccessControl::AbortTransaction()
{
    return impl_->fromFile(impl_->file.abortGroup(), "AbortTransaction");
}
