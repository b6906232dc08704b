#include "dbconnection.h"

#include "sqldialectadapter.h"

#include <QHash>
#include <QSqlDatabase>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlField>
#include <QSqlQuery>
#include <QSqlRecord>

#include <cmath>

namespace {

bool isSqliteBusy(int code)
{
    // SQLITE_BUSY and SQLITE_LOCKED, with or without an extended code's upper byte.
    const int primary = code & 0xff;
    return primary == 5 || primary == 6;
}

DbError toDbError(const QSqlError &error, SqlDialect backend)
{
    bool numeric = false;
    const int number = error.nativeErrorCode().toInt(&numeric);
    QString text = error.text().trimmed();
    if (text.isEmpty())
        text = QStringLiteral("Unknown database error.");
    // A file another program holds for writing: the user can do something about that.
    if (numeric && backend == SqlDialect::SQLite && isSqliteBusy(number))
        text = QStringLiteral("Another user is saving to the budget database. Please try again. (") + text + u')';
    return {numeric ? number : -1, text};
}

void fill(DbError *target, DbError error)
{
    if (target)
        *target = std::move(error);
}

DbError notOpen()
{
    return {-1, QStringLiteral("The budget database is not open.")};
}

} // namespace

// ---------------------------------------------------------------- Recordset

struct Recordset::Impl {
    QSqlQuery query;
    QSqlRecord record;
    QHash<QString, int> columns; // lower-case name -> index
    bool atEnd = true;

    int index(const QString &column) const { return columns.value(column.toLower(), -1); }
};

Recordset::Recordset() : impl_(std::make_unique<Impl>())
{
}
Recordset::~Recordset() = default;
Recordset::Recordset(Recordset &&) noexcept = default;
Recordset &Recordset::operator=(Recordset &&) noexcept = default;

bool Recordset::atEnd() const
{
    return impl_->atEnd;
}

void Recordset::MoveNext()
{
    if (!impl_->atEnd)
        impl_->atEnd = !impl_->query.next();
}

void Recordset::Close()
{
    impl_->query.finish();
    impl_->query = QSqlQuery();
    impl_->record = QSqlRecord();
    impl_->columns.clear();
    impl_->atEnd = true;
}

bool Recordset::hasColumn(const QString &column) const
{
    return impl_->index(column) >= 0;
}

bool Recordset::isNull(const QString &column) const
{
    const int i = impl_->index(column);
    return impl_->atEnd || i < 0 || impl_->query.isNull(i);
}

QVariant Recordset::value(const QString &column) const
{
    const int i = impl_->index(column);
    if (impl_->atEnd || i < 0)
        return {};
    return impl_->query.value(i);
}

QString Recordset::text(const QString &column) const
{
    return isNull(column) ? QString() : value(column).toString();
}

qint64 Recordset::number(const QString &column) const
{
    const QString digits = text(column).trimmed();
    bool ok = false;
    const qint64 whole = digits.toLongLong(&ok);
    if (ok)
        return whole;
    const double real = digits.toDouble(&ok);
    return ok && std::isfinite(real) ? std::llround(real) : 0;
}

Currency Recordset::amount(const QString &column) const
{
    if (isNull(column))
        return {};
    const QVariant v = value(column);
    if (v.typeId() == QMetaType::Double || v.typeId() == QMetaType::Float)
        return Currency::fromDouble(v.toDouble()).value_or(Currency());
    if (auto parsed = Currency::parse(v.toString()))
        return *parsed;
    return Currency::fromDouble(v.toDouble()).value_or(Currency());
}

double Recordset::real(const QString &column) const
{
    return isNull(column) ? 0.0 : value(column).toDouble();
}

int Recordset::columnCount() const
{
    return impl_->record.count();
}

QString Recordset::columnName(int index) const
{
    return impl_->record.fieldName(index);
}

bool Recordset::columnIsNumeric(int index) const
{
    switch (impl_->record.field(index).metaType().id()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Double:
    case QMetaType::Float:
        return true;
    default:
        return false;
    }
}

QVariant Recordset::value(int index) const
{
    return impl_->atEnd ? QVariant() : impl_->query.value(index);
}

// ---------------------------------------------------------------- DbConnection

struct DbConnection::Impl {
    QString name;
    SqlDialect backend = SqlDialect::SQLite;
    SqlDialectAdapter adapter;
    int depth = 0; // 0: none; 1: a transaction; more: savepoints inside it

    QSqlDatabase database() const { return QSqlDatabase::database(name, false); }
    bool ready() const { return !name.isEmpty() && database().isOpen(); }
};

DbConnection::DbConnection() : impl_(std::make_unique<Impl>())
{
}
DbConnection::~DbConnection()
{
    detach();
}

void DbConnection::attach(const QString &connectionName, SqlDialect backend, SqlDialect statements)
{
    detach();
    impl_->name = connectionName;
    impl_->backend = backend;
    impl_->adapter = SqlDialectAdapter(statements);
}

void DbConnection::detach()
{
    if (impl_->name.isEmpty())
        return;
    {
        QSqlDatabase db = impl_->database();
        if (db.isOpen())
            db.close();
    }
    QSqlDatabase::removeDatabase(impl_->name);
    impl_->name.clear();
    impl_->depth = 0;
}

bool DbConnection::isOpen() const
{
    return impl_->ready();
}
SqlDialect DbConnection::dialect() const
{
    return impl_->backend;
}
SqlDialect DbConnection::statementDialect() const
{
    return impl_->adapter.target();
}
QString DbConnection::connectionName() const
{
    return impl_->name;
}
QString DbConnection::adapt(const QString &sql) const
{
    return impl_->adapter.adapt(sql);
}
bool DbConnection::inTransaction() const
{
    return impl_->depth > 0;
}

int DbConnection::transactionDepth() const
{
    return impl_->depth;
}

bool DbConnection::runSavepointStatement(const QString &statement, DbError *error)
{
    QSqlQuery query(impl_->database());
    if (query.exec(statement + QStringLiteral(" kora_savepoint_%1").arg(impl_->depth)))
        return true;
    fill(error, toDbError(query.lastError(), impl_->backend));
    return false;
}

bool DbConnection::execute(const QString &sql, qint64 *recordsAffected, DbError *error)
{
    if (!impl_->ready()) {
        fill(error, notOpen());
        return false;
    }
    QSqlQuery query(impl_->database());
    if (!query.exec(adapt(sql))) {
        fill(error, toDbError(query.lastError(), impl_->backend));
        return false;
    }
    if (recordsAffected)
        *recordsAffected = query.numRowsAffected();
    return true;
}

bool DbConnection::open(const QString &sql, Recordset &rows, DbError *error)
{
    rows.Close();
    if (!impl_->ready()) {
        fill(error, notOpen());
        return false;
    }
    QSqlQuery query(impl_->database());
    query.setForwardOnly(true);
    // Decimals arrive as text so amounts are read exactly.
    query.setNumericalPrecisionPolicy(QSql::HighPrecision);
    if (!query.exec(adapt(sql))) {
        fill(error, toDbError(query.lastError(), impl_->backend));
        return false;
    }
    const QSqlRecord record = query.record();
    for (int i = 0; i < record.count(); ++i)
        rows.impl_->columns.insert(record.fieldName(i).toLower(), i);
    rows.impl_->record = record;
    rows.impl_->atEnd = !query.next();
    rows.impl_->query = std::move(query);
    return true;
}

bool DbConnection::BeginTrans(DbError *error)
{
    if (!impl_->ready()) {
        fill(error, notOpen());
        return false;
    }
    if (impl_->depth > 0) {
        ++impl_->depth;
        if (runSavepointStatement(QStringLiteral("SAVEPOINT"), error))
            return true;
        --impl_->depth;
        return false;
    }
    QSqlDatabase db = impl_->database();
    if (!db.transaction()) {
        fill(error, toDbError(db.lastError(), impl_->backend));
        return false;
    }
    impl_->depth = 1;
    return true;
}

bool DbConnection::CommitTrans(DbError *error)
{
    if (!impl_->ready() || impl_->depth == 0) {
        fill(error, impl_->ready() ? DbError{-1, QStringLiteral("No transaction is open.")} : notOpen());
        return false;
    }
    if (impl_->depth > 1) {
        // Keeps the nested work as part of the enclosing transaction.
        const bool released = runSavepointStatement(QStringLiteral("RELEASE SAVEPOINT"), error);
        --impl_->depth;
        return released;
    }
    QSqlDatabase db = impl_->database();
    impl_->depth = 0;
    if (!db.commit()) {
        fill(error, toDbError(db.lastError(), impl_->backend));
        // A failed commit leaves nothing to keep: end the transaction.
        db.rollback();
        return false;
    }
    return true;
}

bool DbConnection::RollbackTrans(DbError *error)
{
    if (!impl_->ready() || impl_->depth == 0) {
        fill(error, impl_->ready() ? DbError{-1, QStringLiteral("No transaction is open.")} : notOpen());
        impl_->depth = 0;
        return false;
    }
    if (impl_->depth > 1) {
        // Undoes the nested work only; the enclosing transaction goes on.
        const bool undone = runSavepointStatement(QStringLiteral("ROLLBACK TO SAVEPOINT"), error) &&
                            runSavepointStatement(QStringLiteral("RELEASE SAVEPOINT"), error);
        --impl_->depth;
        return undone;
    }
    QSqlDatabase db = impl_->database();
    impl_->depth = 0;
    if (!db.rollback()) {
        fill(error, toDbError(db.lastError(), impl_->backend));
        return false;
    }
    return true;
}

QString sqlText(const QString &value)
{
    QString quoted = value.trimmed();
    quoted.replace(u'\'', QStringLiteral("''"));
    return u'\'' + quoted + u'\'';
}

// ---------------------------------------------------------------- Transaction

Transaction::Transaction(DbConnection &connection) : connection_(connection)
{
    begun_ = connection_.BeginTrans();
}

Transaction::~Transaction()
{
    if (begun_ && !done_)
        connection_.RollbackTrans();
}

bool Transaction::commit(DbError *error)
{
    if (!begun_ || done_) {
        fill(error, {-1, QStringLiteral("No transaction is open.")});
        return false;
    }
    done_ = true;
    return connection_.CommitTrans(error);
}
