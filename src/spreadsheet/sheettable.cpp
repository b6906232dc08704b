#include "sheettable.h"

#include "currency.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryFile>

#include <xlsxwriter.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <map>
#include <tuple>

namespace {

constexpr double minimumWidth = 8;
constexpr double maximumWidth = 60;
constexpr double lineHeight = 15; // points per header line
constexpr int indentWidth = 2;    // characters a level of indent takes

// Keeps the first failure of the many calls that build a sheet.
struct FirstError {
    lxw_error error = LXW_NO_ERROR;
    void operator()(lxw_error result)
    {
        if (error == LXW_NO_ERROR)
            error = result;
    }
};

// One format per look a cell can have, made when first needed (the library
// keeps every format it is given until the workbook closes).
class Formats {
public:
    explicit Formats(lxw_workbook *book) : book_(book) {}

    lxw_format *header()
    {
        if (!header_) {
            header_ = workbook_add_format(book_);
            format_set_bold(header_);
            format_set_text_wrap(header_);
        }
        return header_;
    }

    // nullptr for the workbook's default look.
    lxw_format *cell(SheetTable::Kind kind, bool bold, int indent)
    {
        const char *number = numberFormat(kind);
        if (!number && !bold && indent == 0)
            return nullptr;
        lxw_format *&format = made_[{kind, bold, indent}];
        if (!format) {
            format = workbook_add_format(book_);
            if (number)
                format_set_num_format(format, number);
            if (bold)
                format_set_bold(format);
            if (indent > 0)
                format_set_indent(format, uint8_t(std::min(indent, 15)));
        }
        return format;
    }

private:
    static const char *numberFormat(SheetTable::Kind kind)
    {
        switch (kind) {
        case SheetTable::Kind::Amount:
            return "#,##0.00";
        case SheetTable::Kind::Percent:
            return "0.00%";
        case SheetTable::Kind::Date:
            return "mm/dd/yyyy";
        case SheetTable::Kind::Text:
        case SheetTable::Kind::Number:
            break;
        }
        return nullptr;
    }

    lxw_workbook *book_;
    lxw_format *header_ = nullptr;
    std::map<std::tuple<SheetTable::Kind, bool, int>, lxw_format *> made_;
};

std::optional<double> plainNumber(const QString &text)
{
    bool ok = false;
    const double value = text.trimmed().toDouble(&ok);
    return ok ? std::optional<double>(value) : std::nullopt;
}

class SheetWriter {
public:
    SheetWriter(const SheetTable &table, lxw_workbook *book) : table_(table), formats_(book)
    {
        sheet_ = workbook_add_worksheet(book, nullptr);
        widths_.assign(table.columns.size(), minimumWidth);
    }

    lxw_error write()
    {
        writeHeader();
        for (std::size_t r = 0; r < table_.rows.size(); ++r) {
            const SheetTable::Row &row = table_.rows[r];
            for (std::size_t c = 0; c < table_.columns.size() && c < std::size_t(row.cells.size()); ++c)
                writeCell(lxw_row_t(r + 1), c, row, c == 0 ? row.indent : 0);
        }
        if (table_.totalsRow && !table_.rows.empty())
            writeTotals(lxw_row_t(table_.rows.size() + 1));
        for (std::size_t c = 0; c < widths_.size(); ++c)
            check_(
                worksheet_set_column(sheet_, lxw_col_t(c), lxw_col_t(c), std::min(widths_[c], maximumWidth), nullptr));
        worksheet_freeze_panes(sheet_, 1, 0);
        return check_.error;
    }

private:
    void fit(std::size_t column, const QString &shown, int indent = 0)
    {
        for (const QString &line : shown.split(QLatin1Char('\n')))
            widths_[column] = std::max(widths_[column], double(line.size() + 2 + indent * indentWidth));
    }

    void writeHeader()
    {
        qsizetype lines = 1;
        for (std::size_t c = 0; c < table_.columns.size(); ++c) {
            const QString &heading = table_.columns[c].heading;
            lines = std::max(lines, heading.count(QLatin1Char('\n')) + 1);
            fit(c, heading);
            check_(worksheet_write_string(sheet_, 0, lxw_col_t(c), heading.toUtf8().constData(), formats_.header()));
        }
        check_(worksheet_set_row(sheet_, 0, lineHeight * double(lines), nullptr));
    }

    void writeCell(lxw_row_t row, std::size_t column, const SheetTable::Row &values, int indent)
    {
        const QString &value = values.cells[qsizetype(column)];
        if (value.isEmpty())
            return;
        const auto col = lxw_col_t(column);
        const SheetTable::Kind kind = table_.columns[column].kind;
        lxw_format *format = formats_.cell(kind, values.bold, indent);
        switch (kind) {
        case SheetTable::Kind::Amount:
            if (const auto amount = Currency::parse(value)) {
                fit(column, amount->toDisplayText());
                check_(worksheet_write_number(sheet_, row, col, amount->toDouble(), format));
                return;
            }
            break;
        case SheetTable::Kind::Percent:
            if (const auto percent = Currency::parse(value)) {
                fit(column, percent->toDisplayText() + QLatin1Char('%'));
                check_(worksheet_write_number(sheet_, row, col, percent->toDouble() / 100, format));
                return;
            }
            break;
        case SheetTable::Kind::Number:
            if (const auto number = plainNumber(value)) {
                fit(column, value);
                check_(worksheet_write_number(sheet_, row, col, *number, format));
                return;
            }
            break;
        case SheetTable::Kind::Date:
            if (const auto date = shownDate(value)) {
                lxw_datetime when{date->year(), date->month(), date->day(), 0, 0, 0};
                fit(column, date->toString(QStringLiteral("MM/dd/yyyy")));
                check_(worksheet_write_datetime(sheet_, row, col, &when, format));
                return;
            }
            break;
        case SheetTable::Kind::Text:
            break;
        }
        // Text, or a cell that does not read as its column's kind ("n/a").
        fit(column, value, indent);
        check_(worksheet_write_string(sheet_, row, col, value.toUtf8().constData(),
                                      formats_.cell(SheetTable::Kind::Text, values.bold, indent)));
    }

    void writeTotals(lxw_row_t row)
    {
        for (std::size_t c = 0; c < table_.columns.size(); ++c) {
            if (!table_.columns[c].summed)
                continue;
            Currency sum;
            for (const SheetTable::Row &values : table_.rows)
                sum += Currency::parse(values.cells.value(qsizetype(c))).value_or(Currency());
            char range[32];
            lxw_rowcol_to_range(range, 1, lxw_col_t(c), row - 1, lxw_col_t(c));
            const QByteArray formula = QByteArray("=SUM(") + range + ')';
            fit(c, sum.toDisplayText());
            check_(worksheet_write_formula_num(sheet_, row, lxw_col_t(c), formula.constData(),
                                               formats_.cell(SheetTable::Kind::Amount, false, 0), sum.toDouble()));
        }
    }

    const SheetTable &table_;
    Formats formats_;
    lxw_worksheet *sheet_ = nullptr;
    std::vector<double> widths_;
    FirstError check_;
};

} // namespace

std::optional<QDate> shownDate(const QString &text)
{
    static const QRegularExpression pattern(QStringLiteral("^(\\d{2})/(\\d{2})/(\\d{2}|\\d{4})$"));
    const auto match = pattern.match(text.trimmed());
    if (!match.hasMatch())
        return std::nullopt;
    int year = match.captured(3).toInt();
    if (match.captured(3).size() == 2)
        year += year < 50 ? 2000 : 1900;
    const QDate date(year, match.captured(1).toInt(), match.captured(2).toInt());
    return date.isValid() ? std::optional<QDate>(date) : std::nullopt;
}

bool writeXlsx(const SheetTable &table, const QString &path, QString &error)
{
    const QFileInfo target(path);
    // Reserves a unique name beside the target; the workbook replaces its
    // content, and the guard removes it unless it has been renamed.
    QTemporaryFile part(target.absolutePath() + QStringLiteral("/.") + target.fileName() + QStringLiteral(".XXXXXX"));
    if (!part.open()) {
        error = part.errorString();
        return false;
    }
    part.close();
    const QByteArray partName = QFile::encodeName(part.fileName());
    lxw_workbook *book = workbook_new(partName.constData());
    if (!book) {
        error = QStringLiteral("Cannot start the workbook");
        return false;
    }
    const lxw_error built = SheetWriter(table, book).write();
    const lxw_error closed = workbook_close(book); // writes the file and frees the workbook
    const lxw_error failed = built != LXW_NO_ERROR ? built : closed;
    if (failed != LXW_NO_ERROR) {
        error = QString::fromUtf8(lxw_strerror(failed));
        return false;
    }
    // QTemporaryFile made it private to us; the export is an ordinary file.
    part.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ReadGroup |
                        QFileDevice::ReadOther);
    if (std::rename(partName.constData(), QFile::encodeName(target.absoluteFilePath()).constData()) != 0) {
        error = QString::fromLocal8Bit(std::strerror(errno));
        return false;
    }
    part.setAutoRemove(false);
    return true;
}
