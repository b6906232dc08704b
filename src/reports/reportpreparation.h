#pragma once

#include "budgetdbconfig.h"
#include "errobject.h"
#include "reportcatalog.h"
#include "reportchoices.h"

#include <QString>
#include <QStringList>

#include <memory>
#include <optional>
#include <utility>
#include <vector>

class DbConnection;
class ReportDefinition;

// What a report reads besides the user's choices.
struct ReportEnvironment {
    std::shared_ptr<DbConnection> db;
    QString rootPath; // the installation: its reports/budget copies and the fund files
    QString fundPath; // its FUND folder, where the organisation record lives
    QString proposalId;
    QString proposedYear;
    bool calendarYear = false;
    // The general fund's revenue codes that are the property tax (the configuration's).
    QStringList propertyTaxCodes = BudgetDbConfig::defaultPropertyTaxCodes();

    // From the start-up globals and the open budget database.
    static ReportEnvironment fromAppContext();
};

// The option's RptOption and compare years. False with `why` for an option
// that is not one of statusOptions() or one the historical years cannot serve.
struct CompareYears {
    int rptOption = 0;
    QString year;
    QString year2;
};
bool compareYearsFor(const QString &option, const std::vector<QString> &historical, CompareYears &years,
                     QString &why);

// The compare code a run passes: the typed text when "Compare Code" is chosen
// and the text is not blank, else "".
QString effectiveCompareCode(const ReportChoices &choices);

// Turns the user's choices into a definition ready to run: it opens the
// definition file, sets its parameter fields by name, replaces formulas,
// re-points the current year's summary tables where the option shows the
// current year's actuals, sets the orientation and narrows the record
// selection to the summary-tree folders concerned. Every failure fills the
// error object and gives nullptr.
class ReportPreparation {
public:
    explicit ReportPreparation(ReportEnvironment environment);
    ~ReportPreparation();

    // The historical years and the current budget year, read before anything is offered.
    bool readYears();
    const std::vector<QString> &historicalYears() const { return historical_; }
    const QString &currentYear() const { return currentYear_; }

    std::unique_ptr<ReportDefinition> prepare(ReportKind kind, const ReportChoices &choices);

    // The IDs of the "T" folders of a fund and ledger that hold live codes
    // beginning with the compare code; with a category ("A", "P", "C", "" for
    // none) only codes of that component count.
    bool foldersCarrying(const QString &fund, const QString &ledger, const QString &compareCode,
                         const std::optional<QString> &category, std::vector<qint64> &ids);

    clsErrObject &Error() { return error_; }
    const ReportEnvironment &environment() const { return environment_; }

private:
    struct Run;
    bool fail(const QString &sub, const QString &text);
    const QString &customerName();
    bool statusValues(Run &run);
    bool generatorValues(Run &run);
    bool currentActuals(Run &run);
    bool narrow(Run &run);
    bool applyCategory(Run &run);
    bool taxLevyFormulas(Run &run);
    void applyParameters(Run &run);

    ReportEnvironment environment_;
    std::vector<QString> historical_;
    QString currentYear_;
    std::optional<QString> customerName_;
    clsErrObject error_;
};
