#include "reportgenerator.h"

#include "dates.h"

#include <array>

namespace {

const QString reportSource = QStringLiteral("Report");

// Each column a format may print, in the order offered, with its heading for
// the expenditure ledger and for the revenue ledger, and its year.
enum class YearOf { Budget, Proposed, Prior, Prior2 };
struct ColumnKind {
    const char *key;
    const char *expenditure;
    const char *revenue;
    YearOf year;
};
constexpr std::array<ColumnKind, 11> columnKinds{{
    {"CurBudget", "Budget", "Budget", YearOf::Budget},
    {"AdjustedBudget", "Adjusted Budget", "Adjusted Budget", YearOf::Budget},
    {"CurExpense", "Expense", "Revenue", YearOf::Budget},
    {"ProjectedAmount", "Projected Expend", "Projected Revenue", YearOf::Budget},
    {"ProposedBudget", "Proposed Budget", "Proposed Budget", YearOf::Proposed},
    {"Increment", "Increase /Decrease", "Increase /Decrease", YearOf::Proposed},
    {"IncPercent", "Percent Increase /Decrease", "Percent Increase /Decrease", YearOf::Proposed},
    {"PriorBudget", "Budget", "Budget", YearOf::Prior},
    {"PriorExpense", "Expense", "Revenue", YearOf::Prior},
    {"Prior2Budget", "Budget", "Budget", YearOf::Prior2},
    {"Prior2Expense", "Expense", "Revenue", YearOf::Prior2},
}};

const ColumnKind *findKind(const QString &key)
{
    for (const ColumnKind &kind : columnKinds) {
        if (key.compare(QLatin1String(kind.key), Qt::CaseInsensitive) == 0)
            return &kind;
    }
    return nullptr;
}

void fillName(const Recordset &row, clsReportName &name)
{
    name.ID = static_cast<std::int32_t>(row.number("ID"));
    name.Name = row.text("Name");
    name.Description = row.text("Description");
    // A date that is not eight digits of a real day reads as no date.
    QDate date;
    TryDateFromYYYYMMDD(row.text("Date").trimmed(), date);
    name.ModifiedDate = date;
}

// A format by ID, or, for one being added, by its name.
AuditedRows auditedFormats(const QString &where)
{
    std::vector<AuditColumn> columns;
    for (const char *name : {"Name", "Description", "Ledger", "FundID", "Date"})
        columns.push_back({QLatin1String(name)});
    return {QStringLiteral("Report"), {QStringLiteral("ID")}, std::move(columns), where, {}};
}

AuditedRows auditedHeadings(const QString &reportId)
{
    return {QStringLiteral("RptHeading"),
            {QStringLiteral("ReportID"), QStringLiteral("SortOrder")},
            {{QStringLiteral("ReportHeading")}},
            "ReportID = " + reportId,
            {}};
}

QString dateText(const QDate &date)
{
    return date.isValid() ? FormatYYYYMMDD(date) : QString();
}

} // namespace

clsReportGenerator::clsReportGenerator() : StoreBase(QStringLiteral("clsReportGenerator"))
{
}

bool clsReportGenerator::changeOne(const QString &sql)
{
    return executeCounted(sql, reportSource, Expect::ExactlyOne,
                          always(QStringLiteral("Invalid number of records added!")));
}

bool clsReportGenerator::AddReportName()
{
    const QString sql = "Insert into Report (Name, Description,Ledger,FundID, Date) " + QStringLiteral("Values (") +
                        sqlText(name_.Name) + "," + sqlText(name_.Description) + "," + sqlText(name_.Ledger) + "," +
                        sqlText(name_.FundID) + "," + sqlText(dateText(name_.ModifiedDate)) + ")";
    return atomicallyAudited(reportSource, auditedFormats("Name = " + sqlText(name_.Name)),
                             [&] { return changeOne(sql); });
}

bool clsReportGenerator::UpdateReportName()
{
    // No blank before "Where": the statement has always been sent so.
    const QString sql = "Update Report Set " + QStringLiteral("Name = ") + sqlText(name_.Name) + "," +
                        "Description = " + sqlText(name_.Description) + "," + "FundID = " + sqlText(name_.FundID) +
                        "," + "Ledger = " + sqlText(name_.Ledger) + "," +
                        "Date = " + sqlText(dateText(name_.ModifiedDate)) + "Where id = " + QString::number(name_.ID);
    return atomicallyAudited(reportSource, auditedFormats("id = " + QString::number(name_.ID)),
                             [&] { return changeOne(sql); });
}

bool clsReportGenerator::AddReportHeadings(const QStringList &headingKeys)
{
    const QString id = QString::number(name_.ID);
    return atomicallyAudited(reportSource, auditedHeadings(id), [&] {
        if (!run("Delete from RptHeading where ReportId = " + id, reportSource))
            return false;
        for (qsizetype i = 0; i < headingKeys.size(); ++i) {
            if (!changeOne("Insert into RptHeading Values (" + id + "," + sqlText(headingKeys[i]) + "," +
                           QString::number(i + 1) + ")"))
                return false;
        }
        return true;
    });
}

bool clsReportGenerator::Delete()
{
    const QString id = QString::number(name_.ID);
    const QString sub = QStringLiteral("Delete");
    return atomicallyAudited(sub, auditedFormats("Id = " + id), [&] {
        return audited(sub, auditedHeadings(id), [&] {
            return run("Delete from Report where Id = " + id, sub) &&
                   run("Delete from RptHeading where ReportId = " + id, sub);
        });
    });
}

bool clsReportGenerator::GetReportNameList(classGrouping<clsReportName> &names)
{
    std::vector<clsReportName> read;
    if (!readList<clsReportName>(QStringLiteral("select ID, Name, Description, Date from Report"),
                                 QStringLiteral("GetReportNameList"), read, fillName))
        return false;
    names.Reset();
    for (clsReportName &name : read) {
        const QString key = QString::number(name.ID);
        names.Add(std::move(name), key);
    }
    return true;
}

clsReportHeadings clsReportGenerator::describe(const QString &key) const
{
    clsReportHeadings heading;
    heading.ReportID = name_.ID;
    heading.ReportHeading = key;
    heading.ReportVariable = key;
    if (const ColumnKind *kind = findKind(key)) {
        const bool expenditure = name_.Ledger.trimmed().compare(QStringLiteral("E"), Qt::CaseInsensitive) == 0;
        heading.ReportHeadingDesc = QString::fromLatin1(expenditure ? kind->expenditure : kind->revenue);
    }
    return heading;
}

bool clsReportGenerator::GetReportHeadings(std::vector<clsReportHeadings> &headings)
{
    return readList<clsReportHeadings>(
        "select * from RptHeading where ReportId = " + QString::number(name_.ID) + " order by sortorder",
        QStringLiteral("GetReportHeadings"), headings, [this](const Recordset &row, clsReportHeadings &heading) {
            heading = describe(row.text("ReportHeading").trimmed());
            heading.ReportID = static_cast<std::int32_t>(row.number("ReportID"));
        });
}

void clsReportGenerator::getAvailHeadingList(std::vector<clsReportHeadings> &headings) const
{
    for (const ColumnKind &kind : columnKinds)
        headings.push_back(describe(QString::fromLatin1(kind.key)));
}

bool clsReportGenerator::RetrieveReportName(bool byName)
{
    const QString sql = byName ? "select * from Report where Name = " + sqlText(name_.Name)
                               : "select * from Report where Id = " + QString::number(name_.ID);
    return retrieveFirst(sql, QStringLiteral("Retrieve Report"), QStringLiteral("Record not Found."),
                         [this](const Recordset &row) {
                             fillName(row, name_);
                             name_.Ledger = row.text("Ledger");
                             name_.FundID = row.text("FundID");
                         });
}

QString clsReportGenerator::HeadingYear(const QString &headingKey) const
{
    const ColumnKind *kind = findKind(headingKey);
    if (!kind)
        return {};
    switch (kind->year) {
    case YearOf::Budget:
        return BugdetYear;
    case YearOf::Proposed:
        return ProposedYear;
    case YearOf::Prior:
        return PriorYear;
    case YearOf::Prior2:
        return Prior1Year;
    }
    return {};
}
