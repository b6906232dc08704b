#include "reportsources.h"

#include "dbconnection.h"
#include "fundfiles.h"
#include "levyapportionment.h"
#include "objectsummaryledgers.h"
#include "objectyear.h"
#include "recordobject.h"
#include "reportdefinitiondata.h"

#include <QDate>
#include <QDateTime>

namespace {

QString rightTrimmed(const QString &text)
{
    qsizetype end = text.size();
    while (end > 0 && text[end - 1].isSpace())
        --end;
    return text.left(end);
}

// A database value as a report value; `numeric` when the database declares the
// column numeric (PostgreSQL hands decimals over as text).
ReportValue valueOf(const QVariant &value, bool numeric)
{
    if (value.isNull())
        return {};
    switch (value.typeId()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Short:
    case QMetaType::UShort:
        return ReportValue::number(Currency::fromUnits(value.toLongLong()));
    case QMetaType::Double:
    case QMetaType::Float:
        return ReportValue::number(Currency::fromDouble(value.toDouble()).value_or(Currency()));
    case QMetaType::Bool:
        return ReportValue::boolean(value.toBool());
    case QMetaType::QDate:
    case QMetaType::QDateTime:
        return ReportValue::date(value.toDate());
    default:
        break;
    }
    const QString text = value.toString();
    if (numeric) {
        if (const auto amount = Currency::parse(text))
            return ReportValue::number(*amount);
    }
    return ReportValue::text(rightTrimmed(text));
}

ReportValue amount(Currency value)
{
    return ReportValue::number(value);
}

// The year a fund-year table identifier stands for, from the installation's YearList.
bool yearOfTableId(const QString &fundRoot, const QString &tableId, int &year, QString &error)
{
    classObjectYear years;
    std::vector<YearListFields> list;
    int status = years.Init(fundRoot, installationFolder(fundRoot));
    if (status == 0)
        status = years.GetYearList(list);
    if (status != 0) {
        error = QStringLiteral("Cannot read the YearList of the Kora-Fund installation %1: %2")
                    .arg(fundRoot, years.Message());
        return false;
    }
    for (const YearListFields &entry : list) {
        if (entry.TableId.trimmed().compare(tableId, Qt::CaseInsensitive) == 0) {
            bool ok = false;
            year = entry.YearNumber.trimmed().toInt(&ok);
            if (ok)
                return true;
        }
    }
    error = QStringLiteral("The Kora-Fund installation %1 has no year with the table id \"%2\" in its YearList")
                .arg(fundRoot, tableId);
    return false;
}

// The whole fiscal year's totals of every account, summed and settled by the
// summary object as one extended pass reads them.
template <class Summary, class Row>
bool readSummary(const QString &fundRoot, const QString &dataFolder, const QString &table, Row toRow, DataTable &into,
                 QString &error)
{
    Summary summary;
    int status = summary.Init(fundRoot, dataFolder);
    if (status == 0)
        status = summary.ForEachAccountYear([&](const auto &) { into.addRow(toRow(summary)); });
    if (status != 0) {
        error =
            QStringLiteral("Cannot read the Kora-Fund table %1 (%2): %3").arg(table, dataFolder, summary.ErrorMsg());
        return false;
    }
    return true;
}

} // namespace

bool readSqlTable(DbConnection &db, const QString &sql, DataTable &into, QString &error)
{
    Recordset rows;
    DbError dbError;
    if (!db.open(sql, rows, &dbError)) {
        error = dbError.text;
        return false;
    }
    const int count = rows.columnCount();
    QStringList columns;
    std::vector<bool> numeric;
    for (int c = 0; c < count; ++c) {
        columns << rows.columnName(c);
        numeric.push_back(rows.columnIsNumeric(c));
    }
    into.setColumns(columns);
    for (; !rows.atEnd(); rows.MoveNext()) {
        std::vector<ReportValue> row;
        row.reserve(count);
        for (int c = 0; c < count; ++c)
            row.push_back(valueOf(rows.value(c), numeric[c]));
        into.addRow(std::move(row));
    }
    return true;
}

bool readFundTable(const QString &fundRoot, const QString &table, DataTable &into, QString &error)
{
    const auto [tableId, record] = splitFundTable(table);
    into.setColumns(fundTableFields(record));
    if (table.trimmed().isEmpty())
        return true;
    if (record == FundRecord::None) {
        error = QStringLiteral("\"%1\" is not a Kora-Fund year table").arg(table);
        return false;
    }
    if (fundRoot.trimmed().isEmpty()) {
        error = QStringLiteral("The report reads the Kora-Fund table %1, but no Kora-Fund installation was given")
                    .arg(table);
        return false;
    }
    int year = 0;
    if (!yearOfTableId(fundRoot, tableId, year, error))
        return false;
    const QString dataFolder = fundDataLocationUnder(fundRoot, year);
    if (record == FundRecord::Expenditure) {
        return readSummary<classObjectELSummary>(
            fundRoot, dataFolder, table,
            [](const classObjectELSummary &s) {
                return std::vector<ReportValue>{ReportValue::text(s.AccountCode),
                                                ReportValue::text(s.FundID),
                                                ReportValue::text(s.Name),
                                                amount(s.TotalOpeningBalance),
                                                amount(s.TotalBudgetAdjustment),
                                                amount(s.TotalOpeningBalance + s.TotalBudgetAdjustment),
                                                amount(s.TotalEncumPlaced),
                                                amount(s.TotalEncumLiquid),
                                                amount(s.TotalEncumPlaced - s.TotalEncumLiquid),
                                                amount(s.TotalPaymentExpense),
                                                amount(s.TotalUnencumBalance)};
            },
            into, error);
    }
    return readSummary<classObjectRLSummary>(
        fundRoot, dataFolder, table,
        [](const classObjectRLSummary &s) {
            return std::vector<ReportValue>{
                ReportValue::text(s.AccountCode), ReportValue::text(s.FundID),
                ReportValue::text(s.Name),        amount(s.TotalOpeningBalance),
                amount(s.TotalBudgetAdjustment),  amount(s.TotalOpeningBalance + s.TotalBudgetAdjustment),
                amount(s.TotalRevenueReceived),   amount(s.TotalUnearnedBalance)};
        },
        into, error);
}

bool readLevyTable(DbConnection &db, Currency levy, std::optional<Currency> priorLevy, DataTable &into, QString &error)
{
    // Rates are read as the doubles they are stored as, so no digit of them is lost.
    struct District {
        QString town;
        double rate[2];
        Currency assessment[2];
        Currency taxable[2];
    };
    std::vector<District> districts;
    Recordset rows;
    DbError dbError;
    if (!db.open(QStringLiteral("select TownShip, CurrentEqualRate, CurrentAssessment, CurrentTaxAssess, "
                                "PrevEqualRate, PrevAssessment, PrevTaxAssess from TaxRate order by TownShip"),
                 rows, &dbError)) {
        error = dbError.text;
        return false;
    }
    for (; !rows.atEnd(); rows.MoveNext()) {
        districts.push_back(
            {rightTrimmed(rows.text(QStringLiteral("TownShip"))),
             {rows.real(QStringLiteral("CurrentEqualRate")), rows.real(QStringLiteral("PrevEqualRate"))},
             {rows.amount(QStringLiteral("CurrentAssessment")), rows.amount(QStringLiteral("PrevAssessment"))},
             {rows.amount(QStringLiteral("CurrentTaxAssess")), rows.amount(QStringLiteral("PrevTaxAssess"))}});
    }
    // year 0 is the current year, 1 the prior year.
    const auto apportion = [&](Currency yearLevy, int year, LevyApportionment &result) {
        std::vector<LevyTown> towns;
        for (const District &district : districts)
            towns.push_back({district.town, district.taxable[year], district.rate[year]});
        result = apportionLevy(yearLevy, towns);
        if (!result.ok())
            error = QStringLiteral("The %1 levy cannot be apportioned: %2")
                        .arg(year == 0 ? QStringLiteral("current") : QStringLiteral("prior year's"), result.error);
        return result.ok();
    };
    LevyApportionment shares[2];
    if (!apportion(levy, 0, shares[0]) || (priorLevy && !apportion(*priorLevy, 1, shares[1])))
        return false;
    into.setColumns(levyFields());
    for (std::size_t i = 0; i < districts.size(); ++i) {
        const District &district = districts[i];
        std::vector<ReportValue> out{ReportValue::text(district.town)};
        for (int year = 0; year < 2; ++year) {
            if (year == 1 && !priorLevy) {
                out.resize(out.size() + 6);
                continue;
            }
            const TownLevyShare &share = shares[year].towns[i];
            out.insert(out.end(), {ReportValue::number(Currency::fromDouble(district.rate[year]).value_or(Currency())),
                                   amount(district.assessment[year]), amount(district.taxable[year]),
                                   amount(share.fullValue), amount(share.share), amount(share.ratePerThousand)});
        }
        out.push_back(amount(shares[0].levy));
        out.push_back(priorLevy ? amount(shares[1].levy) : ReportValue());
        into.addRow(std::move(out));
    }
    return true;
}
