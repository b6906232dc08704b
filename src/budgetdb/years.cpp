#include "years.h"

namespace {
const QString className = QStringLiteral("clsYears");
} // namespace

clsYears::clsYears() : StoreBase(className)
{
}

bool clsYears::GetHistYears(std::vector<QString> &years)
{
    return readList<QString>(QStringLiteral("select * from BudgetYears where status = 'H'"),
                             QStringLiteral("GetHistYears"), years,
                             [](const Recordset &row, QString &year) { year = row.text(QStringLiteral("YearID")); });
}

bool clsYears::readYear(const QString &sql, const QString &sub, const QString &notFoundText)
{
    return retrieveFirst(sql, sub, notFoundText, [this](const Recordset &row) {
        yearItem_.ID = row.text(QStringLiteral("YearID"));
        yearItem_.YearName = row.text(QStringLiteral("YearName"));
        yearItem_.Status = row.text(QStringLiteral("Status"));
    });
}

bool clsYears::GetCurrentBudgetYear()
{
    return readYear(QStringLiteral("Select * from BudgetYears where Status = 'C'"),
                    QStringLiteral("Retrieve BudgetYears"), QStringLiteral("No Current Budget Year Found."));
}

bool clsYears::GetProposedYear()
{
    return readYear(QStringLiteral("Select * from BudgetYears where Status = 'P'"), QStringLiteral("Retrieve Year"),
                    QStringLiteral("No Proposed Year Found."));
}

bool clsYears::GetFundYearTableId(QString &tableId)
{
    return retrieveFirst(QStringLiteral("Select * from Yearlist where YearNumber = ") + sqlText(yearItem_.ID),
                         QStringLiteral("Retrieve Fund BudgetYears Table Id"),
                         QStringLiteral("Cannot find the current budget year in Fund!"),
                         [&tableId](const Recordset &row) { tableId = row.text(QStringLiteral("TableId")).trimmed(); });
}

bool clsYears::CheckCalendarYear()
{
    bool calendarYear = false;
    const bool found = retrieveFirst(QStringLiteral("Select * from Parms"), QStringLiteral("Retrive Calendar Year"),
                                     QStringLiteral("No Parameter Found."), [&calendarYear](const Recordset &row) {
                                         calendarYear = row.text(QStringLiteral("CalenderYear")).trimmed() == u"Y";
                                     });
    // The parameters' own error source, spelled as the rest of the system knows it.
    Error().setErrorCls(found ? className : QStringLiteral("Parms:Retrive"));
    return found && calendarYear;
}
