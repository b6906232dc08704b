#include "rowbatch.h"

namespace demo {

RowBatch::RowBatch(DbConnection &db, QString head, int rowsPerStatement)
    : db_(db), head_(std::move(head)), rowsPerStatement_(rowsPerStatement)
{
}

bool RowBatch::add(const QStringList &values, DbError *error)
{
    rows_ << u'(' + values.join(u',') + u')';
    return rows_.size() < rowsPerStatement_ || flush(error);
}

bool RowBatch::flush(DbError *error)
{
    if (rows_.isEmpty())
        return true;
    const QString sql = head_ + QLatin1String(" VALUES ") + rows_.join(u',');
    qint64 affected = 0;
    if (!db_.execute(sql, &affected, error))
        return false;
    if (affected != rows_.size()) {
        if (error)
            *error = {-1,
                      QStringLiteral("%1 of %2 rows were written by: %3").arg(affected).arg(rows_.size()).arg(head_)};
        return false;
    }
    rows_.clear();
    return true;
}

QString exactText(const QString &value)
{
    QString quoted = value;
    quoted.replace(u'\'', QLatin1String("''"));
    return u'\'' + quoted + u'\'';
}

} // namespace demo
