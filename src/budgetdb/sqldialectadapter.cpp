#include "sqldialectadapter.h"

#include <QStringList>

namespace {

bool isWordChar(QChar c)
{
    return c.isLetterOrNumber() || c == u'_';
}

// Index just past the quoted run that starts at `from` (a doubled quote stays inside).
qsizetype skipQuoted(const QString &sql, qsizetype from)
{
    const QChar quote = sql[from];
    qsizetype i = from + 1;
    while (i < sql.size()) {
        if (sql[i] == quote) {
            if (i + 1 < sql.size() && sql[i + 1] == quote) {
                i += 2;
                continue;
            }
            return i + 1;
        }
        ++i;
    }
    return i;
}

// Index of the ')' closing the '(' at `open`, or -1 when unbalanced.
qsizetype matchingParen(const QString &sql, qsizetype open)
{
    int depth = 0;
    for (qsizetype i = open; i < sql.size();) {
        const QChar c = sql[i];
        if (c == u'\'' || c == u'"') {
            i = skipQuoted(sql, i);
            continue;
        }
        if (c == u'(')
            ++depth;
        else if (c == u')' && --depth == 0)
            return i;
        ++i;
    }
    return -1;
}

// The arguments between the parentheses, split at top-level commas.
QStringList splitArguments(const QString &inner)
{
    QStringList args;
    int depth = 0;
    qsizetype start = 0;
    for (qsizetype i = 0; i < inner.size();) {
        const QChar c = inner[i];
        if (c == u'\'' || c == u'"') {
            i = skipQuoted(inner, i);
            continue;
        }
        if (c == u'(')
            ++depth;
        else if (c == u')')
            --depth;
        else if (c == u',' && depth == 0) {
            args << inner.mid(start, i - start);
            start = i + 1;
        }
        ++i;
    }
    args << inner.mid(start);
    return args;
}

// Index just past a numeric literal starting at `from`: digits, an optional
// fraction and an exponent only when digits follow the 'e'.
qsizetype numberEnd(const QString &sql, qsizetype from)
{
    qsizetype i = from;
    auto digits = [&] {
        while (i < sql.size() && sql[i].isDigit())
            ++i;
    };
    digits();
    if (i + 1 < sql.size() && sql[i] == u'.' && sql[i + 1].isDigit()) {
        ++i;
        digits();
    }
    if (i < sql.size() && (sql[i] == u'e' || sql[i] == u'E')) {
        qsizetype j = i + 1;
        if (j < sql.size() && (sql[j] == u'+' || sql[j] == u'-'))
            ++j;
        if (j < sql.size() && sql[j].isDigit()) {
            i = j;
            digits();
        }
    }
    return i;
}

QString castType(const QString &odbcType, SqlDialect target)
{
    const QString type = odbcType.trimmed().toLower();
    if (type == u"sql_double" || type == u"sql_float" || type == u"sql_real")
        return target == SqlDialect::PostgreSQL ? QStringLiteral("DOUBLE PRECISION") : QStringLiteral("REAL");
    if (type == u"sql_integer" || type == u"sql_smallint" || type == u"sql_tinyint")
        return QStringLiteral("INTEGER");
    if (type == u"sql_bigint")
        return QStringLiteral("BIGINT");
    if (type == u"sql_numeric" || type == u"sql_decimal")
        return QStringLiteral("NUMERIC(19,4)");
    if (type == u"sql_char" || type == u"sql_varchar" || type == u"sql_longvarchar")
        return QStringLiteral("TEXT");
    return {};
}

} // namespace

QString SqlDialectAdapter::yearTreeTableName(const QString &tableId)
{
    return (tableId.trimmed() + QStringLiteral("_summarytree")).toLower();
}

QString SqlDialectAdapter::columnCatalogQuery(const QString &relation) const
{
    QString name = relation;
    name.replace(u'\'', QStringLiteral("''"));
    switch (target_) {
    case SqlDialect::SQLite:
        // A lone INTEGER PRIMARY KEY is the row id, which SQLite assigns.
        return QStringLiteral("SELECT name, type AS declared, CASE WHEN pk = 1 AND upper(type) = 'INTEGER' AND "
                              "(SELECT count(*) FROM pragma_table_info('%1') WHERE pk > 0) = 1 THEN 1 ELSE 0 END "
                              "AS generated FROM pragma_table_info('%1') ORDER BY cid")
            .arg(name);
    case SqlDialect::PostgreSQL:
        // Unquoted names are folded to lower case; identity columns and serials are generated.
        return QStringLiteral("SELECT a.attname AS name, format_type(a.atttypid, a.atttypmod) AS declared, "
                              "CASE WHEN a.attidentity <> '' OR COALESCE(pg_get_expr(d.adbin, d.adrelid), '') "
                              "LIKE 'nextval(%' THEN 1 ELSE 0 END AS generated "
                              "FROM pg_attribute a JOIN pg_class c ON c.oid = a.attrelid "
                              "LEFT JOIN pg_attrdef d ON d.adrelid = a.attrelid AND d.adnum = a.attnum "
                              "WHERE c.relname = lower('%1') AND c.relnamespace = "
                              "(SELECT oid FROM pg_namespace WHERE nspname = current_schema()) "
                              "AND a.attnum > 0 AND NOT a.attisdropped ORDER BY a.attnum")
            .arg(name);
    case SqlDialect::Odbc:
        break;
    }
    return {};
}

QString SqlDialectAdapter::generatedKeyResync(const QString &table, const QString &column) const
{
    if (target_ != SqlDialect::PostgreSQL)
        return {};
    return QStringLiteral("SELECT setval(pg_get_serial_sequence('%1', '%2'), COALESCE(MAX(%2), 0) + 1, false) "
                          "FROM %1")
        .arg(table.toLower(), column.toLower());
}

QString SqlDialectAdapter::adapt(const QString &sql) const
{
    if (target_ == SqlDialect::Odbc)
        return sql;

    QString out;
    out.reserve(sql.size() + 16);
    qsizetype i = 0;
    while (i < sql.size()) {
        const QChar c = sql[i];
        if (c == u'\'' || c == u'"') {
            const qsizetype end = skipQuoted(sql, i);
            out += QStringView(sql).mid(i, end - i);
            i = end;
            continue;
        }
        const bool startsToken = i == 0 || !isWordChar(sql[i - 1]);
        if (c.isDigit() && startsToken) {
            const qsizetype end = numberEnd(sql, i);
            if (end < sql.size() && sql[end] == u'_') {
                // An identifier that begins with digits (a year table id): read it whole.
                qsizetype wordEnd = end;
                while (wordEnd < sql.size() && isWordChar(sql[wordEnd]))
                    ++wordEnd;
                const QString word = sql.mid(i, wordEnd - i);
                out += word.endsWith(QStringLiteral("_summarytree"), Qt::CaseInsensitive)
                           ? u'"' + yearTreeTableName(word.chopped(12)) + u'"'
                           : word;
                i = wordEnd;
                continue;
            }
            out += QStringView(sql).mid(i, end - i);
            if (end < sql.size() && sql[end].isLetter())
                out += u' ';
            i = end;
            continue;
        }
        if (isWordChar(c) && startsToken) {
            qsizetype wordEnd = i;
            while (wordEnd < sql.size() && isWordChar(sql[wordEnd]))
                ++wordEnd;
            const QString word = sql.mid(i, wordEnd - i);
            const QString lower = word.toLower();
            qsizetype open = wordEnd;
            while (open < sql.size() && sql[open].isSpace())
                ++open;
            const bool called = open < sql.size() && sql[open] == u'(';
            const qsizetype close = called ? matchingParen(sql, open) : -1;
            if (close > 0 && (lower == u"convert" || lower == u"if")) {
                const QStringList args = splitArguments(sql.mid(open + 1, close - open - 1));
                if (lower == u"convert" && args.size() == 2) {
                    const QString type = castType(args[1], target_);
                    if (!type.isEmpty()) {
                        QString value = adapt(args[0]).trimmed();
                        // PostgreSQL refuses to cast blank text; treat it as null as the old engine did.
                        if (target_ == SqlDialect::PostgreSQL && type != u"TEXT")
                            value = QStringLiteral("NULLIF(TRIM(CAST(%1 AS TEXT)),'')").arg(value);
                        out += QStringLiteral("CAST(%1 AS %2)").arg(value, type);
                        i = close + 1;
                        continue;
                    }
                }
                if (lower == u"if" && args.size() == 3) {
                    out += QStringLiteral("CASE WHEN %1 THEN %2 ELSE %3 END")
                               .arg(adapt(args[0]).trimmed(), adapt(args[1]).trimmed(), adapt(args[2]).trimmed());
                    i = close + 1;
                    continue;
                }
            }
            if (lower.endsWith(QStringLiteral("_summarytree")) && lower.size() > 12)
                out += u'"' + yearTreeTableName(word.chopped(12)) + u'"';
            else
                out += word;
            i = wordEnd;
            continue;
        }
        out += c;
        ++i;
    }
    return out;
}
