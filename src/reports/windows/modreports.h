#pragma once

#include "installationfunds.h"
#include "reportpreparation.h"
#include "reportselection.h"

#include <cstdint>
#include <functional>
#include <memory>

class ReportDefinition;

// Where a prepared report goes: the viewer window, or the printer.
class ReportOutput {
public:
    virtual ~ReportOutput() = default;
    virtual void Preview(std::unique_ptr<ReportDefinition> definition) = 0;
    virtual void Print(std::unique_ptr<ReportDefinition> definition, int copies) = 0;
};

struct ReportServices {
    ReportEnvironment environment;
    FundListReader listFunds;
    std::function<std::unique_ptr<ReportSelection>()> makeSelection;
    std::shared_ptr<ReportOutput> output;
};

// The report procedures of the Reports menu, the account code explorer and
// the report generator. A report with choices fills the selection dialog and
// shows it; each confirmed choice is prepared and shown or printed, and the
// dialog comes back until the user closes it. The tax report and the charts
// go straight to the viewer. Failures are reported to the user and end
// nothing but the run that failed.
class modReports {
public:
    explicit modReports(ReportServices services);

    void PrintStatusReport(const QString &ledger);
    void PrintTaxRevenueReport();
    void PrintPublicBudgetReport();
    void PrintGeneratedReport(std::int32_t formatId);
    void PrintVsProposedReport(const QString &ledger);
    void PrintHistoricalReport();
    void PrintAccountCodeListing(const QString &fund, const QString &ledger, const QString &node);
    void PrintChart(const QString &ledger);

private:
    struct DialogSetup;
    bool readYears(ReportPreparation &preparation);
    void runWithDialog(ReportKind kind, const QString &ledger, const DialogSetup &setup);
    void runDirect(ReportKind kind, const ReportChoices &choices);
    void deliver(ReportPreparation &preparation, ReportKind kind, const ReportChoices &choices,
                 const QString &errorTitle);

    ReportServices services_;
};
