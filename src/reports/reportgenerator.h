#pragma once

#include "grouping.h"
#include "reportheadings.h"
#include "reportname.h"
#include "storebase.h"

#include <QStringList>

#include <vector>

// The user-defined report formats (Report) and their columns (RptHeading),
// with the year context a format is printed in. Each write is all or nothing
// (see StoreBase), so a format and its columns are never half-written.
class clsReportGenerator : public StoreBase {
public:
    clsReportGenerator();

    // The year context, as texts of years.
    QString Ledger;     // the ledger printed; heading texts follow the format's own (ReportName().Ledger)
    QString BugdetYear; // the current budget year; the spelling is part of the interface
    QString CalendarYear;
    QString ProposedYear;
    QString PriorYear;
    QString Prior1Year;

    clsReportName &ReportName() { return name_; }
    void setReportName(const clsReportName &name) { name_ = name; }

    // Inserts ReportName (its ModifiedDate written as yyyymmdd); the database
    // assigns the ID, which RetrieveReportName(true) reads back.
    bool AddReportName();
    bool UpdateReportName();
    // Replaces the columns of ReportName.ID with `headingKeys`, in order.
    bool AddReportHeadings(const QStringList &headingKeys);
    // Removes the format of ReportName.ID and its columns.
    bool Delete();
    // Replaces `names` with every format, each under its ID as text.
    bool GetReportNameList(classGrouping<clsReportName> &names);
    // The columns of ReportName.ID in their order, with heading texts for its ledger.
    bool GetReportHeadings(std::vector<clsReportHeadings> &headings);
    // Every column a format may print, with heading texts for ReportName().Ledger.
    void getAvailHeadingList(std::vector<clsReportHeadings> &headings) const;
    // By ReportName.Name when `byName`, else by ReportName.ID.
    bool RetrieveReportName(bool byName);

    // The year a column's figures belong to: the budget year, the proposed
    // year, or one of the two prior years; "" for an unknown key.
    QString HeadingYear(const QString &headingKey) const;

private:
    bool changeOne(const QString &sql);
    clsReportHeadings describe(const QString &key) const;

    clsReportName name_;
};
