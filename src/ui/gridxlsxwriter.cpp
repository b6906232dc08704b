#include "gridxlsxwriter.h"

#include "currency.h"

#include <QDate>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryFile>

#include <xlsxwriter.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <optional>

namespace {

const char *amountFormat = "#,##0.00";
const char *dateFormat = "mm/dd/yyyy";
constexpr double minimumWidth = 8;
constexpr double maximumWidth = 60;
constexpr double lineHeight = 15; // points per header line

// The dates the screens show: "MM/DD/YY" (a two-digit year below 50 is in
// this century) and "MM/DD/YYYY".
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

bool isDateColumn(const GridExportTable &table, std::size_t column)
{
    if (table.columns[column].Type() != GridColumnType::Text)
        return false;
    bool any = false;
    for (const QStringList &row : table.rows) {
        const QString &value = row[qsizetype(column)];
        if (value.trimmed().isEmpty())
            continue;
        if (!shownDate(value))
            return false;
        any = true;
    }
    return any;
}

QString headingOf(const classGridColumn &column)
{
    const QString heading = column.Heading();
    return heading.trimmed().isEmpty() ? column.Key() : heading;
}

// Keeps the first failure of the many calls that build a sheet.
struct FirstError {
    lxw_error error = LXW_NO_ERROR;
    void operator()(lxw_error result)
    {
        if (error == LXW_NO_ERROR)
            error = result;
    }
};

class SheetWriter {
public:
    SheetWriter(const GridExportTable &table, lxw_workbook *book) : table_(table)
    {
        sheet_ = workbook_add_worksheet(book, nullptr);
        header_ = workbook_add_format(book);
        format_set_bold(header_);
        format_set_text_wrap(header_);
        amount_ = workbook_add_format(book);
        format_set_num_format(amount_, amountFormat);
        date_ = workbook_add_format(book);
        format_set_num_format(date_, dateFormat);
        for (std::size_t c = 0; c < table.columns.size(); ++c)
            dates_.push_back(isDateColumn(table, c));
        widths_.assign(table.columns.size(), minimumWidth);
    }

    lxw_error write()
    {
        writeHeader();
        for (std::size_t r = 0; r < table_.rows.size(); ++r) {
            for (std::size_t c = 0; c < table_.columns.size(); ++c)
                writeCell(lxw_row_t(r + 1), c, table_.rows[r][qsizetype(c)]);
        }
        if (table_.totalsShown && !table_.rows.empty())
            writeTotals(lxw_row_t(table_.rows.size() + 1));
        for (std::size_t c = 0; c < widths_.size(); ++c)
            check_(
                worksheet_set_column(sheet_, lxw_col_t(c), lxw_col_t(c), std::min(widths_[c], maximumWidth), nullptr));
        worksheet_freeze_panes(sheet_, 1, 0);
        return check_.error;
    }

private:
    void fit(std::size_t column, const QString &shown)
    {
        for (const QString &line : shown.split(QLatin1Char('\n')))
            widths_[column] = std::max(widths_[column], double(line.size() + 2));
    }

    void writeHeader()
    {
        qsizetype lines = 1;
        for (std::size_t c = 0; c < table_.columns.size(); ++c) {
            const QString heading = headingOf(table_.columns[c]);
            lines = std::max(lines, heading.count(QLatin1Char('\n')) + 1);
            fit(c, heading);
            check_(worksheet_write_string(sheet_, 0, lxw_col_t(c), heading.toUtf8().constData(), header_));
        }
        check_(worksheet_set_row(sheet_, 0, lineHeight * double(lines), nullptr));
    }

    void writeCell(lxw_row_t row, std::size_t column, const QString &value)
    {
        if (value.isEmpty())
            return;
        const auto col = lxw_col_t(column);
        if (table_.columns[column].Type() == GridColumnType::Amount) {
            if (const auto amount = Currency::parse(value)) {
                fit(column, amount->toDisplayText());
                check_(worksheet_write_number(sheet_, row, col, amount->toDouble(), amount_));
                return;
            }
        } else if (dates_[column]) {
            if (const auto date = shownDate(value)) {
                lxw_datetime when{date->year(), date->month(), date->day(), 0, 0, 0};
                fit(column, date->toString(QStringLiteral("MM/dd/yyyy")));
                check_(worksheet_write_datetime(sheet_, row, col, &when, date_));
                return;
            }
        }
        fit(column, value);
        check_(worksheet_write_string(sheet_, row, col, value.toUtf8().constData(), nullptr));
    }

    void writeTotals(lxw_row_t row)
    {
        for (std::size_t c = 0; c < table_.columns.size(); ++c) {
            const classGridColumn &column = table_.columns[c];
            if (!column.Total() || column.Type() != GridColumnType::Amount)
                continue;
            Currency sum;
            for (const QStringList &values : table_.rows)
                sum += Currency::parse(values[qsizetype(c)]).value_or(Currency());
            char range[32];
            lxw_rowcol_to_range(range, 1, lxw_col_t(c), row - 1, lxw_col_t(c));
            const QByteArray formula = QByteArray("=SUM(") + range + ')';
            fit(c, sum.toDisplayText());
            check_(
                worksheet_write_formula_num(sheet_, row, lxw_col_t(c), formula.constData(), amount_, sum.toDouble()));
        }
    }

    const GridExportTable &table_;
    lxw_worksheet *sheet_ = nullptr;
    lxw_format *header_ = nullptr;
    lxw_format *amount_ = nullptr;
    lxw_format *date_ = nullptr;
    std::vector<bool> dates_;
    std::vector<double> widths_;
    FirstError check_;
};

} // namespace

bool GridXlsxWriter::write(const QString &path, QString &error) const
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
    const lxw_error built = SheetWriter(table_, book).write();
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
